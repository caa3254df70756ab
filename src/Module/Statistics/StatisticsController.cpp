#include "StatisticsController.h"

#include <algorithm>

StatisticsController::StatisticsController(AppConfig& config) : _store(config) {}

StatisticsRange StatisticsController::rangeStatistics(const QDate& from, const QDate& to) {
    StatisticsRange range;
    range.rows = rowsOfDays(_store.arrayDateStatisticsFromDate(from.startOfDay(), to.startOfDay()));
    range.total = totalOfRows(range.rows);
    return range;
}

StatisticsSinceReset StatisticsController::sinceReset() {
    // The connect controller keeps its own store over the same settings: read what it last saved.
    _store.loadStatics();
    const _TrafficStaticsItem total = _store.getTotalStatics();
    StatisticsSinceReset since;
    since.sentBytes = total.noRoamingSendBytes;
    since.receivedBytes = total.noRoamingReceiveBytes;
    since.connectTimeSeconds = total.connectTimeSeconds;
    since.resetDate = _store.getLatestResetDate();
    return since;
}

bool StatisticsController::resetTotals() {
    return _store.saveResetDate();
}

bool StatisticsController::deleteHistory() {
    return _store.removeAllStatisticsItems();
}

QList<StatisticsDayRow> StatisticsController::rowsOfDays(const QVariantList& days) {
    QList<StatisticsDayRow> rows;
    for (const QVariant& day : days) {
        if (day.typeId() != QMetaType::QVariantMap) {
            continue;
        }
        const QVariantMap one = day.toMap();
        for (auto it = one.cbegin(); it != one.cend(); ++it) {
            if (it->typeId() != QMetaType::QVariantMap) {
                continue;
            }
            const QVariantMap entry = it->toMap();
            StatisticsDayRow row;
            row.strDay = it.key();
            row.item.noRoamingSendBytes =
                TrafficStatics::counterValue(entry.value(TrafficStatics::kNoRoamingSendKey));
            row.item.noRoamingReceiveBytes =
                TrafficStatics::counterValue(entry.value(TrafficStatics::kNoRoamingReceiveKey));
            row.item.roamingSendBytes =
                TrafficStatics::counterValue(entry.value(TrafficStatics::kRoamingSendKey));
            row.item.roamingReceiveBytes =
                TrafficStatics::counterValue(entry.value(TrafficStatics::kRoamingReceiveKey));
            row.item.connectTimeSeconds = static_cast<quint32>(std::min<quint64>(
                TrafficStatics::counterValue(entry.value(TrafficStatics::kConnectTimeKey)), 86400));
            rows.append(row);
        }
    }
    return rows;
}

_TrafficStaticsItem StatisticsController::totalOfRows(const QList<StatisticsDayRow>& rows) {
    _TrafficStaticsItem total;
    for (const StatisticsDayRow& row : rows) {
        total.noRoamingSendBytes += row.item.noRoamingSendBytes;
        total.noRoamingReceiveBytes += row.item.noRoamingReceiveBytes;
        total.roamingSendBytes += row.item.roamingSendBytes;
        total.roamingReceiveBytes += row.item.roamingReceiveBytes;
    }
    return total;
}
