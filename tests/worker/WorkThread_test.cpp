#include "../core/TempHome.h"

#include "ComOperation.h"
#include "SleepWatcher.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"
#include "WorkThread.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <gtest/gtest.h>

#include "QtEventLoop.h"

#include <chrono>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

// The GUI thread's end as the worker sees it: records every answer and report.
class RecordingResponder : public QObject, public DeviceWorkResponseInterface, public WorkServerReceiver {
public:
    struct Response {
        QString name;
        QObject* receiver;
        QVariantMap data;
    };

    void asyncResponse(const QString& name, QObject* receiver, const QVariantMap& data) override {
        EXPECT_EQ(QThread::currentThread(), thread());
        responses.push_back({name, receiver, data});
    }
    void setServer(QObject* server) override { servers.push_back(server); }

    std::vector<Response> responses;
    std::vector<QObject*> servers;
};

// A worker on a thread of its own, as the agent starts it, with an empty device folder.
class WorkerFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(_devDir.isValid());
        setenv("DIALTONE_DEV_DIR", _devDir.path().toLocal8Bit().constData(), 1);
        RecordingResponder* const responder = &_responder;
        QObject::connect(
            &_thread, &QThread::started, &_thread,
            [this, responder] { _worker = WorkThread::connectWithPorts(responder); }, Qt::DirectConnection);
        _thread.start();
        ASSERT_TRUE(waitFor([&] { return !_responder.servers.empty(); }));
    }
    void TearDown() override {
        WorkThread* const worker = _worker;
        QMetaObject::invokeMethod(
            worker, [worker] { delete worker; }, Qt::BlockingQueuedConnection);
        _thread.quit();
        _thread.wait();
        unsetenv("DIALTONE_DEV_DIR");
    }

    // Runs fn on the worker's thread and waits for it.
    void onWorker(const std::function<void()>& fn) {
        QMetaObject::invokeMethod(_worker, fn, Qt::BlockingQueuedConnection);
    }

    std::vector<QString> responseNames() const {
        std::vector<QString> names;
        for (const auto& response : _responder.responses)
            names.push_back(response.name);
        return names;
    }

    TempHome _home;
    QTemporaryDir _devDir;
    RecordingResponder _responder;
    QThread _thread;
    WorkThread* _worker = nullptr;
};

// A private message bus standing in for the system bus, with logind's name taken by one connection.
class PrivateBus : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        if (QStandardPaths::findExecutable("dbus-daemon").isEmpty())
            GTEST_SKIP() << "no dbus-daemon";
        _daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        ASSERT_TRUE(_daemon.waitForStarted());
        ASSERT_TRUE(_daemon.waitForReadyRead(5000));
        _address = QString::fromUtf8(_daemon.readLine()).trimmed();
        ASSERT_FALSE(_address.isEmpty());
    }
    void TearDown() override {
        for (const char* name : {"watcher", "logind", "stranger"})
            QDBusConnection::disconnectFromBus(name);
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

TEST(ExecAT, LimitIsInWholeSecondsAndChannelCodesMapToApplicationCodes) {
    const struct { int ms; int32_t seconds; } limits[] = {{0, 1}, {-5, 1}, {1999, 1}, {2500, 2}};
    for (const auto& row : limits)
        EXPECT_EQ(g_ExecATTimeoutSeconds(row.ms), row.seconds) << row.ms;
    // A time-out and a cancelled switch keep their own codes; every other channel failure is code 1.
    const struct { int32_t channel; int app; } codes[] = {{0, 0}, {8, 2}, {9, 30}, {4, 1}};
    for (const auto& row : codes)
        EXPECT_EQ(g_commErrorMapToVELError(row.channel), row.app) << row.channel;

    std::string response = "untouched";
    ComOperation::GetInstance()->closeCom();
    EXPECT_EQ(g_ExecAT("AT\r", nullptr, 999, {}, response), 1) << "without an open port";
    EXPECT_EQ(response, "untouched");
}

TEST_F(WorkerFixture, ReportsByKindOnePerCall) {
    // Report lines queued in the channel as if the modem had sent them.
    for (std::string line :
         {"\r\n+CMTI: \"SM\",3\r\n", "\r\n+CDSI: \"SM\",4\r\n", "\r\n+CUSD: 0,\"00480069\",72\r\n",
          "\r\nRING\r\n", "\r\n+STIN: 1\r\n", "\r\nNO CARRIER\r\n", "\r\n+STIN: 11\r\n"})
        onWorker([&] { ComOperation::GetInstance()->checkUnsolicitedReport(line, nullptr); });
    // The USSD answer goes ahead of the others: a request waits for it.
    const std::vector<QString> expected = {MESSAGE_RPT_RECEIVE_USSD, MESSAGE_RPT_RECEIVE_SMS,
                                           MESSAGE_RPT_RECEIVE_SMS};
    for (int i = 0; i < 6; ++i) {
        onWorker([this] { _worker->handleUnsolicitedReport(); });
    }
    ASSERT_TRUE(waitFor([&] { return _responder.responses.size() >= expected.size(); }));
    waitFor([] { return false; }, std::chrono::milliseconds(100));
    EXPECT_EQ(responseNames(), expected); // ring and no carrier are dropped
    for (const auto& response : _responder.responses)
        EXPECT_EQ(response.receiver, nullptr);
    // The toolkit's newest announcement waits for the toolkit to ask.
    UnsolicitedReportList* reports = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(reports);
    ASSERT_EQ(reports->size(), 1u);
    EXPECT_EQ(reports->front()->strText, "\r\n+STIN: 11\r\n");
    delete reports->front();
    reports->clear();
}

TEST_F(WorkerFixture, UnplugAndSleepPostUnplugged) {
    onWorker([this] { _worker->unpluggedDev(); });
    onWorker([this] { _worker->willSleepNotification(); });
    onWorker([this] { _worker->didWakeNotification(); });
    ASSERT_TRUE(waitFor([&] { return _responder.responses.size() >= 2; }));
    waitFor([] { return false; }, std::chrono::milliseconds(100));
    // No dial-up object yet, so no connection status goes out.
    EXPECT_EQ(responseNames(), (std::vector<QString>{MESSAGE_USB_UNPLUGGED, MESSAGE_USB_UNPLUGGED}));
}

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
