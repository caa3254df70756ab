#include "SimModem.h"

#include <algorithm>
#include <cctype>

#include "SimDialPort.h"
#include "SimNetworkCommands.h"
#include "SimPhonebookCommands.h"
#include "SimSecurityCommands.h"
#include "SimSetupCommands.h"
#include "SimSmsCommands.h"
#include "SimText.h"
#include "SimToolkitCommands.h"
#include "SimUssdCommands.h"
#include "SimVoiceCommands.h"

namespace modemsim {

namespace {

constexpr char kEsc = 0x1B;
constexpr char kCtrlZ = 0x1A;
constexpr size_t kMaxLine = 4096;
constexpr size_t kMaxPromptText = 2048;
constexpr size_t kMaxUrcs = 200;
constexpr size_t kMaxLog = 500;
constexpr int kMaxFlood = 10000;

bool StartsWithNoCase(const std::string& text, const std::string& prefix) {
    if (text.size() < prefix.size()) {
        return false;
    }
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(text[i])) !=
            std::toupper(static_cast<unsigned char>(prefix[i]))) {
            return false;
        }
    }
    return true;
}

bool StartsWithAt(const std::string& line) {
    return line.size() >= 2 && (line[0] == 'A' || line[0] == 'a') && (line[1] == 'T' || line[1] == 't');
}

std::string Framed(const std::string& line) {
    return "\r\n" + line + "\r\n";
}

// The stick's own commands; a stick of another maker does not know them.
bool IsMakerCommand(const std::string& name) {
    static const char* const names[] = {"+HWV",  "+FUNC", "+PNNM", "+SMPN", "+SYSSEL", "+SSND",
                                        "+SPNM", "+SPDI", "+STGI", "+STGR", "+STIN",   "$GPSC"};
    for (const char* n : names) {
        if (name == n) {
            return true;
        }
    }
    return false;
}

// What a stick answers to a command it does not know: "ERROR", or its own text ("COMMAND NOT SUPPORT").
AtReply Unsupported(const std::string& answer) {
    if (answer == "ERROR") {
        return AtReply::Error();
    }
    if (answer == "+CME ERROR") {
        return AtReply::Cme(cme::kNotSupported);
    }
    return AtReply::Result(answer);
}

// "+CREG: 0,1" becomes "+CREG:0,1" at the start of each line, as some sticks write them; error reports
// keep their blank.
std::string WithoutBlankAfterColon(const std::string& text) {
    std::string out;
    size_t pos = 0;
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        end = end == std::string::npos ? text.size() : end + 1;
        std::string line = text.substr(pos, end - pos);
        size_t colon = line.find(':');
        if (!line.empty() && line[0] == '+' && colon != std::string::npos && colon + 1 < line.size() &&
            line[colon + 1] == ' ' && line.compare(0, 10, "+CME ERROR") != 0 &&
            line.compare(0, 10, "+CMS ERROR") != 0) {
            line.erase(colon + 1, 1);
        }
        out += line;
        pos = end;
    }
    return out;
}

} // namespace

const char* PinStateName(PinState state) {
    switch (state) {
    case PinState::Ready:
        return "READY";
    case PinState::SimPin:
        return "SIM PIN";
    case PinState::SimPuk:
        return "SIM PUK";
    case PinState::Blocked:
        return "BLOCKED";
    case PinState::Absent:
        return "ABSENT";
    }
    return "?";
}

int SmsStorage::FreeIndex() const {
    for (int i = 1; i <= capacity; ++i) {
        if (!slots.count(i)) {
            return i;
        }
    }
    return 0;
}

SimModem::SimModem(SimState state) : state_(std::move(state)), dial_(std::make_unique<SimDialPort>(*this)) {
    RegisterSetupCommands(table_);
    RegisterSecurityCommands(table_);
    RegisterNetworkCommands(table_);
    RegisterPhonebookCommands(table_);
    RegisterSmsCommands(table_);
    RegisterUssdCommands(table_);
    RegisterToolkitCommands(table_);
    RegisterVoiceCommands(table_);
    UpdateRegistration(*this);
}

SimModem::~SimModem() = default;

void SimModem::PowerCycle(TimePoint now) {
    now_ = now;
    SetHostConnected(false, now);
    dial_->SetHostConnected(false);
    ResetSettings();
    urcs_.clear();
    timers_.clear();
    unplugRequested_ = false;
    lastLine_.clear();
    state_.voice.calls.clear();
    state_.ussd.session = -1;
    state_.ussd.presentation = 0;
    state_.stk.pending.clear();
    state_.network.cfun = 1;
    SimCard& sim = state_.sim;
    if (sim.state == PinState::Ready && sim.pinEnabled) {
        sim.state = PinState::SimPin;
    }
    state_.network.current = -1;
    UpdateRegistration(*this);
}

void SimModem::SetHostConnected(bool connected, TimePoint now) {
    now_ = now;
    hostConnected_ = connected;
    if (!connected) {
        // The host closed the port: half-typed input and an open prompt are dropped; queued unsolicited
        // lines stay for the next session, as on a stick that stays powered.
        input_.clear();
        line_.clear();
        lineOverflow_ = false;
        prompt_.reset();
        promptText_.clear();
        pendingAnswer_.reset();
        output_.clear();
    }
}

void SimModem::Receive(std::string_view bytes, TimePoint now) {
    now_ = now;
    input_.append(bytes);
    if (input_.size() > 4 * kMaxLine) {
        input_.erase(0, input_.size() - 4 * kMaxLine);
    }
    ProcessInput();
}

std::string SimModem::TakeOutput() {
    if (state_.knobs.mute) {
        output_.clear();
        return {};
    }
    std::string out;
    out.swap(output_);
    return out;
}

void SimModem::SetDialHostConnected(bool connected, TimePoint now) {
    now_ = now;
    dial_->SetHostConnected(connected);
}

void SimModem::ReceiveDial(std::string_view bytes, TimePoint now) {
    now_ = now;
    dial_->Receive(bytes);
}

std::string SimModem::TakeDialOutput() {
    return dial_->TakeOutput();
}

void SimModem::Advance(TimePoint now) {
    now_ = now;
    if (pendingAnswer_ && pendingAnswer_->first <= now) {
        output_ += pendingAnswer_->second;
        pendingAnswer_.reset();
    }
    // Timers may add timers; run in due order until nothing more is due.
    for (;;) {
        auto it = std::min_element(timers_.begin(), timers_.end(), [](const Timer& a, const Timer& b) {
            return a.due != b.due ? a.due < b.due : a.seq < b.seq;
        });
        if (it == timers_.end() || it->due > now) {
            break;
        }
        auto action = std::move(it->action);
        timers_.erase(it);
        action(*this);
    }
    const Knobs& knobs = state_.knobs;
    if (knobs.floodIntervalMs > 0 && hostConnected_ && nextFlood_ <= now) {
        Flood(1);
        nextFlood_ = now + std::chrono::milliseconds(knobs.floodIntervalMs);
    }
    ProcessInput();
    FlushImmediateUrcs();
}

void SimModem::Flood(int count) {
    if (!hostConnected_) {
        return;
    }
    const std::string line = Framed(state_.knobs.floodLine);
    for (int i = 0; i < std::min(count, kMaxFlood); ++i) {
        output_ += line;
    }
}

bool SimModem::TakeUnplugRequest() {
    const bool requested = unplugRequested_;
    unplugRequested_ = false;
    return requested;
}

std::optional<TimePoint> SimModem::NextWake() const {
    std::optional<TimePoint> next;
    if (pendingAnswer_) {
        next = pendingAnswer_->first;
    }
    for (const Timer& t : timers_) {
        if (!next || t.due < *next) {
            next = t.due;
        }
    }
    if (state_.knobs.floodIntervalMs > 0 && hostConnected_ && (!next || nextFlood_ < *next)) {
        next = nextFlood_;
    }
    return next;
}

void SimModem::Unsolicited(std::string line) {
    urcs_.push_back(std::move(line));
    while (urcs_.size() > kMaxUrcs) {
        urcs_.pop_front();
    }
    FlushImmediateUrcs();
}

void SimModem::After(int delayMs, std::function<void(SimModem&)> action) {
    timers_.push_back(
        Timer{now_ + std::chrono::milliseconds(std::max(0, delayMs)), timerSeq_++, std::move(action)});
}

void SimModem::ExpectInput(InputHandler handler) {
    prompt_ = std::move(handler);
    promptText_.clear();
}

std::string SimModem::ToTe(std::string_view utf8) const {
    if (settings_.cscs == "UCS2") {
        return TextToUcs2Hex(utf8);
    }
    if (settings_.cscs == "IRA") {
        return ToIra(utf8);
    }
    return std::string(utf8);
}

std::string SimModem::ToIra(std::string_view utf8) {
    // IRA is 7-bit: one '?' for each character outside it.
    std::string collapsed;
    for (size_t i = 0; i < utf8.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            collapsed += static_cast<char>(c);
        } else if ((c & 0xC0) != 0x80) {
            collapsed += '?';
        }
    }
    return collapsed;
}

bool SimModem::FromTe(std::string_view te, std::string* utf8) const {
    if (settings_.cscs == "UCS2") {
        return Ucs2HexToText(te, utf8);
    }
    utf8->assign(te);
    return true;
}

int SimModem::SimError() const {
    switch (state_.sim.state) {
    case PinState::Ready:
        return 0;
    case PinState::SimPin:
        return cme::kSimPinRequired;
    case PinState::SimPuk:
        return cme::kSimPukRequired;
    case PinState::Blocked:
        return cme::kSimFailure;
    case PinState::Absent:
        return cme::kSimNotInserted;
    }
    return cme::kUnknown;
}

void SimModem::ProcessInput() {
    size_t used = 0;
    while (used < input_.size() && !Busy() && !unplugRequested_) {
        char c = input_[used++];
        if (prompt_) {
            HandlePromptChar(c);
            continue;
        }
        if (c == kEsc) {
            // A bare escape cancels the line being typed and gets no answer.
            line_.clear();
            lineOverflow_ = false;
            continue;
        }
        if (c == '\n' || c == kCtrlZ || c == '\0') {
            continue;
        }
        if (c == '\r') {
            if (settings_.echo) {
                output_ += '\r';
            }
            std::string line;
            line.swap(line_);
            bool overflow = lineOverflow_;
            lineOverflow_ = false;
            if (overflow) {
                AtReply err = AtReply::Error();
                output_ += RenderFinal(err, settings_.framing);
            } else {
                HandleLine(line);
            }
            continue;
        }
        if (settings_.echo) {
            output_ += c;
        }
        if (c == '\b') {
            if (!line_.empty()) {
                line_.pop_back();
            }
            continue;
        }
        if (line_.size() < kMaxLine) {
            line_ += c;
        } else {
            lineOverflow_ = true;
        }
    }
    input_.erase(0, used);
}

void SimModem::HandlePromptChar(char c) {
    if (c == kEsc) {
        // ESC leaves the text input without sending.
        prompt_.reset();
        promptText_.clear();
        Emit(RenderFinal(AtReply::Ok(), settings_.framing), state_.knobs.latencyMs);
        return;
    }
    if (c == kCtrlZ) {
        InputHandler handler = std::move(*prompt_);
        prompt_.reset();
        std::string text;
        text.swap(promptText_);
        AtReply reply =
            text.size() > kMaxPromptText ? AtReply::Cms(cms::kInvalidPduParameter) : handler(*this, text);
        std::string out = RenderLines(reply.lines, settings_.framing);
        out += RenderFinal(reply, settings_.framing);
        Emit(out, state_.knobs.latencyMs + reply.delayMs);
        return;
    }
    if (settings_.echo) {
        output_ += c;
    }
    if (c == '\r' || c == '\n') {
        return;
    }
    if (promptText_.size() <= kMaxPromptText) {
        promptText_ += c;
    }
}

void SimModem::HandleLine(const std::string& rawLine) {
    std::string line = rawLine;
    while (!line.empty() && line.front() == ' ') {
        line.erase(0, 1);
    }
    if (line == "A/" || line == "a/") {
        line = lastLine_;
    }
    if (!StartsWithAt(line)) {
        return; // modems ignore lines that are not commands
    }
    lastLine_ = line;
    log_.push_back(line);
    while (log_.size() > kMaxLog) {
        log_.pop_front();
    }
    if (HitsUnplugKnob(line)) {
        // Pulled before the command is answered; the rest of the input is lost with the port.
        unplugRequested_ = true;
        input_.clear();
        return;
    }
    if (state_.knobs.mute) {
        return;
    }
    std::string_view body = std::string_view(line).substr(2);
    std::string out;
    AtReply final;
    if (body.find_first_not_of(' ') == std::string_view::npos) {
        // The host's poll: the place where held unsolicited lines go out.
        if (state_.knobs.urcMode != UrcMode::Immediate) {
            out = TakeUrcs(state_.knobs.urcPerPoll > 0 ? static_cast<size_t>(state_.knobs.urcPerPoll)
                                                       : urcs_.size());
        }
    } else {
        out = ExecuteLine(body, final);
    }
    if (state_.knobs.garbage) {
        if (final.final == AtReply::Final::Prompt) {
            prompt_.reset(); // the text that follows is taken for a command line, as it was never asked for
        }
        Emit(Garbage(), state_.knobs.latencyMs);
        return;
    }
    if (final.final == AtReply::Final::Prompt) {
        // "\r\n> " goes out at once, without the one-shot injection.
        Emit(out + RenderFinal(final, settings_.framing), state_.knobs.latencyMs);
        return;
    }
    Knobs& knobs = state_.knobs;
    std::string ahead;
    if ((!knobs.inject.empty() || !knobs.injectAhead.empty()) &&
        (knobs.injectOn.empty() || StartsWithNoCase(line, knobs.injectOn))) {
        ahead = knobs.injectAhead.empty() ? "" : Framed(knobs.injectAhead);
        out += knobs.inject.empty() ? "" : Framed(knobs.inject);
        knobs.inject.clear();
        knobs.injectAhead.clear();
        knobs.injectOn.clear();
    }
    if (knobs.urcMode == UrcMode::Ahead) {
        ahead += TakeUrcs(urcs_.size());
    } else if (knobs.urcMode == UrcMode::Mixed) {
        out += TakeUrcs(urcs_.size());
    }
    out += RenderFinal(final, settings_.framing);
    Emit(ahead + out, knobs.latencyMs + final.delayMs);
}

std::string SimModem::ExecuteLine(std::string_view body, AtReply& final) {
    std::vector<AtCommand> cmds;
    if (!ParseCommandLine(body, cmds)) {
        final = AtReply::Error();
        return {};
    }
    std::string out;
    int delay = 0;
    for (const AtCommand& cmd : cmds) {
        auto it = table_.find(cmd.name);
        AtReply reply;
        if (it == table_.end() || state_.knobs.refuse.count(cmd.name) ||
            (state_.dialect == Dialect::Standard && IsMakerCommand(cmd.name))) {
            reply = Unsupported(state_.knobs.unsupportedAnswer);
        } else if (it->second.need == SimNeed::Ready && SimError() != 0) {
            reply = AtReply::Cme(SimError());
        } else {
            reply = it->second.handler(*this, cmd);
        }
        out += RenderLines(reply.lines, settings_.framing);
        delay = std::max(delay, reply.delayMs);
        if (reply.final != AtReply::Final::Ok) {
            final = reply;
            final.delayMs = delay;
            return out;
        }
    }
    final = AtReply::Ok();
    final.delayMs = delay;
    return out;
}

void SimModem::Emit(std::string bytes, int delayMs) {
    if (state_.knobs.noBlankAfterColon) {
        bytes = WithoutBlankAfterColon(bytes);
    }
    if (delayMs > 0) {
        pendingAnswer_ = std::make_pair(now_ + std::chrono::milliseconds(delayMs), std::move(bytes));
    } else {
        output_ += bytes;
    }
}

// 8 to 64 bytes of line noise, NULs included, ending in a line end so that the host looks at it. Without
// 'O', 'R' and '>' it holds no final result ("OK", "ERROR") and no text prompt.
std::string SimModem::Garbage() {
    auto next = [this] {
        garbageSeed_ = garbageSeed_ * 1103515245u + 12345u;
        return static_cast<unsigned>((garbageSeed_ >> 16) & 0xFF);
    };
    const unsigned length = 8 + next() % 57;
    std::string out;
    while (out.size() < length) {
        const char c = static_cast<char>(next());
        if (c != 'O' && c != 'R' && c != '>') {
            out += c;
        }
    }
    return out + "\r\n";
}

bool SimModem::HitsUnplugKnob(const std::string& line) {
    Knobs& knobs = state_.knobs;
    if (knobs.unplugAfter > 0 && --knobs.unplugAfter == 0) {
        return true;
    }
    if (!knobs.unplugOn.empty() && StartsWithNoCase(line, knobs.unplugOn)) {
        knobs.unplugOn.clear();
        return true;
    }
    return false;
}

std::string SimModem::TakeUrcs(size_t max) {
    std::string out;
    for (size_t i = 0; i < max && !urcs_.empty(); ++i) {
        out += Framed(urcs_.front());
        urcs_.pop_front();
    }
    return state_.knobs.noBlankAfterColon ? WithoutBlankAfterColon(out) : out;
}

void SimModem::FlushImmediateUrcs() {
    if (state_.knobs.urcMode != UrcMode::Immediate || !hostConnected_ || Busy() || prompt_ ||
        !line_.empty() || !input_.empty()) {
        return;
    }
    output_ += TakeUrcs(urcs_.size());
}

namespace {

nlohmann::json DumpStorage(const SmsStorage& storage) {
    nlohmann::json slots = nlohmann::json::array();
    for (const auto& [index, sms] : storage.slots) {
        slots.push_back(
            {{"index", index}, {"status", sms.status}, {"pdu", sms.pdu}, {"length", sms.tpduLength}});
    }
    return {{"capacity", storage.capacity}, {"used", storage.Used()}, {"messages", slots}};
}

nlohmann::json DumpPhonebook(const Phonebook& pb) {
    nlohmann::json entries = nlohmann::json::array();
    for (const auto& [index, e] : pb.entries) {
        entries.push_back({{"index", index}, {"name", e.name}, {"number", e.number}, {"type", e.type}});
    }
    return {{"capacity", pb.capacity}, {"used", pb.entries.size()}, {"entries", entries}};
}

} // namespace

nlohmann::json SimModem::Dump() const {
    using nlohmann::json;
    const SimCard& sim = state_.sim;
    json out;
    out["dialect"] = Standard() ? "standard" : "vel";
    out["pin"] = {{"state", PinStateName(sim.state)},
                  {"enabled", sim.pinEnabled},
                  {"pin", sim.pin},
                  {"pin_left", sim.pinLeft},
                  {"puk_left", sim.pukLeft}};
    const Network& net = state_.network;
    json reg = {{"stat", RegistrationStat(*this)},
                {"csq", net.csq},
                {"attached", net.attached},
                {"selection", net.selectionMode},
                {"cfun", net.cfun},
                {"bearer", net.bearer},
                {"syssel", {net.band, net.modeA, net.modeB, net.domain}}};
    if (net.current >= 0 && net.current < static_cast<int>(net.operators.size())) {
        reg["operator"] = net.operators[static_cast<size_t>(net.current)].numeric;
    }
    out["network"] = reg;
    json sent = json::array();
    for (const SentSms& s : state_.sms.sent) {
        sent.push_back({{"mr", s.mr},
                        {"pdu", s.pdu},
                        {"length", s.tpduLength},
                        {"to", s.destination},
                        {"text", s.text},
                        {"dcs", s.dcs},
                        {"status_report", s.statusReport},
                        {"concat", {s.concatRef, s.concatTotal, s.concatSeq}}});
    }
    json storages = json::object();
    for (const auto& [name, storage] : state_.sms.storages) {
        storages[name] = DumpStorage(storage);
    }
    out["sms"] = {{"sent", sent},
                  {"storages", storages},
                  {"cpms", state_.sms.cpms},
                  {"smsc", state_.sms.smsc},
                  {"fail_next_send", state_.sms.failNextSend},
                  {"fail_sends", state_.sms.failSends}};
    json books = json::object();
    for (const auto& [name, pb] : state_.phonebooks) {
        books[name] = DumpPhonebook(pb);
    }
    out["phonebooks"] = books;
    json calls = json::array();
    for (const Call& c : state_.voice.calls) {
        calls.push_back({{"id", c.id}, {"dir", c.dir}, {"state", c.state}, {"number", c.number}});
    }
    out["calls"] = calls;
    out["dtmf"] = state_.voice.dtmf;
    out["gps"] = state_.voice.gps;
    out["ussd"] = {{"requests", state_.ussd.requests},
                   {"session", state_.ussd.session != -1},
                   {"presentation", state_.ussd.presentation}};
    out["stk"] = {{"pending", state_.stk.pending}, {"responses", state_.stk.responses}};
    out["data"] = {{"connected", state_.data.connected},
                   {"number", state_.data.number},
                   {"bytes_in", state_.data.bytesIn},
                   {"sessions", state_.data.sessions}};
    json pdp = json::object();
    for (const auto& [cid, ctx] : state_.pdp) {
        pdp[std::to_string(cid)] = {{"type", ctx.type}, {"apn", ctx.apn}};
    }
    out["pdp"] = pdp;
    out["settings"] = {{"echo", settings_.echo},
                       {"cmee", settings_.framing.cmee},
                       {"cscs", settings_.cscs},
                       {"cmgf", settings_.cmgf},
                       {"cnmi", settings_.cnmi}};
    out["unsolicited"] = json(std::vector<std::string>(urcs_.begin(), urcs_.end()));
    out["commands"] = json(std::vector<std::string>(log_.begin(), log_.end()));
    return out;
}

} // namespace modemsim
