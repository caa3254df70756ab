#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include "Network/SignalSample.h"

// One minute of the signal history: the readings of the minute gathered into one.
struct SignalMinute {
    QDateTime minute;   // the minute's start
    int averageDbm = 0; // of the readings that knew the signal; 0 when none did
    int bestDbm = 0;
    int worstDbm = 0;
    int readings = 0; // readings that knew the signal
    int bearer = SignalSample::kUnknownBearer;
    qint64 lac = -1; // the last cell of the minute; -1 unknown
    qint64 ci = -1;

    bool operator==(const SignalMinute& other) const = default;
};

// Where the bearer or the cell changed between the minutes of a day.
struct SignalChange {
    QDateTime minute;
    bool bearer = false;
    bool cell = false;

    bool operator==(const SignalChange& other) const = default;
};

// One hour of a day's minutes gathered, for a summary in text.
struct SignalHour {
    int hour = 0;       // 0 .. 23, local time
    int averageDbm = 0; // weighted by the readings of each minute
    int bestDbm = 0;
    int worstDbm = 0;
    int minutes = 0; // minutes with at least one reading

    bool operator==(const SignalHour& other) const = default;
};

// The signal, bearer and cell per minute, kept beside the traffic history by the process that owns the
// modem: "SignalHistory/<yyyy-MM-dd>.plist" in the user data folder, one file per local day, a dictionary
// with "MINUTES", a list of dictionaries "TIME" (date), "DBM", "BEST", "WORST", "READINGS", "BEARER", and
// "LAC" and "CI" when the cell is known. Days older than kKeptDays are deleted.
//
// Readings are gathered in memory and the minute is written when the first reading of a later minute
// comes, or on flush(). Day files that cannot be read are kept aside as DamagedFile does and started
// afresh; entries out of their ranges are skipped.
class SignalHistory {
public:
    static constexpr int kKeptDays = 31;
    static inline const QString kFolderName = QStringLiteral("SignalHistory");

    // folder: where the day files go; by default "SignalHistory" in the user data folder.
    explicit SignalHistory(const QString& folder = {});

    void add(const SignalSample& sample, const QDateTime& at);
    // Writes the minute being gathered; true when it is written or there was none.
    bool flush();

    // The minutes of a local day in time order, with the minute being gathered.
    QList<SignalMinute> day(const QDate& date) const;
    QString dayPath(const QDate& date) const;
    QString folder() const { return _folder; }

    // The minutes whose bearer or cell differs from the last one known before them; minutes that know
    // neither change nothing.
    static QList<SignalChange> changesOf(const QList<SignalMinute>& minutes);
    // The hours that have minutes with readings, in time order.
    static QList<SignalHour> hoursOf(const QList<SignalMinute>& minutes);

    static QVariantMap toEntry(const SignalMinute& minute);
    // False for anything but a dictionary with a date and values in their ranges.
    static bool fromEntry(const QVariant& entry, SignalMinute& minute);

private:
    bool write(const SignalMinute& minute);
    void dropOldDays(const QDate& today);

    QString _folder;
    SignalMinute _pending;
    qint64 _pendingSum = 0;
    QDate _prunedOn;
};
