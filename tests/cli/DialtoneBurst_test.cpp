// Bursts of unsolicited lines against the tool: a USSD answer behind a RING flood, and a burst of new
// messages during "sms watch", where every message must show exactly once.

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

TEST(DialtoneBurst, UssdAnswerArrivesThroughARingFlood) {
    SimulatedModem modem(ScenarioPatch{{{"ussd", {{"delay_ms", 2000}}}}});
    ASSERT_TRUE(modem.ready());
    const Outcome asked = RunWhenSent(modem, {"--wait", "10", "ussd", "*100#"}, "AT+CUSD=1",
                                      [&] { modem.command("set flood 400"); });
    ASSERT_EQ(asked.status, 0) << asked.err;
    EXPECT_EQ(asked.out, "Your balance is 12.34 EUR. Valid until 31.12.2025.\n");
}

TEST(DialtoneBurst, WatchShowsEveryMessageOfABurstOnce) {
    constexpr int kMessages = 1000;
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
        ++shown[Parse(line).value("strContent", "")];
    EXPECT_EQ(shown.size(), static_cast<size_t>(kMessages));
    for (int i = 0; i < kMessages; ++i)
        EXPECT_EQ(shown["burst " + std::to_string(i)], 1) << i;
}

} // namespace
