// dialtone: the command-line front end. Each command family registers itself below; the global options
// of every command are handled here.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <CLI/CLI.hpp>

#include "AccountCommand.h"
#include "CallCommand.h"
#include "CliSupport.h"
#include "CommandLine.h"
#include "Completion.h"
#include "ConnectCommand.h"
#include "ContactsCommand.h"
#include "CoreDumps.h"
#include "DebugSink.h"
#include "DoctorCommand.h"
#include "GpsCommand.h"
#include "NetworkCommand.h"
#include "PduCommand.h"
#include "PinCommand.h"
#include "ProfilesCommand.h"
#include "RequestCommand.h"
#include "SessionRecorder.h"
#include "SmsCommand.h"
#include "StatsCommand.h"
#include "BudgetCommand.h"
#include "SignalCommand.h"
#include "StatusCommand.h"
#include "StkCommand.h"
#include "ToolText.h"
#include "Translations.h"
#include "UssdCommand.h"

int main(int argc, char** argv) {
    DisableCoreDumps();
    // A closed standard output (dialtone status | head) must not keep the tool from cleaning up.
    std::signal(SIGPIPE, SIG_IGN);
    CLI::App app("Dialtone: a connection manager for USB 3G/HSPA modems", "dialtone");
    app.set_version_flag("--version", "dialtone " DIALTONE_CLI_VERSION);
    app.require_subcommand(1);
    PrepareCommandLine(app);

    CliContext context;
    if (const char* devDir = std::getenv("DIALTONE_DEV_DIR"))
        context.devDir = devDir;
    // A flag that takes its scenario only after "=": anywhere on the line, the next word is never taken.
    app.add_flag("--simulate{}", context.scenario,
                 "Start a fresh simulated modem (dialtone-modemsim) with the scenario, and work against it")
        ->type_name("[=SCENARIO]");
    app.add_option("--dev-dir", context.devDir, "Where the modem's ports are looked for (default /dev)");
    app.add_flag("--no-service", context.noService,
                 "Open the modem in this process even when the modem service (dialtoned) is there");
    app.add_flag("--json", context.json, "Print one JSON document on standard output");
    OfferValues(app.add_option("--output", context.output,
                               "Output for scripts: json (as --json), or key=value (one \"key: value\" per line)")
                    ->check(CLI::IsMember({"json", "key=value"})),
                {"json", "key=value"});
    app.add_flag("--debug", context.debug, "Show the AT traffic with the modem on standard error");
    std::string record;
    bool recordPrivate = false;
    CLI::Option* recordOption =
        app.add_option("--record", record,
                       "Save the AT exchange with the modem to a new file (doc/recording.md)")
            ->type_name("FILE");
    app.add_flag("--record-private", recordPrivate,
                 "Keep numbers, message texts, PINs and passwords in the recording instead of masking them")
        ->needs(recordOption);
    app.add_option("--wait", context.waitSeconds, "How long event commands wait, in seconds")
        ->check(Seconds(kMinWaitSeconds, kMaxWaitSeconds))
        ->type_name("SECONDS");
    AddCompletionOption(app);

    AddStatusCommand(app, context);
    AddRequestCommand(app, context);
    AddPinCommand(app, context);
    AddNetworkCommand(app, context);
    AddSignalCommand(app, context);
    AddConnectCommand(app, context);
    AddProfilesCommand(app, context);
    AddStatsCommand(app, context);
    AddBudgetCommand(app, context);
    AddPduCommand(app, context);
    AddSmsCommand(app, context);
    AddContactsCommand(app, context);
    AddUssdCommand(app, context);
    AddAccountCommand(app, context);
    AddStkCommand(app, context);
    AddCallCommand(app, context);
    AddGpsCommand(app, context);
    AddDoctorCommand(app, context);

    // The debug sink must point where it belongs before any command runs.
    app.parse_complete_callback([&context, &app, &record, &recordPrivate] {
        // --debug shows the modem traffic; the internal debug texts stay out of the way.
        SetDebugSink(nullptr);
        SetTrafficSink(context.debug ? stderr : nullptr);
        if (!record.empty() && !StartRecordingOrSay("dialtone", record, recordPrivate, DIALTONE_CLI_VERSION))
            std::exit(EXIT_FAILED);
        context.simulate = app.count("--simulate") > 0;
        context.waitGiven = app.count("--wait") > 0;
        if (!context.output.empty())
            context.json = true;
        SetScriptFormat(context.output == "key=value" ? ScriptFormat::KeyValue : ScriptFormat::Json);
        // Text for people in their language; output for scripts (--json, --output) never.
        if (!context.json)
            Translations::installWithApplication();
    });
    // Mistakes on the command line are told in the user's language too, unless the output is for scripts.
    Tool::translateEarly(std::none_of(argv + 1, argv + argc, [](std::string_view word) {
        return word == "--json" || word.starts_with("--output");
    }));
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version exit 0 on standard output; every other parse error is a usage error.
        if (error.get_exit_code() == 0) {
            app.exit(error);
            return EXIT_OK;
        }
        if (const auto unknown = FindUnknownCommand(app, std::vector<std::string>(argv + 1, argv + argc)))
            return ReportUnknownCommand(*unknown);
        return ReportUsage(UsageText(error));
    }
    return context.exitCode;
}
