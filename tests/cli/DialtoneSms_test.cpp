// The sms commands against the simulated modem: long texts with a delivery report, a message delivered in
// parts out of order, a full SIM as the preferred storage, an empty storage, the boxes on the computer, a
// conversation and a search with the names of the computer's address book, a message full of escape
// sequences, and bursts of unsolicited lines.

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::Parse;
using clitest::ScenarioPatch;
using clitest::SimulatedModem;
using nlohmann::json;
using namespace std::string_literals;

// The built-in modem with these messages and SMS settings.
ScenarioPatch Scenario(const json& messages, const json& sms = json::object()) {
    json patch = {{"sms", sms}};
    patch["sms"]["messages"] = messages;
    return {patch};
}

std::string LongText(std::size_t length) {
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += (i % 10 == 9 && i + 1 < length) ? ' ' : letters[(i / 10) % 36];
    return text;
}

TEST(DialtoneSms, LongTextGoesInPartsAndItsReportComesBack) {
    SimulatedModem modem(Scenario(json::array(), {{"status_report_delay_ms", 2500}}));
    ASSERT_TRUE(modem.ready());
    const std::string text = LongText(300);
    clitest::RunSteps(
        modem, {{{"--json", "sms", "send", "--report", "+491701234567", text}, 0, {"\"segments\": 2"}}});

    // The network got two parts (which parts ask for the report: DialtonePdu.EncodedSegmentsDecodeBack).
    const json parts = modem.dump()["sms"]["sent"];
    ASSERT_EQ(parts.size(), 2u) << parts.dump();
    EXPECT_EQ(parts[0]["text"].get<std::string>() + parts[1]["text"].get<std::string>(), text);
    // The delivery report arrives as a status report item; a copy stays in the sent box.
    // clang-format off
    clitest::RunSteps(modem, {
        {{"--json", "--wait", "6", "sms", "watch"}, 0, {R"("number":"+491701234567")", R"("type":"status-report")"}},
        {{"--json", "sms", "sent"}, 0, {"\"text\": \"" + text + "\""}},
    });
    // clang-format on
}

// Runs the tool while another thread waits for a command holding commandStart to reach the modem,
// then lets the network act.
template <typename Act>
Outcome RunWhenSent(const SimulatedModem& modem, const std::vector<std::string>& arguments,
                    const std::string& commandStart, Act act) {
    std::thread network([&] {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline && modem.saw(commandStart) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        act();
    });
    const Outcome outcome = modem.run(arguments);
    network.join();
    return outcome;
}

// "sms watch" while the network delivers: once the tool has read the storages, its message table is built.
TEST(DialtoneSms, WatchShowsAMessageDeliveredInPartsOnceWhole) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    const std::string text = LongText(400);
    json delivered;
    const Outcome watched = RunWhenSent(modem, {"--json", "--wait", "8", "sms", "watch"}, "AT+CMGL", [&] {
        delivered = modem.command("sms --order=2,3,1 +4915112345678 " + text);
    });
    ASSERT_EQ(delivered.value("parts", 0), 3) << delivered.dump();
    clitest::ExpectStep({{"sms", "watch"}, 0, {R"("number":"+4915112345678")", R"("text":")" + text + "\""}},
                        watched);
    EXPECT_EQ(std::count(watched.out.begin(), watched.out.end(), '\n'), 1) << watched.out;
}

// A byte that a terminal would act on: C0 controls but the line feed, DEL, and C1 controls in UTF-8.
bool HasRawControl(const std::string& out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        const auto c = static_cast<unsigned char>(out[i]);
        const auto next = static_cast<unsigned char>(i + 1 < out.size() ? out[i + 1] : 0);
        if ((c < 0x20 && c != '\n') || c == 0x7F || (c == 0xC2 && next >= 0x80 && next <= 0x9F))
            return true;
    }
    return false;
}

// A sender's escape sequences (window title, clear screen, C1 CSI, DEL, NUL) are shown as placeholders in
// the listings, kept exact in --json and escaped in --output key=value.
TEST(DialtoneSms, EscapeSequencesInAMessageNeverReachTheTerminal) {
    const std::string hostile = "A\x1b]0;owned\aB\x1b[2JC\302\23331mD\177E\0F"s;
    const std::string shown = "A\u241b]0;owned\u2407B\u241b[2JC\ufffd31mD\u2421E\u2400F";
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    json delivered;
    const Outcome watched = RunWhenSent(modem, {"--wait", "4", "sms", "watch"}, "AT+CMGL", [&] {
        delivered = modem.command("sms --coding=ucs2 +4915112345678 " + hostile);
    });
    ASSERT_TRUE(delivered.value("ok", false)) << delivered.dump();
    const Outcome listed = modem.run({"sms", "list"});
    const Outcome values = modem.run({"--output", "key=value", "sms", "list"});
    for (const Outcome* run : {&watched, &listed, &values})
        EXPECT_FALSE(HasRawControl(run->out)) << run->out;
    clitest::ExpectStep({{"sms", "watch"}, 0, {shown}}, watched);
    clitest::ExpectStep({{"sms", "list"}, 0, {shown}}, listed);
    clitest::ExpectStep({{"--output", "key=value", "sms", "list"},
                         0,
                         {"A\\x1b]0;owned\\x07B\\x1b[2JC\\u009b31mD\\x7fE\\x00F\n"}},
                        values);
    EXPECT_EQ(Parse(modem.run({"--json", "sms", "list"}).out)["messages"][0]["text"], hostile);
}

TEST(DialtoneSms, FullSimAsPreferredStorageMovesTheMessageToTheComputer) {
    SimulatedModem modem(Scenario(
        {{{"storage", "SM"}, {"status", 1}, {"from", "+491701234567"}, {"text", "Already on the SIM"}},
         {{"storage", "ME"}, {"status", 0}, {"from", "+4915112345678"}, {"text", "New in the modem"}}},
        {{"storages", {{"SM", 1}, {"ME", 10}}}}));
    ASSERT_TRUE(modem.ready());
    clitest::RunSteps(modem, {{{"sms", "storage", "sim"}, 0}});
    for (int run = 0; run < 2; ++run) {
        const json items = Parse(modem.run({"--json", "sms", "list"}).out)["messages"];
        ASSERT_EQ(items.size(), 2u) << items.dump();
        EXPECT_EQ(items[0]["text"] == "New in the modem" ? items[0]["storage"] : items[1]["storage"],
                  "computer")
            << items.dump();
        const json storages = modem.dump()["sms"]["storages"];
        EXPECT_EQ(storages["ME"]["used"], 0) << storages.dump();
        EXPECT_EQ(storages["SM"]["used"], 1) << storages.dump();
    }
}

// An empty storage lists nothing; typed numbers are sent in the SIM's country's E.164 form and what is not a
// number sends nothing; a draft is added, moved to the archive and deleted.
TEST(DialtoneSms, EmptyStorageTypedNumbersAndDrafts) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    // clang-format off
    clitest::RunSteps(modem, {
        {{"sms", "list"}, 0, {""}, "", true},
        {{"--json", "sms", "list"}, 0, {"{\n  \"messages\": []\n}\n"}, "", true},
        {{"sms", "send", "+49 170 123 4567", "Hello"}, 0},
        {{"sms", "send", "(0170) 123-4567", "Hello"}, 0},
        {{"sms", "send", "abc", "Hello"}, 2},
        {{"sms", "send", "", "Hello"}, 2},
        {{"sms", "sent"}, 0, {"0170 1234567"}},
        {{"--json", "sms", "drafts", "--add", "+491701234567", "See you at 8"}, 0, {"\"box\": \"drafts\"", "\"numbers\": [\n        \"+491701234567\"\n      ]", "\"text\": \"See you at 8\""}},
        {{"--json", "sms", "drafts", "--move", "1", "archive"}, 0, {"\"messages\": []"}},
        {{"--json", "sms", "archive"}, 0, {"\"text\": \"See you at 8\""}},
        {{"--json", "sms", "archive", "--delete", "1"}, 0, {"\"messages\": []"}},
        {{"--json", "sms", "drafts"}, 0, {"\"messages\": []"}},
        {{"sms", "archive", "--delete", "1"}, 2},
    });
    // clang-format on
    const json sent = modem.dump()["sms"]["sent"];
    ASSERT_EQ(sent.size(), 2u) << sent.dump();
    EXPECT_EQ(sent[0]["to"], "+491701234567");
    EXPECT_EQ(sent[1]["to"], "+491701234567");
}

// The built-in SIM's messages with two Annas in the computer's book: names in the list, one Anna's messages
// from every box oldest first, a name that is not enough, and a search by a number as people type it.
TEST(DialtoneSms, ThreadAndSearchWithNamesFromTheAddressBook) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    const auto contact = [](const char* name, const char* number) {
        return "<dict><key>UID</key><string>"s + name + "</string><key>Name</key><string>" + name +
               "</string><key>Numbers</key><array><dict><key>Label</key><string>mobile</string>"
               "<key>Number</key><string>" +
               number + "</string></dict></array></dict>";
    };
    clitest::WriteFile(modem.home.path + "/.local/share/dialtone/LocalPhoneBook.plist",
                       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><array>" +
                           contact("Anna Schmidt", "0170 123 45 67") + contact("Anna Berg", "0151 23456789") +
                           "</array></plist>\n");
    // clang-format off
    clitest::RunSteps(modem, {
        {{"sms", "drafts", "--add", "0170 1234567", "Running late"}, 0},
        {{"sms", "list"}, 0, {"Anna Schmidt (0170 1234567)", "Vodafone"}},
        {{"--json", "sms", "list"}, 0, {"\"name\": \"Anna Schmidt\"", "\"name\": null"}},
        {{"sms", "thread", "anna schmidt"}, 0, {"Anna Schmidt: 0170 1234567\n", "in   read       sim       Hi! Are we still meeting at 8?\n", "out  sent       modem     Yes, see you there.\n", "out  draft      drafts    Running late\n"}},
        {{"--json", "sms", "thread", "Vodafone"}, 0, {"\"numbers\": [\n    \"Vodafone\"", "\"direction\": \"in\""}},
        {{"sms", "thread", "anna"}, 2, {}, "Anna Berg: 01512 3456789"},
        {{"sms", "thread", "Bob"}, 2, {}, "no contact called \"Bob\""},
        {{"--json", "sms", "search", "0170 123"}, 0, {"\"query\": \"0170 123\"", "\"text\": \"Running late\""}},
        {{"sms", "search", "KÖLN"}, 0, {"Grüße aus Köln"}},
    });
    // clang-format on
}

TEST(DialtoneSms, UssdAnswerArrivesThroughARingFlood) {
    SimulatedModem modem(ScenarioPatch{{{"ussd", {{"delay_ms", 2000}}}}});
    ASSERT_TRUE(modem.ready());
    const Outcome asked = RunWhenSent(modem, {"--wait", "10", "ussd", "*100#"}, "AT+CUSD=1",
                                      [&] { modem.command("set flood 400"); });
    ASSERT_EQ(asked.status, 0) << asked.err;
    EXPECT_EQ(asked.out, "Your balance is 12.34 EUR. Valid until 31.12.2025.\n");
}

// A thousand messages in a few seconds, announced as a real stick does (at once, not per poll): the worker
// falls behind and the watch catches up by listing the storage, showing each message once.
TEST(DialtoneSms, WatchShowsEveryMessageOfABurstOnce) {
    constexpr int kMessages = 250;
    const json scenario = {{"sms", {{"storages", {{"SM", 1000}, {"ME", 100}}}, {"messages", json::array()}}},
                           {"knobs", {{"urc_mode", "immediate"}}}};
    SimulatedModem modem(ScenarioPatch{scenario});
    ASSERT_TRUE(modem.ready());
    const Outcome watched = RunWhenSent(modem, {"--json", "--wait", "15", "sms", "watch"}, "AT+CMGL", [&] {
        for (int i = 0; i < kMessages; ++i)
            ASSERT_TRUE(modem.command("sms +4915112345678 burst " + std::to_string(i)).value("ok", false));
    });
    ASSERT_EQ(watched.status, 0) << watched.err;
    std::map<std::string, int> shown;
    for (const std::string& line : clitest::Lines(watched.out))
        ++shown[Parse(line).value("text", "")];
    EXPECT_EQ(shown.size(), static_cast<size_t>(kMessages));
    for (int i = 0; i < kMessages; ++i)
        EXPECT_EQ(shown["burst " + std::to_string(i)], 1) << i;
}

} // namespace
