#pragma once

#include <nlohmann/json.hpp>

#include "SimModem.h"

namespace modemsim {

// Network: AT+CSQ, AT+CREG, AT+CGREG, AT+CGATT, AT+COPS (query, the operator scan with its delay,
// automatic and manual selection), the vendor AT+SYSSEL, AT+SSND, AT+SPNM and AT+SPDI, and AT+CRSM for
// the SIM files behind the last two.
void RegisterNetworkCommands(CommandTable& table);

// Registration status as AT+CREG? gives it: 0 not registered, 1 home, 2 searching, 3 denied, 5 roaming.
int RegistrationStat(const SimModem& m);
bool IsRegistered(const SimModem& m);
// Picks the operator after a change of SIM state, AT+CFUN or AT+COPS; reports "+CREG:" when asked to.
void UpdateRegistration(SimModem& m);

// AT+CFUN: 1 full service, 0 and 4 radio off.
void SetFunctionality(SimModem& m, int level);

// Control socket: "signal CSQ", "reg STAT" (-1 gives the status back to the simulation).
nlohmann::json SetSignal(SimModem& m, int csq);
// "signal drift" and "signal steady"; "cell LAC CI" in hexadecimal.
nlohmann::json SetSignalDrift(SimModem& m, bool drift);
nlohmann::json SetCell(SimModem& m, long long lac, long long cell);
nlohmann::json SetRegistration(SimModem& m, int stat);

} // namespace modemsim
