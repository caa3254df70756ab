#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone pin status | verify PIN | puk PUK NEWPIN | change OLD NEW | enable PIN | disable PIN": the
// SIM's PIN. A refused PIN or PUK reports the attempts left.
void AddPinCommand(CLI::App& app, CliContext& context);
