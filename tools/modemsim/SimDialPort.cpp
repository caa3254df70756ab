#include "SimDialPort.h"

#include <vector>

#include "SimCommand.h"
#include "SimModem.h"
#include "SimNetworkCommands.h"

namespace modemsim {

namespace {
constexpr size_t kMaxLine = 512;
}

void SimDialPort::SetHostConnected(bool connected) {
    if (!connected) {
        // Closing the port drops the data call and the half-typed line.
        DataSession& data = modem_.State().data;
        data.connected = false;
        line_.clear();
        out_.clear();
        echo_ = true;
    }
}

void SimDialPort::Receive(std::string_view bytes) {
    DataSession& data = modem_.State().data;
    for (char c : bytes) {
        if (data.connected) {
            ++data.bytesIn;
            continue;
        }
        if (c == '\r') {
            if (echo_) {
                out_ += '\r';
            }
            std::string line;
            line.swap(line_);
            HandleLine(line);
            continue;
        }
        if (c == '\n' || c == 0x1B) {
            continue;
        }
        if (echo_) {
            out_ += c;
        }
        if (line_.size() < kMaxLine) {
            line_ += c;
        }
    }
}

std::string SimDialPort::TakeOutput() {
    std::string out;
    out.swap(out_);
    return out;
}

void SimDialPort::HandleLine(const std::string& line) {
    if (line.size() < 2 || (line[0] != 'A' && line[0] != 'a') || (line[1] != 'T' && line[1] != 't')) {
        return;
    }
    std::vector<AtCommand> cmds;
    if (!ParseCommandLine(std::string_view(line).substr(2), cmds)) {
        out_ += "\r\nERROR\r\n";
        return;
    }
    for (const AtCommand& cmd : cmds) {
        if (cmd.name == "E") {
            echo_ = cmd.value != "0";
        } else if (cmd.name == "Z" || cmd.name == "&F") {
            echo_ = true;
        } else if (cmd.name == "D") {
            std::string number = cmd.value;
            while (!number.empty() &&
                   (number[0] == 'T' || number[0] == 't' || number[0] == 'P' || number[0] == 'p')) {
                number.erase(0, 1);
            }
            DataSession& data = modem_.State().data;
            if (number.empty() || number.back() == ';' || !modem_.SimReady() || !IsRegistered(modem_) ||
                !modem_.State().network.attached) {
                out_ += "\r\nNO CARRIER\r\n";
                return;
            }
            data.connected = true;
            data.number = number;
            ++data.sessions;
            out_ += "\r\nCONNECT\r\n";
            return;
        }
    }
    out_ += "\r\nOK\r\n";
}

} // namespace modemsim
