#include "SimSmsCommands.h"

#include <algorithm>
#include <sstream>

#include "SimNetworkCommands.h"
#include "SimPhonebookCommands.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

SmsStorage* Storage(SimModem& m, size_t which) {
    auto& storages = m.State().sms.storages;
    auto it = storages.find(m.State().sms.cpms[which]);
    return it == storages.end() ? nullptr : &it->second;
}

std::string Usage(SimModem& m) {
    std::string out;
    for (size_t i = 0; i < 3; ++i) {
        const SmsStorage* s = Storage(m, i);
        if (i > 0) {
            out += ",";
        }
        out += std::to_string(s ? s->Used() : 0) + "," + std::to_string(s ? s->capacity : 0);
    }
    return out;
}

// Stores a received PDU in the receive storage and announces it: "+CMTI: "SM",3" (mt 1) or, for mt 2
// and 3, routes it straight to the host as "+CMT: ,<length>" with the PDU on the next line.
bool Receive(SimModem& m, const std::string& pdu, int length, int* index) {
    const auto& cnmi = m.Settings().cnmi;
    if (cnmi[1] >= 2) {
        m.Unsolicited("+CMT: ," + std::to_string(length) + "\r\n" + pdu);
        *index = 0;
        return true;
    }
    const std::string& mem = m.State().sms.cpms[2];
    *index = StoreMessage(m.State(), mem, 0, pdu, length);
    if (*index == 0) {
        return false;
    }
    if (cnmi[1] == 1) {
        m.Unsolicited("+CMTI: \"" + mem + "\"," + std::to_string(*index));
    }
    return true;
}

void DeliverStatusReport(SimModem& m, const SentSms& sent) {
    int length = 0;
    const Messaging& sms = m.State().sms;
    std::string pdu = EncodeStatusReportPdu(sent.mr, sent.destination, "", "", sms.statusReportStatus,
                                            &length, sms.smsc.empty() ? kDefaultSmsc : sms.smsc);
    if (pdu.empty()) {
        return;
    }
    int ds = m.Settings().cnmi[3];
    if (ds == 1) {
        m.Unsolicited("+CDS: " + std::to_string(length) + "\r\n" + pdu);
        return;
    }
    const std::string& mem = m.State().sms.cpms[2];
    int index = StoreMessage(m.State(), mem, 0, pdu, length);
    if (index != 0 && ds == 2) {
        m.Unsolicited("+CDSI: \"" + mem + "\"," + std::to_string(index));
    }
}

std::string Digits(const std::string& number) {
    std::string out;
    for (char c : number) {
        if (c >= '0' && c <= '9') {
            out += c;
        }
    }
    return out;
}

// A message sent to the SIM's own number comes back through the network.
void Loopback(SimModem& m, const SubmitInfo& info) {
    DeliverParams p;
    p.originator = m.State().sim.msisdn;
    p.textUtf8 = info.textUtf8;
    p.data = info.data;
    int alphabet = (info.dcs & 0xC0) == 0 ? (info.dcs >> 2) & 3 : 0;
    p.coding = alphabet == 2   ? DeliverParams::Coding::Ucs2
               : alphabet == 1 ? DeliverParams::Coding::Data8
                               : DeliverParams::Coding::Gsm7;
    p.concatRef = info.concatRef;
    p.concatTotal = info.concatTotal;
    p.concatSeq = info.concatSeq;
    p.concat16bit = info.concat16bit;
    p.smsc = m.State().sms.smsc.empty() ? kDefaultSmsc : m.State().sms.smsc;
    int length = 0;
    std::string pdu = EncodeDeliverPdu(p, &length);
    int index = 0;
    if (!pdu.empty()) {
        Receive(m, pdu, length, &index);
    }
}

AtReply Submit(SimModem& m, int length, const std::string& hex) {
    Messaging& sms = m.State().sms;
    if (sms.failNextSend) {
        sms.failNextSend = false;
        return AtReply::Cms(cms::kUnknown);
    }
    if (sms.failSends > 0) {
        if (sms.failSendsAfter > 0) {
            --sms.failSendsAfter;
        } else {
            --sms.failSends;
            return AtReply::Cms(cms::kUnknown);
        }
    }
    SubmitInfo info = DecodeSubmitPdu(hex, length);
    if (!info.ok) {
        return AtReply::Cms(cms::kInvalidPduParameter);
    }
    if (!IsRegistered(m)) {
        return AtReply::Cms(cms::kNoService);
    }
    SentSms sent;
    sent.mr = sms.nextMr;
    sms.nextMr = (sms.nextMr + 1) & 0xFF;
    sent.pdu = hex;
    sent.tpduLength = length;
    sent.destination = info.destination;
    sent.text = info.textUtf8;
    sent.dcs = info.dcs;
    sent.statusReport = info.statusReportRequest;
    sent.concatRef = info.concatRef;
    sent.concatTotal = info.concatTotal;
    sent.concatSeq = info.concatSeq;
    sms.sent.push_back(sent);
    if (sent.statusReport) {
        m.After(sms.statusReportDelayMs, [sent](SimModem& later) { DeliverStatusReport(later, sent); });
    }
    const std::string own = Digits(m.State().sim.msisdn);
    if (!own.empty() && Digits(info.destination) == own) {
        m.After(sms.loopbackDelayMs, [info](SimModem& later) { Loopback(later, info); });
    }
    return AtReply::Line("+CMGS: " + std::to_string(sent.mr));
}

bool PduMode(SimModem& m) {
    return m.Settings().cmgf == 0;
}

// AT+CMGS=<length>, then "> ", then the PDU and Ctrl-Z -> +CMGS: <mr>
AtReply Cmgs(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    int length = 0;
    if (!PduMode(m)) {
        return AtReply::Cms(cms::kNotAllowed);
    }
    if (cmd.form != Form::Set || !cmd.Int(0, length) || length < 7 || length > 176) {
        return AtReply::Cms(cms::kInvalidPduParameter);
    }
    m.ExpectInput([length](SimModem& later, const std::string& hex) { return Submit(later, length, hex); });
    return AtReply::Prompt();
}

// AT+CMGW=<length>[,<stat>], then the PDU -> +CMGW: <index>
AtReply Cmgw(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    int length = 0;
    int stat = 2;
    if (!PduMode(m)) {
        return AtReply::Cms(cms::kNotAllowed);
    }
    if (cmd.form != Form::Set || !cmd.Int(0, length) || length < 1 || length > 176 ||
        (cmd.Has(1) && (!cmd.Int(1, stat) || stat < 0 || stat > 3))) {
        return AtReply::Cms(cms::kInvalidPduParameter);
    }
    m.ExpectInput([length, stat](SimModem& later, const std::string& hex) {
        if (TpduLengthOfPdu(hex) != length) {
            return AtReply::Cms(cms::kInvalidPduParameter);
        }
        const std::string& mem = later.State().sms.cpms[1];
        int index = StoreMessage(later.State(), mem, stat, hex, length);
        if (index == 0) {
            return AtReply::Cms(cms::kMemoryFull);
        }
        return AtReply::Line("+CMGW: " + std::to_string(index));
    });
    return AtReply::Prompt();
}

// The cmgl_bad_pdu knob: the service-centre part and the first octet of the TPDU, nothing more, so that
// the entry cannot be decoded.
std::string CutShort(const std::string& pdu) {
    Bytes head;
    if (pdu.size() < 2 || !FromHex(pdu.substr(0, 2), &head)) {
        return pdu;
    }
    return pdu.substr(0, std::min(pdu.size(), 2 * (static_cast<size_t>(head[0]) + 2)));
}

// AT+CMGL=4 -> +CMGL: 1,1,,23 / <pdu> / ...
AtReply Cmgl(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CMGL: (0-4)");
    }
    if (!PduMode(m)) {
        return AtReply::Cms(cms::kNotAllowed);
    }
    int stat = 0;
    if (cmd.form == Form::Set && (!cmd.Int(0, stat) || stat < 0 || stat > 4)) {
        return AtReply::Cms(cms::kInvalidPduParameter);
    }
    SmsStorage* storage = Storage(m, 0);
    AtReply r;
    if (!storage) {
        return r;
    }
    for (auto& [index, sms] : storage->slots) {
        if (stat != 4 && sms.status != stat) {
            continue;
        }
        r.lines.push_back("+CMGL: " + std::to_string(index) + "," + std::to_string(sms.status) + ",," +
                          std::to_string(sms.tpduLength));
        r.lines.push_back(r.lines.size() == 1 && m.State().knobs.cmglBadPdu ? CutShort(sms.pdu) : sms.pdu);
        if (sms.status == 0) {
            sms.status = 1; // listing marks unread messages read
        }
    }
    return r;
}

// AT+CMGR=3 -> +CMGR: 0,,23 / <pdu>
AtReply Cmgr(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    if (!PduMode(m)) {
        return AtReply::Cms(cms::kNotAllowed);
    }
    int index = 0;
    SmsStorage* storage = Storage(m, 0);
    if (cmd.form != Form::Set || !cmd.Int(0, index) || !storage) {
        return AtReply::Cms(cms::kInvalidPduParameter);
    }
    auto it = storage->slots.find(index);
    if (it == storage->slots.end()) {
        return AtReply::Cms(cms::kInvalidIndex);
    }
    AtReply r;
    r.lines.push_back("+CMGR: " + std::to_string(it->second.status) + ",," +
                      std::to_string(it->second.tpduLength));
    r.lines.push_back(it->second.pdu);
    if (it->second.status == 0) {
        it->second.status = 1;
    }
    return r;
}

// AT+CMGD=3 deletes one message; AT+CMGD=1,4 deletes all (flags 1-3 by status).
AtReply Cmgd(SimModem& m, const AtCommand& cmd) {
    SmsStorage* storage = Storage(m, 0);
    if (!storage) {
        return AtReply::Cms(cms::kNotAllowed);
    }
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CMGD: (1-" + std::to_string(storage->capacity) + "),(0-4)");
    }
    int index = 0;
    int flag = 0;
    if (cmd.form != Form::Set || (cmd.Has(1) && (!cmd.Int(1, flag) || flag < 0 || flag > 4))) {
        return AtReply::Cms(cms::kInvalidPduParameter);
    }
    if (flag == 0) {
        if (!cmd.Int(0, index) || index < 1 || index > storage->capacity) {
            return AtReply::Cms(cms::kInvalidIndex);
        }
        storage->slots.erase(index);
        return AtReply::Ok();
    }
    for (auto it = storage->slots.begin(); it != storage->slots.end();) {
        int s = it->second.status;
        bool drop = flag == 4 || s == 1 || (flag >= 2 && s == 3) || (flag >= 3 && s == 2);
        it = drop ? storage->slots.erase(it) : std::next(it);
    }
    return AtReply::Ok();
}

// AT+CPMS="SM","SM","SM" -> +CPMS: 3,30,3,30,3,30;  AT+CPMS? -> +CPMS: "SM",3,30,"SM",3,30,"SM",3,30
AtReply Cpms(SimModem& m, const AtCommand& cmd) {
    auto& cpms = m.State().sms.cpms;
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CPMS: (\"SM\",\"ME\"),(\"SM\",\"ME\"),(\"SM\",\"ME\")");
    }
    if (cmd.form == Form::Query) {
        std::string line = "+CPMS: ";
        for (size_t i = 0; i < 3; ++i) {
            const SmsStorage* s = Storage(m, i);
            line += (i > 0 ? ",\"" : "\"") + cpms[i] + "\"," + std::to_string(s ? s->Used() : 0) + "," +
                    std::to_string(s ? s->capacity : 0);
        }
        return AtReply::Line(line);
    }
    if (cmd.form != Form::Set || cmd.args.size() > 3) {
        return AtReply::Cms(cms::kNotAllowed);
    }
    auto chosen = cpms;
    for (size_t i = 0; i < cmd.args.size(); ++i) {
        if (!cmd.Has(i)) {
            continue;
        }
        std::string name = ToUpper(cmd.Str(i));
        if (!m.State().sms.storages.count(name)) {
            return AtReply::Cms(cms::kNotAllowed);
        }
        chosen[i] = name;
    }
    cpms = chosen;
    return AtReply::Line("+CPMS: " + Usage(m));
}

AtReply Cmgf(SimModem& m, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CMGF: (0,1)");
    case Form::Query:
        return AtReply::Line("+CMGF: " + std::to_string(m.Settings().cmgf));
    case Form::Set: {
        int v = 0;
        if (!cmd.Int(0, v) || v < 0 || v > 1) {
            return AtReply::Cms(cms::kNotAllowed);
        }
        m.Settings().cmgf = v;
        return AtReply::Ok();
    }
    case Form::Action:
        m.Settings().cmgf = 0;
        return AtReply::Ok();
    }
    return AtReply::Error();
}

// AT+CNMI=2,1,0,2,0
AtReply Cnmi(SimModem& m, const AtCommand& cmd) {
    auto& cnmi = m.Settings().cnmi;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CNMI: (0-2),(0-3),(0,2),(0-2),(0,1)");
    case Form::Query: {
        std::string line = "+CNMI: ";
        for (size_t i = 0; i < cnmi.size(); ++i) {
            line += (i > 0 ? "," : "") + std::to_string(cnmi[i]);
        }
        return AtReply::Line(line);
    }
    case Form::Set: {
        static const int limits[5] = {3, 3, 3, 2, 1};
        auto values = cnmi;
        if (cmd.args.size() > 5) {
            return AtReply::Cms(cms::kNotSupported);
        }
        for (size_t i = 0; i < cmd.args.size(); ++i) {
            if (cmd.Has(i) && (!cmd.Int(i, values[i]) || values[i] < 0 || values[i] > limits[i])) {
                return AtReply::Cms(cms::kNotSupported);
            }
        }
        cnmi = values;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

AtReply Cscb(SimModem&, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CSCB: (0,1)");
    case Form::Query:
        return AtReply::Line("+CSCB: 1,\"\",\"\"");
    case Form::Set: {
        int mode = 0;
        return cmd.Int(0, mode) && (mode == 0 || mode == 1) ? AtReply::Ok()
                                                            : AtReply::Cms(cms::kNotSupported);
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

AtReply Cmms(SimModem&, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CMMS: (0-2)");
    case Form::Query:
        return AtReply::Line("+CMMS: 0");
    case Form::Set: {
        int n = 0;
        return cmd.Int(0, n) && n >= 0 && n <= 2 ? AtReply::Ok() : AtReply::Cms(cms::kNotSupported);
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

AtReply Csms(SimModem&, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CSMS: (0,1)");
    case Form::Query:
        return AtReply::Line("+CSMS: 0,1,1,1");
    case Form::Set:
        return AtReply::Line("+CSMS: 1,1,1");
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

// AT+CSCA? -> +CSCA: "+491710760000",145  (the number in the AT+CSCS character set)
AtReply Csca(SimModem& m, const AtCommand& cmd) {
    Messaging& sms = m.State().sms;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Ok();
    case Form::Query:
        return AtReply::Line("+CSCA: \"" + m.ToTe(sms.smsc) + "\"," + std::to_string(sms.smscType));
    case Form::Set: {
        std::string number;
        if (!m.FromTe(cmd.Str(0), &number) || number.size() > 21 || !ValidDialString(number)) {
            return AtReply::Cms(cms::kInvalidPduParameter);
        }
        int type = !number.empty() && number[0] == '+' ? 145 : 129;
        if (cmd.Has(1) && (!cmd.Int(1, type) || type < 128 || type > 255)) {
            return AtReply::Cms(cms::kInvalidPduParameter);
        }
        sms.smsc = number;
        sms.smscType = type;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

std::vector<size_t> DeliveryOrder(const std::string& order, size_t count, std::string& error) {
    std::vector<size_t> seq(count);
    for (size_t i = 0; i < count; ++i) {
        seq[i] = i;
    }
    if (order.empty()) {
        return seq;
    }
    if (order == "reverse") {
        std::reverse(seq.begin(), seq.end());
        return seq;
    }
    std::vector<size_t> out;
    std::stringstream ss(order);
    std::string item;
    while (std::getline(ss, item, ',')) {
        int n = 0;
        if (!ParseInt(item, n) || n < 1 || static_cast<size_t>(n) > count ||
            std::find(out.begin(), out.end(), static_cast<size_t>(n - 1)) != out.end()) {
            error = "order must name each part once (1-" + std::to_string(count) + ")";
            return {};
        }
        out.push_back(static_cast<size_t>(n - 1));
    }
    if (out.size() != count) {
        error = "order must name each part once (1-" + std::to_string(count) + ")";
        return {};
    }
    return out;
}

} // namespace

int StoreMessage(SimState& state, const std::string& storage, int status, const std::string& pdu,
                 int tpduLength) {
    auto it = state.sms.storages.find(storage);
    if (it == state.sms.storages.end()) {
        return 0;
    }
    int index = it->second.FreeIndex();
    if (index != 0) {
        it->second.slots[index] = StoredSms{status, pdu, tpduLength};
    }
    return index;
}

nlohmann::json DeliverText(SimModem& m, const IncomingSms& sms) {
    Messaging& state = m.State().sms;
    DeliverParams base = sms.params;
    if (base.smsc == kDefaultSmsc && !state.smsc.empty()) {
        base.smsc = state.smsc;
    }
    int ref = state.nextConcatRef;
    std::vector<DeliverParams> parts = SplitLongText(base, ref, sms.ref16);
    if (parts.empty()) {
        return {{"ok", false}, {"error", "text too long"}};
    }
    if (parts.size() > 1) {
        state.nextConcatRef = (state.nextConcatRef + 1) & (sms.ref16 ? 0xFFFF : 0xFF);
    }
    std::vector<std::pair<std::string, int>> pdus;
    for (const DeliverParams& part : parts) {
        int length = 0;
        std::string pdu = EncodeDeliverPdu(part, &length);
        if (pdu.empty()) {
            return {{"ok", false}, {"error", "cannot encode the message (originator or time stamp)"}};
        }
        pdus.emplace_back(pdu, length);
    }
    std::string error;
    std::vector<size_t> order = DeliveryOrder(sms.order, pdus.size(), error);
    if (order.empty()) {
        return {{"ok", false}, {"error", error}};
    }
    const SmsStorage* receive = Storage(m, 2);
    if (m.Settings().cnmi[1] < 2 &&
        (!receive || receive->capacity - receive->Used() < static_cast<int>(pdus.size()))) {
        return {{"ok", false}, {"error", "storage full"}};
    }
    nlohmann::json indexes = nlohmann::json::array();
    for (size_t i : order) {
        int index = 0;
        Receive(m, pdus[i].first, pdus[i].second, &index);
        indexes.push_back(index);
    }
    return {{"ok", true}, {"parts", pdus.size()}, {"storage", state.cpms[2]}, {"indexes", indexes}};
}

nlohmann::json DeliverPdu(SimModem& m, const std::string& hex) {
    int length = TpduLengthOfPdu(hex);
    if (length <= 0) {
        return {{"ok", false}, {"error", "malformed PDU"}};
    }
    int index = 0;
    if (!Receive(m, ToUpper(hex), length, &index)) {
        return {{"ok", false}, {"error", "storage full"}};
    }
    return {{"ok", true}, {"storage", m.State().sms.cpms[2]}, {"index", index}, {"length", length}};
}

void RegisterSmsCommands(CommandTable& table) {
    table["+CNMI"] = {Cnmi, SimNeed::None};
    table["+CSCB"] = {Cscb, SimNeed::None};
    table["+CMMS"] = {Cmms, SimNeed::None};
    table["+CMGF"] = {Cmgf, SimNeed::None};
    table["+CSMS"] = {Csms, SimNeed::None};
    table["+CSCA"] = {Csca, SimNeed::Ready};
    table["+CPMS"] = {Cpms, SimNeed::Ready};
    table["+CMGL"] = {Cmgl, SimNeed::Ready};
    table["+CMGR"] = {Cmgr, SimNeed::Ready};
    table["+CMGD"] = {Cmgd, SimNeed::Ready};
    table["+CMGS"] = {Cmgs, SimNeed::Ready};
    table["+CMGW"] = {Cmgw, SimNeed::Ready};
}

} // namespace modemsim
