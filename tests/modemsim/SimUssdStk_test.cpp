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

struct Cusd {
    int m = -1;
    std::string text;
    int dcs = -1;
};

// "\r\n+CUSD: 1,\"<hex>\",72\r\n\r\nOK\r\n" (the poll's answer) -> its parts, the text decoded.
Cusd ParseCusd(const std::string& answer) {
    Cusd out;
    size_t at = answer.find("+CUSD: ");
    if (at == std::string::npos) {
        return out;
    }
    std::string line = answer.substr(at + 7, answer.find("\r\n", at) - at - 7);
    out.m = line[0] - '0';
    size_t q1 = line.find('"');
    if (q1 == std::string::npos) {
        return out;
    }
    size_t q2 = line.find('"', q1 + 1);
    std::string hex = line.substr(q1 + 1, q2 - q1 - 1);
    out.dcs = std::stoi(line.substr(q2 + 2));
    if (out.dcs == 72) {
        Ucs2HexToText(hex, &out.text);
    } else {
        Bytes septets;
        FromHex(hex, &septets);
        out.text = Utf32ToUtf8(Gsm7ToText(septets));
    }
    return out;
}

TEST(SimUssdTest, MenuTreeAnswersInUcs2) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    h.At("AT+CSCS=\"UCS2\"");
    struct Step {
        const char* reply; // what the user sends
        int m;
        const char* text;
    };
    const Step steps[] = {
        {"*135#", 1, "1 Balance\n2 Data options\n3 Tariff"},
        {"7", 1, "1 Balance\n2 Data options\n3 Tariff"}, // not offered: the same menu again
        {"2", 1, "1 Day pass 1 GB (1.99 EUR)\n2 Week pass 5 GB (4.99 EUR)"},
        {"1", 0, "Day pass booked. Enjoy!"},
        {"*100#", 0, "Your balance is 12.34 EUR. Valid until 31.12.2025."},
        {"*999#", 4, ""},
    };
    for (const Step& step : steps) {
        ASSERT_EQ(h.At("AT+CUSD=1,\"" + HostUssd(step.reply) + "\",15"), "\r\nOK\r\n") << step.reply;
        EXPECT_EQ(h.At("at"), "\r\nOK\r\n"); // the network takes its time
        h.Run(300);
        Cusd cusd = ParseCusd(h.At("at"));
        EXPECT_EQ(cusd.m, step.m) << step.reply;
        EXPECT_EQ(cusd.text, step.text) << step.reply;
        EXPECT_EQ(cusd.dcs, step.m == 4 ? -1 : 72) << step.reply;
    }
    EXPECT_EQ(h.At("AT+CUSD?"), "\r\n+CUSD: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(h.modem.State().ussd.requests.front(), "*135#");
}

TEST(SimUssdTest, CancelEndsTheDialogueAndGsmAnswersUseOneCodePerOctet) {
    ModemHarness h(ModemHarness::Builtin());
    h.At("ATE0");
    ASSERT_EQ(h.At("AT+CUSD=1,\"*135#\",15"), "\r\nOK\r\n"); // IRA: the text as it stands
    h.Run(300);
    Cusd menu = ParseCusd(h.At("at"));
    EXPECT_EQ(menu.m, 1);
    EXPECT_EQ(menu.dcs, 15);
    EXPECT_EQ(menu.text, "1 Balance\n2 Data options\n3 Tariff");
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
    struct Step {
        const char* command;
        const char* answer;
        const char* indication; // what the poll brings after the toolkit's delay
    };
    const Step steps[] = {
        {"AT+STGR=0,0,2", "\r\nOK\r\n", "+STIN: 11"},
        {"AT+STGI=11",
         "\r\n+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"\r\n+STGI: 11,2,\"About\"\r\n\r\nOK\r\n",
         nullptr},
        {"AT+STGR=11,0,,1", "\r\nOK\r\n", "+STIN: 3"},
        {"AT+STGI=3", "\r\n+STGI: 3,\"Capital of France?\",1,1,12,\"\",1\r\n\r\nOK\r\n", nullptr},
        {"AT+STGR=3,0,,Paris", "\r\nOK\r\n", "+STIN: 1"},
        {"AT+STGR=1,0,", "\r\nOK\r\n", "+STIN: 20"},
        {"AT+STIN?", "\r\n+STIN: 20\r\n\r\nOK\r\n", nullptr},
        {"AT+STGR=1,0,", "\r\n+CME ERROR: 3\r\n", nullptr},
    };
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
