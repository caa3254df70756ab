#include <cstring>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "PinUtility.h"
#include "SystemUtility.h"

namespace {

using namespace at_test;

// The SIM's codes and the modem's identity and set-up, both over the scripted fake.
class PinSystemTest : public FamilyTest<CPinUtility> {
protected:
    void SetUp() override {
        FamilyTest::SetUp();
        m_system.RegisterExecAT(ScriptedAtFake::Callback());
    }
    CSystemUtility m_system;
};
using PinUtilityTest = PinSystemTest;
using SystemUtilityTest = PinSystemTest;

// Each command's text, time limit and result: the SIM's codes, then the modem's settings.
TEST_F(PinSystemTest, CommandsSendTheirTextAndMapErrors) {
    const char* ok = "\r\nOK\r\n";
    const char* error = "\r\n+CME ERROR: operation not allowed\r\n";
    // clang-format off
    // command: nullptr: nothing is sent
    const struct { std::function<int()> call; const char* command; int timeoutMs; const char* answer; int failure; int result; } rows[] = {
        {[&] { return family.Verify("1234"); }, "AT+CPIN=\"1234\"\r", 1000, ok, 0, 0},
        {[&] { return family.Verify("1234"); }, "AT+CPIN=\"1234\"\r", 1000, "AT+CPIN=\"1234\"\r\r\nOK\r\n", 0, 0},
        {[&] { return family.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "\r\n+CME ERROR: incorrect password\r\n", 0, 14},
        {[&] { return family.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "", 0, 2},
        {[&] { return family.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "\r\nERROR\r\n", 0, 1},
        {[&] { return family.Verify("0000"); }, "AT+CPIN=\"0000\"\r", 1000, "", 2, 2},
        {[&] { return family.VerifyPuk("12345678", "4321"); }, "AT+CPIN=\"12345678\",\"4321\"\r", 1000, ok, 0, 0},
        {[&] { return family.VerifyPuk("12345678", "4321"); }, "AT+CPIN=\"12345678\",\"4321\"\r", 1000, "\r\n+CME ERROR: SIM PUK required\r\n", 0, 10},
        {[&] { return family.Change("1234", "4321"); }, "AT+CPWD=\"SC\",\"1234\",\"4321\"\r", 1000, ok, 0, 0},
        {[&] { return family.Change("1234", "4321"); }, "AT+CPWD=\"SC\",\"1234\",\"4321\"\r", 1000, "\r\n+CME ERROR: SIM PIN required\r\n", 0, 9},
        {[&] { return family.Enable(1, "1234"); }, "AT+CLCK=\"SC\",1,\"1234\"\r", 1000, ok, 0, 0},
        {[&] { return family.Enable(7, "1234"); }, "AT+CLCK=\"SC\",1,\"1234\"\r", 1000, ok, 0, 0},
        {[&] { return family.Enable(0, "1234"); }, "AT+CLCK=\"SC\",0,\"1234\"\r", 1000, "\r\n+CME ERROR: incorrect password\r\n", 0, 14},
        // A code that is not 4 to 8 digits (8 for a PUK) never reaches the SIM.
        {[&] { return family.Enable(1, nullptr); }, nullptr, 0, "", 0, 45}, {[&] { return family.Enable(1, "12ab"); }, nullptr, 0, "", 0, 45},
        {[&] { return family.Verify("12\";+CFUN=0;\""); }, nullptr, 0, "", 0, 45},
        {[&] { return family.VerifyPuk("1234567", "1234"); }, nullptr, 0, "", 0, 45},
        {[&] { return family.Change("1234", "12\r"); }, nullptr, 0, "", 0, 45}, {[&] { return family.Verify(nullptr); }, nullptr, 0, "", 0, 1},
        {[&] { return family.VerifyPuk(nullptr, "1234"); }, nullptr, 0, "", 0, 1},
        {[&] { return family.VerifyPuk("12345678", nullptr); }, nullptr, 0, "", 0, 1},
        {[&] { return family.Change(nullptr, "1234"); }, nullptr, 0, "", 0, 1}, {[&] { return family.Change("1234", nullptr); }, nullptr, 0, "", 0, 1},
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
            fake.Expect(row.command, row.answer, row.failure).WithTimeout(row.timeoutMs).WithoutPrefix();
        EXPECT_EQ(row.call(), row.result);
        fake.VerifyDone();
    }
}

TEST_F(PinUtilityTest, GetStateReadsTheLockAnswer) {
    // clang-format off
    CheckReads(fake, At("AT+CLCK=\"SC\",2\r").WithTimeout(5000).WithPrefix("+CLCK"), [this](int& enabled) { return family.GetState(enabled); }, {
        {"\r\n+CLCK: 1\r\n\r\nOK\r\n", "0|1"}, {"AT+CLCK=\"SC\",2\r\r\n+CLCK: 0\r\n\r\nOK\r\n", "0|0"}, {"\r\n+CLCK: 2\r\n\r\nOK\r\n", "1|-1"},
        {"\r\n+CLCK:\r\n\r\nOK\r\n", "1|-1"}, {"\r\n+CME ERROR: SIM PIN required\r\n", "1|-1"}});
    // clang-format on
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
        fake.Expect(row.command, row.answer).WithTimeout(10000).WithoutPrefix();
        TPinInfo info{-1, -1};
        const int result = family.GetInfo(row.pinState, info);
        EXPECT_EQ(Fields(result, info.nPinCnt, info.nPukCnt), Fields(row.result, row.first, row.second));
        fake.VerifyDone();
    }

    fake.ExpectFailure("AT+PNNM?\r", 2);
    TPinInfo info;
    EXPECT_EQ(family.GetInfo(2, info), 2);
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
    const auto own = [this] {
        TMsisdnInfo msisdn;
        std::memset(static_cast<void*>(&msisdn), 'x', sizeof msisdn);
        const int result = m_system.GetMsisdn(msisdn);
        return Fields(result, msisdn.szNumber, msisdn.chTerminator);
    };
    // clang-format off
    CheckReads(fake, At("AT+CNUM\r").WithTimeout(3000).WithoutPrefix().WithFinals(kFinals), own, {
        {"\r\n+CNUM: \"Voice\",\"+8613912345678\",145,0,4\r\n\r\nOK\r\n", "0|+8613912345678|0"},
        {"\r\n+CNUM: ,\"07700900123\",129\r\n\r\nOK\r\n", "0|07700900123|0"}, {"\r\n+CNUM: \"\",\"+447700900123\",145,,4\r\n\r\nOK\r\n", "0|+447700900123|0"},
        {"\r\n+CNUM: \"Data\",\"+111\",145,0,0\r\n+CNUM: \"Voice\",\"+222\",145,0,4\r\n\r\nOK\r\n", "0|+222|0"},
        {"\r\n+CNUM: \"\",\"\",129\r\n+CNUM: \"\",\"+333\",145\r\n\r\nOK\r\n", "0|+333|0"},
        {"\r\n+CNUM: \"Me\", \"+444\",145\r\n+CNUM: ,\"+555\",145\r\n\r\nOK\r\n", "0||0"}, // no quote: stop
        {"\r\n+CNUM: \"Fax\",\"+666\",145,0,5\r\n\r\nOK\r\n", "0||0"}, {"\r\n+CNUM: \"\",\"+777\r\n\r\nOK\r\n", "0||0"},
        {"\r\n+CNUM: ,\"123456789012345678901234567890\",129\r\n\r\nOK\r\n", "0|1234567890123456789|0"},
        {"\r\n+CNUM: ,\"+888\",145\r\n+CMTI: \"SM\",1\r\n\r\nOK\r\n", "0|+888|0"}, {"\r\nOK\r\n", "0||0"}, {"", "2||0", 2}});
    // clang-format on
}

TEST_F(SystemUtilityTest, DeviceStartStateReadsTheFuncAnswer) {
    // clang-format off
    CheckReads(fake, At("AT+FUNC=5,?\r").WithTimeout(3000).WithPrefix("+FUNC:"), [this](int& state) { return m_system.GetDeviceStartState(state); }, {
        {"\r\n+FUNC: 1\r\n\r\nOK\r\n", "0|1"}, {"AT+FUNC=5,?\r\r\n+FUNC:0\r\n\r\nOK\r\n", "0|0"}, {"\r\n+CREG: 1\r\n+FUNC: 2\r\n\r\nOK\r\n", "0|2"},
        {"\r\n+FUNC: \r\n\r\nOK\r\n", "1|-1"}, {"\r\nOK\r\n", "1|-1"}, {"\r\nERROR\r\n", "1|-1"}});
    // clang-format on
}

} // namespace
