#pragma once

#include <QObject>
#include <QVariant>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

// Runs one task on a new detached thread and hands back a cancellation flag for it.
//
// The flag is set once and never cleared: markAsCancelled may be called any number of times, from any
// thread, and never blocks; reading it takes no lock. When an end action is given, it receives the task's
// result on the thread that started the worker (through that thread's Qt event loop). The thread holds
// the worker until the task returns, so dropping the caller's pointer does not stop anything.
class ThreadWorker : public std::enable_shared_from_this<ThreadWorker> {
public:
    using Task = std::function<QVariant(const QVariant& argument, ThreadWorker& worker)>;
    using EndAction = std::function<void(const QVariant& result)>;

    // Starts the task; nullptr, with nothing started, when there is no task.
    static std::shared_ptr<ThreadWorker> workOn(Task task, const QVariant& argument, EndAction didEnd = {});

    ThreadWorker(Task task, const QVariant& argument, EndAction didEnd);
    ThreadWorker(const ThreadWorker&) = delete;
    ThreadWorker& operator=(const ThreadWorker&) = delete;

    void markAsCancelled();
    int cancelled() const { return _cancelled.load(); }
    bool finished() const { return _endRunLoop.load(); }
    // True once the task has returned; false at the deadline.
    bool waitUntilFinished(std::chrono::milliseconds timeout);

    static QString description();

private:
    void startThread();
    void runPrimaryTask();

    Task _task;
    QVariant _argument;
    EndAction _didEnd;
    QObject* _callingContext = nullptr; // lives on the starting thread, carries the end action there
    std::atomic<int> _cancelled{0};
    std::atomic<bool> _endRunLoop{false};
    std::mutex _finishLock;
    std::condition_variable _finishedChanged;
};
