#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "SimModem.h"

namespace modemsim {

// SIM toolkit: "+STIN: <n>" indications, AT+STIN?, AT+STGI=<n> (17 is the main menu; the others are the
// proactive commands of the scenario), AT+STGR terminal responses and envelopes. The answer to
// AT+STGI=<n> is a header line "+STGI: <n>,<fields>" (texts quoted in the AT+CSCS character set, then the
// item count when the command has items) followed by one "+STGI: <n>,<id>,"<text>"" line per item.
void RegisterToolkitCommands(CommandTable& table);

// Control socket "stk N": N is a command number (20 ends the dialogue) or a command name of the scenario.
nlohmann::json ToolkitIndication(SimModem& m, const std::string& what);

} // namespace modemsim
