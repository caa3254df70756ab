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
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "AppConfig.h"
#include "BLRecords.h"
#include "DeviceUtility.h"
#include "GUIThreadAgent.h"
#include "WorkNotification.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

bool IsExecutable(const std::string& path) {
    return !path.empty() && access(path.c_str(), X_OK) == 0;
}

std::string SelfDirectory() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : self.parent_path().string();
}

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
                std::fprintf(stderr, "dialtone: %s: the modem did not answer in time\n", _what.c_str());
                if (_json)
                    std::printf("{\n  \"ERROR_CODE\": %d\n}\n", WORKER_ERR_TIME_OUT);
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

// Is the file locked by another process, the way the modem link locks its port?
bool HeldByAnotherProgram(const std::string& path) {
    const int fd = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return errno == EBUSY;
    const bool held = flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(fd);
    return held;
}

// The simulator to end when the tool is interrupted, so that it never outlives the tool.
volatile pid_t g_simulatorPid = -1;
char g_simulatorDir[4096];

void StopSimulatorAndExit(int signalNumber) {
    const pid_t pid = g_simulatorPid;
    if (pid > 0) {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        rmdir(g_simulatorDir); // the simulator removed its links and socket itself
    }
    _exit(128 + signalNumber);
}

void WatchForInterrupts(pid_t pid, const std::string& folder) {
    if (folder.size() >= sizeof g_simulatorDir)
        return;
    std::memcpy(g_simulatorDir, folder.c_str(), folder.size() + 1);
    g_simulatorPid = pid;
    struct sigaction action {};
    action.sa_handler = StopSimulatorAndExit;
    sigemptyset(&action.sa_mask);
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signalNumber, &action, nullptr);
}

} // namespace

// ---- Simulator ---------------------------------------------------------------------------------------

Simulator::~Simulator() {
    stop();
}

std::string Simulator::programPath() {
    if (const char* path = std::getenv("DIALTONE_MODEMSIM"); path && *path)
        return path;
    const std::string sibling = SelfDirectory() + "/dialtone-modemsim";
    if (IsExecutable(sibling))
        return sibling;
#ifdef DIALTONE_MODEMSIM_BUILD
    if (IsExecutable(DIALTONE_MODEMSIM_BUILD))
        return DIALTONE_MODEMSIM_BUILD;
#endif
#ifdef DIALTONE_MODEMSIM_INSTALL
    return DIALTONE_MODEMSIM_INSTALL;
#else
    return "dialtone-modemsim";
#endif
}

bool Simulator::start(const std::string& scenario, bool trace, std::string& error, int deadlineMs) {
    stop();
    const char* tmp = std::getenv("TMPDIR");
    std::string folder = std::string(tmp && *tmp ? tmp : "/tmp") + "/dialtone-sim-XXXXXX";
    if (!mkdtemp(folder.data())) {
        error = std::string("cannot create a device folder for the simulated modem: ") + std::strerror(errno);
        return false;
    }
    _devDir = folder;

    const std::string program = programPath();
    std::vector<std::string> arguments{program, "--dev-dir", _devDir};
    if (!scenario.empty())
        arguments.insert(arguments.end(), {"--scenario", scenario});
    if (trace)
        arguments.emplace_back("--trace");
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) {
        error = std::string("cannot start the simulated modem: ") + std::strerror(errno);
        stop();
        return false;
    }
    // fork and exec rather than posix_spawn: the child asks to be ended with its parent, so a simulator
    // never outlives a tool that was killed.
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent)
            _exit(127);
        dup2(pipeFds[1], STDOUT_FILENO);
        const int null = ::open("/dev/null", O_RDONLY);
        if (null >= 0)
            dup2(null, STDIN_FILENO);
        execve(program.c_str(), argv.data(), environ);
        _exit(127);
    }
    const int spawned = child < 0 ? errno : 0;
    _pid = child;
    close(pipeFds[1]);
    _stdout = pipeFds[0];
    if (spawned != 0) {
        _pid = -1;
        error = "cannot start the simulated modem " + program + ": " + std::strerror(spawned);
        stop();
        return false;
    }

    // {"at":"/dev/pts/5","at_link":"DIR/cu.VELDeviceInterface3",...} once the ports are ready.
    std::string line;
    const auto deadline = Clock::now() + std::chrono::milliseconds(deadlineMs);
    while (line.find('\n') == std::string::npos) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd poller{_stdout, POLLIN, 0};
        if (left <= 0 || poll(&poller, 1, static_cast<int>(left)) <= 0) {
            error = "the simulated modem did not get ready";
            stop();
            return false;
        }
        char buffer[512];
        const ssize_t n = read(_stdout, buffer, sizeof buffer);
        if (n <= 0) {
            error = "the simulated modem ended before it was ready (" + program + ")";
            stop();
            return false;
        }
        line.append(buffer, static_cast<std::size_t>(n));
        if (line.size() > 64 * 1024)
            break;
    }
    const auto ready = nlohmann::json::parse(line.substr(0, line.find('\n')), nullptr, false);
    if (!ready.is_object() || !ready.contains("at_link") || !ready["at_link"].is_string()) {
        error = "the simulated modem gave no usable ready line";
        stop();
        return false;
    }
    _atLink = ready["at_link"].get<std::string>();
    WatchForInterrupts(_pid, _devDir);
    return true;
}

void Simulator::stop() {
    if (_pid > 0) {
        g_simulatorPid = -1;
        kill(_pid, SIGTERM);
        const auto deadline = Clock::now() + std::chrono::seconds(2);
        int status = 0;
        while (waitpid(_pid, &status, WNOHANG) == 0) {
            if (Clock::now() >= deadline) {
                kill(_pid, SIGKILL);
                waitpid(_pid, &status, 0);
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        _pid = -1;
    }
    if (_stdout >= 0) {
        close(_stdout);
        _stdout = -1;
    }
    if (!_devDir.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(_devDir, ignored);
        _devDir.clear();
    }
    _atLink.clear();
}

// ---- ModemSession ------------------------------------------------------------------------------------

ModemSession::ModemSession(CliContext& context) : _context(context) {}

ModemSession::~ModemSession() {
    TheWatchdog().arm(10, "closing the modem", false, _simulator.pid(), _simulator.devDir());
    _agent.reset();
    _delegate.reset();
    TheWatchdog().disarm();
    _simulator.stop();
}

DeviceWorkRequestInterface* ModemSession::workTarget() const {
    return _agent ? _agent->workThread() : nullptr;
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
        if (!_simulator.start(_context.scenario, _context.debug, error)) {
            _context.exitCode = ReportFailure(_context, WORKER_ERR_NO_DATA_DEVICE, error);
            return false;
        }
        qputenv("DIALTONE_DEV_DIR", QByteArray::fromStdString(_simulator.devDir()));
    } else if (!_context.devDir.empty()) {
        qputenv("DIALTONE_DEV_DIR", QByteArray::fromStdString(_context.devDir));
    }

    // A link started by "dialtone connect" stays up when the tool exits; "dialtone disconnect" ends it.
    ApplicationShell::sharedShell().setKeepsLinkOnQuit(true);

    // The delegate is the sender of every request; the ready callback only runs with one.
    _delegate = std::make_unique<QObject>();
    _delegate->setObjectName(QStringLiteral("dialtone"));
    _agent = std::make_unique<GUIThreadAgent>(nullptr, _delegate.get());
    QEventLoop loop;
    _agent->setServerSetupCompleteTargetCallBack([this, &loop](WorkNotification* notification) {
        _notification = notification;
        loop.quit();
    });
    QTimer::singleShot(std::chrono::seconds(10), &loop, &QEventLoop::quit);
    if (!_notification)
        loop.exec();
    if (!_notification)
        _notification = _agent->workNotification();
    if (!_notification) {
        _context.exitCode = ReportFailure(_context, WORKER_ERR_GENERAL, "the worker thread did not start");
        return false;
    }

    const QVariantMap response = request(MESSAGE_INIT_WORK_THREAD, {}, 30);
    // The device watch installs its own interrupt handler; the simulator must still be stopped.
    if (_simulator.pid() > 0)
        WatchForInterrupts(_simulator.pid(), _simulator.devDir());
    const int code = WorkNotification::GetErrorCode(response);
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
        const std::string port = (DeviceUtility::deviceDir() + "/" + atName).toStdString();
        if (HeldByAnotherProgram(port))
            return ReportFailure(_context, code, "the modem is in use by another program: " + port);
        return ReportFailure(_context, code, "the modem's port " + port + " could not be opened");
    }
    if (code == WORKER_ERR_NO_DATA_DEVICE || (code == WORKER_ERR_GENERAL && !found) ||
        code == WORKER_ERR_SWITCH_DISK_ERROR) {
        return ReportFailure(_context, code,
                             "no modem found in " + DeviceUtility::deviceDir().toStdString() +
                                 " (plug the modem in, or try --simulate)");
    }
    return ReportFailure(_context, code, "the modem could not be initialised: " + ResultCodeText(code));
}

QVariantMap ModemSession::request(const QString& name, const QVariant& argument, int deadlineSeconds) {
    QVariantMap userInfo;
    if (argument.isValid())
        WorkNotification::SetValueObject(userInfo, argument);
    TheWatchdog().arm(deadlineSeconds, name.toStdString(), _context.json, _simulator.pid(),
                      _simulator.devDir());
    QVariantMap response = _notification->sendworkMessage(name, userInfo, true);
    TheWatchdog().disarm();
    return response;
}

int ModemSession::check(const QVariantMap& response, const std::string& what) {
    const int code = WorkNotification::GetErrorCode(response);
    if (code == WORKER_OK)
        return EXIT_OK;
    return ReportFailure(_context, code, what + ": " + ResultCodeText(code));
}

std::string ResultCodeText(int code) {
    switch (code) {
    case 0:
        return "success";
    case 1:
        return "the modem reported a failure";
    case 2:
        return "the modem did not answer in time";
    case 3:
        return "the request needs an argument";
    case 5:
        return "PH-SIM PIN required";
    case 6:
        return "PH-FSIM PIN required";
    case 7:
        return "PH-FSIM PUK required";
    case 8:
        return "SIM not inserted";
    case 9:
        return "SIM PIN required";
    case 10:
        return "SIM PUK required";
    case 11:
        return "SIM failure";
    case 12:
        return "SIM busy";
    case 13:
        return "SIM wrong";
    case 14:
        return "incorrect password";
    case 15:
        return "SIM PIN2 required";
    case 16:
        return "SIM PUK2 required";
    case 17:
        return "network personalization PIN required";
    case 18:
        return "network personalization PUK required";
    case 19:
        return "network subset personalization PIN required";
    case 20:
        return "network subset personalization PUK required";
    case 21:
        return "service provider personalization PIN required";
    case 22:
        return "service provider personalization PUK required";
    case 23:
        return "corporate personalization PIN required";
    case 24:
        return "corporate personalization PUK required";
    case 25:
        return "the answer was withheld";
    case 27:
        return "no modem found";
    case 28:
        return "the modem's port could not be opened";
    case 30:
        return "the command was cancelled, or the modem could not be switched to modem mode";
    case 31:
        return "the modem did not answer its start-up commands";
    case 32:
        return "no worker to send the request to";
    case 33:
        return "the modem refused the network mode";
    case 35:
        return "unknown request name";
    case 36:
        return "unknown report";
    case 37:
        return "the modem service was not found";
    case 38:
        return "no modem device name";
    case 39:
        return "no modem device";
    case 44:
        return "the message was taken by a filter";
    default:
        return "the modem reported error " + std::to_string(code);
    }
}

int RunInSession(CliContext& context, const std::function<int(ModemSession&)>& command) {
    ModemSession session(context);
    if (!session.open())
        return context.exitCode;
    return command(session);
}

std::string OperatorText(const QString& operatorCode, const QString& providerName) {
    if (operatorCode.isEmpty())
        return "-";
    QString name = providerName;
    if (name.isEmpty()) {
        if (const AppConfig* config = ApplicationShell::sharedShell().appConfig())
            name = config->getOperatorNameByNumeric(operatorCode);
    }
    if (name.isEmpty() || name == operatorCode)
        return operatorCode.toStdString();
    return (name + QStringLiteral(" (") + operatorCode + QStringLiteral(")")).toStdString();
}
