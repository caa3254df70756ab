#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone request NAME [ARGUMENT-JSON]": sends one named request with the argument (a number, a string,
// or a record as an object with "class") and prints the whole response dictionary as JSON.
void AddRequestCommand(CLI::App& app, CliContext& context);
