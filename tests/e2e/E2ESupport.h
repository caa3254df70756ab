#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <functional>

// The simulated modem program in a temporary device folder, with DIALTONE_DEV_DIR pointing there while it
// lives. Stopped (and waited for) on destruction.
class SimulatedModem {
public:
    explicit SimulatedModem(const QStringList& args = {});
    ~SimulatedModem();
    SimulatedModem(const SimulatedModem&) = delete;
    SimulatedModem& operator=(const SimulatedModem&) = delete;

    bool started() const { return _pid > 0 && !_ready.isEmpty(); }
    QString devDir() const { return _dir.path(); }
    // One control-socket command and its JSON answer (empty on failure).
    QJsonObject control(const QString& line) const;
    // The AT commands the modem has seen, oldest first, without the poll "at".
    QStringList commands() const;

private:
    QTemporaryDir _dir;
    int _pid = -1;
    QJsonObject _ready;
};

// Runs the calling thread's events until cond holds or the limit passes.
bool waitUntil(const std::function<bool()>& cond, std::chrono::milliseconds limit);
