// The tool in the user's language: its words for people are translated, machine-readable output never is.

#include <string>

#include <gtest/gtest.h>

#include "CliTestSupport.h"

TEST(DialtoneLanguage, GermanForPeopleEnglishForScripts) {
    const clitest::TempDir home;
    const std::vector<std::pair<std::string, std::string>> german{{"LC_ALL", "de_DE.UTF-8"}};
    const clitest::Outcome text =
        clitest::RunDialtone({"--simulate=pin-locked", "sms", "list"}, home.path, german);
    EXPECT_NE(text.err.find("die SIM-Karte ist gesperrt"), std::string::npos) << text.err;

    const clitest::Outcome json =
        clitest::RunDialtone({"--simulate=pin-locked", "--json", "sms", "list"}, home.path, german);
    EXPECT_NE(json.out.find("the SIM is locked"), std::string::npos) << json.out;
    EXPECT_EQ(json.out.find("gesperrt"), std::string::npos) << json.out;
}
