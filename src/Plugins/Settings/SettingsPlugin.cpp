#include "SettingsPlugin.h"

SettingsPlugin::SettingsPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {}
