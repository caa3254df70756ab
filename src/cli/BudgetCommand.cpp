#include "BudgetCommand.h"

#include <cstdio>
#include <memory>
#include <string>

#include "AppConfig.h"
#include "Budget/BudgetController.h"
#include "Budget/BudgetGuard.h"
#include "Completion.h"
#include "Equipment/EquipmentController.h"
#include "LocaleFormat.h"
#include "ModemSession.h"
#include "SimProfiles.h"
#include "ToolText.h"
#include "Units.h"
#include "WorkNotification.h"

namespace {

using nlohmann::json;

struct BudgetArguments {
    std::string size;
    int day = 0;
    std::string time;
    int warn = 0;
    std::string atLimit;
    std::string roaming;
};

const char* LimitName(BudgetLimitAction action) {
    return action == BudgetLimitAction::HangUp ? "hangup" : "warn";
}

const char* RoamingName(RoamingGuard guard) {
    return guard == RoamingGuard::HangUp ? "hangup" : guard == RoamingGuard::Warn ? "warn" : "off";
}

std::string Day(const QDate& date) {
    return date.toString(Qt::ISODate).toStdString();
}

// The IMSI of the SIM in the modem; empty once a failure is reported.
QString ReadImsi(CliContext& context, ModemSession& session) {
    EquipmentController equipment(session.link());
    BLEquipmentInfo info;
    if (const int failed = session.check(session.read([&](auto done) { equipment.readEquipment(done); }, info,
                                                      "reading the SIM's identity"),
                                         "reading the SIM's identity")) {
        context.exitCode = failed;
        return {};
    }
    if (!BudgetStore::validImsi(info.strImsi)) {
        context.exitCode = ReportFailure(context, WORKER_ERR_GENERAL, "the SIM did not tell its IMSI");
        return {};
    }
    return info.strImsi;
}

void PrintStatus(const BudgetStatus& status) {
    const BudgetSettings& s = status.settings;
    FieldList fields;
    fields.add(Tool::T("SIM (IMSI):"), status.imsi.toStdString());
    if (s.hasBudget()) {
        std::string budget;
        if (s.bytes > 0)
            budget = ByteText(s.bytes);
        if (s.seconds > 0)
            budget += (budget.empty() ? "" : ", ") + Tool::F("%s connected", {DurationText(s.seconds)});
        fields.add(Tool::T("Budget:"), Tool::F("%s per period, from day %s of the month",
                                               {budget, std::to_string(s.billingDay)}));
        fields.add(Tool::T("Period:"),
                   Tool::F("%s to %s, %s days left", {Day(status.period.first), Day(status.period.last),
                                                      std::to_string(status.daysLeft)}));
        fields.add(Tool::T("Used:"),
                   Tool::F("%s (%s %)", {status.usageText().toStdString(), std::to_string(status.percent)}));
        fields.add(Tool::T("Warning at:"), std::to_string(s.warnPercent) + " %");
        fields.add(Tool::T("At the limit:"), s.atLimit == BudgetLimitAction::HangUp
                                                 ? Tool::T("hang up and refuse to dial")
                                                 : Tool::T("warn"));
        if (status.overridden)
            fields.add(Tool::T("Override:"),
                       Tool::F("dialling over the budget until %s", {Day(s.overrideUntil)}));
    } else {
        fields.add(Tool::T("Budget:"), Tool::T("none (\"dialtone budget set 2GB --day 1\" sets one)"));
    }
    fields.add(Tool::T("Roaming guard:"), s.roaming == RoamingGuard::HangUp
                                              ? Tool::T("hang up and refuse to dial")
                                          : s.roaming == RoamingGuard::Warn ? Tool::T("warn")
                                                                            : Tool::T("off"));
    fields.print();
}

int Show(const CliContext& context, const BudgetStatus& status) {
    if (context.json)
        PrintJson(BudgetDocument(status));
    else
        PrintStatus(status);
    return EXIT_OK;
}

// The settings given on the command line over the stored ones; a usage error when they do not read.
int Apply(const BudgetArguments& a, BudgetSettings& s) {
    if (!a.size.empty() && !(s.bytes = DataBudget::parseSize(QString::fromStdString(a.size))))
        return ReportUsage("\"" + a.size + "\" is not a size (for example 2GB, 500MB, 1.5GiB)");
    if (!a.time.empty() && !(s.seconds = DataBudget::parseDuration(QString::fromStdString(a.time))))
        return ReportUsage("--time: \"" + a.time + "\" is not a duration (for example 10h, 90m, 2d12h)");
    if (a.size.empty() && a.time.empty() && !s.hasBudget())
        return ReportUsage("give a SIZE (for example 2GB) or --time (for example 10h)");
    if (a.day != 0)
        s.billingDay = a.day;
    if (a.warn != 0)
        s.warnPercent = a.warn;
    if (!a.atLimit.empty())
        s.atLimit = a.atLimit == "hangup" ? BudgetLimitAction::HangUp : BudgetLimitAction::Warn;
    return EXIT_OK;
}

int Run(CliContext& context, const std::function<int(BudgetController&, const QString& imsi)>& command) {
    return RunWithSim(context, [&](ModemSession& session) {
        AppConfig* config = SessionConfig(context);
        if (!config)
            return context.exitCode;
        const QString imsi = ReadImsi(context, session);
        if (imsi.isEmpty())
            return context.exitCode;
        BudgetController budget(*config);
        return command(budget, imsi);
    });
}

int Stored(CliContext& context, BudgetController& budget, const QString& imsi, bool written) {
    if (!written)
        return ReportFailure(context, WORKER_ERR_GENERAL,
                             "the budget could not be stored in " + budget.store().path().toStdString());
    return Show(context, budget.status(imsi, QDate::currentDate()));
}

} // namespace

json BudgetDocument(const BudgetStatus& status) {
    const BudgetSettings& s = status.settings;
    const auto orNull = [](quint64 value) { return value > 0 ? json(value) : json(nullptr); };
    return {{"imsi", status.imsi.toStdString()},
            {"budget_bytes", orNull(s.bytes)},
            {"budget_seconds", orNull(s.seconds)},
            {"billing_day", s.billingDay},
            {"warn_percent", s.warnPercent},
            {"at_limit", LimitName(s.atLimit)},
            {"roaming_guard", RoamingName(s.roaming)},
            {"period_first", Day(status.period.first)},
            {"period_last", Day(status.period.last)},
            {"days_left", status.daysLeft},
            {"used_bytes", status.use.bytes},
            {"used_seconds", status.use.seconds},
            {"percent", s.hasBudget() ? json(status.percent) : json(nullptr)},
            {"over_budget_allowed", status.overridden},
            {"dial_refused", status.refusesDial}};
}

std::string BudgetLine(const BudgetStatus& status) {
    return Tool::F("%s (%s %), %s days left until %s",
                   {status.usageText().toStdString(), std::to_string(status.percent),
                    std::to_string(status.daysLeft), Day(status.renewal())});
}

void AddBudgetCommand(CLI::App& app, CliContext& context) {
    auto arguments = std::make_shared<BudgetArguments>();
    CLI::App* budget = app.add_subcommand("budget", "The data budget and the roaming guard of the SIM");
    budget->require_subcommand(0, 1);

    budget->add_subcommand("status", "Show the budget, the current period and its use")->callback([&context] {
        context.exitCode = Run(context, [&](BudgetController& b, const QString& imsi) {
            return Show(context, b.status(imsi, QDate::currentDate()));
        });
    });

    CLI::App* set = budget->add_subcommand("set", "Set the budget of this SIM per billing period");
    set->add_option("SIZE", arguments->size, "Bytes per period, for example 2GB, 500MB, 1.5GiB");
    set->add_option("--day", arguments->day,
                    "The billing day the period starts on (1-31; 31 means the "
                    "month's last day in shorter months)")
        ->check(CLI::Range(1, DataBudget::kMaxBillingDay));
    set->add_option("--time", arguments->time, "Connected time per period, for example 10h, 90m, 2d12h");
    set->add_option("--warn", arguments->warn, "Warn when this share is used (percent, default 80)")
        ->check(CLI::Range(1, 99));
    OfferValues(set->add_option("--at-limit", arguments->atLimit,
                                "At 100 %: warn (default), or hangup: end the link and refuse to dial "
                                "until the next period")
                    ->check(CLI::IsMember({"warn", "hangup"})),
                {"warn", "hangup"});
    set->callback([&context, arguments] {
        context.exitCode = Run(context, [&](BudgetController& b, const QString& imsi) {
            BudgetSettings settings = b.store().load(imsi);
            if (const int usage = Apply(*arguments, settings))
                return usage;
            return Stored(context, b, imsi, b.set(imsi, settings));
        });
    });

    budget->add_subcommand("clear", "Remove the budget of this SIM (the roaming guard stays)")
        ->callback([&context] {
            context.exitCode = Run(context, [&](BudgetController& b, const QString& imsi) {
                return Stored(context, b, imsi, b.clear(imsi));
            });
        });

    CLI::App* roaming = budget->add_subcommand(
        "roaming", "When the modem starts roaming during a link: off, warn, or hangup (also refuses to dial "
                   "while roaming; \"dialtone connect --allow-roaming\" dials anyway)");
    OfferValues(roaming->add_option("GUARD", arguments->roaming, "off, warn or hangup")
                    ->required()
                    ->check(CLI::IsMember({"off", "warn", "hangup"})),
                {"off", "warn", "hangup"});
    roaming->callback([&context, arguments] {
        context.exitCode = Run(context, [&](BudgetController& b, const QString& imsi) {
            BudgetSettings settings = b.store().load(imsi);
            settings.roaming = arguments->roaming == "hangup" ? RoamingGuard::HangUp
                               : arguments->roaming == "warn" ? RoamingGuard::Warn
                                                              : RoamingGuard::Off;
            return Stored(context, b, imsi, b.store().save(imsi, settings));
        });
    });

    budget->callback([&context, budget] {
        if (budget->get_subcommands().empty())
            context.exitCode = Run(context, [&](BudgetController& b, const QString& imsi) {
                return Show(context, b.status(imsi, QDate::currentDate()));
            });
    });
}
