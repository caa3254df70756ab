#include "SleepWatcher.h"

#include <QDBusConnection>

SleepWatcher::SleepWatcher(std::function<void()> willSleep, std::function<void()> didWake, QObject* parent)
    : SleepWatcher(std::move(willSleep), std::move(didWake), QDBusConnection::systemBus(), parent) {}

SleepWatcher::SleepWatcher(std::function<void()> willSleep, std::function<void()> didWake,
                           QDBusConnection bus, QObject* parent)
    : QObject(parent), _willSleep(std::move(willSleep)), _didWake(std::move(didWake)) {
    if (!bus.isConnected()) {
        return;
    }
    // signal PrepareForSleep(b start): true just before suspending, false once resumed.
    _watching =
        bus.connect(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
                    QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"), this,
                    SLOT(prepareForSleep(bool)));
}

void SleepWatcher::prepareForSleep(bool start) {
    const std::function<void()>& action = start ? _willSleep : _didWake;
    if (action) {
        action();
    }
}
