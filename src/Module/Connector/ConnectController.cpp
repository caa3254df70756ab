#include "ConnectController.h"

#include "AppConfig.h"
#include "CNSLog.h"
#include "ChildProcess.h"
#include "ConvertUtilty.h"
#include "ModemLink.h"
#include "ServiceTool.h"
#include "WorkNotification.h"

#include <QCoreApplication>

#include <cstdio>
#include <utility>

namespace {

// Process-wide: retries after a service creation, the last state number announced (-1: none yet), and
// the day the pending traffic belongs to.
int g_serviceRetryCount = 0;
int g_lastAnnouncedState = -1;
QDateTime g_currentDay;

} // namespace

ConnectController::ConnectController(ModemLink& link, AppConfig* config, TrafficStatics* traffic,
                                     QObject* parent)
    : QObject(parent), _link(link), _config(config),
      // The service that owns the modem keeps the history of every link, whoever dialled it.
      _traffic(link.transport().ownerElsewhere() ? nullptr : traffic) {
    _statusTimer.setSingleShot(true);
    _statusTimer.setInterval(kStatusIntervalMs);
    connect(&_statusTimer, &QTimer::timeout, this, &ConnectController::actionTimerStatusChecker);
    _echo = [](const QString& line) {
        std::printf("%s\n", line.toLocal8Bit().constData());
        std::fflush(stdout);
    };
    if (_traffic != nullptr) {
        _runningTotals = _traffic->getTotalStatics();
    }

    _link.listenForReport(MESSAGE_CONNECT_STATUS);
    // The modem service polls the link and passes on what changes: a client of it follows that.
    if (link.transport().ownerElsewhere())
        _link.listenForReport(MESSAGE_CONNECT_GET_STATISTICS);
    connect(&_link, &ModemLink::reportReceived, this, [this](const QString& name, const QVariantMap& data) {
        if (name == MESSAGE_CONNECT_STATUS)
            handleConnectStatus(data);
        else if (name == MESSAGE_CONNECT_GET_STATISTICS)
            handleConnectStatistics(data);
    });
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.addObserver(CONNECTION_UPDATE_PROFILE, this,
                       [this](const Notification& n) { handleUpdateConnectionProfile(n); });
    center.addObserver(NETWORK_UPDATE, this,
                       [this](const Notification& n) { handleNetworkUpdateNotification(n); });
}

ConnectController::~ConnectController() {
    NotificationCenter::defaultCenter().removeObserver(this);
}

void ConnectController::modemInit() {
    _link.request(
        MESSAGE_MODEM_INIT, {}, [this](const QVariantMap& response) { handleNotifyModemInit(response); },
        this);
}

void ConnectController::handleNotifyModemInit(const QVariantMap& response) {
    const int code = WorkNotification::GetErrorCode(response);
    const QString deviceName = WorkNotification::GetValueObject(response).toString();
    switch (code) {
    case WORKER_OK:
        _connectorReady = true;
        _pendingServiceDevice.clear();
        refreshConnectButton();
        NotificationCenter::defaultCenter().post(CONNECTOR_READY, this);
        if (_dialIndexWhenReady >= 0) {
            _selectedIndex = std::exchange(_dialIndexWhenReady, -1);
            actionForButtonConnect();
        }
        break;
    case WORKER_ERR_SERVICE_NOT_FOUND:
        if (!_serviceCreated && _askBeforePrivilege && ServiceTool::needsPrivilege()) {
            // The profiles are offered meanwhile; the connect button starts the privileged step.
            const bool first = _pendingServiceDevice.isEmpty();
            _pendingServiceDevice = deviceName;
            if (first) {
                NotificationCenter::defaultCenter().post(CONNECTOR_READY, this);
            }
            refreshConnectButton();
            return;
        }
        if (!_serviceCreated) {
            if (createModemService(deviceName) != 0) {
                CNSLOG(2, "the dial-up service for %s could not be created", qPrintable(deviceName));
                emit serviceCreationFailed();
                QCoreApplication::exit(1);
                return;
            }
            _serviceCreated = true;
            CNSLOG(0, "Modem Service create success!");
            modemInit();
            return;
        }
        if (++g_serviceRetryCount > kMaxServiceRetries) {
            return;
        }
        CNSLOG(0, "Service not find  try again!!");
        modemInit();
        break;
    case WORKER_ERR_NO_DEV_NAME:
        CNSLOG(2, "the modem has no dial port name");
        break;
    case WORKER_ERR_NO_MODE_DEV:
        CNSLOG(2, "WORKER_ERR_NO_MODE_DEV");
        modemInit();
        break;
    default:
        break;
    }
}

void ConnectController::readStatus(std::function<void(Outcome, int)> done) {
    _link.request(
        MESSAGE_MODEM_INIT, {},
        [this, done](const QVariantMap&) {
            _link.request(
                MESSAGE_CONNECT_STATUS, {},
                [done](const QVariantMap& response) {
                    done(Outcome::of(response), WorkNotification::GetValueObject(response).toInt());
                },
                this);
        },
        this);
}

int ConnectController::createModemService(const QString& modemDeviceName) {
    const ServiceTool::Outcome outcome = ServiceTool::create(modemDeviceName, _echo);
    _serviceFailure = outcome.status;
    return outcome.status;
}

void ConnectController::startPrivilegedStep() {
    if (_pendingServiceDevice.isEmpty()) {
        return;
    }
    setBusy(true);
    emit viewStateChanged();
    const int status = createModemService(_pendingServiceDevice);
    setBusy(false);
    if (status != 0) {
        CNSLOG(2, "the dial-up service for %s was not created (status %d)", qPrintable(_pendingServiceDevice),
               status);
        emit viewStateChanged();
        emit privilegedStepFailed(status);
        return;
    }
    _serviceCreated = true;
    _dialIndexWhenReady = _selectedIndex;
    _buttonEnabled = false;
    emit viewStateChanged();
    modemInit();
}

void ConnectController::handleUpdateConnectionProfile(const Notification& notification) {
    if ((!_connectorReady && _pendingServiceDevice.isEmpty()) ||
        (_connectState != kInvalid && _connectState != kDisconnected)) {
        return;
    }
    _offeredProfiles = notification.userInfo.value(KEY_FOR_UPDATE_PROFILE).value<QList<APNInfo>>();
    // The default points at the first user profile when the user chose one of their own.
    const bool userDefault = _config != nullptr && _config->isSetDefaultUserApn() && !_config->isFromIMSI();
    _defaultIndex = userDefault ? static_cast<int>(_config->getUserIMSIApnList().size()) : 0;
    _selectedIndex = _defaultIndex;
    _choiceEnabled = true;
    emit viewStateChanged();
}

void ConnectController::selectProfileIndex(int index) {
    _selectedIndex = index;
    emit viewStateChanged();
}

void ConnectController::actionForButtonConnect() {
    switch (_connectState) {
    case kConnecting:
    case kConnected:
        _selectedIndex = _defaultIndex;
        processDisconnect();
        break;
    case kInvalid:
    case kDisconnected:
        if (!_connectorReady && !_pendingServiceDevice.isEmpty()) {
            emit privilegedStepNeeded();
            return;
        }
        _choiceEnabled = false;
        if (_selectedIndex < 0 || _selectedIndex >= _offeredProfiles.size()) {
            _choiceEnabled = true;
            emit viewStateChanged();
            emit warningRequested(QStringLiteral("IDS_COMMON_WARNING"), QStringLiteral("IDS_DIALUP_CANTFIND"),
                                  QStringLiteral("IDS_COMMON_OK"));
            return;
        }
        dialByAPNInfo(_offeredProfiles[_selectedIndex]);
        break;
    default:
        break;
    }
}

void ConnectController::dialByAPNInfo(const APNInfo& profile) {
    if (_dialGate && !_dialGate()) {
        refreshConnectButton();
        return;
    }
    _buttonEnabled = false;
    sendModuleNotificationConnectStateChange(kAnnounceConnecting);

    BLConnectDialinfo dialInfo;
    if (profile.strDialNum.isEmpty()) {
        dialInfo.strDialNumber = QStringLiteral("*99#");
    }
    // The profile's own number wins, also when it is empty: kept in this order on purpose.
    dialInfo.strDialNumber = profile.strDialNum;
    dialInfo.strAccountName = profile.strUserName;
    dialInfo.strPassword = profile.strPassword;
    dialInfo.strAPN = profile.strApn;
    dialInfo.strDNS1 = profile.strDNS1;
    dialInfo.strDNS2 = profile.strDNS2;
    dialInfo.authType = profile.nAuthType;

    _lastDialed = profile;
    // How the dial went shows in the status poll.
    _link.request(MESSAGE_CONNECT_DIALUP, QVariant::fromValue(dialInfo));

    _buttonTitleKey = QStringLiteral("IDS_DISCONNECT");
    _connectState = kConnecting;
    setupTimerToQueryConnectStatus();
    emit viewStateChanged();
}

void ConnectController::processDisconnect() {
    _buttonEnabled = false;
    _connectState = kDisconnecting;
    sendModuleNotificationConnectStateChange(kAnnounceDisconnecting);
    _link.request(MESSAGE_CONNECT_DISCONNECT);
    emit viewStateChanged();
}

void ConnectController::disconnectSheetDidEnd(int returnCode) {
    if (returnCode == 1) {
        processDisconnect();
    }
}

void ConnectController::setupTimerToQueryConnectStatus() {
    if (_link.transport().ownerElsewhere())
        return; // the service's reports come instead
    _statusTimer.start();
}

void ConnectController::actionTimerStatusChecker() {
    _link.request(
        MESSAGE_CONNECT_STATUS, {},
        [this](const QVariantMap& response) {
            // Without a modem nothing answers the poll: it rests until the next dial or the unplug report.
            const int code = WorkNotification::GetErrorCode(response);
            if (code != WORKER_ERR_NO_DATA_DEVICE && code != WORKER_ERR_NO_TARGET)
                handleConnectStatus(response);
        },
        this);
    _link.request(
        MESSAGE_CONNECT_GET_STATISTICS, {},
        [this](const QVariantMap& response) { handleConnectStatistics(response); }, this);
}

void ConnectController::logConnectStatus(int status) const {
    switch (status) {
    case kInvalid:
        CNSLOG(0, "CONNECT: NetworkConnectionInvalid!!");
        break;
    case kDisconnected:
        CNSLOG(0, "CONNECT: NetworkConnectionDisconnected!!");
        break;
    case kConnecting:
        CNSLOG(0, "CONNECT: NetworkConnectionConnecting!!");
        break;
    case kConnected:
        CNSLOG(0, "CONNECT: NetworkConnectionConnected!!");
        break;
    case kDisconnecting:
        CNSLOG(0, "CONNECT: NetworkConnectionDisconnecting!!");
        break;
    default:
        CNSLOG(0, "Unkown Connect status: %d!!", status);
        break;
    }
}

void ConnectController::handleConnectStatus(const QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(response);
    // The worker's unplug report carries no value: the link is gone with the stick.
    const int status = value.isValid() ? value.toInt() : kDisconnected;
    logConnectStatus(status);
    _connectState = status;
    switch (status) {
    case kInvalid:
        refreshConnectButton();
        break;
    case kDisconnected:
        sendModuleNotificationConnectStateChange(kAnnounceDisconnected);
        break;
    case kConnecting:
        sendModuleNotificationConnectStateChange(kAnnounceConnecting);
        break;
    case kConnected:
        sendModuleNotificationConnectStateChange(kAnnounceConnected);
        break;
    case kDisconnecting:
        sendModuleNotificationConnectStateChange(kAnnounceDisconnecting);
        break;
    default:
        break;
    }
    refreshConnectButton();
    setupTimerToQueryConnectStatus();
}

void ConnectController::handleConnectStatistics(const QVariantMap& response) {
    if (WorkNotification::GetErrorCode(response) != WORKER_OK) {
        return;
    }
    const BLConnectStatistics sample =
        WorkNotification::GetValueObject(response).value<BLConnectStatistics>();
    NotificationCenter::defaultCenter().post(
        NOTIFY_TRAFFIC_STATISTICS, this,
        {{KEY_FOR_NOTIFY_TRAFFIC_STATISTICS, QVariant::fromValue(sample)},
         {KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_UPDATA_RATE,
          ConvertUtilty::byte2String(sample.nSentBPS) + QStringLiteral("B") + QStringLiteral("/S")},
         {KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_DOWNDATA_RATE,
          ConvertUtilty::byte2String(sample.nReceivedBPS) + QStringLiteral("B") + QStringLiteral("/S")}});
    // A sample without a link (the worker counts nothing then) would wipe the session's last counts.
    if (sample.nDurationSeconds == 0) {
        return;
    }
    _latestSample = sample;
    // The sample's counts are the session's running totals: set, not added. A link that runs past
    // midnight thus brings its earlier traffic to the new day too; the day history has always counted so.
    if (_roaming) {
        _pendingDay.roamingSendBytes = sample.nSentBytes;
        _pendingDay.roamingReceiveBytes = sample.nReceivedBytes;
    } else {
        _pendingDay.noRoamingSendBytes = sample.nSentBytes;
        _pendingDay.noRoamingReceiveBytes = sample.nReceivedBytes;
    }
    _pendingDay.connectTimeSeconds = sample.nDurationSeconds;
    const QDateTime now = QDateTime::currentDateTime();
    if (!g_currentDay.isValid()) {
        g_currentDay = now;
    } else if (TrafficStatics::dayTextOfDate(now) != TrafficStatics::dayTextOfDate(g_currentDay)) {
        saveTrafficStaticsData();
        g_currentDay = now;
    }
}

void ConnectController::sendModuleNotificationConnectStateChange(int state) {
    if (state == g_lastAnnouncedState) {
        return;
    }
    g_lastAnnouncedState = state;
    switch (state) {
    case kAnnounceConnecting:
    case kAnnounceDisconnecting:
        setBusy(true);
        break;
    case kAnnounceConnected:
        setBusy(false);
        _buttonTitleKey = QStringLiteral("IDS_DISCONNECT");
        NotificationCenter::defaultCenter().post(SELECTED_PROFILE_INDEX, this,
                                                 {{KEY_FOR_PROFILE_INDEX, _selectedIndex}});
        break;
    case kAnnounceDisconnected:
        setBusy(false);
        _buttonTitleKey = QStringLiteral("IDS_CONNECT");
        saveTrafficStaticsData();
        break;
    default:
        break;
    }
    NotificationCenter::defaultCenter().post(CONNECT_STATE, this, {{KEY_VALUE_OBJECT, state}});
    emit viewStateChanged();
}

void ConnectController::handleNetworkUpdateNotification(const Notification& notification) {
    if (notification.userInfo.isEmpty()) {
        CNSLOG(2, "network update without information");
        return;
    }
    _roaming = notification.userInfo.value(KEY_ROAMSTATE).toInt() == 1;
    bool refresh = false;
    if (notification.userInfo.contains(KEY_GPRSSTATE)) {
        const int gprsState = notification.userInfo.value(KEY_GPRSSTATE).toInt();
        refresh = gprsState != _lastGprsState;
        _lastGprsState = gprsState;
    }
    if (notification.userInfo.contains(KEY_OPERATOR)) {
        const QString operatorName = notification.userInfo.value(KEY_OPERATOR).toString();
        refresh = refresh || operatorName != _lastOperator;
        _lastOperator = operatorName;
    }
    if (refresh) {
        refreshConnectButton();
    }
}

void ConnectController::saveTrafficStaticsData() {
    if (_traffic == nullptr) {
        return;
    }
    // The store's totals, not the ones read at start: the user may have reset them since.
    _runningTotals = _traffic->getTotalStatics();
    _runningTotals.noRoamingSendBytes += _latestSample.nSentBytes;
    _runningTotals.noRoamingReceiveBytes += _latestSample.nReceivedBytes;
    _runningTotals.connectTimeSeconds += _latestSample.nDurationSeconds;
    // Added once: a later save (on quit, say) must not count the same session again.
    _latestSample = BLConnectStatistics();
    _traffic->saveStaticsRecord(_runningTotals);
    _traffic->updateDateStatisticsWithItem(
        _pendingDay, g_currentDay.isValid() ? g_currentDay : QDateTime::currentDateTime());
    _pendingDay.noRoamingSendBytes = 0;
    _pendingDay.noRoamingReceiveBytes = 0;
    _pendingDay.roamingSendBytes = 0;
    _pendingDay.roamingReceiveBytes = 0;
    _pendingDay.connectTimeSeconds = 0;
}

void ConnectController::applicationWillTerminate() {
    saveTrafficStaticsData();
}

void ConnectController::refreshConnectButton() {
    const bool linkUp = _connectState == kConnecting || _connectState == kConnected;
    _buttonTitleKey = linkUp ? QStringLiteral("IDS_DISCONNECT") : QStringLiteral("IDS_CONNECT");
    // While the service waits for the privileged step, the button starts it.
    const bool usable = _connectorReady || waitingForPrivilegedStep();
    _buttonEnabled = usable && _connectState != kDisconnecting;
    _choiceEnabled = usable && !linkUp && _connectState != kDisconnecting;
    emit viewStateChanged();
}

void ConnectController::setBusy(bool busy) {
    _busy = busy;
}

int ConnectController::serviceRetryCount() {
    return g_serviceRetryCount;
}

int ConnectController::lastAnnouncedState() {
    return g_lastAnnouncedState;
}

void ConnectController::resetProcessState() {
    g_serviceRetryCount = 0;
    g_lastAnnouncedState = -1;
    g_currentDay = QDateTime();
}

void ConnectController::setCurrentDay(const QDateTime& day) {
    g_currentDay = day;
}
