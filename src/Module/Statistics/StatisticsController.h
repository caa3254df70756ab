#pragma once

#include "TrafficStatics.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

class AppConfig;

// One day of the history: its key ("2024/05/01") and its four counters.
struct StatisticsDayRow {
    QString strDay;
    _TrafficStaticsItem item; // byte counts and the day's connected time

    bool operator==(const StatisticsDayRow& other) const = default;
};

// The days of a range with their sum.
struct StatisticsRange {
    QList<StatisticsDayRow> rows;
    _TrafficStaticsItem total;
};

// The totals since the last reset and when that was (a null date when there never was one).
struct StatisticsSinceReset {
    quint64 sentBytes = 0;
    quint64 receivedBytes = 0;
    quint32 connectTimeSeconds = 0;
    QDateTime resetDate;
};

// What the statistics view and the command line show, and their two actions, over one TrafficStatics.
// The day rows come from the day file at each call; the totals from the settings the connect controller
// writes, re-read at each call. Day entries that are not dictionaries are left out; bad counters read 0.
class StatisticsController {
public:
    explicit StatisticsController(AppConfig& config);

    // The days from..to (local calendar days, both included) that have traffic, ascending, and their sum.
    StatisticsRange rangeStatistics(const QDate& from, const QDate& to);
    StatisticsSinceReset sinceReset();

    // Zeroes the totals and records now as the reset date; the day history stays. True when stored.
    bool resetTotals();
    // Deletes the whole day history. True when the day file is gone.
    bool deleteHistory();

    // The rows of a range query's result (one-key dictionaries {day key: entry}), in its order.
    static QList<StatisticsDayRow> rowsOfDays(const QVariantList& days);
    static _TrafficStaticsItem totalOfRows(const QList<StatisticsDayRow>& rows);

    TrafficStatics& store() { return _store; }

private:
    TrafficStatics _store;
};
