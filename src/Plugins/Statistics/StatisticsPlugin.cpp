#include "StatisticsPlugin.h"

StatisticsPlugin::StatisticsPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
