#include "SimSetupCommands.h"

#include "SimNetworkCommands.h"
#include "SimPdu.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

bool SwitchValue(const AtCommand& cmd, bool& out) {
    if (cmd.value.empty() || cmd.value == "0") {
        out = false;
        return true;
    }
    if (cmd.value == "1") {
        out = true;
        return true;
    }
    return false;
}

AtReply Echo(SimModem& m, const AtCommand& cmd) {
    return SwitchValue(cmd, m.Settings().echo) ? AtReply::Ok() : AtReply::Error();
}

AtReply Quiet(SimModem& m, const AtCommand& cmd) {
    return SwitchValue(cmd, m.Settings().framing.quiet) ? AtReply::Ok() : AtReply::Error();
}

AtReply Verbose(SimModem& m, const AtCommand& cmd) {
    return SwitchValue(cmd, m.Settings().framing.verbose) ? AtReply::Ok() : AtReply::Error();
}

AtReply Reset(SimModem& m, const AtCommand&) {
    m.ResetSettings();
    return AtReply::Ok();
}

AtReply Accept(SimModem&, const AtCommand&) {
    return AtReply::Ok();
}

AtReply Info(SimModem& m, const AtCommand&) {
    const Identity& id = m.State().identity;
    AtReply r;
    r.lines = {"Manufacturer: " + id.manufacturer, "Model: " + id.model, "Revision: " + id.revision,
               "IMEI: " + id.imei, "+GCAP: +CGSM,+DS,+ES"};
    return r;
}

AtReply SRegister(SimModem& m, const AtCommand& cmd) {
    int reg = 0;
    if (!cmd.Int(0, reg) || reg < 0 || reg > 255) {
        return AtReply::Error();
    }
    auto& regs = m.Settings().sregs;
    if (cmd.form == Form::Query) {
        char buf[8];
        std::snprintf(buf, sizeof buf, "%03d", regs.count(reg) ? regs[reg] : 0);
        return AtReply::Line(buf);
    }
    int value = 0;
    if (!ParseInt(cmd.value, value) || value < 0 || value > 255) {
        return AtReply::Error();
    }
    regs[reg] = value;
    return AtReply::Ok();
}

AtReply Cmee(SimModem& m, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Query:
        return AtReply::Line("+CMEE: " + std::to_string(m.Settings().framing.cmee));
    case Form::Test:
        return AtReply::Line("+CMEE: (0-2)");
    case Form::Set: {
        int n = 0;
        if (!cmd.Int(0, n) || n < 0 || n > 2) {
            return AtReply::Error();
        }
        m.Settings().framing.cmee = n;
        return AtReply::Ok();
    }
    case Form::Action:
        m.Settings().framing.cmee = 0;
        return AtReply::Ok();
    }
    return AtReply::Error();
}

// AT+CGMI and friends print the bare value ("\r\nSIMULATED\r\n\r\nOK\r\n"), no prefix.
AtReply IdentityValue(const AtCommand& cmd, const std::string& value) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    if (cmd.form != Form::Action) {
        return AtReply::Error();
    }
    return AtReply::Line(value);
}

AtReply Manufacturer(SimModem& m, const AtCommand& cmd) {
    return IdentityValue(cmd, m.State().identity.manufacturer);
}
AtReply Model(SimModem& m, const AtCommand& cmd) {
    return IdentityValue(cmd, m.State().identity.model);
}
AtReply Revision(SimModem& m, const AtCommand& cmd) {
    return IdentityValue(cmd, m.State().identity.revision);
}
AtReply Imei(SimModem& m, const AtCommand& cmd) {
    return IdentityValue(cmd, m.State().identity.imei);
}
AtReply Hardware(SimModem& m, const AtCommand& cmd) {
    return IdentityValue(cmd, m.State().identity.hardware);
}
AtReply Imsi(SimModem& m, const AtCommand& cmd) {
    return IdentityValue(cmd, m.State().sim.imsi);
}

// AT+CNUM: +CNUM: "Own number","+491721234567",145
AtReply OwnNumber(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    const SimCard& sim = m.State().sim;
    if (sim.msisdn.empty()) {
        return AtReply::Ok();
    }
    int type = sim.msisdn[0] == '+' ? 145 : 129;
    return AtReply::Line("+CNUM: \"" + m.ToTe(sim.msisdnName) + "\",\"" + sim.msisdn + "\"," +
                         std::to_string(type));
}

// AT+CGDCONT=1,"IP","web.vodafone.de"
AtReply PdpContext_(SimModem& m, const AtCommand& cmd) {
    auto& pdp = m.State().pdp;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CGDCONT: (1-16),\"IP\",,,(0-2),(0-4)");
    case Form::Query: {
        AtReply r;
        for (const auto& [cid, ctx] : pdp) {
            r.lines.push_back("+CGDCONT: " + std::to_string(cid) + ",\"" + ctx.type + "\",\"" + ctx.apn +
                              "\",\"" + (ctx.address.empty() ? "0.0.0.0" : ctx.address) + "\",0,0");
        }
        return r;
    }
    case Form::Set: {
        int cid = 0;
        if (!cmd.Int(0, cid) || cid < 1 || cid > 16) {
            return AtReply::Error();
        }
        if (cmd.args.size() == 1) {
            pdp.erase(cid);
            return AtReply::Ok();
        }
        std::string type = ToUpper(cmd.Str(1));
        if (type != "IP" && type != "PPP" && type != "IPV6" && type != "IPV4V6") {
            return AtReply::Error();
        }
        if (cmd.Str(2).size() > 100) {
            return AtReply::Error();
        }
        pdp[cid] = PdpContext{type, cmd.Str(2), cmd.Str(3)};
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

AtReply Functionality(SimModem& m, const AtCommand& cmd) {
    Network& net = m.State().network;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CFUN: (0,1,4),(0-1)");
    case Form::Query:
        return AtReply::Line("+CFUN: " + std::to_string(net.cfun));
    case Form::Set: {
        int level = 0;
        if (!cmd.Int(0, level) || (level != 0 && level != 1 && level != 4)) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        SetFunctionality(m, level);
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

// The vendor start state: AT+FUNC=5,? answers "+FUNC: 0"; AT+FUNC=5,1 sets it.
AtReply StartState(SimModem& m, const AtCommand& cmd) {
    int what = 0;
    if (cmd.form != Form::Set || !cmd.Int(0, what) || what != 5 || cmd.args.size() != 2) {
        return AtReply::Error();
    }
    if (cmd.Str(1) == "?") {
        return AtReply::Line("+FUNC: " + std::to_string(m.State().func5));
    }
    int value = 0;
    if (!cmd.Int(1, value) || value < 0 || value > 9) {
        return AtReply::Error();
    }
    m.State().func5 = value;
    return AtReply::Ok();
}

AtReply CharacterSet(SimModem& m, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CSCS: (\"IRA\",\"GSM\",\"UCS2\")");
    case Form::Query:
        return AtReply::Line("+CSCS: \"" + m.Settings().cscs + "\"");
    case Form::Set: {
        std::string name = ToUpper(cmd.Str(0));
        if (name != "IRA" && name != "GSM" && name != "UCS2") {
            return AtReply::Cme(cme::kNotSupported);
        }
        m.Settings().cscs = name;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

AtReply Clock(SimModem&, const AtCommand& cmd) {
    if (cmd.form == Form::Query) {
        return AtReply::Line("+CCLK: \"" + CurrentTimestamp() + "\"");
    }
    return cmd.form == Form::Set ? AtReply::Ok() : AtReply::Error();
}

AtReply Capabilities(SimModem&, const AtCommand&) {
    return AtReply::Line("+GCAP: +CGSM,+DS,+ES");
}

} // namespace

void RegisterSetupCommands(CommandTable& table) {
    table["E"] = {Echo, SimNeed::None};
    table["Q"] = {Quiet, SimNeed::None};
    table["V"] = {Verbose, SimNeed::None};
    table["Z"] = {Reset, SimNeed::None};
    table["&F"] = {Reset, SimNeed::None};
    table["&C"] = {Accept, SimNeed::None};
    table["&D"] = {Accept, SimNeed::None};
    table["&W"] = {Accept, SimNeed::None};
    table["L"] = {Accept, SimNeed::None};
    table["M"] = {Accept, SimNeed::None};
    table["X"] = {Accept, SimNeed::None};
    table["I"] = {Info, SimNeed::None};
    table["S"] = {SRegister, SimNeed::None};
    table["+CMEE"] = {Cmee, SimNeed::None};
    table["+CGMI"] = table["+GMI"] = {Manufacturer, SimNeed::None};
    table["+CGMM"] = table["+GMM"] = {Model, SimNeed::None};
    table["+CGMR"] = table["+GMR"] = {Revision, SimNeed::None};
    table["+CGSN"] = table["+GSN"] = {Imei, SimNeed::None};
    table["+HWV"] = {Hardware, SimNeed::None};
    table["+CIMI"] = {Imsi, SimNeed::Ready};
    table["+CNUM"] = {OwnNumber, SimNeed::Ready};
    table["+CGDCONT"] = {PdpContext_, SimNeed::None};
    table["+CFUN"] = {Functionality, SimNeed::None};
    table["+FUNC"] = {StartState, SimNeed::None};
    table["+CSCS"] = {CharacterSet, SimNeed::None};
    table["+CCLK"] = {Clock, SimNeed::None};
    table["+GCAP"] = {Capabilities, SimNeed::None};
}

} // namespace modemsim
