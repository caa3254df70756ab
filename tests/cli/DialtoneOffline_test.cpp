// The commands that need no modem: SMS PDUs decoded and encoded, the traffic history, and the data files
// when damaged (the tool says on standard error where the damaged file was kept, and works).

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::Lines;
using clitest::Outcome;
using clitest::Parse;
using clitest::ReadFile;
using clitest::RunDialtone;
using clitest::TempDir;
using clitest::WriteFile;

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
    for (const std::string& segment : segments) {
        const Outcome decoded = RunDialtone({"--json", "pdu", "decode", segment}, "");
        ASSERT_EQ(decoded.status, 0) << decoded.err;
        EXPECT_NE(decoded.out.find("\"day\": 7"), std::string::npos) << decoded.out;
        joined += Parse(decoded.out).value("content", "");
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

TEST(DialtonePdu, FailuresAndUsageErrors) {
    // clang-format off
    const std::vector<clitest::Step> rows = {
        {{"pdu", "decode", "07912143658709F1XX"}, 1, {}, "the PDU could not be decoded (result 1)"},
        {{"--json", "pdu", "decode", "0791"}, 1, {"{\n  \"error\": {\n    \"code\": 1,\n    \"message\": \"the PDU could not be decoded\"\n  }\n}\n"}, "could not be decoded", true},
        {{"pdu", "encode", "*100#", "hi"}, 2, {}, "'*100#' is a service code, not a phone number: use dialtone ussd '*100#'"},
        {{"pdu", "encode", "abc", "hi"}, 2, {}, "letters are not allowed in a phone number"},
        {{"pdu", "encode", "", "hi"}, 2, {}, "the phone number is empty"},
        {{"pdu", "encode", "123", "hi", "--validity", "3x"}, 2, {}, "--validity"},
        {{"pdu", "decode"}, 2, {}, "HEX"},
        {{"pdu"}, 2, {}, "'pdu' needs a command: decode, encode."},
        {{"pdu", "decode", "00", "--tpdu-len", "x"}, 2, {}, "--tpdu-len"},
        {{}, 2, {}, "a command is needed: status, info"},
        {{"--version"}, 0, {"dialtone "}},
        {{"pdu", "encode", "--help"}, 0, {"--validity"}},
    };
    // clang-format on
    clitest::RunSteps("", rows);
}

std::string Plist(const std::string& dictBody) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + dictBody +
           "</dict></plist>\n";
}

std::string Day(const std::string& key, int sent, int received, int roamingSent, int roamingReceived) {
    return "<key>" + key + "</key><dict><key>NOROAMING SENDBYTES</key><integer>" + std::to_string(sent) +
           "</integer><key>NOROAMING RECEIVEBYTES</key><integer>" + std::to_string(received) +
           "</integer><key>ROAMING SENDBYTES</key><integer>" + std::to_string(roamingSent) +
           "</integer><key>ROAMING RECEIVEBYTES</key><integer>" + std::to_string(roamingReceived) +
           "</integer></dict>";
}

// A home with three days of history (one outside 30 Jan..2 Feb) and totals since a reset.
void Seed(const std::string& home) {
    WriteFile(home + "/.local/share/dialtone/DateTraffics.plist",
              Plist("<key>CREATION_TIME</key><date>2024-01-01T00:00:00Z</date>" +
                    Day("2024/02/02", 2048, 1536, 0, 0) + Day("2024/01/31", 100, 200, 300, 400) +
                    Day("2024/02/05", 1, 1, 1, 1)));
    WriteFile(home + "/.config/dialtone/SystemConfig.plist",
              Plist("<key>SIMPLE_STATICS</key><dict><key>NOROAMING SENDBYTES</key><integer>5000</integer>"
                    "<key>NOROAMING RECEIVEBYTES</key><integer>1048576</integer>"
                    "<key>CONNECTTIME</key><integer>3661</integer></dict>"
                    "<key>RESETTIME</key><date>2024-01-15T08:00:00Z</date>"));
    // Minutes of signal around noon: the bearer changes, then after a gap the cell.
    std::string minutes;
    for (const auto& [time, dbm, bearer, ci] :
         {std::tuple{"12:00", -77, 4, 2}, {"12:01", -71, 5, 2}, {"12:05", -93, 5, 3}, {"13:10", -60, 5, 3}})
        minutes += "<dict><key>TIME</key><date>2024-02-02T" + std::string(time) +
                   ":00Z</date><key>DBM</key><integer>" + std::to_string(dbm) +
                   "</integer><key>BEST</key><integer>" + std::to_string(dbm) +
                   "</integer><key>WORST</key><integer>" + std::to_string(dbm) +
                   "</integer><key>READINGS</key><integer>1</integer><key>BEARER</key><integer>" +
                   std::to_string(bearer) +
                   "</integer><key>LAC</key><integer>1</integer><key>CI</key><integer>" + std::to_string(ci) +
                   "</integer></dict>";
    WriteFile(home + "/.local/share/dialtone/SignalHistory/2024-02-02.plist",
              Plist("<key>MINUTES</key><array>" + minutes + "</array>"));
}

TEST(DialtoneStats, Runs) {
    // clang-format off
    const struct { bool seeded; clitest::Step step; } rows[] = {
        {false, {{"stats"}, 0, {"(no traffic recorded", "Total", "never reset", "0:00:00"}}},
        {true, {{"stats", "--from", "2024-01-30", "--to", "2024-02-02"}, 0, {"2024/01/31", "100 bytes", "400 bytes", "2024/02/02", "2.0 KiB", "1.5 KiB", "Since the last reset on 2024-01-1", "sent 4.9 KiB, received 1.0 MiB, connection time 1:01:01"}}},
        {false, {{"stats", "--from", "2024-02-30"}, 2, {}, "--from: \"2024-02-30\" is not a valid date"}},
        {false, {{"stats", "--to", "31-01-2024"}, 2, {}, "--to: \"31-01-2024\" is not a valid date"}},
        {false, {{"stats", "--from", "2024-02-03", "--to", "2024-02-02"}, 2, {}, "is after --to"}},
        {true, {{"stats", "--signal", "--day", "2024-02-02"}, 0, {"Signal on 2024-02-02", "12:00       -80      -71      -93        3", "13:00       -60      -60      -60        1", "12:01: the bearer changed to HSPA", "12:05: the cell changed to 1/3"}}},
        {true, {{"--json", "stats", "--signal", "--day", "2024-02-02"}, 0, {"\"average_dbm\": -80", "\"bearer\": \"hspa\"", "\"cell\": \"1/3\""}}},
        {false, {{"stats", "--signal"}, 0, {"(no signal recorded on this day)"}}},
        {false, {{"stats", "--signal", "--day", "2024-13-01"}, 2, {}, "--day: \"2024-13-01\" is not a valid date"}},
        {false, {{"stats", "--day", "2024-02-02"}, 2, {}, "--day requires --signal"}},
        {false, {{"stats", "--signal", "--from", "2024-02-02"}, 2, {}, "excludes"}},
    };
    // clang-format on
    setenv("TZ", "UTC", 1); // the signal history keeps minutes of local days
    for (const auto& row : rows) {
        TempDir home;
        if (row.seeded)
            Seed(home.path);
        clitest::ExpectStep(row.step, RunDialtone(row.step.args, home.path));
    }
}

// The tool with damaged data files: it says on standard error where the damaged file was kept, and works.
namespace fs = std::filesystem;

std::vector<fs::path> KeptCopies(const fs::path& file) {
    std::vector<fs::path> kept;
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
        if (entry.path().filename().string().rfind(file.filename().string() + ".damaged-", 0) == 0) {
            kept.push_back(entry.path());
        }
    }
    return kept;
}

// A damaged file, a folder or named pipe (a plain read would block on it) in the file's place, and a profile
// list with wrong entries, which are counted and skipped while the good ones stay.
TEST(DialtoneDamagedFiles, TheToolGoesOnAndSaysWhereTheCopyIs) {
    enum Kind { File, Folder, Pipe };
    const std::string traffic = ".local/share/dialtone/DateTraffics.plist";
    const std::string settings = ".config/dialtone/SystemConfig.plist";
    const std::string profiles =
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><array>"
        "<dict><key>ACCOUNT</key><string>Home</string><key>APN</key><string>home.example</string></dict>"
        "<dict><key>ACCOUNT</key><string>No APN</string></dict>"
        "<dict><key>ACCOUNT</key><array/><key>APN</key><string>x</string></dict>"
        "<string>not a profile</string></array></plist>";
    const std::vector<std::string> stats{"stats"};
    const std::vector<std::string> total{"Total"};
    // clang-format off
    const struct { std::string file; std::string bytes; Kind kind; std::vector<std::string> args; std::vector<std::string> out; std::string says; std::vector<std::string> stays; } rows[] = {
        {traffic, std::string("bplist00\xd1\x01\x02", 10), File, stats, total, "dialtone: ", {}},
        {traffic, "", File, stats, total, "dialtone: ", {}},
        {settings, "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>SMS_VP</key>", File, stats, total, "dialtone: ", {}},
        {settings, "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>", File, stats, total, "dialtone: ", {}},
        {traffic, "", Folder, stats, total, "dialtone: ", {}},
        {settings, "", Pipe, stats, total, "dialtone: ", {}},
        {".local/share/dialtone/UserAPNList.plist", profiles, File, {"profiles", "add", "Office", "office.example"}, {}, "UserAPNList.plist holds 3 wrong entries; they are skipped and the file is kept as", {"home.example", "office.example"}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file + " holding " + std::to_string(row.bytes.size()) + " bytes, kind " +
                     std::to_string(row.kind));
        TempDir home;
        const fs::path file = fs::path(home.path) / row.file;
        fs::create_directories(file.parent_path());
        if (row.kind == Folder)
            fs::create_directories(file / "inside");
        else if (row.kind == Pipe)
            ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
        else
            WriteFile(file, row.bytes);

        const Outcome run = RunDialtone(row.args, home.path);
        clitest::ExpectStep({row.args, 0, row.out, row.says}, run);
        const std::vector<fs::path> kept = KeptCopies(file);
        ASSERT_EQ(kept.size(), 1u);
        EXPECT_EQ(fs::is_directory(kept[0]), row.kind == Folder);
        EXPECT_EQ(fs::is_fifo(kept[0]), row.kind == Pipe);
        if (row.kind == File) {
            EXPECT_EQ(ReadFile(kept[0]), row.bytes);
        }
        EXPECT_NE(run.err.find(kept[0].string()), std::string::npos) << run.err;
        for (const std::string& text : row.stays)
            EXPECT_NE(ReadFile(file).find(text), std::string::npos) << text;
    }
}

} // namespace
