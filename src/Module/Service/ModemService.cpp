#include "ModemService.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QMetaProperty>

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "BLRecords.h"
#include "Budget/BudgetGuard.h"
#include "CNSLog.h"
#include "Connector/ConnectController.h"
#include "Connector/ProfileSettingsController.h"
#include "ModemLink.h"
#include "PhoneNumbers.h"
#include "SMS/MessagesController.h"
#include "SMS/SmsPduText.h"
#include "ServiceSettings.h"
#include "SmsRecords.h"
#include "ServiceBus.h"
#include "Statistics/TrafficStatics.h"
#include "Statistics/SignalRecorder.h"
#include "StatusText.h"
#include "WorkNotification.h"

namespace {

const QString kPropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

} // namespace

ModemService::ModemService(const QDBusConnection& bus, int idleExitMs, QObject* parent)
    : QObject(parent), _bus(bus), _idleExitMs(idleExitMs), _link(std::make_unique<ModemLink>()) {
    // A link stays up when the service ends (stopped, or restarted after a crash): the next one finds it.
    ApplicationShell::sharedShell().setKeepsLinkOnQuit(true);
    _link->listenForAllReports();
    connect(_link.get(), &ModemLink::reportReceived, this, [this](const QString& name, const QVariantMap& data) {
        QVariantMap info = data;
        QVariantMap userInfo = info.value(USER_INFO).toMap();
        userInfo.remove(ModemLink::kTicketKey);
        if (userInfo.isEmpty())
            info.remove(USER_INFO);
        else
            info.insert(USER_INFO, userInfo);
        emit Notification(name, ServiceBus::toBus(info));
    });
    connect(&_link->transport(), &ModemTransport::unplugged, this,
            [this] { emit Notification(MESSAGE_USB_UNPLUGGED, {}); });
    connect(_link.get(), &ModemLink::stateChanged, this, [this](ModemLink::State state) {
        if (state == ModemLink::State::Ready) {
            onModemReady();
            prepareMessages();
        }
        refreshProperties();
    });
    // The dBm figure is read with each network poll of the link (every few seconds while the modem is up).
    connect(_link.get(), &ModemLink::networkChanged, this, [this] {
        _link->request(
            MESSAGE_NETWORK_GET_SIGNAL_DBM, {},
            [this](const QVariantMap& response) {
                _signalDbm = WorkNotification::GetErrorCode(response) == WORKER_OK
                                 ? WorkNotification::GetValueObject(response).toInt()
                                 : 0;
                refreshProperties();
            },
            this);
    });
    connect(_link.get(), &ModemLink::simChecked, this, &ModemService::refreshProperties);

    _clientWatcher.setConnection(_bus);
    _clientWatcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&_clientWatcher, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& client) {
        _clientWatcher.removeWatchedService(client);
        _clients.remove(client);
        refreshProperties();
    });

    // Counters and the idle clock; nothing is asked of the modem here.
    _refreshTimer.setInterval(kPropertyRefreshMs);
    connect(&_refreshTimer, &QTimer::timeout, this, [this] {
        refreshProperties();
        checkIdle();
    });
    _idleSince.start();
}

ModemService::~ModemService() {
    NotificationCenter::defaultCenter().removeObserver(this);
    if (_connect)
        _connect->applicationWillTerminate(); // the pending traffic goes into the history
    _messages.reset();
    _guard.reset();
    _connect.reset();
    _profiles.reset();
    _traffic.reset();
    _signalRecorder.reset();
    _link.reset();
}

bool ModemService::publish(QString& error) {
    if (!_bus.isConnected()) {
        error = QStringLiteral("no session bus: ") + _bus.lastError().message();
        return false;
    }
    if (!_bus.registerObject(ServiceBus::kObjectPath, this,
                             QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals |
                                 QDBusConnection::ExportAllProperties)) {
        error = QStringLiteral("the object could not be put on the bus");
        return false;
    }
    if (!_bus.registerService(ServiceBus::kServiceName)) {
        error = ServiceBus::kServiceName + QStringLiteral(" is taken: ") + _bus.lastError().message();
        return false;
    }
    return true;
}

void ModemService::start(std::function<void()> onIdle) {
    _onIdle = std::move(onIdle);
    _link->start();
    _refreshTimer.start();
}

void ModemService::onModemReady() {
    AppConfig* config = _link->config();
    if (config == nullptr || _connectorStarted)
        return;
    // The connector, the profiles and the messages need the configuration the worker loaded.
    _connectorStarted = true;
    _traffic = std::make_unique<TrafficStatics>(*config);
    _signalRecorder = std::make_unique<SignalRecorder>(*_link);
    _profiles = std::make_unique<ProfileSettingsController>(*config);
    _connect = std::make_unique<ConnectController>(*_link, config, _traffic.get());
    // A dial-up service that needs an administrator is made when a client dials, not at start-up.
    _connect->setAskBeforePrivilegedStep(true);
    connect(_connect.get(), &ConnectController::viewStateChanged, this, &ModemService::refreshProperties);
    // The budget and roaming guard of every link, whoever dialled it.
    _guard = std::make_unique<BudgetGuard>(*_link, *_connect, *config);
    connect(_guard.get(), &BudgetGuard::notice, this, [this](BudgetStep, const QString& text) {
        emit Notification(QStringLiteral("BUDGET_NOTICE"), {{QStringLiteral("TEXT"), text}});
    });
    connect(_guard.get(), &BudgetGuard::dialRefused, this, [this](BudgetStep, const QString& text) {
        emit Notification(QStringLiteral("BUDGET_NOTICE"), {{QStringLiteral("TEXT"), text}});
    });
    _messages = std::make_unique<MessagesController>(*_link);
    _profiles->chooseProfilesForSIM(_link->network().strSpName);
    _connect->modemInit();
    // Every link shows, whoever dialled it; its traffic goes into the history here. What changes reaches
    // the clients as the answers they would have polled for.
    _connect->setupTimerToQueryConnectStatus();
    NotificationCenter::defaultCenter().addObserver(
        NOTIFY_TRAFFIC_STATISTICS, this, [this](const ::Notification& posted) {
            const QVariant sample = posted.userInfo.value(KEY_FOR_NOTIFY_TRAFFIC_STATISTICS);
            const int state = _connect->connectState();
            if (state == _broadcastState && sample == _broadcastSample)
                return;
            _broadcastState = state;
            _broadcastSample = sample;
            emit Notification(MESSAGE_CONNECT_STATUS, ServiceBus::toBus({{VALUE_OBJECT, state}}));
            emit Notification(MESSAGE_CONNECT_GET_STATISTICS, ServiceBus::toBus({{VALUE_OBJECT, sample}}));
            refreshProperties();
        });
}

void ModemService::prepareMessages() {
    // Messages taken out of the modem go to the computer-side inbox; the storage and validity chosen with
    // the tool hold again after every start. A step that fails leaves the modem's own defaults.
    if (!_messages)
        return;
    MessagesController& messages = *_messages;
    messages.initialise([this, &messages](const Outcome& initialised) {
        if (!initialised.ok())
            return;
        messages.identify([this, &messages](const Outcome& identified) {
            if (!identified.ok())
                return;
            messages.useComputerInbox([this, &messages](const Outcome&) {
                const std::unique_ptr<QSettings> settings = ServiceSettings::open();
                const int storage = settings->value(ServiceSettings::kStorageKey, SmsStorage::kModem).toInt();
                if (storage != SmsStorage::kModem)
                    messages.setPreferredStorage(storage, [](const Outcome&) {});
                const auto validity =
                    SmsPduText::ParseValidity(settings->value(ServiceSettings::kValidityKey).toString().toStdString());
                if (validity)
                    messages.setValidity(BLSmsValidPeriod{validity->weeks, validity->days, validity->hours},
                                         [](const Outcome&) {});
                // The worker reports new messages only once it has listed the storages; without this a
                // message arriving before any client lists would never be signalled.
                // Clients take the list as the table: a message that came in while it was read is in it and
                // is never reported on its own.
                messages.list([this](const Outcome& listed, const QList<BLSmsListItem>& items) {
                    if (listed.ok())
                        emit Notification(MESSAGE_SMS_GET_LIST,
                                          ServiceBus::toBus({{VALUE_OBJECT, QVariant::fromValue(items)}}));
                });
                CNSLOG(0, "dialtoned: messages ready");
            });
        });
    });
}

void ModemService::noteClient() {
    if (!calledFromDBus())
        return;
    const QString client = message().service();
    if (client.isEmpty() || _clients.contains(client))
        return;
    _clients.insert(client);
    _clientWatcher.addWatchedService(client);
    // A client that left before this line was read would never be removed.
    if (!_bus.interface()->isServiceRegistered(client)) {
        _clientWatcher.removeWatchedService(client);
        _clients.remove(client);
    }
    _idleSince.restart();
}

void ModemService::checkIdle() {
    const int link = _connect ? _connect->connectState() : ConnectController::kDisconnected;
    const bool busy = !_clients.isEmpty() || link == ConnectController::kConnecting ||
                      link == ConnectController::kConnected || link == ConnectController::kDisconnecting;
    if (busy || _idleExitMs <= 0) {
        _idleSince.restart();
        return;
    }
    if (_idleSince.elapsed() >= _idleExitMs) {
        CNSLOG(0, "dialtoned: no clients for %d s, ending", _idleExitMs / 1000);
        if (_onIdle)
            _onIdle();
    }
}

QVariantMap ModemService::Request(const QString& name, const QVariantMap& request) {
    noteClient();
    QVariantMap arguments;
    if (!ServiceBus::fromBus(request, arguments))
        return {{ERROR_CODE, WORKER_ERR_INVALID_ARGUMENT}};
    if (!calledFromDBus())
        return {{ERROR_CODE, WORKER_ERR_NO_TARGET}};
    setDelayedReply(true);
    const QDBusMessage call = message();
    const QString client = call.service();
    auto answer = [this, call, client, name, arguments](const QVariantMap& response) {
        QVariantMap reply = response;
        reply.remove(USER_INFO);
        _bus.send(call.createReply(QVariant(ServiceBus::toBus(reply))));
        // Everybody else learns what was done (a message sent, a link dialled).
        QVariantMap info = reply;
        QVariantMap userInfo{{ServiceBus::kClientKey, client}};
        if (arguments.contains(VALUE_OBJECT))
            userInfo.insert(VALUE_OBJECT, arguments.value(VALUE_OBJECT));
        info.insert(USER_INFO, userInfo);
        emit Notification(name, ServiceBus::toBus(info));
    };
    // The service keeps the modem up: a client's init is answered from its own.
    if (name == MESSAGE_INIT_WORK_THREAD) {
        _link->initNow(answer);
        return {};
    }
    // The worker's counters give rates since the previous sample (and zeros twice in one second): the
    // service's own poll takes them once a second, everybody else gets its latest sample. It is answered
    // behind a status read, so that answers keep the order of the requests.
    if (name == MESSAGE_CONNECT_GET_STATISTICS && _connect) {
        _link->request(
            MESSAGE_CONNECT_STATUS, {},
            [this, answer](const QVariantMap&) {
                answer({{ERROR_CODE, WORKER_OK}, {VALUE_OBJECT, QVariant::fromValue(_connect->latestStatistics())}});
            },
            this);
        return {};
    }
    _link->request(name, arguments.value(VALUE_OBJECT), answer, this);
    return {};
}

int ModemService::SendSms(const QString& number, const QString& text) {
    noteClient();
    if (!PhoneNumbers::Parse(number.toStdString(), {}).ok() || text.isEmpty()) {
        if (calledFromDBus())
            sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("not a phone number or no text"));
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    if (!_messages)
        return WORKER_ERR_NO_DATA_DEVICE;
    if (!calledFromDBus())
        return WORKER_ERR_NO_TARGET;
    setDelayedReply(true);
    const QDBusMessage call = message();
    _messages->send(number, text, [this, call](const Outcome& outcome) {
        _bus.send(call.createReply(QVariant(outcome.code)));
    });
    return 0;
}

int ModemService::Connect(const QString& profile) {
    noteClient();
    if (!_connect)
        return WORKER_ERR_NO_DATA_DEVICE;
    if (!_connect->connectorReady() && !_connect->waitingForPrivilegedStep())
        return WORKER_ERR_SERVICE_NOT_FOUND;
    const int state = _connect->connectState();
    if (state == ConnectController::kConnecting || state == ConnectController::kConnected)
        return WORKER_OK;
    int index = _connect->defaultIndex();
    if (!profile.isEmpty()) {
        index = -1;
        const QList<APNInfo>& offered = _connect->offeredProfiles();
        for (int i = 0; i < offered.size(); ++i) {
            if (offered[i].strAccount == profile) {
                index = i;
                break;
            }
        }
        if (index < 0)
            return WORKER_ERR_INVALID_ARGUMENT;
    }
    _connect->selectProfileIndex(index);
    if (_connect->waitingForPrivilegedStep())
        _connect->startPrivilegedStep(); // asks for the password, then dials
    else
        _connect->actionForButtonConnect();
    refreshProperties();
    // The budget and roaming guard refused the dial (its notice says why).
    if (!_connect->waitingForPrivilegedStep() && _connect->connectState() != ConnectController::kConnecting)
        return WORKER_ERR_GENERAL;
    return WORKER_OK;
}

int ModemService::Disconnect() {
    noteClient();
    if (!_connect)
        return WORKER_ERR_NO_DATA_DEVICE;
    const int state = _connect->connectState();
    if (state == ConnectController::kConnecting || state == ConnectController::kConnected) {
        _connect->processDisconnect();
        refreshProperties();
        return WORKER_OK;
    }
    // A link this service did not dial (a client's, or one from before a restart) is ended all the same.
    _link->request(MESSAGE_CONNECT_DISCONNECT);
    return WORKER_OK;
}

// ---- properties ----------------------------------------------------------------------------------------

QString ModemService::modemState() const {
    readByClient();
    switch (_link->state()) {
    case ModemLink::State::Absent:
        return QStringLiteral("absent");
    case ModemLink::State::Starting:
        return QStringLiteral("starting");
    case ModemLink::State::Ready:
        return QStringLiteral("ready");
    default:
        return QStringLiteral("locked");
    }
}

QString ModemService::simState() const {
    readByClient();
    switch (_link->state()) {
    case ModemLink::State::NeedPin:
        return QStringLiteral("pin");
    case ModemLink::State::NeedPuk:
        return QStringLiteral("puk");
    case ModemLink::State::NoSim:
        return QStringLiteral("absent");
    case ModemLink::State::Blocked:
        return QStringLiteral("blocked");
    case ModemLink::State::Ready:
        return QStringLiteral("ready");
    default:
        return QStringLiteral("unknown");
    }
}

int ModemService::pinAttempts() const {
    readByClient();
    return _link->pinAttempts();
}

int ModemService::pukAttempts() const {
    readByClient();
    return _link->pukAttempts();
}

QString ModemService::operatorName() const {
    readByClient();
    if (!_link->hasNetwork())
        return {};
    return QString::fromStdString(OperatorText(_link->network().strOperator, _link->network().strSpName));
}

int ModemService::signalLevel() const {
    readByClient();
    if (!_link->hasNetwork())
        return -1;
    const int level = _link->network().nRssi;
    return level >= 0 && level <= 5 ? level : -1;
}

int ModemService::signalDbm() const {
    readByClient();
    return _link->hasNetwork() ? _signalDbm : 0;
}

QString ModemService::bearer() const {
    readByClient();
    return _link->hasNetwork() ? QString::fromStdString(BearerText(_link->network().nBearer)) : QString();
}

bool ModemService::roaming() const {
    readByClient();
    return _link->hasNetwork() && _link->network().nRoamState == 1;
}

QString ModemService::connectionState() const {
    readByClient();
    if (!_connect)
        return QStringLiteral("disconnected");
    const int state = _connect->connectState();
    return QString::fromStdString(ConnectStatusText(state == ConnectController::kInvalid
                                                        ? ConnectController::kDisconnected
                                                        : state));
}

uint ModemService::connectionDuration() const {
    readByClient();
    return _connect ? _connect->latestStatistics().nDurationSeconds : 0;
}

qulonglong ModemService::bytesReceived() const {
    readByClient();
    return _connect ? _connect->latestStatistics().nReceivedBytes : 0;
}

qulonglong ModemService::bytesSent() const {
    readByClient();
    return _connect ? _connect->latestStatistics().nSentBytes : 0;
}

uint ModemService::receiveRate() const {
    readByClient();
    return _connect ? _connect->latestStatistics().nReceivedBPS : 0;
}

uint ModemService::sendRate() const {
    readByClient();
    return _connect ? _connect->latestStatistics().nSentBPS : 0;
}

void ModemService::readByClient() const {
    // A panel that reads a property every few seconds keeps the service, as a client would.
    if (!_snapshotting)
        _idleSince.restart();
}

QVariantMap ModemService::propertySnapshot() const {
    _snapshotting = true;
    QVariantMap snapshot;
    const QMetaObject* meta = metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        snapshot.insert(QString::fromLatin1(property.name()), property.read(this));
    }
    _snapshotting = false;
    return snapshot;
}

void ModemService::refreshProperties() {
    const QVariantMap now = propertySnapshot();
    QVariantMap changed;
    for (auto it = now.constBegin(); it != now.constEnd(); ++it) {
        if (_published.value(it.key()) != it.value())
            changed.insert(it.key(), it.value());
    }
    _published = now;
    if (changed.isEmpty())
        return;
    QDBusMessage signal =
        QDBusMessage::createSignal(ServiceBus::kObjectPath, kPropertiesInterface, QStringLiteral("PropertiesChanged"));
    signal << ServiceBus::kInterface << changed << QStringList();
    _bus.send(signal);
}
