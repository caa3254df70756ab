#include "UssdUtility.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>

#include "FamilyCommand.h"
#include "Gsm7BitAlphabet.h"
#include "SmsUtility.h"

namespace {

constexpr const char* kCusdPrefix = "+CUSD: ";
constexpr std::size_t kCusdPrefixLength = 7;

// UCS2 preceded by a two-character language indication.
constexpr uint8_t kDcsUcs2AfterLanguage = 0x11;

constexpr int kCheckStateTimeoutMs = 3000;
constexpr int kSetStateTimeoutMs = 5000;
constexpr int kSendTimeoutMs = 5000;
constexpr int kCancelTimeoutMs = 1000;
constexpr int kCharSetTimeoutMs = 1000;

struct TUssdTeCharSetMap {
    int nId;
    const char* pszName;
};

// AT+CSCS names by identifier; 3 (PCCP with a code page) and 6 (8859 with a part) are built on demand.
constexpr TUssdTeCharSetMap v_TUssdTeCharSetMapTable[] = {
    {USSD_TE_GSM, "GSM"},       {USSD_TE_HEX, "HEX"},       {USSD_TE_IRA, "IRA"},
    {USSD_TE_PCDN, "PCDN"},     {USSD_TE_UCS2, "UCS2"},     {USSD_TE_8859_C, "8859-C"},
    {USSD_TE_8859_A, "8859-A"}, {USSD_TE_8859_G, "8859-G"}, {USSD_TE_8859_H, "8859-H"},
};

// The AT+CSCS? answer ("+CSCS: \"UCS2\"") is searched for these names in this order.
constexpr TUssdTeCharSetMap kAnsweredCharSets[] = {
    {USSD_TE_UCS2, "UCS2"},
    {USSD_TE_IRA, "IRA"},
    {USSD_TE_GSM, "GSM"},
    {USSD_TE_HEX, "HEX"},
};

// Two hex digits per octet, whole pairs only, at most size octets; stops at the first pair that is not hex.
int HexToOctets(const std::string& hex, uint8_t* out, int size) {
    int count = 0;
    for (std::size_t i = 0; i + 1 < hex.size() && count < size; i += 2) {
        const int high = CUssdUility::HexCharToInt(hex[i]);
        const int low = CUssdUility::HexCharToInt(hex[i + 1]);
        if (high < 0 || low < 0)
            break;
        out[count++] = static_cast<uint8_t>(high << 4 | low);
    }
    return count;
}

} // namespace

int CUssdUility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CUssdUility::WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                           std::initializer_list<const char*> finals) {
    if (m_pfnExecAT == nullptr || command == nullptr)
        return 1;
    const std::list<std::string> finalResults(finals.begin(), finals.end());
    const int result = m_pfnExecAT(command, expected, timeoutMs, finalResults, response);
    if (result != 0)
        return result;
    SpaceAfterAnswerPrefixes(response);
    if (expected == nullptr || *expected == '\0')
        return result;
    const std::size_t at = response.find(expected);
    if (at == std::string::npos)
        return result;
    const std::size_t lineEnd = response.find('\n', at + std::strlen(expected));
    response = response.substr(at, lineEnd == std::string::npos ? std::string::npos : lineEnd - at + 1);
    return result;
}

int CUssdUility::CheckUssdState(int& state) {
    // AT+CUSD? answers "+CUSD: 0".
    std::string response;
    const int result = WriteComm(response, "AT+CUSD?\r", kCusdPrefix, kCheckStateTimeoutMs);
    if (result != 0)
        return result;
    const std::size_t at = response.find(kCusdPrefix);
    int value = 0;
    if (at == std::string::npos || !ReadAnswerInt(response.c_str() + at + kCusdPrefixLength, value))
        return 1;
    state = value;
    return 0;
}

int CUssdUility::SetUssdState(int& state) {
    char command[32];
    std::snprintf(command, sizeof command, "AT+CUSD=%d\r", state);
    std::string response;
    const int result = WriteComm(response, command, nullptr, kSetStateTimeoutMs);
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CUssdUility::SendUssdCmd(const wchar_t* text) {
    if (text == nullptr)
        return 1;
    // Modems read the argument in the terminal set, so the codes below travel as UCS2 units.
    SelectTeCharacterSet(USSD_TE_UCS2, 0, 0);

    // *100# goes out as AT+CUSD=1,"002A0031003000300023",15: each default-alphabet code written as if it
    // were a UCS2 unit, so "$" (code 2) becomes 0002. Networks expect exactly this; kept.
    uint8_t codes[kUssdMaxSendCodes + 1];
    const int count = WStringToDefault7Bit(text, codes, static_cast<int>(sizeof codes));
    std::string command = "AT+CUSD=1,\"";
    command.reserve(command.size() + 4 * count + 6);
    for (int i = 0; i < count; ++i) {
        char unit[5];
        std::snprintf(unit, sizeof unit, "00%02X", static_cast<unsigned>(codes[i]));
        command += unit;
    }
    command += "\",15\r";

    std::string response;
    const int result = WriteComm(response, command.c_str(), nullptr, kSendTimeoutMs);
    if (result != 0)
        return result;
    if (!AnswerHasOk(response))
        return 1;
    m_nDialogueActive = 1;
    return 0;
}

int CUssdUility::SendUssdCancelCmd() {
    int state = -1;
    if (const int result = CheckUssdState(state); result != 0)
        return result;
    if (state == 0)
        m_nDialogueActive = 0;
    if (m_nDialogueActive == 0)
        return 0;
    std::string response;
    const int result = WriteComm(response, "AT+CUSD=2\r", nullptr, kCancelTimeoutMs);
    if (result != 0)
        return result;
    if (!AnswerHasOk(response))
        return 1;
    m_nDialogueActive = 0;
    return 0;
}

int CUssdUility::getEcodingFormat(int& set) {
    // AT+CSCS? answers "+CSCS: \"UCS2\"".
    std::string response;
    const int result =
        WriteComm(response, "AT+CSCS?\r", nullptr, kCharSetTimeoutMs, {"OK", "ERROR", "+CME ERROR"});
    if (result != 0)
        return result;
    for (const TUssdTeCharSetMap& entry : kAnsweredCharSets) {
        if (response.find(entry.pszName) != std::string::npos) {
            set = entry.nId;
            return 0;
        }
    }
    return 1;
}

int CUssdUility::SelectTeCharacterSet(int set, int codePage, int part) {
    char name[24] = {};
    if (set == USSD_TE_PCCP) {
        std::snprintf(name, sizeof name, "PCCP%03d", codePage);
    } else if (set == USSD_TE_8859_N) {
        std::snprintf(name, sizeof name, "8859-%d", part);
    } else {
        for (const TUssdTeCharSetMap& entry : v_TUssdTeCharSetMapTable) {
            if (entry.nId == set)
                std::snprintf(name, sizeof name, "%s", entry.pszName);
        }
    }
    if (name[0] == '\0')
        return 1;

    const std::string command = std::string("AT+CSCS=\"") + name + "\"\r";
    std::string response;
    const int result =
        WriteComm(response, command.c_str(), nullptr, kCharSetTimeoutMs, {"OK", "ERROR", "+CME ERROR"});
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CUssdUility::Receive(const char* line, TUssdItem& item) {
    if (line == nullptr)
        return 1;
    int teSet = USSD_TE_HEX;
    if (const int result = getEcodingFormat(teSet); result != 0)
        return result;
    if (ParseCusdReport(line, teSet, item) != 0)
        return 0;
    // m: 0 no further action, 1 the network asks for a reply, 2 ended by the network, 4 not supported,
    // 5 time-out; 3 (other client answered) leaves the dialogue as it is.
    switch (item.nType) {
    case 0:
    case 2:
    case 4:
    case 5:
        m_nDialogueActive = 0;
        break;
    case 1:
        m_nDialogueActive = 1;
        break;
    default:
        break;
    }
    return 0;
}

// +CUSD: 1,"00480069",72   result code m, the text, the data coding scheme.
// Modems print the text in hex (UCS2 "00480069", one septet per octet "4869", packed septets "C834"), or,
// with the terminal set IRA, as the text itself: +CUSD: 0,"Balance 5.00 EUR",15
int CUssdUility::ParseCusdReport(const char* line, int teSet, TUssdItem& item) {
    item.wstrContent.clear();
    if (line == nullptr)
        return 1;
    // The stick this program was first written for always writes the blank and the coding scheme; others
    // may leave them out ("+CUSD:0,\"Hi\"", where a missing scheme means 0, the default alphabet).
    const bool blStandard = ReadsAnswersLeniently();
    const char* prefix = std::strstr(line, blStandard ? "+CUSD:" : kCusdPrefix);
    if (prefix == nullptr)
        return 1;
    const char* rest = prefix + kCusdPrefixLength - 1;
    if (*rest == ' ')
        ++rest;
    int m = 0;
    if (!ReadAnswerInt(rest, m))
        return 1;
    item.nType = m;

    const char* quote = std::strchr(rest, '"');
    if (std::strchr(rest, ',') == nullptr || quote == nullptr)
        return 0;
    std::string text;
    if (GetQuotationString(quote, text) != 0)
        return 0;
    // The coding scheme stands behind the closing quote and the comma, whatever the character there is.
    const char* closing = quote + 1 + text.size();
    const bool blNoScheme = closing[1] == '\0' || closing[1] == '\r' || closing[1] == '\n';
    int dcs = 0;
    if (blNoScheme ? !blStandard : (!ReadAnswerInt(closing + 2, dcs) || dcs < 0 || dcs > 0xFF))
        return 0;
    DecodeReportString(text, static_cast<uint8_t>(dcs), teSet, blStandard, item.wstrContent);
    return 0;
}

void CUssdUility::DecodeReportString(const std::string& text, uint8_t dcs, int teSet, bool lenient,
                                     std::wstring& out) {
    const int alphabet = DecodeDcsAlphabet(dcs);
    const bool blLanguageFirst = lenient && dcs == kDcsUcs2AfterLanguage;
    const bool blDefault = alphabet == USSD_ALPHABET_7BIT || alphabet == USSD_ALPHABET_RESERVED;
    const bool blHex = !text.empty() && text.size() % 2 == 0 &&
                       std::all_of(text.begin(), text.end(), [](char c) { return HexCharToInt(c) >= 0; });
    if (blDefault && !blLanguageFirst && !blHex) {
        // Text in the terminal set itself: taken as it stands.
        for (std::size_t i = 0; i < text.size() && i < static_cast<std::size_t>(kUssdMaxReportOctets); ++i)
            out.push_back(static_cast<wchar_t>(static_cast<unsigned char>(text[i])));
        return;
    }
    uint8_t octets[kUssdMaxReportOctets];
    int count = HexToOctets(text, octets, kUssdMaxReportOctets);
    if (blLanguageFirst) {
        // Two septets of language (ISO 639) packed into two octets, then UCS2 (3GPP TS 23.038 clause 5).
        if (count <= 2)
            return;
        DecodeReportText(octets + 2, count - 2, USSD_ALPHABET_UCS2, teSet, out);
        return;
    }
    const bool blPacked = lenient && blDefault && teSet != USSD_TE_UCS2 &&
                          std::any_of(octets, octets + count, [](uint8_t octet) { return octet >= 0x80; });
    if (!blPacked) {
        DecodeReportText(octets, count, alphabet, teSet, out);
        return;
    }
    // Septets packed into octets, as on the air: an octet with its top bit set cannot be one septet.
    uint8_t septets[kUssdMaxReportOctets * 8 / 7 + 1];
    int septetCount = count * 8 / 7;
    CSmsUtility::UnpackDefault7BitChars(octets, count, septetCount, static_cast<int>(sizeof septets), 0,
                                        septets);
    // Seven spare bits at the end hold CR as padding (3GPP TS 23.038 clause 6.1.2.3.1), or zeros.
    if (septetCount > 0 && count % 7 == 0 &&
        (septets[septetCount - 1] == '\r' || septets[septetCount - 1] == 0))
        --septetCount;
    for (int i = 0; i < septetCount; ++i) {
        wchar_t ch = Gsm7DefaultToUnicode(septets[i]);
        if (septets[i] == kGsm7Escape && i + 1 < septetCount &&
            Gsm7ExtensionToUnicode(septets[i + 1]) != kGsm7NoChar)
            ch = Gsm7ExtensionToUnicode(septets[++i]);
        out.push_back(ch);
    }
}

void CUssdUility::DecodeReportText(const uint8_t* octets, int count, int alphabet, int teSet,
                                   std::wstring& text) {
    if (octets == nullptr || count <= 0)
        return;
    if (alphabet == USSD_ALPHABET_UCS2) {
        // Code points: a surrogate pair is one character; U+0000 ends the text.
        for (int i = 0; i + 1 < count; i += 2) {
            unsigned unit = static_cast<unsigned>(octets[i] << 8 | octets[i + 1]);
            if (unit == 0)
                break;
            if (unit >= 0xD800 && unit < 0xDC00 && i + 3 < count) {
                const unsigned low = static_cast<unsigned>(octets[i + 2] << 8 | octets[i + 3]);
                if (low >= 0xDC00 && low < 0xE000) {
                    unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                    i += 2;
                }
            }
            text.push_back(static_cast<wchar_t>(unit));
        }
        return;
    }
    if (alphabet != USSD_ALPHABET_7BIT && alphabet != USSD_ALPHABET_RESERVED)
        return; // 8-bit data is not shown

    if (teSet != USSD_TE_UCS2) {
        // One default-alphabet code per octet; octets above the table are dropped.
        for (int i = 0; i < count; ++i) {
            if (octets[i] < kGsm7TableSize)
                text.push_back(v_wDefault7BitTable[octets[i]]);
        }
        return;
    }
    // With the terminal in UCS2 the modem gives two octets per character: "0040" is code 0x40, "00E9"
    // the character U+00E9.
    for (int i = 0; i + 1 < count; i += 2) {
        const unsigned value = static_cast<unsigned>(octets[i] << 8 | octets[i + 1]);
        text.push_back(value < kGsm7TableSize ? v_wDefault7BitTable[value] : static_cast<wchar_t>(value));
    }
}

int CUssdUility::DecodeDcsAlphabet(uint8_t dcs) {
    switch (dcs >> 6) {
    case 0:
    case 1:
        return (dcs >> 2) & 0x03; // 00 default, 01 8-bit, 10 UCS2, 11 reserved
    case 3:
        switch ((dcs >> 4) & 0x03) {
        case 2:
            return USSD_ALPHABET_UCS2;
        case 3:
            return (dcs & 0x04) != 0 ? USSD_ALPHABET_8BIT : USSD_ALPHABET_7BIT;
        default:
            return USSD_ALPHABET_7BIT;
        }
    default:
        return USSD_ALPHABET_RESERVED;
    }
}

bool CUssdUility::IsDefault7BitChar(wchar_t c) {
    return IsGsm7Char(c);
}

int CUssdUility::GetEncodeType(const std::wstring& text) {
    for (const wchar_t c : text) {
        if (!IsDefault7BitChar(c))
            return 2;
    }
    return 0;
}

int CUssdUility::WCharToDefault7Bit(wchar_t c, uint8_t& code) {
    return CSmsUtility::WCharToDefault7Bit(c, code);
}

int CUssdUility::WStringToDefault7Bit(const wchar_t* text, uint8_t* out, int outSize) {
    if (out == nullptr || outSize <= 0)
        return 0;
    std::memset(out, 0, static_cast<std::size_t>(outSize));
    if (text == nullptr)
        return 0;
    int written = 0;
    for (; *text != L'\0' && written < outSize - 1; ++text) {
        uint8_t code = 0;
        if (WCharToDefault7Bit(*text, code) != 0)
            out[written++] = code;
    }
    return written;
}

int CUssdUility::WStringToBigEndianUcs2(const wchar_t* text, int count, uint16_t* out, int outSize) {
    return CSmsUtility::WStringToBigEndianUcs2(text, count, out, outSize);
}

int CUssdUility::HexCharToInt(char c) {
    return CSmsUtility::HexCharToInt(c);
}

int CUssdUility::GetQuotationString(const char* text, std::string& out) {
    if (text == nullptr || *text != '"')
        return 1;
    const char* closing = std::strchr(text + 1, '"');
    if (closing == nullptr)
        return 1;
    out.assign(text + 1, closing);
    return 0;
}
