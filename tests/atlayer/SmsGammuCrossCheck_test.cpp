// Cross-check against an independent decoder: Debian's python3-gammu (DecodePDU), when installed.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "SmsPduVectors.h"
#include "SmsUtility.h"

namespace {

using at_test::Hex;

constexpr const char* kPython = "/usr/bin/python3";

// Reads the PDUs from its arguments and prints one line per PDU: type, number, text (both as UTF-16 hex),
// class, reference, part, parts, time, status, service centre; "ERROR" when gammu refuses the PDU.
constexpr const char* kScript = R"(
import sys, gammu
def units(text):
    return text.encode("utf-16-be").hex().upper()
for pdu in sys.argv[1:]:
    try:
        d = gammu.DecodePDU(bytes.fromhex(pdu), SMSC=True)
    except Exception as e:
        print("ERROR")
        continue
    udh = d["UDH"]
    ref = udh["ID8bit"] if udh["Type"] == "ConcatenatedMessages" else (
        udh["ID16bit"] & 0xFF if udh["Type"] == "ConcatenatedMessages16bit" else -1)
    when = d["DateTime"].strftime("%Y-%m-%d %H:%M:%S") if d["DateTime"] else "-"
    # gammu pads a 7-bit text with escapes up to the septet count: its text ends at the first NUL.
    text = (d["Text"] or "").split("\x00")[0]
    print("\t".join(str(x) for x in [d["Type"], units(d["Number"]), units(text) or "-", d["Class"], ref,
                                     udh["PartNumber"], udh["AllParts"], when, d["DeliveryStatus"],
                                     d["SMSC"]["Number"] or "-"]))
)";

bool GammuAvailable() {
    const std::string probe = std::string(kPython) + " -c 'import gammu' >/dev/null 2>&1";
    return access(kPython, X_OK) == 0 && std::system(probe.c_str()) == 0;
}

std::string Units(const std::wstring& text) {
    char digits[8];
    std::string hex;
    for (const wchar_t unit : sms_test::Utf16(text)) {
        std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned>(unit));
        hex += digits;
    }
    return hex.empty() ? "-" : hex;
}

// The PDUs are hex digits only, so they pass the shell as they are; the script has no single quote.
std::vector<std::vector<std::string>> RunGammu(const std::vector<std::string>& pdus) {
    std::string command = std::string(kPython) + " -c '" + kScript + "'";
    for (const std::string& pdu : pdus)
        command += " " + pdu;
    std::vector<std::vector<std::string>> rows;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char line[4096];
        while (std::fgets(line, sizeof line, pipe)) {
            std::vector<std::string>& fields = rows.emplace_back();
            std::istringstream in(std::string(line, std::strcspn(line, "\n")));
            for (std::string field; std::getline(in, field, '\t');)
                fields.push_back(field);
        }
        pclose(pipe);
    }
    return rows;
}

// Our decoding of one PDU in the form the script prints.
std::vector<std::string> Ours(const std::string& hex, int tpduLength) {
    TPduData pdu;
    if (CSmsUtility::DecodePduData(hex.c_str(), tpduLength, pdu) != 0)
        return {"ERROR"};
    const TMsgPacket packet = sms_test::Packet(pdu);
    const TTpduData& tpdu = pdu.tpdu;
    const TMsgAddress& address = tpdu.nTpduType == SMS_TPDU_DELIVER  ? tpdu.deliver.originating
                                 : tpdu.nTpduType == SMS_TPDU_SUBMIT ? tpdu.submit.destination
                                                                     : tpdu.statusReport.recipient;
    std::wstring number(packet.szNumber, packet.szNumber + std::strlen(packet.szNumber));
    if ((address.nType & 0x70) == 0x50)
        CSmsUtility::Default7BitToWstring(reinterpret_cast<const uint8_t*>(address.szAddress),
                                          static_cast<int>(std::strlen(address.szAddress)), number);
    const char* type = tpdu.nTpduType == SMS_TPDU_DELIVER  ? "Deliver"
                       : tpdu.nTpduType == SMS_TPDU_SUBMIT ? "Submit"
                                                           : "Status_Report";
    const std::string when = tpdu.nTpduType == SMS_TPDU_SUBMIT ? "-" : sms_test::Stamp(packet.dateTime);
    const bool concatenated = packet.bHasHeader != 0;
    const std::string serviceCentre = pdu.serviceCentre.szAddress;
    return {type, Units(number), Units(packet.wstrContent),
            std::to_string(packet.nClass == kSmsNoClass ? -1 : packet.nClass),
            std::to_string(concatenated ? packet.nReference : -1),
            std::to_string(concatenated ? packet.nSequence : -1),
            std::to_string(concatenated ? packet.nTotal : 0), when,
            std::to_string(tpdu.nTpduType == SMS_TPDU_STATUS_REPORT ? tpdu.statusReport.nStatus : 0),
            // The stored type 1 never shows the "+" that gammu adds.
            serviceCentre.empty() ? "-" : "+" + serviceCentre};
}

TEST(SmsGammuCrossCheck, DecodesAsGammuDoes) {
    if (!GammuAvailable())
        GTEST_SKIP() << "python3-gammu is not installed";

    std::vector<std::string> pdus;
    std::vector<int> lengths;
    for (const sms_test::PduRow& row : sms_test::kDecodeRows) {
        pdus.push_back(row.hex);
        lengths.push_back(row.tpduLength);
    }
    // Our own submits, as the send path writes them after AT+CMGS.
    CSmsUtility sms;
    sms.EnableStatusReport(1);
    sms.SetValidPeriod({1, 0, 3, 0});
    const std::wstring texts[] = {std::wstring(161, L'a'), L"Prices: 10€ {net} [gross] ~ ^ | \\",
                                  std::wstring(69, L'ж') + L"\U0001F600 ok", L"Olá, como estás?", L""};
    for (const std::wstring& text : texts) {
        std::list<TTpduSubmit> segments;
        int encodeType = 0;
        ASSERT_EQ(sms.PacketMsg(sms_test::SendItem(text), segments, encodeType), 0);
        for (const TTpduSubmit& segment : segments) {
            TProtocalTpduData tpdu;
            ASSERT_EQ(CSmsUtility::EncodeTpduSubmit(segment, tpdu), 0);
            pdus.push_back("00" + Hex(tpdu.data, static_cast<int>(tpdu.nLength)));
            lengths.push_back(static_cast<int>(tpdu.nLength));
        }
    }

    const std::vector<std::vector<std::string>> theirs = RunGammu(pdus);
    ASSERT_EQ(theirs.size(), pdus.size());
    const char* const fields[] = {"type", "number", "text", "class",  "reference",
                                  "part", "parts",  "time", "status", "service centre"};
    for (std::size_t i = 0; i < pdus.size(); ++i) {
        SCOPED_TRACE(pdus[i]);
        const std::vector<std::string> ours = Ours(pdus[i], lengths[i]);
        ASSERT_EQ(theirs[i].size(), ours.size()) << theirs[i][0];
        for (std::size_t f = 0; f < ours.size(); ++f) {
            // For a report, gammu shows a status text where it has no text of its own, and class 0.
            if (ours[0] == "Status_Report" && ((f == 2 && ours[2] == "-") || f == 3))
                continue;
            EXPECT_EQ(ours[f], theirs[i][f]) << fields[f];
        }
    }
}

} // namespace
