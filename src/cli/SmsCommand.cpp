#include "SmsCommand.h"

#include <QEventLoop>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "BLRecords.h"
#include "CommandLine.h"
#include "ModemSession.h"
#include "NumberArguments.h"
#include "SMS/MessagesController.h"
#include "SMS/SMSStorage.h"
#include "SMS/SmsPduText.h"
#include "ScriptDocuments.h"
#include "Service/ServiceSettings.h"
#include "SmsBoxCommand.h"
#include "SmsThreadCommand.h"
#include "TerminalText.h"
#include "ToolText.h"

namespace {

using nlohmann::json;

std::atomic<bool> g_interrupted{false};

void OnInterrupt(int) {
    g_interrupted = true;
}

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The storage for new messages and the validity period live in the worker only while it runs, so every
// run applies them again (the modem service applies them itself whenever the modem comes up).
QVariant Setting(const QString& key, const QVariant& fallback = {}) {
    return ServiceSettings::open()->value(key, fallback);
}

const std::map<std::string, int> kStorages{
    {"sim", SmsStorage::kSim}, {"modem", SmsStorage::kModem}, {"pc", SmsStorage::kPc}};

std::string StorageName(int storage) {
    for (const auto& [name, code] : kStorages) {
        if (code == storage)
            return name;
    }
    return "?";
}

// CODE as "pdu encode --validity" takes it, as the worker's record.
std::optional<BLSmsValidPeriod> ParseValidity(const std::string& code) {
    const std::optional<SmsPduText::Validity> parsed = SmsPduText::ParseValidity(code);
    if (!parsed)
        return std::nullopt;
    BLSmsValidPeriod period;
    period.bWeek = parsed->weeks;
    period.bDay = parsed->days;
    period.bHour = parsed->hours;
    return period;
}

using Outcome = MessagesController::Outcome;

} // namespace

int AwaitStep(ModemSession& session, const std::string& what,
              const std::function<void(MessagesController::Done)>& step, int deadlineSeconds) {
    std::optional<Outcome> outcome;
    step([&outcome](const Outcome& answer) { outcome = answer; });
    session.await([&outcome] { return outcome.has_value(); }, what, deadlineSeconds);
    return session.check(*outcome, what);
}

// The SIM's computer-side inbox is registered so that nothing taken out of the modem memory is lost.
int PrepareSms(ModemSession& session, MessagesController& messages) {
    if (const int failed = AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "preparing the messages"),
                                     [&](auto done) { messages.initialise(done); }))
        return failed;
    if (const int failed = AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "reading the SIM's IMSI"),
                                     [&](auto done) { messages.identify(done); }))
        return failed;
    // Without the inbox the modem keeps its messages; nothing to refuse the command for.
    bool registered = false;
    messages.useComputerInbox([&registered](const Outcome&) { registered = true; });
    session.await([&registered] { return registered; },
                  QT_TRANSLATE_NOOP("dialtone", "keeping messages on the computer"));
    const int storage = Setting(ServiceSettings::kStorageKey, SmsStorage::kModem).toInt();
    if (storage != SmsStorage::kModem) {
        if (const int failed =
                AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "choosing the storage for new messages"),
                          [&](auto done) { messages.setPreferredStorage(storage, done); }))
            return failed;
    }
    return EXIT_OK;
}

int ReadMessages(ModemSession& session, MessagesController& messages, QList<BLSmsListItem>& items) {
    return AwaitStep(
        session, QT_TRANSLATE_NOOP("dialtone", "reading the messages"),
        [&](MessagesController::Done done) {
            messages.list([&items, done](const Outcome& outcome, const QList<BLSmsListItem>& listed) {
                items = listed;
                done(outcome);
            });
        },
        180);
}

void ReadNames(ModemSession& session, MessagesController& messages) {
    messages.readAddressBook();
    // Without the phonebooks the book's names still show.
    bool read = false;
    messages.readPhonebooks([&read](const Outcome&) { read = true; });
    session.await([&read] { return read; }, QT_TRANSLATE_NOOP("dialtone", "reading the phonebooks"));
}

int ReadMessagesAndNames(ModemSession& session, MessagesController& messages, QList<BLSmsListItem>& items) {
    if (const int failed = PrepareSms(session, messages))
        return failed;
    if (const int failed = ReadMessages(session, messages, items))
        return failed;
    ReadNames(session, messages);
    return EXIT_OK;
}

namespace {

// In English; shown through Tool::T.
const char* StateWord(const BLSmsListItem& item) {
    if (item.nType == SmsType::kStatusReport)
        return QT_TRANSLATE_NOOP("dialtone", "report");
    static const char* const tags[] = {
        QT_TRANSLATE_NOOP("dialtone", "unread"), QT_TRANSLATE_NOOP("dialtone", "read"),
        QT_TRANSLATE_NOOP("dialtone", "unsent"), QT_TRANSLATE_NOOP("dialtone", "sent")};
    return item.nTag >= 0 && item.nTag < 4 ? tags[item.nTag] : "?";
}

std::string TimeText(const QDateTime& time) {
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd hh:mm")).toStdString() : "-";
}

void PrintItem(const BLSmsListItem& item, const std::string& who, std::size_t whoWidth) {
    const bool report = item.nType == SmsType::kStatusReport;
    std::string text = report ? Tool::F("delivery status %s", {std::to_string(item.nStatusReportStatus)})
                              : TerminalText(item.strContent);
    if (!item.nCompleted && !report)
        text += " " + Tool::T("(incomplete)");
    std::printf("%4d  %-5s  %s  %s  %-16s  %s\n", item.nRef, StorageName(item.nStoreIn).c_str(),
                PadRight(Tool::T(StateWord(item)), 6).c_str(), PadRight(who, whoWidth).c_str(),
                TimeText(item.dateTime).c_str(), text.c_str());
}

void PrintKept(const std::string& storage) {
    std::cout << (storage == "pc" ? Tool::T("New messages are kept on the computer")
                                  : Tool::F("New messages are kept on the %s", {storage}))
              << '\n';
}

int List(const CliContext& context, ModemSession& session) {
    MessagesController messages(session.link());
    QList<BLSmsListItem> items;
    if (const int failed = ReadMessagesAndNames(session, messages, items))
        return failed;
    const ContactNames names = messages.names();
    if (context.json) {
        json list = json::array();
        for (const BLSmsListItem& item : items)
            list.push_back(MessageDocument(item, names.nameFor(item.strAddress)));
        PrintJson({{"messages", list}});
        return EXIT_OK;
    }
    std::vector<std::string> who;
    std::size_t whoWidth = 16;
    for (const BLSmsListItem& item : items) {
        who.push_back(TerminalText(names.label(item.strAddress)));
        whoWidth = std::max(whoWidth, DisplayWidth(who.back()));
    }
    for (qsizetype at = 0; at < items.size(); ++at)
        PrintItem(items.at(at), who.at(at), whoWidth);
    return EXIT_OK;
}

int Send(const CliContext& context, ModemSession& session, const std::string& typed, const std::string& text,
         bool report) {
    MessagesController messages(session.link());
    if (const int failed = PrepareSms(session, messages))
        return failed;
    const std::optional<std::string> dial = DialNumber(typed, RegionOfImsi(messages.imsi()));
    if (!dial)
        return EXIT_USAGE;
    const std::string& number = *dial;
    if (report) {
        if (const int failed =
                AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "asking for a delivery report"),
                          [&](auto done) { messages.setStatusReport(true, done); }))
            return failed;
    }
    const QString validity = Setting(ServiceSettings::kValidityKey).toString();
    if (const auto period = ParseValidity(validity.toStdString())) {
        if (const int failed =
                AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "setting the validity period"),
                          [&](auto done) { messages.setValidity(*period, done); }))
            return failed;
    }
    const int segments = MessagesController::segmentCount(Q(text));
    if (segments > 1)
        ReportProgress(Tool::F("Sending %s messages...", {std::to_string(segments)}));
    if (const int failed = AwaitStep(
            session, QT_TRANSLATE_NOOP("dialtone", "sending the message"),
            [&](auto done) { messages.send(Q(number), Q(text), done); }, 60 + 30 * segments))
        return failed;
    const bool kept = messages.keep({Q(number)}, Q(text), SMS_BOX_SENDBOX) == SMSStorage::kOK;
    if (!kept)
        std::fprintf(stderr, "dialtone: %s\n",
                     Tool::T("the copy for the sent box could not be written").c_str());
    if (context.json) {
        PrintJson(
            {{"number", number}, {"segments", segments}, {"report", report}, {"kept_in_sent_box", kept}});
    } else if (segments == 1) {
        std::cout << Tool::F("Sent to %s", {number}) << '\n';
    } else {
        std::cout << Tool::F("Sent to %s in %s parts", {number, std::to_string(segments)}) << '\n';
    }
    return EXIT_OK;
}

int Delete(const CliContext& context, ModemSession& session, int id) {
    MessagesController messages(session.link());
    if (const int failed = PrepareSms(session, messages))
        return failed;
    QList<BLSmsListItem> items;
    if (const int failed = ReadMessages(session, messages, items))
        return failed;
    // An ID the list does not hold is the user's slip, refused before the modem is asked to delete.
    if (std::none_of(items.cbegin(), items.cend(),
                     [id](const BLSmsListItem& item) { return item.nRef == id; }))
        return ReportUsage(Tool::F("no message %s (dialtone sms list shows the IDs)", {std::to_string(id)}));
    if (const int failed = AwaitStep(session, "deleting message " + std::to_string(id),
                                     [&](auto done) { messages.remove(id, done); }))
        return failed;
    if (context.json)
        PrintJson({{"deleted", id}});
    else
        std::cout << Tool::F("Deleted message %s", {std::to_string(id)}) << '\n';
    return EXIT_OK;
}

// What a message is, whatever its table ID or storage: the ID changes when the table is built anew, and
// a message moved to the computer comes back under another storage.
QString MessageIdentity(const BLSmsListItem& item) {
    // Joined, not formatted: a sender or text holding "%1" must not take part in the formatting.
    return QStringList{QString::number(item.nType), item.strAddress, item.dateTime.toString(Qt::ISODate),
                       QString::number(item.nStatusReportStatus), item.strContent}
        .join(QChar(0x1F));
}

void PrintEvent(const CliContext& context, const BLSmsListItem& item, const ContactNames& names) {
    if (context.json) {
        PrintJsonLine(MessageDocument(item, names.nameFor(item.strAddress)));
    } else if (item.nType == SmsType::kStatusReport) {
        std::cout << Tool::F("Delivery report from %s: status %s (message %s)",
                             {TerminalText(names.label(item.strAddress)),
                              std::to_string(item.nStatusReportStatus), std::to_string(item.nRef)})
                  << '\n';
    } else {
        std::cout << Tool::F("Message %s from %s at %s: %s",
                             {std::to_string(item.nRef), TerminalText(names.label(item.strAddress)),
                              TimeText(item.dateTime), TerminalText(item.strContent)})
                  << '\n';
    }
    std::cout.flush();
}

// Incoming messages and delivery reports, as the worker announces them, until the wait runs out or the
// user interrupts. When the worker falls behind a burst it asks for the storage to be listed again; what
// the list holds that was neither there at the start nor shown since is shown then, once.
int Watch(const CliContext& context, ModemSession& session) {
    MessagesController messages(session.link());
    // Reports are only read once the message table is built.
    QList<BLSmsListItem> items;
    if (const int failed = ReadMessagesAndNames(session, messages, items))
        return failed;
    QSet<QString> shown;
    for (const BLSmsListItem& item : items)
        shown.insert(MessageIdentity(item));
    const ContactNames names = messages.names();
    // A part of a longer message shows once the whole message is in.
    const auto show = [&](const BLSmsListItem& item) {
        if (item.nType != SmsType::kStatusReport && !item.nCompleted)
            return;
        if (!shown.contains(MessageIdentity(item)))
            PrintEvent(context, item, names);
        shown.insert(MessageIdentity(item));
    };
    messages.watch();
    QObject::connect(&messages, &MessagesController::messageReceived, show);
    QObject::connect(&messages, &MessagesController::statusReportReceived, show);
    QObject::connect(&messages, &MessagesController::relisted, [&show](const QList<BLSmsListItem>& listed) {
        for (const BLSmsListItem& item : listed)
            show(item);
    });
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
    ReportProgress(Tool::T("Waiting for messages; press Ctrl-C to stop"));
    QEventLoop loop;
    QTimer::singleShot(std::chrono::milliseconds(static_cast<long long>(context.waitSeconds * 1000)), &loop,
                       &QEventLoop::quit);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&loop] {
        if (g_interrupted)
            loop.quit();
    });
    poll.start(100);
    loop.exec();
    return EXIT_OK;
}

int Storage(const CliContext& context, ModemSession& session, const std::string& name) {
    MessagesController messages(session.link());
    if (const int failed = PrepareSms(session, messages))
        return failed;
    const int storage = kStorages.at(name);
    if (const int failed =
            AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "choosing the storage for new messages"),
                      [&](auto done) { messages.setPreferredStorage(storage, done); }))
        return failed;
    ServiceSettings::save(ServiceSettings::kStorageKey, storage);
    if (context.json)
        PrintJson({{"storage", name == "pc" ? "computer" : name}});
    else
        PrintKept(name);
    return EXIT_OK;
}

int State(const CliContext& context, ModemSession& session) {
    MessagesController messages(session.link());
    if (const int failed = PrepareSms(session, messages))
        return failed;
    BLSmsStorageState state;
    if (const int failed = AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "reading the storages"),
                                     [&](MessagesController::Done done) {
                                         messages.storageState([&state, done](const Outcome& outcome,
                                                                              const BLSmsStorageState& read) {
                                             state = read;
                                             done(outcome);
                                         });
                                     }))
        return failed;
    if (context.json) {
        PrintJson({{"sim", {{"used", state.nSimUsed}, {"total", state.nSimTotal}}},
                   {"modem", {{"used", state.nMeUsed}, {"total", state.nMeTotal}}}});
        return EXIT_OK;
    }
    FieldList fields;
    fields.add(Tool::T("SIM:"),
               Tool::F("%s of %s used", {std::to_string(state.nSimUsed), std::to_string(state.nSimTotal)}));
    fields.add(Tool::T("Modem:"),
               Tool::F("%s of %s used", {std::to_string(state.nMeUsed), std::to_string(state.nMeTotal)}));
    fields.print(7);
    return EXIT_OK;
}

int ServiceCentre(const CliContext& context, ModemSession& session, const std::string& typed) {
    MessagesController messages(session.link());
    if (const int failed = PrepareSms(session, messages))
        return failed;
    if (!typed.empty()) {
        const std::optional<std::string> number = DialNumber(typed, RegionOfImsi(messages.imsi()));
        if (!number)
            return EXIT_USAGE;
        if (const int failed = AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "setting the service centre"),
                                         [&](auto done) { messages.setServiceCentre(Q(*number), done); }))
            return failed;
    }
    std::string current;
    if (const int failed = AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "reading the service centre"),
                                     [&](MessagesController::Done done) {
                                         messages.serviceCentre(
                                             [&current, done](const Outcome& outcome, const QString& number) {
                                                 current = number.toStdString();
                                                 done(outcome);
                                             });
                                     }))
        return failed;
    if (context.json)
        PrintJson({{"service_centre", current.empty() ? json() : json(current)}});
    else
        std::cout << Tool::T("Service centre:") << ' ' << (current.empty() ? "-" : TerminalText(current))
                  << '\n';
    return EXIT_OK;
}

int Validity(const CliContext& context, ModemSession& session, const std::string& code) {
    MessagesController messages(session.link());
    if (const int failed = PrepareSms(session, messages))
        return failed;
    const BLSmsValidPeriod period = *ParseValidity(code);
    if (const int failed = AwaitStep(session, QT_TRANSLATE_NOOP("dialtone", "setting the validity period"),
                                     [&](auto done) { messages.setValidity(period, done); }))
        return failed;
    ServiceSettings::save(ServiceSettings::kValidityKey, Q(code));
    if (context.json)
        PrintJson(
            {{"validity", code}, {"weeks", period.bWeek}, {"days", period.bDay}, {"hours", period.bHour}});
    else
        std::cout << Tool::F("Messages sent from now on are valid for %s", {code}) << '\n';
    return EXIT_OK;
}

struct SmsArguments {
    std::string number;
    std::string text;
    bool report = false;
    int id = 0;
    std::string storage;
    std::string code;
};

} // namespace

void AddSmsCommand(CLI::App& app, CliContext& context) {
    CLI::App* sms = app.add_subcommand(
        "sms",
        "Messages: list, send, delete, watch, storage, state, sc, validity; outbox, sent, drafts, archive; "
        "thread, search");
    sms->require_subcommand(1);
    auto arguments = std::make_shared<SmsArguments>();
    const auto run = [&context](std::function<int(ModemSession&)> command) {
        context.exitCode = RunWithSim(context, command);
    };

    sms->add_subcommand("list", "The messages on the SIM, in the modem and on the computer")
        ->callback([&context, run] { run([&](ModemSession& s) { return List(context, s); }); });

    CLI::App* send = sms->add_subcommand("send", "Send a text; a long one goes in several parts");
    send->add_option("NUMBER", arguments->number, "The recipient")->required()->check(NumberRefusal);
    send->add_option("TEXT", arguments->text, "The text")->required();
    send->add_flag("--report", arguments->report, "Ask the network for a delivery report");
    send->callback([&context, arguments, run] {
        run([&](ModemSession& s) {
            return Send(context, s, arguments->number, arguments->text, arguments->report);
        });
    });

    CLI::App* remove = sms->add_subcommand("delete", "Delete a message (its ID from sms list)");
    remove->add_option("ID", arguments->id, "The message's ID")->required()->check(WholeNumber(0));
    remove->callback([&context, arguments, run] {
        run([&](ModemSession& s) { return Delete(context, s, arguments->id); });
    });

    sms->add_subcommand("watch", "Show new messages and delivery reports as they arrive")
        ->callback([&context, run] { run([&](ModemSession& s) { return Watch(context, s); }); });

    CLI::App* storage = sms->add_subcommand("storage", "Where new messages are kept: sim, modem or pc");
    storage->add_option("STORAGE", arguments->storage, "sim, modem or pc")
        ->check(CLI::IsMember({"sim", "modem", "pc"}));
    storage->callback([&context, arguments, run] {
        if (!arguments->storage.empty()) {
            run([&](ModemSession& s) { return Storage(context, s, arguments->storage); });
            return;
        }
        // Showing the choice needs no modem.
        const std::string name =
            StorageName(Setting(ServiceSettings::kStorageKey, SmsStorage::kModem).toInt());
        if (context.json)
            PrintJson({{"storage", name == "pc" ? "computer" : name}});
        else
            PrintKept(name);
        context.exitCode = EXIT_OK;
    });

    sms->add_subcommand("state", "Used and total places on the SIM and in the modem")
        ->callback([&context, run] { run([&](ModemSession& s) { return State(context, s); }); });

    CLI::App* sc = sms->add_subcommand("sc", "Show or set the service centre number");
    sc->add_option("NUMBER", arguments->number, "The new service centre number")->check(NumberRefusal);
    sc->callback([&context, arguments, run] {
        run([&](ModemSession& s) { return ServiceCentre(context, s, arguments->number); });
    });

    CLI::App* validity =
        sms->add_subcommand("validity", "How long the network keeps messages sent from now on");
    validity->add_option("CODE", arguments->code, "max, or weeks/days/hours like 1w2d12h")
        ->required()
        ->check([](const std::string& value) {
            return ParseValidity(value) ? std::string()
                                        : std::string("expected max or a period like 1w2d12h");
        });
    validity->callback([&context, arguments, run] {
        run([&](ModemSession& s) { return Validity(context, s, arguments->code); });
    });

    AddSmsBoxCommands(*sms, context);
    AddSmsThreadCommands(*sms, context);
}
