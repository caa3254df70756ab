// The toolkit, call and GPS commands of the dialtone tool against one simulated modem per test; what the
// tool sent is read back from the simulator's state.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::SimulatedModem;
using nlohmann::json;

Outcome RunWaiting(const SimulatedModem& modem, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--wait", "10"});
    return modem.run(arguments);
}

// The modem's numbers and texts of the commands in a JSON list of the tool's toolkit records.
std::vector<std::pair<int, std::string>> Commands(const json& list) {
    std::vector<std::pair<int, std::string>> commands;
    for (const json& command : list) {
        const json& text = command["text"];
        commands.emplace_back(command.value("command", -1), text.is_string() ? text.get<std::string>() : "");
    }
    return commands;
}

TEST(DialtoneStkCallGps, ToolkitMenuAndSelections) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());

    const Outcome menu = RunWaiting(modem, {"stk", "menu"});
    ASSERT_EQ(menu.status, 0) << menu.err;
    EXPECT_EQ(menu.out, "SIM Services\n   1  News\n   2  Games\n   3  Offers\n");

    const Outcome menuJson = RunWaiting(modem, {"--json", "stk", "menu"});
    ASSERT_EQ(menuJson.status, 0) << menuJson.err;
    const json document = clitest::Parse(menuJson.out);
    EXPECT_EQ(document["command"], 17) << menuJson.out;
    ASSERT_EQ(document["items"].size(), 3u) << menuJson.out;
    EXPECT_EQ(document["items"][1], (json{{"item_id", 2}, {"text", "Games"}}));

    const struct {
        std::vector<std::string> items;
        std::vector<std::pair<int, std::string>> shown;
        std::vector<std::string> answers; // what the card got, in order
    } rows[] = {
        // A sub-menu, chosen by identifier.
        {{"2"}, {{11, "Games"}}, {"0,0,2"}},
        // By text, then by position: a text, confirmed, then the end of the dialogue.
        {{"games", "2"}, {{1, "Games by your operator"}, {20, ""}}, {"0,0,2", "11,0,,2", "1,0,"}},
        {{"1"}, {{1, "Today: sunny, 24 C"}, {20, ""}}, {"0,0,1", "1,0,"}},
        // A question stays open.
        {{"2", "1"}, {{3, "Capital of France?"}}, {"0,0,2", "11,0,,1"}},
    };
    std::size_t answered = modem.dump()["stk"]["responses"].size();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.items.front() + "...");
        std::vector<std::string> arguments = {"--json", "stk", "select"};
        arguments.insert(arguments.end(), row.items.begin(), row.items.end());
        const Outcome selected = RunWaiting(modem, arguments);
        ASSERT_EQ(selected.status, 0) << selected.err;
        EXPECT_EQ(Commands(clitest::Parse(selected.out)["commands"]), row.shown) << selected.out;
        const json responses = modem.dump()["stk"]["responses"];
        ASSERT_EQ(responses.size(), answered + row.answers.size()) << responses.dump();
        for (std::size_t i = 0; i < row.answers.size(); ++i)
            EXPECT_EQ(responses[answered + i], row.answers[i]) << responses.dump();
        answered = responses.size();
    }

    // An item the menu does not hold is the user's slip: nothing was chosen on the card.
    const Outcome missing = RunWaiting(modem, {"stk", "select", "7"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("has no item \"7\""), std::string::npos) << missing.err;
    EXPECT_EQ(modem.dump()["stk"]["responses"].size(), answered);
}

TEST(DialtoneStkCallGps, DialListDtmfAndHangUp) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());

    const Outcome dialled = RunWaiting(modem, {"call", "dial", "+491701234567"});
    ASSERT_EQ(dialled.status, 0) << dialled.err;
    EXPECT_EQ(dialled.out, "+491701234567: active\n");

    const Outcome list = RunWaiting(modem, {"--json", "call", "list"});
    ASSERT_EQ(list.status, 0) << list.err;
    const json calls = clitest::Parse(list.out)["calls"];
    ASSERT_EQ(calls.size(), 1u) << list.out;
    EXPECT_EQ(calls[0]["number"], "+491701234567");
    EXPECT_EQ(calls[0]["direction"], "outgoing");
    EXPECT_EQ(calls[0]["state"], "active");

    // A bad key is a usage error and no key reaches the modem; good keys go one by one.
    const struct {
        const char* keys;
        int status;
        const char* named; // in the error
        std::vector<std::string> sent;
    } rows[] = {
        {"12E4", 2, "'E'", {}},
        {"1x", 2, "'x'", {}},
        {"9*#A", 0, "", {"9", "*", "#", "A"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        const Outcome tones = RunWaiting(modem, {"call", "dtmf", row.keys});
        EXPECT_EQ(tones.status, row.status) << tones.err;
        EXPECT_NE(tones.err.find(row.named), std::string::npos) << tones.err;
        EXPECT_EQ(modem.dump()["dtmf"], json(row.sent));
    }

    const Outcome hungUp = RunWaiting(modem, {"call", "hangup"});
    ASSERT_EQ(hungUp.status, 0) << hungUp.err;
    EXPECT_TRUE(modem.dump()["calls"].empty());
    const Outcome empty = RunWaiting(modem, {"call", "list"});
    ASSERT_EQ(empty.status, 0) << empty.err;
    EXPECT_EQ(empty.out, "No calls\n");

    const Outcome bad = RunWaiting(modem, {"call", "dial", "12;AT+CFUN=0"});
    EXPECT_EQ(bad.status, 2);
    EXPECT_TRUE(modem.dump()["calls"].empty());
}

TEST(DialtoneStkCallGps, GpsOnAndOff) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    for (const auto& [word, on] : {std::pair{"on", true}, std::pair{"off", false}}) {
        SCOPED_TRACE(word);
        const Outcome switched = RunWaiting(modem, {"--json", "gps", word});
        ASSERT_EQ(switched.status, 0) << switched.err;
        EXPECT_EQ(clitest::Parse(switched.out), (json{{"gps", on}}));
        EXPECT_EQ(modem.dump()["gps"], on);
    }
}

} // namespace
