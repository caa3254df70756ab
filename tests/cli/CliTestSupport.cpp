#include "CliTestSupport.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

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
    run.err = ReadFile(errPath);
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

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::string ReadFile(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void WriteFile(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
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
    std::vector<std::string> arguments = extraArguments;
    if (!scenario.empty())
        arguments.insert(arguments.begin(), {"--scenario", scenario});
    _process = std::make_unique<SimulatorProcess>(SimulatorPath(), devDir.path, arguments);
    // {"at":"/dev/pts/0","at_link":"<dev>/cu.VELDeviceInterface3","control":"<dev>/modemsim.sock",...}
    const json readyLine = Parse(_process->readyLine());
    if (readyLine.is_object())
        atLink = readyLine.value("at_link", "");
}

json SimulatedModem::command(const std::string& line) const {
    return Parse(_process->command(line));
}

int SimulatedModem::saw(const std::string& text) const {
    int seen = 0;
    for (const json& command : dump().value("commands", json::array()))
        seen += command.get<std::string>().find(text) != std::string::npos;
    return seen;
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

void RunSteps(const std::string& home, const std::vector<Step>& steps) {
    for (const Step& step : steps)
        ExpectStep(step, RunDialtone(step.args, home));
}

} // namespace clitest
