#pragma once

#include "ModulePlugin.h"

class NetworkPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit NetworkPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Network"); }
    QString moduleName() const override { return QStringLiteral("network"); }
};
