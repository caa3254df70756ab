#include <cstdio>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "SmsPduVectors.h"
#include "SmsUtility.h"

namespace {

using namespace at_test;
using Finals = std::list<std::string>;
const Finals kCme = {"OK", "ERROR", "+CME ERROR"};
const Finals kCms = {"OK", "+CMS ERROR", "ERROR"};
const char* const kOk = ScriptedAtFake::kOk;

class SmsCommandsTest : public FamilyTest<CSmsUtility> {
protected:
    void ExpectFormat(const char* value) {
        Expect(fake, At("AT+CMGF?\r").WithTimeout(1000).WithFinals(kCme),
               Answer(std::string("+CMGF: ") + value));
    }
    void ExpectIra() { fake.Expect("AT+CSCS=\"IRA\"\r").WithTimeout(1000).WithFinals(kCme); }
    void ExpectStorages(const char* answer) {
        fake.Expect("AT+CPMS?\r", answer).WithTimeout(3000).WithPrefix("+CPMS").WithFinals(kCms);
    }
};

TEST_F(SmsCommandsTest, InitPassesOverRefusedOptionalSettings) {
    // clang-format off
    struct Step { const char* command; int timeout; Finals finals; };
    const std::vector<Step> steps = {
        {"AT+CNMI=2,1,0,2,0\r", 1000, kCms}, {"AT+CNMI=2,1,0,0,0\r", 1000, kCms},
        {"AT+CNMI=1,1,0,0,0\r", 1000, kCms}, {"AT+CSCB=1\r", 10000, {"OK", "ERROR", "+CMS ERROR"}},
        {"AT+CMMS=2\r", 1000, kCme},         {"AT+CMGF=0\r", 1000, kCme},
    };
    // clang-format on
    // One letter per step: A accepted, R refused, T timed out, - not sent.
    const std::pair<const char*, int> rows[] = {
        {"A--AAA", 0}, {"RA-AAA", 0}, {"RRRRRA", 0}, {"A--AAR", 1}, {"T-----", 2}, {"A--T--", 2},
    };
    for (const auto& [script, result] : rows) {
        SCOPED_TRACE(script);
        for (std::size_t i = 0; i < steps.size(); ++i) {
            if (script[i] == 'T')
                fake.ExpectFailure(steps[i].command, 2);
            else if (script[i] != '-')
                fake.Expect(steps[i].command, script[i] == 'R' ? "\r\n+CMS ERROR: 303\r\n" : kOk)
                    .WithTimeout(steps[i].timeout)
                    .WithoutPrefix()
                    .WithFinals(steps[i].finals);
        }
        EXPECT_EQ(family.Init(), result);
        fake.VerifyDone();
    }
}

TEST_F(SmsCommandsTest, MessageFormatCodesAreTheInverseOfTheAtValues) {
    fake.Expect("AT+CMGF=0\r");
    EXPECT_EQ(family.SetMessageFormat(1), 0);
    fake.Expect("AT+CMGF=1\r");
    EXPECT_EQ(family.SetMessageFormat(0), 0);
    EXPECT_EQ(family.SetMessageFormat(2), 1);
    fake.VerifyDone();

    // clang-format off
    CheckReads(fake, At("AT+CMGF?\r"), [this](int& format) { return family.GetMessageFormat(format); }, {
        {"\r\n+CMGF: 0\r\n\r\nOK\r\n", "0|1"}, {"\r\n+CMGF: 1\r\n\r\nOK\r\n", "0|0"},
        {"AT+CMGF?\r\r\n+CMGF: 0\r\n\r\nOK\r\n", "0|1"}, // echo on
        {"\r\n+CMGF: 2\r\n\r\nOK\r\n", "1|-1"}, {"\r\n+CMGF: x\r\n\r\nOK\r\n", "1|-1"}, {"\r\nOK\r\n", "1|-1"}});
    // clang-format on
}

TEST_F(SmsCommandsTest, ServiceCentreNumberLengths) {
    // clang-format off
    // sent: nullptr: refused before sending
    const struct { const char* number; const char* sent; } rows[] = {
        {"12345678901234567890", "AT+CSCA=\"12345678901234567890\",129\r"}, {"+12345678901234567890", "AT+CSCA=\"12345678901234567890\",145\r"},
        {"123456789012345678901", nullptr}, {"+123456789012345678901", nullptr}, {"1234567890123456789012", nullptr},
        {"+447802000332", "AT+CSCA=\"447802000332\",145\r"}, {"", nullptr}, {"+49 170 1234", nullptr}, {"12\";+CFUN=0", nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        TSmsAddress address;
        std::snprintf(address.szNumber, sizeof address.szNumber, "%s", row.number);
        if (row.sent != nullptr) {
            ExpectIra();
            fake.Expect(row.sent).WithTimeout(1000).WithFinals(kCme);
        }
        EXPECT_EQ(family.SetServiceCentre(address),
                  row.sent != nullptr ? 0 : CSmsUtility::kErrNotAPhoneNumber);
        fake.VerifyDone();
    }
    // No character set, no number.
    fake.Expect("AT+CSCS=\"IRA\"\r", "\r\nERROR\r\n");
    TSmsAddress address;
    std::snprintf(address.szNumber, sizeof address.szNumber, "+3165");
    EXPECT_EQ(family.SetServiceCentre(address), 1);
}

TEST_F(SmsCommandsTest, ServiceCentreAnswers) {
    // clang-format off
    // address: TMsgAddress as kept
    // number: GetServiceCentre's number
    const struct { const char* answer; int result; const char* address; uint32_t type; const char* number; } rows[] = {
        {"\r\n+CSCA: \"+447802000332\",145\r\n\r\nOK\r\n", 0, "+447802000332", 145, "+447802000332"},
        {"\r\n+CSCA: \"447802000332\",145\r\n\r\nOK\r\n", 0, "447802000332", 145, "+447802000332"},
        {"\r\n+CSCA: \"0612345678\",129\r\n\r\nOK\r\n", 0, "0612345678", 129, "0612345678"}, {"\r\n+CSCA: \"\",145\r\n\r\nOK\r\n", 0, "", 129, ""},
        {"\r\n+CSCA: \"+3165\"\r\n\r\nOK\r\n", 0, "+3165", 145, "+3165"}, {"\r\n+CSCA: \"3165\"\r\n\r\nOK\r\n", 0, "3165", 129, "3165"},
        {"\r\n+CSCA: \"123456789012345678901\",129\r\n\r\nOK\r\n", 0, "123456789012345678901", 129, "123456789012345678901"},
        {"\r\n+CSCA: \"1234567890123456789012\",129\r\n\r\nOK\r\n", 1, "", 0, ""}, {"\r\n+CSCA: \"+3165\",\r\n\r\nOK\r\n", 1, "", 0, ""},
        {"\r\n+CSCA: \"+3165\r\n\r\nOK\r\n", 1, "", 0, ""}, {"\r\nOK\r\n", 1, "", 0, ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        ExpectIra();
        fake.Expect("AT+CSCA?\r", row.answer).WithTimeout(1000).WithFinals(kCme);
        TSmsAddress address;
        EXPECT_EQ(family.GetServiceCentre(address), row.result);
        EXPECT_STREQ(address.szNumber, row.number);
        if (row.result == 0) {
            ExpectIra();
            fake.Expect("AT+CSCA?\r", row.answer);
            TMsgAddress centre;
            ASSERT_EQ(family.GetServiceCenterAddress(centre), 0);
            EXPECT_STREQ(centre.szAddress, row.address);
            EXPECT_EQ(centre.nType, row.type);
        }
        fake.VerifyDone();
    }
    // No character set, no question.
    fake.Expect("AT+CSCS=\"IRA\"\r", "\r\nERROR\r\n");
    TSmsAddress address;
    EXPECT_EQ(family.GetServiceCentre(address), 1);
}

TEST_F(SmsCommandsTest, PreferredStorages) {
    const char* const kMeSmSm = "\r\n+CPMS: \"ME\",0,100,\"SM\",3,20,\"SM\",3,20\r\n\r\nOK\r\n";
    const char* const kMeMeMe = "\r\n+CPMS: \"ME\",0,100,\"ME\",0,100,\"ME\",0,100\r\n\r\nOK\r\n";
    const auto storages = At("AT+CPMS?\r").WithTimeout(3000).WithPrefix("+CPMS").WithFinals(kCms);
    const auto memories = [this] {
        int mem1 = -1, mem2 = -1, mem3 = -1;
        const int result = family.GetPreferredMessageStorage(mem1, mem2, mem3);
        return Fields(result, mem1, mem2, mem3);
    };
    // clang-format off
    CheckReads(fake, storages, memories, {
        {kMeSmSm, "0|1|3|3"}, {"\r\n+CPMS: \"ME\",0,100,\"SM\",3,20\r\n\r\nOK\r\n", "1|-1|-1|-1"},
        {"\r\n+CPMS: \"ME\",0,100,\"SM\",3,20,\"SM\",x,20\r\n\r\nOK\r\n", "1|-1|-1|-1"},
        {"\r\n+CPMS: \"ME\",0,100,\"SM\",3,20,\"SM\",3,20\r\n", "1|-1|-1|-1"}, {"\r\nOK\r\n", "1|-1|-1|-1"}});
    // clang-format on

    // The receive storage is rewritten only when it differs; the first two stay.
    // clang-format off
    // rewrite: nullptr: nothing written; reported: GetPreferredStorage afterwards
    const struct { int storage; const char* current; const char* rewrite; int reported; } rows[] = {
        {1, kMeSmSm, nullptr, 1}, {2, kMeSmSm, "AT+CPMS=\"ME\",\"SM\",\"ME\"\r", 2}, {4, kMeSmSm, "AT+CPMS=\"ME\",\"SM\",\"ME\"\r", 2},
        {1, kMeMeMe, "AT+CPMS=\"ME\",\"ME\",\"SM\"\r", 1}, {2, kMeMeMe, nullptr, 2},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.storage);
        ExpectStorages(row.current);
        if (row.rewrite != nullptr)
            fake.Expect(row.rewrite).WithTimeout(3000).WithPrefix("+CPMS").WithFinals(kCms);
        EXPECT_EQ(family.SetPreferredStorage(row.storage), 0);
        fake.VerifyDone();
    }
    CheckReads(fake, storages, [this](int& storage) { return family.GetPreferredStorage(storage); },
               {{kMeSmSm, "0|1"}, {kMeMeMe, "0|2"}});

    // A failed exchange is 2 whatever the lower layer said; a refusal is 1.
    fake.ExpectFailure("AT+CPMS=\"SM\",\"SM\",\"\"\r", 30);
    EXPECT_EQ(family.SetPreferredMessageStorage(3, 3, 6), 2);
    fake.Expect("AT+CPMS=\"BM\",\"SR\",\"TA\"\r", "\r\n+CMS ERROR: 302\r\n");
    EXPECT_EQ(family.SetPreferredMessageStorage(0, 5, 4), 1);

    ExpectStorages(kMeSmSm);
    fake.Expect("AT+CPMS=\"ME\",\"ME\",\"SM\"\r");
    EXPECT_EQ(family.SetMemoryOfWrite(1), 0);
}

TEST_F(SmsCommandsTest, StorageState) {
    fake.Expect("AT+CPMS=\"ME\"\r", Answer("+CPMS: 7,100,3,20,3,20")).WithTimeout(1000).WithFinals(kCms);
    fake.Expect("AT+CPMS=\"SM\"\r", Answer("+CPMS: 3,20,7,100,3,20")).WithTimeout(1000).WithFinals(kCms);
    TSmsStorageState state;
    ASSERT_EQ(family.GetStorageState(state), 0);
    EXPECT_EQ(Fields(state.nMeUsed, state.nMeTotal, state.nSimUsed, state.nSimTotal), "7|100|3|20");

    fake.Expect("AT+CPMS=\"ME\"\r", "\r\n+CPMS: 7\r\n\r\nOK\r\n");
    EXPECT_EQ(family.GetStorageState(state), 1);
    fake.Expect("AT+CPMS=\"ME\"\r", "\r\n+CPMS: 7,100,3,20,3,20\r\n\r\nOK\r\n");
    fake.ExpectFailure("AT+CPMS=\"SM\"\r", 2);
    EXPECT_EQ(family.GetStorageState(state), 2);
    EXPECT_EQ(state.nMeUsed, 7);
}

TEST_F(SmsCommandsTest, DeleteRemovesATableItemOnlyWhenTheModemDidDelete) {
    EXPECT_EQ(family.Delete(42), 1);
    TMessageListItem item;
    item.nStorage = SMS_STORAGE_SIM;
    item.nIndex = 5;
    item.nStatus = SMS_STATUS_READ;
    ASSERT_EQ(CSmsUtility::DecodePduData(sms_test::kDecodeRows[2].hex, 28, item.pduData), 0); // "hellohello"
    bool added = false, deleted = false, replaced = false;
    uint32_t id = 0;
    ASSERT_EQ(family.AddMsgItemToListTable(item, added, id, deleted, replaced, false), 0);

    for (const auto& [answer, result, left] : {std::tuple{"\r\n+CMS ERROR: 321\r\n", 1, 1u}, {kOk, 0, 0u}}) {
        ExpectDeletion(fake, "SM", 5, answer);
        EXPECT_EQ(family.Delete(static_cast<int>(id)), result);
        EXPECT_EQ(family.MessageTable().size(), left);
    }
}

// "hello" to +31612345678: SMS-SUBMIT with TP-RD, no validity period, 7-bit. The message reference is the
// process-wide counter's next value.
class SmsSendTest : public SmsCommandsTest {
protected:
    static std::string ExpectedPdu() {
        TTpduSubmit probe;
        probe.nMti = 1;
        probe.destination.szAddress[0] = '1';
        TProtocalTpduData encoded;
        EXPECT_EQ(CSmsUtility::EncodeTpduSubmit(probe, encoded), 0);
        char reference[3];
        std::snprintf(reference, sizeof reference, "%02X", (encoded.data[1] + 1) & 0xFF);
        return std::string("0005") + reference + "0B911316325476F8000005E8329BFD06\x1A";
    }
    static TSmsSendItem Hello() { return sms_test::SendItem(L"hello", "+31612345678"); }
    void ExpectPrompt(const char* answer = "\r\n> ") {
        Expect(fake,
               At("AT+CMGS=18\r").WithTimeout(2000).WithoutPrefix().WithFinals({">", "+CMS ERROR", "ERROR"}),
               answer);
    }
};

TEST_F(SmsSendTest, TextModeSendsNothingAndSucceeds) {
    ExpectFormat("1");
    EXPECT_EQ(family.Send(Hello()), 0);
    fake.Expect("AT+CMGF?\r", "\r\nERROR\r\n");
    EXPECT_EQ(family.Send(Hello()), 1);
}

TEST_F(SmsSendTest, OnlyNetworkError500IsRetriedOnce) {
    // clang-format off
    // answers: to the PDU, one per attempt
    const struct { const char* what; std::vector<const char*> answers; int result; } rows[] = {
        {"500 then sent", {"\r\n+CMS ERROR: 500\r\n", "\r\n+CMGS: 7\r\n\r\nOK\r\n"}, 0},
        {"500 twice", {"\r\n+CMS ERROR: 500\r\n", "\r\n+CMS ERROR: 500\r\n"}, 1}, {"other error", {"\r\n+CMS ERROR: 38\r\n"}, 1},
        {"OK without +CMGS", {"\r\nOK\r\n"}, 1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        // A retry sends the same PDU, message reference included.
        const std::string pdu = ExpectedPdu();
        ExpectFormat("0");
        for (const char* answer : row.answers) {
            ExpectPrompt();
            fake.Expect(pdu, answer);
        }
        EXPECT_EQ(family.Send(Hello()), row.result);
        fake.VerifyDone();
    }
}

TEST_F(SmsSendTest, UnansweredPduIsAbortedWithEsc) {
    const std::string pdu = ExpectedPdu();
    ExpectFormat("0");
    ExpectPrompt();
    fake.ExpectFailure(pdu, 2);
    fake.Expect("\x1B").WithTimeout(1000).WithoutPrefix().WithFinals({"OK"});
    EXPECT_EQ(family.Send(Hello()), 2);
    fake.VerifyDone();

    // No prompt: the PDU is not sent.
    ExpectFormat("0");
    ExpectPrompt("\r\n+CMS ERROR: 302\r\n");
    EXPECT_EQ(family.Send(Hello()), 1);
}

} // namespace
