#pragma once

#include "SimModem.h"

namespace modemsim {

// Phonebooks "SM" and "ME": AT+CPBS, AT+CPBR, AT+CPBF, AT+CPBW (write, delete, first free index). Names
// travel in the AT+CSCS character set (UCS2 hex after AT+CSCS="UCS2").
void RegisterPhonebookCommands(CommandTable& table);

// Checks a number for a phonebook or the service centre: digits, "*", "#", "+" in front, pauses "P"/"W".
bool ValidDialString(const std::string& number);

} // namespace modemsim
