// The tool with damaged data files: it says on standard error where the damaged file was kept, and works.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::RunDialtone;
using clitest::TempDir;

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<fs::path> KeptCopies(const fs::path& file) {
    std::vector<fs::path> kept;
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
        if (entry.path().filename().string().rfind(file.filename().string() + ".damaged-", 0) == 0) {
            kept.push_back(entry.path());
        }
    }
    return kept;
}

TEST(DialtoneDamagedFiles, StatsGoesOnAndSaysWhereTheCopyIs) {
    const struct {
        const char* file;
        std::string bytes;
    } rows[] = {
        {"DateTraffics.plist", std::string("bplist00\xd1\x01\x02", 10)},
        {"DateTraffics.plist", ""},
        {"SystemConfig.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>SMS_VP</key>"},
        {"SystemConfig.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.file) + " holding " + std::to_string(row.bytes.size()) + " bytes");
        TempDir home;
        const fs::path data = fs::path(home.path) / "Documents" / "HSPA Modem User Data";
        fs::create_directories(data);
        std::ofstream(data / row.file, std::ios::binary) << row.bytes;

        const Outcome run = RunDialtone({"stats"}, home.path);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find("Total"), std::string::npos) << run.out;
        const std::vector<fs::path> kept = KeptCopies(data / row.file);
        ASSERT_EQ(kept.size(), 1u);
        EXPECT_EQ(ReadAll(kept[0]), row.bytes);
        EXPECT_NE(run.err.find("dialtone: "), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(kept[0].string()), std::string::npos) << run.err;
    }
}

} // namespace
