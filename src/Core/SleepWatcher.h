#pragma once

#include <QDBusConnection>
#include <QObject>

#include <functional>

// Tells its owner when the machine is about to sleep and when it woke: logind's PrepareForSleep signal
// on the system bus (true before sleeping, false after waking). Without a system bus or logind nothing
// is ever reported; that is not an error. Lives on the thread that creates it.
class SleepWatcher : public QObject {
    Q_OBJECT
public:
    // bus: the system bus unless another is given (tests use a private one).
    SleepWatcher(std::function<void()> willSleep, std::function<void()> didWake, QObject* parent = nullptr);
    SleepWatcher(std::function<void()> willSleep, std::function<void()> didWake, QDBusConnection bus,
                 QObject* parent = nullptr);

    // Whether the watch on the system bus is set up.
    bool watching() const { return _watching; }

public slots:
    void prepareForSleep(bool start);

private:
    std::function<void()> _willSleep;
    std::function<void()> _didWake;
    bool _watching = false;
};
