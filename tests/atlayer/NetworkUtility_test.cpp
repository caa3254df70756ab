#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "NetworkAnswerParsers.h"
#include "NetworkUtility.h"

namespace {

using namespace at_test;
using NetworkUtilityTest = FamilyTest<CNetworkUtility>;

TEST_F(NetworkUtilityTest, SignalLevelAndDbmFromCsq) {
    // "result|level" of the level read, then "result|dbm" of the dBm read of the same answer.
    const auto levelAndDbm = [this] {
        int level = -1, dbm = -1;
        const std::string levelRead = Fields(family.GetRssiLevel(level), level);
        return levelRead + " " + Fields(family.GetSignalDBValue(dbm), dbm);
    };
    // clang-format off
    CheckReads(fake, At("AT+CSQ\r").WithTimeout(1000).WithPrefix("+CSQ: "), levelAndDbm, {
        {Answer("+CSQ: 99,99"), "0|0 0|0"}, {Answer("+CSQ: 0,0"), "0|0 0|114"}, {Answer("+CSQ: 1,99"), "0|0 0|112"}, {Answer("+CSQ: 2,99"), "0|1 0|110"},
        {Answer("+CSQ: 7,99"), "0|1 0|100"}, {Answer("+CSQ: 8,99"), "0|2 0|98"}, {Answer("+CSQ: 11,0"), "0|2 0|92"}, {Answer("+CSQ: 12,0"), "0|3 0|90"},
        {Answer("+CSQ: 15,0"), "0|3 0|84"}, {Answer("+CSQ: 16,0"), "0|4 0|82"}, {Answer("+CSQ: 19,0"), "0|4 0|76"}, {Answer("+CSQ: 20,99"), "0|5 0|74"},
        {Answer("+CSQ: 31,99"), "0|5 0|52"}, {Answer("+CSQ: 40,99"), "0|6 0|34"}, {"AT+CSQ\r\r\n+CSQ: 25,99\r\n\r\nOK\r\n", "0|5 0|64"},
        // Found by fuzzing: 2 * rssi overflows; the figure saturates.
        {Answer("+CSQ: 1807229228,99"), "0|6 0|-2147483648"}, {Answer("+CSQ: -2147483648,99"), "0|6 0|2147483647"}, {Answer("+CSQ: 1073741881,99"), "0|6 0|-2147483648"},
        {Answer("+CSQ:20,99"), "1|6 1|0"}, // the prefix needs its blank
        {Answer("+CSQ: ,99"), "1|6 1|0"}, {"\r\nOK\r\n", "1|6 1|0"}, {"", "2|6 2|0", 2},
    }, 2);
    // clang-format on
}

TEST(NetworkUtilityParse, ItemStringFields) {
    // clang-format off
    const std::pair<std::string, const char*> rows[] = {
        {"2,\"Acme Mobile\",\"ACME\",\"00101\",2", "2|Acme Mobile|ACME|00101|2"}, {"1, \"Acme Mobile\", \"ACME\", \"00101\", 0", "1|Acme Mobile|ACME|00101|0"},
        {"3,\"Acme Mobile\",\"ACME\",\"310260\"", "3|Acme Mobile|ACME|310260|3"}, {"1,\"" + std::string(30, 'N') + "\",\"A\",\"1\",0", "1||A|1|0"},
        {"1,\"Acme\",\"Acme Mobile\",\"1234567\",2", "1|Acme|||2"}, {"0,\"\",\"\",\"00101\",0", "0|||00101|0"}, {"1", "1||||3"}, {"", "0||||3"},
    };
    // clang-format on
    for (const auto& [text, expected] : rows) {
        TNetworkListItem item;
        item.nState = 99;
        CNetworkUtility::ParseItemString(text, item);
        EXPECT_EQ(item.nValid, 1);
        EXPECT_EQ(Fields(item.nState, item.szLongName, item.szShortName, item.szNumericName, item.nAcT),
                  expected)
            << text;
    }
}

TEST_F(NetworkUtilityTest, ListStopsAtTheModeListsOrALongItem) {
    const std::string longItem = "(2,\"Acme Telecommunications Group\",\"ACME\",\"00101\",2)"; // 50 inside
    const auto read = [this] {
        std::list<TNetworkListItem> items;
        std::string numerics = std::to_string(family.GetList(items));
        for (const TNetworkListItem& item : items)
            numerics += std::string("|") + item.szNumericName;
        return numerics;
    };
    // clang-format off
    CheckReads(fake, At("AT+COPS=?\r").WithTimeout(180000).WithPrefix("+COPS: "), read, {
        {Answer("+COPS: (2,\"Acme Mobile\",\"ACME\",\"00101\",2),(1,\"Beta Tel\",\"BETA\",\"00102\",0),(3,\"Gamma\",\"GAM\",\"00103\",2),,(0,1,2,3,4),(0,1,2)"), "0|00101|00102|00103"},
        {Answer("+COPS: (2,\"Acme\",\"ACME\",\"00101\",2)," + longItem + ",(1,\"Beta\",\"BETA\",\"00102\",0),,(0,1)"), "0|00101"},
        {Answer("+COPS: (2,\"Acme\",\"ACME\",\"00101\",2),(1,\"Beta\",\"BETA\",\"00102\""), "0|00101"},
        {Answer("+COPS: ,,(0,1,2,3,4),(0,1,2)"), "0"}, {"\r\n+CME ERROR: no network service\r\n", "1"}, {"", "2", 2},
    });
    // clang-format on
}

TEST_F(NetworkUtilityTest, SetBuildsTheCopsCommandFromTheMask) {
    // clang-format off
    // command: nullptr: nothing is sent
    const struct { int mask; int mode; int format; const char* oper; int act; const char* command; int result; } rows[] = {
        {1, 0, 0, nullptr, 0, "AT+COPS=0\r", 0}, {1 | 2 | 4 | 8, 1, 2, "46000", 2, "AT+COPS=1,2,\"46000\",2\r", 0},
        {1 | 2 | 4, 1, 2, nullptr, 0, "AT+COPS=1,2\r", 0},
        {1 | 8, 0, 0, nullptr, 2, "AT+COPS=0,,2\r", 0}, // the single comma is kept
        {8, 0, 0, nullptr, 0, "AT+COPS=,,0\r", 0}, {1 | 4, 1, 2, "46000", 0, "AT+COPS=1,\"46000\"\r", 0},
        {1 | 4 | 8, 1, 2, "46000", 0, "AT+COPS=1,\"46000\",0\r", 0}, {2, 0, 2, nullptr, 0, "AT+COPS=,2\r", 0},
        {1 | 2 | 4, 1, 2, "4600012", 0, nullptr, 1}, {1 | 2 | 4, 1, 1, "Acme Mobile", 0, nullptr, 1},
        {1 | 4, 1, 3, "46000", 0, nullptr, 1}, {1 | 2, 1, 3, nullptr, 0, nullptr, 1}, {1 | 8, 1, 0, nullptr, 7, nullptr, 1}, {0, 1, 2, "46000", 2, nullptr, 0}, {1, 5, 0, nullptr, 0, nullptr, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "mask " << row.mask << " mode " << row.mode << " format " << row.format);
        if (row.command != nullptr)
            fake.Expect(row.command).WithTimeout(180000).WithoutPrefix();
        EXPECT_EQ(family.Set(row.mask, row.mode, row.format, row.oper, row.act), row.result);
        fake.VerifyDone();
    }
    fake.Expect("AT+COPS=0\r", "\r\n+CME ERROR: no network service\r\n");
    EXPECT_EQ(family.Set(1, 0, 0, nullptr, 0), 1);
    fake.ExpectFailure("AT+COPS=0\r", 2);
    EXPECT_EQ(family.Set(1, 0, 0, nullptr, 0), 2);

    // The name limits by format.
    // clang-format off
    const std::tuple<int, const char*, int> names[] = {{0, "Sixteen chars ok", 1}, {0, "Seventeen chars!!", 0}, {1, "ACMEACME", 1},
        {1, "ACMEACME1", 0}, {2, "310260", 1}, {2, "3102601", 0}, {3, "1", 0}, {0, nullptr, 0}};
    // clang-format on
    for (const auto& [format, name, valid] : names)
        EXPECT_EQ(CNetworkUtility::CheckName(format, name), valid) << format << " " << (name ? name : "null");
}

TEST_F(NetworkUtilityTest, RegistrationStatesMapThroughTheTable) {
    const auto creg = At("AT+CREG?\r").WithTimeout(3000).WithPrefix("+CREG: ");
    // clang-format off
    CheckReads(fake, creg, [this](int& state) { return family.GetRegState(0, state); }, {
        {Answer("+CREG: 0,2"), "0|1"}, {Answer("+CREG: 0, 1"), "0|3"}, {Answer("+CREG: 2,1,\"1A2B\",\"00C3D4\",2"), "0|3"},
        {Answer("+CREG: 0,6"), "0|5"}, // unknown stat: default, still 0
        {"\r\n+CREG: 1,\"1A2B\",\"00C3D4\"\r\n+CREG: 2,5\r\n\r\nOK\r\n", "0|4"}, {Answer("+CREG: 1"), "1|5"}, {"\r\nOK\r\n", "1|5"}});
    CheckReads(fake, creg, [this](int& state) { return family.GetRegState(7, state); }, {{Answer("+CREG: 0,5"), "0|4"}});
    CheckReads(fake, At("AT+CGREG?\r").WithTimeout(3000).WithPrefix("+CGREG: "), [this](int& state) { return family.GetRegState(1, state); }, {
        {Answer("+CGREG: 0,1"), "0|3"}, {Answer("+CGREG: 2,5,\"1A2B\",\"00C3D4\",2"), "0|4"}, {Answer("+CREG: 0,1"), "1|5"}});
    // clang-format on
}

TEST_F(NetworkUtilityTest, PacketAttachStateAndBearer) {
    // clang-format off
    CheckReads(fake, At("AT+CGATT?\r").WithTimeout(3000).WithPrefix("+CGATT: "), [this](int& state) { return family.GetPSAttachState(state); }, {
        {Answer("+CGATT: 1"), "0|1"}, {Answer("+CGATT: 0"), "0|2"}, {Answer("+CGATT: 3"), "0|0"}, {Answer("+CGATT:1"), "1|0"}, {"\r\nERROR\r\n", "1|0"}});
    // The bearer by prefix, in table order: the names that are prefixes of others.
    CheckReads(fake, At("AT+SSND?\r").WithTimeout(1000).WithPrefix("+SSND: "), [this](int& bearer) { return family.GetBearer(bearer); }, {
        {Answer("+SSND: NO SERVICE"), "0|0"}, {Answer("+SSND: HSDPA"), "0|4"}, {Answer("+SSND: HSPA"), "0|5"}, {Answer("+SSND: HSPA+"), "0|5"},
        {Answer("+SSND: HSUPA"), "0|6"}, {Answer("+SSND: LTE"), "1|-1"}, {Answer("+SSND:HSDPA"), "1|-1"}, {Answer("+SSND: hsdpa"), "1|-1"}});
    // clang-format on
}

// A vendor's stick refuses AT+CESQ: it is asked once, and AT+CREG=2 goes out once.
TEST_F(NetworkUtilityTest, SignalReadingsAskForCesqUntilRefused) {
    fake.Expect("AT+CSQ\r", Answer("+CSQ: 18,99")).WithTimeout(1000).WithPrefix("+CSQ");
    fake.Expect("AT+CESQ\r", "\r\nERROR\r\n").WithTimeout(1000).WithPrefix("+CESQ");
    fake.Expect("AT+CREG=2\r").WithTimeout(1000).WithoutPrefix();
    Expect(fake, At("AT+CREG?\r").WithTimeout(3000).WithPrefix("+CREG"),
           Answer("+CREG: 2,1,\"1A2B\",\"00C3D4E5\",2"));
    fake.Expect("AT+SSND?\r", Answer("+SSND: HSDPA")).WithTimeout(1000).WithPrefix("+SSND: ");
    fake.Expect("AT+CSQ\r", Answer("+CSQ: 99,99")).WithTimeout(1000).WithPrefix("+CSQ");
    fake.ExpectFailure("AT+CREG?\r", 2);
    fake.Expect("AT+SSND?\r", Answer("+SSND: NO SERVICE")).WithTimeout(1000).WithPrefix("+SSND: ");
    std::string readings;
    for (int i = 0; i < 2; ++i) {
        TSignalReading r;
        const int result = family.GetSignalReading(r);
        readings += Fields(result, r.csq, r.rscp, r.registration, r.lac, r.ci, r.bearer) + " ";
    }
    EXPECT_EQ(readings, "0|18|255|1|6699|12834021|4 0|99|255|-1|-1|-1|0 ");
    fake.VerifyDone();
}

TEST_F(NetworkUtilityTest, SystemSelectionReadsBandModeAndDomain) {
    // "result|band result|mode result|domain"
    const auto bandModeDomain = [this] {
        int band = -1, mode = -1, domain = -1;
        const std::string bandRead = Fields(family.GetBand(band), band);
        const std::string modeRead = Fields(family.GetMode(mode), mode);
        return bandRead + " " + modeRead + " " + Fields(family.GetDomain(domain), domain);
    };
    // clang-format off
    CheckReads(fake, At("AT+SYSSEL?\r").WithTimeout(1000).WithPrefix("+SYSSEL:"), bandModeDomain, {
        {Answer("+SYSSEL: 0,0,0,2"), "0|0 0|0 0|2"}, {Answer("+SYSSEL: 1,2,0,1"), "0|1 0|1 0|1"}, {Answer("+SYSSEL: 3,0,1,0"), "0|3 0|2 0|0"},
        {Answer("+SYSSEL: 0,1,0,2"), "0|0 0|3 0|2"}, {Answer("+SYSSEL: 0,0,2,2"), "0|0 0|4 0|2"}, {Answer("+SYSSEL: 0, 2, 0, 3"), "0|0 0|1 0|3"},
        {Answer("+SYSSEL: 0,1,1,2"), "0|0 0|5 0|2"}, // pair in no row
        {Answer("+SYSSEL: 0,2,0"), "1|-1 1|5 1|-1"}, {"\r\nERROR\r\n", "1|-1 1|5 1|-1"},
    }, 3);
    // clang-format on
}

TEST_F(NetworkUtilityTest, SystemSelectionSetCommands) {
    // clang-format off
    const struct { std::function<int(CNetworkUtility&)> call; const char* command; int result; } rows[] = {
        {[](CNetworkUtility& n) { return n.SetBand(3); }, "AT+SYSSEL=3\r", 0}, {[](CNetworkUtility& n) { return n.SetMode(0); }, "AT+SYSSEL=,0,0\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(1); }, "AT+SYSSEL=,2,0\r", 0}, {[](CNetworkUtility& n) { return n.SetMode(2); }, "AT+SYSSEL=,0,1\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(3); }, "AT+SYSSEL=,1,0\r", 0}, {[](CNetworkUtility& n) { return n.SetMode(4); }, "AT+SYSSEL=,0,2\r", 0},
        {[](CNetworkUtility& n) { return n.SetMode(5); }, nullptr, 1}, {[](CNetworkUtility& n) { return n.SetMode(-1); }, nullptr, 1},
        {[](CNetworkUtility& n) { return n.SetDomain(2); }, "AT+SYSSEL=,,,2\r", 0}, {[](CNetworkUtility& n) { return n.Init(); }, "AT+COPS=3,2\r", 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command != nullptr ? ScriptedAtFake::Printable(row.command) : "nothing sent");
        if (row.command != nullptr)
            fake.Expect(row.command).WithTimeout(1000).WithoutPrefix();
        EXPECT_EQ(row.call(family), row.result);
        fake.VerifyDone();
    }
    fake.Expect("AT+SYSSEL=9\r", "\r\nERROR\r\n");
    EXPECT_EQ(family.SetBand(9), 1);
}

TEST(NetworkUtilityParse, Default7BitToWstring) {
    // clang-format off
    const struct { std::vector<unsigned char> bytes; int size; std::wstring text; int used; } rows[] = {
        {{'A', 'c', 'm', 'e'}, 16, L"Acme", 4}, {{0x00, 0x02, 0x11, 0x5B, 0x7F}, 16, L"@$_\u00C4\u00E0", 5}, {{0x1B, 0x65, '5'}, 16, L"\u20AC5", 3},
        {{0x1B, 0x28, 0x1B, 0x29}, 16, L"{}", 4},
        {{0x1B, 'A'}, 16, L" A", 2}, // no extension character: a blank, then the byte itself
        {{'A', 0x1B}, 16, L"A ", 2}, {{0x80, 'A', 0xFF}, 16, L" A ", 3}, {{0x1B, 0x80}, 16, L"  ", 2}, {{'A', 'c', 'm', 'e'}, 2, L"Ac", 2},
        {{0x1B, 0x65, 'x'}, 1, L"\u20AC", 2},
    };
    // clang-format on
    for (const auto& row : rows) {
        wchar_t text[17] = {};
        const int size = static_cast<int>(row.bytes.size());
        EXPECT_EQ(CNetworkUtility::Default7BitToWstring(row.bytes.data(), size, text, row.size), row.used);
        EXPECT_EQ(std::wstring(text), row.text);
    }
}

TEST_F(NetworkUtilityTest, ServiceProviderNameCodings) {
    std::string fortyGsmBytes = "+SPNM: 00", fortyUcs2Bytes = "+SPNM: 01 80";
    for (int i = 0; i < 39; ++i)
        fortyGsmBytes += " 41";
    for (int i = 0; i < 19; ++i)
        fortyUcs2Bytes += " 00 41";
    // clang-format off
    const struct { std::string answer; int result; int present; int display; std::u16string name; } rows[] = {
        {Answer("+SPNM: 01 80 00 41 00 63 00 6D 00 65 FF FF"), 0, 1, 1, u"Acme"}, {Answer("+SPNM: 00800041006300 6d0065ffff"), 0, 1, 0, u"Acme"},
        {Answer("+SPNM: 03 80 04 1F 04 40 FF FF"), 0, 1, 3, u"\u041F\u0440"}, {Answer("+SPNM: 00 41 63 6D 65 FF FF FF"), 0, 1, 0, u"Acme"},
        {Answer("+SPNM: 00 1B 65 31 FF 41"), 0, 1, 0, u"\u20AC1"}, {Answer("+SPNM: 01 81 03 08 C1 41 C2 FF"), 0, 1, 1, u"\u0441A\u0442"},
        {Answer("+SPNM: 01 82 03 04 10 80 81 42 FF"), 0, 1, 1, u"\u0410\u0411B"}, {Answer(fortyGsmBytes), 0, 1, 0, std::u16string(16, u'A')},
        {Answer(fortyUcs2Bytes), 0, 1, 1, std::u16string(7, u'A')}, {Answer("+SPNM: 01"), 0, 1, 1, u""}, {Answer("+SPNM: "), 0, 1, 0, u""},
        {Answer("+SPNM: \"Acme\""), 0, 1, 0, u""}, {"\r\n+SPNM: 0141", 1, 0, 0, u""}, {"\r\nOK\r\n", 1, 0, 0, u""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        fake.Expect("AT+SPNM\r", row.answer).WithTimeout(1000).WithPrefix("+SPNM: ");
        TServiceProviderInfo info;
        info.nPresent = 7;
        const int result = family.GetSpInfo(info);
        EXPECT_EQ(Fields(result, info.nPresent, info.nDisplay), Fields(row.result, row.present, row.display));
        EXPECT_EQ(std::u16string(info.wszSpName), row.name);
        EXPECT_EQ(info.wszSpName[kSpNameSize - 1], 0);
    }
}

TEST_F(NetworkUtilityTest, InfoDisplayRule) {
    // Slots 46001, empty, 310260, 46002; the count of 3 leaves 46002 out.
    const char* spdi = "A3 0E 80 0C 64 F0 10 FF FF FF 13 00 62 64 F0 20";
    // clang-format off
    const struct { const char* name; const char* oper; const char* simByte; const char* spdi; int display; } rows[] = {
        {"home by IMSI, bit 0 set", "46000", "01", "", 1}, {"home by IMSI, bit 0 clear", "46000", "02", "", 2},
        {"home by the display list", "46001", "02", spdi, 2}, {"home abroad by the display list", "310260", "02", spdi, 2},
        {"listed behind an empty slot, beyond the count", "46002", "02", spdi, 1}, {"same country, byte zero", "46003", "00", spdi, 2},
        {"abroad", "26201", "01", "", 3},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        fake.Expect("AT+COPS=3,2\r").WithTimeout(1000);
        fake.Expect("AT+COPS?\r", Answer(std::string("+COPS: 0,2,\"") + row.oper + "\",2"))
            .WithTimeout(60000);
        fake.Expect("AT+CSQ\r", Answer("+CSQ: 18,99"));
        fake.Expect("AT+CREG?\r", Answer("+CREG: 0,1"));
        fake.Expect("AT+SSND?\r", Answer("+SSND: HSDPA"));
        fake.Expect("AT+CGREG?\r", Answer("+CGREG: 0,5"));
        fake.Expect("AT+SPNM\r", Answer(std::string("+SPNM: ") + row.simByte + " 41 FF"));
        fake.Expect("AT+CIMI\r", Answer("460001234567890")).WithTimeout(5000).WithoutPrefix();
        fake.Expect("AT+SPDI\r",
                    *row.spdi == '\0' ? "\r\nOK\r\n" : Answer(std::string("+SPDI: ") + row.spdi));
        TNetworkInfo info;
        EXPECT_EQ(family.GetInfo(info), 0);
        EXPECT_EQ(info.spInfo.nDisplay, row.display);
        fake.VerifyDone();
    }
}

TEST_F(NetworkUtilityTest, InfoFailsOnlyWhenTheOperatorCannotBeRead) {
    TNetworkInfo info;
    fake.Expect("AT+COPS=3,2\r", "\r\nERROR\r\n");
    EXPECT_EQ(family.GetInfo(info), 1);
    fake.Expect("AT+COPS=3,2\r");
    fake.ExpectFailure("AT+COPS?\r", 30);
    EXPECT_EQ(family.GetInfo(info), 2);
    fake.Expect("AT+COPS=3,2\r");
    fake.Expect("AT+COPS?\r", "\r\n+CME ERROR: SIM not inserted\r\n");
    EXPECT_EQ(family.GetInfo(info), 1);
}

} // namespace
