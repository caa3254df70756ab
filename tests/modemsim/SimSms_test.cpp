// SMS on the simulated modem: sends the switch or the host's PDU spoil, a full storage, and a message to
// the SIM's own number that comes back.

#include <gtest/gtest.h>

#include "SimPdu.h"
#include "SimSmsCommands.h"
#include "SimTestSupport.h"

namespace modemsim::test {
namespace {

// TS 23.040 SMS-SUBMIT "hellohello" to +46708251358 (relative validity), as the host sends it after
// AT+CMGS=23: no service centre ("00"), then the TPDU.
const std::string kSubmit = "0011000B916407281553F80000AA0AE8329BFD4697D9EC37";

// The built-in scenario with echo off.
struct Ready : ModemHarness {
    Ready() : ModemHarness(Builtin()) { At("ATE0"); }
};

// "+CMGR: 0,,25\r\n<pdu>\r\n\r\nOK\r\n" -> the PDU line.
std::string PduOf(const std::string& answer) {
    size_t start = answer.find("\r\n", 2);
    size_t end = answer.find("\r\n", start + 2);
    return start == std::string::npos || end == std::string::npos ? ""
                                                                  : answer.substr(start + 2, end - start - 2);
}

TEST(SimSmsTest, SendFailuresAndAborts) {
    Ready h;
    h.modem.State().sms.failNextSend = true;
    // clang-format off
    struct Step { std::string bytes; std::string answer; };
    const Step steps[] = {
        {"AT+CMGS=23\r", "\r\n> "},
        {kSubmit + "\x1a", "\r\n+CMS ERROR: 500\r\n"}, // the switch fails one send ...
        {"AT+CMGS=23\r", "\r\n> "},
        {kSubmit + "\x1a", "\r\n+CMGS: 1\r\n\r\nOK\r\n"}, // ... and only one
        {"AT+CMGS=24\r", "\r\n> "},
        {kSubmit + "\x1a", "\r\n+CMS ERROR: 304\r\n"}, // length does not match the PDU
        {"AT+CMGS=23\r", "\r\n> "},
        {"0011\x1b", "\r\nOK\r\n"}, // ESC leaves the prompt, nothing sent
        {"AT+CMGF=1\r", "\r\nOK\r\n"},
        {"AT+CMGS=23\r", "\r\n+CMS ERROR: 302\r\n"},
    };
    // clang-format on
    for (const Step& step : steps) {
        EXPECT_EQ(h.Send(step.bytes), step.answer) << step.bytes;
    }
    EXPECT_EQ(h.modem.State().sms.sent.size(), 1u);
}

TEST(SimSmsTest, FullStorageRejectsAMessage) {
    ModemHarness h(ModemHarness::Builtin([](SimState& s) { s.sms.storages["SM"].capacity = 4; }));
    IncomingSms sms;
    sms.params.originator = "+491701234567";
    sms.params.textUtf8 = std::string(200, 'x'); // two parts, one free slot
    EXPECT_EQ(DeliverText(h.modem, sms).value("error", ""), "storage full");
    sms.params.textUtf8 = "short";
    EXPECT_EQ(DeliverText(h.modem, sms)["indexes"], nlohmann::json::array({4}));
    EXPECT_FALSE(DeliverText(h.modem, sms).value("ok", true));
    EXPECT_FALSE(DeliverPdu(h.modem, "00zz").value("ok", true));
}

TEST(SimSmsTest, MessageToOwnNumberComesBack) {
    Ready h;
    // "hi" to +491721234567, the SIM's own number.
    const std::string submit = "0001000C91947112325476000002E834";
    EXPECT_EQ(h.At("AT+CMGS=" + std::to_string(TpduLengthOfPdu(submit))), "\r\n> ");
    EXPECT_EQ(h.Send(submit + "\x1a"), "\r\n+CMGS: 1\r\n\r\nOK\r\n");
    h.Run(1000);
    EXPECT_EQ(h.At("at"), "\r\n+CMTI: \"SM\",4\r\n\r\nOK\r\n");
    std::string stored = PduOf(h.At("AT+CMGR=4"));
    DeliverInfo info = DecodeDeliverPdu(stored, TpduLengthOfPdu(stored));
    EXPECT_EQ(info.originator, "+491721234567");
    EXPECT_EQ(info.textUtf8, "hi");
}

} // namespace
} // namespace modemsim::test
