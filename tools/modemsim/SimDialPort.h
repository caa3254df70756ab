#pragma once

#include <string>
#include <string_view>

namespace modemsim {

class SimModem;

// The stick's dial (data) port: a few AT commands for the dialler's chat script ("AT", "ATZ",
// "AT+CGDCONT=...", "ATD*99#"), "CONNECT" when the SIM is ready and the stick registered and attached,
// then data mode until the host closes the port. Data bytes are counted and dropped.
class SimDialPort {
public:
    explicit SimDialPort(SimModem& modem) : modem_(modem) {}

    void SetHostConnected(bool connected);
    void Receive(std::string_view bytes);
    std::string TakeOutput();

private:
    void HandleLine(const std::string& line);

    SimModem& modem_;
    bool echo_ = true;
    std::string line_;
    std::string out_;
};

} // namespace modemsim
