#include "SimTestSupport.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "SimScenario.h"

extern char** environ;

#ifndef DIALTONE_MODEMSIM
#define DIALTONE_MODEMSIM ""
#endif

namespace modemsim::test {

namespace {

// Reads fd until a whole line has come, it ends, or the limit passes; the first line parsed as JSON
// (null when there is none).
nlohmann::json ReadJsonLine(int fd, std::chrono::milliseconds limit) {
    std::string text;
    const auto end = std::chrono::steady_clock::now() + limit;
    while (text.find('\n') == std::string::npos && std::chrono::steady_clock::now() < end) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, 100) > 0) {
            char buf[4096];
            const ssize_t n = read(fd, buf, sizeof buf);
            if (n <= 0) {
                break;
            }
            text.append(buf, static_cast<size_t>(n));
        }
    }
    if (text.find('\n') == std::string::npos) {
        return nullptr;
    }
    nlohmann::json j = nlohmann::json::parse(text.substr(0, text.find('\n')), nullptr, false);
    return j.is_discarded() ? nlohmann::json(nullptr) : j;
}

} // namespace

ModemHarness::ModemHarness(SimState state) : modem(std::move(state)) {
    modem.SetHostConnected(true, now);
}

SimState ModemHarness::Builtin() {
    SimState s;
    std::string error;
    if (!LoadScenario("", s, error)) {
        std::abort();
    }
    return s;
}

std::string ModemHarness::Send(const std::string& bytes) {
    modem.Receive(bytes, now);
    modem.Advance(now);
    return modem.TakeOutput();
}

std::string ModemHarness::At(const std::string& command) {
    return Send(command + "\r");
}

void ModemHarness::ExpectAnswers(std::initializer_list<std::pair<const char*, const char*>> exchanges) {
    for (const auto& [command, answer] : exchanges)
        EXPECT_EQ(At(command), answer) << command;
}

std::string ModemHarness::Run(int ms) {
    TimePoint target = now + std::chrono::milliseconds(ms);
    for (;;) {
        auto wake = modem.NextWake();
        if (!wake || *wake > target) {
            break;
        }
        now = std::max(now, *wake);
        modem.Advance(now);
    }
    now = target;
    modem.Advance(now);
    return modem.TakeOutput();
}

TempDir::TempDir() {
    char tmpl[] = "/tmp/modemsim-test-XXXXXX";
    char* made = mkdtemp(tmpl);
    path_ = made ? made : "";
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

SimProcess::SimProcess(std::vector<std::string> args) {
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0) {
        return;
    }
    std::vector<std::string> argv = {DIALTONE_MODEMSIM, "--dev-dir", dir_.Path()};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> cargv;
    for (std::string& a : argv) {
        cargv.push_back(a.data());
    }
    cargv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    pid_t pid = -1;
    if (posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, cargv.data(), environ) == 0) {
        pid_ = pid;
    }
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    if (pid_ > 0) {
        ready_ = ReadJsonLine(out[0], std::chrono::seconds(10));
    }
    close(out[0]);
}

SimProcess::~SimProcess() {
    if (pid_ > 0) {
        Terminate(SIGKILL);
    }
}

nlohmann::json SimProcess::Control(const std::string& line) const {
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    std::string path = ready_.value("control", "");
    std::strncpy(addr.sun_path, path.c_str(), sizeof addr.sun_path - 1);
    if (fd < 0 || connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        if (fd >= 0) {
            close(fd);
        }
        return nullptr;
    }
    std::string text = line + "\n";
    if (write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        close(fd);
        return nullptr;
    }
    nlohmann::json reply = ReadJsonLine(fd, std::chrono::seconds(5));
    close(fd);
    return reply;
}

int SimProcess::WaitExit(std::chrono::milliseconds limit) {
    int status = 0;
    bool done = WaitFor([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, limit);
    if (!done) {
        return -1;
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int SimProcess::Terminate(int signal) {
    if (pid_ <= 0) {
        return -1;
    }
    kill(pid_, signal);
    return WaitExit(std::chrono::seconds(5));
}

HostPort::HostPort(const std::string& path) {
    fd_ = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY);
    if (fd_ < 0) {
        return;
    }
    if (flock(fd_, LOCK_EX | LOCK_NB) != 0) {
        Close();
        return;
    }
    termios tio{};
    tcgetattr(fd_, &tio);
    cfmakeraw(&tio);
    tcsetattr(fd_, TCSANOW, &tio);
    tcflush(fd_, TCIFLUSH);
}

HostPort::~HostPort() {
    Close();
}

void HostPort::Close() {
    if (fd_ >= 0) {
        close(fd_);
    }
    fd_ = -1;
}

void HostPort::Write(const std::string& bytes) const {
    ssize_t n = write(fd_, bytes.data(), bytes.size());
    (void)n;
}

std::string HostPort::ReadUntil(const std::string& until, std::chrono::milliseconds limit, int* reads) {
    std::string out;
    auto end = std::chrono::steady_clock::now() + limit;
    while (out.find(until) == std::string::npos && std::chrono::steady_clock::now() < end) {
        pollfd p{fd_, POLLIN, 0};
        if (poll(&p, 1, 10) > 0 && (p.revents & POLLIN)) {
            char buf[1024];
            ssize_t n = read(fd_, buf, sizeof buf);
            if (n > 0) {
                out.append(buf, static_cast<size_t>(n));
                if (reads) {
                    ++*reads;
                }
            }
        }
    }
    return out;
}

bool HostPort::WaitHangup(std::chrono::milliseconds limit) {
    return WaitFor(
        [this] {
            pollfd p{fd_, POLLIN, 0};
            if (poll(&p, 1, 0) > 0 && (p.revents & (POLLHUP | POLLERR))) {
                return true;
            }
            char c;
            return read(fd_, &c, 1) < 0 && errno == EIO;
        },
        limit);
}

} // namespace modemsim::test
