// Scenario files: the built-in one is scenarios/default.json, mistakes are named.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "SimScenario.h"
#include "SimTestSupport.h"

namespace modemsim::test {
namespace {

const std::filesystem::path kScenarios =
    std::filesystem::path(DIALTONE_SOURCE_DIR) / "tools" / "modemsim" / "scenarios";

TEST(SimScenarioTest, BuiltinIsTheShippedDefault) {
    std::ifstream in(kScenarios / "default.json");
    ASSERT_TRUE(in.good());
    EXPECT_EQ(nlohmann::json::parse(in), BuiltinScenario());
}

TEST(SimScenarioTest, MistakesAreNamed) {
    // clang-format off
    struct Row { const char* patch; const char* error; };
    const Row rows[] = {
        {R"({"sim":{"pin":"12"}})", "pin and pin2 must be 4-8 digits"},
        {R"({"sim":{"pin_attempts":4}})", "pin_attempts must be 0-3"},
        {R"({"network":{"signal":40}})", "signal must be 0-31 or 99"},
        {R"({"network":{"operators":[{"long":"X","numeric":"1"}]}})", "operator numeric must be 5 or 6 digits"},
        {R"({"sms":{"cpms":["XX","SM","SM"]}})", "cpms names storage XX that sms.storages lacks"},
        {R"({"sms":{"messages":[{"storage":"SM","index":99,"from":"+49","text":"x"}]}})", "bad or repeated index"},
        {R"({"sms":{"messages":[{"storage":"SM"}]}})", "a message needs pdu, from or to"},
        {R"({"knobs":{"urc_mode":"sometimes"}})", "urc_mode must be poll, immediate, mixed or ahead"},
        {R"({"dialect":"other"})", "dialect must be vel or standard"},
        {R"({"knobs":{"scan_format":7}})", "scan_format must be a text"},
        {R"({"knobs":{"refuse":["CSCB"]}})", "refuse takes command names"},
        {R"({"voice":{"dial_result":"MAYBE"}})", "dial_result must be"},
        {R"({"ussd":{"menus":{"*1#":"text"}}})", "a USSD menu entry must be an object"},
        {R"({"sim":{"imsi":5}})", "type must be string"},
    };
    // clang-format on
    for (const Row& row : rows) {
        nlohmann::json scenario = BuiltinScenario();
        scenario.merge_patch(nlohmann::json::parse(row.patch));
        SimState s;
        std::string error;
        EXPECT_FALSE(BuildState(scenario, s, error)) << row.patch;
        EXPECT_NE(error.find(row.error), std::string::npos) << row.patch << " gave: " << error;
    }
    SimState s;
    std::string error;
    TempDir dir;
    std::ofstream(dir.Path() + "/broken.json") << "{ not json";
    EXPECT_FALSE(LoadScenario(dir.Path() + "/broken.json", s, error));
    EXPECT_NE(error.find("not valid JSON"), std::string::npos);
}

} // namespace
} // namespace modemsim::test
