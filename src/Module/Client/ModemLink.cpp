#include "ModemLink.h"

#include <QEventLoop>

#include <algorithm>
#include <optional>

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "BLRecords.h"
#include "HomeRegion.h"
#include "PinRecords.h"
#include "WorkNotification.h"
#include "WorkerTransport.h"

ModemLink::ModemLink(QObject* parent, std::unique_ptr<ModemTransport> transport, QObject* mainWindow)
    : QObject(parent), _transport(std::move(transport)) {
    if (!_transport)
        _transport = std::make_unique<WorkerTransport>(mainWindow);
    connect(_transport.get(), &ModemTransport::received, this, &ModemLink::onReceived);
    connect(_transport.get(), &ModemTransport::unplugged, this, &ModemLink::onUnplugged);
    for (const QString& report : {MESSAGE_RPT_RECEIVE_SMS, MESSAGE_RPT_RECEIVE_FILTER_SMS,
                                  MESSAGE_RPT_RECEIVE_USSD, MESSAGE_RPT_SMS_RELIST})
        listenForReport(report);
    _retryTimer.setInterval(kRetryIntervalMs);
    connect(&_retryTimer, &QTimer::timeout, this, [this] {
        if (_state == State::Absent)
            sendInit();
    });
    _networkTimer.setInterval(kNetworkPollMs);
    connect(&_networkTimer, &QTimer::timeout, this, &ModemLink::refreshNetwork);
}

ModemLink::~ModemLink() {
    _pending.clear();
    _transport.reset(); // the worker hangs up a running link and closes the port
}

void ModemLink::start() {
    if (_transport->isReady() || _follows)
        return;
    _follows = true;
    registerRecordMetaTypes();
    connect(_transport.get(), &ModemTransport::ready, this, &ModemLink::sendInit);
    _transport->start();
}

int ModemLink::open(int timeoutMs) {
    registerRecordMetaTypes();
    _transport->start();
    if (!waitUntil([this] { return _transport->isReady(); }, timeoutMs))
        return WORKER_ERR_GENERAL;
    const QVariantMap response = call(MESSAGE_INIT_WORK_THREAD, {}, timeoutMs);
    const int code = WorkNotification::GetErrorCode(response);
    setState(code == WORKER_OK ? State::Starting : State::Absent);
    return code;
}

AppConfig* ModemLink::config() const {
    return ApplicationShell::sharedShell().appConfig();
}

void ModemLink::setState(State state) {
    if (_state == state)
        return;
    _state = state;
    if (state == State::Absent && _follows)
        _retryTimer.start();
    else
        _retryTimer.stop();
    if (state == State::Ready && _follows) {
        _networkTimer.start();
    } else {
        _networkTimer.stop();
        _hasNetwork = false;
    }
    emit stateChanged(state);
}

void ModemLink::listenForReport(const QString& name) {
    if (_reports.contains(name))
        return;
    _reports.append(name);
    _transport->listen(name);
}

void ModemLink::request(const QString& name, const QVariant& argument, Reply reply, QObject* context) {
    if (!_transport->isReady()) {
        if (reply)
            reply({{ERROR_CODE, WORKER_ERR_NO_TARGET}});
        return;
    }
    if (_state == State::Absent && name != MESSAGE_INIT_WORK_THREAD) {
        // The worker drops every other request while the modem is away.
        if (reply)
            reply({{ERROR_CODE, WORKER_ERR_NO_DATA_DEVICE}});
        return;
    }
    const qint64 ticket = _nextTicket++;
    QVariantMap userInfo{{kTicketKey, ticket}};
    if (argument.isValid())
        WorkNotification::SetValueObject(userInfo, argument);
    _pending[ticket] = Pending{name, std::move(reply), context, context != nullptr};
    const int code = _transport->send(name, userInfo);
    if (code != WORKER_OK) {
        const auto it = _pending.find(ticket);
        if (it != _pending.end()) {
            Pending pending = std::move(it->second);
            _pending.erase(it);
            if (pending.reply && (!pending.hasContext || pending.context))
                pending.reply({{ERROR_CODE, code}});
        }
    }
}

void ModemLink::listenForAllReports() {
    _allReports = true;
    _transport->listen(QString());
}

void ModemLink::initNow(Reply reply) {
    if (_state != State::Absent && !_initInFlight) {
        if (reply)
            reply({{ERROR_CODE, WORKER_OK}});
        return;
    }
    if (reply)
        _initReplies.push_back(std::move(reply));
    // A transport still starting sends the init itself once it is ready (see start()).
    if (_transport->isReady())
        sendInit();
}

QVariantMap ModemLink::call(const QString& name, const QVariant& argument, int timeoutMs) {
    // Shared with the reply, which may come after the wait has given up.
    auto answer = std::make_shared<std::optional<QVariantMap>>();
    request(name, argument, [answer](const QVariantMap& response) { *answer = response; });
    if (!waitUntil([&answer] { return answer->has_value(); }, timeoutMs))
        return {{ERROR_CODE, WORKER_ERR_TIME_OUT}};
    return **answer;
}

bool ModemLink::waitUntil(const std::function<bool()>& done, int timeoutMs) {
    QEventLoop loop;
    bool late = false;
    // Answers wake the loop (see wakeWaiters); a slow poll catches what changes on a timer of its own.
    QTimer poll;
    poll.setInterval(kWaitPollMs);
    connect(&poll, &QTimer::timeout, &loop, &QEventLoop::quit);
    poll.start();
    QTimer limit;
    limit.setSingleShot(true);
    connect(&limit, &QTimer::timeout, &loop, [&] {
        late = true;
        loop.quit();
    });
    if (timeoutMs != kWaitForever)
        limit.start(timeoutMs);
    _waiters.push_back(&loop);
    while (!done() && !late)
        loop.exec();
    _waiters.erase(std::find(_waiters.begin(), _waiters.end(), &loop));
    return done();
}

void ModemLink::wakeWaiters() {
    for (QEventLoop* loop : _waiters)
        loop->quit();
}

void ModemLink::onReceived(const QString& name, const QVariantMap& data) {
    const QVariantMap userInfo = data.value(USER_INFO).toMap();
    if (!userInfo.contains(kTicketKey)) {
        if (_allReports || _reports.contains(name))
            emit reportReceived(name, data);
        return; // else another client's answer to a request of the same name
    }
    const auto it = _pending.find(userInfo.value(kTicketKey).toLongLong());
    if (it == _pending.end() || it->second.name != name)
        return;
    Pending pending = std::move(it->second);
    _pending.erase(it);
    if (pending.reply && (!pending.hasContext || pending.context))
        pending.reply(data);
    wakeWaiters();
}

void ModemLink::failPending(int code) {
    std::map<qint64, Pending> failed;
    failed.swap(_pending);
    for (auto& [ticket, pending] : failed) {
        if (pending.reply && (!pending.hasContext || pending.context))
            pending.reply({{ERROR_CODE, code}});
    }
    wakeWaiters();
}

void ModemLink::sendInit() {
    if (_initInFlight)
        return;
    _initInFlight = true;
    request(MESSAGE_INIT_WORK_THREAD, {}, [this](const QVariantMap& response) {
        _initInFlight = false;
        onInitAnswer(response);
        std::vector<Reply> waiting;
        waiting.swap(_initReplies);
        for (const Reply& reply : waiting)
            reply(response);
    });
}

void ModemLink::onInitAnswer(const QVariantMap& response) {
    if (WorkNotification::GetErrorCode(response) != WORKER_OK) {
        setState(State::Absent);
        _retryTimer.start();
        return;
    }
    setState(State::Starting);
    _simCheckFailures = 0;
    checkSim();
}

void ModemLink::checkSim() {
    request(MESSAGE_PIN_CHECK_STATE, {}, [this](const QVariantMap& response) {
        if (_state == State::Absent)
            return;
        const int code = WorkNotification::GetErrorCode(response);
        if (code == WORKER_ERR_NO_DATA_DEVICE)
            return;
        const auto sim = WorkNotification::GetValueObject(response).value<BLPinCheckState>();
        _pinAttempts = sim.nPinCnt;
        _pukAttempts = sim.nPukCnt;
        emit simChecked();
        if (code != WORKER_OK) {
            // A SIM still starting up answers busy for a moment; only a lasting failure means no SIM.
            if (++_simCheckFailures < kSimCheckTries) {
                QTimer::singleShot(kSimCheckRetryMs, this, [this] {
                    if (_state == State::Starting)
                        checkSim();
                });
            } else {
                setState(State::NoSim);
            }
            return;
        }
        _simCheckFailures = 0;
        switch (sim.nState) {
        case SimState::kReady:
            learnModem();
            break;
        case SimState::kPin:
            setState(State::NeedPin);
            break;
        case SimState::kPuk:
            setState(State::NeedPuk);
            break;
        case SimState::kBlocked:
            setState(State::Blocked);
            break;
        case SimState::kAbsent:
            setState(State::NoSim);
            break;
        default: // personalisation locks: nothing the app can unlock
            setState(State::Blocked);
            break;
        }
    });
}

QString ModemLink::homeRegion() const {
    return HomeRegion::fromImsiOrNetwork(_equipment.strImsi, _hasNetwork ? _network.strOperator : QString());
}

void ModemLink::learnModem() {
    request(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO, {}, [this](const QVariantMap& response) {
        if (_state == State::Absent)
            return;
        _equipment = WorkNotification::GetValueObject(response).value<BLEquipmentInfo>();
        if (AppConfig* configuration = config()) {
            AppConfig::DeviceInfo& device = configuration->deviceInfo();
            device.blOK = WorkNotification::GetErrorCode(response) == WORKER_OK;
            device.strManufacturer = _equipment.strManufacturer;
            device.strModel = _equipment.strModel;
            device.strRevision = _equipment.strRevision;
            device.strSerialNumber = _equipment.strSerialNumber;
            device.strImsi = _equipment.strImsi;
        }
        request(MESSAGE_NETWORK_GET_INFO, {}, [this](const QVariantMap& answer) {
            if (_state == State::Absent)
                return;
            if (WorkNotification::GetErrorCode(answer) == WORKER_OK) {
                _network = WorkNotification::GetValueObject(answer).value<BLNetworkInfo>();
                _hasNetwork = true;
            }
            setState(State::Ready);
            if (_hasNetwork)
                emit networkChanged(_network);
        });
    });
}

void ModemLink::refreshNetwork() {
    if (_state != State::Ready)
        return;
    request(MESSAGE_NETWORK_GET_INFO, {}, [this](const QVariantMap& response) {
        if (_state != State::Ready || WorkNotification::GetErrorCode(response) != WORKER_OK)
            return;
        _network = WorkNotification::GetValueObject(response).value<BLNetworkInfo>();
        _hasNetwork = true;
        emit networkChanged(_network);
    });
}

void ModemLink::verifyPin(const QString& pin, Reply reply) {
    request(MESSAGE_PIN_VERIFY, pin, [this, reply](const QVariantMap& response) {
        if (reply)
            reply(response);
        checkSim();
    });
}

void ModemLink::verifyPuk(const QString& puk, const QString& newPin, Reply reply) {
    BLPINVerifyPukInfo info;
    info.strPUK = puk;
    info.strNewPin = newPin;
    request(MESSAGE_PIN_VERIFY_PUK, QVariant::fromValue(info), [this, reply](const QVariantMap& response) {
        if (reply)
            reply(response);
        checkSim();
    });
}

void ModemLink::onUnplugged() {
    _initInFlight = false;
    setState(State::Absent);
    // The worker drops requests while the modem is away; their callbacks would wait for ever.
    failPending(WORKER_ERR_NO_DATA_DEVICE);
}

QString ModemLink::stateText(State state) {
    switch (state) {
    case State::Absent:
        return tr("No modem");
    case State::Starting:
        return tr("Starting the modem…");
    case State::NeedPin:
        return tr("PIN required");
    case State::NeedPuk:
        return tr("PUK required");
    case State::NoSim:
        return tr("No SIM card");
    case State::Blocked:
        return tr("SIM card blocked");
    case State::Ready:
        return tr("Ready");
    }
    return {};
}
