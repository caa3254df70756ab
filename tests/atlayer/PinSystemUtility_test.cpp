#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "PinUtility.h"
#include "SystemUtility.h"

namespace {

using namespace at_test;

// The SIM's codes and the modem's identity and set-up, both over the scripted fake.
class PinSystemTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_pin.RegisterExecAT(ScriptedAtFake::Callback());
        m_system.RegisterExecAT(ScriptedAtFake::Callback());
    }
    ScriptedAtFake m_fake;
    CPinUtility m_pin;
    CSystemUtility m_system;
};
using PinUtilityTest = PinSystemTest;
using SystemUtilityTest = PinSystemTest;

TEST_F(PinUtilityTest, CheckStateSearchesTheStateTableInOrder) {
    const auto read = [this] {
        int state = -1;
        const int result = m_pin.CheckState(state);
        return Fields(result, state);
    };
    const auto check = [&](const char* answer, int result, int state) {
        SCOPED_TRACE(ScriptedAtFake::Printable(answer));
        m_fake.Expect("AT+CPIN?\r", answer)
            .WithTimeout(1000)
            .WithPrefix("+CPIN")
            .WithFinals({"OK", "+CME ERROR:", "ERROR"});
        EXPECT_EQ(read(), Fields(result, state));
    };
    // clang-format off
    // state: -1: left alone
    const struct { const char* answer; int result; int state; } rows[] = {
        {"\r\n+CPIN: READY\r\n\r\nOK\r\n", 0, 1}, {"AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n", 0, 2}, {"\r\n+CPIN: SIM PUK\r\n\r\nOK\r\n", 0, 3},
        {"\r\n+CPIN: PH-SIM PIN\r\n\r\nOK\r\n", 0, 2}, // found as "SIM PIN" first: kept
        {"\r\n+CPIN: PH-NETSUB PUK\r\n\r\nOK\r\n", 0, 12}, {"\r\n+CPIN:READY\r\n\r\nOK\r\n", 0, 1},
        {"\r\n+CREG: 1\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n", 0, 2}, {"\r\n+CPIN: BLOCKED\r\n\r\nOK\r\n", 1, -1},
        {"\r\n+CME ERROR: SIM not inserted\r\n", 0, 0}, {"\r\n+CME ERROR: SIM failure\r\n", 11, -1}, {"\r\n+CME ERROR: SIM busy\r\n", 12, -1},
        {"\r\n+CME ERROR: 10\r\n", 1, -1}, {"\r\nERROR\r\n", 1, -1}, {"", 2, -1},
    };
    // clang-format on
    for (const auto& row : rows)
        check(row.answer, row.result, row.state);
    m_fake.ExpectFailure("AT+CPIN?\r", 30);
    EXPECT_EQ(read(), "30|-1");
}

// Each command's text, time limit and result: the SIM's codes, then the modem's settings.
TEST_F(PinSystemTest, CommandsSendTheirTextAndMapErrors) {
    const char* ok = "\r\nOK\r\n";
    const char* error = "\r\n+CME ERROR: operation not allowed\r\n";
    // clang-format off
    // command: nullptr: nothing is sent
    const struct { std::function<int()> call; const char* command; int timeoutMs; const char* answer; int failure; int result; } rows[] = {
        {[&] { return m_pin.Verify("1234"); }, "AT+CPIN=\"1234\"\r", 1000, ok, 0, 0},
        {[&] { return m_pin.Verify("1234"); }, "AT+CPIN=\"1234\"\r", 1000, "AT+CPIN=\"1234\"\r\r\nOK\r\n", 0, 0},
        {[&] { return m_pin.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "\r\n+CME ERROR: incorrect password\r\n", 0, 14},
        {[&] { return m_pin.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "", 0, 2},
        {[&] { return m_pin.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "\r\nERROR\r\n", 0, 1},
        {[&] { return m_pin.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "", 2, 2},
        {[&] { return m_pin.VerifyPuk("12345678", "4321"); }, "AT+CPIN=\"12345678\",\"4321\"\r", 1000, ok, 0, 0},
        {[&] { return m_pin.VerifyPuk("12345678", "4321"); }, "AT+CPIN=\"12345678\",\"4321\"\r", 1000, "\r\n+CME ERROR: SIM PUK required\r\n", 0, 10},
        {[&] { return m_pin.Change("1234", "4321"); }, "AT+CPWD=\"SC\",\"1234\",\"4321\"\r", 1000, ok, 0, 0},
        {[&] { return m_pin.Change("1234", "4321"); }, "AT+CPWD=\"SC\",\"1234\",\"4321\"\r", 1000, "\r\n+CME ERROR: SIM PIN required\r\n", 0, 9},
        {[&] { return m_pin.Enable(1, "1234"); }, "AT+CLCK=\"SC\",1,\"1234\"\r", 1000, ok, 0, 0},
        {[&] { return m_pin.Enable(7, "1234"); }, "AT+CLCK=\"SC\",1,\"1234\"\r", 1000, ok, 0, 0},
        {[&] { return m_pin.Enable(0, "1234"); }, "AT+CLCK=\"SC\",0,\"1234\"\r", 1000, "\r\n+CME ERROR: incorrect password\r\n", 0, 14},
        // A code that is not 4 to 8 digits (8 for a PUK) never reaches the SIM.
        {[&] { return m_pin.Enable(1, nullptr); }, nullptr, 0, "", 0, 45}, {[&] { return m_pin.Enable(1, "12ab"); }, nullptr, 0, "", 0, 45},
        {[&] { return m_pin.Verify("12\";+CFUN=0;\""); }, nullptr, 0, "", 0, 45},
        {[&] { return m_pin.VerifyPuk("1234567", "1234"); }, nullptr, 0, "", 0, 45},
        {[&] { return m_pin.Change("1234", "12\r"); }, nullptr, 0, "", 0, 45}, {[&] { return m_pin.Verify(nullptr); }, nullptr, 0, "", 0, 1},
        {[&] { return m_pin.VerifyPuk(nullptr, "1234"); }, nullptr, 0, "", 0, 1},
        {[&] { return m_pin.VerifyPuk("12345678", nullptr); }, nullptr, 0, "", 0, 1},
        {[&] { return m_pin.Change(nullptr, "1234"); }, nullptr, 0, "", 0, 1}, {[&] { return m_pin.Change("1234", nullptr); }, nullptr, 0, "", 0, 1},
        {[&] { return m_system.SetPdpContext("internet", nullptr); }, "AT+CGDCONT=1,\"IP\",\"internet\"\r", 3000, ok, 0, 0},
        {[&] { return m_system.SetPdpContext("cmnet", "10.0.0.1"); }, "AT+CGDCONT=1,\"IP\",\"cmnet\",\"10.0.0.1\"\r", 3000, ok, 0, 0},
        {[&] { return m_system.SetPdpContext("internet", nullptr); }, "AT+CGDCONT=1,\"IP\",\"internet\"\r", 3000, "\r\nERROR\r\n", 0, 1},
        {[&] { return m_system.SetPdpContext(nullptr, "10.0.0.1"); }, nullptr, 0, "", 0, 1},
        {[&] { return m_system.SetPhoneFunctionality(1); }, "AT+CFUN=1\r", 20000, ok, 0, 0},
        {[&] { return m_system.SetPhoneFunctionality(0); }, "AT+CFUN=0\r", 20000, error, 0, 1},
        {[&] { return m_system.SetPhoneFunctionality(4); }, "AT+CFUN=4\r", 20000, "", 2, 2},
        {[&] { return m_system.SetDeviceStartState(1); }, "AT+FUNC=5,1\r", 3000, ok, 0, 0},
        {[&] { return m_system.SetDeviceStartState(0); }, "AT+FUNC=5,0\r", 3000, error, 0, 1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command != nullptr ? ScriptedAtFake::Printable(row.command) : "nothing sent");
        if (row.command != nullptr)
            m_fake.Expect(row.command, row.answer, row.failure).WithTimeout(row.timeoutMs).WithoutPrefix();
        EXPECT_EQ(row.call(), row.result);
        m_fake.VerifyDone();
    }
}

TEST_F(PinUtilityTest, GetStateReadsTheLockAnswer) {
    // clang-format off
    const struct { const char* answer; int result; int enabled; } rows[] = {
        {"\r\n+CLCK: 1\r\n\r\nOK\r\n", 0, 1}, {"AT+CLCK=\"SC\",2\r\r\n+CLCK: 0\r\n\r\nOK\r\n", 0, 0}, {"\r\n+CLCK: 2\r\n\r\nOK\r\n", 1, -1},
        {"\r\n+CLCK:\r\n\r\nOK\r\n", 1, -1}, {"\r\n+CME ERROR: SIM PIN required\r\n", 1, -1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CLCK=\"SC\",2\r", row.answer).WithTimeout(5000).WithPrefix("+CLCK");
        int enabled = -1;
        const int result = m_pin.GetState(enabled);
        EXPECT_EQ(Fields(result, enabled), Fields(row.result, row.enabled));
    }
}

TEST_F(PinUtilityTest, GetInfoPicksTheCounterCommandByState) {
    const char* smpn = "\r\n+SMPN: PN(1,2),PU(3,4),PP(5,6),PC(7,8),PF(9,10)\r\n\r\nOK\r\n";
    // clang-format off
    const struct { int pinState; const char* command; const char* answer; int result; int first; int second; } rows[] = {
        {2, "AT+PNNM?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 0, 3, 10}, {3, "AT+PNNM?\r", "\r\n+PNNM: 0,10\r\n\r\nOK\r\n", 0, 0, 10},
        {17, "AT+PNNM?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 0, 3, 10}, {2, "AT+PNNM?\r", "\r\n+PNNM: 3\r\n\r\nOK\r\n", 1, -1, -1}, {4, "AT+SMPN?\r", smpn, 0, 9, 10},
        {9, "AT+SMPN?\r", smpn, 0, 1, 2}, {11, "AT+SMPN?\r", smpn, 0, 3, 4}, {13, "AT+SMPN?\r", smpn, 0, 5, 6}, {15, "AT+SMPN?\r", smpn, 0, 7, 8},
        {4, "AT+SMPN?\r", "\r\n+SMPN: PN(1,2),PU(3,4),PP(5,6),PC(7,8)\r\n\r\nOK\r\n", 1, -1, -1},
        {4, "AT+SMPN?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 1, -1, -1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "state " << row.pinState << " " << ScriptedAtFake::Printable(row.answer));
        m_fake.Expect(row.command, row.answer).WithTimeout(10000).WithoutPrefix();
        TPinInfo info{-1, -1};
        const int result = m_pin.GetInfo(row.pinState, info);
        EXPECT_EQ(Fields(result, info.nPinCnt, info.nPukCnt), Fields(row.result, row.first, row.second));
        m_fake.VerifyDone();
    }

    m_fake.ExpectFailure("AT+PNNM?\r", 2);
    TPinInfo info;
    EXPECT_EQ(m_pin.GetInfo(2, info), 2);
}

TEST(SystemUtilityTrim, TrimContentCutsTheFramingOnly) {
    // clang-format off
    // value: what the buffer holds afterwards; it starts as "untouched"
    const struct { const char* answer; int result; const char* value; } rows[] = {
        {"\r\nABC\r\n\r\nOK\r\n", 0, "ABC"}, {"\r\nAcme Wireless\r\n\r\nOK\r\n", 0, "Acme Wireless"},
        {"\r\n\r\n\r\n11.608.12.02.21\r\nOK\r\n", 0, "11.608.12.02.21"},
        {"\r\n+CGMM: VM-3G 200\r\n\r\nOK\r\n", 0, "+CGMM: VM-3G 200"}, // a prefix stays
        {"\r\nRev 1\r\nBuild 2\r\n\r\nOK\r\n", 0, "Rev 1\r\nBuild 2"}, {"ABC\r\nOK", 0, "ABC"}, {"\r\nOK\r\n", 0, "untouched"},
        {"\r\n\r\n\r\nOK\r\n", 0, "untouched"}, {"\r\nABC\r\n", 1, "untouched"}, {"\r\nERROR\r\n", 1, "untouched"}, {"", 1, "untouched"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        char buffer[64] = "untouched";
        EXPECT_EQ(CSystemUtility::TrimContent(row.answer, buffer, sizeof buffer), row.result);
        EXPECT_STREQ(buffer, row.value);
    }

    char small[4] = {};
    EXPECT_EQ(CSystemUtility::TrimContent("\r\nABCDEF\r\n\r\nOK\r\n", small, sizeof small), 0);
    EXPECT_STREQ(small, "ABC");
}

TEST(SystemUtilityParse, ImsiIsTheFirstShortAllDigitLine) {
    const std::string sixtyDigits(60, '9');
    // clang-format off
    const struct { std::string answer; int result; const char* imsi; } rows[] = {
        {"\r\n460001234567890\r\n\r\nOK\r\n", 0, "460001234567890"}, {"\r\n001010123456789\r\nOK\r\n", 0, "001010123456789"},
        {"\r\n" + sixtyDigits + "\r\nOK\r\n", 1, ""},
        {"\r\n" + sixtyDigits + "\r\n\r\nOK\r\n", 0, ""}, // the blank line behind it counts
        {"\r\n" + sixtyDigits + "\r\n262019876543210\r\n\r\nOK\r\n", 0, "262019876543210"},
        {"\r\n+CREG: 1\r\n460001234567890\r\n\r\nOK\r\n", 0, "460001234567890"}, {"\r\n+CIMI: 460001234567890\r\nOK\r\n", 1, ""},
        {"\r\n\r\n460001234567890\r\n\r\nOK\r\n", 0, ""}, // the empty line counts: kept
        {"\r\n460001234567890\r\n", 1, ""}, {"\r\n+CME ERROR: SIM not inserted\r\n", 1, ""}, {"OK", 1, ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        char imsi[kImsiSize] = {};
        EXPECT_EQ(CSystemUtility::ParseImsiAnswer(row.answer, imsi), row.result);
        EXPECT_STREQ(imsi, row.imsi);
    }
}

TEST_F(SystemUtilityTest, OwnNumberFollowsTheCnumRules) {
    // clang-format off
    const struct { const char* answer; const char* number; } rows[] = {
        {"\r\n+CNUM: \"Voice\",\"+8613912345678\",145,0,4\r\n\r\nOK\r\n", "+8613912345678"},
        {"\r\n+CNUM: ,\"07700900123\",129\r\n\r\nOK\r\n", "07700900123"}, {"\r\n+CNUM: \"\",\"+447700900123\",145,,4\r\n\r\nOK\r\n", "+447700900123"},
        {"\r\n+CNUM: \"Data\",\"+111\",145,0,0\r\n+CNUM: \"Voice\",\"+222\",145,0,4\r\n\r\nOK\r\n", "+222"},
        {"\r\n+CNUM: \"\",\"\",129\r\n+CNUM: \"\",\"+333\",145\r\n\r\nOK\r\n", "+333"},
        {"\r\n+CNUM: \"Me\", \"+444\",145\r\n+CNUM: ,\"+555\",145\r\n\r\nOK\r\n", ""}, // no quote: stop
        {"\r\n+CNUM: \"Fax\",\"+666\",145,0,5\r\n\r\nOK\r\n", ""}, {"\r\n+CNUM: \"\",\"+777\r\n\r\nOK\r\n", ""},
        {"\r\n+CNUM: ,\"123456789012345678901234567890\",129\r\n\r\nOK\r\n", "1234567890123456789"},
        {"\r\n+CNUM: ,\"+888\",145\r\n+CMTI: \"SM\",1\r\n\r\nOK\r\n", "+888"}, {"\r\nOK\r\n", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CNUM\r", row.answer).WithTimeout(3000).WithoutPrefix().WithFinals(kFinals);
        TMsisdnInfo msisdn;
        std::memset(static_cast<void*>(&msisdn), 'x', sizeof msisdn);
        const int result = m_system.GetMsisdn(msisdn);
        EXPECT_EQ(Fields(result, msisdn.szNumber, msisdn.chTerminator), Fields(0, row.number, 0));
    }

    m_fake.ExpectFailure("AT+CNUM\r", 2);
    TMsisdnInfo msisdn;
    std::strcpy(msisdn.szNumber, "+999");
    EXPECT_EQ(m_system.GetMsisdn(msisdn), 2);
    EXPECT_STREQ(msisdn.szNumber, "");
}

TEST_F(SystemUtilityTest, SyncCommEscapesThenSwitchesEchoOnTwiceAndOff) {
    // clang-format off
    // failAt: step (1: first ATE1, 2: second ATE1, 3: ATE0) that fails, 0 none
    const struct { const char* name; int failAt; int failure; int result; } rows[] = {
        {"all answer", 0, 0, 0}, {"first ATE1 times out", 1, 2, 2}, {"second ATE1 cancelled", 2, 30, 30}, {"ATE0 fails", 3, 1, 1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        // The escape's own result does not count.
        m_fake.ExpectFailure("\x1B", 2).WithTimeout(100).WithoutPrefix().WithFinals({"OK"});
        const char* commands[] = {"ATE1\r", "ATE1\r", "ATE0\r"};
        const char* answers[] = {"\r\nOK\r\n", "ATE1\r\r\nOK\r\n", "ATE0\r\r\nOK\r\n"};
        for (int step = 1; step <= 3; ++step) {
            if (step == row.failAt) {
                m_fake.ExpectFailure(commands[step - 1], row.failure);
                break;
            }
            auto& expected =
                m_fake.Expect(commands[step - 1], answers[step - 1]).WithTimeout(1000).WithFinals(kFinals);
            if (step == 2)
                expected.WithPrefix("ATE1");
            else
                expected.WithoutPrefix();
        }
        EXPECT_EQ(m_system.SyncComm(), row.result);
        m_fake.VerifyDone();
    }

    const auto expectSync = [this] {
        m_fake.Expect("\x1B", "");
        m_fake.Expect("ATE1\r");
        m_fake.Expect("ATE1\r", "ATE1\r\r\nOK\r\n");
        m_fake.Expect("ATE0\r", "ATE0\r\r\nOK\r\n");
    };
    // InitComm synchronises, then sets the modem up.
    expectSync();
    for (const char* command : {"AT&F\r", "ATE0Q0V1\r", "AT+CMEE=2\r"})
        m_fake.Expect(command).WithTimeout(1000).WithoutPrefix().WithFinals(kFinals);
    EXPECT_EQ(m_system.InitComm(), 0);
    m_fake.VerifyDone();

    // The first failure ends the setup with its code.
    expectSync();
    m_fake.Expect("AT&F\r");
    m_fake.ExpectFailure("ATE0Q0V1\r", 2);
    EXPECT_EQ(m_system.InitComm(), 2);
    m_fake.VerifyDone();

    // A failed synchronisation sends no setup.
    m_fake.Expect("\x1B", "");
    m_fake.ExpectFailure("ATE1\r", 1);
    EXPECT_EQ(m_system.InitComm(), 1);
}

TEST_F(SystemUtilityTest, EquipmentInfoReadsEveryIdentityAndAlwaysSetsBit64) {
    const std::string longManufacturer(2100, 'M');
    m_fake.Expect("AT+CGMI\r", "AT+CGMI\r\r\n" + longManufacturer + "\r\n\r\nOK\r\n").WithTimeout(3000);
    m_fake.Expect("AT+CGMM\r", "\r\nVM-3G 200\r\n\r\nOK\r\n").WithTimeout(3000);
    m_fake.Expect("AT+CGMR\r", "\r\n11.608.12.02.21\r\n\r\nOK\r\n").WithTimeout(3000);
    m_fake.Expect("AT+CGSN\r", "\r\n354635030000001\r\n\r\nOK\r\n").WithTimeout(3000);
    m_fake.Expect("AT+CIMI\r", "\r\n460001234567890\r\n\r\nOK\r\n").WithTimeout(5000);
    m_fake.Expect("AT+CNUM\r", "\r\n+CNUM: \"\",\"+8613912345678\",145\r\n\r\nOK\r\n").WithTimeout(3000);
    m_fake.Expect("AT+HWV\r", "\r\nERROR\r\n").WithTimeout(3000).WithoutPrefix().WithFinals(kFinals);

    TEquipmentInfo info;
    std::memset(static_cast<void*>(&info), 'x', sizeof info);
    EXPECT_EQ(m_system.GetEquipmentInfo(info), 0);
    EXPECT_EQ(std::string(info.szManufacturer), std::string(2048, 'M'));
    EXPECT_EQ(Fields(info.nMask, info.szModel, info.szRevision, info.szSerialNumber, info.szImsi,
                     info.msisdn.szNumber),
              "127|VM-3G 200|11.608.12.02.21|354635030000001|460001234567890|+8613912345678");
    EXPECT_EQ(std::string(info.szHardwareVersion, sizeof info.szHardwareVersion),
              std::string(sizeof info.szHardwareVersion, '\0'));
    m_fake.VerifyDone();

    // The hardware version alone: bounded, or zeroed when it cannot be read.
    char version[kHardwareVersionSize];
    m_fake.Expect("AT+HWV\r", "\r\n" + std::string(60, 'V') + "\r\n\r\nOK\r\n");
    EXPECT_EQ(m_system.GetHardwareVersion(version), 0);
    EXPECT_EQ(std::string(version), std::string(40, 'V'));

    m_fake.ExpectFailure("AT+HWV\r", 2);
    EXPECT_EQ(m_system.GetHardwareVersion(version), 2);
    EXPECT_EQ(std::string(version, sizeof version), std::string(sizeof version, '\0'));
}

TEST_F(SystemUtilityTest, DeviceStartStateReadsTheFuncAnswer) {
    // clang-format off
    const struct { const char* answer; int result; int state; } rows[] = {
        {"\r\n+FUNC: 1\r\n\r\nOK\r\n", 0, 1}, {"AT+FUNC=5,?\r\r\n+FUNC:0\r\n\r\nOK\r\n", 0, 0}, {"\r\n+CREG: 1\r\n+FUNC: 2\r\n\r\nOK\r\n", 0, 2},
        {"\r\n+FUNC: \r\n\r\nOK\r\n", 1, -1}, {"\r\nOK\r\n", 1, -1}, {"\r\nERROR\r\n", 1, -1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+FUNC=5,?\r", row.answer).WithTimeout(3000).WithPrefix("+FUNC:");
        int state = -1;
        const int result = m_system.GetDeviceStartState(state);
        EXPECT_EQ(Fields(result, state), Fields(row.result, row.state));
    }
}

} // namespace
