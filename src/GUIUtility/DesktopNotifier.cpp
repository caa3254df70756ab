#include "DesktopNotifier.h"

#include <QApplication>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QSystemTrayIcon>

#include <algorithm>

#include "ConvertUtilty.h"
#include "FreedesktopNotifications.h"
#include "UserDefaults.h"

namespace {

// Notifications the server may still hold; older ones lose their actions (a server that never says
// "closed" would otherwise grow the table).
constexpr int kMaxShown = 64;

} // namespace

DesktopNotifier::DesktopNotifier(QObject* parent) : QObject(parent) {}

DesktopNotifier::~DesktopNotifier() = default;

bool DesktopNotifier::soundsEnabled() {
    return ConvertUtilty::NSStringBOOLToBOOL(
        UserDefaults::value(kPlaySoundsKey, QStringLiteral("TRUE")).toString());
}

void DesktopNotifier::setSoundsEnabled(bool enabled) {
    UserDefaults::setValue(kPlaySoundsKey, ConvertUtilty::BOOLToNSStringBOOL(enabled));
}

void DesktopNotifier::setBus(const QDBusConnection& bus) {
    _shown.clear();
    _server = std::make_unique<FreedesktopNotifications>(bus);
    connect(_server.get(), &FreedesktopNotifications::actionInvoked, this, &DesktopNotifier::onAction);
    connect(_server.get(), &FreedesktopNotifications::replied, this, [this](uint id, const QString& text) {
        const auto found = _shown.constFind(id);
        if (found != _shown.constEnd() && !text.trimmed().isEmpty())
            emit replyTyped(found->sender, text);
    });
    connect(_server.get(), &FreedesktopNotifications::closed, this, [this](uint id) { _shown.remove(id); });
}

FreedesktopNotifications& DesktopNotifier::server() {
    if (!_server)
        setBus(QDBusConnection::sessionBus());
    return *_server;
}

void DesktopNotifier::notify(const QString& title, const QString& text, bool withSound) {
    deliver(title, text, nullptr);
    if (withSound && soundsEnabled())
        playSound();
    emit notified(title, text);
}

void DesktopNotifier::notifyMessage(const QString& title, const QString& text, const Message& message) {
    deliver(title, text, &message);
    if (soundsEnabled())
        playSound();
    emit notified(title, text);
}

void DesktopNotifier::deliver(const QString& title, const QString& text, const Message* message) {
    _lastTitle = title;
    _lastText = text;
    ++_count;
    FreedesktopNotifications& bus = server();
    if (!bus.available()) {
        _lastRoute = showBalloon(title, text) ? Route::Tray : Route::SoundOnly;
        return;
    }
    _lastRoute = Route::Server;
    QList<FreedesktopNotifications::Action> actions;
    if (message) {
        actions = {{QStringLiteral("default"), tr("Read")},
                   {QStringLiteral("read"), tr("Read")},
                   bus.hasCapability(QStringLiteral("inline-reply"))
                       ? FreedesktopNotifications::Action{QStringLiteral("inline-reply"), tr("Reply")}
                       : FreedesktopNotifications::Action{QStringLiteral("reply"), tr("Reply")}};
    }
    const Message about = message ? *message : Message{};
    QPointer<DesktopNotifier> self(this);
    bus.show(title, text, actions, [self, title, text, about, withActions = message != nullptr](uint id) {
        if (!self)
            return;
        // A server that failed the call: the tray, as if there were none.
        if (id == 0) {
            self->_lastRoute = self->showBalloon(title, text) ? Route::Tray : Route::SoundOnly;
            return;
        }
        if (!withActions)
            return;
        if (self->_shown.size() >= kMaxShown) {
            const QList<uint> ids = self->_shown.keys();
            self->_shown.remove(*std::min_element(ids.begin(), ids.end())); // servers count upwards
        }
        self->_shown.insert(id, about);
    });
}

bool DesktopNotifier::showBalloon(const QString& title, const QString& text) {
    if (!_tray || !QSystemTrayIcon::isSystemTrayAvailable() || !_tray->isVisible())
        return false;
    _tray->showMessage(title, text, QSystemTrayIcon::Information, 5000);
    return true;
}

void DesktopNotifier::onAction(uint id, const QString& key) {
    const auto found = _shown.constFind(id);
    if (found == _shown.constEnd())
        return;
    if (key == QStringLiteral("default") || key == QStringLiteral("read"))
        emit readRequested(found->key);
    else if (key == QStringLiteral("reply"))
        emit replyRequested(found->sender);
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
