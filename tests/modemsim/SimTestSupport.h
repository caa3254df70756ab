#pragma once

#include <chrono>
#include <initializer_list>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

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

// A temporary folder, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

// The simulator program in a temporary device folder.
class SimProcess {
public:
    explicit SimProcess(std::vector<std::string> args = {});
    ~SimProcess();

    bool Started() const { return pid_ > 0 && !ready_.is_null(); }
    const nlohmann::json& Ready() const { return ready_; }
    const std::string& DevDir() const { return dir_.Path(); }
    // One control-socket command; the parsed reply.
    nlohmann::json Control(const std::string& line) const;
    // Signals the process and waits for its exit status (-1 on time-out).
    int Terminate(int signal);
    int WaitExit(std::chrono::milliseconds limit);

private:
    TempDir dir_;
    int pid_ = -1;
    nlohmann::json ready_;
};

// The host's end of a port, opened as the product opens it (O_NONBLOCK, O_NOCTTY, flock, raw).
class HostPort {
public:
    explicit HostPort(const std::string& path);
    ~HostPort();
    bool IsOpen() const { return fd_ >= 0; }
    void Close();
    void Write(const std::string& bytes) const;
    // Reads until the text holds `until` or the deadline passes; returns all that was read.
    std::string ReadUntil(const std::string& until, std::chrono::milliseconds limit, int* reads = nullptr);
    // True when the far end went away (EIO or a hang-up) within the limit.
    bool WaitHangup(std::chrono::milliseconds limit);

private:
    int fd_ = -1;
};

// Polls cond every few milliseconds until it holds or the limit passes.
template <class Cond> bool WaitFor(Cond cond, std::chrono::milliseconds limit) {
    auto end = std::chrono::steady_clock::now() + limit;
    while (!cond()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

template <class Edit> SimState ModemHarness::Builtin(Edit edit) {
    SimState s = Builtin();
    edit(s);
    return s;
}

} // namespace modemsim::test
