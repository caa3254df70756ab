// The phonebook and USSD commands of the dialtone tool against one simulated modem per test, so that what
// a run changes is there for the next run and can be read back from the simulator's state.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::SimulatedModem;
using nlohmann::json;

// The tool against the modem, waiting up to 10 s for it.
Outcome RunWaiting(const SimulatedModem& modem, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--wait", "10"});
    return modem.run(arguments);
}

// The entry at index in the tool's JSON list of contacts, or null.
json Entry(const json& document, const std::string& store, int index) {
    for (const json& item : document["contacts"]) {
        if (item.value("storage", "") == store && item.value("index", -1) == index)
            return item;
    }
    return nullptr;
}

TEST(Dialtone10, ContactsAddUpdateDeleteOnBothPhonebooks) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    struct Row {
        const char* store;
        int firstFree; // of the scenario's phonebooks: SIM 1, 2, 4 in use; modem 1
    };
    for (const Row& row : {Row{"sim", 3}, Row{"modem", 2}}) {
        SCOPED_TRACE(row.store);
        const Outcome added =
            RunWaiting(modem, {"--json", "contacts", "add", "Carla", "+491761112233", "--store", row.store});
        ASSERT_EQ(added.status, 0) << added.err;
        EXPECT_EQ(json::parse(added.out, nullptr, false).value("index", -1), row.firstFree) << added.out;

        Outcome list = RunWaiting(modem, {"--json", "contacts", "list"});
        ASSERT_EQ(list.status, 0) << list.err;
        json entry = Entry(json::parse(list.out, nullptr, false), row.store, row.firstFree);
        ASSERT_TRUE(entry.is_object()) << list.out;
        EXPECT_EQ(entry["name"], "Carla");
        EXPECT_EQ(entry["number"], "+491761112233");

        const std::string index = std::to_string(row.firstFree);
        const Outcome updated =
            RunWaiting(modem, {"contacts", "update", row.store, index, "Dora", "030445566"});
        ASSERT_EQ(updated.status, 0) << updated.err;
        list = RunWaiting(modem, {"contacts", "list"});
        ASSERT_EQ(list.status, 0) << list.err;
        EXPECT_NE(list.out.find("Dora"), std::string::npos) << list.out;
        // Stored as +4930445566, listed in the SIM country's layout.
        EXPECT_NE(list.out.find("030 445566"), std::string::npos) << list.out;

        const Outcome deleted = RunWaiting(modem, {"contacts", "delete", row.store, index});
        ASSERT_EQ(deleted.status, 0) << deleted.err;
        list = RunWaiting(modem, {"--json", "contacts", "list"});
        ASSERT_EQ(list.status, 0) << list.err;
        EXPECT_TRUE(Entry(json::parse(list.out, nullptr, false), row.store, row.firstFree).is_null())
            << list.out;
    }
    // The simulator's phonebooks hold the scenario's entries again.
    const json books = modem.dump()["phonebooks"];
    EXPECT_EQ(books["SM"]["used"], 3) << books.dump();
    EXPECT_EQ(books["ME"]["used"], 1) << books.dump();

    const Outcome info = RunWaiting(modem, {"--json", "contacts", "info"});
    ASSERT_EQ(info.status, 0) << info.err;
    const json document = json::parse(info.out, nullptr, false);
    EXPECT_EQ(document["sim"]["total"], 250) << info.out;
    EXPECT_EQ(document["sim"]["max_name_length"], 14) << info.out;
}

TEST(Dialtone10, ContactsUsageErrors) {
    SimulatedModem modem;
    for (const std::vector<std::string>& row : std::vector<std::vector<std::string>>{
             {"contacts", "add", "Carla", "123", "--store", "card"},
             {"contacts", "delete", "sim", "x"},
             {"contacts", "update", "sim", "1", "Dora"},
             {"ussd"},
             {"ussd", "*100#", "--cancel"},
         }) {
        SCOPED_TRACE(row.back());
        const Outcome run = RunWaiting(modem, row);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_EQ(run.out, "");
    }
}

TEST(Dialtone10, UssdMenuDialogueOfTwoStepsThenCancel) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    const Outcome dialogue = RunWaiting(modem, {"ussd", "*135#", "--reply", "2", "--reply", "1"});
    ASSERT_EQ(dialogue.status, 0) << dialogue.err;
    EXPECT_EQ(dialogue.out, "1 Balance\n2 Data options\n3 Tariff\n"
                            "1 Day pass 1 GB (1.99 EUR)\n2 Week pass 5 GB (4.99 EUR)\n"
                            "Day pass booked. Enjoy!\n");

    // Without a reply (and no terminal) the dialogue is cancelled; one JSON line per answer.
    const Outcome open = RunWaiting(modem, {"--json", "ussd", "*135#"});
    ASSERT_EQ(open.status, 0) << open.err;
    EXPECT_EQ(open.out.find('\n'), open.out.size() - 1) << open.out;
    const json answer = json::parse(open.out, nullptr, false);
    EXPECT_EQ(answer["result"], "reply-wanted") << open.out;
    EXPECT_EQ(answer["text"], "1 Balance\n2 Data options\n3 Tariff");
    const json ussd = modem.dump()["ussd"];
    EXPECT_EQ(ussd["requests"], json({"*135#", "2", "1", "*135#"})) << ussd.dump();
    EXPECT_EQ(ussd["session"], false) << ussd.dump();

    const Outcome cancel = RunWaiting(modem, {"ussd", "--cancel"});
    EXPECT_EQ(cancel.status, 0) << cancel.err;
}

TEST(Dialtone10, UssdUnknownServiceIsAFailure) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    const Outcome run = RunWaiting(modem, {"ussd", "*999#"});
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("*999#"), std::string::npos) << run.err;
}

} // namespace
