#pragma once

#include "ModulePlugin.h"

class MessagesPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit MessagesPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Messages"); }
    QString moduleName() const override { return QStringLiteral("messages"); }
};
