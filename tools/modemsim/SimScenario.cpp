#include "SimScenario.h"

#include <fstream>
#include <sstream>

#include "SimBuiltinScenario.h"
#include "SimKnobs.h"
#include "SimPdu.h"
#include "SimSecurityCommands.h"
#include "SimText.h"

namespace modemsim {

namespace {

using nlohmann::json;

// Scenario mistakes are reported as this exception inside the loader, and as a text outside it.
struct ScenarioError {
    std::string what;
};

void Require(bool ok, const std::string& what) {
    if (!ok) {
        throw ScenarioError{what};
    }
}

const json& Object(const json& parent, const char* key) {
    static const json empty = json::object();
    auto it = parent.find(key);
    if (it == parent.end() || it->is_null()) {
        return empty;
    }
    Require(it->is_object(), std::string(key) + " must be an object");
    return *it;
}

const json& Array(const json& parent, const char* key) {
    static const json empty = json::array();
    auto it = parent.find(key);
    if (it == parent.end() || it->is_null()) {
        return empty;
    }
    Require(it->is_array(), std::string(key) + " must be an array");
    return *it;
}

int IntIn(const json& obj, const char* key, int fallback, int lo, int hi) {
    int v = obj.value(key, fallback);
    Require(v >= lo && v <= hi,
            std::string(key) + " must be " + std::to_string(lo) + "-" + std::to_string(hi));
    return v;
}

DeliverParams::Coding CodingOf(const std::string& name) {
    if (name == "auto" || name.empty()) {
        return DeliverParams::Coding::Auto;
    }
    if (name == "gsm7") {
        return DeliverParams::Coding::Gsm7;
    }
    if (name == "ucs2") {
        return DeliverParams::Coding::Ucs2;
    }
    Require(name == "data8", "coding must be auto, gsm7, ucs2 or data8");
    return DeliverParams::Coding::Data8;
}

void ParseIdentity(const json& j, Identity& id) {
    id.manufacturer = j.value("manufacturer", "SIMULATED");
    id.model = j.value("model", "HSPA USB Modem");
    id.revision = j.value("revision", "1.0");
    id.imei = j.value("imei", "356938035643809");
    id.hardware = j.value("hardware", "");
}

void ParseSim(const json& j, SimCard& sim) {
    sim.imsi = j.value("imsi", "");
    sim.msisdn = j.value("msisdn", "");
    sim.msisdnName = j.value("msisdn_name", "");
    sim.pin = j.value("pin", "1234");
    sim.puk = j.value("puk", "12345678");
    sim.pin2 = j.value("pin2", "5678");
    sim.puk2 = j.value("puk2", "87654321");
    Require(ValidPin(sim.pin) && ValidPin(sim.pin2), "pin and pin2 must be 4-8 digits");
    sim.pinEnabled = j.value("pin_enabled", false);
    sim.pinLeft = IntIn(j, "pin_attempts", 3, 0, 3);
    sim.pukLeft = IntIn(j, "puk_attempts", 10, 0, 10);
    sim.spn = j.value("spn", "");
    std::string coding = j.value("spn_coding", "gsm");
    Require(coding == "gsm" || coding == "ucs2", "spn_coding must be gsm or ucs2");
    sim.spnUcs2 = coding == "ucs2";
    sim.spnDisplay = IntIn(j, "spn_display", 1, 0, 255);
    sim.spdi.clear();
    for (const json& plmn : Array(j, "spdi")) {
        sim.spdi.push_back(plmn.get<std::string>());
    }
    sim.smsc = j.value("smsc", kDefaultSmsc);
    const json& perso = Object(j, "perso");
    static const char* const names[] = {"PN", "PU", "PP", "PC", "PF"};
    for (size_t i = 0; i < sim.perso.size(); ++i) {
        if (perso.contains(names[i])) {
            const json& pair = perso.at(names[i]);
            Require(pair.is_array() && pair.size() == 2,
                    std::string("perso ") + names[i] + " must be [a, b]");
            sim.perso[i] = {pair[0].get<int>(), pair[1].get<int>()};
        }
    }
    if (!j.value("present", true)) {
        sim.state = PinState::Absent;
    } else if (sim.pukLeft == 0) {
        sim.state = PinState::Blocked;
    } else if (sim.pinLeft == 0) {
        sim.state = PinState::SimPuk;
    } else {
        sim.state = sim.pinEnabled ? PinState::SimPin : PinState::Ready;
    }
}

void ParseNetwork(const json& j, Network& net) {
    net.operators.clear();
    for (const json& o : Array(j, "operators")) {
        Operator op;
        op.longName = o.value("long", "");
        op.shortName = o.value("short", op.longName);
        op.numeric = o.value("numeric", "");
        Require(op.numeric.size() == 5 || op.numeric.size() == 6, "operator numeric must be 5 or 6 digits");
        op.act = IntIn(o, "act", 2, 0, 7);
        op.forbidden = o.value("forbidden", false);
        net.operators.push_back(op);
    }
    std::string selection = j.value("selection", "auto");
    if (selection == "auto") {
        net.selectionMode = 0;
    } else if (selection == "none") {
        net.selectionMode = 2;
    } else {
        net.selectionMode = 1;
        net.manualNumeric = selection;
    }
    net.csq = j.value("signal", 18);
    Require((net.csq >= 0 && net.csq <= 31) || net.csq == 99, "signal must be 0-31 or 99");
    net.ber = IntIn(j, "ber", 99, 0, 99);
    net.signalDrift = j.value("signal_drift", false);
    net.attached = j.value("attached", true);
    net.bearer = j.value("bearer", "HSDPA");
    net.scanDelayMs = IntIn(j, "scan_delay_ms", 2000, 0, 600000);
    net.registerDelayMs = IntIn(j, "register_delay_ms", 0, 0, 600000);
    const json& syssel = Array(j, "syssel");
    if (!syssel.empty()) {
        Require(syssel.size() == 4, "syssel must be [band, mode, mode, domain]");
        net.band = syssel[0].get<int>();
        net.modeA = syssel[1].get<int>();
        net.modeB = syssel[2].get<int>();
        net.domain = syssel[3].get<int>();
    }
    net.cfun = IntIn(j, "cfun", 1, 0, 4);
}

void ParsePhonebooks(const json& j, std::map<std::string, Phonebook>& books) {
    books.clear();
    for (const auto& [name, b] : j.items()) {
        Require(b.is_object(), "phonebook " + name + " must be an object");
        Phonebook pb;
        pb.capacity = IntIn(b, "capacity", 100, 1, 10000);
        pb.numberLength = IntIn(b, "number_length", 40, 1, 80);
        pb.nameLength = IntIn(b, "name_length", 14, 1, 255);
        for (const json& e : Array(b, "entries")) {
            int index = e.value("index", 0);
            for (int i = 1; index == 0 && i <= pb.capacity; ++i) {
                index = pb.entries.count(i) ? 0 : i;
            }
            Require(index >= 1 && index <= pb.capacity && !pb.entries.count(index),
                    "phonebook " + name + ": bad or repeated index, or the book is full");
            PbEntry entry;
            entry.number = e.value("number", "");
            entry.name = e.value("name", "");
            entry.type = e.value("type", !entry.number.empty() && entry.number[0] == '+' ? 145 : 129);
            pb.entries[index] = entry;
        }
        books[name] = pb;
    }
}

void StoreAt(SimState& state, const std::string& storage, int index, int status, const std::string& pdu,
             int length) {
    SmsStorage& s = state.sms.storages[storage];
    if (index == 0) {
        index = s.FreeIndex();
    }
    Require(index >= 1 && index <= s.capacity && !s.slots.count(index),
            "message in " + storage + ": bad or repeated index, or the storage is full");
    s.slots[index] = StoredSms{status, pdu, length};
}

void AddMessage(SimState& state, const json& msg) {
    Require(msg.is_object(), "each message must be an object");
    std::string storage = msg.value("storage", "SM");
    Require(state.sms.storages.count(storage) > 0, "message storage " + storage + " is not in sms.storages");
    int index = msg.value("index", 0);
    if (msg.contains("pdu")) {
        std::string pdu = msg.at("pdu").get<std::string>();
        int length = msg.value("length", TpduLengthOfPdu(pdu));
        Require(length > 0, "message pdu is malformed");
        StoreAt(state, storage, index, IntIn(msg, "status", 1, 0, 3), ToUpper(pdu), length);
        return;
    }
    Bytes data;
    if (msg.contains("data")) {
        Require(FromHex(msg.at("data").get<std::string>(), &data), "message data must be hex");
    }
    if (msg.contains("to")) {
        StoredSubmitParams p;
        p.destination = msg.at("to").get<std::string>();
        p.textUtf8 = msg.value("text", "");
        p.data = data;
        p.coding = CodingOf(msg.value("coding", "auto"));
        int length = 0;
        std::string pdu = EncodeSubmitPduForStorage(p, &length);
        Require(!pdu.empty(), "stored outgoing message to " + p.destination + " does not fit one PDU");
        StoreAt(state, storage, index, IntIn(msg, "status", 3, 0, 3), pdu, length);
        return;
    }
    Require(msg.contains("from"), "a message needs pdu, from or to");
    DeliverParams p;
    p.originator = msg.at("from").get<std::string>();
    p.textUtf8 = msg.value("text", "");
    p.data = data;
    p.coding = CodingOf(msg.value("coding", "auto"));
    p.protocolId = IntIn(msg, "pid", 0, 0, 255);
    p.messageClass = IntIn(msg, "class", -1, -1, 3);
    p.timestamp = msg.value("time", "");
    p.smsc = state.sim.smsc;
    bool ref16 = msg.value("ref16", false);
    std::vector<DeliverParams> parts = SplitLongText(p, state.sms.nextConcatRef, ref16);
    Require(!parts.empty(), "message from " + p.originator + " is too long");
    if (parts.size() > 1) {
        state.sms.nextConcatRef = (state.sms.nextConcatRef + 1) & 0xFF;
    }
    int status = IntIn(msg, "status", 1, 0, 3);
    for (const DeliverParams& part : parts) {
        int length = 0;
        std::string pdu = EncodeDeliverPdu(part, &length);
        Require(!pdu.empty(), "message from " + p.originator + " cannot be encoded (time or originator)");
        StoreAt(state, storage, index, status, pdu, length);
        index = 0;
    }
}

void ParseSms(const json& j, SimState& state) {
    Messaging& sms = state.sms;
    sms.storages.clear();
    for (const auto& [name, capacity] : Object(j, "storages").items()) {
        Require(capacity.is_number_integer() && capacity.get<int>() >= 1 && capacity.get<int>() <= 1000,
                "storage capacity must be 1-1000");
        sms.storages[name].capacity = capacity.get<int>();
    }
    if (sms.storages.empty()) {
        sms.storages["SM"].capacity = 30;
        sms.storages["ME"].capacity = 100;
    }
    const json& cpms = Array(j, "cpms");
    if (!cpms.empty()) {
        Require(cpms.size() == 3, "cpms must name three storages");
        for (size_t i = 0; i < 3; ++i) {
            sms.cpms[i] = cpms[i].get<std::string>();
        }
    }
    for (const std::string& mem : sms.cpms) {
        Require(sms.storages.count(mem) > 0, "cpms names storage " + mem + " that sms.storages lacks");
    }
    sms.smsc = state.sim.smsc;
    sms.smscType = !sms.smsc.empty() && sms.smsc[0] == '+' ? 145 : 129;
    sms.statusReportDelayMs = IntIn(j, "status_report_delay_ms", 1000, 0, 600000);
    sms.statusReportStatus = IntIn(j, "status_report_status", 0, 0, 255);
    sms.loopbackDelayMs = IntIn(j, "loopback_delay_ms", 1000, 0, 600000);
    sms.failNextSend = j.value("fail_next_send", false);
    sms.failSends = IntIn(j, "fail_sends", 0, 0, 1000);
    sms.failSendsAfter = IntIn(j, "fail_sends_after", 0, 0, 1000);
    for (const json& msg : Array(j, "messages")) {
        AddMessage(state, msg);
    }
}

int AddUssdNode(Ussd& ussd, const json& node, int depth) {
    Require(node.is_object(), "a USSD menu entry must be an object");
    Require(depth < 20, "USSD menu nested too deep");
    int index = static_cast<int>(ussd.nodes.size());
    ussd.nodes.push_back(UssdNode{node.value("text", ""), true, {}});
    std::vector<std::pair<std::string, int>> choices;
    for (const auto& [key, child] : Object(node, "choices").items()) {
        choices.emplace_back(key, AddUssdNode(ussd, child, depth + 1));
    }
    UssdNode& self = ussd.nodes[static_cast<size_t>(index)];
    self.choices = choices;
    self.end = node.value("end", choices.empty());
    return index;
}

void ParseUssd(const json& j, Ussd& ussd) {
    ussd = Ussd{};
    ussd.delayMs = IntIn(j, "delay_ms", 300, 0, 600000);
    ussd.packedGsm = j.value("packed_gsm", false);
    for (const auto& [code, node] : Object(j, "menus").items()) {
        ussd.roots.emplace_back(code, AddUssdNode(ussd, node, 0));
    }
}

StkItem ParseItem(const json& j) {
    return StkItem{j.value("id", 0), j.value("text", ""), j.value("next", "")};
}

void ParseToolkit(const json& j, Toolkit& stk) {
    stk = Toolkit{};
    stk.title = j.value("title", "SIM Services");
    stk.delayMs = IntIn(j, "delay_ms", 200, 0, 600000);
    for (const json& item : Array(j, "menu")) {
        stk.menu.push_back(ParseItem(item));
    }
    for (const auto& [name, c] : Object(j, "commands").items()) {
        StkCommand cmd;
        cmd.type = IntIn(c, "type", 1, 1, 255);
        for (const json& f : Array(c, "fields")) {
            cmd.fields.push_back(f);
        }
        for (const json& item : Array(c, "items")) {
            cmd.items.push_back(ParseItem(item));
        }
        cmd.next = c.value("next", "");
        stk.commands[name] = cmd;
    }
}

void ParseVoice(const json& j, Voice& voice) {
    static const char* const results[] = {"OK", "BUSY", "NO ANSWER", "NO CARRIER", "NO DIALTONE"};
    auto valid = [](const std::string& r) {
        for (const char* ok : results) {
            if (r == ok) {
                return true;
            }
        }
        return false;
    };
    voice.defaultResult = j.value("dial_result", "OK");
    Require(valid(voice.defaultResult), "dial_result must be OK, BUSY, NO ANSWER, NO CARRIER or NO DIALTONE");
    voice.results.clear();
    for (const auto& [number, result] : Object(j, "results").items()) {
        Require(valid(result.get<std::string>()), "voice result for " + number + " is not a dial result");
        voice.results[number] = result.get<std::string>();
    }
    voice.ringIntervalMs = IntIn(j, "ring_interval_ms", 3000, 100, 600000);
}

void SetChoice(SimState& s, const json& j, const char* key) {
    if (j.contains(key)) {
        std::string error = std::string(key) + " must be a text";
        const bool ok = j.at(key).is_string() && SetChoiceKnob(s, key, j.at(key).get<std::string>(), error);
        Require(ok, error);
    }
}

void ParseKnobs(const json& j, SimState& s) {
    Knobs& knobs = s.knobs;
    knobs.latencyMs = IntIn(j, "latency_ms", 0, 0, 600000);
    knobs.chunkBytes = IntIn(j, "chunk_bytes", 0, 0, 4096);
    knobs.chunkGapMs = IntIn(j, "chunk_gap_ms", 0, 0, 10000);
    for (const char* key : {"urc_mode", "unsupported_answer", "ussd_format", "scan_format", "cpbr_entry"}) {
        SetChoice(s, j, key);
    }
    knobs.urcPerPoll = IntIn(j, "urc_per_poll", 1, 0, 1000);
    knobs.inject = j.value("inject", "");
    knobs.injectAhead = j.value("inject_ahead", "");
    knobs.injectOn = j.value("inject_on", "");
    knobs.mute = j.value("mute", false);
    knobs.garbage = j.value("garbage", false);
    knobs.floodIntervalMs = IntIn(j, "flood_interval_ms", 0, 0, 600000);
    knobs.floodLine = j.value("flood_line", "RING");
    Require(!knobs.floodLine.empty() && knobs.floodLine.size() <= 1024,
            "flood_line must be 1-1024 characters");
    knobs.unplugAfter = IntIn(j, "unplug_after", 0, 0, 100000);
    knobs.unplugOn = j.value("unplug_on", "");
    std::string refuse;
    for (const json& name : Array(j, "refuse")) {
        refuse += (refuse.empty() ? "" : ",") + name.get<std::string>();
    }
    std::string error;
    Require(SetRefusedCommands(knobs, refuse, error), error);
    knobs.cmglBadPdu = j.value("cmgl_bad_pdu", false);
    knobs.noBlankAfterColon = j.value("no_blank_after_colon", false);
    s.ussd.withRelease = j.value("ussd_release", false);
}

} // namespace

nlohmann::json BuiltinScenario() {
    return json::parse(kBuiltinScenario);
}

bool BuildState(const nlohmann::json& scenario, SimState& state, std::string& error) {
    try {
        Require(scenario.is_object(), "a scenario is a JSON object");
        SimState s;
        ParseIdentity(Object(scenario, "identity"), s.identity);
        ParseSim(Object(scenario, "sim"), s.sim);
        ParseNetwork(Object(scenario, "network"), s.network);
        ParsePhonebooks(Object(scenario, "phonebooks"), s.phonebooks);
        if (s.phonebooks.empty()) {
            s.phonebooks["SM"] = Phonebook{};
        }
        s.phonebook = s.phonebooks.count("SM") ? "SM" : s.phonebooks.begin()->first;
        ParseSms(Object(scenario, "sms"), s);
        ParseUssd(Object(scenario, "ussd"), s.ussd);
        ParseToolkit(Object(scenario, "stk"), s.stk);
        ParseVoice(Object(scenario, "voice"), s.voice);
        s.voice.gps = scenario.value("gps", false);
        SetChoice(s, scenario, "dialect");
        ParseKnobs(Object(scenario, "knobs"), s);
        state = std::move(s);
        return true;
    } catch (const ScenarioError& e) {
        error = e.what;
    } catch (const nlohmann::json::exception& e) {
        error = e.what();
    }
    return false;
}

bool LoadScenario(const std::string& path, SimState& state, std::string& error) {
    json scenario = BuiltinScenario();
    if (!path.empty()) {
        std::ifstream in(path);
        if (!in) {
            error = "cannot read " + path;
            return false;
        }
        json patch = json::parse(in, nullptr, false);
        if (patch.is_discarded()) {
            error = path + " is not valid JSON";
            return false;
        }
        scenario.merge_patch(patch);
    }
    if (!BuildState(scenario, state, error)) {
        error = (path.empty() ? std::string("built-in scenario") : path) + ": " + error;
        return false;
    }
    return true;
}

} // namespace modemsim
