#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "ATSublayer.h"
#include "ModemDialect.h"
#include "NetworkAnswerParsers.h"
#include "NetworkUtility.h"
#include "ScriptedAtFake.h"
#include "SystemUtility.h"

// A stick of the standard dialect through the whole sublayer: 27.007/27.005 commands only.
namespace {

std::string Answer(const std::string& line) {
    return "\r\n" + line + "\r\n\r\nOK\r\n";
}

class StandardDialectTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetModemDialect(ModemDialect::Standard);
        ASSERT_EQ(ATSubLayer_CreateInstance(m_sublayer), 0);
        TInterfaceAtSublayerLower lower;
        lower.pfnExecAT = ScriptedAtFake::Callback();
        m_sublayer->RegisterLowerCBs(lower);
    }
    void TearDown() override {
        ATSubLayer_DestroyInstance(m_sublayer);
        ResetModemDialect();
    }

    TInterfaceAtSublayer* m_sublayer = nullptr;
};

TEST_F(StandardDialectTest, AttemptsLeftComeFromCpinrOrStayUnknown) {
    struct Row {
        const char* modem;
        int pinState;
        std::string answer;
        int result; // the execute-AT result
        int pin;
        int puk;
    };
    // clang-format off
    const Row rows[] = {
        {"3GPP reference, all codes", 2, "\r\n+CPINR: SIM PIN,3,3\r\n+CPINR: SIM PUK,10,10\r\n+CPINR: SIM PIN2,2,3\r\n+CPINR: SIM PUK2,10,10\r\n\r\nOK\r\n", 0, 3, 10},
        {"stick quoting the code", 3, "\r\n+CPINR: \"SIM PIN\",0,3\r\n+CPINR: \"SIM PUK\",7,10\r\n\r\nOK\r\n", 0, 0, 7},
        {"PIN2 of the same answer", 7, "\r\n+CPINR: SIM PIN,3,3\r\n+CPINR: SIM PIN2,2,3\r\n+CPINR: SIM PUK2,9,10\r\n\r\nOK\r\n", 0, 2, 9},
        {"stick without blank after the colon", 1, "\r\n+CPINR:SIM PIN,1,3\r\n\r\nOK\r\n", 0, 1, -1},
        {"stick without the command", 1, "\r\nERROR\r\n", 0, -1, -1},
        {"stick answering a CME cause", 2, "\r\n+CME ERROR: 4\r\n", 0, -1, -1},
        {"stick that never answers", 2, "", 2, -1, -1},
        {"garbled count", 2, "\r\n+CPINR: SIM PIN,x,3\r\n\r\nOK\r\n", 0, -1, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.modem);
        ScriptedAtFake fake;
        if (row.result == 0)
            fake.Expect("AT+CPINR\r", row.answer).WithTimeout(1000).WithPrefix("+CPINR");
        else
            fake.ExpectFailure("AT+CPINR\r", row.result);
        TPinInfo info;
        EXPECT_EQ(m_sublayer->PINGetInfo(row.pinState, info), 0);
        EXPECT_EQ(info.nPinCnt, row.pin);
        EXPECT_EQ(info.nPukCnt, row.puk);
    }
    // A personalisation lock has no standard counter: nothing is asked.
    TPinInfo info;
    EXPECT_EQ(m_sublayer->PINGetInfo(9, info), 0);
    EXPECT_EQ(info.nPinCnt, kPinCountUnknown);
}

TEST_F(StandardDialectTest, BearerFromTheAccessTechnology) {
    struct Row {
        const char* modem;
        const char* creg;
        const char* cops; // null: not asked
        int result;
        int bearer;
    };
    // clang-format off
    const Row rows[] = {
        {"HSDPA cell", "+CREG: 2,1,\"1A2B\",\"00C3D4\",4", nullptr, 0, 4},
        {"HSPA roaming", "+CREG: 2,5,\"1A2B\",\"00C3D4\",6", nullptr, 0, 5},
        {"HSUPA", "+CREG: 2,1,\"1A2B\",\"00C3D4\",5", nullptr, 0, 6},
        {"UTRAN", "+CREG: 2,1,\"1A2B\",\"00C3D4\",2", nullptr, 0, 3},
        {"GSM", "+CREG: 2,1,\"1A2B\",\"00C3D4\",0", nullptr, 0, 7},
        {"EDGE", "+CREG: 2,1,\"1A2B\",\"00C3D4\",3", nullptr, 0, 2},
        {"LTE has no bearer text", "+CREG: 2,1,\"1A2B\",\"00C3D4\",7", nullptr, 1, -1},
        {"report before the answer", "+CREG: 1,\"1A2B\",\"00C3D4\",0\r\n+CREG: 2,1,\"1A2B\",\"00C3D4\",4", nullptr, 0, 4},
        {"searching", "+CREG: 2,2", nullptr, 0, 0},
        {"no technology in CREG, COPS has it", "+CREG: 2,1,\"1A2B\",\"00C3D4\"", "+COPS: 0,2,\"26201\",2", 0, 3},
        {"old stick: CREG=2 refused", "+CREG: 0,1", "+COPS: 0,0,\"Acme\",6", 0, 5},
        {"no technology anywhere", "+CREG: 0,1", "+COPS: 0,0,\"Acme\"", 1, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.modem);
        CNetworkUtility network;
        network.RegisterExecAT(ScriptedAtFake::Callback());
        ScriptedAtFake fake;
        fake.Expect("AT+CREG=2\r").WithTimeout(1000);
        fake.Expect("AT+CREG?\r", Answer(row.creg)).WithTimeout(3000).WithPrefix("+CREG");
        if (row.cops != nullptr)
            fake.Expect("AT+COPS?\r", Answer(row.cops)).WithPrefix("+COPS");
        int bearer = -1;
        EXPECT_EQ(network.GetBearer(bearer), row.result);
        EXPECT_EQ(bearer, row.result == 0 ? row.bearer : -1);
        fake.VerifyDone();
        // AT+CREG=2 goes once per modem.
        fake.Expect("AT+CREG?\r", Answer("+CREG: 2,1,\"1A2B\",\"00C3D4\",4"));
        EXPECT_EQ(network.GetBearer(bearer), 0);
    }
}

TEST(StandardDialectParse, ProviderNameFromEfSpn) {
    struct Row {
        const char* modem;
        const char* answer;
        int result;
        int display;
        std::u16string name;
    };
    // clang-format off
    const Row rows[] = {
        {"GSM alphabet, FF padding", "\r\n+CRSM: 144,0,\"0141636D65FFFFFFFFFFFFFFFFFFFFFFFF\"\r\n\r\nOK\r\n", 0, 1, u"Acme"},
        {"UCS2 name", "\r\n+CRSM: 144,0,\"00800041006300 6D0065FFFF\"\r\n\r\nOK\r\n", 0, 0, u"Acme"},
        {"lower-case hex, no blank after the colon", "\r\n+CRSM:144,0,\"02416263ffff\"\r\n\r\nOK\r\n", 0, 2, u"Abc"},
        {"SIM without EF-SPN", "\r\n+CRSM: 148,4\r\n\r\nOK\r\n", 1, 0, u""},
        {"status without data", "\r\n+CRSM: 144,0\r\n\r\nOK\r\n", 1, 0, u""},
        {"unquoted data", "\r\n+CRSM: 144,0,0141\r\n\r\nOK\r\n", 1, 0, u""},
        {"refused", "\r\nERROR\r\n", 1, 0, u""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.modem);
        TServiceProviderInfo info;
        EXPECT_EQ(ParseCrsmSpnAnswer(row.answer, info), row.result);
        EXPECT_EQ(info.nPresent, row.result == 0 ? 1 : 0);
        EXPECT_EQ(info.nDisplay, row.display);
        EXPECT_EQ(std::u16string(info.wszSpName), row.name);
    }
}

TEST_F(StandardDialectTest, NetworkInfoUsesOnlyStandardCommands) {
    ScriptedAtFake fake;
    fake.Expect("AT+COPS=3,2\r");
    fake.Expect("AT+COPS?\r", Answer("+COPS: 0,2,\"26201\",2"));
    fake.Expect("AT+CSQ\r", Answer("+CSQ: 18,99"));
    fake.Expect("AT+CREG?\r", Answer("+CREG: 0,1"));
    fake.Expect("AT+CREG=2\r");
    fake.Expect("AT+CREG?\r", Answer("+CREG: 2,1,\"1A2B\",\"00C3D4\",6"));
    fake.Expect("AT+CGREG?\r", Answer("+CGREG: 0,1"));
    fake.Expect("AT+CRSM=176,28486,0,0,17\r", Answer("+CRSM: 144,0,\"0141636D65FFFF\""))
        .WithTimeout(5000)
        .WithPrefix("+CRSM");
    fake.Expect("AT+CIMI\r", Answer("262011234567890"));
    TNetworkInfo info;
    EXPECT_EQ(m_sublayer->NetworkGetInfo(info), 0);
    EXPECT_EQ(info.nBearer, 5);
    EXPECT_EQ(info.spInfo.nPresent, 1);
    EXPECT_EQ(info.spInfo.nDisplay, 1); // home network, display byte bit 1 set
    EXPECT_EQ(std::u16string(info.spInfo.wszSpName), u"Acme");
}

TEST_F(StandardDialectTest, VendorFeaturesAreRefusedWithoutSending) {
    int value = 0;
    std::string text;
    char hardware[kHardwareVersionSize] = {'x'};
    CNetworkUtility network;
    CSystemUtility system;
    network.RegisterExecAT(ScriptedAtFake::Callback());
    system.RegisterExecAT(ScriptedAtFake::Callback());
    // clang-format off
    const std::pair<const char*, std::function<int()>> operations[] = {
        {"band", [&] { return m_sublayer->NetworkGetBand(value); }},
        {"set band", [&] { return m_sublayer->NetworkSetBand(0x3FFFFFFF); }},
        {"mode", [&] { return m_sublayer->NetworkGetMode(value); }},
        {"set mode", [&] { return m_sublayer->NetworkSetMode(0); }},
        {"domain", [&] { return network.GetDomain(value); }},
        {"set domain", [&] { return network.SetDomain(1); }},
        {"toolkit menu", [&] { return m_sublayer->STKInit(text); }},
        {"toolkit report", [&] { return m_sublayer->STKHandleReport("+STIN: 11", text); }},
        {"toolkit query", [&] { return m_sublayer->STKGetCurrentProactiveCommand(value, text); }},
        {"GPS on", [&] { return m_sublayer->GPSInit(); }},
        {"GPS off", [&] { return m_sublayer->GPSUninit(); }},
        {"start state", [&] { return m_sublayer->SystemGetDeviceStartState(value); }},
        {"set start state", [&] { return m_sublayer->SystemSetDeviceStartState(0); }},
        {"hardware version", [&] { return system.GetHardwareVersion(hardware); }},
    };
    // clang-format on
    ScriptedAtFake fake; // no step: any command sent fails the test
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        EXPECT_EQ(operation(), kNotSupportedByModem);
    }
    EXPECT_EQ(hardware[0], '\0');
    EXPECT_TRUE(fake.Calls().empty());
}

} // namespace
