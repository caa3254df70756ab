#include "ToolkitPlugin.h"

ToolkitPlugin::ToolkitPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
