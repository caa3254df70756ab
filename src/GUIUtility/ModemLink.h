#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <map>
#include <memory>

#include "EquipmentRecords.h"
#include "NetworkRecords.h"
#include "NotificationCenter.h"

class AppConfig;
class DeviceWorkRequestInterface;
class GUIThreadAgent;
class WorkNotification;

// The desktop app's one connection to the modem: it starts the worker, brings the modem up, follows it
// through unplugging and replugging, and carries the modules' requests.
//
// States: Absent (no modem; an init is retried every few seconds), Starting (the modem answers and is
// being set up), NeedPin / NeedPuk (the SIM is locked; the attempts left are in pinAttempts() and
// pukAttempts()), NoSim, Blocked (the SIM refuses every code), Ready (the modules may use it).
//
// Requests are asynchronous; each answer reaches only the callback of the request it answers, on the GUI
// thread. An answer that never comes because the modem went away reaches the callback as code 27 (no
// modem), so that no view waits for ever.
class ModemLink : public QObject {
    Q_OBJECT
public:
    enum class State { Absent, Starting, NeedPin, NeedPuk, NoSim, Blocked, Ready };
    Q_ENUM(State)
    using Reply = std::function<void(const QVariantMap& response)>;

    static constexpr int kRetryIntervalMs = 2000; // init retries while no modem answers
    static constexpr int kNetworkPollMs = 5000;   // registration, signal and bearer for the status bar
    static constexpr int kSimCheckTries = 5;      // SIM state reads before a failing SIM counts as absent
    static constexpr int kSimCheckRetryMs = 1000;

    explicit ModemLink(QObject* parent = nullptr);
    ~ModemLink() override; // ends the worker (and a link the app started)

    // Starts the worker and the first init.
    void start();

    State state() const { return _state; }
    // The worker's request end, for controllers with a WorkNotification of their own; null before start.
    DeviceWorkRequestInterface* workTarget() const;
    // The configuration the worker loaded; null before the first init.
    AppConfig* config() const;

    // Sends the request with the argument (none when invalid). The reply runs at most once, and not at all
    // when context is given and has been destroyed by then.
    void request(const QString& name, const QVariant& argument = {}, Reply reply = {},
                 QObject* context = nullptr);

    // Unlocking: the PIN, or the PUK with the new PIN. The reply gets the worker's answer; on success the
    // link checks the SIM again and moves on to Ready.
    void verifyPin(const QString& pin, Reply reply = {});
    void verifyPuk(const QString& puk, const QString& newPin, Reply reply = {});

    int pinAttempts() const { return _pinAttempts; }
    int pukAttempts() const { return _pukAttempts; }
    // The modem's identity, read when it became ready.
    const BLEquipmentInfo& equipment() const { return _equipment; }
    // The latest registration, signal and bearer (polled while Ready).
    const BLNetworkInfo& network() const { return _network; }
    bool hasNetwork() const { return _hasNetwork; }
    // The country phone numbers are read in: the SIM's, else the registered network's; empty when unknown.
    QString homeRegion() const;

    // Asks for the network information now (after a network change).
    void refreshNetwork();

    // Short text of a state, for the status bar and the "no modem" page.
    static QString stateText(State state);

signals:
    void stateChanged(ModemLink::State state);
    void networkChanged(const BLNetworkInfo& network);
    // The SIM's state and attempt counters were read again (after every PIN or PUK try).
    void simChecked();
    // The modem's reports: new messages ("MESSAGE_RPT_RECEIVE_SMS"), USSD answers, ... with the worker's
    // dictionary.
    void reportReceived(const QString& name, const QVariantMap& data);

private:
    struct Pending {
        QString name;
        Reply reply;
        QPointer<QObject> context;
        bool hasContext = false;
    };

    void setState(State state);
    void sendInit();
    void onInitAnswer(const QVariantMap& response);
    void checkSim();
    void learnModem();
    void onUnplugged();
    void failPending(int code);
    void deliver(const QString& name, const QVariantMap& response);
    void watch(const QString& name);

    std::unique_ptr<QObject> _delegate;
    std::unique_ptr<GUIThreadAgent> _agent;
    WorkNotification* _notification = nullptr;
    State _state = State::Absent;
    bool _initInFlight = false;
    QTimer _retryTimer;
    QTimer _networkTimer;
    qint64 _nextTicket = 1;
    std::map<qint64, Pending> _pending;
    QStringList _watched;
    int _simCheckFailures = 0;
    int _pinAttempts = -1;
    int _pukAttempts = -1;
    BLEquipmentInfo _equipment;
    BLNetworkInfo _network;
    bool _hasNetwork = false;
};
