#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "SimState.h"

namespace modemsim {

// Scenarios: JSON files that set the SIM, the network and the knobs (README.md has the format). A file
// is applied on top of the built-in scenario (scenarios/default.json) as a JSON merge patch: objects
// merge key by key, arrays and plain values replace, null removes.

// The built-in scenario as JSON.
nlohmann::json BuiltinScenario();

// Fills state from a complete scenario. False, with a reason, on a missing or malformed value.
bool BuildState(const nlohmann::json& scenario, SimState& state, std::string& error);

// The built-in scenario patched with the file at path (none when path is empty).
bool LoadScenario(const std::string& path, SimState& state, std::string& error);

} // namespace modemsim
