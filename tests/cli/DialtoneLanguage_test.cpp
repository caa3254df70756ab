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

    struct Case {
        std::vector<std::string> arguments;
        const char* german;  // a label the German output must have
        const char* english; // its English form, which must be gone
        const char* key;     // a key of the --output key=value document, which stays English
    };
    // clang-format off
    const Case cases[] = {
        {{"status"}, "Netzbetreiber:   ", "Operator:", "network.operator_code: "},
        {{"network", "info"}, "Paketdienst:", "Packet service:", "packet_registration: "},
        {{"stats"}, "Roaming empfangen", "Roaming received", "since_reset.sent_bytes: "},
        {{"pin", "status"}, "Verbleibende Versuche: PIN", "Attempts left:", "pin_attempts: "},
        {{"netwrk"}, "unbekannter Befehl 'netwrk'. Meinten Sie: network?", "unknown command", nullptr},
    };
    // clang-format on
    for (const Case& c : cases) {
        std::vector<std::string> arguments{"--simulate"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const clitest::Outcome shown = clitest::RunDialtone(arguments, home.path, german);
        const std::string all = shown.out + shown.err;
        EXPECT_NE(all.find(c.german), std::string::npos) << arguments[1] << ":\n" << all;
        EXPECT_EQ(all.find(c.english), std::string::npos) << arguments[1] << ":\n" << all;
        if (!c.key)
            continue;
        arguments.insert(arguments.begin(), "--output=key=value");
        const clitest::Outcome document = clitest::RunDialtone(arguments, home.path, german);
        EXPECT_NE(document.out.find(c.key), std::string::npos) << arguments[2] << ":\n" << document.out;
        EXPECT_EQ(document.out.find(c.german), std::string::npos) << arguments[2] << ":\n" << document.out;
    }

    const clitest::Outcome json =
        clitest::RunDialtone({"--simulate=pin-locked", "--json", "sms", "list"}, home.path, german);
    EXPECT_NE(json.out.find("the SIM is locked"), std::string::npos) << json.out;
    EXPECT_EQ(json.out.find("gesperrt"), std::string::npos) << json.out;
}
