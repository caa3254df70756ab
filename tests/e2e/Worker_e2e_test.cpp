#include "../core/TempHome.h"
#include "E2ESupport.h"

#include "BLRecords.h"
#include "GUIThreadAgent.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"
#include "WorkThread.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace std::chrono_literals;

namespace {

// The command line's way in: an agent, and in its ready callback the synchronous init.
class WorkerE2E : public ::testing::Test {
protected:
    void start(const QStringList& simArgs = {}) {
        _sim = std::make_unique<SimulatedModem>(simArgs);
        ASSERT_TRUE(_sim->started());
        _agent = std::make_unique<GUIThreadAgent>(nullptr, &_module);
        _agent->setServerSetupCompleteTargetCallBack([this](WorkNotification* wn) {
            _wn = wn;
            _initResponse = wn->sendworkMessage(MESSAGE_INIT_WORK_THREAD, {}, true);
            _ready = true;
        });
        ASSERT_TRUE(waitUntil([this] { return _ready; }, 15s));
    }
    void TearDown() override {
        _agent.reset();
        _sim.reset();
    }

    QVariantMap sync(const QString& name, const QVariant& value = {}) {
        QVariantMap userInfo;
        if (value.isValid()) {
            WorkNotification::SetValueObject(userInfo, value);
        }
        return _wn->sendworkMessage(name, userInfo, true);
    }

    // Subscribes to name; every posted notification lands in the list.
    std::shared_ptr<std::vector<Notification>> listen(const QString& name) {
        auto posted = std::make_shared<std::vector<Notification>>();
        NotificationCenter::defaultCenter().addObserver(
            name, &_module, [posted](const Notification& n) { posted->push_back(n); });
        return posted;
    }

    TempHome _home;
    QTimer _module; // stands in for a feature module: the requests' sender
    std::unique_ptr<SimulatedModem> _sim;
    std::unique_ptr<GUIThreadAgent> _agent;
    WorkNotification* _wn = nullptr;
    QVariantMap _initResponse;
    bool _ready = false;
};

} // namespace

TEST_F(WorkerE2E, InitialisationRunsTheStartUpSequenceAndFindsTheDevice) {
    auto found = listen(MESSAGE_DEVICE_FIND);
    start();
    EXPECT_EQ(WorkNotification::GetErrorCode(_initResponse), 0);
    EXPECT_TRUE(ApplicationShell::sharedShell().deviceFoundOK());
    // The lone escape is no command to the modem and is not logged by it.
    const QStringList expected{"ATE1", "ATE1", "ATE0", "AT&F", "ATE0Q0V1", "AT+CMEE=2"};
    EXPECT_EQ(_sim->commands(), expected);
    EXPECT_TRUE(waitUntil([&] { return found->size() == 1; }, 2s));

    // The detect timer then polls with a bare "at" once a second.
    EXPECT_TRUE(waitUntil(
        [&] {
            const QJsonArray all = _sim->control("dump").value("commands").toArray();
            return !all.isEmpty() && all.last().toString() == "at";
        },
        3s));
}

TEST_F(WorkerE2E, ASecondInitKeepsTheStackButMakesANewBusinessObject) {
    start();
    ASSERT_EQ(WorkNotification::GetErrorCode(_initResponse), 0);
    WorkThread* const worker = WorkThread::GetRequestInterfaceImpObject();
    ASSERT_NE(worker, nullptr);
    struct Stack {
        const void* sublayer;
        const void* network;
        const void* business;
    };
    const auto stack = [worker] {
        Stack now{};
        QMetaObject::invokeMethod(
            worker,
            [&] {
                now = {worker->atSublayer(), worker->networkOperator(), worker->businessOperator()};
            },
            Qt::BlockingQueuedConnection);
        return now;
    };
    const Stack first = stack();
    ASSERT_EQ(WorkNotification::GetErrorCode(sync(MESSAGE_INIT_WORK_THREAD)), 0);
    const Stack second = stack();
    EXPECT_EQ(second.sublayer, first.sublayer);
    EXPECT_EQ(second.network, first.network);
    EXPECT_NE(second.business, first.business);
    EXPECT_NE(second.business, nullptr);
}

TEST_F(WorkerE2E, EquipmentInformation) {
    start();
    const QVariantMap response = sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    ASSERT_EQ(WorkNotification::GetErrorCode(response), 0);
    const auto info = WorkNotification::GetValueObject(response).value<BLEquipmentInfo>();
    EXPECT_EQ(info.strManufacturer, "SIMULATED");
    EXPECT_EQ(info.strModel, "HSPA USB Modem SIM-3G");
    EXPECT_EQ(info.strRevision, "11.608.12.02.00");
    EXPECT_EQ(info.strSerialNumber, "356938035643809");
    EXPECT_EQ(info.strImsi, "262021234567890");
}

TEST_F(WorkerE2E, OperatorListAndManualSelectionAsynchronously) {
    start();
    _sim->control("set scan_delay_ms 200");
    auto lists = listen(MESSAGE_NETWORK_GET_LIST);
    auto sets = listen(MESSAGE_NETWORK_SET);
    ASSERT_EQ(_wn->sendASyncWorkMessage(MESSAGE_NETWORK_GET_LIST, {}), 0);
    ASSERT_TRUE(waitUntil([&] { return !lists->empty(); }, 10s));
    const QVariantMap& answer = lists->front().userInfo;
    ASSERT_EQ(WorkNotification::GetErrorCode(answer), 0);
    EXPECT_EQ(WorkNotification::GetRequester(answer), "QTimer");
    const QVariantList items = WorkNotification::GetValueObject(answer).toList();
    ASSERT_EQ(items.size(), 4);
    const auto telekom = items.at(1).value<BLNetworkListItem>();
    EXPECT_EQ(telekom.strLongAlpha, "Telekom.de");
    EXPECT_EQ(telekom.strNumericAlpha, "26201");
    EXPECT_EQ(items.at(3).value<BLNetworkListItem>().nState, 3); // forbidden

    BLNetworkSet manual;
    manual.nMask = 1 | 2 | BLNetworkSet::kOperatorGiven;
    manual.nMode = 1;
    manual.nFormat = 2;
    manual.strOperator = "26201";
    QVariantMap userInfo;
    WorkNotification::SetValueObject(userInfo, QVariant::fromValue(manual));
    ASSERT_EQ(_wn->sendASyncWorkMessage(MESSAGE_NETWORK_SET, userInfo), 0);
    ASSERT_TRUE(waitUntil([&] { return !sets->empty(); }, 10s));
    EXPECT_EQ(WorkNotification::GetErrorCode(sets->front().userInfo), 0);
    EXPECT_EQ(WorkNotification::GetUserInfo(sets->front().userInfo).value<BLNetworkSet>(), manual);
    EXPECT_TRUE(_sim->commands().contains("AT+COPS=1,2,\"26201\""));
    NotificationCenter::defaultCenter().removeObserver(&_module);
}

TEST_F(WorkerE2E, UnplugMidCommandEndsItAndALaterInitWorks) {
    start();
    ASSERT_EQ(WorkNotification::GetErrorCode(_initResponse), 0);
    _sim->control("set scan_delay_ms 60000");
    auto lists = listen(MESSAGE_NETWORK_GET_LIST);
    auto unplugged = listen(MESSAGE_USB_UNPLUGGED);
    auto status = listen(MESSAGE_CONNECT_STATUS);
    ASSERT_EQ(_wn->sendASyncWorkMessage(MESSAGE_NETWORK_GET_LIST, {}), 0);
    ASSERT_TRUE(waitUntil([&] { return _sim->commands().contains("AT+COPS=?"); }, 5s));

    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(_sim->control("unplug").value("ok").toBool());
    ASSERT_TRUE(waitUntil([&] { return !lists->empty(); }, 5s));
    EXPECT_LT(clock.elapsed(), 1500);
    EXPECT_EQ(WorkNotification::GetErrorCode(lists->front().userInfo), 30); // cancelled
    ASSERT_TRUE(waitUntil([&] { return !unplugged->empty(); }, 3s));
    EXPECT_EQ(status->size(), 1u);
    EXPECT_FALSE(ApplicationShell::sharedShell().deviceFoundOK());

    // Gone: asynchronous requests are dropped, synchronous ones still run (and fail on the closed port).
    const qint32 count = WorkNotification::getQueueItemCount();
    ASSERT_EQ(_wn->sendASyncWorkMessage(MESSAGE_NETWORK_GET_LIST, {}), 0);
    EXPECT_EQ(WorkNotification::GetErrorCode(sync("MESSAGE_NETWORK_GET_BAND")), 35);
    EXPECT_EQ(WorkNotification::GetErrorCode(sync(MESSAGE_PIN_GET_STATE)), 1); // the port is closed
    QCoreApplication::processEvents();
    EXPECT_EQ(lists->size(), 1u);
    EXPECT_EQ(WorkNotification::getQueueItemCount(), count + 1);

    ASSERT_TRUE(_sim->control("plug").value("ok").toBool());
    EXPECT_EQ(WorkNotification::GetErrorCode(sync(MESSAGE_INIT_WORK_THREAD)), 0);
    EXPECT_TRUE(ApplicationShell::sharedShell().deviceFoundOK());
    const QVariantMap info = sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    EXPECT_EQ(WorkNotification::GetErrorCode(info), 0);
    EXPECT_EQ(WorkNotification::GetValueObject(info).value<BLEquipmentInfo>().strManufacturer, "SIMULATED");
    NotificationCenter::defaultCenter().removeObserver(&_module);
}

// Not a test: keeps an initialised worker idle for DIALTONE_IDLE_SECONDS (bench/worker_idle_cpu.sh).
TEST_F(WorkerE2E, DISABLED_IdleForBenchmark) {
    start();
    ASSERT_EQ(WorkNotification::GetErrorCode(_initResponse), 0);
    const char* seconds = std::getenv("DIALTONE_IDLE_SECONDS");
    const int limit = seconds != nullptr ? std::atoi(seconds) : 30;
    std::printf("IDLE_START\n");
    std::fflush(stdout);
    // The event loop sleeps between the worker's answers, so only the worker's own work is measured.
    QEventLoop loop;
    QTimer::singleShot(std::chrono::seconds(limit), &loop, &QEventLoop::quit);
    loop.exec();
}

TEST_F(WorkerE2E, IncomingMessagesArePostedAndAFilteredOneUnderItsOwnName) {
    start();
    ASSERT_EQ(WorkNotification::GetErrorCode(sync(MESSAGE_SMS_INIT)), 0);
    // The SMS screen's start: the stored messages are listed before new ones can be told apart.
    ASSERT_EQ(WorkNotification::GetErrorCode(sync(MESSAGE_SMS_GET_LIST)), 0);
    BLSmsFilterConfig filter;
    filter.onORoff = true;
    filter.target = &_module;
    filter.filterList = {QStringLiteral("491709999999")};
    ASSERT_EQ(WorkNotification::GetErrorCode(sync(MESSAGE_CONFIG_FILTER_SMS, QVariant::fromValue(filter))),
              0);

    auto received = listen(MESSAGE_RPT_RECEIVE_SMS);
    auto filtered = listen(MESSAGE_RPT_RECEIVE_FILTER_SMS);
    ASSERT_TRUE(_sim->control("sms +491701234567 Hello").value("ok").toBool());
    ASSERT_TRUE(_sim->control("sms +491709999999 Secret").value("ok").toBool());
    ASSERT_TRUE(waitUntil([&] { return received->size() == 1 && filtered->size() == 1; }, 6s));
    const auto plain = WorkNotification::GetValueObject(received->front().userInfo).value<BLSmsListItem>();
    EXPECT_EQ(plain.strAddress, "+491701234567");
    EXPECT_EQ(WorkNotification::GetErrorCode(filtered->front().userInfo), 0);
    EXPECT_EQ(WorkNotification::GetRequester(filtered->front().userInfo), "QTimer");
    NotificationCenter::defaultCenter().removeObserver(&_module);
}
