#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone sms outbox | sent | drafts | archive": the messages kept on the computer, per SIM. Without
// an option a box is listed; --add NUMBER TEXT, --delete N and --move N BOX manage it (N counts from 1 in
// the listed order).
void AddSmsBoxCommands(CLI::App& sms, CliContext& context);
