#include "SettingsPlugin.h"

#include <QCheckBox>
#include <QLabel>
#include <QTabWidget>
#include <QVBoxLayout>

#include "DesktopNotifier.h"
#include "PinSettingsPage.h"
#include "ProfilesPage.h"
#include "SmsSettingsPage.h"

SettingsPlugin::SettingsPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {
    auto* layout = new QVBoxLayout(this);
    _sections = new QTabWidget;
    _sections->setObjectName(QStringLiteral("sections"));
    _sections->setAccessibleName(tr("Settings sections"));
    layout->addWidget(_sections);

    _profiles = new ProfilesPage(context);
    _profiles->setObjectName(QStringLiteral("profiles"));
    _sections->addTab(_profiles, tr("Profiles"));

    _pin = new PinSettingsPage(context.link);
    _pin->setObjectName(QStringLiteral("pin"));
    _sections->addTab(_pin, tr("PIN"));

    _sms = new SmsSettingsPage(context.link);
    _sms->setObjectName(QStringLiteral("sms"));
    _sections->addTab(_sms, tr("Messages"));

    auto* sounds = new QWidget;
    sounds->setObjectName(QStringLiteral("sounds"));
    auto* soundsLayout = new QVBoxLayout(sounds);
    _sounds = new QCheckBox(tr("Play a sound for new messages"));
    _sounds->setObjectName(QStringLiteral("playSounds"));
    _sounds->setChecked(DesktopNotifier::soundsEnabled());
    auto* soundsHint = new QLabel(tr("New messages and delivery reports are always shown as a notification; "
                                     "this adds a sound to it."));
    soundsHint->setWordWrap(true);
    soundsLayout->addWidget(_sounds);
    soundsLayout->addWidget(soundsHint);
    soundsLayout->addStretch(1);
    _sections->addTab(sounds, tr("Sounds"));
    connect(_sounds, &QCheckBox::toggled, this, [](bool on) { DesktopNotifier::setSoundsEnabled(on); });
}

void SettingsPlugin::modemReady() {
    _sounds->setChecked(DesktopNotifier::soundsEnabled());
    _profiles->refresh();
    _pin->modemReady();
    _sms->modemReady();
}

void SettingsPlugin::modemGone() {
    _pin->modemGone();
    _sms->modemGone();
}

void SettingsPlugin::showSection(const QString& section) {
    for (int i = 0; i < _sections->count(); ++i) {
        if (_sections->widget(i)->objectName() == section)
            _sections->setCurrentIndex(i);
    }
}
