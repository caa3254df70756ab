#pragma once

#include "CliSupport.h"
#include "NetworkRecords.h"

class AppConfig;
class ModemSession;
class ProfileSettingsController;

// The configuration the worker made for this run; reports the failure and gives null when there is none.
AppConfig* SessionConfig(CliContext& context);

// Reads the SIM's identity into the configuration's device information and the network information, and
// lets the settings choose the SIM's profiles. False once a failure is reported (the exit status is then
// in the context).
bool LearnSim(CliContext& context, ModemSession& session, AppConfig& config,
              ProfileSettingsController& settings, BLNetworkInfo* network = nullptr);
