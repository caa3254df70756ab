#include "BudgetController.h"

#include "LocaleFormat.h"

#include <QCoreApplication>

QString BudgetStatus::usageText() const {
    QStringList parts;
    if (settings.bytes > 0)
        parts << QCoreApplication::translate("BudgetStatus", "%1 of %2")
                     .arg(LocaleFormat::dataSize(use.bytes), LocaleFormat::dataSize(settings.bytes));
    if (settings.seconds > 0)
        parts << QCoreApplication::translate("BudgetStatus", "%1 of %2 connected")
                     .arg(LocaleFormat::duration(use.seconds), LocaleFormat::duration(settings.seconds));
    return parts.join(QStringLiteral(", "));
}

BudgetController::BudgetController(AppConfig& config, BudgetStore store)
    : _statistics(config), _store(std::move(store)) {}

BudgetUse BudgetController::historyUse(const BudgetPeriod& period, const QDate& today) {
    const QDate last = std::min(period.last, today);
    if (last < period.first)
        return {};
    return DataBudget::useIn(period, _statistics.rangeStatistics(period.first, last).rows);
}

BudgetStatus BudgetController::status(const QString& imsi, const QDate& today, const BudgetUse& pending) {
    const BudgetSettings settings = _store.load(imsi);
    return status(imsi, today, historyUse(DataBudget::periodOf(today, settings.billingDay), today), pending);
}

BudgetStatus BudgetController::status(const QString& imsi, const QDate& today, const BudgetUse& history,
                                      const BudgetUse& pending) {
    BudgetStatus status;
    status.imsi = imsi;
    status.settings = _store.load(imsi);
    status.period = DataBudget::periodOf(today, status.settings.billingDay);
    status.use = {history.bytes + pending.bytes, history.seconds + pending.seconds};
    status.percent = DataBudget::percentUsed(status.settings, status.use);
    status.daysLeft = DataBudget::daysLeft(status.period, today);
    status.overridden = DataBudget::overridden(status.settings, today);
    status.refusesDial = DataBudget::budgetRefusesDial(status.settings, status.use, today);
    return status;
}

bool BudgetController::set(const QString& imsi, BudgetSettings settings) {
    settings.overrideUntil = QDate();
    settings.warnedPeriod = QDate();
    settings.warnedLevel = 0;
    return _store.save(imsi, settings);
}

bool BudgetController::allowOverBudget(const QString& imsi, const QDate& today) {
    BudgetSettings settings = _store.load(imsi);
    settings.overrideUntil = DataBudget::periodOf(today, settings.billingDay).last;
    return _store.save(imsi, settings);
}
