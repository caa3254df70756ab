#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "SimulatorProcess.h"

// The simulated modem program in a temporary device folder, with DIALTONE_DEV_DIR pointing there while it
// lives. Stopped (and waited for) on destruction.
class SimulatedModem {
public:
    explicit SimulatedModem(const QStringList& args = {});
    ~SimulatedModem();

    bool started() const { return _process.started(); }
    QString devDir() const { return _dir.path(); }
    // One control-socket command and its JSON answer (empty on failure).
    QJsonObject control(const QString& line) const;
    // The AT commands the modem has seen, oldest first, without the poll "at".
    QStringList commands() const;

private:
    QTemporaryDir _dir;
    SimulatorProcess _process;
};
