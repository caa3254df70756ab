#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "EquipmentRecords.h"
#include "ModemTransport.h"
#include "NetworkRecords.h"

class AppConfig;
class QEventLoop;

// The one client of the modem, for the desktop app and the tool alike: it starts the transport (the
// worker in this process unless another is given), brings the modem up, follows it through unplugging and
// replugging, and carries the feature controllers' requests.
//
// States: Absent (no modem; the desktop app retries an init every few seconds), Starting (the modem
// answers and is being set up), NeedPin / NeedPuk (the SIM is locked; the attempts left are in
// pinAttempts() and pukAttempts()), NoSim, Blocked (the SIM refuses every code), Ready (the features may
// use it).
//
// Requests carry a ticket, so each answer reaches only the callback of the request it answers, on the
// thread that made the link. An answer that never comes because the modem went away reaches the callback
// as code 27 (no modem), so that nobody waits for ever.
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
    static constexpr int kWaitForever = -1;
    static constexpr int kWaitPollMs = 50; // how often waitUntil looks again without an answer
    // The key under which a request carries its ticket; the worker hands the request's dictionary back
    // with the answer, so the answer finds its callback.
    static inline const QString kTicketKey = QStringLiteral("GUI_TICKET");

    // Without a transport the link makes the in-process worker's (WorkerTransport), handing mainWindow to
    // the application shell.
    explicit ModemLink(QObject* parent = nullptr, std::unique_ptr<ModemTransport> transport = {},
                       QObject* mainWindow = nullptr);
    ~ModemLink() override; // ends the transport (and a link the app started)

    // The desktop app: starts the transport and the first init, then follows the modem (SIM check,
    // identity, network poll, init retries while it is away).
    void start();
    // The tool: starts the transport and sends one init, waiting up to timeoutMs for each step; the init's
    // result code (the link is Starting on success, Absent otherwise). Nothing is polled or retried.
    int open(int timeoutMs);

    State state() const { return _state; }
    ModemTransport& transport() const { return *_transport; }
    // The configuration the worker loaded; null before the first init.
    AppConfig* config() const;

    // Sends the request with the argument (none when invalid). The reply runs at most once, and not at all
    // when context is given and has been destroyed by then.
    void request(const QString& name, const QVariant& argument = {}, Reply reply = {},
                 QObject* context = nullptr);
    // Sends the request and waits for its answer, running this thread's events meanwhile; after timeoutMs
    // (kWaitForever: no limit) the answer is code 2 (timed out).
    QVariantMap call(const QString& name, const QVariant& argument = {}, int timeoutMs = kWaitForever);
    // Runs this thread's events until done() holds or timeoutMs has passed; whether done() holds.
    bool waitUntil(const std::function<bool()>& done, int timeoutMs = kWaitForever);

    // Reports of this name (the worker's own messages, not answers) reach reportReceived() from now on.
    // New messages, the list-again report and USSD answers are passed on from the start.
    void listenForReport(const QString& name);
    // Every report, whatever its name, and the answers to requests of other senders (the modem service,
    // which passes them all on).
    void listenForAllReports();

    // Initialises the modem now unless it is up already (the reply then gets code 0 at once); an init
    // under way is not repeated, the reply gets its answer. The link follows the result as for its own.
    void initNow(Reply reply);

    // Unlocking: the PIN, or the PUK with the new PIN. The reply gets the worker's answer; on success the
    // link checks the SIM again and moves on to Ready.
    void verifyPin(const QString& pin, Reply reply = {});
    void verifyPuk(const QString& puk, const QString& newPin, Reply reply = {});
    // Reads the SIM's state again (after a PIN change elsewhere).
    void checkSim();

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
    void learnModem();
    void onUnplugged();
    void failPending(int code);
    void onReceived(const QString& name, const QVariantMap& data);
    void wakeWaiters();

    std::unique_ptr<ModemTransport> _transport;
    bool _follows = false; // start() rather than open()
    State _state = State::Absent;
    bool _initInFlight = false;
    QTimer _retryTimer;
    QTimer _networkTimer;
    qint64 _nextTicket = 1;
    std::map<qint64, Pending> _pending;
    QStringList _reports;
    bool _allReports = false;
    std::vector<Reply> _initReplies; // initNow's callers waiting for the init under way
    std::vector<QEventLoop*> _waiters; // waitUntil's loops, innermost last
    int _simCheckFailures = 0;
    int _pinAttempts = -1;
    int _pukAttempts = -1;
    BLEquipmentInfo _equipment;
    BLNetworkInfo _network;
    bool _hasNetwork = false;
};
