#include "AccountPlugin.h"

AccountPlugin::AccountPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
