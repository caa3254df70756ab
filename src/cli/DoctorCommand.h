#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// "dialtone doctor": checks each step from the plugged-in stick to a connection (USB device, CD-ROM
// switch, ModemManager, port links and rights, pppd, peers folder, DNS) and prints each finding with its
// fix. Exit status 0 when all is well, 1 when a check failed.
void AddDoctorCommand(CLI::App& app, CliContext& context);
