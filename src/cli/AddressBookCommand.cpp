#include "AddressBookCommand.h"

#include <QFileInfo>

#include <cstdio>
#include <memory>

#include "CommandLine.h"
#include "Completion.h"
#include "Contacts/ContactsController.h"
#include "Contacts/LocalPhoneBook.h"
#include "Contacts/PhonebookCopy.h"
#include "Contacts/VCardFile.h"
#include "DeviceUtility.h"
#include "ModemSession.h"
#include "NumberArguments.h"
#include "ScriptDocuments.h"
#include "TerminalText.h"
#include "ToolText.h"

using nlohmann::json;

namespace {

struct BookArguments {
    std::string file;
    std::string store = "pc";
    std::string from;
    std::string to;
    std::string text;
    bool force = false;
    bool version4 = false;
};

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

qint32 StoreCode(const std::string& name) {
    return name == "sim" ? kSimStore : kModemStore;
}

std::string StoreWords(const std::string& store) {
    if (store == "pc")
        return Tool::T("the computer's address book");
    return store == "sim" ? Tool::T("the SIM") : Tool::T("the modem's phonebook");
}

std::optional<std::string> BookNumber(const std::string& typed) {
    return DialNumberOrCode(typed, {});
}

json BookContactDocument(const LocalContact& contact, qsizetype at) {
    json numbers = json::array();
    for (const LocalContact::Number& entry : contact.numbers)
        numbers.push_back({{"label", entry.label.toStdString()}, {"number", entry.number.toStdString()}});
    json emails = json::array();
    for (const QString& email : contact.emails)
        emails.push_back(email.toStdString());
    return {{"storage", "pc"},
            {"index", at + 1},
            {"name", contact.name.toStdString()},
            {"number",
             contact.numbers.isEmpty() ? json(nullptr) : json(contact.numbers.first().number.toStdString())},
            {"numbers", numbers},
            {"emails", emails},
            {"note", contact.note.isEmpty() ? json(nullptr) : json(contact.note.toStdString())}};
}

// "+49 170 1234567 (mobile), 030 123456  <anna@example.org>"
std::string NumbersText(const LocalContact& contact) {
    QStringList numbers;
    for (const LocalContact::Number& entry : contact.numbers)
        numbers.append(entry.label.isEmpty() ? entry.number : entry.number + " (" + entry.label + ")");
    QString text = numbers.join(QStringLiteral(", "));
    for (const QString& email : contact.emails)
        text += QStringLiteral("  <") + email + u'>';
    return TerminalText(text);
}

} // namespace

void PrintContactRows(const std::vector<ContactRow>& rows) {
    if (rows.empty()) {
        std::printf("%s\n", Tool::T("No contacts").c_str());
        return;
    }
    std::printf("%s %s  %s %s\n", PadRight(Tool::T("STORE"), 6).c_str(), PadLeft(Tool::T("INDEX"), 5).c_str(),
                PadRight(Tool::T("NAME"), 30).c_str(), Tool::T("NUMBER").c_str());
    for (const ContactRow& row : rows) {
        const std::string name = TerminalText(row.name).append(
            static_cast<std::size_t>(std::max<qsizetype>(0, 30 - row.name.size())), ' ');
        std::printf("%-6s %5lld  %s %s\n", row.store.c_str(), static_cast<long long>(row.index), name.c_str(),
                    row.numbers.c_str());
    }
}

namespace {

void AppendBookRows(const LocalPhoneBook& book, const QList<qsizetype>& found, std::vector<ContactRow>& rows,
                    json& documents) {
    for (const qsizetype at : found) {
        const LocalContact& contact = book.contacts().at(at);
        rows.push_back({"pc", at + 1, contact.name, NumbersText(contact)});
        documents.push_back(BookContactDocument(contact, at));
    }
}

LocalPhoneBook LoadedBook() {
    LocalPhoneBook book;
    book.load(); // a damaged file is kept aside and said so on standard error
    return book;
}

int SaveBook(const CliContext& context, const LocalPhoneBook& book, const std::string& what) {
    if (book.save())
        return EXIT_OK;
    return ReportFailure(context, EXIT_FAILED,
                         what + ": " + book.path().toStdString() +
                             " could not be written; nothing was changed");
}

// The contacts among `contacts` that `text` finds, as the book's search does.
QList<LocalContact> Matching(const QList<LocalContact>& contacts, const std::string& text) {
    LocalPhoneBook scratch(QString{});
    scratch.contacts() = contacts;
    QList<LocalContact> found;
    for (const qsizetype at : scratch.search(Q(text)))
        found.append(contacts.at(at));
    return found;
}

QList<BLPbItem> OfStore(const QList<BLPbItem>& items, qint32 store) {
    QList<BLPbItem> kept;
    for (const BLPbItem& item : items) {
        if (item.nStore == store)
            kept.append(item);
    }
    return kept;
}

// The modem's phonebooks read into `phonebooks`; with their use and limits when asked.
int ReadPhonebooks(ModemSession& session, ContactsController& phonebooks, bool withLimits) {
    const char* what = QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks");
    ReportProgress(Tool::T(what));
    const auto [list, items] = session.await(
        phonebooks, &ContactsController::contactsRead, [&] { phonebooks.readContacts(); }, what);
    if (const int failed = session.check(list, what))
        return failed;
    if (!withLimits)
        return EXIT_OK;
    const auto [use, info] = session.await(
        phonebooks, &ContactsController::storageRead, [&] { phonebooks.readStorage(); }, what);
    if (const int failed = session.check(use, what))
        return failed;
    session.await(
        phonebooks, &ContactsController::limitsRead, [&] { phonebooks.readLimits(); }, what);
    return EXIT_OK;
}

int Import(CliContext& context, const BookArguments& arguments) {
    LocalPhoneBook book = LoadedBook();
    const VCardFile::Import result = VCardFile::importInto(book, Q(arguments.file), {});
    if (!result.ok())
        return ReportFailure(context, EXIT_FAILED, "importing: " + result.error.toStdString());
    const LocalPhoneBook::MergeCount& count = result.count;
    if (context.json) {
        PrintJson({{"file", arguments.file},
                   {"added", count.added},
                   {"merged", count.merged},
                   {"unchanged", count.unchanged},
                   {"refused", result.refused}});
        return EXIT_OK;
    }
    std::printf("%s\n", Tool::F("Imported %s: %s added, %s merged, %s "
                                "already there, %s refused (no name, number or e-mail)",
                                {arguments.file, std::to_string(count.added), std::to_string(count.merged),
                                 std::to_string(count.unchanged), std::to_string(result.refused)})
                            .c_str());
    return EXIT_OK;
}

int Export(CliContext& context, const BookArguments& arguments, const QList<LocalContact>& contacts) {
    const QString error =
        VCardFile::exportTo(contacts, Q(arguments.file),
                            arguments.version4 ? VCard::Version::V4 : VCard::Version::V3, arguments.force);
    if (!error.isEmpty())
        return ReportFailure(context, EXIT_FAILED, "exporting: " + error.toStdString());
    if (context.json)
        PrintJson({{"file", arguments.file}, {"storage", arguments.store}, {"contacts", contacts.size()}});
    else
        std::printf("%s\n",
                    Tool::F("Exported %s contacts from %s to %s",
                            {std::to_string(contacts.size()), StoreWords(arguments.store), arguments.file})
                        .c_str());
    return EXIT_OK;
}

int Search(CliContext& context, const BookArguments& arguments) {
    const LocalPhoneBook book = LoadedBook();
    std::vector<ContactRow> rows;
    json documents = json::array();
    AppendBookRows(book, book.search(Q(arguments.text)), rows, documents);
    QString dialPort;
    QString atPort;
    if (!context.devDir.empty())
        qputenv("DIALTONE_DEV_DIR", QByteArray::fromStdString(context.devDir));
    const bool modemThere = context.simulate || DeviceUtility::getModemDeviceName(dialPort, atPort);
    if (modemThere) {
        const int failed = RunWithSim(context, [&](ModemSession& session) -> int {
            ContactsController phonebooks(session.link());
            if (const int failed = ReadPhonebooks(session, phonebooks, false))
                return failed;
            const std::string region = SessionRegion(session);
            LocalPhoneBook scratch(QString{});
            for (const BLPbItem& item : phonebooks.contacts())
                scratch.contacts().append({{}, item.strName, {{{}, item.strNumber}}, {}, {}});
            for (const qsizetype at : scratch.search(Q(arguments.text))) {
                const BLPbItem& item = phonebooks.contacts().at(at);
                rows.push_back({item.nStore == kSimStore ? "sim" : "modem", item.nIndex, item.strName,
                                TerminalText(NumberForReading(item.strNumber, region))});
                documents.push_back(ContactDocument(item));
            }
            return EXIT_OK;
        });
        if (failed)
            return failed;
    }
    if (context.json)
        PrintJson({{"contacts", documents}});
    else
        PrintContactRows(rows);
    return EXIT_OK;
}

// The copy's fates for scripts, in the order of PhonebookCopy::Entry::Fate.
constexpr const char* kFateWords[] = {"copied",       "name_cut",        "already_there",
                                      "not_a_number", "number_too_long", "full"};

int CopyToPhonebook(CliContext& context, ModemSession& session, const BookArguments& arguments) {
    using Fate = PhonebookCopy::Entry::Fate;
    ContactsController phonebooks(session.link());
    if (const int failed = ReadPhonebooks(session, phonebooks, true))
        return failed;
    const qint32 store = StoreCode(arguments.to);
    const QList<LocalContact> source =
        arguments.from == "pc"
            ? LoadedBook().contacts()
            : PhonebookCopy::toBook(OfStore(phonebooks.contacts(), StoreCode(arguments.from)));
    const int maxNumber = ContactsController::maxNumber(phonebooks.limits(), store);
    QList<PhonebookCopy::Entry> entries =
        PhonebookCopy::toPhonebook(Matching(source, arguments.text), OfStore(phonebooks.contacts(), store),
                                   ContactsController::maxName(phonebooks.limits(), store), maxNumber,
                                   ContactsController::total(phonebooks.storage(), store) -
                                       ContactsController::used(phonebooks.storage(), store),
                                   Q(SessionRegion(session)));
    int copied = 0;
    int refused = 0;
    json documents = json::array();
    bool full = false;
    for (PhonebookCopy::Entry& entry : entries) {
        if (full && entry.copied())
            entry.fate = Fate::Full;
        if (entry.copied()) {
            const std::string what = "copying " + entry.name.toStdString();
            const auto [result] = session.await(
                phonebooks, &ContactsController::added,
                [&] { phonebooks.add(store, entry.name, entry.number); }, what);
            using Reason = ContactsController::Refusal::Reason;
            full = result.refusal.reason == Reason::Full;
            if (full)
                entry.fate = Fate::Full;
            else if (result.refusal.reason == Reason::NumberTooLong)
                entry.fate = Fate::NumberTooLong;
            else if (const int failed = session.check(result.outcome, what))
                return failed;
        }
        copied += entry.copied() ? 1 : 0;
        refused += entry.copied() || entry.fate == Fate::AlreadyThere ? 0 : 1;
        documents.push_back({{"contact", entry.contact.toStdString()},
                             {"name", entry.name.toStdString()},
                             {"number", entry.number.toStdString()},
                             {"result", kFateWords[static_cast<int>(entry.fate)]}});
        if (!context.json) {
            std::string fate = Tool::T("copied");
            if (entry.fate == Fate::NumberTooLong)
                fate = Tool::F("refused: %s takes numbers of up to %s digits",
                               {StoreWords(arguments.to), std::to_string(maxNumber)});
            else if (entry.fate == Fate::NotANumber)
                fate = Tool::T("refused: not a number a phonebook can keep");
            else if (entry.fate == Fate::Full)
                fate = Tool::F("refused: %s is full", {StoreWords(arguments.to)});
            else if (entry.fate == Fate::NameCut)
                fate = Tool::F("copied, name cut from \"%s\"", {entry.contact.toStdString()});
            else if (entry.fate == Fate::AlreadyThere)
                fate = Tool::T("already there");
            std::printf("%s %s  %s\n", TerminalText(entry.name).c_str(), TerminalText(entry.number).c_str(),
                        fate.c_str());
        }
    }
    if (context.json)
        PrintJson(
            {{"from", arguments.from}, {"to", arguments.to}, {"copied", copied}, {"entries", documents}});
    else
        std::printf("%s\n", Tool::F("Copied %s of %s numbers to %s",
                                    {std::to_string(copied), std::to_string(entries.size()),
                                     StoreWords(arguments.to)})
                                .c_str());
    if (refused == 0)
        return EXIT_OK;
    std::fprintf(stderr, "%s\n",
                 Tool::F("dialtone: %s numbers did not fit in %s: delete entries there (dialtone contacts "
                         "delete %s INDEX) or shorten them, and copy again",
                         {std::to_string(refused), StoreWords(arguments.to), arguments.to})
                     .c_str());
    return EXIT_FAILED;
}

int CopyToBook(CliContext& context, ModemSession& session, const BookArguments& arguments) {
    ContactsController phonebooks(session.link());
    if (const int failed = ReadPhonebooks(session, phonebooks, false))
        return failed;
    LocalPhoneBook book = LoadedBook();
    LocalPhoneBook::MergeCount count;
    const QList<LocalContact> source = Matching(
        PhonebookCopy::toBook(OfStore(phonebooks.contacts(), StoreCode(arguments.from))), arguments.text);
    if (!book.mergeAll(source, Q(SessionRegion(session)), count))
        return ReportFailure(context, EXIT_FAILED,
                             Tool::F("copying: the address book would hold more than %s contacts",
                                     {std::to_string(LocalPhoneBook::kMaxContacts)}));
    if (const int failed = SaveBook(context, book, "copying"))
        return failed;
    if (context.json)
        PrintJson({{"from", arguments.from},
                   {"to", "pc"},
                   {"added", count.added},
                   {"merged", count.merged},
                   {"unchanged", count.unchanged}});
    else
        std::printf("%s\n", Tool::F("Copied to the computer's address book: %s added, %s merged, %s already "
                                    "there",
                                    {std::to_string(count.added), std::to_string(count.merged),
                                     std::to_string(count.unchanged)})
                                .c_str());
    return EXIT_OK;
}

} // namespace

int ListBook(CliContext& context) {
    const LocalPhoneBook book = LoadedBook();
    std::vector<ContactRow> rows;
    json documents = json::array();
    AppendBookRows(book, book.search({}), rows, documents);
    if (context.json)
        PrintJson({{"contacts", documents}});
    else
        PrintContactRows(rows);
    return EXIT_OK;
}

int AddToBook(CliContext& context, const std::string& name, const std::string& number) {
    const std::optional<std::string> typed = BookNumber(number);
    if (!typed)
        return EXIT_USAGE;
    LocalPhoneBook book = LoadedBook();
    // Without a name, the number stands for it, as when the book is read.
    const QString given = Q(name).trimmed();
    const LocalContact contact{{}, given.isEmpty() ? Q(*typed) : given, {{{}, Q(*typed)}}, {}, {}};
    if (const QString over = LocalPhoneBook::overBounds(contact); !over.isEmpty())
        return ReportUsage(over.toStdString());
    const qsizetype at = book.add(contact);
    if (book.contacts().size() > LocalPhoneBook::kMaxContacts)
        return ReportFailure(context, EXIT_FAILED,
                             Tool::F("adding the contact: the address book is full (%s contacts)",
                                     {std::to_string(LocalPhoneBook::kMaxContacts)}));
    if (const int failed = SaveBook(context, book, "adding the contact"))
        return failed;
    if (context.json)
        PrintJson(BookContactDocument(book.contacts().at(at), at));
    else
        std::printf(
            "%s\n",
            Tool::F("Added to the computer's address book at index %s", {std::to_string(at + 1)}).c_str());
    return EXIT_OK;
}

int UpdateInBook(CliContext& context, int index, const std::string& name, const std::string& number) {
    const std::optional<std::string> typed = BookNumber(number);
    if (!typed)
        return EXIT_USAGE;
    LocalPhoneBook book = LoadedBook();
    if (index > book.contacts().size())
        return ReportUsage(
            Tool::F("no contact %s in the computer's address book (dialtone contacts list --store "
                    "pc shows them)",
                    {std::to_string(index)}));
    // The first number is the one given; the others, the e-mail addresses and the note stay.
    LocalContact contact = book.contacts().at(index - 1);
    contact.name = Q(name).trimmed().isEmpty() ? Q(*typed) : Q(name).trimmed();
    if (contact.numbers.isEmpty())
        contact.numbers.append(LocalContact::Number{});
    contact.numbers.first().number = Q(*typed);
    if (const QString over = LocalPhoneBook::overBounds(contact); !over.isEmpty())
        return ReportUsage(over.toStdString());
    book.update(index - 1, contact);
    if (const int failed = SaveBook(context, book, "updating the contact"))
        return failed;
    if (context.json)
        PrintJson(BookContactDocument(book.contacts().at(index - 1), index - 1));
    else
        std::printf("%s\n", Tool::F("Updated pc %s", {std::to_string(index)}).c_str());
    return EXIT_OK;
}

int DeleteFromBook(CliContext& context, int index) {
    LocalPhoneBook book = LoadedBook();
    if (!book.remove(index - 1))
        return ReportUsage(
            Tool::F("no contact %s in the computer's address book (dialtone contacts list --store "
                    "pc shows them)",
                    {std::to_string(index)}));
    if (const int failed = SaveBook(context, book, "deleting the contact"))
        return failed;
    if (context.json)
        PrintJson({{"storage", "pc"}, {"index", index}, {"deleted", true}});
    else
        std::printf("%s\n", Tool::F("Deleted pc %s", {std::to_string(index)}).c_str());
    return EXIT_OK;
}

void AddAddressBookCommands(CLI::App& contacts, CliContext& context) {
    auto arguments = std::make_shared<BookArguments>();

    CLI::App* import = contacts.add_subcommand(
        "import", "Read a vCard file into the computer's address book, all or nothing");
    import->add_option("FILE", arguments->file, "The .vcf file")->required()->check(CLI::ExistingFile);
    import->callback([&context, arguments] { context.exitCode = Import(context, *arguments);
});

CLI::App* exported = contacts.add_subcommand("export", "Write a phonebook to a vCard file");
exported->add_option("FILE", arguments->file, "The .vcf file to write")->required();
OfferValues(exported->add_option("--store", arguments->store, "The phonebook: pc (default), sim or modem")
                ->check(CLI::IsMember({"pc", "sim", "modem"})),
            {"pc", "sim", "modem"});
exported->add_flag("--force", arguments->force, "Overwrite the file when it exists");
exported->add_flag("--vcard4", arguments->version4, "Write vCard 4.0 instead of 3.0");
exported->callback([&context, arguments] {
    if (arguments->store == "pc") {
        context.exitCode = Export(context, *arguments, LoadedBook().contacts());
        return;
    }
    context.exitCode = RunWithSim(context, [&](ModemSession& session) {
        ContactsController phonebooks(session.link());
        if (const int failed = ReadPhonebooks(session, phonebooks, false))
            return failed;
        return Export(context, *arguments,
                      PhonebookCopy::toBook(OfStore(phonebooks.contacts(), StoreCode(arguments->store))));
    });
});

CLI::App* search = contacts.add_subcommand(
    "search", "Find contacts by part of a name or number, on the computer and, when there, the modem");
search->add_option("TEXT", arguments->text, "Part of a name or number")->required();
search->callback([&context, arguments] { context.exitCode = Search(context, *arguments); });

CLI::App* copy = contacts.add_subcommand("copy", "Copy contacts between the computer, the SIM and the modem");
for (auto [name, value] : {std::pair{"--from", &arguments->from}, std::pair{"--to", &arguments->to}})
    OfferValues(copy->add_option(name, *value, "pc, sim or modem")
                    ->required()
                    ->check(CLI::IsMember({"pc", "sim", "modem"})),
                {"pc", "sim", "modem"});
copy->add_option("TEXT", arguments->text, "Only the contacts found by this part of a name or number");
copy->callback([&context, arguments] {
    if (arguments->from == arguments->to) {
        context.exitCode = ReportUsage("--from and --to name the same phonebook");
        return;
    }
    context.exitCode = RunWithSim(context, [&](ModemSession& session) {
        return arguments->to == "pc" ? CopyToBook(context, session, *arguments)
                                     : CopyToPhonebook(context, session, *arguments);
    });
});
}
