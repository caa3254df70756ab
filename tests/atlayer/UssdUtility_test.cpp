#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "PbUtility.h"
#include "SmsUtility.h"
#include "UssdUtility.h"

namespace {

using namespace at_test;

const std::list<std::string> kCusdFinals = {"OK", "+CME ERROR:", "ERROR"};
const std::list<std::string> kCscsFinals = {"OK", "ERROR", "+CME ERROR"};

// The character set and USSD commands pass no prefix (unless a read adds it) and wait for their own finals.
ScriptedAtFake::Step Cscs(const std::string& command) {
    return At(command).WithTimeout(1000).WithoutPrefix().WithFinals(kCscsFinals);
}
ScriptedAtFake::Step Cusd(const std::string& command, int timeoutMs) {
    return At(command).WithTimeout(timeoutMs).WithoutPrefix().WithFinals(kCusdFinals);
}

class UssdUtilityTest : public FamilyTest<CUssdUility> {
protected:
    void ExpectCharSetQuery(const char* answer) { Expect(fake, Cscs("AT+CSCS?\r"), answer); }
    // Starts or ends a dialogue the way the network does, with a report.
    void SetDialogue(bool active) {
        ExpectCharSetQuery("\r\n+CSCS: \"UCS2\"\r\n\r\nOK\r\n");
        TUssdItem item;
        ASSERT_EQ(family.Receive(active ? "+CUSD: 1,\"0031\",72" : "+CUSD: 2", item), 0);
        ASSERT_EQ(family.IsDialogueActive(), active);
        fake.VerifyDone();
    }
};

// The text goes out as UCS2 units of default-alphabet codes. The character set's result does not matter;
// the send's does.
TEST_F(UssdUtilityTest, SendWritesDefaultAlphabetCodesAsUcs2Units) {
    std::string thousandA; // a long text stops at 999 codes
    for (int i = 0; i < 999; ++i)
        thousandA += "0041";
    const char* ok = ScriptedAtFake::kOk;
    // clang-format off
    const struct { std::wstring text; std::string argument; const char* charSetAnswer; int charSetFailure; const char* answer; int failure; int result; } rows[] = {
        {std::wstring(1200, L'A'), thousandA, ok, 0, ok, 0, 0},
        {L"$", "0002", ok, 0, ok, 0, 0}, // code 2 sent as a UCS2 unit: kept
        {L"@x", "00000078", ok, 0, ok, 0, 0}, // '@' is code 0
        {L"a[b]", "00610062", ok, 0, ok, 0, 0}, // extension characters are dropped
        {L"\u00A0", "001B", ok, 0, ok, 0, 0}, // the escape position holds U+00A0
        {L"\u0416\U0001F600", "", ok, 0, ok, 0, 0}, {L"", "", ok, 0, ok, 0, 0},
        {L"1", "0031", "\r\nERROR\r\n", 0, "AT+CUSD=1,\"0031\",15\r\r\nOK\r\n", 0, 0}, {L"1", "0031", "", 2, ok, 0, 0},
        {L"1", "0031", ok, 0, "\r\n+CME ERROR: unknown\r\n", 0, 1}, {L"1", "0031", ok, 0, "\r\nERROR\r\n", 0, 1},
        {L"1", "0031", ok, 0, "", 2, 2}, {L"1", "0031", ok, 0, "", 30, 30},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.argument.substr(0, 40) + " " + ScriptedAtFake::Printable(row.answer));
        CUssdUility ussd;
        ussd.RegisterExecAT(ScriptedAtFake::Callback());
        Expect(fake, Cscs("AT+CSCS=\"UCS2\"\r"), row.charSetAnswer, row.charSetFailure);
        Expect(fake, Cusd("AT+CUSD=1,\"" + row.argument + "\",15\r", 5000), row.answer, row.failure);
        EXPECT_EQ(ussd.SendUssdCmd(row.text.c_str()), row.result);
        EXPECT_EQ(ussd.IsDialogueActive(), row.result == 0);
        fake.VerifyDone();
    }
    EXPECT_EQ(family.SendUssdCmd(nullptr), 1);
}

TEST_F(UssdUtilityTest, SetStateNeedsOk) {
    // clang-format off
    const struct { int state; const char* command; const char* answer; int failure; int result; } rows[] = {
        {1, "AT+CUSD=1\r", "\r\nOK\r\n", 0, 0}, {0, "AT+CUSD=0\r", "\r\nOK\r\n", 0, 0}, {2, "AT+CUSD=2\r", "\r\nERROR\r\n", 0, 1},
        {-7, "AT+CUSD=-7\r", "\r\n+CME ERROR: 4\r\n", 0, 1}, {1, "AT+CUSD=1\r", "", 2, 2},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        Expect(fake, Cusd(row.command, 5000), row.answer, row.failure);
        int state = row.state;
        EXPECT_EQ(family.SetUssdState(state), row.result);
    }
}

TEST_F(UssdUtilityTest, CancelSendsOnlyWhileADialogueRuns) {
    const char* state1 = "\r\n+CUSD: 1\r\n\r\nOK\r\n";
    // clang-format off
    // cancelAnswer: nullptr: no AT+CUSD=2 expected
    struct Row { const char* name; bool activeBefore; const char* stateAnswer; int stateFailure; const char* cancelAnswer; int cancelFailure; int result; bool activeAfter; };
    const Row rows[] = {
        {"no dialogue", false, state1, 0, nullptr, 0, 0, false},
        {"modem reports state 0", true, "\r\n+CUSD: 0\r\n\r\nOK\r\n", 0, nullptr, 0, 0, false},
        {"cancel accepted", true, state1, 0, "\r\nOK\r\n", 0, 0, false}, {"cancel refused", true, state1, 0, "\r\n+CME ERROR: 3\r\n", 0, 1, true},
        {"cancel times out", true, state1, 0, "", 2, 2, true}, {"state query times out", true, "", 2, nullptr, 0, 2, true},
        {"state unreadable", true, "\r\nOK\r\n", 0, nullptr, 0, 1, true},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        SetDialogue(row.activeBefore);
        fake.Expect("AT+CUSD?\r", row.stateAnswer, row.stateFailure).WithTimeout(3000);
        if (row.cancelAnswer != nullptr)
            Expect(fake, Cusd("AT+CUSD=2\r", 1000), row.cancelAnswer, row.cancelFailure);
        EXPECT_EQ(family.SendUssdCancelCmd(), row.result);
        EXPECT_EQ(family.IsDialogueActive(), row.activeAfter);
        fake.VerifyDone();
    }
}

// The presentation state and the character set read back; -1: left alone. The set's names are searched in
// order.
TEST_F(UssdUtilityTest, QueriesReadStateAndCharacterSet) {
    // clang-format off
    CheckReads(fake, Cusd("AT+CUSD?\r", 3000).WithPrefix("+CUSD: "), [this](int& state) { return family.CheckUssdState(state); }, {
        {"\r\n+CUSD: 1\r\n\r\nOK\r\n", "0|1"}, {"AT+CUSD?\r\r\n+CUSD: 0\r\n\r\nOK\r\n", "0|0"}, {"\r\n+CUSD: 2\r\n", "0|2"},
        {"\r\n+CUSD:1\r\n\r\nOK\r\n", "1|-1"}, {"\r\n+CUSD: 99999999999999999999\r\n\r\nOK\r\n", "1|-1"}, {"\r\nOK\r\n", "1|-1"}, {"", "2|-1", 2}, {"", "30|-1", 30}});
    CheckReads(fake, Cscs("AT+CSCS?\r"), [this](int& set) { return family.getEcodingFormat(set); }, {
        {"\r\n+CSCS: \"UCS2\"\r\n\r\nOK\r\n", "0|5"}, {"AT+CSCS?\r\r\n+CSCS: \"IRA\"\r\n\r\nOK\r\n", "0|2"},
        {"\r\n+CSCS: \"8859-1\"\r\n\r\nOK\r\n", "1|-1"}, {"\r\n+CSCS: \"PCCP437\"\r\n\r\nOK\r\n", "1|-1"}, {"\r\nERROR\r\n", "1|-1"}, {"", "30|-1", 30}});
    // clang-format on
}

// The phone book, message and USSD families name the character set alike; 11 and -1 are refused unsent.
TEST(CharacterSets, EveryFamilyNamesTheSet) {
    ScriptedAtFake fake;
    CPbUtility pb;
    CSmsUtility sms;
    CUssdUility ussd;
    [](auto&... families) { (families.RegisterExecAT(ScriptedAtFake::Callback()), ...); }(pb, sms, ussd);
    const std::pair<const char*, std::function<int(int, int, int)>> families[] = {
        {"phone book", [&](int set, int page, int part) { return pb.SelectTeCharacterSet(set, page, part); }},
        {"messages", [&](int set, int page, int part) { return sms.SelectTeCharacterSet(set, page, part); }},
        {"USSD", [&](int set, int page, int part) { return ussd.SelectTeCharacterSet(set, page, part); }}};
    // clang-format off
    // name: nullptr: nothing is sent
    const char* ok = "\r\nOK\r\n";
    const struct { int set; int codePage; int part; const char* name; const char* answer; int result; } rows[] = {
        {0, 0, 0, "GSM", ok, 0}, {1, 0, 0, "HEX", ok, 0}, {2, 0, 0, "IRA", ok, 0}, {3, 437, 0, "PCCP437", ok, 0}, {3, 5, 0, "PCCP005", ok, 0},
        {4, 0, 0, "PCDN", ok, 0}, {5, 0, 0, "UCS2", ok, 0}, {6, 0, 1, "8859-1", ok, 0}, {7, 0, 0, "8859-C", ok, 0}, {8, 0, 0, "8859-A", ok, 0},
        {9, 0, 0, "8859-G", ok, 0}, {10, 0, 0, "8859-H", ok, 0}, {5, 0, 0, "UCS2", "\r\nERROR\r\n", 1}, {11, 0, 0, nullptr, "", 1},
        {-1, 0, 0, nullptr, "", 1}, {5, 0, 0, "UCS2", "\r\n+CME ERROR: operation not supported\r\n", 1}, {3, 37, 0, "PCCP037", "\r\nERROR\r\n", 1},
    };
    // clang-format on
    for (const auto& [family, select] : families) {
        for (const auto& row : rows) {
            SCOPED_TRACE(testing::Message() << family << " set " << row.set);
            if (row.name != nullptr)
                Expect(fake, Cscs(std::string("AT+CSCS=\"") + row.name + "\"\r"), row.answer);
            EXPECT_EQ(select(row.set, row.codePage, row.part), row.result);
            fake.VerifyDone();
        }
    }
    fake.ExpectFailure("AT+CSCS=\"UCS2\"\r", 30);
    EXPECT_EQ(pb.SelectTeCharacterSet(5, 0, 0), 1);
}

TEST(UssdDcs, AlphabetFollowsTheCodingGroups) {
    // clang-format off
    const struct { int dcs; int alphabet; } rows[] = {
        {0x00, 0}, {0x0F, 3}, {0x11, 0}, {0x44, 1}, {0x48, 2}, {0x4C, 3}, {0x80, 3}, {0xBF, 3},
        {0xC0, 0}, {0xD8, 0}, {0xE0, 2}, {0xE4, 2}, {0xF0, 0}, {0xF4, 1}, {0xFF, 1}, {0x18, 2},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(CUssdUility::DecodeDcsAlphabet(static_cast<uint8_t>(row.dcs)), row.alphabet) << row.dcs;
}

TEST_F(UssdUtilityTest, ReceiveDecodesTheThreeAlphabets) {
    // clang-format off
    // charSet: the AT+CSCS? answer
    // nType: -1: left alone
    struct Row { const char* charSet; const char* line; int nType; const wchar_t* text; bool activeBefore; bool activeAfter; };
    const char* ucs2 = "\r\n+CSCS: \"UCS2\"\r\n\r\nOK\r\n";
    const char* gsm = "\r\n+CSCS: \"GSM\"\r\n\r\nOK\r\n";
    const Row rows[] = {
        {ucs2, "+CUSD: 1,\"00480069\",72", 1, L"Hi", false, true}, {ucs2, "+CUSD: 2", 2, L"", true, false},
        {ucs2, "+CUSD: 0,\"00480069\",68", 0, L"", true, false}, // 8-bit data is not shown
        {gsm, "+CUSD: 0,\"48656C6C6F\",15", 0, L"Hello", false, false},
        {gsm, "+CUSD: 0,\"00021B80\",15", 0, L"@$\u00A0", false, false}, // 0x80 is no code
        {ucs2, "+CUSD: 0,\"00480065006C006C006F\",15", 0, L"Hello", false, false},
        {ucs2, "+CUSD: 1,\"004800\",72", 1, L"H", false, true}, // the odd octet is dropped
        {ucs2, "+CUSD: 1,\"0048ZZ0069\",72", 1, L"H", false, true}, // stops at a pair that is no hex
        {gsm, "+CUSD: 1,\"4869\";15", 1, L"Hi", false, true}, // read by position, not by the comma
        {ucs2, "\r\n+CUSD: 4\r\n", 4, L"", true, false}, {ucs2, "+CUSD: 5", 5, L"", true, false}, {ucs2, "+CUSD: 3,\"0048\",72", 3, L"H", true, true},
        {ucs2, "+CUSD: 1,\"\",72", 1, L"", false, true}, {ucs2, "+CUSD: 1,\"0048", 1, L"", false, true}, // no closing quote
        {ucs2, "+CUSD: 1,\"0048\"", 1, L"", false, true}, // no coding scheme
        {ucs2, "+CUSD: 1,\"0048\",256", 1, L"", false, true}, // no byte
        {ucs2, "+CUSD: 1,0048,72", 1, L"", false, true}, // no quote
        {ucs2, "+CUSD:1,\"0048\",72", -1, L"", true, true}, // no blank: not a report
        {ucs2, "+CUSD: x", -1, L"", false, false}, {ucs2, "+CUSD: 99999999999,\"0048\",72", -1, L"", true, true}, {ucs2, "OK", -1, L"", true, true},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.line));
        SetDialogue(row.activeBefore);
        ExpectCharSetQuery(row.charSet);
        TUssdItem item;
        item.nType = -1;
        item.wstrContent = L"stale";
        EXPECT_EQ(family.Receive(row.line, item), 0);
        EXPECT_EQ(item.nType, row.nType);
        EXPECT_EQ(item.wstrContent, row.text);
        EXPECT_EQ(family.IsDialogueActive(), row.activeAfter);
        fake.VerifyDone();
    }
}

TEST_F(UssdUtilityTest, ReceiveReturnsACharSetFailure) {
    const auto receive = [this] {
        TUssdItem item;
        item.nType = -1;
        const int result = family.Receive("+CUSD: 1,\"00480069\",72", item);
        return Fields(result, item.nType, item.wstrContent.size(), family.IsDialogueActive());
    };
    CheckReads(fake, At("AT+CSCS?\r"), receive,
               {{"", "2|-1|0|0", 2},
                {"\r\n+CSCS: \"8859-1\"\r\n\r\nOK\r\n", "1|-1|0|0"},
                {"\r\nERROR\r\n", "1|-1|0|0"}});
    TUssdItem item;
    EXPECT_EQ(family.Receive(nullptr, item), 1);
}

// Network texts are untrusted: every cut of a report and an over-long text stay within bounds.
TEST(UssdReport, TruncatedAndOverlongReportsStayBounded) {
    const std::string line = "+CUSD: 1,\"0048006900210021\",72\r\n";
    for (std::size_t length = 0; length <= line.size(); ++length) {
        for (const int teSet : {0, 5}) {
            TUssdItem item;
            CUssdUility::ParseCusdReport(line.substr(0, length).c_str(), teSet, item);
            EXPECT_LE(item.wstrContent.size(), 4u);
        }
    }

    const std::string gsmText(6000, '4');
    TUssdItem item;
    ASSERT_EQ(CUssdUility::ParseCusdReport(("+CUSD: 0,\"" + gsmText + "\",15").c_str(), 0, item), 0);
    EXPECT_EQ(item.wstrContent.size(), static_cast<std::size_t>(kUssdMaxReportOctets));
    EXPECT_EQ(item.wstrContent.front(), L'D');
    ASSERT_EQ(CUssdUility::ParseCusdReport(("+CUSD: 0,\"" + gsmText + "\",72").c_str(), 0, item), 0);
    EXPECT_EQ(item.wstrContent.size(), static_cast<std::size_t>(kUssdMaxReportOctets / 2));
    EXPECT_EQ(item.wstrContent.front(), L'\u4444');

    std::string noise;
    for (int i = 0; i < 4000; ++i)
        noise.push_back(static_cast<char>(1 + (i * 37) % 255));
    EXPECT_EQ(CUssdUility::ParseCusdReport(("+CUSD: 1," + noise).c_str(), 5, item), 0);
    EXPECT_EQ(CUssdUility::ParseCusdReport(nullptr, 5, item), 1);
}

TEST(UssdHelpers, QuotationStringHexAndEncodeType) {
    // clang-format off
    const struct { const char* text; int result; const char* quoted; } quotes[] = {
        {"\"0048\",72", 0, "0048"}, {"\"\"", 0, ""},       {"\"ab\"cd\"", 0, "ab"},
        {"0048\"", 1, "left"},      {"\"0048", 1, "left"}, {"", 1, "left"},
    };
    // clang-format on
    for (const auto& row : quotes) {
        std::string quoted = "left";
        EXPECT_EQ(CUssdUility::GetQuotationString(row.text, quoted), row.result) << row.text;
        EXPECT_EQ(quoted, row.quoted) << row.text;
    }
    std::string quoted;
    EXPECT_EQ(CUssdUility::GetQuotationString(nullptr, quoted), 1);

    std::string read;
    for (const char digit : {'0', 'f', 'A', 'g', '\0'})
        read += std::to_string(CUssdUility::HexCharToInt(digit)) + " ";
    for (const wchar_t* text :
         {L"*100#", L"[\\]^{|}~\u20AC", L"\u00E9\u0394", L"`", L"\u041F\u0440\u0438", L""})
        read += std::to_string(CUssdUility::GetEncodeType(text)) + " ";
    EXPECT_EQ(read, "0 15 10 -1 -1 0 0 0 2 2 0 ");

    uint8_t codes[4] = {9, 9, 9, 9};
    EXPECT_EQ(CUssdUility::WStringToDefault7Bit(L"a[bcd", codes, 4), 3);
    EXPECT_EQ(std::vector<uint8_t>(codes, codes + 4), (std::vector<uint8_t>{'a', 'b', 'c', 0}));
    EXPECT_EQ(CUssdUility::WStringToDefault7Bit(nullptr, codes, 4), 0);
    EXPECT_EQ(CUssdUility::WStringToDefault7Bit(L"abc", codes, 0), 0);

    uint16_t units[2] = {};
    EXPECT_EQ(CUssdUility::WStringToBigEndianUcs2(L"H\u0416x", 3, units, 2), 2);
    const auto* bytes = reinterpret_cast<const uint8_t*>(units);
    EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + 4), (std::vector<uint8_t>{0x00, 0x48, 0x04, 0x16}));
}

} // namespace
