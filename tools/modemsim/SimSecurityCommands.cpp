#include "SimSecurityCommands.h"

#include <cctype>

#include "SimNetworkCommands.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

void Unlocked(SimModem& m) {
    SimCard& sim = m.State().sim;
    sim.state = PinState::Ready;
    sim.pinLeft = 3;
    UpdateRegistration(m);
}

// A wrong PIN costs one try; the last one locks the card behind its PUK.
AtReply WrongPin(SimCard& sim) {
    if (sim.pinLeft > 0) {
        --sim.pinLeft;
    }
    if (sim.pinLeft == 0) {
        sim.state = PinState::SimPuk;
    }
    return AtReply::Cme(cme::kIncorrectPassword);
}

AtReply EnterPuk(SimModem& m, const std::string& puk, const std::string& newPin) {
    SimCard& sim = m.State().sim;
    if (!ValidPin(newPin)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (puk != sim.puk) {
        if (sim.pukLeft > 0) {
            --sim.pukLeft;
        }
        if (sim.pukLeft == 0) {
            sim.state = PinState::Blocked;
        }
        return AtReply::Cme(cme::kIncorrectPassword);
    }
    sim.pin = newPin;
    sim.pukLeft = 10;
    sim.pinEnabled = true;
    Unlocked(m);
    return AtReply::Ok();
}

// AT+CPIN? -> +CPIN: SIM PIN;  AT+CPIN="1234";  AT+CPIN="12345678","4321"
AtReply Pin(SimModem& m, const AtCommand& cmd) {
    SimCard& sim = m.State().sim;
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    if (sim.state == PinState::Absent || sim.state == PinState::Blocked) {
        return AtReply::Cme(m.SimError());
    }
    if (cmd.form == Form::Query) {
        switch (sim.state) {
        case PinState::SimPin:
            return AtReply::Line("+CPIN: SIM PIN");
        case PinState::SimPuk:
            return AtReply::Line("+CPIN: SIM PUK");
        default:
            return AtReply::Line("+CPIN: READY");
        }
    }
    if (cmd.form != Form::Set || !cmd.Has(0)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    bool withNewPin = cmd.Has(1);
    switch (sim.state) {
    case PinState::Ready:
        return AtReply::Cme(cme::kNotAllowed);
    case PinState::SimPin:
        if (withNewPin) {
            return EnterPuk(m, cmd.Str(0), cmd.Str(1));
        }
        if (cmd.Str(0) != sim.pin) {
            return WrongPin(sim);
        }
        Unlocked(m);
        return AtReply::Ok();
    case PinState::SimPuk:
        if (!withNewPin) {
            return AtReply::Cme(cme::kSimPukRequired);
        }
        return EnterPuk(m, cmd.Str(0), cmd.Str(1));
    default:
        return AtReply::Cme(m.SimError());
    }
}

// AT+CPINR -> +CPINR: SIM PIN,3,3 and a line for each other code;
// AT+CPINR="SIM PIN" gives that code's line, AT+CPINR="SIM*" those starting with "SIM". The Vel stick
// ignores the selection and lists every code.
AtReply PinRetries(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    const SimCard& sim = m.State().sim;
    if (sim.state == PinState::Absent) {
        return AtReply::Cme(cme::kSimNotInserted);
    }
    const std::string lines[] = {"SIM PIN," + std::to_string(sim.pinLeft) + ",3",
                                 "SIM PUK," + std::to_string(sim.pukLeft) + ",10",
                                 "SIM PIN2," + std::to_string(sim.pin2Left) + ",3",
                                 "SIM PUK2," + std::to_string(sim.puk2Left) + ",10"};
    std::string wanted = cmd.form == Form::Set && m.Standard() ? ToUpper(cmd.Str(0)) : std::string();
    const bool wildcard = !wanted.empty() && wanted.back() == '*';
    if (wildcard) {
        wanted.pop_back();
    }
    AtReply r;
    for (const std::string& line : lines) {
        const std::string code = line.substr(0, line.find(','));
        if (wanted.empty() || code == wanted || (wildcard && code.compare(0, wanted.size(), wanted) == 0)) {
            r.lines.push_back("+CPINR: " + line);
        }
    }
    if (r.lines.empty()) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    return r;
}

// AT+CLCK="SC",2 -> +CLCK: 1;  AT+CLCK="SC",0,"1234"
AtReply Lock(SimModem& m, const AtCommand& cmd) {
    SimCard& sim = m.State().sim;
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CLCK: (\"SC\",\"FD\",\"PN\",\"AO\",\"OI\")");
    }
    int mode = 0;
    if (cmd.form != Form::Set || !cmd.Int(1, mode) || mode < 0 || mode > 2) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    std::string facility = ToUpper(cmd.Str(0));
    if (sim.state == PinState::Absent) {
        return AtReply::Cme(cme::kSimNotInserted);
    }
    if (facility != "SC") {
        return mode == 2 ? AtReply::Line("+CLCK: 0") : AtReply::Cme(cme::kNotSupported);
    }
    if (mode == 2) {
        return AtReply::Line(std::string("+CLCK: ") + (sim.pinEnabled ? "1" : "0"));
    }
    if (m.SimError() != 0) {
        return AtReply::Cme(m.SimError());
    }
    if (!cmd.Has(2)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (cmd.Str(2) != sim.pin) {
        return WrongPin(sim);
    }
    sim.pinLeft = 3;
    sim.pinEnabled = mode == 1;
    return AtReply::Ok();
}

// AT+CPWD="SC","1234","4321"
AtReply Password(SimModem& m, const AtCommand& cmd) {
    SimCard& sim = m.State().sim;
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CPWD: (\"SC\",8),(\"P2\",8)");
    }
    if (cmd.form != Form::Set || !cmd.Has(1) || !cmd.Has(2)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    std::string facility = ToUpper(cmd.Str(0));
    if (facility == "SC") {
        if (!sim.pinEnabled) {
            return AtReply::Cme(cme::kNotAllowed);
        }
        if (!ValidPin(cmd.Str(2))) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        if (cmd.Str(1) != sim.pin) {
            return WrongPin(sim);
        }
        sim.pin = cmd.Str(2);
        sim.pinLeft = 3;
        return AtReply::Ok();
    }
    if (facility == "P2") {
        if (sim.pin2Left == 0) {
            return AtReply::Cme(18); // SIM PUK2 required
        }
        if (!ValidPin(cmd.Str(2))) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        if (cmd.Str(1) != sim.pin2) {
            --sim.pin2Left;
            return AtReply::Cme(cme::kIncorrectPassword);
        }
        sim.pin2 = cmd.Str(2);
        sim.pin2Left = 3;
        return AtReply::Ok();
    }
    return AtReply::Cme(cme::kNotSupported);
}

// AT+SMPN? -> +SMPN: PN(3,10),PU(3,10),PP(3,10),PC(3,10),PF(3,10)
AtReply PersoCounters(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    if (m.State().sim.state == PinState::Absent) {
        return AtReply::Cme(cme::kSimNotInserted);
    }
    static const char* const names[] = {"PN", "PU", "PP", "PC", "PF"};
    std::string line = "+SMPN: ";
    const auto& perso = m.State().sim.perso;
    for (size_t i = 0; i < perso.size(); ++i) {
        if (i > 0) {
            line += ',';
        }
        line += std::string(names[i]) + "(" + std::to_string(perso[i].first) + "," +
                std::to_string(perso[i].second) + ")";
    }
    return AtReply::Line(line);
}

// AT+PNNM? -> +PNNM: 3, 10  (PIN tries left, PUK tries left)
AtReply PinCounters(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    const SimCard& sim = m.State().sim;
    if (sim.state == PinState::Absent) {
        return AtReply::Cme(cme::kSimNotInserted);
    }
    return AtReply::Line("+PNNM: " + std::to_string(sim.pinLeft) + ", " + std::to_string(sim.pukLeft));
}

} // namespace

bool ValidPin(const std::string& pin) {
    if (pin.size() < 4 || pin.size() > 8) {
        return false;
    }
    for (char c : pin) {
        if (!std::isdigit(static_cast<unsigned char>(c))) {
            return false;
        }
    }
    return true;
}

void RegisterSecurityCommands(CommandTable& table) {
    table["+CPIN"] = {Pin, SimNeed::None};
    table["+CPINR"] = {PinRetries, SimNeed::None};
    table["+CLCK"] = {Lock, SimNeed::None};
    table["+CPWD"] = {Password, SimNeed::Ready};
    table["+SMPN"] = {PersoCounters, SimNeed::None};
    table["+PNNM"] = {PinCounters, SimNeed::None};
}

} // namespace modemsim
