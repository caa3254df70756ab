// Every command of the dialtone tool against a simulated stick that speaks only 3GPP TS 27.007/27.005:
// each works, or fails at once with a clear reason, and none waits for a time-out.
#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ConnectWorld.h"

namespace {

using clitest::Outcome;

constexpr auto kLimit = std::chrono::milliseconds(2000);

struct Row {
    std::vector<std::string> arguments;
    int exitCode;
    std::string shown; // on standard output or standard error
    int ownPaceMs = 0; // what the command waits for by design: --wait, pppd's link, the network's answer
    const char* setting = nullptr; // sent to the simulator first
};

const std::string kUnsupported = "not supported by this modem (result 46)";

TEST(DialtoneStandardDialect, EveryCommandWorksOrFailsAtOnce) {
    // clang-format off
    const Row rows[] = {
        {{"status"}, 0, "Bearer:          HSDPA"},
        {{"info"}, 0, "Model:           3G USB Modem"},
        {{"request", "MESSAGE_PIN_GET_INFO", "2"}, 0, "\"nPukCnt\": 10"},
        {{"pin", "status"}, 0, "Attempts left:   PIN 3, PUK 10"},
        {{"network", "info"}, 0, "Provider:        Vodafone.de"},
        {{"network", "band"}, 1, kUnsupported},
        {{"network", "mode", "0"}, 1, kUnsupported},
        {{"stk", "menu"}, 1, kUnsupported},
        {{"gps", "on"}, 1, kUnsupported},
        {{"sms", "send", "+491701234567", "hello"}, 0, "Sent to +491701234567"},
        {{"contacts", "list"}, 0, "Anna Schmidt"},
        {{"ussd", "*100#"}, 0, "Your balance is 12.34 EUR", 1000},
        {{"account"}, 0, "Check balance"},
        {{"call", "dial", "0301234567"}, 0, "active"},
        {{"call", "hangup"}, 0, "Call ended"},
        {{"profiles", "list"}, 0, "web.vodafone.de"},
        {{"connect"}, 0, "Connected with", 1000},
        {{"--wait", "0.5", "monitor"}, 0, "", 500},
        {{"disconnect"}, 0, "Disconnected after", 1000},
        {{"stats"}, 0, "Since the first use"},
        {{"pdu", "encode", "+491701234567", "hi"}, 0, "0C91947110325476"},
        // A stick refusing the optional commands as some do: the counters are unknown, nothing else stops.
        {{"pin", "status"}, 0, "Attempts left:   PIN unknown, PUK unknown", 0, "set refuse +CPINR,+CSCB,+CMMS,+CNMI"},
        {{"sms", "send", "+491701234567", "again"}, 0, "Sent to", 0, "set unsupported_answer COMMAND NOT SUPPORT"},
    };
    // clang-format on
    ConnectWorld world("standard");
    clitest::SimulatedModem& modem = world.modem;
    ASSERT_TRUE(modem.ready());
    // The network's USSD answer takes its time on purpose; here only the host's share counts.
    for (const char* setting : {"set ussd_delay_ms 0", "set urc_mode immediate"})
        ASSERT_TRUE(modem.command(setting).value("ok", false)) << setting;

    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments.front() + " " + row.arguments.back());
        if (row.setting != nullptr) {
            ASSERT_TRUE(modem.command(row.setting).value("ok", false)) << row.setting;
        }
        const auto start = std::chrono::steady_clock::now();
        const Outcome outcome = world.run(row.arguments, {{"DIALTONE_DIALECT", "standard"}});
        const auto took = std::chrono::steady_clock::now() - start;
        const std::string shown = outcome.out + outcome.err;
        EXPECT_EQ(outcome.status, row.exitCode) << shown;
        EXPECT_NE(shown.find(row.shown), std::string::npos) << shown;
        // Start-up included; a command waiting for a time limit takes longer.
        EXPECT_LT(took, kLimit + std::chrono::milliseconds(row.ownPaceMs)) << shown;
        // None of the maker's own commands went out.
        const std::string sent = modem.dump().value("commands", nlohmann::json::array()).dump();
        for (const char* vendor : {"+HWV", "+FUNC", "+PNNM", "+SMPN", "+SYSSEL", "+SSND", "+SPNM", "+SPDI",
                                   "+STGI", "+STGR", "+STIN", "$GPSC"})
            EXPECT_EQ(sent.find(vendor), std::string::npos) << vendor;
    }
}

} // namespace
