#include "SimPhonebookCommands.h"

#include "SimText.h"

namespace modemsim {

namespace {

using Form = AtCommand::Form;

Phonebook& Current(SimModem& m) {
    return m.State().phonebooks[m.State().phonebook];
}

// +CPBR: 1,"+491701234567",145,"Anna". With the cpbr_entry knob the first entry of a listing comes as
// some sticks write it: +CPBR: 1,"+491701234567",,"Anna" or +CPBR: 1,"+491701234567",145,Anna
std::string EntryLine(SimModem& m, int index, const PbEntry& e, bool first = false) {
    using Entry = Knobs::PbEntryForm;
    const Entry form = first ? m.State().knobs.pbEntry : Entry::Normal;
    const std::string name = m.ToTe(e.name);
    return "+CPBR: " + std::to_string(index) + ",\"" + e.number + "\"," +
           (form == Entry::EmptyType ? "" : std::to_string(e.type)) + "," +
           (form == Entry::UnquotedName ? name : "\"" + name + "\"");
}

// AT+CPBS="SM";  AT+CPBS? -> +CPBS: "SM",3,250
AtReply Cpbs(SimModem& m, const AtCommand& cmd) {
    switch (cmd.form) {
    case Form::Test:
        return AtReply::Line("+CPBS: (\"SM\",\"ME\")");
    case Form::Query: {
        const Phonebook& pb = Current(m);
        return AtReply::Line("+CPBS: \"" + m.State().phonebook + "\"," + std::to_string(pb.entries.size()) +
                             "," + std::to_string(pb.capacity));
    }
    case Form::Set: {
        std::string name = ToUpper(cmd.Str(0));
        if (!m.State().phonebooks.count(name)) {
            return AtReply::Cme(cme::kNotSupported);
        }
        m.State().phonebook = name;
        return AtReply::Ok();
    }
    case Form::Action:
        return AtReply::Error();
    }
    return AtReply::Error();
}

// AT+CPBR=? -> +CPBR: (1-250),40,14;  AT+CPBR=1,250 -> +CPBR: 1,"+491701234567",145,"0041006E006E0061"
AtReply Cpbr(SimModem& m, const AtCommand& cmd) {
    Phonebook& pb = Current(m);
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CPBR: (1-" + std::to_string(pb.capacity) + ")," +
                             std::to_string(pb.numberLength) + "," + std::to_string(pb.nameLength));
    }
    int first = 0;
    if (cmd.form != Form::Set || !cmd.Int(0, first)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    int last = first;
    if (cmd.Has(1) && !cmd.Int(1, last)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if (first < 1 || first > pb.capacity || last < first) {
        return AtReply::Cme(cme::kInvalidIndex);
    }
    AtReply r;
    for (auto it = pb.entries.lower_bound(first); it != pb.entries.end() && it->first <= last; ++it) {
        r.lines.push_back(EntryLine(m, it->first, it->second, r.lines.empty()));
    }
    if (r.lines.empty()) {
        return AtReply::Cme(cme::kNotFound);
    }
    return r;
}

// AT+CPBF="An" -> the entries whose name starts with the text.
AtReply Cpbf(SimModem& m, const AtCommand& cmd) {
    Phonebook& pb = Current(m);
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CPBF: " + std::to_string(pb.numberLength) + "," +
                             std::to_string(pb.nameLength));
    }
    std::string find;
    if (cmd.form != Form::Set || !m.FromTe(cmd.Str(0), &find)) {
        return AtReply::Cme(cme::kInvalidText);
    }
    AtReply r;
    for (const auto& [index, e] : pb.entries) {
        if (e.name.compare(0, find.size(), find) == 0) {
            std::string line = EntryLine(m, index, e);
            r.lines.push_back("+CPBF:" + line.substr(6));
        }
    }
    if (r.lines.empty()) {
        return AtReply::Cme(cme::kNotFound);
    }
    return r;
}

// AT+CPBW=3,"+4917012345",145,"0041006E006E0061" writes; AT+CPBW=3 deletes; AT+CPBW=,"..." takes a free
// index.
AtReply Cpbw(SimModem& m, const AtCommand& cmd) {
    Phonebook& pb = Current(m);
    if (cmd.form == Form::Test) {
        return AtReply::Line("+CPBW: (1-" + std::to_string(pb.capacity) + ")," +
                             std::to_string(pb.numberLength) + ",(129,145)," + std::to_string(pb.nameLength));
    }
    if (cmd.form != Form::Set || cmd.args.empty()) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    int index = 0;
    if (cmd.Has(0)) {
        if (!cmd.Int(0, index)) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        if (index < 1 || index > pb.capacity) {
            return AtReply::Cme(cme::kInvalidIndex);
        }
    }
    if (cmd.args.size() == 1) {
        if (index == 0) {
            return AtReply::Cme(cme::kIncorrectParameters);
        }
        pb.entries.erase(index);
        return AtReply::Ok();
    }
    std::string number = cmd.Str(1);
    if (!ValidDialString(number)) {
        return AtReply::Cme(cme::kInvalidDial);
    }
    int type = number.empty() || number[0] != '+' ? 129 : 145;
    if (cmd.Has(2) && (!cmd.Int(2, type) || type < 128 || type > 255)) {
        return AtReply::Cme(cme::kIncorrectParameters);
    }
    if ((type & 0x70) == 0x10 && !number.empty() && number[0] != '+') {
        number.insert(0, "+");
    }
    size_t digits = number.size() - (!number.empty() && number[0] == '+' ? 1 : 0);
    if (static_cast<int>(digits) > pb.numberLength) {
        return AtReply::Cme(cme::kDialTooLong);
    }
    std::string name;
    if (!m.FromTe(cmd.Str(3), &name)) {
        return AtReply::Cme(cme::kInvalidText);
    }
    if (static_cast<int>(Utf8ToUtf32(name).size()) > pb.nameLength) {
        return AtReply::Cme(cme::kTextTooLong);
    }
    if (index == 0) {
        for (int i = 1; i <= pb.capacity && index == 0; ++i) {
            if (!pb.entries.count(i)) {
                index = i;
            }
        }
        if (index == 0) {
            return AtReply::Cme(cme::kMemoryFull);
        }
    }
    pb.entries[index] = PbEntry{number, type, name};
    return AtReply::Ok();
}

} // namespace

bool ValidDialString(const std::string& number) {
    for (size_t i = 0; i < number.size(); ++i) {
        char c = number[i];
        bool ok = (c >= '0' && c <= '9') || c == '*' || c == '#' || c == 'P' || c == 'W' || c == 'p' ||
                  c == 'w' || (c >= 'A' && c <= 'D') || (c == '+' && i == 0);
        if (!ok) {
            return false;
        }
    }
    return true;
}

void RegisterPhonebookCommands(CommandTable& table) {
    table["+CPBS"] = {Cpbs, SimNeed::Ready};
    table["+CPBR"] = {Cpbr, SimNeed::Ready};
    table["+CPBF"] = {Cpbf, SimNeed::Ready};
    table["+CPBW"] = {Cpbw, SimNeed::Ready};
}

} // namespace modemsim
