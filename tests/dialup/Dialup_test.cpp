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
        if (!g_tunUnavailable.empty()) {
            GTEST_SKIP() << "no TUN interface: " << g_tunUnavailable;
        }
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

} // namespace
