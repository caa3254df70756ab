#include "WorkThread.h"

#include "AtSublayerInterface.h"
#include "BusinessOperator.h"
#include "CNSLog.h"
#include "ComOperation.h"
#include "DeviceUtility.h"
#include "ApplicationShell.h"
#include "ModemErrorCause.h"
#include "NetworkOperator.h"
#include "SleepWatcher.h"
#include "USBDetector.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <unistd.h>

namespace {

std::atomic<WorkThread*> g_workThread{nullptr};

// The modem's last "+CME ERROR"/"+CMS ERROR" cause during the request the worker is running; requests run
// one at a time on the worker's thread.
thread_local int t_modemErrorCause = 0;

constexpr int kSwitchTries = 21;
constexpr useconds_t kSwitchRetrySleep = 500;
constexpr int kDetectIntervalMs = 1000;
// New-message lines waiting (seconds behind the modem), some of them not yet listed, that make the front
// ends list the storage again, and the least number of ticks between two such re-lists during a flood.
constexpr uint64_t kRelistBacklog = 5;
constexpr int kRelistSpacingTicks = 5;

// How the argument of a request reaches its business method.
using BusinessCall = int (*)(BusinessOperator&, const QVariantMap& in, QVariantMap& out);

struct RequestEntry {
    const QString* name;
    BusinessCall call; // null: the worker's own initWrokThread
};

#define IN_CALL(method) [](BusinessOperator& b, const QVariantMap& in, QVariantMap&) { return b.method(in); }
#define OUT_CALL(method)                                                                                     \
    [](BusinessOperator& b, const QVariantMap&, QVariantMap& out) { return b.method(out); }
#define INOUT_CALL(method)                                                                                   \
    [](BusinessOperator& b, const QVariantMap& in, QVariantMap& out) { return b.method(in, out); }
#define NO_ARG_CALL(method) [](BusinessOperator& b, const QVariantMap&, QVariantMap&) { return b.method(); }

// Compared in this order, the first match wins; the second "MESSAGE_NETWORK_GET_LIST" is never reached.
const RequestEntry kRequestTable[] = {
    {&MESSAGE_INIT_WORK_THREAD, nullptr},
    {&MESSAGE_CONNECT_DIALUP, IN_CALL(Dialup)},
    {&MESSAGE_CONNECT_DISCONNECT, NO_ARG_CALL(Disconnect)},
    {&MESSAGE_CONNECT_PPP_STATUS, OUT_CALL(GetPPPStatus)},
    {&MESSAGE_CONNECT_GET_STATISTICS, OUT_CALL(GetStatistics)},
    {&MESSAGE_CONNECT_STATUS, OUT_CALL(GetConnectStatus)},
    {&MESSAGE_MODEM_INIT, OUT_CALL(ModemInit)},
    {&MESSAGE_NETWORK_GET_LIST, OUT_CALL(NetworkGetList)},
    {&MESSAGE_PB_INIT_LIST, OUT_CALL(PBInitList)},
    {&MESSAGE_PB_GET_STORAGE_INFO, OUT_CALL(PBGetStorageInfo)},
    {&MESSAGE_PB_GET_CONSTRAINT, OUT_CALL(PBGetConstraint)},
    {&MESSAGE_SMS_SEND, IN_CALL(SMSSend)},
    {&MESSAGE_SMS_INIT, NO_ARG_CALL(SMSInit)},
    {&MESSAGE_SYSTEM_GET_EQUIPMENT_INFO, OUT_CALL(GetEquipmentInfo)},
    {&MESSAGE_SYSTEM_GET_DIAG_INFO, OUT_CALL(GetDiagInfo)},
    {&MESSAGE_NETWORK_SET, IN_CALL(NetworkSet)},
    {&MESSAGE_NETWORK_INIT, NO_ARG_CALL(NetworkInit)},
    {&NETWORK_GET_BAND, OUT_CALL(NetworkGetBand)},
    {&NETWORK_GET_MODE, OUT_CALL(NetworkGetMode)},
    {&MESSAGE_NETWORK_GET_INFO, OUT_CALL(NetworkGetInfo)},
    {&MESSAGE_NETWORK_GET_SIGNAL_DBM, OUT_CALL(NetworkGetSignalDbm)},
    {&MESSAGE_NETWORK_GET_SIGNAL, OUT_CALL(NetworkGetSignal)},
    {&MESSAGE_NETWORK_GET_LIST, OUT_CALL(NetworkGetList)},
    {&NETWORK_SET_BAND, IN_CALL(NetworkSetBand)},
    {&NETWORK_SET_MODE, IN_CALL(NetworkSetMode)},
    {&NETWORK_GET_REG_STATE, OUT_CALL(NetworkGetRegState)},
    {&MESSAGE_PB_ADD_ITEM, INOUT_CALL(PBAddItem)},
    {&MESSAGE_PB_DELETE_ITEM, IN_CALL(PBDeleteItem)},
    {&MESSAGE_PB_UPDATE_ITEM, IN_CALL(PBUpdateItem)},
    {&MESSAGE_PIN_CHANGE, INOUT_CALL(PINChange)},
    {&MESSAGE_PIN_CHECK_STATE, OUT_CALL(PINCheckState)},
    {&MESSAGE_PIN_ENABLE, IN_CALL(PINEnable)},
    {&MESSAGE_PIN_GET_INFO, INOUT_CALL(PINGetInfo)},
    {&MESSAGE_PIN_GET_STATE, OUT_CALL(PINGetState)},
    {&MESSAGE_PIN_VERIFY, IN_CALL(PINVerify)},
    {&MESSAGE_PIN_VERIFY_PUK, IN_CALL(PINVerifyPuk)},
    {&MESSAGE_SMS_DELETE, IN_CALL(SMSDelete)},
    {&MESSAGE_SMS_GET_LIST, OUT_CALL(SMSGetList)},
    {&MESSAGE_SMS_GET_PREFERRED_STORAGE, OUT_CALL(SMSGetPreferredStorage)},
    {&MESSAGE_SMS_SET_PREFERRED_STORAGE, IN_CALL(SMSSetPreferredStorage)},
    {&MESSAGE_SMS_GET_SC, OUT_CALL(SMSGetServiceCentre)},
    {&MESSAGE_SMS_SET_SC, IN_CALL(SMSSetServiceCentre)},
    {&MESSAGE_SMS_GET_STORAGE_STATE, OUT_CALL(SMSGetStorageState)},
    {&MESSAGE_SMS_SET_VALID_PERIOD, IN_CALL(SMSSetValidPeriod)},
    {&MESSAGE_CONFIG_FILTER_SMS, IN_CALL(SMSConfigFilterSMS)},
    {&MESSAGE_SMS_SET_STATUS_REPORT, IN_CALL(SMSSetStatusReportFlag)},
    {&MESSAGE_USSD_CHECKSTATE, OUT_CALL(USSDCheckState)},
    {&MESSAGE_USSD_SETSTATE, IN_CALL(USSDSetState)},
    {&MESSAGE_USSD_SENDCMD, IN_CALL(USSDSendCmd)},
    {&MESSAGE_STK_GET_MENU, OUT_CALL(SatGetMenu)},
    {&MESSAGE_STK_SELECT_ITEM, INOUT_CALL(SatSelectItem)},
    {&MESSAGE_STK_POLL, OUT_CALL(SatPoll)},
    {&MESSAGE_CALL_DIAL, IN_CALL(CallDial)},
    {&MESSAGE_CALL_ANSWER, NO_ARG_CALL(CallAnswer)},
    {&MESSAGE_CALL_HANGUP, NO_ARG_CALL(CallHangUp)},
    {&MESSAGE_CALL_SEND_DTMF, IN_CALL(CallSendDTMF)},
    {&MESSAGE_CALL_GET_LIST, OUT_CALL(CallGetList)},
    {&MESSAGE_GPS_INIT, NO_ARG_CALL(GPSInit)},
    {&MESSAGE_GPS_UNINIT, NO_ARG_CALL(GPSUninit)},
    {&MESSAGE_SMS_USE_PC_INBOX, IN_CALL(SMSUsePCInbox)},
};

#undef IN_CALL
#undef OUT_CALL
#undef INOUT_CALL
#undef NO_ARG_CALL

} // namespace

// Polls the AT port's entry in the device folder from a thread of its own. When the entry goes (the
// device's links vanish when it is pulled) it runs the action once and stops. udev tells the detector
// the same on a real bus; this also covers ports without a USB device behind them.
class PortWatcher {
public:
    PortWatcher(std::string path, std::function<void()> gone)
        : _path(std::move(path)), _gone(std::move(gone)), _thread([this] { run(); }) {}
    ~PortWatcher() {
        {
            std::lock_guard<std::mutex> lock(_lock);
            _stop = true;
        }
        _wake.notify_all();
        _thread.join();
    }

private:
    void run() {
        std::unique_lock<std::mutex> lock(_lock);
        while (!_wake.wait_for(lock, std::chrono::milliseconds(200), [this] { return _stop; })) {
            if (access(_path.c_str(), F_OK) != 0) {
                lock.unlock();
                _gone();
                return;
            }
        }
    }

    std::string _path;
    std::function<void()> _gone;
    std::mutex _lock;
    std::condition_variable _wake;
    bool _stop = false;
    std::thread _thread;
};

int32_t g_ExecATTimeoutSeconds(int timeoutMs) {
    const int32_t seconds = timeoutMs / 1000;
    return seconds == 0 ? 1 : seconds;
}

int g_commErrorMapToVELError(int32_t channelCode) {
    switch (channelCode) {
    case 0:
        return WORKER_OK;
    case 8:
        return WORKER_ERR_TIME_OUT;
    case 9:
        return WORKER_ERR_SWITCH_DISK_ERROR;
    default:
        return WORKER_ERR_GENERAL;
    }
}

int g_ExecAT(const char* command, const char* expected, int timeoutMs, const std::list<std::string>&,
             std::string& response) {
    CNSLOG(0, "\nSEND: >>\n%s", command != nullptr ? command : "");
    const int32_t code =
        ComOperation::GetInstance()->writeCom(command, expected, g_ExecATTimeoutSeconds(timeoutMs), response);
    CNSLOG(0, "\nRECEIVE: <<%s", response.c_str());
    if (const int cause = ModemErrorCause(response))
        t_modemErrorCause = cause;
    return g_commErrorMapToVELError(code);
}

WorkThread::WorkThread() {
    if (QCoreApplication* const app = QCoreApplication::instance()) {
        // Quitting runs on the GUI thread; the worker tears down on its own thread before the quit goes on.
        connect(
            app, &QCoreApplication::aboutToQuit, this,
            [this] {
                if (QThread::currentThread() == thread()) {
                    applicationWillTerminate();
                } else {
                    QMetaObject::invokeMethod(
                        this, [this] { applicationWillTerminate(); }, Qt::BlockingQueuedConnection);
                }
            },
            Qt::DirectConnection);
    }
    _sleepWatcher =
        new SleepWatcher([this] { willSleepNotification(); }, [this] { didWakeNotification(); }, this);
}

WorkThread::~WorkThread() {
    stopPortWatcher();
    _usbDetector.reset();
    _businessOperator.reset();
    ATSubLayer_DestroyInstance(_atSublayer);
    WorkThread* self = this;
    g_workThread.compare_exchange_strong(self, nullptr);
}

WorkThread* WorkThread::connectWithPorts(QObject* responder) {
    auto* worker = new WorkThread();
    worker->setResponser(responder);
    if (auto* const receiver = dynamic_cast<WorkServerReceiver*>(responder)) {
        const QPointer<WorkThread> server(worker);
        QMetaObject::invokeMethod(
            responder,
            [receiver, server] {
                if (!server.isNull()) {
                    receiver->setServer(server.data());
                }
            },
            Qt::QueuedConnection);
    }
    g_workThread.store(worker);
    return worker;
}

WorkThread* WorkThread::GetRequestInterfaceImpObject() {
    return g_workThread.load();
}

void WorkThread::setResponser(QObject* responder) {
    _responderObject = responder;
    _responder = dynamic_cast<DeviceWorkResponseInterface*>(responder);
}

QStringList WorkThread::requestNames() {
    QStringList names;
    for (const RequestEntry& entry : kRequestTable) {
        names << *entry.name;
    }
    return names;
}

bool WorkThread::detectTimerActive() const {
    return _detectTimer != nullptr && _detectTimer->isActive();
}

void WorkThread::respond(const QString& name, QObject* receiver, const QVariantMap& data) {
    if (_responder == nullptr || _responderObject.isNull()) {
        return;
    }
    DeviceWorkResponseInterface* const responder = _responder;
    QMetaObject::invokeMethod(
        _responderObject.data(),
        [responder, name, receiver, data] { responder->asyncResponse(name, receiver, data); },
        Qt::QueuedConnection);
}

QVariantMap WorkThread::sysncRequest(const QString& name, const QVariantMap& userInfo) {
    if (QThread::currentThread() != thread()) {
        QVariantMap result;
        QMetaObject::invokeMethod(
            this, [&] { result = sysncRequest(name, userInfo); }, Qt::BlockingQueuedConnection);
        return result;
    }
    QVariantMap result;
    const int err = messageHandle(name, nullptr, userInfo, result);
    if (err != 0) {
        CNSLOG(2, "Business error Err =  %d", err);
        WorkNotification::SetErrorCode(result, err);
    }
    return result;
}

void WorkThread::asyncRequest(const QString& name, QObject* sender, const QVariantMap& userInfo) {
    // The sender belongs to the caller's thread: its class name is read here.
    const QString senderClass =
        sender != nullptr ? QString::fromLatin1(sender->metaObject()->className()) : QString();
    if (QThread::currentThread() != thread()) {
        QMetaObject::invokeMethod(
            this,
            [this, name, sender, senderClass, userInfo] {
                runAsyncRequest(name, sender, senderClass, userInfo);
            },
            Qt::QueuedConnection);
        return;
    }
    runAsyncRequest(name, sender, senderClass, userInfo);
}

void WorkThread::runAsyncRequest(const QString& name, QObject* sender, const QString& senderClass,
                                 const QVariantMap& userInfo) {
    QVariantMap result;
    if ((_usbDetector == nullptr || _usbDetector->unplugged()) && name != MESSAGE_INIT_WORK_THREAD) {
        return;
    }
    const int err = messageHandle(name, sender, userInfo, result);
    if (err != 0) {
        CNSLOG(2, "Business error Err =  %d", err);
        WorkNotification::SetErrorCode(result, err);
    }
    if (sender != nullptr) {
        WorkNotification::SetRequester(result, senderClass);
    }
    if (!userInfo.isEmpty()) {
        WorkNotification::SetUserInfo(result, userInfo);
    }
    respond(name, sender, result);
}

int WorkThread::messageHandle(const QString& name, QObject* sender, const QVariantMap& userInfo,
                              QVariantMap& result) {
    // A failure carries the modem's own cause beside the result code, so that the front ends can say it.
    t_modemErrorCause = 0;
    const int err = dispatchMessage(name, sender, userInfo, result);
    if (err != 0 && t_modemErrorCause != 0) {
        WorkNotification::SetSubErrorCode(result, t_modemErrorCause);
    }
    return err;
}

int WorkThread::dispatchMessage(const QString& name, QObject*, const QVariantMap& userInfo,
                                QVariantMap& result) {
    for (const RequestEntry& entry : kRequestTable) {
        if (*entry.name != name) {
            continue;
        }
        if (entry.call == nullptr) {
            return initWrokThread();
        }
        // Before the first init there is nobody to ask; such a request does nothing and succeeds.
        return _businessOperator ? entry.call(*_businessOperator, userInfo, result) : 0;
    }
    CNSLOG(2, "Message is not vaild =  %s", qPrintable(name));
    return WORKER_ERR_INVALID_MESSAGE;
}

int WorkThread::initWrokThread() {
    _comOperation = ComOperation::GetInstance();

    if (_usbDetector == nullptr) {
        _usbDetector = std::make_unique<USBDetector>();
        _usbDetector->setDeviceRemoveSEL([this] { callBackDeviceRemoved(); });
    }
    if (_detectTimer == nullptr && _usbDetector->unplugged()) {
        unpluggedDev();
        return WORKER_ERR_GENERAL;
    }

    // The "modem" device is the dial (PPP data) port, the "data" device the AT command port.
    QString strModemDeviceName;
    QString strDataDeviceName;
    DeviceUtility::getModemDeviceName(strModemDeviceName, strDataDeviceName);
    CNSLOG(0, "strModemDeviceName = %s  strDataDeviceName = %s", qPrintable(strModemDeviceName),
           qPrintable(strDataDeviceName));

    if (!strModemDeviceName.isEmpty()) {
        _deviceFound = true;
        ApplicationShell::sharedShell().setDeviceFoundOK(true);
        respond(MESSAGE_DEVICE_FIND, nullptr, {});
    } else {
        int tries = 0;
        for (;;) {
            if (DeviceUtility::switchDiskToUSBModem() >= 1) {
                _deviceFound = true;
                break;
            }
            usleep(kSwitchRetrySleep);
            if (++tries == kSwitchTries) {
                CNSLOG(2, "WORKER_ERR_SWITCH_DISK_ERROR");
                return WORKER_ERR_SWITCH_DISK_ERROR;
            }
        }
    }

    if (strDataDeviceName.isEmpty()) {
        CNSLOG(2, "WORKER_ERR_NO_DATA_DEVICE");
        return WORKER_ERR_NO_DATA_DEVICE;
    }

    const QString portPath = DeviceUtility::portPath(strDataDeviceName);
    const int32_t openErr = _comOperation->openCom(portPath.toLocal8Bit().constData());
    if (openErr != 0 && openErr != 3) {
        CNSLOG(2, "WORKER_ERR_COM_OPEN_FAILED");
        return WORKER_ERR_COM_OPEN_FAILED;
    }
    stopPortWatcher();
    _portWatcher = std::make_unique<PortWatcher>(portPath.toLocal8Bit().toStdString(), [this] {
        // Runs on the watcher's thread; the detector is only destroyed after the watcher has stopped.
        if (_usbDetector != nullptr && !_usbDetector->unplugged()) {
            _usbDetector->markAsUnplugged();
        }
    });

    if (_atSublayer == nullptr) {
        if (ATSubLayer_CreateInstance(_atSublayer) != 0 || _atSublayer == nullptr) {
            CNSLOG(2, "At sublayer create failed!!");
            return WORKER_ERR_GENERAL;
        }
        TInterfaceAtSublayerLower lower;
        lower.pfnExecAT = g_ExecAT;
        _atSublayer->RegisterLowerCBs(lower);
    }

    if (_networkOperator == nullptr) {
        // A dial link the udev rule made goes by its name without "cu."; a probed port by its path.
        _networkOperator = std::make_unique<NetworkOperator>(
            strModemDeviceName.startsWith(QLatin1String("cu.")) ? strModemDeviceName.mid(3)
                                                                 : DeviceUtility::portPath(strModemDeviceName));
    }

    _businessOperator =
        std::make_unique<BusinessOperator>(_comOperation, _atSublayer, _networkOperator.get());
    _retiredNetworkOperator.reset();

    const int err = _atSublayer->SystemInitComm();
    if (err == 0) {
        startDetectTimer();
        return WORKER_OK;
    }
    CNSLOG(2, "WORKER_ERR_NO_AT_LAYER_INIT_COMM_FAILED err = %d", err);
    return WORKER_ERR_NO_AT_LAYER_INIT_COMM_FAILED;
}

void WorkThread::receiveData() {
    std::string response;
    ComOperation::GetInstance()->writeCom("at\r", nullptr, 1, response);
}

void WorkThread::handleUnsolicitedReport() {
    receiveData();

    UnsolicitedReportList* reports = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(reports);
    CNSLOG(0, "report size = %d", static_cast<int>(reports->size()));
    // Toolkit announcements ("+STIN: 11") wait for the toolkit's next poll; only the newest one counts.
    const auto newestAnnouncement = std::find_if(reports->rbegin(), reports->rend(), [](const auto* r) {
        return r->nType == UNSOLICITED_REPORT_STIN;
    });
    if (newestAnnouncement != reports->rend()) {
        const auto keep = std::prev(newestAnnouncement.base());
        for (auto it = reports->begin(); it != reports->end();) {
            if (it != keep && (*it)->nType == UNSOLICITED_REPORT_STIN) {
                delete *it;
                it = reports->erase(it);
            } else {
                ++it;
            }
        }
    }
    const auto next = std::find_if(reports->begin(), reports->end(),
                                   [](const auto* r) { return r->nType != UNSOLICITED_REPORT_STIN; });
    if (next == reports->end()) {
        checkReportBacklog();
        return;
    }

    // Taken off first: a line that arrives while this one is handled is a new announcement, never merged
    // into the one in hand.
    const std::unique_ptr<UnsolicitedReportDataType> report(*next);
    reports->erase(next);
    QVariantMap request;
    WorkNotification::SetValueObject(request, QString::fromStdString(report->strText));
    QVariantMap result;
    QString name;
    int err = 0;
    switch (static_cast<int>(report->nType)) {
    case UNSOLICITED_REPORT_CMTI:
    case UNSOLICITED_REPORT_CDSI:
        name = MESSAGE_RPT_RECEIVE_SMS;
        err = _businessOperator ? _businessOperator->OnReceiveSMS(request, result) : 0;
        if (err == WORKER_ERR_SMS_FILTERED) {
            name = MESSAGE_RPT_RECEIVE_FILTER_SMS;
            err = 0;
        }
        break;
    case UNSOLICITED_REPORT_CUSD:
        name = MESSAGE_RPT_RECEIVE_USSD;
        err = _businessOperator ? _businessOperator->OnReceiveUSSD(request, result) : 0;
        break;
    default:
        CNSLOG(2, "There are find a invaild report type = %d  report String = %s",
               static_cast<int>(report->nType), report->strText.c_str());
        err = WORKER_ERR_INVALID_REPORT;
        break;
    }
    if (err == 0) {
        respond(name, nullptr, result);
    }
    CNSLOG(0, "come a report : %s", report->strText.c_str());
    checkReportBacklog();
}

void WorkThread::checkReportBacklog() {
    ComOperation* const com = ComOperation::GetInstance();
    UnsolicitedReportList* reports = nullptr;
    com->getUnsoliciteReportList(reports);
    const auto waiting =
        static_cast<uint64_t>(std::count_if(reports->begin(), reports->end(), [](const auto* r) {
            return r->nType == UNSOLICITED_REPORT_CMTI || r->nType == UNSOLICITED_REPORT_CDSI;
        }));
    // Lines queued before the last re-list name messages it has already shown.
    const uint64_t uncovered = std::min(waiting, com->newMessageReportsQueued() - _relistCoveredReports);
    _missedNewMessages = com->takeMissedNewMessages() || _missedNewMessages;
    if (_ticksToNextRelist > 0)
        --_ticksToNextRelist;
    // The newest line not yet shown waits behind every queued one, shown or not.
    const bool behind = uncovered > 0 && waiting >= kRelistBacklog;
    if ((!_missedNewMessages && !behind) || _ticksToNextRelist > 0)
        return;
    CNSLOG(1, "%d new-message reports not yet listed, %s missed: asking for a re-list",
           static_cast<int>(uncovered), _missedNewMessages ? "some" : "none");
    _relistCoveredReports = com->newMessageReportsQueued();
    _ticksToNextRelist = kRelistSpacingTicks;
    _missedNewMessages = false;
    respond(MESSAGE_RPT_SMS_RELIST, nullptr, {});
}

void WorkThread::dropDetectTimer() {
    if (_detectTimer != nullptr) {
        // May run inside the timer's own timeout.
        _detectTimer->stop();
        _detectTimer->deleteLater();
        _detectTimer = nullptr;
    }
}

void WorkThread::startDetectTimer() {
    dropDetectTimer();
    _detectTimer = new QTimer(this);
    _detectTimer->setSingleShot(true);
    connect(_detectTimer, &QTimer::timeout, this, &WorkThread::actionTimer);
    _detectTimer->start(kDetectIntervalMs);
}

void WorkThread::actionTimer() {
    if (_usbDetector != nullptr && _usbDetector->unplugged()) {
        unpluggedDev();
        dropDetectTimer();
        return;
    }
    handleUnsolicitedReport();
    startDetectTimer();
}

void WorkThread::callBackDeviceRemoved() {
    ApplicationShell::sharedShell().setDeviceFoundOK(false);
    ComOperation::GetInstance()->cancel();
}

void WorkThread::stopPortWatcher() {
    _portWatcher.reset();
}

void WorkThread::unpluggedDev() {
    if (_networkOperator != nullptr) {
        QVariantMap status;
        WorkNotification::SetValueObject(status, 0);
        // The status dictionary is built but, as ever, the report goes out without data.
        respond(MESSAGE_CONNECT_STATUS, nullptr, {});
        _networkOperator->disconnectNetwork();
        // The business object still points at it; it goes with that object at the next init.
        _retiredNetworkOperator = std::move(_networkOperator);
    }
    stopPortWatcher();
    _usbDetector.reset();
    ComOperation::GetInstance()->reset();
    respond(MESSAGE_USB_UNPLUGGED, nullptr, {});
}

void WorkThread::willSleepNotification() {
    unpluggedDev();
    CNSLOG(0, "willSleepNotification exec");
}

void WorkThread::didWakeNotification() {
    CNSLOG(0, "didWakeNotification exec");
}

void WorkThread::applicationWillTerminate() {
    if (_networkOperator == nullptr) {
        return;
    }
    dropDetectTimer();
    if (ApplicationShell::sharedShell().keepsLinkOnQuit()) {
        _networkOperator->modemOperator().releaseConnection();
    } else if (_networkOperator->isConnected()) {
        _networkOperator->disconnectNetwork();
    }
    ComOperation::GetInstance()->closeCom();
}
