#include "NetworkCommand.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>

#include "Completion.h"
#include "ModemSession.h"
#include "Network/NetworkController.h"
#include "RadioNames.h"
#include "ScriptDocuments.h"
#include "StatusText.h"
#include "TerminalText.h"
#include "ToolText.h"
#include "Units.h"

namespace {

struct NetworkArguments {
    std::string plmn;
    std::optional<int> act;
    std::string value;
};

// How a setting is typed and shown.
struct SettingNames {
    std::optional<int> (*parse)(const std::string& text, std::string& error);
    std::string (*text)(int value);
    std::vector<std::string> (*names)();
};

std::string Text(const QString& text) {
    return text.isEmpty() ? "-" : TerminalText(text);
}

// {"band": "GSM 900, UMTS 2100", "band_code": 6292224}, {"mode": "3g-preferred", "mode_code": 1}: the
// names as the command takes them, the modem's number beside them.
nlohmann::json SettingDocument(const std::string& label, const SettingNames& names, int value) {
    return {{label, names.text(value)}, {label + "_code", value}};
}

void ShowInfo(const BLNetworkInfo& info, int dbm) {
    FieldList fields;
    fields.add(Tool::T("Operator:"), TerminalText(OperatorText(info.strOperator, {})));
    if (!info.strSpName.isNull())
        fields.add(Tool::T("Provider:"), Text(info.strSpName));
    fields.add(Tool::T("Selection:"), info.nMode == BLNetworkSet::kModeAutomatic ? Tool::T("automatic")
                                      : info.nMode == BLNetworkSet::kModeManual
                                          ? Tool::T("manual")
                                          : Tool::F("mode %s", {std::to_string(info.nMode)}));
    fields.add(Tool::T("Technology:"), AccessTechnologyText(info.nAcT));
    fields.add(Tool::T("Roaming:"), ServiceStateText(info.nRoamState));
    fields.add(Tool::T("Signal:"), SignalLevelText(info.nRssi, dbm));
    fields.add(Tool::T("Bearer:"), BearerText(info.nBearer));
    fields.add(Tool::T("Packet service:"), RegistrationText(info.nGprsState));
    fields.print();
}

// A table cell and the space after it.
std::string Column(const std::string& text, std::size_t width) {
    return PadRight(text, width - 1) + " ";
}

void ShowList(const QList<BLNetworkListItem>& operators) {
    const std::string states[] = {Tool::T("unknown"), Tool::T("available"), Tool::T("current"),
                                  Tool::T("forbidden")};
    std::printf("%s%s%s%s%s\n", Column(Tool::T("STATUS"), 11).c_str(), Column(Tool::T("NAME"), 18).c_str(),
                Column(Tool::T("SHORT"), 10).c_str(), Column(Tool::T("CODE"), 8).c_str(),
                Tool::T("TECHNOLOGY").c_str());
    for (const BLNetworkListItem& item : operators) {
        const std::string& state = item.nState >= BLNetworkListItem::kStateUnknown &&
                                           item.nState <= BLNetworkListItem::kStateForbidden
                                       ? states[item.nState]
                                       : states[0];
        std::printf("%s%s%s%s%s\n", Column(state, 11).c_str(), Column(Text(item.strLongAlpha), 18).c_str(),
                    Column(Text(item.strShortAlpha), 10).c_str(),
                    Column(Text(item.strNumericAlpha), 8).c_str(), AccessTechnologyText(item.nAcT).c_str());
    }
}

int Select(CliContext& context, ModemSession& session, const BLNetworkSet& selection, const std::string& what,
           const char* done) {
    NetworkController network(session.link());
    const auto [outcome, plmn] = session.await(
        network, &NetworkController::selectFinished,
        [&] {
            if (selection.nMode == BLNetworkSet::kModeAutomatic)
                network.selectAutomatic();
            else
                network.selectOperator(selection.strOperator,
                                       selection.nMask & BLNetworkSet::kAcTGiven ? selection.nAcT : -1);
        },
        what, NetworkController::kScanDeadlineSeconds);
    if (const int failed = session.check(outcome, what))
        return failed;
    if (context.json)
        PrintJson(NetworkSetDocument(selection));
    else
        std::printf("%s\n", Tool::T(done).c_str());
    return EXIT_OK;
}

// "band"/"mode": reads the value, or sets it when one is given; by name, or as the modem's number.
template <typename Value>
void AddSetting(CLI::App& network, CliContext& context, const std::shared_ptr<NetworkArguments>& arguments,
                const char* label, const SettingNames& names, void (NetworkController::*read)(),
                void (NetworkController::*readDone)(const Outcome&, Value),
                void (NetworkController::*set)(Value), void (NetworkController::*setDone)(const Outcome&)) {
    CLI::App* sub = network.add_subcommand(label, std::string("Show the ") + label + ", or set it to VALUE");
    OfferValues(
        sub->add_option("VALUE", arguments->value, std::string("The new ") + label + ": a name or number"),
        names.names());
    const bool band = std::string_view(label) == "band";
    sub->callback([=, &context] {
        std::optional<int> wanted;
        if (!arguments->value.empty()) {
            std::string error;
            if (!(wanted = names.parse(arguments->value, error))) {
                context.exitCode = ReportUsage(error);
                return;
            }
        }
        context.exitCode = RunInSession(context, [&](ModemSession& s) -> int {
            NetworkController controller(s.link());
            if (wanted) {
                const std::string what = std::string("setting the ") + label;
                const auto value = static_cast<Value>(*wanted);
                const auto [outcome] = s.await(
                    controller, setDone, [&] { (controller.*set)(value); }, what);
                if (const int failed = s.check(outcome, what))
                    return failed;
                if (context.json)
                    PrintJson(SettingDocument(label, names, *wanted));
                else
                    std::printf("%s\n", (band ? Tool::F("band set to %s", {names.text(*wanted)})
                                              : Tool::F("mode set to %s", {names.text(*wanted)}))
                                            .c_str());
                return EXIT_OK;
            }
            const std::string what = std::string("reading the ") + label;
            const auto [outcome, value] = s.await(
                controller, readDone, [&] { (controller.*read)(); }, what);
            if (const int failed = s.check(outcome, what))
                return failed;
            if (context.json)
                PrintJson(SettingDocument(label, names, static_cast<int>(value)));
            else
                std::printf("%s %s\n", (band ? Tool::T("band:") : Tool::T("mode:")).c_str(),
                            names.text(static_cast<int>(value)).c_str());
            return EXIT_OK;
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
            const std::string what = QT_TRANSLATE_NOOP("dialtone", "reading the network information");
            NetworkController controller(s.link());
            const auto [outcome, info] = s.await(
                controller, &NetworkController::infoRead, [&] { controller.readInfo(); }, what);
            if (const int failed = s.check(outcome, what))
                return failed;
            if (context.json)
                PrintJson(NetworkDocument(info));
            else
                ShowInfo(info, ReadSignalDbm(s.link()));
            return EXIT_OK;
        });
    });

    network->add_subcommand("scan", "Search for the operators in reach (takes up to a few minutes)")
        ->callback([&context] {
            context.exitCode = RunWithSim(context, [&](ModemSession& s) -> int {
                ReportProgress(Tool::T("Searching for networks, this can take a minute..."));
                const std::string what = QT_TRANSLATE_NOOP("dialtone", "searching for networks");
                NetworkController controller(s.link());
                const auto [outcome, operators] = s.await(
                    controller, &NetworkController::scanFinished, [&] { controller.scan(); }, what,
                    NetworkController::kScanDeadlineSeconds);
                if (const int failed = s.check(outcome, what))
                    return failed;
                if (context.json) {
                    nlohmann::json list = nlohmann::json::array();
                    for (const BLNetworkListItem& item : operators)
                        list.push_back(OperatorDocument(item));
                    PrintJson({{"operators", list}});
                } else {
                    ShowList(operators);
                }
                return EXIT_OK;
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
        const BLNetworkSet selection = NetworkController::operatorSelection(
            QString::fromStdString(arguments->plmn), arguments->act.value_or(-1));
        context.exitCode = RunWithSim(context, [&](ModemSession& s) -> int {
            return Select(context, s, selection, QT_TRANSLATE_NOOP("dialtone", "selecting the network"),
                          QT_TRANSLATE_NOOP("dialtone", "Network selected"));
        });
    });

    network->add_subcommand("auto", "Let the modem choose the network")->callback([&context] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) -> int {
            return Select(context, s, NetworkController::automaticSelection(),
                          QT_TRANSLATE_NOOP("dialtone", "selecting automatic mode"),
                          QT_TRANSLATE_NOOP("dialtone", "Automatic network selection"));
        });
    });

    AddSetting<NetworkBand>(*network, context, arguments, "band", {ParseBand, BandText, BandNames},
                            &NetworkController::readBand, &NetworkController::bandRead,
                            &NetworkController::setBand, &NetworkController::bandSet);
    AddSetting<NetworkMode>(*network, context, arguments, "mode", {ParseMode, ModeText, ModeNames},
                            &NetworkController::readMode, &NetworkController::modeRead,
                            &NetworkController::setMode, &NetworkController::modeSet);

    network->add_subcommand("reg", "Registration state")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) -> int {
            const std::string what = QT_TRANSLATE_NOOP("dialtone", "reading the registration");
            NetworkController controller(s.link());
            const auto [outcome, registration] = s.await(
                controller, &NetworkController::registrationRead, [&] { controller.readRegistration(); },
                what);
            if (const int failed = s.check(outcome, what))
                return failed;
            if (context.json)
                PrintJson(RegistrationDocument(registration.nState));
            else
                std::printf("%s %s\n", PadRight(Tool::T("Registration:"), 16).c_str(),
                            RegistrationText(registration.nState).c_str());
            return EXIT_OK;
        });
    });
}
