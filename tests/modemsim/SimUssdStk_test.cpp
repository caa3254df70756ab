// USSD menus and the SIM toolkit on the simulated modem.

#include <gtest/gtest.h>

#include "SimTestSupport.h"
#include "SimText.h"
#include "SimUssdCommands.h"

namespace modemsim::test {
namespace {

// "*135#" as the host sends it: one four-digit group per default-alphabet code.
std::string HostUssd(const std::string& text) {
    std::string out;
    for (char c : text) {
        char buf[8];
        std::snprintf(buf, sizeof buf, "00%02X", static_cast<unsigned char>(c));
        out += buf;
    }
    return out;
}

// What the poll brings for a network's answer: UCS2 hex (dcs 72), else one default-alphabet code per octet.
std::string CusdPoll(int m, const std::string& text, int dcs) {
    if (m == 4) {
        return "\r\n+CUSD: 4\r\n\r\nOK\r\n";
    }
    const std::string hex = dcs == 72 ? TextToUcs2Hex(text) : ToHex(TextToGsm7(Utf8ToUtf32(text)));
    return "\r\n+CUSD: " + std::to_string(m) + ",\"" + hex + "\"," + std::to_string(dcs) + "\r\n\r\nOK\r\n";
}

TEST(SimUssdTest, MenuTreeAnswersInUcs2) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    h.At("AT+CSCS=\"UCS2\"");
    // clang-format off
    struct Step { const char* reply; int m; const char* text; }; // reply: what the user sends
    const Step steps[] = {
        {"*135#", 1, "1 Balance\n2 Data options\n3 Tariff"},
        {"7", 1, "1 Balance\n2 Data options\n3 Tariff"}, // not offered: the same menu again
        {"2", 1, "1 Day pass 1 GB (1.99 EUR)\n2 Week pass 5 GB (4.99 EUR)"},
        {"1", 0, "Day pass booked. Enjoy!"},
        {"*100#", 0, "Your balance is 12.34 EUR. Valid until 31.12.2025."},
        {"*999#", 4, ""},
    };
    // clang-format on
    for (const Step& step : steps) {
        ASSERT_EQ(h.At("AT+CUSD=1,\"" + HostUssd(step.reply) + "\",15"), "\r\nOK\r\n") << step.reply;
        EXPECT_EQ(h.At("at"), "\r\nOK\r\n"); // the network takes its time
        h.Run(300);
        EXPECT_EQ(h.At("at"), CusdPoll(step.m, step.text, 72)) << step.reply;
    }
    EXPECT_EQ(h.At("AT+CUSD?"), "\r\n+CUSD: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(h.modem.State().ussd.requests.front(), "*135#");
}

TEST(SimUssdTest, CancelEndsTheDialogueAndGsmAnswersUseOneCodePerOctet) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    ASSERT_EQ(h.At("AT+CUSD=1,\"*135#\",15"), "\r\nOK\r\n"); // IRA: the text as it stands
    h.Run(300);
    EXPECT_EQ(h.At("at"), CusdPoll(1, "1 Balance\n2 Data options\n3 Tariff", 15));
    EXPECT_EQ(h.At("AT+CUSD=2"), "\r\nOK\r\n");
    h.At("AT+CUSD=1,\"1\",15");
    h.Run(300);
    EXPECT_EQ(h.At("at"), "\r\n+CUSD: 4\r\n\r\nOK\r\n"); // "1" alone is no service code

    EXPECT_EQ(NetworkUssd(h.modem, 1, "Reply 1 to confirm")["line"],
              "+CUSD: 1,\"5265706C79203120746F20636F6E6669726D\",15");
    h.modem.State().ussd.packedGsm = true;
    EXPECT_EQ(UssdLine(h.modem, 0, "hellohello"), "+CUSD: 0,\"E8329BFD4697D9EC37\",15");
}

TEST(SimToolkitTest, MenuSelectionLeadsThroughTheScenario) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    EXPECT_EQ(h.At("AT+STGI=17"),
              "\r\n+STGI: 17,\"SIM Services\",3\r\n+STGI: 17,1,\"News\"\r\n+STGI: 17,2,\"Games\"\r\n"
              "+STGI: 17,3,\"Offers\"\r\n\r\nOK\r\n");
    // clang-format off
    struct Step { const char* command; const char* answer; const char* indication; }; // indication: the poll's, after a delay
    const Step steps[] = {
        {"AT+STGR=0,0,2", "\r\nOK\r\n", "+STIN: 11"},
        {"AT+STGI=11", "\r\n+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"\r\n+STGI: 11,2,\"About\"\r\n\r\nOK\r\n", nullptr},
        {"AT+STGR=11,0,,1", "\r\nOK\r\n", "+STIN: 3"},
        {"AT+STGI=3", "\r\n+STGI: 3,\"Capital of France?\",1,1,12,\"\",1\r\n\r\nOK\r\n", nullptr},
        {"AT+STGR=3,0,,Paris", "\r\nOK\r\n", "+STIN: 1"},
        {"AT+STGR=1,0,", "\r\nOK\r\n", "+STIN: 20"},
        {"AT+STIN?", "\r\n+STIN: 20\r\n\r\nOK\r\n", nullptr},
        {"AT+STGR=1,0,", "\r\n+CME ERROR: 3\r\n", nullptr},
    };
    // clang-format on
    for (const Step& step : steps) {
        EXPECT_EQ(h.At(step.command), step.answer) << step.command;
        if (step.indication) {
            h.Run(200);
            EXPECT_EQ(h.At("at"), std::string("\r\n") + step.indication + "\r\n\r\nOK\r\n") << step.command;
        }
    }
    EXPECT_EQ(h.modem.State().stk.responses[2], "3,0,,Paris");
}

} // namespace
} // namespace modemsim::test
