// The tool with damaged data files: it says on standard error where the damaged file was kept, and works.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <sys/stat.h>

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

// A damaged file, or a folder or named pipe (a plain read would block on it) in the file's place.
TEST(DialtoneDamagedFiles, StatsGoesOnAndSaysWhereTheCopyIs) {
    enum Kind { File, Folder, Pipe };
    // clang-format off
    const struct { const char* file; std::string bytes; Kind kind = File; } rows[] = {
        {"DateTraffics.plist", std::string("bplist00\xd1\x01\x02", 10)},
        {"DateTraffics.plist", ""},
        {"SystemConfig.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>SMS_VP</key>"},
        {"SystemConfig.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>"},
        {"DateTraffics.plist", "", Folder},
        {"SystemConfig.plist", "", Pipe},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.file) + " holding " + std::to_string(row.bytes.size()) +
                     " bytes, kind " + std::to_string(row.kind));
        TempDir home;
        const bool setting = std::string(row.file) == "SystemConfig.plist";
        const fs::path data = fs::path(home.path) / (setting ? ".config" : ".local/share") / "dialtone";
        fs::create_directories(data);
        if (row.kind == Folder)
            fs::create_directories(data / row.file / "inside");
        else if (row.kind == Pipe)
            ASSERT_EQ(mkfifo((data / row.file).c_str(), 0600), 0);
        else
            std::ofstream(data / row.file, std::ios::binary) << row.bytes;

        const Outcome run = RunDialtone({"stats"}, home.path);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find("Total"), std::string::npos) << run.out;
        const std::vector<fs::path> kept = KeptCopies(data / row.file);
        ASSERT_EQ(kept.size(), 1u);
        EXPECT_EQ(fs::is_directory(kept[0]), row.kind == Folder);
        EXPECT_EQ(fs::is_fifo(kept[0]), row.kind == Pipe);
        if (row.kind == File) {
            EXPECT_EQ(ReadAll(kept[0]), row.bytes);
        }
        EXPECT_NE(run.err.find("dialtone: "), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(kept[0].string()), std::string::npos) << run.err;
    }
}

TEST(DialtoneDamagedFiles, WrongProfileEntriesAreCountedAndTheGoodOnesKept) {
    TempDir home;
    const fs::path data = fs::path(home.path) / ".local/share/dialtone";
    fs::create_directories(data);
    std::ofstream(data / "UserAPNList.plist")
        << "<?xml version=\"1.0\"?><plist version=\"1.0\"><array>"
           "<dict><key>ACCOUNT</key><string>Home</string><key>APN</key><string>home.example</string></dict>"
           "<dict><key>ACCOUNT</key><string>No APN</string></dict>"
           "<dict><key>ACCOUNT</key><array/><key>APN</key><string>x</string></dict>"
           "<string>not a profile</string></array></plist>";

    const Outcome run = RunDialtone({"profiles", "add", "Office", "office.example"}, home.path);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(
        run.err.find("UserAPNList.plist holds 3 wrong entries; they are skipped and the file is kept as"),
        std::string::npos)
        << run.err;
    const std::vector<fs::path> kept = KeptCopies(data / "UserAPNList.plist");
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_NE(ReadAll(kept[0]).find("No APN"), std::string::npos);
    const std::string stored = ReadAll(data / "UserAPNList.plist");
    EXPECT_NE(stored.find("home.example"), std::string::npos);
    EXPECT_NE(stored.find("office.example"), std::string::npos);
}

} // namespace
