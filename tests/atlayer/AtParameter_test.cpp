#include <cstdio>
#include <functional>
#include <list>
#include <string>

#include <gtest/gtest.h>

#include "AtParameter.h"
#include "CallUtility.h"
#include "GPSUtility.h"
#include "NetworkUtility.h"
#include "PbUtility.h"
#include "STKUtility.h"
#include "ScriptedAtFake.h"
#include "SmsUtility.h"
#include "SystemUtility.h"
#include "UssdUtility.h"

namespace {

using namespace std::string_literals;

TEST(AtParameter, RefusesWhatEndsTheParameterOrTheCommand) {
    // clang-format off
    const struct { std::string value; std::size_t max; AtParameterFault fault; } rows[] = {
        {"internet.eplus.de", 100, AtParameterFault::None}, {"caf\xC3\xA9 +49 (0) *99#", 100, AtParameterFault::None},
        {"inet\";+CMGD=1,4;+CFUN=0;\"", 100, AtParameterFault::Quote}, {"inet;+CFUN=0", 100, AtParameterFault::Semicolon},
        {"a\\22b", 100, AtParameterFault::Backslash}, {"inet\r", 100, AtParameterFault::Control}, {"inet\nAT+CFUN=0", 100, AtParameterFault::Control},
        {"in\0et"s, 100, AtParameterFault::Control}, {"a\x7F", 100, AtParameterFault::Control}, {"a\xC2\x9B" "2J", 100, AtParameterFault::Control},
        {std::string(300, 'x'), 100, AtParameterFault::TooLong}, {std::string(100, 'x'), 100, AtParameterFault::None},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.value));
        EXPECT_EQ(CheckAtParameter(row.value, row.max), row.fault);
        std::string command = "AT+X=";
        EXPECT_EQ(AppendQuotedAtParameter(command, row.value, row.max), row.fault == AtParameterFault::None);
        EXPECT_EQ(command, row.fault == AtParameterFault::None ? "AT+X=\"" + row.value + "\"" : "AT+X=");
    }
}

// Every family that puts outside text into a command refuses it and sends nothing: the fake has no
// steps, so any command fails the test.
TEST(AtParameter, FamiliesSendNothingForRefusedText) {
    constexpr std::size_t kAny = std::string::npos;
    CSystemUtility system;
    CPbUtility pb;
    CSmsUtility sms;
    CNetworkUtility network;
    CCallUtility call;
    [](auto&... families) { (families.RegisterExecAT(ScriptedAtFake::Callback()), ...); }(system, pb, sms,
                                                                                          network, call);
    // clang-format off
    // cString: the value passes as a C string: an embedded NUL just ends it; room: the longest value the interface can carry
    struct Family { const char* name; std::function<int(const std::string&)> call; bool cString; std::size_t room; };
    const Family families[] = {
        {"AT+CGDCONT apn", [&](const std::string& v) { return system.SetPdpContext(v.c_str(), nullptr); }, true, kAny},
        {"AT+CGDCONT address", [&](const std::string& v) { return system.SetPdpContext("inet", v.c_str()); }, true, kAny},
        {"AT+CPBW number", [&](const std::string& v) { return pb.UpdateItem(TPbItem{PB_STORAGE_SIM, 1, L"Ann", v}); }, false, kAny},
        {"AT+CSCA", [&](const std::string& v) { TMsgAddress a; std::snprintf(a.szAddress, sizeof a.szAddress, "%s", v.c_str()); return sms.SetServiceCenterAddress(a); }, true, kMsgAddressSize - 1},
        {"AT+COPS", [&](const std::string& v) { return network.Set(7, 1, 0, v.c_str(), 0); }, true, kAny},
        {"ATD", [&](const std::string& v) { return call.Dial(v.c_str()); }, true, kAny},
    };
    // clang-format on
    const std::string values[] = {"1\"",          "1\";+CFUN=0;\"",     "1\r", "1\nAT+CMGD=1,4",
                                  "1\0;+CFUN=0"s, std::string(300, '1')};
    for (const Family& family : families) {
        for (const std::string& value : values) {
            if ((family.cString && value.find('\0') != std::string::npos) || value.size() > family.room)
                continue;
            SCOPED_TRACE(std::string(family.name) + " " + ScriptedAtFake::Printable(value));
            ScriptedAtFake fake;
            EXPECT_NE(family.call(value), 0);
            EXPECT_TRUE(fake.Calls().empty());
        }
    }
}

// A family without an execute-AT callback fails every command with 1 and touches nothing; only the end of a
// toolkit dialogue needs no modem.
TEST(Families, WithoutACallbackEveryCommandFails) {
    CSystemUtility system;
    CPbUtility pb;
    CCallUtility call;
    CGPSUtility gps;
    CSTKUtility stk;
    CUssdUility ussd;
    std::string response, text = "untouched";
    TPbStorageInfo info;
    TPbConstraint constraint;
    std::list<TPbItem> items;
    std::list<TCallItemState> calls;
    TUssdItem report;
    int type = 0;
    // clang-format off
    const std::pair<const char*, std::function<int()>> commands[] = {
        {"system WriteComm", [&] { return system.WriteComm(response, "AT\r", nullptr, 1000); }}, {"system CFUN", [&] { return system.SetPhoneFunctionality(1); }},
        {"phone book storage", [&] { return pb.GetStorageInfo(info); }}, {"phone book list", [&] { return pb.InitList(items); }},
        {"phone book limits", [&] { return pb.GetConstraint(constraint); }}, {"phone book delete", [&] { return pb.DeleteItem(0, 1); }},
        {"phone book update", [&] { return pb.UpdateItem(TPbItem{}); }}, {"call init", [&] { return call.Init(); }}, {"dial", [&] { return call.Dial("1"); }},
        {"call list", [&] { return call.CheckCallState(calls); }}, {"GPS on", [&] { return gps.InitGPS(); }}, {"GPS off", [&] { return gps.UninitGPS(); }},
        {"toolkit init", [&] { return stk.Init(text); }}, {"toolkit report", [&] { return stk.HandleReport("+STIN: 11", text); }},
        {"toolkit send", [&] { return stk.SendCommand("AT+STGR=256\r", text); }}, {"toolkit current", [&] { return stk.GetCurrentProactiveCommand(type, text); }},
        {"USSD send", [&] { return ussd.SendUssdCmd(L"*100#"); }}, {"USSD report", [&] { return ussd.Receive("+CUSD: 1,\"00480069\",72", report); }},
    };
    // clang-format on
    for (const auto& [name, command] : commands)
        EXPECT_EQ(command(), 1) << name;
    EXPECT_EQ(text, "untouched");
    EXPECT_FALSE(ussd.IsDialogueActive());
    EXPECT_EQ(stk.HandleReport("+STIN: 20", text), 0);
    EXPECT_EQ(text, "+STGI:20\r\nOK");
}

} // namespace
