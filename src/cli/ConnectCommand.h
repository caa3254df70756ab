#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone connect [PROFILE]": dials the SIM's profile (by name or by its number in the offered list;
// the default profile without one) and holds the connection until interrupted, or until the link ends.
// "dialtone disconnect": hangs up.
void AddConnectCommand(CLI::App& app, CliContext& context);
