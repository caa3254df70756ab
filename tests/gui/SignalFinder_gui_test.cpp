// The signal finder on the simulated modem, and the signal history in the Statistics tab.
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>

#include "CNSSignalGauge.h"
#include "GuiTestSupport.h"
#include "Network/NetworkPlugin.h"
#include "Statistics/CNSSignalChart.h"
#include "Statistics/SignalHistory.h"
#include "Statistics/StatisticsPlugin.h"

using namespace std::chrono_literals;

TEST(SignalFinderGui, FinderShowsTheSignalAndTheChartTheHistory) {
    GuiWorld world;
    // The simulator's +CSQ: 18 is -77 dBm; the best of the minute is the same while it stays.
    auto* network = world.showReady<NetworkPlugin>("network");
    ASSERT_NE(network, nullptr);
    Child<QPushButton>(network, "findSignal")->click();
    auto* gauge = Child<CNSSignalGauge>(network, "gauge");
    ASSERT_NE(gauge, nullptr);
    EXPECT_TRUE(waitForGui([&] { return gauge->dbm() == -77 && gauge->bestDbm() == -77; }, 20s));
    // The tone starts and stops quietly, also without a sound device.
    auto* tone = Child<QCheckBox>(network, "tone");
    tone->setChecked(true);
    tone->setChecked(false);

    // Minutes of today in the history as the recorder writes them: the bearer changes, then after a gap
    // the cell.
    SignalHistory history;
    const QDate today = QDate::currentDate();
    history.add(SignalSample{-77, 0, 1, 4, 1, 2}, QDateTime(today, QTime(0, 0)));
    history.add(SignalSample{-71, 0, 1, 6, 1, 2}, QDateTime(today, QTime(0, 1)));
    history.add(SignalSample{-93, 0, 1, 6, 1, 3}, QDateTime(today, QTime(0, 5)));
    ASSERT_TRUE(history.flush());
    auto* statistics = world.show<StatisticsPlugin>("statistics");
    ASSERT_NE(statistics, nullptr);
    Child<QComboBox>(statistics, "chartKind")->setCurrentIndex(1);
    auto* chart = Child<CNSSignalChart>(statistics, "signalChart");
    EXPECT_EQ(chart->pointCount(), 3);
    EXPECT_TRUE(
        chart->accessibleDescription().contains("between -93 and -71 dBm; the bearer changed 1 times, "
                                                "the cell 1 times"))
        << chart->accessibleDescription().toStdString();
    EXPECT_FALSE(chart->grab().isNull());
}
