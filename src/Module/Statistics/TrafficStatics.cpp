#include "TrafficStatics.h"

#include "AppConfig.h"
#include "CNSLog.h"
#include "ConvertUtilty.h"
#include "DamagedFile.h"
#include "PropertyList.h"
#include "StoreFile.h"
#include "StoreLock.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>

TrafficStatics::TrafficStatics(AppConfig& config) : _config(config) {
    loadStatics();
    _strDateTrafficsPath = QStringLiteral("%1/%2").arg(AppConfig::getUserDataPath(), kDateTrafficsFileName);
}

void TrafficStatics::loadStatics() {
    const QVariant statics = _config.getConfigObjectByKey(kSimpleStaticsKey);
    _dictTrafficStatics = statics.typeId() == QMetaType::QVariantMap ? statics.toMap() : QVariantMap();
    const QVariant reset = _config.getConfigObjectByKey(kResetTimeKey);
    _DateResetTime = reset.typeId() == QMetaType::QDateTime ? reset.toDateTime() : QDateTime();
}

bool TrafficStatics::saveStatics() {
    return _config.saveConfigObject(_dictTrafficStatics, kSimpleStaticsKey);
}

bool TrafficStatics::saveStaticsRecord(const _TrafficStaticsItem& item) {
    _dictTrafficStatics = createDictStaticsByStaticsItem(item);
    return saveStatics();
}

_TrafficStaticsItem TrafficStatics::getTotalStatics() const {
    _TrafficStaticsItem item;
    getStaticsByDictStatics(_dictTrafficStatics, &item);
    return item;
}

bool TrafficStatics::saveResetDate() {
    _dictTrafficStatics = createDictStaticsByStaticsItem(_TrafficStaticsItem());
    if (!updateResetTime()) {
        return false;
    }
    return saveStatics();
}

bool TrafficStatics::updateResetTime() {
    // The settings file keeps whole seconds; keep the same moment in memory.
    QDateTime now = QDateTime::currentDateTime();
    now = now.addMSecs(-(now.time().msec()));
    _DateResetTime = now;
    return _config.saveConfigObject(now, kResetTimeKey);
}

QString TrafficStatics::getKeyOfDate(const QDateTime& date) {
    return ConvertUtilty::DateStringWithoutZone(date).left(10);
}

QString TrafficStatics::dayTextOfDate(const QDateTime& date) {
    return ConvertUtilty::standardDateText(date).left(10);
}

QString TrafficStatics::getDateTimeStringYMD(const QDateTime& date) {
    const QDate day = date.toLocalTime().date();
    return QString::asprintf("%04d-%02d-%02d", day.year(), day.month(), day.day());
}

QString TrafficStatics::getDateTimeStringHMS(const QDateTime& date) {
    const QTime time = date.toLocalTime().time();
    return QString::asprintf("%02d-%02d-%02d", time.hour(), time.minute(), time.second());
}

QVariantMap TrafficStatics::getDateTrafficsDictionary() {
    StoreLock fileLock(_strDateTrafficsPath);
    return readDateTraffics();
}

QVariantMap TrafficStatics::readDateTraffics() {
    QVariant content;
    if (DamagedFile::readPropertyList(_strDateTrafficsPath, QMetaType::QVariantMap, content) !=
        DamagedFile::State::Good) {
        QVariantMap fresh;
        fresh.insert(kCreationTimeKey, QDateTime::currentDateTime());
        writeDateTrafficsToDictionary(fresh, _strDateTrafficsPath);
    }
    _dictDateTraffics = PropertyList::readMap(_strDateTrafficsPath);
    if (!_wrongDaysReported) {
        // A day that is no dictionary of counters is skipped by every reader; said once per run.
        _wrongDaysReported = true;
        qsizetype wrong = 0;
        for (auto it = _dictDateTraffics.cbegin(); it != _dictDateTraffics.cend(); ++it)
            wrong += it.key() != kCreationTimeKey && it->typeId() != QMetaType::QVariantMap;
        DamagedFile::reportWrongEntries(_strDateTrafficsPath, kDateTrafficsFileName, wrong);
    }
    return _dictDateTraffics;
}

bool TrafficStatics::updateDateStatisticsWithItem(const _TrafficStaticsItem& item, const QDateTime& forDate) {
    StoreLock fileLock(_strDateTrafficsPath);
    QVariantMap days = readDateTraffics();
    const QString key = getKeyOfDate(forDate);
    const QVariant stored = days.value(key);
    QVariantMap entry;
    if (stored.typeId() == QMetaType::QVariantMap) {
        entry = stored.toMap();
    } else {
        for (const QString& counter :
             {kNoRoamingSendKey, kNoRoamingReceiveKey, kRoamingSendKey, kRoamingReceiveKey}) {
            entry.insert(counter, QVariant::fromValue<quint64>(0));
        }
    }
    // Unsigned 64-bit sums: a counter at its limit wraps rather than stopping.
    const auto add = [&entry](const QString& counter, quint64 bytes) {
        entry.insert(counter, QVariant::fromValue<quint64>(counterValue(entry.value(counter)) + bytes));
    };
    add(kNoRoamingReceiveKey, item.noRoamingReceiveBytes);
    add(kNoRoamingSendKey, item.noRoamingSendBytes);
    add(kRoamingReceiveKey, item.roamingReceiveBytes);
    add(kRoamingSendKey, item.roamingSendBytes);
    // The day's connected time, for time budgets; absent from days of older versions.
    if (item.connectTimeSeconds > 0)
        add(kConnectTimeKey, item.connectTimeSeconds);
    days.insert(key, entry);
    _dictDateTraffics = days;
    return writeDateTrafficsToDictionary(days, _strDateTrafficsPath);
}

QVariantList TrafficStatics::arrayDateStatisticsFromDate(const QDateTime& from, const QDateTime& toDate) {
    const QString fromKey = getKeyOfDate(from);
    const QString toKey = getKeyOfDate(toDate);
    QVariantMap days = getDateTrafficsDictionary();
    days.remove(kCreationTimeKey);

    const auto dayEntry = [&days](const QString& key) -> QVariantList {
        const auto it = days.constFind(key);
        if (it == days.cend() || it->typeId() != QMetaType::QVariantMap) {
            return {};
        }
        return {QVariantMap{{key, *it}}};
    };

    if (fromKey == toKey) {
        return dayEntry(fromKey);
    }

    QVariantList result = dayEntry(fromKey);
    result += dayEntry(toKey);
    for (auto it = days.cbegin(); it != days.cend(); ++it) {
        const QString& key = it.key();
        if (!(key > fromKey && key < toKey) || it->typeId() != QMetaType::QVariantMap) {
            continue;
        }
        qsizetype position = 0;
        while (position < result.size() && !(result.at(position).toMap().firstKey() > key)) {
            ++position;
        }
        result.insert(position, QVariantMap{{key, *it}});
    }
    return result;
}

QVariantMap TrafficStatics::searchADateDictionaryForKey(const QString& key) const {
    const QVariant entry = _dictDateTraffics.value(key);
    return entry.typeId() == QMetaType::QVariantMap ? entry.toMap() : QVariantMap();
}

bool TrafficStatics::writeDateTrafficsToDictionary(const QVariantMap& dict, const QString& toFile) {
    return StoreFile::write(toFile, dict);
}

bool TrafficStatics::removeAllStatisticsItems() {
    _dictDateTraffics.clear();
    return QFile::remove(_strDateTrafficsPath) || !QFileInfo::exists(_strDateTrafficsPath);
}

void TrafficStatics::getStaticsByDictStatics(const QVariantMap& dict, _TrafficStaticsItem* item) {
    if (item == nullptr) {
        return;
    }
    item->noRoamingSendBytes += counterValue(dict.value(kNoRoamingSendKey));
    item->noRoamingReceiveBytes += counterValue(dict.value(kNoRoamingReceiveKey));
    // The item holds 32-bit seconds: a larger stored total stops at the limit.
    const quint64 seconds =
        std::min<quint64>(counterValue(dict.value(kConnectTimeKey)), std::numeric_limits<quint32>::max());
    item->connectTimeSeconds = static_cast<quint32>(
        std::min<quint64>(item->connectTimeSeconds + seconds, std::numeric_limits<quint32>::max()));
}

void TrafficStatics::getStaticsByYMD(const QString& key, _TrafficStaticsItem* item) const {
    if (item == nullptr) {
        return;
    }
    *item = _TrafficStaticsItem();
    const QVariant list = _dictTrafficStatics.value(key);
    if (list.typeId() != QMetaType::QVariantList) {
        return;
    }
    for (const QVariant& dict : list.toList()) {
        if (dict.typeId() == QMetaType::QVariantMap) {
            getStaticsByDictStatics(dict.toMap(), item);
        }
    }
}

QVariantMap TrafficStatics::createDictStaticsByStaticsItem(const _TrafficStaticsItem& item) {
    return createStaticsRecordByHMS(QString(), item);
}

QVariantMap TrafficStatics::createStaticsRecordByHMS(const QString& hms, const _TrafficStaticsItem& item) {
    QVariantMap dict;
    dict.insert(kNoRoamingSendKey, QVariant::fromValue<quint64>(item.noRoamingSendBytes));
    dict.insert(kNoRoamingReceiveKey, QVariant::fromValue<quint64>(item.noRoamingReceiveBytes));
    dict.insert(kConnectTimeKey, QVariant::fromValue<quint64>(item.connectTimeSeconds));
    if (!hms.isEmpty()) {
        dict.insert(kSaveTimeKey, hms);
    }
    return dict;
}

quint64 TrafficStatics::counterValue(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::SChar:
    case QMetaType::Char: {
        const qint64 number = value.toLongLong();
        return number < 0 ? 0 : static_cast<quint64>(number);
    }
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return value.toULongLong();
    case QMetaType::Double:
    case QMetaType::Float: {
        // A real counter (written by hand): its whole part, if it fits.
        const double number = value.toDouble();
        if (!std::isfinite(number) || number < 0 || number >= 18446744073709551616.0) {
            return 0;
        }
        return static_cast<quint64>(number);
    }
    default:
        return 0;
    }
}
