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
    Outcome run = Shell(command);
    std::stringstream text;
    text << std::ifstream(errPath).rdbuf();
    run.err = text.str();
    return run;
}

Outcome Shell(const std::string& command) {
    Outcome run;
    FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    if (!pipe)
        return run;
    char buffer[4096];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        run.out.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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

// The first line fd gives within 10 s, without its line feed.
static std::string ReadLine(int fd) {
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

void SimulatedModem::start(const std::string& scenario, const std::vector<std::string>& extraArguments) {
    std::string program = SimulatorPath();
    std::vector<std::string> arguments{program, "--dev-dir", devDir.path};
    if (!scenario.empty())
        arguments.insert(arguments.end(), {"--scenario", scenario});
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
    const json readyLine = _pid > 0 ? Parse(ReadLine(_out)) : json();
    if (!readyLine.is_object())
        return;
    atLink = readyLine.value("at_link", "");
    control = readyLine.value("control", "");
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
    const std::string request = line + "\n";
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        write(fd, request.data(), request.size()) == static_cast<ssize_t>(request.size()))
        answer = ReadLine(fd);
    close(fd);
    return Parse(answer);
}

Outcome SimulatedModem::run(const std::vector<std::string>& arguments, const std::string& input) const {
    const std::string inputPath = files.path + "/stdin.txt";
    std::ofstream(inputPath, std::ios::binary) << input;
    std::vector<std::string> all{"--dev-dir", devDir.path};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return RunDialtone(all, home.path, {}, inputPath);
}

void ExpectStep(const Step& step, const Outcome& run) {
    SCOPED_TRACE(testing::PrintToString(step.args));
    EXPECT_EQ(run.status, step.status) << run.out << run.err;
    if (step.exact || (step.out.empty() && step.status != 0)) {
        EXPECT_EQ(run.out, step.out.empty() ? "" : step.out[0]);
    }
    for (const std::string& text : step.out)
        EXPECT_NE(run.out.find(text), std::string::npos) << text << " in\n" << run.out;
    EXPECT_NE(run.err.find(step.err), std::string::npos) << step.err << " in\n" << run.err;
}

void RunSteps(const SimulatedModem& modem, const std::vector<Step>& steps) {
    for (const Step& step : steps)
        ExpectStep(step, modem.run(step.args, step.input));
}

} // namespace clitest
