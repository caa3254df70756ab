#include "RadioNames.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "NetworkRecords.h"

namespace {

struct Named {
    const char* name; // as typed
    const char* text; // as shown
    int value;
};

// The bits of the modem's "AT+SYSSEL" band mask; GSM 900 is its primary and extended band together.
constexpr Named kBands[] = {
    {"gsm850", "GSM 850", 0x00080000},     {"gsm900", "GSM 900", 0x00000300},
    {"gsm1800", "GSM 1800", 0x00000080},   {"gsm1900", "GSM 1900", 0x00200000},
    {"umts850", "UMTS 850", 0x04000000},   {"umts1900", "UMTS 1900", 0x00800000},
    {"umts2100", "UMTS 2100", 0x00400000},
};
constexpr int kAllBands = static_cast<int>(NetworkBand::Any);

constexpr Named kModes[] = {
    {"auto", "auto", static_cast<int>(NetworkMode::Automatic)},
    {"2g-only", "2g-only", static_cast<int>(NetworkMode::Only2G)},
    {"3g-only", "3g-only", static_cast<int>(NetworkMode::Only3G)},
    {"2g-preferred", "2g-preferred", static_cast<int>(NetworkMode::Prefer2G)},
    {"3g-preferred", "3g-preferred", static_cast<int>(NetworkMode::Prefer3G)},
};

std::string Folded(const std::string& text) {
    std::string folded;
    for (const char c : text) {
        if (c != ' ' && c != '_')
            folded.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
    return folded;
}

std::optional<int> Number(const std::string& text, int max) {
    if (text.empty() || !std::isdigit(static_cast<unsigned char>(text[0])))
        return std::nullopt;
    char* end = nullptr;
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const long value = std::strtol(text.c_str(), &end, hex ? 16 : 10);
    if (*end != '\0' || value < 0 || value > max)
        return std::nullopt;
    return static_cast<int>(value);
}

template <std::size_t N> std::string NameList(const Named (&table)[N]) {
    std::string list;
    for (const Named& entry : table)
        list += (list.empty() ? "" : ", ") + std::string(entry.name);
    return list;
}

} // namespace

std::string BandText(int mask) {
    if (mask == kAllBands)
        return "all";
    std::string text;
    int rest = mask;
    for (const Named& band : kBands) {
        if ((mask & band.value) == band.value) {
            text += (text.empty() ? "" : ", ") + std::string(band.text);
            rest &= ~band.value;
        }
    }
    if (rest != 0 || text.empty()) {
        char hex[16];
        std::snprintf(hex, sizeof(hex), "0x%x", static_cast<unsigned>(rest));
        text += (text.empty() ? "" : ", ") + std::string(hex);
    }
    return text;
}

std::optional<int> ParseBand(const std::string& text, std::string& error) {
    if (const std::optional<int> number = Number(text, kAllBands))
        return number;
    const std::string folded = Folded(text);
    if (folded == "all" || folded == "any")
        return kAllBands;
    int mask = 0;
    std::size_t at = 0;
    while (at <= folded.size()) {
        std::size_t end = folded.find(',', at);
        if (end == std::string::npos)
            end = folded.size();
        const std::string name = folded.substr(at, end - at);
        const Named* found = nullptr;
        for (const Named& band : kBands) {
            if (name == band.name)
                found = &band;
        }
        if (found == nullptr) {
            error = "unknown band '" + name + "': use all, or one or more of " + NameList(kBands) +
                    " separated by commas";
            return std::nullopt;
        }
        mask |= found->value;
        at = end + 1;
    }
    return mask;
}

std::string ModeText(int mode) {
    for (const Named& entry : kModes) {
        if (entry.value == mode)
            return entry.text;
    }
    return "mode " + std::to_string(mode);
}

std::optional<int> ParseMode(const std::string& text, std::string& error) {
    const int last = static_cast<int>(std::size(kModes)) - 1;
    if (const std::optional<int> number = Number(text, last))
        return number;
    const std::string folded = Folded(text);
    for (const Named& entry : kModes) {
        if (folded == entry.name)
            return entry.value;
    }
    error = "unknown mode '" + text + "': use one of " + NameList(kModes);
    return std::nullopt;
}

std::vector<std::string> BandNames() {
    std::vector<std::string> names{"all"};
    for (const Named& band : kBands)
        names.emplace_back(band.name);
    return names;
}

std::vector<std::string> ModeNames() {
    std::vector<std::string> names;
    for (const Named& entry : kModes)
        names.emplace_back(entry.name);
    return names;
}
