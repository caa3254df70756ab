#include "SimControl.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "SimKnobs.h"
#include "SimNetworkCommands.h"
#include "SimSmsCommands.h"
#include "SimText.h"
#include "SimToolkitCommands.h"
#include "SimUssdCommands.h"
#include "SimVoiceCommands.h"

namespace modemsim {

namespace {

using nlohmann::json;

constexpr size_t kMaxControlLine = 64 * 1024;

json Fail(const std::string& error) {
    return {{"ok", false}, {"error", error}};
}

// Splits off the first word; the rest keeps its inner blanks.
std::string NextWord(std::string& rest) {
    size_t start = rest.find_first_not_of(' ');
    if (start == std::string::npos) {
        rest.clear();
        return {};
    }
    size_t end = rest.find(' ', start);
    std::string word = rest.substr(start, end == std::string::npos ? std::string::npos : end - start);
    rest = end == std::string::npos ? std::string() : rest.substr(end + 1);
    return word;
}

// "\n" in a control line stands for a line break, "\\" for a backslash.
std::string Unescape(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            char c = text[++i];
            out += c == 'n' ? '\n' : c;
        } else {
            out += text[i];
        }
    }
    return out;
}

bool ParseNumber(const std::string& text, int& out) {
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        Bytes b;
        std::string hex = text.substr(2);
        if (hex.size() % 2) {
            hex.insert(0, "0");
        }
        if (!FromHex(hex, &b) || b.empty() || b.size() > 2) {
            return false;
        }
        out = b.size() == 1 ? b[0] : (b[0] << 8 | b[1]);
        return true;
    }
    return ParseInt(text, out);
}

// sms [--coding=auto|gsm7|ucs2|data8] [--class=N] [--pid=N] [--ref16] [--order=reverse|2,1,3]
//     [--time=YY/MM/DD,hh:mm:ss+zz] [--smsc=NUMBER] FROM TEXT
json Sms(SimModem& modem, std::string rest) {
    IncomingSms sms;
    std::string coding = "auto";
    for (;;) {
        size_t start = rest.find_first_not_of(' ');
        if (start == std::string::npos || rest.compare(start, 2, "--") != 0) {
            break;
        }
        std::string option = NextWord(rest);
        size_t eq = option.find('=');
        std::string key = option.substr(2, eq == std::string::npos ? std::string::npos : eq - 2);
        std::string value = eq == std::string::npos ? std::string() : option.substr(eq + 1);
        int n = 0;
        if (key == "coding") {
            coding = value;
        } else if (key == "class" && ParseNumber(value, n) && n >= 0 && n <= 3) {
            sms.params.messageClass = n;
        } else if (key == "pid" && ParseNumber(value, n) && n >= 0 && n <= 255) {
            sms.params.protocolId = n;
        } else if (key == "ref16") {
            sms.ref16 = true;
        } else if (key == "order") {
            sms.order = value;
        } else if (key == "time") {
            sms.params.timestamp = value;
        } else if (key == "smsc") {
            sms.params.smsc = value;
        } else {
            return Fail("bad option " + option);
        }
    }
    std::string from = NextWord(rest);
    if (from.empty()) {
        return Fail("usage: sms [options] FROM TEXT");
    }
    sms.params.originator = from;
    std::string text = Unescape(rest);
    if (coding == "data8") {
        sms.params.coding = DeliverParams::Coding::Data8;
        Bytes data;
        if (!FromHex(text, &data)) {
            return Fail("with --coding=data8 the text is the data in hex");
        }
        sms.params.data = data;
    } else if (coding == "auto" || coding == "gsm7" || coding == "ucs2") {
        sms.params.coding = coding == "auto"   ? DeliverParams::Coding::Auto
                            : coding == "gsm7" ? DeliverParams::Coding::Gsm7
                                               : DeliverParams::Coding::Ucs2;
        sms.params.textUtf8 = text;
    } else {
        return Fail("coding must be auto, gsm7, ucs2 or data8");
    }
    return DeliverText(modem, sms);
}

json Set(SimModem& modem, std::string rest) {
    std::string key = NextWord(rest);
    std::string value = NextWord(rest);
    SimState& s = modem.State();
    int n = 0;
    bool isNumber = ParseNumber(value, n) && n >= 0;
    struct IntKnob {
        const char* name;
        int* target;
        int max;
    };
    const IntKnob ints[] = {
        {"latency_ms", &s.knobs.latencyMs, 600000},
        {"chunk_bytes", &s.knobs.chunkBytes, 4096},
        {"chunk_gap_ms", &s.knobs.chunkGapMs, 10000},
        {"urc_per_poll", &s.knobs.urcPerPoll, 1000},
        {"scan_delay_ms", &s.network.scanDelayMs, 600000},
        {"register_delay_ms", &s.network.registerDelayMs, 600000},
        {"status_report_delay_ms", &s.sms.statusReportDelayMs, 600000},
        {"status_report_status", &s.sms.statusReportStatus, 255},
        {"loopback_delay_ms", &s.sms.loopbackDelayMs, 600000},
        {"ussd_delay_ms", &s.ussd.delayMs, 600000},
        {"stk_delay_ms", &s.stk.delayMs, 600000},
        {"flood_interval_ms", &s.knobs.floodIntervalMs, 600000},
        {"unplug_after", &s.knobs.unplugAfter, 100000},
        {"fail_sends", &s.sms.failSends, 1000},
        {"fail_sends_after", &s.sms.failSendsAfter, 1000},
    };
    for (const IntKnob& k : ints) {
        if (key == k.name) {
            if (!isNumber || n > k.max) {
                return Fail(key + " must be 0-" + std::to_string(k.max));
            }
            *k.target = n;
            return {{"ok", true}, {key, n}};
        }
    }
    struct BoolKnob {
        const char* name;
        bool* target;
    };
    const BoolKnob bools[] = {
        {"mute", &s.knobs.mute},
        {"garbage", &s.knobs.garbage},
        {"fail_next_send", &s.sms.failNextSend},
        {"ussd_packed", &s.ussd.packedGsm},
        {"ussd_release", &s.ussd.withRelease},
        {"cmgl_bad_pdu", &s.knobs.cmglBadPdu},
        {"no_blank_after_colon", &s.knobs.noBlankAfterColon},
    };
    for (const BoolKnob& k : bools) {
        if (key == k.name) {
            if (!isNumber || n > 1) {
                return Fail(key + " must be 0 or 1");
            }
            *k.target = n == 1;
            return {{"ok", true}, {key, n == 1}};
        }
    }
    if (key == "flood") {
        if (!isNumber || n < 1 || n > 10000) {
            return Fail("flood must be 1-10000");
        }
        modem.Flood(n);
        return {{"ok", true}, {key, n}};
    }
    // Texts may hold blanks: "+CMTI: \"SM\",1".
    const std::string text = value + (rest.empty() ? "" : " " + rest);
    const std::pair<const char*, std::string*> texts[] = {{"flood_line", &s.knobs.floodLine},
                                                          {"unplug_on", &s.knobs.unplugOn},
                                                          {"inject_ahead", &s.knobs.injectAhead},
                                                          {"inject_on", &s.knobs.injectOn}};
    for (const auto& [name, target] : texts) {
        if (key == name) {
            if (key == "flood_line" && (text.empty() || text.size() > 1024)) {
                return Fail("flood_line must be 1-1024 characters");
            }
            *target = text;
            return {{"ok", true}, {key, text}};
        }
    }
    std::string error;
    if (key == "refuse") {
        return SetRefusedCommands(s.knobs, text, error) ? json{{"ok", true}, {key, text}} : Fail(error);
    }
    if (IsChoiceKnob(key)) {
        return SetChoiceKnob(s, key, text, error) ? json{{"ok", true}, {key, text}} : Fail(error);
    }
    if (key == "dial_result") {
        const std::string& result = text;
        if (result != "OK" && result != "BUSY" && result != "NO ANSWER" && result != "NO CARRIER" &&
            result != "NO DIALTONE") {
            return Fail("dial_result must be OK, BUSY, NO ANSWER, NO CARRIER or NO DIALTONE");
        }
        s.voice.defaultResult = result;
        return {{"ok", true}, {key, result}};
    }
    if (key == "sim_present") {
        if (!isNumber || n > 1) {
            return Fail("sim_present must be 0 or 1");
        }
        SimCard& sim = s.sim;
        if (n == 0) {
            sim.state = PinState::Absent;
        } else if (sim.state == PinState::Absent) {
            sim.state = sim.pukLeft == 0   ? PinState::Blocked
                        : sim.pinLeft == 0 ? PinState::SimPuk
                        : sim.pinEnabled   ? PinState::SimPin
                                           : PinState::Ready;
        }
        UpdateRegistration(modem);
        return {{"ok", true}, {"pin_state", PinStateName(sim.state)}};
    }
    return Fail("unknown setting " + key);
}

json Help() {
    return {{"ok", true},
            {"commands",
             {"sms [--coding=auto|gsm7|ucs2|data8] [--class=N] [--pid=N] [--ref16] [--order=reverse|2,1,3] "
              "[--time=YY/MM/DD,hh:mm:ss+zz] [--smsc=NUMBER] FROM TEXT",
              "sms-pdu HEX", "ussd M [TEXT]", "ring NUMBER", "hangup", "stk N|NAME", "signal CSQ|drift|steady",
              "cell LAC CI", "reg STAT",
              "set KEY VALUE", "inject LINE", "dump", "unplug", "plug", "quit"}}};
}

} // namespace

json ExecuteControl(const std::string& line, SimModem& modem, const ControlHooks& hooks) {
    std::string rest = line;
    while (!rest.empty() && (rest.back() == '\r' || rest.back() == ' ')) {
        rest.pop_back();
    }
    std::string cmd = NextWord(rest);
    int n = 0;
    if (cmd == "sms") {
        return Sms(modem, rest);
    }
    if (cmd == "sms-pdu") {
        return DeliverPdu(modem, NextWord(rest));
    }
    if (cmd == "ussd") {
        std::string mode = NextWord(rest);
        if (!ParseInt(mode, n)) {
            return Fail("usage: ussd M [TEXT]");
        }
        return NetworkUssd(modem, n, Unescape(rest));
    }
    if (cmd == "ring") {
        return IncomingCall(modem, NextWord(rest));
    }
    if (cmd == "hangup") {
        return RemoteHangup(modem);
    }
    if (cmd == "stk") {
        return ToolkitIndication(modem, NextWord(rest));
    }
    if (cmd == "signal") {
        const std::string word = NextWord(rest);
        if (word == "drift" || word == "steady")
            return SetSignalDrift(modem, word == "drift");
        return ParseInt(word, n) ? SetSignal(modem, n) : Fail("usage: signal CSQ|drift|steady");
    }
    if (cmd == "cell") {
        const std::string lac = NextWord(rest);
        const std::string cell = NextWord(rest);
        char* end = nullptr;
        const long long lacValue = std::strtoll(lac.c_str(), &end, 16);
        const bool lacOk = !lac.empty() && lac.size() <= 4 && *end == '\0';
        const long long cellValue = std::strtoll(cell.c_str(), &end, 16);
        const bool cellOk = !cell.empty() && cell.size() <= 8 && *end == '\0';
        return lacOk && cellOk ? SetCell(modem, lacValue, cellValue)
                               : Fail("usage: cell LAC CI (hexadecimal)");
    }
    if (cmd == "reg") {
        return ParseInt(NextWord(rest), n) ? SetRegistration(modem, n) : Fail("usage: reg STAT");
    }
    if (cmd == "set") {
        return Set(modem, rest);
    }
    if (cmd == "inject") {
        if (rest.empty()) {
            return Fail("usage: inject LINE");
        }
        modem.State().knobs.inject = rest;
        return {{"ok", true}};
    }
    if (cmd == "dump") {
        json out = modem.Dump();
        out["ok"] = true;
        return out;
    }
    if (cmd == "unplug" && hooks.unplug) {
        return hooks.unplug();
    }
    if (cmd == "plug" && hooks.plug) {
        return hooks.plug();
    }
    if (cmd == "quit" && hooks.quit) {
        hooks.quit();
        return {{"ok", true}};
    }
    if (cmd == "help") {
        return Help();
    }
    return Fail("unknown command " + cmd);
}

bool ControlSocket::Listen(const std::string& path, std::string& error) {
    Close();
    sockaddr_un addr{};
    if (path.size() >= sizeof addr.sun_path) {
        error = "control socket path too long: " + path;
        return false;
    }
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        error = std::string("socket: ") + std::strerror(errno);
        return false;
    }
    addr.sun_family = AF_UNIX;
    std::memcpy(addr.sun_path, path.c_str(), path.size() + 1);
    unlink(path.c_str());
    if (bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || listen(fd, 8) != 0) {
        error = "control socket " + path + ": " + std::strerror(errno);
        close(fd);
        return false;
    }
    listen_ = fd;
    path_ = path;
    return true;
}

void ControlSocket::Close() {
    for (Client& c : clients_) {
        close(c.fd);
    }
    clients_.clear();
    if (listen_ >= 0) {
        close(listen_);
        unlink(path_.c_str());
    }
    listen_ = -1;
}

void ControlSocket::AddPollFds(std::vector<pollfd>& fds) const {
    if (listen_ >= 0) {
        fds.push_back(pollfd{listen_, POLLIN, 0});
    }
    for (const Client& c : clients_) {
        fds.push_back(pollfd{c.fd, static_cast<short>(POLLIN | (c.out.empty() ? 0 : POLLOUT)), 0});
    }
}

void ControlSocket::Accept() {
    for (;;) {
        int fd = accept4(listen_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0) {
            return;
        }
        if (clients_.size() >= 32) {
            close(fd);
            continue;
        }
        clients_.push_back(Client{fd, {}, {}});
    }
}

bool ControlSocket::Serve(Client& c, short revents,
                          const std::function<std::string(const std::string&)>& execute) {
    if (revents & POLLIN) {
        char buf[4096];
        for (;;) {
            ssize_t n = read(c.fd, buf, sizeof buf);
            if (n > 0) {
                c.in.append(buf, static_cast<size_t>(n));
                if (c.in.size() > kMaxControlLine && c.in.find('\n') == std::string::npos) {
                    c.out += Fail("line too long").dump() + "\n";
                    c.in.clear();
                }
                continue;
            }
            if (n == 0) {
                revents |= POLLHUP;
            }
            break;
        }
        size_t nl;
        while ((nl = c.in.find('\n')) != std::string::npos) {
            std::string line = c.in.substr(0, nl);
            c.in.erase(0, nl + 1);
            c.out += execute(line) + "\n";
        }
    }
    if (!c.out.empty()) {
        ssize_t n = write(c.fd, c.out.data(), c.out.size());
        if (n > 0) {
            c.out.erase(0, static_cast<size_t>(n));
        } else if (n < 0 && errno != EAGAIN && errno != EINTR) {
            return false;
        }
    }
    return !((revents & (POLLHUP | POLLERR)) && c.out.empty());
}

void ControlSocket::Handle(const std::vector<pollfd>& fds,
                           const std::function<std::string(const std::string&)>& execute) {
    std::vector<Client> keep;
    bool accept = false;
    for (const pollfd& p : fds) {
        if (p.fd == listen_ && (p.revents & POLLIN)) {
            accept = true;
        }
    }
    for (Client& c : clients_) {
        short revents = 0;
        for (const pollfd& p : fds) {
            if (p.fd == c.fd) {
                revents = p.revents;
            }
        }
        if (Serve(c, revents, execute)) {
            keep.push_back(std::move(c));
        } else {
            close(c.fd);
        }
    }
    clients_ = std::move(keep);
    if (accept) {
        Accept();
    }
}

void ControlSocket::FlushReplies() {
    for (Client& c : clients_) {
        if (!c.out.empty()) {
            ssize_t n = write(c.fd, c.out.data(), c.out.size());
            (void)n;
            c.out.clear();
        }
    }
}

} // namespace modemsim
