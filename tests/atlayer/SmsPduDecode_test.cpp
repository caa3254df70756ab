#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "SmsPduVectors.h"
#include "SmsUtility.h"

namespace {

using at_test::Fields;
using at_test::FromHex;
using sms_test::kDecodeRows;
using sms_test::Packet;
using sms_test::PduRow;
using sms_test::Stamp;

TEST(SmsPduDecode, RealPdusDecodeToTheirFields) {
    for (const PduRow& row : kDecodeRows) {
        SCOPED_TRACE(row.name);
        TPduData pdu;
        ASSERT_EQ(CSmsUtility::DecodePduData(row.hex, row.tpduLength, pdu), 0);
        EXPECT_EQ(Fields(pdu.tpdu.nTpduType, pdu.serviceCentre.szAddress, pdu.serviceCentre.nType),
                  Fields(row.type, row.serviceCentre, row.serviceCentreType));
        const TMsgPacket packet = Packet(pdu);
        EXPECT_EQ(packet.wstrContent, row.text);
        EXPECT_EQ(
            Fields(packet.szNumber, packet.nClass, packet.bHasHeader, packet.nReference, packet.nTotal,
                   packet.nSequence),
            Fields(row.number, row.messageClass, row.total != 0, row.reference, row.total, row.sequence));
        EXPECT_EQ(row.type == SMS_TPDU_SUBMIT ? row.time : Stamp(packet.dateTime), std::string(row.time));
    }
}

// The submit's validity period in each format: none, relative, absolute, enhanced (not interpreted).
TEST(SmsPduDecode, SubmitValidityPeriodFormats) {
    // clang-format off
    const struct { const char* tpdu; int nVpf; TMsgTimeStamp period; } rows[] = {
        {"0100038121F30000" "02C834", 0, {}},
        {"1100038121F30000AA" "02C834", 2, {0, 0x00, 0x04, 0, 0, 0, 0}}, // 170: four days
        {"1900038121F30000" "1110102143652B" "02C834", 3, {0x11, 0x01, 0x01, 0x12, 0x34, 0x56, -32}},
        {"0900038121F30000" "01020304050607" "02C834", 1, {}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.tpdu);
        TTpduData tpdu;
        ASSERT_EQ(CSmsUtility::DecodeTpduData(row.tpdu, static_cast<int>(std::strlen(row.tpdu)) / 2, tpdu),
                  0);
        const TTpduSubmit& submit = tpdu.submit;
        EXPECT_EQ(submit.nVpf, row.nVpf);
        EXPECT_STREQ(submit.destination.szAddress, "123");
        EXPECT_EQ(std::memcmp(&submit.validPeriod, &row.period, sizeof row.period), 0);
        std::wstring text;
        CSmsUtility::GetUserDataContent(SMS_ALPHABET_7BIT, submit.userData, text);
        EXPECT_EQ(text, L"Hi");
    }
}

TEST(SmsPduDecode, StatusReportOptionalFields) {
    const std::string base = "065A098136397339F7219011700463802190117004638030";
    // clang-format off
    const struct { std::string tail; int result; int pid; std::wstring text; } rows[] = {
        {"", 0, 0, L""},
        {"0405E8329BFD06", 0, 0, L"hello"}, // TP-PI: UDL
        {"07410005E8329BFD06", 0, 0x41, L"hello"}, // TP-PI: PID, DCS, UDL
        {"0341", 1, 0x41, L""}, // the DCS announced is missing
        {"00", 1, 0, L""}, // an indicator with nothing after it is refused
        {"0100", 1, 0, L""}, // PID as the last octet
        {"0200", 1, 0, L""}, // DCS as the last octet
        {"020000", 0, 0, L""}, // DCS, and no UDL announced
        {"0405", 1, 0, L""}, // UDL as the last octet
        {"054005E8329BFD06", 0, 0x40, L"hello"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.tail);
        const std::string hex = base + row.tail;
        TTpduData tpdu;
        ASSERT_EQ(CSmsUtility::DecodeTpduData(hex.c_str(), static_cast<int>(hex.size() / 2), tpdu),
                  row.result);
        if (row.result != 0)
            continue;
        EXPECT_EQ(tpdu.statusReport.nPid, row.pid);
        std::wstring text;
        CSmsUtility::GetUserDataContent(CSmsUtility::DecodeDcsAlphabet(tpdu.statusReport.nDcs),
                                        tpdu.statusReport.userData, text);
        EXPECT_EQ(text, row.text);
    }
}

TEST(SmsPduDecode, ServiceCentreRules) {
    const std::string tpdu = "040B918100551512F20000111010214365000AE8329BFD4697D9EC37";
    // clang-format off
    const struct { std::string prefix; int result; const char* address; uint32_t type; } rows[] = {
        {"00", 0, "", 0},
        {"0191", 0, "", 1}, // type alone
        {"07912143658709F1", 0, "12345678901", 1}, // "91" keeps only its second digit
        {"17912143658709F1", 0, "12345678901", 1}, // so does the length: "17" reads as 7
        {"07A12143658709F1", 0, "12345678901", 1}, {"07812143658709F1", 0, "12345678901", 1}, {"06912143658709", 0, "1234567890", 1},
        {"07912143658709f1", 0, "12345678901f", 1}, // only an upper-case F pads
        {"079121436587F9F1", 1, "", 0}, // F before the last pair
        {"079121436587091F", 1, "", 0}, // F as the second digit of a pair
        {"0C912143658709214365870921", 1, "", 0}, // more than 11 octets
        {"079121436587G9F1", 1, "", 0}, {"0G", 1, "", 0},
        {"0791", 1, "", 0}, // the digits are missing: the TPDU does not start where it should
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.prefix);
        const std::string hex = row.prefix + tpdu;
        TPduData pdu;
        ASSERT_EQ(CSmsUtility::DecodePduData(hex.c_str(), 28, pdu), row.result);
        if (row.result == 0) {
            EXPECT_STREQ(pdu.serviceCentre.szAddress, row.address);
            EXPECT_EQ(pdu.serviceCentre.nType, row.type);
            EXPECT_STREQ(pdu.tpdu.deliver.originating.szAddress, "18005551212");
        }
    }
    // Converted for the business layer, the service centre of type 1 gets no "+".
    TPduData pdu;
    ASSERT_EQ(CSmsUtility::DecodePduData(("07912143658709F1" + tpdu).c_str(), 28, pdu), 0);
    TSmsAddress address;
    CSmsUtility::TMsgAddressToTSmsAddress(pdu.serviceCentre, address);
    EXPECT_STREQ(address.szNumber, "12345678901");
}

TEST(SmsPduDecode, Addresses) {
    // clang-format off
    const struct { const char* hex; int used; uint32_t type; std::string text; } rows[] = {
        {"0B916407281553F8", 8, 0x11, "46708251358"}, {"04818100", 4, 0x01, "1800"},
        {"0681BADCFE", 5, 0x01, ":;<=>"}, // nibbles 10-14 are written as they come
        {"02811F", 3, 0x01, "?1"}, // so is a low nibble F
        {"0581F12143", 5, 0x01, "1"}, // a high nibble F ends the number early
        {"0BD0C7F7FBCC2E03", 8, 0x50, "Google"}, {"0CD0C7F7FBCC2E03", 8, 0x50, "Google"}, {"14D04937BD2C7797E9D3E614", 12, 0x50, "InternetSMS"},
        {"06D0490019", 5, 0x50, "I"}, // raw codes: the "@" (0x00) of "I@d" ends the text
        {"0091", 2, 0x11, ""},
        {"159111111111111111111111F1", 13, 0x11, "111111111111111111111"}, // 21 digits, the most
        // 22 digits, or digits beyond the octets given, fail.
        {"1691111111111111111111111111", 0, 0, ""}, {"0B916407281553", 0, 0, ""}, {"0B", 0, 0, ""}, {"", 0, 0, ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hex);
        const std::vector<uint8_t> octets = FromHex(row.hex);
        TMsgAddress address;
        ASSERT_EQ(CSmsUtility::DecodeTpduAddress(octets.data(), static_cast<int>(octets.size()), address),
                  row.used);
        if (row.used != 0) {
            EXPECT_EQ(Fields(address.nType, address.szAddress), Fields(row.type, row.text));
        }
    }
}

TEST(SmsPduDecode, TimeStampsAreRepairedAndZonesSigned) {
    // clang-format off
    const struct { const char* hex; TSmsDateTime expected; int zone; } rows[] = {
        {"11208211050561", {2011, 2, 28, 11, 50, 50, 1}, 16},
        {"1120821105050A", {2011, 2, 28, 11, 50, 50, 1}, -20}, // -05:00
        {"21405291650569", {2012, 4, 25, 19, 56, 50, 1}, -16}, // -04:00
        {"99903021436549", {1999, 9, 3, 12, 34, 56, 1}, -14}, // -03:30, year 99 is 1999
        {"0800000000000080", {2080 - 100, 1, 1, 0, 0, 0, 1}, 0}, // month 0 and day 0 become 1
        {"803121423696", {0, 0, 0, 0, 0, 0, 0}, 0}, // too short: 6 octets
        {"4131339599998F", {2014, 1, 1, 0, 0, 0, 1}, 0}, // month 13, day 33, 59+ times
        {"5121D0FFFFFFF7", {2015, 12, 13, 0, 0, 0, 1}, 0}, // non-BCD digits, zone 85 quarters
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hex);
        const std::vector<uint8_t> octets = FromHex(row.hex);
        TMsgTimeStamp stamp;
        const int used = CSmsUtility::DecodeTimeStamp(octets.data(), static_cast<int>(octets.size()), stamp);
        if (row.expected.bValid == 0) {
            EXPECT_EQ(used, 0);
            continue;
        }
        EXPECT_EQ(used, 7);
        TSmsDateTime t;
        CSmsUtility::TMsgTimeStampToTSmsDateTime(stamp, t);
        EXPECT_EQ(Fields(Stamp(t), t.bValid), Fields(Stamp(row.expected), row.expected.bValid));
        EXPECT_EQ(stamp.nTimeZone, row.zone);
    }
}

TEST(SmsPduDecode, TimeStrings) {
    TMsgTimeStamp stamp;
    ASSERT_EQ(CSmsUtility::DecodeTimeString("\"09/02/27,15:32:05+04\"", 22, stamp), 0);
    EXPECT_EQ(Fields(stamp.nYear, stamp.nMonth, stamp.nDay, stamp.nHour, stamp.nMinute, stamp.nSecond,
                     stamp.nTimeZone),
              Fields(0x09, 0x02, 0x27, 0x15, 0x32, 0x05, 4));
    // The zone stays BCD: "-20" is -0x20.
    ASSERT_EQ(CSmsUtility::DecodeTimeString("\"11/02/28,11:50:50-20\"", 22, stamp), 0);
    EXPECT_EQ(stamp.nTimeZone, -0x20);
    for (const auto& [text, length] : {std::pair{"\"11/02/28,11:50:50-20", 21},
                                       {"\"11/02/28,11:50:50-200\"", 23},
                                       {"\"11/0x/28,11:50:50-20\"", 22},
                                       {nullptr, 22}})
        EXPECT_EQ(CSmsUtility::DecodeTimeString(text, length, stamp), 1) << (text ? text : "null");
}

TEST(SmsPduDecode, DataCodingSchemes) {
    // clang-format off
    const struct { uint8_t dcs; int alphabet; int messageClass; } rows[] = {
        {0x00, SMS_ALPHABET_7BIT, 4},     {0x04, SMS_ALPHABET_8BIT, 4}, {0x08, SMS_ALPHABET_UCS2, 4},
        {0x0C, SMS_ALPHABET_RESERVED, 4}, {0x10, SMS_ALPHABET_7BIT, 0}, {0x11, SMS_ALPHABET_7BIT, 1},
        {0x16, SMS_ALPHABET_8BIT, 2},     {0x1B, SMS_ALPHABET_UCS2, 3}, {0x20, SMS_ALPHABET_7BIT, 4},
        {0x38, SMS_ALPHABET_UCS2, 0},     {0x44, SMS_ALPHABET_8BIT, 4}, {0x80, SMS_ALPHABET_RESERVED, 4},
        {0xB8, SMS_ALPHABET_RESERVED, 4}, {0xC0, SMS_ALPHABET_7BIT, 4}, {0xD8, SMS_ALPHABET_7BIT, 4},
        {0xE0, SMS_ALPHABET_UCS2, 4},     {0xF0, SMS_ALPHABET_7BIT, 0}, {0xF1, SMS_ALPHABET_7BIT, 1},
        {0xF4, SMS_ALPHABET_8BIT, 0},     {0xF6, SMS_ALPHABET_8BIT, 2}, {0xFF, SMS_ALPHABET_8BIT, 3},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "DCS 0x" << std::hex << int(row.dcs));
        EXPECT_EQ(CSmsUtility::DecodeDcsAlphabet(row.dcs), row.alphabet);
        EXPECT_EQ(CSmsUtility::DecodeDcsClass(row.dcs), row.messageClass);
    }
    for (int pid = 0; pid < 256; ++pid)
        EXPECT_EQ(CSmsUtility::IsReplaceShortMessage(static_cast<uint8_t>(pid)), pid >= 0x41 && pid <= 0x47);
    for (const auto& [octet, expected] :
         {std::pair{0x44, SMS_TPDU_DELIVER}, {0x31, SMS_TPDU_SUBMIT}, {0x06, SMS_TPDU_STATUS_REPORT}}) {
        uint32_t type = 99;
        EXPECT_EQ(CSmsUtility::GetTpduType(static_cast<uint8_t>(octet), type), 0);
        EXPECT_EQ(type, static_cast<uint32_t>(expected));
    }
    uint32_t type = 99;
    EXPECT_EQ(CSmsUtility::GetTpduType(0x03, type), 1);
}

TEST(SmsPduDecode, UserDataHeaders) {
    // clang-format off
    const struct { const char* hex; uint32_t present; int reference; int total; int sequence; } rows[] = {
        {"050003CC0201", 1, 0xCC, 2, 1},
        {"0608041234030210", 1, 0x34, 3, 2}, // 16-bit reference: low octet only
        {"0B0504158200000003CC0302", 1, 0xCC, 3, 2}, // a port element is skipped
        {"0A000301020300030A0B0C", 1, 0x0A, 0x0B, 0x0C}, // the later element wins
        {"0400030102", 0, 0, 0, 0}, // element longer than the header
        {"05000301", 0, 0, 0, 0}, // header longer than the data
        {"050A09FFFF", 0, 0, 0, 0}, // unknown element overrunning
        {"00", 0, 0, 0, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hex);
        const std::vector<uint8_t> octets = FromHex(row.hex);
        TUserDataHeader header;
        header.nTotal = 77;
        CSmsUtility::DecodeUserDataHeader(octets.data(), static_cast<int>(octets.size()), header);
        EXPECT_EQ(Fields(header.bPresent, header.nReference, header.nTotal, header.nSequence),
                  Fields(row.present, row.reference, row.total, row.sequence));
    }
}

// The septets after a header start at the next septet boundary: one fill bit after a 6-octet header,
// none after a 7-octet one.
TEST(SmsPduDecode, SevenBitUserDataAfterAHeader) {
    // clang-format off
    const struct { const char* hex; uint8_t udl; std::wstring text; } rows[] = {
        {"050003CC0201" "D06536FB0D", 12, L"hello"}, {"06080412340201" "E8329BFD06", 13, L"hello"},
        {"0500", 3, L""}, // UDHL beyond UDL
        {"3F0003CC0201" "D06536FB0D", 12, L""}, // UDHL beyond the data
        {"050003CC0201" "D06536FB0D", 160, L"hello"}, // UDL beyond the data: cut to what is there
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hex);
        const std::vector<uint8_t> octets = FromHex(row.hex);
        TUserData data;
        ASSERT_EQ(CSmsUtility::DecodeTpduUserData(0x00, row.udl, octets.data(),
                                                  static_cast<int>(octets.size()), true, data),
                  0);
        std::wstring text;
        CSmsUtility::GetUserDataContent(SMS_ALPHABET_7BIT, data, text);
        EXPECT_EQ(text.substr(0, row.text.size()), row.text);
        EXPECT_LE(data.nLength, 160u);
    }
    TUserData data;
    const uint8_t eight[] = {0x05, 0x00, 0x03, 0x01, 0x02, 0x01, 'a', 'b'};
    ASSERT_EQ(CSmsUtility::DecodeTpduUserData(0x04, 8, eight, sizeof eight, true, data), 0);
    EXPECT_EQ(Fields(data.nLength, data.header.nTotal), "2|2");
    EXPECT_EQ(CSmsUtility::DecodeTpduUserData(0x00, 161, eight, sizeof eight, false, data), 1);
    EXPECT_EQ(CSmsUtility::DecodeTpduUserData(0x08, 141, eight, sizeof eight, false, data), 1);
    EXPECT_EQ(CSmsUtility::DecodeTpduUserData(0x00, 0, nullptr, 0, true, data), 0);
    EXPECT_EQ(data.nLength, 0u);
}

TEST(SmsPduDecode, UserDataContentPerAlphabet) {
    TUserData data;
    const uint8_t octets[] = {0xD8, 0x3D, 0xDE, 0x00, 0x00, 0x41, 0x20};
    std::memcpy(data.data, octets, sizeof octets);
    data.nLength = sizeof octets;
    std::wstring text;
    CSmsUtility::GetUserDataContent(SMS_ALPHABET_UCS2, data, text);
    EXPECT_EQ(text, (std::wstring{wchar_t(0xD83D), wchar_t(0xDE00), L'A'})); // odd octet dropped
    CSmsUtility::GetUserDataContent(SMS_ALPHABET_8BIT, data, text);
    EXPECT_EQ(text, (std::wstring{wchar_t(0xD8), L'=', wchar_t(0xDE), L'\0', L'\0', L'A', L' '}));
    CSmsUtility::GetUserDataContent(SMS_ALPHABET_RESERVED, data, text);
    EXPECT_EQ(text, L"");
    data.nLength = 1000; // never read past the field
    CSmsUtility::GetUserDataContent(SMS_ALPHABET_7BIT, data, text);
    EXPECT_EQ(text.size(), static_cast<std::size_t>(kUserDataSize));
}

// No input, however broken, reads out of bounds (the sanitizer build checks) or decodes as a message.
TEST(SmsPduDecode, HostileInputFails) {
    // clang-format off
    const struct { const char* hex; int tpduLength; } rows[] = {
        {"", 0}, {"", 10}, {"0", 1}, {"00", 1}, {"00", 0}, {"0004", -1},
        {"00040B918100551512F2000011101021436500", 300}, // length beyond the buffer
        {"00040B918100551512F20000111010214365000AE8329B", 28}, // text shorter than the length
        {"00040B918100551512F20000111010214365", 17}, // no zone, no UDL
        {"00041691810055151281005515128100551512F2000011101021436500", 29}, // 22-digit address
        {"00FF", 1}, // MTI 3
        {"00040B918100551512F20000111010214365 A", 20},
        {"00040B918100551512F2000011101021436500A1E8", 20}, // UDL 161
        {"00040B918100551512F20004111010214365008D00", 20}, // 8-bit UDL 141
        {"000100", 2}, // submit without its address
        {"001100038121430000", 8}, // submit without its validity octet
        {"00065A0981363973", 7}, // report cut in its address
        {"00065A098136397339F721901170046380219011700463", 22}, // report cut before TP-ST
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hex);
        TPduData pdu;
        pdu.serviceCentre.nType = 42;
        EXPECT_EQ(CSmsUtility::DecodePduData(row.hex, row.tpduLength, pdu), 1);
        EXPECT_EQ(pdu.serviceCentre.nType, 42u); // untouched on failure
    }
    TPduData pdu;
    EXPECT_EQ(CSmsUtility::DecodePduData(nullptr, 10, pdu), 1);
    // Lower-case hex is hex.
    EXPECT_EQ(
        CSmsUtility::DecodePduData("00040b918100551512f20000111010214365000ae8329bfd4697d9ec37", 28, pdu), 0);
}

// Every cut of every real PDU, and every length the modem could claim, either decodes or fails cleanly.
TEST(SmsPduDecode, TruncatedAndMislabelledPdusStayInBounds) {
    for (const PduRow& row : kDecodeRows) {
        SCOPED_TRACE(row.name);
        const std::string hex = row.hex;
        TPduData pdu;
        for (std::size_t cut = 0; cut < hex.size(); ++cut) {
            const std::string part = hex.substr(0, cut);
            const int result = CSmsUtility::DecodePduData(part.c_str(), row.tpduLength, pdu);
            EXPECT_EQ(result, 1) << "cut at " << cut;
        }
        for (int length = -2; length <= kTpduMaxSize + 2; ++length) {
            const int result = CSmsUtility::DecodePduData(hex.c_str(), length, pdu);
            EXPECT_TRUE(result == 0 || result == 1);
            if (length > row.tpduLength) {
                EXPECT_EQ(result, 1) << "length " << length;
            }
        }
        // Every octet of the TPDU flipped in turn.
        const std::size_t tpduStart = hex.size() - 2 * static_cast<std::size_t>(row.tpduLength);
        for (std::size_t at = tpduStart; at < hex.size(); at += 2) {
            for (const char* octet : {"FF", "00", "7F", "A0"}) {
                std::string changed = hex;
                changed.replace(at, 2, octet);
                const int result = CSmsUtility::DecodePduData(changed.c_str(), row.tpduLength, pdu);
                EXPECT_TRUE(result == 0 || result == 1);
                if (result == 0) {
                    EXPECT_LT(std::strlen(Packet(pdu).szNumber), static_cast<std::size_t>(kSmsNumberSize));
                }
            }
        }
    }
}

TEST(SmsPduDecode, RelativeValidityPeriods) {
    // clang-format off
    // period: BCD years, months, days, hours, minutes
    const struct { uint8_t vp; TMsgTimeStamp period; } rows[] = {
        {0, {0, 0, 0, 0x00, 0x05, 0, 0}},      {11, {0, 0, 0, 0x01, 0x00, 0, 0}},
        {143, {0, 0, 0, 0x12, 0x00, 0, 0}},    {144, {0, 0, 0, 0x12, 0x30, 0, 0}},
        {166, {0, 0, 0, 0x23, 0x30, 0, 0}},    {167, {0, 0, 0x01, 0, 0, 0, 0}},
        {196, {0, 0x01, 0x00, 0, 0, 0, 0}},    {197, {0, 0x01, 0x05, 0, 0, 0, 0}}, {255, {0x01, 0x02, 0x16, 0, 0, 0, 0}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(int(row.vp));
        TMsgTimeStamp period;
        period.nSecond = 9;
        CSmsUtility::DecodeRelativeValidPeriod(row.vp, period);
        EXPECT_EQ(std::memcmp(&period, &row.period, sizeof period), 0);
    }
    const uint8_t enhanced[7] = {1, 2, 3, 4, 5, 6, 7};
    TMsgTimeStamp period{1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(CSmsUtility::DecodeValidPeriod(enhanced, 7, 1, period), 7);
    EXPECT_EQ(period.nYear + period.nMonth + period.nDay + period.nHour + period.nMinute, 0);
    const int cut = CSmsUtility::DecodeValidPeriod(enhanced, 6, 1, period);
    const int absoluteEmpty = CSmsUtility::DecodeValidPeriod(enhanced, 0, 2, period);
    EXPECT_EQ(Fields(cut, absoluteEmpty, CSmsUtility::DecodeValidPeriod(enhanced, 0, 0, period)), "-1|-1|0");
}

} // namespace
