#pragma once

#include <QDBusConnection>
#include <QStringList>

#include <memory>

#include "ModemTransport.h"

// The modem service (dialtoned) on the session bus: requests go out as its Request method, answers come
// back as the method's reply, and the service's Notification signal brings the reports and what other
// clients were answered. The bus starts the service on the first call when it is not running.
class BusTransport : public ModemTransport {
    Q_OBJECT
public:
    // How long a request may wait for the service; the slowest request (a network scan) takes minutes.
    static constexpr int kCallTimeoutMs = 10 * 60 * 1000;

    explicit BusTransport(const QDBusConnection& bus, QObject* parent = nullptr);

    // Whether the service runs on the bus or the bus can start it. False without a session bus.
    static bool serviceAvailable(const QDBusConnection& bus);
    // The transport to the service on the session bus when it is available and this process was not
    // given ports of its own (DIALTONE_DEV_DIR), else null: the caller uses the worker in its own process.
    static std::unique_ptr<ModemTransport> forSessionBus();

    void start() override;
    bool isReady() const override { return _ready; }
    int send(const QString& name, const QVariantMap& request) override;
    void listen(const QString& name) override;
    bool ownerElsewhere() const override { return true; }

private slots:
    void onNotification(const QString& name, const QVariantMap& info);

private:
    QDBusConnection _bus;
    bool _ready = false;
    QStringList _listened;
};
