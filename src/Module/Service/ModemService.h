#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <functional>
#include <memory>

class AppConfig;
class BudgetGuard;
class ConnectController;
class MessagesController;
class ModemLink;
class ProfileSettingsController;
class TrafficStatics;
class SignalRecorder;

// dialtoned's object on the session bus: the one owner of the modem for every client of this user. It
// follows the modem with its own link (detection, init, SIM, network), dials and hangs up with its own
// connect controller (which keeps the traffic history), and offers:
//   Request(s name, a{sv} request) -> a{sv}   the request protocol as it is (names, keys, result codes)
//   SendSms, Connect, Disconnect              the common verbs with typed arguments
//   Notification(s name, a{sv} info)          every report and every answer, for all clients; the budget
//                                             and roaming guard's warnings and hang-ups as "BUDGET_NOTICE"
//                                             with "TEXT"
//   properties with PropertiesChanged         the state panels and scripts read without polling
// It ends itself after idleExitMs without clients and property reads while no link is up (0: never).
class ModemService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.dialtone.Modem1")
    Q_PROPERTY(QString ModemState READ modemState)
    Q_PROPERTY(QString SimState READ simState)
    Q_PROPERTY(int PinAttempts READ pinAttempts)
    Q_PROPERTY(int PukAttempts READ pukAttempts)
    Q_PROPERTY(QString Operator READ operatorName)
    Q_PROPERTY(int SignalLevel READ signalLevel)
    Q_PROPERTY(int SignalDbm READ signalDbm)
    Q_PROPERTY(QString Bearer READ bearer)
    Q_PROPERTY(bool Roaming READ roaming)
    Q_PROPERTY(QString ConnectionState READ connectionState)
    Q_PROPERTY(uint ConnectionDuration READ connectionDuration)
    Q_PROPERTY(qulonglong BytesReceived READ bytesReceived)
    Q_PROPERTY(qulonglong BytesSent READ bytesSent)
    Q_PROPERTY(uint ReceiveRate READ receiveRate)
    Q_PROPERTY(uint SendRate READ sendRate)
    Q_PROPERTY(uint Clients READ clients)

public:
    static constexpr int kIdleExitMs = 60 * 1000;
    static constexpr int kPropertyRefreshMs = 1000;

    ModemService(const QDBusConnection& bus, int idleExitMs, QObject* parent = nullptr);
    ~ModemService() override;

    // Takes the bus name and puts the object on the bus; false (with the reason in error) when another
    // service has the name already.
    bool publish(QString& error);
    // Starts following the modem; onIdle runs once the service has been idle long enough to end.
    void start(std::function<void()> onIdle);

    QString modemState() const;
    QString simState() const;
    int pinAttempts() const;
    int pukAttempts() const;
    QString operatorName() const;
    int signalLevel() const;
    int signalDbm() const;
    QString bearer() const;
    bool roaming() const;
    QString connectionState() const;
    uint connectionDuration() const;
    qulonglong bytesReceived() const;
    qulonglong bytesSent() const;
    uint receiveRate() const;
    uint sendRate() const;
    uint clients() const {
        readByClient();
        return static_cast<uint>(_clients.size());
    }

public slots:
    QVariantMap Request(const QString& name, const QVariantMap& request);
    int SendSms(const QString& number, const QString& text);
    int Connect(const QString& profile);
    int Disconnect();

signals:
    void Notification(const QString& name, const QVariantMap& info);

private:
    void noteClient();
    void refreshProperties();
    void checkIdle();
    void onModemReady();
    void prepareMessages();
    QVariantMap propertySnapshot() const;
    void readByClient() const;

    QDBusConnection _bus;
    int _idleExitMs;
    std::unique_ptr<ModemLink> _link;
    std::unique_ptr<TrafficStatics> _traffic;
    std::unique_ptr<SignalRecorder> _signalRecorder;
    std::unique_ptr<ProfileSettingsController> _profiles;
    std::unique_ptr<ConnectController> _connect;
    std::unique_ptr<BudgetGuard> _guard;
    std::unique_ptr<MessagesController> _messages;
    QDBusServiceWatcher _clientWatcher;
    QSet<QString> _clients;
    QTimer _refreshTimer;
    mutable QElapsedTimer _idleSince;
    mutable bool _snapshotting = false;
    QVariantMap _published;
    bool _connectorStarted = false;
    int _signalDbm = 0;
    int _broadcastState = -2; // the link's state and counters the clients were last told
    QVariant _broadcastSample;
    std::function<void()> _onIdle;
};
