// Answers of sticks that speak only the 3GPP command sets, as their kinds of modem print them, read by
// the command families: one table per family.
#include <cstdio>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DebugSink.h"
#include "FamilyCommand.h"
#include "ModemDialect.h"
#include "NetworkUtility.h"
#include "PbUtility.h"
#include "ScriptedAtFake.h"
#include "SmsUtility.h"
#include "UssdUtility.h"

namespace {

std::string Answer(const std::string& lines) {
    return "\r\n" + lines + "\r\n\r\nOK\r\n";
}

class StandardStickTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetModemDialect(ModemDialect::Standard);
        m_debug = std::tmpfile();
        m_previousSink = GetDebugSink();
        SetDebugSink(m_debug);
    }
    void TearDown() override {
        SetDebugSink(m_previousSink);
        std::fclose(m_debug);
        ResetModemDialect();
    }
    std::string DebugText() {
        std::string text;
        char buffer[1024];
        std::rewind(m_debug);
        for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, m_debug)) > 0;)
            text.append(buffer, n);
        return text;
    }

    ScriptedAtFake m_fake;

private:
    std::FILE* m_debug = nullptr;
    std::FILE* m_previousSink = nullptr;
};

TEST_F(StandardStickTest, AnswerPrefixGetsItsBlank) {
    // clang-format off
    const std::pair<std::string, std::string> rows[] = {
        {"\r\n+CMGL:1,0,,23\r\n0791\r\n", "\r\n+CMGL: 1,0,,23\r\n0791\r\n"},
        {"+CREG:0,1\r\n\r\nOK\r\n", "+CREG: 0,1\r\n\r\nOK\r\n"},
        {"\r\n+CREG: 0,1\r\n", "\r\n+CREG: 0,1\r\n"},
        {"\r\n+CME ERROR:10\r\n", "\r\n+CME ERROR:10\r\n"},     // not a prefix: the blank stands before
        {"\r\n+CPBR: 1,\"+1:2\",145\r\n", "\r\n+CPBR: 1,\"+1:2\",145\r\n"}, // not at a line start
        {"\r\n+CSCS:\r\n", "\r\n+CSCS:\r\n"},
        {"+CSQ:", "+CSQ:"},
    };
    // clang-format on
    for (const auto& [answer, read] : rows) {
        std::string text = answer;
        SpaceAfterAnswerPrefixes(text);
        EXPECT_EQ(ScriptedAtFake::Printable(text), ScriptedAtFake::Printable(read));
    }
}

TEST_F(StandardStickTest, UssdAnswerForms) {
    struct Row {
        const char* kind;
        int teSet;
        const char* line;
        int nType;
        const wchar_t* text;
    };
    // clang-format off
    const Row rows[] = {
        {"HSPA stick that answers IRA text", USSD_TE_IRA, "+CUSD: 0,\"Balance: 5.00 EUR\",15", 0, L"Balance: 5.00 EUR"},
        {"stick that leaves out the dcs", USSD_TE_IRA, "+CUSD: 1,\"Reply 1 or 2\"", 1, L"Reply 1 or 2"},
        {"stick that leaves out the dcs, hex text", USSD_TE_GSM, "+CUSD: 0,\"4869\"\r\n", 0, L"Hi"},
        {"stick without a blank after the colon", USSD_TE_GSM, "+CUSD:0,\"4869\",15", 0, L"Hi"},
        {"LTE module with dcs 0x11", USSD_TE_UCS2, "+CUSD: 0,\"653700480069\",17", 0, L"Hi"},
        {"UMTS stick giving packed septets", USSD_TE_GSM, "+CUSD: 0,\"C8329BFD06\",15", 0, L"Hello"},
        {"packed septets padded with CR", USSD_TE_IRA, "+CUSD: 0,\"31D98C56B3DD1A\",15", 0, L"1234567"},
        {"packed septets padded with zeros", USSD_TE_HEX, "+CUSD: 0,\"31D98C56B3DD00\",0", 0, L"1234567"},
        {"packed septets of a longer text", USSD_TE_GSM, "+CUSD: 0,\"D3309BFCD6816AA062550A\",15", 0, L"Saldo: 5 EUR"},
        {"UCS2 answer padded with U+0000", USSD_TE_UCS2, "+CUSD: 0,\"0048006900000041\",72", 0, L"Hi"},
        {"UCS2 answer outside the BMP", USSD_TE_UCS2, "+CUSD: 0,\"D83DDE00\",72", 0, L"\U0001F600"},
        {"release notice without text", USSD_TE_UCS2, "+CUSD: 2", 2, L""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        TUssdItem item;
        EXPECT_EQ(CUssdUility::ParseCusdReport(row.line, row.teSet, item), 0);
        EXPECT_EQ(item.nType, row.nType);
        EXPECT_EQ(item.wstrContent, row.text);
    }
}

TEST_F(StandardStickTest, OperatorListFieldByField) {
    struct Row {
        const char* kind;
        std::string list;
        std::vector<std::vector<std::string>> items; // long, short, numeric, technology
    };
    const std::string ucs2Long =
        "00540065006C00650063006F006D0020004F00700065007200610074006F0072002000570069007400"
        "6800200041002000560065007200790020004C006F006E00670020004E0061006D0065";
    // clang-format off
    const Row rows[] = {
        {"stick that omits the short name", "(2,\"T - Mobile\",,\"31026\"),,(0,1,2,3,4),(0,1,2)", {{"T - Mobile", "", "31026", "3"}}},
        {"modem in UCS2 with a long name", "(1,\"" + ucs2Long + "\",\"0041\",\"00300030003100300031\",2)", {{"Telecom Operator", "A", "00101", "2"}}},
        {"long plain name is cut, not dropped", "(1,\"Acme Telecommunications Group\",\"ACME\",\"00101\",2),(3,\"B\",\"B\",\"00102\",0)",
         {{"Acme Telecommuni", "ACME", "00101", "2"}, {"B", "B", "00102", "0"}}},
        {"names with brackets and blanks", "( 1, \"Op (West)\" , \"W,1\", 00103 , 7 ),,(0-4)", {{"Op (West)", "W,1", "00103", "7"}}},
        {"item without its bracket ends the list", "(1,\"A\",\"A\",\"00101\",2),(1,\"B\"", {{"A", "A", "00101", "2"}}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        m_fake.Expect("AT+COPS=?\r", Answer("+COPS: " + row.list));
        CNetworkUtility network;
        network.RegisterExecAT(ScriptedAtFake::Callback());
        std::list<TNetworkListItem> items;
        EXPECT_EQ(network.GetList(items), 0);
        std::vector<std::vector<std::string>> read;
        for (const TNetworkListItem& item : items)
            read.push_back(
                {item.szLongName, item.szShortName, item.szNumericName, std::to_string(item.nAcT)});
        EXPECT_EQ(read, row.items);
    }
}

TEST_F(StandardStickTest, MessageListSkipsAnEntryItCannotRead) {
    const std::string hello = "07912143658709F1040B918100551512F20000111010214365000AE8329BFD4697D9EC37";
    struct Row {
        const char* kind;
        std::string answer;
        std::vector<uint32_t> indexes;
    };
    // clang-format off
    const Row rows[] = {
        {"stick with a broken PDU in storage", "\r\n+CMGL: 1,1,,28\r\n" + hello + "\r\n+CMGL: 2,1,,28\r\n07912143658709F1ZZ\r\n+CMGL: 3,1,,28\r\n" + hello + "\r\n\r\nOK\r\n", {1, 3}},
        {"stick with a header that has no length", "\r\n+CMGL: 4,1\r\n" + hello + "\r\n+CMGL: 5,0,,28\r\n" + hello + "\r\n\r\nOK\r\n", {5}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        std::list<TMessageListBaseItem> items;
        EXPECT_EQ(CSmsUtility::DecodePduModeCMGL(row.answer, items), 0);
        std::vector<uint32_t> indexes;
        for (const TMessageListBaseItem& item : items)
            indexes.push_back(item.nIndex);
        EXPECT_EQ(indexes, row.indexes);
    }
    EXPECT_NE(DebugText().find("AT+CMGL: skipped an entry that cannot be read: +CMGL: 2,1,,28"),
              std::string::npos);
}

TEST_F(StandardStickTest, PhonebookListSkipsAnEntryItCannotRead) {
    struct Row {
        const char* kind;
        std::string lines;
        std::vector<int> indexes;
    };
    // clang-format off
    const Row rows[] = {
        {"stick that leaves the type empty", "+CPBR: 1,\"10086\",129,\"0041\"\r\n+CPBR: 2,\"10010\",,\"0042\"", {1}},
        {"stick that does not quote the name", "+CPBR: 1,\"10086\",129,Alice\r\n+CPBR:3,\"112\",129,\"0043\"", {3}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        m_fake.Expect("AT+CPBS=\"SM\"\r");
        m_fake.Expect("AT+CPBS?\r", Answer("+CPBS: \"SM\",2,250"));
        m_fake.Expect("AT+CSCS=\"UCS2\"\r");
        m_fake.Expect("AT+CPBR=1,250\r", Answer(row.lines));
        CPbUtility phonebook;
        phonebook.RegisterExecAT(ScriptedAtFake::Callback());
        std::list<TPbBaseItem> items;
        EXPECT_EQ(phonebook.GetList(PB_STORAGE_SIM, items), 0);
        std::vector<int> indexes;
        for (const TPbBaseItem& item : items)
            indexes.push_back(item.nIndex);
        EXPECT_EQ(indexes, row.indexes);
    }
    EXPECT_NE(DebugText().find("AT+CPBR: skipped an entry that cannot be read: 2,\"10010\",,\"0042\""),
              std::string::npos);
}

} // namespace
