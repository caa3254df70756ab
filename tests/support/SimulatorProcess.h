#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// dialtone-modemsim as a child process in a device folder of the test's. Ready once it has printed its JSON
// line (its port links and control socket); stopped on destruction. With DIALTONE_SIM_TRACE set, the
// modem's traffic shows on standard error.
class SimulatorProcess {
public:
    SimulatorProcess(const std::string& program, const std::string& devDir,
                     const std::vector<std::string>& arguments);
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    bool started() const { return _pid > 0 && !_control.empty(); }
    // Its first line, empty when it printed none within 10 s.
    const std::string& readyLine() const { return _ready; }
    // One line to the control socket, the answer's line (empty when there is none).
    std::string command(const std::string& line) const;

private:
    pid_t _pid = -1;
    std::string _ready;
    std::string _control;
};
