#include "NetworkAnswerParsers.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "FamilyCommand.h"
#include "Gsm7BitAlphabet.h"

namespace {

constexpr std::size_t kMaxListItemLength = 45;
constexpr int kMaxOperatorLength = 16;
constexpr int kSpnBytes = 17;  // EF-SPN: display byte and 16 name bytes
constexpr int kSpdiText = 501; // at most 500 hexadecimal characters

// The line of text that starts at at, without its "\r\n".
std::string LineAt(const std::string& text, std::size_t at) {
    const std::size_t end = text.find("\r\n", at);
    return text.substr(at, end == std::string::npos ? std::string::npos : end - at);
}

int HexValue(char ch) {
    if (ch >= '0' && ch <= '9')
        return ch - '0';
    if (ch >= 'A' && ch <= 'F')
        return ch - 'A' + 10;
    if (ch >= 'a' && ch <= 'f')
        return ch - 'a' + 10;
    return -1;
}

// The byte of two hexadecimal characters, or -1.
int HexByte(char high, char low) {
    const int h = HexValue(high);
    const int l = HexValue(low);
    return h < 0 || l < 0 ? -1 : h * 16 + l;
}

// EF-SPN in hexadecimal, blanks allowed: display byte, then the name as a SIM alpha identifier. Marks info
// present.
void DecodeSpnHex(std::string_view text, TServiceProviderInfo& info) {
    // Only the first 17 bytes count; a longer answer is simply cut.
    char hex[kSpnBytes * 2 + 1] = {};
    CopyWithoutBlanks(text, hex, sizeof hex);
    unsigned char bytes[kSpnBytes] = {};
    int count = 0;
    for (int i = 0; count < kSpnBytes && hex[i] != '\0' && hex[i + 1] != '\0'; i += 2) {
        const int byte = HexByte(hex[i], hex[i + 1]);
        if (byte < 0)
            break;
        bytes[count++] = static_cast<unsigned char>(byte);
    }
    if (count > 0)
        info.nDisplay = bytes[0];
    if (count >= 2)
        DecodeSimAlphaIdentifier(bytes + 1, count - 1, info.wszSpName, kSpNameSize - 1);
    info.nPresent = 1;
}

// The fields of one operator item, split at the commas outside quotes, each without its quotes.
std::vector<std::string> ItemFields(std::string_view item) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (const char ch : item) {
        if (ch == '"')
            quoted = !quoted;
        else if (ch == ',' && !quoted)
            fields.emplace_back();
        else if (quoted || ch != ' ')
            fields.back().push_back(ch);
    }
    return fields;
}

// The UCS2 units of a text of 4k hexadecimal digits (k >= 1), else nothing.
std::u16string Ucs2Units(const std::string& hex) {
    std::u16string units;
    if (hex.empty() || hex.size() % 4 != 0)
        return units;
    for (std::size_t i = 0; i < hex.size(); i += 4) {
        const int high = HexByte(hex[i], hex[i + 1]);
        const int low = HexByte(hex[i + 2], hex[i + 3]);
        if (high < 0 || low < 0)
            return {};
        units.push_back(static_cast<char16_t>(high << 8 | low));
    }
    return units;
}

// Copies text into a field of size bytes, cut on a UTF-8 character boundary when too long.
void CopyCut(const std::string& text, char* field, std::size_t size) {
    std::size_t length = std::min(text.size(), size - 1);
    while (length < text.size() && length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
}

std::string Utf8FromUnits(const std::u16string& units) {
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t cp = units[i];
        if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
            units[i + 1] < 0xE000)
            cp = 0x10000 + ((cp - 0xD800) << 10) + (units[++i] - 0xDC00);
        else if (cp >= 0xD800 && cp < 0xE000)
            cp = 0xFFFD;
        if (cp < 0x80) {
            text.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            text.push_back(static_cast<char>(0xC0 | cp >> 6));
            text.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            text.push_back(static_cast<char>(0xE0 | cp >> 12));
            text.push_back(static_cast<char>(0x80 | (cp >> 6 & 0x3F)));
            text.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            text.push_back(static_cast<char>(0xF0 | cp >> 18));
            text.push_back(static_cast<char>(0x80 | (cp >> 12 & 0x3F)));
            text.push_back(static_cast<char>(0x80 | (cp >> 6 & 0x3F)));
            text.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return text;
}

// One item of a lenient AT+COPS=? answer, field by field; any field may be empty or missing:
//   2,"Acme - Mobile",,"00103"   with the terminal set UCS2:  1,"00410063006D0065",,"00300030003100300031",2
// The names are taken as UCS2 when the numeric name is UCS2 digits; a name too long for its field is cut.
TNetworkListItem ReadCopsListItem(std::string_view text) {
    TNetworkListItem item;
    item.nValid = 1;
    item.nAcT = 3;
    std::vector<std::string> fields = ItemFields(text);
    fields.resize(std::max<std::size_t>(fields.size(), 5));
    ReadAnswerInt(fields[0].c_str(), item.nState);
    const std::u16string numeric = Ucs2Units(fields[3]);
    const bool ucs2 = !numeric.empty() && std::all_of(numeric.begin(), numeric.end(), [](char16_t unit) {
        return unit >= u'0' && unit <= u'9';
    });
    if (ucs2) {
        for (int i = 1; i <= 3; ++i)
            fields[i] = Utf8FromUnits(Ucs2Units(fields[i]));
    }
    CopyCut(fields[1], item.szLongName, sizeof item.szLongName);
    CopyCut(fields[2], item.szShortName, sizeof item.szShortName);
    if (fields[3].size() < sizeof item.szNumericName)
        CopyCut(fields[3], item.szNumericName, sizeof item.szNumericName);
    ReadAnswerInt(fields[4].c_str(), item.nAcT);
    return item;
}

// The lenient reading of AT+COPS=?: items in parentheses (quotes may hold parentheses) up to the empty
// element before the supported-mode lists.
void ReadCopsList(const std::string& answer, std::size_t at, std::list<TNetworkListItem>& items) {
    const std::size_t lineEnd = std::min(answer.find("\r\n", at), answer.size());
    std::size_t pos = at + std::strlen("+COPS: ");
    while (pos < lineEnd) {
        if (answer[pos] == ' ') {
            ++pos;
            continue;
        }
        if (answer[pos] != '(')
            return; // the ",," before the mode lists
        bool quoted = false;
        std::size_t close = pos + 1;
        for (; close < lineEnd && (quoted || answer[close] != ')'); ++close)
            quoted = answer[close] == '"' ? !quoted : quoted;
        if (close >= lineEnd)
            return;
        items.push_back(ReadCopsListItem(std::string_view(answer).substr(pos + 1, close - pos - 1)));
        pos = close + 1;
        if (pos < lineEnd && answer[pos] == ',')
            ++pos;
    }
}

} // namespace

int ParseCopsAnswer(const std::string& answer, TNetworkBaseInfo& info) {
    const std::size_t at = answer.find("+COPS: ");
    if (at == std::string::npos)
        return 1;
    const std::string line = LineAt(answer, at);
    int value = 0;
    if (std::sscanf(line.c_str(), "+COPS: %d", &value) == 1)
        info.nMode = value;

    const std::size_t comma = line.find(',');
    if (comma == std::string::npos)
        return 0;
    if (ReadAnswerInt(line.c_str() + comma + 1, value))
        info.nFormat = value;

    const std::size_t open = line.find('"', comma + 1);
    const std::size_t close = open == std::string::npos ? open : line.find('"', open + 1);
    if (close == std::string::npos)
        return 0;
    const std::size_t length = close - open - 1;
    if (length >= 1 && length <= kMaxOperatorLength) {
        std::memcpy(info.szOperator, line.data() + open + 1, length);
        info.szOperator[length] = '\0';
    }

    const std::size_t technology = line.find(',', close + 1);
    if (technology != std::string::npos && ReadAnswerInt(line.c_str() + technology + 1, value))
        info.nAcT = value;
    return 0;
}

int ParseCopsListAnswer(const std::string& answer, std::list<TNetworkListItem>& items) {
    const std::size_t at = answer.find("+COPS: ");
    if (at == std::string::npos)
        return 1;
    if (ReadsAnswersLeniently()) {
        ReadCopsList(answer, at, items);
        return 0;
    }
    const std::size_t modeLists = answer.find(",,", at);
    for (std::size_t open = answer.find('(', at); open != std::string::npos;
         open = answer.find('(', open + 1)) {
        if (modeLists != std::string::npos && open >= modeLists)
            break;
        const std::size_t close = answer.find(')', open + 1);
        if (close == std::string::npos || close - open - 1 > kMaxListItemLength)
            break;
        TNetworkListItem item;
        ParseCopsListItem(std::string_view(answer).substr(open + 1, close - open - 1), item);
        items.push_back(item);
        open = close;
    }
    return 0;
}

int DecodeSimAlphaIdentifier(const unsigned char* bytes, int length, char16_t* name, int size) {
    if (bytes == nullptr || name == nullptr || length <= 0 || size <= 0)
        return 0;
    int written = 0;
    if (bytes[0] == 0x80) {
        // 0x80, then big-endian UCS2 characters, padded with FF.
        for (int i = 1; i + 1 < length && written < size; i += 2) {
            const char16_t ch = static_cast<char16_t>(bytes[i] << 8 | bytes[i + 1]);
            if (ch == 0xFFFF)
                break;
            name[written++] = ch;
        }
        return written;
    }
    if (bytes[0] == 0x81 || bytes[0] == 0x82) {
        // 0x81, count, base bits 15..8 as one byte shifted by 7; or 0x82, count, base as two bytes. A byte
        // with its high bit set is base + its low 7 bits, any other a GSM default-alphabet character.
        const bool shortBase = bytes[0] == 0x81;
        const int header = shortBase ? 3 : 4;
        if (length < header)
            return 0;
        const int count = bytes[1];
        const unsigned base = shortBase ? unsigned(bytes[2]) << 7 : unsigned(bytes[2]) << 8 | bytes[3];
        for (int i = header; i < length && written < count && written < size; ++i) {
            const unsigned char byte = bytes[i];
            name[written++] = (byte & 0x80) != 0 ? static_cast<char16_t>(base + (byte & 0x7F))
                                                 : static_cast<char16_t>(Gsm7DefaultToUnicode(byte));
        }
        return written;
    }
    const int used = static_cast<int>(std::find(bytes, bytes + length, 0xFF) - bytes);
    wchar_t text[kSpNameSize] = {};
    const int room = std::min(size, kSpNameSize);
    DecodeDefault7Bit(bytes, used, text, room);
    while (written < room && text[written] != 0) {
        name[written] = static_cast<char16_t>(text[written]);
        ++written;
    }
    return written;
}

int ParseSpnmAnswer(const std::string& answer, TServiceProviderInfo& info) {
    info = TServiceProviderInfo{};
    const std::size_t at = answer.find("+SPNM: ");
    if (at == std::string::npos)
        return 1;
    const std::size_t start = at + std::strlen("+SPNM: ");
    const std::size_t end = answer.find("\r\n", start);
    if (end == std::string::npos)
        return 1;

    DecodeSpnHex(std::string_view(answer).substr(start, end - start), info);
    return 0;
}

int ParseCrsmSpnAnswer(const std::string& answer, TServiceProviderInfo& info) {
    info = TServiceProviderInfo{};
    const std::size_t at = answer.find("+CRSM:");
    if (at == std::string::npos)
        return 1;
    int sw1 = 0;
    if (!ReadAnswerInt(answer.c_str() + at + std::strlen("+CRSM:"), sw1) || sw1 != 144)
        return 1;
    const std::size_t open = answer.find('"', at);
    const std::size_t close = open == std::string::npos ? open : answer.find('"', open + 1);
    if (close == std::string::npos || answer.find("\r\n", at) < close)
        return 1;
    DecodeSpnHex(std::string_view(answer).substr(open + 1, close - open - 1), info);
    return 0;
}

int ParseCregAccessTechnology(const std::string& answer, int& stat) {
    stat = -1;
    for (std::size_t at = answer.find("+CREG:"); at != std::string::npos;
         at = answer.find("+CREG:", at + 1)) {
        const std::string line = LineAt(answer, at + std::strlen("+CREG:"));
        int mode = 0;
        int registration = 0;
        const std::size_t first = line.find(',');
        if (first == std::string::npos || !ReadAnswerInt(line.c_str(), mode) ||
            !ReadAnswerInt(line.c_str() + first + 1, registration))
            continue;
        stat = registration;
        // Fields: mode, stat, area, cell, technology.
        std::size_t comma = first;
        for (int field = 2; field < 5 && comma != std::string::npos; ++field)
            comma = line.find(',', comma + 1);
        int technology = -1;
        if (comma == std::string::npos || !ReadAnswerInt(line.c_str() + comma + 1, technology) ||
            technology < 0)
            return -1;
        return technology;
    }
    return -1;
}

void ParseSpdiAnswer(const std::string& answer, int& count, std::vector<TSpdiEntry>& entries) {
    count = 0;
    entries.clear();
    const std::size_t at = answer.find("+SPDI: ");
    if (at == std::string::npos)
        return;
    const std::size_t start = at + std::strlen("+SPDI: ");
    const std::size_t end = answer.find("\r\n", start);
    if (end == std::string::npos)
        return;

    char buffer[kSpdiText] = {};
    CopyWithoutBlanks(std::string_view(answer).substr(start, end - start), buffer, sizeof buffer);
    for (char& ch : buffer)
        ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    const std::string_view text(buffer);
    // A3 <length> 80 <length of the PLMN list> <3 octets per network>
    if (text.size() <= 8 || text.substr(0, 2) != "A3")
        return;
    const int listLength = HexByte(text[6], text[7]);
    if (listLength < 0)
        return;

    const int slots = listLength / 3;
    entries.assign(static_cast<std::size_t>(slots), TSpdiEntry{});
    int empty = 0;
    for (int i = 0; i < slots; ++i) {
        const std::size_t group = 8 + 6 * static_cast<std::size_t>(i);
        if (group + 6 > text.size())
            break;
        const std::string_view plmn = text.substr(group, 6);
        if (plmn == "FFFFFF") {
            ++empty;
            continue;
        }
        // Nibble-swapped MCC and MNC: "64F000" is 460 00, "130062" is 310 260.
        TSpdiEntry& slot = entries[static_cast<std::size_t>(i)];
        slot = {plmn[1], plmn[0], plmn[3], plmn[5], plmn[4], plmn[2] != 'F' ? plmn[2] : '\0', '\0', '\0'};
    }
    count = slots - empty;
}

void ParseCopsListItem(std::string_view text, TNetworkListItem& item) {
    item = TNetworkListItem{};
    item.nValid = 1;
    item.nAcT = 3;
    const std::string owned(text);
    std::sscanf(owned.c_str(), "%d", &item.nState);

    const auto copyIfFits = [&owned](std::size_t open, std::size_t close, char* field, std::size_t size) {
        const std::size_t length = close - open - 1;
        if (length >= 1 && length < size) {
            std::memcpy(field, owned.data() + open + 1, length);
            field[length] = '\0';
        }
    };
    // Each name is quoted and ends at a quote followed by a comma.
    std::size_t pos = owned.find(',');
    if (pos == std::string::npos)
        return;
    for (auto [field, size] : {std::pair{item.szLongName, sizeof item.szLongName},
                               std::pair{item.szShortName, sizeof item.szShortName}}) {
        const std::size_t open = owned.find('"', pos);
        const std::size_t close = open == std::string::npos ? open : owned.find("\",", open + 1);
        if (close == std::string::npos)
            return;
        copyIfFits(open, close, field, size);
        pos = close + 2;
    }

    const std::size_t open = owned.find('"', pos);
    if (open == std::string::npos)
        return;
    std::size_t close = owned.find("\",", open + 1);
    if (close == std::string::npos) {
        // No technology behind the numeric name: (1,"Op","Op","46000")
        close = std::min(owned.find('"', open + 1), owned.size());
        copyIfFits(open, close, item.szNumericName, sizeof item.szNumericName);
        return;
    }
    copyIfFits(open, close, item.szNumericName, sizeof item.szNumericName);
    int technology = 0;
    if (std::sscanf(owned.c_str() + close + 2, "%d", &technology) == 1)
        item.nAcT = technology;
}

int CopyWithoutBlanks(std::string_view text, char* buffer, int size) {
    if (buffer == nullptr || size <= 0)
        return 1;
    std::memset(buffer, 0, static_cast<std::size_t>(size));
    int written = 0;
    for (const char ch : text) {
        if (ch == ' ' || ch == '\t')
            continue;
        if (written == size - 1)
            return 1;
        buffer[written++] = ch;
    }
    return 0;
}

int DecodeDefault7Bit(const unsigned char* bytes, int length, wchar_t* text, int size) {
    if (bytes == nullptr || text == nullptr)
        return 0;
    int used = 0;
    int written = 0;
    while (used < length && written < size) {
        const unsigned char byte = bytes[used++];
        if (byte >= 0x80) {
            text[written++] = L' ';
        } else if (byte == kGsm7Escape) {
            const wchar_t extension = used < length ? Gsm7ExtensionToUnicode(bytes[used]) : kGsm7NoChar;
            if (extension != kGsm7NoChar) {
                text[written++] = extension;
                ++used;
            } else {
                text[written++] = L' '; // the byte behind is read on its own
            }
        } else {
            text[written++] = Gsm7DefaultToUnicode(byte);
        }
    }
    return used;
}
