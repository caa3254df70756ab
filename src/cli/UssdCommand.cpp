#include "UssdCommand.h"

#include <array>

#include <unistd.h>

#include <cstdio>
#include <deque>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "Account/AccountController.h"
#include "ModemLink.h"
#include "ModemSession.h"
#include "ModemTextCheck.h"
#include "ScriptJson.h"
#include "TerminalText.h"
#include "ToolText.h"
#include "UssdRecords.h"

namespace {

struct UssdArguments {
    std::string code;
    std::vector<std::string> replies;
    bool cancel = false;
};

// The controller and the network's answers, collected from the moment it is made.
class UssdDialogue {
public:
    explicit UssdDialogue(ModemSession& session) : _session(session), _controller(session.link()) {
        _controller.setDeviceFoundProbe([] { return true; });
        QObject::connect(&_controller, &AccountController::answerReceived,
                         [this](const BLUssdReceive& answer) { _answers.push_back(answer); });
    }

    // Sends the text (or ends the dialogue) and waits for the modem to take it; the failure as printed.
    int send(qint32 opCode, const std::string& text, const std::string& what) {
        std::optional<Outcome> result;
        const auto done = [&result](Outcome outcome) { result = outcome; };
        if (opCode == BLUssdSendCmdInfo::kCancel)
            _controller.sendUSSDCancelCmd(done);
        else
            _controller.sendUSSDCmd(QString::fromStdString(text), done);
        return _session.check(_session.awaitOutcome(result, what), what);
    }

    // The next answer, or nothing when none came within the time.
    std::optional<BLUssdReceive> next(double seconds) {
        _session.link().waitUntil([this] { return !_answers.empty(); }, static_cast<int>(seconds * 1000));
        if (_answers.empty())
            return std::nullopt;
        BLUssdReceive answer = _answers.front();
        _answers.pop_front();
        return answer;
    }

private:
    ModemSession& _session;
    AccountController _controller;
    std::deque<BLUssdReceive> _answers;
};

// +CUSD: <m>,<str>,<dcs>: <m> as a word, with the number beside it.
nlohmann::json UssdDocument(const BLUssdReceive& answer) {
    static constexpr std::array<const char*, 6> results{
        "done", "reply-wanted", "ended", "answered-elsewhere", "not-supported", "timed-out"};
    const int code = answer.nReportType;
    const bool known = code >= 0 && static_cast<std::size_t>(code) < results.size();
    return {{"result", known ? results[static_cast<std::size_t>(code)] : "unknown"},
            {"result_code", code},
            {"text", TextOrNull(answer.strContent)}};
}

void PrintAnswer(const CliContext& context, const BLUssdReceive& answer) {
    // With --json one line per answer, as for every event command.
    if (context.json) {
        PrintJsonLine(UssdDocument(answer));
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
    std::fprintf(stderr, "%s ", Tool::T("Reply (empty to end):").c_str());
    std::string line;
    if (!std::getline(std::cin, line) || line.empty())
        return std::nullopt;
    return line;
}

int Dialogue(CliContext& context, ModemSession& session, const UssdArguments& arguments) {
    UssdDialogue dialogue(session);
    std::deque<std::string> replies(arguments.replies.begin(), arguments.replies.end());
    std::string text = arguments.code;
    for (;;) {
        if (const int refused = CheckModemText("the USSD text", text, kUssdTextMaxLength))
            return refused;
        if (const int failed = dialogue.send(BLUssdSendCmdInfo::kSend, text, "sending " + text))
            return failed;
        ReportProgress(Tool::T("waiting for the network's answer"));
        const std::optional<BLUssdReceive> answer = dialogue.next(context.waitSeconds);
        if (!answer) {
            return ReportFailure(context, 2,
                                 "no answer from the network within " +
                                     QString::number(context.waitSeconds).toStdString() + " seconds");
        }
        if (answer->nReportType == BLUssdReceive::kNotSupported) {
            return ReportFailure(context, 1, "the network does not offer " + arguments.code);
        }
        PrintAnswer(context, *answer);
        if (answer->nReportType != BLUssdReceive::kReplyWanted)
            return EXIT_OK;
        const std::optional<std::string> reply = NextReply(replies);
        if (!reply) {
            if (const int failed = dialogue.send(BLUssdSendCmdInfo::kCancel, {},
                                                 QT_TRANSLATE_NOOP("dialtone", "ending the dialogue")))
                return failed;
            if (!context.json)
                std::fprintf(stderr, "dialtone: %s\n", Tool::T("dialogue ended").c_str());
            return EXIT_OK;
        }
        text = *reply;
    }
}

int Cancel(CliContext& context, ModemSession& session) {
    UssdDialogue dialogue(session);
    if (const int failed = dialogue.send(BLUssdSendCmdInfo::kCancel, {},
                                         QT_TRANSLATE_NOOP("dialtone", "ending the dialogue")))
        return failed;
    if (context.json)
        PrintJson({{"ok", true}});
    else
        std::printf("%s\n", Tool::T("USSD dialogue ended").c_str());
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
