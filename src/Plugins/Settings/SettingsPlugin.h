#pragma once

#include "ModulePlugin.h"

class SettingsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit SettingsPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Settings"); }
    QString moduleName() const override { return QStringLiteral("settings"); }
};
