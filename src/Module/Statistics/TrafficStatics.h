#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

class AppConfig;

// Byte counts and connection time passed between the connect controller and the store.
struct _TrafficStaticsItem {
    quint64 noRoamingSendBytes = 0;
    quint64 noRoamingReceiveBytes = 0;
    quint64 roamingSendBytes = 0;
    quint64 roamingReceiveBytes = 0;
    quint32 connectTimeSeconds = 0;

    bool operator==(const _TrafficStaticsItem& other) const = default;
};

// The modem's traffic history, used on the GUI thread only.
//
// The totals since the last reset ("SIMPLE_STATICS": "NOROAMING SENDBYTES", "NOROAMING RECEIVEBYTES",
// "CONNECTTIME") and the reset date ("RESETTIME") live in the settings of AppConfig. The per-day counters
// live in "DateTraffics.plist" in the user data folder: "CREATION_TIME" (date of the file's creation) and
// one dictionary per day under a "yyyy/MM/dd" key with "NOROAMING SENDBYTES", "NOROAMING RECEIVEBYTES",
// "ROAMING SENDBYTES" and "ROAMING RECEIVEBYTES", and "CONNECTTIME" (seconds) when the day had a link.
//
// The day file is read afresh by every day operation. A missing day file is created with "CREATION_TIME";
// an unreadable one is first kept beside it as "DateTraffics.plist.damaged-<yyyyMMdd-hhmmss>" and then
// replaced the same way. Counters that are not numbers, or are negative, count as 0. Failed writes show
// only in the Boolean results.
class TrafficStatics {
public:
    static inline const QString kSimpleStaticsKey = QStringLiteral("SIMPLE_STATICS");
    static inline const QString kResetTimeKey = QStringLiteral("RESETTIME");
    static inline const QString kDateTrafficsFileName = QStringLiteral("DateTraffics.plist");
    static inline const QString kCreationTimeKey = QStringLiteral("CREATION_TIME");
    static inline const QString kNoRoamingSendKey = QStringLiteral("NOROAMING SENDBYTES");
    static inline const QString kNoRoamingReceiveKey = QStringLiteral("NOROAMING RECEIVEBYTES");
    static inline const QString kRoamingSendKey = QStringLiteral("ROAMING SENDBYTES");
    static inline const QString kRoamingReceiveKey = QStringLiteral("ROAMING RECEIVEBYTES");
    static inline const QString kConnectTimeKey = QStringLiteral("CONNECTTIME");
    static inline const QString kSaveTimeKey = QStringLiteral("SAVE_TIME");

    // Loads the totals and the reset date, and sets the day file's path.
    explicit TrafficStatics(AppConfig& config);

    void loadStatics();
    // Store the totals under "SIMPLE_STATICS"; true when the settings were written.
    bool saveStatics();
    bool saveStaticsRecord(const _TrafficStaticsItem& item);
    // The totals since the last reset (the roaming fields stay 0).
    _TrafficStaticsItem getTotalStatics() const;

    // Zeroes the totals and stores now as "RESETTIME"; the zeros are stored only when the date was. The
    // day history stays. True when both were written.
    bool saveResetDate();
    bool updateResetTime();
    // The date of the last reset; a null QDateTime when there was none.
    QDateTime getLatestResetDate() const { return _DateResetTime; }

    // "2024/05/01": the day key of the day file.
    static QString getKeyOfDate(const QDateTime& date);
    // "2024-05-01": the day text whose change makes the connect controller save the pending day.
    static QString dayTextOfDate(const QDateTime& date);
    // "2024-05-01" and "14-05-09" of the date in local time.
    static QString getDateTimeStringYMD(const QDateTime& date);
    static QString getDateTimeStringHMS(const QDateTime& date);

    // The day file's content, read afresh (created first when missing or unreadable).
    QVariantMap getDateTrafficsDictionary();
    // Adds the item's four byte counts and its connected time to the date's day entry and writes the day
    // file, under the file's lock so that two processes counting at once both count.
    bool updateDateStatisticsWithItem(const _TrafficStaticsItem& item, const QDateTime& forDate);
    // The days from..to that have entries, ascending, each as a one-key dictionary {day key: entry}.
    QVariantList arrayDateStatisticsFromDate(const QDateTime& from, const QDateTime& toDate);
    // The entry of a day key in the day dictionary last read; empty when there is none.
    QVariantMap searchADateDictionaryForKey(const QString& key) const;
    // Writes the dictionary to the file in one step; true when it is in place.
    bool writeDateTrafficsToDictionary(const QVariantMap& dict, const QString& toFile);
    // Deletes the day file; true when it is gone.
    bool removeAllStatisticsItems();

    // Adds a totals dictionary's sent, received and connect time into the item.
    static void getStaticsByDictStatics(const QVariantMap& dict, _TrafficStaticsItem* item);
    // Zeroes the item, then adds every dictionary of the list kept under the key in the totals.
    void getStaticsByYMD(const QString& key, _TrafficStaticsItem* item) const;
    static QVariantMap createDictStaticsByStaticsItem(const _TrafficStaticsItem& item);
    // The same, with "SAVE_TIME" when a time text is given.
    static QVariantMap createStaticsRecordByHMS(const QString& hms, const _TrafficStaticsItem& item);

    // A stored counter as an unsigned count: 0 for anything but a non-negative number.
    static quint64 counterValue(const QVariant& value);

    QString dateTrafficsPath() const { return _strDateTrafficsPath; }

private:
    // getDateTrafficsDictionary without taking the lock (its caller holds it).
    QVariantMap readDateTraffics();
    AppConfig& _config;
    QVariantMap _dictTrafficStatics;
    QString _strDataFile;
    QDateTime _DateResetTime;
    QString _strDateTrafficsPath;
    QVariantMap _dictDateTraffics;
    bool _wrongDaysReported = false;
};
