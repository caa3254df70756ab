// The connect tab dialling through the stand-in pppd, its counters, the statistics tab fed by the ended
// link, and the statistics tab's own pieces (periods, the chart's days).

#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>

#include "Connect/ConnectPlugin.h"
#include "Connector/ConnectController.h"
#include "GuiTestSupport.h"
#include "LocaleFormat.h"
#include "QuitOnSignals.h"
#include "Statistics/CNSTrafficChart.h"
#include "Statistics/StatisticsPlugin.h"
#include "StatusBarView.h"

using namespace std::chrono_literals;
using State = ModemLink::State;

namespace {

// The connect tab once the modem is ready and the button can be pressed; nullptr when it does not get there.
ConnectPlugin* ReadyConnectTab(GuiWorld& world) {
    if (!world.started() || !world.waitForState(State::Ready))
        return nullptr;
    auto* tab = world.show<ConnectPlugin>("connect");
    auto* button = tab ? tab->findChild<QPushButton*>("connectButton") : nullptr;
    return button && waitForGui([&] { return button->isEnabled(); }, 20s) ? tab : nullptr;
}

QString LabelText(QWidget* tab, const char* name) {
    auto* label = tab->findChild<QLabel*>(QString::fromLatin1(name));
    return label ? label->text() : QStringLiteral("<no label %1>").arg(QString::fromLatin1(name));
}

// What the stand-in's interface has moved, as the kernel counts it.
void SetCounters(const QString& pppDir, quint64 sent, quint64 received) {
    std::ofstream(QString(pppDir + "/net/ppp0/statistics/tx_bytes").toStdString()) << sent << "\n";
    std::ofstream(QString(pppDir + "/net/ppp0/statistics/rx_bytes").toStdString()) << received << "\n";
}

} // namespace

TEST(ConnectStatisticsGui, ConnectShowsCountersDisconnectRecordsTheDay) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(State::Ready));
    auto* tab = world.show<ConnectPlugin>("connect");
    ASSERT_NE(tab, nullptr);
    auto* button = tab->findChild<QPushButton*>("connectButton");
    auto* profiles = tab->findChild<QComboBox*>("profiles");
    ASSERT_TRUE(button && profiles);
    const QString pidFile = world.pppDir() + "/run/ppp-VELMODEM1.pid";

    // The dial-up service is created first; then the SIM's profiles are offered, the default chosen.
    ASSERT_TRUE(waitForGui([&] { return button->isEnabled(); }, 20s));
    EXPECT_EQ(button->text(), "Connect");
    ASSERT_TRUE(waitForGui([&] { return profiles->count() > 0; }));
    EXPECT_TRUE(profiles->isEnabled());
    EXPECT_EQ(profiles->currentIndex(), tab->controller()->defaultIndex());

    button->click();
    ASSERT_TRUE(waitForGui(
        [&] {
            return tab->controller()->connectState() == ConnectController::kConnected &&
                   world.window().statusView()->connected();
        },
        30s));
    EXPECT_TRUE(QFile::exists(pidFile));
    EXPECT_EQ(button->text(), "Disconnect");
    EXPECT_TRUE(button->isEnabled());
    EXPECT_FALSE(profiles->isEnabled());
    EXPECT_EQ(LabelText(tab, "connectState"), "Connected");

    SetCounters(world.pppDir(), 123456, 7654321);
    ASSERT_TRUE(waitForGui([&] {
        return LabelText(tab, "sent") == LocaleFormat::dataSize(123456) &&
               LabelText(tab, "received") == LocaleFormat::dataSize(7654321);
    })) << LabelText(tab, "sent").toStdString()
        << " / " << LabelText(tab, "received").toStdString();
    EXPECT_NE(LabelText(tab, "duration"), "–");

    // The link in progress already counts for today in the statistics.
    auto* stats = world.show<StatisticsPlugin>("statistics");
    ASSERT_NE(stats, nullptr);
    EXPECT_TRUE(waitForGui([&] {
        return LabelText(stats, "periodReceived") == LocaleFormat::dataSize(7654321);
    })) << LabelText(stats, "periodReceived").toStdString();

    // The controller hangs up at once: no confirmation is asked for.
    world.show<ConnectPlugin>("connect");
    button->click();
    ASSERT_TRUE(waitForGui(
        [&] {
            return tab->controller()->connectState() == ConnectController::kDisconnected &&
                   !QFile::exists(pidFile);
        },
        20s));
    EXPECT_TRUE(
        waitForGui([&] { return !world.window().statusView()->connected() && button->text() == "Connect"; }));
    EXPECT_TRUE(profiles->isEnabled());
    // The last connection's counts stay in view.
    EXPECT_EQ(LabelText(tab, "received"), LocaleFormat::dataSize(7654321));

    // The saved day: once, not also as a link in progress.
    world.show<StatisticsPlugin>("statistics");
    auto* chart = stats->findChild<CNSTrafficChart*>("chart");
    ASSERT_NE(chart, nullptr);
    const QDate today = QDate::currentDate();
    ASSERT_TRUE(waitForGui([&] {
        return chart->homeBytes(today) + chart->roamingBytes(today) == 123456 + 7654321;
    })) << chart->homeBytes(today)
        << " + " << chart->roamingBytes(today);
    EXPECT_EQ(LabelText(stats, "periodSent"), LocaleFormat::dataSize(123456));
    EXPECT_EQ(LabelText(stats, "periodReceived"), LocaleFormat::dataSize(7654321));
    EXPECT_EQ(LabelText(stats, "periodTotal"), LocaleFormat::dataSize(123456 + 7654321));
    EXPECT_EQ(LabelText(stats, "resetReceived"), LocaleFormat::dataSize(7654321));
    EXPECT_EQ(LabelText(stats, "statisticsMessage"), "");
}

// SIGTERM and SIGINT end the app like its Quit: the event loop returns 0 and closing the window hangs up the
// link the app dialled and removes its dial options file.
TEST(ConnectStatisticsGui, TerminationSignalsQuitAndHangUp) {
    for (const int signalNumber : {SIGTERM, SIGINT}) {
        SCOPED_TRACE(signalNumber);
        GuiWorld world;
        auto* tab = ReadyConnectTab(world);
        ASSERT_NE(tab, nullptr);
        tab->findChild<QPushButton*>("connectButton")->click();
        ASSERT_TRUE(waitForGui(
            [&] { return tab->controller()->connectState() == ConnectController::kConnected; }, 30s));
        const QString options = world.home() + "/.local/share/dialtone/VELMODEM1.options";
        const QString pidFile = world.pppDir() + "/run/ppp-VELMODEM1.pid";
        ASSERT_TRUE(QFile::exists(options) && QFile::exists(pidFile));

        const QuitOnSignals quitOnSignals;
        QTimer::singleShot(0, [signalNumber] { std::raise(signalNumber); });
        QTimer giveUp; // gone with this round, so that it cannot end a later test's event loop
        giveUp.callOnTimeout([] { QCoreApplication::exit(3); });
        giveUp.start(10s);
        EXPECT_EQ(QCoreApplication::exec(), 0);
        world.closeWindow();
        EXPECT_FALSE(QFile::exists(options));
        EXPECT_FALSE(QFile::exists(pidFile));
    }
}

TEST(ConnectStatisticsGui, UnplugDisablesTheButtonAndReplugMakesItReadyAgain) {
    GuiWorld world;
    auto* tab = ReadyConnectTab(world);
    ASSERT_NE(tab, nullptr);
    auto* button = tab->findChild<QPushButton*>("connectButton");

    world.sim().control("unplug");
    ASSERT_TRUE(world.waitForState(State::Absent));
    EXPECT_FALSE(button->isEnabled());
    EXPECT_FALSE(tab->findChild<QComboBox*>("profiles")->isEnabled());
    EXPECT_EQ(button->text(), "Connect");

    world.sim().control("plug");
    ASSERT_TRUE(world.waitForState(State::Ready, 30s));
    ASSERT_TRUE(waitForGui([&] { return button->isEnabled(); }, 20s));
    EXPECT_GT(tab->findChild<QComboBox*>("profiles")->count(), 0);
}

TEST(StatisticsPeriods, MonthsAroundTheirEdges) {
    struct Row {
        StatisticsPlugin::Period period;
        QDate today, first, last;
    };
    const Row rows[] = {
        {StatisticsPlugin::ThisMonth, QDate(2024, 5, 17), QDate(2024, 5, 1), QDate(2024, 5, 17)},
        {StatisticsPlugin::ThisMonth, QDate(2024, 5, 1), QDate(2024, 5, 1), QDate(2024, 5, 1)},
        {StatisticsPlugin::LastMonth, QDate(2024, 3, 31), QDate(2024, 2, 1), QDate(2024, 2, 29)},
        {StatisticsPlugin::LastMonth, QDate(2025, 1, 10), QDate(2024, 12, 1), QDate(2024, 12, 31)},
    };
    for (const Row& row : rows) {
        const auto [first, last] = StatisticsPlugin::periodDays(row.period, row.today);
        EXPECT_EQ(first, row.first) << row.today.toString(Qt::ISODate).toStdString();
        EXPECT_EQ(last, row.last) << row.today.toString(Qt::ISODate).toStdString();
    }
}

TEST(TrafficChartDays, RowsLandOnTheirDayOrNowhere) {
    ensureGuiApplication();
    const auto item = [](quint64 homeSent, quint64 homeReceived, quint64 roamSent, quint64 roamReceived) {
        _TrafficStaticsItem i;
        i.noRoamingSendBytes = homeSent;
        i.noRoamingReceiveBytes = homeReceived;
        i.roamingSendBytes = roamSent;
        i.roamingReceiveBytes = roamReceived;
        return i;
    };
    CNSTrafficChart chart;
    chart.setDays(QDate(2024, 2, 27), QDate(2024, 3, 2),
                  {{"2024/02/27", item(1, 2, 0, 0)},
                   {"2024/02/29", item(10, 20, 300, 400)},
                   {"2024/02/29", item(1, 1, 1, 1)}, // a second row for a day adds up
                   {"2024/03/03", item(5, 5, 5, 5)}, // after the range
                   {"2024-03-01", item(7, 7, 7, 7)}, // not a day key
                   {"garbage", item(9, 9, 9, 9)},
                   {"2024/03/02", item(UINT64_MAX, 5, 0, 0)}});
    EXPECT_EQ(chart.dayCount(), 5);
    struct Row {
        QDate day;
        quint64 home, roaming;
    };
    const Row rows[] = {
        {QDate(2024, 2, 27), 3, 0}, {QDate(2024, 2, 28), 0, 0},         {QDate(2024, 2, 29), 32, 702},
        {QDate(2024, 3, 1), 0, 0},  {QDate(2024, 3, 2), UINT64_MAX, 0}, {QDate(2024, 3, 3), 0, 0},
        {QDate(2024, 2, 26), 0, 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(chart.homeBytes(row.day), row.home) << row.day.toString(Qt::ISODate).toStdString();
        EXPECT_EQ(chart.roamingBytes(row.day), row.roaming) << row.day.toString(Qt::ISODate).toStdString();
    }

    // A reversed range shows nothing; a very long one keeps its last days.
    chart.setDays(QDate(2024, 3, 2), QDate(2024, 2, 27), {{"2024/02/29", item(1, 1, 1, 1)}});
    EXPECT_EQ(chart.dayCount(), 0);
    chart.setDays(QDate(2000, 1, 1), QDate(2024, 3, 2), {{"2024/03/02", item(1, 1, 0, 0)}});
    EXPECT_EQ(chart.dayCount(), CNSTrafficChart::kMaxDays);
    EXPECT_EQ(chart.homeBytes(QDate(2024, 3, 2)), 2u);
    chart.resize(400, 200);
    chart.grab(); // paints every bar without overflow
}
