#pragma once

#include "BudgetStore.h"
#include "DataBudget.h"
#include "Statistics/StatisticsController.h"

#include <QDate>
#include <QString>

class AppConfig;

// A SIM's budget against the traffic history, as the views and the tool show it.
struct BudgetStatus {
    QString imsi; // empty when no SIM is known
    BudgetSettings settings;
    BudgetPeriod period;
    BudgetUse use;
    int percent = 0;
    int daysLeft = 0;
    bool overridden = false;  // the user dials over the budget in this period
    bool refusesDial = false; // used up, with "hang up" chosen and no override

    // "1.2 GiB of 2.0 GiB" and/or "3:00:00 of 10:00:00", in the user's locale.
    QString usageText() const;
    // The first day of the next period, when the budget is whole again.
    QDate renewal() const { return period.last.addDays(1); }
};

// Reads and changes the budgets over the day history of this computer. Use that is not in the history
// yet (the running link's) is passed in by the caller.
class BudgetController {
public:
    explicit BudgetController(AppConfig& config, BudgetStore store = {});

    BudgetStatus status(const QString& imsi, const QDate& today, const BudgetUse& pending = {});
    // The same with the history's share already known (the guard reads the history seldom).
    BudgetStatus status(const QString& imsi, const QDate& today, const BudgetUse& history,
                        const BudgetUse& pending);
    // The history's use in the period of today.
    BudgetUse historyUse(const BudgetPeriod& period, const QDate& today);

    // Stores the SIM's budget; the period's warnings and override start afresh. False when not written.
    bool set(const QString& imsi, BudgetSettings settings);
    bool clear(const QString& imsi) { return _store.clearBudget(imsi); }
    // Dialling over the budget is allowed until the end of the period of today.
    bool allowOverBudget(const QString& imsi, const QDate& today);

    BudgetStore& store() { return _store; }

private:
    StatisticsController _statistics;
    BudgetStore _store;
};
