#include <list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "PbUtility.h"

namespace {

using namespace at_test;
const std::list<std::string> kCme = {"OK", "+CME ERROR", "ERROR"};
const std::list<std::string> kCscs = {"OK", "ERROR", "+CME ERROR"};

class PbUtilityTest : public FamilyTest<CPbUtility> {
protected:
    static std::string Name(int storage) { return storage == PB_STORAGE_SIM ? "SM" : "ME"; }
    void ExpectSelect(int storage) {
        Expect(fake,
               At("AT+CPBS=\"" + Name(storage) + "\"\r").WithTimeout(1000).WithoutPrefix().WithFinals(kCme));
    }
    void ExpectUse(int storage, int used, int total) {
        ExpectSelect(storage);
        const std::string counts = std::to_string(used) + "," + std::to_string(total);
        Expect(fake, At("AT+CPBS?\r").WithTimeout(1000).WithPrefix("+CPBS: "),
               Answer("+CPBS: \"" + Name(storage) + "\"," + counts));
    }
    void ExpectUcs2(const char* answer = ScriptedAtFake::kOk) {
        Expect(fake, At("AT+CSCS=\"UCS2\"\r").WithTimeout(1000).WithoutPrefix().WithFinals(kCscs), answer);
    }
    // An entry written: the character set, the storage, then the command.
    void ExpectWrite(int storage, const std::string& command, const char* answer = ScriptedAtFake::kOk,
                     int failure = 0) {
        ExpectUcs2();
        ExpectSelect(storage);
        Expect(fake, At(command).WithTimeout(3000).WithoutPrefix().WithFinals(kCme), answer, failure);
    }
    // A full read of a storage whose entries have these indexes, listed in the order given.
    void ExpectList(int storage, const std::vector<int>& indexes, int total) {
        ExpectUse(storage, static_cast<int>(indexes.size()), total);
        if (indexes.empty())
            return;
        ExpectUcs2();
        std::string lines;
        for (const int index : indexes) {
            const std::string i = std::to_string(index);
            lines += (lines.empty() ? "+CPBR: " : "\r\n+CPBR: ") + i + ",\"1000" + i + "\",129,\"0041\"";
        }
        Expect(fake, At("AT+CPBR=1," + std::to_string(total) + "\r").WithTimeout(60000).WithoutPrefix(),
               Answer(lines));
    }
};

TEST(PbDecodeItem, EntryLines) {
    // clang-format off
    const struct { const char* line; int result; int index; const char* number; std::wstring name; } rows[] = {
        {R"(5,"12345",145,"00480069")", 0, 5, "+12345", L"Hi"}, {R"(5,"12345",129,"00480069")", 0, 5, "12345", L"Hi"},
        {R"(9,"12345",17,"0048")", 0, 9, "+12345", L"H"}, // 0x11: international as well
        {R"(7,"12345",129,"004")", 0, 7, "12345", L""}, // fewer than four digits
        {R"(7,"12345",129,"00480G690041")", 0, 7, "12345", L"H"}, // a bad digit keeps what came before
        {R"(7,"12345",129,"0048ffe5")", 0, 7, "12345", L"H\uFFE5"}, {R"(8,"",129,"")", 0, 8, "", L""}, {R"(8,"*99#",129,"0041")", 0, 8, "*99#", L"A"},
        {R"(abc,"1",129,"0041")", 1, -1, "", L"x"},
        {R"(5,12345,129,"0041")", 1, -1, "", L"x"}, // the name is taken for the number, then no type
        {R"(5,"12345)", 1, -1, "", L"x"}, {R"(5,"12345",)", 1, -1, "", L"x"}, {R"(5,"12345",x,"0041")", 1, -1, "", L"x"},
        {R"(5,"12345",129)", 1, -1, "", L"x"}, {R"(5,"12345",129,"0041)", 1, -1, "", L"x"}, {"", 1, -1, "", L"x"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        TPbBaseItem item;
        item.nIndex = -1;
        item.wstrName = L"x";
        const int result = CPbUtility::DecodeItem(row.line, item);
        EXPECT_EQ(Fields(result, item.nIndex, item.strNumber, item.wstrName),
                  Fields(row.result, row.index, row.number, row.name));
    }
}

TEST(PbHexText, DigitsAndUcs2Text) {
    std::string digits;
    for (const char digit : {'0', '9', 'A', 'f', 'G', '\0'})
        digits += std::to_string(CPbUtility::BcdToDec(digit)) + " ";
    EXPECT_EQ(digits, "0 9 10 15 -1 -1 ");

    char hex[13];
    EXPECT_EQ(CPbUtility::WStringToBcd(L"Hi\u5f20", hex, sizeof hex), 0);
    EXPECT_STREQ(hex, "004800695F20");
    EXPECT_EQ(CPbUtility::WStringToBcd(L"Hi\u5f20", hex, 12), 1); // no room for the NUL
    EXPECT_EQ(CPbUtility::WStringToBcd(L"", hex, 1), 0);
    EXPECT_STREQ(hex, "");
    EXPECT_EQ(CPbUtility::WStringToBcd(nullptr, hex, sizeof hex), 1);
    EXPECT_EQ(CPbUtility::WStringToBcd(L"H", nullptr, 8), 1);

    // The second text is bounded by the output.
    for (const auto& [hexText, result, expected] :
         {std::tuple{"0048006900", 0, L"Hi"}, {"00410042004300440045", 0, L"ABC"}, {"0041x042", 1, L"A"}}) {
        wchar_t text[4];
        EXPECT_EQ(CPbUtility::BcdToWString(hexText, text, 4), result);
        EXPECT_EQ(std::wstring(text), expected);
    }
    wchar_t text[4];
    EXPECT_EQ(CPbUtility::BcdToWString(nullptr, text, 4), 1);
}

TEST_F(PbUtilityTest, StorageUseFailures) {
    // clang-format off
    // answer: empty: not asked
    const struct { std::string selectAnswer; int selectResult; std::string answer; int result; } rows[] = {
        {"\r\n+CME ERROR: SIM not inserted\r\n", 0, "", 1}, {"", 2, "", 2}, {"", 30, "", 30}, {ScriptedAtFake::kOk, 0, Answer("+CPBS: \"SM\",12"), 1},
        {ScriptedAtFake::kOk, 0, Answer("+CPBS: SM,12,250"), 1}, {ScriptedAtFake::kOk, 0, Answer("+CPBS: \"SM\""), 1},
        {ScriptedAtFake::kOk, 0, ScriptedAtFake::kOk, 1}, {ScriptedAtFake::kOk, 0, "AT+CPBS?\r\r\n+CPBS: \"SM\",1,20\r\n\r\nOK\r\n", 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.selectAnswer + row.answer));
        fake.Expect("AT+CPBS=\"SM\"\r", row.selectAnswer, row.selectResult);
        if (!row.answer.empty())
            fake.Expect("AT+CPBS?\r", row.answer);
        EXPECT_EQ(family.GetStorageInfo(PB_STORAGE_SIM), row.result);
    }
}

TEST_F(PbUtilityTest, LengthLimitsWithTheirFallbacks) {
    const auto limits = [this] {
        int name = -1, number = -1;
        const int result = family.GetMaxLengthPair(name, number);
        return Fields(result, name, number);
    };
    // clang-format off
    CheckReads(fake, At("AT+CPBR=?\r").WithTimeout(1000).WithPrefix("+CPBR: ").WithFinals(kCme), limits, {
        {Answer("+CPBR: (1-250),40,14"), "0|14|40"}, {"AT+CPBR=?\r\r\n+CPBR: (1-100),20,18\r\n\r\nOK\r\n", "0|18|20"},
        {Answer("+CPBR: (1-250),,14"), "0|14|0"}, {Answer("+CPBR: (1-250),40"), "0|0|40"}, {Answer("+CPBR: (1-250),40,"), "0|0|40"},
        {Answer("+CPBR: (1-250)"), "0|-1|-1"}, // no comma: both left alone
        {Answer("+CPBR: (1-250),x,14"), "0|0|-1"}, {ScriptedAtFake::kOk, "1|-1|-1"}, {"\r\n+CME ERROR: operation not allowed\r\n", "1|-1|-1"},
        {"", "2|-1|-1", 2}});
    // clang-format on
}

TEST_F(PbUtilityTest, ListFailures) {
    const std::string two = "\r\n+CPBR: 1,\"10086\",129,\"004D\"\r\n+CPBR: 2,\"10010\"";
    // clang-format off
    // failure: -1: the entries are not asked for
    const struct { const char* what; const char* charSet; std::string answer; int failure; int result; std::size_t items; } rows[] = {
        {"an entry that cannot be decoded empties the list", ScriptedAtFake::kOk, two + "\r\n\r\nOK\r\n", 0, 1, 0},
        {"a line without its end is skipped", ScriptedAtFake::kOk, two + ",129,\"0041\"", 0, 0, 1},
        {"no character set", "\r\nERROR\r\n", "", -1, 1, 0}, {"time-out", ScriptedAtFake::kOk, "", 2, 2, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ExpectUse(PB_STORAGE_SIM, 2, 250);
        ExpectUcs2(row.charSet);
        if (row.failure >= 0)
            fake.Expect("AT+CPBR=1,250\r", row.answer, row.failure);
        std::list<TPbBaseItem> items;
        EXPECT_EQ(family.GetList(PB_STORAGE_SIM, items), row.result);
        EXPECT_EQ(Fields(items.size(), family.UsedIndexes(PB_STORAGE_SIM).size()),
                  Fields(row.items, row.items));
    }
    std::list<TPbBaseItem> items;
    fake.ExpectFailure("AT+CPBS=\"ME\"\r", 30);
    EXPECT_EQ(family.GetList(PB_STORAGE_MODEM, items), 30);
}

TEST_F(PbUtilityTest, InitListPutsSimEntriesFirst) {
    ExpectList(PB_STORAGE_SIM, {2, 1}, 250);
    ExpectList(PB_STORAGE_MODEM, {7}, 100);
    std::list<TPbItem> items;
    ASSERT_EQ(family.InitList(items), 0);
    std::vector<std::pair<int, int>> got;
    for (const TPbItem& item : items)
        got.emplace_back(item.nStore, item.nIndex);
    EXPECT_EQ(got, (std::vector<std::pair<int, int>>{{0, 2}, {0, 1}, {1, 7}}));
    EXPECT_EQ(Fields(items.back().strNumber, items.back().wstrName), Fields("10007", L"A"));

    // A modem storage that cannot be read appends nothing.
    items.clear();
    ExpectList(PB_STORAGE_SIM, {1}, 250);
    fake.Expect("AT+CPBS=\"ME\"\r", "\r\n+CME ERROR: operation not allowed\r\n");
    EXPECT_EQ(family.InitList(items), 1);
    EXPECT_TRUE(items.empty());
}

TEST_F(PbUtilityTest, AddTakesTheFirstFreeIndex) {
    // clang-format off
    struct Row { std::vector<int> used; int index; };
    const Row rows[] = {{{1, 2, 4}, 3}, {{1, 2, 3}, 4}, {{2, 3}, 1}, {{}, 1}, {{4, 1, 2}, 3}, {{1, 1, 2}, 3}, {{1, 3}, 2}};
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.used));
        ExpectList(PB_STORAGE_SIM, row.used, 10);
        std::list<TPbBaseItem> items;
        ASSERT_EQ(family.GetList(PB_STORAGE_SIM, items), 0);

        ExpectWrite(PB_STORAGE_SIM, "AT+CPBW=" + std::to_string(row.index) + ",\"+4930\",145,\"0041\"\r");
        int index = -1;
        ASSERT_EQ(family.AddItem(TPbNewItem{PB_STORAGE_SIM, L"A", "+4930"}, index), 0);
        EXPECT_EQ(index, row.index);
        std::list<int> expected(row.used.begin(), row.used.end());
        expected.push_back(row.index);
        expected.sort();
        EXPECT_EQ(family.UsedIndexes(PB_STORAGE_SIM), expected);
    }
}

TEST_F(PbUtilityTest, AddCountsAgainstTheCapacity) {
    int index = -1;
    // Never read: no capacity known.
    EXPECT_EQ(family.AddItem(TPbNewItem{PB_STORAGE_MODEM, L"A", "1"}, index), 1);

    ExpectList(PB_STORAGE_MODEM, {1}, 2);
    std::list<TPbBaseItem> items;
    ASSERT_EQ(family.GetList(PB_STORAGE_MODEM, items), 0);
    ExpectWrite(PB_STORAGE_MODEM, "AT+CPBW=2,\"1\",129,\"0041\"\r");
    ASSERT_EQ(family.AddItem(TPbNewItem{PB_STORAGE_MODEM, L"A", "1"}, index), 0);
    EXPECT_EQ(index, 2);
    // Full now: nothing is sent.
    index = -1;
    EXPECT_EQ(family.AddItem(TPbNewItem{PB_STORAGE_MODEM, L"A", "1"}, index), 1);
    EXPECT_EQ(index, -1);

    // After a delete there is room again, at the freed index.
    ExpectSelect(PB_STORAGE_MODEM);
    fake.Expect("AT+CPBW=1\r").WithTimeout(3000).WithoutPrefix();
    ASSERT_EQ(family.DeleteItem(PB_STORAGE_MODEM, 1), 0);
    EXPECT_EQ(family.UsedIndexes(PB_STORAGE_MODEM), (std::list<int>{2}));
    ExpectWrite(PB_STORAGE_MODEM, "AT+CPBW=1,\"1\",129,\"0041\"\r", "", 30);
    EXPECT_EQ(family.AddItem(TPbNewItem{PB_STORAGE_MODEM, L"A", "1"}, index), 2);
    EXPECT_EQ(family.UsedIndexes(PB_STORAGE_MODEM), (std::list<int>{2}));
}

// The number upper-cased, the name as UCS2; a failed exchange is 2 whatever the lower layer said.
TEST_F(PbUtilityTest, UpdateWritesTheUpperCasedCommand) {
    const TPbItem item{PB_STORAGE_SIM, 2, L"A", "1"};
    const char* command = "AT+CPBW=2,\"1\",129,\"0041\"\r";
    // clang-format off
    const struct { TPbItem item; std::string command; const char* answer; int failure; int result; } rows[] = {
        {{PB_STORAGE_SIM, 2, L"Hi", "abc"}, "AT+CPBW=2,\"ABC\",129,\"00480069\"\r", ScriptedAtFake::kOk, 0, 0},
        {{PB_STORAGE_MODEM, 5, L"\u5f20\u4e09", "+8613800138000"}, "AT+CPBW=5,\"+8613800138000\",145,\"5F204E09\"\r", ScriptedAtFake::kOk, 0, 0},
        {{PB_STORAGE_SIM, 1, L"", "10+86"}, "AT+CPBW=1,\"10+86\",145,\"\"\r", ScriptedAtFake::kOk, 0, 0},
        {{PB_STORAGE_SIM, 3, L"x", "*99#"}, "AT+CPBW=3,\"*99#\",129,\"0078\"\r", ScriptedAtFake::kOk, 0, 0},
        {item, command, "", 1, 2}, {item, command, "", 2, 2}, {item, command, "", 30, 2}, {item, command, "\r\n+CME ERROR: memory full\r\n", 0, 1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.command) + " " + std::to_string(row.failure));
        ExpectWrite(row.item.nStore, row.command, row.answer, row.failure);
        EXPECT_EQ(family.UpdateItem(row.item), row.result);
    }
    fake.ExpectFailure("AT+CSCS=\"UCS2\"\r", 2);
    EXPECT_EQ(family.UpdateItem(item), 1);
    ExpectUcs2();
    fake.ExpectFailure("AT+CPBS=\"SM\"\r", 30);
    EXPECT_EQ(family.UpdateItem(item), 30);
}

} // namespace
