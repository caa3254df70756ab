#include "SimulatorProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>

#include <nlohmann/json.hpp>

extern char** environ;

namespace {

// The first line fd gives within 10 s, without its line feed.
std::string ReadLine(int fd) {
    std::string text;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (text.find('\n') == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        pollfd poller{fd, POLLIN, 0};
        if (poll(&poller, 1, 100) <= 0)
            continue;
        char buffer[8192];
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n <= 0)
            break;
        text.append(buffer, static_cast<std::size_t>(n));
    }
    return text.substr(0, text.find('\n'));
}

} // namespace

SimulatorProcess::SimulatorProcess(const std::string& program, const std::string& devDir,
                                   const std::vector<std::string>& arguments) {
    std::vector<std::string> all{program, "--dev-dir", devDir};
    if (std::getenv("DIALTONE_SIM_TRACE") != nullptr)
        all.push_back("--trace");
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& argument : all)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
    if (posix_spawn(&_pid, program.c_str(), &actions, nullptr, argv.data(), environ) != 0)
        _pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (_pid > 0)
        _ready = ReadLine(fds[0]);
    close(fds[0]);
    const nlohmann::json paths = nlohmann::json::parse(_ready, nullptr, false);
    if (paths.is_object())
        _control = paths.value("control", "");
}

SimulatorProcess::~SimulatorProcess() {
    if (_pid <= 0)
        return;
    kill(_pid, SIGTERM);
    for (int i = 0; i < 500; ++i) {
        if (waitpid(_pid, nullptr, WNOHANG) == _pid)
            return;
        usleep(10000);
    }
    kill(_pid, SIGKILL);
    waitpid(_pid, nullptr, 0);
}

std::string SimulatorProcess::command(const std::string& line) const {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return {};
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, _control.c_str(), sizeof address.sun_path - 1);
    std::string answer;
    const std::string request = line + "\n";
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        write(fd, request.data(), request.size()) == static_cast<ssize_t>(request.size()))
        answer = ReadLine(fd);
    close(fd);
    return answer;
}
