#pragma once

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

// Display texts for byte counts, durations, dates and network states, and conversions between QString,
// wide text (32-bit wchar_t, as the AT layer passes it) and zero-terminated UTF-16. Stateless.
//
// Wide text from the AT layer holds one UTF-16 code unit per wchar_t (so a character outside the basic
// plane arrives as two surrogates); a wchar_t above 0xFFFF is taken as a whole code point instead.
class ConvertUtilty {
public:
    // Byte sizes: "1.000 G" from 2^30, "1.0 M" from 2^20, "1.0 K" from 1024, else "1023 " (trailing
    // space); callers append the unit ("B", "B/S").
    static QString byte2String(quint64 bytes);
    static QString byte2bString(quint64 bytes);
    static double byte2KB(quint64 bytes);

    // "01:01:01"; from 99 hours on the hours take as many digits as they need.
    static QString secondToTimeFormat(unsigned int seconds);

    // Access technology 0 "GSM", 1 "GSMCOMPACT", 2 "UMTS"; operator-list state 1 available, 2 current,
    // 3 forbidden (translated); bearer 1 "GPRS" .. 6 "HSUPA". Any other code gives "".
    static QString NetworkServiceToString(int accessTechnology);
    static QString NetworkStateToString(int state);
    static QString BearerStateToString(int bearer);

    // At most 20 characters, not empty, ASCII digits only, "+" allowed as the first character.
    static bool isTelNumerString(const QString& text);

    // Replaces the first occurrence, searches the rebuilt text again, until the pattern is gone (so
    // "aab" with "ab" -> "b" gives "b"). A replacement that contains the pattern is applied in one pass.
    static QString stringReplaceTO(const QString& text, const QString& pattern, const QString& replacement);
    static QString stringReplaceFristTO(const QString& text, const QString& pattern,
                                        const QString& replacement);

    // "dd/MM/yyyy hh:mm:ss" in local time (the time is kept in spite of the name).
    static QString DateStringWithoutHMS(const QDateTime& date);
    // The standard text with "/" for "-" and the zone cut off after the last space: "2024/05/01 14:00:00 ".
    static QString DateStringWithoutZone(const QDateTime& date);
    // The standard text of a date: local time and its offset, "2024-05-01 14:00:00 +0200".
    static QString standardDateText(const QDateTime& date);

    static bool NSStringBOOLToBOOL(const QString& text); // true only for "TRUE"
    static QString BOOLToNSStringBOOL(bool value);       // "TRUE" / "FALSE"

    // Zero-terminated UTF-16 copy (length + 1 units, zero-filled); nullptr for a null string.
    static std::unique_ptr<char16_t[]> NstringtoUnistr(const QString& text);
    // Reads up to the terminator, or at most maxUnits units of a fixed-size field.
    static QString UnistrtoNstring(const char16_t* text, std::size_t maxUnits = SIZE_MAX);
    static QString UnistrtoNstring(const uint16_t* text, std::size_t maxUnits = SIZE_MAX);

    // Zero-terminated wide copy, one UTF-16 unit per wchar_t; nullptr for a null string.
    static std::unique_ptr<wchar_t[]> NSStringToWCharString(const QString& text);
    static QString wcStringtoNstring(const wchar_t* text, std::size_t maxChars = SIZE_MAX);

    // The same conversions for std::wstring.
    static std::wstring toWString(const QString& text);
    static QString fromWString(const std::wstring& text);
};
