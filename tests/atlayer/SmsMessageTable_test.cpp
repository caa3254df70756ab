#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "SmsPduVectors.h"
#include "SmsUtility.h"

namespace {

using namespace at_test;

// One stored SMS-DELIVER as AT+CMGL would list it.
struct Stored {
    uint32_t storage = SMS_STORAGE_SIM;
    uint32_t index = 1;
    uint32_t status = SMS_STATUS_READ;
    const char* digits = "4917012345678"; // international
    std::wstring text = L"hi";
    int reference = 0;
    int total = 0; // 0: a single message
    int sequence = 0;
    uint8_t dcs = 0x00;
    uint8_t pid = 0x00;
    const char* time = "120101110000"; // yyMMddhhmmss
};

TMessageListItem Deliver(const Stored& s) {
    TMessageListItem item;
    item.nStorage = s.storage;
    item.nIndex = s.index;
    item.nStatus = s.status;
    TTpduData& tpdu = item.pduData.tpdu;
    tpdu.nTpduType = SMS_TPDU_DELIVER;
    TTpduDeliver& deliver = tpdu.deliver;
    deliver.originating.nType = 0x11;
    std::strcpy(deliver.originating.szAddress, s.digits);
    deliver.nDcs = s.dcs;
    deliver.nPid = s.pid;
    uint8_t* fields[] = {&deliver.timeStamp.nYear, &deliver.timeStamp.nMonth,  &deliver.timeStamp.nDay,
                         &deliver.timeStamp.nHour, &deliver.timeStamp.nMinute, &deliver.timeStamp.nSecond};
    for (int i = 0; i < 6; ++i)
        *fields[i] = static_cast<uint8_t>((s.time[2 * i] - '0') << 4 | (s.time[2 * i + 1] - '0'));
    if (s.total != 0) {
        deliver.bUdhi = 1;
        deliver.userData.header = {1, static_cast<uint8_t>(s.reference), static_cast<uint8_t>(s.total),
                                   static_cast<uint8_t>(s.sequence)};
    }
    deliver.userData.nLength = static_cast<uint32_t>(CSmsUtility::WStringToDefault7Bit(
        s.text.data(), static_cast<int>(s.text.size()), deliver.userData.data, kUserDataSize));
    return item;
}

// Adds one stored message. The flags go in as given, so that a row can show that each was written.
struct Added {
    bool added = false, deleted = false, replaced = false;
    uint32_t id = 0;
    int result = -1;
};
Added Add(CSmsUtility& sms, const Stored& s, bool deleteOnRead = false, Added a = {}) {
    a.result = sms.AddMsgItemToListTable(Deliver(s), a.added, a.id, a.deleted, a.replaced, deleteOnRead);
    return a;
}

std::vector<TSmsListItem> Merged(const std::list<CMsgListTableItem>& table) {
    std::vector<TSmsListItem> merged;
    for (const CMsgListTableItem& item : table)
        CSmsUtility::MergePackets(item, merged.emplace_back());
    return merged;
}

// Which segments join an existing message, which open another, and which are refused as duplicates.
TEST(SmsMessageTable, DuplicatesAndLookalikes) {
    const Stored first{.index = 1, .reference = 9, .total = 2, .sequence = 1};
    // clang-format off
    // items: table items afterwards
    const struct { const char* what; Stored segment; int result; std::size_t items; } rows[] = {
        {"the same segment read again", first, 1, 1},
        {"the same part under another index", {.index = 2, .reference = 9, .total = 2, .sequence = 1}, 0, 2},
        {"same reference, another total", {.index = 3, .reference = 9, .total = 3, .sequence = 2}, 0, 2},
        {"another sender", {.index = 4, .digits = "4917099999999", .reference = 9, .total = 2, .sequence = 2}, 0, 2},
        {"another storage", {.storage = SMS_STORAGE_MODEM, .index = 1, .reference = 9, .total = 2, .sequence = 2}, 0, 2},
        {"another class", {.index = 5, .reference = 9, .total = 2, .sequence = 2, .dcs = 0x11}, 0, 2},
        {"the missing part", {.index = 6, .reference = 9, .total = 2, .sequence = 2}, 0, 1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        CSmsUtility sms;
        ASSERT_EQ(Add(sms, first).result, 0);
        const Added a = Add(sms, row.segment, false, {true, true, true});
        EXPECT_EQ(Fields(a.result, a.added, a.deleted, a.replaced, sms.MessageTable().size()),
                  Fields(row.result, row.result == 0, false, false, row.items));
        EXPECT_EQ(sms.MessageTable().front().packets.size(), row.items == 1 && row.result == 0 ? 2u : 1u);
    }

    // Single messages: the same index in the same storage is the same message.
    CSmsUtility sms;
    EXPECT_EQ(Add(sms, {.index = 4}).result, 0);
    EXPECT_EQ(Add(sms, {.index = 4, .text = L"other"}).result, 1);
    EXPECT_EQ(Add(sms, {.storage = SMS_STORAGE_MODEM, .index = 4}).result, 0);
    EXPECT_EQ(Add(sms, {.index = 5}).result, 0);
    EXPECT_EQ(sms.MessageTable().size(), 3u);
    const std::vector<TSmsListItem> merged = Merged(sms.MessageTable());
    EXPECT_EQ(Fields(merged[0].nCompleted, merged[0].nExpected, merged[0].nTotal), "1|1|1");
    EXPECT_NE(merged[0].nRef, merged[1].nRef);
}

// A replace message (TP-PID 0x41-0x47) takes the place of an older one from the same sender.
TEST(SmsMessageTable, ReplaceMessages) {
    const Stored old{.index = 3, .text = L"old", .pid = 0x41, .time = "120102100000"};
    // clang-format off
    const struct { const char* what; Stored incoming; bool deleteOnRead; bool deletes; const char* deleteAnswer; bool replaced; } rows[] = {
        // One field smaller makes the stored one older, even when an earlier field is larger.
        {"newer by the hour", {.index = 4, .status = 0, .text = L"new", .pid = 0x41, .time = "120101110000"}, true, true, ScriptedAtFake::kOk, true},
        {"same time", {.index = 4, .status = 0, .text = L"new", .pid = 0x41, .time = "120102100000"}, true, false, nullptr, false},
        {"another replace type", {.index = 4, .status = 0, .text = L"new", .pid = 0x42, .time = "130101000000"}, true, false, nullptr, false},
        {"another sender", {.index = 4, .status = 0, .digits = "4930123", .text = L"new", .pid = 0x41, .time = "130101000000"}, true, false, nullptr, false},
        {"listing, not a new message", {.index = 4, .text = L"new", .pid = 0x41, .time = "130101000000"}, false, false, nullptr, false},
        {"deletion refused", {.index = 4, .status = 0, .text = L"new", .pid = 0x41, .time = "130101000000"}, true, true, "\r\n+CMS ERROR: 321\r\n", false},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        CSmsUtility sms;
        sms.RegisterExecAT(ScriptedAtFake::Callback());
        const uint32_t oldId = Add(sms, old).id;
        ScriptedAtFake fake;
        if (row.deletes)
            ExpectDeletion(fake, "SM", 3, row.deleteAnswer);
        const Added a = Add(sms, row.incoming, row.deleteOnRead, {.deleted = true});
        EXPECT_EQ(Fields(a.result, a.added, a.deleted, a.replaced), Fields(0, true, false, row.replaced));
        const std::vector<TSmsListItem> merged = Merged(sms.MessageTable());
        if (row.replaced) {
            EXPECT_EQ(a.id, oldId);
            ASSERT_EQ(merged.size(), 1u);
            EXPECT_EQ(
                Fields(merged[0].wstrContent, merged[0].nTag, merged[0].dateTime.nDay, merged[0].nCompleted),
                Fields(L"new", SMS_STATUS_UNREAD, 1, 1));
            ASSERT_EQ(sms.MessageTable().front().packets.size(), 1u);
            EXPECT_EQ(sms.MessageTable().front().packets.front().nIndex, 4u);
        } else {
            EXPECT_NE(a.id, oldId);
            ASSERT_EQ(merged.size(), 2u);
            EXPECT_EQ(Fields(merged[0].wstrContent, merged[1].wstrContent), Fields(L"old", L"new"));
        }
    }
}

// Class 0 messages are shown once: deleted from their storage as they arrive and kept apart.
TEST(SmsMessageTable, FlashMessages) {
    const Stored flash{
        .storage = SMS_STORAGE_MODEM, .index = 7, .status = SMS_STATUS_UNREAD, .text = L"flash", .dcs = 0x10};
    // clang-format off
    // deletion: -1 none sent, 0 accepted, else the exchange's failure code
    struct Row { const char* what; Stored message; bool deleteOnRead; int deletion; bool deleted; };
    Stored read = flash;
    read.status = SMS_STATUS_READ;
    const Row rows[] = {
        {"new flash message", flash, true, 0, true}, {"listed, not new", flash, false, -1, false}, {"already read", read, true, -1, false},
        {"storage not selectable", flash, true, 2, false},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        CSmsUtility sms;
        sms.RegisterExecAT(ScriptedAtFake::Callback());
        ScriptedAtFake fake;
        if (row.deletion == 0)
            ExpectDeletion(fake, "ME", 7);
        else if (row.deletion > 0)
            fake.ExpectFailure("AT+CPMS=\"ME\"\r", row.deletion);
        const Added a = Add(sms, row.message, row.deleteOnRead, {.deleted = !row.deleted});
        ASSERT_EQ(a.result, 0);
        const auto& table = row.deleted ? sms.DeletedTable() : sms.MessageTable();
        EXPECT_EQ(Fields(a.deleted, sms.DeletedTable().size(), sms.MessageTable().size(), table.front().nId,
                         table.front().nClass),
                  Fields(row.deleted, row.deleted ? 1 : 0, row.deleted ? 0 : 1, a.id, 0));
    }
}

struct PcDeletes {
    std::string imsi;
    std::vector<int> indexes;
};

int DeleteFromPc(void* context, const char* imsi, int index) {
    auto* log = static_cast<PcDeletes*>(context);
    log->imsi = imsi;
    log->indexes.push_back(index);
    return 0;
}

// 8-bit deliveries (ring tones, settings) are data, not messages: deleted and never listed.
TEST(SmsMessageTable, DataMessagesAreDeletedNotListed) {
    CSmsUtility sms;
    sms.RegisterExecAT(ScriptedAtFake::Callback());
    PcDeletes pc;
    sms.SetIMSI("262011234567890");
    sms.RegisterPCCallback(&pc, nullptr, nullptr, &DeleteFromPc, 1);
    for (const Stored& data :
         {Stored{.index = 12, .dcs = 0xF5}, Stored{.storage = SMS_STORAGE_PC, .index = 9, .dcs = 0x04}}) {
        ScriptedAtFake fake;
        if (data.storage == SMS_STORAGE_SIM)
            ExpectDeletion(fake, "SM", 12);
        const Added a = Add(sms, data, false, {.added = true});
        EXPECT_EQ(Fields(a.result, a.added), "0|0");
    }
    EXPECT_EQ(Fields(pc.imsi, pc.indexes, sms.MessageTable().size(), sms.DeletedTable().size()),
              Fields("262011234567890", std::vector<int>{9}, 0, 0));
}

} // namespace
