#include "SmsCommand.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QObject>
#include <QSet>
#include <QSettings>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <functional>
#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <optional>

#include "AtSublayerInterface.h"
#include "BLRecords.h"
#include "DamagedFile.h"
#include "ModemSession.h"
#include "NotificationCenter.h"
#include "NumberArguments.h"
#include "PrivateFile.h"
#include "RecordJson.h"
#include "SMS/SMSExt.h"
#include "SmsBoxCommand.h"
#include "SmsUtility.h"
#include "TerminalText.h"
#include "UserDataFolder.h"
#include "ValidityCode.h"
#include "WorkNotification.h"
#include "WorkThread.h"

namespace {

using nlohmann::json;

std::atomic<bool> g_interrupted{false};

void OnInterrupt(int) {
    g_interrupted = true;
}

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The tool's own settings: the storage for new messages and the validity period live in the worker only
// while it runs, so every run applies them again.
QSettings Settings() {
    const QString path = UserDataFolder::configPath() + "/dialtone-cli.ini";
    DamagedFile::checkSettingsFile(path);
    return QSettings(path, QSettings::IniFormat);
}

void SaveSetting(const QString& key, const QVariant& value) {
    QSettings settings = Settings();
    settings.setValue(key, value);
    settings.sync();
    PrivateFile::restrict(settings.fileName());
}

const std::map<std::string, int> kStorages{
    {"sim", SMS_STORAGE_SIM}, {"modem", SMS_STORAGE_MODEM}, {"pc", SMS_STORAGE_PC}};

std::string StorageName(int storage) {
    for (const auto& [name, code] : kStorages) {
        if (code == storage)
            return name;
    }
    return "?";
}

// CODE as "pdu encode --validity" takes it (ValidityCode.h), as the worker's record.
std::optional<BLSmsValidPeriod> ParseValidity(const std::string& code) {
    const std::optional<TSmsValidPeriod> parsed = ParseValidityCode(code);
    if (!parsed)
        return std::nullopt;
    BLSmsValidPeriod period;
    period.bWeek = parsed->bWeek;
    period.bDay = parsed->bDay;
    period.bHour = parsed->bHour;
    return period;
}

// Readies the modem for messages: the message settings, the SIM's computer-side inbox (so that nothing
// taken out of the modem memory is lost) and the chosen storage. imsi receives the SIM's IMSI.
int PrepareSms(ModemSession& session, QString& imsi) {
    if (const int failed = session.check(session.request(MESSAGE_SMS_INIT), "preparing the messages"))
        return failed;
    const QVariantMap equipment = session.request(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    if (const int failed = session.check(equipment, "reading the SIM's IMSI"))
        return failed;
    imsi = WorkNotification::GetValueObject(equipment).value<BLEquipmentInfo>().strImsi;
    WorkThread* worker = WorkThread::GetRequestInterfaceImpObject();
    if (worker && !imsi.isEmpty()) {
        // The sublayer belongs to the worker's thread.
        const QByteArray imsiText = imsi.toLatin1();
        QMetaObject::invokeMethod(
            worker,
            [worker, imsiText] {
                if (TInterfaceAtSublayer* sublayer = worker->atSublayer()) {
                    sublayer->SMSSetIMSI(imsiText.constData());
                    SMSExt::registerWith(*sublayer);
                }
            },
            Qt::BlockingQueuedConnection);
    }
    const int storage = Settings().value("sms/storage", SMS_STORAGE_MODEM).toInt();
    if (storage != SMS_STORAGE_MODEM) {
        const QVariantMap response = session.request(MESSAGE_SMS_SET_PREFERRED_STORAGE, storage);
        if (const int failed = session.check(response, "choosing the storage for new messages"))
            return failed;
    }
    return EXIT_OK;
}

std::string StateText(const BLSmsListItem& item) {
    if (item.nType == 2)
        return "report";
    static const char* const tags[] = {"unread", "read", "unsent", "sent"};
    return item.nTag >= 0 && item.nTag < 4 ? tags[item.nTag] : "?";
}

std::string TimeText(const QDateTime& time) {
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd hh:mm")).toStdString() : "-";
}

void PrintItem(const BLSmsListItem& item, const std::string& region) {
    std::string text = item.nType == 2 ? "delivery status " + std::to_string(item.nStatusReportStatus)
                                       : TerminalText(item.strContent);
    if (!item.nCompleted && item.nType != 2)
        text += " (incomplete)";
    std::printf("%4d  %-5s  %-6s  %-16s  %-16s  %s\n", item.nRef, StorageName(item.nStoreIn).c_str(),
                StateText(item).c_str(), TerminalText(NumberForReading(item.strAddress, region)).c_str(),
                TimeText(item.dateTime).c_str(), text.c_str());
}

// Builds the worker's message table; the IDs of list and delete come from it.
int ReadList(ModemSession& session, QList<BLSmsListItem>& items) {
    const QVariantMap response = session.request(MESSAGE_SMS_GET_LIST, {}, 180);
    if (const int failed = session.check(response, "reading the messages"))
        return failed;
    items = RecordList<BLSmsListItem>(WorkNotification::GetValueObject(response));
    return EXIT_OK;
}

int List(const CliContext& context, ModemSession& session) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    QList<BLSmsListItem> items;
    if (const int failed = ReadList(session, items))
        return failed;
    if (context.json) {
        json list = json::array();
        for (const BLSmsListItem& item : items)
            list.push_back(VariantToJson(QVariant::fromValue(item)));
        PrintJson(list);
        return EXIT_OK;
    }
    const std::string region = RegionOfImsi(imsi);
    for (const BLSmsListItem& item : items)
        PrintItem(item, region);
    return EXIT_OK;
}

// How many messages the text takes, counted the way the sublayer splits it.
int SegmentCount(const std::string& number, const std::string& text) {
    CSmsUtility sms;
    sms.SetLatinSupport(1);
    TSmsSendItem item;
    number.copy(item.szNumber, sizeof item.szNumber - 1);
    item.wstrContent = FromUtf8(text);
    std::list<TTpduSubmit> segments;
    int encodeType = 0;
    sms.PacketMsg(item, segments, encodeType);
    return static_cast<int>(segments.size());
}

int Send(const CliContext& context, ModemSession& session, const std::string& typed, const std::string& text,
         bool report) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    const std::optional<std::string> dial = DialNumber(typed, RegionOfImsi(imsi));
    if (!dial)
        return EXIT_USAGE;
    const std::string& number = *dial;
    if (report) {
        const QVariantMap response = session.request(MESSAGE_SMS_SET_STATUS_REPORT, QStringLiteral("TRUE"));
        if (const int failed = session.check(response, "asking for a delivery report"))
            return failed;
    }
    const QString validity = Settings().value("sms/validity").toString();
    if (const auto period = ParseValidity(validity.toStdString())) {
        const QVariantMap response =
            session.request(MESSAGE_SMS_SET_VALID_PERIOD, QVariant::fromValue(*period));
        if (const int failed = session.check(response, "setting the validity period"))
            return failed;
    }
    const int segments = SegmentCount(number, text);
    if (segments > 1)
        ReportProgress("Sending " + std::to_string(segments) + " messages...");
    const QVariantMap response = session.request(
        MESSAGE_SMS_SEND, QVariant::fromValue(BLSmsSendItem{Q(number), Q(text)}), 60 + 30 * segments);
    if (const int failed = session.check(response, "sending the message"))
        return failed;
    const bool kept = KeepSentCopy(imsi, Q(number), Q(text));
    if (!kept)
        std::fprintf(stderr, "dialtone: the copy for the sent box could not be written\n");
    if (context.json) {
        PrintJson(
            {{"strNumber", number}, {"segments", segments}, {"report", report}, {"keptInSentBox", kept}});
    } else if (segments == 1) {
        std::cout << "Sent to " << number << '\n';
    } else {
        std::cout << "Sent to " << number << " in " << segments << " parts\n";
    }
    return EXIT_OK;
}

int Delete(const CliContext& context, ModemSession& session, int id) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    QList<BLSmsListItem> items;
    if (const int failed = ReadList(session, items))
        return failed;
    // An ID the list does not hold is the user's slip, refused before the modem is asked to delete.
    if (std::none_of(items.cbegin(), items.cend(),
                     [id](const BLSmsListItem& item) { return item.nRef == id; }))
        return ReportUsage("no message " + std::to_string(id) + " (dialtone sms list shows the IDs)");
    const QVariantMap response = session.request(MESSAGE_SMS_DELETE, id);
    if (const int failed = session.check(response, "deleting message " + std::to_string(id)))
        return failed;
    if (context.json)
        PrintJson(MapToJson(response));
    else
        std::cout << "Deleted message " << id << '\n';
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

void PrintEvent(const CliContext& context, const BLSmsListItem& item, const std::string& region) {
    if (context.json) {
        std::cout
            << VariantToJson(QVariant::fromValue(item)).dump(-1, ' ', false, json::error_handler_t::replace)
            << '\n';
    } else if (item.nType == 2) {
        std::cout << "Delivery report from " << TerminalText(NumberForReading(item.strAddress, region))
                  << ": status " << item.nStatusReportStatus << " (message " << item.nRef << ")\n";
    } else {
        std::cout << "Message " << item.nRef << " from "
                  << TerminalText(NumberForReading(item.strAddress, region)) << " at "
                  << TimeText(item.dateTime) << ": " << TerminalText(item.strContent) << '\n';
    }
    std::cout.flush();
}

// Incoming messages and delivery reports, as the worker announces them, until the wait runs out or the
// user interrupts. When the worker falls behind a burst it asks for the storage to be listed again; what
// the list holds that was neither there at the start nor shown since is shown then, once.
int Watch(const CliContext& context, ModemSession& session) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    // Reports are only read once the message table is built.
    QList<BLSmsListItem> items;
    if (const int failed = ReadList(session, items))
        return failed;
    QSet<QString> shown;
    for (const BLSmsListItem& item : items)
        shown.insert(MessageIdentity(item));
    const std::string region = RegionOfImsi(imsi);
    // A part of a longer message shows once the whole message is in.
    const auto show = [&](const BLSmsListItem& item) {
        if (item.nType != 2 && !item.nCompleted)
            return;
        if (!shown.contains(MessageIdentity(item)))
            PrintEvent(context, item, region);
        shown.insert(MessageIdentity(item));
    };
    QObject receiver;
    NotificationCenter::defaultCenter().addObserver(
        MESSAGE_RPT_RECEIVE_SMS, &receiver, [&show](const Notification& notification) {
            const QVariant value = WorkNotification::GetValueObject(notification.userInfo);
            if (value.metaType() == QMetaType::fromType<BLSmsListItem>())
                show(value.value<BLSmsListItem>());
        });
    NotificationCenter::defaultCenter().addObserver(MESSAGE_RPT_SMS_RELIST, &receiver,
                                                    [&](const Notification&) {
                                                        QList<BLSmsListItem> listed;
                                                        if (ReadList(session, listed) != EXIT_OK)
                                                            return;
                                                        for (const BLSmsListItem& item : listed)
                                                            show(item);
                                                    });
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
    ReportProgress("Waiting for messages; press Ctrl-C to stop");
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
    NotificationCenter::defaultCenter().removeObserver(&receiver);
    return EXIT_OK;
}

int Storage(const CliContext& context, ModemSession& session, const std::string& name) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    const int storage = kStorages.at(name);
    const QVariantMap response = session.request(MESSAGE_SMS_SET_PREFERRED_STORAGE, storage);
    if (const int failed = session.check(response, "choosing the storage for new messages"))
        return failed;
    SaveSetting("sms/storage", storage);
    if (context.json)
        PrintJson({{"storage", name}});
    else
        std::cout << "New messages are kept on the " << (name == "pc" ? "computer" : name) << '\n';
    return EXIT_OK;
}

int State(const CliContext& context, ModemSession& session) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    const QVariantMap response = session.request(MESSAGE_SMS_GET_STORAGE_STATE);
    if (const int failed = session.check(response, "reading the storages"))
        return failed;
    const QVariant value = WorkNotification::GetValueObject(response);
    if (context.json) {
        PrintJson(VariantToJson(value));
        return EXIT_OK;
    }
    const auto state = value.value<BLSmsStorageState>();
    std::printf("SIM:    %d of %d used\nModem:  %d of %d used\n", state.nSimUsed, state.nSimTotal,
                state.nMeUsed, state.nMeTotal);
    return EXIT_OK;
}

int ServiceCentre(const CliContext& context, ModemSession& session, const std::string& typed) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    if (!typed.empty()) {
        const std::optional<std::string> number = DialNumber(typed, RegionOfImsi(imsi));
        if (!number)
            return EXIT_USAGE;
        const QVariantMap response = session.request(MESSAGE_SMS_SET_SC, Q(*number));
        if (const int failed = session.check(response, "setting the service centre"))
            return failed;
    }
    const QVariantMap response = session.request(MESSAGE_SMS_GET_SC);
    if (const int failed = session.check(response, "reading the service centre"))
        return failed;
    const std::string current = WorkNotification::GetValueObject(response).toString().toStdString();
    if (context.json)
        PrintJson({{"strServiceCentre", current}});
    else
        std::cout << "Service centre: " << (current.empty() ? "-" : TerminalText(current)) << '\n';
    return EXIT_OK;
}

int Validity(const CliContext& context, ModemSession& session, const std::string& code) {
    QString imsi;
    if (const int failed = PrepareSms(session, imsi))
        return failed;
    const BLSmsValidPeriod period = *ParseValidity(code);
    const QVariantMap response = session.request(MESSAGE_SMS_SET_VALID_PERIOD, QVariant::fromValue(period));
    if (const int failed = session.check(response, "setting the validity period"))
        return failed;
    SaveSetting("sms/validity", Q(code));
    if (context.json)
        PrintJson(VariantToJson(QVariant::fromValue(period)));
    else
        std::cout << "Messages sent from now on are valid for " << code << '\n';
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
        "Messages: list, send, delete, watch, storage, state, sc, validity; outbox, sent, drafts, archive");
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
    remove->add_option("ID", arguments->id, "The message's ID")->required()->check(CLI::NonNegativeNumber);
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
        const std::string name = StorageName(Settings().value("sms/storage", SMS_STORAGE_MODEM).toInt());
        if (context.json)
            PrintJson({{"storage", name}});
        else
            std::cout << "New messages are kept on the " << (name == "pc" ? "computer" : name) << '\n';
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
}
