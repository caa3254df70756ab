#pragma once

#include <sys/types.h>

#include <string>

// A simulated modem (dialtone-modemsim) in a temporary device folder of its own, for --simulate and the
// demo. It never outlives the program: it is ended with it, and on SIGINT, SIGTERM and SIGHUP.
class Simulator {
public:
    Simulator() = default;
    ~Simulator(); // stops it
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // The program: DIALTONE_MODEMSIM, else the one next to this program, else the build tree's, else the
    // installed one.
    static std::string programPath();

    // Starts the simulator with the scenario (empty: the built-in one; "replay:FILE" plays back a recorded
    // session) and waits, up to the deadline, for the line saying its ports are ready. False with the
    // reason in error.
    // With trace, the simulator shows the AT and dial-port traffic on standard error.
    bool start(const std::string& scenario, bool trace, std::string& error, int deadlineMs = 5000);
    // Ends it (SIGTERM, then SIGKILL after two seconds) and removes its device folder. Safe to repeat.
    void stop();
    // Points this process, and the programs it starts, at the simulator's folders: its device folder, and
    // pppd's peers, pid files and chat scripts in a "dialup" folder inside it, so that a simulated run
    // never writes to the system's dial-up configuration.
    void useOwnFolders() const;
    // Installs the interrupt handler that ends the simulator again, for after code that installed its own.
    void stopOnInterrupt() const;

    const std::string& devDir() const { return _devDir; }
    std::string dialupDir() const { return _devDir.empty() ? std::string() : _devDir + "/dialup"; }
    const std::string& atLink() const { return _atLink; }
    // The simulator's control socket (sms, ring, unplug, plug, ...).
    const std::string& controlSocket() const { return _control; }
    pid_t pid() const { return _pid; }

private:
    pid_t _pid = -1;
    int _stdout = -1;
    std::string _devDir;
    std::string _atLink;
    std::string _control;
};
