#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone contacts list | add NAME NUMBER [--store sim|modem] | update STORE INDEX NAME NUMBER |
// delete STORE INDEX | info": the SIM's and the modem's phonebooks. STORE is "sim" or "modem".
void AddContactsCommand(CLI::App& app, CliContext& context);
