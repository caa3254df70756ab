#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone stk menu" prints the SIM toolkit's main menu: the card's title and its items by identifier.
// "dialtone stk select ITEM [ITEM...]" walks the menus, each ITEM an item identifier of the menu shown at
// that step (or its 1-based position, or its text), and prints what the card answers: the next menu, a
// text, a question, or the end of the dialogue. A text the card shows is confirmed, as a phone's user
// would, and what follows it is printed as well. With --json the commands are printed as records.
void AddStkCommand(CLI::App& app, CliContext& context);
