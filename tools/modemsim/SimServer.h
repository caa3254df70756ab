#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "SimControl.h"
#include "SimModem.h"
#include "SimPorts.h"
#include "SimReplay.h"

namespace modemsim {

struct ServerOptions {
    std::string devDir;
    std::string controlPath; // empty: <devDir>/modemsim.sock
    std::string suffix = "1";
    bool trace = false;          // AT traffic on standard error
    SimReplay* replay = nullptr; // a recorded session answers on the AT port instead of the modem
};

// The simulator's one thread: a poll loop over the two ports, the control socket and a stop descriptor,
// waking for the modem's timers. Nothing spins while the host has the ports closed.
class SimServer {
public:
    SimServer(SimModem& modem, ServerOptions options);
    ~SimServer();

    // Creates the ports, the links and the control socket.
    bool Start(std::string& error);
    // The ready line: {"at":..., "dial":..., "at_link":..., "dial_link":..., "control":...}.
    nlohmann::json Paths() const;
    // Runs until "quit" or until stopFd becomes readable. Returns 0.
    int Run(int stopFd);
    // Removes links and socket, closes the ports.
    void Stop();

    nlohmann::json Unplug();
    nlohmann::json Plug();

private:
    void Probe(PtyPort& port, bool at, TimePoint now);
    void ReadPort(PtyPort& port, bool at, TimePoint now);
    void Pump(TimePoint now);
    void Trace(const char* what, const std::string& bytes) const;

    SimModem& modem_;
    ServerOptions options_;
    PtyPort at_;
    PtyPort dial_;
    DeviceLinks links_;
    ControlSocket control_;
    bool plugged_ = false;
    bool quit_ = false;
    TimePoint nextProbe_{};
};

} // namespace modemsim
