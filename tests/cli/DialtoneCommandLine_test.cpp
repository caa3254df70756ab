// The tool's command line against one simulated modem: global options anywhere, bands and modes by name,
// the modem traffic with --debug, the USSD dialogue on a terminal, and the shell completion scripts.

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::Quote;
using clitest::Shell;
using clitest::SimulatedModem;
using nlohmann::json;

TEST(DialtoneCommandLine, GlobalOptionsAnywhereAndSettingsByName) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const struct { std::vector<std::string> args; const char* out; const char* err; } rows[] = {
        {{"status", "--json"}, "\"registration\": \"home\"", ""},
        {{"network", "--json", "reg"}, "\"registration_code\": 1", ""},
        {{"network", "info"}, "Signal:          4/5 (-78 dBm)\n", ""},
        {{"ussd", "*100#", "--wait", "15"}, "Your balance is 12.34 EUR", ""},
        {{"network", "band"}, "band: all\n", ""},
        {{"network", "band", "GSM900,umts2100"}, "band set to GSM 900, UMTS 2100\n", ""},
        {{"network", "band"}, "band: GSM 900, UMTS 2100\n", ""},
        {{"network", "band", "0x80"}, "band set to GSM 1800\n", ""},
        {{"network", "mode", "3g-preferred"}, "mode set to 3g-preferred\n", ""},
        {{"network", "mode", "2", "--debug"}, "mode set to 2g-only\n", " > AT+SYSSEL=,0,1\n"},
        {{"network", "mode"}, "mode: 2g-only\n", ""},
        {{"pin", "verify", "--pin-stdin", "--debug"}, "", " > AT+CPIN=\"****\""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args.front() + " " + row.args.back());
        const Outcome run = modem.run(row.args, "1234\n");
        EXPECT_NE(run.out.find(row.out), std::string::npos) << run.out;
        EXPECT_NE(run.err.find(row.err), std::string::npos) << run.err;
        EXPECT_EQ(run.err.find("1234"), std::string::npos) << run.err;
        EXPECT_EQ(run.err.find("!!"), std::string::npos) << "internal debug texts: " << run.err;
    }
}

// Reads from the terminal until the text shows or 20 s pass; what was read.
std::string ReadUntil(int fd, const std::string& text, std::string& seen) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (seen.find(text) == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        pollfd ready{fd, POLLIN, 0};
        if (poll(&ready, 1, 100) <= 0)
            continue;
        char buffer[512];
        const ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n <= 0)
            break;
        seen.append(buffer, static_cast<std::size_t>(n));
    }
    return seen;
}

TEST(DialtoneCommandLine, UssdOnATerminalAsksForEachReplyUntilAnEmptyLine) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        setenv("HOME", modem.home.path.c_str(), 1);
        execl(DIALTONE_CLI, DIALTONE_CLI, "--dev-dir", modem.devDir.path.c_str(), "ussd", "*135#", "--wait",
              "10", static_cast<char*>(nullptr));
        _exit(127);
    }
    std::string seen;
    EXPECT_NE(ReadUntil(terminal, "Reply", seen).find("2 Data options"), std::string::npos) << seen;
    ASSERT_EQ(write(terminal, "2\n", 2), 2);
    seen.clear();
    EXPECT_NE(ReadUntil(terminal, "Reply", seen).find("1 Day pass"), std::string::npos) << seen;
    ASSERT_EQ(write(terminal, "\n", 1), 1);
    seen.clear();
    EXPECT_NE(ReadUntil(terminal, "dialogue ended", seen).find("dialogue ended"), std::string::npos) << seen;
    int status = -1;
    waitpid(child, &status, 0);
    close(terminal);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    const json ussd = modem.dump()["ussd"];
    EXPECT_EQ(ussd["requests"], json({"*135#", "2"})) << ussd.dump();
    EXPECT_EQ(ussd["session"], false) << ussd.dump();
}

TEST(DialtoneCommandLine, CompletionScriptsLoadAndOfferTheCommands) {
    const clitest::TempDir folder;
    const std::string tool = Quote(DIALTONE_CLI);
    Shell(tool + " --completion bash >" + folder.path + "/dialtone.bash && " + tool + " --completion zsh >" +
          folder.path + "/_dialtone");
    const std::string bash = "bash --norc -c " + Quote("source " + folder.path +
                                                       "/dialtone.bash && "
                                                       "t() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                                                       "_dialtone; echo \"${COMPREPLY[*]}\"; }; ");
    const std::string zsh = "zsh -f -c " + Quote("fpath=(" + folder.path +
                                                 " $fpath); autoload -Uz compinit; compinit -u -D; "
                                                 "compadd() { shift 2; shift; print -r -- \"$*\"; }; "
                                                 "t() { words=(\"$@\"); CURRENT=$#; _dialtone; }; ");
    // What the shell's script offers after the words (the command line ends in the quote Quote added).
    const auto complete = [](const std::string& shell, const std::string& words) {
        return Shell(shell.substr(0, shell.size() - 1) + "t " + words + "'").out;
    };
    // clang-format off
    const struct { std::string words; std::string offered; } rows[] = {
        {"dialtone st", "status stats stk"},
        {"dialtone --json network b", "band"},
        {"dialtone network band gsm900,umts2", "gsm900,umts2100"},
        {"dialtone --wait 5 sms li", "list"},
        {"dialtone ussd --re", "--reply --record --record-private"},
        {"dialtone status --output k", "key=value"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words);
        EXPECT_EQ(complete(bash, row.words), row.offered + "\n");
    }
    // zsh filters by the word typed itself: the script offers every word that may stand there.
    EXPECT_NE(complete(zsh, "dialtone st").find("status info request pin network"), std::string::npos);
    EXPECT_NE(complete(zsh, "dialtone network mode \"\"").find("3g-preferred"), std::string::npos);
}

} // namespace
