// The tool's command line against one simulated modem: global options anywhere, bands and modes by name,
// the modem traffic with --debug, and the shell completion scripts.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::Quote;
using clitest::SimulatedModem;

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

std::string Shell(const std::string& command) {
    return clitest::Shell(command).out;
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
        EXPECT_EQ(Shell(bash.substr(0, bash.size() - 1) + "t " + row.words + "'"), row.offered + "\n");
    }
    // zsh filters by the word typed itself: the script offers every word that may stand there.
    const std::string offered = Shell(zsh.substr(0, zsh.size() - 1) + "t dialtone st'");
    EXPECT_NE(offered.find("status info request pin network"), std::string::npos) << offered;
    EXPECT_NE(Shell(zsh.substr(0, zsh.size() - 1) + "t dialtone network mode \"\"'").find("3g-preferred"),
              std::string::npos);
}

} // namespace
