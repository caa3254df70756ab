#include <cstdint>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "SAT/STKCodec.h"

namespace {

// Shows wide text as its code points, for failure messages.
std::string Codes(const std::wstring& text) {
    std::string out;
    for (const wchar_t c : text) {
        char unit[12];
        std::snprintf(unit, sizeof unit, "<%04X>", static_cast<unsigned>(c));
        out += unit;
    }
    return out;
}

std::vector<std::pair<int, std::string>> Items(const std::list<TSTKMenuItem>& items) {
    std::vector<std::pair<int, std::string>> out;
    for (const TSTKMenuItem& item : items)
        out.emplace_back(item.nItemId, Codes(item.wstrText));
    return out;
}

TEST(STKCodec, CommandTypeFollowsTheModemTable) {
    struct Row {
        const char* text;
        int type;
    };
    const Row rows[] = {
        {"\r\n+STGI: 17,\"SIM Services\",3\r\n+STGI: 17,1,\"News\"\r\n\r\nOK\r\n", 37},
        {"+STGI:20\r\nOK", 129},
        {"+STGI: 1,\"Hi\",0,1", 33},
        {"+STGI: 2,\"Y/N\",3,0", 34},
        {"+STGI: 3", 35},
        {"+STGI: 6", 22}, // play tone, as tabled
        {"+STGI: 9", 1},
        {"+STGI: 11,\"Games\",1,2", 36},
        {"+STGI: 15", 16},
        {"+STGI: 18", 40},
        {"+STGI: 23", 20},
        {"+STGI: 24", 53},
        {"+STGI: 30", 68},
        {"+STGI: 256", 256},
        {"+STGI: 261", 261},
        {"+STGI: 99", -1},
        {"+STGI: 21", -1},
        {"+STGI: 262", -1},
        {"+STGI: 0", -1},
        {"+STGI: -17", -1},
        {"+STGI: 99999999999", -1},
        {"+STGI: ", -1},
        {"+STGI:", -1},
        {"\r\nOK\r\n", -1},
        {"", -1},
    };
    for (const Row& row : rows) {
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
        {"004E006500770073", USSD_TE_UCS2, L"News"},
        {"0053004900cd", USSD_TE_UCS2, L"SI\u00CD"},
        {"D83DDE00", USSD_TE_UCS2, L"\U0001F600"},                       // a surrogate pair
        {"D83D0041", USSD_TE_UCS2, std::wstring{wchar_t(0xD83D), L'A'}}, // a lone half is kept as it is
        {"Quiz", USSD_TE_UCS2, L"Quiz"}, // a modem printing plain text regardless
        {"004E00650", USSD_TE_UCS2, L"004E00650"},
        {"", USSD_TE_UCS2, L""},
        {"Today: sunny, 24 C", USSD_TE_GSM, L"Today: sunny, 24 C"},
        {"\x24\x40\x5F", USSD_TE_GSM, L"\u00A4\u00A1\u00A7"}, // default-alphabet octets
        {"\x1B\x65", USSD_TE_GSM, L"\u20AC"},
        {"Caf\xC3\xA9", USSD_TE_GSM, L"Caf\u00E9"},
        {"Caf\xE9", USSD_TE_IRA, L"Caf\u00E9"},
        {"\xF0\x9F\x98\x80!", USSD_TE_IRA, L"\U0001F600!"},
        {"\xF0\x9F", USSD_TE_IRA, L"\u00F0\u009F"}, // cut UTF-8
        {"4869", USSD_TE_HEX, L"Hi"},
        {"486", USSD_TE_HEX, L"486"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.field);
        EXPECT_EQ(Codes(CSTKCodec::DecodeTeText(row.field, row.teSet)), Codes(row.text));
    }
    const std::wstring sample = L"Paris \u00E9\u20AC\U0001F600";
    EXPECT_EQ(CSTKCodec::EncodeTeText(sample, USSD_TE_UCS2), "00500061007200690073002000E920ACD83DDE00");
    EXPECT_EQ(Codes(CSTKCodec::DecodeTeText(CSTKCodec::EncodeTeText(sample, USSD_TE_UCS2), USSD_TE_UCS2)),
              Codes(sample));
    EXPECT_EQ(CSTKCodec::EncodeTeText(L"Say \"yes\" \u00E9", USSD_TE_IRA), "Say ?yes? ?");
    EXPECT_EQ(CSTKCodec::EncodeTeText(L"a@\u00E9", USSD_TE_GSM), "a??"); // '@' is code 0, 'é' code 0x05
}

TEST(STKCodec, MenusListTheirItems) {
    // As the simulator lists them, in GSM and in UCS2.
    TSTKSetupMenuReq menu;
    ASSERT_EQ(CSTKCodec::DecodeSetupMenuReq("\r\n+STGI: 17,\"SIM Services\",3\r\n+STGI: 17,1,\"News\"\r\n"
                                            "+STGI: 17,2,\"Games\"\r\n+STGI: 17,3,\"Offers\"\r\n\r\nOK\r\n",
                                            menu, USSD_TE_GSM),
              0);
    EXPECT_EQ(Codes(menu.wstrTitle), Codes(L"SIM Services"));
    EXPECT_EQ(menu.nItemCount, 3);
    const std::vector<std::pair<int, std::string>> expected = {
        {1, Codes(L"News")}, {2, Codes(L"Games")}, {3, Codes(L"Offers")}};
    EXPECT_EQ(Items(menu.lstItems), expected);

    ASSERT_EQ(
        CSTKCodec::DecodeSetupMenuReq("+STGI: 17,\"00530049004D\",2\r\n+STGI: 17,1,\"004E006500770073\"\r\n"
                                      "+STGI:17, 2 ,\"00470061006D00650073\"\r\nOK",
                                      menu),
        0);
    EXPECT_EQ(Codes(menu.wstrTitle), Codes(L"SIM"));
    const std::vector<std::pair<int, std::string>> two = {{1, Codes(L"News")}, {2, Codes(L"Games")}};
    EXPECT_EQ(Items(menu.lstItems), two);

    // An item line without a number is skipped, one without a text kept; a title alone has no items.
    ASSERT_EQ(CSTKCodec::DecodeSetupMenuReq("+STGI: 17,\"M\"\r\n+STGI: 17,x,\"A\"\r\n+STGI: 17,4\r\n", menu,
                                            USSD_TE_GSM),
              0);
    EXPECT_EQ(menu.nItemCount, 0);
    EXPECT_EQ(Items(menu.lstItems), (std::vector<std::pair<int, std::string>>{{4, ""}}));

    TSTKSelectItemReq select;
    ASSERT_EQ(CSTKCodec::DecodeSelectItemReq("\r\n+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"\r\n"
                                             "+STGI: 11,2,\"About\"\r\n\r\nOK\r\n",
                                             select, USSD_TE_GSM),
              0);
    EXPECT_EQ(Codes(select.wstrTitle), Codes(L"Games"));
    EXPECT_EQ(select.nDefaultItem, 1);
    EXPECT_EQ(select.nItemCount, 2);
    EXPECT_EQ(Items(select.lstItems),
              (std::vector<std::pair<int, std::string>>{{1, Codes(L"Quiz")}, {2, Codes(L"About")}}));
    // The same after AT+CSCS="UCS2".
    ASSERT_EQ(CSTKCodec::DecodeSelectItemReq("\r\n+STGI: 11,\"00470061006D00650073\",1,2\r\n"
                                             "+STGI: 11,1,\"005100750069007A\"\r\n"
                                             "+STGI: 11,2,\"00410062006F00750074\"\r\n\r\nOK\r\n",
                                             select, USSD_TE_UCS2),
              0);
    EXPECT_EQ(Codes(select.wstrTitle), Codes(L"Games"));
    EXPECT_EQ(Items(select.lstItems),
              (std::vector<std::pair<int, std::string>>{{1, Codes(L"Quiz")}, {2, Codes(L"About")}}));
}

TEST(STKCodec, DecodersReadTheirCommandsFields) {
    TSTKDisplayTextReq display;
    EXPECT_EQ(CSTKCodec::DecodeDisplayTextReq("+STGI: 1,\"Today: sunny, 24 C\",0,1\r\n\r\nOK", display,
                                              USSD_TE_GSM),
              0);
    EXPECT_EQ(Codes(display.wstrText), Codes(L"Today: sunny, 24 C"));
    EXPECT_EQ(display.nPriority, 0);
    EXPECT_EQ(display.nClearMode, 1);

    TSTKGetInkeyReq inkey;
    EXPECT_EQ(CSTKCodec::DecodeGetInkeyReq("+STGI: 2,\"Receive offers? (Y/N)\",3,0", inkey, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(inkey.wstrText), Codes(L"Receive offers? (Y/N)"));
    EXPECT_EQ(inkey.nFormat, STK_FORMAT_YES_NO);
    EXPECT_EQ(inkey.nHelp, 0);

    TSTKGetInputReq input;
    EXPECT_EQ(CSTKCodec::DecodeGetInputReq("+STGI: 3,\"0043003F\",1,1,12,\"00500061\",0", input), 0);
    EXPECT_EQ(Codes(input.wstrText), Codes(L"C?"));
    EXPECT_EQ(input.nFormat, STK_FORMAT_SMS_ALPHABET);
    EXPECT_EQ(input.nMinLength, 1);
    EXPECT_EQ(input.nMaxLength, 12);
    EXPECT_EQ(Codes(input.wstrDefaultText), Codes(L"Pa"));
    EXPECT_EQ(input.nEcho, 0);
    EXPECT_EQ(input.nHelp, 0);
    EXPECT_EQ(CSTKCodec::DecodeGetInputReq("\r\n+STGI: 3,\"Capital of France?\",1,1,12,\"\",1\r\n\r\nOK\r\n",
                                           input, USSD_TE_GSM),
              0);
    EXPECT_EQ(Codes(input.wstrText), Codes(L"Capital of France?"));
    EXPECT_EQ(input.nMaxLength, 12);
    EXPECT_TRUE(input.wstrDefaultText.empty());
    EXPECT_EQ(input.nEcho, 1);
    // Fields left out keep their defaults.
    EXPECT_EQ(CSTKCodec::DecodeGetInputReq("+STGI: 3,\"Name?\"", input, USSD_TE_GSM), 0);
    EXPECT_EQ(input.nMaxLength, 255);
    EXPECT_EQ(input.nEcho, 1);

    TSTKPlayToneReq tone;
    EXPECT_EQ(CSTKCodec::DecodePlayToneReq("+STGI: 6,\"Ring\",16,1,5", tone, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(tone.wstrText), Codes(L"Ring"));
    EXPECT_EQ(tone.nTone, 16);
    EXPECT_EQ(tone.nDurationUnit, 1);
    EXPECT_EQ(tone.nDuration, 5);

    TSTKRefreshReq refresh;
    EXPECT_EQ(CSTKCodec::DecodeRefreshReq("+STGI: 9,1,\"3F007F206F07\"", refresh, USSD_TE_GSM), 0);
    EXPECT_EQ(refresh.nRefreshType, 1);
    EXPECT_EQ(Codes(refresh.wstrFileList), Codes(L"3F007F206F07"));

    TSTKSetupCallReq call;
    EXPECT_EQ(CSTKCodec::DecodeSetupCallReq(
                  "+STGI: 15,\"00430061006C006C003F\",\"002B0034003900310032\",2,\"002E002E\"", call),
              0);
    EXPECT_EQ(Codes(call.wstrConfirmText), Codes(L"Call?"));
    EXPECT_EQ(call.strNumber, "+4912");
    EXPECT_EQ(call.nQualifier, 2);
    EXPECT_EQ(Codes(call.wstrCallText), Codes(L".."));

    TSTKSetupEventListReq events;
    EXPECT_EQ(CSTKCodec::DecodeSetupEventListReq("+STGI: 16,4, 5,x,7", events), 0);
    EXPECT_EQ(events.lstEvents, (std::list<int>{4, 5, 7}));

    TSTKSendDTMFReq dtmf;
    EXPECT_EQ(CSTKCodec::DecodeSendDTMFReq("+STGI: 23,\"Tones\",\"12*#\"", dtmf, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(dtmf.wstrText), Codes(L"Tones"));
    EXPECT_EQ(dtmf.strDTMF, "12*#");

    TSTKSetupIdleModeTextReq idle;
    EXPECT_EQ(CSTKCodec::DecodeSetupIdleModeTextReq("+STGI: 18,\"Welcome\"", idle, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(idle.wstrText), Codes(L"Welcome"));

    TSTKSendUSSDReq ussd;
    EXPECT_EQ(CSTKCodec::DecodeSendUSSDReq("+STGI: 14,\"Balance\",\"*100#\"", ussd, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(ussd.wstrUSSDString), Codes(L"*100#"));
    TSTKSendSSReq ss;
    EXPECT_EQ(CSTKCodec::DecodeSendSSReq("+STGI: 13,\"Divert\",\"**21*123#\"", ss, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(ss.wstrSSString), Codes(L"**21*123#"));
    TSTKSendSMSReq sms;
    EXPECT_EQ(CSTKCodec::DecodeSendSMSReq("+STGI: 12,\"Sending\"", sms, USSD_TE_GSM), 0);
    EXPECT_EQ(Codes(sms.wstrText), Codes(L"Sending"));

    TSTKLanguageNotificationReq language;
    EXPECT_EQ(CSTKCodec::DecodeLanguageNotificationReq("+STGI: 24,\"00640065\"", language), 0);
    EXPECT_EQ(language.strLanguage, "de");

    TSTKIdleScreenNotification idleScreen;
    TSTKUserActivityNotification activity;
    EXPECT_EQ(CSTKCodec::DecodeIdleScreenNotification("+STGI: 256", idleScreen), 0);
    EXPECT_EQ(CSTKCodec::DecodeUserActivityNotification("+STGI: 257\r\nOK", activity), 0);
    EXPECT_EQ(CSTKCodec::DecodeUserActivityNotification("+STGI: 256", activity), 1);
}

TEST(STKCodec, ADecoderRefusesAnotherCommandAndResetsItsRecord) {
    TSTKDisplayTextReq display;
    display.wstrText = L"old";
    display.nPriority = 1;
    const char* const texts[] = {"+STGI:20\r\nOK", "+STGI: 11,\"Games\",1,2", "\r\nOK\r\n", "",
                                 "+STGI: \"Hi\""};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        EXPECT_EQ(CSTKCodec::DecodeDisplayTextReq(text, display), 1);
        EXPECT_TRUE(display.wstrText.empty());
        EXPECT_EQ(display.nPriority, 0);
    }
    TSTKSelectItemReq select;
    select.lstItems.push_back({1, L"stale"});
    EXPECT_EQ(CSTKCodec::DecodeSelectItemReq("+STGI: 17,\"Menu\"\r\n+STGI: 17,1,\"A\"", select), 1);
    EXPECT_TRUE(select.lstItems.empty());
}

TEST(STKCodec, AnswersAndEnvelopesHaveTheModemsFormats) {
    struct Row {
        std::function<int(std::string&)> encode;
        const char* command;
    };
    const Row rows[] = {
        {[](std::string& c) { return CSTKCodec::EncodeMenuSelectionEnvelope(0, 2, c); }, "AT+STGR=0,0,2\r"},
        {[](std::string& c) { return CSTKCodec::EncodeMenuSelectionEnvelope(19, -1, c); }, "AT+STGR=0,19,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeDisplayTextResponse(0, nullptr, c); },
         "AT+STGR=1,0,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeDisplayTextResponse(32, "1", c); }, "AT+STGR=1,32,1\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInkeyResponse(0, 1, L"", c); },
         "AT+STGR=2,0,,2,1,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInkeyResponse(0, -1, L"7", c); },
         "AT+STGR=2,0,,2,,\"0037\"\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInkeyResponse(0, -1, L"7", c, USSD_TE_GSM); },
         "AT+STGR=2,0,,2,,\"7\"\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInkeyResponse(16, -1, L"", c); },
         "AT+STGR=2,16,,2,,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInputResponse(0, L"Paris", c, USSD_TE_GSM); },
         "AT+STGR=3,0,,\"Paris\"\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInputResponse(0, L"\u00E9", c); },
         "AT+STGR=3,0,,\"00E9\"\r"},
        {[](std::string& c) { return CSTKCodec::EncodeGetInputResponse(17, L"", c); }, "AT+STGR=3,17,,\r"},
        {[](std::string& c) { return CSTKCodec::EncodePlayToneResponse(0, c); }, "AT+STGR=6,0,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSelectItemResponse(0, 3, c); }, "AT+STGR=11,0,,3\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSelectItemResponse(17, -1, c); }, "AT+STGR=11,17,,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSetupCallResponse(0, "", c); }, "AT+STGR=15,0,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSetupCallResponse(34, "2", c); }, "AT+STGR=15,34,2\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSetupIdleModeTextResponse(0, c); }, "AT+STGR=18,0,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSendDTMFResponse(0, nullptr, c); }, "AT+STGR=23,0,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeSendDTMFResponse(32, "4", c); }, "AT+STGR=23,32,4\r"},
        {[](std::string& c) { return CSTKCodec::EncodeLanguageNotificationResponse(0, nullptr, c); },
         "AT+STGR=24,0,\r"},
        {[](std::string& c) { return CSTKCodec::EncodeLanguageNotificationResponse(0, "en", c); },
         "AT+STGR=24,0,en\r"},
        {[](std::string& c) { return CSTKCodec::EncodeIdleScreenAvailableEnvelope(c); }, "AT+STGR=256\r"},
        {[](std::string& c) { return CSTKCodec::EncodeUserActivityEnvelope(c); }, "AT+STGR=257\r"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        std::string command;
        EXPECT_EQ(row.encode(command), 0);
        EXPECT_EQ(command, row.command);
    }

    // What cannot go on a command line is refused and nothing is built.
    std::string command = "kept";
    EXPECT_EQ(CSTKCodec::EncodeDisplayTextResponse(0, "1\r\nAT+CFUN=0", command), 1);
    EXPECT_EQ(CSTKCodec::EncodeSetupCallResponse(0, "\"", command), 1);
    EXPECT_EQ(CSTKCodec::EncodeGetInkeyResponse(0, 2, L"", command), 1);
    EXPECT_EQ(CSTKCodec::EncodeGetInputResponse(0, std::wstring(kSTKMaxTextChars + 1, L'a'), command), 1);
    // Quotes, semicolons and line ends in an input would end the quoted text or the command.
    EXPECT_EQ(CSTKCodec::EncodeGetInputResponse(0, L"a\";+CFUN=0;\"", command, USSD_TE_GSM), 1);
    EXPECT_EQ(CSTKCodec::EncodeGetInputResponse(0, L"a\r", command, USSD_TE_IRA), 1);
    EXPECT_EQ(CSTKCodec::EncodeProvideLocalInfoResponse(0, command), 0);
    EXPECT_EQ(command, "kept");
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
    EXPECT_EQ(Codes(display.wstrText), Codes(L"open,1,1"));
    EXPECT_EQ(display.nPriority, 0);
    ASSERT_EQ(CSTKCodec::DecodeDisplayTextReq("+STGI: 1," + std::string(5000, ',') + "7", display), 0);
    ASSERT_EQ(CSTKCodec::DecodeDisplayTextReq("+STGI: 1,\"x\",99999999999,-1", display, USSD_TE_GSM), 0);
    EXPECT_EQ(display.nPriority, 0);
    EXPECT_EQ(display.nClearMode, -1);

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
        TSTKSetupMenuReq m;
        TSTKSelectItemReq s;
        TSTKGetInputReq gi;
        TSTKSetupCallReq sc;
        TSTKSetupEventListReq el;
        TSTKLanguageNotificationReq ln;
        TSTKSendDTMFReq dt;
        CSTKCodec::DecodeSetupMenuReq(text, m, teSet);
        CSTKCodec::DecodeSelectItemReq(text, s, teSet);
        CSTKCodec::DecodeGetInputReq(text, gi, teSet);
        CSTKCodec::DecodeSetupCallReq(text, sc, teSet);
        CSTKCodec::DecodeSetupEventListReq(text, el, teSet);
        CSTKCodec::DecodeLanguageNotificationReq(text, ln, teSet);
        CSTKCodec::DecodeSendDTMFReq(text, dt, teSet);
        EXPECT_LE(m.wstrTitle.size(), static_cast<std::size_t>(kSTKMaxTextChars));
        EXPECT_LE(el.lstEvents.size(), static_cast<std::size_t>(kSTKMaxEvents));
    }
}

} // namespace
