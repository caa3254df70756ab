#include "AppConfig.h"
#include "PropertyList.h"
#include "Statistics/TrafficStatics.h"
#include "TempHome.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <vector>

namespace {

QDateTime noonOf(int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(12, 0));
}

// A day file with the keys in the order given.
QByteArray dayFile(const std::vector<std::pair<std::string, QByteArray>>& days) {
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                     "<key>CREATION_TIME</key><date>2024-01-01T00:00:00Z</date>";
    for (const auto& [key, value] : days)
        xml += "<key>" + QByteArray::fromStdString(key) + "</key>" + value;
    return xml + "</dict></plist>\n";
}

std::vector<std::string> keysOf(const QVariantList& days) {
    std::vector<std::string> keys;
    for (const QVariant& day : days) {
        const QVariantMap one = day.toMap();
        EXPECT_EQ(one.size(), 1);
        keys.push_back(one.firstKey().toStdString());
    }
    return keys;
}

QStringList keptFiles(const TempHome& home) {
    return QDir(home.userData()).entryList({"DateTraffics.plist.damaged-*"}, QDir::Files, QDir::Name);
}

QByteArray truncatedBinaryPlist() {
    plist_t root = plist_new_dict();
    plist_dict_set_item(root, "2024/01/31", plist_new_uint(42));
    char* bin = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &bin, &length);
    QByteArray bytes(bin, static_cast<int>(length));
    std::free(bin);
    plist_free(root);
    return bytes.left(bytes.size() - 12);
}

TEST(TrafficStatics, DayKeyAndDayText) {
    // clang-format off
    // the day's key, its text, and the date and time as the totals record them
    const struct { QDateTime date; const char* texts; } rows[] = {
        {QDateTime(QDate(2024, 1, 31), QTime(0, 0, 0)), "2024/01/31 2024-01-31 2024-01-31 00-00-00"},
        {QDateTime(QDate(2023, 12, 31), QTime(23, 59, 59)), "2023/12/31 2023-12-31 2023-12-31 23-59-59"},
        {QDateTime(QDate(2024, 2, 29), QTime(7, 5, 9)), "2024/02/29 2024-02-29 2024-02-29 07-05-09"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(
            QStringList({TrafficStatics::getKeyOfDate(row.date), TrafficStatics::dayTextOfDate(row.date),
                         TrafficStatics::getDateTimeStringYMD(row.date),
                         TrafficStatics::getDateTimeStringHMS(row.date)})
                .join(' '),
            row.texts);
}

TEST(TrafficStatics, AddingToADaySumsInUnsignedCounters) {
    TempHome home;
    AppConfig config;
    TrafficStatics store(config);
    const quint64 big = (quint64(1) << 63) + 5; // past the signed range of the file's integers
    store.updateDateStatisticsWithItem({100, 200, 3, 4, 60}, noonOf(2024, 1, 31));
    store.updateDateStatisticsWithItem({big, 1, 10, 20, 60}, QDateTime(QDate(2024, 1, 31), QTime(23, 59)));
    store.updateDateStatisticsWithItem({7, 7, 7, 7, 0}, noonOf(2024, 2, 1));

    TrafficStatics reread(config);
    const QVariantMap days = reread.getDateTrafficsDictionary();
    EXPECT_TRUE(days.contains("CREATION_TIME"));
    const QVariantMap day = reread.searchADateDictionaryForKey("2024/01/31");
    std::vector<quint64> counters;
    for (const char* key :
         {"NOROAMING SENDBYTES", "NOROAMING RECEIVEBYTES", "ROAMING SENDBYTES", "ROAMING RECEIVEBYTES"})
        counters.push_back(TrafficStatics::counterValue(day.value(key)));
    EXPECT_EQ(counters, (std::vector<quint64>{big + 100, 201, 13, 24}));
    EXPECT_EQ(day.size(), 4);
    EXPECT_EQ(TrafficStatics::counterValue(
                  reread.searchADateDictionaryForKey("2024/02/01").value("ROAMING SENDBYTES")),
              7u);
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
        TempHome::writeFile(store.dateTrafficsPath(),
                            dayFile({{"2024/03/01", QByteArray("<dict><key>NOROAMING SENDBYTES</key>") +
                                                        row.stored + "</dict>"}}));
        EXPECT_TRUE(store.updateDateStatisticsWithItem({10, 0, 0, 0, 0}, noonOf(2024, 3, 1)));
        EXPECT_EQ(TrafficStatics::counterValue(
                      store.searchADateDictionaryForKey("2024/03/01").value("NOROAMING SENDBYTES")),
                  row.afterAddingTen);
    }
}

TEST(TrafficStatics, TotalsDictionary) {
    const QVariantMap plain = TrafficStatics::createDictStaticsByStaticsItem({1, 2, 3, 4, 5});
    EXPECT_EQ(plain.keys(), (QStringList{"CONNECTTIME", "NOROAMING RECEIVEBYTES", "NOROAMING SENDBYTES"}));
    const QVariantMap timed = TrafficStatics::createStaticsRecordByHMS("10-11-12", {1, 2, 3, 4, 5});
    EXPECT_EQ(timed.value("SAVE_TIME").toString(), "10-11-12");

    _TrafficStaticsItem item{1, 1, 1, 1, 1};
    TrafficStatics::getStaticsByDictStatics(
        {{"NOROAMING SENDBYTES", -4}, {"NOROAMING RECEIVEBYTES", "x"}, {"CONNECTTIME", quint64(1) << 40}},
        &item);
    EXPECT_EQ(item, (_TrafficStaticsItem{1, 1, 1, 1, std::numeric_limits<quint32>::max()}));
}

TEST(TrafficStatics, DamagedDayFileIsKeptAsideAndReplaced) {
    static const char kGarbage[] = "\x00\xff<plist><dict><key>";
    const std::pair<const char*, QByteArray> rows[] = {
        {"empty", QByteArray()},
        {"garbage", QByteArray(kGarbage, sizeof kGarbage - 1)},
        {"array", dayFile({}).replace("<dict>", "<array>").replace("</dict>", "</array>")},
        {"wrong root type", "<plist version=\"1.0\"><string>2024/01/31</string></plist>"},
        {"truncated binary", truncatedBinaryPlist()},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        TempHome home;
        const QString logPath = home.openLog();
        AppConfig config;
        TrafficStatics store(config);
        TempHome::writeFile(store.dateTrafficsPath(), bytes);

        EXPECT_TRUE(store.arrayDateStatisticsFromDate(noonOf(2024, 1, 1), noonOf(2024, 12, 31)).isEmpty());
        const QVariantMap fresh = PropertyList::readMap(store.dateTrafficsPath());
        EXPECT_EQ(fresh.keys(), QStringList{"CREATION_TIME"});
        QStringList kept = keptFiles(home);
        ASSERT_EQ(kept.size(), 1);
        EXPECT_EQ(TempHome::readFile(home.userFile(kept.first())), bytes);
        EXPECT_TRUE(TempHome::readFile(logPath).contains("[-CNSLOG_ERROR-]")) << logPath.toStdString();

        // Damaged again within the same second: the first kept file stays as it was.
        TempHome::writeFile(store.dateTrafficsPath(), "second damage");
        store.updateDateStatisticsWithItem({1, 1, 1, 1, 0}, noonOf(2024, 1, 31));
        kept = keptFiles(home);
        ASSERT_EQ(kept.size(), 2);
        const QByteArrayList contents{TempHome::readFile(home.userFile(kept[0])),
                                      TempHome::readFile(home.userFile(kept[1]))};
        EXPECT_TRUE(contents.contains(bytes) && contents.contains("second damage"));
        EXPECT_EQ(keysOf(store.arrayDateStatisticsFromDate(noonOf(2024, 1, 31), noonOf(2024, 1, 31))),
                  std::vector<std::string>{"2024/01/31"});
    }
}

TEST(TrafficStatics, MissingDayFileIsCreatedAndRemoveDeletesIt) {
    TempHome home;
    AppConfig config;
    TrafficStatics store(config);
    EXPECT_EQ(store.getDateTrafficsDictionary().keys(), QStringList{"CREATION_TIME"});
    EXPECT_TRUE(keptFiles(home).isEmpty());
    ASSERT_TRUE(store.updateDateStatisticsWithItem({1, 2, 3, 4, 0}, noonOf(2024, 5, 1)));
    EXPECT_TRUE(store.removeAllStatisticsItems());
    EXPECT_FALSE(QFileInfo::exists(store.dateTrafficsPath()));
    EXPECT_TRUE(store.removeAllStatisticsItems());
    EXPECT_TRUE(store.arrayDateStatisticsFromDate(noonOf(2024, 5, 1), noonOf(2024, 5, 1)).isEmpty());
    EXPECT_TRUE(keptFiles(home).isEmpty());
}

} // namespace
