#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone pdu decode HEX [--tpdu-len N]" and "dialtone pdu encode NUMBER TEXT [--report]
// [--validity CODE]": the SMS PDU codec on its own, without a modem.
void AddPduCommand(CLI::App& app, CliContext& context);
