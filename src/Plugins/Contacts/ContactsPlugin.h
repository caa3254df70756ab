#pragma once

#include "ModulePlugin.h"

class ContactsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit ContactsPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Contacts"); }
    QString moduleName() const override { return QStringLiteral("contacts"); }
};
