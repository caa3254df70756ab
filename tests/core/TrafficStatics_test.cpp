#include "AppConfig.h"
#include "Statistics/TrafficStatics.h"
#include "TempHome.h"

#include <QFileInfo>

namespace {

QDateTime noonOf(int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(12, 0));
}

TEST(TrafficStatics, DayKeyAndDayText) {
    // clang-format off
    // the day's key, its text, and the date and time as the totals record them
    const struct { QDateTime date; const char* texts; } rows[] = {
        {QDateTime(QDate(2023, 12, 31), QTime(23, 59, 59)), "2023/12/31 2023-12-31 2023-12-31 23-59-59"},
        {QDateTime(QDate(2024, 2, 29), QTime(7, 5, 9)), "2024/02/29 2024-02-29 2024-02-29 07-05-09"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(TrafficStatics::getKeyOfDate(row.date) + " " + TrafficStatics::dayTextOfDate(row.date) +
                      " " + TrafficStatics::getDateTimeStringYMD(row.date) + " " +
                      TrafficStatics::getDateTimeStringHMS(row.date),
                  row.texts);
}

TEST(TrafficStatics, BadCountersCountAsZero) {
    // clang-format off
    const struct { const char* stored; quint64 afterAddingTen; } rows[] = {
        {"<integer>-5</integer>", 10}, {"<string>12</string>", 10}, {"<true/>", 10}, {"<real>3.7</real>", 13}, {"<real>-3.7</real>", 10},
        {"<dict/>", 10}, {"<integer>18446744073709551615</integer>", 9}, // wraps as unsigned 64-bit arithmetic does
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stored);
        TempHome home;
        AppConfig config;
        TrafficStatics store(config);
        TempHome::writeFile(
            store.dateTrafficsPath(),
            dayTrafficFile(QByteArray("<key>2024/03/01</key><dict><key>NOROAMING SENDBYTES</key>") +
                           row.stored + "</dict>"));
        EXPECT_TRUE(store.updateDateStatisticsWithItem({10, 0, 0, 0, 0}, noonOf(2024, 3, 1)));
        EXPECT_EQ(TrafficStatics::counterValue(
                      store.searchADateDictionaryForKey("2024/03/01").value("NOROAMING SENDBYTES")),
                  row.afterAddingTen);
    }
}

TEST(TrafficStatics, MissingDayFileIsCreatedAndRemoveDeletesIt) {
    TempHome home;
    AppConfig config;
    TrafficStatics store(config);
    ASSERT_TRUE(store.updateDateStatisticsWithItem({1, 2, 3, 4, 0}, noonOf(2024, 5, 1)));
    EXPECT_TRUE(store.removeAllStatisticsItems());
    EXPECT_FALSE(QFileInfo::exists(store.dateTrafficsPath()));
    EXPECT_TRUE(store.removeAllStatisticsItems());
    EXPECT_TRUE(store.arrayDateStatisticsFromDate(noonOf(2024, 5, 1), noonOf(2024, 5, 1)).isEmpty());
}

} // namespace
