#include "MessagesPlugin.h"

MessagesPlugin::MessagesPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
