#include "ConnectPlugin.h"

ConnectPlugin::ConnectPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
