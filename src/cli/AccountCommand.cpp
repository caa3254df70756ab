#include "AccountCommand.h"

#include "ScriptJson.h"

#include <QEventLoop>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include <unistd.h>

#include "Account/AccountController.h"
#include "Equipment/EquipmentController.h"
#include "ModemSession.h"
#include "ModemTextCheck.h"
#include "TerminalText.h"
#include "ToolText.h"

namespace {

struct AccountArguments {
    std::vector<std::string> entry; // GROUP ITEM [INPUT...]
    std::vector<std::string> replies;
    bool waitGiven = false;
};

// The menus' languages: 0 English, 1 German. The first set of LC_ALL, LC_MESSAGES and LANG decides.
int LanguageFromEnvironment() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (value && *value)
            return std::string(value).rfind("de", 0) == 0 ? 1 : 0;
    }
    return 0;
}

std::string Utf8(const std::wstring& text) {
    return ToUtf8(text);
}

nlohmann::json MenuToJson(const _TAccountData& data, const QString& imsi) {
    nlohmann::json groups = nlohmann::json::array();
    for (const _TAccountGroupItem& group : data.groups) {
        nlohmann::json items = nlohmann::json::array();
        for (const _TAccountUSSDItem& item : group.items) {
            nlohmann::json inputs = nlohmann::json::array();
            for (const _TAccountInputItem& input : item.inputs)
                inputs.push_back({{"strTitle", Utf8(input.strTitle)},
                                  {"strText", Utf8(input.strText)},
                                  {"strLimitation", Utf8(input.strLimitation)},
                                  {"nMaxLen", input.nMaxLen},
                                  {"nMinLen", input.nMinLen}});
            nlohmann::json buttons = nlohmann::json::array();
            for (const _TAccountButtonItem& button : item.buttons)
                buttons.push_back({{"strName", Utf8(button.strName)}, {"strCode", Utf8(button.strCode)}});
            items.push_back({{"strText", Utf8(item.strText)},
                             {"nType", item.nType},
                             {"strTitle", Utf8(item.strTitle)},
                             {"strPrompt", Utf8(item.strPrompt)},
                             {"inputs", inputs},
                             {"buttons", buttons}});
        }
        groups.push_back({{"strName", Utf8(group.strName)}, {"nType", group.nType}, {"items", items}});
    }
    return {{"strImsi", imsi.toStdString()},
            {"nLanguageID", data.nLanguageID},
            {"strTip", Utf8(data.strTip)},
            {"groups", groups}};
}

// "12 to 16", "at least 4" (a field without a maximum length).
std::string LengthText(const _TAccountInputItem& field) {
    if (field.nMaxLen <= 0)
        return "at least " + std::to_string(field.nMinLen);
    return std::to_string(field.nMinLen) + " to " + std::to_string(field.nMaxLen);
}

void PrintMenu(const _TAccountData& data) {
    if (!data.strTip.empty())
        std::printf("%s\n\n", TerminalText(Utf8(data.strTip), LineBreaks::Keep).c_str());
    int groupNumber = 0;
    for (const _TAccountGroupItem& group : data.groups) {
        std::printf("%d %s\n", ++groupNumber, TerminalText(Utf8(group.strName)).c_str());
        int itemNumber = 0;
        for (const _TAccountUSSDItem& item : group.items) {
            std::string codes;
            for (const _TAccountButtonItem& button : item.buttons)
                codes += (codes.empty() ? "" : ", ") + TerminalText(Utf8(button.strCode));
            std::printf("  %d.%d %s  [%s]\n", groupNumber, ++itemNumber,
                        TerminalText(Utf8(item.strText)).c_str(), codes.c_str());
            for (const _TAccountInputItem& input : item.inputs) {
                const std::string title = TerminalText(Utf8(input.strTitle));
                std::printf(
                    "        %s\n",
                    (input.strLimitation.empty()
                         ? Tool::F("input: %s (%s characters)", {title, LengthText(input)})
                         : Tool::F("input: %s (%s characters of %s)",
                                   {title, LengthText(input), TerminalText(Utf8(input.strLimitation))}))
                        .c_str());
            }
        }
    }
}

// A 1-based number, or the name itself (case-insensitive).
template <typename T, typename Name>
const T* Pick(const std::list<T>& list, const std::string& wanted, Name name) {
    bool number = !wanted.empty() && wanted.size() < 6;
    for (char c : wanted)
        number = number && c >= '0' && c <= '9';
    if (number) {
        const int index = std::atoi(wanted.c_str());
        int i = 0;
        for (const T& element : list)
            if (++i == index)
                return &element;
        return nullptr;
    }
    const QString text = QString::fromStdString(wanted);
    for (const T& element : list)
        if (QString::fromStdWString(name(element)).compare(text, Qt::CaseInsensitive) == 0)
            return &element;
    return nullptr;
}

// Empty when the input fits the field, else what is wrong.
std::string CheckInput(const _TAccountInputItem& field, const std::string& value) {
    const std::wstring text = FromUtf8(value);
    const auto length = static_cast<int64_t>(text.size());
    if (length < field.nMinLen || (field.nMaxLen > 0 && length > field.nMaxLen))
        return Utf8(field.strTitle) + " needs " + LengthText(field) + " characters";
    if (!field.strLimitation.empty())
        for (wchar_t c : text)
            if (field.strLimitation.find(c) == std::wstring::npos)
                return Utf8(field.strTitle) + " takes only the characters " + Utf8(field.strLimitation);
    return {};
}

// The next reply: the next --reply, else one typed on a terminal; none ends the dialogue.
std::optional<std::string> NextReply(std::vector<std::string>& replies) {
    if (!replies.empty()) {
        std::string reply = replies.front();
        replies.erase(replies.begin());
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

struct Exchange {
    std::string sent;
    std::string answer;
    bool question = false;
};

int RunEntry(CliContext& context, AccountController& controller, const QString& command,
             std::vector<std::string> replies, int timeoutMs) {
    controller.setTimeoutInterval(timeoutMs);
    controller.setDeviceFoundProbe([] { return true; });
    QEventLoop loop;
    std::optional<QString> answer;
    bool question = false;
    int sendError = 0;
    QObject::connect(&controller, &AccountController::messageShown, &loop, [&](const QString& text) {
        answer = text;
        question = false;
        loop.quit();
    });
    QObject::connect(&controller, &AccountController::replyRequested, &loop, [&](const QString& text) {
        answer = text;
        question = true;
        loop.quit();
    });
    // The request's own answer: a modem that refuses the string reports it here, not as a USSD report.
    QObject::connect(&controller, &AccountController::sendFailed, &loop,
                     [&](const QString&, Outcome outcome) {
                         sendError = outcome.code;
                         loop.quit();
                     });

    std::vector<Exchange> exchanges;
    QString next = command;
    int result = EXIT_OK;
    while (true) {
        answer.reset();
        exchanges.push_back({next.toStdString(), {}, false});
        ReportProgress(Tool::F("Sending %s...", {next.toStdString()}));
        controller.sendUSSDCmd(next);
        if (controller.isUIBlocked())
            loop.exec();
        if (sendError) {
            result = ReportFailure(context, sendError,
                                   "sending " + next.toStdString() + ": " + ResultCodeText(sendError));
            break;
        }
        if (!answer || *answer == AccountController::timeoutMessage()) {
            result = ReportFailure(context, WORKER_ERR_TIME_OUT, "the network did not answer in time");
            controller.sendUSSDCancelCmd();
            break;
        }
        exchanges.back().answer = answer->toStdString();
        exchanges.back().question = question;
        if (!context.json) {
            std::printf("%s\n", TerminalText(*answer, LineBreaks::Keep).c_str());
            std::fflush(stdout);
        }
        if (!question)
            break;
        const std::optional<std::string> reply = NextReply(replies);
        if (!reply) {
            // Nobody answers: the network's dialogue is ended rather than left waiting.
            controller.sendUSSDCancelCmd();
            break;
        }
        next = QString::fromStdString(*reply);
    }
    if (context.json && result == EXIT_OK) {
        nlohmann::json steps = nlohmann::json::array();
        for (const Exchange& exchange : exchanges)
            steps.push_back({{"sent", exchange.sent},
                             {"answer", TextOrNull(QString::fromStdString(exchange.answer))},
                             {"reply_wanted", exchange.question}});
        PrintJson({{"command", command.toStdString()}, {"exchanges", steps}});
    }
    return result;
}

int Account(CliContext& context, ModemSession& session, const AccountArguments& arguments) {
    EquipmentController equipment(session.link());
    BLEquipmentInfo info;
    if (const int failed =
            session.check(session.read([&](auto done) { equipment.readEquipment(done); }, info,
                                       QT_TRANSLATE_NOOP("dialtone", "reading the SIM's IMSI")),
                          QT_TRANSLATE_NOOP("dialtone", "reading the SIM's IMSI")))
        return failed;
    const QString imsi = info.strImsi;

    AccountController controller(session.link());
    controller.setLanguageIndex(LanguageFromEnvironment());
    int loaded = controller.loadAccountData(imsi);
    if (loaded == 0 && controller.accountData().groups.empty()) {
        // A file without the language: its first language instead.
        controller.setLanguageIndex(-1);
        loaded = controller.loadAccountData(imsi);
    }
    const QString file = AccountController::getUSSDDataFileNameByIMSI(imsi);
    if (loaded != 0)
        return ReportFailure(context, WORKER_ERR_GENERAL,
                             "the account menu file " + file.toStdString() + " is broken");
    const _TAccountData& data = controller.accountData();
    if (data.groups.empty())
        return ReportFailure(context, WORKER_ERR_GENERAL, "no account menu for this SIM");

    if (arguments.entry.empty()) {
        if (context.json)
            PrintJson(ScriptKeys(MenuToJson(data, imsi)));
        else
            PrintMenu(data);
        return EXIT_OK;
    }
    if (arguments.entry.size() < 2)
        return ReportUsage("an entry is chosen with GROUP and ITEM (numbers or names)");
    const auto* group =
        Pick(data.groups, arguments.entry[0], [](const _TAccountGroupItem& g) { return g.strName; });
    if (!group)
        return ReportUsage("no group " + arguments.entry[0] + " in the account menu");
    const auto* item =
        Pick(group->items, arguments.entry[1], [](const _TAccountUSSDItem& i) { return i.strText; });
    if (!item)
        return ReportUsage("no entry " + arguments.entry[1] + " in group " + Utf8(group->strName));
    if (item->buttons.empty())
        return ReportFailure(context, WORKER_ERR_GENERAL, "the entry has no code to send");
    const std::vector<std::string> inputs(arguments.entry.begin() + 2, arguments.entry.end());
    if (inputs.size() != item->inputs.size())
        return ReportUsage("the entry takes " + std::to_string(item->inputs.size()) + " input(s), " +
                           std::to_string(inputs.size()) + " given");
    QStringList values;
    auto field = item->inputs.begin();
    for (const std::string& input : inputs) {
        if (const std::string wrong = CheckInput(*field++, input); !wrong.empty())
            return ReportUsage(wrong);
        if (const int refused = CheckModemText("the input", input, kUssdTextMaxLength))
            return refused;
        values << QString::fromStdString(input);
    }
    const QString command =
        AccountController::composeUSSDCommand(QString::fromStdWString(item->buttons.front().strCode), values);
    const double seconds =
        arguments.waitGiven ? context.waitSeconds : AccountController::kDefaultTimeoutMs / 1000.0;
    return RunEntry(context, controller, command, arguments.replies, static_cast<int>(seconds * 1000));
}

} // namespace

void AddAccountCommand(CLI::App& app, CliContext& context) {
    auto arguments = std::make_shared<AccountArguments>();
    CLI::App* account = app.add_subcommand(
        "account", "The operator's account menus for this SIM; GROUP ITEM [INPUT...] runs an entry");
    account->add_option("ENTRY", arguments->entry,
                        "GROUP ITEM [INPUT...]: numbers or names, then the inputs");
    account
        ->add_option("--reply", arguments->replies,
                     "The answer to the network's next question (repeatable, in order)")
        ->allow_extra_args(false);
    account->callback([&app, &context, arguments] {
        arguments->waitGiven = app.count("--wait") > 0;
        context.exitCode =
            RunWithSim(context, [&](ModemSession& s) { return Account(context, s, *arguments); });
    });
}
