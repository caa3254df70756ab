#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone profiles list | add NAME APN [options] | default NUMBER | delete NUMBER": the connection
// profiles offered for the SIM (its own from the operator database, then the user's) and the default.
void AddProfilesCommand(CLI::App& app, CliContext& context);
