#include "ProfilesCommand.h"

#include "ScriptJson.h"

#include <QCoreApplication>

#include <cstdio>
#include <functional>
#include <memory>

#include "AppConfig.h"
#include "BLRecords.h"
#include "Connector/ProfileSettingsController.h"
#include "ModemSession.h"
#include "ModemTextCheck.h"
#include "SecretInput.h"
#include "SimProfiles.h"
#include "ToolText.h"
#include "WorkNotification.h"

namespace {

struct NewProfile {
    std::string name;
    std::string apn;
    std::string number = "*99#";
    std::string user;
    std::string auth = "any";
    std::string dns1;
    std::string dns2;
    bool passwordFromStdin = false;
    bool makeDefault = false;
};

// The profiles offered for the SIM in the modem: the ones its IMSI chose from the operator database, then
// the user's. Numbers are 1-based positions in that list, as "dialtone connect" takes them.
struct OfferedList {
    QList<APNInfo> profiles;
    qsizetype simCount = 0;
    QString imsi;
};

// Runs the command with the configuration, the settings controller and the offered list.
int WithOffered(
    CliContext& context, ModemSession& session,
    const std::function<int(AppConfig&, ProfileSettingsController&, const OfferedList&)>& command) {
    AppConfig* config = SessionConfig(context);
    if (!config)
        return context.exitCode;
    ProfileSettingsController settings(*config);
    if (!LearnSim(context, session, *config, settings))
        return context.exitCode;
    OfferedList list;
    list.profiles = settings.offeredProfiles();
    list.simCount = settings.perSimProfiles() ? settings.perSimProfiles()->size() : 0;
    list.imsi = config->deviceInfo().strImsi;
    return command(*config, settings, list);
}

// The list index (the 90000 rule) of a number in the offered list; -1 when it names nothing.
int ConfigIndex(const OfferedList& list, int number) {
    if (number < 1 || number > list.profiles.size())
        return -1;
    const int position = number - 1;
    return position < list.simCount ? AppConfig::kIMSIListIndexBase + position
                                    : position - static_cast<int>(list.simCount);
}

int List(CliContext& context, const AppConfig& config, const OfferedList& list) {
    // Without a default of the user's own, the SIM's first profile is the one dialled.
    const bool userDefault = config.isSetDefaultUserApn() && !config.isFromIMSI();
    const bool simDefault = config.isSetDefaultUserApn() && config.isFromIMSI();
    const qsizetype defaultPosition = userDefault ? list.simCount : 0;
    nlohmann::json rows = nlohmann::json::array();
    for (qsizetype i = 0; i < list.profiles.size(); ++i) {
        const APNInfo& p = list.profiles[i];
        const bool fromSim = i < list.simCount;
        const bool isDefault = i == defaultPosition && (userDefault || simDefault || list.simCount > 0);
        rows.push_back({{"number", i + 1},
                        {"name", p.strAccount.toStdString()},
                        {"apn", TextOrNull(p.strApn)},
                        {"dial_number", TextOrNull(p.strDialNum)},
                        {"user_name", TextOrNull(p.strUserName)},
                        {"authentication", p.nAuthType == 1   ? "pap"
                                           : p.nAuthType == 2 ? "chap"
                                                              : "any"},
                        {"from_sim", fromSim},
                        {"default", isDefault}});
    }
    if (context.json) {
        PrintJson({{"imsi", TextOrNull(list.imsi)}, {"profiles", rows}});
        return EXIT_OK;
    }
    if (rows.empty()) {
        std::printf(
            "%s\n",
            Tool::T("No profiles for this SIM; add one with \"dialtone profiles add NAME APN\"").c_str());
        return EXIT_OK;
    }
    std::printf("  #  %s %s %s\n", PadRight(Tool::T("Name"), 28).c_str(),
                PadRight(Tool::T("APN"), 24).c_str(), PadRight(Tool::T("Number"), 8).c_str());
    const auto text = [](const nlohmann::json& value) {
        return value.is_string() ? value.get<std::string>() : "";
    };
    for (const auto& row : rows) {
        std::string notes;
        if (row["from_sim"].get<bool>())
            notes += "[" + Tool::T("for this SIM") + "]";
        if (row["default"].get<bool>())
            notes += (notes.empty() ? "[" : " [") + Tool::T("default") + "]";
        std::printf("%3d  %s %s %s %s\n", row["number"].get<int>(), PadRight(text(row["name"]), 28).c_str(),
                    PadRight(text(row["apn"]), 24).c_str(), PadRight(text(row["dial_number"]), 8).c_str(),
                    notes.c_str());
    }
    return EXIT_OK;
}

// Profile fields end up in a pppd options file; line breaks and zero bytes cannot be passed on.
bool Printable(const std::string& text) {
    for (const char c : text) {
        if (c == '\n' || c == '\r' || c == '\0')
            return false;
    }
    return true;
}

int Add(CliContext& context, const NewProfile& input) {
    for (const std::string* field : {&input.name, &input.dns1, &input.dns2}) {
        if (!Printable(*field))
            return ReportUsage("profile fields cannot hold line breaks");
    }
    // The APN goes into AT+CGDCONT, the number into the dial command, the user name into pppd's options.
    const struct {
        const char* what;
        const std::string& value;
        std::size_t maxLength;
    } sent[] = {{"the APN", input.apn, kApnMaxLength},
                {"the number", input.number, kDialStringMaxLength},
                {"the user name", input.user, kApnMaxLength}};
    for (const auto& field : sent) {
        if (const int refused = CheckModemText(field.what, field.value, field.maxLength))
            return refused;
    }
    if (input.name.empty())
        return ReportUsage("the profile needs a name");
    APNInfo profile;
    profile.strAccount = QString::fromStdString(input.name);
    profile.strApn = QString::fromStdString(input.apn);
    profile.strDialNum = QString::fromStdString(input.number);
    profile.strUserName = QString::fromStdString(input.user);
    profile.nAuthType = input.auth == "pap" ? 1 : input.auth == "chap" ? 2 : 0;
    if (!input.dns1.empty())
        profile.strDNS1 = QString::fromStdString(input.dns1);
    if (!input.dns2.empty())
        profile.strDNS2 = QString::fromStdString(input.dns2);
    if (input.passwordFromStdin) {
        std::string password;
        ReadSecretLine(Tool::T("Password"), password);
        if (!Printable(password))
            return ReportUsage("the password cannot hold line breaks");
        profile.strPassword = QString::fromStdString(password);
    }
    AppConfig config;
    ProfileSettingsController settings(config);
    settings.addProfile(profile);
    const int index = static_cast<int>(config.getUserApnList().size()) - 1;
    if (index < 0 || config.getUserApnList().at(index) != profile)
        return ReportFailure(context, WORKER_ERR_GENERAL, "the profile could not be saved");
    if (input.makeDefault)
        settings.setDefaultProfile(index);
    if (context.json)
        PrintJson({{"name", input.name}, {"default", input.makeDefault}});
    else
        std::printf("%s\n", (input.makeDefault ? Tool::F("Added \"%s\" as the default", {input.name})
                                               : Tool::F("Added \"%s\"", {input.name}))
                                .c_str());
    return EXIT_OK;
}

int SetDefault(CliContext& context, ProfileSettingsController& settings, const OfferedList& list,
               int number) {
    const int index = ConfigIndex(list, number);
    if (index < 0 || !settings.setDefaultProfile(index))
        return ReportUsage("no profile number " + std::to_string(number) +
                           " (see \"dialtone profiles list\")");
    const QString name = list.profiles[number - 1].strAccount;
    if (context.json)
        PrintJson({{"name", name.toStdString()}, {"default", true}});
    else
        std::printf("%s\n", Tool::F("\"%s\" is the default profile", {name.toStdString()}).c_str());
    return EXIT_OK;
}

int Delete(CliContext& context, ProfileSettingsController& settings, const OfferedList& list, int number) {
    const int index = ConfigIndex(list, number);
    if (index >= AppConfig::kIMSIListIndexBase)
        return ReportUsage("profile " + std::to_string(number) +
                           " comes with the SIM and cannot be deleted; choose another default instead");
    const QString name = index >= 0 ? list.profiles[number - 1].strAccount : QString();
    if (index < 0 || !settings.deleteProfile(index))
        return ReportUsage("no profile number " + std::to_string(number) +
                           " (see \"dialtone profiles list\")");
    if (context.json)
        PrintJson({{"name", name.toStdString()}, {"deleted", true}});
    else
        std::printf("%s\n", Tool::F("Deleted \"%s\"", {name.toStdString()}).c_str());
    return EXIT_OK;
}

} // namespace

void AddProfilesCommand(CLI::App& app, CliContext& context) {
    CLI::App* profiles = app.add_subcommand("profiles", "Connection profiles (APN, number, account)");
    profiles->require_subcommand(1);

    profiles->add_subcommand("list", "The profiles offered for the SIM, the default marked")
        ->callback([&context] {
            context.exitCode = RunInSession(context, [&](ModemSession& s) {
                return WithOffered(context, s,
                                   [&](AppConfig& config, ProfileSettingsController&,
                                       const OfferedList& list) { return List(context, config, list); });
            });
        });

    auto input = std::make_shared<NewProfile>();
    CLI::App* add = profiles->add_subcommand("add", "Add a profile of your own");
    add->add_option("NAME", input->name, "The name shown for it")->required();
    add->add_option("APN", input->apn, "The access point name")->required();
    add->add_option("--number", input->number, "The number dialled (default *99#)");
    add->add_option("--user", input->user, "The account's user name");
    add->add_flag("--password-stdin", input->passwordFromStdin,
                  "Read the account's password from standard input");
    add->add_option("--auth", input->auth, "Authentication: any, pap or chap")
        ->check(CLI::IsMember({"any", "pap", "chap"}));
    add->add_option("--dns1", input->dns1, "First name server (default: the network's)");
    add->add_option("--dns2", input->dns2, "Second name server");
    add->add_flag("--default", input->makeDefault, "Make it the default");
    add->callback([&context, input] {
        if (!QCoreApplication::instance()) {
            static int argc = 1;
            static char name[] = "dialtone";
            static char* argv[] = {name, nullptr};
            static QCoreApplication application(argc, argv);
        }
        context.exitCode = Add(context, *input);
    });

    auto number = std::make_shared<int>(0);
    CLI::App* setDefault = profiles->add_subcommand("default", "Make a profile the default");
    setDefault->add_option("NUMBER", *number, "Its number in \"dialtone profiles list\"")->required();
    setDefault->callback([&context, number] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return WithOffered(context, s,
                               [&](AppConfig&, ProfileSettingsController& settings, const OfferedList& list) {
                                   return SetDefault(context, settings, list, *number);
                               });
        });
    });
    CLI::App* remove = profiles->add_subcommand("delete", "Delete a profile of your own");
    remove->add_option("NUMBER", *number, "Its number in \"dialtone profiles list\"")->required();
    remove->callback([&context, number] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return WithOffered(context, s,
                               [&](AppConfig&, ProfileSettingsController& settings, const OfferedList& list) {
                                   return Delete(context, settings, list, *number);
                               });
        });
    });
}
