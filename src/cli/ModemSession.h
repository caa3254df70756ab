#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>

#include "CliSupport.h"

class DeviceWorkRequestInterface;
class GUIThreadAgent;
class QCoreApplication;
class QObject;
class WorkNotification;

// A simulated modem (dialtone-modemsim) in a temporary device folder of its own, for --simulate.
class Simulator {
public:
    Simulator() = default;
    ~Simulator(); // stops it
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // The program: DIALTONE_MODEMSIM, else the one next to this program, else the build tree's, else the
    // installed one.
    static std::string programPath();

    // Starts the simulator with the scenario (empty: the built-in one) and waits, up to the deadline, for
    // the line saying its ports are ready. False with the reason in error.
    // With trace, the simulator shows the AT and dial-port traffic on standard error.
    bool start(const std::string& scenario, bool trace, std::string& error, int deadlineMs = 5000);
    // Ends it (SIGTERM, then SIGKILL after two seconds) and removes its device folder. Safe to repeat.
    void stop();

    const std::string& devDir() const { return _devDir; }
    const std::string& atLink() const { return _atLink; }
    pid_t pid() const { return _pid; }

private:
    pid_t _pid = -1;
    int _stdout = -1;
    std::string _devDir;
    std::string _atLink;
};

// One run of the tool against the modem: the simulator when asked, the application core, the worker
// thread through GUIThreadAgent, and the modem initialised with "MESSAGE_INIT_WORK_THREAD". Requests are
// synchronous; a request that outlives its deadline ends the process with exit status 1 and a message,
// so the tool never hangs.
class ModemSession {
public:
    static constexpr int kDefaultDeadlineSeconds = 60;

    explicit ModemSession(CliContext& context);
    ~ModemSession(); // ends the worker, then the simulator
    ModemSession(const ModemSession&) = delete;
    ModemSession& operator=(const ModemSession&) = delete;

    // Brings everything up. False once the failure is reported ("no modem found", "the modem is in use by
    // another program", ...); the exit status is then in the context.
    bool open();

    // Sends one request and returns its response dictionary. An invalid argument sends no "VALUE_OBJECT".
    QVariantMap request(const QString& name, const QVariant& argument = {},
                        int deadlineSeconds = kDefaultDeadlineSeconds);

    // The worker's request end, for controllers that send asynchronous requests; null before open().
    DeviceWorkRequestInterface* workTarget() const;

    // The response's "ERROR_CODE" reported as a failure of what was tried (text and code on standard
    // error, the error object with --json); EXIT_FAILED, or EXIT_OK when the code is 0.
    int check(const QVariantMap& response, const std::string& what);

private:
    int diagnoseOpenFailure(int code);

    CliContext& _context;
    std::unique_ptr<QCoreApplication> _application;
    Simulator _simulator;
    std::unique_ptr<QObject> _delegate;
    std::unique_ptr<GUIThreadAgent> _agent;
    WorkNotification* _notification = nullptr;
};

// What a result code means, in words.
std::string ResultCodeText(int code);

// Opens a session and runs the command in it: the command's exit status, or the session's failure.
int RunInSession(CliContext& context, const std::function<int(ModemSession&)>& command);

// "Name (code)" for an operator code the operator table knows, else the text as it is; "-" for none. The
// service provider name, when the SIM has one, goes first.
std::string OperatorText(const QString& operatorCode, const QString& providerName);
