// The simulated modem driven in-process: command parsing, network and phonebook commands, SMS (sends the
// switch or the host's PDU spoil, a full storage, a message to the SIM's own number that comes back), the
// answer variants of other makers' sticks and the control socket's events; the fault knobs (a mute stick,
// line noise instead of answers, floods of unsolicited lines, a stick pulled at a chosen command) and the
// settings and scenarios that are refused.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "SimControl.h"
#include "SimPdu.h"
#include "SimScenario.h"
#include "SimSmsCommands.h"
#include "SimTestSupport.h"
#include "SimText.h"

namespace modemsim::test {
namespace {

TEST(SimCommandTest, SplitsCommandLines) {
    // clang-format off
    struct Row { const char* body; std::vector<std::string> names; const char* lastValue; };
    const Row rows[] = {
        {"+CMGF=0;+CNMI=2,1,0,2,0", {"+CMGF", "+CNMI"}, "2,1,0,2,0"},
        {"+CPBW=1,\"+49;30\",145,\"0041\"", {"+CPBW"}, "1,\"+49;30\",145,\"0041\""},
        {"S0=2", {"S"}, "2"},
    };
    // clang-format on
    for (const Row& row : rows) {
        std::vector<AtCommand> cmds;
        ASSERT_TRUE(ParseCommandLine(row.body, cmds)) << row.body;
        std::vector<std::string> names;
        for (const AtCommand& c : cmds)
            names.push_back(c.name);
        EXPECT_EQ(names, row.names) << row.body;
        EXPECT_EQ(cmds.back().value, row.lastValue) << row.body;
    }
    std::vector<AtCommand> cmds;
    EXPECT_FALSE(ParseCommandLine("+CPBW=1,\"open", cmds));
    EXPECT_FALSE(ParseCommandLine("#?", cmds));
}

// The network scan is held back and selection follows its list; phonebook names travel as UCS2.
TEST(SimModemTest, NetworkAndPhonebookCommands) {
    ModemHarness h(ModemHarness::Builtin([](SimState& s) { s.phonebooks["SM"].capacity = 5; }));
    h.At("ATE0");
    h.At("AT+CMEE=2");
    EXPECT_EQ(h.At("AT+COPS=?"), "");
    EXPECT_EQ(h.Run(1999), "");
    EXPECT_EQ(h.Run(1),
              "\r\n+COPS: (2,\"Vodafone.de\",\"voda DE\",\"26202\",2),(1,\"Telekom.de\",\"TDG\",\"26201\",2),"
              "(1,\"o2 - de\",\"o2 - de\",\"26207\",2),(3,\"E-Plus\",\"E-Plus\",\"26203\",0),,"
              "(0,1,2,3,4),(0,1,2)\r\n\r\nOK\r\n");
    h.ExpectAnswers({
        {"AT+COPS=1,2,\"99999\",2", "\r\n+CME ERROR: no network service\r\n"},
        {"AT+COPS=1,2,\"26201\",2", "\r\nOK\r\n"},
        {"AT+COPS=3,0;+COPS?", "\r\n+COPS: 1,0,\"Telekom.de\",2\r\n\r\nOK\r\n"},
        {"AT+CREG=2;+CREG?", "\r\n+CREG: 2,5,\"1A2B\",\"00C3D4E5\",2\r\n\r\nOK\r\n"},
        {"AT+COPS=0", "\r\nOK\r\n"},
        {"AT+SYSSEL=,2,0", "\r\nOK\r\n"},
        {"AT+SYSSEL=,,,1", "\r\nOK\r\n"},
        {"AT+SYSSEL?", "\r\n+SYSSEL: 1073741823,2,0,1\r\n\r\nOK\r\n"},
        {"AT+SYSSEL=,3,0", "\r\n+CME ERROR: incorrect parameters\r\n"},
        {"AT+CFUN=4;+CSQ;+CREG?", "\r\n+CSQ: 99,99\r\n\r\n+CREG: 2,0\r\n\r\nOK\r\n"},
        {"AT+SSND?", "\r\n+SSND: NO SERVICE\r\n\r\nOK\r\n"},
    });
    // The registration changes went out as "+CREG:" lines: roaming (5), home (1), none (0).
    EXPECT_EQ(h.At("at"), "\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\",2\r\n\r\nOK\r\n");
    EXPECT_EQ(h.At("at"), "\r\n+CREG: 0\r\n\r\nOK\r\n");

    h.ExpectAnswers({
        {"AT+CSCS=\"UCS2\"", "\r\nOK\r\n"},
        {"AT+CPBR=3,5", "\r\n+CPBR: 4,\"+4930123456\",145,\"004A00FC007200670065006E\"\r\n\r\nOK\r\n"},
        {"AT+CPBW=,\"4930555\",145,\"004A00F600720067\"", "\r\nOK\r\n"},
        {"AT+CPBW=5,\"123\",129,\"004100420043004400450046004700480049005000510052005300540055\"",
         "\r\n+CME ERROR: text string too long\r\n"},
        {"AT+CPBW=5,\"12X\",129,\"0041\"", "\r\n+CME ERROR: invalid characters in dial string\r\n"},
        {"AT+CPBW=5,\"123\",129,\"004\"", "\r\n+CME ERROR: invalid characters in text string\r\n"},
        {"AT+CPBW=5,\"123\",129,\"0041\"", "\r\nOK\r\n"},
        {"AT+CPBW=,\"124\",129,\"0042\"", "\r\n+CME ERROR: memory full\r\n"},
        {"AT+CPBW=6,\"124\",129,\"0042\"", "\r\n+CME ERROR: invalid index\r\n"},
        {"AT+CPBW=2", "\r\nOK\r\n"},
        {"AT+CPBR=2", "\r\n+CME ERROR: not found\r\n"},
        {"AT+CSCS=\"IRA\";+CPBR=4", "\r\n+CPBR: 4,\"+4930123456\",145,\"J?rgen\"\r\n\r\nOK\r\n"},
    });
}

TEST(SimModemTest, KnobsDelayAnswersAndMixInLines) {
    ModemHarness h(ModemHarness::Builtin([](SimState& s) { s.knobs.latencyMs = 50; }));
    EXPECT_EQ(h.At("ATE0"), "ATE0\r"); // the echo comes at once, the answer later
    EXPECT_EQ(h.Run(49), "");
    EXPECT_EQ(h.Run(1), "\r\nOK\r\n");
    // Input sent while an answer is held back waits its turn.
    EXPECT_EQ(h.Send("AT+CSQ\rAT+CGMI\r"), "");
    EXPECT_EQ(h.Run(100), "\r\n+CSQ: 18,99\r\n\r\nOK\r\n\r\nSIMULATED\r\n\r\nOK\r\n");

    h.modem.State().knobs = Knobs{};
    h.modem.State().knobs.inject = "+CMTI: \"SM\",9";
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\n+CMTI: \"SM\",9\r\n\r\nOK\r\n");
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"); // once only

    h.modem.State().knobs.urcMode = UrcMode::Mixed;
    h.modem.Unsolicited("RING");
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\nRING\r\n\r\nOK\r\n");

    h.modem.State().knobs.urcMode = UrcMode::Immediate;
    h.modem.Unsolicited("RING");
    EXPECT_EQ(h.Run(0), "\r\nRING\r\n");
}

// Garbage, endless lines, broken quotes and prompts cut short: the modem keeps answering and stays bounded.
TEST(SimModemTest, HostileInputStaysBounded) {
    ModemHarness h(ModemHarness::Builtin());
    unsigned seed = 12345;
    auto next = [&seed] {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 16) & 0xFF;
    };
    // clang-format off
    const std::string pieces[] = {"AT+CPBW=", "\"", ",", "AT+CMGS=", "\x1a", "\x1b", "\r", "AT+CUSD=1,\"", "AT+COPS=1,2,\"",
                                  "AT+STGR=0,0,", "ATD", "AT+CPMS=", "00", "AT+CSCS=\"UCS2\"\r"};
    // clang-format on
    for (int round = 0; round < 20000; ++round) {
        std::string bytes;
        if (next() % 2) {
            bytes = pieces[next() % std::size(pieces)];
        } else {
            bytes.push_back(static_cast<char>(next()));
        }
        h.Send(bytes);
        if (round % 1000 == 0)
            h.Run(3000);
    }
    h.Send(std::string(100000, 'A'));
    h.Send("\x1b\r");
    h.Run(3000);
    h.Send("\x1b\x1b\r");
    EXPECT_NE(h.At("ATE0").find("OK"), std::string::npos);
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\nOK\r\n");
    EXPECT_LE(h.modem.PendingUnsolicited().size(), 200u);
}

// TS 23.040 SMS-SUBMIT "hellohello" to +46708251358 (relative validity), as the host sends it after
// AT+CMGS=23: no service centre ("00"), then the TPDU.
const std::string kSubmit = "0011000B916407281553F80000AA0AE8329BFD4697D9EC37";

// "+CMGR: 0,,25\r\n<pdu>\r\n\r\nOK\r\n" -> the PDU line.
std::string PduOf(const std::string& answer) {
    size_t start = answer.find("\r\n", 2);
    size_t end = answer.find("\r\n", start + 2);
    return start == std::string::npos || end == std::string::npos ? ""
                                                                  : answer.substr(start + 2, end - start - 2);
}

TEST(SimSmsTest, SendFailuresAndAborts) {
    ModemHarness h(ModemHarness::Builtin([](SimState& s) { s.sms.failNextSend = true; }));
    h.At("ATE0");
    // clang-format off
    struct Step { std::string bytes; std::string answer; };
    const Step steps[] = {
        {"AT+CMGS=23\r", "\r\n> "},
        {kSubmit + "\x1a", "\r\n+CMS ERROR: 500\r\n"}, // the switch fails one send ...
        {"AT+CMGS=23\r", "\r\n> "},
        {kSubmit + "\x1a", "\r\n+CMGS: 1\r\n\r\nOK\r\n"}, // ... and only one
        {"AT+CMGS=24\r", "\r\n> "},
        {kSubmit + "\x1a", "\r\n+CMS ERROR: 304\r\n"}, // length does not match the PDU
        {"AT+CMGS=23\r", "\r\n> "},
        {"0011\x1b", "\r\nOK\r\n"}, // ESC leaves the prompt, nothing sent
        {"AT+CMGF=1\r", "\r\nOK\r\n"},
        {"AT+CMGS=23\r", "\r\n+CMS ERROR: 302\r\n"},
    };
    // clang-format on
    for (const Step& step : steps)
        EXPECT_EQ(h.Send(step.bytes), step.answer) << step.bytes;
    EXPECT_EQ(h.modem.State().sms.sent.size(), 1u);
}

TEST(SimSmsTest, FullStorageRejectsAMessage) {
    ModemHarness h(ModemHarness::Builtin([](SimState& s) { s.sms.storages["SM"].capacity = 4; }));
    IncomingSms sms;
    sms.params.originator = "+491701234567";
    sms.params.textUtf8 = std::string(200, 'x'); // two parts, one free slot
    EXPECT_EQ(DeliverText(h.modem, sms).value("error", ""), "storage full");
    sms.params.textUtf8 = "short";
    EXPECT_EQ(DeliverText(h.modem, sms)["indexes"], nlohmann::json::array({4}));
    EXPECT_FALSE(DeliverText(h.modem, sms).value("ok", true));
    EXPECT_FALSE(DeliverPdu(h.modem, "00zz").value("ok", true));
}

TEST(SimSmsTest, MessageToOwnNumberComesBack) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    // "hi" to +491721234567, the SIM's own number.
    const std::string submit = "0001000C91947112325476000002E834";
    EXPECT_EQ(h.At("AT+CMGS=" + std::to_string(TpduLengthOfPdu(submit))), "\r\n> ");
    EXPECT_EQ(h.Send(submit + "\x1a"), "\r\n+CMGS: 1\r\n\r\nOK\r\n");
    h.Run(1000);
    EXPECT_EQ(h.At("at"), "\r\n+CMTI: \"SM\",4\r\n\r\nOK\r\n");
    std::string stored = PduOf(h.At("AT+CMGR=4"));
    DeliverInfo info = DecodeDeliverPdu(stored, TpduLengthOfPdu(stored));
    EXPECT_EQ(info.originator, "+491721234567");
    EXPECT_EQ(info.textUtf8, "hi");
}

TEST(SimVariantsTest, AnswersAsTheKnobsSay) {
    const std::string ucs2Lang =
        "+CUSD: 0,\"6537"
        "0059006F007500720020006E0075006D0062006500720020006900730020002B003400390031"
        "003700320031003200330034003500360037002E\",17\r\n";
    // clang-format off
    // before: "AT..." goes to the port (its answer is dropped), the rest to control; waitMs: simulated time
    // let pass after the command; whole: the answer is exactly `expected`, or only holds it
    struct Row { std::vector<const char*> before; const char* command; int waitMs; bool whole; const char* expected; };
    const Row rows[] = {
        {{"set dialect standard", "set unsupported_answer COMMAND NOT SUPPORT"}, "AT+SYSSEL?", 0, true, "\r\nCOMMAND NOT SUPPORT\r\n"},
        {{"set unsupported_answer +CME ERROR"}, "AT+NOSUCH", 0, true, "\r\n+CME ERROR: 4\r\n"},
        {{"set refuse +CSCB, +cmms"}, "AT+CMMS=1", 0, true, "\r\nERROR\r\n"},
        {{"set dialect standard"}, "AT+CPINR=\"SIM PU*\"", 0, true, "\r\n+CPINR: SIM PUK,10,10\r\n+CPINR: SIM PUK2,10,10\r\n\r\nOK\r\n"},
        {{}, "AT+CRSM=176,28621,0,0,0", 0, true, "\r\n+CRSM: 144,0,\"A308800662F22062F290\"\r\n\r\nOK\r\n"},
        {{}, "AT+CRSM=176,28486,0,0,20", 0, true, "\r\n+CRSM: 103,17\r\n\r\nOK\r\n"},
        {{}, "AT+CRSM=176,28480,0,0,10", 0, true, "\r\n+CRSM: 106,130\r\n\r\nOK\r\n"},
        {{"set urc_mode ahead", "AT+CREG=1", "reg 5"}, "AT+CREG?", 0, true, "\r\n+CREG: 5\r\n\r\n+CREG: 1,5\r\n\r\nOK\r\n"},
        {{"set scan_delay_ms 0", "set scan_format no_short_name"}, "AT+COPS=?", 0, true, "\r\n+COPS: (2,\"Vodafone.de\",,\"26202\"),(1,\"Telekom.de\",,\"26201\"),(1,\"o2 - de\",,\"26207\"),(3,\"E-Plus\",,\"26203\"),,(0,1,2,3,4),(0,1,2)\r\n\r\nOK\r\n"},
        {{"set urc_mode immediate", "set ussd_format text", "AT+CSCS=\"UCS2\""}, "AT+CUSD=1,\"002A0031003000310023\",15", 300, true, "\r\nOK\r\n\r\n+CUSD: 0,\"Your number is +491721234567.\",15\r\n"},
        {{"set urc_mode immediate", "set ussd_format no_dcs"}, "AT+CUSD=1,\"*101#\",15", 300, true, "\r\nOK\r\n\r\n+CUSD: 0,\"Your number is +491721234567.\"\r\n"},
        {{"set urc_mode immediate", "set ussd_format ucs2_lang"}, "AT+CUSD=1,\"*101#\",15", 300, false, ucs2Lang.c_str()},
        {{"set urc_mode immediate", "set ussd_release 1"}, "AT+CUSD=1,\"*101#\",15", 300, false, "2E\",15\r\n\r\n+CUSD: 2\r\n"},
        {{"set dial_result NO DIALTONE"}, "ATD+4930123456;", 0, true, "\r\nNO DIALTONE\r\n"},
        {{"ATD+4930123456;", "hangup"}, "AT", 0, true, "\r\nNO CARRIER\r\n\r\nOK\r\n"},
        {{"AT+COLP=1"}, "ATD+4930123;", 0, true, "\r\n+COLP: \"+4930123\",145\r\n\r\nOK\r\n"},
        {{"ring +4930123456"}, "AT", 0, true, "\r\nRING\r\n\r\nOK\r\n"},
        {{"signal 7"}, "AT+CSQ", 0, true, "\r\n+CSQ: 7,99\r\n\r\nOK\r\n"},
        {{"AT+CUSD=1", "ussd 1 Reply 1 to confirm"}, "AT", 0, true, "\r\n+CUSD: 1,\"5265706C79203120746F20636F6E6669726D\",15\r\n\r\nOK\r\n"},
    };
    // clang-format on
    for (const Row& row : rows) {
        ModemHarness h(ModemHarness::Builtin());
        h.At("ATE0");
        for (const char* line : row.before) {
            if (std::string(line).starts_with("AT")) {
                h.At(line);
            } else {
                ASSERT_EQ(ExecuteControl(line, h.modem, {}).value("ok", false), true) << line;
            }
            h.Run(0);
        }
        std::string answer = h.At(row.command);
        answer += h.Run(row.waitMs);
        if (row.whole) {
            EXPECT_EQ(answer, row.expected) << row.command;
        } else {
            EXPECT_NE(answer.find(row.expected), std::string::npos) << row.command << ": " << answer;
        }
    }
}

size_t Count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size()))
        ++n;
    return n;
}

TEST(SimFaultKnobsTest, MuteGarbageAndFloods) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    h.modem.State().knobs.mute = true;
    // Logged but neither carried out nor answered, unsolicited lines included.
    EXPECT_EQ(h.At("ATE1"), "");
    h.modem.Flood(3);
    EXPECT_EQ(h.Run(100), "");
    EXPECT_EQ(h.modem.CommandLog().back(), "ATE1");
    h.modem.State().knobs.mute = false;
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"); // echo still off

    h.modem.State().knobs.garbage = true;
    const char* const commands[] = {"AT+CSQ", "at", "AT+NOSUCH", "AT+CMGS=20", "AT+COPS?", "ATI"};
    for (int round = 0; round < 200; ++round) {
        const std::string command = commands[round % std::size(commands)];
        const std::string answer = h.At(command);
        ASSERT_GE(answer.size(), 10u) << command;
        EXPECT_EQ(answer.substr(answer.size() - 2), "\r\n") << command;
        EXPECT_EQ(answer.find("OK"), std::string::npos) << command;
        EXPECT_EQ(answer.find("ERROR"), std::string::npos) << command;
        EXPECT_EQ(answer.find('>'), std::string::npos) << command;
    }
    h.modem.State().knobs.garbage = false;
    // The refused prompt left no text input open.
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\nOK\r\n");

    // Floods, at once and as a stream.
    h.modem.Flood(3);
    EXPECT_EQ(h.Run(0), "\r\nRING\r\n\r\nRING\r\n\r\nRING\r\n");
    h.modem.State().knobs.floodLine = "+CMTI: \"SM\",1";
    h.modem.Flood(1000000); // capped
    EXPECT_EQ(Count(h.Run(0), "+CMTI: \"SM\",1\r\n"), 10000u);

    h.modem.State().knobs.floodIntervalMs = 100;
    EXPECT_EQ(Count(h.Run(1000), "\r\n+CMTI:"), 11u); // at 0, 100, ..., 1000 ms
    // The stream goes on in the middle of answers and stops with the knob.
    EXPECT_NE(h.At("AT+CSQ").find("OK"), std::string::npos);
    h.modem.State().knobs.floodIntervalMs = 0;
    h.Run(100);
    EXPECT_EQ(h.Run(1000), "");
}

TEST(SimFaultKnobsTest, UnplugKnobsFireOnceAtTheirCommand) {
    // clang-format off
    // firesAt: index into commands; commands.size() for never
    struct Row { int after; const char* on; std::vector<const char*> commands; size_t firesAt; };
    const Row rows[] = {
        {1, "", {"ATE1", "ATE0"}, 0},
        {3, "", {"ATE1", "at", "AT&F", "AT+CSQ"}, 2},
        {0, "AT&F", {"ATE1", "at&f", "AT&F"}, 1},
        {0, "AT+CMEE", {"ATE0Q0V1", "AT+CMEE=2", "AT+CMEE=2"}, 1},
        {0, "AT+COPS=?", {"AT+COPS?", "AT+CSQ"}, 2},
    };
    // clang-format on
    for (const Row& row : rows) {
        ModemHarness h(ModemHarness::Builtin());
        h.modem.State().knobs.unplugAfter = row.after;
        h.modem.State().knobs.unplugOn = row.on;
        for (size_t i = 0; i < row.commands.size(); ++i) {
            const std::string answer = h.At(row.commands[i]);
            const bool fired = h.modem.TakeUnplugRequest();
            EXPECT_EQ(fired, i == row.firesAt)
                << row.commands[i] << " after " << row.after << " on " << row.on;
            if (fired) {
                EXPECT_EQ(answer.find("\r\n"), std::string::npos) << "at most the echo: " << answer;
            }
        }
    }
}

// What the control socket refuses, checked in-process: the program only carries the lines.
TEST(SimFaultKnobsTest, ControlSettingsAreChecked) {
    // clang-format off
    struct Row { const char* line; bool ok; };
    const Row rows[] = {
        {"set mute 1", true}, {"set mute 2", false}, {"set garbage 0", true}, {"set garbage x", false},
        {"set flood 5", true}, {"set flood 0", false}, {"set flood 10001", false},
        {"set flood_interval_ms 50", true}, {"set flood_interval_ms -1", false},
        {"set flood_line +CMTI: \"SM\",1", true}, {"set flood_line", false},
        {"set unplug_after 6", true}, {"set unplug_on AT+CMGS=", true},
        {"set unsupported_answer NO", false}, {"set ussd_format base64", false}, {"set cmgl_bad_pdu 2", false},
        {"sms --coding=nonsense +49 x", false}, {"signal 40", false}, {"no-such-command", false},
    };
    // clang-format on
    ModemHarness h(ModemHarness::Builtin());
    for (const Row& row : rows)
        EXPECT_EQ(ExecuteControl(row.line, h.modem, {}).value("ok", !row.ok), row.ok) << row.line;
    EXPECT_EQ(h.modem.State().knobs.floodLine, "+CMTI: \"SM\",1");
    EXPECT_EQ(h.modem.State().knobs.unplugOn, "AT+CMGS=");
}

TEST(SimScenarioTest, MistakesAreNamed) {
    // clang-format off
    struct Row { const char* patch; const char* error; };
    const Row rows[] = {
        {R"({"sim":{"pin":"12"}})", "pin and pin2 must be 4-8 digits"},
        {R"({"knobs":{"scan_format":7}})", "scan_format must be a text"},
        {R"({"knobs":{"refuse":["CSCB"]}})", "refuse takes command names"},
        {R"({"voice":{"dial_result":"MAYBE"}})", "dial_result must be"},
        {R"({"sim":{"imsi":5}})", "type must be string"},
    };
    // clang-format on
    for (const Row& row : rows) {
        nlohmann::json scenario = BuiltinScenario();
        scenario.merge_patch(nlohmann::json::parse(row.patch));
        SimState s;
        std::string error;
        EXPECT_FALSE(BuildState(scenario, s, error)) << row.patch;
        EXPECT_NE(error.find(row.error), std::string::npos) << row.patch << " gave: " << error;
    }
    SimState s;
    std::string error;
    const std::string broken = testing::TempDir() + "modemsim-broken.json";
    std::ofstream(broken) << "{ not json";
    EXPECT_FALSE(LoadScenario(broken, s, error));
    EXPECT_NE(error.find("not valid JSON"), std::string::npos);
    std::filesystem::remove(broken);
}

} // namespace
} // namespace modemsim::test
