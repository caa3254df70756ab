#include "UssdCommand.h"

#include <unistd.h>

#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <deque>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "ModemTextCheck.h"
#include "ModemSession.h"
#include "NotificationCenter.h"
#include "RecordJson.h"
#include "TerminalText.h"
#include "UssdRecords.h"
#include "WorkNotification.h"

namespace {

// The result code m of "+CUSD: m,...".
constexpr int kUssdDone = 0;
constexpr int kUssdReplyWanted = 1;
constexpr int kUssdNotSupported = 4;

struct UssdArguments {
    std::string code;
    std::vector<std::string> replies;
    bool cancel = false;
};

// Collects the network's answers from the moment it is made; they are posted on this thread.
class UssdListener {
public:
    UssdListener() {
        NotificationCenter::defaultCenter().addObserver(
            MESSAGE_RPT_RECEIVE_USSD, this, [this](const Notification& note) {
                const QVariant value = WorkNotification::GetValueObject(note.userInfo);
                if (value.typeId() != qMetaTypeId<BLUssdReceive>())
                    return;
                _answers.push_back(value.value<BLUssdReceive>());
                if (_loop)
                    _loop->quit();
            });
    }
    ~UssdListener() { NotificationCenter::defaultCenter().removeObserver(this); }
    UssdListener(const UssdListener&) = delete;
    UssdListener& operator=(const UssdListener&) = delete;

    // The next answer, or nothing when none came within the time.
    std::optional<BLUssdReceive> next(double seconds) {
        if (_answers.empty()) {
            QEventLoop loop;
            _loop = &loop;
            QTimer::singleShot(std::chrono::milliseconds(static_cast<long long>(seconds * 1000)), &loop,
                               &QEventLoop::quit);
            loop.exec();
            _loop = nullptr;
        }
        if (_answers.empty())
            return std::nullopt;
        BLUssdReceive answer = _answers.front();
        _answers.pop_front();
        return answer;
    }

private:
    std::deque<BLUssdReceive> _answers;
    QEventLoop* _loop = nullptr;
};

int Send(ModemSession& session, qint32 opCode, const std::string& text, const std::string& what) {
    const BLUssdSendCmdInfo info{opCode, QString::fromStdString(text)};
    const QVariantMap response = session.request(MESSAGE_USSD_SENDCMD, QVariant::fromValue(info));
    return session.check(response, what);
}

void PrintAnswer(const CliContext& context, const BLUssdReceive& answer) {
    // With --json one line per answer, as for every event command.
    if (context.json) {
        std::cout << VariantToJson(QVariant::fromValue(answer))
                         .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
                  << std::endl;
    } else {
        std::printf("%s\n", TerminalText(answer.strContent, LineBreaks::Keep).c_str());
        std::fflush(stdout);
    }
}

// The reply to a menu: the next --reply, else a line typed on the terminal; nothing ends the dialogue.
std::optional<std::string> NextReply(std::deque<std::string>& replies) {
    if (!replies.empty()) {
        std::string reply = replies.front();
        replies.pop_front();
        return reply;
    }
    if (!isatty(STDIN_FILENO))
        return std::nullopt;
    std::fprintf(stderr, "Reply (empty to end): ");
    std::string line;
    if (!std::getline(std::cin, line) || line.empty())
        return std::nullopt;
    return line;
}

int Dialogue(CliContext& context, ModemSession& session, const UssdArguments& arguments) {
    UssdListener listener;
    std::deque<std::string> replies(arguments.replies.begin(), arguments.replies.end());
    std::string text = arguments.code;
    for (;;) {
        if (const int refused = CheckModemText("the USSD text", text, kUssdTextMaxLength))
            return refused;
        if (const int failed = Send(session, BLUssdSendCmdInfo::kSend, text, "sending " + text))
            return failed;
        ReportProgress("waiting for the network's answer");
        const std::optional<BLUssdReceive> answer = listener.next(context.waitSeconds);
        if (!answer) {
            return ReportFailure(context, 2,
                                 "no answer from the network within " + std::to_string(context.waitSeconds) +
                                     " seconds");
        }
        if (answer->nReportType == kUssdNotSupported) {
            return ReportFailure(context, 1, "the network does not offer " + arguments.code);
        }
        PrintAnswer(context, *answer);
        if (answer->nReportType != kUssdReplyWanted)
            return EXIT_OK;
        const std::optional<std::string> reply = NextReply(replies);
        if (!reply) {
            if (const int failed = Send(session, BLUssdSendCmdInfo::kCancel, {}, "ending the dialogue"))
                return failed;
            if (!context.json)
                std::fprintf(stderr, "dialtone: dialogue ended\n");
            return EXIT_OK;
        }
        text = *reply;
    }
}

int Cancel(CliContext& context, ModemSession& session) {
    if (const int failed = Send(session, BLUssdSendCmdInfo::kCancel, {}, "ending the dialogue"))
        return failed;
    if (context.json)
        PrintJson({{"ERROR_CODE", 0}});
    else
        std::printf("USSD dialogue ended\n");
    return EXIT_OK;
}

} // namespace

void AddUssdCommand(CLI::App& app, CliContext& context) {
    CLI::App* ussd = app.add_subcommand("ussd", "Send a USSD code and show the network's answers");
    auto arguments = std::make_shared<UssdArguments>();
    CLI::Option* code = ussd->add_option("CODE", arguments->code, "The code, e.g. *100#");
    ussd->add_option("--reply", arguments->replies, "The replies to the network's menus, in order")
        ->needs(code);
    ussd->add_flag("--cancel", arguments->cancel, "End the running dialogue")->excludes(code);
    ussd->callback([&context, arguments] {
        if (!arguments->cancel && arguments->code.empty()) {
            context.exitCode = ReportUsage("ussd needs a CODE or --cancel");
            return;
        }
        for (const std::string& reply : arguments->replies) {
            if ((context.exitCode = CheckModemText("the reply", reply, kUssdTextMaxLength)) != EXIT_OK)
                return;
        }
        context.exitCode = RunWithSim(context, [&](ModemSession& s) {
            return arguments->cancel ? Cancel(context, s) : Dialogue(context, s, *arguments);
        });
    });
}
