// dialtoned with several clients over its life: at once, killed in the middle, the service itself killed,
// ending when idle, and a call from another user.

#include <signal.h>
#include <unistd.h>

#include <QDBusMessage>

#include <filesystem>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "BusTransport.h"
#include "ServiceWorld.h"

using namespace servicetest;

TEST(ServiceClients, AClientKilledInTheMiddleLeavesTheServiceWorking) {
    ServiceWorld world;
    ASSERT_TRUE(world.ready());
    ASSERT_TRUE(world.becomes(QStringLiteral("ModemState"), QStringLiteral("ready"), 30s));
    // clang-format off
    struct Row { std::vector<std::string> command; std::string middle; };
    const std::vector<Row> rows = {
        {{"--wait", "60", "sms", "watch"}, "AT+CMGL"},   // waiting for signals
        {{"network", "scan"}, "AT+COPS=?"},               // its answer still to come
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command[row.command.size() - 2] + " " + row.command.back());
        const int before = world.modem.saw(row.middle);
        const auto client = world.start(row.command);
        ASSERT_TRUE(WaitFor([&] { return world.modem.saw(row.middle) > before; }, 30s));
        ASSERT_TRUE(world.becomes(QStringLiteral("Clients"), 1u));
        kill(client->pid(), SIGKILL);
        client->finish();
        EXPECT_TRUE(world.becomes(QStringLiteral("Clients"), 0u));
        const clitest::Outcome next = world.dialtone({"--json", "status"});
        EXPECT_EQ(next.status, 0) << next.err;
        EXPECT_EQ(clitest::Parse(next.out)["network"]["provider_name"], "Vodafone.de") << next.out;
    }
}

TEST(ServiceLife, EndsByItselfOnceTheLastClientHasLeft) {
    ServiceWorld world("--idle-exit 2");
    ASSERT_TRUE(world.ready());
    world.expect({{"status"}, 0});
    const pid_t first = world.servicePid();
    ASSERT_GT(first, 0);
    // The property reads of the other tests would keep it: only the process is watched here.
    EXPECT_TRUE(world.waitForServiceExit(first, 30s)) << "still running with no client";

    // A client that stays on the bus keeps it well past the idle time.
    const QDBusMessage reply =
        world.call(QStringLiteral("Request"), {QStringLiteral("MESSAGE_NETWORK_GET_INFO"), QVariantMap()});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    const pid_t second = world.servicePid();
    ASSERT_GT(second, 0);
    EXPECT_FALSE(world.waitForServiceExit(second, 6s)) << "ended while a client was connected";
    world.bus.leave();
    EXPECT_TRUE(world.waitForServiceExit(second, 30s)) << "still running after its client left";
}

TEST(ServiceAccess, AnotherUsersCallIsRefused) {
    if (geteuid() != 0)
        GTEST_SKIP() << "needs root to make a call as another user";
    if (clitest::Shell("command -v busctl").status != 0)
        GTEST_SKIP() << "busctl is not installed";
    ServiceWorld world;
    ASSERT_TRUE(world.ready());
    ASSERT_TRUE(world.becomes(QStringLiteral("ModemState"), QStringLiteral("ready"), 30s));
    const std::string call = "busctl --address=" + clitest::Quote(world.bus.address) +
                             " call org.dialtone.Modem1 /org/dialtone/Modem1 org.dialtone.Modem1 Request"
                             " 'sa{sv}' MESSAGE_NETWORK_GET_INFO 0";
    // clang-format off
    struct Row { std::string prefix; bool answered; };
    const std::vector<Row> rows = {
        {"", true},
        {"setpriv --reuid=nobody --regid=nogroup --clear-groups ", false},
    };
    // clang-format on
    for (const Row& row : rows) {
        const clitest::Outcome answer = clitest::Shell(row.prefix + call + " 2>&1");
        EXPECT_EQ(answer.status == 0, row.answered) << row.prefix << ": " << answer.out;
        EXPECT_EQ(answer.out.find("BLNetworkInfo") != std::string::npos, row.answered) << answer.out;
    }
}

TEST(ServiceLife, ALinkOutlivesTheServiceAndTheNextOneFindsItsCounters) {
    ServiceWorld world;
    ASSERT_TRUE(world.ready());
    world.expect({{"--wait", "20", "connect"}, 0});
    const std::string counters = world.modem.home.path + "/ppp/net/ppp0/statistics";
    std::filesystem::create_directories(counters);
    std::ofstream(counters + "/tx_bytes") << "1000\n";
    std::ofstream(counters + "/rx_bytes") << "5000\n";
    const auto received = [&] {
        return world.property(QStringLiteral("BytesReceived")).toULongLong() == 5000;
    };
    ASSERT_TRUE(WaitFor(received, 10s));
    // Another process follows the link from the service's reports.
    world.expect({{"--json", "--wait", "2.5", "monitor"}, 0, {"\"received_bytes\":5000"}});

    const pid_t killed = world.servicePid();
    kill(killed, SIGKILL);
    ASSERT_TRUE(world.waitForServiceExit(killed, 10s));
    // The bus starts a new service for the next client; it finds the link still up.
    const clitest::Outcome status = world.dialtone({"--json", "status"});
    EXPECT_EQ(clitest::Parse(status.out).value("connection", ""), "connected") << status.out << status.err;
    EXPECT_GT(world.servicePid(), 0);
    EXPECT_NE(world.servicePid(), killed);
    EXPECT_TRUE(WaitFor(received, 10s));
    const clitest::Outcome disconnected = world.dialtone({"--json", "disconnect"});
    EXPECT_EQ(disconnected.status, 0) << disconnected.err;
    EXPECT_EQ(clitest::Parse(disconnected.out).value("received_bytes", 0ull), 5000u) << disconnected.out;
    EXPECT_TRUE(world.becomes(QStringLiteral("ConnectionState"), QStringLiteral("disconnected")));
}

// The service guards every link, also one a client dialled and left: roaming ends it, with a notice.
TEST(ServiceLife, TheRoamingGuardEndsALinkNobodyHolds) {
    ServiceWorld world;
    ASSERT_TRUE(world.ready());
    NotificationLog log;
    ASSERT_TRUE(world.listen(log));
    world.expect({{"budget", "roaming", "hangup"}, 0});
    world.expect({{"--wait", "20", "connect"}, 0});
    world.modem.command("reg 5");
    EXPECT_TRUE(WaitFor(
        [&] {
            return log.seen(QStringLiteral("BUDGET_NOTICE"), [](const QVariantMap& info) {
                return info.value(QStringLiteral("TEXT")).toString().contains(QStringLiteral("roaming"));
            });
        },
        20s));
    EXPECT_TRUE(world.becomes(QStringLiteral("ConnectionState"), QStringLiteral("disconnected")));
}

TEST(ServiceClients, ClientsAtOnceAndAWatchThatFollowsTheModemThroughUnplugAndReplug) {
    ServiceWorld world;
    ASSERT_TRUE(world.ready());
    {
        const auto first = world.start({"--json", "status"});
        const auto second = world.start({"--json", "network", "info"});
        for (const clitest::Outcome& outcome : {first->finish(), second->finish()})
            EXPECT_EQ(outcome.status, 0) << outcome.err;
    }
    NotificationLog log;
    ASSERT_TRUE(world.listen(log));
    ASSERT_TRUE(world.becomes(QStringLiteral("ModemState"), QStringLiteral("ready"), 30s));
    // The watch follows once its list is answered (a stick pulled before that ends it).
    const auto watch = world.start({"--json", "--wait", "60", "sms", "watch"});
    const auto listed = [&](const QVariantMap& info) {
        return info.value(QStringLiteral("USER_INFO")).toMap().contains(QStringLiteral("CLIENT"));
    };
    ASSERT_TRUE(WaitFor([&] { return log.seen(QStringLiteral("MESSAGE_SMS_GET_LIST"), listed); }, 30s));

    ASSERT_TRUE(world.modem.command("unplug").value("ok", false));
    ASSERT_TRUE(world.becomes(QStringLiteral("ModemState"), QStringLiteral("absent"), 30s));
    ASSERT_TRUE(world.modem.command("plug").value("ok", false));
    ASSERT_TRUE(world.becomes(QStringLiteral("ModemState"), QStringLiteral("ready"), 30s));
    // A message that comes while another client's command runs (its list may take the message in before
    // the modem announces it) reaches the watch all the same.
    const auto other = world.start({"sms", "list"});
    ASSERT_TRUE(world.modem.command("sms +4915112345678 After the replug").value("ok", false));
    const clitest::Outcome during = other->finish();
    EXPECT_EQ(during.status, 0) << during.err;
    EXPECT_TRUE(log.seen(QStringLiteral("MESSAGE_USB_UNPLUGGED"), [](const QVariantMap&) { return true; }));
    EXPECT_TRUE(WaitFor([&] { return watch->output().find("After the replug") != std::string::npos; }, 30s))
        << watch->output();
    kill(watch->pid(), SIGINT);
    const clitest::Outcome watched = watch->finish();
    EXPECT_EQ(watched.status, 0) << watched.err;
}
