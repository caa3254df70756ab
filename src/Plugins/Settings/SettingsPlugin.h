#pragma once

#include "ModulePlugin.h"

class PinSettingsPage;
class ProfilesPage;
class QCheckBox;
class QTabWidget;
class SmsSettingsPage;

// The settings, one section each: connection profiles, the SIM's PIN, message settings and sounds.
class SettingsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit SettingsPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Settings"); }
    QString moduleName() const override { return QStringLiteral("settings"); }

    void modemReady() override;
    void modemGone() override;

    // Brings one section forward: "profiles", "pin", "sms" or "sounds".
    void showSection(const QString& section);
    // The controller behind the profiles section.
    ProfileSettingsController& profileSettings() const { return context().profiles; }

private:
    QTabWidget* _sections = nullptr;
    ProfilesPage* _profiles = nullptr;
    PinSettingsPage* _pin = nullptr;
    SmsSettingsPage* _sms = nullptr;
    QCheckBox* _sounds = nullptr;
};
