// The simulated modem driven in-process: command parsing, network and phonebook commands, and the
// robustness knobs.

#include <gtest/gtest.h>

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
        for (const AtCommand& c : cmds) {
            names.push_back(c.name);
        }
        EXPECT_EQ(names, row.names) << row.body;
        EXPECT_EQ(cmds.back().value, row.lastValue) << row.body;
    }
    std::vector<AtCommand> cmds;
    EXPECT_FALSE(ParseCommandLine("+CPBW=1,\"open", cmds));
    EXPECT_FALSE(ParseCommandLine("#?", cmds));
}

TEST(SimModemTest, NetworkScanIsHeldBackAndSelectionFollowsTheList) {
    ModemHarness h(ModemHarness::Builtin());
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
}

TEST(SimModemTest, PhonebookNamesTravelAsUcs2) {
    ModemHarness h(ModemHarness::Builtin([](SimState& s) { s.phonebooks["SM"].capacity = 5; }));
    h.At("ATE0");
    h.At("AT+CMEE=2");
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
        if (round % 1000 == 0) {
            h.Run(3000);
        }
    }
    h.Send(std::string(100000, 'A'));
    h.Send("\x1b\r");
    h.Run(3000);
    h.Send("\x1b\x1b\r");
    EXPECT_NE(h.At("ATE0").find("OK"), std::string::npos);
    EXPECT_EQ(h.At("AT+CSQ"), "\r\n+CSQ: 18,99\r\n\r\nOK\r\n");
    EXPECT_LE(h.modem.PendingUnsolicited().size(), 200u);
}

} // namespace
} // namespace modemsim::test
