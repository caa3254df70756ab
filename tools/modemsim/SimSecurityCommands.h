#pragma once

#include "SimModem.h"

namespace modemsim {

// SIM security: AT+CPIN (PIN and PUK with their counters: 3 PIN tries, then the PUK; 10 PUK tries, then
// the card is blocked for good), AT+CPINR, AT+CLCK="SC", AT+CPWD, and the vendor counters AT+SMPN? and
// AT+PNNM?.
void RegisterSecurityCommands(CommandTable& table);

// A PIN as the card takes it: 4 to 8 digits.
bool ValidPin(const std::string& pin);

} // namespace modemsim
