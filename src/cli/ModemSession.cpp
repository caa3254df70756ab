#include "ModemSession.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "BLRecords.h"
#include "BusTransport.h"
#include "DeviceUtility.h"
#include "FailureText.h"
#include "ModemLink.h"
#include "Pin/PinController.h"
#include "ScriptJson.h"
#include "SessionRecording.h"
#include "ToolText.h"
#include "WorkNotification.h"

namespace {

using Clock = std::chrono::steady_clock;

// Ends the process when a request outlives its deadline: the worker cannot be interrupted from here, and
// a hanging tool is worse than a failed one.
class Watchdog {
public:
    Watchdog() : _thread([this] { run(); }) {}
    ~Watchdog() {
        {
            std::lock_guard lock(_mutex);
            _quit = true;
        }
        _wake.notify_all();
        _thread.join();
    }

    void arm(int seconds, std::string what, bool json, pid_t simulator, std::string simulatorDir) {
        std::lock_guard lock(_mutex);
        _deadline = Clock::now() + std::chrono::seconds(seconds);
        _armed = true;
        _what = std::move(what);
        _json = json;
        _simulator = simulator;
        _simulatorDir = std::move(simulatorDir);
        _wake.notify_all();
    }
    void disarm() {
        std::lock_guard lock(_mutex);
        _armed = false;
    }

private:
    void run() {
        std::unique_lock lock(_mutex);
        while (!_quit) {
            if (!_armed) {
                _wake.wait(lock);
                continue;
            }
            if (_wake.wait_until(lock, _deadline) == std::cv_status::timeout && _armed && !_quit &&
                Clock::now() >= _deadline) {
                static constexpr const char kLate[] = "the modem did not answer in time";
                std::fprintf(stderr, "dialtone: %s: %s (result %d)\n", _what.c_str(), kLate,
                             WORKER_ERR_TIME_OUT);
                if (_json)
                    PrintJson(ErrorDocument(WORKER_ERR_TIME_OUT, _what + ": " + kLate));
                std::fflush(stdout);
                if (_simulator > 0)
                    kill(_simulator, SIGTERM);
                if (!_simulatorDir.empty()) {
                    std::error_code ignored;
                    std::filesystem::remove_all(_simulatorDir, ignored);
                }
                _exit(EXIT_FAILED);
            }
        }
    }

    std::mutex _mutex;
    std::condition_variable _wake;
    bool _quit = false;
    bool _armed = false;
    Clock::time_point _deadline;
    std::string _what;
    bool _json = false;
    pid_t _simulator = -1;
    std::string _simulatorDir;
    std::thread _thread;
};

Watchdog& TheWatchdog() {
    static Watchdog watchdog;
    return watchdog;
}

// Are the modem's ports still there? They go when the stick is pulled.
bool ModemPresent() {
    QString dialName;
    QString atName;
    return DeviceUtility::getModemDeviceName(dialName, atName) && !atName.isEmpty() &&
           access(DeviceUtility::portPath(atName).toLocal8Bit().constData(), F_OK) == 0;
}

// Is the file locked by another process, the way the modem link locks its port?
bool HeldByAnotherProgram(const std::string& path) {
    const int fd = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return errno == EBUSY;
    const bool held = flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(fd);
    return held;
}

} // namespace

// ---- ModemSession ------------------------------------------------------------------------------------

ModemSession::ModemSession(CliContext& context) : _context(context) {}

ModemSession::~ModemSession() {
    TheWatchdog().arm(10, "closing the modem", false, _simulator.pid(), _simulator.devDir());
    _link.reset();
    TheWatchdog().disarm();
    _simulator.stop();
}

bool ModemSession::open() {
    if (!QCoreApplication::instance()) {
        static int argc = 1;
        static char name[] = "dialtone";
        static char* argv[] = {name, nullptr};
        _application = std::make_unique<QCoreApplication>(argc, argv);
    }
    registerRecordMetaTypes();

    if (_context.simulate) {
        std::string error;
        if (!_simulator.start(_context.scenario, false, error)) {
            _context.exitCode = ReportFailure(_context, WORKER_ERR_NO_DATA_DEVICE, error);
            return false;
        }
        _simulator.useOwnFolders();
    } else if (!_context.devDir.empty()) {
        qputenv("DIALTONE_DEV_DIR", QByteArray::fromStdString(_context.devDir));
    }

    // A link started by "dialtone connect" stays up when the tool exits; "dialtone disconnect" ends it.
    ApplicationShell::sharedShell().setKeepsLinkOnQuit(true);

    // The modem service owns the modem when it is there; a simulated modem and ports named on the command
    // line are this run's own.
    std::unique_ptr<ModemTransport> transport;
    if (!_context.noService)
        transport = BusTransport::forSessionBus();
    _context.viaService = transport != nullptr;
    if (_context.viaService && _context.debug)
        std::fprintf(stderr, "dialtone: the modem service (dialtoned) talks to the modem; --debug shows the "
                             "traffic of this process only\n");
    if (_context.viaService && RecordingOn())
        std::fprintf(stderr, "dialtone: the modem service (dialtoned) talks to the modem; --record saves the "
                             "traffic of this process only: record with --no-service, --simulate or --dev-dir\n");
    _link = std::make_unique<ModemLink>(nullptr, std::move(transport));
    TheWatchdog().arm(kOpenDeadlineSeconds + 10, QT_TRANSLATE_NOOP("dialtone", "starting the modem"),
                      _context.json, _simulator.pid(), _simulator.devDir());
    const int code = _link->open(kOpenDeadlineSeconds * 1000);
    TheWatchdog().disarm();
    // The device watch installs its own interrupt handler; the simulator must still be stopped.
    _simulator.stopOnInterrupt();
    if (code != WORKER_OK) {
        _context.exitCode = diagnoseOpenFailure(code);
        return false;
    }
    return true;
}

int ModemSession::diagnoseOpenFailure(int code) {
    // DeviceUtility's "modem" device is the dial port, its "data" device the AT port the worker opens.
    QString dialName;
    QString atName;
    const bool found = DeviceUtility::getModemDeviceName(dialName, atName);
    if (code == WORKER_ERR_COM_OPEN_FAILED && found) {
        const std::string port = DeviceUtility::portPath(atName).toStdString();
        if (HeldByAnotherProgram(port))
            return ReportFailure(_context, code, "the modem is in use by another program: " + port);
        return ReportFailure(_context, code, "the modem's port " + port + " could not be opened");
    }
    if (code == WORKER_ERR_NO_DATA_DEVICE || (code == WORKER_ERR_GENERAL && !found) ||
        code == WORKER_ERR_SWITCH_DISK_ERROR) {
        return ReportFailure(
            _context, code,
            "no modem found in " + DeviceUtility::deviceDir().toStdString() +
                " (plug the modem in; \"dialtone doctor\" says what is missing; or try --simulate)");
    }
    return ReportFailure(_context, code, "the modem could not be initialised: " + ResultCodeText(code));
}

QVariantMap ModemSession::request(const QString& name, const QVariant& argument, int deadlineSeconds) {
    TheWatchdog().arm(deadlineSeconds, name.toStdString(), _context.json, _simulator.pid(),
                      _simulator.devDir());
    QVariantMap response = _link->call(name, argument);
    TheWatchdog().disarm();
    return response;
}

Outcome ModemSession::awaitOutcome(std::optional<Outcome>& result, const std::string& what,
                                   int deadlineSeconds) {
    await([&result] { return result.has_value(); }, what, deadlineSeconds);
    return *result;
}

int ModemSession::checkPresent(const std::string& what) {
    // The service's ports are in its own device folder; its unplug report ends the link's state.
    if (_context.viaService ? _link->state() != ModemLink::State::Absent : ModemPresent())
        return EXIT_OK;
    return ReportFailure(_context, WORKER_ERR_NO_DATA_DEVICE,
                         Tool::F("%s: the modem was unplugged (plug it in and run the command again)",
                                 {Tool::T(what.c_str())}));
}

int ModemSession::check(const QVariantMap& response, const std::string& what) {
    return check(Outcome::of(response), what);
}

int ModemSession::check(const Outcome& outcome, const std::string& what) {
    if (outcome.ok())
        return EXIT_OK;
    // A pulled stick cancels the command under way, and every later one fails the same way.
    if (const int gone = checkPresent(what))
        return gone;
    return ReportFailure(_context, outcome.code,
                         Tool::T(what.c_str()) + ": " + FailureText(outcome.code, outcome.cause),
                         outcome.cause);
}

void ModemSession::await(const std::function<bool()>& done, const std::string& what, int deadlineSeconds) {
    TheWatchdog().arm(deadlineSeconds, what, _context.json, _simulator.pid(), _simulator.devDir());
    _link->waitUntil(done);
    TheWatchdog().disarm();
}

Outcome ModemSession::readSim(BLPinCheckState& state) {
    PinController pin(*_link);
    std::optional<Outcome> outcome;
    pin.readSimState([&](Outcome answer, const BLPinCheckState& sim) {
        outcome = answer;
        state = sim;
    });
    await([&] { return outcome.has_value(); }, QT_TRANSLATE_NOOP("dialtone", "reading the SIM's state"));
    return *outcome;
}

int ModemSession::requireSim() {
    BLPinCheckState sim;
    if (const int failed = check(readSim(sim), QT_TRANSLATE_NOOP("dialtone", "reading the SIM's state")))
        return failed;
    std::string text;
    int code = WORKER_OK;
    if (!SimUnusable(sim.nState, text, code))
        return EXIT_OK;
    return ReportFailure(_context, code, text);
}

int RunInSession(CliContext& context, const std::function<int(ModemSession&)>& command) {
    ModemSession session(context);
    if (!session.open())
        return context.exitCode;
    return command(session);
}

int RunWithSim(CliContext& context, const std::function<int(ModemSession&)>& command) {
    return RunInSession(context, [&command](ModemSession& session) {
        if (const int failed = session.requireSim())
            return failed;
        return command(session);
    });
}
