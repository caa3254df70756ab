#pragma once

#include <array>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "SimCommand.h"
#include "SimState.h"

namespace modemsim {

using SimClock = std::chrono::steady_clock;
using TimePoint = SimClock::time_point;

class SimModem;
class SimDialPort;

using AtHandler = AtReply (*)(SimModem&, const AtCommand&);
enum class SimNeed { None, Ready }; // Ready: the command needs an unlocked SIM
struct CommandEntry {
    AtHandler handler = nullptr;
    SimNeed need = SimNeed::None;
};
using CommandTable = std::map<std::string, CommandEntry>;

// What the host's AT commands set for the session; AT&F and ATZ bring back these values.
struct AtSettings {
    Framing framing;
    bool echo = true;
    std::string cscs = "IRA";
    int cmgf = 0;
    std::array<int, 5> cnmi{2, 1, 0, 2, 0};
    int creg = 0;
    int cgreg = 0;
    int clip = 0;
    int colp = 0;
    int crc = 0;
    int copsFormat = 0;
    std::map<int, int> sregs;
};

// The simulated modem behind the AT port (and, through SimDialPort, the dial port). It reads the bytes
// the host writes, answers as a real stick does (echo, framing, error reports, the "> " prompt of
// AT+CMGS) and keeps unsolicited lines until the host polls with "at". It does no I/O: the caller feeds
// bytes and time in and takes the bytes out, so tests can drive it without ports.
class SimModem {
public:
    explicit SimModem(SimState state);
    ~SimModem();
    SimModem(const SimModem&) = delete;
    SimModem& operator=(const SimModem&) = delete;

    // AT port.
    void SetHostConnected(bool connected, TimePoint now);
    void Receive(std::string_view bytes, TimePoint now);
    std::string TakeOutput();

    // Dial port.
    void SetDialHostConnected(bool connected, TimePoint now);
    void ReceiveDial(std::string_view bytes, TimePoint now);
    std::string TakeDialOutput();

    // The stick was pulled and plugged in again: session settings, calls, a data call, held lines and
    // pending network events are gone; a SIM with its PIN enabled asks for it again. Stored messages,
    // phonebooks and sent messages stay.
    void PowerCycle(TimePoint now);

    // Writes count flood lines at once, past any answer in progress (nothing while the host is away).
    void Flood(int count);
    // True once when a command hit the unplug_after/unplug_on knob; the server then pulls the stick.
    bool TakeUnplugRequest();

    // Runs what is due: held-back answers, network events.
    void Advance(TimePoint now);
    std::optional<TimePoint> NextWake() const;

    // --- for the command families ---
    SimState& State() { return state_; }
    const SimState& State() const { return state_; }
    AtSettings& Settings() { return settings_; }
    const AtSettings& Settings() const { return settings_; }
    TimePoint Now() const { return now_; }

    // Queues an unsolicited line ("+CMTI: \"SM\",3"); it goes out as the knobs say.
    void Unsolicited(std::string line);
    const std::deque<std::string>& PendingUnsolicited() const { return urcs_; }
    // Runs action after delayMs (a network event).
    void After(int delayMs, std::function<void(SimModem&)> action);
    // After a "> " prompt: the text up to Ctrl-Z goes to handler, whose reply ends the command.
    using InputHandler = std::function<AtReply(SimModem&, const std::string&)>;
    void ExpectInput(InputHandler handler);

    // Text in the current AT+CSCS character set: UCS2 hex or plain text.
    std::string ToTe(std::string_view utf8) const;
    static std::string ToIra(std::string_view utf8);
    bool FromTe(std::string_view te, std::string* utf8) const;
    bool Standard() const { return state_.dialect == Dialect::Standard; }
    bool SimReady() const { return state_.sim.state == PinState::Ready; }
    // The error for a command that needs the SIM in its present state (0 when it is ready).
    int SimError() const;
    void ResetSettings() { settings_ = AtSettings{}; }

    nlohmann::json Dump() const;
    std::vector<std::string> CommandLog() const { return {log_.begin(), log_.end()}; }

private:
    struct Timer {
        TimePoint due;
        unsigned long seq;
        std::function<void(SimModem&)> action;
    };

    void ProcessInput();
    void HandleLine(const std::string& line);
    void HandlePromptChar(char c);
    std::string ExecuteLine(std::string_view body, AtReply& final);
    void Emit(std::string bytes, int delayMs);
    std::string TakeUrcs(size_t max);
    void FlushImmediateUrcs();
    std::string Garbage();
    bool HitsUnplugKnob(const std::string& line);
    bool Busy() const { return pendingAnswer_.has_value(); }

    SimState state_;
    AtSettings settings_;
    CommandTable table_;
    TimePoint now_{};
    bool hostConnected_ = false;
    std::string input_; // bytes not yet looked at
    std::string line_;  // the command line being typed
    bool lineOverflow_ = false;
    std::string lastLine_; // for "A/"
    std::optional<InputHandler> prompt_;
    std::string promptText_;
    std::optional<std::pair<TimePoint, std::string>> pendingAnswer_;
    std::string output_;
    std::deque<std::string> urcs_;
    std::vector<Timer> timers_;
    unsigned long timerSeq_ = 0;
    std::deque<std::string> log_;
    bool unplugRequested_ = false;
    TimePoint nextFlood_{};
    unsigned long garbageSeed_ = 12345;
    std::unique_ptr<SimDialPort> dial_;
};

} // namespace modemsim
