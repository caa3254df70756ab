#include "SMS/SmsPduText.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <regex>

#include "SmsUtility.h"
#include "WideText.h"

namespace {

using nlohmann::json;

std::string Hex(const uint8_t* data, int count) {
    static const char* const digits = "0123456789ABCDEF";
    std::string hex;
    for (int i = 0; i < count; ++i) {
        hex += digits[data[i] >> 4];
        hex += digits[data[i] & 0x0F];
    }
    return hex;
}

// The TPDU length the modem would have printed: the octets after the service-centre part, whose length
// is read as the decoder reads it.
int ImpliedTpduLength(const std::string& hex) {
    if (hex.size() < 2)
        return 0;
    const int serviceCentre = CSmsUtility::HexCharToInt(hex[1]);
    return static_cast<int>(hex.size() / 2) - 1 - std::max(serviceCentre, 0);
}

bool IsAlphanumeric(const TMsgAddress& address) {
    return (address.nType & 0x70) == 0x50;
}

// The address as the business layer lists it; an alphanumeric sender's septets are turned into text here
// only for display.
std::string DisplayNumber(const TMsgAddress& address) {
    if (IsAlphanumeric(address)) {
        std::wstring text;
        CSmsUtility::Default7BitToWstring(reinterpret_cast<const uint8_t*>(address.szAddress),
                                          static_cast<int>(std::strlen(address.szAddress)), text);
        return ToUtf8(text);
    }
    TSmsAddress number;
    CSmsUtility::TMsgAddressToTSmsAddress(address, number);
    return number.szNumber;
}

std::string IsoTime(const TMsgTimeStamp& stamp) {
    TSmsDateTime t;
    CSmsUtility::TMsgTimeStampToTSmsDateTime(stamp, t);
    const int zone = stamp.nTimeZone * 15;
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d%c%02d:%02d", t.nYear, t.nMonth, t.nDay,
                  t.nHour, t.nMinute, t.nSecond, zone < 0 ? '-' : '+', std::abs(zone) / 60,
                  std::abs(zone) % 60);
    return text;
}

json AddressJson(const TMsgAddress& address) {
    return {{"nType", address.nType}, {"szAddress", address.szAddress}};
}

json UserDataJson(const TUserData& data) {
    const TUserDataHeader& h = data.header;
    return {{"header",
             {{"bPresent", h.bPresent},
              {"nReference", h.nReference},
              {"nTotal", h.nTotal},
              {"nSequence", h.nSequence}}},
            {"nLength", data.nLength},
            {"data", Hex(data.data, static_cast<int>(std::min<uint32_t>(data.nLength, kUserDataSize)))}};
}

json ValidPeriodJson(const TTpduSubmit& submit) {
    if (submit.nVpf == 3)
        return IsoTime(submit.validPeriod);
    if (submit.nVpf != 2)
        return nullptr;
    const TMsgTimeStamp& p = submit.validPeriod;
    return {{"nYear", CSmsUtility::BcdToInt(p.nYear)},
            {"nMonth", CSmsUtility::BcdToInt(p.nMonth)},
            {"nDay", CSmsUtility::BcdToInt(p.nDay)},
            {"nHour", CSmsUtility::BcdToInt(p.nHour)},
            {"nMinute", CSmsUtility::BcdToInt(p.nMinute)}};
}

// The decoded records, field by field, with the text and the number as the message list shows them.
json PduJson(const TPduData& pdu, const TMsgPacket& packet, int alphabet) {
    const TTpduData& tpdu = pdu.tpdu;
    json form;
    const char* name = "";
    switch (tpdu.nTpduType) {
    case SMS_TPDU_DELIVER: {
        const TTpduDeliver& d = tpdu.deliver;
        name = "deliver";
        form = {{"nMti", d.nMti},
                {"bMoreMessagesToSend", d.bMoreMessagesToSend},
                {"bReplyPath", d.bReplyPath},
                {"bUdhi", d.bUdhi},
                {"bStatusReportIndication", d.bStatusReportIndication},
                {"nPid", d.nPid},
                {"nDcs", d.nDcs},
                {"nUdl", d.nUdl},
                {"originating", AddressJson(d.originating)},
                {"timeStamp", IsoTime(d.timeStamp)},
                {"userData", UserDataJson(d.userData)}};
        break;
    }
    case SMS_TPDU_SUBMIT: {
        const TTpduSubmit& s = tpdu.submit;
        name = "submit";
        form = {{"nMti", s.nMti},
                {"bRejectDuplicates", s.bRejectDuplicates},
                {"nVpf", s.nVpf},
                {"bReplyPath", s.bReplyPath},
                {"bUdhi", s.bUdhi},
                {"bStatusReportRequest", s.bStatusReportRequest},
                {"nMessageRef", s.nMessageRef},
                {"nPid", s.nPid},
                {"nDcs", s.nDcs},
                {"nUdl", s.nUdl},
                {"destination", AddressJson(s.destination)},
                {"validPeriod", ValidPeriodJson(s)},
                {"userData", UserDataJson(s.userData)}};
        break;
    }
    default: {
        const TTpduStatusReport& r = tpdu.statusReport;
        name = "statusReport";
        form = {{"nMti", r.nMti},
                {"bUdhi", r.bUdhi},
                {"bMoreMessagesToSend", r.bMoreMessagesToSend},
                {"bStatusReportQualifier", r.bStatusReportQualifier},
                {"nMessageRef", r.nMessageRef},
                {"nStatus", r.nStatus},
                {"nParameterIndicator", r.nParameterIndicator},
                {"nPid", r.nPid},
                {"nDcs", r.nDcs},
                {"nUdl", r.nUdl},
                {"recipient", AddressJson(r.recipient)},
                {"timeStamp", IsoTime(r.timeStamp)},
                {"dischargeTime", IsoTime(r.dischargeTime)},
                {"userData", UserDataJson(r.userData)}};
        break;
    }
    }
    return {{"serviceCentre", AddressJson(pdu.serviceCentre)},
            {"tpdu", {{"nTpduType", tpdu.nTpduType}, {name, form}}},
            {"szNumber", packet.szNumber},
            {"nClass", packet.nClass},
            {"nAlphabet", alphabet},
            {"wstrContent", ToUtf8(packet.wstrContent)}};
}

SmsPduText::Lines DecodedLines(const TPduData& pdu, const TMsgPacket& packet, int alphabet) {
    static const char* const alphabets[] = {"7-bit", "UCS2", "8-bit data", "reserved"};
    const TTpduData& tpdu = pdu.tpdu;
    SmsPduText::Lines lines;
    const auto line = [&lines](const char* label, const std::string& value) {
        lines.emplace_back(label, value);
    };
    char buffer[96];
    uint8_t dcs = 0;
    uint8_t pid = 0;
    if (tpdu.nTpduType == SMS_TPDU_DELIVER) {
        line("type:", "SMS-DELIVER");
        line("from:", DisplayNumber(tpdu.deliver.originating));
        line("time:", IsoTime(tpdu.deliver.timeStamp));
        dcs = tpdu.deliver.nDcs;
        pid = tpdu.deliver.nPid;
    } else if (tpdu.nTpduType == SMS_TPDU_SUBMIT) {
        const TTpduSubmit& s = tpdu.submit;
        line("type:", "SMS-SUBMIT");
        line("to:", DisplayNumber(s.destination));
        line("reference:", std::to_string(s.nMessageRef));
        if (s.nVpf == 2) {
            const TMsgTimeStamp& p = s.validPeriod;
            std::snprintf(buffer, sizeof buffer, "%dy %dm %dd %dh %dmin", CSmsUtility::BcdToInt(p.nYear),
                          CSmsUtility::BcdToInt(p.nMonth), CSmsUtility::BcdToInt(p.nDay),
                          CSmsUtility::BcdToInt(p.nHour), CSmsUtility::BcdToInt(p.nMinute));
            line("validity:", buffer);
        } else if (s.nVpf == 3) {
            line("validity:", "until " + IsoTime(s.validPeriod));
        }
        line("report:", s.bStatusReportRequest ? "requested" : "not requested");
        dcs = s.nDcs;
        pid = s.nPid;
    } else {
        const TTpduStatusReport& r = tpdu.statusReport;
        line("type:", "SMS-STATUS-REPORT");
        line("to:", DisplayNumber(r.recipient));
        line("reference:", std::to_string(r.nMessageRef));
        std::snprintf(buffer, sizeof buffer, "0x%02X (%s)", r.nStatus,
                      r.nStatus < 0x20   ? "delivered"
                      : r.nStatus < 0x40 ? "still trying"
                                         : "failed");
        line("status:", buffer);
        line("time:", IsoTime(r.timeStamp));
        line("discharged:", IsoTime(r.dischargeTime));
        dcs = r.nDcs;
        pid = r.nPid;
    }
    if (pdu.serviceCentre.szAddress[0] != '\0') {
        std::snprintf(buffer, sizeof buffer, "%s (type %u)", pdu.serviceCentre.szAddress,
                      pdu.serviceCentre.nType);
        line("service centre:", buffer);
    }
    std::snprintf(buffer, sizeof buffer, "%s (DCS 0x%02X, PID 0x%02X)", alphabets[alphabet & 3], dcs, pid);
    line("coding:", buffer);
    if (packet.nClass != kSmsNoClass)
        line("class:", std::to_string(packet.nClass));
    if (packet.bHasHeader) {
        std::snprintf(buffer, sizeof buffer, "part %d of %d, reference %d", packet.nSequence, packet.nTotal,
                      packet.nReference);
        line("concatenated:", buffer);
    }
    line("text:", ToUtf8(packet.wstrContent));
    return lines;
}

} // namespace

namespace SmsPduText {

std::optional<Validity> ParseValidity(const std::string& code) {
    Validity period;
    if (code == "max") {
        period.weeks = 255;
        return period;
    }
    static const std::regex pattern("^(?:(\\d{1,3})w)?(?:(\\d{1,3})d)?(?:(\\d{1,3})h)?$");
    std::smatch match;
    if (code.empty() || !std::regex_match(code, match, pattern))
        return std::nullopt;
    const int limits[] = {254, 255, 255};
    uint8_t* fields[] = {&period.weeks, &period.days, &period.hours};
    for (int i = 0; i < 3; ++i) {
        const int value = match[i + 1].matched ? std::stoi(match[i + 1].str()) : 0;
        if (value > limits[i])
            return std::nullopt;
        *fields[i] = static_cast<uint8_t>(value);
    }
    return period;
}

Decoded Decode(const std::string& hex, std::optional<int> tpduLength) {
    Decoded decoded;
    TMessageListItem item;
    const int length = tpduLength.value_or(ImpliedTpduLength(hex));
    if ((decoded.result = CSmsUtility::DecodePduData(hex.c_str(), length, item.pduData)) != 0)
        return decoded;
    TMsgPacket packet;
    CSmsUtility::TMessageListItemToTMsgPacket(item, packet);
    const TTpduData& tpdu = item.pduData.tpdu;
    const uint8_t dcs = tpdu.nTpduType == SMS_TPDU_DELIVER  ? tpdu.deliver.nDcs
                        : tpdu.nTpduType == SMS_TPDU_SUBMIT ? tpdu.submit.nDcs
                                                            : tpdu.statusReport.nDcs;
    const int alphabet = CSmsUtility::DecodeDcsAlphabet(dcs);
    decoded.fields = PduJson(item.pduData, packet, alphabet);
    decoded.lines = DecodedLines(item.pduData, packet, alphabet);
    return decoded;
}

Encoded Encode(const std::string& number, const std::string& text, bool report,
               const std::optional<Validity>& validity) {
    Encoded encoded;
    CSmsUtility sms;
    sms.EnableStatusReport(report ? 1 : 0);
    if (validity) {
        TSmsValidPeriod period;
        period.bEnable = 1;
        period.bWeek = validity->weeks;
        period.bDay = validity->days;
        period.bHour = validity->hours;
        sms.SetValidPeriod(period);
    }
    TSmsSendItem item;
    std::memcpy(item.szNumber, number.c_str(), std::min(number.size(), sizeof item.szNumber - 1));
    item.wstrContent = FromUtf8(text);
    std::list<TTpduSubmit> segments;
    sms.PacketMsg(item, segments, encoded.encodeType);
    for (const TTpduSubmit& segment : segments) {
        TProtocalTpduData tpdu;
        if ((encoded.result = CSmsUtility::EncodeTpduSubmit(segment, tpdu)) != 0)
            return encoded;
        // "00": no service-centre address, the modem uses its own (as AT+CMGS is sent).
        encoded.segments.emplace_back(static_cast<int>(tpdu.nLength),
                                      "00" + Hex(tpdu.data, static_cast<int>(tpdu.nLength)));
    }
    return encoded;
}

} // namespace SmsPduText
