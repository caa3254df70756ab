#include "AppConfig.h"
#include "Statistics/StatisticsController.h"
#include "TempHome.h"

#include <vector>

namespace {

QByteArray day(const char* key, const char* sent, const char* received, const char* roamingSent,
               const char* roamingReceived) {
    return QByteArray("<key>") + key + "</key><dict><key>NOROAMING SENDBYTES</key>" + sent +
           "<key>NOROAMING RECEIVEBYTES</key>" + received + "<key>ROAMING SENDBYTES</key>" + roamingSent +
           "<key>ROAMING RECEIVEBYTES</key>" + roamingReceived + "</dict>";
}

// Days as the store keeps them, in any order, some of them not day entries, chosen by their keys.
TEST(StatisticsController, RangeRowsAndTotals) {
    const auto one = [](const char* key) {
        return day(key, "<integer>1</integer>", "<integer>2</integer>", "<integer>3</integer>",
                   "<integer>4</integer>");
    };
    const _TrafficStaticsItem k{1, 2, 3, 4, 0};
    // clang-format off
    struct Row { const char* name; QByteArray days; QDate from; QDate to; std::vector<StatisticsDayRow> expected; _TrafficStaticsItem total; };
    const Row rows[] = {
        {"keys stored out of order", one("2024/02/02") + one("2024/02/01") + one("2024/01/30") + one("2024/01/31"), QDate(2024, 1, 30),
         QDate(2024, 2, 2), {{"2024/01/30", k}, {"2024/01/31", k}, {"2024/02/01", k}, {"2024/02/02", k}}, {4, 8, 12, 16, 0}},
        {"year boundary", one("2024/01/01") + one("2023/12/31") + one("2023/12/30"), QDate(2023, 12, 31), QDate(2024, 1, 1),
         {{"2023/12/31", k}, {"2024/01/01", k}}, {2, 4, 6, 8, 0}},
        {"range with a day outside and a bad counter",
         day("2024/01/29", "<integer>9</integer>", "<integer>9</integer>", "<integer>9</integer>", "<integer>9</integer>") +
             day("2024/01/31", "<integer>10</integer>", "<integer>20</integer>", "<integer>30</integer>", "<integer>40</integer>") +
             day("2024/02/02", "<integer>-1</integer>", "<string>7</string>", "<integer>3</integer>", "<integer>4</integer>") +
             "<key>2024/02/01</key><string>not a day</string>",
         QDate(2024, 1, 30), QDate(2024, 2, 2), {{"2024/01/31", {10, 20, 30, 40, 0}}, {"2024/02/02", {0, 0, 3, 4, 0}}}, {10, 20, 33, 44, 0}},
        {"sums past the signed range",
         day("2024/03/01", "<integer>9223372036854775808</integer>", "<integer>0</integer>", "<integer>0</integer>", "<integer>0</integer>") +
             day("2024/03/02", "<integer>9223372036854775807</integer>", "<integer>0</integer>", "<integer>0</integer>", "<integer>0</integer>"),
         QDate(2024, 3, 1), QDate(2024, 3, 2), {{"2024/03/01", {quint64(1) << 63, 0, 0, 0, 0}}, {"2024/03/02", {(quint64(1) << 63) - 1, 0, 0, 0, 0}}}, {~quint64(0), 0, 0, 0, 0}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TempHome home;
        AppConfig config;
        StatisticsController controller(config);
        TempHome::writeFile(controller.store().dateTrafficsPath(), dayTrafficFile(row.days));
        const StatisticsRange range = controller.rangeStatistics(row.from, row.to);
        EXPECT_EQ(std::vector<StatisticsDayRow>(range.rows.begin(), range.rows.end()), row.expected);
        EXPECT_EQ(range.total, row.total);
    }
}

} // namespace
