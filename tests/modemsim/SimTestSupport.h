#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "SimModem.h"

namespace modemsim::test {

// Drives a SimModem in-process on a simulated clock: the host's side of the AT port without a pty.
class ModemHarness {
public:
    explicit ModemHarness(SimState state);
    // The built-in scenario's state, changed by edit.
    template <class Edit> static SimState Builtin(Edit edit);
    static SimState Builtin();

    // Writes a command ("\r" added) and returns what the modem answers at once.
    std::string At(const std::string& command);
    std::string Send(const std::string& bytes);
    // Sends each command in turn and checks the answer it gets at once.
    void ExpectAnswers(std::initializer_list<std::pair<const char*, const char*>> exchanges);
    // Lets simulated time pass and returns what was written meanwhile.
    std::string Run(int ms);

    SimModem modem;
    TimePoint now{};
};

template <class Edit> SimState ModemHarness::Builtin(Edit edit) {
    SimState s = Builtin();
    edit(s);
    return s;
}

} // namespace modemsim::test
