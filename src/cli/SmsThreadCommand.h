#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone sms thread NUMBER|NAME" (every message to and from one person, oldest first, from every
// storage and box) and "dialtone sms search TEXT" (text, number or contact name, newest first).
void AddSmsThreadCommands(CLI::App& sms, CliContext& context);
