#include "CallCommand.h"

#include <array>

#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "CallRecords.h"
#include "DialString.h"
#include "ModemSession.h"
#include "NumberArguments.h"
#include "RecordList.h"
#include "ScriptJson.h"
#include "TerminalText.h"
#include "ToolText.h"
#include "WorkNotification.h"

namespace {

// "ATD" waits up to a minute for the call to be set up; the request gets that and some room.
constexpr int kDialDeadlineSeconds = 75;
constexpr int kListPollMs = 500;

struct CallArguments {
    std::string number;
    std::string keys;
};

const char* StateText(int state) {
    switch (state) {
    case BLCallItem::kStateActive:
        return QT_TRANSLATE_NOOP("dialtone", "active");
    case BLCallItem::kStateHeld:
        return QT_TRANSLATE_NOOP("dialtone", "held");
    case BLCallItem::kStateDialling:
        return QT_TRANSLATE_NOOP("dialtone", "dialling");
    case BLCallItem::kStateAlerting:
        return QT_TRANSLATE_NOOP("dialtone", "ringing at the other end");
    case BLCallItem::kStateIncoming:
        return QT_TRANSLATE_NOOP("dialtone", "incoming");
    case BLCallItem::kStateWaiting:
        return QT_TRANSLATE_NOOP("dialtone", "waiting");
    default:
        return QT_TRANSLATE_NOOP("dialtone", "unknown");
    }
}

// The call family's results in words (the final results of ATD); others as the session words them.
const char* CallResultText(int code) {
    switch (code) {
    case 25:
        return "no carrier: the call was not set up or has ended";
    case 26:
        return "no answer";
    case 27:
        return "the line is busy";
    case 28:
        return "no dial tone";
    default:
        return nullptr;
    }
}

int Check(const CliContext& context, ModemSession& session, const QVariantMap& response,
          const std::string& what) {
    const int code = WorkNotification::GetErrorCode(response);
    if (const char* text = CallResultText(code))
        return ReportFailure(context, code, what + ": " + text);
    return session.check(response, what);
}

nlohmann::json CallJson(const BLCallItem& call) {
    // +CLCC: <id>,<dir>,<stat>,<mode>,<mpty>,<number>,<type>
    static constexpr std::array<const char*, 6> states{"active",   "held",     "dialling",
                                                       "alerting", "incoming", "waiting"};
    static constexpr std::array<const char*, 3> modes{"voice", "data", "fax"};
    const auto word = [](const auto& words, int code) -> nlohmann::json {
        if (code < 0 || static_cast<std::size_t>(code) >= words.size())
            return "unknown";
        return words[static_cast<std::size_t>(code)];
    };
    return {{"index", call.nIndex},
            {"direction", call.nDir == BLCallItem::kDirOutgoing ? "outgoing" : "incoming"},
            {"state", word(states, call.nState)},
            {"state_code", call.nState},
            {"mode", word(modes, call.nMode)},
            {"multiparty", call.nMpty != 0},
            {"number", TextOrNull(call.strNumber)},
            {"number_type", call.nType}};
}

int ReadCalls(const CliContext& context, ModemSession& session, QList<BLCallItem>& calls) {
    const QVariantMap response = session.request(MESSAGE_CALL_GET_LIST);
    if (const int failed =
            Check(context, session, response, QT_TRANSLATE_NOOP("dialtone", "reading the calls")))
        return failed;
    calls = RecordList<BLCallItem>(WorkNotification::GetValueObject(response));
    return EXIT_OK;
}

int List(CliContext& context, ModemSession& session) {
    QList<BLCallItem> calls;
    if (const int failed = ReadCalls(context, session, calls))
        return failed;
    if (context.json) {
        nlohmann::json list = nlohmann::json::array();
        for (const BLCallItem& call : calls)
            list.push_back(CallJson(call));
        PrintJson({{"calls", list}});
        return EXIT_OK;
    }
    if (calls.isEmpty()) {
        std::printf("%s\n", Tool::T("No calls").c_str());
        return EXIT_OK;
    }
    const std::string region = SessionRegion(session);
    std::printf("%s  %s  %s  %s\n", PadLeft(Tool::T("ID"), 3).c_str(), PadRight(Tool::T("DIR"), 8).c_str(),
                PadRight(Tool::T("STATE"), 24).c_str(), Tool::T("NUMBER").c_str());
    for (const BLCallItem& call : calls) {
        std::printf(
            "%3d  %s  %s  %s\n", call.nIndex,
            PadRight(call.nDir == BLCallItem::kDirOutgoing ? Tool::T("outgoing") : Tool::T("incoming"), 8)
                .c_str(),
            PadRight(Tool::T(StateText(call.nState)), 24).c_str(),
            TerminalText(NumberForReading(call.strNumber, region)).c_str());
    }
    return EXIT_OK;
}

// The outgoing call, while there is one.
std::optional<BLCallItem> Outgoing(const QList<BLCallItem>& calls) {
    for (const BLCallItem& call : calls) {
        if (call.nDir == BLCallItem::kDirOutgoing)
            return call;
    }
    return std::nullopt;
}

int Dial(CliContext& context, ModemSession& session, const std::string& typed) {
    const std::optional<std::string> dial = DialNumberOrCode(typed, SessionRegion(session));
    if (!dial)
        return EXIT_USAGE;
    const std::string& number = *dial;
    ReportProgress(Tool::F("calling %s", {number}));
    const QVariantMap response =
        session.request(MESSAGE_CALL_DIAL, QString::fromStdString(number), kDialDeadlineSeconds);
    if (const int failed = Check(context, session, response, "calling " + number))
        return failed;

    // The modem may answer the dial before the other end does: follow the call list.
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::milliseconds(static_cast<long long>(context.waitSeconds * 1000));
    int shownState = -1;
    for (;;) {
        QList<BLCallItem> calls;
        if (const int failed = ReadCalls(context, session, calls))
            return failed;
        const std::optional<BLCallItem> call = Outgoing(calls);
        if (!call)
            return ReportFailure(context, 25, "the call to " + number + " ended before it was answered");
        if (call->nState != shownState && !context.json) {
            std::printf("%s: %s\n", number.c_str(), Tool::T(StateText(call->nState)).c_str());
            std::fflush(stdout);
        }
        shownState = call->nState;
        if (call->nState == BLCallItem::kStateActive) {
            if (context.json)
                PrintJson(CallJson(*call));
            return EXIT_OK;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return ReportFailure(context, 2,
                                 number + " did not answer within " +
                                     QString::number(context.waitSeconds).toStdString() +
                                     " seconds; \"dialtone call hangup\" ends the call");
        }
        QThread::msleep(kListPollMs);
    }
}

int Simple(CliContext& context, ModemSession& session, const QString& name, const QVariant& argument,
           const std::string& what, const char* done) {
    const QVariantMap response = session.request(name, argument);
    if (const int failed = Check(context, session, response, what))
        return failed;
    if (context.json)
        PrintJson({{"ok", true}});
    else
        std::printf("%s\n", Tool::T(done).c_str());
    return EXIT_OK;
}

// Answering with no call to answer is refused at once: the modem would only give up after its time-out.
int Answer(CliContext& context, ModemSession& session) {
    QList<BLCallItem> calls;
    if (const int failed = ReadCalls(context, session, calls))
        return failed;
    const bool ringing = std::any_of(calls.cbegin(), calls.cend(), [](const BLCallItem& call) {
        return call.nState == BLCallItem::kStateIncoming || call.nState == BLCallItem::kStateWaiting;
    });
    if (!ringing)
        return ReportFailure(context, WORKER_ERR_GENERAL, "answering: there is no incoming call");
    return Simple(context, session, MESSAGE_CALL_ANSWER, {}, "answering",
                  QT_TRANSLATE_NOOP("dialtone", "Call answered"));
}

} // namespace

void AddCallCommand(CLI::App& app, CliContext& context) {
    CLI::App* call = app.add_subcommand("call", "Voice calls");
    call->require_subcommand(1);
    auto arguments = std::make_shared<CallArguments>();

    CLI::App* dial = call->add_subcommand("dial", "Call a number and wait for the answer");
    dial->add_option("NUMBER", arguments->number, "The phone number, or a service code of +, digits, * and #")
        ->required()
        ->check(NumberOrCodeRefusal);
    dial->callback([&context, arguments] {
        context.exitCode =
            RunWithSim(context, [&](ModemSession& s) { return Dial(context, s, arguments->number); });
    });

    call->add_subcommand("answer", "Take the incoming call")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) { return Answer(context, s); });
    });
    call->add_subcommand("hangup", "End the calls")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Simple(context, s, MESSAGE_CALL_HANGUP, {}, QT_TRANSLATE_NOOP("dialtone", "hanging up"),
                          QT_TRANSLATE_NOOP("dialtone", "Call ended"));
        });
    });

    CLI::App* dtmf = call->add_subcommand("dtmf", "Send tones during a call");
    dtmf->add_option("KEYS", arguments->keys, "The keys: 0-9, *, #, A-D")->required();
    dtmf->callback([&context, arguments] {
        const QString keys = QString::fromStdString(arguments->keys);
        for (const QChar key : keys) {
            if (!DialString::isDtmfKey(key)) {
                context.exitCode = ReportUsage("'" + QString(key).toStdString() +
                                               "' is not a DTMF key (0-9, *, #, A-D); nothing was sent");
                return;
            }
        }
        if (keys.size() > DialString::kDtmfKeysCap) {
            context.exitCode =
                ReportUsage("at most " + std::to_string(DialString::kDtmfKeysCap) + " keys at a time");
            return;
        }
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Simple(context, s, MESSAGE_CALL_SEND_DTMF, keys, "sending " + arguments->keys,
                          QT_TRANSLATE_NOOP("dialtone", "Tones sent"));
        });
    });

    call->add_subcommand("list", "The current calls")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) { return List(context, s); });
    });
}
