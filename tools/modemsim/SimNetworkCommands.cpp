#include "SimNetworkCommands.h"

#include <algorithm>
#include <cstdio>
#include <span>

#include "SimText.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

const Operator* CurrentOperator(const SimModem& m) {
    const Network& net = m.State().network;
    if (net.current < 0 || net.current >= static_cast<int>(net.operators.size())) {
        return nullptr;
    }
    return &net.operators[static_cast<size_t>(net.current)];
}

bool IsHome(const SimState& s, const Operator& op) {
    if (!op.numeric.empty() && s.sim.imsi.compare(0, op.numeric.size(), op.numeric) == 0) {
        return true;
    }
    for (const std::string& plmn : s.sim.spdi) {
        if (plmn == op.numeric) {
            return true;
        }
    }
    return false;
}

int PacketStat(const SimModem& m) {
    return m.State().network.attached ? RegistrationStat(m) : 0;
}

// The operator automatic selection takes: the home network, else the first one not forbidden.
int AutomaticChoice(const SimState& s) {
    const auto& ops = s.network.operators;
    for (size_t i = 0; i < ops.size(); ++i) {
        if (!ops[i].forbidden && IsHome(s, ops[i])) {
            return static_cast<int>(i);
        }
    }
    for (size_t i = 0; i < ops.size(); ++i) {
        if (!ops[i].forbidden) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int FindOperator(const SimState& s, const std::string& name, int format) {
    const auto& ops = s.network.operators;
    for (size_t i = 0; i < ops.size(); ++i) {
        const std::string& candidate = format == 0   ? ops[i].longName
                                       : format == 1 ? ops[i].shortName
                                                     : ops[i].numeric;
        if (candidate == name) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int TargetOperator(const SimModem& m) {
    const SimState& s = m.State();
    if (!m.SimReady() || s.network.cfun != 1 || s.network.selectionMode == 2) {
        return -1;
    }
    if (s.network.selectionMode == 1) {
        int i = FindOperator(s, s.network.manualNumeric, 2);
        return i >= 0 && !s.network.operators[static_cast<size_t>(i)].forbidden ? i : -1;
    }
    return AutomaticChoice(s);
}

// "1A2B","00C3D4E5": the area and cell of AT+CREG=2 answers.
std::string CellFields(const SimModem& m) {
    char text[32];
    std::snprintf(text, sizeof text, "\"%04X\",\"%08llX\"", static_cast<unsigned>(m.State().network.lac),
                  static_cast<unsigned long long>(m.State().network.cell));
    return text;
}

std::string RegLine(const SimModem& m, const char* prefix, int n, int stat) {
    std::string line = std::string(prefix) + std::to_string(n) + "," + std::to_string(stat);
    const Operator* op = CurrentOperator(m);
    if (n == 2 && op && (stat == 1 || stat == 5)) {
        line += "," + CellFields(m) + "," + std::to_string(op->act);
    }
    return line;
}

// "+CREG: 5" on a change; with AT+CREG=2 the cell follows: "+CREG: 5,"1A2B","00C3D4E5",2".
std::string RegReport(const SimModem& m, const char* prefix, int n, int stat) {
    std::string line = RegLine(m, prefix, n, stat);
    return prefix + line.substr(line.find(',') + 1);
}

void ReportChange(SimModem& m, int oldStat, int oldPacketStat) {
    const AtSettings& set = m.Settings();
    int stat = RegistrationStat(m);
    if (set.creg > 0 && stat != oldStat) {
        m.Unsolicited(RegReport(m, "+CREG: ", set.creg, stat));
    }
    int packet = PacketStat(m);
    if (set.cgreg > 0 && packet != oldPacketStat) {
        m.Unsolicited(RegReport(m, "+CGREG: ", set.cgreg, packet));
    }
}

void Register(SimModem& m, int target) {
    int oldStat = RegistrationStat(m);
    int oldPacket = PacketStat(m);
    m.State().network.current = target;
    ReportChange(m, oldStat, oldPacket);
}

AtReply RegQuery(SimModem& m, const AtCommand& cmd, int& n, const char* prefix, int stat) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line(std::string(prefix) + "(0-2)");
    case Form::Query:
        return AtReply::Line(RegLine(m, prefix, n, stat));
    case Form::Set: {
        int v = 0;
        if (!cmd.Int(0, v) || v < 0 || v > 2) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        n = v;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

// AT+CREG? -> +CREG: 0,1
AtReply Creg(SimModem& m, const AtCommand& cmd) {
    return RegQuery(m, cmd, m.Settings().creg, "+CREG: ", RegistrationStat(m));
}

AtReply Cgreg(SimModem& m, const AtCommand& cmd) {
    return RegQuery(m, cmd, m.Settings().cgreg, "+CGREG: ", PacketStat(m));
}

// AT+CSQ -> +CSQ: 18,99
AtReply Csq(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CSQ: (0-31,99),(0-7,99)");
    }
    Network& net = m.State().network;
    if (net.cfun != 1) {
        return AtReply::Line("+CSQ: 99,99");
    }
    if (net.signalDrift && net.csq != 99) {
        // A step of -2..+2 from a fixed pseudo-random sequence, kept within 3..30.
        net.driftState = net.driftState * 1103515245u + 12345u;
        net.csq = std::clamp(net.csq + static_cast<int>((net.driftState >> 16) % 5) - 2, 3, 30);
    }
    return AtReply::Line("+CSQ: " + std::to_string(net.csq) + "," + std::to_string(net.ber));
}

// AT+CESQ -> +CESQ: 99,99,36,28,255,255   on a standard stick registered on UMTS: RSCP and Ec/Io that
// follow the CSQ; GSM gives its rxlev instead. The vendor's own sticks do not know the command.
AtReply Cesq(SimModem& m, const AtCommand& cmd) {
    if (!m.Standard())
        return AtReply::Error();
    if (cmd.form == Form::Test)
        return AtReply::Line("+CESQ: (0-63,99),(0-7,99),(0-96,255),(0-49,255),(0-34,255),(0-97,255)");
    const Network& net = m.State().network;
    const Operator* op = CurrentOperator(m);
    std::string values = "99,99,255,255";
    if (op && net.cfun == 1 && net.csq != 99)
        values = op->act >= 2 ? "99,99," + std::to_string(2 * net.csq) + "," +
                                    std::to_string(std::min(49, 10 + net.csq))
                              : std::to_string(2 * net.csq) + ",99,255,255";
    return AtReply::Line("+CESQ: " + values + ",255,255");
}

AtReply Cgatt(SimModem& m, const AtCommand& cmd) {
    Network& net = m.State().network;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CGATT: (0,1)");
    case Form::Query:
        return AtReply::Line(std::string("+CGATT: ") + (net.attached && IsRegistered(m) ? "1" : "0"));
    case Form::Set: {
        int v = 0;
        if (!cmd.Int(0, v) || v < 0 || v > 1) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        if (v == 1 && !IsRegistered(m)) {
            return AtReply::Cme(cme::kNoService);
        }
        int oldStat = RegistrationStat(m);
        int oldPacket = PacketStat(m);
        net.attached = v == 1;
        ReportChange(m, oldStat, oldPacket);
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

std::string OperatorName(const Operator& op, int format) {
    return format == 0 ? op.longName : format == 1 ? op.shortName : op.numeric;
}

// AT+COPS=? network scan response:
// +COPS: (2,"Vodafone.de","voda DE","26202",2),(1,"Telekom.de","TDG","26201",2),,(0,1,2,3,4),(0,1,2)
AtReply Scan(SimModem& m) {
    const Network& net = m.State().network;
    if (m.SimError() != 0) {
        return AtReply::Cme(m.SimError());
    }
    if (net.cfun != 1) {
        return AtReply::Cme(cme::kNoService);
    }
    const Knobs::Scan form = m.State().knobs.scan;
    std::string line = "+COPS: ";
    for (size_t i = 0; i < net.operators.size(); ++i) {
        const Operator& op = net.operators[i];
        int stat = op.forbidden ? 3 : static_cast<int>(i) == net.current ? 2 : 1;
        if (form == Knobs::Scan::NoShortName) {
            // Some sticks leave the short name out, and the access technology with it:
            // +COPS: (2,"T - Mobile",,"31026"),(1,"AT&T",,"310410"),,(0,1,2,3,4),(0,1,2)
            line += "(" + std::to_string(stat) + ",\"" + op.longName + "\",,\"" + op.numeric + "\"),";
            continue;
        }
        // In UCS2 every text is hex, the numeric name too: (1,"0041","0041","00320036003200300031",2)
        auto text = [&](const std::string& t) { return form == Knobs::Scan::Ucs2 ? TextToUcs2Hex(t) : t; };
        line += "(" + std::to_string(stat) + ",\"" + text(op.longName) + "\",\"" + text(op.shortName) +
                "\",\"" + text(op.numeric) + "\"," + std::to_string(op.act) + "),";
    }
    line += ",(0,1,2,3,4),(0,1,2)";
    AtReply r = AtReply::Line(line);
    r.delayMs = net.scanDelayMs;
    return r;
}

AtReply Cops(SimModem& m, const AtCommand& cmd) {
    Network& net = m.State().network;
    AtSettings& set = m.Settings();
    if (cmd.form == Form::Test) {
        return Scan(m);
    }
    if (cmd.form == Form::Query) {
        int mode = net.selectionMode;
        const Operator* op = CurrentOperator(m);
        if (!op) {
            return AtReply::Line("+COPS: " + std::to_string(mode));
        }
        return AtReply::Line("+COPS: " + std::to_string(mode) + "," + std::to_string(set.copsFormat) + ",\"" +
                             OperatorName(*op, set.copsFormat) + "\"," + std::to_string(op->act));
    }
    int mode = 0;
    if (cmd.form != Form::Set || !cmd.Int(0, mode) || mode < 0 || mode > 4) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    int format = set.copsFormat;
    if (cmd.Has(1) && (!cmd.Int(1, format) || format < 0 || format > 2)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (mode == 3) {
        set.copsFormat = format;
        return AtReply::Ok();
    }
    if (m.SimError() != 0) {
        return AtReply::Cme(m.SimError());
    }
    if (mode == 0 || mode == 2) {
        net.selectionMode = mode;
        UpdateRegistration(m);
        return AtReply::Ok();
    }
    if (!cmd.Has(2)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    int act = -1;
    if (cmd.Has(3) && (!cmd.Int(3, act) || act < 0 || act > 7)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    int index = FindOperator(m.State(), cmd.Str(2), format);
    if (index < 0 || net.operators[static_cast<size_t>(index)].forbidden) {
        if (mode == 4) {
            net.selectionMode = 0;
            UpdateRegistration(m);
            return AtReply::Ok();
        }
        return AtReply::Cme(index < 0 ? cme::kNoService : cme::kNotAllowedEmergency);
    }
    net.selectionMode = 1;
    net.manualNumeric = net.operators[static_cast<size_t>(index)].numeric;
    UpdateRegistration(m);
    return AtReply::Ok();
}

// AT+SYSSEL? -> +SYSSEL: 1073741823,0,0,2  (band, mode pair, service domain)
AtReply Syssel(SimModem& m, const AtCommand& cmd) {
    Network& net = m.State().network;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+SYSSEL: (0-1073741823),(0-2),(0-2),(0-3)");
    case Form::Query:
        return AtReply::Line("+SYSSEL: " + std::to_string(net.band) + "," + std::to_string(net.modeA) + "," +
                             std::to_string(net.modeB) + "," + std::to_string(net.domain));
    case Form::Set: {
        int values[4] = {net.band, net.modeA, net.modeB, net.domain};
        static const int limits[4] = {0x3FFFFFFF, 2, 2, 3};
        if (cmd.args.size() > 4) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        for (size_t i = 0; i < cmd.args.size(); ++i) {
            if (cmd.Has(i) && (!cmd.Int(i, values[i]) || values[i] < 0 || values[i] > limits[i])) {
                return AtReply::Cme(cme::kIncorrectParameters);
            }
        }
        net.band = values[0];
        net.modeA = values[1];
        net.modeB = values[2];
        net.domain = values[3];
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

// AT+SSND? -> +SSND: HSDPA
AtReply Ssnd(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    const Operator* op = CurrentOperator(m);
    if (!IsRegistered(m) || !op) {
        return AtReply::Line("+SSND: NO SERVICE");
    }
    std::string bearer = m.State().network.bearer;
    if (op->act == 0 && bearer != "GSM" && bearer != "GPRS" && bearer != "EDGE") {
        bearer = "EDGE";
    }
    return AtReply::Line("+SSND: " + bearer);
}

// EF-SPN: the display byte, then 16 bytes of name in the GSM alphabet or 0x80 and UCS2, padded with FF.
Bytes SpnFile(const SimCard& sim) {
    Bytes name;
    if (sim.spnUcs2) {
        name.push_back(0x80);
        Bytes utf16 = TextToUtf16Be(Utf8ToUtf32(sim.spn));
        name.insert(name.end(), utf16.begin(), utf16.end());
    } else {
        name = EncodeSimAlphaId(sim.spn);
    }
    name.resize(16, 0xFF);
    Bytes file;
    file.push_back(static_cast<uint8_t>(sim.spnDisplay & 0xFF));
    file.insert(file.end(), name.begin(), name.end());
    return file;
}

// AT+SPNM -> +SPNM: 01566F6461666F6E65FFFFFFFFFFFFFFFF  (EF-SPN: display byte, then the name)
AtReply Spnm(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    const SimCard& sim = m.State().sim;
    if (sim.spn.empty()) {
        return AtReply::Cme(cme::kNotFound);
    }
    return AtReply::Line("+SPNM: " + ToHex(SpnFile(sim)));
}

// One PLMN of EF-SPDI, nibble-swapped: "26202" -> 62 F2 20.
bool PlmnToBcd(const std::string& plmn, Bytes& out) {
    if (plmn.size() != 5 && plmn.size() != 6) {
        return false;
    }
    for (char c : plmn) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    auto digit = [&](size_t i) { return i < plmn.size() ? plmn[i] - '0' : 0xF; };
    out.push_back(static_cast<uint8_t>(digit(1) << 4 | digit(0)));
    out.push_back(static_cast<uint8_t>(digit(5) << 4 | digit(2)));
    out.push_back(static_cast<uint8_t>(digit(4) << 4 | digit(3)));
    return true;
}

// EF-SPDI: tag A3, length, PLMN list tag 80, length, PLMNs (40 at most).
Bytes SpdiFile(const SimCard& sim) {
    Bytes list;
    for (const std::string& plmn : sim.spdi) {
        if (list.size() < 3 * 40) {
            PlmnToBcd(plmn, list);
        }
    }
    Bytes file = {0xA3, static_cast<uint8_t>((list.size() + 2) & 0xFF), 0x80,
                  static_cast<uint8_t>(list.size())};
    file.insert(file.end(), list.begin(), list.end());
    return file;
}

// AT+SPDI -> +SPDI: A3058003 62F220  (tag A3, length, PLMN list tag 80, length, PLMNs)
AtReply Spdi(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    return AtReply::Line("+SPDI: " + ToHex(SpdiFile(m.State().sim)));
}

// Restricted SIM access, READ BINARY of EF-SPN and EF-SPDI:
// AT+CRSM=176,28486,0,0,17 -> +CRSM: 144,0,"01566F6461666F6E65FFFFFFFFFFFFFFFF"
// Other files give 106,130 (file not found), other commands 109,0 (instruction not supported).
AtReply Crsm(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    int command = 0;
    int fileId = 0;
    if (cmd.form != Form::Set || !cmd.Int(0, command) || (cmd.Has(1) && !cmd.Int(1, fileId))) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (command != 176) {
        return AtReply::Line("+CRSM: 109,0");
    }
    const SimCard& sim = m.State().sim;
    Bytes file;
    if (fileId == 0x6F46 && !sim.spn.empty()) {
        file = SpnFile(sim);
    } else if (fileId == 0x6FCD && !sim.spdi.empty()) {
        file = SpdiFile(sim);
    } else {
        return AtReply::Line("+CRSM: 106,130");
    }
    int offset = (cmd.IntOr(2, 0) << 8) + cmd.IntOr(3, 0);
    int length = cmd.IntOr(4, 0);
    if (offset < 0 || length < 0 || offset > static_cast<int>(file.size())) {
        return AtReply::Line("+CRSM: 107,0"); // wrong offset
    }
    const int available = static_cast<int>(file.size()) - offset;
    if (length > available) {
        return AtReply::Line("+CRSM: 103," + std::to_string(available)); // wrong length, the right one
    }
    length = length == 0 ? available : length;
    return AtReply::Line("+CRSM: 144,0,\"" +
                         ToHex(std::span<const uint8_t>(file).subspan(static_cast<size_t>(offset),
                                                                      static_cast<size_t>(length))) +
                         "\"");
}

} // namespace

int RegistrationStat(const SimModem& m) {
    const Network& net = m.State().network;
    if (!m.SimReady() || net.cfun != 1) {
        return 0;
    }
    if (net.regOverride >= 0) {
        return net.regOverride;
    }
    const Operator* op = CurrentOperator(m);
    if (!op) {
        return net.selectionMode == 2 ? 0 : 2;
    }
    return IsHome(m.State(), *op) ? 1 : 5;
}

bool IsRegistered(const SimModem& m) {
    int stat = RegistrationStat(m);
    return stat == 1 || stat == 5;
}

void UpdateRegistration(SimModem& m) {
    int target = TargetOperator(m);
    Network& net = m.State().network;
    if (target == net.current) {
        return;
    }
    if (target >= 0 && net.registerDelayMs > 0) {
        Register(m, -1);
        m.After(net.registerDelayMs, [](SimModem& later) { Register(later, TargetOperator(later)); });
        return;
    }
    Register(m, target);
}

void SetFunctionality(SimModem& m, int level) {
    int oldStat = RegistrationStat(m);
    int oldPacket = PacketStat(m);
    m.State().network.cfun = level;
    if (level != 1) {
        m.State().network.current = -1;
    }
    ReportChange(m, oldStat, oldPacket);
    UpdateRegistration(m);
}

nlohmann::json SetSignal(SimModem& m, int csq) {
    if ((csq < 0 || csq > 31) && csq != 99) {
        return {{"ok", false}, {"error", "CSQ must be 0-31 or 99"}};
    }
    m.State().network.csq = csq;
    return {{"ok", true}, {"csq", csq}};
}

nlohmann::json SetSignalDrift(SimModem& m, bool drift) {
    m.State().network.signalDrift = drift;
    return {{"ok", true}, {"drift", drift}};
}

nlohmann::json SetCell(SimModem& m, long long lac, long long cell) {
    if (lac < 0 || lac > 0xFFFF || cell < 0 || cell > 0xFFFFFFFLL)
        return {{"ok", false}, {"error", "LAC must be 0-FFFF and CI 0-FFFFFFF (hexadecimal)"}};
    m.State().network.lac = static_cast<int>(lac);
    m.State().network.cell = cell;
    return {{"ok", true}, {"lac", lac}, {"ci", cell}};
}

nlohmann::json SetRegistration(SimModem& m, int stat) {
    if (stat < -1 || stat > 5) {
        return {{"ok", false}, {"error", "STAT must be 0-5, or -1 for automatic"}};
    }
    int oldStat = RegistrationStat(m);
    int oldPacket = PacketStat(m);
    m.State().network.regOverride = stat;
    ReportChange(m, oldStat, oldPacket);
    return {{"ok", true}, {"stat", RegistrationStat(m)}};
}

void RegisterNetworkCommands(CommandTable& table) {
    table["+CSQ"] = {Csq, SimNeed::None};
    table["+CESQ"] = {Cesq, SimNeed::None};
    table["+CREG"] = {Creg, SimNeed::None};
    table["+CGREG"] = {Cgreg, SimNeed::None};
    table["+CGATT"] = {Cgatt, SimNeed::None};
    table["+COPS"] = {Cops, SimNeed::None};
    table["+SYSSEL"] = {Syssel, SimNeed::None};
    table["+SSND"] = {Ssnd, SimNeed::None};
    table["+SPNM"] = {Spnm, SimNeed::Ready};
    table["+SPDI"] = {Spdi, SimNeed::Ready};
    table["+CRSM"] = {Crsm, SimNeed::Ready};
}

} // namespace modemsim
