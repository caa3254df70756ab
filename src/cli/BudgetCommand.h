#pragma once

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "CliSupport.h"

struct BudgetStatus;

// "dialtone budget [status] | set [SIZE] [--day N] [--time DURATION] [--warn PERCENT] [--at-limit
// warn|hangup] | clear | roaming off|warn|hangup": the data budget and the roaming guard of the SIM in
// the modem.
void AddBudgetCommand(CLI::App& app, CliContext& context);

// The budget as scripts read it ("budget" of "dialtone stats --json" too), and as one line of text.
nlohmann::json BudgetDocument(const BudgetStatus& status);
std::string BudgetLine(const BudgetStatus& status);
