#pragma once

#include "ModulePlugin.h"

class AccountPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit AccountPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Account"); }
    QString moduleName() const override { return QStringLiteral("account"); }
};
