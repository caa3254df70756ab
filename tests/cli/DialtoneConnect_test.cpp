// The dialtone tool's connection commands against the simulated modem and the stand-in pppd: profiles,
// connect, monitor, disconnect, and the traffic history they leave.

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "ConnectWorld.h"

namespace {

using clitest::Outcome;
using clitest::Parse;
using clitest::RunDialtone;
using clitest::TempDir;
using nlohmann::json;

TEST(DialtoneConnect, ConnectMonitorDisconnectAndTheDaysTraffic) {
    ConnectWorld world;
    ASSERT_TRUE(world.modem.ready());

    // The first connect creates the dial-up service, then dials the SIM's profile; the link stays up.
    const Outcome connected = world.run({"--wait", "20", "connect"});
    ASSERT_EQ(connected.status, 0) << connected.err;
    EXPECT_NE(connected.out.find("Connected with"), std::string::npos) << connected.out;
    EXPECT_TRUE(std::filesystem::exists(world.ppp.path + "/peers/VELMODEM1"));
    ASSERT_TRUE(world.linkRunning());

    const Outcome status = world.run({"--json", "status"});
    ASSERT_EQ(status.status, 0) << status.err;
    EXPECT_EQ(Parse(status.out).value("connection", ""), "connected") << status.out;

    // monitor shows the counters moving while the link carries data.
    std::atomic<bool> done{false};
    std::thread traffic([&] {
        for (unsigned long long i = 1; !done; ++i) {
            world.setCounters(1000 * i, 5000 * i);
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
        }
    });
    const Outcome monitor = world.run({"--json", "--wait", "3.5", "monitor"});
    done = true;
    traffic.join();
    ASSERT_EQ(monitor.status, 0) << monitor.err;
    std::vector<json> samples;
    std::istringstream lines(monitor.out);
    for (std::string line; std::getline(lines, line);)
        samples.push_back(Parse(line));
    ASSERT_GE(samples.size(), 2u) << monitor.out;
    EXPECT_EQ(samples.front().value("connection", ""), "connected");
    EXPECT_GT(samples.back().value("received_bytes", 0ull), samples.front().value("received_bytes", 0ull))
        << monitor.out;
    EXPECT_GT(samples.back().value("duration", 0), 0);

    world.setCounters(4321, 98765);
    const Outcome disconnected = world.run({"--json", "disconnect"});
    ASSERT_EQ(disconnected.status, 0) << disconnected.err;
    EXPECT_EQ(Parse(disconnected.out).value("received_bytes", 0ull), 98765u) << disconnected.out;
    EXPECT_FALSE(world.linkRunning());

    // Nothing is left to end, and nothing more is recorded.
    const Outcome again = world.run({"disconnect"});
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_NE(again.out.find("Not connected"), std::string::npos) << again.out;

    const Outcome stats = world.run({"--json", "stats"});
    ASSERT_EQ(stats.status, 0) << stats.err;
    EXPECT_NE(stats.out.find("98765"), std::string::npos) << stats.out;
    EXPECT_NE(stats.out.find("4321"), std::string::npos) << stats.out;
}

TEST(DialtoneConnect, ProfilesListAddDefaultDelete) {
    ConnectWorld world;
    ASSERT_TRUE(world.modem.ready());

    const Outcome added =
        world.run({"profiles", "add", "Office", "office.apn", "--user", "me", "--auth", "pap"});
    ASSERT_EQ(added.status, 0) << added.err;

    const auto listed = [&] {
        const Outcome list = world.run({"--json", "profiles", "list"});
        EXPECT_EQ(list.status, 0) << list.err;
        return Parse(list.out);
    };
    json list = listed();
    ASSERT_TRUE(list.contains("profiles")) << list.dump();
    const json& rows = list["profiles"];
    ASSERT_GE(rows.size(), 2u);
    // The SIM's own profiles come first, the first of them the default; the user's follow.
    EXPECT_TRUE(rows.front()["from_sim"].get<bool>());
    EXPECT_TRUE(rows.front()["default"].get<bool>());
    const json& office = rows.back();
    EXPECT_EQ(office["name"], "Office");
    EXPECT_FALSE(office["from_sim"].get<bool>());
    const int officeNumber = office["number"].get<int>();

    const Outcome chosen = world.run({"profiles", "default", std::to_string(officeNumber)});
    ASSERT_EQ(chosen.status, 0) << chosen.err;
    list = listed();
    EXPECT_TRUE(list["profiles"].back()["default"].get<bool>()) << list.dump();
    EXPECT_FALSE(list["profiles"].front()["default"].get<bool>()) << list.dump();

    const struct {
        std::vector<std::string> args;
        int status;
    } refused[] = {
        {{"profiles", "delete", "1"}, 2},  // comes with the SIM
        {{"profiles", "delete", "99"}, 2}, // no such profile
        {{"profiles", "default", "0"}, 2},
        {{"profiles", "add", "Bad", "apn", "--auth", "kerberos"}, 2},
    };
    for (const auto& row : refused) {
        const Outcome run = world.run(row.args);
        EXPECT_EQ(run.status, row.status) << row.args.back() << ": " << run.err;
    }

    const Outcome deleted = world.run({"profiles", "delete", std::to_string(officeNumber)});
    ASSERT_EQ(deleted.status, 0) << deleted.err;
    list = listed();
    for (const json& row : list["profiles"])
        EXPECT_NE(row["name"], "Office");
}

TEST(DialtoneConnect, PasswordIsReadFromStandardInputNotTheCommandLine) {
    ConnectWorld world;
    TempDir input;
    std::ofstream(input.path + "/password") << "s3cret\n";
    const std::string command = std::string("HOME=") + clitest::Quote(world.modem.home.path) + " " +
                                clitest::Quote(DIALTONE_CLI) +
                                " profiles add Secret apn.example --password-stdin <" +
                                clitest::Quote(input.path + "/password") + " >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ifstream stored(world.modem.home.path + "/.local/share/dialtone/UserAPNList.plist");
    const std::string text((std::istreambuf_iterator<char>(stored)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("s3cret"), std::string::npos);
}

TEST(DialtoneConnect, EveryFileAndFolderWrittenIsTheOwnersAlone) {
    namespace fs = std::filesystem;
    ConnectWorld world;
    ASSERT_TRUE(world.modem.ready());
    const fs::path home = world.modem.home.path;
    const fs::path data = home / "Documents" / "HSPA Modem User Data";
    // Left open by an older version in its old data folder: a 0755 folder and a 0644 settings file.
    fs::create_directories(data);
    fs::create_directories(home / ".config" / "dialtone");
    for (const char* own : {"Documents", ".config"})
        fs::permissions(home / own, fs::perms::owner_all);
    std::ofstream(data / "dialtone-cli.ini") << "[sms]\nvalidity=1d\n";
    std::ofstream(data / "OPENLOG");
    fs::permissions(data / "OPENLOG", fs::perms::owner_read | fs::perms::owner_write);

    // clang-format off
    const std::vector<std::string> runs[] = {{"--wait", "20", "connect"}, {"disconnect"}, {"sms", "storage", "pc"}, {"profiles", "add", "Office", "office.example"}, {"stats"}};
    // clang-format on
    for (const auto& arguments : runs) {
        const Outcome run = world.run(arguments);
        ASSERT_EQ(run.status, 0) << arguments.back() << ": " << run.err;
    }
    ASSERT_TRUE(fs::exists(home / ".local" / "state" / "dialtone"));
    int seen = 0;
    for (const auto& entry : fs::recursive_directory_iterator(home)) {
        const auto mode = entry.symlink_status().permissions() & fs::perms::all;
        const bool folder = entry.is_directory();
        EXPECT_EQ(mode, folder ? fs::perms::owner_all : fs::perms::owner_read | fs::perms::owner_write)
            << entry.path();
        ++seen;
    }
    EXPECT_GE(seen, 12);
}

} // namespace
