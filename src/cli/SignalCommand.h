#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone signal": one reading of the signal (dBm, bars, RSCP and Ec/Io when the modem tells them,
// bearer, cell); with --watch a line a second with the best of the last minute, for finding the best
// place for the stick, until Ctrl-C or --count readings; --tone rings the terminal bell faster as the
// signal gets stronger.
void AddSignalCommand(CLI::App& app, CliContext& context);
