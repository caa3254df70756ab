#include "SmsThreadCommand.h"

#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

#include "Contacts/ContactNames.h"
#include "PhoneNumbers.h"
#include "SMS/Conversation.h"
#include "ScriptJson.h"
#include "SmsCommand.h"
#include "TerminalText.h"
#include "ToolText.h"

namespace {

using nlohmann::json;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

std::string TimeText(const QDateTime& time) {
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd hh:mm")).toStdString() : "-";
}

// In English; shown through Tool::T.
const char* StateWord(ConversationMessage::State state) {
    static const char* const words[] = {
        QT_TRANSLATE_NOOP("dialtone", "unread"),        QT_TRANSLATE_NOOP("dialtone", "read"),
        QT_TRANSLATE_NOOP("dialtone", "unsent"),        QT_TRANSLATE_NOOP("dialtone", "sent"),
        QT_TRANSLATE_NOOP("dialtone", "delivered"),     QT_TRANSLATE_NOOP("dialtone", "pending"),
        QT_TRANSLATE_NOOP("dialtone", "not delivered"), QT_TRANSLATE_NOOP("dialtone", "draft"),
        QT_TRANSLATE_NOOP("dialtone", "failed")};
    return words[static_cast<int>(state)];
}

json EntryDocument(const ConversationMessage& message, const ContactNames& names) {
    json numbers = json::array();
    for (const QString& number : message.numbers)
        numbers.push_back(number.toStdString());
    const bool incoming = message.direction == ConversationMessage::Direction::Incoming;
    return {
        {"box", Conversation::boxName(message.box)},
        {"direction", incoming ? "in" : "out"},
        {"status", Conversation::stateName(message.state)},
        {"numbers", numbers},
        {"name", TextOrNull(message.numbers.isEmpty() ? QString() : names.nameFor(message.numbers.first()))},
        {"time", IsoTime(message.time)},
        {"text", message.text.toStdString()},
        {"complete", message.complete}};
}

// One line each: time, in or out, state, box, (who,) text.
void PrintEntries(const QList<ConversationMessage>& messages, const ContactNames& names, bool withWho) {
    std::size_t whoWidth = 16;
    for (const ConversationMessage& message : messages)
        whoWidth = std::max(whoWidth, DisplayWidth(TerminalText(names.label(message.numbers))));
    for (const ConversationMessage& message : messages) {
        const bool incoming = message.direction == ConversationMessage::Direction::Incoming;
        std::string text = TerminalText(message.text);
        if (!message.complete)
            text += " " + Tool::T("(incomplete)");
        std::string line = PadRight(TimeText(message.time), 16) + "  " +
                           PadRight(Tool::T(incoming ? QT_TRANSLATE_NOOP("dialtone", "in")
                                                     : QT_TRANSLATE_NOOP("dialtone", "out")),
                                    3) +
                           "  " + PadRight(Tool::T(StateWord(message.state)), 9) + "  " +
                           PadRight(Conversation::boxName(message.box), 8) + "  ";
        if (withWho)
            line += PadRight(TerminalText(names.label(message.numbers)), whoWidth) + "  ";
        std::cout << line << text << '\n';
    }
}

// The numbers of the conversation: a typed number, else a person's name in the book or the phonebooks,
// else an alphanumeric sender as the messages name it. Empty after a usage error was reported.
QStringList NumbersOf(const std::string& typed, const ContactNames& names,
                      const QList<ConversationMessage>& all, QString& name) {
    const PhoneNumbers::DialString parsed = PhoneNumbers::Parse(typed, names.region().toStdString());
    if (parsed.ok()) {
        name = names.nameFor(Q(parsed.number));
        return {Q(parsed.number)};
    }
    const QList<ContactNames::Person> people = names.byName(Q(typed));
    if (people.size() == 1) {
        name = people.first().name;
        return people.first().numbers;
    }
    if (people.size() > 1) {
        std::string list;
        for (const ContactNames::Person& person : people) {
            QStringList shown;
            for (const QString& number : person.numbers)
                shown << names.forReading(number);
            list +=
                "\n  " + TerminalText(person.name) + ": " + TerminalText(shown.join(QStringLiteral(", ")));
        }
        ReportUsage(Tool::F("\"%s\" names more than one contact; give one of the numbers:%s",
                            {TerminalText(typed), list}));
        return {};
    }
    for (const ConversationMessage& message : all) {
        for (const QString& number : message.numbers) {
            if (number.compare(Q(typed), Qt::CaseInsensitive) == 0)
                return {number};
        }
    }
    ReportUsage(Tool::F("no contact called \"%s\" in the address book or the phonebooks; give a number",
                        {TerminalText(typed)}));
    return {};
}

// Everything the modem and the computer hold, and who is behind the numbers.
int ReadAll(ModemSession& session, MessagesController& messages, QList<ConversationMessage>& all) {
    QList<BLSmsListItem> items;
    if (const int failed = ReadMessagesAndNames(session, messages, items))
        return failed;
    all = messages.everyMessage(items);
    return EXIT_OK;
}

int Thread(const CliContext& context, ModemSession& session, const std::string& typed) {
    MessagesController messages(session.link());
    QList<ConversationMessage> all;
    if (const int failed = ReadAll(session, messages, all))
        return failed;
    const ContactNames names = messages.names();
    QString name;
    const QStringList numbers = NumbersOf(typed, names, all, name);
    if (numbers.isEmpty())
        return EXIT_USAGE;
    const QList<ConversationMessage> thread = Conversation::thread(all, numbers, names.region());
    if (context.json) {
        json list = json::array();
        for (const ConversationMessage& message : thread)
            list.push_back(EntryDocument(message, names));
        json numberList = json::array();
        for (const QString& number : numbers)
            numberList.push_back(number.toStdString());
        PrintJson({{"name", TextOrNull(name)}, {"numbers", numberList}, {"messages", list}});
        return EXIT_OK;
    }
    QStringList shown;
    for (const QString& number : numbers)
        shown << names.forReading(number);
    std::cout << TerminalText(name.isEmpty() ? shown.join(QStringLiteral(", "))
                                             : name + QStringLiteral(": ") + shown.join(QStringLiteral(", ")))
              << '\n';
    PrintEntries(thread, names, numbers.size() > 1);
    if (thread.isEmpty())
        std::cout << Tool::T("No messages") << '\n';
    return EXIT_OK;
}

int Search(const CliContext& context, ModemSession& session, const std::string& text) {
    MessagesController messages(session.link());
    QList<ConversationMessage> all;
    if (const int failed = ReadAll(session, messages, all))
        return failed;
    const ContactNames names = messages.names();
    const QList<ConversationMessage> found = Conversation::search(all, Q(text), names);
    if (context.json) {
        json list = json::array();
        for (const ConversationMessage& message : found)
            list.push_back(EntryDocument(message, names));
        PrintJson({{"query", text}, {"messages", list}});
        return EXIT_OK;
    }
    PrintEntries(found, names, true);
    if (found.isEmpty())
        std::cout << Tool::F("No message holds \"%s\"", {TerminalText(text)}) << '\n';
    return EXIT_OK;
}

} // namespace

void AddSmsThreadCommands(CLI::App& sms, CliContext& context) {
    using Run = int (*)(const CliContext&, ModemSession&, const std::string&);
    struct Command {
        const char* name;
        const char* description;
        const char* argument;
        const char* argumentDescription;
        const char* whenEmpty;
        Run run;
    };
    const Command commands[] = {
        {"thread", "Every message to and from one person, oldest first, from every box", "NUMBER|NAME",
         "A number, or a name in the address book or the phonebooks", "give a number or a contact's name",
         Thread},
        {"search", "Messages in every box holding a text, a number or a contact's name", "TEXT",
         "Any part of a text, a number or a name (case does not matter)", "give some text to look for",
         Search},
    };
    for (const Command& command : commands) {
        auto typed = std::make_shared<std::string>();
        CLI::App* app = sms.add_subcommand(command.name, command.description);
        app->add_option(command.argument, *typed, command.argumentDescription)->required();
        app->callback([&context, typed, command] {
            if (typed->find_first_not_of(" \t") == std::string::npos) {
                context.exitCode = ReportUsage(command.whenEmpty);
                return;
            }
            context.exitCode =
                RunWithSim(context, [&](ModemSession& s) { return command.run(context, s, *typed); });
        });
    }
}
