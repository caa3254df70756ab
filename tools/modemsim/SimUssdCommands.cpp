#include "SimUssdCommands.h"

#include "SimNetworkCommands.h"
#include "SimText.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

int FindChoice(const std::vector<std::pair<std::string, int>>& choices, const std::string& key) {
    for (const auto& [k, node] : choices) {
        if (k == key) {
            return node;
        }
    }
    return -1;
}

void Present(SimModem& m, std::string line) {
    if (m.State().ussd.presentation != 0) {
        m.Unsolicited(std::move(line));
    }
}

void ShowNode(SimModem& m, int index) {
    Ussd& ussd = m.State().ussd;
    const UssdNode& node = ussd.nodes[static_cast<size_t>(index)];
    ussd.session = node.end ? -1 : index;
    std::string line = UssdLine(m, node.end ? 0 : 1, node.text);
    if (node.end && ussd.withRelease) {
        // The network's release notice behind the answer, both in one write as such sticks send them.
        line += "\r\n\r\n+CUSD: 2";
    }
    Present(m, line);
}

// The network's answer to one request: a menu entry, the next level of the menu the session waits on,
// or the same menu again for a choice it does not offer.
void Answer(SimModem& m, const std::string& request) {
    Ussd& ussd = m.State().ussd;
    if (ussd.session >= 0) {
        int next = FindChoice(ussd.nodes[static_cast<size_t>(ussd.session)].choices, request);
        ShowNode(m, next >= 0 ? next : ussd.session);
        return;
    }
    if (ussd.session == -2) {
        ussd.session = -1;
        Present(m, "+CUSD: 2");
        return;
    }
    int root = FindChoice(ussd.roots, request);
    if (root < 0) {
        Present(m, "+CUSD: 4");
        return;
    }
    ShowNode(m, root);
}

// AT+CUSD=1,"002A0031003000300023",15 -> OK, later +CUSD: 0,"<hex>",72
AtReply Cusd(SimModem& m, const AtCommand& cmd) {
    Ussd& ussd = m.State().ussd;
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CUSD: (0-2)");
    case Form::Query:
        return AtReply::Line("+CUSD: " + std::to_string(ussd.presentation));
    case Form::Action:
        return AtReply::Ok();
    case Form::Set:
        break;
    }
    int n = 0;
    if (!cmd.Int(0, n) || n < 0 || n > 2) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (n == 2) {
        ussd.session = -1;
        return AtReply::Ok();
    }
    ussd.presentation = n;
    if (!cmd.Has(1)) {
        return AtReply::Ok();
    }
    if (m.SimError() != 0) {
        return AtReply::Cme(m.SimError());
    }
    if (!IsRegistered(m)) {
        return AtReply::Cme(cme::kNoService);
    }
    int dcs = 15;
    if (cmd.Has(2) && (!cmd.Int(2, dcs) || dcs < 0 || dcs > 255)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    std::string request;
    if (!DecodeUssdRequest(cmd.Str(1), m.Settings().cscs, &request)) {
        return AtReply::Cme(cme::kInvalidText);
    }
    ussd.requests.push_back(request);
    if (ussd.requests.size() > 100) {
        ussd.requests.erase(ussd.requests.begin());
    }
    m.After(ussd.delayMs, [request](SimModem& later) { Answer(later, request); });
    return AtReply::Ok();
}

} // namespace

std::string UssdLine(const SimModem& m, int mode, const std::string& text) {
    if (text.empty()) {
        return "+CUSD: " + std::to_string(mode);
    }
    const std::string head = "+CUSD: " + std::to_string(mode) + ",\"";
    switch (m.State().ussd.form) {
    case Ussd::Form::Text: // the text itself, whatever AT+CSCS says
        return head + SimModem::ToIra(text) + "\",15";
    case Ussd::Form::NoDcs: // 27.007: dcs left out means 0, the text in the TE character set
        return head + m.ToTe(text) + "\"";
    case Ussd::Form::Ucs2Lang: // dcs 0x11: the language ("en" in two packed septets), then UCS2
        return head + "6537" + TextToUcs2Hex(text) + "\",17";
    case Ussd::Form::Hex:
        break;
    }
    std::u32string wide = Utf8ToUtf32(text);
    std::string hex;
    int dcs = 15;
    if (m.Settings().cscs == "UCS2" || !FitsGsm7(wide)) {
        hex = TextToUcs2Hex(text);
        dcs = 72;
    } else if (m.State().ussd.packedGsm) {
        hex = EncodeUssdGsm7Hex(wide);
    } else {
        // One default-alphabet code per octet, as the stick hands dcs 15 answers to the host.
        hex = ToHex(TextToGsm7(wide));
    }
    return "+CUSD: " + std::to_string(mode) + ",\"" + hex + "\"," + std::to_string(dcs);
}

nlohmann::json NetworkUssd(SimModem& m, int mode, const std::string& text) {
    if (mode < 0 || mode > 5) {
        return {{"ok", false}, {"error", "M must be 0-5"}};
    }
    Ussd& ussd = m.State().ussd;
    if (ussd.presentation == 0) {
        return {{"ok", false}, {"error", "USSD presentation is off (AT+CUSD=1)"}};
    }
    ussd.session = mode == 1 ? -2 : -1;
    std::string line = UssdLine(m, mode, text);
    m.Unsolicited(line);
    return {{"ok", true}, {"line", line}};
}

void RegisterUssdCommands(CommandTable& table) {
    table["+CUSD"] = {Cusd, SimNeed::None};
}

} // namespace modemsim
