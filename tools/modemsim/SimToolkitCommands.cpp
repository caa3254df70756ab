#include "SimToolkitCommands.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

constexpr int kMainMenu = 17;
constexpr int kSessionEnd = 20;

void Indicate(SimModem& m, const std::string& name, int type) {
    Toolkit& stk = m.State().stk;
    stk.pending = name;
    stk.lastIndication = type;
    m.After(stk.delayMs, [type](SimModem& later) { later.Unsolicited("+STIN: " + std::to_string(type)); });
}

void Start(SimModem& m, const std::string& name) {
    const Toolkit& stk = m.State().stk;
    auto it = stk.commands.find(name);
    if (name.empty() || it == stk.commands.end()) {
        Indicate(m, "", kSessionEnd);
        return;
    }
    Indicate(m, name, it->second.type);
}

std::string Field(const SimModem& m, const nlohmann::json& value) {
    if (value.is_string()) {
        return "\"" + m.ToTe(value.get<std::string>()) + "\"";
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "1" : "0";
    }
    if (value.is_number_integer()) {
        return std::to_string(value.get<long long>());
    }
    return "";
}

AtReply Listing(const SimModem& m, int type, const std::vector<nlohmann::json>& fields,
                const std::vector<StkItem>& items) {
    std::string head = "+STGI: " + std::to_string(type);
    for (const nlohmann::json& f : fields) {
        head += "," + Field(m, f);
    }
    if (!items.empty()) {
        head += "," + std::to_string(items.size());
    }
    AtReply r = AtReply::Line(head);
    for (const StkItem& item : items) {
        r.lines.push_back("+STGI: " + std::to_string(type) + "," + std::to_string(item.id) + ",\"" +
                          m.ToTe(item.text) + "\"");
    }
    return r;
}

// AT+STIN? -> +STIN: 11
AtReply Stin(SimModem& m, const AtCommand& cmd) {
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    return AtReply::Line("+STIN: " + std::to_string(m.State().stk.lastIndication));
}

// AT+STGI=17 -> +STGI: 17,"SIM Services",3 / +STGI: 17,1,"News" / ...
AtReply Stgi(SimModem& m, const AtCommand& cmd) {
    const Toolkit& stk = m.State().stk;
    int type = 0;
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    if (cmd.form != Form::Set || !cmd.Int(0, type)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (type == kMainMenu) {
        return Listing(m, type, {nlohmann::json(stk.title)}, stk.menu);
    }
    auto pending = stk.commands.find(stk.pending);
    if (pending != stk.commands.end() && pending->second.type == type) {
        return Listing(m, type, pending->second.fields, pending->second.items);
    }
    for (const auto& [name, command] : stk.commands) {
        if (command.type == type) {
            return Listing(m, type, command.fields, command.items);
        }
    }
    return AtReply::Cme(cme::kNotAllowed);
}

const StkItem* FindItem(const std::vector<StkItem>& items, int id) {
    for (const StkItem& item : items) {
        if (item.id == id) {
            return &item;
        }
    }
    return nullptr;
}

// AT+STGR=0,0,2 (menu selection), AT+STGR=11,0,,3 (select item), AT+STGR=1,0, (display text done), ...
AtReply Stgr(SimModem& m, const AtCommand& cmd) {
    Toolkit& stk = m.State().stk;
    int number = 0;
    if (cmd.form == Form::Test) {
        return AtReply::Ok();
    }
    if (cmd.form != Form::Set || !cmd.Int(0, number)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    stk.responses.push_back(cmd.value);
    if (stk.responses.size() > 100) {
        stk.responses.erase(stk.responses.begin());
    }
    int result = cmd.IntOr(1, 0);
    if (number == 256 || number == 257) {
        return AtReply::Ok(); // idle screen / user activity envelopes
    }
    if (number == 0) {
        const StkItem* item = FindItem(stk.menu, cmd.IntOr(2, -1));
        if (!item) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        Start(m, item->next);
        return AtReply::Ok();
    }
    auto pending = stk.commands.find(stk.pending);
    if (pending == stk.commands.end() || pending->second.type != number) {
        return AtReply::Cme(cme::kNotAllowed);
    }
    const StkCommand& command = pending->second;
    if (result != 0) {
        Start(m, "");
    } else if (number == 11) {
        const StkItem* item = FindItem(command.items, cmd.IntOr(3, -1));
        if (!item) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        Start(m, item->next);
    } else {
        Start(m, command.next);
    }
    return AtReply::Ok();
}

} // namespace

nlohmann::json ToolkitIndication(SimModem& m, const std::string& what) {
    if (m.Standard()) {
        return {{"ok", false}, {"error", "a stick of the standard dialect has no toolkit commands"}};
    }
    const Toolkit& stk = m.State().stk;
    int type = 0;
    if (stk.commands.count(what)) {
        Start(m, what);
        return {{"ok", true}, {"indication", stk.commands.at(what).type}};
    }
    if (!ParseInt(what, type) || type < 1 || type > 261) {
        return {{"ok", false}, {"error", "unknown toolkit command"}};
    }
    std::string name;
    for (const auto& [n, command] : stk.commands) {
        if (command.type == type) {
            name = n;
            break;
        }
    }
    Indicate(m, name, type);
    return {{"ok", true}, {"indication", type}};
}

void RegisterToolkitCommands(CommandTable& table) {
    table["+STIN"] = {Stin, SimNeed::Ready};
    table["+STGI"] = {Stgi, SimNeed::Ready};
    table["+STGR"] = {Stgr, SimNeed::Ready};
}

} // namespace modemsim
