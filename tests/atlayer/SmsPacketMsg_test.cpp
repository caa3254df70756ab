#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "SmsUtility.h"

namespace {

TSmsSendItem Item(const std::wstring& text, const char* number = "+4917012345678") {
    TSmsSendItem item;
    std::strcpy(item.szNumber, number);
    item.wstrContent = text;
    return item;
}

std::vector<TTpduSubmit> Split(CSmsUtility& sms, const TSmsSendItem& item, int& encodeType) {
    std::list<TTpduSubmit> segments;
    EXPECT_EQ(sms.PacketMsg(item, segments, encodeType), 0);
    return {segments.begin(), segments.end()};
}

std::string Hex(const uint8_t* data, int count) {
    static const char* const digits = "0123456789ABCDEF";
    std::string hex;
    for (int i = 0; i < count; ++i) {
        hex += digits[data[i] >> 4];
        hex += digits[data[i] & 0x0F];
    }
    return hex;
}

// The text as UCS2 carries it: characters beyond U+FFFF as surrogate pairs.
std::wstring Utf16(const std::wstring& text) {
    std::wstring units;
    for (wchar_t c : text) {
        if (c > 0xFFFF) {
            units += wchar_t(0xD800 + ((c - 0x10000) >> 10));
            units += wchar_t(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            units += c;
        }
    }
    return units;
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
        const std::vector<TTpduSubmit> segments = Split(sms, Item(row.text), encodeType);
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
        EXPECT_EQ(joined, Utf16(row.text));
    }
}

TEST(SmsPacketMsg, StatusReportOnTheNextToLastSegment) {
    // clang-format off
    struct Row { int enabled; std::wstring text; std::vector<int> requested; };
    const Row rows[] = {
        {1, L"short", {1}}, {1, std::wstring(200, L'a'), {1, 0}},    {1, std::wstring(400, L'a'), {0, 1, 0}},
        {1, L"", {1}},      {0, std::wstring(400, L'a'), {0, 0, 0}}, {0, L"short", {0}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.enabled << " " << row.text.size());
        CSmsUtility sms;
        sms.EnableStatusReport(row.enabled);
        int encodeType = -1;
        const std::vector<TTpduSubmit> segments = Split(sms, Item(row.text), encodeType);
        std::vector<int> requested;
        for (const TTpduSubmit& segment : segments)
            requested.push_back(segment.bStatusReportRequest);
        EXPECT_EQ(requested, row.requested);
    }
}

TEST(SmsPacketMsg, TemplateFields) {
    CSmsUtility sms;
    int encodeType = -1;
    std::vector<TTpduSubmit> segments = Split(sms, Item(L"", "01701234567"), encodeType);
    ASSERT_EQ(segments.size(), 1u);
    EXPECT_EQ(encodeType, 0);
    EXPECT_EQ(segments[0].nMti, 1);
    EXPECT_EQ(segments[0].bRejectDuplicates, 1);
    EXPECT_EQ(segments[0].nVpf, 0);
    EXPECT_EQ(segments[0].destination.nType, 129u);
    EXPECT_STREQ(segments[0].destination.szAddress, "01701234567");
    EXPECT_EQ(segments[0].userData.nLength, 0u);
    TProtocalTpduData tpdu;
    ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(segments[0], tpdu), 0);
    EXPECT_EQ(Hex(tpdu.data, 1) + Hex(tpdu.data + 2, static_cast<int>(tpdu.nLength) - 2), "05"
                                                                                          "0B811007214365F7"
                                                                                          "000000");

    // A validity period of 20 days is sent as TP-VP 180 (14 days).
    sms.SetValidPeriod({1, 0, 20, 0});
    segments = Split(sms, Item(L"hello"), encodeType);
    ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(segments[0], tpdu), 0);
    EXPECT_EQ(Hex(tpdu.data, 1), "15");
    EXPECT_EQ(Hex(tpdu.data + 2, static_cast<int>(tpdu.nLength) - 2), "0D91947110325476F80000B405E8329BFD06");

    // Split messages take consecutive references; each keeps its own for all its segments.
    const std::vector<TTpduSubmit> one = Split(sms, Item(std::wstring(161, L'a')), encodeType);
    const std::vector<TTpduSubmit> two = Split(sms, Item(std::wstring(71, L'ж')), encodeType);
    EXPECT_EQ(static_cast<uint8_t>(two[0].userData.header.nReference - one[0].userData.header.nReference), 1);
    EXPECT_EQ(two[1].userData.header.nReference, two[0].userData.header.nReference);

    // A destination with "*" or "#" splits, but does not encode.
    segments = Split(sms, Item(L"hello", "*100#"), encodeType);
    EXPECT_EQ(CSmsUtility::EncodeTpduSubmit(segments[0], tpdu), CSmsUtility::kErrNotAPhoneNumber);
}

// With Latin support, accented letters the alphabet lacks are sent unaccented, but only when that makes
// the whole text 7-bit.
TEST(SmsPacketMsg, LatinReplacement) {
    // clang-format off
    struct Row { int latin; std::wstring text; int encodeType; std::wstring sent; };
    const Row rows[] = {
        {1, L"Olá, ça va? Ý ÀÁÂÃ ÈÊË ÌÍÎÏ ÒÓÔÕ ÙÚÛ âã êë íîï óôõ úû ýÿ", 0, L"Ola, Ça va? Y AAAA EEE IIII OOOO UUU aa ee iii ooo uu yy"},
        {1, L"Olá ✓", 1, L"Olá ✓"}, {0, L"Olá", 1, L"Olá"}, {1, L"é è ñ stay", 0, L"é è ñ stay"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.latin << " " << row.sent);
        CSmsUtility sms;
        sms.SetLatinSupport(row.latin);
        int encodeType = -1;
        const std::vector<TTpduSubmit> segments = Split(sms, Item(row.text), encodeType);
        ASSERT_EQ(segments.size(), 1u);
        EXPECT_EQ(encodeType, row.encodeType);
        std::wstring text;
        CSmsUtility::GetUserDataContent(encodeType == 0 ? SMS_ALPHABET_7BIT : SMS_ALPHABET_UCS2,
                                        segments[0].userData, text);
        EXPECT_EQ(text, row.sent);
    }
}

TEST(SmsPacketMsg, SegmentLengthsInCharacters) {
    // clang-format off
    struct Row { std::wstring text; std::list<int> lengths; };
    const Row rows[] = {
        {L"", {0}}, {std::wstring(160, L'a'), {160}}, {std::wstring(159, L'a') + L"€", {153, 7}}, {std::wstring(80, L'~') + L"a", {76, 5}},
        // A character in neither table costs nothing in the first count and one septet while splitting.
        {std::wstring(160, L'a') + wchar_t(0x4E00), {161}}, {std::wstring(160, L'a') + L"€" + wchar_t(0x4E00), {153, 9}},
    };
    // clang-format on
    for (const Row& row : rows) {
        std::list<int> lengths;
        const int count =
            CSmsUtility::GetDefault7BitPacketNum(row.text.data(), static_cast<int>(row.text.size()), lengths);
        EXPECT_EQ(lengths, row.lengths) << row.text.size();
        EXPECT_EQ(count, static_cast<int>(row.lengths.size()));
    }
}

} // namespace
