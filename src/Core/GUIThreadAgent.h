#pragma once

#include "ApplicationShell.h"

#include "DeviceWorkInterfaces.h"
#include "WorkNotification.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

class QThread;
class WorkThread;

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

signals:
    // Every answer and report, before the notification centre's rules: answers that are never posted to
    // the modules (result 25) come here too, so a client waiting for one gets it.
    void responded(const QString& name, const QVariantMap& responseData);

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
