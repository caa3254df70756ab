#include "StkCommand.h"

#include "ScriptJson.h"

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ModemSession.h"
#include "SAT/ToolkitController.h"
#include "SatRecords.h"
#include "TerminalText.h"
#include "ToolText.h"

namespace {

constexpr int kMainMenu = ToolkitController::kMainMenu;
constexpr int kSelectItem = ToolkitController::kSelectItem;
constexpr int kDisplayText = ToolkitController::kDisplayText;
constexpr int kGetInkey = ToolkitController::kGetInkey;
constexpr int kGetInput = ToolkitController::kGetInput;
constexpr int kSessionEnd = ToolkitController::kSessionEnd;
// Texts confirmed in a row before the tool stops following the card.
constexpr int kMaxTextsFollowed = 16;

nlohmann::json TextJson(const QString& text) {
    return text.isNull() ? nlohmann::json(nullptr) : nlohmann::json(text.toStdString());
}

nlohmann::json CommandJson(const BLSatCommand& command) {
    nlohmann::json items = nlohmann::json::array();
    for (const BLSatMenuItem& item : command.lstItems) {
        items.push_back(
            {{"class", "BLSatMenuItem"}, {"nItemId", item.nItemId}, {"strText", TextJson(item.strText)}});
    }
    return {{"class", "BLSatCommand"},
            {"nCommand", command.nCommand},
            {"nType", command.nType},
            {"nDefaultItem", command.nDefaultItem},
            {"nFormat", command.nFormat},
            {"nMinLength", command.nMinLength},
            {"nMaxLength", command.nMaxLength},
            {"strText", TextJson(command.strText)},
            {"strDefaultText", TextJson(command.strDefaultText)},
            {"lstItems", items}};
}

void PrintCommand(const BLSatCommand& command) {
    const std::string text = TerminalText(command.strText, LineBreaks::Keep);
    switch (command.nCommand) {
    case kMainMenu:
    case kSelectItem:
        std::printf("%s\n", text.c_str());
        for (const BLSatMenuItem& item : command.lstItems) {
            std::printf("%4d  %s%s\n", item.nItemId, TerminalText(item.strText).c_str(),
                        item.nItemId == command.nDefaultItem && command.nDefaultItem != 0
                            ? ("  " + Tool::T("(default)")).c_str()
                            : "");
        }
        break;
    case kDisplayText:
        std::printf("%s\n", text.c_str());
        break;
    case kGetInkey:
        std::printf("%s\n%s\n", text.c_str(), Tool::T("(the card asks for a key)").c_str());
        break;
    case kGetInput:
        std::printf("%s\n%s\n", text.c_str(),
                    Tool::F("(the card asks for an answer of %s to %s characters)",
                            {std::to_string(command.nMinLength), std::to_string(command.nMaxLength)})
                        .c_str());
        break;
    case kSessionEnd:
        std::printf("%s\n", Tool::T("(the card ended the dialogue)").c_str());
        break;
    default:
        std::printf("%s%s%s\n", Tool::F("(toolkit command %s)", {std::to_string(command.nCommand)}).c_str(),
                    text.empty() ? "" : " ", text.c_str());
        break;
    }
    std::fflush(stdout);
}

// The item an argument names in a menu: its identifier, else its 1-based position, else its text (case
// ignored). Nothing when none fits.
std::optional<int> FindItem(const BLSatCommand& menu, const std::string& argument) {
    bool isNumber = !argument.empty() && argument.size() <= 9;
    for (char c : argument)
        isNumber = isNumber && c >= '0' && c <= '9';
    if (isNumber) {
        const int number = std::stoi(argument);
        for (const BLSatMenuItem& item : menu.lstItems) {
            if (item.nItemId == number)
                return item.nItemId;
        }
        if (number >= 1 && number <= menu.lstItems.size())
            return menu.lstItems.at(number - 1).nItemId;
    }
    const QString text = QString::fromStdString(argument);
    for (const BLSatMenuItem& item : menu.lstItems) {
        if (item.strText.compare(text, Qt::CaseInsensitive) == 0)
            return item.nItemId;
    }
    return std::nullopt;
}

// Waits for the controller's result; the command it carries on success.
int Await(ModemSession& session, const std::function<void(ToolkitController::Result)>& start,
          BLSatCommand& command, const std::string& what) {
    std::optional<Outcome> outcome;
    start([&](Outcome answer, const BLSatCommand& received) {
        outcome = answer;
        command = received;
    });
    session.await([&] { return outcome.has_value(); }, what);
    return session.check(*outcome, what);
}

int GetMenu(ModemSession& session, ToolkitController& toolkit, BLSatCommand& menu) {
    ReportProgress(Tool::T("reading the SIM's menu"));
    return Await(
        session, [&](ToolkitController::Result done) { toolkit.readMenu(done); }, menu,
        QT_TRANSLATE_NOOP("dialtone", "reading the SIM's menu"));
}

int Answer(ModemSession& session, ToolkitController& toolkit, const BLSatResponse& answer, BLSatCommand& next,
           const std::string& what) {
    ReportProgress(Tool::T("waiting for the SIM's answer"));
    return Await(
        session, [&](ToolkitController::Result done) { toolkit.answer(answer, done); }, next, what);
}

int Menu(CliContext& context, ModemSession& session) {
    ToolkitController toolkit(session.link());
    BLSatCommand menu;
    if (const int failed = GetMenu(session, toolkit, menu))
        return failed;
    if (context.json)
        PrintJson(ScriptKeys(CommandJson(menu)));
    else
        PrintCommand(menu);
    return EXIT_OK;
}

int Select(CliContext& context, ModemSession& session, const std::vector<std::string>& items) {
    ToolkitController toolkit(session.link());
    BLSatCommand current;
    if (const int failed = GetMenu(session, toolkit, current))
        return failed;
    bool chosen = false; // once an item is chosen the card has acted: a later miss is its answer, not a slip
    for (const std::string& argument : items) {
        if (!ToolkitController::isMenu(current)) {
            if (!context.json)
                PrintCommand(current);
            return ReportFailure(context, 1,
                                 "the SIM shows no menu to choose \"" + TerminalText(argument) + "\" from");
        }
        const std::optional<int> item = FindItem(current, argument);
        if (!item) {
            const std::string what =
                "\"" + TerminalText(current.strText) + "\" has no item \"" + TerminalText(argument) + "\"";
            return chosen ? ReportFailure(context, 1, what)
                          : ReportUsage(what + " (dialtone stk menu lists them)");
        }
        chosen = true;
        BLSatResponse answer;
        answer.nCommand = current.nCommand;
        answer.nItemId = *item;
        if (const int failed = Answer(session, toolkit, answer, current, "choosing \"" + argument + "\""))
            return failed;
    }

    // What the card shows from here on; a text is confirmed and what follows it shown too.
    nlohmann::json shown = nlohmann::json::array();
    for (int texts = 0;; ++texts) {
        if (context.json)
            shown.push_back(ScriptKeys(CommandJson(current)));
        else
            PrintCommand(current);
        if (current.nCommand != kDisplayText || texts == kMaxTextsFollowed)
            break;
        BLSatResponse confirm;
        confirm.nCommand = kDisplayText;
        if (const int failed = Answer(session, toolkit, confirm, current, "confirming the SIM's text"))
            return failed;
    }
    if (context.json)
        PrintJson({{"commands", shown}});
    return EXIT_OK;
}

} // namespace

void AddStkCommand(CLI::App& app, CliContext& context) {
    CLI::App* stk = app.add_subcommand("stk", "The SIM toolkit's menus");
    stk->require_subcommand(1);
    stk->add_subcommand("menu", "The SIM's main menu")->callback([&context] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return Menu(context, s); });
    });
    auto items = std::make_shared<std::vector<std::string>>();
    CLI::App* select = stk->add_subcommand("select", "Choose items, menu by menu, and show the SIM's answer");
    select->add_option("ITEM", *items, "An item's identifier, position or text, one per menu")->required();
    select->callback([&context, items] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) { return Select(context, s, *items); });
    });
}
