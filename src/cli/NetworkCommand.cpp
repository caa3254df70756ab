#include "NetworkCommand.h"

#include <cstdio>
#include <memory>
#include <optional>

#include "BLRecords.h"
#include "ModemSession.h"
#include "RecordJson.h"
#include "StatusText.h"
#include "TerminalText.h"
#include "WorkNotification.h"

namespace {

// Selection fields of the operator-selection request (the modem's +COPS parameters).
constexpr qint32 kMaskMode = 1;
constexpr qint32 kMaskFormat = 2;
constexpr qint32 kMaskOperator = BLNetworkSet::kOperatorGiven;
constexpr qint32 kMaskAcT = 8;
constexpr qint32 kModeAutomatic = 0;
constexpr qint32 kModeManual = 1;
constexpr qint32 kFormatNumeric = 2;
// Searching for operators takes the modem up to three minutes.
constexpr int kScanDeadlineSeconds = 200;

struct NetworkArguments {
    std::string plmn;
    std::optional<int> act;
    std::optional<int> value;
};

std::string Text(const QString& text) {
    return text.isEmpty() ? "-" : TerminalText(text);
}

// Prints the request's value: JSON, or the text the command makes of it.
template <typename Show>
int Run(CliContext& context, ModemSession& session, const QString& name, const QVariant& argument,
        const std::string& what, int deadline, Show&& show) {
    const QVariantMap response = session.request(name, argument, deadline);
    if (const int failed = session.check(response, what))
        return failed;
    if (context.json)
        PrintJson(argument.isValid() ? MapToJson(response)
                                     : VariantToJson(WorkNotification::GetValueObject(response)));
    else
        show(WorkNotification::GetValueObject(response));
    return EXIT_OK;
}

void ShowInfo(const QVariant& value) {
    const auto info = value.value<BLNetworkInfo>();
    std::printf("Operator:        %s\n", TerminalText(OperatorText(info.strOperator, {})).c_str());
    if (!info.strSpName.isNull())
        std::printf("Provider:        %s\n", Text(info.strSpName).c_str());
    std::printf("Selection:       %s\n", info.nMode == kModeAutomatic ? "automatic"
                                         : info.nMode == kModeManual
                                             ? "manual"
                                             : ("mode " + std::to_string(info.nMode)).c_str());
    std::printf("Technology:      %s\n", AccessTechnologyText(info.nAcT).c_str());
    std::printf("Roaming:         %s\n", ServiceStateText(info.nRoamState).c_str());
    std::printf("Signal:          %s\n", SignalText(info.nRssi).c_str());
    std::printf("Bearer:          %s\n", BearerText(info.nBearer).c_str());
    std::printf("Packet service:  %s\n", RegistrationText(info.nGprsState).c_str());
}

void ShowList(const QVariant& value) {
    static const char* const states[] = {"unknown", "available", "current", "forbidden"};
    std::printf("%-10s %-17s %-9s %-7s %s\n", "STATUS", "NAME", "SHORT", "CODE", "TECHNOLOGY");
    for (const BLNetworkListItem& item : RecordList<BLNetworkListItem>(value)) {
        const char* state = item.nState >= 0 && item.nState <= 3 ? states[item.nState] : "unknown";
        std::printf("%-10s %-17s %-9s %-7s %s\n", state, Text(item.strLongAlpha).c_str(),
                    Text(item.strShortAlpha).c_str(), Text(item.strNumericAlpha).c_str(),
                    AccessTechnologyText(item.nAcT).c_str());
    }
}

void ShowDone(const char* text) {
    std::printf("%s\n", text);
}

// "band"/"mode": reads the value, or sets it when one is given.
void AddSetting(CLI::App& network, CliContext& context, const std::shared_ptr<NetworkArguments>& arguments,
                const char* command, const QString& getName, const QString& setName, const char* label) {
    CLI::App* sub =
        network.add_subcommand(command, std::string("Show the ") + label + ", or set it to VALUE");
    sub->add_option("VALUE", arguments->value, std::string("The new ") + label);
    sub->callback([&context, arguments, getName, setName, label] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) -> int {
            if (arguments->value) {
                return Run(context, s, setName, *arguments->value, std::string("setting the ") + label,
                           ModemSession::kDefaultDeadlineSeconds,
                           [&](const QVariant&) { std::printf("%s set to %d\n", label, *arguments->value); });
            }
            return Run(context, s, getName, {}, std::string("reading the ") + label,
                       ModemSession::kDefaultDeadlineSeconds,
                       [&](const QVariant& v) { std::printf("%s: %d\n", label, v.toInt()); });
        });
    });
}

} // namespace

void AddNetworkCommand(CLI::App& app, CliContext& context) {
    CLI::App* network =
        app.add_subcommand("network", "The network: info, scan, select, auto, band, mode, reg");
    network->require_subcommand(1);
    auto arguments = std::make_shared<NetworkArguments>();

    network->add_subcommand("info", "Operator, technology, signal, bearer, roaming")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) -> int {
            return Run(context, s, MESSAGE_NETWORK_GET_INFO, {}, "reading the network information",
                       ModemSession::kDefaultDeadlineSeconds, ShowInfo);
        });
    });

    network->add_subcommand("scan", "Search for the operators in reach (takes up to a few minutes)")
        ->callback([&context] {
            context.exitCode = RunWithSim(context, [&](ModemSession& s) -> int {
                ReportProgress("Searching for networks, this can take a minute...");
                return Run(context, s, MESSAGE_NETWORK_GET_LIST, {}, "searching for networks",
                           kScanDeadlineSeconds, ShowList);
            });
        });

    CLI::App* select = network->add_subcommand("select", "Register with one operator by its code (MCCMNC)");
    select->add_option("MCCMNC", arguments->plmn, "The operator's code, e.g. 26202")
        ->required()
        ->check(CLI::Validator(
            [](std::string& text) {
                const bool digits = text.find_first_not_of("0123456789") == std::string::npos;
                return digits && (text.size() == 5 || text.size() == 6) ? std::string()
                                                                        : "MCCMNC must be 5 or 6 digits";
            },
            "MCCMNC"));
    select->add_option("--act", arguments->act, "Access technology (0 GSM, 2 UTRAN, ...)")
        ->check(CLI::Range(0, 9));
    select->callback([&context, arguments] {
        BLNetworkSet set;
        set.nMask = kMaskMode | kMaskFormat | kMaskOperator;
        set.nMode = kModeManual;
        set.nFormat = kFormatNumeric;
        set.strOperator = QString::fromStdString(arguments->plmn);
        if (arguments->act) {
            set.nMask |= kMaskAcT;
            set.nAcT = *arguments->act;
        }
        context.exitCode = RunWithSim(context, [&](ModemSession& s) -> int {
            return Run(context, s, MESSAGE_NETWORK_SET, QVariant::fromValue(set), "selecting the network",
                       kScanDeadlineSeconds, [](const QVariant&) { ShowDone("Network selected"); });
        });
    });

    network->add_subcommand("auto", "Let the modem choose the network")->callback([&context] {
        BLNetworkSet set;
        set.nMask = kMaskMode;
        set.nMode = kModeAutomatic;
        context.exitCode = RunWithSim(context, [&](ModemSession& s) -> int {
            return Run(context, s, MESSAGE_NETWORK_SET, QVariant::fromValue(set), "selecting automatic mode",
                       kScanDeadlineSeconds,
                       [](const QVariant&) { ShowDone("Automatic network selection"); });
        });
    });

    AddSetting(*network, context, arguments, "band", NETWORK_GET_BAND, NETWORK_SET_BAND, "band");
    AddSetting(*network, context, arguments, "mode", NETWORK_GET_MODE, NETWORK_SET_MODE, "mode");

    network->add_subcommand("reg", "Registration state")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) -> int {
            return Run(context, s, NETWORK_GET_REG_STATE, {}, "reading the registration",
                       ModemSession::kDefaultDeadlineSeconds, [](const QVariant& v) {
                           std::printf("Registration:    %s\n",
                                       RegistrationText(v.value<BLNetRegState>().nState).c_str());
                       });
        });
    });
}
