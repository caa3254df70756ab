#include "NetworkPlugin.h"

NetworkPlugin::NetworkPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
