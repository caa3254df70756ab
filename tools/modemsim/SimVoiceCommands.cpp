#include "SimVoiceCommands.h"

#include "SimNetworkCommands.h"
#include "SimPhonebookCommands.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

int NextCallId(const Voice& voice) {
    int id = 1;
    for (const Call& c : voice.calls) {
        id = std::max(id, c.id + 1);
    }
    return id;
}

int TypeOf(const std::string& number) {
    return !number.empty() && number[0] == '+' ? 145 : 129;
}

// ATD+491701234567; (voice). A data call on this port is refused: data goes over the dial port.
AtReply Dial(SimModem& m, const AtCommand& cmd) {
    std::string number = cmd.value;
    while (!number.empty() &&
           (number[0] == 'T' || number[0] == 't' || number[0] == 'P' || number[0] == 'p')) {
        number.erase(0, 1);
    }
    bool voice = !number.empty() && number.back() == ';';
    if (voice) {
        number.pop_back();
    }
    if (number.empty() || !ValidDialString(number)) {
        return AtReply::Error();
    }
    if (m.SimError() != 0) {
        return AtReply::Cme(m.SimError());
    }
    if (!voice || !IsRegistered(m)) {
        return AtReply::Result("NO CARRIER");
    }
    Voice& state = m.State().voice;
    if (!state.calls.empty()) {
        return AtReply::Cme(cme::kNotAllowed);
    }
    auto it = state.results.find(number);
    std::string result = it != state.results.end() ? it->second : state.defaultResult;
    if (result != "OK") {
        return AtReply::Result(result);
    }
    state.calls.push_back(Call{NextCallId(state), 0, 0, 0, number, TypeOf(number)});
    AtReply r;
    if (m.Settings().colp == 1) {
        r.lines.push_back("+COLP: \"" + number + "\"," + std::to_string(TypeOf(number)));
    }
    return r;
}

AtReply Answer(SimModem& m, const AtCommand&) {
    for (Call& c : m.State().voice.calls) {
        if (c.state == 4) {
            c.state = 0;
            return AtReply::Ok();
        }
    }
    return AtReply::Result("NO CARRIER");
}

AtReply Hangup(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    m.State().voice.calls.clear();
    return AtReply::Ok();
}

// AT+VTS=5
AtReply Dtmf(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Line("+VTS: (0-9,*,#,A-D)");
    }
    const std::string& key = cmd.Str(0);
    if (cmd.form != Form::Set || key.size() != 1 || !ValidDialString(key) || key == "+" || key == "P" ||
        key == "W" || key == "p" || key == "w") {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    bool active = false;
    for (const Call& c : m.State().voice.calls) {
        active = active || c.state == 0;
    }
    if (!active) {
        return AtReply::Cme(cme::kNotAllowed);
    }
    m.State().voice.dtmf.push_back(key);
    return AtReply::Ok();
}

// AT+CLCC -> +CLCC: 1,1,4,0,0,"+491701234567",145
AtReply Clcc(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    AtReply r;
    for (const Call& c : m.State().voice.calls) {
        r.lines.push_back("+CLCC: " + std::to_string(c.id) + "," + std::to_string(c.dir) + "," +
                          std::to_string(c.state) + "," + std::to_string(c.mode) + ",0,\"" + c.number +
                          "\"," + std::to_string(c.type));
    }
    return r;
}

AtReply Switch(const AtCommand& cmd, int& value, const std::string& prefix, const std::string& suffix) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line(prefix + "(0,1)");
    case Form::Query:
        return AtReply::Line(prefix + std::to_string(value) + suffix);
    case Form::Set: {
        int v = 0;
        if (!cmd.Int(0, v) || v < 0 || v > 1) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        value = v;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

AtReply Colp(SimModem& m, const AtCommand& cmd) {
    return Switch(cmd, m.Settings().colp, "+COLP: ", ",1");
}
AtReply Clip(SimModem& m, const AtCommand& cmd) {
    return Switch(cmd, m.Settings().clip, "+CLIP: ", ",1");
}
AtReply Crc(SimModem& m, const AtCommand& cmd) {
    return Switch(cmd, m.Settings().crc, "+CRC: ", "");
}

// AT$GPSC=1,1 switches the GPS receiver on, AT$GPSC=1,0 off.
AtReply Gps(SimModem& m, const AtCommand& cmd) {
    bool& gps = m.State().voice.gps;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("$GPSC: (1),(0,1)");
    case Form::Query:
        return AtReply::Line(std::string("$GPSC: 1,") + (gps ? "1" : "0"));
    case Form::Set: {
        int which = 0;
        int on = 0;
        if (!cmd.Int(0, which) || which != 1 || !cmd.Int(1, on) || on < 0 || on > 1) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        gps = on == 1;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

void Ring(SimModem& m, int callId) {
    const Voice& voice = m.State().voice;
    const Call* call = nullptr;
    for (const Call& c : voice.calls) {
        if (c.id == callId && c.state == 4) {
            call = &c;
        }
    }
    if (!call) {
        return;
    }
    // One ring at a time in the queue: a host that does not poll does not drown in them.
    bool queued = false;
    for (const std::string& line : m.PendingUnsolicited()) {
        queued = queued || line == "RING" || line == "+CRING: VOICE";
    }
    if (!queued) {
        m.Unsolicited(m.Settings().crc == 1 ? "+CRING: VOICE" : "RING");
        if (m.Settings().clip == 1) {
            m.Unsolicited("+CLIP: \"" + call->number + "\"," + std::to_string(call->type) + ",,,,0");
        }
    }
    m.After(voice.ringIntervalMs, [callId](SimModem& later) { Ring(later, callId); });
}

} // namespace

nlohmann::json IncomingCall(SimModem& m, const std::string& number) {
    if (!ValidDialString(number) || number.empty()) {
        return {{"ok", false}, {"error", "bad number"}};
    }
    if (!m.SimReady() || !IsRegistered(m)) {
        return {{"ok", false}, {"error", "not registered"}};
    }
    Voice& voice = m.State().voice;
    if (!voice.calls.empty()) {
        return {{"ok", false}, {"error", "a call is in progress"}};
    }
    int id = NextCallId(voice);
    voice.calls.push_back(Call{id, 1, 4, 0, number, TypeOf(number)});
    Ring(m, id);
    return {{"ok", true}, {"call", id}};
}

nlohmann::json RemoteHangup(SimModem& m) {
    Voice& voice = m.State().voice;
    if (voice.calls.empty()) {
        return {{"ok", false}, {"error", "no call"}};
    }
    voice.calls.clear();
    m.Unsolicited("NO CARRIER");
    return {{"ok", true}};
}

void RegisterVoiceCommands(CommandTable& table) {
    table["D"] = {Dial, SimNeed::None};
    table["A"] = {Answer, SimNeed::None};
    table["H"] = {Hangup, SimNeed::None};
    table["+CHUP"] = {Hangup, SimNeed::None};
    table["+VTS"] = {Dtmf, SimNeed::None};
    table["+CLCC"] = {Clcc, SimNeed::None};
    table["+COLP"] = {Colp, SimNeed::None};
    table["+CLIP"] = {Clip, SimNeed::None};
    table["+CRC"] = {Crc, SimNeed::None};
    table["$GPSC"] = {Gps, SimNeed::None};
}

} // namespace modemsim
