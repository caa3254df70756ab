#pragma once

#include <string>

#include <nlohmann/json.hpp>

// The state words of the tool's JSON (doc/json.md). They are part of the interface scripts rely on:
// add words, never rename one. Every function takes the worker's code and gives the word, or "unknown".

// Registration from the worker's code (0 not registered, 1 searching, 2 denied, 3 home, 4 roaming,
// 5 unknown): "home", "roaming", "searching", "denied", "not-registered", "unknown".
std::string RegistrationName(int state);
// The same state as 27.007's +CREG/+CGREG <stat> (0 not registered, 1 home, 2 searching, 3 denied,
// 4 unknown, 5 roaming); null for a code the worker does not have.
nlohmann::json RegistrationCode(int state);
// Service from the network information (0 home, 1 roaming, 2 searching, 3 not registered, 4 unknown),
// in the registration words.
std::string ServiceName(int state);
// SIM from +CPIN's state: "ready", "pin-required", "puk-required", "blocked", "absent", ...
std::string SimName(int state);
// Connection: "disconnected", "connecting", "connected", "disconnecting".
std::string ConnectionName(int state);
// 27.007 <AcT>: "gsm", "gsm-compact", "umts", "edge", "hsdpa", "hsupa", "hspa", "lte".
std::string TechnologyName(int act);
// Bearer of the network information: "none", "gprs", "edge", "umts", "hsdpa", "hspa", "hsupa", "gsm".
std::string BearerName(int bearer);
// +COPS=? <stat>: "unknown", "available", "current", "forbidden".
std::string OperatorStatusName(int status);
