#pragma once

#include "ModulePlugin.h"

class StatisticsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit StatisticsPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Statistics"); }
    QString moduleName() const override { return QStringLiteral("statistics"); }
};
