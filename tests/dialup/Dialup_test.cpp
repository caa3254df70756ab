#include "CNSLog.h"
#include "DialupPeer.h"
#include "DialupTestSupport.h"
#include "ModemOperator.h"
#include "ServiceTool.h"

#include <arpa/inet.h>
#include <grp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

// What pppd gets for each authentication type and name-server case.
TEST(DialOptions, PppdOptionsText) {
    TempWorld world;
    world.env.set("DIALTONE_RESOURCE_DIR", "/opt/dial tone/Resources");
    const QByteArray common =
        "connect \"/usr/sbin/chat -f '/opt/dial tone/Resources/VEL_HSPA_Modem' -T '*99#'\"\n"
        "user \"web\"\npassword \"s3cret-Pa55\"\n"
        "# no idle disconnect; its timer (5400 s) stays unused\n"
        "lcp-echo-interval 20\nlcp-echo-failure 15\n";
    // clang-format off
    const struct { int authType; QString dns1, dns2; QByteArray tail; } rows[] = {
        {0, {}, {}, "usepeerdns\n"},
        {3, {}, {}, "usepeerdns\n"},
        {0, "", "10.0.0.1", "ipparam \"DNS=10.0.0.1\"\n"},
        {0, "8.8.8.8", "", "ipparam \"DNS=8.8.8.8\"\n"},
        {1, "8.8.8.8", "8.8.4.4", "refuse-chap\nrefuse-mschap\nrefuse-mschap-v2\nrefuse-eap\nipparam \"DNS=8.8.8.8,8.8.4.4\"\n"},
        {2, "8.8.8.8", "2001:4860::8888", "refuse-pap\nrefuse-eap\nipparam \"DNS=8.8.8.8,2001:4860::8888\"\n"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "auth " << row.authType << " dns " << row.dns1.toStdString() << ","
                                        << row.dns2.toStdString());
        QByteArray text;
        ASSERT_TRUE(PPPConnection::optionsText(
            ModemOperator::dialOptions(dialInfo(row.authType, row.dns1, row.dns2)), text));
        EXPECT_EQ(text.mid(text.indexOf('\n') + 1), common + row.tail);
    }
}

// Profile fields reach pppd as single words and never as shell text; what cannot is refused.
TEST(DialOptions, UntrustedFields) {
    BLConnectDialinfo info = dialInfo(1);
    info.strAccountName = "a \"quoted\" \\ name";
    info.strPassword = "pa'ss word";
    QByteArray text;
    ASSERT_TRUE(PPPConnection::optionsText(ModemOperator::dialOptions(info), text));
    const QStringList words = PPPConnection::tokenizeOptions(text);
    EXPECT_EQ(words.at(words.indexOf("user") + 1), info.strAccountName);
    EXPECT_EQ(words.at(words.indexOf("password") + 1), info.strPassword);

    using D = BLConnectDialinfo;
    // clang-format off
    const struct { QString D::*field; QString value; } refused[] = {
        {&D::strDialNumber, "*99#'; reboot; '"}, {&D::strDialNumber, "*99# $(id)"}, {&D::strDialNumber, ""},
        {&D::strAccountName, "web\nplugin evil.so"}, {&D::strPassword, "x\ry"}, {&D::strDNS1, "8.8.8.8\"; x"},
    };
    // clang-format on
    for (const auto& row : refused) {
        SCOPED_TRACE(row.value.toStdString());
        BLConnectDialinfo bad = dialInfo();
        bad.*row.field = row.value;
        QByteArray unused;
        EXPECT_FALSE(PPPConnection::optionsText(ModemOperator::dialOptions(bad), unused));
    }
}

// initModem's codes: the device node is the interface, a peer file naming it the service.
TEST(InitModem, ResultCodes) {
    DialWorld world;
    EXPECT_EQ(ModemOperator().initModem(), 8);
    EXPECT_EQ(ModemOperator("VELMobileConnector7").initModem(), 1);
    ModemOperator modem(DialWorld::kDevice);
    EXPECT_EQ(modem.initModem(), 2) << "no peer file yet";
    EXPECT_FALSE(modem.isConnected());
    EXPECT_EQ(modem.dialByDialInfo(dialInfo()), 3);
    EXPECT_EQ(modem.disconnectNetwork(), 3);
    EXPECT_EQ(modem.onApplicationClosed(), 3);

    TempWorld::writeFile(world.peers() + "/OTHER", "/dev/ttyUSB0\n460800\nlinkname OTHER\n");
    TempWorld::writeFile(world.peers() + "/COMMENTED",
                         "# " + world.dev().toLocal8Bit() + "/cu.VELMobileConnector1\n");
    EXPECT_EQ(modem.initModem(), 2) << "peers for other ports do not count";

    ASSERT_EQ(DialWorld::createService(), 0);
    ASSERT_EQ(DialWorld::createService(DialWorld::kDevice, "VELMODEM2"), 0);
    EXPECT_EQ(modem.initModem(), 0);
    ASSERT_TRUE(modem.isConnected());
    EXPECT_EQ(modem.connection()->serviceID(), "VELMODEM1") << "the first in name order";
    EXPECT_EQ(modem.connection()->linkName(), "VELMODEM1");
    EXPECT_EQ(modem.connection()->status(), PPPConnection::kDisconnected);
    EXPECT_EQ(modem.onApplicationClosed(), 0);
    EXPECT_FALSE(modem.isConnected());

    // A dial port found by probing goes by its path, through the service tool to the peer.
    const QString probed = world.dev() + "/ttyUSB5";
    ASSERT_TRUE(QFile::link(QString::fromStdString(world.modem.slavePath()), probed));
    ModemOperator probedModem(probed);
    EXPECT_EQ(probedModem.initModem(), 2);
    ASSERT_EQ(DialWorld::createService(probed, "VELMODEM3"), 0);
    EXPECT_EQ(probedModem.initModem(), 0);
    EXPECT_EQ(probedModem.connection()->serviceID(), "VELMODEM3");
}

class Dialup : public testing::Test {
protected:
    explicit Dialup(bool realInterfaces = false) : world(realInterfaces) {}
    void SetUp() override {
        ASSERT_TRUE(world.modem.isOpen());
        ASSERT_EQ(DialWorld::createService(), 0);
        ASSERT_EQ(network.initModem(), 0);
        world.scriptModem();
    }
    PPPConnection& connection() { return *network.modemOperator().connection(); }
    // Dials and lets the modem answer: true once the link is up.
    bool dialUp() {
        return network.dialByDialInfo(dialInfo()) == 0 && world.waitForDial() &&
               (world.connect(), waitFor([&] { return network.connectStatus() == 2; }));
    }

    DialWorld world;
    ClockedNetworkOperator network{DialWorld::kDevice};
};

// connecting (chat waits for the dial's answer) -> connected (pid file names ppp0, which is up) ->
// disconnecting -> disconnected; the options file goes with the link (its secrecy: PasswordSecrecy).
TEST_F(Dialup, StatusSequence) {
    EXPECT_EQ(network.connectStatus(), 0);
    EXPECT_EQ(network.pppStatus(), 0);
    ASSERT_EQ(network.dialByDialInfo(dialInfo(2)), 0);
    EXPECT_EQ(network.dialByDialInfo(dialInfo(2)), 4) << "one link at a time";
    ASSERT_TRUE(world.waitForDial());
    EXPECT_EQ(world.modem.received(), (std::vector<std::string>{"AT\r", "ATE0\r", "ATD*99#\r"}));
    EXPECT_EQ(network.connectStatus(), 1);
    EXPECT_EQ(network.pppStatus(), 2);

    const QString options = connection().optionsFilePath();
    EXPECT_TRUE(TempWorld::readFile(options).contains("password \"s3cret-Pa55\""));
    const QByteArray pppdArguments = QByteArray("call") + '\0' + "VELMODEM1" + '\0' + "file" + '\0' +
                                     QFile::encodeName(options) + '\0' + "nodetach";
    EXPECT_TRUE(allCommandLines().contains(pppdArguments));
    // Its own session, and none of this program's streams: Ctrl-C and a reader of our output let it be.
    const pid_t pppd = connection().pid();
    EXPECT_EQ(getsid(pppd), pppd);
    for (const char* stream : {"0", "1", "2"})
        EXPECT_EQ(QFileInfo(QStringLiteral("/proc/%1/fd/").arg(pppd) + stream).symLinkTarget(), "/dev/null");

    world.connect();
    ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 2; }));
    EXPECT_EQ(network.initModem(), 0) << "asked again while the link is up";
    EXPECT_EQ(network.connectStatus(), 2);
    EXPECT_EQ(network.pppStatus(), 8);
    EXPECT_EQ(TempWorld::readFile(world.pidFile()), QByteArray::number(connection().pid()) + "\nppp0\n");
    EXPECT_GT(connection().extendedStatus()["PPP"].toMap()["ConnectTime"].toUInt(), 0u);

    EXPECT_EQ(network.disconnectNetwork(), 0);
    const int stopping = network.connectStatus();
    EXPECT_TRUE(stopping == 3 || stopping == 0) << stopping;
    ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 0; }));
    EXPECT_FALSE(QFileInfo::exists(options)) << "the password does not outlive the link";
    EXPECT_FALSE(QFileInfo::exists(world.pidFile()));
    EXPECT_EQ(network.pppStatus(), 0);
}

// A dial the network refuses ends pppd (its connect script fails) and shows as disconnected.
TEST_F(Dialup, RefusedDial) {
    world.modem.setHandler([](const std::string&) { return PtyPeer::Answer{{{}, "\r\nNO CARRIER\r\n"}}; });
    ASSERT_EQ(network.dialByDialInfo(dialInfo()), 0);
    ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 0; }));
    EXPECT_FALSE(QFileInfo::exists(connection().optionsFilePath()));
}

TEST_F(Dialup, ApplicationClosedEndsTheLink) {
    ASSERT_TRUE(dialUp());
    const pid_t pppd = connection().pid();
    EXPECT_EQ(network.modemOperator().onApplicationClosed(), 0);
    EXPECT_EQ(network.connectStatus(), -1);
    EXPECT_EQ(network.pppStatus(), -1);
    EXPECT_TRUE(waitFor([&] { return kill(pppd, 0) != 0; }));
}

// Rates over the seconds between samples, maxima kept, zeros for a second sample in the same second,
// nothing while connecting, and counting ends with the link.
TEST_F(Dialup, Statistics) {
    ConnectStatisticsInfo info;
    ASSERT_EQ(network.dialByDialInfo(dialInfo()), 0);
    ASSERT_TRUE(world.waitForDial());
    EXPECT_EQ(network.connectStatus(), 1);
    EXPECT_EQ(network.getConnectStaticstics(&info), 0);
    EXPECT_EQ(info.nDurationSeconds + info.nSentBytes + info.nReceivedBytes, 0u)
        << "not counting while connecting";

    world.connect();
    ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 2; }));
    // clang-format off
    // expected: all but the duration, which is checked apart
    const struct { quint32 advance; quint64 rx, tx; ConnectStatisticsInfo expected; bool zero; } rows[] = {
        {0, 5000, 1000, {0, 1000, 5000, 0, 0, 0, 0}, false}, // first sample: no rate yet
        {0, 6000, 1200, {}, true},                           // same second: all zero
        {2, 9000, 3000, {0, 3000, 9000, 1000, 2000, 1000, 2000}, false},
        {1, 9100, 3500, {0, 3500, 9100, 500, 100, 1000, 2000}, false},
        {2, 21100, 9500, {0, 9500, 21100, 3000, 6000, 3000, 6000}, false},
    };
    // clang-format on
    quint32 firstDuration = 0;
    quint32 elapsed = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "at +" << elapsed + row.advance << " rx " << row.rx);
        network.now += row.advance;
        elapsed += row.advance;
        world.setCounters(row.rx, row.tx);
        ASSERT_EQ(network.getConnectStaticstics(&info), 0);
        if (row.zero) {
            EXPECT_EQ(info.nDurationSeconds + info.nSentBytes + info.nReceivedBytes + info.nMaxSentBPS, 0u);
            continue;
        }
        if (firstDuration == 0) {
            firstDuration = info.nDurationSeconds;
            // The link came up about 100 s before the test's clock; the pid file's age is whole seconds.
            EXPECT_NEAR(firstDuration, 100.0, 3.0) << "counted from the link's start";
        }
        EXPECT_EQ(info.nDurationSeconds, firstDuration + elapsed);
        EXPECT_EQ(info.nSentBytes, row.expected.nSentBytes);
        EXPECT_EQ(info.nReceivedBytes, row.expected.nReceivedBytes);
        EXPECT_EQ(info.nSentBPS, row.expected.nSentBPS);
        EXPECT_EQ(info.nReceivedBPS, row.expected.nReceivedBPS);
        EXPECT_EQ(info.nMaxSentBPS, row.expected.nMaxSentBPS);
        EXPECT_EQ(info.nMaxReceivedBPS, row.expected.nMaxReceivedBPS);
    }

    // Counters that cannot be read give an all-zero record.
    QFile::remove(world.net() + "/ppp0/statistics/rx_bytes");
    network.now += 1;
    network.getConnectStaticstics(&info);
    EXPECT_EQ(info.nDurationSeconds, 0u);

    EXPECT_EQ(network.disconnectNetwork(), 0);
    ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 0; }));
    world.setCounters(1, 1);
    network.now += 5;
    network.getConnectStaticstics(&info);
    EXPECT_EQ(info.nDurationSeconds + info.nSentBytes + info.nMaxSentBPS, 0u)
        << "counting ended with the link";
}

// Real byte counters: a TUN interface named ppp0 in this program's own network namespace.
class DialupTun : public Dialup {
protected:
    DialupTun() : Dialup(true) {}
    void SetUp() override {
        if (!g_tunUnavailable.empty())
            GTEST_SKIP() << "no TUN interface: " << g_tunUnavailable;
        Dialup::SetUp();
    }
};

TEST_F(DialupTun, CountersMove) {
    ASSERT_TRUE(dialUp());
    const QVariantMap before = network.modemOperator().connection()->statistics().value("PPP").toMap();
    ASSERT_FALSE(before.isEmpty());
    EXPECT_GT(before["BytesIn"].toULongLong(), 0u) << "the stand-in's greeting";

    const int sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(9);
    inet_pton(AF_INET, "10.112.112.112", &peer.sin_addr);
    const char payload[100] = {};
    ASSERT_EQ(sendto(sock, payload, sizeof payload, 0, reinterpret_cast<sockaddr*>(&peer), sizeof peer),
              static_cast<ssize_t>(sizeof payload));
    close(sock);
    ASSERT_TRUE(waitFor([&] {
        const QVariantMap now = network.modemOperator().connection()->statistics().value("PPP").toMap();
        return now["BytesOut"].toULongLong() >= before["BytesOut"].toULongLong() + sizeof payload &&
               now["BytesIn"].toULongLong() > before["BytesIn"].toULongLong();
    }));

    ConnectStatisticsInfo info;
    network.getConnectStaticstics(&info);
    EXPECT_GE(info.nSentBytes, sizeof payload);
    EXPECT_EQ(network.disconnectNetwork(), 0);
    ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 0; }));
}

mode_t modeOf(const QString& path) {
    struct stat info {};
    return stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777 : 0;
}

// The log switched on in the world's home for the test's length.
class LogOn {
public:
    explicit LogOn(const QString& home) : _marker(home + "/.config/dialtone/OPENLOG") {
        QDir().mkpath(QFileInfo(_marker).path());
        TempWorld::writeFile(_marker, {});
        g_CNSLog.initialize();
    }
    ~LogOn() {
        QFile::remove(_marker);
        g_CNSLog.initialize();
    }

private:
    QString _marker;
};

// The dial's password: only in the private options file, never in a command line nor in the log.
TEST(PasswordSecrecy, NotInCommandLinesNorInTheLog) {
    const QByteArray password = "Zq8-never-shown";
    for (const int authType : {0, 1, 2}) {
        SCOPED_TRACE(authType);
        DialWorld world;
        ASSERT_TRUE(world.modem.isOpen());
        LogOn logOn(world.home());
        const QString log = g_CNSLog.logFilePath();
        ASSERT_FALSE(log.isEmpty());
        ASSERT_EQ(DialWorld::createService(), 0);
        ClockedNetworkOperator network{DialWorld::kDevice};
        ASSERT_EQ(network.initModem(), 0);
        world.scriptModem();

        BLConnectDialinfo info = dialInfo(authType);
        info.strPassword = QString::fromLatin1(password);
        ASSERT_EQ(network.dialByDialInfo(info), 0);
        ASSERT_TRUE(world.waitForDial());
        const QString options = network.modemOperator().connection()->optionsFilePath();
        EXPECT_TRUE(TempWorld::readFile(options).contains(password)) << "handed to pppd in its file";
        EXPECT_EQ(modeOf(options), 0600u);
        EXPECT_EQ(modeOf(QFileInfo(options).path()), 0700u);
        EXPECT_EQ(modeOf(world.home() + "/.local/share/dialtone"), 0700u);
        EXPECT_FALSE(allCommandLines().contains(password)) << "while dialling";

        world.connect();
        ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 2; }));
        EXPECT_FALSE(allCommandLines().contains(password)) << "while connected";
        EXPECT_EQ(network.disconnectNetwork(), 0);
        ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 0; }));

        const QByteArray logText = TempWorld::readFile(log);
        EXPECT_TRUE(logText.contains("START DIAL")) << "the dial was logged";
        EXPECT_FALSE(logText.contains(password)) << logText.toStdString();
    }
}

// Peers shared by the users of one machine: the service tool's own argument checks, peers that belong to
// their user, and two users asking for a new peer at the same moment.
constexpr uid_t kOtherUser = 65534; // nobody

// Starts work in a child process with the user's rights.
pid_t startAsUser(uid_t uid, const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        if (uid != getuid() && (setgroups(0, nullptr) != 0 || setgid(uid) != 0 || setuid(uid) != 0))
            _exit(120);
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
