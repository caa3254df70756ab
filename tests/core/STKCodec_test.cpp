#include <cstdio>
#include <functional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "SAT/STKCodec.h"

namespace {

// A decoded record as one text: its fields joined by '|', items as "id:text"; wide text with printable
// ASCII as it is, anything else as its code point.
std::string Field(const std::wstring& text) {
    std::string out;
    for (const wchar_t c : text) {
        char unit[12];
        std::snprintf(unit, sizeof unit, "<%04X>", static_cast<unsigned>(c));
        out += c >= 0x20 && c < 0x7F && c != '<' ? std::string(1, static_cast<char>(c)) : unit;
    }
    return out;
}

std::string Field(const std::string& text) {
    return text;
}
std::string Field(int number) {
    return std::to_string(number);
}
std::string Field(const TSTKMenuItem& item) {
    return std::to_string(item.nItemId) + ":" + Field(item.wstrText);
}
template <typename T> std::string Field(const std::list<T>& items) {
    std::string out;
    for (const T& item : items)
        out += Field(item) + ",";
    return out;
}
template <typename... T> std::string F(const T&... fields) {
    std::string out;
    ((out += Field(fields) + "|"), ...);
    return out;
}

TEST(STKCodec, CommandTypeFollowsTheModemTable) {
    // clang-format off
    const struct { const char* text; int type; } rows[] = {
        {"\r\n+STGI: 17,\"SIM Services\",3\r\n+STGI: 17,1,\"News\"\r\n\r\nOK\r\n", 37},
        {"+STGI:20\r\nOK", 129}, {"+STGI: 6", 22} /* play tone, as tabled */, {"+STGI: 261", 261},
        {"+STGI: 99", -1}, {"+STGI: 21", -1}, {"+STGI: 262", -1}, {"+STGI: 0", -1}, {"+STGI: -17", -1},
        {"+STGI: 99999999999", -1}, {"+STGI: ", -1}, {"+STGI:", -1}, {"\r\nOK\r\n", -1}, {"", -1},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        int type = 5;
        EXPECT_EQ(CSTKCodec::GetProactiveCommandType(row.text, type), 0);
        EXPECT_EQ(type, row.type);
    }
}

TEST(STKCodec, TextFieldsFollowTheTerminalCharacterSet) {
    // clang-format off
    struct Row { const char* field; int teSet; std::wstring text; };
    const Row rows[] = {
        {"004E006500770073", USSD_TE_UCS2, L"News"}, {"0053004900cd", USSD_TE_UCS2, L"SI\u00CD"},
        {"D83DDE00", USSD_TE_UCS2, L"\U0001F600"},                       // a surrogate pair
        {"D83D0041", USSD_TE_UCS2, std::wstring{wchar_t(0xD83D), L'A'}}, // a lone half is kept as it is
        {"Quiz", USSD_TE_UCS2, L"Quiz"},                                 // a modem printing plain text regardless
        {"004E00650", USSD_TE_UCS2, L"004E00650"}, {"", USSD_TE_UCS2, L""},
        {"Today: sunny, 24 C", USSD_TE_GSM, L"Today: sunny, 24 C"},
        {"\x24\x40\x5F", USSD_TE_GSM, L"\u00A4\u00A1\u00A7"}, // default-alphabet octets
        {"\x1B\x65", USSD_TE_GSM, L"\u20AC"}, {"Caf\xC3\xA9", USSD_TE_GSM, L"Caf\u00E9"}, {"Caf\xE9", USSD_TE_IRA, L"Caf\u00E9"},
        {"\xF0\x9F\x98\x80!", USSD_TE_IRA, L"\U0001F600!"}, {"\xF0\x9F", USSD_TE_IRA, L"\u00F0\u009F"}, // cut UTF-8
        {"4869", USSD_TE_HEX, L"Hi"}, {"486", USSD_TE_HEX, L"486"},
    };
    // clang-format on
    for (const Row& row : rows)
        EXPECT_EQ(Field(CSTKCodec::DecodeTeText(row.field, row.teSet)), Field(row.text)) << row.field;
    const std::wstring sample = L"Paris \u00E9\u20AC\U0001F600";
    EXPECT_EQ(CSTKCodec::EncodeTeText(sample, USSD_TE_UCS2), "00500061007200690073002000E920ACD83DDE00");
    EXPECT_EQ(Field(CSTKCodec::DecodeTeText(CSTKCodec::EncodeTeText(sample, USSD_TE_UCS2), USSD_TE_UCS2)),
              Field(sample));
    EXPECT_EQ(CSTKCodec::EncodeTeText(L"Say \"yes\" \u00E9", USSD_TE_IRA), "Say ?yes? ?");
    EXPECT_EQ(CSTKCodec::EncodeTeText(L"a@\u00E9", USSD_TE_GSM), "a??"); // '@' is code 0, 'é' code 0x05
}

// Each decoder on real listings (menus as the simulator lists them, in GSM and after AT+CSCS="UCS2"),
// its record as "result|field|field|...". A refused listing resets the record.
TEST(STKCodec, DecodersReadTheirCommandsFields) {
    using C = CSTKCodec;
    // clang-format off
    const auto stale = [](const char* text) { TSTKDisplayTextReq r; r.wstrText = L"old"; r.nPriority = 1; const int rc = C::DecodeDisplayTextReq(text, r); return F(rc, r.wstrText, r.nPriority); };
    const struct { std::function<std::string()> decode; const char* fields; } rows[] = {
        {[] { TSTKSetupMenuReq r; int rc = C::DecodeSetupMenuReq("\r\n+STGI: 17,\"SIM Services\",3\r\n+STGI: 17,1,\"News\"\r\n" "+STGI: 17,2,\"Games\"\r\n+STGI: 17,3,\"Offers\"\r\n\r\nOK\r\n", r, USSD_TE_GSM); return F(rc, r.wstrTitle, r.nItemCount, r.lstItems); }, "0|SIM Services|3|1:News,2:Games,3:Offers,|"},
        {[] { TSTKSetupMenuReq r; int rc = C::DecodeSetupMenuReq("+STGI: 17,\"00530049004D\",2\r\n+STGI: 17,1,\"004E006500770073\"\r\n" "+STGI:17, 2 ,\"00470061006D00650073\"\r\nOK", r); return F(rc, r.wstrTitle, r.nItemCount, r.lstItems); }, "0|SIM|2|1:News,2:Games,|"},
        // An item line without a number is skipped, one without a text kept; a title alone has no items.
        {[] { TSTKSetupMenuReq r; int rc = C::DecodeSetupMenuReq("+STGI: 17,\"M\"\r\n+STGI: 17,x,\"A\"\r\n+STGI: 17,4\r\n", r, USSD_TE_GSM); return F(rc, r.wstrTitle, r.nItemCount, r.lstItems); }, "0|M|0|4:,|"},
        {[] { TSTKSelectItemReq r; int rc = C::DecodeSelectItemReq("\r\n+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"\r\n" "+STGI: 11,2,\"About\"\r\n\r\nOK\r\n", r, USSD_TE_GSM); return F(rc, r.wstrTitle, r.nDefaultItem, r.nItemCount, r.lstItems); }, "0|Games|1|2|1:Quiz,2:About,|"},
        {[] { TSTKSelectItemReq r; r.lstItems.push_back({1, L"stale"}); int rc = C::DecodeSelectItemReq("+STGI: 17,\"Menu\"\r\n+STGI: 17,1,\"A\"", r); return F(rc, r.wstrTitle, r.lstItems); }, "1|||"},
        {[] { TSTKDisplayTextReq r; int rc = C::DecodeDisplayTextReq("+STGI: 1,\"Today: sunny, 24 C\",0,1\r\n\r\nOK", r, USSD_TE_GSM); return F(rc, r.wstrText, r.nPriority, r.nClearMode); }, "0|Today: sunny, 24 C|0|1|"},
        {[] { TSTKGetInkeyReq r; int rc = C::DecodeGetInkeyReq("+STGI: 2,\"Receive offers? (Y/N)\",3,0", r, USSD_TE_GSM); return F(rc, r.wstrText, r.nFormat, r.nHelp); }, "0|Receive offers? (Y/N)|3|0|"}, // 3: yes or no
        {[] { TSTKGetInputReq r; int rc = C::DecodeGetInputReq("+STGI: 3,\"0043003F\",1,1,12,\"00500061\",0", r); return F(rc, r.wstrText, r.nFormat, r.nMinLength, r.nMaxLength, r.wstrDefaultText, r.nEcho, r.nHelp); }, "0|C?|1|1|12|Pa|0|0|"},
        // Fields left out keep their defaults.
        {[] { TSTKGetInputReq r; r.nMaxLength = 3; r.nEcho = 0; int rc = C::DecodeGetInputReq("+STGI: 3,\"Name?\"", r, USSD_TE_GSM); return F(rc, r.nMaxLength, r.nEcho); }, "0|255|1|"},
        {[] { TSTKPlayToneReq r; int rc = C::DecodePlayToneReq("+STGI: 6,\"Ring\",16,1,5", r, USSD_TE_GSM); return F(rc, r.wstrText, r.nTone, r.nDurationUnit, r.nDuration); }, "0|Ring|16|1|5|"},
        {[] { TSTKRefreshReq r; int rc = C::DecodeRefreshReq("+STGI: 9,1,\"3F007F206F07\"", r, USSD_TE_GSM); return F(rc, r.nRefreshType, r.wstrFileList); }, "0|1|3F007F206F07|"},
        {[] { TSTKSetupCallReq r; int rc = C::DecodeSetupCallReq("+STGI: 15,\"00430061006C006C003F\",\"002B0034003900310032\",2,\"002E002E\"", r); return F(rc, r.wstrConfirmText, r.strNumber, r.nQualifier, r.wstrCallText); }, "0|Call?|+4912|2|..|"},
        {[] { TSTKSetupEventListReq r; int rc = C::DecodeSetupEventListReq("+STGI: 16,4, 5,x,7", r); return F(rc, r.lstEvents); }, "0|4,5,7,|"},
        {[] { TSTKSendDTMFReq r; int rc = C::DecodeSendDTMFReq("+STGI: 23,\"Tones\",\"12*#\"", r, USSD_TE_GSM); return F(rc, r.wstrText, r.strDTMF); }, "0|Tones|12*#|"},
        {[] { TSTKSetupIdleModeTextReq r; int rc = C::DecodeSetupIdleModeTextReq("+STGI: 18,\"Welcome\"", r, USSD_TE_GSM); return F(rc, r.wstrText); }, "0|Welcome|"},
        {[] { TSTKSendUSSDReq r; int rc = C::DecodeSendUSSDReq("+STGI: 14,\"Balance\",\"*100#\"", r, USSD_TE_GSM); return F(rc, r.wstrUSSDString); }, "0|*100#|"},
        {[] { TSTKSendSSReq r; int rc = C::DecodeSendSSReq("+STGI: 13,\"Divert\",\"**21*123#\"", r, USSD_TE_GSM); return F(rc, r.wstrSSString); }, "0|**21*123#|"},
        {[] { TSTKSendSMSReq r; int rc = C::DecodeSendSMSReq("+STGI: 12,\"Sending\"", r, USSD_TE_GSM); return F(rc, r.wstrText); }, "0|Sending|"},
        {[] { TSTKLanguageNotificationReq r; int rc = C::DecodeLanguageNotificationReq("+STGI: 24,\"00640065\"", r); return F(rc, r.strLanguage); }, "0|de|"},
        {[] { TSTKIdleScreenNotification r; return F(C::DecodeIdleScreenNotification("+STGI: 256", r)); }, "0|"},
        {[] { TSTKUserActivityNotification r; return F(C::DecodeUserActivityNotification("+STGI: 257\r\nOK", r)); }, "0|"},
        {[] { TSTKUserActivityNotification r; return F(C::DecodeUserActivityNotification("+STGI: 256", r)); }, "1|"},
        // Another command's listing, or none, is refused and the record reset.
        {[&] { return stale("+STGI:20\r\nOK"); }, "1||0|"}, {[&] { return stale("+STGI: 11,\"Games\",1,2"); }, "1||0|"},
        {[&] { return stale("\r\nOK\r\n"); }, "1||0|"}, {[&] { return stale(""); }, "1||0|"}, {[&] { return stale("+STGI: \"Hi\""); }, "1||0|"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(row.decode(), row.fields);
}

TEST(STKCodec, AnswersAndEnvelopesHaveTheModemsFormats) {
    using C = CSTKCodec;
    using S = std::string;
    // clang-format off
    const struct { std::function<int(S&)> encode; const char* command; int result = 0; } rows[] = {
        {[](S& c) { return C::EncodeMenuSelectionEnvelope(0, 2, c); }, "AT+STGR=0,0,2\r"},
        {[](S& c) { return C::EncodeMenuSelectionEnvelope(19, -1, c); }, "AT+STGR=0,19,\r"},
        {[](S& c) { return C::EncodeDisplayTextResponse(0, nullptr, c); }, "AT+STGR=1,0,\r"},
        {[](S& c) { return C::EncodeDisplayTextResponse(32, "1", c); }, "AT+STGR=1,32,1\r"},
        {[](S& c) { return C::EncodeGetInkeyResponse(0, 1, L"", c); }, "AT+STGR=2,0,,2,1,\r"},
        {[](S& c) { return C::EncodeGetInkeyResponse(0, -1, L"7", c); }, "AT+STGR=2,0,,2,,\"0037\"\r"},
        {[](S& c) { return C::EncodeGetInkeyResponse(0, -1, L"7", c, USSD_TE_GSM); }, "AT+STGR=2,0,,2,,\"7\"\r"},
        {[](S& c) { return C::EncodeGetInkeyResponse(16, -1, L"", c); }, "AT+STGR=2,16,,2,,\r"},
        {[](S& c) { return C::EncodeGetInputResponse(0, L"Paris", c, USSD_TE_GSM); }, "AT+STGR=3,0,,\"Paris\"\r"},
        {[](S& c) { return C::EncodeGetInputResponse(0, L"\u00E9", c); }, "AT+STGR=3,0,,\"00E9\"\r"},
        {[](S& c) { return C::EncodeGetInputResponse(17, L"", c); }, "AT+STGR=3,17,,\r"},
        {[](S& c) { return C::EncodePlayToneResponse(0, c); }, "AT+STGR=6,0,\r"},
        {[](S& c) { return C::EncodeSelectItemResponse(0, 3, c); }, "AT+STGR=11,0,,3\r"},
        {[](S& c) { return C::EncodeSelectItemResponse(17, -1, c); }, "AT+STGR=11,17,,\r"},
        {[](S& c) { return C::EncodeSetupCallResponse(0, "", c); }, "AT+STGR=15,0,\r"},
        {[](S& c) { return C::EncodeSetupCallResponse(34, "2", c); }, "AT+STGR=15,34,2\r"},
        {[](S& c) { return C::EncodeSetupIdleModeTextResponse(0, c); }, "AT+STGR=18,0,\r"},
        {[](S& c) { return C::EncodeSendDTMFResponse(0, nullptr, c); }, "AT+STGR=23,0,\r"},
        {[](S& c) { return C::EncodeSendDTMFResponse(32, "4", c); }, "AT+STGR=23,32,4\r"},
        {[](S& c) { return C::EncodeLanguageNotificationResponse(0, nullptr, c); }, "AT+STGR=24,0,\r"},
        {[](S& c) { return C::EncodeLanguageNotificationResponse(0, "en", c); }, "AT+STGR=24,0,en\r"},
        {[](S& c) { return C::EncodeIdleScreenAvailableEnvelope(c); }, "AT+STGR=256\r"},
        {[](S& c) { return C::EncodeUserActivityEnvelope(c); }, "AT+STGR=257\r"},
        // What cannot go on a command line is refused and nothing is built: quotes, semicolons and line
        // ends in an input would end the quoted text or the command.
        {[](S& c) { return C::EncodeDisplayTextResponse(0, "1\r\nAT+CFUN=0", c); }, nullptr, 1},
        {[](S& c) { return C::EncodeSetupCallResponse(0, "\"", c); }, nullptr, 1},
        {[](S& c) { return C::EncodeGetInkeyResponse(0, 2, L"", c); }, nullptr, 1},
        {[](S& c) { return C::EncodeGetInputResponse(0, std::wstring(kSTKMaxTextChars + 1, L'a'), c); }, nullptr, 1},
        {[](S& c) { return C::EncodeGetInputResponse(0, L"a\";+CFUN=0;\"", c, USSD_TE_GSM); }, nullptr, 1},
        {[](S& c) { return C::EncodeGetInputResponse(0, L"a\r", c, USSD_TE_IRA); }, nullptr, 1},
        {[](S& c) { return C::EncodeProvideLocalInfoResponse(0, c); }, nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command ? row.command : "refused");
        std::string command = "kept";
        EXPECT_EQ(row.encode(command), row.result);
        EXPECT_EQ(command, row.command ? row.command : "kept");
    }
}

TEST(STKCodec, OversizedAndBrokenListingsStayBounded) {
    // A text far longer than a card can hold is cut; so is a list of items.
    std::string listing = "+STGI: 17,\"" + std::string(20000, 'A') + "\",9999\r\n";
    for (int i = 0; i < 1000; ++i)
        listing += "+STGI: 17," + std::to_string(i) + ",\"" + std::string(600, 'b') + "\"\r\n";
    TSTKSetupMenuReq menu;
    ASSERT_EQ(CSTKCodec::DecodeSetupMenuReq(listing, menu, USSD_TE_GSM), 0);
    EXPECT_EQ(menu.wstrTitle.size(), static_cast<std::size_t>(kSTKMaxTextChars));
    EXPECT_EQ(menu.nItemCount, 9999);
    EXPECT_EQ(menu.lstItems.size(), static_cast<std::size_t>(kSTKMaxMenuItems));
    EXPECT_EQ(menu.lstItems.back().wstrText.size(), static_cast<std::size_t>(kSTKMaxTextChars));

    // An unclosed quote ends at the line's end; more fields than read are ignored.
    TSTKDisplayTextReq display;
    ASSERT_EQ(CSTKCodec::DecodeDisplayTextReq("+STGI: 1,\"open,1,1\r\nOK", display, USSD_TE_GSM), 0);
    EXPECT_EQ(F(display.wstrText, display.nPriority), "open,1,1|0|");
    ASSERT_EQ(CSTKCodec::DecodeDisplayTextReq("+STGI: 1," + std::string(5000, ',') + "7", display), 0);
    ASSERT_EQ(CSTKCodec::DecodeDisplayTextReq("+STGI: 1,\"x\",99999999999,-1", display, USSD_TE_GSM), 0);
    EXPECT_EQ(F(display.nPriority, display.nClearMode), "0|-1|");

    // Random octets through every decoder: no crash, no overrun (run under the sanitizers).
    std::mt19937 random(20261121);
    const std::string alphabet = "+STGI: 0123456789,\"\r\nABCDEF\x1B\xC3\xA9\xF0\x9F";
    for (int round = 0; round < 2000; ++round) {
        std::string text = "+STGI: " + std::to_string(round % 30);
        const int length = static_cast<int>(random() % 200);
        for (int i = 0; i < length; ++i)
            text.push_back(round % 3 == 0 ? static_cast<char>(random() & 0xFF)
                                          : alphabet[random() % alphabet.size()]);
        const int teSet = round % 2 == 0 ? USSD_TE_UCS2 : USSD_TE_GSM;
        int type = 0;
        CSTKCodec::GetProactiveCommandType(text, type);
        const auto decode = [&](auto function, auto record) {
            function(text, record, teSet);
            return record;
        };
        decode(&CSTKCodec::DecodeSelectItemReq, TSTKSelectItemReq());
        decode(&CSTKCodec::DecodeGetInputReq, TSTKGetInputReq());
        decode(&CSTKCodec::DecodeSetupCallReq, TSTKSetupCallReq());
        decode(&CSTKCodec::DecodeLanguageNotificationReq, TSTKLanguageNotificationReq());
        decode(&CSTKCodec::DecodeSendDTMFReq, TSTKSendDTMFReq());
        EXPECT_LE(decode(&CSTKCodec::DecodeSetupMenuReq, TSTKSetupMenuReq()).wstrTitle.size(),
                  size_t(kSTKMaxTextChars));
        EXPECT_LE(decode(&CSTKCodec::DecodeSetupEventListReq, TSTKSetupEventListReq()).lstEvents.size(),
                  size_t(kSTKMaxEvents));
    }
}

} // namespace
