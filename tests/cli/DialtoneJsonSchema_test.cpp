// Every command's --json document against doc/dialtone-json.schema.json, in both dialects of the
// simulated modem, checked by python3-jsonschema (scripts/check-json-schema): each command works or fails at
// once with a clear reason, and none waits for a time-out.

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"
#include "ConnectWorld.h"

using clitest::Outcome;
using clitest::Parse;
using nlohmann::json;

namespace {

// In order: later rows see what earlier ones changed. standardDef: where the standard dialect answers
// otherwise; lines: events, one document per line.
// clang-format off
struct Row { std::vector<std::string> args; const char* def; const char* standardDef = nullptr; bool lines = false; };
const std::vector<Row> kRows{
    {{"status"}, "status"},
    {{"info"}, "equipment"},
    {{"pin", "status"}, "sim_status"},
    {{"pin", "verify", "1234"}, "error"},
    {{"network", "info"}, "network_info"},
    {{"network", "reg"}, "registration_document"},
    {{"network", "scan"}, "operators"},
    {{"signal"}, "signal_reading"},
    {{"signal", "--watch", "--count", "2"}, "signal_reading", nullptr, true},
    {{"network", "band"}, "band", "error"},
    {{"network", "mode"}, "mode", "error"},
    {{"network", "select", "26202"}, "network_set"},
    {{"network", "auto"}, "network_set"},
    {{"sms", "send", "+491701234567", "hello"}, "sms_sent"},
    {{"sms", "list"}, "messages"},
    {{"sms", "state"}, "sms_state"},
    {{"sms", "sc"}, "service_centre"},
    {{"sms", "storage"}, "sms_storage"},
    {{"sms", "validity", "1d"}, "validity"},
    {{"sms", "delete", "1"}, "sms_deleted"},
    {{"sms", "sent"}, "box"},
    {{"sms", "thread", "+491701234567"}, "sms_thread"},
    {{"sms", "search", "see"}, "sms_search"},
    {{"contacts", "list"}, "contacts"},
    {{"contacts", "info"}, "contacts_info"},
    {{"contacts", "add", "Bob", "+4930111"}, "contact"},
    {{"contacts", "delete", "sim", "1"}, "contact_deleted"},
    {{"contacts", "add", "Eve", "+4930222", "--store", "pc"}, "contact"},
    {{"contacts", "search", "e"}, "contacts"},
    {{"contacts", "copy", "--from", "pc", "--to", "sim"}, "contacts_copied"},
    {{"contacts", "copy", "--from", "sim", "--to", "pc"}, "contacts_copied"},
    {{"profiles", "list"}, "profiles"},
    {{"profiles", "add", "Office", "internet.example"}, "profile_changed"},
    {{"ussd", "*100#"}, "ussd_answer", nullptr, true},
    {{"ussd", "--cancel"}, "ok"},
    {{"account"}, "account_menu"},
    {{"account", "1", "1"}, "account_dialogue"},
    {{"stk", "menu"}, "stk_command", "error"},
    {{"stk", "select", "1"}, "stk_commands", "error"},
    {{"--wait", "10", "call", "dial", "+491701234567"}, "call"},
    {{"call", "list"}, "calls"},
    {{"call", "hangup"}, "ok"},
    {{"gps", "on"}, "gps", "error"},
    {{"pdu", "decode", "0791947106004034040C9194710600403400009910109055218001C8"}, "pdu_decoded"},
    {{"pdu", "encode", "+4917012", "hi"}, "pdu_encoded"},
    {{"--wait", "20", "connect"}, "connected"},
    {{"--wait", "2", "monitor"}, "traffic", nullptr, true},
    {{"disconnect"}, "traffic"},
    {{"disconnect"}, "connection_state"},
    {{"budget", "set", "2GB", "--day", "31"}, "budget"},
    {{"stats"}, "stats"},
    {{"stats", "reset"}, "stats_reset"},
    {{"stats", "--signal"}, "stats_signal"},
    {{"doctor"}, "doctor"},
};
// clang-format on

// Runs the schema check over the cases (one JSON object per line); its report and exit status.
Outcome CheckSchema(const std::string& cases) {
    const clitest::TempDir dir;
    const std::string path = dir.path + "/cases.jsonl";
    std::ofstream(path) << cases;
    const std::string command = clitest::Quote(DIALTONE_SOURCE_DIR "/scripts/check-json-schema") + " " +
                                clitest::Quote(DIALTONE_SOURCE_DIR "/doc/dialtone-json.schema.json") + " < " +
                                clitest::Quote(path) + " 2>&1";
    return clitest::Shell(command);
}

class JsonSchema : public testing::TestWithParam<std::string> {};

TEST_P(JsonSchema, EveryCommandsDocumentFollowsTheSchema) {
    const bool standard = GetParam() == "standard";
    ConnectWorld world(GetParam());
    ASSERT_TRUE(world.modem.ready());
    std::string cases;
    for (const Row& row : kRows) {
        const std::string def = standard && row.standardDef ? row.standardDef : row.def;
        std::vector<std::string> args{"--json"};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const auto start = std::chrono::steady_clock::now();
        const Outcome outcome = world.run(args, {{"DIALTONE_DIALECT", standard ? "standard" : ""}});
        // Works or fails at once: no command waits for a time-out (start-up and the network's pace included).
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5))
            << testing::PrintToString(args);
        const std::string name = GetParam() + ": " + testing::PrintToString(row.args);
        // doctor fails on a machine without a stick; its document is the same.
        EXPECT_TRUE(def == "doctor" || outcome.status == (def == "error" ? 1 : 0))
            << name << "\n" << outcome.err;
        const std::vector<std::string> documents =
            row.lines ? clitest::Lines(outcome.out) : std::vector<std::string>{outcome.out};
        EXPECT_FALSE(documents.empty()) << name;
        for (const std::string& text : documents) {
            const json document = Parse(text);
            EXPECT_FALSE(document.is_discarded()) << name << ": not JSON:\n" << text;
            cases += json{{"name", name}, {"def", def}, {"document", document}}.dump() + "\n";
        }
    }
    const Outcome checked = CheckSchema(cases);
    EXPECT_EQ(checked.status, 0) << checked.out;
    // A stick that speaks only the standard commands gets none of the maker's own.
    const std::string sent = world.modem.dump().value("commands", json::array()).dump();
    for (const char* vendor : {"+HWV", "+FUNC", "+PNNM", "+SMPN", "+SYSSEL", "+SSND", "+SPNM", "+SPDI",
                               "+STGI", "+STGR", "+STIN", "$GPSC"})
        EXPECT_TRUE(!standard || sent.find(vendor) == std::string::npos) << vendor;
}

INSTANTIATE_TEST_SUITE_P(Dialects, JsonSchema, testing::Values("", "standard"),
                         [](const auto& info) { return info.param.empty() ? "Builtin" : "Standard"; });

} // namespace
