// The simulated modem's text and PDU codecs, against 3GPP TS 23.040/23.038 vectors, PDUs as the host
// sends them, and hostile input.

#include <gtest/gtest.h>
#include <sstream>

#include "SimPdu.h"
#include "SimTestSupport.h"
#include "SimText.h"

namespace modemsim {
namespace {

std::string Repeat(std::string_view s, int n) {
    std::string out;
    for (int i = 0; i < n; ++i)
        out += s;
    return out;
}

// A copy of value changed by edit, so that a table row can say what differs from the usual.
template <class T, class Edit> T With(T value, Edit edit) {
    edit(value);
    return value;
}

TEST(SimText, Utf8ToUtf32HandlesValidAndMalformedInput) {
    // clang-format off
    struct Row { std::string utf8; std::u32string expected; };
    const Row rows[] = {
        {"Az", U"Az"}, {"\xC3\xA4\xE2\x82\xAC", U"\u00E4\u20AC"}, {"\xF0\x9F\x98\x80!", U"\U0001F600!"},
        {"\xC0\xAF", U"\uFFFD"},         // overlong "/"
        {"\xED\xA0\x80", U"\uFFFD"},     // encoded surrogate
        {"\xF4\x90\x80\x80", U"\uFFFD"}, // above U+10FFFF
        {"\xE2\x82", U"\uFFFD"},         // truncated at the end
        {"\xE2\x82x", U"\uFFFDx"},       // truncated before an ASCII byte
        {"\x80\xFF", U"\uFFFD\uFFFD"},   // stray continuation, invalid lead
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(Utf8ToUtf32(row.utf8), row.expected) << row.utf8;
    EXPECT_EQ(Utf32ToUtf8(U"\u00E4\u20AC\U0001F600"), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0xD800))), "\xEF\xBF\xBD");
}

TEST(SimText, Gsm7Tables) {
    // Both tables in code order, as TS 23.038 prints them; the escape's place shows as a no-break space.
    const std::string defaultTable = "@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞ\u00A0ÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
                                     "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà";
    std::u32string decoded;
    for (int code = 0; code < 128; ++code)
        decoded.push_back(Gsm7ToUnicode(static_cast<uint8_t>(code)));
    EXPECT_EQ(Utf32ToUtf8(decoded), defaultTable);
    EXPECT_EQ(Utf32ToUtf8(Gsm7ToText(Bytes{0x1B, 0x0A, 0x1B, 0x14, 0x1B, 0x28, 0x1B, 0x29, 0x1B, 0x2F,
                                           0x1B, 0x3C, 0x1B, 0x3D, 0x1B, 0x3E, 0x1B, 0x40, 0x1B, 0x65})),
              "\f^{}\\[~]|\u20AC");
    std::u32string all = Utf8ToUtf32(defaultTable);
    all.erase(0x1B, 1);
    all += U"\f^{}\\[~]|\u20AC";
    EXPECT_EQ(Gsm7ToText(TextToGsm7(all)), all);

    // clang-format off
    struct Row { Bytes septets; std::u32string expected; };
    const Row rows[] = {
        {{0x1B}, U""}, // trailing escape
        {{0x41, 0x1B}, U"A"}, {{0x1B, 0x41}, U"A"}, // undefined extension: the default character
        {{0x80, 0xFF}, U"\uFFFD\uFFFD"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(Gsm7ToText(row.septets), row.expected);
}

TEST(SimText, UssdRequestFromHost) {
    // clang-format off
    struct Row { std::string arg, cscs; bool ok; std::string expected; };
    const Row rows[] = {
        {"002a0031003000300023", "UCS2", true, "*100#"},
        {"0002", "UCS2", true, "$"},             // default-alphabet code 2, not U+0002
        {"000000E4", "UCS2", true, "@\xC3\xA4"}, // code 0 is "@"; above 0x7F a UCS2 unit
        {"002A003", "UCS2", false, ""}, {"002A00G1", "UCS2", false, ""}, {"*100#", "IRA", true, "*100#"},
    };
    // clang-format on
    for (const auto& row : rows) {
        std::string text;
        EXPECT_EQ(DecodeUssdRequest(row.arg, row.cscs, &text), row.ok) << row.arg;
        if (row.ok) {
            EXPECT_EQ(text, row.expected) << row.arg;
        }
    }
}

TEST(SimText, UssdAnswerEncoding) {
    // clang-format off
    struct Row { std::string text, cscs, hex; int dcs; };
    const Row rows[] = {
        {"Hi", "UCS2", "00480069", 72}, {"Hi", "GSM", "C834", 15}, {"*100#", "IRA", "AA180C3602", 15},
        {"1234567", "GSM", "31D98C56B3DD1A", 15}, // seven spare bits: <CR> pad, not "@"
        {"\xD0\x96", "GSM", "0416", 72},          // outside the alphabet: UCS2 whatever the set
    };
    // clang-format on
    for (const auto& row : rows) {
        int dcs = 0;
        EXPECT_EQ(EncodeUssdAnswer(row.text, row.cscs, &dcs), row.hex) << row.text;
        EXPECT_EQ(dcs, row.dcs) << row.text;
    }
    // The pad is dropped again at every length. A wanted final <CR> on an octet boundary gets a second
    // one, which the receiver keeps: <CR><CR> means the same as <CR>.
    std::string text;
    for (const std::string& s : {Repeat("a", 1), Repeat("b", 7), Repeat("c", 8), Repeat("d", 15),
                                 Repeat("e", 6) + "\r", std::string("@")}) {
        ASSERT_TRUE(DecodeUssdGsm7Hex(EncodeUssdGsm7Hex(Utf8ToUtf32(s)), &text));
        EXPECT_EQ(text, s);
    }
    ASSERT_TRUE(DecodeUssdGsm7Hex(EncodeUssdGsm7Hex(Utf8ToUtf32(Repeat("e", 7) + "\r")), &text));
    EXPECT_EQ(text, Repeat("e", 7) + "\r\r");
    EXPECT_FALSE(DecodeUssdGsm7Hex("C83", &text));
}

TEST(SimText, SimAlphaIdentifier) {
    EXPECT_EQ(ToHex(EncodeSimAlphaId("Vodafone")), "566F6461666F6E65");
    EXPECT_EQ(ToHex(EncodeSimAlphaId("O2 \xE2\x82\xAC")), "4F32201B65");
    EXPECT_EQ(ToHex(EncodeSimAlphaId("\xD0\x9C\xD0\xA2\xD0\xA1")), "80041C04220421");
}

DeliverParams Deliver(std::string originator, std::string text,
                      std::string timestamp = "24/03/01,12:00:00+04") {
    DeliverParams p;
    p.originator = std::move(originator);
    p.textUtf8 = std::move(text);
    p.timestamp = std::move(timestamp);
    return p;
}

const std::string kPrivetEmoji = "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82 \xF0\x9F\x98\x80";
const auto kFlash = [](DeliverParams& p) { p.messageClass = 0; };
const auto kPart8 = [](DeliverParams& p) { p.concatRef = 7, p.concatTotal = 2, p.concatSeq = 1; };

TEST(SimPdu, DeliverMatchesReferencePdus) {
    const auto part16 = [](DeliverParams& p) { kPart8(p), p.concatRef = 0x1234, p.concat16bit = true; };
    // clang-format off
    struct Row { const char* name; DeliverParams params; std::string hex; int length; };
    const Row rows[] = {
        // The widely published SMS-DELIVER example.
        {"reference", With(Deliver("+31641600986", "How are you?", "02/08/26,19:37:41-00"), [](auto& p) { p.smsc = "+31624000000"; }),
         "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07", 30},
        {"alphanumeric", Deliver("Vodafone", "Guthaben: 5,00 \xE2\x82\xAC"), "0791947101670000040ED0D637396C7EBBCB00004230102100004011C73A1D1D1697DD3A508D0583813665", 35},
        {"ucs2 flash", With(Deliver("+4917612345678", kPrivetEmoji, "24/03/01,12:00:00-08"), kFlash),
         "0791947101670000040D91947116325476F800184230102100008812041F044004380432043504420020D83DDE00", 38},
        {"8-bit reference", With(Deliver("+4917612345678", "hellohello"), kPart8), "0791947101670000440D91947116325476F800004230102100004011050003070201D06536FB8D2EB3D96F", 35},
        {"16-bit reference", With(Deliver("+4917612345678", "hellohello"), part16), "0791947101670000440D91947116325476F80000423010210000401206080412340201E8329BFD4697D9EC37", 36},
        {"no service centre", With(Deliver("0171", "A"), [](auto& p) { p.smsc.clear(); }), "0004048110170000423010210000400141", 16},
    };
    // clang-format on
    for (const auto& row : rows) {
        int length = -1;
        EXPECT_EQ(EncodeDeliverPdu(row.params, &length), row.hex) << row.name;
        EXPECT_EQ(length, row.length) << row.name;
    }
}

TEST(SimPdu, DeliverRefusesWhatDoesNotFit) {
    // clang-format off
    struct Row { const char* name; DeliverParams params; bool fits; };
    const Row rows[] = {
        {"161 septets", Deliver("+49", Repeat("a", 161)), false}, {"160 septets", Deliver("+49", Repeat("a", 160)), true},
        {"81 euro signs", Deliver("+49", Repeat("\xE2\x82\xAC", 81)), false},
        {"71 UCS2 units", Deliver("+49", Repeat("\xD0\x96", 71)), false}, {"70 UCS2 units", Deliver("+49", Repeat("\xD0\x96", 70)), true},
        {"141 data octets", With(Deliver("+49", ""), [](auto& p) { p.data.assign(141, 0x55); }), false},
        {"21 digits", Deliver("+" + Repeat("1", 21), "x"), false},
        {"service centre", With(Deliver("+49", "x"), [](auto& p) { p.smsc = "+49-171"; }), false},
        {"no zone", Deliver("+49", "x", "24/03/01,12:00:00"), false},
        {"zone tens above 7", Deliver("+49", "x", "24/03/01,12:00:00+80"), false},
        {"letters", Deliver("+49", "x", "24/03/01,12:00:0a+04"), false},
        {"wrong separator", Deliver("+49", "x", "24-03-01,12:00:00+04"), false},
        {"quoted, zone -48", Deliver("+49", "x", "\"24/03/01,12:00:00-48\""), true},
    };
    // clang-format on
    for (const auto& row : rows) {
        int length = -1;
        EXPECT_EQ(EncodeDeliverPdu(row.params, &length).empty(), !row.fits) << row.name;
        if (!row.fits) {
            EXPECT_EQ(length, 0) << row.name;
        }
    }
}

TEST(SimPdu, SplitLongTextAtTheLimits) {
    const std::string zhe = "\xD0\x96";
    // clang-format off
    // partChars: code points per part
    struct Row { const char* name; std::string text; bool ref16; std::vector<size_t> partChars; };
    const Row rows[] = {
        {"160 septets", Repeat("a", 160), false, {160}},
        {"161 septets", Repeat("a", 161), false, {153, 8}},
        {"161 septets, 16-bit", Repeat("a", 161), true, {152, 9}},
        {"escape pair kept whole", Repeat("a", 152) + "\xE2\x82\xAC" + "b" + Repeat("c", 10), false, {152, 12}},
        {"70 UCS2", Repeat(zhe, 70), false, {70}},
        {"71 UCS2", Repeat(zhe, 71), false, {67, 4}},
        {"71 UCS2, 16-bit", Repeat(zhe, 71), true, {66, 5}},
        {"surrogate pair kept whole", Repeat(zhe, 66) + "\xF0\x9F\x98\x80" + Repeat(zhe, 5), false, {66, 6}},
        {"one non-GSM char makes it UCS2", Repeat("a", 100) + zhe, false, {67, 34}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto parts = SplitLongText(Deliver("+4917612345678", row.text), 0x1A2B, row.ref16);
        ASSERT_EQ(parts.size(), row.partChars.size());
        std::string joined;
        for (size_t i = 0; i < parts.size(); ++i) {
            EXPECT_EQ(Utf8ToUtf32(parts[i].textUtf8).size(), row.partChars[i]) << "part " << i;
            int length = 0;
            const std::string hex = EncodeDeliverPdu(parts[i], &length);
            ASSERT_FALSE(hex.empty()) << "part " << i;
            const DeliverInfo info = DecodeDeliverPdu(hex, length);
            ASSERT_TRUE(info.ok) << info.error;
            joined += info.textUtf8;
            if (parts.size() > 1) {
                EXPECT_EQ(info.concatRef, row.ref16 ? 0x1A2B : 0x2B);
                EXPECT_EQ(info.concat16bit, row.ref16);
                EXPECT_EQ(info.concatTotal, static_cast<int>(parts.size()));
                EXPECT_EQ(info.concatSeq, static_cast<int>(i + 1));
            }
        }
        EXPECT_EQ(joined, row.text);
    }
    DeliverParams data = Deliver("+49", "");
    data.data.assign(300, 0xA5);
    data.coding = DeliverParams::Coding::Data8;
    const auto dataParts = SplitLongText(data, 1, false);
    ASSERT_EQ(dataParts.size(), 3u);
    EXPECT_EQ(dataParts[0].data.size(), 134u);
    EXPECT_EQ(dataParts[2].data.size(), 32u);
    EXPECT_TRUE(SplitLongText(Deliver("+49", Repeat("a", 255 * 153 + 1)), 1, false).empty());
    EXPECT_EQ(SplitLongText(Deliver("+49", Repeat("a", 255 * 153)), 1, false).size(), 255u);
}

TEST(SimPdu, StatusReportEndsAfterTheStatus) {
    int length = 0;
    const std::string hex = EncodeStatusReportPdu(42, "+4917612345678", "24/03/01,12:00:00+04",
                                                  "24/03/01,12:00:05+04", 0, &length);
    // First octet 06: SMS-STATUS-REPORT, no more messages; no parameter indicator after TP-ST.
    EXPECT_EQ(hex, "0791947101670000062A0D91947116325476F8423010210000404230102100504000");
    EXPECT_EQ(length, 26);
    EXPECT_EQ(EncodeStatusReportPdu(1, "+49", "bad", "", 0, &length), "");
}

// The fields a host's SMS-SUBMIT sets, on one line, so that a row's failure shows them all.
std::string Fields(const SubmitInfo& s) {
    std::ostringstream out;
    out << "mr " << s.mr << ", to " << s.destination << ", text \"" << s.textUtf8 << "\", data " << ToHex(s.data)
        << ", dcs " << s.dcs << ", validity " << s.validityFormat << "/" << s.validity << ", report "
        << s.statusReportRequest << ", reject duplicates " << s.rejectDuplicates << ", part " << s.concatRef
        << (s.concat16bit ? " (16-bit) " : " ") << s.concatSeq << "/" << s.concatTotal << ", smsc " << s.smsc;
    return out.str();
}

// The expected records and parameters name only what differs from the defaults.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

TEST(SimPdu, SubmitsDecodeAsTheHostSendsThemAndStoreAsPublished) {
    const std::string to = "+46708251358";
    // clang-format off
    struct Row { const char* name; std::string hex; SubmitInfo expected; };
    const Row rows[] = {
        {"published example", "0011000B916407281553F80000AA0AE8329BFD4697D9EC37", {.destination = to, .validityFormat = 2, .validity = 0xAA, .textUtf8 = "hellohello"}},
        {"lower case", "0011000b916407281553f80000aa0ae8329bfd4697d9ec37", {.destination = to, .validityFormat = 2, .validity = 0xAA, .textUtf8 = "hellohello"}},
        {"host flags", "0035010D91947116325476F80000A70AE8329BFD4697D9EC37",
         {.mr = 1, .destination = "+4917612345678", .statusReportRequest = true, .validityFormat = 2, .validity = 0xA7, .textUtf8 = "hellohello", .rejectDuplicates = true}},
        {"ucs2 part", "0041000B916407281553F800080A05000307020100480069", {.destination = to, .dcs = 8, .textUtf8 = "Hi", .concatRef = 7, .concatTotal = 2, .concatSeq = 1}},
        {"7-bit part, 1 fill bit", "0041000B916407281553F8000011050003070201D06536FB8D2EB3D96F",
         {.destination = to, .textUtf8 = "hellohello", .concatRef = 7, .concatTotal = 2, .concatSeq = 1}},
        {"7-bit part, 16-bit ref, no fill", "0041000B916407281553F800001206080412340201E8329BFD4697D9EC37",
         {.destination = to, .textUtf8 = "hellohello", .concatRef = 0x1234, .concatTotal = 2, .concatSeq = 1, .concat16bit = true}},
        {"sequence 0 is ignored", "0041000B916407281553F800080A05000307020000480069", {.destination = to, .dcs = 8, .textUtf8 = "Hi"}},
        {"extension chars", "0001000B916407281553F80000061BDEA6BCF101", {.destination = to, .textUtf8 = "[\xE2\x82\xAC]"}},
        {"emoji", "0001000B916407281553F8000804D83DDE00", {.destination = to, .dcs = 8, .textUtf8 = "\xF0\x9F\x98\x80"}},
        {"8-bit data, smsc", "07919471010670F001000B916407281553F8000403010203", {.destination = to, .dcs = 4, .data = {1, 2, 3}, .smsc = "+49171060070"}},
        {"empty text, national", "0001030B811017214365F7000000", {.mr = 3, .destination = "01711234567"}},
    };
    // clang-format on
    for (const auto& row : rows) {
        const SubmitInfo got = DecodeSubmitPdu(row.hex, TpduLengthOfPdu(row.hex));
        ASSERT_TRUE(got.ok) << row.name << ": " << got.error;
        EXPECT_EQ(Fields(got), Fields(row.expected)) << row.name;
    }
    // The published example is also what the modem stores for such a message.
    int length = 0;
    const StoredSubmitParams classic{.destination = to, .textUtf8 = "hellohello", .validity = 0xAA};
    EXPECT_EQ(EncodeSubmitPduForStorage(classic, &length), rows[0].hex);
    EXPECT_EQ(length, 23);
}

#pragma GCC diagnostic pop

TEST(SimPdu, RefusesHostileSubmits) {
    constexpr int kNatural = -1000;
    const std::string good = "0035010D91947116325476F80000A70AE8329BFD4697D9EC37";
    // clang-format off
    struct Row { const char* name; std::string hex; int length; std::string error; };
    const Row rows[] = {
        {"empty", "", 0, "overruns"},
        {"odd", "0", 0, "not hex"},
        {"non-hex", "0X35", 1, "not hex"},
        {"service centre overruns", "FF35", kNatural, "overruns"},
        {"service centre too long", "0C" + Repeat("11", 12) + "01", kNatural, "service-centre address too long"},
        {"service centre filler inside", "0391F11001", kNatural, "bad digit"},
        {"length short", good, 23, "does not match"},
        {"length long", good, 25, "does not match"},
        {"length negative", good, -1, "does not match"},
        {"deliver", "0004" + good.substr(4), kNatural, "not an SMS-SUBMIT"},
        {"address 255 digits", "000100FF91", kNatural, "address too long"},
        {"address truncated", "0011000B9164", kNatural, "address truncated"},
        {"no pid", "0011000B916407281553F8", kNatural, "protocol identifier"},
        {"validity truncated", "0011000B916407281553F80000", kNatural, "validity period"},
        {"absolute validity truncated", "0019000B916407281553F80000AABB", kNatural, "validity period"},
        {"no udl", "0001000B916407281553F80000", kNatural, "user data length missing"},
        {"udl 161 septets", "0001000B916407281553F80000A1" + Repeat("00", 141), kNatural, "too large"},
        {"udl 141 octets", "0001000B916407281553F80008 8D" + Repeat("00", 141), kNatural, "too large"},
        {"user data short", good.substr(0, 30) + "0B" + good.substr(32), kNatural, "shorter"},
        {"trailing octets", good + "00", kNatural, "after the user data"},
        {"udhl beyond user data", "0041000B916407281553F800080A0A00030702010048 0069", kNatural, "header longer"},
        {"udhl beyond septets", "0041000B916407281553F80000020500", kNatural, "header longer"},
        {"element overruns header", "0041000B916407281553F800080805000407020100 48", kNatural, "truncated user data header"},
        {"udhi without user data", "0041000B916407281553F8000800", kNatural, "no user data"},
        {"digit filler inside", "0001000B91640728F553F8000000", kNatural, "bad digit"},
        {"reserved group", "0001000B916407281553F8008000", kNatural, "reserved"},
        {"reserved alphabet", "0001000B916407281553F8000C00", kNatural, "reserved"},
        {"compressed", "0001000B916407281553F8002000", kNatural, "compressed"},
    };
    // clang-format on
    for (const auto& row : rows) {
        std::string hex = row.hex;
        std::erase(hex, ' ');
        const SubmitInfo got =
            DecodeSubmitPdu(hex, row.length == kNatural ? TpduLengthOfPdu(hex) : row.length);
        EXPECT_FALSE(got.ok) << row.name;
        EXPECT_NE(got.error.find(row.error), std::string::npos) << row.name << ": " << got.error;
    }
}

// Every truncation and many single-octet changes of valid PDUs: no read outside the input (run under
// AddressSanitizer), and nothing decoded beyond what the user data can hold.
TEST(SimPdu, MutatedPdusStayInBounds) {
    const std::string seeds[] = {
        "0035010D91947116325476F80000A70AE8329BFD4697D9EC37",
        "0041000B916407281553F800080A05000307020100480069",
        "0041000B916407281553F800001206080412340201E8329BFD4697D9EC37",
        "07919471010670F001000B916407281553F8000403010203",
        "0791947101670000440D91947116325476F800004230102100004011050003070201D06536FB8D2EB3D96F",
        "0791947101670000040ED0D637396C7EBBCB00004230102100004011C73A1D1D1697DD3A508D0583813665",
    };
    const uint8_t values[] = {0x00, 0x01, 0x06, 0x0B, 0x40, 0x7F, 0x80, 0xA0, 0xD0, 0xFF};
    auto check = [](const Bytes& pdu) {
        const std::string hex = ToHex(pdu);
        const int natural = TpduLengthOfPdu(hex);
        for (int length : {natural, natural - 1, natural + 1, 200}) {
            const SubmitInfo s = DecodeSubmitPdu(hex, length);
            const DeliverInfo d = DecodeDeliverPdu(hex, length);
            if (s.ok) {
                ASSERT_LE(Utf8ToUtf32(s.textUtf8).size(), 160u);
                ASSERT_LE(s.data.size(), 140u);
            }
            if (d.ok) {
                ASSERT_LE(Utf8ToUtf32(d.textUtf8).size(), 160u);
                ASSERT_LE(d.data.size(), 140u);
            }
        }
    };
    for (const auto& seed : seeds) {
        Bytes pdu;
        ASSERT_TRUE(FromHex(seed, &pdu));
        for (size_t n = 0; n <= pdu.size(); ++n)
            check(Bytes(pdu.begin(), pdu.begin() + n));
        for (size_t i = 0; i < pdu.size(); ++i) {
            for (uint8_t v : values) {
                Bytes mutated = pdu;
                mutated[i] = v;
                check(mutated);
            }
        }
    }
    // Asking for more septets than the octets hold stops at their end.
    EXPECT_EQ(UnpackSeptets(Bytes{0xFF}, 10, 0).size(), 1u);
    EXPECT_EQ(UnpackSeptets(Bytes{0xFF}, 10, 6).size(), 0u);
    EXPECT_EQ(UnpackSeptets(Bytes{}, 10, 0).size(), 0u);
}

} // namespace
} // namespace modemsim
