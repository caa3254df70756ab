#include "ThreadWorker.h"

#include <QMetaObject>

#include <thread>

std::shared_ptr<ThreadWorker> ThreadWorker::workOn(Task task, const QVariant& argument, EndAction didEnd) {
    if (!task) {
        return nullptr;
    }
    auto worker = std::make_shared<ThreadWorker>(std::move(task), argument, std::move(didEnd));
    if (worker->_didEnd) {
        worker->_callingContext = new QObject;
    }
    std::thread([worker] { worker->startThread(); }).detach();
    return worker;
}

ThreadWorker::ThreadWorker(Task task, const QVariant& argument, EndAction didEnd)
    : _task(std::move(task)), _argument(argument), _didEnd(std::move(didEnd)) {}

void ThreadWorker::markAsCancelled() {
    int expected = 0;
    _cancelled.compare_exchange_strong(expected, 1);
}

bool ThreadWorker::waitUntilFinished(std::chrono::milliseconds timeout) {
    std::unique_lock lock(_finishLock);
    return _finishedChanged.wait_for(lock, timeout, [this] { return _endRunLoop.load(); });
}

QString ThreadWorker::description() {
    return QStringLiteral("ThreadWorker v0.7: runs a task on its own thread with a cancellation flag. "
                          "Public domain.");
}

void ThreadWorker::startThread() {
    runPrimaryTask();
}

void ThreadWorker::runPrimaryTask() {
    const QVariant result = _task(_argument, *this);
    if (_didEnd && _callingContext) {
        QObject* context = _callingContext;
        EndAction didEnd = _didEnd;
        QMetaObject::invokeMethod(
            context,
            [context, didEnd, result] {
                didEnd(result);
                context->deleteLater();
            },
            Qt::QueuedConnection);
    }
    {
        std::lock_guard lock(_finishLock);
        _endRunLoop = true;
    }
    _finishedChanged.notify_all();
}
