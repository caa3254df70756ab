#include "PinCommand.h"

#include <cstdio>
#include <memory>

#include "BLRecords.h"
#include "ModemSession.h"
#include "PinCodeFormat.h"
#include "RecordJson.h"
#include "StatusText.h"
#include "WorkNotification.h"

namespace {

struct PinArguments {
    std::string first;
    std::string second;
};

// Adds the PIN state as the modem tells it now to a failure: what a wrong PIN left.
void ReportAttemptsLeft(ModemSession& session) {
    const QVariantMap response = session.request(MESSAGE_PIN_CHECK_STATE);
    if (WorkNotification::GetErrorCode(response) != WORKER_OK)
        return;
    const auto state = WorkNotification::GetValueObject(response).value<BLPinCheckState>();
    std::fprintf(stderr, "dialtone: SIM %s; %d PIN attempts and %d PUK attempts left\n",
                 PinStateText(state.nState).c_str(), state.nPinCnt, state.nPukCnt);
}

int Status(CliContext& context, ModemSession& session) {
    const QVariantMap response = session.request(MESSAGE_PIN_CHECK_STATE);
    if (const int failed = session.check(response, "reading the PIN state"))
        return failed;
    const QVariantMap enabledResponse = session.request(MESSAGE_PIN_GET_STATE);
    const QVariant value = WorkNotification::GetValueObject(response);
    const auto state = value.value<BLPinCheckState>();
    const bool enabledKnown = WorkNotification::GetErrorCode(enabledResponse) == WORKER_OK;
    const QString enabled = WorkNotification::GetValueObject(enabledResponse).toString();
    if (context.json) {
        nlohmann::json document = VariantToJson(value);
        if (enabledKnown)
            document["strPinEnabled"] = enabled.toStdString();
        PrintJson(document);
        return EXIT_OK;
    }
    std::printf("SIM:             %s\n", PinStateText(state.nState).c_str());
    if (state.nState != 0 && state.nState != 17)
        std::printf("Attempts left:   PIN %d, PUK %d\n", state.nPinCnt, state.nPukCnt);
    if (enabledKnown)
        std::printf("PIN request:     %s\n", enabled == "TRUE" ? "on" : "off");
    return EXIT_OK;
}

// Runs one PIN request; on failure the code, then the attempts left.
int Change(CliContext& context, ModemSession& session, const QString& name, const QVariant& argument,
           const std::string& what, const std::string& done) {
    const QVariantMap response = session.request(name, argument);
    if (const int failed = session.check(response, what)) {
        ReportAttemptsLeft(session);
        return failed;
    }
    if (context.json)
        PrintJson(MapToJson(response));
    else
        std::printf("%s\n", done.c_str());
    return EXIT_OK;
}

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

struct CodeArgument {
    const char* name;
    const std::string& code;
    PinCodeKind kind;
};

// A malformed code is a usage error: it never reaches the SIM, where it would cost an attempt.
bool CodesWellFormed(CliContext& context, std::initializer_list<CodeArgument> codes) {
    for (const CodeArgument& argument : codes) {
        if (const std::string problem = PinCodeProblem(argument.code, argument.kind); !problem.empty()) {
            context.exitCode = ReportUsage(std::string(argument.name) + ": " + problem);
            return false;
        }
    }
    return true;
}

} // namespace

void AddPinCommand(CLI::App& app, CliContext& context) {
    CLI::App* pin = app.add_subcommand("pin", "The SIM's PIN: status, verify, puk, change, enable, disable");
    pin->require_subcommand(1);
    auto arguments = std::make_shared<PinArguments>();

    pin->add_subcommand("status", "SIM and PIN state with the attempts left")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) { return Status(context, s); });
    });

    CLI::App* verify = pin->add_subcommand("verify", "Enter the PIN");
    verify->add_option("PIN", arguments->first, "The PIN")->required();
    verify->callback([&context, arguments] {
        if (!CodesWellFormed(context, {{"PIN", arguments->first, PinCodeKind::Pin}}))
            return;
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Change(context, s, MESSAGE_PIN_VERIFY, Q(arguments->first), "verifying the PIN",
                          "PIN accepted");
        });
    });

    CLI::App* puk = pin->add_subcommand("puk", "Unblock the SIM with the PUK and set a new PIN");
    puk->add_option("PUK", arguments->first, "The PUK")->required();
    puk->add_option("NEWPIN", arguments->second, "The new PIN")->required();
    puk->callback([&context, arguments] {
        if (!CodesWellFormed(context, {{"PUK", arguments->first, PinCodeKind::Puk},
                                       {"NEWPIN", arguments->second, PinCodeKind::Pin}}))
            return;
        BLPINVerifyPukInfo info{Q(arguments->first), Q(arguments->second)};
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Change(context, s, MESSAGE_PIN_VERIFY_PUK, QVariant::fromValue(info), "verifying the PUK",
                          "PUK accepted, new PIN set");
        });
    });

    CLI::App* change = pin->add_subcommand("change", "Change the PIN");
    change->add_option("OLD", arguments->first, "The current PIN")->required();
    change->add_option("NEW", arguments->second, "The new PIN")->required();
    change->callback([&context, arguments] {
        if (!CodesWellFormed(context, {{"OLD", arguments->first, PinCodeKind::Pin},
                                       {"NEW", arguments->second, PinCodeKind::Pin}}))
            return;
        BLPINChangeInfo info{Q(arguments->first), Q(arguments->second)};
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return Change(context, s, MESSAGE_PIN_CHANGE, QVariant::fromValue(info), "changing the PIN",
                          "PIN changed");
        });
    });

    for (const bool enable : {true, false}) {
        CLI::App* command = pin->add_subcommand(enable ? "enable" : "disable",
                                                enable ? "Ask for the PIN when the modem starts"
                                                       : "Stop asking for the PIN when the modem starts");
        command->add_option("PIN", arguments->first, "The current PIN")->required();
        command->callback([&context, arguments, enable] {
            if (!CodesWellFormed(context, {{"PIN", arguments->first, PinCodeKind::Pin}}))
                return;
            BLPINEnableInfo info{enable, Q(arguments->first)};
            context.exitCode = RunInSession(context, [&](ModemSession& s) {
                return Change(context, s, MESSAGE_PIN_ENABLE, QVariant::fromValue(info),
                              enable ? "enabling the PIN request" : "disabling the PIN request",
                              enable ? "PIN request enabled" : "PIN request disabled");
            });
        });
    }
}
