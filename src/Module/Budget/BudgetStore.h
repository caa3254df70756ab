#pragma once

#include "DataBudget.h"

#include <QString>
#include <QVariantMap>

#include <functional>
#include <utility>

// The budgets of the SIMs used on this computer, in "DataBudget.plist" in the user data folder: under
// "SIMS" one dictionary per IMSI ("BYTES", "SECONDS", "BILLING_DAY", "WARN_PERCENT", "AT_LIMIT" "warn" or
// "hangup", "ROAMING" "off", "warn" or "hangup", and the period's state "OVERRIDE_UNTIL", "WARNED_PERIOD",
// "WARNED_LEVEL"), and under "LAST_IMSI" the SIM seen last, whose budget the statistics show without a
// modem. Values out of range read as their defaults; a file that cannot be read is kept aside as damaged
// (DamagedFile) and the budgets start empty. Every change is a locked read-modify-write.
class BudgetStore {
public:
    static inline const QString kFileName = QStringLiteral("DataBudget.plist");

    // The file in the user data folder, or another one (tests).
    BudgetStore();
    explicit BudgetStore(QString path) : _path(std::move(path)) {}

    // The SIM's budget; the defaults when it has none (or the IMSI is not one).
    BudgetSettings load(const QString& imsi) const;
    // Stores the SIM's budget and makes it the SIM seen last; false when the file was not written.
    bool save(const QString& imsi, const BudgetSettings& settings);
    // Forgets the SIM's byte and time budget, keeping the roaming guard; false when not written.
    bool clearBudget(const QString& imsi);
    // Remembers the SIM as the one seen last (nothing is written when it already is).
    bool noteSim(const QString& imsi);
    QString lastImsi() const;

    QString path() const { return _path; }

    // An IMSI is 6 to 15 digits.
    static bool validImsi(const QString& imsi);
    static BudgetSettings fromDictionary(const QVariantMap& dictionary);
    static QVariantMap toDictionary(const BudgetSettings& settings);

private:
    QVariantMap read() const;
    bool change(const std::function<void(QVariantMap& root)>& edit);

    QString _path;
};
