#include "GUIThreadAgent.h"

#include "AppConfig.h"
#include "CNSLog.h"
#include "WorkThread.h"

#include <QThread>

GUIThreadAgent::GUIThreadAgent(QObject* mainWindow, QObject* delegate, QObject* parent)
    : QObject(parent), _mainWindow(mainWindow), _delegate(delegate) {
    initAppShell();
    createWorkThread();
}

GUIThreadAgent::~GUIThreadAgent() {
    ApplicationShell& shell = ApplicationShell::sharedShell();
    if (shell.requestTarget() == _workThread) {
        shell.setRequestTarget(nullptr);
    }
    if (_connectionToWrokThread == nullptr) {
        return;
    }
    // The worker is the thread's first job; a thread that was only just started may not have made it yet.
    WorkThread* worker = WorkThread::GetRequestInterfaceImpObject();
    for (int i = 0; worker == nullptr && i < 5000 && _connectionToWrokThread->isRunning(); ++i) {
        QThread::msleep(1);
        worker = WorkThread::GetRequestInterfaceImpObject();
    }
    if (worker != nullptr && _connectionToWrokThread->isRunning()) {
        // The worker lets go of the modem and is destroyed on its own thread, then the thread ends.
        QMetaObject::invokeMethod(
            worker,
            [worker] {
                worker->applicationWillTerminate();
                delete worker;
            },
            Qt::BlockingQueuedConnection);
    }
    _connectionToWrokThread->quit();
    _connectionToWrokThread->wait();
    delete _connectionToWrokThread;
}

void GUIThreadAgent::initAppShell() {
    g_CNSLog.initialize();
    ApplicationShell& shell = ApplicationShell::sharedShell();
    shell.setAppConfig(std::make_unique<AppConfig>());
    shell.setMainWindow(_mainWindow.data());
}

void GUIThreadAgent::createWorkThread() {
    _connectionToWrokThread = new QThread();
    _connectionToWrokThread->setObjectName(QStringLiteral("WorkThread"));
    // The thread's own first job: build the worker there, so that it and its timers live on that thread.
    QObject* const responder = this;
    QObject::connect(
        _connectionToWrokThread, &QThread::started, _connectionToWrokThread,
        [responder] { WorkThread::connectWithPorts(responder); }, Qt::DirectConnection);
    _connectionToWrokThread->start();
}

void GUIThreadAgent::setServer(QObject* server) {
    auto* const worker = qobject_cast<WorkThread*>(server);
    if (worker == nullptr || _setupDone) {
        return;
    }
    _setupDone = true;
    _worker = worker;
    _workThread = worker;
    _workNotification = std::make_unique<WorkNotification>(_delegate.data(), _workThread);
    ApplicationShell::sharedShell().setRequestTarget(_workThread);
    if (_delegate != nullptr && _callBacksetupComplete) {
        _callBacksetupComplete(_workNotification.get());
    }
}

void GUIThreadAgent::setServerSetupCompleteTargetCallBack(std::function<void(WorkNotification*)> callback) {
    _callBacksetupComplete = std::move(callback);
}

void GUIThreadAgent::asyncResponse(const QString& name, QObject*, const QVariantMap& responseData) {
    emit responded(name, responseData);
    WorkNotification::deliverResponse(name, responseData, this);
}
