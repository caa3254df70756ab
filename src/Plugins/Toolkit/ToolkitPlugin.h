#pragma once

#include "ModulePlugin.h"

class ToolkitPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit ToolkitPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("SIM Toolkit"); }
    QString moduleName() const override { return QStringLiteral("toolkit"); }
};
