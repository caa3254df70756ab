#include "SimPdu.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <span>

namespace modemsim {

namespace {

using Coding = DeliverParams::Coding;

constexpr size_t kMaxUserDataOctets = 140;
constexpr size_t kMaxSeptets = 160;
constexpr size_t kMaxAddressDigits = 20;
constexpr size_t kMaxAlphanumericSeptets = 11;

// ---- writing --------------------------------------------------------------------------------------

uint8_t SwappedBcd(int value) {
    return static_cast<uint8_t>((value % 10) << 4 | (value / 10) % 10);
}

int DigitNibble(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    return c == '*' ? 0xA : c == '#' ? 0xB : -1;
}

// Digits as semi-octets, low nibble first, 0xF filling an odd count. False on a non-digit.
bool AppendBcdDigits(std::string_view digits, Bytes* out) {
    for (size_t i = 0; i < digits.size(); i += 2) {
        const int lo = DigitNibble(digits[i]);
        const int hi = i + 1 < digits.size() ? DigitNibble(digits[i + 1]) : 0xF;
        if (lo < 0 || hi < 0) {
            return false;
        }
        out->push_back(static_cast<uint8_t>(hi << 4 | lo));
    }
    return true;
}

bool IsDialString(std::string_view s) {
    if (s.empty()) {
        return false;
    }
    for (char c : s) {
        if (DigitNibble(c) < 0) {
            return false;
        }
    }
    return true;
}

// Service-centre prefix: octet count of type plus digits, 0x91/0x81, digits. "00" when empty.
bool AppendSmsc(std::string_view smsc, Bytes* out) {
    if (smsc.empty()) {
        out->push_back(0);
        return true;
    }
    const bool international = smsc.front() == '+';
    const std::string_view digits = international ? smsc.substr(1) : smsc;
    if (!IsDialString(digits) || digits.size() > kMaxAddressDigits) {
        return false;
    }
    out->push_back(static_cast<uint8_t>(1 + (digits.size() + 1) / 2));
    out->push_back(international ? 0x91 : 0x81);
    return AppendBcdDigits(digits, out);
}

// TP-OA / TP-DA / TP-RA. A number (optionally "+") is BCD; anything else is an alphanumeric address in
// packed 7-bit, its length counted in semi-octets.
bool AppendAddress(std::string_view number, Bytes* out) {
    if (number.empty()) {
        out->insert(out->end(), {0x00, 0x81});
        return true;
    }
    const bool international = number.front() == '+';
    const std::string_view digits = international ? number.substr(1) : number;
    if (IsDialString(digits)) {
        if (digits.size() > kMaxAddressDigits) {
            return false;
        }
        out->push_back(static_cast<uint8_t>(digits.size()));
        out->push_back(international ? 0x91 : 0x81);
        return AppendBcdDigits(digits, out);
    }
    Bytes septets;
    for (char32_t c : Utf8ToUtf32(number)) {
        Bytes one;
        if (!AppendGsm7(c, &one)) {
            one.assign(1, '?');
        }
        if (septets.size() + one.size() > kMaxAlphanumericSeptets) {
            break;
        }
        septets.insert(septets.end(), one.begin(), one.end());
    }
    const Bytes packed = PackSeptets(septets, 0);
    out->push_back(static_cast<uint8_t>((septets.size() * 7 + 3) / 4));
    out->push_back(0xD0);
    out->insert(out->end(), packed.begin(), packed.end());
    return true;
}

// "YY/MM/DD,hh:mm:ss+zz" (optionally quoted) to the seven semi-octet time stamp octets; empty = now.
bool AppendTimestamp(std::string_view text, Bytes* out) {
    std::string now;
    if (text.empty()) {
        now = CurrentTimestamp();
        text = now;
    }
    if (text.size() == 22 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, 20);
    }
    static constexpr std::string_view kShape = "00/00/00,00:00:00+00";
    if (text.size() != kShape.size()) {
        return false;
    }
    for (size_t i = 0; i < kShape.size(); ++i) {
        const bool digitWanted = kShape[i] == '0';
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (digitWanted != isDigit || (!digitWanted && i != 17 && text[i] != kShape[i])) {
            return false;
        }
    }
    if (text[17] != '+' && text[17] != '-') {
        return false;
    }
    auto field = [&](size_t pos) { return (text[pos] - '0') * 10 + (text[pos + 1] - '0'); };
    for (size_t pos : {0, 3, 6, 9, 12, 15}) {
        out->push_back(SwappedBcd(field(pos)));
    }
    // Zone: quarter hours, units in the high nibble, tens in bits 0-2, bit 3 the sign.
    const int tens = text[18] - '0';
    if (tens > 7) {
        return false;
    }
    out->push_back(static_cast<uint8_t>((text[19] - '0') << 4 | tens | (text[17] == '-' ? 0x08 : 0)));
    return true;
}

struct UserDataPlan {
    Coding coding = Coding::Gsm7;
    std::u32string text;
    Bytes data;
    int ref = -1, total = 0, seq = 0;
    bool ref16 = false;
};

// UDL and user data (header first). False when it exceeds 160 septets / 140 octets.
bool AppendUserData(const UserDataPlan& plan, Bytes* out, bool* hasHeader) {
    Bytes header;
    if (plan.ref >= 0 && plan.total > 0) {
        if (plan.ref16) {
            header = {0x06, 0x08, 0x04, static_cast<uint8_t>(plan.ref >> 8 & 0xFF),
                      static_cast<uint8_t>(plan.ref & 0xFF)};
        } else {
            header = {0x05, 0x00, 0x03, static_cast<uint8_t>(plan.ref & 0xFF)};
        }
        header.push_back(static_cast<uint8_t>(plan.total & 0xFF));
        header.push_back(static_cast<uint8_t>(plan.seq & 0xFF));
    }
    *hasHeader = !header.empty();
    Bytes body;
    size_t udl = 0;
    if (plan.coding == Coding::Gsm7) {
        // The first septet starts on a septet boundary after the header: fill bits between them.
        const size_t headerSeptets = (header.size() * 8 + 6) / 7;
        const Bytes septets = TextToGsm7(plan.text);
        udl = headerSeptets + septets.size();
        if (udl > kMaxSeptets) {
            return false;
        }
        body = PackSeptets(septets, static_cast<int>(headerSeptets * 7 - header.size() * 8));
    } else {
        body = plan.coding == Coding::Ucs2 ? TextToUtf16Be(plan.text) : plan.data;
        udl = header.size() + body.size();
        if (udl > kMaxUserDataOctets) {
            return false;
        }
    }
    out->push_back(static_cast<uint8_t>(udl));
    out->insert(out->end(), header.begin(), header.end());
    out->insert(out->end(), body.begin(), body.end());
    return true;
}

Coding ResolveCoding(Coding coding, const std::u32string& text, const Bytes& data) {
    if (coding != Coding::Auto) {
        return coding;
    }
    if (text.empty() && !data.empty()) {
        return Coding::Data8;
    }
    return FitsGsm7(text) ? Coding::Gsm7 : Coding::Ucs2;
}

// The user data of a DELIVER or SUBMIT being built; Auto coding resolved on the text.
template <typename Params> UserDataPlan PlanFor(const Params& p) {
    UserDataPlan plan;
    plan.text = Utf8ToUtf32(p.textUtf8);
    plan.data = p.data;
    plan.coding = ResolveCoding(p.coding, plan.text, p.data);
    plan.ref = p.concatRef;
    plan.total = p.concatTotal;
    plan.seq = p.concatSeq;
    plan.ref16 = p.concat16bit;
    return plan;
}

uint8_t DcsFor(Coding coding, int messageClass) {
    uint8_t dcs = coding == Coding::Ucs2 ? 0x08 : coding == Coding::Data8 ? 0x04 : 0x00;
    if (messageClass >= 0 && messageClass <= 3) {
        dcs |= static_cast<uint8_t>(0x10 | messageClass);
    }
    return dcs;
}

std::string Finish(const Bytes& prefix, const Bytes& tpdu, int* tpduLength) {
    *tpduLength = static_cast<int>(tpdu.size());
    return ToHex(prefix) + ToHex(tpdu);
}

std::string Failed(int* tpduLength) {
    *tpduLength = 0;
    return {};
}

// ---- reading --------------------------------------------------------------------------------------

class Reader {
public:
    explicit Reader(std::span<const uint8_t> octets) : octets_(octets) {}
    bool Byte(uint8_t* v) {
        if (pos_ >= octets_.size()) {
            return false;
        }
        *v = octets_[pos_++];
        return true;
    }
    bool Take(size_t n, std::span<const uint8_t>* out) {
        if (octets_.size() - pos_ < n) {
            return false;
        }
        *out = octets_.subspan(pos_, n);
        pos_ += n;
        return true;
    }
    size_t Remaining() const { return octets_.size() - pos_; }

private:
    std::span<const uint8_t> octets_;
    size_t pos_ = 0;
};

// Semi-octet digits; 0xF may only fill the high nibble of the last octet.
bool ReadBcdDigits(std::span<const uint8_t> octets, size_t count, std::string* out) {
    static constexpr char kDigits[] = "0123456789*#abc";
    for (size_t i = 0; i < count; ++i) {
        const uint8_t b = octets[i / 2];
        const int nibble = i % 2 == 0 ? b & 0x0F : b >> 4;
        if (nibble == 0xF) {
            return false;
        }
        out->push_back(kDigits[nibble]);
    }
    return true;
}

bool ReadSmsc(std::span<const uint8_t> prefix, std::string* smsc, std::string* error) {
    // prefix = length octet, type, digits; the caller has checked that the length octet fits.
    if (prefix[0] == 0) {
        return true;
    }
    if (prefix[0] > 11) {
        *error = "service-centre address too long";
        return false;
    }
    const auto digits = prefix.subspan(2);
    size_t count = digits.size() * 2;
    if (!digits.empty() && (digits.back() >> 4) == 0xF) {
        --count;
    }
    if ((prefix[1] & 0x70) == 0x10) {
        smsc->push_back('+');
    }
    if (!ReadBcdDigits(digits, count, smsc)) {
        *error = "bad digit in service-centre address";
        return false;
    }
    return true;
}

bool ReadAddress(Reader& r, std::string* out, std::string* error) {
    uint8_t length = 0, type = 0;
    std::span<const uint8_t> value;
    if (!r.Byte(&length) || !r.Byte(&type)) {
        *error = "address truncated";
        return false;
    }
    if (length > kMaxAddressDigits) {
        *error = "address too long";
        return false;
    }
    if (!r.Take((length + 1) / 2, &value)) {
        *error = "address truncated";
        return false;
    }
    if ((type & 0x70) == 0x50) {
        *out = Utf32ToUtf8(Gsm7ToText(UnpackSeptets(value, length * 4 / 7, 0)));
        return true;
    }
    if ((type & 0x70) == 0x10) {
        out->push_back('+');
    }
    if (!ReadBcdDigits(value, length, out)) {
        *error = "bad digit in address";
        return false;
    }
    return true;
}

// TS 23.038 clause 4: the alphabet of a data coding scheme, and its message class (-1 for none).
bool ReadDcs(uint8_t dcs, Coding* coding, int* messageClass, std::string* error) {
    *messageClass = -1;
    const int group = dcs >> 4;
    if (group <= 0x7) {
        if (dcs & 0x20) {
            *error = "compressed text is not supported";
            return false;
        }
        if (dcs & 0x10) {
            *messageClass = dcs & 0x03;
        }
        switch ((dcs >> 2) & 0x03) {
        case 0:
            *coding = Coding::Gsm7;
            return true;
        case 1:
            *coding = Coding::Data8;
            return true;
        case 2:
            *coding = Coding::Ucs2;
            return true;
        default:
            *error = "reserved alphabet in data coding scheme";
            return false;
        }
    }
    if (group <= 0xB) {
        *error = "reserved data coding scheme group";
        return false;
    }
    if (group == 0xF) {
        *messageClass = dcs & 0x03;
        *coding = (dcs & 0x04) ? Coding::Data8 : Coding::Gsm7;
    } else {
        *coding = group == 0xE ? Coding::Ucs2 : Coding::Gsm7;
    }
    return true;
}

struct UserData {
    std::string text;
    Bytes data;
    int ref = -1, total = 0, seq = 0;
    bool ref16 = false;
};

// UDL and user data up to the end of the TPDU; nothing may follow them.
bool ReadUserData(Reader& r, Coding coding, bool udhi, UserData* out, std::string* error) {
    uint8_t udl = 0;
    if (!r.Byte(&udl)) {
        *error = "user data length missing";
        return false;
    }
    const bool septets = coding == Coding::Gsm7;
    if (udl > (septets ? kMaxSeptets : kMaxUserDataOctets)) {
        *error = "user data length too large";
        return false;
    }
    std::span<const uint8_t> ud;
    if (!r.Take(septets ? (udl * 7 + 7) / 8 : udl, &ud)) {
        *error = "user data shorter than its length";
        return false;
    }
    if (r.Remaining() != 0) {
        *error = "octets after the user data";
        return false;
    }
    size_t headerOctets = 0;
    if (udhi) {
        if (ud.empty()) {
            *error = "header indicated but no user data";
            return false;
        }
        headerOctets = ud[0] + 1u;
        if (headerOctets > ud.size() || (septets && headerOctets * 8 > udl * 7u)) {
            *error = "user data header longer than the user data";
            return false;
        }
        for (size_t pos = 1; pos < headerOctets;) {
            if (headerOctets - pos < 2 || headerOctets - pos - 2 < ud[pos + 1]) {
                *error = "truncated user data header element";
                return false;
            }
            const uint8_t iei = ud[pos];
            const uint8_t length = ud[pos + 1];
            const auto value = ud.subspan(pos + 2, length);
            // TS 23.040 9.2.3.24.1: a concatenation element with a bad sequence number is ignored.
            if (iei == 0x00 && length == 3 && value[1] > 0 && value[2] > 0 && value[2] <= value[1]) {
                *out = {{}, {}, value[0], value[1], value[2], false};
            } else if (iei == 0x08 && length == 4 && value[2] > 0 && value[3] > 0 && value[3] <= value[2]) {
                *out = {{}, {}, value[0] << 8 | value[1], value[2], value[3], true};
            }
            pos += 2 + length;
        }
    }
    const auto body = ud.subspan(headerOctets);
    if (septets) {
        const size_t headerSeptets = (headerOctets * 8 + 6) / 7;
        const int fill = static_cast<int>(headerSeptets * 7 - headerOctets * 8);
        out->text = Utf32ToUtf8(Gsm7ToText(UnpackSeptets(body, udl - headerSeptets, fill)));
    } else if (coding == Coding::Ucs2) {
        out->text = Utf32ToUtf8(Utf16BeToText(body));
    } else {
        out->data.assign(body.begin(), body.end());
    }
    return true;
}

std::string FormatTimestamp(std::span<const uint8_t> ts) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (size_t i = 0; i < 6; ++i) {
        out.push_back(kHex[ts[i] & 0x0F]);
        out.push_back(kHex[ts[i] >> 4]);
        out.push_back(i == 2 ? ',' : i < 2 ? '/' : ':');
    }
    out.back() = (ts[6] & 0x08) ? '-' : '+';
    out.push_back(static_cast<char>('0' + (ts[6] & 0x07)));
    out.push_back(kHex[ts[6] >> 4]);
    return out;
}

// The octets of "<sca><tpdu>" with the length of the TPDU checked; the prefix is parsed into smsc.
bool SplitPdu(const std::string& hex, int tpduLength, Bytes* pdu, std::span<const uint8_t>* tpdu,
              std::string* smsc, std::string* error) {
    if (!FromHex(hex, pdu)) {
        *error = "PDU is not hex or has an odd length";
        return false;
    }
    if (pdu->empty() || pdu->size() - 1 < (*pdu)[0]) {
        *error = "service-centre address overruns the PDU";
        return false;
    }
    const size_t prefix = 1u + (*pdu)[0];
    if (tpduLength < 1 || pdu->size() - prefix != static_cast<size_t>(tpduLength)) {
        *error = "TPDU length does not match the PDU";
        return false;
    }
    if (!ReadSmsc(std::span<const uint8_t>(*pdu).first(prefix), smsc, error)) {
        return false;
    }
    *tpdu = std::span<const uint8_t>(*pdu).subspan(prefix);
    return true;
}

std::vector<std::u32string> SplitText(const std::u32string& text, Coding coding, size_t limit) {
    std::vector<std::u32string> parts(1);
    size_t used = 0;
    for (char32_t c : text) {
        const std::u32string one(1, c);
        const size_t cost = coding == Coding::Gsm7 ? Gsm7SeptetCount(one) : Utf16UnitCount(one);
        if (used + cost > limit) {
            parts.emplace_back();
            used = 0;
        }
        parts.back().push_back(c);
        used += cost;
    }
    return parts;
}

} // namespace

std::string EncodeDeliverPdu(const DeliverParams& p, int* tpduLength) {
    const UserDataPlan plan = PlanFor(p);
    Bytes prefix, tpdu{0};
    bool hasHeader = false;
    if (!AppendSmsc(p.smsc, &prefix) || !AppendAddress(p.originator, &tpdu)) {
        return Failed(tpduLength);
    }
    tpdu.push_back(static_cast<uint8_t>(p.protocolId));
    tpdu.push_back(DcsFor(plan.coding, p.messageClass));
    if (!AppendTimestamp(p.timestamp, &tpdu) || !AppendUserData(plan, &tpdu, &hasHeader)) {
        return Failed(tpduLength);
    }
    // SMS-DELIVER, TP-MMS set (no more messages waiting), TP-UDHI with a header.
    tpdu[0] = hasHeader ? 0x44 : 0x04;
    return Finish(prefix, tpdu, tpduLength);
}

std::vector<DeliverParams> SplitLongText(const DeliverParams& base, int ref, bool use16bitRef) {
    const std::u32string text = Utf8ToUtf32(base.textUtf8);
    const Coding coding = ResolveCoding(base.coding, text, base.data);
    const size_t headerCost = use16bitRef ? 1 : 0;
    std::vector<DeliverParams> parts;
    if (coding == Coding::Data8) {
        const size_t limit = 134 - headerCost;
        if (base.data.size() <= kMaxUserDataOctets) {
            return {base};
        }
        for (size_t pos = 0; pos < base.data.size(); pos += limit) {
            DeliverParams part = base;
            part.data.assign(base.data.begin() + pos,
                             base.data.begin() + std::min(base.data.size(), pos + limit));
            parts.push_back(std::move(part));
        }
    } else {
        const bool gsm = coding == Coding::Gsm7;
        const size_t single = gsm ? kMaxSeptets : 70;
        const size_t length = gsm ? Gsm7SeptetCount(text) : Utf16UnitCount(text);
        if (length <= single) {
            return {base};
        }
        for (const auto& chunk : SplitText(text, coding, (gsm ? 153 : 67) - headerCost)) {
            DeliverParams part = base;
            part.textUtf8 = Utf32ToUtf8(chunk);
            parts.push_back(std::move(part));
        }
    }
    if (parts.size() > 255) {
        return {};
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        parts[i].coding = coding;
        parts[i].concatRef = ref & (use16bitRef ? 0xFFFF : 0xFF);
        parts[i].concatTotal = static_cast<int>(parts.size());
        parts[i].concatSeq = static_cast<int>(i + 1);
        parts[i].concat16bit = use16bitRef;
    }
    return parts;
}

SubmitInfo DecodeSubmitPdu(const std::string& hex, int tpduLength) {
    SubmitInfo info;
    Bytes pdu;
    std::span<const uint8_t> tpdu;
    if (!SplitPdu(hex, tpduLength, &pdu, &tpdu, &info.smsc, &info.error)) {
        return info;
    }
    Reader r(tpdu);
    uint8_t first = 0, mr = 0, pid = 0, dcs = 0;
    if (!r.Byte(&first) || (first & 0x03) != 0x01) {
        info.error = "not an SMS-SUBMIT";
        return info;
    }
    info.rejectDuplicates = first & 0x04;
    info.validityFormat = (first >> 3) & 0x03;
    info.statusReportRequest = first & 0x20;
    info.replyPath = first & 0x80;
    if (!r.Byte(&mr)) {
        info.error = "message reference missing";
        return info;
    }
    info.mr = mr;
    if (!ReadAddress(r, &info.destination, &info.error)) {
        return info;
    }
    if (!r.Byte(&pid) || !r.Byte(&dcs)) {
        info.error = "protocol identifier or coding scheme missing";
        return info;
    }
    info.pid = pid;
    info.dcs = dcs;
    static constexpr size_t kValidityOctets[] = {0, 7, 1, 7};
    std::span<const uint8_t> vp;
    if (!r.Take(kValidityOctets[info.validityFormat], &vp)) {
        info.error = "validity period truncated";
        return info;
    }
    if (info.validityFormat == 2) {
        info.validity = vp[0];
    }
    Coding coding = Coding::Gsm7;
    int messageClass = -1;
    UserData ud;
    if (!ReadDcs(dcs, &coding, &messageClass, &info.error) ||
        !ReadUserData(r, coding, first & 0x40, &ud, &info.error)) {
        return info;
    }
    info.textUtf8 = std::move(ud.text);
    info.data = std::move(ud.data);
    info.concatRef = ud.ref;
    info.concatTotal = ud.total;
    info.concatSeq = ud.seq;
    info.concat16bit = ud.ref16;
    info.ok = true;
    return info;
}

DeliverInfo DecodeDeliverPdu(const std::string& hex, int tpduLength) {
    DeliverInfo info;
    Bytes pdu;
    std::span<const uint8_t> tpdu;
    if (!SplitPdu(hex, tpduLength, &pdu, &tpdu, &info.smsc, &info.error)) {
        return info;
    }
    Reader r(tpdu);
    uint8_t first = 0, pid = 0, dcs = 0;
    if (!r.Byte(&first) || (first & 0x03) != 0x00) {
        info.error = "not an SMS-DELIVER";
        return info;
    }
    if (!ReadAddress(r, &info.originator, &info.error)) {
        return info;
    }
    std::span<const uint8_t> ts;
    if (!r.Byte(&pid) || !r.Byte(&dcs) || !r.Take(7, &ts)) {
        info.error = "deliver header truncated";
        return info;
    }
    info.pid = pid;
    info.dcs = dcs;
    info.timestamp = FormatTimestamp(ts);
    Coding coding = Coding::Gsm7;
    UserData ud;
    if (!ReadDcs(dcs, &coding, &info.messageClass, &info.error) ||
        !ReadUserData(r, coding, first & 0x40, &ud, &info.error)) {
        return info;
    }
    info.textUtf8 = std::move(ud.text);
    info.data = std::move(ud.data);
    info.concatRef = ud.ref;
    info.concatTotal = ud.total;
    info.concatSeq = ud.seq;
    info.concat16bit = ud.ref16;
    info.ok = true;
    return info;
}

int TpduLengthOfPdu(const std::string& hex) {
    Bytes pdu;
    if (!FromHex(hex, &pdu) || pdu.empty() || pdu.size() - 1 < pdu[0]) {
        return -1;
    }
    return static_cast<int>(pdu.size() - 1 - pdu[0]);
}

std::string EncodeStatusReportPdu(int mr, const std::string& recipient, const std::string& scts,
                                  const std::string& dischargeTime, int status, int* tpduLength,
                                  const std::string& smsc) {
    // SMS-STATUS-REPORT, TP-MMS set; no parameter indicator: the report ends with TP-ST.
    Bytes prefix, tpdu{0x06, static_cast<uint8_t>(mr)};
    if (!AppendSmsc(smsc, &prefix) || !AppendAddress(recipient, &tpdu) || !AppendTimestamp(scts, &tpdu) ||
        !AppendTimestamp(dischargeTime, &tpdu)) {
        return Failed(tpduLength);
    }
    tpdu.push_back(static_cast<uint8_t>(status));
    return Finish(prefix, tpdu, tpduLength);
}

std::string EncodeSubmitPduForStorage(const StoredSubmitParams& p, int* tpduLength) {
    const UserDataPlan plan = PlanFor(p);
    Bytes prefix, tpdu{0, static_cast<uint8_t>(p.mr)};
    bool hasHeader = false;
    if (!AppendSmsc(p.smsc, &prefix) || !AppendAddress(p.destination, &tpdu)) {
        return Failed(tpduLength);
    }
    tpdu.push_back(0x00);
    tpdu.push_back(DcsFor(plan.coding, -1));
    if (p.validity >= 0) {
        tpdu.push_back(static_cast<uint8_t>(p.validity));
    }
    if (!AppendUserData(plan, &tpdu, &hasHeader)) {
        return Failed(tpduLength);
    }
    tpdu[0] = static_cast<uint8_t>(0x01 | (p.validity >= 0 ? 0x10 : 0) | (p.statusReportRequest ? 0x20 : 0) |
                                   (hasHeader ? 0x40 : 0));
    return Finish(prefix, tpdu, tpduLength);
}

std::string CurrentTimestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm tm{};
    localtime_r(&now, &tm);
    const int quarters = static_cast<int>(std::clamp(tm.tm_gmtoff / 900, -79L, 79L));
    char buf[64];
    std::snprintf(buf, sizeof buf, "%02d/%02d/%02d,%02d:%02d:%02d%c%02d", tm.tm_year % 100, tm.tm_mon + 1,
                  tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, quarters < 0 ? '-' : '+',
                  quarters < 0 ? -quarters : quarters);
    return buf;
}

} // namespace modemsim
