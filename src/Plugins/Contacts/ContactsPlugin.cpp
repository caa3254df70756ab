#include "ContactsPlugin.h"

ContactsPlugin::ContactsPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
