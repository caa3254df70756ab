#include "PinCommand.h"

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include "ModemSession.h"
#include "ModemTextCheck.h"
#include "Pin/PinController.h"
#include "PinRecords.h"
#include "ScriptDocuments.h"
#include "SecretInput.h"
#include "StatusText.h"
#include "ToolText.h"

namespace {

int Status(CliContext& context, ModemSession& session) {
    BLPinCheckState state;
    if (const int failed =
            session.check(session.readSim(state), QT_TRANSLATE_NOOP("dialtone", "reading the PIN state")))
        return failed;
    PinController pin(session.link());
    std::optional<PinController::PinRequest> request;
    pin.readPinRequest([&](Outcome, PinController::PinRequest answer) { request = answer; });
    session.await([&] { return request.has_value(); },
                  QT_TRANSLATE_NOOP("dialtone", "reading the PIN request"));
    const bool enabledKnown = *request != PinController::PinRequest::Unknown;
    const bool enabled = *request == PinController::PinRequest::On;
    if (context.json) {
        nlohmann::json document = SimDocument(state);
        document["pin_enabled"] = enabledKnown ? nlohmann::json(enabled) : nlohmann::json();
        PrintJson(document);
        return EXIT_OK;
    }
    FieldList fields;
    fields.add(Tool::T("SIM:"), PinStateText(state.nState));
    if (state.nState != SimState::kAbsent && state.nState != SimState::kBlocked)
        fields.add(Tool::T("Attempts left:"),
                   Tool::F("PIN %s, PUK %s", {AttemptsText(state.nPinCnt), AttemptsText(state.nPukCnt)}));
    if (enabledKnown)
        fields.add(Tool::T("PIN request:"), enabled ? Tool::T("on") : Tool::T("off"));
    fields.print();
    return EXIT_OK;
}

// Runs one try; on failure the code, then the attempts it left.
int Try(CliContext& context, ModemSession& session,
        const std::function<void(PinController&, PinController::Done)>& attempt, const std::string& what,
        const char* done) {
    PinController pin(session.link());
    std::optional<BLPinCheckState> after;
    QObject::connect(&pin, &PinController::simStateRead,
                     [&after](const BLPinCheckState& state) { after = state; });
    std::optional<Outcome> outcome;
    attempt(pin, [&outcome](Outcome answer) { outcome = answer; });
    session.await([&] { return outcome.has_value(); }, what);
    if (const int failed = session.check(*outcome, what)) {
        if (after)
            std::fprintf(stderr, "dialtone: %s\n",
                         Tool::F("SIM %s; %s PIN attempts and %s PUK attempts left",
                                 {PinStateText(after->nState), AttemptsText(after->nPinCnt),
                                  AttemptsText(after->nPukCnt)})
                             .c_str());
        return failed;
    }
    if (context.json)
        PrintJson({{"ok", true}});
    else
        std::printf("%s\n", Tool::T(done).c_str());
    return EXIT_OK;
}

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// One code a PIN command needs: from its argument, from standard input (--pin-stdin, --codes-stdin, one
// line each), or typed at the prompt without echo when no argument is given on a terminal.
struct CodeSlot {
    const char* name;   // as in the usage: "PIN", "NEWPIN"
    const char* prompt; // "PIN", "New PIN"
    PinCodeKind kind;
    bool confirmed = false; // asked twice at the prompt (a new PIN typed blind)
    std::string code;
    CLI::Option* argument = nullptr;
};

struct PinCodes {
    std::vector<CodeSlot> needed;
    bool fromStdin = false;
};

std::string Names(const PinCodes& codes) {
    std::string names;
    for (const CodeSlot& slot : codes.needed)
        names += (names.empty() ? "" : " and ") + std::string(slot.name);
    return names;
}

// Fills the codes not given as arguments.
bool GatherCodes(CliContext& context, PinCodes& codes, const std::string& stdinOption) {
    std::size_t given = 0;
    for (const CodeSlot& slot : codes.needed)
        given += slot.argument->count() > 0 ? 1 : 0;
    if (given == codes.needed.size() && !codes.fromStdin)
        return true;
    if (given != 0) {
        context.exitCode = ReportUsage(codes.fromStdin ? "give " + Names(codes) +
                                                             " either as arguments or with " + stdinOption
                                                       : Names(codes) + " are needed together");
        return false;
    }
    const bool prompting = isatty(STDIN_FILENO);
    if (!codes.fromStdin && !prompting) {
        context.exitCode = ReportUsage("no " + Names(codes) + " given; " + stdinOption +
                                       " reads it from standard input, one per line");
        return false;
    }
    for (CodeSlot& slot : codes.needed) {
        if (!ReadSecretLine(Tool::T(slot.prompt), slot.code)) {
            context.exitCode = ReportUsage(std::string("standard input ended before the ") + slot.name);
            return false;
        }
        if (prompting && slot.confirmed) {
            std::string again;
            if (!ReadSecretLine(Tool::F("%s again", {Tool::T(slot.prompt)}), again) || again != slot.code) {
                context.exitCode = ReportUsage(Tool::T("the two new PINs differ; nothing was changed"));
                return false;
            }
        }
    }
    return true;
}

// A malformed code is a usage error: it never reaches the SIM, where it would cost an attempt.
bool CodesReady(CliContext& context, PinCodes& codes, const std::string& stdinOption) {
    if (!GatherCodes(context, codes, stdinOption))
        return false;
    for (const CodeSlot& slot : codes.needed) {
        if (const std::string problem = PinCodeProblem(slot.code, slot.kind); !problem.empty()) {
            context.exitCode = ReportUsage(std::string(slot.name) + ": " + problem);
            return false;
        }
    }
    return true;
}

// Registers the code arguments (optional: see CodeSlot) and the option reading them from standard input.
std::shared_ptr<PinCodes> AddCodes(CLI::App* command, std::vector<CodeSlot> needed,
                                   const std::string& stdinOption) {
    auto codes = std::make_shared<PinCodes>();
    codes->needed = std::move(needed);
    for (CodeSlot& slot : codes->needed)
        slot.argument = command->add_option(slot.name, slot.code,
                                            std::string("The ") + slot.prompt +
                                                "; leave it out to be asked, or use " + stdinOption);
    command->add_flag(stdinOption, codes->fromStdin,
                      codes->needed.size() == 1
                          ? "Read the code from standard input"
                          : "Read the codes from standard input, one per line, in this order");
    return codes;
}

} // namespace

void AddPinCommand(CLI::App& app, CliContext& context) {
    CLI::App* pin = app.add_subcommand("pin", "The SIM's PIN: status, verify, puk, change, enable, disable");
    pin->require_subcommand(1);

    pin->add_subcommand("status", "SIM and PIN state with the attempts left")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) { return Status(context, s); });
    });

    CLI::App* verify = pin->add_subcommand("verify", "Enter the PIN");
    auto verifyCodes = AddCodes(verify, {{"PIN", "PIN", PinCodeKind::Pin, false, {}}}, "--pin-stdin");
    verify->callback([&context, verifyCodes] {
        if (!CodesReady(context, *verifyCodes, "--pin-stdin"))
            return;
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Try(
                context, s,
                [&](PinController& pin, PinController::Done done) {
                    pin.verifyPin(Q(verifyCodes->needed[0].code), done);
                },
                QT_TRANSLATE_NOOP("dialtone", "verifying the PIN"),
                QT_TRANSLATE_NOOP("dialtone", "PIN accepted"));
        });
    });

    CLI::App* puk = pin->add_subcommand("puk", "Unblock the SIM with the PUK and set a new PIN");
    auto pukCodes =
        AddCodes(puk,
                 {{"PUK", "PUK", PinCodeKind::Puk, false, {}},
                  {"NEWPIN", QT_TRANSLATE_NOOP("dialtone", "New PIN"), PinCodeKind::Pin, true, {}}},
                 "--codes-stdin");
    puk->callback([&context, pukCodes] {
        if (!CodesReady(context, *pukCodes, "--codes-stdin"))
            return;
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Try(
                context, s,
                [&](PinController& pin, PinController::Done done) {
                    pin.verifyPuk(Q(pukCodes->needed[0].code), Q(pukCodes->needed[1].code), done);
                },
                QT_TRANSLATE_NOOP("dialtone", "verifying the PUK"),
                QT_TRANSLATE_NOOP("dialtone", "PUK accepted, new PIN set"));
        });
    });

    CLI::App* change = pin->add_subcommand("change", "Change the PIN");
    auto changeCodes =
        AddCodes(change,
                 {{"OLD", QT_TRANSLATE_NOOP("dialtone", "Current PIN"), PinCodeKind::Pin, false, {}},
                  {"NEW", QT_TRANSLATE_NOOP("dialtone", "New PIN"), PinCodeKind::Pin, true, {}}},
                 "--codes-stdin");
    change->callback([&context, changeCodes] {
        if (!CodesReady(context, *changeCodes, "--codes-stdin"))
            return;
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Try(
                context, s,
                [&](PinController& pin, PinController::Done done) {
                    pin.changePin(Q(changeCodes->needed[0].code), Q(changeCodes->needed[1].code), done);
                },
                QT_TRANSLATE_NOOP("dialtone", "changing the PIN"),
                QT_TRANSLATE_NOOP("dialtone", "PIN changed"));
        });
    });

    for (const bool enable : {true, false}) {
        CLI::App* command = pin->add_subcommand(enable ? "enable" : "disable",
                                                enable ? "Ask for the PIN when the modem starts"
                                                       : "Stop asking for the PIN when the modem starts");
        auto codes = AddCodes(
            command, {{"PIN", QT_TRANSLATE_NOOP("dialtone", "Current PIN"), PinCodeKind::Pin, false, {}}},
            "--pin-stdin");
        command->callback([&context, codes, enable] {
            if (!CodesReady(context, *codes, "--pin-stdin"))
                return;
            context.exitCode = RunInSession(context, [&](ModemSession& s) {
                return Try(
                    context, s,
                    [&](PinController& pin, PinController::Done done) {
                        pin.setPinRequest(enable, Q(codes->needed[0].code), done);
                    },
                    enable ? QT_TRANSLATE_NOOP("dialtone", "enabling the PIN request")
                           : QT_TRANSLATE_NOOP("dialtone", "disabling the PIN request"),
                    enable ? QT_TRANSLATE_NOOP("dialtone", "PIN request enabled")
                           : QT_TRANSLATE_NOOP("dialtone", "PIN request disabled"));
            });
        });
    }
}
