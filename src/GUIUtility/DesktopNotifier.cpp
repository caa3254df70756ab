#include "DesktopNotifier.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QSystemTrayIcon>

#include "ConvertUtilty.h"
#include "UserDefaults.h"

DesktopNotifier::DesktopNotifier(QObject* parent) : QObject(parent) {}

bool DesktopNotifier::soundsEnabled() {
    return ConvertUtilty::NSStringBOOLToBOOL(
        UserDefaults::value(kPlaySoundsKey, QStringLiteral("TRUE")).toString());
}

void DesktopNotifier::setSoundsEnabled(bool enabled) {
    UserDefaults::setValue(kPlaySoundsKey, ConvertUtilty::BOOLToNSStringBOOL(enabled));
}

void DesktopNotifier::notify(const QString& title, const QString& text, bool withSound) {
    _lastTitle = title;
    _lastText = text;
    ++_count;
    if (_tray && QSystemTrayIcon::isSystemTrayAvailable() && _tray->isVisible())
        _tray->showMessage(title, text, QSystemTrayIcon::Information, 5000);
    if (withSound && soundsEnabled())
        playSound();
    emit notified(title, text);
}

void DesktopNotifier::playSound() {
    // The desktop's sound player when there is one; the bell otherwise. Nothing waits for it.
    const QString sound = QStringLiteral("/usr/share/sounds/freedesktop/stereo/message-new-instant.oga");
    for (const QString& player : {QStringLiteral("paplay"), QStringLiteral("pw-play")}) {
        const QString program = QStandardPaths::findExecutable(player);
        if (!program.isEmpty() && QFileInfo::exists(sound)) {
            QProcess::startDetached(program, {sound});
            return;
        }
    }
    QApplication::beep();
}
