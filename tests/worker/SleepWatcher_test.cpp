#include "SleepWatcher.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include "QtEventLoop.h"

namespace {

// A private message bus standing in for the system bus, with logind's name taken by one connection.
class PrivateBus : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        if (QStandardPaths::findExecutable("dbus-daemon").isEmpty()) {
            GTEST_SKIP() << "no dbus-daemon";
        }
        _daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        ASSERT_TRUE(_daemon.waitForStarted());
        ASSERT_TRUE(_daemon.waitForReadyRead(5000));
        _address = QString::fromUtf8(_daemon.readLine()).trimmed();
        ASSERT_FALSE(_address.isEmpty());
    }
    void TearDown() override {
        for (const char* name : {"watcher", "logind", "stranger"}) {
            QDBusConnection::disconnectFromBus(name);
        }
        if (_daemon.state() != QProcess::NotRunning) {
            _daemon.terminate();
            _daemon.waitForFinished(5000);
        }
    }

    static void emitPrepareForSleep(QDBusConnection& bus, bool start) {
        QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                                         QStringLiteral("org.freedesktop.login1.Manager"),
                                                         QStringLiteral("PrepareForSleep"));
        signal << start;
        ASSERT_TRUE(bus.send(signal));
    }

    QProcess _daemon;
    QString _address;
};

} // namespace

TEST_F(PrivateBus, PrepareForSleepFromLogindTellsSleepAndWake) {
    QDBusConnection watcherBus = QDBusConnection::connectToBus(_address, "watcher");
    QDBusConnection logind = QDBusConnection::connectToBus(_address, "logind");
    QDBusConnection stranger = QDBusConnection::connectToBus(_address, "stranger");
    ASSERT_TRUE(watcherBus.isConnected() && logind.isConnected() && stranger.isConnected());
    ASSERT_TRUE(logind.registerService("org.freedesktop.login1"));

    int sleeps = 0;
    int wakes = 0;
    SleepWatcher watcher([&] { ++sleeps; }, [&] { ++wakes; }, watcherBus);
    ASSERT_TRUE(watcher.watching());

    // Only logind's own signal counts.
    emitPrepareForSleep(stranger, true);
    emitPrepareForSleep(logind, true);
    ASSERT_TRUE(waitFor([&] { return sleeps == 1; }));
    emitPrepareForSleep(logind, false);
    ASSERT_TRUE(waitFor([&] { return wakes == 1; }));
    waitFor([] { return false; }, std::chrono::milliseconds(100));
    EXPECT_EQ(sleeps, 1);
    EXPECT_EQ(wakes, 1);
}
