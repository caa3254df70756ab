#pragma once

#include "ModulePlugin.h"

class ConnectPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit ConnectPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Connect"); }
    QString moduleName() const override { return QStringLiteral("connect"); }
};
