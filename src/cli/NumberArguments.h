#pragma once

#include <QString>

#include <optional>
#include <string>

class ModemSession;

// Phone numbers on the command line. A number is checked before the modem is asked (letters, service
// codes, stray characters and over-long numbers are usage errors), sent in the form the SIM's country
// makes of it, and shown in lists as people read it there.

// Why the typed number can never be sent, or empty. Does not depend on the SIM, so it serves as an option
// check; the hint for service codes names the command that takes them.
std::string NumberRefusal(const std::string& typed);
// The same for calls and phonebooks, which also take service codes as typed.
std::string NumberOrCodeRefusal(const std::string& typed);

// The home region of the modem's SIM, or of its network when the SIM tells nothing; empty when neither is
// known.
std::string SessionRegion(ModemSession& session);
std::string RegionOfImsi(const QString& imsi);

// The number to send; nullopt once the refusal is on standard error (exit status EXIT_USAGE).
std::optional<std::string> DialNumber(const std::string& typed, const std::string& region);
// Service codes ("*#06#", "*21*0170123#": "+" first, digits, "*" and "#") as typed, else DialNumber.
std::optional<std::string> DialNumberOrCode(const std::string& typed, const std::string& region);

// A stored number (or an alphanumeric sender) for human-readable lists.
std::string NumberForReading(const QString& number, const std::string& region);
