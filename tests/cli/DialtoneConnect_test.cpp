// The connection commands against the simulated modem and the stand-in pppd: profiles, connect, monitor,
// disconnect and the traffic history they leave; the files they write; and connecting as a user who is not
// root.

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

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
using clitest::ReadFile;
using clitest::RunDialtone;
using clitest::TempDir;
using clitest::WriteFile;
using nlohmann::json;

// The first connect creates the dial-up service, then dials the SIM's profile; the link stays up. The
// disconnect tells the link's traffic; then nothing is left to end, and nothing more is recorded. Then the
// guard of the tool's connect: a used-up budget refuses the dial until --over-budget, and roaming during a
// held link ends it (the simulator's registration turned to 5), then refuses to dial.
TEST(DialtoneConnect, ConnectDisconnectTheDaysTrafficAndTheGuards) {
    ConnectWorld world;
    ASSERT_TRUE(world.modem.ready());
    // clang-format off
    world.expect({
        {{"--wait", "20", "connect"}, 0, {"Connected with"}},
        {{"--json", "status"}, 0, {"\"connection\": \"connected\""}},
        {{"--wait", "0.5", "monitor"}, 0},
    });
    // clang-format on
    EXPECT_TRUE(std::filesystem::exists(world.ppp.path + "/peers/VELMODEM1"));
    ASSERT_TRUE(world.linkRunning());
    world.setCounters(4321, 98765);
    // clang-format off
    world.expect({
        {{"--json", "disconnect"}, 0, {"\"received_bytes\": 98765"}},
        {{"disconnect"}, 0, {"Not connected"}},
        {{"--json", "stats"}, 0, {"98765", "4321"}},
        {{"budget", "set", "2KB", "--day", "1", "--at-limit", "hangup"}, 0, {"hang up and refuse to dial"}},
        {{"connect"}, 1, {}, "\"dialtone connect --over-budget\" dials anyway"},
        {{"--wait", "20", "connect", "--over-budget"}, 0, {"Connected with"}},
        {{"disconnect"}, 0},
        {{"budget", "roaming", "hangup"}, 0},
    });
    // clang-format on
    EXPECT_FALSE(world.linkRunning());
    std::thread roam([&world] {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!world.linkRunning() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        world.modem.command("reg 5");
    });
    const Outcome held = world.run({"--wait", "20", "connect", "--hold"});
    roam.join();
    EXPECT_EQ(held.status, 1) << held.err;
    EXPECT_NE(held.err.find("roaming guard ended the link"), std::string::npos) << held.err;
    EXPECT_FALSE(world.linkRunning());
    // clang-format off
    world.expect({
        {{"connect"}, 1, {}, "\"dialtone connect --allow-roaming\" dials anyway"},
        {{"--wait", "20", "connect", "--allow-roaming"}, 0, {"Connected with"}},
        {{"disconnect"}, 0},
    });
    // clang-format on
}

// The SIM's own profiles come first, the first of them the default; the user's follow.
TEST(DialtoneConnect, ProfilesListAddDefaultDelete) {
    ConnectWorld world;
    ASSERT_TRUE(world.modem.ready());
    world.expect({{{"profiles", "add", "Office", "office.apn", "--user", "me", "--auth", "pap"}, 0}});
    const json rows = Parse(world.run({"--json", "profiles", "list"}).out)["profiles"];
    ASSERT_GE(rows.size(), 2u) << rows.dump();
    EXPECT_TRUE(rows.front()["from_sim"].get<bool>() && rows.front()["default"].get<bool>());
    EXPECT_EQ(rows.back()["name"], "Office");
    EXPECT_FALSE(rows.back()["from_sim"].get<bool>());
    const std::string office = std::to_string(rows.back()["number"].get<int>());
    // clang-format off
    world.expect({
        {{"profiles", "default", office}, 0},
        {{"profiles", "delete", "1"}, 2},  // comes with the SIM
        {{"profiles", "delete", "99"}, 2}, // no such profile
        {{"profiles", "default", "0"}, 2},
        {{"profiles", "add", "Bad", "apn", "--auth", "kerberos"}, 2},
    });
    // clang-format on
    const json chosen = Parse(world.run({"--json", "profiles", "list"}).out)["profiles"];
    EXPECT_TRUE(chosen.back()["default"].get<bool>() && !chosen.front()["default"].get<bool>())
        << chosen.dump();
    world.expect({{{"profiles", "delete", office}, 0}});
    EXPECT_EQ(world.run({"profiles", "list"}).out.find("Office"), std::string::npos);
}

TEST(DialtoneConnect, PasswordIsReadFromStandardInputNotTheCommandLine) {
    TempDir home;
    WriteFile(home.path + "/password", "s3cret\n");
    const std::vector<std::string> add{"profiles", "add", "Secret", "apn.example", "--password-stdin"};
    clitest::ExpectStep({add, 0}, RunDialtone(add, home.path, {}, home.path + "/password"));
    const std::string stored = ReadFile(home.path + "/.local/share/dialtone/UserAPNList.plist");
    EXPECT_NE(stored.find("s3cret"), std::string::npos);
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
    world.expect({{{"--wait", "20", "connect"}, 0}, {{"disconnect"}, 0}, {{"sms", "storage", "pc"}, 0}, {{"profiles", "add", "Office", "office.example"}, 0}, {{"stats"}, 0}});
    // clang-format on
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

// Connecting as a user who is not root: the first connect sets up the dial-up service through pkexec (a
// stand-in that notes its arguments), the peer belongs to that user, and a user outside the group dip is
// told how to get in. --simulate leaves the system's dial-up folders alone.
namespace fs = std::filesystem;

constexpr uid_t kUser = 65534; // nobody
const std::string kDip = std::to_string(getgrnam("dip") ? getgrnam("dip")->gr_gid : 30);

// The simulated stick and pppd's folders, opened up so that another user can dial: the peers folder
// stays root's, as /etc/ppp/peers is.
class UserWorld : public ConnectWorld {
public:
    UserWorld() {
        for (const std::string& folder : {ppp.path, ppp.path + "/peers", modem.devDir.path})
            chmod(folder.c_str(), 0755);
        for (const std::string& folder : {ppp.path + "/run", ppp.path + "/net"})
            chmod(folder.c_str(), 0777);
        for (const auto& entry : fs::directory_iterator(modem.devDir.path))
            if (entry.is_symlink())
                chmod(fs::canonical(entry.path()).c_str(), 0666);
        chown(modem.home.path.c_str(), kUser, kUser);
        // pkexec is setuid root; so is its stand-in.
        fs::copy_file(DIALTONE_FAKE_PKEXEC, pkexec());
        chown(pkexec().c_str(), 0, 0);
        chmod(pkexec().c_str(), 04755);
    }

    // As the user, in the group given ("" for none).
    Outcome runAs(const std::string& group, const std::vector<std::string>& arguments) const {
        return run(arguments,
                   {{"DIALTONE_PKEXEC", pkexec()}, {"DIALTONE_FAKE_PKEXEC_LOG", ppp.path + "/pkexec.log"}},
                   {"setpriv", "--reuid=" + std::to_string(kUser), "--regid=" + std::to_string(kUser),
                    group.empty() ? "--clear-groups" : "--groups=" + group, "--"});
    }

    std::string pkexec() const { return ppp.path + "/pkexec"; }
    std::string pkexecLog() const { return ReadFile(ppp.path + "/pkexec.log"); }
};

TEST(DialtoneConnectAsUser, FirstConnectSetsUpTheServiceThroughPkexecOnce) {
    if (getuid() != 0)
        GTEST_SKIP() << "needs root to run the tool as another user";
    UserWorld world;
    ASSERT_TRUE(world.modem.ready());

    const std::vector<std::string> connect{"--wait", "20", "connect"};
    clitest::ExpectStep({connect, 1, {}, "sudo adduser $USER dip"}, world.runAs("", connect));
    EXPECT_EQ(world.pkexecLog(), "") << "nothing set up for a user who cannot dial";

    clitest::ExpectStep({connect, 0, {}, "asks for a password once"}, world.runAs(kDip, connect));
    const std::string log = world.pkexecLog();
    EXPECT_NE(log.find("/VELModemService VELMobileConnector"), std::string::npos) << log;
    EXPECT_NE(log.find(" VELMODEM1\n"), std::string::npos) << log;
    const std::string peer = ReadFile(world.ppp.path + "/peers/VELMODEM1");
    EXPECT_NE(peer.find("# owner uid 65534\n"), std::string::npos) << peer;

    clitest::ExpectStep({{"disconnect"}, 0}, world.runAs(kDip, {"--wait", "20", "disconnect"}));
    clitest::ExpectStep({connect, 0}, world.runAs(kDip, connect));
    EXPECT_EQ(world.pkexecLog(), log) << "the password is asked once";
    world.runAs(kDip, {"--wait", "20", "disconnect"});
}

TEST(DialtoneConnectAsUser, SimulateWritesNothingOfTheSystems) {
    TempDir home;
    // Peers and chat scripts are written through a rename: a write shows in the folder's time.
    const auto changed = [] {
        std::vector<fs::file_time_type> times;
        for (const char* folder : {"/etc/ppp", "/etc/ppp/peers", "/etc/chatscripts"})
            times.push_back(fs::exists(folder) ? fs::last_write_time(folder) : fs::file_time_type{});
        return times;
    };
    const auto before = changed();
    const std::vector<std::pair<std::string, std::string>> environment{
        {"DIALTONE_PPPD", DIALTONE_FAKE_PPPD}, {"DIALTONE_PEERS_DIR", ""},
        {"DIALTONE_PPP_RUN_DIR", ""},          {"DIALTONE_NET_DIR", ""},
        {"DIALTONE_CHATSCRIPTS_DIR", ""},      {"XDG_CONFIG_HOME", ""}};
    // The stand-in pppd dials the simulated port; its interface never comes up without a test to raise it.
    const Outcome connected = RunDialtone({"--simulate", "--wait", "5", "connect"}, home.path, environment);
    EXPECT_NE(connected.err.find("did not come up"), std::string::npos) << connected.err;
    for (const char* command : {"monitor", "disconnect"})
        RunDialtone({"--simulate", "--wait", "3", command}, home.path, environment);
    EXPECT_EQ(changed(), before);
}

} // namespace
