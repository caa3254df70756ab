// The sms commands against the simulated modem: long texts with a delivery report, a message delivered in
// parts out of order, a full SIM as the preferred storage, an empty storage, the boxes on the computer, a
// message full of escape sequences, and bursts of unsolicited lines.

#include <chrono>
#include <map>
#include <sstream>
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

    const Outcome sent = modem.run({"--json", "sms", "send", "--report", "+491701234567", text});
    ASSERT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(Parse(sent.out).value("segments", 0), 2) << sent.out;

    // The network got two parts of one message, in order, each with its share of the text.
    const json dump = modem.command("dump");
    const json& parts = dump["sms"]["sent"];
    ASSERT_EQ(parts.size(), 2u) << dump.dump();
    std::string joined;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        EXPECT_EQ(parts[i]["to"], "+491701234567");
        // The report is asked for on the next-to-last part only: one report for the whole message.
        EXPECT_EQ(parts[i]["status_report"], i + 2 == parts.size());
        EXPECT_EQ(parts[i]["concat"][1], 2);
        EXPECT_EQ(parts[i]["concat"][2], static_cast<int>(i + 1));
        EXPECT_FALSE(parts[i]["text"].get<std::string>().empty());
        joined += parts[i]["text"].get<std::string>();
    }
    EXPECT_EQ(joined, text);

    // The delivery report arrives as a status report item.
    const Outcome watched = modem.run({"--json", "--wait", "6", "sms", "watch"});
    ASSERT_EQ(watched.status, 0) << watched.err;
    bool report = false;
    std::istringstream lines(watched.out);
    for (std::string line; std::getline(lines, line);) {
        const json item = Parse(line);
        ASSERT_TRUE(item.is_object()) << line;
        report = report ||
                 (item.value("type", "") == "status-report" && item.value("number", "") == "+491701234567");
    }
    EXPECT_TRUE(report) << watched.out;

    // A copy stays in the sent box.
    const Outcome box = modem.run({"--json", "sms", "sent"});
    ASSERT_EQ(box.status, 0) << box.err;
    const json kept = Parse(box.out)["messages"];
    ASSERT_EQ(kept.size(), 1u) << box.out;
    EXPECT_EQ(kept[0]["text"], text);
}

TEST(DialtoneSms, PartsDeliveredOutOfOrderListAsOneMessage) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    const std::string text = LongText(400);
    const json delivered = modem.command("sms --order=3,1,2 +4915112345678 " + text);
    ASSERT_EQ(delivered.value("parts", 0), 3) << delivered.dump();

    const Outcome listed = modem.run({"--json", "sms", "list"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    const json items = Parse(listed.out)["messages"];
    ASSERT_EQ(items.size(), 1u) << listed.out;
    EXPECT_EQ(items[0]["text"], text);
    EXPECT_EQ(items[0]["number"], "+4915112345678");
    EXPECT_EQ(items[0]["complete"], true);
}

// Runs the tool while another thread waits for a command starting with commandStart to reach the modem,
// then lets the network act.
template <typename Act>
Outcome RunWhenSent(const SimulatedModem& modem, const std::vector<std::string>& arguments,
                    const std::string& commandStart, Act act) {
    std::thread network([&] {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline) {
            bool sent = false;
            for (const json& command : modem.dump().value("commands", json::array()))
                sent = sent || command.get<std::string>().rfind(commandStart, 0) == 0;
            if (sent)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        act();
    });
    const Outcome outcome = modem.run(arguments);
    network.join();
    return outcome;
}

// Runs "sms watch" with the arguments while the network delivers: the control command goes out once the
// tool has read the storages (its message table is built). The simulator's answer goes to delivered.
Outcome WatchWhileDelivering(const SimulatedModem& modem, const std::vector<std::string>& arguments,
                             const std::string& deliver, json& delivered) {
    return RunWhenSent(modem, arguments, "AT+CMGL", [&] { delivered = modem.command(deliver); });
}

TEST(DialtoneSms, WatchShowsAMessageDeliveredInPartsOnceWhole) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    const std::string text = LongText(400);
    json delivered;
    const Outcome watched = WatchWhileDelivering(modem, {"--json", "--wait", "8", "sms", "watch"},
                                                 "sms --order=2,3,1 +4915112345678 " + text, delivered);
    ASSERT_EQ(delivered.value("parts", 0), 3) << delivered.dump();
    ASSERT_EQ(watched.status, 0) << watched.err;
    std::vector<json> events;
    std::istringstream lines(watched.out);
    for (std::string line; std::getline(lines, line);)
        events.push_back(Parse(line));
    ASSERT_EQ(events.size(), 1u) << watched.out;
    EXPECT_EQ(events[0]["text"], text);
    EXPECT_EQ(events[0]["number"], "+4915112345678");
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
    const Outcome watched = WatchWhileDelivering(modem, {"--wait", "4", "sms", "watch"},
                                                 "sms --coding=ucs2 +4915112345678 " + hostile, delivered);
    ASSERT_TRUE(delivered.value("ok", false)) << delivered.dump();
    EXPECT_FALSE(HasRawControl(watched.out)) << watched.out;
    EXPECT_NE(watched.out.find(shown), std::string::npos) << watched.out;

    const Outcome listed = modem.run({"sms", "list"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_FALSE(HasRawControl(listed.out)) << listed.out;
    EXPECT_NE(listed.out.find(shown), std::string::npos) << listed.out;
    const json items = Parse(modem.run({"--json", "sms", "list"}).out)["messages"];
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0]["text"], hostile);
    const Outcome values = modem.run({"--output", "key=value", "sms", "list"});
    EXPECT_FALSE(HasRawControl(values.out)) << values.out;
    EXPECT_NE(values.out.find("A\\x1b]0;owned\\x07B\\x1b[2JC\\u009b31mD\\x7fE\\x00F\n"), std::string::npos)
        << values.out;
}

TEST(DialtoneSms, FullSimAsPreferredStorageMovesTheMessageToTheComputer) {
    SimulatedModem modem(Scenario(
        {{{"storage", "SM"}, {"status", 1}, {"from", "+491701234567"}, {"text", "Already on the SIM"}},
         {{"storage", "ME"}, {"status", 0}, {"from", "+4915112345678"}, {"text", "New in the modem"}}},
        {{"storages", {{"SM", 1}, {"ME", 10}}}}));
    ASSERT_TRUE(modem.ready());
    const Outcome chosen = modem.run({"sms", "storage", "sim"});
    ASSERT_EQ(chosen.status, 0) << chosen.err;

    for (int run = 0; run < 2; ++run) {
        const Outcome listed = modem.run({"--json", "sms", "list"});
        ASSERT_EQ(listed.status, 0) << listed.err;
        const json items = Parse(listed.out)["messages"];
        ASSERT_EQ(items.size(), 2u) << listed.out;
        int onComputer = 0;
        for (const json& item : items) {
            if (item["text"] == "New in the modem") {
                EXPECT_EQ(item["storage"], "computer") << "run " << run;
                ++onComputer;
            }
        }
        EXPECT_EQ(onComputer, 1) << listed.out;
        const json storages = modem.command("dump")["sms"]["storages"];
        EXPECT_EQ(storages["ME"]["used"], 0) << storages.dump();
        EXPECT_EQ(storages["SM"]["used"], 1) << storages.dump();
    }
}

TEST(DialtoneSms, EmptyStorageListsNothing) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    const Outcome text = modem.run({"sms", "list"});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out, "");
    const Outcome document = modem.run({"--json", "sms", "list"});
    EXPECT_EQ(document.status, 0) << document.err;
    EXPECT_EQ(Parse(document.out), json({{"messages", json::array()}}));
}

// Typed numbers are sent in the SIM's country's E.164 form; what is not a number sends nothing.
TEST(DialtoneSms, TypedNumbersReachTheRightRecipient) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    // clang-format off
    // to: nullptr: nothing sent
    struct Row { const char* typed; int status; const char* to; };
    const Row rows[] = {
        {"+49 170 123 4567", 0, "+491701234567"},
        {"(0170) 123-4567",  0, "+491701234567"},
        {"abc",              2, nullptr},
        {"",                 2, nullptr},
    };
    // clang-format on
    std::size_t sent = 0;
    for (const Row& row : rows) {
        const Outcome run = modem.run({"sms", "send", row.typed, "Hello"});
        EXPECT_EQ(run.status, row.status) << row.typed << ": " << run.err;
        const json parts = modem.command("dump")["sms"]["sent"];
        ASSERT_EQ(parts.size(), sent + (row.to ? 1 : 0)) << row.typed;
        if (row.to) {
            EXPECT_EQ(parts[sent++]["to"], row.to);
        }
    }
    const Outcome box = modem.run({"sms", "sent"});
    EXPECT_NE(box.out.find("0170 1234567"), std::string::npos) << box.out;
}

TEST(DialtoneSms, DraftIsAddedMovedToTheArchiveAndDeleted) {
    SimulatedModem modem(Scenario(json::array()));
    ASSERT_TRUE(modem.ready());
    const auto box = [&](const std::vector<std::string>& arguments) {
        std::vector<std::string> all{"--json", "sms"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome run = modem.run(all);
        EXPECT_EQ(run.status, 0) << run.err;
        return Parse(run.out)["messages"];
    };
    const json drafts = box({"drafts", "--add", "+491701234567", "See you at 8"});
    ASSERT_EQ(drafts.size(), 1u) << drafts.dump();
    EXPECT_EQ(drafts[0]["text"], "See you at 8");
    EXPECT_EQ(drafts[0]["numbers"], json::array({"+491701234567"}));
    EXPECT_EQ(drafts[0]["box"], "drafts");

    EXPECT_EQ(box({"drafts", "--move", "1", "archive"}), json::array());
    const json archived = box({"archive"});
    ASSERT_EQ(archived.size(), 1u) << archived.dump();
    EXPECT_EQ(archived[0]["text"], "See you at 8");
    EXPECT_EQ(box({"archive", "--delete", "1"}), json::array());
    EXPECT_EQ(box({"drafts"}), json::array());

    const Outcome missing = modem.run({"sms", "archive", "--delete", "1"});
    EXPECT_EQ(missing.status, 2);
}

// A RING flood while the USSD answer is on its way: the answer still comes within the wait.
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
    std::istringstream lines(watched.out);
    for (std::string line; std::getline(lines, line);)
        ++shown[Parse(line).value("text", "")];
    EXPECT_EQ(shown.size(), static_cast<size_t>(kMessages));
    for (int i = 0; i < kMessages; ++i)
        EXPECT_EQ(shown["burst " + std::to_string(i)], 1) << i;
}

} // namespace
