#include "WorkerWorld.h"

#include "BLRecords.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <cstdio>
#include <cstdlib>

namespace {

class WorkerE2E : public WorkerWorld {};

} // namespace

TEST_F(WorkerE2E, UnplugMidCommandEndsItAndALaterInitWorks) {
    start();
    set("scan_delay_ms 60000");
    auto lists = listen(MESSAGE_NETWORK_GET_LIST);
    auto unplugged = listen(MESSAGE_USB_UNPLUGGED);
    auto status = listen(MESSAGE_CONNECT_STATUS);
    ASSERT_EQ(_wn->sendASyncWorkMessage(MESSAGE_NETWORK_GET_LIST, {}), 0);
    ASSERT_TRUE(waitFor([&] { return _sim->commands().contains("AT+COPS=?"); }, 5s));

    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(_sim->control("unplug").value("ok").toBool());
    ASSERT_TRUE(waitFor([&] { return !lists->empty(); }, 5s));
    EXPECT_LT(clock.elapsed(), 1500);
    EXPECT_EQ(error(lists->front().userInfo), 30); // cancelled
    EXPECT_EQ(WorkNotification::GetRequester(lists->front().userInfo), "QTimer");
    ASSERT_TRUE(waitFor([&] { return !unplugged->empty(); }, 3s));
    EXPECT_EQ(status->size(), 1u);
    EXPECT_FALSE(ApplicationShell::sharedShell().deviceFoundOK());

    // Gone: asynchronous requests are dropped, synchronous ones still run (and fail on the closed port).
    const qint32 count = WorkNotification::getQueueItemCount();
    ASSERT_EQ(_wn->sendASyncWorkMessage(MESSAGE_NETWORK_GET_LIST, {}), 0);
    EXPECT_EQ(error(sync("MESSAGE_NETWORK_GET_BAND")), 35);
    EXPECT_EQ(error(sync(MESSAGE_PIN_GET_STATE)), 1); // the port is closed
    QCoreApplication::processEvents();
    EXPECT_EQ(lists->size(), 1u);
    EXPECT_EQ(WorkNotification::getQueueItemCount(), count + 1);

    ASSERT_TRUE(_sim->control("plug").value("ok").toBool());
    EXPECT_EQ(error(sync(MESSAGE_INIT_WORK_THREAD)), 0);
    EXPECT_TRUE(ApplicationShell::sharedShell().deviceFoundOK());
    const QVariantMap info = sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    EXPECT_EQ(error(info), 0);
    EXPECT_EQ(value<BLEquipmentInfo>(info).strManufacturer, "SIMULATED");
}

// Not a test: keeps an initialised worker idle for DIALTONE_IDLE_SECONDS (bench/worker_idle_cpu.sh).
TEST_F(WorkerE2E, DISABLED_IdleForBenchmark) {
    start();
    const char* seconds = std::getenv("DIALTONE_IDLE_SECONDS");
    std::printf("IDLE_START\n");
    std::fflush(stdout);
    // The event loop sleeps between the worker's answers, so only the worker's own work is measured.
    QEventLoop loop;
    QTimer::singleShot(std::chrono::seconds(seconds != nullptr ? std::atoi(seconds) : 30), &loop,
                       &QEventLoop::quit);
    loop.exec();
}

TEST_F(WorkerE2E, IncomingMessagesArePostedAndAFilteredOneUnderItsOwnName) {
    start();
    ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
    // The SMS screen's start: the stored messages are listed before new ones can be told apart.
    ASSERT_EQ(error(sync(MESSAGE_SMS_GET_LIST)), 0);
    BLSmsFilterConfig filter;
    filter.onORoff = true;
    filter.target = &_module;
    filter.filterList = {QStringLiteral("491709999999")};
    ASSERT_EQ(error(sync(MESSAGE_CONFIG_FILTER_SMS, QVariant::fromValue(filter))), 0);

    auto received = listen(MESSAGE_RPT_RECEIVE_SMS);
    auto filtered = listen(MESSAGE_RPT_RECEIVE_FILTER_SMS);
    ASSERT_TRUE(_sim->control("sms +491701234567 Hello").value("ok").toBool());
    ASSERT_TRUE(_sim->control("sms +491709999999 Secret").value("ok").toBool());
    ASSERT_TRUE(waitFor([&] { return received->size() == 1 && filtered->size() == 1; }, 6s));
    EXPECT_EQ(value<BLSmsListItem>(received->front().userInfo).strAddress, "+491701234567");
    EXPECT_EQ(error(filtered->front().userInfo), 0);
    EXPECT_EQ(WorkNotification::GetRequester(filtered->front().userInfo), "QTimer");
}
