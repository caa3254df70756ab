#include "StatsCommand.h"

#include "ScriptJson.h"

#include <QDate>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "Budget/BudgetController.h"
#include "BudgetCommand.h"
#include "ConvertUtilty.h"
#include "ScriptVocabulary.h"
#include "Statistics/SignalHistory.h"
#include "Statistics/StatisticsController.h"
#include "StatusText.h"
#include "ToolText.h"
#include "Units.h"

namespace {

using nlohmann::json;

constexpr int kDefaultDays = 30;

struct StatsArguments {
    std::string from;
    std::string to;
    bool history = false;
    bool signal = false;
    std::string day;
};

// The one configuration object of the process, made here when no other command made it.
AppConfig& Config() {
    ApplicationShell& shell = ApplicationShell::sharedShell();
    if (shell.appConfig() == nullptr)
        shell.setAppConfig(std::make_unique<AppConfig>());
    return *shell.appConfig();
}

std::optional<QDate> ParseDay(const std::string& text) {
    static const QRegularExpression form(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
    const QString value = QString::fromStdString(text);
    if (!form.match(value).hasMatch())
        return std::nullopt;
    const QDate date = QDate::fromString(value, QStringLiteral("yyyy-MM-dd"));
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

std::string Bytes(quint64 bytes) {
    return ByteText(bytes);
}

std::string DateText(const QDateTime& date) {
    return date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")).toStdString();
}

json DayCounters(const _TrafficStaticsItem& item) {
    return {{"sent_bytes", item.noRoamingSendBytes},
            {"received_bytes", item.noRoamingReceiveBytes},
            {"roaming_sent_bytes", item.roamingSendBytes},
            {"roaming_received_bytes", item.roamingReceiveBytes}};
}

// The table's columns: at least as wide as in English, wider where a translated heading needs it.
using ColumnWidths = std::array<std::size_t, 5>;

void PrintCells(const std::array<std::string, 5>& cells, const ColumnWidths& widths) {
    std::string line = PadRight(cells[0], widths[0]);
    for (std::size_t column = 1; column < cells.size(); ++column)
        line += " " + PadLeft(cells[column], widths[column]);
    std::printf("%s\n", line.c_str());
}

// Prints the headings over columns at least as wide as given; the widths for the rows below.
ColumnWidths PrintHeadings(const std::array<std::string, 5>& headings, ColumnWidths widths) {
    for (std::size_t column = 0; column < widths.size(); ++column)
        widths[column] = std::max(widths[column], DisplayWidth(headings[column]));
    PrintCells(headings, widths);
    return widths;
}

void PrintRow(const std::string& day, const _TrafficStaticsItem& item, const ColumnWidths& widths) {
    PrintCells({day, Bytes(item.noRoamingSendBytes), Bytes(item.noRoamingReceiveBytes),
                Bytes(item.roamingSendBytes), Bytes(item.roamingReceiveBytes)},
               widths);
}

int Show(const CliContext& context, const StatsArguments& arguments) {
    std::optional<QDate> from;
    std::optional<QDate> to;
    if (!arguments.from.empty() && !(from = ParseDay(arguments.from)))
        return ReportUsage("--from: \"" + arguments.from + "\" is not a valid date (YYYY-MM-DD)");
    if (!arguments.to.empty() && !(to = ParseDay(arguments.to)))
        return ReportUsage("--to: \"" + arguments.to + "\" is not a valid date (YYYY-MM-DD)");
    // Without --to the range ends today; without --from it covers the 30 days up to its end.
    if (!to)
        to = QDate::currentDate();
    if (!from)
        from = to->addDays(1 - kDefaultDays);
    if (*from > *to)
        return ReportUsage("--from " + from->toString(Qt::ISODate).toStdString() + " is after --to " +
                           to->toString(Qt::ISODate).toStdString());

    StatisticsController controller(Config());
    const StatisticsRange range = controller.rangeStatistics(*from, *to);
    const StatisticsSinceReset since = controller.sinceReset();
    // The budget of the SIM used last, against its current period.
    BudgetController budgets(Config());
    const QString lastSim = budgets.store().lastImsi();
    std::optional<BudgetStatus> budget;
    if (!lastSim.isEmpty())
        budget = budgets.status(lastSim, QDate::currentDate());
    if (budget && !budget->settings.hasBudget())
        budget.reset();

    if (context.json) {
        json days = json::array();
        for (const StatisticsDayRow& row : range.rows) {
            json day = DayCounters(row.item);
            // The history keeps its days as "yyyy/MM/dd"; scripts get ISO dates.
            day["day"] = QString(row.strDay).replace('/', '-').toStdString();
            days.push_back(day);
        }
        PrintJson({{"from", from->toString(Qt::ISODate).toStdString()},
                   {"to", to->toString(Qt::ISODate).toStdString()},
                   {"days", days},
                   {"total", DayCounters(range.total)},
                   {"since_reset",
                    {{"sent_bytes", since.sentBytes},
                     {"received_bytes", since.receivedBytes},
                     {"connection_time", since.connectTimeSeconds},
                     {"reset_time", IsoTime(since.resetDate)}}},
                   {"budget", budget ? BudgetDocument(*budget) : json(nullptr)}});
        return EXIT_OK;
    }

    std::printf("%s\n", Tool::F("Traffic from %s to %s", {from->toString(Qt::ISODate).toStdString(),
                                                          to->toString(Qt::ISODate).toStdString()})
                            .c_str());
    const ColumnWidths widths = PrintHeadings({Tool::T("Day"), Tool::T("Sent"), Tool::T("Received"),
                                               Tool::T("Roaming sent"), Tool::T("Roaming received")},
                                              {12, 12, 12, 14, 16});
    for (const StatisticsDayRow& row : range.rows)
        PrintRow(row.strDay.toStdString(), row.item, widths);
    if (range.rows.isEmpty())
        std::printf("%s\n", Tool::T("(no traffic recorded on these days)").c_str());
    PrintRow(Tool::T("Total"), range.total, widths);
    const std::string sinceWhen = since.resetDate.isValid()
                                      ? Tool::F("Since the last reset on %s", {DateText(since.resetDate)})
                                      : Tool::T("Since the first use (never reset)");
    std::printf("\n%s\n", Tool::F("%s: sent %s, received %s, connection time %s",
                                  {sinceWhen, Bytes(since.sentBytes), Bytes(since.receivedBytes),
                                   DurationText(since.connectTimeSeconds)})
                              .c_str());
    if (budget)
        std::printf("%s\n",
                    Tool::F("Budget from %s to %s: %s",
                            {budget->period.first.toString(Qt::ISODate).toStdString(),
                             budget->period.last.toString(Qt::ISODate).toStdString(), BudgetLine(*budget)})
                        .c_str());
    return EXIT_OK;
}

// The signal history of a day per hour, with the minutes where the bearer or the cell changed.
int ShowSignal(const CliContext& context, const std::string& dayText) {
    std::optional<QDate> day = QDate::currentDate();
    if (!dayText.empty() && !(day = ParseDay(dayText)))
        return ReportUsage("--day: \"" + dayText + "\" is not a valid date (YYYY-MM-DD)");
    const QList<SignalMinute> minutes = SignalHistory().day(*day);
    const QList<SignalHour> hours = SignalHistory::hoursOf(minutes);
    const QList<SignalChange> changes = SignalHistory::changesOf(minutes);
    const auto minuteAt = [&minutes](const QDateTime& at) {
        return *std::find_if(minutes.cbegin(), minutes.cend(),
                             [&at](const SignalMinute& m) { return m.minute == at; });
    };
    const auto cellOf = [](const SignalMinute& m) {
        return SignalSample{0, 0, 1, m.bearer, m.lac, m.ci}.cellText();
    };
    const std::string isoDay = day->toString(Qt::ISODate).toStdString();

    if (context.json) {
        json hourList = json::array(), changeList = json::array();
        for (const SignalHour& hour : hours)
            hourList.push_back({{"hour", hour.hour},
                                {"average_dbm", hour.averageDbm},
                                {"best_dbm", hour.bestDbm},
                                {"worst_dbm", hour.worstDbm},
                                {"minutes", hour.minutes}});
        for (const SignalChange& change : changes) {
            const SignalMinute minute = minuteAt(change.minute);
            changeList.push_back({{"time", IsoTime(change.minute)},
                                  {"bearer", change.bearer ? json(BearerName(minute.bearer)) : json()},
                                  {"cell", change.cell ? json(cellOf(minute).toStdString()) : json()}});
        }
        PrintJson({{"day", isoDay}, {"hours", hourList}, {"changes", changeList}});
        return EXIT_OK;
    }

    std::printf("%s\n", Tool::F("Signal on %s, in dBm per hour", {isoDay}).c_str());
    if (hours.isEmpty()) {
        std::printf("%s\n", Tool::T("(no signal recorded on this day)").c_str());
        return EXIT_OK;
    }
    const ColumnWidths widths = PrintHeadings(
        {Tool::T("Hour"), Tool::T("Average"), Tool::T("Best"), Tool::T("Worst"), Tool::T("Minutes")},
        {6, 8, 8, 8, 8});
    for (const SignalHour& hour : hours)
        PrintCells({QStringLiteral("%1:00").arg(hour.hour, 2, 10, QLatin1Char('0')).toStdString(),
                    std::to_string(hour.averageDbm), std::to_string(hour.bestDbm),
                    std::to_string(hour.worstDbm), std::to_string(hour.minutes)},
                   widths);
    for (const SignalChange& change : changes) {
        const SignalMinute minute = minuteAt(change.minute);
        const std::string at = change.minute.toString(QStringLiteral("hh:mm")).toStdString();
        if (change.bearer)
            std::printf("%s\n",
                        Tool::F("%s: the bearer changed to %s", {at, BearerText(minute.bearer)}).c_str());
        if (change.cell)
            std::printf("%s\n",
                        Tool::F("%s: the cell changed to %s", {at, cellOf(minute).toStdString()}).c_str());
    }
    return EXIT_OK;
}

int Reset(const CliContext& context, bool history) {
    StatisticsController controller(Config());
    if (!controller.resetTotals())
        return ReportFailure(context, EXIT_FAILED,
                             "the totals could not be reset: the settings were not written");
    if (history && !controller.deleteHistory())
        return ReportFailure(context, EXIT_FAILED,
                             "the totals were reset, but the day history could not be deleted");
    const QDateTime resetDate = controller.sinceReset().resetDate;
    if (context.json) {
        PrintJson({{"reset_time", IsoTime(resetDate)}, {"history_deleted", history}});
    } else {
        std::printf("%s\n", (history ? Tool::F("The totals since the last reset are zero now (reset on %s); "
                                               "the day history was deleted.",
                                               {DateText(resetDate)})
                                     : Tool::F("The totals since the last reset are zero now (reset on %s); "
                                               "the day history was kept.",
                                               {DateText(resetDate)}))
                                .c_str());
    }
    return EXIT_OK;
}

} // namespace

void AddStatsCommand(CLI::App& app, CliContext& context) {
    auto arguments = std::make_shared<StatsArguments>();
    CLI::App* stats = app.add_subcommand(
        "stats", "Traffic per day and since the last reset, as kept on this computer (no modem needed)");
    stats->add_option("--from", arguments->from, "First day, YYYY-MM-DD (default: 29 days before --to)");
    CLI::Option* to = stats->add_option("--to", arguments->to, "Last day, YYYY-MM-DD (default: today)");
    CLI::Option* signal = stats->add_flag("--signal", arguments->signal,
                                          "The signal per hour of one day and where the bearer or the cell "
                                          "changed, as recorded while the modem was in use");
    signal->excludes(to)->excludes("--from");
    stats->add_option("--day", arguments->day, "The day of --signal, YYYY-MM-DD (default: today)")
        ->needs(signal);

    CLI::App* reset = stats->add_subcommand(
        "reset", "Set the totals since the last reset to zero; the day history is kept unless --history");
    reset->add_flag("--history", arguments->history, "Also delete the whole day history");

    stats->callback([&context, arguments, reset] {
        context.exitCode = reset->parsed()     ? Reset(context, arguments->history)
                           : arguments->signal ? ShowSignal(context, arguments->day)
                                               : Show(context, *arguments);
    });
}
