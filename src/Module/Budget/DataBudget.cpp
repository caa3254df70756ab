#include "DataBudget.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

// The first day of the period that starts in the month of the day.
QDate StartInMonth(int year, int month, int billingDay) {
    const QDate first(year, month, 1);
    return first.addDays(std::min(billingDay, first.daysInMonth()) - 1);
}

quint64 Share(quint64 used, quint64 budget) {
    if (budget == 0)
        return 0;
    const long double percent = static_cast<long double>(used) * 100.0L / static_cast<long double>(budget);
    return percent >= 1000.0L ? 1000 : static_cast<quint64>(percent);
}

// A number with an optional fraction, then a unit from the table, as a whole count; 0 when it does not
// read, does not fit or is 0.
quint64 Scaled(const QString& number, quint64 unit) {
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (!ok || !std::isfinite(value) || value <= 0)
        return 0;
    const long double scaled = static_cast<long double>(value) * static_cast<long double>(unit);
    if (scaled >= 1.8e19L)
        return 0;
    return static_cast<quint64>(std::llround(static_cast<double>(scaled)));
}

} // namespace

BudgetPeriod DataBudget::periodOf(const QDate& day, int billingDay) {
    billingDay = std::clamp(billingDay, 1, kMaxBillingDay);
    QDate first = StartInMonth(day.year(), day.month(), billingDay);
    if (day < first) {
        const QDate before = day.addMonths(-1);
        first = StartInMonth(before.year(), before.month(), billingDay);
    }
    const QDate after = first.addMonths(1);
    return {first, StartInMonth(after.year(), after.month(), billingDay).addDays(-1)};
}

int DataBudget::daysLeft(const BudgetPeriod& period, const QDate& today) {
    if (today < period.first || today > period.last)
        return 0;
    return static_cast<int>(today.daysTo(period.last)) + 1;
}

BudgetUse DataBudget::useIn(const BudgetPeriod& period, const QList<StatisticsDayRow>& rows) {
    BudgetUse use;
    for (const StatisticsDayRow& row : rows) {
        const QDate day = QDate::fromString(row.strDay, QStringLiteral("yyyy/MM/dd"));
        if (!day.isValid() || day < period.first || day > period.last)
            continue;
        const BudgetUse ofDay = useOfDay(row.item);
        use.bytes += ofDay.bytes;
        use.seconds += ofDay.seconds;
    }
    return use;
}

BudgetUse DataBudget::useOfDay(const _TrafficStaticsItem& day) {
    return {day.noRoamingSendBytes + day.noRoamingReceiveBytes + day.roamingSendBytes +
                day.roamingReceiveBytes,
            day.connectTimeSeconds};
}

int DataBudget::percentUsed(const BudgetSettings& settings, const BudgetUse& use) {
    return static_cast<int>(std::max(Share(use.bytes, settings.bytes), Share(use.seconds, settings.seconds)));
}

bool DataBudget::overridden(const BudgetSettings& settings, const QDate& today) {
    return settings.overrideUntil.isValid() && today <= settings.overrideUntil &&
           periodOf(today, settings.billingDay).last == settings.overrideUntil;
}

BudgetStep DataBudget::budgetStep(BudgetSettings& settings, const BudgetUse& use, const QDate& today,
                                  bool linkUp) {
    if (!settings.hasBudget())
        return BudgetStep::None;
    const QDate periodStart = periodOf(today, settings.billingDay).first;
    if (settings.warnedPeriod != periodStart) {
        settings.warnedPeriod = periodStart;
        settings.warnedLevel = 0;
    }
    const int percent = percentUsed(settings, use);
    if (percent >= 100) {
        if (linkUp && settings.atLimit == BudgetLimitAction::HangUp && !overridden(settings, today)) {
            settings.warnedLevel = 2;
            return BudgetStep::HangUpBudget;
        }
        if (settings.warnedLevel < 2) {
            settings.warnedLevel = 2;
            return BudgetStep::WarnFull;
        }
        return BudgetStep::None;
    }
    if (percent >= settings.warnPercent && settings.warnedLevel < 1) {
        settings.warnedLevel = 1;
        return BudgetStep::WarnShare;
    }
    return BudgetStep::None;
}

BudgetStep DataBudget::roamingStep(RoamingGuard guard, bool wasRoaming, bool roaming, bool linkUp) {
    if (!linkUp || wasRoaming || !roaming)
        return BudgetStep::None;
    switch (guard) {
    case RoamingGuard::Warn:
        return BudgetStep::WarnRoaming;
    case RoamingGuard::HangUp:
        return BudgetStep::HangUpRoaming;
    default:
        return BudgetStep::None;
    }
}

bool DataBudget::budgetRefusesDial(const BudgetSettings& settings, const BudgetUse& use, const QDate& today) {
    return settings.hasBudget() && settings.atLimit == BudgetLimitAction::HangUp &&
           percentUsed(settings, use) >= 100 && !overridden(settings, today);
}

bool DataBudget::roamingRefusesDial(RoamingGuard guard, bool roaming, bool allowedThisSession) {
    return guard != RoamingGuard::Off && roaming && !allowedThisSession;
}

quint64 DataBudget::parseSize(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("^\\s*(\\d{1,15}(?:\\.\\d{1,6})?)\\s*([kmgt]?)(?:i?b)?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return 0;
    const QString unit = match.captured(2).toLower();
    const int power = unit.isEmpty() ? 0 : static_cast<int>(QStringLiteral("kmgt").indexOf(unit)) + 1;
    return Scaled(match.captured(1), quint64{1} << (10 * power));
}

quint64 DataBudget::parseDuration(const QString& text) {
    static const QRegularExpression whole(QStringLiteral("^(?:\\s*\\d{1,9}\\s*[dhms])+\\s*$"),
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression part(QStringLiteral("(\\d{1,9})\\s*([dhms])"),
                                         QRegularExpression::CaseInsensitiveOption);
    if (!whole.match(text).hasMatch())
        return 0;
    quint64 seconds = 0;
    for (const QRegularExpressionMatch& match : part.globalMatch(text)) {
        const QChar unit = match.captured(2).toLower().at(0);
        const quint64 scale = unit == 'd' ? 86400 : unit == 'h' ? 3600 : unit == 'm' ? 60 : 1;
        seconds += match.captured(1).toULongLong() * scale;
    }
    return seconds;
}
