#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone connect [PROFILE] [--hold]": makes the modem's dial-up service ready, dials the SIM's profile
// (by name or by its number in the offered list; the default profile without one) and shows the state
// once a second until the link is up or fails. The link stays up after the tool ends; with --hold the
// tool stays, records the traffic, and hangs up on Ctrl-C.
// "dialtone disconnect": ends the link and records its traffic.
// "dialtone monitor": the link's time, bytes and rates once a second.
void AddConnectCommand(CLI::App& app, CliContext& context);
