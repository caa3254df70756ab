#include "DialupTestSupport.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

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

// Leaving the program drops the link it started.
TEST_F(Dialup, ApplicationClosedEndsTheLink) {
    ASSERT_TRUE(dialUp());
    const pid_t pppd = connection().pid();
    EXPECT_EQ(network.modemOperator().onApplicationClosed(), 0);
    EXPECT_EQ(network.connectStatus(), -1);
    EXPECT_EQ(network.pppStatus(), -1);
    EXPECT_TRUE(waitFor([&] { return kill(pppd, 0) != 0; }));
}

// Real byte counters: a TUN interface named ppp0 in this program's own network namespace.
class DialupTun : public Dialup {
protected:
    DialupTun() : Dialup(true) {}
    void SetUp() override {
        if (!g_tunUnavailable.empty()) {
            GTEST_SKIP() << "no TUN interface: " << g_tunUnavailable;
        }
        Dialup::SetUp();
    }
};

} // namespace
