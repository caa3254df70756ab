#include "SimServer.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <utility>
#include <poll.h>
#include <unistd.h>

namespace modemsim {

namespace {

// How often a closed port is checked for the host opening it again.
constexpr auto kProbeInterval = std::chrono::milliseconds(50);

} // namespace

SimServer::SimServer(SimModem& modem, ServerOptions options) : modem_(modem), options_(std::move(options)) {
    if (options_.controlPath.empty()) {
        options_.controlPath = options_.devDir + "/modemsim.sock";
    }
}

SimServer::~SimServer() {
    Stop();
}

bool SimServer::Start(std::string& error) {
    if (!control_.Listen(options_.controlPath, error)) {
        return false;
    }
    nlohmann::json plugged = Plug();
    if (!plugged.value("ok", false)) {
        error = plugged.value("error", "plug failed");
        control_.Close();
        return false;
    }
    return true;
}

nlohmann::json SimServer::Paths() const {
    return {{"at", at_.Path()},
            {"dial", dial_.Path()},
            {"at_link", links_.atLink},
            {"dial_link", links_.dialLink},
            {"control", control_.Path()},
            {"dialect", modem_.Standard() ? "standard" : "vel"}};
}

void SimServer::Stop() {
    links_.Remove();
    at_.Close();
    dial_.Close();
    control_.Close();
    plugged_ = false;
}

nlohmann::json SimServer::Unplug() {
    if (!plugged_) {
        return {{"ok", false}, {"error", "already unplugged"}};
    }
    links_.Remove();
    at_.Close();
    dial_.Close();
    plugged_ = false;
    TimePoint now = SimClock::now();
    modem_.SetHostConnected(false, now);
    modem_.SetDialHostConnected(false, now);
    return {{"ok", true}};
}

nlohmann::json SimServer::Plug() {
    if (plugged_) {
        return {{"ok", false}, {"error", "already plugged"}};
    }
    std::string error;
    if (!at_.Open(error) || !dial_.Open(error) ||
        !links_.Create(options_.devDir, options_.suffix, at_.Path(), dial_.Path(), error)) {
        at_.Close();
        dial_.Close();
        return {{"ok", false}, {"error", error}};
    }
    plugged_ = true;
    modem_.PowerCycle(SimClock::now());
    nlohmann::json out = Paths();
    out["ok"] = true;
    return out;
}

namespace {

// The trace never shows PINs, PUKs or passwords, whatever characters they hold: after a PIN command's
// "=" and the arguments before its first code (AT+CLCK's facility and mode, AT+CPWD's facility),
// everything up to the line end but quotes and commas becomes '*'.
std::string HideSecrets(std::string bytes) {
    std::string upper = bytes;
    for (char& c : upper) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    const std::pair<const char*, int> commands[] = {{"+CPIN=", 0}, {"+CLCK=", 2}, {"+CPWD=", 1}};
    for (const auto& [command, plain] : commands) {
        for (size_t at = upper.find(command); at != std::string::npos; at = upper.find(command, at + 1)) {
            size_t i = at + std::strlen(command);
            const size_t lineEnd = std::min(bytes.find_first_of("\r\n", i), bytes.size());
            for (int skipped = 0; skipped < plain && i < lineEnd; ++skipped) {
                i = std::min(bytes.find(',', i), lineEnd);
                i += i < lineEnd ? 1 : 0;
            }
            for (; i < lineEnd; ++i) {
                if (bytes[i] != '"' && bytes[i] != ',') {
                    bytes[i] = '*';
                }
            }
        }
    }
    return bytes;
}

} // namespace

void SimServer::Trace(const char* what, const std::string& bytes) const {
    if (!options_.trace || bytes.empty()) {
        return;
    }
    std::string shown;
    for (char c : HideSecrets(bytes)) {
        unsigned char u = static_cast<unsigned char>(c);
        if (c == '\r') {
            shown += "\\r";
        } else if (c == '\n') {
            shown += "\\n";
        } else if (u < 0x20 || u == 0x7F) {
            char buf[8];
            std::snprintf(buf, sizeof buf, "\\x%02X", u);
            shown += buf;
        } else {
            shown += c;
        }
    }
    std::fprintf(stderr, "%s %s\n", what, shown.c_str());
}

void SimServer::Probe(PtyPort& port, bool at, TimePoint now) {
    if (!port.IsOpen() || !port.Probe()) {
        return;
    }
    Trace(at ? "AT  --" : "DIAL--", port.HostConnected() ? "host opened the port" : "host closed the port");
    if (at) {
        modem_.SetHostConnected(port.HostConnected(), now);
    } else {
        modem_.SetDialHostConnected(port.HostConnected(), now);
    }
}

void SimServer::ReadPort(PtyPort& port, bool at, TimePoint now) {
    std::string bytes = port.Read();
    Trace(at ? "AT  <<" : "DIAL<<", bytes);
    if (at && options_.replay != nullptr) {
        std::vector<std::string> unknown;
        std::string answer = options_.replay->Receive(bytes, unknown);
        for (const std::string& command : unknown) {
            const std::string shown = RecordingLine(0, '>', command); // "0 > COMMAND\n", escaped
            std::fprintf(stderr, "dialtone-modemsim: the recording has no command %s; answered ERROR\n",
                         shown.substr(4, shown.size() - 5).c_str());
        }
        Trace("AT  >>", answer);
        at_.Queue(answer);
    } else if (at) {
        if (!bytes.empty()) {
            modem_.Receive(bytes, now);
        }
        if (!port.HostConnected()) {
            modem_.SetHostConnected(false, now);
        }
    } else {
        if (!bytes.empty()) {
            modem_.ReceiveDial(bytes, now);
        }
        if (!port.HostConnected()) {
            modem_.SetDialHostConnected(false, now);
        }
    }
}

void SimServer::Pump(TimePoint now) {
    modem_.Advance(now);
    std::string out = modem_.TakeOutput();
    if (options_.replay == nullptr) {
        Trace("AT  >>", out);
        at_.Queue(out);
    }
    std::string dialOut = modem_.TakeDialOutput();
    Trace("DIAL>>", dialOut);
    dial_.Queue(dialOut);
    const Knobs& k = modem_.State().knobs;
    at_.Flush(now, k.chunkBytes, k.chunkGapMs);
    dial_.Flush(now, 0, 0);
}

int SimServer::Run(int stopFd) {
    auto execute = [this](const std::string& line) {
        ControlHooks hooks{[this] { return Unplug(); }, [this] { return Plug(); }, [this] { quit_ = true; }};
        return ExecuteControl(line, modem_, hooks).dump();
    };
    while (!quit_) {
        TimePoint now = SimClock::now();
        if (modem_.TakeUnplugRequest() && plugged_) {
            Trace("AT  --", "the stick is pulled (unplug knob)");
            Unplug();
        }
        if (now >= nextProbe_) {
            Probe(at_, true, now);
            Probe(dial_, false, now);
            nextProbe_ = now + kProbeInterval;
        }
        Pump(now);

        std::vector<pollfd> fds;
        fds.push_back(pollfd{stopFd, POLLIN, 0});
        size_t atIndex = 0;
        size_t dialIndex = 0;
        if (at_.HostConnected()) {
            atIndex = fds.size();
            fds.push_back(pollfd{
                at_.Fd(),
                static_cast<short>(POLLIN | (at_.HasPending() && !at_.NextWrite(now) ? POLLOUT : 0)), 0});
        }
        if (dial_.HostConnected()) {
            dialIndex = fds.size();
            fds.push_back(
                pollfd{dial_.Fd(), static_cast<short>(POLLIN | (dial_.HasPending() ? POLLOUT : 0)), 0});
        }
        size_t controlIndex = fds.size();
        control_.AddPollFds(fds);

        std::optional<TimePoint> wake = modem_.NextWake();
        auto earlier = [&wake](std::optional<TimePoint> t) {
            if (t && (!wake || *t < *wake)) {
                wake = t;
            }
        };
        earlier(at_.NextWrite(now));
        if (at_.IsOpen() && (!at_.HostConnected() || !dial_.HostConnected())) {
            earlier(nextProbe_);
        }
        int timeout = -1;
        if (wake) {
            auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(*wake - now).count();
            timeout = static_cast<int>(std::clamp<long long>(ms + 1, 0, 60000));
        }
        int n = poll(fds.data(), fds.size(), timeout);
        if (n < 0) {
            continue; // EINTR: a signal; the stop descriptor tells whether to leave
        }
        now = SimClock::now();
        if (fds[0].revents & POLLIN) {
            break;
        }
        if (atIndex && fds[atIndex].revents) {
            if (fds[atIndex].revents & (POLLIN | POLLHUP | POLLERR)) {
                ReadPort(at_, true, now);
            }
            if (fds[atIndex].revents & POLLHUP) {
                at_.MarkClosed();
                Trace("AT  --", "host closed the port");
                modem_.SetHostConnected(false, now);
            }
        }
        if (dialIndex && fds[dialIndex].revents) {
            if (fds[dialIndex].revents & (POLLIN | POLLHUP | POLLERR)) {
                ReadPort(dial_, false, now);
            }
            if (fds[dialIndex].revents & POLLHUP) {
                dial_.MarkClosed();
                Trace("DIAL--", "host closed the port");
                modem_.SetDialHostConnected(false, now);
            }
        }
        std::vector<pollfd> controlFds(fds.begin() + static_cast<long>(controlIndex), fds.end());
        control_.Handle(controlFds, execute);
    }
    Pump(SimClock::now());
    control_.FlushReplies();
    return 0;
}

} // namespace modemsim
