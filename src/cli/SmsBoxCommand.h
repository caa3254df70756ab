#pragma once

#include <QString>

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone sms outbox | sent | drafts | archive": the messages kept on the computer, per SIM. Without
// an option a box is listed; --add NUMBER TEXT, --delete N and --move N BOX manage it (N counts from 1 in
// the listed order).
void AddSmsBoxCommands(CLI::App& sms, CliContext& context);

// Keeps a copy of a sent message in the SIM's sent box; false when the store could not be written.
bool KeepSentCopy(const QString& imsi, const QString& number, const QString& text);
