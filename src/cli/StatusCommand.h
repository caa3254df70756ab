#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone status": equipment, SIM and PIN state, operator, signal, bearer, roaming and connection in
// one view. "dialtone info": the equipment information alone.
void AddStatusCommand(CLI::App& app, CliContext& context);
