#include "SimReplay.h"

#include <utility>

#include "DebugSink.h"

namespace modemsim {

SimReplay::SimReplay(Recording recording) : recording_(std::move(recording)) {
    for (std::size_t i = 0; i < recording_.lines.size(); ++i) {
        if (recording_.lines[i].direction == '>')
            commands_.push_back(i);
    }
}

std::string SimReplay::Receive(std::string_view bytes, std::vector<std::string>& unknown) {
    std::string out;
    for (const char c : bytes) {
        // A command ends with its CR; a message body after the "> " prompt with Ctrl-Z or ESC, kept in it
        // as the recorder kept it.
        const bool ends = c == '\r' || c == '\n' || c == 0x1A || c == 0x1B;
        if (c == 0x1A || c == 0x1B || !ends)
            input_ += c;
        if ((ends || input_.size() >= kMaxRecordedLineBytes) && !input_.empty()) {
            out += Answer(input_, unknown);
            input_.clear();
        }
    }
    return out;
}

std::string SimReplay::Answer(const std::string& command, std::vector<std::string>& unknown) {
    const std::string sent = recording_.masked ? MaskSecrets(mask_.mask('>', command)) : command;
    for (std::size_t step = 0; step < commands_.size(); ++step) {
        const std::size_t index = (next_ + step) % commands_.size();
        if (recording_.lines[commands_[index]].text != sent)
            continue;
        next_ = index + 1;
        std::string out;
        for (std::size_t i = commands_[index] + 1;
             i < recording_.lines.size() && recording_.lines[i].direction == '<'; ++i) {
            const std::string& line = recording_.lines[i].text;
            if (recording_.masked)
                mask_.mask('<', line);
            // The text prompt of AT+CMGS has no line end after it.
            out += line == "> " ? "\r\n> " : "\r\n" + line + "\r\n";
        }
        return out;
    }
    unknown.push_back(sent);
    return "\r\nERROR\r\n";
}

} // namespace modemsim
