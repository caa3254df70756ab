#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// dialtone account: the operator's account menus for the SIM in the modem (the data file chosen by its
// IMSI, in the language of the environment), and running one entry: its USSD code with the inputs, the
// network's answer, and the replies to its questions (--reply, or typed on a terminal).
void AddAccountCommand(CLI::App& app, CliContext& context);
