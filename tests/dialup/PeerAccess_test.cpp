// Peers shared by the users of one machine: the service tool's own argument checks, peers that belong to
// their user, and two users asking for a new peer at the same moment.
#include "DialupPeer.h"
#include "DialupTestSupport.h"
#include "ModemOperator.h"
#include "ServiceTool.h"

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr uid_t kOtherUser = 65534; // nobody

// Starts work in a child process with the user's rights.
pid_t startAsUser(uid_t uid, const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        if (uid != getuid() && (setgroups(0, nullptr) != 0 || setgid(uid) != 0 || setuid(uid) != 0)) {
            _exit(120);
        }
        _exit(work());
    }
    return child;
}

// The child's exit status, once it has ended.
int exitStatus(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int runTool(const QStringList& arguments) {
    return ChildProcess::run(ResourceLocator::resourcePath(ServiceTool::kToolName), arguments, 10000);
}

long ownerOf(const QString& peer) {
    return DialupPeer::ownerOf(TempWorld::readFile(peer).toStdString());
}

// Lets another user into the world, with a peers folder everyone may write: the ownership check, not the
// folder's rights, keeps the users apart here.
void share(const DialWorld& world) {
    for (const QString& folder : {world.path(""), world.dev(), world.peers()})
        QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
}

// The tool trusts nothing it is given: what it refuses writes nothing and runs nothing.
TEST(ServiceTool, WritesThePeerOrRefusesItsArguments) {
    DialWorld world;
    TempWorld::writeFile(world.dev() + "/cu.x", "");
    const QString marker = world.path("ran");
    // clang-format off
    const struct { QStringList arguments; int status; } rows[] = {
        {{"VELMobileConnector1", "VELMODEM1/../x"}, 2},
        {{"VELMobileConnector1", "VELMODEM0"}, 2},
        {{"VELMobileConnector1", "VELMODEM1\nplugin x.so"}, 2},
        {{"/etc/passwd", "VELMODEM1"}, 2},
        {{"/dev/ttyUSB0", "VELMODEM1"}, 2}, // outside this world's device folder
        {{world.dev() + "/sda", "VELMODEM1"}, 2},
        {{"x", "VELMODEM1"}, 2}, // cu.x, a file here
        {{world.dev() + "/../x", "VELMODEM1"}, 2},
        {{world.dev() + "/cu.x\nnoauth", "VELMODEM1"}, 2},
        {{"cu.x noauth", "VELMODEM1"}, 2},
        {{"$(touch " + marker + ")", "VELMODEM1"}, 2},
        {{".hidden", "VELMODEM1"}, 2},
        {{"", "VELMODEM1"}, 2},
        {{"--option", "noauth", "VELMobileConnector1", "VELMODEM1"}, 2},
        {{"--option", "usepeerdns\nnoauth", "VELMobileConnector1", "VELMODEM1"}, 2},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.join(' ').toStdString());
        EXPECT_EQ(runTool(row.arguments), row.status);
        EXPECT_TRUE(
            QDir(world.peers()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty());
        EXPECT_FALSE(QFileInfo::exists(marker));
    }
    ASSERT_EQ(runTool({"--option", "usepeerdns", world.dev() + "/cu.VELMobileConnector1", "VELMODEM1"}), 0);
    const QFileInfo peer(world.peers() + "/VELMODEM1");
    EXPECT_FALSE(peer.permissions() & QFile::WriteOther);
    const QStringList words = PPPConnection::tokenizeOptions(TempWorld::readFile(peer.filePath()));
    EXPECT_TRUE(words.contains(world.dev() + "/cu.VELMobileConnector1"));
    EXPECT_EQ(words.at(words.indexOf("linkname") + 1), "VELMODEM1");
    EXPECT_TRUE(words.contains("noauth") && words.contains("usepeerdns"));
    EXPECT_EQ(ownerOf(peer.filePath()), static_cast<long>(getuid()));

    world.env.set("DIALTONE_PEERS_DIR", world.path("none/peers"));
    EXPECT_EQ(DialWorld::createService(), 1);
}

TEST(ServiceTool, AnotherUsersPeerIsNeitherOverwrittenNorUsed) {
    if (getuid() != 0)
        GTEST_SKIP() << "needs root to act as a second user";
    DialWorld world;
    share(world);
    ASSERT_EQ(DialWorld::createService(), 0);
    const QByteArray mine = TempWorld::readFile(world.peers() + "/VELMODEM1");
    const auto toolAsOther = [](const QString& service) {
        return exitStatus(startAsUser(kOtherUser, [&] { return runTool({DialWorld::kDevice, service}); }));
    };
    EXPECT_EQ(toolAsOther("VELMODEM1"), ServiceTool::kNotYours);
    EXPECT_EQ(TempWorld::readFile(world.peers() + "/VELMODEM1"), mine);
    ASSERT_EQ(toolAsOther("VELMODEM2"), 0);
    EXPECT_EQ(ownerOf(world.peers() + "/VELMODEM2"), static_cast<long>(kOtherUser));

    // Both peers name this modem; this user's connection takes its own, and never the other's.
    ModemOperator modem(DialWorld::kDevice);
    ASSERT_EQ(modem.initModem(), 0);
    EXPECT_EQ(modem.connection()->serviceID(), "VELMODEM1");
    QFile::remove(world.peers() + "/VELMODEM1");
    EXPECT_EQ(ModemOperator(DialWorld::kDevice).initModem(), 2);
}

TEST(PeerNames, TwoUsersAtOnceGetPeersOfTheirOwn) {
    if (getuid() != 0)
        GTEST_SKIP() << "needs root to act as a second user";
    DialWorld world;
    share(world);
    const uid_t users[2] = {0, kOtherUser};
    const auto createPeer = [] {
        const ServiceTool::Outcome made = ServiceTool::create(DialWorld::kDevice, [](const QString&) {});
        return made.status == 0 ? DialupPeer::numberOf(made.service.toStdString()) : 100 + made.status;
    };
    const pid_t children[2] = {startAsUser(users[0], createPeer), startAsUser(users[1], createPeer)};
    const int numbers[2] = {exitStatus(children[0]), exitStatus(children[1])};
    ASSERT_TRUE((numbers[0] == 1 && numbers[1] == 2) || (numbers[0] == 2 && numbers[1] == 1))
        << numbers[0] << " " << numbers[1];
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(ownerOf(world.peers() + "/VELMODEM" + QString::number(numbers[i])),
                  static_cast<long>(users[i]));
}

} // namespace
