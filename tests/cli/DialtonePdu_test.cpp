#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::RunDialtone;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST(DialtonePdu, DecodesWhatAModemPrints) {
    // clang-format off
    struct Row { std::vector<std::string> arguments; std::vector<std::string> shown; };
    const Row rows[] = {
        {{"pdu", "decode", "07912143658709F1040B918100551512F20000111010214365000AE8329BFD4697D9EC37"},
         {"SMS-DELIVER", "+18005551212", "2011-01-01T12:34:56+00:00", "text:           hellohello"}},
        {{"--json", "pdu", "decode", "0791947101670000040D91945111325476F80008323041906235400A004800690020D83DDE00", "--tpdu-len", "30"},
         {"\"content\": \"Hi \xF0\x9F\x98\x80\"", "\"number\": \"+4915112345678\"", "\"tpdu_type\": 0", "\"time_stamp\": \"2023-03-14T09:26:53+01:00\"", "\"dcs\": 8"}},
        {{"pdu", "decode", "07919730071111F10414D04937BD2C7797E9D3E614000811309291024061080442043504410442"},
         {"from:           InternetSMS", "text:           \xD1\x82\xD0\xB5\xD1\x81\xD1\x82"}},
        {{"pdu", "decode", "07914356060013F1065A098136397339F7219011700463802190117004638030"}, {"SMS-STATUS-REPORT", "0x30 (still trying)", "639337937"}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments.back());
        const Outcome run = RunDialtone(row.arguments, "");
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        for (const std::string& shown : row.shown)
            EXPECT_NE(run.out.find(shown), std::string::npos) << shown << "\n" << run.out;
    }
}

// What encode prints is what the send path writes after AT+CMGS, and decodes back to the text.
TEST(DialtonePdu, EncodedSegmentsDecodeBack) {
    const std::string text = std::string(160, 'a') + "{ok}";
    const Outcome encoded =
        RunDialtone({"pdu", "encode", "+4917012345678", text, "--report", "--validity", "1w"}, "");
    ASSERT_EQ(encoded.status, 0) << encoded.err;
    const std::vector<std::string> segments = Lines(encoded.out);
    ASSERT_EQ(segments.size(), 2u);
    std::string joined;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const Outcome decoded = RunDialtone({"--json", "pdu", "decode", segments[i]}, "");
        ASSERT_EQ(decoded.status, 0) << decoded.err;
        EXPECT_NE(decoded.out.find("\"day\": 7"), std::string::npos) << decoded.out;
        const std::string key = "\"content\": \"";
        const std::size_t at = decoded.out.find(key);
        ASSERT_NE(at, std::string::npos);
        joined +=
            decoded.out.substr(at + key.size(), decoded.out.find('"', at + key.size()) - at - key.size());
    }
    EXPECT_EQ(joined, text);
    // No service centre; then RD, VPF 2 and UDHI, with the status report asked for on the next-to-last part.
    EXPECT_EQ(segments[0].substr(0, 4), "0075");
    EXPECT_EQ(segments[1].substr(0, 4), "0055");

    const Outcome json = RunDialtone({"--json", "pdu", "encode", "0170", "\xD0\xB6"}, "");
    ASSERT_EQ(json.status, 0);
    EXPECT_NE(json.out.find("\"encoding_code\": 1"), std::string::npos) << json.out;
    EXPECT_NE(json.out.find("\"pdu\": \"00"), std::string::npos) << json.out;
}

// Numbers as people type them: the destination field of the PDU (after first octet and reference).
TEST(DialtonePdu, TypedNumbersBecomeTheRightDestination) {
    // clang-format off
    // address: length, type of address, semi-octets
    struct Row { const char* typed; const char* address; };
    const Row rows[] = {
        {"+49 170 123 4567",   "0C91947110325476"},
        {"+49 (170) 123-4567", "0C91947110325476"},
        {"0049.170.123.4567",  "0C91947110325476"},
        {"0170 1234567",       "0B811007214365F7"},
        {"22255",              "05812252F5"},
    };
    // clang-format on
    for (const Row& row : rows) {
        const Outcome run = RunDialtone({"pdu", "encode", row.typed, "Hi"}, "");
        ASSERT_EQ(run.status, 0) << row.typed << ": " << run.err;
        EXPECT_EQ(run.out.substr(6, std::strlen(row.address)), row.address) << row.typed << ": " << run.out;
    }
}

TEST(DialtonePdu, FailuresAndUsageErrors) {
    // clang-format off
    // out: exact
    // err: contained
    struct Row { std::vector<std::string> arguments; int status; std::string out; std::string err; };
    const Row rows[] = {
        {{"pdu", "decode", "07912143658709F1XX"}, 1, "", "the PDU could not be decoded (result 1)"},
        {{"--json", "pdu", "decode", "0791"}, 1, "{\n  \"error\": {\n    \"code\": 1,\n    \"message\": \"the PDU could not be decoded\"\n  }\n}\n", "could not be decoded"},
        {{"pdu", "encode", "*100#", "hi"}, 2, "", "'*100#' is a service code, not a phone number: use dialtone ussd '*100#'"},
        {{"pdu", "encode", "abc", "hi"}, 2, "", "letters are not allowed in a phone number"},
        {{"pdu", "encode", "0170 \xF0\x9F\x98\x80", "hi"}, 2, "", "is not a phone number"},
        {{"pdu", "encode", "", "hi"}, 2, "", "the phone number is empty"},
        {{"pdu", "encode", "+999 1234", "hi"}, 2, "", "country code that does not exist"},
        {{"pdu", "encode", "1234567890123456789012345", "hi"}, 2, "", "has 25 digits"},
        {{"pdu", "encode", "123", "hi", "--validity", "3x"}, 2, "", "--validity"},
        {{"pdu", "decode"}, 2, "", "HEX"},
        {{"pdu"}, 2, "", "'pdu' needs a command: decode, encode."},
        {{"pdu", "decode", "00", "--tpdu-len", "x"}, 2, "", "--tpdu-len"},
        {{}, 2, "", "a command is needed: status, info"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        const Outcome run = RunDialtone(row.arguments, "");
        EXPECT_EQ(run.status, row.status);
        EXPECT_EQ(run.out, row.out);
        EXPECT_NE(run.err.find(row.err), std::string::npos) << run.err;
    }
    const Outcome version = RunDialtone({"--version"}, "");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("dialtone ", 0), 0u);
    const Outcome help = RunDialtone({"pdu", "encode", "--help"}, "");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--validity"), std::string::npos);
}

} // namespace
