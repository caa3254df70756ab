#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone stats [--from YYYY-MM-DD] [--to YYYY-MM-DD]", "dialtone stats reset [--history]": the traffic
// history kept on this computer, without a modem.
void AddStatsCommand(CLI::App& app, CliContext& context);
