#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "SimModem.h"

namespace modemsim {

// USSD: AT+CUSD? / =n / =1,"<text>",15 / =2. The network answers from the scenario's menu tree after a
// short delay with "+CUSD: <m>,"<hex>",<dcs>": m 1 while it waits for a reply, 0 when done, 4 for an
// unknown service code; UCS2 hex with dcs 72 after AT+CSCS="UCS2", else the default alphabet with dcs 15.
void RegisterUssdCommands(CommandTable& table);

// The "+CUSD:" line for a network text, in the current character set.
std::string UssdLine(const SimModem& m, int mode, const std::string& text);

// Control socket "ussd M TEXT": a network-initiated USSD message.
nlohmann::json NetworkUssd(SimModem& m, int mode, const std::string& text);

} // namespace modemsim
