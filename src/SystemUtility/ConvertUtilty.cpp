#include "ConvertUtilty.h"

#include "LocalizedStrings.h"

#include <algorithm>

namespace {

constexpr quint64 kKilo = 1024;
constexpr quint64 kMega = kKilo * 1024;
constexpr quint64 kGiga = kMega * 1024;

// Guards against a pattern that keeps reappearing in the rebuilt text.
constexpr qsizetype kMaxReplacements = 1 << 20;
constexpr qsizetype kMaxTextLength = 1 << 24;

void appendWide(QString& out, wchar_t c) {
    const auto code = static_cast<uint32_t>(c);
    if (code <= 0xFFFF) {
        out.append(QChar(static_cast<char16_t>(code)));
    } else if (code <= 0x10FFFF) {
        const char32_t point = code;
        out.append(QString::fromUcs4(&point, 1));
    } else {
        out.append(QChar(QChar::ReplacementCharacter));
    }
}

} // namespace

QString ConvertUtilty::byte2String(quint64 bytes) {
    if (bytes >= kGiga) {
        return QString::asprintf("%1.3f G", static_cast<double>(bytes) / static_cast<double>(kGiga));
    }
    if (bytes >= kMega) {
        return QString::asprintf("%1.1f M", static_cast<double>(bytes) / static_cast<double>(kMega));
    }
    if (bytes >= kKilo) {
        return QString::asprintf("%1.1f K", static_cast<double>(bytes) / static_cast<double>(kKilo));
    }
    return QString::asprintf("%d ", static_cast<int>(bytes));
}

QString ConvertUtilty::byte2bString(quint64 bytes) {
    return byte2String(bytes);
}

double ConvertUtilty::byte2KB(quint64 bytes) {
    return static_cast<double>(bytes >> 10);
}

QString ConvertUtilty::secondToTimeFormat(unsigned int seconds) {
    const unsigned int hours = seconds / 3600;
    const unsigned int minutes = (seconds % 3600) / 60;
    const unsigned int rest = seconds % 60;
    if (hours < 99) {
        return QString::asprintf("%02u:%02u:%02u", hours, minutes, rest);
    }
    return QString::asprintf("%u:%02u:%02u", hours, minutes, rest);
}

QString ConvertUtilty::NetworkServiceToString(int accessTechnology) {
    switch (accessTechnology) {
    case 0:
        return QStringLiteral("GSM");
    case 1:
        return QStringLiteral("GSMCOMPACT");
    case 2:
        return QStringLiteral("UMTS");
    default:
        return QStringLiteral("");
    }
}

QString ConvertUtilty::NetworkStateToString(int state) {
    switch (state) {
    case 1:
        return LocalizedStrings::text(QStringLiteral("IDS_AVAILABLE"));
    case 2:
        return LocalizedStrings::text(QStringLiteral("IDS_CURRENT"));
    case 3:
        return LocalizedStrings::text(QStringLiteral("IDS_FORBIDDEN"));
    default:
        return QStringLiteral("");
    }
}

QString ConvertUtilty::BearerStateToString(int bearer) {
    static const char* const names[] = {"GPRS", "EDGE", "UMTS", "HSDPA", "HSPA", "HSUPA"};
    if (bearer < 1 || bearer > 6) {
        return QStringLiteral("");
    }
    return QString::fromLatin1(names[bearer - 1]);
}

bool ConvertUtilty::isTelNumerString(const QString& text) {
    if (text.size() > 20 || text.isEmpty()) {
        return false;
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        const bool digit = c >= u'0' && c <= u'9';
        if (!digit && !(c == u'+' && i == 0)) {
            return false;
        }
    }
    return true;
}

QString ConvertUtilty::stringReplaceTO(const QString& text, const QString& pattern,
                                       const QString& replacement) {
    if (text.isNull() || pattern.isEmpty()) {
        return text;
    }
    if (replacement.contains(pattern)) {
        return QString(text).replace(pattern, replacement);
    }
    QString result = text;
    qsizetype from = 0;
    for (qsizetype done = 0; done < kMaxReplacements && result.size() <= kMaxTextLength; ++done) {
        const qsizetype at = result.indexOf(pattern, from);
        if (at < 0) {
            break;
        }
        result.replace(at, pattern.size(), replacement);
        // Nothing before the replaced range matched, so a new match starts at most one pattern back.
        from = std::max<qsizetype>(0, at - pattern.size() + 1);
    }
    return result;
}

QString ConvertUtilty::stringReplaceFristTO(const QString& text, const QString& pattern,
                                            const QString& replacement) {
    if (text.isNull() || pattern.isEmpty()) {
        return text;
    }
    const qsizetype at = text.indexOf(pattern);
    if (at < 0) {
        return text;
    }
    return QString(text).replace(at, pattern.size(), replacement);
}

QString ConvertUtilty::DateStringWithoutHMS(const QDateTime& date) {
    const QDateTime local = date.toLocalTime();
    const QDate day = local.date();
    const QTime time = local.time();
    return QString::asprintf("%02d/%02d/%04d %02d:%02d:%02d", day.day(), day.month(), day.year(), time.hour(),
                             time.minute(), time.second());
}

QString ConvertUtilty::DateStringWithoutZone(const QDateTime& date) {
    const QString text = stringReplaceTO(standardDateText(date), QStringLiteral("-"), QStringLiteral("/"));
    const qsizetype lastSpace = text.lastIndexOf(QLatin1Char(' '));
    if (lastSpace < 0) {
        return QStringLiteral("");
    }
    return text.left(lastSpace + 1);
}

QString ConvertUtilty::standardDateText(const QDateTime& date) {
    const QDateTime local = date.toLocalTime();
    const int offset = local.offsetFromUtc();
    const int minutes = (offset < 0 ? -offset : offset) / 60;
    return local.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss ")) +
           QString::asprintf("%c%02d%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

bool ConvertUtilty::NSStringBOOLToBOOL(const QString& text) {
    return text == QLatin1String("TRUE");
}

QString ConvertUtilty::BOOLToNSStringBOOL(bool value) {
    return value ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
}

std::unique_ptr<char16_t[]> ConvertUtilty::NstringtoUnistr(const QString& text) {
    if (text.isNull()) {
        return nullptr;
    }
    const auto size = static_cast<std::size_t>(text.size());
    auto buffer = std::make_unique<char16_t[]>(size + 1); // value-initialised: zero-filled
    std::copy_n(text.utf16(), size, buffer.get());
    return buffer;
}

QString ConvertUtilty::UnistrtoNstring(const char16_t* text, std::size_t maxUnits) {
    if (!text) {
        return {};
    }
    std::size_t length = 0;
    while (length < maxUnits && text[length] != 0) {
        ++length;
    }
    return QString(reinterpret_cast<const QChar*>(text), static_cast<qsizetype>(length));
}

QString ConvertUtilty::UnistrtoNstring(const uint16_t* text, std::size_t maxUnits) {
    return UnistrtoNstring(reinterpret_cast<const char16_t*>(text), maxUnits);
}

std::unique_ptr<wchar_t[]> ConvertUtilty::NSStringToWCharString(const QString& text) {
    if (text.isNull()) {
        return nullptr;
    }
    const auto size = static_cast<std::size_t>(text.size());
    auto buffer = std::make_unique<wchar_t[]>(size + 1);
    const auto* units = text.utf16();
    for (std::size_t i = 0; i < size; ++i) {
        buffer[i] = static_cast<wchar_t>(units[i]);
    }
    return buffer;
}

QString ConvertUtilty::wcStringtoNstring(const wchar_t* text, std::size_t maxChars) {
    if (!text) {
        return {};
    }
    QString out;
    for (std::size_t i = 0; i < maxChars && text[i] != 0; ++i) {
        appendWide(out, text[i]);
    }
    return out.isNull() ? QStringLiteral("") : out;
}

std::wstring ConvertUtilty::toWString(const QString& text) {
    std::wstring out;
    out.reserve(static_cast<std::size_t>(text.size()));
    for (const QChar c : text) {
        out.push_back(static_cast<wchar_t>(c.unicode()));
    }
    return out;
}

QString ConvertUtilty::fromWString(const std::wstring& text) {
    QString out;
    out.reserve(static_cast<qsizetype>(text.size()));
    for (const wchar_t c : text) {
        appendWide(out, c);
    }
    return out;
}
