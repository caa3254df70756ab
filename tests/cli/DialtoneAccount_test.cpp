// dialtone account against the simulated modem: the menu of its SIM (network 262 02), an entry with the
// network's answer, and the simulator's USSD menu tree walked with --reply.

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::TempDir;
using nlohmann::json;

// The tool with its own HOME, English unless lang says otherwise, standard input not a terminal.
Outcome Dialtone(const std::vector<std::string>& arguments, const std::string& lang = "C") {
    const TempDir home;
    return clitest::RunDialtone(arguments, home.path, {{"LC_ALL", ""}, {"LC_MESSAGES", ""}, {"LANG", lang}});
}

TEST(DialtoneAccount, ListsTheMenuOfTheSimsNetworkInTheLanguageOfTheEnvironment) {
    const Outcome english = Dialtone({"--simulate", "account"});
    ASSERT_EQ(english.status, 0) << english.err;
    for (const char* line : {"1 Balance\n", "  1.1 Check balance  [*100#]\n", "2 My number\n",
                             "3 Service menu\n", "  3.1 Balance, data options and tariff  [*135#]\n"})
        EXPECT_NE(english.out.find(line), std::string::npos) << line << " in\n" << english.out;

    const Outcome german = Dialtone({"--simulate", "account"}, "de_DE.UTF-8");
    ASSERT_EQ(german.status, 0) << german.err;
    EXPECT_NE(german.out.find("3 Dienstmenü\n"), std::string::npos) << german.out;

    const Outcome document = Dialtone({"--simulate", "--json", "account"});
    ASSERT_EQ(document.status, 0) << document.err;
    const json menu = json::parse(document.out);
    EXPECT_EQ(menu["imsi"].get<std::string>().rfind("26202", 0), 0u);
    EXPECT_EQ(menu["language_id"], 0);
    ASSERT_EQ(menu["groups"].size(), 3u);
    EXPECT_EQ(menu["groups"][0]["items"][0]["buttons"][0]["code"], "*100#");
}

TEST(DialtoneAccount, RunsAnEntryAndPrintsTheNetworksAnswer) {
    const Outcome byNumber = Dialtone({"--simulate", "account", "1", "1"});
    ASSERT_EQ(byNumber.status, 0) << byNumber.err;
    EXPECT_EQ(byNumber.out, "Your balance is 12.34 EUR. Valid until 31.12.2025.\n");

    const Outcome byName = Dialtone({"--simulate", "account", "my number", "Show my number"});
    ASSERT_EQ(byName.status, 0) << byName.err;
    EXPECT_EQ(byName.out, "Your number is +491721234567.\n");
}

TEST(DialtoneAccount, AnswersTheNetworksQuestionsWithReplies) {
    const Outcome run =
        Dialtone({"--simulate", "--json", "account", "3", "1", "--reply", "2", "--reply", "1"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = json::parse(run.out);
    EXPECT_EQ(document["command"], "*135#");
    const json& steps = document["exchanges"];
    ASSERT_EQ(steps.size(), 3u) << run.out;
    EXPECT_EQ(steps[0]["answer"], "1 Balance\n2 Data options\n3 Tariff");
    EXPECT_TRUE(steps[0]["reply_wanted"]);
    EXPECT_EQ(steps[1]["sent"], "2");
    EXPECT_TRUE(steps[1]["reply_wanted"]);
    EXPECT_EQ(steps[2]["sent"], "1");
    EXPECT_EQ(steps[2]["answer"], "Day pass booked. Enjoy!");
    EXPECT_FALSE(steps[2]["reply_wanted"]);

    // Without a reply (no terminal) the question is shown and the dialogue ended.
    const Outcome unanswered = Dialtone({"--simulate", "account", "3", "1"});
    ASSERT_EQ(unanswered.status, 0) << unanswered.err;
    EXPECT_EQ(unanswered.out, "1 Balance\n2 Data options\n3 Tariff\n");
}

TEST(DialtoneAccount, ASimWithoutAFileOfItsOwnGetsTheDefaultMenuAndItsInputs) {
    // Another network's SIM, and a network that knows the voucher code the default menu's top-up sends.
    TempDir scenario;
    const std::string path = scenario.path + "/other-sim.json";
    std::ofstream(path) << R"({"sim": {"imsi": "001019876543210"},
        "ussd": {"menus": {"*102*123456789012#": {"text": "Voucher accepted. New balance 22.34 EUR."}}}})";

    const Outcome menu = Dialtone({"--simulate=" + path, "account"});
    ASSERT_EQ(menu.status, 0) << menu.err;
    EXPECT_NE(menu.out.find("  2.1 Top up with a voucher  [*102*]\n"
                            "        input: Voucher code (12 to 16 characters of 0123456789)\n"),
              std::string::npos)
        << menu.out;

    const Outcome topUp = Dialtone({"--simulate=" + path, "account", "top-up", "1", "123456789012"});
    ASSERT_EQ(topUp.status, 0) << topUp.err;
    EXPECT_EQ(topUp.out, "Voucher accepted. New balance 22.34 EUR.\n");

    for (const char* code : {"12345678901", "12345678901a", "12345678901234567"}) {
        const Outcome refused = Dialtone({"--simulate=" + path, "account", "2", "1", code});
        EXPECT_EQ(refused.status, 2) << code << ": " << refused.err;
        EXPECT_NE(refused.err.find("Voucher code"), std::string::npos) << refused.err;
    }
}

TEST(DialtoneAccount, UnknownEntriesAndWrongInputsAreUsageErrors) {
    struct Case {
        std::vector<std::string> entry;
        const char* complaint;
    };
    const Case cases[] = {
        {{"9", "1"}, "no group 9"},
        {{"1", "4"}, "no entry 4"},
        {{"1"}, "GROUP and ITEM"},
        {{"1", "1", "123"}, "takes 0 input(s), 1 given"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments{"--simulate", "account"};
        arguments.insert(arguments.end(), c.entry.begin(), c.entry.end());
        const Outcome run = Dialtone(arguments);
        EXPECT_EQ(run.status, 2) << c.complaint << ": " << run.err;
        EXPECT_NE(run.err.find(c.complaint), std::string::npos) << run.err;
        EXPECT_EQ(run.out, "");
    }
}

} // namespace
