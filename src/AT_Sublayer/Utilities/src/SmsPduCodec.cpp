// The PDU codec of CSmsUtility: 3GPP TS 23.040 TPDUs and TS 23.038 data coding.

#include <algorithm>
#include <atomic>
#include <cstring>

#include "Gsm7BitAlphabet.h"
#include "SmsUtility.h"

namespace {

constexpr int kMaxAddressDigits = 21;
constexpr int kMaxDialDigits = 20; // TP-Address: at most 10 octets of semi-octets
constexpr int kMaxAlphanumericSeptets = 20;
constexpr int kMaxSeptets = 160;
constexpr int kMaxUserDataOctets = 140;
constexpr int kConcatHeaderOctets = 6; // 05 00 03 ref total seq

// TP-MR of every SMS-SUBMIT this process encodes.
std::atomic<uint8_t> g_nextMessageReference{1};

// Reads count octets of hex text; fails on any character that is not a hex digit (the terminator too).
bool HexToOctets(const char* hex, int count, uint8_t* out) {
    for (int i = 0; i < count; ++i) {
        const int high = CSmsUtility::HexCharToInt(hex[2 * i]);
        if (high < 0)
            return false;
        const int low = CSmsUtility::HexCharToInt(hex[2 * i + 1]);
        if (low < 0)
            return false;
        out[i] = static_cast<uint8_t>(high << 4 | low);
    }
    return true;
}

bool IsIdentity7Bit(wchar_t c) {
    return (c >= 0x20 && c <= 0x23) || (c >= 0x25 && c <= 0x3F) || (c >= L'A' && c <= L'Z') ||
           (c >= L'a' && c <= L'z');
}

void CopyBounded(char* out, int outSize, const char* in, int inSize) {
    const int n = static_cast<int>(strnlen(in, inSize));
    const int copied = std::min(n, outSize - 1);
    std::memcpy(out, in, copied);
    out[copied] = '\0';
}

} // namespace

// ---- Numbers ----

int CSmsUtility::HexCharToInt(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

int CSmsUtility::BcdToInt(uint8_t bcd) {
    return (bcd & 0x0F) + 10 * (bcd >> 4);
}

uint8_t CSmsUtility::IntToBcd(int value) {
    return static_cast<uint8_t>((value / 10) << 4 | (value % 10));
}

uint8_t CSmsUtility::BigToLittleEndian(uint8_t octet) {
    return static_cast<uint8_t>(octet << 4 | octet >> 4);
}

// ---- Decoding ----

// "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07": the service centre
// "+31624000000" is read as type 1 and the digits "31624000000", then the TPDU from character 16.
int CSmsUtility::DecodePduData(const char* hex, int tpduLength, TPduData& out) {
    if (hex == nullptr)
        return 1;
    const auto secondDigitValue = [](const char* pair, int& value) {
        const int first = HexCharToInt(pair[0]);
        if (first < 0)
            return false;
        const int second = HexCharToInt(pair[1]);
        if (second < 0)
            return false;
        // Only the second digit counts; the service-centre part never exceeds 15 octets.
        value = (first & 0xF0) + (second & 0x0F);
        return true;
    };
    int length = 0;
    if (!secondDigitValue(hex, length) || length > 11)
        return 1;

    TMsgAddress serviceCentre;
    if (length > 0) {
        int type = 0;
        if (!secondDigitValue(hex + 2, type))
            return 1;
        serviceCentre.nType = static_cast<uint32_t>(type);
        int written = 0;
        for (int pair = 0; pair < length - 1; ++pair) {
            const char first = hex[4 + 2 * pair];
            if (HexCharToInt(first) < 0)
                return 1;
            const char second = hex[5 + 2 * pair];
            if (HexCharToInt(second) < 0 || second == 'F')
                return 1;
            serviceCentre.szAddress[written++] = second;
            if (first == 'F') {
                if (pair != length - 2)
                    return 1;
                break;
            }
            serviceCentre.szAddress[written++] = first;
        }
    }

    TTpduData tpdu;
    if (DecodeTpduData(hex + 2 * length + 2, tpduLength, tpdu) != 0)
        return 1;
    out.serviceCentre = serviceCentre;
    out.tpdu = tpdu;
    return 0;
}

int CSmsUtility::DecodeTpduData(const char* hex, int tpduLength, TTpduData& out) {
    if (hex == nullptr || tpduLength < 1 || tpduLength > kTpduMaxSize)
        return 1;
    uint8_t tpdu[kTpduMaxSize];
    if (!HexToOctets(hex, tpduLength, tpdu))
        return 1;
    switch (tpdu[0] & 0x03) {
    case 0:
        return DecodeTpduDeliver(tpdu, tpduLength, out);
    case 1:
        return DecodeTpduSubmit(tpdu, tpduLength, out);
    case 2:
        return DecodeTpduStatusReport(tpdu, tpduLength, out);
    default:
        return 1;
    }
}

// SMS-DELIVER (TS 23.040 9.2.2.1): first octet, TP-OA, TP-PID, TP-DCS, TP-SCTS, TP-UDL, TP-UD.
int CSmsUtility::DecodeTpduDeliver(const uint8_t* tpdu, int length, TTpduData& out) {
    if (tpdu == nullptr || length < 1)
        return 1;
    TTpduDeliver deliver;
    const uint8_t first = tpdu[0];
    deliver.nMti = first & 0x03;
    deliver.bMoreMessagesToSend = (first >> 2) & 1;
    deliver.bStatusReportIndication = (first >> 5) & 1;
    deliver.bUdhi = (first >> 6) & 1;
    deliver.bReplyPath = (first >> 7) & 1;

    int pos = 1;
    const int used = DecodeTpduAddress(tpdu + pos, length - pos, deliver.originating);
    if (used == 0)
        return 1;
    pos += used;
    if (length - pos < 2 + 7 + 1)
        return 1;
    deliver.nPid = tpdu[pos++];
    deliver.nDcs = tpdu[pos++];
    pos += DecodeTimeStamp(tpdu + pos, length - pos, deliver.timeStamp);
    deliver.nUdl = tpdu[pos++];
    if (DecodeTpduUserData(deliver.nDcs, deliver.nUdl, tpdu + pos, length - pos, deliver.bUdhi != 0,
                           deliver.userData) != 0)
        return 1;
    out.nTpduType = SMS_TPDU_DELIVER;
    out.deliver = deliver;
    return 0;
}

// SMS-SUBMIT (TS 23.040 9.2.2.2): first octet, TP-MR, TP-DA, TP-PID, TP-DCS, TP-VP, TP-UDL, TP-UD.
int CSmsUtility::DecodeTpduSubmit(const uint8_t* tpdu, int length, TTpduData& out) {
    if (tpdu == nullptr || length < 2)
        return 1;
    TTpduSubmit submit;
    const uint8_t first = tpdu[0];
    submit.nMti = first & 0x03;
    submit.bRejectDuplicates = (first >> 2) & 1;
    submit.nVpf = (first >> 3) & 0x03;
    submit.bStatusReportRequest = (first >> 5) & 1;
    submit.bUdhi = (first >> 6) & 1;
    submit.bReplyPath = (first >> 7) & 1;
    submit.nMessageRef = tpdu[1];

    int pos = 2;
    const int used = DecodeTpduAddress(tpdu + pos, length - pos, submit.destination);
    if (used == 0)
        return 1;
    pos += used;
    if (length - pos < 2)
        return 1;
    submit.nPid = tpdu[pos++];
    submit.nDcs = tpdu[pos++];
    const int period = DecodeValidPeriod(tpdu + pos, length - pos, submit.nVpf, submit.validPeriod);
    if (period < 0)
        return 1;
    pos += period;
    if (length - pos < 1)
        return 1;
    submit.nUdl = tpdu[pos++];
    if (DecodeTpduUserData(submit.nDcs, submit.nUdl, tpdu + pos, length - pos, submit.bUdhi != 0,
                           submit.userData) != 0)
        return 1;
    out.nTpduType = SMS_TPDU_SUBMIT;
    out.submit = submit;
    return 0;
}

// SMS-STATUS-REPORT (TS 23.040 9.2.2.3): first octet, TP-MR, TP-RA, TP-SCTS, TP-DT, TP-ST, then the
// optional TP-PI, TP-PID, TP-DCS, TP-UDL, TP-UD.
int CSmsUtility::DecodeTpduStatusReport(const uint8_t* tpdu, int length, TTpduData& out) {
    if (tpdu == nullptr || length < 2)
        return 1;
    TTpduStatusReport report;
    const uint8_t first = tpdu[0];
    report.nMti = first & 0x03;
    report.bMoreMessagesToSend = (first >> 2) & 1;
    report.bStatusReportQualifier = (first >> 5) & 1;
    report.bUdhi = (first >> 6) & 1;
    report.nMessageRef = tpdu[1];

    int pos = 2;
    const int used = DecodeTpduAddress(tpdu + pos, length - pos, report.recipient);
    if (used == 0)
        return 1;
    pos += used;
    if (length - pos < 7 + 7 + 1)
        return 1;
    pos += DecodeTimeStamp(tpdu + pos, length - pos, report.timeStamp);
    pos += DecodeTimeStamp(tpdu + pos, length - pos, report.dischargeTime);
    report.nStatus = tpdu[pos++];

    if (pos < length) {
        report.nParameterIndicator = tpdu[pos++];
        if ((report.nParameterIndicator & 0x01) && pos < length)
            report.nPid = tpdu[pos++];
        // What follows the indicator (or the PID) must be there; a report cut short here is refused.
        if (pos >= length)
            return 1;
        if (report.nParameterIndicator & 0x02) {
            report.nDcs = tpdu[pos++];
            if (pos >= length)
                return 1;
        }
        if (report.nParameterIndicator & 0x04) {
            report.nUdl = tpdu[pos++];
            if (pos >= length)
                return 1;
        }
        if (DecodeTpduUserData(report.nDcs, report.nUdl, tpdu + pos, length - pos, report.bUdhi != 0,
                               report.userData) != 0)
            return 1;
    }
    out.nTpduType = SMS_TPDU_STATUS_REPORT;
    out.statusReport = report;
    return 0;
}

// TS 23.040 9.1.2.5: digit count, type of address, semi-octets ("0B911346610089F6" is "31641600986").
int CSmsUtility::DecodeTpduAddress(const uint8_t* octets, int length, TMsgAddress& out) {
    if (octets == nullptr || length < 2)
        return 0;
    const int digits = octets[0];
    if (digits > kMaxAddressDigits)
        return 0;
    const int valueOctets = (digits + 1) / 2;
    if (2 + valueOctets > length)
        return 0;
    TMsgAddress address;
    address.nType = octets[1] & 0x7F;
    if ((address.nType & 0x70) == 0x50) {
        // Alphanumeric: the raw septet codes are kept ("D0" type, e.g. "0BD0C7F7FBCC2E03" is "Google").
        const int septets = std::min({4 * digits / 7, valueOctets * 8 / 7, kMaxAlphanumericSeptets});
        uint8_t codes[kMaxAlphanumericSeptets];
        UnpackDefault7BitChars(octets + 2, valueOctets, septets, kMaxAlphanumericSeptets, 0, codes);
        for (int i = 0; i < septets; ++i)
            address.szAddress[i] = static_cast<char>(codes[i]);
    } else {
        // Nibbles 10-14 become ":" ";" "<" "=" ">"; they are not mapped to "*" and "#".
        int written = 0;
        for (int i = 0; i < valueOctets; ++i) {
            const uint8_t octet = octets[2 + i];
            address.szAddress[written++] = static_cast<char>('0' + (octet & 0x0F));
            if ((octet >> 4) == 0x0F)
                break;
            address.szAddress[written++] = static_cast<char>('0' + (octet >> 4));
        }
    }
    out = address;
    return 2 + valueOctets;
}

// TS 23.040 9.2.3.11: seven swapped BCD octets; the zone's first digit carries the sign in bit 3.
int CSmsUtility::DecodeTimeStamp(const uint8_t* octets, int length, TMsgTimeStamp& out) {
    if (octets == nullptr || length < 7)
        return 0;
    TMsgTimeStamp stamp;
    stamp.nYear = BigToLittleEndian(octets[0]);
    stamp.nMonth = BigToLittleEndian(octets[1]);
    stamp.nDay = BigToLittleEndian(octets[2]);
    stamp.nHour = BigToLittleEndian(octets[3]);
    stamp.nMinute = BigToLittleEndian(octets[4]);
    stamp.nSecond = BigToLittleEndian(octets[5]);
    const int month = BcdToInt(stamp.nMonth);
    if (month < 1 || month > 12)
        stamp.nMonth = 0x01;
    const int day = BcdToInt(stamp.nDay);
    if (day < 1 || day > 31)
        stamp.nDay = 0x01;
    if (BcdToInt(stamp.nHour) > 23)
        stamp.nHour = 0;
    if (BcdToInt(stamp.nMinute) > 59)
        stamp.nMinute = 0;
    if (BcdToInt(stamp.nSecond) > 59)
        stamp.nSecond = 0;
    const uint8_t zone = octets[6];
    int quarters = (zone & 0x07) * 10 + (zone >> 4);
    if (zone & 0x08)
        quarters = -quarters;
    stamp.nTimeZone = static_cast<int8_t>(quarters < -48 || quarters > 48 ? 0 : quarters);
    out = stamp;
    return 7;
}

// Text mode's time: "\"09/02/27,15:32:05+04\"".
int CSmsUtility::DecodeTimeString(const char* text, int length, TMsgTimeStamp& out) {
    if (text == nullptr || length != 22)
        return 1;
    const auto pair = [text](int at, uint8_t& value) {
        const char tens = text[at];
        const char units = text[at + 1];
        if (tens < '0' || tens > '9' || units < '0' || units > '9')
            return false;
        value = static_cast<uint8_t>((tens - '0') << 4 | (units - '0'));
        return true;
    };
    TMsgTimeStamp stamp;
    uint8_t zone = 0;
    if (!pair(1, stamp.nYear) || !pair(4, stamp.nMonth) || !pair(7, stamp.nDay) || !pair(10, stamp.nHour) ||
        !pair(13, stamp.nMinute) || !pair(16, stamp.nSecond) || !pair(19, zone))
        return 1;
    // The zone stays a BCD octet here, unlike DecodeTimeStamp's count of quarter hours.
    const int signedZone = text[18] == '-' ? -static_cast<int>(zone) : static_cast<int>(zone);
    stamp.nTimeZone = static_cast<int8_t>(signedZone);
    out = stamp;
    return 0;
}

int CSmsUtility::DecodeValidPeriod(const uint8_t* octets, int length, int format, TMsgTimeStamp& out) {
    out = TMsgTimeStamp{};
    switch (format) {
    case 0:
        return 0;
    case 1:
        return length < 7 ? -1 : DecodeEnhancedValidPeriod(octets, out);
    case 2:
        if (length < 1)
            return -1;
        DecodeRelativeValidPeriod(octets[0], out);
        return 1;
    case 3: {
        const int used = DecodeTimeStamp(octets, length, out);
        return used == 0 ? -1 : used;
    }
    default:
        return -1;
    }
}

// TS 23.040 9.2.3.12.1; 167 falls into the day range as one day.
void CSmsUtility::DecodeRelativeValidPeriod(uint8_t vp, TMsgTimeStamp& out) {
    out = TMsgTimeStamp{};
    if (vp <= 143) {
        const int minutes = (vp + 1) * 5;
        out.nHour = IntToBcd(minutes / 60);
        out.nMinute = IntToBcd(minutes % 60);
    } else if (vp <= 166) {
        const int minutes = (vp - 143) * 30;
        out.nHour = IntToBcd(minutes / 60 + 12);
        out.nMinute = IntToBcd(minutes % 60);
    } else if (vp <= 196) {
        const int days = vp - 166;
        out.nMonth = IntToBcd(days / 30);
        out.nDay = IntToBcd(days % 30);
    } else {
        const int days = (vp - 192) * 7;
        const int rest = days % 365;
        out.nYear = IntToBcd(days / 365);
        out.nMonth = IntToBcd(rest / 30);
        out.nDay = IntToBcd(rest % 30);
    }
}

int CSmsUtility::DecodeEnhancedValidPeriod(const uint8_t*, TMsgTimeStamp& out) {
    out.nYear = out.nMonth = out.nDay = out.nHour = out.nMinute = 0;
    return 7;
}

int CSmsUtility::DecodeTpduUserData(uint8_t dcs, uint8_t udl, const uint8_t* octets, int length, bool udhi,
                                    TUserData& out) {
    out = TUserData{};
    if (udl == 0)
        return 0;
    if (octets == nullptr)
        length = 0;
    length = std::max(length, 0);
    const int headerOctets = udhi && length > 0 ? octets[0] + 1 : 0;
    if (udhi)
        DecodeUserDataHeader(octets, length, out.header);

    if (DecodeDcsAlphabet(dcs) != SMS_ALPHABET_7BIT) {
        if (udl > kMaxUserDataOctets)
            return 1;
        const int announced = udl - headerOctets;
        const int present = std::min(announced, length - headerOctets);
        if (present > 0) {
            std::memcpy(out.data, octets + headerOctets, present);
            out.nLength = static_cast<uint32_t>(present);
        }
        return 0;
    }

    if (udl > kMaxSeptets)
        return 1;
    int septets = udl;
    int fillBits = 0;
    if (udhi) {
        // A 6-octet header "050003CC0201" leaves UDL x 7 - 48 bits: 1 fill bit, then the septets.
        const int bits = udl * 7 - headerOctets * 8;
        septets = bits > 0 ? bits / 7 : 0;
        fillBits = bits > 0 ? bits % 7 : 0;
    }
    const int available = length - headerOctets;
    const int fitting = available > 0 ? (available * 8 - fillBits) / 7 : 0;
    septets = std::min({septets, fitting, kMaxSeptets});
    if (septets > 0) {
        UnpackDefault7BitChars(octets + headerOctets, available, septets, kMaxSeptets,
                               fillBits != 0 ? 8 - fillBits : 0, out.data);
        out.nLength = static_cast<uint32_t>(septets);
    }
    return 0;
}

// TS 23.040 9.2.3.24: "050003CC0201" is an 8-bit concatenation element (reference 0xCC, part 1 of 2),
// "06 08 04 1234 03 01" a 16-bit one, of which only the low reference octet is kept.
void CSmsUtility::DecodeUserDataHeader(const uint8_t* octets, int length, TUserDataHeader& out) {
    out = TUserDataHeader{};
    if (octets == nullptr || length < 1)
        return;
    const int udhl = octets[0];
    const uint8_t* elements = octets + 1;
    const int end = std::min(udhl, length - 1);
    int pos = 0;
    while (pos < udhl && pos + 2 <= end) {
        const uint8_t iei = elements[pos];
        if (iei == 0x00) {
            if (pos + 5 > end)
                break;
            out.nReference = elements[pos + 2];
            out.nTotal = elements[pos + 3];
            out.nSequence = elements[pos + 4];
            out.bPresent = 1;
            pos += 5;
        } else if (iei == 0x08) {
            if (pos + 6 > end)
                break;
            out.nReference = elements[pos + 3];
            out.nTotal = elements[pos + 4];
            out.nSequence = elements[pos + 5];
            out.bPresent = 1;
            pos += 6;
        } else {
            pos += 2 + elements[pos + 1];
        }
    }
}

// TS 23.038 clause 4. Groups 00/01: bits 3-2 name the alphabet (compression ignored); 1111: bit 2;
// 1110: UCS2; 1100/1101: 7-bit; 10xx: reserved.
int CSmsUtility::DecodeDcsAlphabet(uint8_t dcs) {
    switch (dcs >> 6) {
    case 0:
    case 1:
        switch ((dcs >> 2) & 0x03) {
        case 0:
            return SMS_ALPHABET_7BIT;
        case 1:
            return SMS_ALPHABET_8BIT;
        case 2:
            return SMS_ALPHABET_UCS2;
        default:
            return SMS_ALPHABET_RESERVED;
        }
    case 3:
        switch ((dcs >> 4) & 0x03) {
        case 2:
            return SMS_ALPHABET_UCS2;
        case 3:
            return (dcs & 0x04) ? SMS_ALPHABET_8BIT : SMS_ALPHABET_7BIT;
        default:
            return SMS_ALPHABET_7BIT;
        }
    default:
        return SMS_ALPHABET_RESERVED;
    }
}

int CSmsUtility::DecodeDcsClass(uint8_t dcs) {
    if (((dcs >> 6) <= 1 && (dcs & 0x10)) || (dcs >> 4) == 0x0F)
        return dcs & 0x03;
    return kSmsNoClass;
}

int CSmsUtility::GetTpduType(uint8_t firstOctet, uint32_t& type) {
    switch (firstOctet & 0x03) {
    case 0:
        type = SMS_TPDU_DELIVER;
        return 0;
    case 1:
        type = SMS_TPDU_SUBMIT;
        return 0;
    case 2:
        type = SMS_TPDU_STATUS_REPORT;
        return 0;
    default:
        return 1;
    }
}

// TS 23.040 9.2.3.9: Replace Short Message Type 1-7.
bool CSmsUtility::IsReplaceShortMessage(uint8_t pid) {
    return pid >= 0x41 && pid <= 0x47;
}

void CSmsUtility::GetUserDataContent(int alphabet, const TUserData& data, std::wstring& text) {
    text.clear();
    const int length = static_cast<int>(std::min<uint32_t>(data.nLength, kUserDataSize));
    if (length == 0)
        return;
    switch (alphabet) {
    case SMS_ALPHABET_UCS2:
        text.reserve(length / 2);
        for (int i = 0; i + 1 < length; i += 2)
            text.push_back(static_cast<wchar_t>(data.data[i] << 8 | data.data[i + 1]));
        break;
    case SMS_ALPHABET_8BIT:
        text.assign(data.data, data.data + length);
        break;
    case SMS_ALPHABET_7BIT:
        Default7BitToWstring(data.data, length, text);
        break;
    default:
        break;
    }
}

// ---- Encoding ----

bool CSmsUtility::IsDialableAddress(const TMsgAddress& address) {
    const int count = static_cast<int>(strnlen(address.szAddress, kMsgAddressSize));
    return count > 0 && count <= kMaxDialDigits &&
           std::all_of(address.szAddress, address.szAddress + count,
                       [](char c) { return c >= '0' && c <= '9'; });
}

int CSmsUtility::EncodeTpduSubmit(const TTpduSubmit& submit, TProtocalTpduData& out) {
    out = TProtocalTpduData{};
    uint8_t* data = out.data;
    int pos = 0;
    int first = 0x01;
    if (submit.bRejectDuplicates)
        first |= 0x04;
    first += submit.nVpf * 8;
    if (submit.bStatusReportRequest)
        first |= 0x20;
    if (submit.bUdhi)
        first |= 0x40;
    if (submit.bReplyPath)
        first |= 0x80;
    if (!IsDialableAddress(submit.destination))
        return kErrNotAPhoneNumber;
    data[pos++] = static_cast<uint8_t>(first);
    // The record's own reference is not used: every submit takes the next value of the process's counter.
    data[pos++] = g_nextMessageReference.fetch_add(1);

    const int address = EncodeTpduAddress(submit.destination, data + pos, kTpduMaxSize - pos);
    if (address == 0)
        return 1;
    pos += address;
    data[pos++] = submit.nPid;
    data[pos++] = submit.nDcs;
    // Formats 1 and 3 are announced but not written; only 0 and 2 are ever sent.
    if (submit.nVpf == 2)
        data[pos++] = EncodeRelativeTime(submit.validPeriod);
    if (ComputeUserDataLength(submit.nDcs, submit.userData) > kMaxUserDataOctets)
        return 1;
    pos += EncodeTpduUserData(submit.nDcs, submit.userData, data + pos, kTpduMaxSize - pos);
    out.nLength = static_cast<uint32_t>(pos);
    return 0;
}

int CSmsUtility::EncodeTpduAddress(const TMsgAddress& address, uint8_t* out, int size) {
    const int count = static_cast<int>(strnlen(address.szAddress, kMsgAddressSize));
    const char* text = address.szAddress;
    if (!std::all_of(text, text + count, [](char c) { return c >= '0' && c <= '9'; }))
        return 0;
    const int written = 2 + (count + 1) / 2;
    if (out == nullptr || written > size)
        return 0;
    out[0] = static_cast<uint8_t>(count);
    out[1] = static_cast<uint8_t>(address.nType);
    for (int i = 0; i < count; i += 2) {
        const int low = text[i] & 0x0F;
        const int high = i + 1 < count ? text[i + 1] & 0x0F : 0x0F;
        out[2 + i / 2] = static_cast<uint8_t>(high << 4 | low);
    }
    return written;
}

// The header is always the 8-bit concatenation element "05 00 03 ref total seq"; 7-bit text follows it
// after 1 fill bit.
int CSmsUtility::EncodeTpduUserData(uint8_t dcs, TUserData data, uint8_t* out, int size) {
    const int header = data.header.bPresent ? kConcatHeaderOctets : 0;
    if (out == nullptr || size < 1 + header)
        return 0;
    const int length = static_cast<int>(std::min<uint32_t>(data.nLength, kUserDataSize));
    uint8_t* body = out + 1 + header;
    const int room = size - 1 - header;
    if (header != 0) {
        const uint8_t element[kConcatHeaderOctets] = {
            0x05, 0x00, 0x03, data.header.nReference, data.header.nTotal, data.header.nSequence};
        std::memcpy(out + 1, element, sizeof element);
    }
    int written = 0;
    if (DecodeDcsAlphabet(dcs) == SMS_ALPHABET_7BIT) {
        out[0] = static_cast<uint8_t>(header != 0 ? length + 7 : length);
        if (room > 0) {
            body[0] = 0;
            written =
                PackDefault7BitChars(data.data, length, header != 0 ? 1 : 0,
                                     std::min(header != 0 ? kMaxSeptets - 7 : kMaxSeptets - 1, room), body);
        }
    } else {
        out[0] = static_cast<uint8_t>(header != 0 ? length + header : length);
        written = std::min(length, room);
        std::memcpy(body, data.data, written);
    }
    return 1 + header + written;
}

// TS 23.040 9.2.3.12.1, with this system's rounding between 12 and 24 hours (offset 749 minutes, not
// 720), kept so that periods are sent as they always were.
uint8_t CSmsUtility::EncodeRelativeTime(const TMsgTimeStamp& period) {
    const int days = BcdToInt(period.nYear) * 365 + BcdToInt(period.nMonth) * 30 + BcdToInt(period.nDay);
    if (days >= 31)
        return static_cast<uint8_t>((days + 6) / 7 + 192);
    if (days >= 1)
        return static_cast<uint8_t>(166 + days);
    const int minutes = BcdToInt(period.nHour) * 60 + BcdToInt(period.nMinute);
    if (minutes <= 0)
        return 0;
    if (minutes <= 720)
        return static_cast<uint8_t>((minutes + 4) / 5 - 1);
    return static_cast<uint8_t>(143 + (minutes - 749) / 30);
}

int CSmsUtility::ComputeUserDataLength(uint8_t dcs, const TUserData& data) {
    const int64_t header = data.header.bPresent ? kConcatHeaderOctets : 0;
    const int64_t length = data.nLength;
    const int64_t octets =
        DecodeDcsAlphabet(dcs) == SMS_ALPHABET_7BIT ? header + (length * 7 + 7) / 8 : header + length;
    return static_cast<int>(std::min<int64_t>(octets, 1 << 30));
}

// ---- Characters ----

bool CSmsUtility::IsDefault7BitChar(wchar_t c) {
    return c == 0 || IsGsm7Char(c);
}

int CSmsUtility::WCharToDefault7Bit(wchar_t c, uint8_t& septet) {
    if (IsIdentity7Bit(c)) {
        septet = static_cast<uint8_t>(c);
        return 1;
    }
    const int code = Gsm7DefaultCode(c);
    if (code < 0)
        return 0;
    septet = static_cast<uint8_t>(code);
    return 1;
}

int CSmsUtility::WStringToDefault7Bit(const wchar_t* text, int count, uint8_t* out, int outSize) {
    if (out == nullptr || outSize <= 0)
        return 0;
    std::memset(out, 0, outSize);
    if (text == nullptr)
        return 0;
    int written = 0;
    for (int i = 0; i < count; ++i) {
        uint8_t codes[2] = {0x20, 0};
        int needed = 1;
        if (WCharToDefault7Bit(text[i], codes[0]) == 0) {
            // The page break (extension code 10) is never written: line feed has its own code.
            const int extension = Gsm7ExtensionCode(text[i]);
            if (extension >= 0 && extension != 10) {
                codes[0] = kGsm7Escape;
                codes[1] = static_cast<uint8_t>(extension);
                needed = 2;
            }
        }
        if (written + needed > outSize - 1)
            break;
        for (int k = 0; k < needed; ++k)
            out[written++] = codes[k];
    }
    return written;
}

void CSmsUtility::Default7BitToWstring(const uint8_t* septets, int count, std::wstring& text) {
    text.clear();
    if (septets == nullptr)
        return;
    text.reserve(count);
    for (int i = 0; i < count; ++i) {
        const uint8_t code = septets[i];
        if (code >= 0x80) {
            text.push_back(L' ');
        } else if (code == kGsm7Escape) {
            const wchar_t extension = i + 1 < count ? Gsm7ExtensionToUnicode(septets[i + 1]) : kGsm7NoChar;
            if (extension != kGsm7NoChar) {
                text.push_back(extension);
                ++i;
            } else {
                text.push_back(L' ');
            }
        } else {
            text.push_back(v_wDefault7BitTable[code]);
        }
    }
}

int CSmsUtility::GetEncodeType(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), IsDefault7BitChar) ? 0 : 1;
}

int CSmsUtility::WStringToBigEndianUcs2(const wchar_t* text, int count, uint16_t* out, int outSize) {
    if (text == nullptr || out == nullptr)
        return 0;
    const int n = std::max(0, std::min(count, outSize));
    for (int i = 0; i < n; ++i) {
        const unsigned unit = static_cast<unsigned>(text[i]) & 0xFFFF;
        auto* bytes = reinterpret_cast<unsigned char*>(&out[i]);
        bytes[0] = static_cast<unsigned char>(unit >> 8);
        bytes[1] = static_cast<unsigned char>(unit & 0xFF);
    }
    return n;
}

// TS 23.038 6.1.2.1.1: "hellohello" packs to E8 32 9B FD 46 97 D9 EC 37.
int CSmsUtility::PackDefault7BitChars(const uint8_t* septets, int count, int fillBits, int maxOutputs,
                                      uint8_t* out) {
    if (septets == nullptr || out == nullptr || count <= 0 || maxOutputs <= 0)
        return 0;
    fillBits = std::clamp(fillBits, 0, 7);
    const int fitting = std::max(0, (maxOutputs * 8 - fillBits) / 7);
    const int packed = std::min(count, fitting);
    if (packed == 0)
        return 0;
    const int octets = (fillBits + 7 * packed + 7) / 8;
    // The first octet may already hold header bits; the rest is written afresh.
    std::memset(out + 1, 0, octets - 1);
    for (int i = 0; i < packed; ++i) {
        const int bit = fillBits + 7 * i;
        const unsigned value = septets[i] & 0x7F;
        out[bit / 8] |= static_cast<uint8_t>(value << (bit % 8));
        if (bit % 8 > 1)
            out[bit / 8 + 1] |= static_cast<uint8_t>(value >> (8 - bit % 8));
    }
    return octets;
}

int CSmsUtility::UnpackDefault7BitChars(const uint8_t* octets, int length, int count, int maxOutputs,
                                        int shift, uint8_t* out) {
    if (octets == nullptr || out == nullptr || length <= 0)
        return 0;
    const int fillBits = shift >= 1 && shift <= 7 ? 8 - shift : 0;
    const int fitting = std::max(0, (length * 8 - fillBits) / 7);
    const int n = std::max(0, std::min({count, maxOutputs, fitting}));
    for (int i = 0; i < n; ++i) {
        const int bit = fillBits + 7 * i;
        unsigned value = octets[bit / 8] >> (bit % 8);
        if (bit % 8 > 1)
            value |= static_cast<unsigned>(octets[bit / 8 + 1]) << (8 - bit % 8);
        out[i] = static_cast<uint8_t>(value & 0x7F);
    }
    return n == 0 ? 0 : (fillBits + 7 * n + 7) / 8;
}

// ---- Records ----

void CSmsUtility::TSmsAddressToTMsgAddress(const TSmsAddress& in, TMsgAddress& out) {
    out = TMsgAddress{};
    const char* number = in.szNumber;
    int size = kSmsNumberSize;
    if (number[0] == '+') {
        out.nType = 145;
        ++number;
        --size;
    } else {
        out.nType = 129;
    }
    CopyBounded(out.szAddress, kMsgAddressSize, number, size);
}

void CSmsUtility::TMsgAddressToTSmsAddress(const TMsgAddress& in, TSmsAddress& out) {
    out = TSmsAddress{};
    if (in.szAddress[0] == '\0')
        return;
    if ((in.nType & 0x70) == 0x10 && in.szAddress[0] != '+') {
        out.szNumber[0] = '+';
        CopyBounded(out.szNumber + 1, kSmsNumberSize - 1, in.szAddress, kMsgAddressSize);
    } else {
        CopyBounded(out.szNumber, kSmsNumberSize, in.szAddress, kMsgAddressSize);
    }
}

// Days and hours are stored as plain numbers although EncodeRelativeTime reads them as BCD: 20 days are
// sent as 14. Kept: this is how the period has always been sent.
void CSmsUtility::TSmsValidPeriodToTMsgTimeStamp(const TSmsValidPeriod& in, TMsgTimeStamp& out) {
    out = TMsgTimeStamp{};
    if (!in.bEnable)
        return;
    if (in.bWeek == 255) {
        out.nYear = 1;
        out.nMonth = 2;
        out.nDay = 0x10;
        return;
    }
    const uint8_t days = static_cast<uint8_t>(in.bWeek * 7 + in.bDay);
    if (days != 0) {
        out.nMonth = days / 30;
        out.nDay = days % 30;
    }
    out.nHour = in.bHour;
}

void CSmsUtility::TMsgTimeStampToTSmsDateTime(const TMsgTimeStamp& in, TSmsDateTime& out) {
    out = TSmsDateTime{};
    out.nYear = static_cast<uint16_t>(2000 + BcdToInt(in.nYear) - ((in.nYear & 0x80) ? 100 : 0));
    out.nMonth = static_cast<uint8_t>(BcdToInt(in.nMonth));
    out.nDay = static_cast<uint8_t>(BcdToInt(in.nDay));
    out.nHour = static_cast<uint8_t>(BcdToInt(in.nHour));
    out.nMinute = static_cast<uint8_t>(BcdToInt(in.nMinute));
    out.nSecond = static_cast<uint8_t>(BcdToInt(in.nSecond));
    out.bValid = 1;
}
