#pragma once

#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

#include "WideText.h"

// What every command family of the dialtone tool shares: the global options, the exit status, and the
// rules for output (human-readable text by default, one JSON document with --json or key: value lines
// with --output key=value; errors on standard error, and with either an error document on standard
// output).

// Exit status of the tool.
enum : int {
    EXIT_OK = 0,
    EXIT_FAILED = 1, // the modem or the system reported a failure
    EXIT_USAGE = 2,
};

struct CliContext {
    bool json = false;  // a document for scripts: --json, or --output json|key=value
    std::string output; // --output: "json" or "key=value"; empty for the default
    bool debug = false;
    bool simulate = false;   // --simulate: work against a fresh simulated modem
    std::string scenario;    // its scenario (file or shipped name); empty for the built-in one
    std::string devDir;      // --dev-dir: where the modem's ports are looked for
    bool noService = false;  // --no-service: the worker in this process even when dialtoned is there
    bool viaService = false; // set by the session: requests go to dialtoned on the session bus
    double waitSeconds = 30; // --wait: how long event commands wait
    bool waitGiven = false;  // whether --wait was given (commands that otherwise run until interrupted)
    int exitCode = EXIT_OK;  // set by the command that ran
};

// Reports a failed operation: "dialtone: <what> (result <code>)" on standard error, with the modem's own
// cause beside the code when there is one; for scripts {"error": {"code": code, "message": what}} (and
// "cause_code") on standard output. Returns EXIT_FAILED.
int ReportFailure(const CliContext& context, int resultCode, const std::string& what, int cause = 0);
// Reports a usage error found after parsing (an argument CLI11 could not check). Returns EXIT_USAGE.
int ReportUsage(const std::string& what);
// Refuses text that cannot go to the modem as it stands (a double quote, a semicolon, a backslash, a
// control character, or more than maxLength bytes): reports the usage error naming what and the
// character, and returns EXIT_USAGE; EXIT_OK when the text may be sent.
int CheckModemText(const std::string& what, const std::string& value, std::size_t maxLength);
// Progress of a long command on standard error, only when that is a terminal.
void ReportProgress(const std::string& what);

// How documents for scripts are printed; set once from the command line before any command runs.
enum class ScriptFormat { Json, KeyValue };
void SetScriptFormat(ScriptFormat format);

// Prints one document on standard output: indented JSON, or key: value lines; text that is not UTF-8
// is replaced, never fatal.
void PrintJson(const nlohmann::json& document);
// Prints one event of a command that reports as things happen: one JSON object on one line, or its
// key: value lines followed by an empty line; flushed at once.
void PrintJsonLine(const nlohmann::json& event);
