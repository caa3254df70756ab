#include "CliTestSupport.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

extern char** environ;

namespace clitest {

namespace fs = std::filesystem;
using nlohmann::json;

std::string Quote(const std::string& argument) {
    std::string quoted = "'";
    for (char c : argument)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "dialtone-cli-XXXXXX").string();
    if (mkdtemp(pattern.data()))
        path = pattern;
    EXPECT_FALSE(path.empty());
}

TempDir::~TempDir() {
    std::error_code ignored;
    if (!path.empty())
        fs::remove_all(path, ignored);
}

Outcome RunDialtone(const std::vector<std::string>& args, const std::string& home,
                    const std::vector<std::pair<std::string, std::string>>& extraEnv,
                    const std::string& inputPath, const std::vector<std::string>& commandPrefix) {
    const TempDir errDir;
    const std::string errPath = errDir.path + "/stderr.txt";
    std::string command;
    for (const std::string& word : commandPrefix)
        command += Quote(word) + " ";
    command += "env";
    for (const auto& [name, value] : extraEnv) {
        if (value.empty())
            command += " -u " + Quote(name);
    }
    const auto locale = [](const auto& variable) {
        return variable.first.rfind("LANG", 0) == 0 || variable.first.rfind("LC_", 0) == 0;
    };
    if (!home.empty())
        command += " -u XDG_DATA_HOME -u XDG_CONFIG_HOME -u XDG_STATE_HOME HOME=" + Quote(home);
    if (std::none_of(extraEnv.begin(), extraEnv.end(), locale))
        command += " LANGUAGE= LC_ALL=C.UTF-8"; // the tool's English texts, whatever the user's language
    for (const auto& [name, value] : extraEnv) {
        if (!value.empty())
            command += " " + Quote(name + "=" + value);
    }
    command += " " + Quote(DIALTONE_CLI);
    for (const std::string& argument : args)
        command += " " + Quote(argument);
    command += " 2>" + Quote(errPath) + " <" + Quote(inputPath);
    Outcome run;
    FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    if (!pipe)
        return run;
    char buffer[4096];
    std::size_t n = 0;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        run.out.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::stringstream text;
    text << std::ifstream(errPath).rdbuf();
    run.err = text.str();
    return run;
}

json Parse(const std::string& text) {
    return json::parse(text, nullptr, false);
}

std::string SimulatorPath() {
    return (fs::path(DIALTONE_CLI).parent_path().parent_path().parent_path() /
            "tools/modemsim/dialtone-modemsim")
        .string();
}

SimulatedModem::SimulatedModem(const std::string& scenario, const std::vector<std::string>& extraArguments) {
    start(scenario, extraArguments);
}

SimulatedModem::SimulatedModem(const ScenarioPatch& scenario,
                               const std::vector<std::string>& extraArguments) {
    const std::string scenarioPath = files.path + "/scenario.json";
    std::ofstream(scenarioPath) << scenario.patch.dump();
    start(scenarioPath, extraArguments);
}

void SimulatedModem::start(const std::string& scenario, const std::vector<std::string>& extraArguments) {
    std::string program = SimulatorPath();
    std::vector<std::string> arguments{program, "--dev-dir", devDir.path};
    if (!scenario.empty()) {
        arguments.push_back("--scenario");
        arguments.push_back(scenario);
    }
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    int fds[2];
    if (pipe(fds) != 0)
        return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    if (posix_spawn(&_pid, program.c_str(), &actions, nullptr, argv.data(), environ) != 0)
        _pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    _out = fds[0];
    // {"at":"/dev/pts/0","at_link":"<dev>/cu.VELDeviceInterface3","control":"<dev>/modemsim.sock",...}
    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (_pid > 0 && line.find('\n') == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        pollfd poller{_out, POLLIN, 0};
        if (poll(&poller, 1, 100) <= 0)
            continue;
        char buffer[512];
        const ssize_t n = read(_out, buffer, sizeof buffer);
        if (n <= 0)
            break;
        line.append(buffer, static_cast<std::size_t>(n));
    }
    const json readyLine = Parse(line.substr(0, line.find('\n')));
    if (!readyLine.is_object())
        return;
    if (readyLine.contains("at_link") && readyLine["at_link"].is_string())
        atLink = readyLine["at_link"].get<std::string>();
    if (readyLine.contains("control") && readyLine["control"].is_string())
        control = readyLine["control"].get<std::string>();
}

SimulatedModem::~SimulatedModem() {
    if (_pid > 0) {
        kill(_pid, SIGTERM);
        waitpid(_pid, nullptr, 0);
    }
    if (_out >= 0)
        close(_out);
}

json SimulatedModem::command(const std::string& line) const {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return json(json::value_t::discarded);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, control.c_str(), sizeof address.sun_path - 1);
    std::string answer;
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
        const std::string request = line + "\n";
        if (write(fd, request.data(), request.size()) == static_cast<ssize_t>(request.size())) {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            while (answer.find('\n') == std::string::npos && std::chrono::steady_clock::now() < deadline) {
                pollfd poller{fd, POLLIN, 0};
                if (poll(&poller, 1, 100) <= 0)
                    continue;
                char buffer[8192];
                const ssize_t n = read(fd, buffer, sizeof buffer);
                if (n <= 0)
                    break;
                answer.append(buffer, static_cast<std::size_t>(n));
            }
        }
    }
    close(fd);
    return Parse(answer.substr(0, answer.find('\n')));
}

Outcome SimulatedModem::run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{"--dev-dir", devDir.path};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return RunDialtone(all, home.path);
}

Outcome SimulatedModem::run(const std::vector<std::string>& arguments, const std::string& input) const {
    const std::string inputPath = files.path + "/stdin.txt";
    std::ofstream(inputPath, std::ios::binary) << input;
    std::vector<std::string> all{"--dev-dir", devDir.path};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return RunDialtone(all, home.path, {}, inputPath);
}

} // namespace clitest
