#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "SessionRecording.h"

namespace modemsim {

// A recorded session played back on the AT port: each command the host sends is looked up among the
// recorded ones, from the one after the last match onwards and then from the start, and answered with the
// lines recorded after it (unsolicited lines that came in between included), as a stick frames them. In a
// masked recording the command is masked the same way first. A command never recorded gets "ERROR".
class SimReplay {
public:
    explicit SimReplay(Recording recording);

    // The bytes from the host; returns what goes back. Each command that was never recorded is added to
    // unknown.
    std::string Receive(std::string_view bytes, std::vector<std::string>& unknown);
    bool Standard() const { return recording_.dialect == "standard"; }

private:
    std::string Answer(const std::string& command, std::vector<std::string>& unknown);

    Recording recording_;
    std::vector<std::size_t> commands_; // indexes of the lines sent to the modem
    std::size_t next_ = 0;              // in commands_: where the search starts
    std::string input_;
    PrivateDataMask mask_;
};

} // namespace modemsim
