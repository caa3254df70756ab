#pragma once

#include "DeviceWorkInterfaces.h"
#include "WorkNotification.h"
#include "WorkThread.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <atomic>
#include <functional>
#include <memory>

class AppConfig;
class QThread;

// The application's shared objects: the main window, the configuration, the worker's request end for
// the whole application, and whether the modem is there. The device flag may be set from any thread;
// the rest belongs to the GUI thread.
class ApplicationShell {
public:
    static ApplicationShell& sharedShell();

    void setDeviceFoundOK(bool found) { _deviceFoundOK.store(found); }
    bool deviceFoundOK() const { return _deviceFoundOK.load(); }

    void setMainWindow(QObject* mainWindow) { _mainWindow = mainWindow; }
    QObject* mainWindow() const { return _mainWindow.data(); }

    // Takes the configuration object; a later one replaces it.
    void setAppConfig(std::unique_ptr<AppConfig> config);
    AppConfig* appConfig() const { return _appConfig.get(); }

    void setRequestTarget(DeviceWorkRequestInterface* target) { _requestTarget = target; }
    DeviceWorkRequestInterface* requestTarget() const { return _requestTarget; }

    // Whether a running dial-up link outlives the program. The desktop app ends its link when it quits;
    // the command-line tool leaves it up for "dialtone disconnect" to end.
    void setKeepsLinkOnQuit(bool keep) { _keepsLinkOnQuit.store(keep); }
    bool keepsLinkOnQuit() const { return _keepsLinkOnQuit.load(); }

private:
    std::atomic<bool> _deviceFoundOK{false};
    std::atomic<bool> _keepsLinkOnQuit{false};
    QPointer<QObject> _mainWindow;
    std::shared_ptr<AppConfig> _appConfig;
    DeviceWorkRequestInterface* _requestTarget = nullptr;
};

// The GUI thread's end of the worker: starts the worker thread and receives its answers and reports,
// which it posts in the default notification centre under the request's name.
class GUIThreadAgent : public QObject, public DeviceWorkResponseInterface, public WorkServerReceiver {
    Q_OBJECT
public:
    // initWithMainWindow:Delegate: — initAppShell, then createWorkThread (a QThread running WorkThread).
    GUIThreadAgent(QObject* mainWindow, QObject* delegate, QObject* parent = nullptr);
    ~GUIThreadAgent() override; // ends the worker cleanly (as on application quit) and joins its thread

    // The ready callback: called on the GUI thread, once, when the worker calls setServer; the
    // WorkNotification has the delegate as sender and the worker as target. setServer is delivered
    // through the GUI thread's event loop, so setting the callback right after construction is safe.
    void setServerSetupCompleteTargetCallBack(std::function<void(WorkNotification*)> callback);
    WorkNotification* workNotification() const { return _workNotification.get(); }
    // The worker's request end, once setServer has run.
    DeviceWorkRequestInterface* workThread() const { return _workThread; }

    void asyncResponse(const QString& name, QObject* receiver, const QVariantMap& responseData) override;

    // Called by the worker, through this thread's event loop, with itself.
    void setServer(QObject* server) override;

private:
    void initAppShell();
    void createWorkThread();

    QThread* _connectionToWrokThread = nullptr; // the worker's thread
    DeviceWorkRequestInterface* _workThread = nullptr;
    QPointer<WorkThread> _worker;
    std::unique_ptr<WorkNotification> _workNotification;
    QPointer<QObject> _mainWindow;
    std::function<void(WorkNotification*)> _callBacksetupComplete;
    QPointer<QObject> _delegate;
    bool _setupDone = false;
};
