#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone gps on" and "dialtone gps off" switch the modem's GPS receiver.
void AddGpsCommand(CLI::App& app, CliContext& context);
