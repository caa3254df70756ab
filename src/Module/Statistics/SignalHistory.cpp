#include "SignalHistory.h"

#include "AppConfig.h"
#include "DamagedFile.h"
#include "StoreFile.h"
#include "StoreLock.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

const QString kMinutesKey = QStringLiteral("MINUTES");
const QString kTimeKey = QStringLiteral("TIME");
const QString kDbmKey = QStringLiteral("DBM");
const QString kBestKey = QStringLiteral("BEST");
const QString kWorstKey = QStringLiteral("WORST");
const QString kReadingsKey = QStringLiteral("READINGS");
const QString kBearerKey = QStringLiteral("BEARER");
const QString kLacKey = QStringLiteral("LAC");
const QString kCiKey = QStringLiteral("CI");
const QString kDayFormat = QStringLiteral("yyyy-MM-dd");
constexpr int kMinutesPerDay = 24 * 60;
constexpr int kMaxReadingsPerMinute = 6000;

bool Number(const QVariantMap& map, const QString& key, qint64 low, qint64 high, qint64& value) {
    const QVariant stored = map.value(key);
    bool ok = false;
    value = stored.toLongLong(&ok);
    return ok && stored.typeId() != QMetaType::QString && value >= low && value <= high;
}

QDateTime MinuteOf(const QDateTime& at) {
    const QDateTime local = at.toLocalTime();
    return QDateTime(local.date(), QTime(local.time().hour(), local.time().minute()));
}

} // namespace

SignalHistory::SignalHistory(const QString& folder)
    : _folder(folder.isEmpty() ? AppConfig::getUserDataPath() + QLatin1Char('/') + kFolderName : folder) {}

QString SignalHistory::dayPath(const QDate& date) const {
    return _folder + QLatin1Char('/') + date.toString(kDayFormat) + QStringLiteral(".plist");
}

void SignalHistory::add(const SignalSample& sample, const QDateTime& at) {
    const QDateTime minute = MinuteOf(at);
    if (_pending.minute.isValid() && minute != _pending.minute)
        flush();
    if (!_pending.minute.isValid())
        _pending.minute = minute;
    if (sample.hasRssi() && _pending.readings < kMaxReadingsPerMinute) {
        _pendingSum += sample.rssiDbm;
        ++_pending.readings;
        _pending.bestDbm =
            _pending.readings == 1 ? sample.rssiDbm : std::max(_pending.bestDbm, sample.rssiDbm);
        _pending.worstDbm =
            _pending.readings == 1 ? sample.rssiDbm : std::min(_pending.worstDbm, sample.rssiDbm);
        // Rounded to the nearer whole dBm (the sum is negative).
        _pending.averageDbm = static_cast<int>((_pendingSum - _pending.readings / 2) / _pending.readings);
    }
    if (sample.bearer != SignalSample::kUnknownBearer)
        _pending.bearer = sample.bearer;
    if (sample.hasCell()) {
        _pending.lac = sample.lac;
        _pending.ci = sample.ci;
    }
}

bool SignalHistory::flush() {
    const SignalMinute minute = _pending;
    _pending = SignalMinute{};
    _pendingSum = 0;
    if (!minute.minute.isValid() ||
        (minute.readings == 0 && minute.bearer == SignalSample::kUnknownBearer && minute.lac < 0))
        return true;
    return write(minute);
}

bool SignalHistory::write(const SignalMinute& minute) {
    if (!QDir().mkpath(_folder))
        return false;
    dropOldDays(minute.minute.date());
    const QString path = dayPath(minute.minute.date());
    StoreLock lock(path);
    QVariant content;
    DamagedFile::readPropertyList(path, QMetaType::QVariantMap, content);
    QList<SignalMinute> minutes;
    qsizetype wrong = 0;
    for (const QVariant& entry : content.toMap().value(kMinutesKey).toList()) {
        SignalMinute stored;
        if (fromEntry(entry, stored) && stored.minute.date() == minute.minute.date())
            minutes.append(stored);
        else
            ++wrong;
    }
    DamagedFile::reportWrongEntries(path, kFolderName + QLatin1Char('/') + QFileInfo(path).fileName(), wrong);
    // A minute written twice (two runs in one minute) keeps the later one.
    minutes.removeIf([&](const SignalMinute& stored) { return stored.minute == minute.minute; });
    minutes.append(minute);
    std::sort(minutes.begin(), minutes.end(),
              [](const SignalMinute& a, const SignalMinute& b) { return a.minute < b.minute; });
    if (minutes.size() > kMinutesPerDay)
        minutes.remove(0, minutes.size() - kMinutesPerDay);
    QVariantList entries;
    for (const SignalMinute& stored : minutes)
        entries.append(toEntry(stored));
    return StoreFile::write(path, QVariantMap{{kMinutesKey, entries}});
}

void SignalHistory::dropOldDays(const QDate& today) {
    if (_prunedOn == today)
        return;
    _prunedOn = today;
    const QDate oldest = today.addDays(-kKeptDays);
    QDir folder(_folder);
    for (const QString& name : folder.entryList({QStringLiteral("*.plist")}, QDir::Files)) {
        const QDate date = QDate::fromString(name.left(10), kDayFormat);
        if (name.size() == 16 && date.isValid() && date < oldest)
            folder.remove(name);
    }
}

QList<SignalMinute> SignalHistory::day(const QDate& date) const {
    QList<SignalMinute> minutes;
    QVariant content;
    DamagedFile::readPropertyList(dayPath(date), QMetaType::QVariantMap, content);
    for (const QVariant& entry : content.toMap().value(kMinutesKey).toList()) {
        SignalMinute minute;
        if (fromEntry(entry, minute) && minute.minute.date() == date && minutes.size() < kMinutesPerDay &&
            (minutes.isEmpty() || minutes.last().minute < minute.minute))
            minutes.append(minute);
    }
    if (_pending.minute.isValid() && _pending.minute.date() == date &&
        (minutes.isEmpty() || minutes.last().minute < _pending.minute))
        minutes.append(_pending);
    return minutes;
}

QList<SignalChange> SignalHistory::changesOf(const QList<SignalMinute>& minutes) {
    QList<SignalChange> changes;
    int bearer = SignalSample::kUnknownBearer;
    qint64 lac = -1, ci = -1;
    for (const SignalMinute& minute : minutes) {
        SignalChange change{minute.minute};
        if (minute.bearer != SignalSample::kUnknownBearer) {
            change.bearer = bearer != SignalSample::kUnknownBearer && minute.bearer != bearer;
            bearer = minute.bearer;
        }
        if (minute.lac >= 0) {
            change.cell = lac >= 0 && (minute.lac != lac || minute.ci != ci);
            lac = minute.lac;
            ci = minute.ci;
        }
        if (change.bearer || change.cell)
            changes.append(change);
    }
    return changes;
}

QList<SignalHour> SignalHistory::hoursOf(const QList<SignalMinute>& minutes) {
    QList<SignalHour> hours;
    qint64 sum = 0, readings = 0;
    for (const SignalMinute& minute : minutes) {
        if (minute.readings <= 0)
            continue;
        const int hour = minute.minute.time().hour();
        if (hours.isEmpty() || hours.last().hour != hour) {
            hours.append(SignalHour{hour, 0, minute.bestDbm, minute.worstDbm, 0});
            sum = readings = 0;
        }
        SignalHour& current = hours.last();
        sum += static_cast<qint64>(minute.averageDbm) * minute.readings;
        readings += minute.readings;
        current.averageDbm = static_cast<int>((sum - readings / 2) / readings); // nearer whole dBm
        current.bestDbm = std::max(current.bestDbm, minute.bestDbm);
        current.worstDbm = std::min(current.worstDbm, minute.worstDbm);
        ++current.minutes;
    }
    return hours;
}

QVariantMap SignalHistory::toEntry(const SignalMinute& minute) {
    QVariantMap entry{{kTimeKey, minute.minute},       {kDbmKey, minute.averageDbm},
                      {kBestKey, minute.bestDbm},      {kWorstKey, minute.worstDbm},
                      {kReadingsKey, minute.readings}, {kBearerKey, minute.bearer}};
    if (minute.lac >= 0 && minute.ci >= 0) {
        entry.insert(kLacKey, minute.lac);
        entry.insert(kCiKey, minute.ci);
    }
    return entry;
}

bool SignalHistory::fromEntry(const QVariant& entry, SignalMinute& minute) {
    if (entry.typeId() != QMetaType::QVariantMap)
        return false;
    const QVariantMap map = entry.toMap();
    const QVariant time = map.value(kTimeKey);
    if (time.typeId() != QMetaType::QDateTime || !time.toDateTime().isValid())
        return false;
    qint64 average = 0, best = 0, worst = 0, readings = 0, bearer = 0;
    if (!Number(map, kDbmKey, -200, 0, average) || !Number(map, kBestKey, -200, 0, best) ||
        !Number(map, kWorstKey, -200, 0, worst) ||
        !Number(map, kReadingsKey, 0, kMaxReadingsPerMinute, readings) ||
        !Number(map, kBearerKey, 0, SignalSample::kUnknownBearer, bearer))
        return false;
    minute = SignalMinute{MinuteOf(time.toDateTime()), static_cast<int>(average),  static_cast<int>(best),
                          static_cast<int>(worst),     static_cast<int>(readings), static_cast<int>(bearer)};
    qint64 lac = -1, ci = -1;
    if (Number(map, kLacKey, 0, 0xFFFF, lac) && Number(map, kCiKey, 0, 0xFFFFFFFF, ci)) {
        minute.lac = lac;
        minute.ci = ci;
    }
    return true;
}
