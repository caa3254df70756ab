#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone sms": the modem's messages (list, send, delete, watch, storage, state, sc, validity) and the
// boxes kept on the computer (outbox, sent, drafts, archive).
void AddSmsCommand(CLI::App& app, CliContext& context);
