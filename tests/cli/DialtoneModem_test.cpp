// The modem-facing commands against the simulated modem: exit codes, failures told by their causes, PIN
// handling, named requests with record arguments, what is refused before the modem is asked, sticks that
// answer in other ways, and the user's language.

#include <fcntl.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::ExpectStep;
using clitest::Outcome;
using clitest::Parse;
using clitest::RunDialtone;
using clitest::ScenarioPatch;
using clitest::SimulatedModem;
using clitest::TempDir;
using nlohmann::json;

// A request's argument is checked against the record the request takes; the message names the field.
TEST(DialtoneModem, UsageErrorsExitTwoWithoutTouchingAModem) {
    TempDir home;
    // clang-format off
    const std::vector<clitest::Step> rows = {
        {{"frobnicate"}, 2, {}, "unknown command 'frobnicate'.\nRun 'dialtone --help' for the list."},
        {{"stauts", "--json"}, 2, {}, "unknown command 'stauts'. Did you mean: status, stats?"},
        {{"--dev-dir", "/nowhere", "sms", "lsit"}, 2, {}, "unknown sms command 'lsit'. Did you mean: list?\nRun 'dialtone sms --help'"},
        {{"network"}, 2, {}, "'network' needs a command: info, scan, select, auto, band, mode, reg."},
        {{"status", "--wait", "0"}, 2, {}, "--wait must be a number of seconds from 0.1 to 86400, not '0'"},
        {{"network", "band", "gsm900,lte"}, 2, {}, "unknown band 'lte': use all, or one or more of gsm850, gsm900"},
        {{"network", "mode", "4g-only"}, 2, {}, "unknown mode '4g-only': use one of auto, 2g-only, 3g-only, 2g-preferred, 3g-preferred"},
        {{"pin", "verify"}, 2, {}, "no PIN given; --pin-stdin reads it"},
        {{"network", "select", "26x02"}, 2, {}, "MCCMNC must be 5 or 6 digits"},
        {{"network", "select", "26202", "--act", "x"}, 2, {}, "--act: Value x not in range"},
        {{"request", "MESSAGE_SMS_SEND", "{not json"}, 2, {}, "is not valid JSON"},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumbr":"+491701"})"}, 2, {}, "BLSmsSendItem has no field \"strNumbr\""},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumber":17})"}, 2, {}, "BLSmsSendItem.strNumber: 17 does not fit"},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLNoSuchRecord"})"}, 2, {}, "takes a BLSmsSendItem, not \"BLNoSuchRecord\""},
        {{"request", "MESSAGE_NETWORK_SET", R"({"class":"BLNetworkSet","nMode":4294967296})"}, 2, {}, "BLNetworkSet.nMode must be a whole number from 0 to 4"},
        {{"request", "MESSAGE_NETWORK_SET", R"({"nMode":7})"}, 2, {}, "BLNetworkSet.nMode must be a whole number from 0 to 4, not 7"},
        {{"request", "MESSAGE_PB_DELETE_ITEM", R"({"nStoreIn":0,"nIndex":-1})"}, 2, {}, "BLPBDeleteItem.nIndex must be a whole number from 1 up, not -1"},
        {{"request", "MESSAGE_SMS_DELETE", R"("x")"}, 2, {}, "MESSAGE_SMS_DELETE's argument must be a whole number from 0 up"},
        {{"request", "MESSAGE_SMS_SET_STATUS_REPORT", "true"}, 2, {}, "must be \"TRUE\" or \"FALSE\""},
        {{"request", "MESSAGE_PIN_CHECK_STATE", "5"}, 2, {}, "MESSAGE_PIN_CHECK_STATE takes no argument"},
        {{"request", "MESSAGE_CALL_DIAL", R"("123;+CFUN=0")"}, 2, {}, "holds a semicolon (;)"},
    };
    // clang-format on
    clitest::RunSteps(home.path, rows);
}

// A name the worker does not know is its failure, not a usage error.
TEST(DialtoneModem, RequestTakesARecordAndPrintsTheWholeResponse) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    clitest::RunSteps(modem, {
        {{"request", "MESSAGE_PIN_ENABLE", R"({"class":"BLPINEnableInfo","blPinEnable":true,"strPinCode":"1234"})"}, 0, {"{"}},
        {{"request", "MESSAGE_PIN_GET_STATE"}, 0, {"\"VALUE_OBJECT\": \"TRUE\""}},
        {{"request", "MESSAGE_SYSTEM_GET_EQUIPMENT_INFO"}, 0, {"\"class\": \"BLEquipmentInfo\""}},
        {{"--json", "request", "MESSAGE_NETWORK_GET_BAND"}, 1, {"\"code\": 35"}},
    });
    // clang-format on
}

// Failures whose cause is known say it, with the code, the same sentence and the modem's own cause (when it
// gave one) in --json.
TEST(DialtoneModem, KnownCausesAreToldWithWhatToDo) {
    SimulatedModem plain("default");
    const json twoEntries = {{{"index", 1}, {"name", "A"}, {"number", "1"}},
                             {{"index", 2}, {"name", "B"}, {"number", "2"}}};
    SimulatedModem fullBook(
        ScenarioPatch{{{"phonebooks", {{"SM", {{"capacity", 2}, {"entries", twoEntries}}}}}}});
    ASSERT_TRUE(plain.ready() && fullBook.ready());
    // clang-format off
    struct Row { const SimulatedModem* modem; std::vector<std::string> arguments; std::string cause; int modemCause; };
    const std::vector<Row> rows = {
        {&plain, {"--json", "contacts", "add", "Alexandra Schmidt-Meyer", "+4917012345", "--store", "sim"}, "the name is 23 characters; this SIM takes at most 14", 0},
        {&fullBook, {"--json", "contacts", "add", "Carla", "+4917012345", "--store", "sim"}, "the sim phonebook is full (2 of 2 used)", 0},
        {&plain, {"--json", "network", "select", "26203"}, "the network refuses the SIM, emergency calls only", 100032},
        {&plain, {"--json", "call", "answer"}, "there is no incoming call", 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        const Outcome run = row.modem->run(row.arguments);
        ExpectStep({row.arguments, 1, {row.cause}, row.cause}, run);
        EXPECT_EQ(Parse(run.out)["error"].value("cause_code", 0), row.modemCause) << run.out;
    }
}

// No modem, a stick pulled while a command is under way, a port another program holds: each is a failure
// that says so, at once.
TEST(DialtoneModem, AModemOutOfReachIsAFailure) {
    TempDir home;
    TempDir emptyDevDir;
    ExpectStep({{}, 1, {}, "no modem found"},
               RunDialtone({"--dev-dir", emptyDevDir.path, "status"}, home.path));
    const Outcome run = RunDialtone({"--dev-dir", emptyDevDir.path, "--json", "info"}, home.path);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(Parse(run.out)["error"].value("code", 0), 0) << run.out;

    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const std::vector<std::pair<std::string, std::vector<std::string>>> rows = {
        {"AT+CPBR", {"contacts", "list"}}, {"AT+CSQ", {"status"}}, {"AT+CGMR", {"info"}},
    };
    // clang-format on
    for (const auto& [pulledOn, arguments] : rows) {
        ASSERT_TRUE(modem.command("set unplug_on " + pulledOn).value("ok", false));
        ExpectStep({arguments, 1, {}, "the modem was unplugged"}, modem.run(arguments));
        modem.command("plug");
    }

    const int held = open(modem.atLink.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(held, 0);
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
    const auto start = std::chrono::steady_clock::now();
    ExpectStep({{"status"}, 1, {}, "the modem is in use by another program"}, modem.run({"status"}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    close(held);
}

// What the tool refuses before the modem is asked: malformed SIM codes, commands that need the locked SIM,
// and text that would end an AT parameter or command early.
TEST(DialtoneInputs, PinTyposAndALockedSimCostNoAttemptAndTheRightPinStillWorks) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const std::vector<clitest::Step> rows = {
        {{"pin", "verify", "abcd"}, 2, {}, "PIN: a PIN has 4 to 8 digits, nothing else"},
        {{"pin", "verify", "12"}, 2, {}, "a PIN has 4 to 8 digits, not 2"},
        {{"pin", "verify", ""}, 2, {}, "a PIN has 4 to 8 digits, and none was given"},
        {{"pin", "verify", "123456789"}, 2, {}, "a PIN has 4 to 8 digits, not 9"},
        {{"pin", "enable", "12ab"}, 2, {}, "a PIN has 4 to 8 digits"},
        {{"pin", "change", "1234", "12\";+CFUN=0;\""}, 2, {}, "NEW: a PIN has 4 to 8 digits"},
        {{"pin", "puk", "1234567", "1234"}, 2, {}, "PUK: a PUK has 8 digits, not 7"},
        {{"pin", "verify", "--pin-stdin"}, 2, {}, "PIN: a PIN has 4 to 8 digits, nothing else", false, "12ab\n"},
        {{"pin", "puk", "--codes-stdin"}, 2, {}, "NEWPIN: a PIN has 4 to 8 digits, not 3", false, "12345678\n123\n"},
        {{"pin", "change", "--codes-stdin"}, 2, {}, "standard input ended before the NEW", false, "1234\n"},
        {{"pin", "verify", "--pin-stdin", "1234"}, 2, {}, "either as arguments or with --pin-stdin"},
        {{"request", "MESSAGE_PIN_ENABLE", "[1,2]"}, 2, {}, "takes a BLPINEnableInfo object"},
        {{"sms", "send", "+491701234567", "Hi"}, 1, {}, "the SIM is locked: dialtone pin verify PIN"},
        {{"contacts", "list"}, 1, {}, "the SIM is locked: dialtone pin verify PIN"},
        {{"connect"}, 1, {}, "the SIM is locked: dialtone pin verify PIN"},
        {{"ussd", "*100#"}, 1, {}, "the SIM is locked: dialtone pin verify PIN"},
        {{"stk", "menu"}, 1, {}, "the SIM is locked: dialtone pin verify PIN"},
    };
    // clang-format on
    clitest::RunSteps(modem, rows);
    EXPECT_EQ(modem.dump()["pin"]["pin_left"], 3);
    EXPECT_EQ(modem.saw("+CPIN=") + modem.saw("+CLCK=") + modem.saw("+CPWD="), 0) << modem.dump()["commands"];

    const Outcome right = modem.run({"pin", "verify", "--pin-stdin"}, "1234\r\n");
    EXPECT_EQ(right.status, 0) << right.err;
    EXPECT_EQ(modem.dump()["pin"]["state"], "READY");
}

// Typed at a terminal, the PIN is asked for without echo, and the echo is back once it is read.
TEST(DialtoneInputs, PinTypedAtATerminalIsNotEchoed) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    const std::string terminal = ptsname(master);
    const int watch = open(terminal.c_str(), O_RDWR | O_NOCTTY); // keeps the terminal and shows its settings
    ASSERT_GE(watch, 0);
    const auto echoing = [watch] {
        termios settings{};
        return tcgetattr(watch, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
    };
    Outcome verified;
    std::thread user([&] {
        verified = clitest::RunDialtone({"--dev-dir", modem.devDir.path, "pin", "verify"}, modem.home.path,
                                        {}, terminal);
    });
    for (int tick = 0; tick < 1000 && echoing(); ++tick)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(echoing()) << "the prompt turns the echo off";
    ASSERT_EQ(write(master, "1234\n", 5), 5);
    user.join();

    EXPECT_EQ(verified.status, 0) << verified.err;
    EXPECT_NE(verified.err.find("PIN: "), std::string::npos) << verified.err;
    EXPECT_TRUE(echoing()) << "the echo is back";
    fcntl(master, F_SETFL, O_NONBLOCK);
    char shown[256];
    const ssize_t n = read(master, shown, sizeof shown);
    EXPECT_EQ(std::string(shown, n > 0 ? static_cast<size_t>(n) : 0).find("1234"), std::string::npos);
    EXPECT_EQ(modem.dump()["pin"]["state"], "READY");
    close(watch);
    close(master);
}

TEST(DialtoneInputs, TextThatWouldAppendCommandsNeverReachesTheModem) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    const std::string injected = "x\";+CMGD=1,4;+CFUN=0;\"";
    // clang-format off
    const std::vector<clitest::Step> rows = {
        {{"profiles", "add", "Evil", "inet" + injected}, 2, {}, "the APN holds a double quote"},
        {{"profiles", "add", "Evil", "inet", "--user", "me\nnoauth"}, 2, {}, "the user name holds a control character"},
        {{"contacts", "add", "Ann;+CFUN=0", "+4930123456"}, 2, {}, "the name holds a semicolon"},
        {{"ussd", "*100#" + injected}, 2, {}, "the USSD text holds a double quote"},
        {{"ussd", "*100#", "--reply", "1\r"}, 2, {}, "the reply holds a control character"},
        {{"sms", "sc", "+49" + injected}, 2, {}, ""},
    };
    // clang-format on
    clitest::RunSteps(modem, rows);
    EXPECT_EQ(modem.saw("CFUN=0") + modem.saw("CMGD=1,4"), 0) << modem.dump()["commands"];
    EXPECT_TRUE(modem.run({"profiles", "list"}).out.find("Evil") == std::string::npos);
}

// The tool against sticks that answer in other ways than the one it was written for: each row gives the
// simulator a scenario (a patch of the built-in modem) with one answer-variant knob and checks what the tool
// makes of it (in standard output, or in standard error on failure), and that it does so without waiting
// for a time-out. The tool reads as it does on a standard 3GPP stick. One row per command: the variants
// themselves are rows of AnswerVariants (the parsers) and SimVariants (the simulator).
TEST(DialtoneVariants, EachAnswerVariantIsReadWithoutTimeOut) {
    const std::string number = "Your number is +491721234567.\n";
    // clang-format off
    const struct { const char* scenario; std::vector<std::string> args; int status; const char* says; } rows[] = {
        {R"({"knobs":{"ussd_format":"packed","urc_mode":"immediate"}})", {"ussd", "*101#"}, 0, number.c_str()},
        {R"({"network":{"scan_delay_ms":0,"operators":[{"long":"Vodafone Deutschland GmbH","numeric":"26202"},{"long":"Telekom Deutschland GmbH","short":"Telekom.de","numeric":"26201"}]},"knobs":{"scan_format":"ucs2"}})", {"network", "scan"}, 0, "available  Telekom Deutschl  Telekom.  26201"},
        {R"({"knobs":{"cpbr_entry":"empty_type"}})", {"contacts", "list"}, 0, "sim        4  Jürgen"},
        {R"({"knobs":{"cmgl_bad_pdu":true}})", {"sms", "list"}, 0, "Grüße aus Köln"},
        {R"({"knobs":{"no_blank_after_colon":true}})", {"status"}, 0, "Registration:    home network, packet home network"},
        {R"({"knobs":{"inject_on":"AT+CREG?","inject_ahead":"+CREG: 0"}})", {"network", "reg"}, 0, "Registration:    home network\n"},
        {R"({"knobs":{"unsupported_answer":"COMMAND NOT SUPPORT","refuse":["+HWV"]}})", {"info"}, 0, "Hardware:        -"},
        {R"({"voice":{"dial_result":"BUSY"}})", {"call", "dial", "+4930123456"}, 1, "the line is busy"},
        {R"({"voice":{"dial_result":"NO DIALTONE"}})", {"call", "dial", "+4930123456"}, 1, "no dial tone"},
        {R"({"voice":{"dial_result":"NO CARRIER"}})", {"call", "dial", "+4930123456"}, 1, "no carrier"},
        // A stick refusing the optional commands as some do: the counters are unknown, nothing else stops.
        {R"({"knobs":{"refuse":["+CPINR","+CSCB","+CMMS","+CNMI"]}})", {"pin", "status"}, 0, "Attempts left:   PIN unknown, PUK unknown"},
        {R"({"knobs":{"unsupported_answer":"COMMAND NOT SUPPORT"}})", {"sms", "send", "+491701234567", "again"}, 0, "Sent to"},
    };
    // clang-format on
    setenv("DIALTONE_DIALECT", "standard", 1);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.scenario);
        SimulatedModem modem(ScenarioPatch{json::parse(row.scenario)});
        ASSERT_TRUE(modem.ready());
        const auto start = std::chrono::steady_clock::now();
        const Outcome run = modem.run(row.args);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        EXPECT_EQ(run.status, row.status) << run.err;
        EXPECT_NE((row.status == 0 ? run.out : run.err).find(row.says), std::string::npos)
            << run.out << run.err;
    }
    unsetenv("DIALTONE_DIALECT");
}

// The tool in the user's language: its words for people are translated, machine-readable output (--json,
// --output key=value) never is. Each row: a text the German output holds, its English form that must be
// gone, and the machine option whose output keeps an English text.
TEST(DialtoneLanguage, GermanForPeopleEnglishForScripts) {
    const TempDir home;
    const std::vector<std::pair<std::string, std::string>> german{{"LC_ALL", "de_DE.UTF-8"}};
    // clang-format off
    const struct { std::vector<std::string> arguments; const char* german; const char* english; const char* machine; const char* kept; } rows[] = {
        {{"--simulate", "status"}, "Netzbetreiber:   ", "Operator:", "--output=key=value", "network.operator_code: "},
        {{"--simulate", "stats"}, "Roaming empfangen", "Roaming received", "--output=key=value", "since_reset.sent_bytes: "},
        {{"--simulate", "pin", "status"}, "Verbleibende Versuche: PIN", "Attempts left:", "--output=key=value", "pin_attempts: "},
        {{"--simulate=pin-locked", "sms", "list"}, "die SIM-Karte ist gesperrt", "the SIM is locked", "--json", "the SIM is locked"},
        {{"--simulate", "netwrk"}, "unbekannter Befehl 'netwrk'. Meinten Sie: network?", "unknown command", nullptr, nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.back());
        const Outcome shown = RunDialtone(row.arguments, home.path, german);
        EXPECT_NE((shown.out + shown.err).find(row.german), std::string::npos) << shown.out << shown.err;
        EXPECT_EQ((shown.out + shown.err).find(row.english), std::string::npos) << shown.out << shown.err;
        if (!row.machine)
            continue;
        std::vector<std::string> arguments{row.machine};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const Outcome document = RunDialtone(arguments, home.path, german);
        EXPECT_NE(document.out.find(row.kept), std::string::npos) << document.out;
        EXPECT_EQ(document.out.find("gesperrt"), std::string::npos) << document.out;
        EXPECT_EQ(document.out.find(row.german), std::string::npos) << document.out;
    }
}

} // namespace
