#include "ConvertUtilty.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

// What each function makes of one input, as text.
TEST(ConvertUtilty, SizesDurationsNumbersAndStates) {
    using C = ConvertUtilty;
    const auto size = [](quint64 bytes) { // both forms agree
        const QString text = C::byte2String(bytes);
        return (text == C::byte2bString(bytes) ? text : text + " or " + C::byte2bString(bytes)).toStdString();
    };
    const auto time = [](unsigned int seconds) { return C::secondToTimeFormat(seconds).toStdString(); };
    const auto tel = [](const char* t) { return C::isTelNumerString(QString::fromUtf8(t)) ? "+" : "-"; };
    // From -1 to 7: numbers outside the modem's tables have no text.
    const auto names = [](QString (*name)(int)) {
        QStringList out;
        for (int i = -1; i < 8; ++i)
            out << name(i);
        return out.join(',').toStdString();
    };
    // clang-format off
    const struct { std::string got; const char* expected; } rows[] = {
        {size(0), "0 "}, {size(1023), "1023 "}, {size(1024), "1.0 K"}, {size(1536), "1.5 K"}, {size(1048575), "1024.0 K"}, {size(1048576), "1.0 M"},
        {size(1073741823), "1024.0 M"}, {size(1073741824), "1.000 G"}, {size(5ULL * 1073741824 + 536870912), "5.500 G"}, {size(~0ULL), "17179869184.000 G"},
        {time(0), "00:00:00"}, {time(59), "00:00:59"}, {time(3661), "01:01:01"}, {time(98 * 3600 + 59 * 60 + 59), "98:59:59"}, {time(356400), "99:00:00"},
        {time(100 * 3600 + 5), "100:00:05"}, {time(4294967295u), "1193046:28:15"},
        {tel("+4917012345678"), "+"} /* plus and 13 digits */, {tel("12345678901234567890"), "+"}, {tel("123456789012345678901"), "-"} /* 21 digits */,
        {tel(""), "-"}, {tel("+"), "+"}, {tel("0049+170"), "-"}, {tel("++49"), "-"}, {tel("0170 123"), "-"}, {tel("*100#"), "-"},
        {tel("\xd9\xa1\xd9\xa2"), "-"}, // Arabic-Indic digits are not dialled
        {names(C::NetworkServiceToString), ",GSM,GSMCOMPACT,UMTS,,,,,"}, {names(C::NetworkStateToString), ",,Available,Current,Forbidden,,,,"},
        {names(C::BearerStateToString), ",,GPRS,EDGE,UMTS,HSDPA,HSPA,HSUPA,"},
    };
    // clang-format on
    for (size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(rows[i].got, rows[i].expected) << "row " << i;
    EXPECT_EQ(C::byte2KB(2047), 1.0);
    EXPECT_EQ(C::byte2KB(1048576), 1024.0);
}

TEST(ConvertUtilty, Replacement) {
    // clang-format off
    const struct { const char* text; const char* pattern; const char* replacement; const char* all; const char* first; } rows[] = {
        {"My%20APN%20name", "%20", " ", "My APN name", "My APN%20name"},
        {"2024-05-01 10:00:00 -0500", "-", "/", "2024/05/01 10:00:00 /0500", "2024/05-01 10:00:00 -0500"},
        {"aab", "ab", "b", "b", "ab"}, // the rebuilt text is searched again
        {"nothing", "x", "y", "nothing", "nothing"},
        {"a-b", "-", "--", "a--b", "a--b"}, // a replacement holding the pattern: one pass
        {"abc", "", "x", "abc", "abc"},
        {"", "a", "b", "", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ConvertUtilty::stringReplaceTO(row.text, row.pattern, row.replacement).toStdString(),
                  row.all);
        EXPECT_EQ(ConvertUtilty::stringReplaceFristTO(row.text, row.pattern, row.replacement), row.first);
    }
}

TEST(ConvertUtilty, DateTexts) {
    const QByteArray oldTz = qgetenv("TZ");
    qputenv("TZ", "Europe/Berlin");
    const QDateTime summer(QDate(2024, 5, 1), QTime(12, 3, 4), QTimeZone::utc());
    const QDateTime winter(QDate(2023, 12, 31), QTime(23, 30, 0), QTimeZone::utc());

    EXPECT_EQ(ConvertUtilty::standardDateText(summer), "2024-05-01 14:03:04 +0200");
    EXPECT_EQ(ConvertUtilty::DateStringWithoutZone(summer), "2024/05/01 14:03:04 ");
    EXPECT_EQ(ConvertUtilty::DateStringWithoutHMS(summer), "01/05/2024 14:03:04");
    EXPECT_EQ(ConvertUtilty::DateStringWithoutHMS(winter), "01/01/2024 00:30:00");

    qputenv("TZ", "America/New_York");
    EXPECT_EQ(ConvertUtilty::standardDateText(summer), "2024-05-01 08:03:04 -0400");
    EXPECT_EQ(ConvertUtilty::DateStringWithoutZone(summer), "2024/05/01 08:03:04 ");

    oldTz.isNull() ? qunsetenv("TZ") : qputenv("TZ", oldTz);
}

TEST(ConvertUtilty, WideAndUtf16Text) {
    for (const QString& text :
         {QString(""), QStringLiteral("*100#"), QString::fromUtf8("Grüße, €5"), QString::fromUtf8("你好"),
          QString::fromUtf8("smile \xF0\x9F\x98\x80") /* outside the basic plane */}) {
        auto utf16 = ConvertUtilty::NstringtoUnistr(text);
        ASSERT_NE(utf16, nullptr);
        EXPECT_EQ(utf16[text.size()], 0);
        EXPECT_EQ(ConvertUtilty::UnistrtoNstring(utf16.get()), text);

        auto wide = ConvertUtilty::NSStringToWCharString(text);
        ASSERT_NE(wide, nullptr);
        EXPECT_EQ(wide[text.size()], 0);
        EXPECT_EQ(ConvertUtilty::wcStringtoNstring(wide.get()), text);
        EXPECT_EQ(ConvertUtilty::fromWString(ConvertUtilty::toWString(text)), text);
    }
    EXPECT_EQ(ConvertUtilty::NstringtoUnistr(QString()), nullptr);
    EXPECT_EQ(ConvertUtilty::NSStringToWCharString(QString()), nullptr);
    EXPECT_TRUE(ConvertUtilty::wcStringtoNstring(nullptr).isNull());

    // One UTF-16 unit per wchar_t, as the AT layer decodes UCS2: the euro sign and a surrogate pair.
    EXPECT_EQ(ConvertUtilty::toWString(QString::fromUtf8("\xE2\x82\xAC\xF0\x9F\x98\x80")),
              std::wstring({L'\x20AC', L'\xD83D', L'\xDE00'}));
    // A whole code point in one wchar_t is taken too; one beyond Unicode becomes U+FFFD.
    EXPECT_EQ(ConvertUtilty::fromWString(std::wstring({L'a', static_cast<wchar_t>(0x1F600)})),
              QString::fromUtf8("a\xF0\x9F\x98\x80"));
    EXPECT_EQ(ConvertUtilty::fromWString(std::wstring(1, static_cast<wchar_t>(0x110000))),
              QString(QChar(0xFFFD)));

    // Fixed-size fields without a terminator are read up to their size only.
    const char16_t field[4] = {u'A', u'B', u'C', u'D'};
    EXPECT_EQ(ConvertUtilty::UnistrtoNstring(field, 4), "ABCD");
    const wchar_t wfield[3] = {L'x', L'y', L'z'};
    EXPECT_EQ(ConvertUtilty::wcStringtoNstring(wfield, 3), "xyz");
    const uint16_t ucs2[] = {0x004F, 0x0032, 0};
    EXPECT_EQ(ConvertUtilty::UnistrtoNstring(ucs2), "O2");
}
