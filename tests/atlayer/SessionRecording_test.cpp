#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "DebugSink.h"
#include "SessionRecording.h"
#include "SmsPduVectors.h"

namespace {

// What the recorder writes for a line: the private data masked, then the codes.
std::string Recorded(PrivateDataMask& mask, char direction, const std::string& line) {
    return MaskSecrets(mask.mask(direction, line));
}

// Each row is a line as it went over the port, after the lines before it in the session (each with its
// direction first).
// A PDU row gives what the product's own decoder must read from the masked PDU instead of its hex.
TEST(SessionRecording, MaskingHidesPeopleAndKeepsTheLineReadable) {
    // clang-format off
    struct Row { const char* name; char direction; const char* before; std::string line; const char* masked; const char* number; const wchar_t* text; };
    const Row rows[] = {
        {"pin", '>', nullptr, "AT+CPIN=\"1234\"", "AT+CPIN=\"****\"", nullptr, nullptr},
        {"dial", '>', nullptr, "ATD+491701234567;", "ATD+000000000000;", nullptr, nullptr},
        {"echoed dial", '<', nullptr, "ATD0170 1234567;", "ATD0000 0000000;", nullptr, nullptr},
        {"service code dialled", '>', nullptr, "ATD*99***1#", "ATD*99***1#", nullptr, nullptr},
        {"caller", '<', nullptr, "+CLCC: 1,1,4,0,0,\"+491701234567\",145", "+CLCC: 1,1,4,0,0,\"+000000000000\",145", nullptr, nullptr},
        {"phonebook write", '>', nullptr, "AT+CPBW=3,\"0170123\",129,\"Ana\"", "AT+CPBW=3,\"0000000\",129,\"Ana\"", nullptr, nullptr},
        {"phonebook in UCS2", '<', nullptr, "+CPBR: 1,\"002B0034003900310037\",145,\"0041\"", "+CPBR: 1,\"002B0030003000300030\",145,\"0041\"", nullptr, nullptr},
        {"USSD code as UCS2 units", '>', nullptr, "AT+CUSD=1,\"002A0031003000300023\",15", "AT+CUSD=1,\"00780078007800780078\",15", nullptr, nullptr},
        {"USSD answer", '<', nullptr, "+CUSD: 0,\"Balance: 5.00 EUR\",15", "+CUSD: 0,\"xxxxxxxxxxxxxxxxx\",15", nullptr, nullptr},
        {"text-mode send", '>', nullptr, "AT+CMGS=\"+491701234567\",145", "AT+CMGS=\"+000000000000\",145", nullptr, nullptr},
        {"text-mode body", '>', ">AT+CMGS=\"+4917\"", "Meet at 8\x1A", "xxxxxxxxx\x1A", nullptr, nullptr},
        {"text-mode read", '<', nullptr, "+CMGR: \"REC READ\",\"+491701234567\",,\"26/11/24,10:00:00+04\"", "+CMGR: \"REC READ\",\"+000000000000\",,\"26/11/24,10:00:00+04\"", nullptr, nullptr},
        {"text-mode read body", '<', "<+CMGR: \"REC READ\",\"+4917\",,\"26/11/24,10:00:00+04\"", "Meet at 8", "xxxxxxxxx", nullptr, nullptr},
        {"answer after a refused send", '<', ">AT+CMGS=23\n<ERROR", "SIMULATED", "SIMULATED", nullptr, nullptr},
        {"PDU length is no number", '>', nullptr, "AT+CMGS=23", "AT+CMGS=23", nullptr, nullptr},
        {"7-bit SUBMIT", '>', ">AT+CMGS=24", "0005010C9194711032547600000BC8329BFD668182EE7008\x1A", nullptr, "+000000000000", L"xxxxxxxxxxx"},
        {"UCS2 SUBMIT", '>', ">AT+CMGS=25", "0005010C9194711032547600080C041F04400438043204350442\x1A", nullptr, "+000000000000", L"xxxxxx"},
        {"SUBMIT with a header", '>', ">AT+CMGS=29", "0045020C91947110325476000011050003000202C865F3199D56E3F37A\x1A", nullptr, "+000000000000", L"xxxxxxxxxx"},
        {"short number, odd digits", '>', ">AT+CMGS=12", "00050105812252F5000002C834\x1A", nullptr, "00000", L"xx"},
        {"UCS2 DELIVER read", '<', "<+CMGR: 0,,30", "0791947101670000040D91945111325476F80008323041906235400A004800690020D83DDE00", nullptr, "+0000000000000", L"xxxxx"},
        {"DELIVER from a name", '<', "<+CMT: ,30", "07919730071111F10414D04937BD2C7797E9D3E614000811309291024061080442043504410442", nullptr, "InternetSMS", L"xxxx"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        PrivateDataMask mask;
        std::istringstream before(row.before != nullptr ? row.before : "");
        for (std::string line; std::getline(before, line);)
            Recorded(mask, line[0], line.substr(1));
        std::string masked = Recorded(mask, row.direction, row.line);
        if (row.masked != nullptr) {
            EXPECT_EQ(masked, row.masked);
            continue;
        }
        ASSERT_EQ(masked.size(), row.line.size());
        if (masked.back() == '\x1A')
            masked.pop_back();
        const int tpduLength =
            static_cast<int>(masked.size() / 2) - 1 - std::stoi(masked.substr(0, 2), nullptr, 16);
        TPduData pdu;
        ASSERT_EQ(CSmsUtility::DecodePduData(masked.c_str(), tpduLength, pdu), 0) << masked;
        const TMsgPacket packet = sms_test::Packet(pdu);
        EXPECT_STREQ(packet.szNumber, row.number);
        EXPECT_EQ(packet.wstrContent, row.text);
    }
}

TEST(SessionRecording, DamagedFilesAreRefusedWithTheLine) {
    const std::string header =
        "#dialtone-recording 1 version=1 date=2026-11-24T10:00:00Z dialect=vel masked=yes\n";
    // clang-format off
    struct Row { const char* name; std::string text; const char* error; };
    const Row rows[] = {
        {"escapes read back", header + RecordingLine(5, '>', "AT\\x\x1A\xC3") + "\n# a note\n7 < OK\r\n", ""},
        {"empty", "", "not a dialtone recording"},
        {"no header", "12 > AT\n", "not a dialtone recording"},
        {"other dialect", "#dialtone-recording 1 dialect=klingon\n1 > AT\n", "dialect"},
        {"binary", header + "12 > AT\x01\xFF\n", "line 2: a byte that is not text"},
        {"no direction", header + "1 > AT\n12 AT+CPIN?\n", "line 3: no direction"},
        {"no time", header + "> AT\n", "line 2: no time"},
        {"huge time", header + "1234567890123 > AT\n", "line 2: no time"},
        {"stray backslash", header + "1 > AT\\q\n", "line 2: a backslash"},
        {"cut escape", header + "1 > AT\\x4\n", "line 2: a backslash"},
        {"overlong line", header + "1 > " + std::string(20000, 'A') + "\n", "line 2: longer than a recorded line"},
        {"overlong AT line", header + "1 > " + std::string(kMaxRecordedLineBytes + 1, 'A') + "\n", "line 2: longer than 4096 bytes"},
        {"huge file", header + std::string(kMaxRecordingBytes, '\n'), "larger than 16 MiB"},
        {"answers only", header + "1 < OK\n", "no command"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Recording recording;
        std::string error;
        EXPECT_EQ(ParseRecording(row.text, recording, error), *row.error == '\0');
        EXPECT_NE(error.find(row.error), std::string::npos) << error;
        if (*row.error == '\0') {
            ASSERT_EQ(recording.lines.size(), 2u);
            EXPECT_EQ(recording.lines[0].text, "AT\\x\x1A\xC3");
            EXPECT_EQ(recording.lines[1].milliseconds, 7);
            EXPECT_EQ(recording.dialect, "vel");
        }
    }
}

} // namespace
