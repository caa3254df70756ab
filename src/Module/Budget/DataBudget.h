#pragma once

#include "Statistics/StatisticsController.h"

#include <QDate>
#include <QList>
#include <QString>

// What happens when the budget is used up: a warning only, or the link is ended and dialling refused
// until the next period (or until the user dials anyway).
enum class BudgetLimitAction { Warn, HangUp };
// What happens when the registration turns to roaming while a link is up.
enum class RoamingGuard { Off, Warn, HangUp };

// The budget of one SIM as the user set it, and what has been done about it in the current period.
struct BudgetSettings {
    quint64 bytes = 0;   // per period; 0: no byte budget
    quint64 seconds = 0; // connected time per period; 0: no time budget
    int billingDay = 1;  // 1..31; a day past a month's end means that month's last day
    int warnPercent = 80;
    BudgetLimitAction atLimit = BudgetLimitAction::Warn;
    RoamingGuard roaming = RoamingGuard::Off;
    QDate overrideUntil; // the user chose to dial over the budget until this day (the period's last)
    QDate warnedPeriod;  // first day of the period the warnings so far belong to
    int warnedLevel = 0; // 0 none, 1 the share, 2 the whole budget

    bool hasBudget() const { return bytes > 0 || seconds > 0; }
    bool operator==(const BudgetSettings& other) const = default;
};

// A billing period, both days included.
struct BudgetPeriod {
    QDate first;
    QDate last;
    bool operator==(const BudgetPeriod& other) const = default;
};

struct BudgetUse {
    quint64 bytes = 0; // sent and received, at home and roaming
    quint64 seconds = 0;
    bool operator==(const BudgetUse& other) const = default;
};

// What the guard does after a new reading of the use or the registration.
enum class BudgetStep { None, WarnShare, WarnFull, HangUpBudget, WarnRoaming, HangUpRoaming };

// The budget and roaming rules, on values only.
class DataBudget {
public:
    static constexpr int kMaxBillingDay = 31;

    // The period that holds the day.
    static BudgetPeriod periodOf(const QDate& day, int billingDay);
    // Days from today to the period's end, today included; 0 outside the period.
    static int daysLeft(const BudgetPeriod& period, const QDate& today);
    // A day's traffic (at home and roaming, both ways) and connected time.
    static BudgetUse useOfDay(const _TrafficStaticsItem& day);
    // The traffic and connected time of the history's days that fall in the period. The history gives a
    // link that ran past midnight its earlier traffic on the new day too, so such a link across the
    // period's start counts in full in the new period: the budget errs towards warning early.
    static BudgetUse useIn(const BudgetPeriod& period, const QList<StatisticsDayRow>& rows);
    // The larger of the byte and the time share, in whole percent (saturating at 1000).
    static int percentUsed(const BudgetSettings& settings, const BudgetUse& use);
    // Whether the user chose to dial over the budget for the period of today.
    static bool overridden(const BudgetSettings& settings, const QDate& today);

    // The step for a new reading of the use; warnedLevel is updated for the step taken (each warning is
    // given once per period; a link over a hang-up budget is ended at every reading).
    static BudgetStep budgetStep(BudgetSettings& settings, const BudgetUse& use, const QDate& today,
                                 bool linkUp);
    // The step when the registration changes while a link is up: only the turn to roaming counts.
    static BudgetStep roamingStep(RoamingGuard guard, bool wasRoaming, bool roaming, bool linkUp);

    // Whether a dial is refused: the budget is used up with "hang up" chosen and no override, or the
    // modem is roaming with the guard on and roaming not allowed for this session.
    static bool budgetRefusesDial(const BudgetSettings& settings, const BudgetUse& use, const QDate& today);
    static bool roamingRefusesDial(RoamingGuard guard, bool roaming, bool allowedThisSession);

    // "2GB", "500MB", "1.5 GiB", "700k", "123456" (bytes); units are powers of 1024. 0 for anything else.
    static quint64 parseSize(const QString& text);
    // "10h", "90m", "3600s", "2d", "1h30m"; 0 for anything else.
    static quint64 parseDuration(const QString& text);
};
