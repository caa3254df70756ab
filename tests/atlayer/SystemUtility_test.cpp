#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ScriptedAtFake.h"
#include "SystemUtility.h"

namespace {

const std::list<std::string> kFinals = {"OK", "+CME ERROR", "ERROR"};

class SystemUtilityTest : public ::testing::Test {
protected:
    void SetUp() override { m_system.RegisterExecAT(ScriptedAtFake::Callback()); }

    ScriptedAtFake m_fake;
    CSystemUtility m_system;
};

TEST(SystemUtilityTrim, TrimContentCutsTheFramingOnly) {
    // clang-format off
    // value: what the buffer holds afterwards; it starts as "untouched"
    struct Row { const char* answer; int result; const char* value; };
    const Row rows[] = {
        {"\r\nABC\r\n\r\nOK\r\n", 0, "ABC"}, {"\r\nAcme Wireless\r\n\r\nOK\r\n", 0, "Acme Wireless"},
        {"\r\n\r\n\r\n11.608.12.02.21\r\nOK\r\n", 0, "11.608.12.02.21"},
        {"\r\n+CGMM: VM-3G 200\r\n\r\nOK\r\n", 0, "+CGMM: VM-3G 200"}, // a prefix stays
        {"\r\nRev 1\r\nBuild 2\r\n\r\nOK\r\n", 0, "Rev 1\r\nBuild 2"}, {"ABC\r\nOK", 0, "ABC"}, {"\r\nOK\r\n", 0, "untouched"},
        {"\r\n\r\n\r\nOK\r\n", 0, "untouched"}, {"\r\nABC\r\n", 1, "untouched"}, {"\r\nERROR\r\n", 1, "untouched"}, {"", 1, "untouched"},
    };
    // clang-format on
    for (const Row& row : rows) {
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
    struct Row { std::string answer; int result; const char* imsi; };
    const Row rows[] = {
        {"\r\n460001234567890\r\n\r\nOK\r\n", 0, "460001234567890"}, {"\r\n001010123456789\r\nOK\r\n", 0, "001010123456789"},
        {"\r\n" + sixtyDigits + "\r\nOK\r\n", 1, ""},
        {"\r\n" + sixtyDigits + "\r\n\r\nOK\r\n", 0, ""}, // the blank line behind it counts
        {"\r\n" + sixtyDigits + "\r\n262019876543210\r\n\r\nOK\r\n", 0, "262019876543210"},
        {"\r\n+CREG: 1\r\n460001234567890\r\n\r\nOK\r\n", 0, "460001234567890"}, {"\r\n+CIMI: 460001234567890\r\nOK\r\n", 1, ""},
        {"\r\n\r\n460001234567890\r\n\r\nOK\r\n", 0, ""}, // the empty line counts: kept
        {"\r\n460001234567890\r\n", 1, ""}, {"\r\n+CME ERROR: SIM not inserted\r\n", 1, ""}, {"OK", 1, ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        char imsi[kImsiSize] = {};
        EXPECT_EQ(CSystemUtility::ParseImsiAnswer(row.answer, imsi), row.result);
        EXPECT_STREQ(imsi, row.imsi);
    }
}

TEST_F(SystemUtilityTest, OwnNumberFollowsTheCnumRules) {
    // clang-format off
    struct Row { const char* answer; const char* number; };
    const Row rows[] = {
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
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CNUM\r", row.answer).WithTimeout(3000).WithoutPrefix().WithFinals(kFinals);
        TMsisdnInfo msisdn;
        std::memset(static_cast<void*>(&msisdn), 'x', sizeof msisdn);
        EXPECT_EQ(m_system.GetMsisdn(msisdn), 0);
        EXPECT_STREQ(msisdn.szNumber, row.number);
        EXPECT_EQ(msisdn.chTerminator, 0);
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
    struct Row { const char* name; int failAt; int failure; int result; };
    const Row rows[] = {
        {"all answer", 0, 0, 0}, {"first ATE1 times out", 1, 2, 2}, {"second ATE1 cancelled", 2, 30, 30}, {"ATE0 fails", 3, 1, 1},
    };
    // clang-format on
    for (const Row& row : rows) {
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

    // ATE0 answered without "OK".
    m_fake.Expect("\x1B", "");
    m_fake.Expect("ATE1\r");
    m_fake.Expect("ATE1\r", "ATE1\r\r\nOK\r\n");
    m_fake.Expect("ATE0\r", "ATE0\r\r\nERROR\r\n");
    EXPECT_EQ(m_system.SyncComm(), 1);
}

TEST_F(SystemUtilityTest, InitCommSynchronisesThenSetsTheModemUp) {
    const auto expectSync = [this] {
        m_fake.Expect("\x1B", "");
        m_fake.Expect("ATE1\r");
        m_fake.Expect("ATE1\r", "ATE1\r\r\nOK\r\n");
        m_fake.Expect("ATE0\r", "ATE0\r\r\nOK\r\n");
    };
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
    EXPECT_EQ(info.nMask, 127u);
    EXPECT_EQ(std::string(info.szManufacturer), std::string(2048, 'M'));
    EXPECT_STREQ(info.szModel, "VM-3G 200");
    EXPECT_STREQ(info.szRevision, "11.608.12.02.21");
    EXPECT_STREQ(info.szSerialNumber, "354635030000001");
    EXPECT_STREQ(info.szImsi, "460001234567890");
    EXPECT_STREQ(info.msisdn.szNumber, "+8613912345678");
    for (const char byte : info.szHardwareVersion)
        EXPECT_EQ(byte, 0);
    m_fake.VerifyDone();

    // Reads that fail leave their bits clear and their fields empty.
    m_fake.Expect("AT+CGMI\r", "\r\nAcme Wireless\r\n\r\nOK\r\n");
    m_fake.ExpectFailure("AT+CGMM\r", 2);
    m_fake.Expect("AT+CGMR\r", "\r\n+CME ERROR: operation not supported\r\n");
    m_fake.ExpectFailure("AT+CGSN\r", 30);
    m_fake.Expect("AT+CIMI\r", "\r\n+CME ERROR: SIM not inserted\r\n");
    m_fake.ExpectFailure("AT+CNUM\r", 2);
    m_fake.Expect("AT+HWV\r", "\r\nHW 1.0\r\n\r\nOK\r\n");
    EXPECT_EQ(m_system.GetEquipmentInfo(info), 0);
    EXPECT_EQ(info.nMask, 1u | 64u);
    EXPECT_STREQ(info.szManufacturer, "Acme Wireless");
    EXPECT_STREQ(info.szModel, "");
    EXPECT_STREQ(info.szImsi, "");
    EXPECT_STREQ(info.szHardwareVersion, "HW 1.0");
}

TEST_F(SystemUtilityTest, HardwareVersionIsBoundedOrZeroed) {
    char version[kHardwareVersionSize];
    m_fake.Expect("AT+HWV\r", "\r\n" + std::string(60, 'V') + "\r\n\r\nOK\r\n");
    EXPECT_EQ(m_system.GetHardwareVersion(version), 0);
    EXPECT_EQ(std::string(version), std::string(40, 'V'));

    m_fake.ExpectFailure("AT+HWV\r", 2);
    EXPECT_EQ(m_system.GetHardwareVersion(version), 2);
    for (const char byte : version)
        EXPECT_EQ(byte, 0);
}

TEST_F(SystemUtilityTest, SetCommandsSendTheirTextAndNeedOk) {
    struct Row {
        std::function<int(CSystemUtility&)> call;
        const char* command; // nullptr: nothing is sent
        int timeoutMs;
        const char* answer;
        int failure; // execute-AT result
        int result;
    };
    const char* ok = "\r\nOK\r\n";
    const char* error = "\r\n+CME ERROR: operation not allowed\r\n";
    // clang-format off
    const Row rows[] = {
        {[](CSystemUtility& s) { return s.SetPdpContext("internet", nullptr); }, "AT+CGDCONT=1,\"IP\",\"internet\"\r", 3000, ok, 0, 0},
        {[](CSystemUtility& s) { return s.SetPdpContext("cmnet", "10.0.0.1"); }, "AT+CGDCONT=1,\"IP\",\"cmnet\",\"10.0.0.1\"\r", 3000, ok, 0, 0},
        {[](CSystemUtility& s) { return s.SetPdpContext("internet", nullptr); }, "AT+CGDCONT=1,\"IP\",\"internet\"\r", 3000, "\r\nERROR\r\n", 0, 1},
        {[](CSystemUtility& s) { return s.SetPdpContext(nullptr, "10.0.0.1"); }, nullptr, 0, "", 0, 1},
        {[](CSystemUtility& s) { return s.SetPhoneFunctionality(1); }, "AT+CFUN=1\r", 20000, ok, 0, 0},
        {[](CSystemUtility& s) { return s.SetPhoneFunctionality(0); }, "AT+CFUN=0\r", 20000, error, 0, 1},
        {[](CSystemUtility& s) { return s.SetPhoneFunctionality(4); }, "AT+CFUN=4\r", 20000, "", 2, 2},
        {[](CSystemUtility& s) { return s.SetDeviceStartState(1); }, "AT+FUNC=5,1\r", 3000, ok, 0, 0},
        {[](CSystemUtility& s) { return s.SetDeviceStartState(0); }, "AT+FUNC=5,0\r", 3000, error, 0, 1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command != nullptr ? ScriptedAtFake::Printable(row.command) : "nothing sent");
        if (row.command != nullptr)
            m_fake.Expect(row.command, row.answer, row.failure).WithTimeout(row.timeoutMs).WithoutPrefix();
        EXPECT_EQ(row.call(m_system), row.result);
        m_fake.VerifyDone();
    }
}

TEST_F(SystemUtilityTest, DeviceStartStateReadsTheFuncAnswer) {
    // clang-format off
    struct Row { const char* answer; int result; int state; };
    const Row rows[] = {
        {"\r\n+FUNC: 1\r\n\r\nOK\r\n", 0, 1}, {"AT+FUNC=5,?\r\r\n+FUNC:0\r\n\r\nOK\r\n", 0, 0}, {"\r\n+CREG: 1\r\n+FUNC: 2\r\n\r\nOK\r\n", 0, 2},
        {"\r\n+FUNC: \r\n\r\nOK\r\n", 1, -1}, {"\r\nOK\r\n", 1, -1}, {"\r\nERROR\r\n", 1, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+FUNC=5,?\r", row.answer).WithTimeout(3000).WithPrefix("+FUNC:");
        int state = -1;
        EXPECT_EQ(m_system.GetDeviceStartState(state), row.result);
        EXPECT_EQ(state, row.state);
    }
}

TEST(SystemUtilityNoCallback, CommandsFailWithoutAnExecuteCallback) {
    CSystemUtility system;
    std::string response;
    EXPECT_EQ(system.WriteComm(response, "AT\r", nullptr, 1000), 1);
    EXPECT_EQ(system.SetPhoneFunctionality(1), 1);
}

} // namespace
