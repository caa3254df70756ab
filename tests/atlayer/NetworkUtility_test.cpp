#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "NetworkAnswerParsers.h"
#include "NetworkUtility.h"
#include "ScriptedAtFake.h"

namespace {

std::string Answer(const std::string& line) {
    return "\r\n" + line + "\r\n\r\nOK\r\n";
}

class NetworkUtilityTest : public ::testing::Test {
protected:
    void SetUp() override { m_network.RegisterExecAT(ScriptedAtFake::Callback()); }

    ScriptedAtFake m_fake;
    CNetworkUtility m_network;
};

TEST_F(NetworkUtilityTest, SignalLevelAndDbmFromCsq) {
    // clang-format off
    struct Row { std::string answer; int result; int level; int dbm; };
    const Row rows[] = {
        {Answer("+CSQ: 99,99"), 0, 0, 0}, {Answer("+CSQ: 0,0"), 0, 0, 114}, {Answer("+CSQ: 1,99"), 0, 0, 112}, {Answer("+CSQ: 2,99"), 0, 1, 110},
        {Answer("+CSQ: 7,99"), 0, 1, 100}, {Answer("+CSQ: 8,99"), 0, 2, 98}, {Answer("+CSQ: 11,0"), 0, 2, 92}, {Answer("+CSQ: 12,0"), 0, 3, 90},
        {Answer("+CSQ: 15,0"), 0, 3, 84}, {Answer("+CSQ: 16,0"), 0, 4, 82}, {Answer("+CSQ: 19,0"), 0, 4, 76}, {Answer("+CSQ: 20,99"), 0, 5, 74},
        {Answer("+CSQ: 31,99"), 0, 5, 52}, {Answer("+CSQ: 40,99"), 0, 6, 34}, {"AT+CSQ\r\r\n+CSQ: 25,99\r\n\r\nOK\r\n", 0, 5, 64},
        {Answer("+CSQ:20,99"), 1, 6, 0}, // the prefix needs its blank
        {Answer("+CSQ: ,99"), 1, 6, 0}, {"\r\nOK\r\n", 1, 6, 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CSQ\r", row.answer).WithTimeout(1000).WithPrefix("+CSQ: ");
        m_fake.Expect("AT+CSQ\r", row.answer).WithTimeout(1000).WithPrefix("+CSQ: ");
        int level = -1;
        int dbm = -1;
        EXPECT_EQ(m_network.GetRssiLevel(level), row.result);
        EXPECT_EQ(m_network.GetSignalDBValue(dbm), row.result);
        EXPECT_EQ(level, row.level);
        EXPECT_EQ(dbm, row.dbm);
    }

    m_fake.ExpectFailure("AT+CSQ\r", 2);
    int level = -1;
    EXPECT_EQ(m_network.GetRssiLevel(level), 2);
    EXPECT_EQ(level, 6);
}

TEST_F(NetworkUtilityTest, BaseInfoReadsCopsOverItsDefaults) {
    const std::string thirtyChars(30, 'N');
    // clang-format off
    struct Row { std::string answer; int result; int mode; int format; std::string oper; int act; };
    const Row rows[] = {
        {Answer("+COPS: 0,2,\"46000\",2"), 0, 0, 2, "46000", 2}, {Answer("+COPS: 1,0,\"Acme Mobile\",0"), 0, 1, 0, "Acme Mobile", 0},
        {Answer("+COPS: 0, 2, \"00101\", 2"), 0, 0, 2, "00101", 2}, {Answer("+COPS: 0,2,\"46000\""), 0, 0, 2, "46000", 3},
        {Answer("+COPS: 0"), 0, 0, 3, "", 3}, {Answer("+COPS: 0,0,\"" + thirtyChars + "\",2"), 0, 0, 0, "", 2},
        {Answer("+COPS: 0,0,\"Sixteen chars ok\",2"), 0, 0, 0, "Sixteen chars ok", 2}, {Answer("+COPS: 0,2,\"\",2"), 0, 0, 2, "", 2},
        {"\r\n+COPS: 0\r\n+CREG: 1,2\r\n\r\nOK\r\n", 0, 0, 3, "", 3}, // nothing read from the other line
        {"\r\nOK\r\n", 1, 5, 3, "", 3},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+COPS?\r", row.answer).WithTimeout(60000).WithPrefix("+COPS: ");
        TNetworkBaseInfo info;
        EXPECT_EQ(m_network.GetBaseInfo(info), row.result);
        EXPECT_EQ(info.nMode, row.mode);
        EXPECT_EQ(info.nFormat, row.format);
        EXPECT_EQ(info.szOperator, row.oper);
        EXPECT_EQ(info.nAcT, row.act);
    }

    // Any failed exchange is reported as a time-out.
    for (const int failure : {1, 2, 30}) {
        m_fake.ExpectFailure("AT+COPS?\r", failure);
        TNetworkBaseInfo info;
        EXPECT_EQ(m_network.GetBaseInfo(info), 2);
        EXPECT_EQ(info.nMode, 5);
    }
}

TEST(NetworkUtilityParse, ItemStringFields) {
    // clang-format off
    struct Row { std::string text; int state; const char* longName; const char* shortName; const char* numeric; int act; };
    const Row rows[] = {
        {"2,\"Acme Mobile\",\"ACME\",\"00101\",2", 2, "Acme Mobile", "ACME", "00101", 2},
        {"1, \"Acme Mobile\", \"ACME\", \"00101\", 0", 1, "Acme Mobile", "ACME", "00101", 0},
        {"3,\"Acme Mobile\",\"ACME\",\"310260\"", 3, "Acme Mobile", "ACME", "310260", 3},
        {"1,\"" + std::string(30, 'N') + "\",\"A\",\"1\",0", 1, "", "A", "1", 0}, {"1,\"Acme\",\"Acme Mobile\",\"1234567\",2", 1, "Acme", "", "", 2},
        {"0,\"\",\"\",\"00101\",0", 0, "", "", "00101", 0}, {"1", 1, "", "", "", 3}, {"", 0, "", "", "", 3},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TNetworkListItem item;
        item.nState = 99;
        CNetworkUtility::ParseItemString(row.text, item);
        EXPECT_EQ(item.nValid, 1);
        EXPECT_EQ(item.nState, row.state);
        EXPECT_STREQ(item.szLongName, row.longName);
        EXPECT_STREQ(item.szShortName, row.shortName);
        EXPECT_STREQ(item.szNumericName, row.numeric);
        EXPECT_EQ(item.nAcT, row.act);
    }
}

TEST_F(NetworkUtilityTest, ListStopsAtTheModeListsOrALongItem) {
    const std::string longItem = "(2,\"Acme Telecommunications Group\",\"ACME\",\"00101\",2)"; // 50 inside
    // clang-format off
    struct Row { std::string answer; int result; std::vector<std::string> numerics; };
    const Row rows[] = {
        {Answer("+COPS: (2,\"Acme Mobile\",\"ACME\",\"00101\",2),(1,\"Beta Tel\",\"BETA\",\"00102\",0),(3,\"Gamma\",\"GAM\",\"00103\",2),,(0,1,2,3,4),(0,1,2)"), 0, {"00101", "00102", "00103"}},
        {Answer("+COPS: (2,\"Acme Mobile\",\"ACME\",\"00101\",2), (1,\"Beta Tel\",\"BETA\",\"00102\",0),,(0-4),(0-2)"), 0, {"00101", "00102"}},
        {Answer("+COPS: (2,\"Acme\",\"ACME\",\"00101\",2)," + longItem + ",(1,\"Beta\",\"BETA\",\"00102\",0),,(0,1)"), 0, {"00101"}},
        {Answer("+COPS: (2,\"Acme\",\"ACME\",\"00101\",2),(1,\"Beta\",\"BETA\",\"00102\",0)"), 0, {"00101", "00102"}},
        {Answer("+COPS: (2,\"Acme\",\"ACME\",\"00101\",2),(1,\"Beta\",\"BETA\",\"00102\""), 0, {"00101"}},
        {Answer("+COPS: ,,(0,1,2,3,4),(0,1,2)"), 0, {}}, {"\r\n+CME ERROR: no network service\r\n", 1, {}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+COPS=?\r", row.answer).WithTimeout(180000).WithPrefix("+COPS: ");
        std::list<TNetworkListItem> items;
        EXPECT_EQ(m_network.GetList(items), row.result);
        std::vector<std::string> numerics;
        for (const TNetworkListItem& item : items)
            numerics.push_back(item.szNumericName);
        EXPECT_EQ(numerics, row.numerics);
    }

    m_fake.ExpectFailure("AT+COPS=?\r", 2);
    std::list<TNetworkListItem> items;
    EXPECT_EQ(m_network.GetList(items), 2);
    EXPECT_TRUE(items.empty());
}

TEST_F(NetworkUtilityTest, SetBuildsTheCopsCommandFromTheMask) {
    // clang-format off
    // command: nullptr: nothing is sent
    struct Row { int mask; int mode; int format; const char* oper; int act; const char* command; int result; };
    const Row rows[] = {
        {1, 0, 0, nullptr, 0, "AT+COPS=0\r", 0}, {1 | 2 | 4 | 8, 1, 2, "46000", 2, "AT+COPS=1,2,\"46000\",2\r", 0},
        {1 | 2 | 4, 1, 0, "Acme Mobile", 0, "AT+COPS=1,0,\"Acme Mobile\"\r", 0}, {1 | 2 | 4, 4, 1, "ACME", 0, "AT+COPS=4,1,\"ACME\"\r", 0},
        {1 | 2 | 4, 1, 2, nullptr, 0, "AT+COPS=1,2\r", 0},
        {1 | 8, 0, 0, nullptr, 2, "AT+COPS=0,,2\r", 0}, // the single comma is kept
        {8, 0, 0, nullptr, 0, "AT+COPS=,,0\r", 0}, {1 | 4, 1, 2, "46000", 0, "AT+COPS=1,\"46000\"\r", 0},
        {1 | 4 | 8, 1, 2, "46000", 0, "AT+COPS=1,\"46000\",0\r", 0}, {2, 0, 2, nullptr, 0, "AT+COPS=,2\r", 0},
        {1 | 2 | 4, 1, 2, "4600012", 0, nullptr, 1}, {1 | 2 | 4, 1, 1, "Acme Mobile", 0, nullptr, 1},
        {1 | 2 | 4, 1, 0, "Seventeen chars!!", 0, nullptr, 1}, {1 | 4, 1, 3, "46000", 0, nullptr, 1}, {1 | 2, 1, 3, nullptr, 0, nullptr, 1},
        {1 | 8, 1, 0, nullptr, 7, nullptr, 1}, {0, 1, 2, "46000", 2, nullptr, 0}, {1, 5, 0, nullptr, 0, nullptr, 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "mask " << row.mask << " mode " << row.mode << " format " << row.format);
        if (row.command != nullptr)
            m_fake.Expect(row.command).WithTimeout(180000).WithoutPrefix();
        EXPECT_EQ(m_network.Set(row.mask, row.mode, row.format, row.oper, row.act), row.result);
        m_fake.VerifyDone();
    }

    m_fake.Expect("AT+COPS=0\r", "\r\n+CME ERROR: no network service\r\n");
    EXPECT_EQ(m_network.Set(1, 0, 0, nullptr, 0), 1);
    m_fake.ExpectFailure("AT+COPS=0\r", 2);
    EXPECT_EQ(m_network.Set(1, 0, 0, nullptr, 0), 2);
}

TEST(NetworkUtilityParse, CheckNameLimitsByFormat) {
    EXPECT_EQ(CNetworkUtility::CheckName(0, "Sixteen chars ok"), 1);
    EXPECT_EQ(CNetworkUtility::CheckName(0, "Seventeen chars!!"), 0);
    EXPECT_EQ(CNetworkUtility::CheckName(1, "ACMEACME"), 1);
    EXPECT_EQ(CNetworkUtility::CheckName(1, "ACMEACME1"), 0);
    EXPECT_EQ(CNetworkUtility::CheckName(2, "310260"), 1);
    EXPECT_EQ(CNetworkUtility::CheckName(2, "3102601"), 0);
    EXPECT_EQ(CNetworkUtility::CheckName(3, "1"), 0);
    EXPECT_EQ(CNetworkUtility::CheckName(0, nullptr), 0);
}

TEST_F(NetworkUtilityTest, RegistrationStatesMapThroughTheTable) {
    // clang-format off
    struct Row { int which; std::string answer; int result; int state; };
    const Row rows[] = {
        {0, Answer("+CREG: 0,0"), 0, 0}, {0, Answer("+CREG: 0,1"), 0, 3}, {0, Answer("+CREG: 0,2"), 0, 1}, {0, Answer("+CREG: 0,3"), 0, 2},
        {0, Answer("+CREG: 0,4"), 0, 5}, {0, Answer("+CREG: 0,5"), 0, 4},
        {0, Answer("+CREG: 0,6"), 0, 5}, // unknown stat: default, still 0
        {0, Answer("+CREG: 0, 1"), 0, 3}, {0, Answer("+CREG: 2,1,\"1A2B\",\"00C3D4\",2"), 0, 3},
        {0, "\r\n+CREG: 1,\"1A2B\",\"00C3D4\"\r\n+CREG: 2,5\r\n\r\nOK\r\n", 0, 4}, {0, Answer("+CREG: 1"), 1, 5}, {0, "\r\nOK\r\n", 1, 5},
        {7, Answer("+CREG: 0,5"), 0, 4}, {1, Answer("+CGREG: 0,1"), 0, 3}, {1, Answer("+CGREG: 2,5,\"1A2B\",\"00C3D4\",2"), 0, 4},
        {1, Answer("+CREG: 0,1"), 1, 5},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        if (row.which == 1)
            m_fake.Expect("AT+CGREG?\r", row.answer).WithTimeout(3000).WithPrefix("+CGREG: ");
        else
            m_fake.Expect("AT+CREG?\r", row.answer).WithTimeout(3000).WithPrefix("+CREG: ");
        int state = -1;
        EXPECT_EQ(m_network.GetRegState(row.which, state), row.result);
        EXPECT_EQ(state, row.state);
    }
}

TEST_F(NetworkUtilityTest, PacketAttachState) {
    // clang-format off
    struct Row { std::string answer; int result; int state; };
    const Row rows[] = {
        {Answer("+CGATT: 1"), 0, 1}, {Answer("+CGATT: 0"), 0, 2}, {Answer("+CGATT: 3"), 0, 0}, {Answer("+CGATT:1"), 1, 0},  {"\r\nERROR\r\n", 1, 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+CGATT?\r", row.answer).WithTimeout(3000).WithPrefix("+CGATT: ");
        int state = -1;
        EXPECT_EQ(m_network.GetPSAttachState(state), row.result);
        EXPECT_EQ(state, row.state);
    }
}

TEST_F(NetworkUtilityTest, SystemSelectionReadsBandModeAndDomain) {
    // clang-format off
    struct Row { std::string answer; int result; int band; int mode; int domain; };
    const Row rows[] = {
        {Answer("+SYSSEL: 0,0,0,2"), 0, 0, 0, 2}, {Answer("+SYSSEL: 1,2,0,1"), 0, 1, 1, 1},
        {Answer("+SYSSEL: 3,0,1,0"), 0, 3, 2, 0}, {Answer("+SYSSEL: 0,1,0,2"), 0, 0, 3, 2},
        {Answer("+SYSSEL: 0,0,2,2"), 0, 0, 4, 2}, {Answer("+SYSSEL: 0, 2, 0, 3"), 0, 0, 1, 3},
        {Answer("+SYSSEL: 0,1,1,2"), 0, 0, 5, 2}, // pair in no row
        {Answer("+SYSSEL: 0,2,0"), 1, -1, 5, -1}, {"\r\nERROR\r\n", 1, -1, 5, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        for (int i = 0; i < 3; ++i)
            m_fake.Expect("AT+SYSSEL?\r", row.answer).WithTimeout(1000).WithPrefix("+SYSSEL:");
        int band = -1;
        int mode = -1;
        int domain = -1;
        EXPECT_EQ(m_network.GetBand(band), row.result);
        EXPECT_EQ(m_network.GetMode(mode), row.result);
        EXPECT_EQ(m_network.GetDomain(domain), row.result);
        EXPECT_EQ(band, row.band);
        EXPECT_EQ(mode, row.mode);
        EXPECT_EQ(domain, row.domain);
    }
}

TEST_F(NetworkUtilityTest, SystemSelectionSetCommands) {
    // clang-format off
    struct Row { std::function<int(CNetworkUtility&)> call; const char* command; int result; };
    const Row rows[] = {
        {[](CNetworkUtility& n) { return n.SetBand(3); }, "AT+SYSSEL=3\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(0); }, "AT+SYSSEL=,0,0\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(1); }, "AT+SYSSEL=,2,0\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(2); }, "AT+SYSSEL=,0,1\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(3); }, "AT+SYSSEL=,1,0\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(4); }, "AT+SYSSEL=,0,2\r", 0}, {[](CNetworkUtility& n) { return n.SetMode(5); }, nullptr, 1},
        {[](CNetworkUtility& n) { return n.SetMode(-1); }, nullptr, 1}, {[](CNetworkUtility& n) { return n.SetDomain(2); }, "AT+SYSSEL=,,,2\r", 0},
        {[](CNetworkUtility& n) { return n.Init(); }, "AT+COPS=3,2\r", 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command != nullptr ? ScriptedAtFake::Printable(row.command) : "nothing sent");
        if (row.command != nullptr)
            m_fake.Expect(row.command).WithTimeout(1000).WithoutPrefix();
        EXPECT_EQ(row.call(m_network), row.result);
        m_fake.VerifyDone();
    }
    m_fake.Expect("AT+SYSSEL=9\r", "\r\nERROR\r\n");
    EXPECT_EQ(m_network.SetBand(9), 1);
}

TEST_F(NetworkUtilityTest, BearerByPrefixInTableOrder) {
    // clang-format off
    struct Row { const char* line; int result; int bearer; };
    const Row rows[] = {
        {"+SSND: NO SERVICE", 0, 0}, {"+SSND: GPRS", 0, 1}, {"+SSND: EDGE", 0, 2},  {"+SSND: UMTS", 0, 3},
        {"+SSND: HSDPA", 0, 4},      {"+SSND: HSPA", 0, 5}, {"+SSND: HSPA+", 0, 5}, {"+SSND: HSUPA", 0, 6},
        {"+SSND: GSM", 0, 7},        {"+SSND: LTE", 1, -1}, {"+SSND:HSDPA", 1, -1}, {"+SSND: hsdpa", 1, -1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        m_fake.Expect("AT+SSND?\r", Answer(row.line)).WithTimeout(1000).WithPrefix("+SSND: ");
        int bearer = -1;
        EXPECT_EQ(m_network.GetBearer(bearer), row.result);
        EXPECT_EQ(bearer, row.bearer);
    }
}

TEST(NetworkUtilityParse, Default7BitToWstring) {
    // clang-format off
    struct Row { std::vector<unsigned char> bytes; int size; std::wstring text; int used; };
    const Row rows[] = {
        {{'A', 'c', 'm', 'e'}, 16, L"Acme", 4}, {{0x00, 0x02, 0x11, 0x5B, 0x7F}, 16, L"@$_\u00C4\u00E0", 5}, {{0x1B, 0x65, '5'}, 16, L"\u20AC5", 3},
        {{0x1B, 0x28, 0x1B, 0x29}, 16, L"{}", 4},
        {{0x1B, 'A'}, 16, L" A", 2}, // no extension character: a blank, then the byte itself
        {{'A', 0x1B}, 16, L"A ", 2}, {{0x80, 'A', 0xFF}, 16, L" A ", 3}, {{0x1B, 0x80}, 16, L"  ", 2}, {{'A', 'c', 'm', 'e'}, 2, L"Ac", 2},
        {{0x1B, 0x65, 'x'}, 1, L"\u20AC", 2},
    };
    // clang-format on
    for (const Row& row : rows) {
        wchar_t text[17] = {};
        EXPECT_EQ(CNetworkUtility::Default7BitToWstring(row.bytes.data(), static_cast<int>(row.bytes.size()),
                                                        text, row.size),
                  row.used);
        EXPECT_EQ(std::wstring(text), row.text);
    }
}

TEST_F(NetworkUtilityTest, ServiceProviderNameCodings) {
    std::string fortyGsmBytes = "+SPNM: 00";
    for (int i = 0; i < 39; ++i)
        fortyGsmBytes += " 41";
    std::string fortyUcs2Bytes = "+SPNM: 01 80";
    for (int i = 0; i < 19; ++i)
        fortyUcs2Bytes += " 00 41";
    // clang-format off
    struct Row { std::string answer; int result; int present; int display; std::u16string name; };
    const Row rows[] = {
        {Answer("+SPNM: 01 80 00 41 00 63 00 6D 00 65 FF FF"), 0, 1, 1, u"Acme"}, {Answer("+SPNM: 00800041006300 6d0065ffff"), 0, 1, 0, u"Acme"},
        {Answer("+SPNM: 03 80 04 1F 04 40 FF FF"), 0, 1, 3, u"\u041F\u0440"}, {Answer("+SPNM: 00 41 63 6D 65 FF FF FF"), 0, 1, 0, u"Acme"},
        {Answer("+SPNM: 00 1B 65 31 FF 41"), 0, 1, 0, u"\u20AC1"}, {Answer("+SPNM: 01 81 03 08 C1 41 C2 FF"), 0, 1, 1, u"\u0441A\u0442"},
        {Answer("+SPNM: 01 82 03 04 10 80 81 42 FF"), 0, 1, 1, u"\u0410\u0411B"}, {Answer(fortyGsmBytes), 0, 1, 0, std::u16string(16, u'A')},
        {Answer(fortyUcs2Bytes), 0, 1, 1, std::u16string(7, u'A')}, {Answer("+SPNM: 01"), 0, 1, 1, u""}, {Answer("+SPNM: "), 0, 1, 0, u""},
        {Answer("+SPNM: \"Acme\""), 0, 1, 0, u""}, {"\r\n+SPNM: 0141", 1, 0, 0, u""}, {"\r\nOK\r\n", 1, 0, 0, u""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+SPNM\r", row.answer).WithTimeout(1000).WithPrefix("+SPNM: ");
        TServiceProviderInfo info;
        info.nPresent = 7;
        EXPECT_EQ(m_network.GetSpInfo(info), row.result);
        EXPECT_EQ(info.nPresent, row.present);
        EXPECT_EQ(info.nDisplay, row.display);
        EXPECT_EQ(std::u16string(info.wszSpName), row.name);
        EXPECT_EQ(info.wszSpName[kSpNameSize - 1], 0);
    }
}

TEST_F(NetworkUtilityTest, DisplayListSlotsAndCount) {
    // clang-format off
    struct Row { std::string answer; int count; std::vector<std::string> slots; };
    const Row rows[] = {
        // The network behind the empty entry lies beyond the count: kept.
        {Answer("+SPDI: A3 0E 80 0C 64 F0 00 64 F0 10 FF FF FF 13 00 62"), 3, {"46000", "46001", "", "310260"}},
        {Answer("+SPDI: a30e800c64f00064f010ffffff130062"), 3, {"46000", "46001", "", "310260"}},
        {Answer("+SPDI: A3 05 80 03 64 F0 00"), 1, {"46000"}}, {Answer("+SPDI: A3 0E 80 0C 64 F0 00 64 F0 10"), 4, {"46000", "46001", "", ""}},
        {Answer("+SPDI: A3 02 80 00"), 0, {}}, {Answer("+SPDI: 80 03 64 F0 00"), 0, {}}, {Answer("+SPDI: A3058003"), 0, {}},
        {Answer("+SPDI: A3 05 80 ZZ 64 F0 00"), 0, {}}, {"\r\nOK\r\n", 0, {}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        m_fake.Expect("AT+SPDI\r", row.answer).WithTimeout(5000).WithoutPrefix();
        int count = -1;
        std::vector<TSpdiEntry> entries(2);
        EXPECT_EQ(m_network.GetSPDI(count, entries), 1); // 1 whenever the command went through: kept
        EXPECT_EQ(count, row.count);
        std::vector<std::string> slots;
        for (const TSpdiEntry& entry : entries)
            slots.push_back(entry.data());
        EXPECT_EQ(slots, row.slots);
    }

    // 85 slots announced, more text than the 500 characters read: bounded on both sides.
    std::string huge = "+SPDI: A3FF80FF";
    for (int i = 0; i < 100; ++i)
        huge += "64F000";
    m_fake.Expect("AT+SPDI\r", Answer(huge));
    int count = 0;
    std::vector<TSpdiEntry> entries;
    EXPECT_EQ(m_network.GetSPDI(count, entries), 1);
    ASSERT_EQ(entries.size(), 85u);
    EXPECT_STREQ(entries[81].data(), "46000");
    EXPECT_STREQ(entries[82].data(), "");

    m_fake.ExpectFailure("AT+SPDI\r", 2);
    EXPECT_EQ(m_network.GetSPDI(count, entries), 2);
}

// The nine exchanges of GetInfo, in order.
void ExpectInfoScript(ScriptedAtFake& fake, const std::string& cops, const std::string& creg,
                      const std::string& spnm, const std::string& imsi, const std::string& spdi) {
    fake.Expect("AT+COPS=3,2\r").WithTimeout(1000);
    fake.Expect("AT+COPS?\r", Answer("+COPS: " + cops)).WithTimeout(60000);
    fake.Expect("AT+CSQ\r", Answer("+CSQ: 18,99"));
    fake.Expect("AT+CREG?\r", Answer("+CREG: " + creg));
    fake.Expect("AT+SSND?\r", Answer("+SSND: HSDPA"));
    fake.Expect("AT+CGREG?\r", Answer("+CGREG: 0,5"));
    fake.Expect("AT+SPNM\r", Answer("+SPNM: " + spnm));
    fake.Expect("AT+CIMI\r", Answer(imsi)).WithTimeout(5000).WithoutPrefix();
    fake.Expect("AT+SPDI\r", spdi.empty() ? "\r\nOK\r\n" : Answer("+SPDI: " + spdi));
}

TEST_F(NetworkUtilityTest, InfoGathersEverything) {
    ExpectInfoScript(m_fake, "0,2,\"46000\",2", "0,1", "01 41 63 6D 65 FF", "460001234567890", "");
    TNetworkInfo info;
    EXPECT_EQ(m_network.GetInfo(info), 0);
    EXPECT_EQ(info.nMode, 0);
    EXPECT_EQ(info.nFormat, 2);
    EXPECT_STREQ(info.szOperator, "46000");
    EXPECT_EQ(info.nAcT, 2);
    EXPECT_EQ(info.nRssiLevel, 4);
    EXPECT_EQ(info.nServiceState, 0);
    EXPECT_EQ(info.nBearer, 4);
    EXPECT_EQ(info.nPsRegState, 4);
    EXPECT_EQ(info.spInfo.nPresent, 1);
    EXPECT_EQ(info.spInfo.nDisplay, 1);
    EXPECT_EQ(std::u16string(info.spInfo.wszSpName), u"Acme");
}

TEST_F(NetworkUtilityTest, InfoDisplayRule) {
    // Slots 46001, empty, 310260, 46002; the count of 3 leaves 46002 out.
    const char* spdi = "A3 0E 80 0C 64 F0 10 FF FF FF 13 00 62 64 F0 20";
    // clang-format off
    struct Row { const char* name; const char* oper; const char* simByte; const char* spdi; int display; };
    const Row rows[] = {
        {"home by IMSI, bit 0 set", "46000", "01", "", 1}, {"home by IMSI, bit 0 clear", "46000", "02", "", 2},
        {"home by the display list", "46001", "02", spdi, 2}, {"home abroad by the display list", "310260", "02", spdi, 2},
        {"listed behind an empty slot, beyond the count", "46002", "02", spdi, 1}, {"same country, byte zero", "46003", "00", spdi, 2},
        {"abroad", "26201", "01", "", 3},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ExpectInfoScript(m_fake, std::string("0,2,\"") + row.oper + "\",2", "0,1",
                         std::string(row.simByte) + " 41 FF", "460001234567890", row.spdi);
        TNetworkInfo info;
        EXPECT_EQ(m_network.GetInfo(info), 0);
        EXPECT_EQ(info.spInfo.nDisplay, row.display);
        m_fake.VerifyDone();
    }
}

TEST_F(NetworkUtilityTest, InfoServiceStateAndDefaults) {
    struct Row {
        std::string creg; // empty: the command fails
        int serviceState;
    };
    const Row rows[] = {{"0,1", 0}, {"0,5", 1}, {"0,2", 2}, {"0,0", 3}, {"0,3", 3}, {"0,4", 4}, {"", 4}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.creg);
        // No operator name: the provider name is not asked for.
        m_fake.Expect("AT+COPS=3,2\r");
        m_fake.Expect("AT+COPS?\r", Answer("+COPS: 0"));
        m_fake.ExpectFailure("AT+CSQ\r", 2);
        if (row.creg.empty())
            m_fake.ExpectFailure("AT+CREG?\r", 2);
        else
            m_fake.Expect("AT+CREG?\r", Answer("+CREG: " + row.creg));
        m_fake.Expect("AT+SSND?\r", Answer("+SSND: LTE"));
        m_fake.ExpectFailure("AT+CGREG?\r", 2);
        TNetworkInfo info;
        info.spInfo.nPresent = 1;
        EXPECT_EQ(m_network.GetInfo(info), 0);
        EXPECT_EQ(info.nServiceState, row.serviceState);
        EXPECT_EQ(info.nRssiLevel, 6);
        EXPECT_EQ(info.nBearer, 8);
        EXPECT_EQ(info.nPsRegState, 5);
        EXPECT_EQ(info.nFormat, 3);
        EXPECT_EQ(info.spInfo.nPresent, 0);
        m_fake.VerifyDone();
    }

    // A provider name the modem cannot read clears the record and ends the gathering.
    m_fake.Expect("AT+COPS=3,2\r");
    m_fake.Expect("AT+COPS?\r", Answer("+COPS: 0,2,\"46000\",2"));
    m_fake.Expect("AT+CSQ\r", Answer("+CSQ: 99,99"));
    m_fake.Expect("AT+CREG?\r", Answer("+CREG: 0,1"));
    m_fake.Expect("AT+SSND?\r", Answer("+SSND: UMTS"));
    m_fake.Expect("AT+CGREG?\r", Answer("+CGREG: 0,1"));
    m_fake.Expect("AT+SPNM\r", "\r\n+CME ERROR: SIM failure\r\n");
    TNetworkInfo info;
    EXPECT_EQ(m_network.GetInfo(info), 0);
    EXPECT_EQ(info.nRssiLevel, 0);
    EXPECT_EQ(info.nBearer, 3);
    EXPECT_EQ(info.spInfo.nPresent, 0);
}

TEST_F(NetworkUtilityTest, InfoFailsOnlyWhenTheOperatorCannotBeRead) {
    m_fake.Expect("AT+COPS=3,2\r", "\r\nERROR\r\n");
    TNetworkInfo info;
    EXPECT_EQ(m_network.GetInfo(info), 1);
    m_fake.VerifyDone();

    m_fake.Expect("AT+COPS=3,2\r");
    m_fake.ExpectFailure("AT+COPS?\r", 30);
    EXPECT_EQ(m_network.GetInfo(info), 2);
    m_fake.VerifyDone();

    m_fake.Expect("AT+COPS=3,2\r");
    m_fake.Expect("AT+COPS?\r", "\r\n+CME ERROR: SIM not inserted\r\n");
    EXPECT_EQ(m_network.GetInfo(info), 1);
}

} // namespace
