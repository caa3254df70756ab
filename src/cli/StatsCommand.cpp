#include "StatsCommand.h"

#include "ScriptJson.h"

#include <QDate>
#include <QRegularExpression>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "ConvertUtilty.h"
#include "Statistics/StatisticsController.h"
#include "Units.h"

namespace {

using nlohmann::json;

constexpr int kDefaultDays = 30;

struct StatsArguments {
    std::string from;
    std::string to;
    bool history = false;
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

void PrintRow(const std::string& day, const _TrafficStaticsItem& item) {
    std::printf("%-12s %12s %12s %14s %16s\n", day.c_str(), Bytes(item.noRoamingSendBytes).c_str(),
                Bytes(item.noRoamingReceiveBytes).c_str(), Bytes(item.roamingSendBytes).c_str(),
                Bytes(item.roamingReceiveBytes).c_str());
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
                     {"reset_time", IsoTime(since.resetDate)}}}});
        return EXIT_OK;
    }

    std::printf("Traffic from %s to %s\n", qPrintable(from->toString(Qt::ISODate)),
                qPrintable(to->toString(Qt::ISODate)));
    std::printf("%-12s %12s %12s %14s %16s\n", "Day", "Sent", "Received", "Roaming sent", "Roaming received");
    for (const StatisticsDayRow& row : range.rows)
        PrintRow(row.strDay.toStdString(), row.item);
    if (range.rows.isEmpty())
        std::printf("(no traffic recorded on these days)\n");
    PrintRow("Total", range.total);
    std::printf("\n%s: sent %s, received %s, connection time %s\n",
                since.resetDate.isValid() ? ("Since the last reset on " + DateText(since.resetDate)).c_str()
                                          : "Since the first use (never reset)",
                Bytes(since.sentBytes).c_str(), Bytes(since.receivedBytes).c_str(),
                DurationText(since.connectTimeSeconds).c_str());
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
        std::printf("The totals since the last reset are zero now (reset on %s); the day history was %s.\n",
                    DateText(resetDate).c_str(), history ? "deleted" : "kept");
    }
    return EXIT_OK;
}

} // namespace

void AddStatsCommand(CLI::App& app, CliContext& context) {
    auto arguments = std::make_shared<StatsArguments>();
    CLI::App* stats = app.add_subcommand(
        "stats", "Traffic per day and since the last reset, as kept on this computer (no modem needed)");
    stats->add_option("--from", arguments->from, "First day, YYYY-MM-DD (default: 29 days before --to)");
    stats->add_option("--to", arguments->to, "Last day, YYYY-MM-DD (default: today)");

    CLI::App* reset = stats->add_subcommand(
        "reset", "Set the totals since the last reset to zero; the day history is kept unless --history");
    reset->add_flag("--history", arguments->history, "Also delete the whole day history");

    stats->callback([&context, arguments, reset] {
        context.exitCode = reset->parsed() ? Reset(context, arguments->history) : Show(context, *arguments);
    });
}
