// The dialtone tool against the simulated modem: exit codes, JSON output, PIN handling, named requests
// with record arguments, a port that another program holds, failures told by their causes, a locked SIM
// and a pulled stick.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::Parse;
using clitest::RunDialtone;
using clitest::ScenarioPatch;
using clitest::SimulatedModem;
using clitest::TempDir;
using nlohmann::json;

// A request's argument is checked against the record the request takes; the message names the field.
TEST(DialtoneModem, UsageErrorsExitTwoWithoutTouchingAModem) {
    TempDir home;
    // clang-format off
    const struct { std::vector<std::string> args; const char* says; } rows[] = {
        {{"frobnicate"}, "unknown command 'frobnicate'.\nRun 'dialtone --help' for the list."},
        {{"stauts", "--json"}, "unknown command 'stauts'. Did you mean: status, stats?"},
        {{"--dev-dir", "/nowhere", "sms", "lsit"}, "unknown sms command 'lsit'. Did you mean: list?\nRun 'dialtone sms --help'"},
        {{"network"}, "'network' needs a command: info, scan, select, auto, band, mode, reg."},
        {{"status", "--wait", "0"}, "--wait must be a number of seconds from 0.1 to 86400, not '0'"},
        {{"network", "band", "gsm900,lte"}, "unknown band 'lte': use all, or one or more of gsm850, gsm900"},
        {{"network", "mode", "4g-only"}, "unknown mode '4g-only': use one of auto, 2g-only, 3g-only, 2g-preferred, 3g-preferred"},
        {{"pin", "verify"}, "no PIN given; --pin-stdin reads it"},
        {{"network", "select", "26x02"}, "MCCMNC must be 5 or 6 digits"},
        {{"network", "select", "26202", "--act", "x"}, "--act: Value x not in range"},
        {{"request", "MESSAGE_SMS_SEND", "{not json"}, "is not valid JSON"},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumbr":"+491701"})"}, "BLSmsSendItem has no field \"strNumbr\""},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLSmsSendItem","strNumber":17})"}, "BLSmsSendItem.strNumber: 17 does not fit"},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLNoSuchRecord"})"}, "takes a BLSmsSendItem, not \"BLNoSuchRecord\""},
        {{"request", "MESSAGE_SMS_SEND", R"({"class":"BLPINEnableInfo"})"}, "takes a BLSmsSendItem, not \"BLPINEnableInfo\""},
        {{"request", "MESSAGE_NETWORK_SET", R"({"class":"BLNetworkSet","nMode":4294967296})"}, "BLNetworkSet.nMode must be a whole number from 0 to 4"},
        {{"request", "MESSAGE_NETWORK_SET", R"({"nMode":7})"}, "BLNetworkSet.nMode must be a whole number from 0 to 4, not 7"},
        {{"request", "MESSAGE_PB_DELETE_ITEM", R"({"nStoreIn":0,"nIndex":-1})"}, "BLPBDeleteItem.nIndex must be a whole number from 1 up, not -1"},
        {{"request", "MESSAGE_SMS_DELETE", R"("x")"}, "MESSAGE_SMS_DELETE's argument must be a whole number from 0 up"},
        {{"request", "MESSAGE_SMS_SET_STATUS_REPORT", "true"}, "must be \"TRUE\" or \"FALSE\""},
        {{"request", "MESSAGE_PIN_CHECK_STATE", "5"}, "MESSAGE_PIN_CHECK_STATE takes no argument"},
        {{"request", "MESSAGE_CALL_DIAL", R"("123;+CFUN=0")"}, "holds a semicolon (;)"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args.back());
        const Outcome run = RunDialtone(row.args, home.path);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(row.says), std::string::npos) << run.err;
    }
}

TEST(DialtoneModem, NoModemIsAFailureWithErrorCodeInJson) {
    TempDir home;
    TempDir emptyDevDir;
    const Outcome text = RunDialtone({"--dev-dir", emptyDevDir.path, "status"}, home.path);
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.out, "");
    EXPECT_NE(text.err.find("no modem found"), std::string::npos) << text.err;

    const Outcome run = RunDialtone({"--dev-dir", emptyDevDir.path, "--json", "info"}, home.path);
    EXPECT_EQ(run.status, 1);
    const json document = Parse(run.out);
    ASSERT_TRUE(document.is_object()) << run.out;
    EXPECT_NE(document["error"].value("code", 0), 0) << run.out;
}

TEST(DialtoneModem, StatusJsonShowsWhatTheModemReports) {
    TempDir home;
    const Outcome run = RunDialtone({"--simulate", "--json", "status"}, home.path);
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = Parse(run.out);
    ASSERT_TRUE(document.is_object()) << run.out;
    EXPECT_EQ(document["modem"]["manufacturer"], "SIMULATED");
    EXPECT_EQ(document["modem"]["serial_number"], "356938035643809");
    EXPECT_EQ(document["sim"]["state"], "ready");
    EXPECT_EQ(document["network"]["operator_code"], "26202");
    EXPECT_EQ(document["network"]["registration"], "home");
    EXPECT_EQ(document["connection"], "disconnected");
}

TEST(DialtoneModem, WrongPinCountsDownThenTheRightOneUnlocks) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    TempDir home;
    const std::vector<std::string> dev{"--dev-dir", modem.devDir.path};
    auto with = [&dev](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), dev.begin(), dev.end());
        return arguments;
    };

    const Outcome locked = RunDialtone(with({"--json", "pin", "status"}), home.path);
    ASSERT_EQ(locked.status, 0) << locked.err;
    EXPECT_EQ(Parse(locked.out)["state"], "pin-required");
    EXPECT_EQ(Parse(locked.out)["pin_attempts"], 3);

    const Outcome wrong = RunDialtone(with({"--json", "pin", "verify", "0000"}), home.path);
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(Parse(wrong.out)["error"]["code"], 14); // incorrect password
    EXPECT_NE(wrong.err.find("the PIN or password is wrong"), std::string::npos) << wrong.err;
    EXPECT_NE(wrong.err.find("2 PIN attempts"), std::string::npos) << wrong.err;

    const Outcome right = RunDialtone(with({"pin", "verify", "1234"}), home.path);
    EXPECT_EQ(right.status, 0) << right.err;
    const Outcome ready = RunDialtone(with({"--json", "pin", "status"}), home.path);
    EXPECT_EQ(Parse(ready.out)["state"], "ready") << ready.out;
}

TEST(DialtoneModem, RequestTakesARecordAndPrintsTheWholeResponse) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    TempDir home;
    const Outcome enable =
        RunDialtone({"--dev-dir", modem.devDir.path, "request", "MESSAGE_PIN_ENABLE",
                     R"({"class":"BLPINEnableInfo","blPinEnable":true,"strPinCode":"1234"})"},
                    home.path);
    ASSERT_EQ(enable.status, 0) << enable.err;
    EXPECT_TRUE(Parse(enable.out).is_object()) << enable.out;

    const Outcome state =
        RunDialtone({"--dev-dir", modem.devDir.path, "request", "MESSAGE_PIN_GET_STATE"}, home.path);
    ASSERT_EQ(state.status, 0) << state.err;
    EXPECT_EQ(Parse(state.out)["VALUE_OBJECT"], "TRUE") << state.out;

    const Outcome info = RunDialtone(
        {"--dev-dir", modem.devDir.path, "request", "MESSAGE_SYSTEM_GET_EQUIPMENT_INFO"}, home.path);
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(Parse(info.out)["VALUE_OBJECT"]["class"], "BLEquipmentInfo");

    // A name the worker does not know is its failure, not a usage error.
    const Outcome unknown = RunDialtone(
        {"--dev-dir", modem.devDir.path, "--json", "request", "MESSAGE_NETWORK_GET_BAND"}, home.path);
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(Parse(unknown.out)["error"]["code"], 35);
}

TEST(DialtoneModem, APortHeldByAnotherProgramIsAClearError) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    const int held = open(modem.atLink.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(held, 0);
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
    TempDir home;
    const auto start = std::chrono::steady_clock::now();
    const Outcome run = RunDialtone({"--dev-dir", modem.devDir.path, "status"}, home.path);
    const auto took = std::chrono::steady_clock::now() - start;
    close(held);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("the modem is in use by another program"), std::string::npos) << run.err;
    EXPECT_LT(took, std::chrono::seconds(10));
}

// Failures whose cause is known say it, with the code, the same sentence and the modem's own cause (when it
// gave one) in --json.
TEST(DialtoneModem, KnownCausesAreToldWithWhatToDo) {
    SimulatedModem plain("default");
    const json twoEntries = {{{"index", 1}, {"name", "A"}, {"number", "1"}},
                             {{"index", 2}, {"name", "B"}, {"number", "2"}}};
    SimulatedModem fullBook(
        ScenarioPatch{{{"phonebooks", {{"SM", {{"capacity", 2}, {"entries", twoEntries}}}}}}});
    ASSERT_TRUE(plain.ready() && fullBook.ready());
    // clang-format off
    struct Row { const SimulatedModem* modem; std::vector<std::string> arguments; std::string cause; int modemCause; };
    const std::vector<Row> rows = {
        {&plain, {"contacts", "add", "Alexandra Schmidt-Meyer", "+4917012345", "--store", "sim"}, "the name is 23 characters; this SIM takes at most 14", 0},
        {&fullBook, {"contacts", "add", "Carla", "+4917012345", "--store", "sim"}, "the sim phonebook is full (2 of 2 used)", 0},
        {&plain, {"network", "select", "26203"}, "the network refuses the SIM, emergency calls only", 100032},
        {&plain, {"call", "answer"}, "there is no incoming call", 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments[0] + " " + row.arguments[1]);
        std::vector<std::string> arguments{"--json"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const Outcome run = row.modem->run(arguments);
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_NE(run.err.find(row.cause), std::string::npos) << run.err;
        const json document = Parse(run.out);
        ASSERT_TRUE(document.is_object()) << run.out;
        const json& error = document["error"];
        EXPECT_NE(error.value("message", "").find(row.cause), std::string::npos) << run.out;
        EXPECT_EQ(error.value("cause_code", 0), row.modemCause) << run.out;
    }
}

// Every command that needs the SIM says that it is locked and how to unlock it, and sends nothing to it.
TEST(DialtoneModem, LockedSimIsToldByEveryCommandThatNeedsIt) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const std::vector<std::vector<std::string>> rows = {
        {"sms", "list"}, {"sms", "send", "+491701234567", "Hi"}, {"sms", "delete", "1"}, {"sms", "sc"},
        {"contacts", "list"}, {"contacts", "add", "Bob", "+4917012345"}, {"connect"}, {"ussd", "*100#"},
        {"account"}, {"stk", "menu"}, {"network", "select", "26202"}, {"call", "dial", "+491701234567"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0] + " " + (row.size() > 1 ? row[1] : ""));
        const Outcome run = modem.run(row);
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("the SIM is locked: dialtone pin verify PIN"), std::string::npos) << run.err;
    }
    EXPECT_EQ(modem.dump()["pin"].value("pin_left", -1), 3) << modem.dump().dump();
}

// A pulled stick: a command under way says so, and status and info no longer show a modem.
TEST(DialtoneModem, UnpluggedModemIsAFailure) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const std::vector<std::pair<std::string, std::vector<std::string>>> rows = {
        {"AT+CPBR", {"contacts", "list"}},
        {"AT+CSQ", {"status"}},
        {"AT+CGMR", {"info"}},
    };
    // clang-format on
    for (const auto& [pulledOn, arguments] : rows) {
        SCOPED_TRACE(arguments[0]);
        ASSERT_TRUE(modem.command("set unplug_on " + pulledOn).value("ok", false));
        const Outcome run = modem.run(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("the modem was unplugged"), std::string::npos) << run.err;
        modem.command("plug");
    }
}

} // namespace
