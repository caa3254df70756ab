#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone ussd CODE [--reply TEXT...]": sends a USSD code and prints the network's answers as they come
// (with --json one JSON line each). When the network asks for a reply, the next --reply is sent; without
// one the reply is asked for on a terminal, and otherwise the dialogue is cancelled. No answer within
// --wait seconds is a failure. "dialtone ussd --cancel" ends a dialogue this modem has open.
void AddUssdCommand(CLI::App& app, CliContext& context);
