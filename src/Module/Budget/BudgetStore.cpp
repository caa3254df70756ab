#include "BudgetStore.h"

#include "DamagedFile.h"
#include "StoreFile.h"
#include "StoreLock.h"
#include "UserDataFolder.h"

#include <QRegularExpression>

#include <limits>
#include <utility>

namespace {

const QString kSims = QStringLiteral("SIMS");
const QString kLastImsi = QStringLiteral("LAST_IMSI");
const QString kBytes = QStringLiteral("BYTES");
const QString kSeconds = QStringLiteral("SECONDS");
const QString kBillingDay = QStringLiteral("BILLING_DAY");
const QString kWarnPercent = QStringLiteral("WARN_PERCENT");
const QString kAtLimit = QStringLiteral("AT_LIMIT");
const QString kRoaming = QStringLiteral("ROAMING");
const QString kOverrideUntil = QStringLiteral("OVERRIDE_UNTIL");
const QString kWarnedPeriod = QStringLiteral("WARNED_PERIOD");
const QString kWarnedLevel = QStringLiteral("WARNED_LEVEL");

// A stored whole number within the bounds, else the default.
qint64 Bounded(const QVariant& value, qint64 low, qint64 high, qint64 fallback) {
    bool ok = false;
    const qint64 number = value.toLongLong(&ok);
    return ok && number >= low && number <= high ? number : fallback;
}

QDate DateOf(const QVariant& value) {
    return value.typeId() == QMetaType::QDateTime ? value.toDateTime().toLocalTime().date() : QDate();
}

QVariant DateValue(const QDate& date) {
    return date.isValid() ? QVariant(date.startOfDay()) : QVariant();
}

} // namespace

BudgetStore::BudgetStore() : _path(UserDataFolder::dataPath() + QLatin1Char('/') + kFileName) {}

bool BudgetStore::validImsi(const QString& imsi) {
    static const QRegularExpression digits(QStringLiteral("^\\d{6,15}$"));
    return digits.match(imsi).hasMatch();
}

BudgetSettings BudgetStore::fromDictionary(const QVariantMap& d) {
    BudgetSettings s;
    constexpr qint64 kMax = std::numeric_limits<qint64>::max();
    s.bytes = static_cast<quint64>(Bounded(d.value(kBytes), 0, kMax, 0));
    s.seconds = static_cast<quint64>(Bounded(d.value(kSeconds), 0, kMax, 0));
    s.billingDay = static_cast<int>(Bounded(d.value(kBillingDay), 1, DataBudget::kMaxBillingDay, 1));
    s.warnPercent = static_cast<int>(Bounded(d.value(kWarnPercent), 1, 100, 80));
    s.atLimit = d.value(kAtLimit).toString() == QStringLiteral("hangup") ? BudgetLimitAction::HangUp
                                                                         : BudgetLimitAction::Warn;
    const QString roaming = d.value(kRoaming).toString();
    s.roaming = roaming == QStringLiteral("hangup") ? RoamingGuard::HangUp
                : roaming == QStringLiteral("warn") ? RoamingGuard::Warn
                                                    : RoamingGuard::Off;
    s.overrideUntil = DateOf(d.value(kOverrideUntil));
    s.warnedPeriod = DateOf(d.value(kWarnedPeriod));
    s.warnedLevel = static_cast<int>(Bounded(d.value(kWarnedLevel), 0, 2, 0));
    return s;
}

QVariantMap BudgetStore::toDictionary(const BudgetSettings& s) {
    QVariantMap d{{kBytes, s.bytes},
                  {kSeconds, s.seconds},
                  {kBillingDay, s.billingDay},
                  {kWarnPercent, s.warnPercent},
                  {kAtLimit, s.atLimit == BudgetLimitAction::HangUp ? "hangup" : "warn"},
                  {kRoaming, s.roaming == RoamingGuard::HangUp ? "hangup"
                             : s.roaming == RoamingGuard::Warn ? "warn"
                                                               : "off"},
                  {kWarnedLevel, s.warnedLevel}};
    for (const auto& [key, date] :
         {std::pair{kOverrideUntil, s.overrideUntil}, std::pair{kWarnedPeriod, s.warnedPeriod}})
        if (date.isValid())
            d.insert(key, DateValue(date));
    return d;
}

QVariantMap BudgetStore::read() const {
    return DamagedFile::readMap(_path);
}

BudgetSettings BudgetStore::load(const QString& imsi) const {
    if (!validImsi(imsi))
        return {};
    return fromDictionary(read().value(kSims).toMap().value(imsi).toMap());
}

QString BudgetStore::lastImsi() const {
    const QString imsi = read().value(kLastImsi).toString();
    return validImsi(imsi) ? imsi : QString();
}

bool BudgetStore::change(const std::function<void(QVariantMap&)>& edit) {
    const StoreLock lock(_path);
    QVariantMap root = read();
    const QVariantMap before = root;
    edit(root);
    return root == before || StoreFile::write(_path, root);
}

bool BudgetStore::save(const QString& imsi, const BudgetSettings& settings) {
    if (!validImsi(imsi))
        return false;
    return change([&](QVariantMap& root) {
        QVariantMap sims = root.value(kSims).toMap();
        sims.insert(imsi, toDictionary(settings));
        root.insert(kSims, sims);
        root.insert(kLastImsi, imsi);
    });
}

bool BudgetStore::clearBudget(const QString& imsi) {
    BudgetSettings kept;
    kept.roaming = load(imsi).roaming;
    return save(imsi, kept);
}

bool BudgetStore::noteSim(const QString& imsi) {
    if (!validImsi(imsi))
        return false;
    return change([&](QVariantMap& root) { root.insert(kLastImsi, imsi); });
}
