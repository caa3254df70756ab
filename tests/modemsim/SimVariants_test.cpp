// The standard dialect, the answer variants of other makers' sticks and the control socket's events, byte
// for byte.

#include <gtest/gtest.h>

#include "SimControl.h"
#include "SimTestSupport.h"

namespace modemsim::test {
namespace {

struct Row {
    std::vector<const char*> before; // "AT..." goes to the port (its answer is dropped), the rest to control
    const char* command;
    int waitMs; // simulated time let pass after the command
    bool whole; // the answer is exactly `expected`, or only holds it
    const char* expected;
};

const std::string kNumberUcs2 =
    "0059006F007500720020006E0075006D0062006500720020006900730020002B003400390031003700320031"
    "003200330034003500360037002E";

TEST(SimVariantsTest, AnswersAsTheKnobsSay) {
    const std::string ucs2Lang = "+CUSD: 0,\"6537" + kNumberUcs2 + "\",17\r\n";
    // clang-format off
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

} // namespace
} // namespace modemsim::test
