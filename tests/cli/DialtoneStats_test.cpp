#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::Parse;
using clitest::RunDialtone;
using clitest::TempDir;

void WriteFile(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path) << text;
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
}

TEST(DialtoneStats, Runs) {
    struct Row {
        bool seeded;
        std::vector<std::string> arguments;
        int status;
        std::vector<std::string> out;
        std::string err;
    };
    const Row rows[] = {
        {false, {"stats"}, 0, {"(no traffic recorded", "Total", "never reset", "0:00:00"}, ""},
        // clang-format off
        {true, {"stats", "--from", "2024-01-30", "--to", "2024-02-02"}, 0,
         {"2024/01/31", "100 bytes", "400 bytes", "2024/02/02", "2.0 KiB", "1.5 KiB", "Since the last reset on 2024-01-1", "sent 4.9 KiB, received 1.0 MiB, connection time 1:01:01"}, ""},
        // clang-format on
        {false, {"stats", "--from", "2024-02-30"}, 2, {}, "--from: \"2024-02-30\" is not a valid date"},
        {false, {"stats", "--to", "31-01-2024"}, 2, {}, "--to: \"31-01-2024\" is not a valid date"},
        {false, {"stats", "--from", "2024-02-03", "--to", "2024-02-02"}, 2, {}, "is after --to"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments.back());
        TempDir home;
        if (row.seeded)
            Seed(home.path);
        const Outcome run = RunDialtone(row.arguments, home.path);
        EXPECT_EQ(run.status, row.status) << run.err;
        for (const std::string& shown : row.out)
            EXPECT_NE(run.out.find(shown), std::string::npos) << shown << "\n" << run.out;
        if (row.status != 0) {
            EXPECT_EQ(run.out, "");
        }
        EXPECT_NE(run.err.find(row.err), std::string::npos) << run.err;
    }
}

TEST(DialtoneStats, JsonRangeThenResetThenDeleteHistory) {
    TempDir home;
    Seed(home.path);
    const std::vector<std::string> query{"--json", "stats", "--from", "2024-01-30", "--to", "2024-02-02"};

    nlohmann::json shown = Parse(RunDialtone(query, home.path).out);
    ASSERT_EQ(shown["days"].size(), 2u) << shown.dump();
    EXPECT_EQ(shown["days"][0]["day"], "2024-01-31");
    EXPECT_EQ(shown["days"][0]["roaming_received_bytes"], 400);
    EXPECT_EQ(shown["days"][1]["day"], "2024-02-02");
    EXPECT_EQ(shown["total"]["sent_bytes"], 2148);
    EXPECT_EQ(shown["total"]["received_bytes"], 1736);
    EXPECT_EQ(shown["since_reset"]["received_bytes"], 1048576);
    EXPECT_EQ(shown["since_reset"]["connection_time"], 3661);
    EXPECT_EQ(shown["since_reset"]["reset_time"], "2024-01-15T08:00:00+00:00");

    Outcome reset = RunDialtone({"stats", "reset"}, home.path);
    ASSERT_EQ(reset.status, 0) << reset.err;
    EXPECT_NE(reset.out.find("day history was kept"), std::string::npos) << reset.out;
    shown = Parse(RunDialtone(query, home.path).out);
    EXPECT_EQ(shown["since_reset"]["sent_bytes"], 0);
    EXPECT_EQ(shown["since_reset"]["connection_time"], 0);
    EXPECT_TRUE(shown["since_reset"]["reset_time"].is_string());
    EXPECT_NE(shown["since_reset"]["reset_time"], "2024-01-15T08:00:00+00:00");
    EXPECT_EQ(shown["days"].size(), 2u);

    reset = RunDialtone({"--json", "stats", "reset", "--history"}, home.path);
    ASSERT_EQ(reset.status, 0) << reset.err;
    EXPECT_EQ(Parse(reset.out)["history_deleted"], true);
    shown = Parse(RunDialtone(query, home.path).out);
    EXPECT_TRUE(shown["days"].empty()) << shown.dump();
}

} // namespace
