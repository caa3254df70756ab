// The Connect tab dialling through the stand-in pppd, and the Statistics tab the links feed.

#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QTimer>

#include <csignal>
#include <fstream>
#include <unistd.h>

#include "Connect/ConnectPlugin.h"
#include "Connector/ConnectController.h"
#include "DialupReadiness.h"
#include "GuiTestSupport.h"
#include "LocaleFormat.h"
#include "QuitOnSignals.h"
#include "Statistics/BudgetDialog.h"
#include "Statistics/CNSTrafficChart.h"
#include "Statistics/StatisticsPlugin.h"
#include "StatusBarView.h"

using namespace std::chrono_literals;

namespace {

// The connect tab once the modem is ready and the button can be pressed; nullptr when it does not get there.
ConnectPlugin* ReadyConnectTab(GuiWorld& world) {
    auto* tab = world.showReady<ConnectPlugin>("connect");
    auto* button = tab ? tab->findChild<QPushButton*>("connectButton") : nullptr;
    return button && waitForGui([&] { return button->isEnabled(); }, 20s) ? tab : nullptr;
}

bool ConnectStateIs(ConnectPlugin* tab, int state, std::chrono::milliseconds limit = 30s) {
    return waitForGui([&] { return tab->controller()->connectState() == state; }, limit);
}

} // namespace

// The dial-up service is created first; then the SIM's profiles are offered, the default chosen. The
// counters follow the interface's; the link in progress already counts for today in the statistics, and
// the ended one is saved there once. The controller hangs up at once: no confirmation is asked for.
TEST(ConnectStatisticsGui, ConnectShowsCountersDisconnectRecordsTheDay) {
    GuiWorld world;
    auto* tab = ReadyConnectTab(world);
    ASSERT_NE(tab, nullptr);
    auto* button = Child<QPushButton>(tab, "connectButton");
    auto* profiles = Child<QComboBox>(tab, "profiles");
    const QString pidFile = world.pppDir() + "/run/ppp-VELMODEM1.pid";
    ASSERT_TRUE(waitForGui([&] { return profiles->count() > 0; }));
    EXPECT_TRUE(profiles->isEnabled());
    EXPECT_EQ(profiles->currentIndex(), tab->controller()->defaultIndex());

    button->click();
    ASSERT_TRUE(ConnectStateIs(tab, ConnectController::kConnected));
    ASSERT_TRUE(waitForGui([&] { return world.window().statusView()->connected(); }));
    EXPECT_TRUE(QFile::exists(pidFile));
    EXPECT_EQ(button->text(), "Disconnect");
    EXPECT_TRUE(button->isEnabled());
    EXPECT_FALSE(profiles->isEnabled());
    EXPECT_EQ(TextOf(tab, "connectState"), "Connected");

    const quint64 sent = 123456, received = 7654321; // as the kernel counts them
    std::ofstream(QString(world.pppDir() + "/net/ppp0/statistics/tx_bytes").toStdString()) << sent << "\n";
    std::ofstream(QString(world.pppDir() + "/net/ppp0/statistics/rx_bytes").toStdString())
        << received << "\n";
    ASSERT_TRUE(Shows(Child<QLabel>(tab, "sent"), Exactly(LocaleFormat::dataSize(sent))));
    ASSERT_TRUE(Shows(Child<QLabel>(tab, "received"), Exactly(LocaleFormat::dataSize(received))));
    EXPECT_NE(TextOf(tab, "duration"), "–");
    // The dial made the SIM known: a budget set in its dialog counts the link in progress.
    auto* stats = world.show<StatisticsPlugin>("statistics");
    ASSERT_NE(stats, nullptr);
    Child<QPushButton>(stats, "budgetSet")->click();
    auto* dialog = Child<BudgetDialog>(stats, "budgetDialog");
    for (const auto& [typed, problem] : {std::pair{"", "Give a size"}, {"16 parsecs", "not a size"}}) {
        Child<QLineEdit>(dialog, "budgetSize")->setText(typed);
        dialog->accept();
        EXPECT_TRUE(dialog->isVisible() && TextOf(dialog, "budgetProblem").contains(problem)) << typed;
    }
    Child<QLineEdit>(dialog, "budgetSize")->setText("16 MB");
    dialog->accept();
    EXPECT_TRUE(Shows(Child<QLabel>(stats, "periodReceived"), Exactly(LocaleFormat::dataSize(received))));
    EXPECT_TRUE(waitForGui([&] { return Child<QProgressBar>(stats, "budgetBar")->value() == 46; }))
        << TextOf(stats, "budgetText").toStdString();

    world.show<ConnectPlugin>("connect");
    button->click();
    ASSERT_TRUE(ConnectStateIs(tab, ConnectController::kDisconnected, 20s));
    ASSERT_TRUE(waitForGui([&] { return !QFile::exists(pidFile); }));
    EXPECT_TRUE(
        waitForGui([&] { return !world.window().statusView()->connected() && button->text() == "Connect"; }));
    EXPECT_TRUE(profiles->isEnabled());
    EXPECT_EQ(TextOf(tab, "received"), LocaleFormat::dataSize(received)); // the last link's stay in view

    world.show<StatisticsPlugin>("statistics");
    auto* chart = Child<CNSTrafficChart>(stats, "chart");
    const QDate today = QDate::currentDate();
    ASSERT_TRUE(waitForGui([&] {
        return chart->homeBytes(today) + chart->roamingBytes(today) == sent + received;
    })) << chart->homeBytes(today)
        << " + " << chart->roamingBytes(today);
    EXPECT_EQ(TextOf(stats, "periodTotal"), LocaleFormat::dataSize(sent + received));
    EXPECT_EQ(TextOf(stats, "resetReceived"), LocaleFormat::dataSize(received));
    Child<QPushButton>(stats, "budgetClear")->click();
    EXPECT_TRUE(Child<QProgressBar>(stats, "budgetBar")->isHidden());
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
        ASSERT_TRUE(ConnectStateIs(tab, ConnectController::kConnected));
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

// A user who cannot write the peers folder: the Connect tab offers the SIM's profiles at once, and its
// Connect button says why a password is asked before pkexec (a stand-in here) sets up the service.
TEST(ConnectPrivilegeGui, ProfilesFirstThenTheExplainedPasswordStep) {
    if (getuid() == 0 ||
        DialupReadiness::dialBlocker(DialupReadiness::check(DialupReadiness::Facts::fromSystem())))
        GTEST_SKIP() << "runs as a user of group dip (CTest's gui_connect_as_user does so)";
    QTemporaryDir stage;
    // pkexec's stand-in gives the rights the administrator's password would give, and notes its call.
    const QString pkexec = stage.path() + "/pkexec";
    std::ofstream(pkexec.toStdString())
        << "#!/bin/sh\necho \"$@\" >> \"$0.log\"\nchmod u+w \"$DIALTONE_PEERS_DIR\"\nexec \"$@\"\n";
    QFile::setPermissions(pkexec, QFile::ReadOwner | QFile::ExeOwner);
    setenv("DIALTONE_PKEXEC", pkexec.toLocal8Bit().constData(), 1);
    GuiWorld world;
    ASSERT_TRUE(world.started());
    QFile::setPermissions(world.pppDir() + "/peers", QFile::ReadOwner | QFile::ExeOwner);
    auto* tab = ReadyConnectTab(world);
    ASSERT_NE(tab, nullptr);
    ASSERT_TRUE(waitForGui([&] { return Child<QComboBox>(tab, "profiles")->count() > 0; }, 20s));
    EXPECT_TRUE(tab->controller()->waitingForPrivilegedStep());
    EXPECT_FALSE(QFile::exists(pkexec + ".log")) << "nothing asked before the user connects";

    QString explanation;
    QTimer::singleShot(200ms, [&] {
        auto* box = tab->findChild<QMessageBox*>("privilegeExplanation");
        if (!box)
            return;
        explanation = box->text();
        for (QAbstractButton* choice : box->buttons())
            if (box->buttonRole(choice) == QMessageBox::AcceptRole)
                choice->click();
    });
    Child<QPushButton>(tab, "connectButton")->click();
    EXPECT_TRUE(explanation.contains("administrator's password once")) << explanation.toStdString();
    ASSERT_TRUE(ConnectStateIs(tab, ConnectController::kConnecting, 20s));
    EXPECT_NE(std::ifstream((pkexec + ".log").toStdString()).peek(), EOF) << "pkexec ran";
    EXPECT_TRUE(QFile::exists(world.pppDir() + "/peers/VELMODEM1"));
    unsetenv("DIALTONE_PKEXEC");
}

TEST(StatisticsPeriods, MonthsAroundTheirEdges) {
    using P = StatisticsPlugin;
    // clang-format off
    const struct { P::Period period; QDate today, first, last; } rows[] = {
        {P::ThisMonth, QDate(2024, 5, 17), QDate(2024, 5, 1), QDate(2024, 5, 17)},
        {P::ThisMonth, QDate(2024, 5, 1), QDate(2024, 5, 1), QDate(2024, 5, 1)},
        {P::LastMonth, QDate(2024, 3, 31), QDate(2024, 2, 1), QDate(2024, 2, 29)},
        {P::LastMonth, QDate(2025, 1, 10), QDate(2024, 12, 1), QDate(2024, 12, 31)},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.today.toString(Qt::ISODate).toStdString());
        EXPECT_EQ(P::periodDays(row.period, row.today), std::make_pair(row.first, row.last));
    }
}

TEST(TrafficChartDays, RowsLandOnTheirDayOrNowhere) {
    ensureGuiApplication();
    using I = _TrafficStaticsItem; // sent and received at home, then roaming
    CNSTrafficChart chart;
    // A second row for a day adds up; a day after the range, "2024-03-01" and "garbage" land nowhere.
    // clang-format off
    chart.setDays(QDate(2024, 2, 27), QDate(2024, 3, 2),
                  {{"2024/02/27", I{1, 2, 0, 0, 0}}, {"2024/02/29", I{10, 20, 300, 400, 0}}, {"2024/02/29", I{1, 1, 1, 1, 0}},
                   {"2024/03/03", I{5, 5, 5, 5, 0}}, {"2024-03-01", I{7, 7, 7, 7, 0}}, {"garbage", I{9, 9, 9, 9, 0}},
                   {"2024/03/02", I{UINT64_MAX, 5, 0, 0, 0}}});
    EXPECT_EQ(chart.dayCount(), 5);
    const struct { QDate day; quint64 home, roaming; } rows[] = {
        {QDate(2024, 2, 27), 3, 0}, {QDate(2024, 2, 28), 0, 0}, {QDate(2024, 2, 29), 32, 702}, {QDate(2024, 3, 1), 0, 0},
        {QDate(2024, 3, 2), UINT64_MAX, 0}, {QDate(2024, 3, 3), 0, 0}, {QDate(2024, 2, 26), 0, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.day.toString(Qt::ISODate).toStdString());
        EXPECT_EQ(chart.homeBytes(row.day), row.home);
        EXPECT_EQ(chart.roamingBytes(row.day), row.roaming);
    }

    // A reversed range shows nothing; a very long one keeps its last days.
    chart.setDays(QDate(2024, 3, 2), QDate(2024, 2, 27), {{"2024/02/29", I{1, 1, 1, 1, 0}}});
    EXPECT_EQ(chart.dayCount(), 0);
    chart.setDays(QDate(2000, 1, 1), QDate(2024, 3, 2), {{"2024/03/02", I{1, 1, 0, 0, 0}}});
    EXPECT_EQ(chart.dayCount(), CNSTrafficChart::kMaxDays);
    EXPECT_EQ(chart.homeBytes(QDate(2024, 3, 2)), 2u);
    chart.resize(400, 200);
    chart.grab(); // paints every bar without overflow
}
