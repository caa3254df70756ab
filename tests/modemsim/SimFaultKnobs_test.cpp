// The fault knobs: a mute stick, line noise instead of answers, floods of unsolicited lines and a stick
// pulled at a chosen command; the settings and scenarios that are refused.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "SimControl.h"
#include "SimScenario.h"
#include "SimTestSupport.h"

namespace modemsim::test {
namespace {

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
    for (const Row& row : rows) {
        EXPECT_EQ(ExecuteControl(row.line, h.modem, {}).value("ok", !row.ok), row.ok) << row.line;
    }
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
