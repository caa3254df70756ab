// The phonebook and USSD commands of the dialtone tool against one simulated modem per test, so that what
// a run changes is there for the next run and can be read back from the simulator's state.

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
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

struct TempDir {
    TempDir() {
        std::string pattern = (fs::temp_directory_path() / "dialtone-cli10-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~TempDir() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    std::string path;
};

// The simulator next to the tool in the build tree.
std::string SimulatorPath() {
    return (fs::path(DIALTONE_CLI).parent_path().parent_path().parent_path() /
            "tools/modemsim/dialtone-modemsim")
        .string();
}

// A simulated modem in a device folder of its own, with a temporary HOME for the tool's runs.
class Modem {
public:
    Modem() {
        std::string program = SimulatorPath();
        std::vector<std::string> arguments{program, "--dev-dir", devDir.path};
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
        // Ready once it has printed its line with the ports.
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
        _ready = line.find("\"control\"") != std::string::npos;
    }
    ~Modem() {
        if (_pid > 0) {
            kill(_pid, SIGTERM);
            waitpid(_pid, nullptr, 0);
        }
        if (_out >= 0)
            close(_out);
    }
    Modem(const Modem&) = delete;
    Modem& operator=(const Modem&) = delete;

    bool ready() const { return _ready; }

    Outcome run(const std::vector<std::string>& arguments) const {
        const std::string errPath = home.path + "/stderr.txt";
        std::string command = "HOME=" + Quote(home.path) + " " + Quote(DIALTONE_CLI) + " --dev-dir " +
                              Quote(devDir.path) + " --wait 10";
        for (const std::string& argument : arguments)
            command += " " + Quote(argument);
        command += " 2>" + Quote(errPath) + " </dev/null";
        Outcome outcome;
        FILE* pipe = popen(command.c_str(), "r");
        EXPECT_NE(pipe, nullptr);
        if (!pipe)
            return outcome;
        char buffer[4096];
        std::size_t n = 0;
        while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
            outcome.out.append(buffer, n);
        const int status = pclose(pipe);
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        std::ifstream err(errPath);
        std::stringstream text;
        text << err.rdbuf();
        outcome.err = text.str();
        return outcome;
    }

    // The simulator's state through its control socket ("dump").
    json dump() const {
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = devDir.path + "/modemsim.sock";
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        std::string reply;
        if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            write(fd, "dump\n", 5) == 5) {
            char buffer[8192];
            ssize_t n = 0;
            while (reply.find('\n') == std::string::npos && (n = read(fd, buffer, sizeof buffer)) > 0)
                reply.append(buffer, static_cast<std::size_t>(n));
        }
        close(fd);
        return json::parse(reply, nullptr, false);
    }

    TempDir devDir;
    TempDir home;

private:
    pid_t _pid = -1;
    int _out = -1;
    bool _ready = false;
};

// The entry at index in the tool's JSON list of contacts, or null.
json Entry(const json& list, int store, int index) {
    for (const json& item : list) {
        if (item.value("nStore", -1) == store && item.value("nIndex", -1) == index)
            return item;
    }
    return nullptr;
}

TEST(Dialtone10, ContactsAddUpdateDeleteOnBothPhonebooks) {
    Modem modem;
    ASSERT_TRUE(modem.ready());
    struct Row {
        const char* store;
        int code;
        int firstFree; // of the scenario's phonebooks: SIM 1, 2, 4 in use; modem 1
    };
    for (const Row& row : {Row{"sim", 0, 3}, Row{"modem", 1, 2}}) {
        SCOPED_TRACE(row.store);
        const Outcome added =
            modem.run({"--json", "contacts", "add", "Carla", "+491761112233", "--store", row.store});
        ASSERT_EQ(added.status, 0) << added.err;
        EXPECT_EQ(json::parse(added.out, nullptr, false).value("VALUE_OBJECT", -1), row.firstFree)
            << added.out;

        Outcome list = modem.run({"--json", "contacts", "list"});
        ASSERT_EQ(list.status, 0) << list.err;
        json entry = Entry(json::parse(list.out, nullptr, false), row.code, row.firstFree);
        ASSERT_TRUE(entry.is_object()) << list.out;
        EXPECT_EQ(entry["strName"], "Carla");
        EXPECT_EQ(entry["strNumber"], "+491761112233");

        const std::string index = std::to_string(row.firstFree);
        const Outcome updated = modem.run({"contacts", "update", row.store, index, "Dora", "030445566"});
        ASSERT_EQ(updated.status, 0) << updated.err;
        list = modem.run({"contacts", "list"});
        ASSERT_EQ(list.status, 0) << list.err;
        EXPECT_NE(list.out.find("Dora"), std::string::npos) << list.out;
        EXPECT_NE(list.out.find("030445566"), std::string::npos) << list.out;

        const Outcome deleted = modem.run({"contacts", "delete", row.store, index});
        ASSERT_EQ(deleted.status, 0) << deleted.err;
        list = modem.run({"--json", "contacts", "list"});
        ASSERT_EQ(list.status, 0) << list.err;
        EXPECT_TRUE(Entry(json::parse(list.out, nullptr, false), row.code, row.firstFree).is_null())
            << list.out;
    }
    // The simulator's phonebooks hold the scenario's entries again.
    const json books = modem.dump()["phonebooks"];
    EXPECT_EQ(books["SM"]["used"], 3) << books.dump();
    EXPECT_EQ(books["ME"]["used"], 1) << books.dump();

    const Outcome info = modem.run({"--json", "contacts", "info"});
    ASSERT_EQ(info.status, 0) << info.err;
    const json document = json::parse(info.out, nullptr, false);
    EXPECT_EQ(document["storage"]["nSimTotal"], 250) << info.out;
    EXPECT_EQ(document["constraint"]["nSimMaxNameLen"], 14) << info.out;
}

TEST(Dialtone10, ContactsUsageErrors) {
    Modem modem;
    for (const std::vector<std::string>& row : std::vector<std::vector<std::string>>{
             {"contacts", "add", "Carla", "123", "--store", "card"},
             {"contacts", "delete", "sim", "x"},
             {"contacts", "update", "sim", "1", "Dora"},
             {"ussd"},
             {"ussd", "*100#", "--cancel"},
         }) {
        SCOPED_TRACE(row.back());
        const Outcome run = modem.run(row);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_EQ(run.out, "");
    }
}

TEST(Dialtone10, UssdMenuDialogueOfTwoStepsThenCancel) {
    Modem modem;
    ASSERT_TRUE(modem.ready());
    const Outcome dialogue = modem.run({"ussd", "*135#", "--reply", "2", "--reply", "1"});
    ASSERT_EQ(dialogue.status, 0) << dialogue.err;
    EXPECT_EQ(dialogue.out, "1 Balance\n2 Data options\n3 Tariff\n"
                            "1 Day pass 1 GB (1.99 EUR)\n2 Week pass 5 GB (4.99 EUR)\n"
                            "Day pass booked. Enjoy!\n");

    // Without a reply (and no terminal) the dialogue is cancelled; one JSON line per answer.
    const Outcome open = modem.run({"--json", "ussd", "*135#"});
    ASSERT_EQ(open.status, 0) << open.err;
    EXPECT_EQ(open.out.find('\n'), open.out.size() - 1) << open.out;
    const json answer = json::parse(open.out, nullptr, false);
    EXPECT_EQ(answer["nReportType"], 1) << open.out;
    EXPECT_EQ(answer["strContent"], "1 Balance\n2 Data options\n3 Tariff");
    const json ussd = modem.dump()["ussd"];
    EXPECT_EQ(ussd["requests"], json({"*135#", "2", "1", "*135#"})) << ussd.dump();
    EXPECT_EQ(ussd["session"], false) << ussd.dump();

    const Outcome cancel = modem.run({"ussd", "--cancel"});
    EXPECT_EQ(cancel.status, 0) << cancel.err;
}

TEST(Dialtone10, UssdUnknownServiceIsAFailure) {
    Modem modem;
    ASSERT_TRUE(modem.ready());
    const Outcome run = modem.run({"ussd", "*999#"});
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("*999#"), std::string::npos) << run.err;
}

} // namespace
