#pragma once

// A private session bus with dialtoned activated on it against a simulated modem, and the tool run as the
// service's clients. Nothing here uses the user's own session bus, HOME or /dev.

#include <sys/types.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QProcess>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CliTestSupport.h"

namespace servicetest {

using namespace std::chrono_literals;

// Runs Qt's events (signals from the bus arrive that way) until cond holds or the limit passes.
bool WaitFor(const std::function<bool()>& cond, std::chrono::milliseconds limit);

// A dictionary from the bus with the dictionaries inside it made plain too.
QVariantMap Plain(const QVariant& value);

// The service's Notification signals as this process received them.
class NotificationLog : public QObject {
    Q_OBJECT
public:
    // Whether a notification of that name came whose info satisfies the condition.
    bool seen(const QString& name, const std::function<bool(const QVariantMap&)>& condition) const;
    int count() const { return static_cast<int>(_seen.size()); }

public slots:
    void take(const QString& name, const QDBusMessage& message);

private:
    std::vector<std::pair<QString, QVariantMap>> _seen;
};

// dbus-daemon as a child on a socket under /tmp, activating what servicesDir holds (nothing when empty).
// The activated services see the simulator's ports in devDir, home as HOME, pppd's folders under it
// ("<home>/ppp/<folder>") and the stand-in pppd.
class PrivateBus {
public:
    PrivateBus(const std::string& servicesDir, const std::string& devDir, const std::string& home);
    ~PrivateBus() {
        leave();
        _daemon.terminate();
        _daemon.waitForFinished();
    }

    // This test process's own connection to the bus (opened on first use, closed by leave()).
    QDBusConnection connection();
    void leave();

    std::string address;

private:
    clitest::TempDir _files;
    QProcess _daemon;
    QString _connectionName;
};

// A background run of the tool, with the variables ("NAME=value") added to this process's environment.
class Child {
public:
    Child(const std::vector<std::string>& arguments, const std::vector<std::string>& environment);

    // Waits for the exit (killing the child past the limit) and returns what it printed.
    clitest::Outcome finish(std::chrono::milliseconds limit = 60s);
    pid_t pid() const { return _pid; }
    // What it has printed on standard output so far.
    std::string output();

private:
    QProcess _process;
    std::string _out;
    pid_t _pid = -1;
};

// The simulator, a bus whose activation file is the build's own (or one written with serviceArguments),
// and the tool as a client of the service on that bus.
class ServiceWorld {
public:
    explicit ServiceWorld(const std::string& serviceArguments = {});
    ~ServiceWorld();

    bool ready() const { return modem.ready() && !bus.address.empty(); }

    // The tool's environment: the private bus, a scratch HOME, and no device folder (which would make the
    // tool open the modem itself).
    std::vector<std::string> clientEnvironment() const;
    std::unique_ptr<Child> start(const std::vector<std::string>& arguments) {
        return std::make_unique<Child>(arguments, clientEnvironment());
    }
    clitest::Outcome dialtone(const std::vector<std::string>& arguments) {
        return start(arguments)->finish();
    }
    // Runs the tool and checks the run against the row.
    void expect(const clitest::Step& step) { clitest::ExpectStep(step, dialtone(step.args)); }

    // The running dialtoned of this world (found by its executable and device folder), or -1.
    pid_t servicePid() const;
    bool waitForServiceExit(pid_t pid, std::chrono::milliseconds limit) const;

    // A method call to the service from this process's connection.
    QDBusMessage call(const QString& method, const QVariantList& arguments);
    // Starts recording the service's notifications.
    bool listen(NotificationLog& log);
    // A property of the service read from this process. A read keeps the service from idling, so tests of
    // the idle exit look at the process instead.
    QVariant property(const QString& name);
    // Whether the property comes to hold the value within the limit.
    bool becomes(const QString& name, const QVariant& value, std::chrono::milliseconds limit = 10s);

    clitest::SimulatedModem modem;
    clitest::TempDir services;
    PrivateBus bus;
};

} // namespace servicetest
