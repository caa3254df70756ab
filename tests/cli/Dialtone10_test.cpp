// The phonebook, USSD, account, toolkit, call and GPS commands against the simulated modem: what a run
// changes is there for the next run and can be read back from the simulator's state.

#include <fstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::SimulatedModem;
using nlohmann::json;

TEST(Dialtone10, ContactsOnBothPhonebooksTheUssdDialogueAndUsageErrors) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    // The scenario's phonebooks: SIM 1, 2, 4 in use, so 3 is the first free; modem 1, so 2.
    for (const auto& [store, index] : {std::pair{"sim", "3"}, std::pair{"modem", "2"}}) {
        // clang-format off
        clitest::RunSteps(modem, {
            {{"--json", "contacts", "add", "Carla", "+491761112233", "--store", store}, 0, {std::string("\"index\": ") + index}},
            {{"--json", "contacts", "list"}, 0, {"\"name\": \"Carla\"", "\"number\": \"+491761112233\""}},
            {{"contacts", "update", store, index, "Dora", "030445566"}, 0},
            {{"contacts", "list"}, 0, {"Dora", "030 445566"}}, // stored as +4930445566, shown in the SIM country's layout
            {{"contacts", "delete", store, index}, 0},
        });
        // clang-format on
        EXPECT_EQ(modem.run({"contacts", "list"}).out.find("Dora"), std::string::npos);
    }

    // The phonebooks' sizes; the USSD dialogue (without a reply and no terminal it is cancelled; one JSON
    // line per answer); then what the phonebook and USSD commands refuse.
    // clang-format off
    clitest::RunSteps(modem, {
        {{"--json", "contacts", "info"}, 0, {"\"total\": 250", "\"max_name_length\": 14"}},
        {{"ussd", "*135#", "--reply", "2", "--reply", "1"}, 0, {"1 Balance\n2 Data options\n3 Tariff\n1 Day pass 1 GB (1.99 EUR)\n2 Week pass 5 GB (4.99 EUR)\nDay pass booked. Enjoy!\n"}, "", true},
        {{"--json", "ussd", "*135#"}, 0, {R"({"result":"reply-wanted","result_code":1,"text":"1 Balance\n2 Data options\n3 Tariff"})" "\n"}, "", true},
        {{"ussd", "--cancel"}, 0},
        {{"ussd", "*999#"}, 1, {}, "*999#"}, // an unknown service is a failure
        {{"contacts", "add", "Carla", "123", "--store", "card"}, 2},
        {{"contacts", "delete", "sim", "x"}, 2},
        {{"contacts", "update", "sim", "1", "Dora"}, 2},
        {{"ussd"}, 2},
        {{"ussd", "*100#", "--cancel"}, 2},
    });
    // clang-format on
    const json ussd = modem.dump()["ussd"];
    EXPECT_EQ(ussd["requests"], json({"*135#", "2", "1", "*135#", "*999#"})) << ussd.dump();
    EXPECT_EQ(ussd["session"], false) << ussd.dump();
}

// The toolkit's menu and selections by identifier, text and position; a call; the GPS.
TEST(DialtoneStkCallGps, ToolkitMenuCallDtmfAndGps) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    // clang-format off
    clitest::RunSteps(modem, {
        {{"stk", "menu"}, 0, {"SIM Services\n   1  News\n   2  Games\n   3  Offers\n"}, "", true},
        {{"--json", "stk", "menu"}, 0, {"\"command\": 17", "\"item_id\": 2,\n      \"text\": \"Games\""}},
        {{"--json", "stk", "select", "2"}, 0, {"\"command\": 11", "\"text\": \"Games\""}},
        {{"--json", "stk", "select", "games", "2"}, 0, {"\"command\": 1", "\"text\": \"Games by your operator\"", "\"command\": 20"}},
        {{"--json", "stk", "select", "1"}, 0, {"\"text\": \"Today: sunny, 24 C\"", "\"command\": 20"}},
        {{"--json", "stk", "select", "2", "1"}, 0, {"\"command\": 3", "\"text\": \"Capital of France?\""}}, // a question stays open
    });
    // clang-format on
    // An item the menu does not hold is the user's slip: nothing is chosen on the card.
    const std::size_t answered = modem.dump()["stk"]["responses"].size();
    clitest::RunSteps(modem, {{{"stk", "select", "7"}, 2, {}, "has no item \"7\""}});
    EXPECT_EQ(modem.dump()["stk"]["responses"].size(), answered);

    // A call: a bad key is a usage error and no key reaches the modem; good keys go one by one.
    // clang-format off
    clitest::RunSteps(modem, {
        {{"call", "dial", "+491701234567"}, 0, {"+491701234567: active\n"}, "", true},
        {{"--json", "call", "list"}, 0, {"\"number\": \"+491701234567\"", "\"direction\": \"outgoing\"", "\"state\": \"active\""}},
        {{"call", "dtmf", "12E4"}, 2, {}, "'E'"},
        {{"call", "dtmf", "1x"}, 2, {}, "'x'"},
    });
    EXPECT_EQ(modem.dump()["dtmf"], json::array());
    clitest::RunSteps(modem, {
        {{"call", "dtmf", "9*#A"}, 0},
        {{"call", "hangup"}, 0},
        {{"call", "list"}, 0, {"No calls\n"}, "", true},
        {{"call", "dial", "12;AT+CFUN=0"}, 2},
        {{"--json", "gps", "on"}, 0, {"{\n  \"gps\": true\n}\n"}, "", true},
    });
    // clang-format on
    const json dump = modem.dump();
    EXPECT_EQ(dump["dtmf"], json({"9", "*", "#", "A"}));
    EXPECT_TRUE(dump["calls"].empty());
    EXPECT_EQ(dump["gps"], true);
    clitest::RunSteps(modem, {{{"--json", "gps", "off"}, 0, {"{\n  \"gps\": false\n}\n"}, "", true}});
    EXPECT_EQ(modem.dump()["gps"], false);
}

// dialtone account against the simulated modem: entries of its SIM's menu (network 262 02) by number and by
// name, the network's questions answered with replies or shown and ended; and another network's SIM, which
// gets the default menu, with a network that knows the voucher code the default menu's top-up sends.
TEST(DialtoneAccount, RunsAnEntryAndAnswersTheNetworksQuestions) {
    clitest::TempDir home;
    const std::string sim = "--simulate=" + home.path + "/other-sim.json";
    std::ofstream(home.path + "/other-sim.json") << R"({"sim": {"imsi": "001019876543210"},
        "ussd": {"menus": {"*102*123456789012#": {"text": "Voucher accepted. New balance 22.34 EUR."}}}})";
    // clang-format off
    clitest::RunSteps(home.path, {
        {{"--simulate", "account", "1", "1"}, 0, {"Your balance is 12.34 EUR. Valid until 31.12.2025.\n"}, "", true},
        {{"--simulate", "account", "my number", "Show my number"}, 0, {"Your number is +491721234567.\n"}, "", true},
        {{"--simulate", "--json", "account", "3", "1", "--reply", "2", "--reply", "1"}, 0, {"\"command\": \"*135#\"", "\"answer\": \"1 Balance\\n2 Data options\\n3 Tariff\",\n      \"reply_wanted\": true", "\"sent\": \"2\"", "\"answer\": \"Day pass booked. Enjoy!\",\n      \"reply_wanted\": false,\n      \"sent\": \"1\""}},
        {{"--simulate", "account", "3", "1"}, 0, {"1 Balance\n2 Data options\n3 Tariff\n"}, "", true},
        {{"--simulate", "account", "9", "1"}, 2, {}, "no group 9"},
        {{"--simulate", "account", "1", "4"}, 2, {}, "no entry 4"},
        {{"--simulate", "account", "1"}, 2, {}, "GROUP and ITEM"},
        {{"--simulate", "account", "1", "1", "123"}, 2, {}, "takes 0 input(s), 1 given"},
        {{sim, "account"}, 0, {"  2.1 Top up with a voucher  [*102*]\n        input: Voucher code (12 to 16 characters of 0123456789)\n"}},
        {{sim, "account", "top-up", "1", "123456789012"}, 0, {"Voucher accepted. New balance 22.34 EUR.\n"}, "", true},
        {{sim, "account", "2", "1", "12345678901"}, 2, {}, "Voucher code"},
        {{sim, "account", "2", "1", "12345678901a"}, 2, {}, "Voucher code"},
    });
    // clang-format on
}

} // namespace
