// dialtone: the command-line front end. Each command family registers itself below; the global options
// of every command are handled here.

#include <cstdio>

#include <CLI/CLI.hpp>

#include "CliSupport.h"
#include "DebugSink.h"
#include "PduCommand.h"

int main(int argc, char** argv) {
    CLI::App app("Dialtone: a connection manager for USB 3G/HSPA modems", "dialtone");
    app.set_version_flag("--version", "dialtone " DIALTONE_CLI_VERSION);
    app.require_subcommand(1);

    CliContext context;
    app.add_flag("--json", context.json, "Print one JSON document on standard output");
    app.add_flag("--debug", context.debug, "Show the modem traffic and debug texts on standard error");

    AddPduCommand(app, context);

    // The debug sink must point where it belongs before any command runs.
    app.parse_complete_callback([&context] { SetDebugSink(context.debug ? stderr : nullptr); });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version exit 0 on standard output; every other parse error is a usage error.
        app.exit(error);
        return error.get_exit_code() == 0 ? EXIT_OK : EXIT_USAGE;
    }
    return context.exitCode;
}
