// The dialtone tool against the simulated modem: exit codes, JSON output, PIN handling, named requests
// with record arguments, and a port that another program holds.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

extern char** environ;

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

std::string Quote(const std::string& argument) {
    std::string quoted = "'";
    for (char c : argument)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// A temporary folder, removed with everything in it.
struct TempDir {
    TempDir() {
        std::string pattern = (fs::temp_directory_path() / "dialtone-cli-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~TempDir() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    std::string path;
};

// Runs the tool with its own HOME (configuration and logs stay in the test's folder).
Outcome Dialtone(const std::string& home, const std::vector<std::string>& arguments) {
    const std::string errPath = home + "/stderr.txt";
    std::string command = "HOME=" + Quote(home) + " " + Quote(DIALTONE_CLI);
    for (const std::string& argument : arguments)
        command += " " + Quote(argument);
    command += " 2>" + Quote(errPath) + " </dev/null";
    Outcome run;
    FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    char buffer[4096];
    std::size_t n = 0;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        run.out.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ifstream err(errPath);
    std::stringstream text;
    text << err.rdbuf();
    run.err = text.str();
    return run;
}

json Parse(const std::string& text) {
    return json::parse(text, nullptr, false);
}

// The simulator next to the tool in the build tree (src/cli/dialtone, tools/modemsim/dialtone-modemsim).
std::string SimulatorPath() {
    return (fs::path(DIALTONE_CLI).parent_path().parent_path().parent_path() /
            "tools/modemsim/dialtone-modemsim")
        .string();
}

// One simulated modem for several runs of the tool, so that state (PIN attempts) carries over.
class SimulatedModem {
public:
    explicit SimulatedModem(const std::string& scenario) {
        std::string program = SimulatorPath();
        std::vector<std::string> arguments{program, "--dev-dir", devDir.path, "--scenario", scenario};
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
        // Ready once it has printed its JSON line.
        std::string line;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (_pid > 0 && line.find('\n') == std::string::npos &&
               std::chrono::steady_clock::now() < deadline) {
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
        if (readyLine.is_object() && readyLine.contains("at_link"))
            atLink = readyLine["at_link"].get<std::string>();
    }
    ~SimulatedModem() {
        if (_pid > 0) {
            kill(_pid, SIGTERM);
            waitpid(_pid, nullptr, 0);
        }
        if (_out >= 0)
            close(_out);
    }
    bool ready() const { return !atLink.empty(); }

    TempDir devDir;
    std::string atLink;

private:
    pid_t _pid = -1;
    int _out = -1;
};

TEST(DialtoneModem, UsageErrorsExitTwoWithoutTouchingAModem) {
    TempDir home;
    const std::vector<std::vector<std::string>> rows = {
        {"frobnicate"},
        {"pin", "verify"},
        {"network", "select", "26x02"},
        {"network", "select", "26202", "--act", "x"},
        {"request", "MESSAGE_SMS_SEND", "{not json"},
        {"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumbr":"+491701"})"},
        {"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumber":17})"},
        {"request", "MESSAGE_SMS_SEND", R"({"class":"BLNoSuchRecord"})"},
        {"request", "MESSAGE_NETWORK_SET", R"({"class":"BLNetworkSet","nMode":4294967296})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.back());
        const Outcome run = Dialtone(home.path, row);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_FALSE(run.err.empty());
    }
}

TEST(DialtoneModem, NoModemIsAFailureWithErrorCodeInJson) {
    TempDir home;
    TempDir emptyDevDir;
    const Outcome text = Dialtone(home.path, {"--dev-dir", emptyDevDir.path, "status"});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.out, "");
    EXPECT_NE(text.err.find("no modem found"), std::string::npos) << text.err;

    const Outcome run = Dialtone(home.path, {"--dev-dir", emptyDevDir.path, "--json", "info"});
    EXPECT_EQ(run.status, 1);
    const json document = Parse(run.out);
    ASSERT_TRUE(document.is_object()) << run.out;
    EXPECT_TRUE(document.contains("ERROR_CODE"));
    EXPECT_NE(document["ERROR_CODE"], 0);
}

TEST(DialtoneModem, StatusJsonShowsWhatTheModemReports) {
    TempDir home;
    const Outcome run = Dialtone(home.path, {"--simulate", "--json", "status"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = Parse(run.out);
    ASSERT_TRUE(document.is_object()) << run.out;
    const json& diag = document["diagInfo"];
    EXPECT_EQ(diag["class"], "BLDiagInfo");
    EXPECT_EQ(diag["strManufacturer"], "SIMULATED");
    EXPECT_EQ(diag["strModel"], "HSPA USB Modem SIM-3G");
    EXPECT_EQ(diag["strSerialNumber"], "356938035643809");
    for (const char* key : {"strImsi", "strOperator", "nRssi", "nRoamState", "nBearer", "nPinState",
                            "nGprsRegState", "nNormalRegState", "nPsAttachState"})
        EXPECT_TRUE(diag.contains(key)) << key;
    EXPECT_EQ(diag["nPinState"], 1); // ready
    EXPECT_EQ(document["pinState"]["class"], "BLPinCheckState");
    EXPECT_TRUE(document.contains("connectStatus"));
}

TEST(DialtoneModem, WrongPinCountsDownThenTheRightOneUnlocks) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    TempDir home;
    const std::vector<std::string> dev{"--dev-dir", modem.devDir.path};
    auto with = [&dev](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), dev.begin(), dev.end());
        return arguments;
    };

    const Outcome locked = Dialtone(home.path, with({"--json", "pin", "status"}));
    ASSERT_EQ(locked.status, 0) << locked.err;
    EXPECT_EQ(Parse(locked.out)["nState"], 2); // PIN required
    EXPECT_EQ(Parse(locked.out)["nPinCnt"], 3);

    const Outcome wrong = Dialtone(home.path, with({"--json", "pin", "verify", "0000"}));
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(Parse(wrong.out)["ERROR_CODE"], 14); // incorrect password
    EXPECT_NE(wrong.err.find("incorrect password"), std::string::npos) << wrong.err;
    EXPECT_NE(wrong.err.find("2 PIN attempts"), std::string::npos) << wrong.err;

    const Outcome right = Dialtone(home.path, with({"pin", "verify", "1234"}));
    EXPECT_EQ(right.status, 0) << right.err;
    const Outcome ready = Dialtone(home.path, with({"--json", "pin", "status"}));
    EXPECT_EQ(Parse(ready.out)["nState"], 1) << ready.out;
}

TEST(DialtoneModem, RequestTakesARecordAndPrintsTheWholeResponse) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    TempDir home;
    const Outcome enable =
        Dialtone(home.path, {"--dev-dir", modem.devDir.path, "request", "MESSAGE_PIN_ENABLE",
                             R"({"class":"BLPINEnableInfo","blPinEnable":true,"strPinCode":"1234"})"});
    ASSERT_EQ(enable.status, 0) << enable.err;
    EXPECT_TRUE(Parse(enable.out).is_object()) << enable.out;

    const Outcome state =
        Dialtone(home.path, {"--dev-dir", modem.devDir.path, "request", "MESSAGE_PIN_GET_STATE"});
    ASSERT_EQ(state.status, 0) << state.err;
    EXPECT_EQ(Parse(state.out)["VALUE_OBJECT"], "TRUE") << state.out;

    const Outcome info =
        Dialtone(home.path, {"--dev-dir", modem.devDir.path, "request", "MESSAGE_SYSTEM_GET_EQUIPMENT_INFO"});
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(Parse(info.out)["VALUE_OBJECT"]["class"], "BLEquipmentInfo");

    // A name the worker does not know is its failure, not a usage error.
    const Outcome unknown = Dialtone(
        home.path, {"--dev-dir", modem.devDir.path, "--json", "request", "MESSAGE_NETWORK_GET_BAND"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(Parse(unknown.out)["ERROR_CODE"], 35);
}

TEST(DialtoneModem, APortHeldByAnotherProgramIsAClearError) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    const int held = open(modem.atLink.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(held, 0);
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
    TempDir home;
    const auto start = std::chrono::steady_clock::now();
    const Outcome run = Dialtone(home.path, {"--dev-dir", modem.devDir.path, "status"});
    const auto took = std::chrono::steady_clock::now() - start;
    close(held);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("the modem is in use by another program"), std::string::npos) << run.err;
    EXPECT_LT(took, std::chrono::seconds(10));
}

} // namespace
