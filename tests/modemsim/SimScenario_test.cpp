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
        {R"({"knobs":{"scan_format":7}})", "scan_format must be a text"},
        {R"({"knobs":{"refuse":["CSCB"]}})", "refuse takes command names"},
        {R"({"voice":{"dial_result":"MAYBE"}})", "dial_result must be"},
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
    const std::string broken = testing::TempDir() + "modemsim-broken.json";
    std::ofstream(broken) << "{ not json";
    EXPECT_FALSE(LoadScenario(broken, s, error));
    EXPECT_NE(error.find("not valid JSON"), std::string::npos);
    std::filesystem::remove(broken);
}

} // namespace
} // namespace modemsim::test
