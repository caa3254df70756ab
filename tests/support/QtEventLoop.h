#pragma once

// Event-loop helpers for the Qt suites (header-only: the support library itself has no Qt).

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <chrono>
#include <functional>

// One application object for the whole test run, made on first use.
inline void ensureApplication() {
    static int argc = 1;
    static char name[] = "dialtone_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv); // kept for the rest of the run
}

// Runs this thread's events until cond holds or the limit passes.
inline bool waitFor(const std::function<bool()>& cond,
                    std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    QElapsedTimer clock;
    clock.start();
    while (!cond()) {
        if (clock.elapsed() > limit.count())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}
