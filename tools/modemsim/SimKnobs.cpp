#include "SimKnobs.h"

#include <functional>
#include <vector>

#include "SimCommand.h"

namespace modemsim {

namespace {

struct ChoiceKnob {
    const char* key;
    std::vector<const char*> values;
    std::function<void(SimState&, size_t, const std::string&)> apply; // index into values, and the value
};

const std::vector<ChoiceKnob>& ChoiceKnobs() {
    static const std::vector<ChoiceKnob> knobs = {
        {"dialect",
         {"vel", "standard"},
         [](SimState& s, size_t i, const std::string&) {
             s.dialect = i == 0 ? Dialect::Vel : Dialect::Standard;
         }},
        {"urc_mode",
         {"poll", "immediate", "mixed", "ahead"},
         [](SimState& s, size_t i, const std::string&) { s.knobs.urcMode = static_cast<UrcMode>(i); }},
        {"unsupported_answer",
         {"ERROR", "COMMAND NOT SUPPORT", "TOO MANY PARAMETERS", "+CME ERROR"},
         [](SimState& s, size_t, const std::string& value) { s.knobs.unsupportedAnswer = value; }},
        {"ussd_format",
         {"hex", "packed", "text", "no_dcs", "ucs2_lang"},
         [](SimState& s, size_t i, const std::string&) {
             s.ussd.packedGsm = i == 1;
             static const Ussd::Form forms[] = {Ussd::Form::Hex, Ussd::Form::Hex, Ussd::Form::Text,
                                                Ussd::Form::NoDcs, Ussd::Form::Ucs2Lang};
             s.ussd.form = forms[i];
         }},
        {"scan_format",
         {"full", "no_short_name", "ucs2"},
         [](SimState& s, size_t i, const std::string&) { s.knobs.scan = static_cast<Knobs::Scan>(i); }},
        {"cpbr_entry",
         {"normal", "empty_type", "unquoted_name"},
         [](SimState& s, size_t i, const std::string&) {
             s.knobs.pbEntry = static_cast<Knobs::PbEntryForm>(i);
         }},
    };
    return knobs;
}

const ChoiceKnob* Find(const std::string& key) {
    for (const ChoiceKnob& k : ChoiceKnobs()) {
        if (key == k.key) {
            return &k;
        }
    }
    return nullptr;
}

} // namespace

bool IsChoiceKnob(const std::string& key) {
    return Find(key) != nullptr;
}

bool SetChoiceKnob(SimState& state, const std::string& key, const std::string& value, std::string& error) {
    const ChoiceKnob* knob = Find(key);
    if (!knob) {
        error = "unknown setting " + key;
        return false;
    }
    std::string allowed;
    for (size_t i = 0; i < knob->values.size(); ++i) {
        if (value == knob->values[i]) {
            knob->apply(state, i, value);
            return true;
        }
        allowed += std::string(i == 0 ? "" : i + 1 == knob->values.size() ? " or " : ", ") + knob->values[i];
    }
    error = key + " must be " + allowed;
    return false;
}

bool SetRefusedCommands(Knobs& knobs, const std::string& list, std::string& error) {
    std::set<std::string> names;
    size_t start = 0;
    while (start < list.size()) {
        size_t end = list.find(',', start);
        std::string name =
            ToUpper(list.substr(start, end == std::string::npos ? std::string::npos : end - start));
        while (!name.empty() && name.front() == ' ') {
            name.erase(0, 1);
        }
        while (!name.empty() && name.back() == ' ') {
            name.pop_back();
        }
        if (name.size() < 2 || name.size() > 16 || (name[0] != '+' && name[0] != '$')) {
            error = "refuse takes command names such as +CSCB,+CMMS";
            return false;
        }
        names.insert(name);
        start = end == std::string::npos ? list.size() : end + 1;
    }
    knobs.refuse = std::move(names);
    return true;
}

} // namespace modemsim
