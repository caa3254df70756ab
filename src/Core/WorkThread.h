#pragma once

#include "DeviceWorkInterfaces.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <cstdint>
#include <list>
#include <memory>
#include <string>

class BusinessOperator;
class ComOperation;
class NetworkOperator;
class QThread;
class QTimer;
class SleepWatcher;
class TInterfaceAtSublayer;
class USBDetector;
class PortWatcher;

// The worker: a QObject living in its own QThread that owns the modem. Every request, the one-second
// detect timer and all modem traffic run on that thread, one at a time. Requests may be made from any
// thread: asyncRequest is queued to the worker's thread, sysncRequest waits for it. Answers and reports
// go to the responder, on the responder's thread.
//
// The responder is a QObject that implements DeviceWorkResponseInterface and WorkServerReceiver, through
// which connectWithPorts hands it the new worker.

class WorkThread : public QObject, public DeviceWorkRequestInterface {
    Q_OBJECT
public:
    WorkThread();
    ~WorkThread() override;

    // The thread's entry point; call it on the worker thread itself (e.g. from QThread::started). Makes
    // the worker, sets its responder, tells the responder setServer (queued to the responder's thread)
    // and records the worker as the process-wide one. The thread's event loop then serves it.
    static WorkThread* connectWithPorts(QObject* responder);
    // The process-wide worker made by connectWithPorts, or null.
    static WorkThread* GetRequestInterfaceImpObject();

    // responder must implement DeviceWorkResponseInterface; answers are queued to its thread.
    void setResponser(QObject* responder);

    QVariantMap sysncRequest(const QString& name, const QVariantMap& userInfo) override;
    void asyncRequest(const QString& name, QObject* sender, const QVariantMap& userInfo) override;

    // The dispatcher: the business method's code, 35 for an unknown name. Before the first init there is
    // no business object and every known request answers 0 without doing anything. A failure carries the
    // modem's "+CME ERROR"/"+CMS ERROR" cause under "SUB_ERROR_CODE" (ModemErrorCause.h).
    int messageHandle(const QString& name, QObject* sender, const QVariantMap& userInfo, QVariantMap& result);
    // Builds the modem stack: 0; 1 unplugged at first start or no sublayer; 27 no AT port; 28 the port
    // does not open; 30 the mode switch failed; 31 the modem's start-up commands failed.
    int initWrokThread();

    void handleUnsolicitedReport();
    void receiveData();
    void startDetectTimer();
    void actionTimer();
    void unpluggedDev();
    // Runs on the detector's thread: only marks the device gone and cancels the command in progress.
    void callBackDeviceRemoved();
    void willSleepNotification();
    void didWakeNotification();
    void applicationWillTerminate();

    // For tests and the agent.
    bool deviceFound() const { return _deviceFound; }
    bool detectTimerActive() const;
    BusinessOperator* businessOperator() const { return _businessOperator.get(); }
    TInterfaceAtSublayer* atSublayer() const { return _atSublayer; }
    NetworkOperator* networkOperator() const { return _networkOperator.get(); }

    // The request names in the dispatcher's order (the unreachable second "MESSAGE_NETWORK_GET_LIST"
    // included).
    static QStringList requestNames();

private:
    int dispatchMessage(const QString& name, QObject* sender, const QVariantMap& userInfo,
                        QVariantMap& result);
    void respond(const QString& name, QObject* receiver, const QVariantMap& data);
    void runAsyncRequest(const QString& name, QObject* sender, const QString& senderClass,
                         const QVariantMap& userInfo);
    void stopPortWatcher();
    void dropDetectTimer();
    // After each report: asks the front ends to list the storage again when new-message lines were
    // merged or dropped, or when too many wait behind the one-a-second pace.
    void checkReportBacklog();

    QPointer<QObject> _responderObject;
    DeviceWorkResponseInterface* _responder = nullptr;
    ComOperation* _comOperation = nullptr;
    bool _deviceFound = false;
    TInterfaceAtSublayer* _atSublayer = nullptr;
    std::unique_ptr<NetworkOperator> _networkOperator;
    std::unique_ptr<BusinessOperator> _businessOperator;
    std::unique_ptr<NetworkOperator> _retiredNetworkOperator;
    std::unique_ptr<USBDetector> _usbDetector;
    QTimer* _detectTimer = nullptr;
    // New-message lines queued up to the last re-list request, and the ticks before another may go out.
    uint64_t _relistCoveredReports = 0;
    int _ticksToNextRelist = 0;
    bool _missedNewMessages = false;

    // Watches the AT port's entry in the device folder; its removal counts as the device's removal.
    std::unique_ptr<PortWatcher> _portWatcher;
    SleepWatcher* _sleepWatcher = nullptr;
};

// The AT sublayer's execute-AT lower callback: the limit in whole seconds (rounded down, at least one)
// through the channel, whose code is mapped by g_commErrorMapToVELError.
int g_ExecAT(const char* command, const char* expected, int timeoutMs,
             const std::list<std::string>& finalResults, std::string& response);
// Channel code to application code: 0 to 0, 8 to 2, 9 to 30, any other to 1.
int g_commErrorMapToVELError(int32_t channelCode);
// The limit g_ExecAT hands the channel for a limit in milliseconds.
int32_t g_ExecATTimeoutSeconds(int timeoutMs);
