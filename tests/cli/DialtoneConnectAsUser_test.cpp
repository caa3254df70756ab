// Connecting as a user who is not root: the first connect sets up the dial-up service through pkexec (a
// stand-in that notes its arguments), the peer belongs to that user, and a user outside the group dip is
// told how to get in. --simulate leaves the system's dial-up folders alone.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ConnectWorld.h"

namespace {

namespace fs = std::filesystem;
using clitest::Outcome;
using clitest::RunDialtone;
using clitest::TempDir;

constexpr uid_t kUser = 65534; // nobody
const std::string kDip = std::to_string(getgrnam("dip") ? getgrnam("dip")->gr_gid : 30);

std::string readAll(const std::string& path) {
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

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
    std::string pkexecLog() const { return readAll(ppp.path + "/pkexec.log"); }
};

TEST(DialtoneConnectAsUser, FirstConnectSetsUpTheServiceThroughPkexecOnce) {
    if (getuid() != 0)
        GTEST_SKIP() << "needs root to run the tool as another user";
    UserWorld world;
    ASSERT_TRUE(world.modem.ready());

    const Outcome outsider = world.runAs("", {"--wait", "20", "connect"});
    EXPECT_EQ(outsider.status, 1);
    EXPECT_NE(outsider.err.find("sudo adduser $USER dip"), std::string::npos) << outsider.err;
    EXPECT_EQ(world.pkexecLog(), "") << "nothing set up for a user who cannot dial";

    const Outcome connected = world.runAs(kDip, {"--wait", "20", "connect"});
    ASSERT_EQ(connected.status, 0) << connected.err;
    EXPECT_NE(connected.err.find("asks for a password once"), std::string::npos) << connected.err;
    const std::string log = world.pkexecLog();
    EXPECT_NE(log.find("/VELModemService VELMobileConnector"), std::string::npos) << log;
    EXPECT_NE(log.find(" VELMODEM1\n"), std::string::npos) << log;
    const std::string peer = readAll(world.ppp.path + "/peers/VELMODEM1");
    EXPECT_NE(peer.find("# owner uid 65534\n"), std::string::npos) << peer;

    const Outcome disconnected = world.runAs(kDip, {"--wait", "20", "disconnect"});
    EXPECT_EQ(disconnected.status, 0) << disconnected.err;
    const Outcome again = world.runAs(kDip, {"--wait", "20", "connect"});
    EXPECT_EQ(again.status, 0) << again.err;
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
