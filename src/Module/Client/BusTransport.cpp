#include "BusTransport.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "CNSLog.h"
#include "ServiceBus.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

BusTransport::BusTransport(const QDBusConnection& bus, QObject* parent) : ModemTransport(parent), _bus(bus) {}

bool BusTransport::serviceAvailable(const QDBusConnection& bus) {
    if (!bus.isConnected() || bus.interface() == nullptr)
        return false;
    if (bus.interface()->isServiceRegistered(ServiceBus::kServiceName))
        return true;
    const QDBusMessage activatable =
        bus.call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                                QStringLiteral("/org/freedesktop/DBus"),
                                                QStringLiteral("org.freedesktop.DBus"),
                                                QStringLiteral("ListActivatableNames")));
    return activatable.type() == QDBusMessage::ReplyMessage && !activatable.arguments().isEmpty() &&
           activatable.arguments().constFirst().toStringList().contains(ServiceBus::kServiceName);
}

std::unique_ptr<ModemTransport> BusTransport::forSessionBus() {
    // Ports named for this process (a simulated modem, a test's folder) are its own.
    if (qEnvironmentVariableIsSet("DIALTONE_DEV_DIR"))
        return nullptr;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!serviceAvailable(bus))
        return nullptr;
    return std::make_unique<BusTransport>(bus);
}

void BusTransport::start() {
    if (_ready)
        return;
    // The settings and history files are the service's; this process reads them as the worker would have.
    ApplicationShell& shell = ApplicationShell::sharedShell();
    if (shell.appConfig() == nullptr) {
        g_CNSLog.initialize();
        shell.setAppConfig(std::make_unique<AppConfig>());
    }
    _bus.connect(ServiceBus::kServiceName, ServiceBus::kObjectPath, ServiceBus::kInterface,
                 QStringLiteral("Notification"), this, SLOT(onNotification(QString, QVariantMap)));
    _ready = _bus.isConnected();
    if (_ready)
        QTimer::singleShot(0, this, &BusTransport::ready);
}

int BusTransport::send(const QString& name, const QVariantMap& request) {
    if (!_ready)
        return WORKER_ERR_NO_TARGET;
    listen(name);
    QDBusMessage call = QDBusMessage::createMethodCall(ServiceBus::kServiceName, ServiceBus::kObjectPath,
                                                       ServiceBus::kInterface, QStringLiteral("Request"));
    // The ticket stays here: the answer is matched by its reply.
    call << name << ServiceBus::toBus(request);
    auto* watcher = new QDBusPendingCallWatcher(_bus.asyncCall(call, kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, name, request](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        const QDBusPendingReply<QVariantMap> reply = *done;
        QVariantMap data;
        if (reply.isError()) {
            // The service is gone or refused the call: as if no worker were there.
            data.insert(ERROR_CODE, WORKER_ERR_NO_TARGET);
        } else if (!ServiceBus::fromBus(reply.value(), data)) {
            data.insert(ERROR_CODE, WORKER_ERR_INVALID_ARGUMENT);
        }
        data.insert(USER_INFO, request);
        emit received(name, data);
    });
    return WORKER_OK;
}

void BusTransport::listen(const QString& name) {
    if (!_listened.contains(name))
        _listened.append(name);
}

void BusTransport::onNotification(const QString& name, const QVariantMap& info) {
    if (name == MESSAGE_USB_UNPLUGGED) {
        emit unplugged();
        return;
    }
    if (!_listened.contains(name) && !_listened.contains(QString()))
        return;
    QVariantMap data;
    ServiceBus::fromBus(info, data);
    // Our own answers came as replies already.
    if (data.value(USER_INFO).toMap().value(ServiceBus::kClientKey).toString() == _bus.baseService())
        return;
    emit received(name, data);
}
