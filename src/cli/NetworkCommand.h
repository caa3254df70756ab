#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone network info | scan | select MCCMNC [--act N] | auto | band [VALUE] | mode [VALUE] | reg":
// the radio network, its operators and the modem's band and mode settings.
void AddNetworkCommand(CLI::App& app, CliContext& context);
