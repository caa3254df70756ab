#include "ScriptVocabulary.h"

#include <array>
#include <cstddef>

namespace {

template <std::size_t N> std::string Word(const std::array<const char*, N>& words, int code) {
    if (code >= 0 && static_cast<std::size_t>(code) < N && words[static_cast<std::size_t>(code)][0])
        return words[static_cast<std::size_t>(code)];
    return "unknown";
}

} // namespace

std::string RegistrationName(int state) {
    static constexpr std::array<const char*, 5> words{"not-registered", "searching", "denied", "home",
                                                      "roaming"};
    return Word(words, state);
}

nlohmann::json RegistrationCode(int state) {
    // The worker orders the states its own way; scripts get the standard's numbers.
    static constexpr std::array<int, 6> stat{0, 2, 3, 1, 5, 4};
    if (state < 0 || static_cast<std::size_t>(state) >= stat.size())
        return nullptr;
    return stat[static_cast<std::size_t>(state)];
}

std::string ServiceName(int state) {
    static constexpr std::array<const char*, 4> words{"home", "roaming", "searching", "not-registered"};
    return Word(words, state);
}

std::string SimName(int state) {
    static constexpr std::array<const char*, 18> words{"absent",
                                                       "ready",
                                                       "pin-required",
                                                       "puk-required",
                                                       "ph-sim-pin-required",
                                                       "ph-fsim-pin-required",
                                                       "ph-fsim-puk-required",
                                                       "pin2-required",
                                                       "puk2-required",
                                                       "network-pin-required",
                                                       "network-puk-required",
                                                       "network-subset-pin-required",
                                                       "network-subset-puk-required",
                                                       "provider-pin-required",
                                                       "provider-puk-required",
                                                       "corporate-pin-required",
                                                       "corporate-puk-required",
                                                       "blocked"};
    return Word(words, state);
}

std::string ConnectionName(int state) {
    static constexpr std::array<const char*, 4> words{"disconnected", "connecting", "connected",
                                                      "disconnecting"};
    // -1: no connection was ever started.
    return state == -1 ? "disconnected" : Word(words, state);
}

std::string TechnologyName(int act) {
    static constexpr std::array<const char*, 8> words{"gsm",   "gsm-compact", "umts", "edge",
                                                      "hsdpa", "hsupa",       "hspa", "lte"};
    return Word(words, act);
}

std::string BearerName(int bearer) {
    static constexpr std::array<const char*, 8> words{"none",  "gprs", "edge",  "umts",
                                                      "hsdpa", "hspa", "hsupa", "gsm"};
    return Word(words, bearer);
}

std::string OperatorStatusName(int status) {
    static constexpr std::array<const char*, 4> words{"unknown", "available", "current", "forbidden"};
    return Word(words, status);
}

