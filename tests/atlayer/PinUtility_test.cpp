#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "PinUtility.h"
#include "ScriptedAtFake.h"

namespace {

class PinUtilityTest : public ::testing::Test {
protected:
    void SetUp() override { m_pin.RegisterExecAT(ScriptedAtFake::Callback()); }

    ScriptedAtFake m_fake;
    CPinUtility m_pin;
};

TEST_F(PinUtilityTest, CheckStateSearchesTheStateTableInOrder) {
    // clang-format off
    // state: -1: left alone
    struct Row { const char* answer; int result; int state; };
    const Row rows[] = {
        {"\r\n+CPIN: READY\r\n\r\nOK\r\n", 0, 1}, {"AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n", 0, 2}, {"\r\n+CPIN: SIM PUK\r\n\r\nOK\r\n", 0, 3},
        {"\r\n+CPIN: SIM PIN2\r\n\r\nOK\r\n", 0, 7}, {"\r\n+CPIN: SIM PUK2\r\n\r\nOK\r\n", 0, 8},
        {"\r\n+CPIN: PH-SIM PIN\r\n\r\nOK\r\n", 0, 2}, // found as "SIM PIN" first: kept
        {"\r\n+CPIN: PH-FSIM PUK\r\n\r\nOK\r\n", 0, 6}, {"\r\n+CPIN: PH-NET PIN\r\n\r\nOK\r\n", 0, 9},
        {"\r\n+CPIN: PH-NETSUB PUK\r\n\r\nOK\r\n", 0, 12}, {"\r\n+CPIN: PH-SP PIN\r\n\r\nOK\r\n", 0, 13},
        {"\r\n+CPIN: PH-CORP PUK\r\n\r\nOK\r\n", 0, 16}, {"\r\n+CPIN:READY\r\n\r\nOK\r\n", 0, 1},
        {"\r\n+CREG: 1\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n", 0, 2}, {"\r\n+CPIN: BLOCKED\r\n\r\nOK\r\n", 1, -1},
        {"\r\n+CME ERROR: SIM not inserted\r\n", 0, 0}, {"\r\n+CME ERROR: SIM failure\r\n", 11, -1}, {"\r\n+CME ERROR: SIM busy\r\n", 12, -1},
        {"\r\n+CME ERROR: 10\r\n", 1, -1}, {"\r\nERROR\r\n", 1, -1}, {"", 2, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CPIN?\r", row.answer)
            .WithTimeout(1000)
            .WithPrefix("+CPIN")
            .WithFinals({"OK", "+CME ERROR:", "ERROR"});
        int state = -1;
        EXPECT_EQ(m_pin.CheckState(state), row.result);
        EXPECT_EQ(state, row.state);
    }

    m_fake.ExpectFailure("AT+CPIN?\r", 30);
    int state = -1;
    EXPECT_EQ(m_pin.CheckState(state), 30);
    EXPECT_EQ(state, -1);
}

TEST(PinUtilityErrors, CmeErrorTextsMapByPrefixInOrder) {
    // clang-format off
    struct Row { const char* answer; int code; };
    const Row rows[] = {
        {"\r\n+CME ERROR: PH-SIM PIN required\r\n", 5}, {"\r\n+CME ERROR: PH-FSIM PIN required\r\n", 6}, {"\r\n+CME ERROR: SIM not inserted\r\n", 8},
        {"\r\n+CME ERROR: SIM PIN required\r\n", 9}, {"\r\n+CME ERROR: SIM busy\r\n", 12}, {"\r\n+CME ERROR: incorrect password\r\n", 14},
        {"\r\n+CME ERROR: SIM PIN2 required\r\n", 15}, {"\r\n+CME ERROR: network personalization PUK required\r\n", 18},
        {"\r\n+CME ERROR: network subset personalization PIN required\r\n", 19},
        {"\r\n+CME ERROR: service provider personalization PUK required\r\n", 22}, {"\r\n+CME ERROR: corporate personalization PUK required\r\n", 24},
        {"+CME ERROR: SIM busy", 12}, {"\r\n+CME ERROR: sim busy\r\n", 1}, {"\r\n+CME ERROR:SIM busy\r\n", 1}, {"\r\n+CME ERROR: 16\r\n", 1},
        {"\r\n+CME ERROR: SIM\r\n", 1}, {"\r\n+CME ERROR: \r\n", 1}, {"\r\nERROR\r\n", 1}, {"", 2},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        EXPECT_EQ(CPinUtility::GetErrorCode(row.answer), row.code);
    }
}

TEST_F(PinUtilityTest, PinCommandsSendTheirTextAndMapErrors) {
    struct Row {
        std::function<int(CPinUtility&)> call;
        const char* command; // nullptr: nothing is sent
        const char* answer;
        int failure;
        int result;
    };
    const char* ok = "\r\nOK\r\n";
    // clang-format off
    const Row rows[] = {
        {[](CPinUtility& p) { return p.Verify("1234"); }, "AT+CPIN=\"1234\"\r", ok, 0, 0},
        {[](CPinUtility& p) { return p.Verify("1234"); }, "AT+CPIN=\"1234\"\r", "AT+CPIN=\"1234\"\r\r\nOK\r\n", 0, 0},
        {[](CPinUtility& p) { return p.Verify("0000"); }, "AT+CPIN=\"0000\"\r", "\r\n+CME ERROR: incorrect password\r\n", 0, 14},
        {[](CPinUtility& p) { return p.Verify("0000"); }, "AT+CPIN=\"0000\"\r", "", 0, 2},
        {[](CPinUtility& p) { return p.Verify("0000"); }, "AT+CPIN=\"0000\"\r", "\r\nERROR\r\n", 0, 1},
        {[](CPinUtility& p) { return p.Verify("0000"); }, "AT+CPIN=\"0000\"\r", "", 2, 2},
        {[](CPinUtility& p) { return p.VerifyPuk("12345678", "4321"); }, "AT+CPIN=\"12345678\",\"4321\"\r", ok, 0, 0},
        {[](CPinUtility& p) { return p.VerifyPuk("12345678", "4321"); }, "AT+CPIN=\"12345678\",\"4321\"\r", "\r\n+CME ERROR: SIM PUK required\r\n", 0, 10},
        {[](CPinUtility& p) { return p.Change("1234", "4321"); }, "AT+CPWD=\"SC\",\"1234\",\"4321\"\r", ok, 0, 0},
        {[](CPinUtility& p) { return p.Change("1234", "4321"); }, "AT+CPWD=\"SC\",\"1234\",\"4321\"\r", "\r\n+CME ERROR: SIM PIN required\r\n", 0, 9},
        {[](CPinUtility& p) { return p.Enable(1, "1234"); }, "AT+CLCK=\"SC\",1,\"1234\"\r", ok, 0, 0},
        {[](CPinUtility& p) { return p.Enable(7, "1234"); }, "AT+CLCK=\"SC\",1,\"1234\"\r", ok, 0, 0},
        {[](CPinUtility& p) { return p.Enable(0, "1234"); }, "AT+CLCK=\"SC\",0,\"1234\"\r", "\r\n+CME ERROR: incorrect password\r\n", 0, 14},
        // A code that is not 4 to 8 digits (8 for a PUK) never reaches the SIM.
        {[](CPinUtility& p) { return p.Enable(1, nullptr); }, nullptr, "", 0, 45},
        {[](CPinUtility& p) { return p.Enable(1, "12ab"); }, nullptr, "", 0, 45},
        {[](CPinUtility& p) { return p.Verify("12\";+CFUN=0;\""); }, nullptr, "", 0, 45},
        {[](CPinUtility& p) { return p.VerifyPuk("1234567", "1234"); }, nullptr, "", 0, 45},
        {[](CPinUtility& p) { return p.Change("1234", "12\r"); }, nullptr, "", 0, 45},
        {[](CPinUtility& p) { return p.Verify(nullptr); }, nullptr, "", 0, 1},
        {[](CPinUtility& p) { return p.VerifyPuk(nullptr, "1234"); }, nullptr, "", 0, 1},
        {[](CPinUtility& p) { return p.VerifyPuk("12345678", nullptr); }, nullptr, "", 0, 1},
        {[](CPinUtility& p) { return p.Change(nullptr, "1234"); }, nullptr, "", 0, 1},
        {[](CPinUtility& p) { return p.Change("1234", nullptr); }, nullptr, "", 0, 1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command != nullptr ? ScriptedAtFake::Printable(row.command) : "nothing sent");
        if (row.command != nullptr)
            m_fake.Expect(row.command, row.answer, row.failure).WithTimeout(1000).WithoutPrefix();
        EXPECT_EQ(row.call(m_pin), row.result);
        m_fake.VerifyDone();
    }
}

TEST_F(PinUtilityTest, GetStateReadsTheLockAnswer) {
    // clang-format off
    struct Row { const char* answer; int result; int enabled; };
    const Row rows[] = {
        {"\r\n+CLCK: 1\r\n\r\nOK\r\n", 0, 1}, {"AT+CLCK=\"SC\",2\r\r\n+CLCK: 0\r\n\r\nOK\r\n", 0, 0}, {"\r\n+CLCK: 2\r\n\r\nOK\r\n", 1, -1},
        {"\r\n+CLCK:\r\n\r\nOK\r\n", 1, -1}, {"\r\n+CME ERROR: SIM PIN required\r\n", 1, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CLCK=\"SC\",2\r", row.answer).WithTimeout(5000).WithPrefix("+CLCK");
        int enabled = -1;
        EXPECT_EQ(m_pin.GetState(enabled), row.result);
        EXPECT_EQ(enabled, row.enabled);
    }
}

TEST_F(PinUtilityTest, GetInfoPicksTheCounterCommandByState) {
    const char* smpn = "\r\n+SMPN: PN(1,2),PU(3,4),PP(5,6),PC(7,8),PF(9,10)\r\n\r\nOK\r\n";
    // clang-format off
    struct Row { int pinState; const char* command; const char* answer; int result; int first; int second; };
    const Row rows[] = {
        {2, "AT+PNNM?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 0, 3, 10}, {3, "AT+PNNM?\r", "\r\n+PNNM: 0,10\r\n\r\nOK\r\n", 0, 0, 10},
        {0, "AT+PNNM?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 0, 3, 10}, {1, "AT+PNNM?\r", "\r\n+PNNM: 2, 9\r\n\r\nOK\r\n", 0, 2, 9},
        {7, "AT+PNNM?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 0, 3, 10}, {17, "AT+PNNM?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 0, 3, 10},
        {2, "AT+PNNM?\r", "\r\n+PNNM: 3\r\n\r\nOK\r\n", 1, -1, -1}, {2, "AT+PNNM?\r", "\r\nOK\r\n", 1, -1, -1}, {4, "AT+SMPN?\r", smpn, 0, 9, 10},
        {5, "AT+SMPN?\r", smpn, 0, 9, 10}, {6, "AT+SMPN?\r", smpn, 0, 9, 10}, {9, "AT+SMPN?\r", smpn, 0, 1, 2}, {10, "AT+SMPN?\r", smpn, 0, 1, 2},
        {11, "AT+SMPN?\r", smpn, 0, 3, 4}, {12, "AT+SMPN?\r", smpn, 0, 3, 4}, {13, "AT+SMPN?\r", smpn, 0, 5, 6}, {14, "AT+SMPN?\r", smpn, 0, 5, 6},
        {15, "AT+SMPN?\r", smpn, 0, 7, 8}, {16, "AT+SMPN?\r", smpn, 0, 7, 8},
        {4, "AT+SMPN?\r", "\r\n+SMPN: PN(1,2),PU(3,4),PP(5,6),PC(7,8)\r\n\r\nOK\r\n", 1, -1, -1},
        {4, "AT+SMPN?\r", "\r\n+PNNM: 3, 10\r\n\r\nOK\r\n", 1, -1, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "state " << row.pinState << " " << ScriptedAtFake::Printable(row.answer));
        m_fake.Expect(row.command, row.answer).WithTimeout(10000).WithoutPrefix();
        TPinInfo info{-1, -1};
        EXPECT_EQ(m_pin.GetInfo(row.pinState, info), row.result);
        EXPECT_EQ(info.nPinCnt, row.first);
        EXPECT_EQ(info.nPukCnt, row.second);
        m_fake.VerifyDone();
    }

    m_fake.ExpectFailure("AT+PNNM?\r", 2);
    TPinInfo info;
    EXPECT_EQ(m_pin.GetInfo(2, info), 2);
}

} // namespace
