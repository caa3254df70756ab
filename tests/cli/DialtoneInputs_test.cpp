// What the tool refuses before the modem is asked: malformed SIM codes, request arguments that do not fit
// the request's record, and text that would end an AT parameter or command early.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::RunDialtone;
using clitest::SimulatedModem;
using clitest::TempDir;
using nlohmann::json;

struct Refusal {
    std::vector<std::string> args;
    const char* says; // part of the message on standard error
};

bool Sent(const json& dump, const std::string& part) {
    for (const json& command : dump["commands"]) {
        if (command.get<std::string>().find(part) != std::string::npos)
            return true;
    }
    return false;
}

TEST(DialtoneInputs, PinTyposCostNoAttemptAndTheRightPinStillWorks) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const Refusal rows[] = {
        {{"pin", "verify", "abcd"}, "PIN: a PIN has 4 to 8 digits, nothing else"},
        {{"pin", "verify", "12"}, "a PIN has 4 to 8 digits, not 2"},
        {{"pin", "verify", ""}, "a PIN has 4 to 8 digits, and none was given"},
        {{"pin", "verify", "123456789"}, "a PIN has 4 to 8 digits, not 9"},
        {{"pin", "enable", "12ab"}, "a PIN has 4 to 8 digits"},
        {{"pin", "change", "1234", "12\";+CFUN=0;\""}, "NEW: a PIN has 4 to 8 digits"},
        {{"pin", "puk", "1234567", "1234"}, "PUK: a PUK has 8 digits, not 7"},
        {{"request", "MESSAGE_PIN_ENABLE", "[1,2]"}, "takes a BLPINEnableInfo object"},
        {{"request", "MESSAGE_PIN_ENABLE", R"({"blPinEnable":true})"}, "BLPINEnableInfo.strPinCode: a PIN has"},
        {{"request", "MESSAGE_PIN_VERIFY", R"("12ab")"}, "MESSAGE_PIN_VERIFY's argument: a PIN has"},
    };
    // clang-format on
    for (const Refusal& row : rows) {
        SCOPED_TRACE(row.args.back());
        const Outcome run = modem.run(row.args);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_NE(run.err.find(row.says), std::string::npos) << run.err;
    }
    const json dump = modem.dump();
    EXPECT_EQ(dump["pin"]["pin_left"], 3);
    EXPECT_FALSE(Sent(dump, "+CPIN=") || Sent(dump, "+CLCK=") || Sent(dump, "+CPWD=")) << dump["commands"];

    const Outcome right = modem.run({"pin", "verify", "1234"});
    EXPECT_EQ(right.status, 0) << right.err;
    EXPECT_EQ(modem.dump()["pin"]["state"], "READY");
}

TEST(DialtoneInputs, RequestArgumentsMustFitTheRequestsRecord) {
    TempDir home;
    // clang-format off
    const Refusal rows[] = {
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLPINEnableInfo"})"}, "MESSAGE_SMS_SEND takes a BLSmsSendItem, not \"BLPINEnableInfo\""},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumbr":"1"})"}, "BLSmsSendItem has no field \"strNumbr\""},
        {{"request", "MESSAGE_PIN_ENABLE", R"({"blPinEnable":1,"strPinCode":"1234"})"}, "BLPINEnableInfo.blPinEnable: 1 does not fit"},
        {{"request", "MESSAGE_NETWORK_SET", R"({"nMode":7})"}, "BLNetworkSet.nMode must be a whole number from 0 to 4, not 7"},
        {{"request", "MESSAGE_PB_DELETE_ITEM", R"({"nStoreIn":0,"nIndex":-1})"}, "BLPBDeleteItem.nIndex must be a whole number from 1 up, not -1"},
        {{"request", "MESSAGE_SMS_DELETE", R"("x")"}, "MESSAGE_SMS_DELETE's argument must be a whole number from 0 up"},
        {{"request", "MESSAGE_SMS_SET_STATUS_REPORT", "true"}, "must be \"TRUE\" or \"FALSE\""},
        {{"request", "MESSAGE_PIN_CHECK_STATE", "5"}, "MESSAGE_PIN_CHECK_STATE takes no argument"},
        {{"request", "MESSAGE_CALL_DIAL", R"("123;+CFUN=0")"}, "holds a semicolon (;)"},
        {{"request", "MESSAGE_SMS_SEND", "{not json"}, "is not valid JSON"},
    };
    // clang-format on
    for (const Refusal& row : rows) {
        SCOPED_TRACE(row.args.back());
        const Outcome run = RunDialtone(row.args, home.path);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(row.says), std::string::npos) << run.err;
    }
}

TEST(DialtoneInputs, TextThatWouldAppendCommandsNeverReachesTheModem) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    const std::string injected = "x\";+CMGD=1,4;+CFUN=0;\"";
    // clang-format off
    const Refusal rows[] = {
        {{"profiles", "add", "Evil", "inet" + injected}, "the APN holds a double quote"},
        {{"profiles", "add", "Evil", "inet", "--user", "me\nnoauth"}, "the user name holds a control character"},
        {{"profiles", "add", "Evil", std::string(300, 'a')}, "the APN is longer than 100 characters"},
        {{"contacts", "add", "Ann;+CFUN=0", "+4930123456"}, "the name holds a semicolon"},
        {{"ussd", "*100#" + injected}, "the USSD text holds a double quote"},
        {{"ussd", "*100#", "--reply", "1\r"}, "the reply holds a control character"},
        {{"sms", "sc", "+49" + injected}, ""},
    };
    // clang-format on
    for (const Refusal& row : rows) {
        SCOPED_TRACE(row.args.back());
        const Outcome run = modem.run(row.args);
        EXPECT_NE(run.status, 0) << run.err;
        EXPECT_NE(run.err.find(row.says), std::string::npos) << run.err;
    }
    const json dump = modem.dump();
    EXPECT_FALSE(Sent(dump, "CFUN=0") || Sent(dump, "CMGD=1,4")) << dump["commands"];
    EXPECT_TRUE(modem.run({"profiles", "list"}).out.find("Evil") == std::string::npos);
}

} // namespace
