#include "ContactsCommand.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "ModemTextCheck.h"
#include "ModemSession.h"
#include "NumberArguments.h"
#include "PhonebookRecords.h"
#include "RecordJson.h"
#include "TerminalText.h"
#include "WorkNotification.h"

namespace {

// The phonebook family's storage codes: 0 is the SIM, any other the modem's own phonebook.
constexpr int kSimStore = 0;
constexpr int kModemStore = 1;

struct ContactsArguments {
    std::string store = "sim";
    int index = 0;
    std::string name;
    std::string number;
};

const char* StoreName(int store) {
    return store == kSimStore ? "sim" : "modem";
}

int StoreCode(const std::string& name) {
    return name == "sim" ? kSimStore : kModemStore;
}

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The name padded to a column width in characters, not bytes.
std::string Padded(const QString& name, int width) {
    return TerminalText(name).append(static_cast<std::size_t>(std::max<qsizetype>(0, width - name.size())),
                                     ' ');
}

int List(CliContext& context, ModemSession& session) {
    ReportProgress("reading the phonebooks");
    const QVariantMap response = session.request(MESSAGE_PB_INIT_LIST);
    if (const int failed = session.check(response, "reading the phonebooks"))
        return failed;
    const QList<BLPbItem> items = RecordList<BLPbItem>(WorkNotification::GetValueObject(response));
    if (context.json) {
        nlohmann::json document = nlohmann::json::array();
        for (const BLPbItem& item : items)
            document.push_back(VariantToJson(QVariant::fromValue(item)));
        PrintJson(document);
        return EXIT_OK;
    }
    if (items.isEmpty()) {
        std::printf("No contacts\n");
        return EXIT_OK;
    }
    const std::string region = SessionRegion(session);
    std::printf("%-6s %5s  %-30s %s\n", "STORE", "INDEX", "NAME", "NUMBER");
    for (const BLPbItem& item : items) {
        std::printf("%-6s %5d  %s %s\n", StoreName(item.nStore), item.nIndex,
                    Padded(item.strName, 30).c_str(), TerminalText(NumberForReading(item.strNumber, region)).c_str());
    }
    return EXIT_OK;
}

int Info(CliContext& context, ModemSession& session) {
    const QVariantMap usage = session.request(MESSAGE_PB_GET_STORAGE_INFO);
    if (const int failed = session.check(usage, "reading the phonebooks' use"))
        return failed;
    const QVariantMap limits = session.request(MESSAGE_PB_GET_CONSTRAINT);
    if (const int failed = session.check(limits, "reading the phonebooks' limits"))
        return failed;
    const auto info = WorkNotification::GetValueObject(usage).value<BLPBStorageInfo>();
    const auto constraint = WorkNotification::GetValueObject(limits).value<BLPbConstraint>();
    if (context.json) {
        PrintJson({{"storage", VariantToJson(QVariant::fromValue(info))},
                   {"constraint", VariantToJson(QVariant::fromValue(constraint))}});
        return EXIT_OK;
    }
    std::printf("SIM:    %d of %d used; names up to %d, numbers up to %d characters\n", info.nSimUsed,
                info.nSimTotal, constraint.nSimMaxNameLen, constraint.nSimMaxNumberLen);
    std::printf("Modem:  %d of %d used; names up to %d, numbers up to %d characters\n", info.nMeUsed,
                info.nMeTotal, constraint.nMeMaxNameLen, constraint.nMeMaxNumberLen);
    return EXIT_OK;
}

// The SIM's and the modem's limits are known: a name or number that does not fit is refused here with the
// numbers, rather than sent for the modem's bare "text string too long". EXIT_OK when it fits.
int RefuseWhatDoesNotFit(CliContext& context, ModemSession& session, const ContactsArguments& arguments,
                         const std::string& number, const std::string& what) {
    const QVariantMap limits = session.request(MESSAGE_PB_GET_CONSTRAINT);
    if (WorkNotification::GetErrorCode(limits) != WORKER_OK)
        return EXIT_OK; // the modem's own answer will tell
    const auto constraint = WorkNotification::GetValueObject(limits).value<BLPbConstraint>();
    const bool sim = arguments.store == "sim";
    const int maxName = sim ? constraint.nSimMaxNameLen : constraint.nMeMaxNameLen;
    const int maxNumber = sim ? constraint.nSimMaxNumberLen : constraint.nMeMaxNumberLen;
    const auto nameLength = static_cast<int>(Q(arguments.name).toUcs4().size());
    // The leading "+" is the number's type, not one of its digits.
    const auto numberLength = static_cast<int>(number.size()) - (number.starts_with('+') ? 1 : 0);
    const char* holder = sim ? "this SIM takes" : "the modem's phonebook takes";
    std::string problem;
    if (maxName > 0 && nameLength > maxName)
        problem = "the name is " + std::to_string(nameLength) + " characters; " + holder + " at most " +
                  std::to_string(maxName);
    else if (maxNumber > 0 && numberLength > maxNumber)
        problem = "the number is " + std::to_string(numberLength) + " digits; " + holder + " at most " +
                  std::to_string(maxNumber);
    if (problem.empty())
        return EXIT_OK;
    return ReportFailure(context, WORKER_ERR_INVALID_ARGUMENT, what + ": " + problem);
}

int Add(CliContext& context, ModemSession& session, const ContactsArguments& arguments) {
    if (const int refused = CheckModemText("the name", arguments.name, kContactNameMaxLength))
        return refused;
    const std::optional<std::string> number = DialNumberOrCode(arguments.number, SessionRegion(session));
    if (!number)
        return EXIT_USAGE;
    // The first free index comes from the last reading of the storage, so read both first.
    const QVariantMap list = session.request(MESSAGE_PB_INIT_LIST);
    if (const int failed = session.check(list, "reading the phonebooks"))
        return failed;
    const QVariantMap usage = session.request(MESSAGE_PB_GET_STORAGE_INFO);
    if (const int failed = session.check(usage, "reading the phonebooks' use"))
        return failed;
    const auto info = WorkNotification::GetValueObject(usage).value<BLPBStorageInfo>();
    const bool sim = arguments.store == "sim";
    const int used = sim ? info.nSimUsed : info.nMeUsed;
    const int total = sim ? info.nSimTotal : info.nMeTotal;
    if (total > 0 && used >= total) {
        return ReportFailure(
            context, WORKER_ERR_GENERAL,
            "adding the contact: the " + arguments.store + " phonebook is full (" + std::to_string(used) +
                " of " + std::to_string(total) + " used): delete a contact first (dialtone contacts delete " +
                arguments.store + " INDEX), or add it with --store " + (sim ? "modem" : "sim"));
    }
    if (const int failed = RefuseWhatDoesNotFit(context, session, arguments, *number, "adding the contact"))
        return failed;
    const BLPBNewItem item{StoreCode(arguments.store), Q(arguments.name), Q(*number)};
    const QVariantMap response = session.request(MESSAGE_PB_ADD_ITEM, QVariant::fromValue(item));
    if (const int failed = session.check(response, "adding the contact"))
        return failed;
    const int index = WorkNotification::GetValueObject(response).toInt();
    if (context.json)
        PrintJson(MapToJson(response));
    else
        std::printf("Added to the %s phonebook at index %d\n", arguments.store.c_str(), index);
    return EXIT_OK;
}

int Update(CliContext& context, ModemSession& session, const ContactsArguments& arguments) {
    if (const int refused = CheckModemText("the name", arguments.name, kContactNameMaxLength))
        return refused;
    const std::optional<std::string> number = DialNumberOrCode(arguments.number, SessionRegion(session));
    if (!number)
        return EXIT_USAGE;
    if (const int failed = RefuseWhatDoesNotFit(context, session, arguments, *number, "updating the contact"))
        return failed;
    const BLPbItem item{StoreCode(arguments.store), Q(arguments.name), Q(*number), arguments.index};
    const QVariantMap response = session.request(MESSAGE_PB_UPDATE_ITEM, QVariant::fromValue(item));
    if (const int failed = session.check(response, "updating the contact"))
        return failed;
    if (context.json)
        PrintJson(MapToJson(response));
    else
        std::printf("Updated %s %d\n", arguments.store.c_str(), arguments.index);
    return EXIT_OK;
}

int Delete(CliContext& context, ModemSession& session, const ContactsArguments& arguments) {
    const BLPBDeleteItem item{StoreCode(arguments.store), arguments.index};
    const QVariantMap response = session.request(MESSAGE_PB_DELETE_ITEM, QVariant::fromValue(item));
    if (const int failed = session.check(response, "deleting the contact"))
        return failed;
    if (context.json)
        PrintJson(MapToJson(response));
    else
        std::printf("Deleted %s %d\n", arguments.store.c_str(), arguments.index);
    return EXIT_OK;
}

void AddStoreOption(CLI::App* command, ContactsArguments& arguments) {
    command->add_option("STORE", arguments.store, "The phonebook: sim or modem")
        ->required()
        ->check(CLI::IsMember({"sim", "modem"}));
    command->add_option("INDEX", arguments.index, "The entry's index")
        ->required()
        ->check(CLI::PositiveNumber);
}

} // namespace

void AddContactsCommand(CLI::App& app, CliContext& context) {
    CLI::App* contacts = app.add_subcommand("contacts", "The SIM's and the modem's phonebooks");
    contacts->require_subcommand(1);
    auto arguments = std::make_shared<ContactsArguments>();

    contacts->add_subcommand("list", "Every contact of both phonebooks")->callback([&context] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return List(context, s); });
    });
    contacts->add_subcommand("info", "Use and limits of both phonebooks")->callback([&context] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return Info(context, s); });
    });

    CLI::App* add = contacts->add_subcommand("add", "Add a contact at the first free index");
    add->add_option("NAME", arguments->name, "The name")->required();
    add->add_option("NUMBER", arguments->number, "The number")->required()->check(NumberOrCodeRefusal);
    add->add_option("--store", arguments->store, "The phonebook: sim (default) or modem")
        ->check(CLI::IsMember({"sim", "modem"}));
    add->callback([&context, arguments] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return Add(context, s, *arguments); });
    });

    CLI::App* update = contacts->add_subcommand("update", "Overwrite the contact at an index");
    AddStoreOption(update, *arguments);
    update->add_option("NAME", arguments->name, "The name")->required();
    update->add_option("NUMBER", arguments->number, "The number")->required()->check(NumberOrCodeRefusal);
    update->callback([&context, arguments] {
        context.exitCode =
            RunWithSim(context, [&](ModemSession& s) { return Update(context, s, *arguments); });
    });

    CLI::App* remove = contacts->add_subcommand("delete", "Delete the contact at an index");
    AddStoreOption(remove, *arguments);
    remove->callback([&context, arguments] {
        context.exitCode =
            RunWithSim(context, [&](ModemSession& s) { return Delete(context, s, *arguments); });
    });
}
