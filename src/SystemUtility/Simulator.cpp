#include "Simulator.h"

#include "ModemDialect.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

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
    // "replay:FILE" plays a recorded session back instead of simulating a modem.
    if (scenario.starts_with("replay:"))
        arguments.insert(arguments.end(), {"--replay", scenario.substr(7)});
    else if (!scenario.empty())
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
    if (ready.contains("control") && ready["control"].is_string())
        _control = ready["control"].get<std::string>();
    // Its pseudo-terminals have no USB device for the device table to name the dialect: it says it.
    ModemDialect dialect = ModemDialect::Vel;
    if (ready.contains("dialect") && ready["dialect"].is_string() &&
        ModemDialectFromName(ready["dialect"].get<std::string>(), dialect))
        SetModemDialect(dialect);
    stopOnInterrupt();
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
    _control.clear();
}

void Simulator::useOwnFolders() const {
    if (_devDir.empty())
        return;
    const std::string dialup = dialupDir();
    setenv("DIALTONE_DEV_DIR", _devDir.c_str(), 1);
    const std::pair<const char*, const char*> folders[] = {{"DIALTONE_PEERS_DIR", "/peers"},
                                                           {"DIALTONE_PPP_RUN_DIR", "/run"},
                                                           {"DIALTONE_CHATSCRIPTS_DIR", "/chatscripts"}};
    for (const auto& [variable, name] : folders) {
        std::error_code ignored;
        std::filesystem::create_directories(dialup + name, ignored);
        setenv(variable, (dialup + name).c_str(), 1);
    }
}

void Simulator::stopOnInterrupt() const {
    if (_pid > 0)
        WatchForInterrupts(_pid, _devDir);
}
