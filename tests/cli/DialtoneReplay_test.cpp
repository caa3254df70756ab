#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::ReadFile;
using clitest::RunDialtone;
using clitest::TempDir;

// Each shipped recording, played back, makes the tool print what it printed when it was recorded; a
// recording made meanwhile is the user's alone and is never overwritten.
TEST(DialtoneReplay, ShippedRecordingsGiveTheRecordedOutput) {
    int played = 0;
    for (const auto& entry : std::filesystem::directory_iterator(DIALTONE_SOURCE_DIR "/doc/recordings")) {
        if (entry.path().extension() != ".rec")
            continue;
        SCOPED_TRACE(entry.path().string());
        std::filesystem::path base = entry.path();
        std::vector<std::string> args{"--no-service", "--simulate=replay:" + base.string()};
        std::istringstream words(ReadFile(base.replace_extension(".args")));
        for (std::string word; std::getline(words, word);)
            args.push_back(word);
        TempDir home;
        const std::string again = home.path + "/again.rec";
        args.insert(args.begin(), {"--record", again});
        const Outcome run = RunDialtone(args, home.path);
        clitest::ExpectStep({args, 0, {ReadFile(base.replace_extension(".out"))}, "", true}, run);
        EXPECT_EQ(run.err.find("answered ERROR"), std::string::npos) << run.err;
        struct stat st {};
        ASSERT_EQ(stat(again.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0600u);
        EXPECT_NE(ReadFile(again).find(" > AT+CGMI\n"), std::string::npos);
        clitest::ExpectStep({args, 1, {}, "exists already"}, RunDialtone(args, home.path));
        ++played;
    }
    EXPECT_GE(played, 2);
}

} // namespace
