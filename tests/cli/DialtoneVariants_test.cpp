// The tool against sticks that answer in other ways than the one it was written for: each row gives the
// simulator a scenario with one answer-variant knob and checks what the tool makes of it, and that it
// does so without waiting for a time-out. The tool reads as it does on a standard 3GPP stick.

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::ScenarioPatch;
using clitest::SimulatedModem;
using nlohmann::json;

struct Row {
    const char* scenario; // a patch of the built-in modem
    std::vector<std::string> args;
    int status;
    const char* says; // in standard output, or in standard error on failure
};

TEST(DialtoneVariants, EachAnswerVariantIsReadWithoutTimeOut) {
    const std::string number = "Your number is +491721234567.\n";
    // clang-format off
    const Row rows[] = {
        {R"({"knobs":{"ussd_format":"text"}})", {"ussd", "*101#"}, 0, number.c_str()},
        {R"({"knobs":{"ussd_format":"no_dcs"}})", {"ussd", "*101#"}, 0, number.c_str()},
        {R"({"knobs":{"ussd_format":"ucs2_lang"}})", {"ussd", "*101#"}, 0, number.c_str()},
        {R"({"knobs":{"ussd_format":"packed","urc_mode":"immediate"}})", {"ussd", "*101#"}, 0, number.c_str()},
        {R"({"knobs":{"ussd_release":true}})", {"ussd", "*101#"}, 0, number.c_str()},
        {R"({"network":{"scan_delay_ms":0},"knobs":{"scan_format":"no_short_name"}})", {"network", "scan"}, 0, "available  o2 - de           -         26207"},
        {R"({"network":{"scan_delay_ms":0,"operators":[{"long":"Vodafone Deutschland GmbH","numeric":"26202"},{"long":"Telekom Deutschland GmbH","short":"Telekom.de","numeric":"26201"}]},"knobs":{"scan_format":"ucs2"}})", {"network", "scan"}, 0, "available  Telekom Deutschl  Telekom.  26201"},
        {R"({"knobs":{"cpbr_entry":"empty_type"}})", {"contacts", "list"}, 0, "sim        4  Jürgen"},
        {R"({"knobs":{"cpbr_entry":"unquoted_name"}})", {"contacts", "list"}, 0, "sim        2  Mailbox"},
        {R"({"knobs":{"cmgl_bad_pdu":true}})", {"sms", "list"}, 0, "Grüße aus Köln"},
        {R"({"knobs":{"no_blank_after_colon":true}})", {"status"}, 0, "Registration:    home network, packet home network"},
        {R"({"knobs":{"inject_on":"AT+CREG?","inject_ahead":"+CREG: 0"}})", {"network", "reg"}, 0, "Registration:    home network\n"},
        {R"({"knobs":{"unsupported_answer":"COMMAND NOT SUPPORT","refuse":["+HWV"]}})", {"info"}, 0, "Hardware:        -"},
        {R"({"voice":{"dial_result":"BUSY"}})", {"call", "dial", "+4930123456"}, 1, "the line is busy"},
        {R"({"voice":{"dial_result":"NO DIALTONE"}})", {"call", "dial", "+4930123456"}, 1, "no dial tone"},
        {R"({"voice":{"dial_result":"NO CARRIER"}})", {"call", "dial", "+4930123456"}, 1, "no carrier"},
    };
    // clang-format on
    setenv("DIALTONE_DIALECT", "standard", 1);
    for (const Row& row : rows) {
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

} // namespace
