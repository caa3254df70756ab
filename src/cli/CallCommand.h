#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone call dial NUMBER" dials a voice call and waits, up to --wait seconds, for it to be answered,
// printing its state as it changes; "call answer" takes an incoming call, "call hangup" ends the calls,
// "call dtmf KEYS" sends tones during a call (0-9, *, #, A-D; any other key is a usage error and nothing
// is sent), "call list" prints the current calls.
void AddCallCommand(CLI::App& app, CliContext& context);
