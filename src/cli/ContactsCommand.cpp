#include "ContactsCommand.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "AddressBookCommand.h"
#include "CommandLine.h"
#include "Completion.h"
#include "Contacts/ContactsController.h"
#include "ModemSession.h"
#include "ModemTextCheck.h"
#include "NumberArguments.h"
#include "ScriptDocuments.h"
#include "TerminalText.h"
#include "ToolText.h"

namespace {

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

int List(CliContext& context, ModemSession& session, const std::string& store) {
    ReportProgress(Tool::T("reading the phonebooks"));
    ContactsController phonebooks(session.link());
    const auto [outcome, items] = session.await(
        phonebooks, &ContactsController::contactsRead, [&] { phonebooks.readContacts(); },
        QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks"));
    if (const int failed = session.check(outcome, QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks")))
        return failed;
    const std::string region = context.json ? std::string() : SessionRegion(session);
    nlohmann::json list = nlohmann::json::array();
    std::vector<ContactRow> rows;
    for (const BLPbItem& item : items) {
        if (!store.empty() && StoreCode(store) != item.nStore)
            continue;
        list.push_back(ContactDocument(item));
        rows.push_back({StoreName(item.nStore), item.nIndex, item.strName,
                        TerminalText(NumberForReading(item.strNumber, region))});
    }
    if (context.json)
        PrintJson({{"contacts", list}});
    else
        PrintContactRows(rows);
    return EXIT_OK;
}

int Info(CliContext& context, ModemSession& session) {
    ContactsController phonebooks(session.link());
    const std::string usageWhat = QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks' use");
    const auto [usage, info] = session.await(
        phonebooks, &ContactsController::storageRead, [&] { phonebooks.readStorage(); }, usageWhat);
    if (const int failed = session.check(usage, usageWhat))
        return failed;
    const std::string limitsWhat = QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks' limits");
    const auto [limits, constraint] = session.await(
        phonebooks, &ContactsController::limitsRead, [&] { phonebooks.readLimits(); }, limitsWhat);
    if (const int failed = session.check(limits, limitsWhat))
        return failed;
    if (context.json) {
        PrintJson({{"sim",
                    {{"used", info.nSimUsed},
                     {"total", info.nSimTotal},
                     {"max_name_length", constraint.nSimMaxNameLen},
                     {"max_number_length", constraint.nSimMaxNumberLen}}},
                   {"modem",
                    {{"used", info.nMeUsed},
                     {"total", info.nMeTotal},
                     {"max_name_length", constraint.nMeMaxNameLen},
                     {"max_number_length", constraint.nMeMaxNumberLen}}}});
        return EXIT_OK;
    }
    const auto use = [](int used, int total, int names, int numbers) {
        return Tool::F(
            "%s of %s used; names up to %s, numbers up to %s characters",
            {std::to_string(used), std::to_string(total), std::to_string(names), std::to_string(numbers)});
    };
    FieldList fields;
    fields.add(Tool::T("SIM:"),
               use(info.nSimUsed, info.nSimTotal, constraint.nSimMaxNameLen, constraint.nSimMaxNumberLen));
    fields.add(Tool::T("Modem:"),
               use(info.nMeUsed, info.nMeTotal, constraint.nMeMaxNameLen, constraint.nMeMaxNumberLen));
    fields.print(7);
    return EXIT_OK;
}

// A write's result: the failed reading, the refusal with its figures, or the modem's answer.
int CheckWrite(CliContext& context, ModemSession& session, const ContactsController::Result& result,
               const ContactsArguments& arguments, const std::string& what) {
    using Reason = ContactsController::Refusal::Reason;
    const ContactsController::Refusal& refusal = result.refusal;
    const bool sim = arguments.store == "sim";
    const char* holder = sim ? "this SIM takes" : "the modem's phonebook takes";
    switch (refusal.reason) {
    case Reason::Full:
        return ReportFailure(context, result.outcome.code,
                             what + ": the " + arguments.store + " phonebook is full (" +
                                 std::to_string(refusal.have) + " of " + std::to_string(refusal.limit) +
                                 " used): delete a contact first (dialtone contacts delete " +
                                 arguments.store + " INDEX), or add it with --store " +
                                 (sim ? "modem" : "sim"));
    case Reason::NameTooLong:
    case Reason::NumberTooLong:
        return ReportFailure(context, result.outcome.code,
                             what + ": the " + (refusal.reason == Reason::NameTooLong ? "name" : "number") +
                                 " is " + std::to_string(refusal.have) +
                                 (refusal.reason == Reason::NameTooLong ? " characters; " : " digits; ") +
                                 holder + " at most " + std::to_string(refusal.limit));
    case Reason::None:
        break;
    }
    switch (result.step) {
    case ContactsController::Step::List:
        return session.check(result.outcome, QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks"));
    case ContactsController::Step::Storage:
        return session.check(result.outcome, QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks' use"));
    default:
        return session.check(result.outcome, what);
    }
}

int Add(CliContext& context, ModemSession& session, const ContactsArguments& arguments) {
    if (const int refused = CheckModemText("the name", arguments.name, kContactNameMaxLength))
        return refused;
    const std::optional<std::string> number = DialNumberOrCode(arguments.number, SessionRegion(session));
    if (!number)
        return EXIT_USAGE;
    const std::string what = "adding the contact";
    const BLPBNewItem item{StoreCode(arguments.store), Q(arguments.name), Q(*number)};
    ContactsController phonebooks(session.link());
    const auto [result] = session.await(
        phonebooks, &ContactsController::added,
        [&] { phonebooks.add(item.nStoreIn, item.strName, item.strNumber); }, what);
    if (const int failed = CheckWrite(context, session, result, arguments, what))
        return failed;
    if (context.json)
        PrintJson(ContactDocument({item.nStoreIn, item.strName, item.strNumber, result.index}));
    else
        std::printf("%s\n", Tool::F("Added to the %s phonebook at index %s",
                                    {arguments.store, std::to_string(result.index)})
                                .c_str());
    return EXIT_OK;
}

int Update(CliContext& context, ModemSession& session, const ContactsArguments& arguments) {
    if (const int refused = CheckModemText("the name", arguments.name, kContactNameMaxLength))
        return refused;
    const std::optional<std::string> number = DialNumberOrCode(arguments.number, SessionRegion(session));
    if (!number)
        return EXIT_USAGE;
    const std::string what = "updating the contact";
    const BLPbItem item{StoreCode(arguments.store), Q(arguments.name), Q(*number), arguments.index};
    ContactsController phonebooks(session.link());
    const auto [result] = session.await(
        phonebooks, &ContactsController::updated, [&] { phonebooks.update(item); }, what);
    if (const int failed = CheckWrite(context, session, result, arguments, what))
        return failed;
    if (context.json)
        PrintJson(ContactDocument(item));
    else
        std::printf("%s\n",
                    Tool::F("Updated %s %s", {arguments.store, std::to_string(arguments.index)}).c_str());
    return EXIT_OK;
}

int Delete(CliContext& context, ModemSession& session, const ContactsArguments& arguments) {
    const std::string what = QT_TRANSLATE_NOOP("dialtone", "deleting the contact");
    const BLPBDeleteItem item{StoreCode(arguments.store), arguments.index};
    ContactsController phonebooks(session.link());
    const auto [result] = session.await(
        phonebooks, &ContactsController::removed, [&] { phonebooks.remove(item.nStoreIn, item.nIndex); },
        what);
    if (const int failed = CheckWrite(context, session, result, arguments, what))
        return failed;
    if (context.json)
        PrintJson({{"storage", arguments.store}, {"index", item.nIndex}, {"deleted", true}});
    else
        std::printf("%s\n",
                    Tool::F("Deleted %s %s", {arguments.store, std::to_string(arguments.index)}).c_str());
    return EXIT_OK;
}

void AddStoreOption(CLI::App* command, ContactsArguments& arguments) {
    command->add_option("STORE", arguments.store, "The phonebook: sim, modem or pc")
        ->required()
        ->check(CLI::IsMember({"sim", "modem", "pc"}));
    command->add_option("INDEX", arguments.index, "The entry's index")->required()->check(WholeNumber(1));
}

} // namespace

void AddContactsCommand(CLI::App& app, CliContext& context) {
    CLI::App* contacts = app.add_subcommand(
        "contacts", "The SIM's and the modem's phonebooks, and the computer's address book");
    contacts->require_subcommand(1);
    auto arguments = std::make_shared<ContactsArguments>();

    CLI::App* list = contacts->add_subcommand("list", "Every contact of both phonebooks, or of one store");
    auto listStore = std::make_shared<std::string>();
    OfferValues(list->add_option("--store", *listStore, "Only this store: sim, modem or pc (the computer's)")
                    ->check(CLI::IsMember({"sim", "modem", "pc"})),
                {"sim", "modem", "pc"});
    list->callback([&context, listStore] {
        context.exitCode = *listStore == "pc" ? ListBook(context) : RunWithSim(context, [&](ModemSession& s) {
            return List(context, s, *listStore);
        });
    });
    contacts->add_subcommand("info", "Use and limits of both phonebooks")->callback([&context] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return Info(context, s); });
    });

    CLI::App* add = contacts->add_subcommand("add", "Add a contact at the first free index");
    add->add_option("NAME", arguments->name, "The name")->required();
    add->add_option("NUMBER", arguments->number, "The number")->required()->check(NumberOrCodeRefusal);
    OfferValues(add->add_option("--store", arguments->store, "The phonebook: sim (default), modem or pc")
                    ->check(CLI::IsMember({"sim", "modem", "pc"})),
                {"sim", "modem", "pc"});
    add->callback([&context, arguments] {
        if (arguments->store == "pc") {
            context.exitCode = AddToBook(context, arguments->name, arguments->number);
            return;
        }
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return Add(context, s, *arguments); });
    });

    CLI::App* update = contacts->add_subcommand("update", "Overwrite the contact at an index");
    AddStoreOption(update, *arguments);
    update->add_option("NAME", arguments->name, "The name")->required();
    update->add_option("NUMBER", arguments->number, "The number")->required()->check(NumberOrCodeRefusal);
    update->callback([&context, arguments] {
        if (arguments->store == "pc") {
            context.exitCode = UpdateInBook(context, arguments->index, arguments->name, arguments->number);
            return;
        }
        context.exitCode =
            RunWithSim(context, [&](ModemSession& s) { return Update(context, s, *arguments); });
    });

    CLI::App* remove = contacts->add_subcommand("delete", "Delete the contact at an index");
    AddStoreOption(remove, *arguments);
    remove->callback([&context, arguments] {
        if (arguments->store == "pc") {
            context.exitCode = DeleteFromBook(context, arguments->index);
            return;
        }
        context.exitCode =
            RunWithSim(context, [&](ModemSession& s) { return Delete(context, s, *arguments); });
    });

    AddAddressBookCommands(*contacts, context);
}
