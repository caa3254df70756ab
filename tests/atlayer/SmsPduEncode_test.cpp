#include <cstring>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "SmsPduVectors.h"
#include "SmsUtility.h"

namespace {

using at_test::Hex;

std::vector<uint8_t> Septets(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

TEST(SmsPduEncode, SubmitOctets) {
    TTpduSubmit submit;
    submit.nMti = 1;
    submit.bRejectDuplicates = 1;
    submit.nVpf = 2;
    submit.nMessageRef = 0x77; // not used
    TSmsAddress number;
    std::strcpy(number.szNumber, "+46708251358");
    CSmsUtility::TSmsAddressToTMsgAddress(number, submit.destination);
    submit.validPeriod.nHour = 0x12;
    submit.userData.nLength = 5;
    std::memcpy(submit.userData.data, "hello", 5);

    TProtocalTpduData first, second;
    ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(submit, first), 0);
    ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(submit, second), 0);
    // RD and VPF 2; TP-MR; "+46708251358"; PID, DCS; 12 hours; "hello" packed.
    const std::string hex = Hex(first.data, static_cast<int>(first.nLength));
    EXPECT_EQ(hex.substr(0, 2), "15");
    EXPECT_EQ(hex.substr(4), "0B916407281553F800008F05E8329BFD06");
    EXPECT_EQ(first.nLength, 19u);
    // Every submit takes the next message reference, whatever the record says.
    EXPECT_EQ(static_cast<uint8_t>(second.data[1] - first.data[1]), 1);

    submit.bStatusReportRequest = 1;
    submit.bReplyPath = 1;
    submit.nVpf = 0;
    submit.bUdhi = 1;
    submit.userData.header = {1, 0xCC, 2, 1};
    ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(submit, first), 0);
    EXPECT_EQ(Hex(first.data, 1), "E5");
    EXPECT_EQ(Hex(first.data + 2, static_cast<int>(first.nLength) - 2),
              "0B916407281553F800000C050003CC0201D06536FB0D");

    // Only digits can be sent to: not "*" and "#", nor letters, nor no number; nor more than 140 octets
    // of user data.
    for (const char* destination : {"*100#", "abc", "", "49 170"}) {
        std::strcpy(submit.destination.szAddress, destination);
        EXPECT_EQ(CSmsUtility::EncodeTpduSubmit(submit, first), CSmsUtility::kErrNotAPhoneNumber)
            << destination;
    }
    std::strcpy(submit.destination.szAddress, "123");
    submit.userData.nLength = 154; // 154 septets and the header: 141 octets
    EXPECT_EQ(CSmsUtility::EncodeTpduSubmit(submit, first), 1);
    submit.userData.nLength = 153;
    EXPECT_EQ(CSmsUtility::EncodeTpduSubmit(submit, first), 0);
    EXPECT_EQ(first.data[8], 160); // UDL: 153 septets and the header's 7
}

TEST(SmsPduEncode, Addresses) {
    // clang-format off
    const struct { const char* number; const char* hex; } rows[] = {
        {"+46708251358", "0B916407281553F8"}, {"1800", "04818100"}, {"+1", "0191F1"}, {"", "0081"}, {"*100#", ""}, {"12#", ""},
        {"+49 170 123 4567", ""}, {"abc", ""}, {"49+170", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        TSmsAddress number;
        std::strcpy(number.szNumber, row.number);
        TMsgAddress address;
        CSmsUtility::TSmsAddressToTMsgAddress(number, address);
        uint8_t octets[16] = {};
        const int written = CSmsUtility::EncodeTpduAddress(address, octets, sizeof octets);
        EXPECT_EQ(Hex(octets, written), row.hex);
        TSmsAddress back;
        if (written > 0) {
            TMsgAddress decoded;
            ASSERT_EQ(CSmsUtility::DecodeTpduAddress(octets, written, decoded), written);
            CSmsUtility::TMsgAddressToTSmsAddress(decoded, back);
            EXPECT_STREQ(back.szNumber, row.number);
        }
    }
    TMsgAddress address;
    std::strcpy(address.szAddress, "46708251358");
    uint8_t small[7];
    EXPECT_EQ(CSmsUtility::EncodeTpduAddress(address, small, sizeof small), 0);
    // The longest number the field holds, with "+" added, still fits the business layer's record.
    address.nType = 0x11;
    std::memset(address.szAddress, '9', kMsgAddressSize - 1);
    TSmsAddress number;
    CSmsUtility::TMsgAddressToTSmsAddress(address, number);
    EXPECT_EQ(std::strlen(number.szNumber), static_cast<std::size_t>(kSmsNumberSize - 1));
    EXPECT_EQ(number.szNumber[0], '+');
}

TEST(SmsPduEncode, RelativeTimeKeepsItsRounding) {
    // clang-format off
    // period: BCD years, months, days, hours, minutes
    const struct { TMsgTimeStamp period; int vp; } rows[] = {
        {{0, 0, 0, 0x00, 0x00}, 0},      {{0, 0, 0, 0x00, 0x05}, 0},   {{0, 0, 0, 0x00, 0x06}, 1},
        {{0, 0, 0, 0x01, 0x00}, 11},     {{0, 0, 0, 0x12, 0x00}, 143}, {{0, 0, 0, 0x12, 0x01}, 143},
        {{0, 0, 0, 0x12, 0x30}, 143},    {{0, 0, 0, 0x12, 0x58}, 143}, {{0, 0, 0, 0x12, 0x59}, 144},
        {{0, 0, 0, 0x13, 0x28}, 144},    {{0, 0, 0, 0x13, 0x29}, 145}, {{0, 0, 0, 0x24, 0x00}, 166},
        {{0, 0, 0x01, 0x23, 0x59}, 167}, {{0, 0, 0x30, 0, 0}, 196},    {{0, 0x01, 0x00, 0, 0}, 196},
        {{0, 0, 0x31, 0, 0}, 197},       {{0, 0x01, 0x05, 0, 0}, 197}, {{0x01, 0x02, 0x10, 0, 0}, 255},
        {{0x01, 0x02, 0x17, 0, 0}, 0}, // 442 days wrap around
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.period)); // its octets: BCD years first
        EXPECT_EQ(CSmsUtility::EncodeRelativeTime(row.period), row.vp);
    }
}

// The user's period is stored as plain numbers and read back as BCD: 20 days go out as 14.
TEST(SmsPduEncode, ValidPeriodSettingsAsSent) {
    // clang-format off
    // setting: enabled, weeks, days, hours
    const struct { TSmsValidPeriod setting; int vp; } rows[] = {
        {{1, 0, 20, 0}, 180}, {{1, 0, 14, 0}, 180}, {{1, 255, 0, 0}, 255}, {{1, 1, 0, 0}, 173},
        {{1, 0, 0, 12}, 143}, {{1, 0, 0, 20}, 146}, {{1, 0, 1, 0}, 167},   {{1, 0, 30, 0}, 196},
        {{1, 4, 3, 0}, 197},  {{0, 0, 20, 5}, 0},   {{1, 0, 0, 0}, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(at_test::Fields(row.setting.bWeek, row.setting.bDay, row.setting.bHour));
        TMsgTimeStamp period;
        CSmsUtility::TSmsValidPeriodToTMsgTimeStamp(row.setting, period);
        EXPECT_EQ(CSmsUtility::EncodeRelativeTime(period), row.vp);
    }
}

// 3GPP TS 23.038 6.1.2.1.1.
TEST(SmsPduEncode, SeptetPacking) {
    // clang-format off
    const struct { std::string text; int fillBits; const char* packed; } rows[] = {
        {"hellohello", 0, "E8329BFD4697D9EC37"}, {"12345678", 0, "31D98C56B3DD70"}, {"1234567", 0, "31D98C56B3DD00"}, {"hello", 1, "D06536FB0D"},
        {"", 0, ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const std::vector<uint8_t> septets = Septets(row.text);
        uint8_t packed[32];
        std::memset(packed, 0xEE, sizeof packed);
        packed[0] = 0;
        const int written = CSmsUtility::PackDefault7BitChars(
            septets.data(), static_cast<int>(septets.size()), row.fillBits, sizeof packed, packed);
        EXPECT_EQ(Hex(packed, written), row.packed);
        uint8_t unpacked[32] = {};
        EXPECT_EQ(CSmsUtility::UnpackDefault7BitChars(packed, written, static_cast<int>(septets.size()), 32,
                                                      row.fillBits == 0 ? 0 : 8 - row.fillBits, unpacked),
                  written);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(unpacked), septets.size()), row.text);
    }
    // The first octet is ORed into (header bits may be there); output stops at its limit.
    const std::vector<uint8_t> hello = Septets("hello");
    uint8_t out[4] = {0x01, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(CSmsUtility::PackDefault7BitChars(hello.data(), 5, 1, 3, out), 3);
    EXPECT_EQ(Hex(out, 4), "D16536EE");
    uint8_t septets[8] = {};
    EXPECT_EQ(CSmsUtility::UnpackDefault7BitChars(out, 3, 5, 2, 7, septets), 2);
    EXPECT_EQ(septets[1], 'e');
}

TEST(SmsPduEncode, UserDataLengthLimits) {
    TUserData data;
    // DCS, header, length: 160 septets, 70 UCS2 characters, and with a header 153 and 67, fill 140 octets.
    for (const auto& [dcs, header, length] :
         {std::tuple{0x00, 0, 160u}, {0x08, 0, 140u}, {0x00, 1, 153u}, {0x08, 1, 134u}}) {
        data.header.bPresent = static_cast<uint8_t>(header);
        data.nLength = length;
        EXPECT_EQ(CSmsUtility::ComputeUserDataLength(static_cast<uint8_t>(dcs), data), 140)
            << dcs << " " << header;
    }
    data.nLength = 0xFFFFFFFF;
    EXPECT_GT(CSmsUtility::ComputeUserDataLength(0x00, data), 140);

    uint8_t out[8];
    data.header = {};
    data.nLength = 100;
    EXPECT_EQ(CSmsUtility::EncodeTpduUserData(0x04, data, out, sizeof out), 8); // bounded by the buffer
    EXPECT_EQ(out[0], 100);
}

// Splitting a text into submits.

std::vector<TTpduSubmit> Split(CSmsUtility& sms, const TSmsSendItem& item, int& encodeType) {
    std::list<TTpduSubmit> segments;
    EXPECT_EQ(sms.PacketMsg(item, segments, encodeType), 0);
    return {segments.begin(), segments.end()};
}

// Split, encode, decode again and join: what the recipient's phone shows.
TEST(SmsPacketMsg, SplitsAtTheLimitsAndRoundTrips) {
    // clang-format off
    // lengths: user data per segment: septets, or UCS2 octets
    struct Row { const char* what; std::wstring text; int encodeType; std::vector<uint32_t> lengths; };
    const std::wstring ext152 = std::wstring(152, L'a') + L"€" + std::wstring(9, L'b');
    const Row rows[] = {
        {"160 septets", std::wstring(160, L'a'), 0, {160}}, {"161 septets", std::wstring(161, L'a'), 0, {153, 8}},
        {"306 septets", std::wstring(306, L'x'), 0, {153, 153}}, {"307 septets", std::wstring(307, L'x'), 0, {153, 153, 1}},
        {"extension characters count twice", std::wstring(80, L'{') + L"a", 0, {152, 9}},
        {"80 extension characters fit one segment", std::wstring(80, L'€'), 0, {160}}, {"an escape pair is never cut", ext152, 0, {152, 11}},
        {"70 UCS2 characters", std::wstring(70, L'ж'), 1, {140}}, {"71 UCS2 characters", std::wstring(71, L'ж'), 1, {134, 8}},
        {"135 UCS2 characters", std::wstring(135, L'ж'), 1, {134, 134, 2}},
        {"an emoji takes two units", std::wstring(69, L'ж') + L"\U0001F600", 1, {134, 8}},
        {"one 7-bit-less character makes it UCS2", std::wstring(100, L'a') + L"ç", 1, {134, 68}},
        {"accented 7-bit letters", L"Grüße, Åsa! ¿Qué tal? {ok} 10€", 0, {33}},
    };
    // clang-format on
    CSmsUtility sms;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        int encodeType = -1;
        const std::vector<TTpduSubmit> segments = Split(sms, sms_test::SendItem(row.text), encodeType);
        EXPECT_EQ(encodeType, row.encodeType);
        ASSERT_EQ(segments.size(), row.lengths.size());
        std::wstring joined;
        for (std::size_t i = 0; i < segments.size(); ++i) {
            EXPECT_EQ(segments[i].userData.nLength, row.lengths[i]) << "segment " << i + 1;
            TProtocalTpduData tpdu;
            ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(segments[i], tpdu), 0) << "segment " << i + 1;
            const std::string hex = Hex(tpdu.data, static_cast<int>(tpdu.nLength));
            TTpduData decoded;
            ASSERT_EQ(CSmsUtility::DecodeTpduData(hex.c_str(), static_cast<int>(tpdu.nLength), decoded), 0)
                << hex;
            const TTpduSubmit& back = decoded.submit;
            EXPECT_EQ(back.nDcs, row.encodeType == 0 ? 0 : 8);
            EXPECT_STREQ(back.destination.szAddress, "4917012345678");
            EXPECT_EQ(back.destination.nType, 0x11u);
            EXPECT_EQ(back.userData.header.bPresent, segments.size() > 1 ? 1u : 0u);
            if (segments.size() > 1) {
                EXPECT_EQ(back.userData.header.nTotal, segments.size());
                EXPECT_EQ(back.userData.header.nSequence, i + 1);
                EXPECT_EQ(back.userData.header.nReference, segments[0].userData.header.nReference);
            }
            std::wstring text;
            CSmsUtility::GetUserDataContent(CSmsUtility::DecodeDcsAlphabet(back.nDcs), back.userData, text);
            joined += text;
        }
        EXPECT_EQ(joined, sms_test::Utf16(row.text));
    }
}

TEST(SmsPacketMsg, StatusReportOnTheNextToLastSegment) {
    // clang-format off
    const struct { int enabled; std::wstring text; std::vector<int> requested; } rows[] = {
        {1, L"short", {1}}, {1, std::wstring(200, L'a'), {1, 0}},    {1, std::wstring(400, L'a'), {0, 1, 0}},
        {1, L"", {1}},      {0, std::wstring(400, L'a'), {0, 0, 0}}, {0, L"short", {0}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.enabled << " " << row.text.size());
        CSmsUtility sms;
        sms.EnableStatusReport(row.enabled);
        int encodeType = -1;
        const std::vector<TTpduSubmit> segments = Split(sms, sms_test::SendItem(row.text), encodeType);
        std::vector<int> requested;
        for (const TTpduSubmit& segment : segments)
            requested.push_back(segment.bStatusReportRequest);
        EXPECT_EQ(requested, row.requested);
    }
}

// With Latin support, accented letters the alphabet lacks are sent unaccented, but only when that makes
// the whole text 7-bit.
TEST(SmsPacketMsg, LatinReplacement) {
    // clang-format off
    const struct { int latin; std::wstring text; int encodeType; std::wstring sent; } rows[] = {
        {1, L"Olá, ça va? Ý ÀÁÂÃ ÈÊË ÌÍÎÏ ÒÓÔÕ ÙÚÛ âã êë íîï óôõ úû ýÿ", 0, L"Ola, Ça va? Y AAAA EEE IIII OOOO UUU aa ee iii ooo uu yy"},
        {1, L"Olá ✓", 1, L"Olá ✓"}, {0, L"Olá", 1, L"Olá"}, {1, L"é è ñ stay", 0, L"é è ñ stay"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.latin << " " << row.sent);
        CSmsUtility sms;
        sms.SetLatinSupport(row.latin);
        int encodeType = -1;
        const std::vector<TTpduSubmit> segments = Split(sms, sms_test::SendItem(row.text), encodeType);
        ASSERT_EQ(segments.size(), 1u);
        EXPECT_EQ(encodeType, row.encodeType);
        std::wstring text;
        CSmsUtility::GetUserDataContent(encodeType == 0 ? SMS_ALPHABET_7BIT : SMS_ALPHABET_UCS2,
                                        segments[0].userData, text);
        EXPECT_EQ(text, row.sent);
    }
}

} // namespace
