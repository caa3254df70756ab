#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "SmsPduVectors.h"
#include "SmsUtility.h"

namespace {

using namespace at_test;

// Real PDUs (SmsPduVectors.h): "hellohello" from +18005551212, 2011-01-01 12:34:56; a message in two segments
// (8-bit reference 0x4C); a delivery report for 639337937.
const char* const kHello = sms_test::kDecodeRows[2].hex;
const char* const kPart1 = sms_test::kDecodeRows[5].hex;
const char* const kPart2 = sms_test::kDecodeRows[6].hex;
const std::wstring kPartsText = sms_test::kDecodeRows[5].text + sms_test::kDecodeRows[6].text;
const char* const kReport = sms_test::kDecodeRows[9].hex;
// "hellohello" with TP-PID 0x41 (replace type 1), stamped 12:34:56 and 12:35:56.
const char* const kReplaceOld = "07912143658709F1040B918100551512F24100111010214365000AE8329BFD4697D9EC37";
const char* const kReplaceNew = "07912143658709F1040B918100551512F24100111010215365000AE8329BFD4697D9EC37";

std::string Cmgr(int status, int length, const char* pdu) {
    return "\r\n+CMGR: " + std::to_string(status) + ",," + std::to_string(length) + "\r\n" + pdu +
           "\r\n\r\nOK\r\n";
}
std::string CmglBlock(int index, int status, int length, const char* pdu) {
    return "\r\n+CMGL: " + std::to_string(index) + "," + std::to_string(status) + ",," +
           std::to_string(length) + "\r\n" + pdu;
}

// The computer-side store as the callbacks see it, in memory.
struct PcStore {
    std::list<TSMSRecordInPC> records;
    bool saveFails = false;
    int listCalls = 0;
    int nextIndex = 1;

    static int List(void* context, const char* imsi, std::list<TSMSRecordInPC>& out) {
        auto* store = static_cast<PcStore*>(context);
        EXPECT_STREQ(imsi, "001010123456789");
        ++store->listCalls;
        out = store->records;
        return 0;
    }
    static int Save(void* context, const char*, const char* pdu, int length, int& index) {
        auto* store = static_cast<PcStore*>(context);
        if (store->saveFails)
            return 1;
        index = store->nextIndex++;
        store->records.push_back({index, length, pdu});
        return 0;
    }
    static int Delete(void* context, const char*, int index) {
        auto* store = static_cast<PcStore*>(context);
        const auto before = store->records.size();
        store->records.remove_if([index](const TSMSRecordInPC& r) { return r.nIndex == index; });
        return store->records.size() < before ? 0 : 1;
    }
};

struct Claim {
    int result = 0;
    bool deleteMessage = false;
    std::wstring number;
    int notified = 0;
    std::wstring notifiedName;

    static void Filter(void* context, const std::wstring&, const std::wstring& number, int& result,
                       std::wstring& name, bool& deleteMessage) {
        auto* claim = static_cast<Claim*>(context);
        claim->number = number;
        result = claim->result;
        name = L"Account";
        deleteMessage = claim->deleteMessage;
    }
    static void Notify(void* context, int result, const std::wstring& name) {
        auto* claim = static_cast<Claim*>(context);
        claim->notified = result;
        claim->notifiedName = name;
    }
};

class SmsReadingTest : public FamilyTest<CSmsUtility> {
protected:
    void SetUp() override {
        FamilyTest::SetUp();
        family.SetIMSI("001010123456789");
    }

    void ExpectSelect(const char* storage) {
        Expect(fake, At(std::string("AT+CPMS=\"") + storage + "\"\r").WithTimeout(3000).WithPrefix("+CPMS: "),
               Answer("+CPMS: 1,20,1,20,1,20"));
    }
    void ExpectPduMode() { fake.Expect("AT+CMGF?\r", "\r\n+CMGF: 0\r\n\r\nOK\r\n"); }
    void ExpectList(const char* storage, const std::string& blocks) {
        ExpectSelect(storage);
        ExpectPduMode();
        Expect(fake,
               At("AT+CMGL=4\r").WithTimeout(30000).WithoutPrefix().WithFinals({"OK", "ERROR", "+CMS ERROR"}),
               blocks + "\r\n\r\nOK\r\n");
    }
    void ExpectRead(const char* storage, int index, const std::string& answer) {
        ExpectSelect(storage);
        ExpectPduMode();
        fake.Expect("AT+CSCS=\"IRA\"\r");
        const std::string read = "AT+CMGR=" + std::to_string(index) + "\r";
        Expect(fake,
               At(read).WithTimeout(3000).WithPrefix("+CMGR: ").WithFinals({"OK", "+CMS ERROR", "ERROR"}),
               answer);
    }
    void InitEmpty() {
        ExpectList("SM", "");
        ExpectList("ME", "");
        std::list<TSmsListItem> items;
        ASSERT_EQ(family.GetList(items), 0);
        ASSERT_TRUE(items.empty());
        fake.VerifyDone();
    }
    void EnableStore(int preferred, const char* storages) {
        family.RegisterPCCallback(&m_store, &PcStore::List, &PcStore::Save, &PcStore::Delete, 1);
        fake.Expect("AT+CPMS?\r", storages);
        ASSERT_EQ(family.SetPreferredStorage(preferred), 0);
    }

    PcStore m_store;
};

TEST(SmsReadingDecode, ListingBlocks) {
    // clang-format off
    struct Row { const char* what; std::string response; int result; std::vector<uint32_t> indexes; };
    const std::string ok = "\r\n\r\nOK\r\n";
    const Row rows[] = {
        {"empty storage", "\r\nOK\r\n", 0, {}}, {"two messages", CmglBlock(1, 1, 28, kHello) + CmglBlock(4, 0, 24, kReport) + ok, 0, {1, 4}},
        {"name field", "\r\n+CMGL: 2,1,\"Bob\",28\r\n" + std::string(kHello) + ok, 0, {2}},
        {"broken second PDU", CmglBlock(1, 1, 28, kHello) + CmglBlock(2, 1, 28, "07912143658709F1ZZ") + ok, 1, {}},
        {"no status", "\r\n+CMGL: 1\r\n" + std::string(kHello) + ok, 1, {}}, {"no length", "\r\n+CMGL: 1,1\r\n" + std::string(kHello) + ok, 1, {}},
        {"PDU line cut off", "\r\n+CMGL: 1,1,,28\r\n0791", 1, {}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        std::list<TMessageListBaseItem> items;
        EXPECT_EQ(CSmsUtility::DecodePduModeCMGL(row.response, items), row.result);
        std::vector<uint32_t> indexes;
        for (const TMessageListBaseItem& item : items)
            indexes.push_back(item.nIndex);
        EXPECT_EQ(indexes, row.indexes);
    }
    std::list<TMessageListBaseItem> items;
    ASSERT_EQ(CSmsUtility::DecodePduModeCMGL(CmglBlock(7, 1, 28, kHello) + "\r\n\r\nOK\r\n", items), 0);
    const TMessageListBaseItem& item = items.front();
    EXPECT_EQ(
        Fields(item.nStatus, item.nPduLen, item.strPdu, item.pduData.tpdu.deliver.originating.szAddress),
        Fields(1, 28, kHello, "18005551212"));
}

TEST_F(SmsReadingTest, ListsSimThenModemMemoryAndMergesSegments) {
    ExpectList("SM", CmglBlock(1, 1, 28, kHello));
    ExpectList("ME", CmglBlock(3, 1, 63, kPart2) + CmglBlock(2, 0, 159, kPart1));
    std::list<TSmsListItem> items;
    ASSERT_EQ(family.GetList(items), 0);
    ASSERT_EQ(items.size(), 2u);
    const TSmsListItem &first = items.front(), &last = items.back();
    EXPECT_EQ(Fields(first.nStoreIn, first.wstrContent, first.szNumber, last.nStoreIn, last.wstrContent,
                     last.nCompleted, last.nTag),
              Fields(SMS_STORAGE_SIM, L"hellohello", "+18005551212", SMS_STORAGE_MODEM, kPartsText, 1,
                     SMS_STATUS_UNREAD));
    fake.VerifyDone();

    // A refused listing leaves nothing listed and no table for reports.
    ExpectSelect("SM");
    ExpectPduMode();
    fake.Expect("AT+CMGL=4\r", "\r\n+CMS ERROR: 310\r\n");
    EXPECT_EQ(family.GetList(items), 1);
    EXPECT_TRUE(items.empty());
    TSmsListItem item;
    int kind = -1;
    EXPECT_EQ(family.Receive("+CMTI: \"SM\",3", item, kind), 1);

    // Text mode lists nothing and succeeds.
    ExpectSelect("SM");
    fake.Expect("AT+CMGF?\r", "\r\n+CMGF: 1\r\n\r\nOK\r\n");
    ExpectSelect("ME");
    fake.Expect("AT+CMGF?\r", "\r\n+CMGF: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(family.GetList(items), 0);
    EXPECT_TRUE(items.empty());
}

TEST_F(SmsReadingTest, InitListKeepsOnlyTheNewestReplaceMessage) {
    ExpectList("SM", CmglBlock(1, 1, 28, kReplaceNew) + CmglBlock(2, 1, 28, kReplaceOld) +
                         CmglBlock(3, 1, 28, kHello));
    ExpectList("ME", CmglBlock(4, 1, 28, kReplaceOld));
    ExpectDeletion(fake, "SM", 2);
    ExpectDeletion(fake, "ME", 4);
    std::list<TSmsListItem> items;
    ASSERT_EQ(family.GetList(items), 0);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(family.MessageTable().front().packets.front().nIndex, 1u);
    EXPECT_EQ(family.MessageTable().back().packets.front().nIndex, 3u);
}

TEST_F(SmsReadingTest, ReportsReadTheAnnouncedMessage) {
    InitEmpty();
    TSmsListItem item;
    int kind = -1;
    const std::size_t sent = fake.Calls().size();
    for (const char* ignored :
         {"+CMTI: \"XY\",3", "+CMTI: \"SMS\",3", "+CMTI: SM,3", "+CMTI: \"SM\",", "RING"})
        EXPECT_EQ(family.Receive(ignored, item, kind), 1) << ignored;
    EXPECT_EQ(fake.Calls().size(), sent);

    ExpectRead("SM", 3, Cmgr(0, 28, kHello));
    ASSERT_EQ(family.Receive("+CMTI: \"SM\",3", item, kind), 0);
    EXPECT_EQ(Fields(kind, item.nStoreIn, item.wstrContent), Fields(0, SMS_STORAGE_SIM, L"hellohello"));
    ASSERT_EQ(family.MessageTable().size(), 1u);
    EXPECT_EQ(family.MessageTable().front().packets.front().nIndex, 3u);

    // A delivery report comes back whole and stays out of the table.
    ExpectRead("SR", 1, Cmgr(0, 24, kReport));
    ASSERT_EQ(family.Receive("+CDSI: \"SR\",1", item, kind), 0);
    EXPECT_EQ(Fields(item.nRef, item.nCompleted, item.nType, item.szNumber, family.MessageTable().size()),
              Fields(0, 1, SMS_TPDU_STATUS_REPORT, "639337937", 1));

    // Segments: the first says 1, a later one 2; the last completes the message.
    ExpectRead("ME", 5, Cmgr(0, 63, kPart2));
    ASSERT_EQ(family.Receive("+CMTI: \"ME\",5", item, kind), 0);
    EXPECT_EQ(Fields(kind, item.nCompleted), "1|0");
    ExpectRead("ME", 4, Cmgr(0, 159, kPart1));
    ASSERT_EQ(family.Receive("+CMTI: \"ME\",4", item, kind), 0);
    EXPECT_EQ(Fields(kind, item.nCompleted, item.wstrContent), Fields(2, 1, kPartsText));

    // The same stored message announced twice is a duplicate.
    ExpectRead("SM", 3, Cmgr(0, 28, kHello));
    EXPECT_EQ(family.Receive("+CMTI: \"SM\",3", item, kind), 1);
    // A newer replace message takes the older one's place.
    ExpectRead("SM", 6, Cmgr(0, 28, kReplaceOld));
    ASSERT_EQ(family.Receive("+CMTI: \"SM\",6", item, kind), 0);
    ExpectRead("SM", 7, Cmgr(0, 28, kReplaceNew));
    ExpectDeletion(fake, "SM", 6);
    ASSERT_EQ(family.Receive("+CMTI: \"SM\",7", item, kind), 0);
    EXPECT_EQ(kind, 3);
}

// Preferred storage SIM: a message that arrived in the modem memory is copied to the SIM, or to the
// computer when the SIM refuses, and deleted from the modem memory only once it is stored elsewhere.
// clang-format off
// written: answer to the PDU after AT+CMGW
struct Move { const char* what; const char* written; bool pcSaveFails; int storage; bool deletes; };
// clang-format on
class SmsMoveTest : public SmsReadingTest, public ::testing::WithParamInterface<Move> {};

TEST_P(SmsMoveTest, NewMessageMovesOutOfTheModemMemory) {
    const Move& row = GetParam();
    SCOPED_TRACE(row.what);
    const char* storages = "\r\n+CPMS: \"ME\",0,100,\"ME\",0,100,\"SM\",3,20\r\n\r\nOK\r\n";
    m_store.saveFails = row.pcSaveFails;
    EnableStore(SMS_STORAGE_SIM, storages);
    InitEmpty();
    EXPECT_EQ(m_store.listCalls, 1);

    ExpectRead("ME", 2, Cmgr(0, 28, kHello));
    fake.Expect("AT+CPMS?\r", storages);
    fake.Expect("AT+CPMS=\"ME\",\"SM\",\"SM\"\r");
    fake.Expect("AT+CMGW=28,1\r", "\r\n> ").WithTimeout(2000).WithFinals({">", "+CMS ERROR", "ERROR"});
    fake.Expect(std::string(kHello) + "\x1A", row.written).WithTimeout(10000).WithPrefix("+CMGW: ");
    ExpectSelect("ME");
    if (row.deletes)
        fake.Expect("AT+CMGD=2\r");
    TSmsListItem item;
    int kind = -1;
    ASSERT_EQ(family.Receive("+CMTI: \"ME\",2", item, kind), 0);
    fake.VerifyDone();
    EXPECT_EQ(Fields(item.nStoreIn, item.wstrContent), Fields(row.storage, L"hellohello"));
    if (row.storage == SMS_STORAGE_PC) {
        ASSERT_EQ(m_store.records.size(), 1u);
        EXPECT_EQ(Fields(m_store.records.front().strPdu, m_store.records.front().nPduLen),
                  Fields(kHello, 28));
        // Deleting it goes to the computer-side store.
        EXPECT_EQ(family.Delete(item.nRef), 0);
    }
    EXPECT_TRUE(m_store.records.empty());
    if (row.storage == SMS_STORAGE_SIM) {
        EXPECT_EQ(family.MessageTable().front().packets.front().nIndex, 7u);
    }
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(SmsReading, SmsMoveTest, ::testing::Values(
    Move{"to the SIM", "\r\n+CMGW: 7\r\n\r\nOK\r\n", false, SMS_STORAGE_SIM, true},
    Move{"SIM full, to the computer", "\r\n+CMS ERROR: 322\r\n", false, SMS_STORAGE_PC, true},
    Move{"SIM full, computer refuses", "\r\n+CMS ERROR: 322\r\n", true, SMS_STORAGE_MODEM, false}));
// clang-format on

// The computer-side store is read once; afterwards its messages stay in the table, marked read.
TEST_F(SmsReadingTest, ComputerSideStoreIsListedLastAndReadOnce) {
    EnableStore(SMS_STORAGE_PC, "\r\n+CPMS: \"ME\",0,100,\"ME\",0,100,\"ME\",0,100\r\n\r\nOK\r\n");
    m_store.records.push_back({5, 28, kHello});
    m_store.nextIndex = 6;
    ExpectList("SM", CmglBlock(1, 1, 63, kPart2));
    ExpectList("ME", CmglBlock(2, 0, 28, kReplaceOld));
    ExpectDeletion(fake, "ME", 2);
    std::list<TSmsListItem> items;
    ASSERT_EQ(family.GetList(items), 0);
    std::vector<int> storages;
    for (const TSmsListItem& item : items)
        storages.push_back(item.nStoreIn);
    EXPECT_EQ(storages, (std::vector<int>{SMS_STORAGE_SIM, SMS_STORAGE_PC, SMS_STORAGE_PC}));
    EXPECT_EQ(m_store.records.size(), 2u);
    fake.VerifyDone();

    ExpectList("SM", "");
    ExpectList("ME", "");
    ASSERT_EQ(family.GetList(items), 0);
    EXPECT_EQ(m_store.listCalls, 1);
    ASSERT_EQ(items.size(), 2u);
    for (const TSmsListItem& item : items) {
        EXPECT_EQ(item.nStoreIn, SMS_STORAGE_PC);
        EXPECT_EQ(item.nTag, static_cast<int>(SMS_STATUS_READ));
    }
    std::list<TSmsListItem> pc;
    EXPECT_EQ(family.GetIncomingSMSInPC(pc), 0);
    EXPECT_EQ(pc.size(), 2u);
}

TEST_F(SmsReadingTest, FilterClaimsMessages) {
    Claim claim;
    claim.result = 7;
    claim.deleteMessage = true;
    family.RegisterSMSFilter(&Claim::Filter, &Claim::Notify, &claim, &claim);

    ExpectList("SM", CmglBlock(1, 1, 28, kHello) + CmglBlock(2, 1, 63, kPart2));
    ExpectList("ME", "");
    ExpectDeletion(fake, "SM", 1);
    std::list<TSmsListItem> items;
    ASSERT_EQ(family.GetList(items), 0);
    ASSERT_EQ(items.size(), 1u); // the incomplete message is not offered
    EXPECT_EQ(items.front().nCompleted, 0);
    EXPECT_EQ(claim.number, L"+18005551212");
    ASSERT_EQ(family.MessageTable().size(), 1u);

    TSmsListItem item;
    int kind = -1;
    ExpectRead("SM", 3, Cmgr(0, 28, kHello));
    ExpectDeletion(fake, "SM", 3);
    EXPECT_EQ(family.Receive("+CMTI: \"SM\",3", item, kind), 1);
    EXPECT_EQ(family.MessageTable().size(), 1u);
    EXPECT_EQ(claim.notified, 0);

    claim.deleteMessage = false;
    ExpectRead("SM", 4, Cmgr(0, 28, kHello));
    ASSERT_EQ(family.Receive("+CMTI: \"SM\",4", item, kind), 0);
    EXPECT_EQ(claim.notified, 7);
    EXPECT_EQ(claim.notifiedName, L"Account");
    EXPECT_EQ(family.MessageTable().size(), 2u);
}

} // namespace
