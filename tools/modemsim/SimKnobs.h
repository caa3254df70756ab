#pragma once

#include <string>

#include "SimState.h"

namespace modemsim {

// Settings that take one word of a fixed set ("urc_mode": poll, immediate, mixed, ahead), shared by
// scenario files and "set" on the control socket. "dialect" is one of them.
bool IsChoiceKnob(const std::string& key);
// Sets the knob; false with a message naming the allowed values when value is not one of them.
bool SetChoiceKnob(SimState& state, const std::string& key, const std::string& value, std::string& error);

// "refuse": command names, comma-separated, that answer as unknown commands ("+CSCB,+CMMS"); empty
// clears the list. False on a name that is no command name.
bool SetRefusedCommands(Knobs& knobs, const std::string& list, std::string& error);

} // namespace modemsim
