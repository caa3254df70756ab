#include "AppConfig.h"
#include "BLRecords.h"
#include "Connector/ConnectController.h"
#include "Connector/ProfileSettingsController.h"
#include "QtEventLoop.h"
#include "RecordingTransport.h"
#include "Statistics/TrafficStatics.h"
#include "TempHome.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <memory>
#include <optional>

namespace {

APNInfo profile(const QString& name) {
    APNInfo p;
    p.strAccount = name;
    p.strDialNum = "*99#";
    p.strApn = name.toLower();
    return p;
}

// A home of its own, the service tool replaced by a script that notes its arguments, and fresh
// process-wide controller state.
class ConnectControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        registerRecordMetaTypes();
        ConnectController::resetProcessState();
        home.useResources("X one\t26201\t*99#\t\t\tx1\t0\t\t\t\t\r\n"
                          "X two\t26201\t\t\t\tx2\t0\t\t\t\t\r\n",
                          "26201\tTelekom\r\n");
        const QString resources = home.path() + "/Resources";
        TempHome::writeFile(
            resources + "/VELModemService",
            "#!/bin/sh\necho \"$@\" >> \"$(dirname \"$0\")/calls\"\n"
            "[ -n \"$STUB_EXIT\" ] || touch \"$DIALTONE_PEERS_DIR/$2\"\nexit ${STUB_EXIT:-0}\n");
        QDir().mkpath(home.path() + "/peers");
        qputenv("DIALTONE_PEERS_DIR", QFile::encodeName(home.path() + "/peers"));
        QFile::setPermissions(resources + "/VELModemService",
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        config = std::make_unique<AppConfig>();
        traffic = std::make_unique<TrafficStatics>(*config);
        modem = std::make_unique<RecordedLink>();
        controller = std::make_unique<ConnectController>(modem->link, config.get(), traffic.get());
        controller->setEchoSink([this](const QString& line) { echoed << line; });
    }
    void TearDown() override {
        controller.reset();
        modem.reset();
        qunsetenv("STUB_EXIT");
        qunsetenv("DIALTONE_PEERS_DIR");
    }

    QStringList toolCalls() const {
        return QString::fromLocal8Bit(TempHome::readFile(home.path() + "/Resources/calls"))
            .split('\n', Qt::SkipEmptyParts);
    }

    // Makes the connector ready with the offered list published, as at start-up.
    void ready() {
        config->deviceInfo().blOK = true;
        config->deviceInfo().strImsi = "262011234567890";
        settings.emplace(*config).chooseProfilesForSIM("");
        initAnswered(WORKER_OK);
    }
    // Ready, the button pressed and the link reported up.
    void connected() {
        ready();
        controller->actionForButtonConnect();
        polled(ConnectController::kConnected);
    }
    RecordingTransport& worker() { return *modem->transport; }
    void answer(const QString& name, int code, const QVariant& value = {}) {
        worker().answer(name, code, value);
    }
    void initAnswered(int code, ConnectController* subject = nullptr) {
        (subject ? subject : controller.get())->modemInit();
        answer(MESSAGE_MODEM_INIT, code, QStringLiteral("VELMobileConnector1"));
    }
    // One round of the status poll, answered.
    void polled(int status) {
        controller->actionTimerStatusChecker();
        answer(MESSAGE_CONNECT_STATUS, WORKER_OK, status);
    }
    void sampled(quint32 seconds, quint64 sent, quint64 received) {
        controller->actionTimerStatusChecker();
        answer(MESSAGE_CONNECT_GET_STATISTICS, WORKER_OK,
               QVariant::fromValue(BLConnectStatistics{seconds, sent, received}));
    }
    // A day's saved counters: sent, received, seconds.
    std::vector<quint64> day(const QDateTime& date) const {
        const QVariantList days = traffic->arrayDateStatisticsFromDate(date, date);
        const QVariantMap entry = days.value(0).toMap().value(TrafficStatics::getKeyOfDate(date)).toMap();
        return {TrafficStatics::counterValue(entry.value(TrafficStatics::kNoRoamingSendKey)),
                TrafficStatics::counterValue(entry.value(TrafficStatics::kNoRoamingReceiveKey)),
                TrafficStatics::counterValue(entry.value(TrafficStatics::kConnectTimeKey))};
    }

    TempHome home;
    std::unique_ptr<RecordedLink> modem;
    std::unique_ptr<AppConfig> config;
    std::unique_ptr<TrafficStatics> traffic;
    std::optional<ProfileSettingsController> settings;
    std::unique_ptr<ConnectController> controller;
    QStringList echoed;
};

TEST_F(ConnectControllerTest, NoProfileToDialAsksForAWarning) {
    QStringList warnings;
    QObject::connect(controller.get(), &ConnectController::warningRequested,
                     [&](const QString&, const QString& message, const QString&) { warnings << message; });
    initAnswered(WORKER_OK);
    controller->actionForButtonConnect();
    EXPECT_EQ(warnings, QStringList{"IDS_DIALUP_CANTFIND"});
    EXPECT_EQ(worker().count(MESSAGE_CONNECT_DIALUP), 0);
}

TEST_F(ConnectControllerTest, MissingServiceIsCreatedOnceThenRetriedNineteenTimes) {
    initAnswered(WORKER_ERR_SERVICE_NOT_FOUND);
    EXPECT_TRUE(controller->serviceCreated());
    EXPECT_EQ(toolCalls(), (QStringList{"VELMobileConnector1 VELMODEM1"}));
    ASSERT_EQ(echoed.size(), 1);
    EXPECT_TRUE(echoed[0].endsWith("/\"VELModemService VELMobileConnector1 VELMODEM1"))
        << echoed[0].toStdString();
    EXPECT_EQ(worker().count(MESSAGE_MODEM_INIT), 2);

    for (int i = 1; i <= 19; ++i) {
        answer(MESSAGE_MODEM_INIT, WORKER_ERR_SERVICE_NOT_FOUND, QStringLiteral("VELMobileConnector1"));
        ASSERT_EQ(worker().count(MESSAGE_MODEM_INIT), 2 + i) << "retry " << i;
    }
    answer(MESSAGE_MODEM_INIT, WORKER_ERR_SERVICE_NOT_FOUND, QStringLiteral("VELMobileConnector1"));
    EXPECT_EQ(worker().count(MESSAGE_MODEM_INIT), 21);
    EXPECT_EQ(toolCalls().size(), 1);

    // The next service takes the next number: the first one's peer exists.
    ConnectController::resetProcessState();
    ConnectController second(modem->link, config.get(), nullptr);
    second.setEchoSink([](const QString&) {});
    initAnswered(WORKER_ERR_SERVICE_NOT_FOUND, &second);
    EXPECT_TRUE(toolCalls().contains("VELMobileConnector1 VELMODEM2"));
}

// A service the tool cannot create ends the application.
TEST_F(ConnectControllerTest, ModemInitCodes) {
    // clang-format off
    const struct { int code; bool toolFails; int initsSent; bool ready; } rows[] = {
        {WORKER_OK, false, 0, true}, {WORKER_ERR_NO_DEV_NAME, false, 0, false} /* no retry */,
        {WORKER_ERR_NO_MODE_DEV, false, 1, false} /* tried again */, {WORKER_ERR_GENERAL, false, 0, false} /* ignored */,
        {WORKER_ERR_SERVICE_NOT_FOUND, true, 0, false},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        ConnectController::resetProcessState();
        row.toolFails ? qputenv("STUB_EXIT", "1") : qunsetenv("STUB_EXIT");
        const int before = worker().count(MESSAGE_MODEM_INIT) + 1;
        ConnectController subject(modem->link, config.get(), nullptr);
        subject.setEchoSink([](const QString&) {});
        int failed = 0;
        QObject::connect(&subject, &ConnectController::serviceCreationFailed, [&] { ++failed; });
        initAnswered(row.code, &subject);
        EXPECT_EQ(worker().count(MESSAGE_MODEM_INIT) - before, row.initsSent);
        EXPECT_EQ(subject.connectorReady(), row.ready);
        EXPECT_EQ(failed, row.toolFails ? 1 : 0);
        EXPECT_FALSE(subject.serviceCreated());
    }
}

// The profile's own dial number is dialled, even an empty one; the status poll starts a second later.
TEST_F(ConnectControllerTest, RepeatedStatesAreAnnouncedOnceAndTrafficIsSavedOncePerDisconnection) {
    ready();
    QList<int> announced;
    NotificationCenter::defaultCenter().addObserver(CONNECT_STATE, &announced, [&](const Notification& n) {
        announced << n.userInfo.value(KEY_VALUE_OBJECT).toInt();
    });
    controller->selectProfileIndex(1); // "X two" has no dial number
    controller->actionForButtonConnect();
    ASSERT_EQ(worker().count(MESSAGE_CONNECT_DIALUP), 1);
    const auto dial = worker().argument(MESSAGE_CONNECT_DIALUP).value<BLConnectDialinfo>();
    EXPECT_EQ(dial.strDialNumber + "|" + dial.strAPN, "|x2");
    EXPECT_EQ(controller->connectState(), ConnectController::kConnecting);
    EXPECT_EQ(controller->buttonTitleKey(), "IDS_DISCONNECT");
    EXPECT_EQ(ConnectController::lastAnnouncedState(), ConnectController::kAnnounceConnecting);
    EXPECT_TRUE(
        waitFor([&] { return worker().count(MESSAGE_CONNECT_STATUS) == 1; }, std::chrono::seconds(3)));
    EXPECT_EQ(worker().count(MESSAGE_CONNECT_GET_STATISTICS), 1);
    for (const int status :
         {ConnectController::kConnecting, ConnectController::kConnected, ConnectController::kConnected}) {
        polled(status);
        sampled(5, 1000, 7000);
    }
    controller->actionForButtonConnect(); // connected: the press hangs up
    EXPECT_EQ(worker().count(MESSAGE_CONNECT_DISCONNECT), 1);
    polled(ConnectController::kDisconnected);
    polled(ConnectController::kDisconnected);
    controller->applicationWillTerminate();
    NotificationCenter::defaultCenter().removeObserver(&announced);

    EXPECT_EQ(announced, (QList<int>{0, 2, 1, 3}));
    EXPECT_EQ(controller->buttonTitleKey(), "IDS_CONNECT");
    EXPECT_EQ(day(QDateTime::currentDateTime()), (std::vector<quint64>{1000, 7000, 5}));
    EXPECT_EQ(traffic->getTotalStatics(), (_TrafficStaticsItem{1000, 7000, 0, 0, 5}));
}

TEST_F(ConnectControllerTest, UnplugReportEndsTheLinkAndAPollWithoutAModemRests) {
    connected();
    // The stick is pulled: the worker reports the status without a value.
    worker().report(MESSAGE_CONNECT_STATUS);
    EXPECT_EQ(controller->connectState(), ConnectController::kDisconnected);
    EXPECT_EQ(ConnectController::lastAnnouncedState(), ConnectController::kAnnounceDisconnected);
    // A poll the link fails for want of a modem is not an answer: no further round follows it.
    const int polls = worker().count(MESSAGE_CONNECT_STATUS);
    EXPECT_TRUE(waitFor([&] { return worker().count(MESSAGE_CONNECT_STATUS) == polls + 1; }));
    answer(MESSAGE_CONNECT_STATUS, WORKER_ERR_NO_DATA_DEVICE);
    QElapsedTimer clock;
    clock.start();
    waitFor([&] { return clock.elapsed() > ConnectController::kStatusIntervalMs + 300; });
    EXPECT_EQ(worker().count(MESSAGE_CONNECT_STATUS), polls + 1);
}

TEST_F(ConnectControllerTest, AResetWhileTheControllerRunsIsNotUndoneByTheNextSave) {
    connected();
    sampled(5, 1000, 7000);
    controller->saveTrafficStaticsData();
    ASSERT_TRUE(traffic->saveResetDate()); // the statistics view's reset
    sampled(2, 10, 20);
    controller->saveTrafficStaticsData();
    EXPECT_EQ(traffic->getTotalStatics(), (_TrafficStaticsItem{10, 20, 0, 0, 2}));
}

TEST_F(ConnectControllerTest, RoamingTrafficGoesToTheRoamingPairAndSamplesAreSetNotAdded) {
    NotificationCenter::defaultCenter().post(
        NETWORK_UPDATE, nullptr, {{KEY_ROAMSTATE, 1}, {KEY_GPRSSTATE, 1}, {KEY_OPERATOR, "Abroad"}});
    EXPECT_TRUE(controller->roaming());
    sampled(3, 100, 200);
    sampled(4, 150, 400);
    const auto pending = [this] {
        const _TrafficStaticsItem item = controller->pendingDayItem();
        return std::vector<quint64>{item.noRoamingSendBytes, item.roamingSendBytes, item.roamingReceiveBytes};
    };
    EXPECT_EQ(pending(), (std::vector<quint64>{0, 150, 400}));

    // A failed sample and one without a link leave the session's counts alone.
    controller->actionTimerStatusChecker();
    answer(MESSAGE_CONNECT_GET_STATISTICS, WORKER_ERR_GENERAL);
    sampled(0, 0, 0);
    EXPECT_EQ(controller->latestStatistics().nSentBytes, 150u);
    EXPECT_EQ(pending(), (std::vector<quint64>{0, 150, 400}));
}

// The link's running counts are split at midnight: each day, and the totals, count each byte once.
TEST_F(ConnectControllerTest, ALinkPastMidnightBringsItsEarlierTrafficToTheNewDay) {
    connected();
    sampled(3600, 1000, 7000);
    const QDateTime now = QDateTime::currentDateTime();
    ConnectController::setCurrentDay(now.addDays(-1));
    sampled(3700, 1500, 9000); // the first sample of the new day closes yesterday
    sampled(3800, 1600, 9500);
    controller->saveTrafficStaticsData();
    EXPECT_EQ(day(now.addDays(-1)), (std::vector<quint64>{1500, 9000, 3700}));
    // Kept for the day history's users: the new day holds the link's running totals.
    EXPECT_EQ(day(now), (std::vector<quint64>{1600, 9500, 3800}));
    EXPECT_EQ(traffic->getTotalStatics(), (_TrafficStaticsItem{3100, 18500, 0, 0, 7500}));
}

TEST_F(ConnectControllerTest, DeletingTheUsersDefaultLeavesNoDefault) {
    settings.emplace(*config);
    settings->addProfile(profile("First"));
    settings->addProfile(profile("Second"));
    ASSERT_TRUE(settings->setDefaultProfile(1));
    EXPECT_EQ(settings->defaultProfileName(), "Second");
    EXPECT_TRUE(settings->deleteProfile(0));
    EXPECT_FALSE(config->isSetDefaultUserApn());
    EXPECT_FALSE(settings->deleteProfile(5));
    EXPECT_FALSE(settings->setDefaultProfile(AppConfig::kIMSIListIndexBase + 3));
}

} // namespace
