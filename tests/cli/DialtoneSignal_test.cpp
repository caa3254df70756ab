// dialtone signal against the simulated modem: one reading on each dialect, and a watch of a drifting
// signal with the best of the last minute.

#include <algorithm>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Parse;
using clitest::SimulatedModem;

TEST(DialtoneSignal, ReadingsOnBothDialectsAndAWatch) {
    clitest::TempDir home;
    const clitest::Outcome vendor = clitest::RunDialtone({"--simulate", "signal"}, home.path);
    clitest::ExpectStep({{"--simulate", "signal"}, 0, {"-77 dBm (4/5, good)"}}, vendor);
    EXPECT_EQ(vendor.out.find("RSCP"), std::string::npos) << "the vendor's sticks have no +CESQ";

    SimulatedModem modem("standard");
    ASSERT_TRUE(modem.ready());
    setenv("DIALTONE_DIALECT", "standard", 1);
    // clang-format off
    clitest::RunSteps(modem, {
        {{"signal"}, 0, {"-77 dBm (4/5, good)", "RSCP:", "-85 dBm", "Ec/Io:", "-10.5 dB", "HSDPA", "1A2B/C3D4E5"}},
        {{"signal", "--count", "2"}, 2, {}, "--count and --tone go with --watch"},
    });
    // clang-format on
    modem.command("cell 4F 1234567");
    modem.command("signal drift");
    const clitest::Outcome watch = modem.run({"--json", "signal", "--watch", "--count", "3"});
    ASSERT_EQ(watch.status, 0) << watch.err;
    const std::vector<std::string> lines = clitest::Lines(watch.out);
    EXPECT_EQ(lines.size(), 3u);
    int best = -200;
    for (const std::string& line : lines) {
        const nlohmann::json reading = Parse(line);
        ASSERT_TRUE(reading.is_object()) << line;
        const int dbm = reading.value("rssi_dbm", 0);
        EXPECT_TRUE(dbm >= -113 && dbm <= -51) << line;
        best = std::max(best, dbm);
        EXPECT_EQ(reading.value("best_dbm", 0), best) << line;
        EXPECT_EQ(reading.value("lac", ""), "4F");
        EXPECT_EQ(reading.value("ci", ""), "1234567");
    }
    unsetenv("DIALTONE_DIALECT");
}

} // namespace
