#include "STKCodec.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "AtParameter.h"
#include "Gsm7BitAlphabet.h"

namespace {

constexpr const char* kStgiPrefix = "+STGI:";
// Raw octets kept from one field: enough for kSTKMaxTextChars characters as UCS2 hex.
constexpr std::size_t kMaxRawField = 4 * kSTKMaxTextChars + 8;
// Lines of one listing looked at; a menu has at most kSTKMaxMenuItems of them after its header.
constexpr int kMaxListingLines = kSTKMaxMenuItems + 1;

struct TProactiveCommandTypeMap {
    int nModemNumber;
    int nType;
};

// The modem's command numbers and the codec's types; 256 to 261 (envelopes and events) map to themselves.
constexpr TProactiveCommandTypeMap v_ProactiveCommandTypeMap[] = {
    {1, 33},  {2, 34},    {3, 35},    {4, 21},    {5, 2},     {6, 22},    {7, 3},     {8, 38},  {9, 1},
    {10, 52}, {11, 36},   {12, 19},   {13, 17},   {14, 18},   {15, 16},   {16, 5},    {17, 37}, {18, 40},
    {19, 4},  {20, 129},  {23, 20},   {24, 53},   {25, 39},   {26, 64},   {27, 65},   {28, 67}, {29, 66},
    {30, 68}, {256, 256}, {257, 257}, {258, 258}, {259, 259}, {260, 260}, {261, 261},
};
static_assert(sizeof v_ProactiveCommandTypeMap / sizeof v_ProactiveCommandTypeMap[0] == 34);

// "%d" without overflow: blanks skipped, an optional sign, at least one digit. end (optional) receives
// the first character after the digits.
bool ReadInt(const char* text, int& value, const char** end = nullptr) {
    while (*text == ' ' || *text == '\t')
        ++text;
    const char* digits = (*text == '+' || *text == '-') ? text + 1 : text;
    if (!std::isdigit(static_cast<unsigned char>(*digits)))
        return false;
    errno = 0;
    char* stop = nullptr;
    const long parsed = std::strtol(text, &stop, 10);
    if (errno == ERANGE || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    value = static_cast<int>(parsed);
    if (end != nullptr)
        *end = stop;
    return true;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

bool IsHexText(const std::string& text, std::size_t groupSize) {
    if (text.empty() || text.size() % groupSize != 0)
        return false;
    for (const char c : text) {
        if (HexValue(c) < 0)
            return false;
    }
    return true;
}

void Append(std::wstring& out, wchar_t c) {
    if (out.size() < static_cast<std::size_t>(kSTKMaxTextChars))
        out.push_back(c);
}

// UTF-8 where the octets form it, else one character per octet (Latin-1).
void DecodePlainOctets(const std::string& octets, bool gsmBelow80, std::wstring& out) {
    const std::size_t size = octets.size();
    for (std::size_t i = 0; i < size; ++i) {
        const unsigned char c = static_cast<unsigned char>(octets[i]);
        if (c < 0x80) {
            if (!gsmBelow80) {
                Append(out, static_cast<wchar_t>(c));
            } else if (c == kGsm7Escape && i + 1 < size &&
                       Gsm7ExtensionToUnicode(static_cast<unsigned char>(octets[i + 1])) != kGsm7NoChar) {
                Append(out, Gsm7ExtensionToUnicode(static_cast<unsigned char>(octets[++i])));
            } else {
                Append(out, Gsm7DefaultToUnicode(c));
            }
            continue;
        }
        const int follow = (c & 0xE0) == 0xC0 ? 1 : (c & 0xF0) == 0xE0 ? 2 : (c & 0xF8) == 0xF0 ? 3 : -1;
        unsigned value = follow == 1 ? c & 0x1Fu : follow == 2 ? c & 0x0Fu : c & 0x07u;
        bool valid = follow > 0 && i + static_cast<std::size_t>(follow) < size;
        for (int k = 1; valid && k <= follow; ++k) {
            const unsigned char next = static_cast<unsigned char>(octets[i + k]);
            valid = (next & 0xC0) == 0x80;
            value = value << 6 | (next & 0x3Fu);
        }
        const unsigned lowest = follow == 1 ? 0x80 : follow == 2 ? 0x800 : 0x10000;
        if (valid && value >= lowest && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF)) {
            Append(out, static_cast<wchar_t>(value));
            i += static_cast<std::size_t>(follow);
        } else {
            Append(out, static_cast<wchar_t>(c));
        }
    }
}

// Printable ASCII that the modem cannot read as the end of the parameter or the command: what may stand
// unquoted in an answer.
bool IsPlainInfo(const char* text) {
    for (std::size_t i = 0; text[i] != '\0'; ++i) {
        if (static_cast<unsigned char>(text[i]) > 0x7E)
            return false;
    }
    return CheckAtParameter(std::string_view(text), 256) == AtParameterFault::None;
}

// A listing's header line and the item lines of the same number after it.
struct TListing {
    CSTKCodec::TListingLine header;
    std::vector<CSTKCodec::TListingLine> items;
};

bool ReadListing(const std::string& text, int modemNumber, TListing& listing) {
    std::size_t start = 0;
    int lines = 0;
    bool haveHeader = false;
    while (start < text.size() && lines < kMaxListingLines) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.find(kStgiPrefix) == std::string::npos)
            continue;
        CSTKCodec::TListingLine parsed = CSTKCodec::SplitListingLine(line);
        if (!parsed.found)
            continue;
        ++lines;
        if (!haveHeader) {
            if (parsed.nCommand != modemNumber)
                return false;
            listing.header = std::move(parsed);
            haveHeader = true;
        } else if (parsed.nCommand == modemNumber) {
            listing.items.push_back(std::move(parsed));
        }
    }
    return haveHeader;
}

bool FieldInt(const CSTKCodec::TListingLine& line, std::size_t index, int& value) {
    if (index >= line.fields.size() || line.quoted[index])
        return false;
    int parsed = 0;
    const char* end = nullptr;
    if (!ReadInt(line.fields[index].c_str(), parsed, &end) || *end != '\0')
        return false;
    value = parsed;
    return true;
}

void FieldText(const CSTKCodec::TListingLine& line, std::size_t index, int teSet, std::wstring& value) {
    if (index < line.fields.size())
        value = CSTKCodec::DecodeTeText(line.fields[index], teSet);
}

// Numbers, DTMF strings and language codes: the printable ASCII of the decoded field.
void FieldAscii(const CSTKCodec::TListingLine& line, std::size_t index, int teSet, std::string& value) {
    if (index >= line.fields.size())
        return;
    value.clear();
    for (const wchar_t c : CSTKCodec::DecodeTeText(line.fields[index], teSet)) {
        if (c >= 0x20 && c <= 0x7E)
            value.push_back(static_cast<char>(c));
    }
}

// "+STGI: 17,1,\"News\"": the identifier, then the text.
void ReadItems(const std::vector<CSTKCodec::TListingLine>& lines, int teSet, std::list<TSTKMenuItem>& items) {
    for (const CSTKCodec::TListingLine& line : lines) {
        TSTKMenuItem item;
        if (!FieldInt(line, 0, item.nItemId))
            continue;
        FieldText(line, 1, teSet, item.wstrText);
        if (items.size() < static_cast<std::size_t>(kSTKMaxMenuItems))
            items.push_back(std::move(item));
    }
}

template <typename Record>
bool StartDecode(const std::string& text, int modemNumber, Record& req, TListing& listing) {
    req = Record{};
    return ReadListing(text, modemNumber, listing);
}

std::string Format(const char* format, int a) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, a);
    return buffer;
}

std::string Format(const char* format, int a, int b) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, a, b);
    return buffer;
}

// "AT+STGR=n,<result>,<info>\r", or "AT+STGR=n,<result>,\r" without information.
int EncodeWithInfo(const char* withInfo, const char* without, int result, const char* info,
                   std::string& command) {
    if (info == nullptr || *info == '\0') {
        command = Format(without, result);
        return 0;
    }
    if (!IsPlainInfo(info))
        return 1;
    char buffer[320];
    std::snprintf(buffer, sizeof buffer, withInfo, result, info);
    command = buffer;
    return 0;
}

} // namespace

int CSTKCodec::GetProactiveCommandType(const std::string& text, int& type) {
    type = STK_TYPE_UNKNOWN;
    const std::size_t at = text.find(kStgiPrefix);
    int number = 0;
    if (at == std::string::npos || !ReadInt(text.c_str() + at + std::strlen(kStgiPrefix), number))
        return 0;
    for (const TProactiveCommandTypeMap& row : v_ProactiveCommandTypeMap) {
        if (row.nModemNumber == number) {
            type = row.nType;
            break;
        }
    }
    return 0;
}

// +STGI: 11,"Games",1,2   the number, then quoted texts and plain numbers separated by commas.
CSTKCodec::TListingLine CSTKCodec::SplitListingLine(const std::string& line) {
    TListingLine out;
    const std::size_t at = line.find(kStgiPrefix);
    if (at == std::string::npos)
        return out;
    const char* p = line.c_str() + at + std::strlen(kStgiPrefix);
    if (!ReadInt(p, out.nCommand, &p))
        return out;
    out.found = true;
    while (*p == ' ' || *p == '\t')
        ++p;
    while (*p == ',' && out.fields.size() < static_cast<std::size_t>(kMaxFields)) {
        ++p;
        while (*p == ' ' || *p == '\t')
            ++p;
        std::string field;
        bool quoted = false;
        if (*p == '"') {
            quoted = true;
            const char* closing = std::strchr(p + 1, '"');
            const char* stop = closing != nullptr ? closing : p + std::strlen(p);
            field.assign(p + 1, std::min<std::size_t>(static_cast<std::size_t>(stop - p - 1), kMaxRawField));
            p = closing != nullptr ? closing + 1 : stop;
            while (*p != '\0' && *p != ',')
                ++p;
        } else {
            const char* stop = p;
            while (*stop != '\0' && *stop != ',' && *stop != '\r' && *stop != '\n')
                ++stop;
            const char* last = stop;
            while (last > p && (last[-1] == ' ' || last[-1] == '\t'))
                --last;
            field.assign(p, std::min<std::size_t>(static_cast<std::size_t>(last - p), kMaxRawField));
            p = stop;
        }
        out.fields.push_back(std::move(field));
        out.quoted.push_back(quoted);
    }
    return out;
}

std::wstring CSTKCodec::DecodeTeText(const std::string& field, int teSet) {
    std::wstring out;
    // UCS2: "004E006500770073" is "News". A modem that prints plain text regardless is read as such.
    if (teSet == USSD_TE_UCS2 && IsHexText(field, 4)) {
        for (std::size_t i = 0; i + 3 < field.size(); i += 4) {
            const unsigned unit =
                static_cast<unsigned>(HexValue(field[i]) << 12 | HexValue(field[i + 1]) << 8 |
                                      HexValue(field[i + 2]) << 4 | HexValue(field[i + 3]));
            if (unit >= 0xD800 && unit <= 0xDBFF && i + 7 < field.size()) {
                const unsigned low =
                    static_cast<unsigned>(HexValue(field[i + 4]) << 12 | HexValue(field[i + 5]) << 8 |
                                          HexValue(field[i + 6]) << 4 | HexValue(field[i + 7]));
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    Append(out, static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
                    i += 4;
                    continue;
                }
            }
            Append(out, static_cast<wchar_t>(unit));
        }
        return out;
    }
    // HEX: two hex digits per default-alphabet octet.
    if (teSet == USSD_TE_HEX && IsHexText(field, 2)) {
        std::string octets;
        for (std::size_t i = 0; i + 1 < field.size(); i += 2)
            octets.push_back(static_cast<char>(HexValue(field[i]) << 4 | HexValue(field[i + 1])));
        DecodePlainOctets(octets, true, out);
        return out;
    }
    DecodePlainOctets(field, teSet == USSD_TE_GSM, out);
    return out;
}

std::string CSTKCodec::EncodeTeText(const std::wstring& text, int teSet) {
    std::string out;
    if (teSet == USSD_TE_UCS2) {
        for (const wchar_t c : text) {
            const unsigned value = static_cast<unsigned>(c);
            char unit[12];
            if (value > 0xFFFF && value <= 0x10FFFF) {
                const unsigned offset = value - 0x10000;
                std::snprintf(unit, sizeof unit, "%04X%04X", 0xD800 + (offset >> 10),
                              0xDC00 + (offset & 0x3FF));
            } else {
                std::snprintf(unit, sizeof unit, "%04X", value > 0xFFFF ? 0x3Fu : value);
            }
            out += unit;
        }
        return out;
    }
    for (const wchar_t c : text) {
        unsigned char code = '?';
        if (teSet == USSD_TE_GSM) {
            unsigned char gsm = 0;
            if (UnicodeToGsm7(c, gsm) == 1 && gsm >= 0x20 && gsm <= 0x7E && gsm != '"')
                code = gsm;
        } else if (c >= 0x20 && c <= 0x7E && c != L'"') {
            code = static_cast<unsigned char>(c);
        }
        out.push_back(static_cast<char>(code));
    }
    return out;
}

int CSTKCodec::DecodeRefreshReq(const std::string& text, TSTKRefreshReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_REFRESH, req, listing))
        return 1;
    FieldInt(listing.header, 0, req.nRefreshType);
    FieldText(listing.header, 1, teSet, req.wstrFileList);
    return 0;
}

int CSTKCodec::DecodeIdleScreenNotification(const std::string& text, TSTKIdleScreenNotification& req, int) {
    TListing listing;
    return StartDecode(text, STK_MODEM_IDLE_SCREEN_AVAILABLE, req, listing) ? 0 : 1;
}

int CSTKCodec::DecodeUserActivityNotification(const std::string& text, TSTKUserActivityNotification& req,
                                              int) {
    TListing listing;
    return StartDecode(text, STK_MODEM_USER_ACTIVITY, req, listing) ? 0 : 1;
}

int CSTKCodec::DecodeSetupCallReq(const std::string& text, TSTKSetupCallReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SETUP_CALL, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrConfirmText);
    FieldAscii(listing.header, 1, teSet, req.strNumber);
    FieldInt(listing.header, 2, req.nQualifier);
    FieldText(listing.header, 3, teSet, req.wstrCallText);
    return 0;
}

int CSTKCodec::DecodeSetupEventListReq(const std::string& text, TSTKSetupEventListReq& req, int) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SETUP_EVENT_LIST, req, listing))
        return 1;
    for (std::size_t i = 0; i < listing.header.fields.size(); ++i) {
        int event = 0;
        if (FieldInt(listing.header, i, event) &&
            req.lstEvents.size() < static_cast<std::size_t>(kSTKMaxEvents))
            req.lstEvents.push_back(event);
    }
    return 0;
}

int CSTKCodec::DecodeSendDTMFReq(const std::string& text, TSTKSendDTMFReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SEND_DTMF, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldAscii(listing.header, 1, teSet, req.strDTMF);
    return 0;
}

int CSTKCodec::DecodeSetupIdleModeTextReq(const std::string& text, TSTKSetupIdleModeTextReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SETUP_IDLE_MODE_TEXT, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    return 0;
}

int CSTKCodec::DecodeSendUSSDReq(const std::string& text, TSTKSendUSSDReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SEND_USSD, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldText(listing.header, 1, teSet, req.wstrUSSDString);
    return 0;
}

int CSTKCodec::DecodeSendSSReq(const std::string& text, TSTKSendSSReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SEND_SS, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldText(listing.header, 1, teSet, req.wstrSSString);
    return 0;
}

int CSTKCodec::DecodeSendSMSReq(const std::string& text, TSTKSendSMSReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SEND_SMS, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    return 0;
}

int CSTKCodec::DecodePlayToneReq(const std::string& text, TSTKPlayToneReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_PLAY_TONE, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldInt(listing.header, 1, req.nTone);
    FieldInt(listing.header, 2, req.nDurationUnit);
    FieldInt(listing.header, 3, req.nDuration);
    return 0;
}

int CSTKCodec::DecodeGetInputReq(const std::string& text, TSTKGetInputReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_GET_INPUT, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldInt(listing.header, 1, req.nFormat);
    FieldInt(listing.header, 2, req.nMinLength);
    FieldInt(listing.header, 3, req.nMaxLength);
    FieldText(listing.header, 4, teSet, req.wstrDefaultText);
    FieldInt(listing.header, 5, req.nEcho);
    FieldInt(listing.header, 6, req.nHelp);
    return 0;
}

int CSTKCodec::DecodeGetInkeyReq(const std::string& text, TSTKGetInkeyReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_GET_INKEY, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldInt(listing.header, 1, req.nFormat);
    FieldInt(listing.header, 2, req.nHelp);
    return 0;
}

int CSTKCodec::DecodeDisplayTextReq(const std::string& text, TSTKDisplayTextReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_DISPLAY_TEXT, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrText);
    FieldInt(listing.header, 1, req.nPriority);
    FieldInt(listing.header, 2, req.nClearMode);
    FieldInt(listing.header, 3, req.nImmediateResponse);
    return 0;
}

int CSTKCodec::DecodeSelectItemReq(const std::string& text, TSTKSelectItemReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SELECT_ITEM, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrTitle);
    FieldInt(listing.header, 1, req.nDefaultItem);
    FieldInt(listing.header, 2, req.nItemCount);
    ReadItems(listing.items, teSet, req.lstItems);
    return 0;
}

int CSTKCodec::DecodeSetupMenuReq(const std::string& text, TSTKSetupMenuReq& req, int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_SETUP_MENU, req, listing))
        return 1;
    FieldText(listing.header, 0, teSet, req.wstrTitle);
    FieldInt(listing.header, 1, req.nItemCount);
    ReadItems(listing.items, teSet, req.lstItems);
    return 0;
}

int CSTKCodec::DecodeLanguageNotificationReq(const std::string& text, TSTKLanguageNotificationReq& req,
                                             int teSet) {
    TListing listing;
    if (!StartDecode(text, STK_MODEM_LANGUAGE_NOTIFICATION, req, listing))
        return 1;
    FieldAscii(listing.header, 0, teSet, req.strLanguage);
    return 0;
}

int CSTKCodec::EncodeMenuSelectionEnvelope(int result, int item, std::string& command) {
    command = item < 0 ? Format("AT+STGR=0,%d,\r", result) : Format("AT+STGR=0,%d,%d\r", result, item);
    return 0;
}

int CSTKCodec::EncodeDisplayTextResponse(int result, const char* additionalInfo, std::string& command) {
    return EncodeWithInfo("AT+STGR=1,%d,%s\r", "AT+STGR=1,%d,\r", result, additionalInfo, command);
}

int CSTKCodec::EncodeGetInkeyResponse(int result, int yesNo, const std::wstring& key, std::string& command,
                                      int teSet) {
    if (yesNo > 1 ||
        CheckAtParameter(key, static_cast<std::size_t>(kSTKMaxTextChars)) != AtParameterFault::None)
        return 1;
    if (yesNo >= 0) {
        command = Format("AT+STGR=2,%d,,2,%d,", result, yesNo) + "\r";
        return 0;
    }
    command = Format("AT+STGR=2,%d,,2,,", result);
    if (!key.empty())
        command += "\"" + EncodeTeText(key, teSet) + "\"";
    command += "\r";
    return 0;
}

int CSTKCodec::EncodeGetInputResponse(int result, const std::wstring& input, std::string& command,
                                      int teSet) {
    if (CheckAtParameter(input, static_cast<std::size_t>(kSTKMaxTextChars)) != AtParameterFault::None)
        return 1;
    command = Format("AT+STGR=3,%d,,", result);
    if (!input.empty())
        command += "\"" + EncodeTeText(input, teSet) + "\"";
    command += "\r";
    return 0;
}

int CSTKCodec::EncodePlayToneResponse(int result, std::string& command) {
    command = Format("AT+STGR=6,%d,\r", result);
    return 0;
}

int CSTKCodec::EncodeSelectItemResponse(int result, int item, std::string& command) {
    command = item < 0 ? Format("AT+STGR=11,%d,,\r", result) : Format("AT+STGR=11,%d,,%d\r", result, item);
    return 0;
}

int CSTKCodec::EncodeSetupCallResponse(int result, const char* additionalInfo, std::string& command) {
    return EncodeWithInfo("AT+STGR=15,%d,%s\r", "AT+STGR=15,%d,\r", result, additionalInfo, command);
}

int CSTKCodec::EncodeSetupIdleModeTextResponse(int result, std::string& command) {
    command = Format("AT+STGR=18,%d,\r", result);
    return 0;
}

int CSTKCodec::EncodeSendDTMFResponse(int result, const char* additionalInfo, std::string& command) {
    return EncodeWithInfo("AT+STGR=23,%d,%s\r", "AT+STGR=23,%d,\r", result, additionalInfo, command);
}

int CSTKCodec::EncodeLanguageNotificationResponse(int result, const char* additionalInfo,
                                                  std::string& command) {
    return EncodeWithInfo("AT+STGR=24,%d,%s\r", "AT+STGR=24,%d,\r", result, additionalInfo, command);
}

int CSTKCodec::EncodeIdleScreenAvailableEnvelope(std::string& command) {
    command = "AT+STGR=256\r";
    return 0;
}

int CSTKCodec::EncodeUserActivityEnvelope(std::string& command) {
    command = "AT+STGR=257\r";
    return 0;
}

int CSTKCodec::EncodeProvideLocalInfoResponse(int, std::string&) {
    return 0;
}
