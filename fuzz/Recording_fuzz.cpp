// Reads the input as a recorded session (dialtone --record, dialtone-modemsim --replay), then masks each of
// its lines as the recorder would: a line starting with '<' as read from the modem, any other as sent.
// Masking must keep every line's length, whatever the line holds, or a replayed PDU would no longer fit.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "SessionRecording.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Recording recording;
    std::string error;
    ParseRecording(text, recording, error);

    PrivateDataMask mask;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view line = text.substr(at, end - at);
        const char direction = !line.empty() && line.front() == '<' ? '<' : '>';
        if (mask.mask(direction, line).size() != line.size())
            __builtin_trap();
        at = end + 1;
    }
    return 0;
}
