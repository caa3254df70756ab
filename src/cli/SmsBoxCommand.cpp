#include "SmsBoxCommand.h"

#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "ModemSession.h"
#include "NumberArguments.h"
#include "SMS/MessageItem.h"
#include "SMS/MessagesController.h"
#include "SMS/SMSStorage.h"
#include "ScriptJson.h"
#include "SmsCommand.h"
#include "TerminalText.h"

namespace {

// The command's box names and the store's box type names.
const std::map<std::string, QString> kBoxes{{"outbox", SMS_BOX_OUTBOX},
                                            {"sent", SMS_BOX_SENDBOX},
                                            {"drafts", SMS_BOX_DRAFT},
                                            {"archive", SMS_BOX_ACHIVE}};

struct BoxArguments {
    std::vector<std::string> add;  // NUMBER TEXT
    int remove = 0;                // 1-based position, 0 for none
    std::vector<std::string> move; // N BOX
};

// The box's name on the command line, also in --json.
nlohmann::json BoxName(const QString& type) {
    for (const auto& [name, stored] : kBoxes) {
        if (stored == type)
            return name;
    }
    return nullptr;
}

void PrintBox(const CliContext& context, const QList<MessageItem>& items, const ContactNames& names) {
    if (context.json) {
        nlohmann::json list = nlohmann::json::array();
        int position = 0;
        for (const MessageItem& item : items) {
            nlohmann::json numbers = nlohmann::json::array();
            nlohmann::json people = nlohmann::json::array();
            for (const QString& number : item.getNumbers()) {
                numbers.push_back(number.toStdString());
                people.push_back(TextOrNull(names.nameFor(number)));
            }
            list.push_back(
                {{"index", ++position},
                 {"box", BoxName(item.getBoxType())},
                 {"numbers", numbers},
                 {"names", people},
                 {"time", IsoTime(item.getCreateTime())},
                 {"text", item.getContent().toStdString()},
                 {"status", TextOrNull(item.getTag().toLower())},
                 {"storage", item.getStorage() == "LOCAL" ? nlohmann::json("computer")
                                                          : TextOrNull(item.getStorage().toLower())}});
        }
        PrintJson({{"messages", list}});
        return;
    }
    int position = 0;
    for (const MessageItem& item : items) {
        const QDateTime time = item.getCreateTime();
        std::cout << ++position << "  " << TerminalText(names.label(item.getNumbers())) << "  "
                  << (time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd hh:mm")).toStdString() : "-")
                  << "  " << TerminalText(item.getContent()) << '\n';
    }
}

int ReportStoreResult(const CliContext& context, int result, const std::string& what) {
    if (result == SMSStorage::kOK)
        return EXIT_OK;
    if (result == SMSStorage::kNoSuchMessage)
        return ReportFailure(context, result,
                             what + ": another program changed the box meanwhile; list it again");
    return ReportFailure(context, result, what + ": the message store could not be written");
}

// The item at a 1-based position of the box, or a usage error.
std::optional<MessageItem> ItemAt(const QList<MessageItem>& items, int position) {
    if (position < 1 || position > items.size())
        return std::nullopt;
    return items.at(position - 1);
}

int RunBox(const CliContext& context, ModemSession& session, const std::string& box,
           const BoxArguments& arguments) {
    MessagesController messages(session.link());
    std::optional<MessagesController::Outcome> identified;
    messages.identify([&identified](const MessagesController::Outcome& outcome) { identified = outcome; });
    session.await([&identified] { return identified.has_value(); },
                  QT_TRANSLATE_NOOP("dialtone", "reading the SIM's IMSI"));
    if (const int failed =
            session.check(*identified, QT_TRANSLATE_NOOP("dialtone", "reading the SIM's IMSI")))
        return failed;
    const std::string region = RegionOfImsi(messages.imsi());
    const QString type = kBoxes.at(box);
    const QList<MessageItem> items = messages.box(type);

    if (arguments.add.size() == 2) {
        const std::optional<std::string> number = DialNumber(arguments.add[0], region);
        if (!number)
            return EXIT_USAGE;
        const int result =
            messages.keep({QString::fromStdString(*number)}, QString::fromStdString(arguments.add[1]), type);
        if (const int failed = ReportStoreResult(context, result, "adding the message"))
            return failed;
    } else if (arguments.remove != 0) {
        const auto item = ItemAt(items, arguments.remove);
        if (!item)
            return ReportUsage("no message " + std::to_string(arguments.remove) + " in " + box);
        if (const int failed = ReportStoreResult(context, messages.removeKept(*item),
                                                 QT_TRANSLATE_NOOP("dialtone", "deleting the message")))
            return failed;
    } else if (arguments.move.size() == 2) {
        const auto item = ItemAt(items, std::atoi(arguments.move[0].c_str()));
        if (!item)
            return ReportUsage("no message " + arguments.move[0] + " in " + box);
        const auto target = kBoxes.find(arguments.move[1]);
        if (target == kBoxes.end())
            return ReportUsage("no box \"" + arguments.move[1] + "\" (outbox, sent, drafts, archive)");
        if (const int failed = ReportStoreResult(context, messages.moveKept(*item, target->second),
                                                 QT_TRANSLATE_NOOP("dialtone", "moving the message")))
            return failed;
    }
    ReadNames(session, messages);
    PrintBox(context, messages.box(type), messages.names());
    return EXIT_OK;
}

} // namespace

void AddSmsBoxCommands(CLI::App& sms, CliContext& context) {
    const std::map<std::string, std::string> descriptions{{"outbox", "Messages waiting to be sent"},
                                                          {"sent", "Messages sent"},
                                                          {"drafts", "Messages being written"},
                                                          {"archive", "Messages put aside"}};
    for (const auto& [box, description] : descriptions) {
        auto arguments = std::make_shared<BoxArguments>();
        CLI::App* command = sms.add_subcommand(box, description + " (kept on the computer, per SIM)");
        auto* add = command->add_option("--add", arguments->add, "Add a message")
                        ->expected(2)
                        ->type_name("NUMBER TEXT");
        auto* remove = command->add_option("--delete", arguments->remove, "Delete the Nth message")
                           ->type_name("N")
                           ->check(WholeNumber(1));
        auto* move = command->add_option("--move", arguments->move, "Move the Nth message to another box")
                         ->expected(2)
                         ->type_name("N BOX");
        add->excludes(remove)->excludes(move);
        remove->excludes(move);
        command->callback([&context, arguments, box] {
            if (arguments->add.size() == 2) {
                if (const std::string refusal = NumberRefusal(arguments->add[0]); !refusal.empty()) {
                    context.exitCode = ReportUsage(refusal);
                    return;
                }
            }
            context.exitCode =
                RunInSession(context, [&](ModemSession& s) { return RunBox(context, s, box, *arguments); });
        });
    }
}
