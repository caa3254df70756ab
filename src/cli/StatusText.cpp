#include "StatusText.h"

#include <array>

namespace {

template <std::size_t N> std::string Lookup(const std::array<const char*, N>& texts, int code) {
    if (code >= 0 && static_cast<std::size_t>(code) < N && texts[static_cast<std::size_t>(code)][0])
        return texts[static_cast<std::size_t>(code)];
    return "unknown (" + std::to_string(code) + ")";
}

} // namespace

std::string PinStateText(int state) {
    static constexpr std::array<const char*, 18> texts{"no SIM",
                                                       "ready",
                                                       "PIN required",
                                                       "PUK required",
                                                       "PH-SIM PIN required",
                                                       "PH-FSIM PIN required",
                                                       "PH-FSIM PUK required",
                                                       "PIN2 required",
                                                       "PUK2 required",
                                                       "network PIN required",
                                                       "network PUK required",
                                                       "network subset PIN required",
                                                       "network subset PUK required",
                                                       "provider PIN required",
                                                       "provider PUK required",
                                                       "corporate PIN required",
                                                       "corporate PUK required",
                                                       "blocked"};
    return Lookup(texts, state);
}

std::string ServiceStateText(int state) {
    static constexpr std::array<const char*, 5> texts{"home network", "roaming", "searching",
                                                      "not registered", "unknown"};
    return Lookup(texts, state);
}

std::string RegistrationText(int state) {
    static constexpr std::array<const char*, 6> texts{"not registered", "searching", "denied",
                                                      "home network",   "roaming",   "unknown"};
    return Lookup(texts, state);
}

std::string BearerText(int bearer) {
    static constexpr std::array<const char*, 9> texts{"no service", "GPRS",  "EDGE", "UMTS",   "HSDPA",
                                                      "HSPA",       "HSUPA", "GSM",  "unknown"};
    return Lookup(texts, bearer);
}

std::string AccessTechnologyText(int act) {
    static constexpr std::array<const char*, 8> texts{"GSM",         "GSM compact", "UTRAN",      "GSM/EGPRS",
                                                      "UTRAN/HSDPA", "UTRAN/HSUPA", "UTRAN/HSPA", "E-UTRAN"};
    return Lookup(texts, act);
}

std::string ConnectStatusText(int status) {
    static constexpr std::array<const char*, 4> texts{"disconnected", "connecting", "connected",
                                                      "disconnecting"};
    return status == -1 ? "not connected" : Lookup(texts, status);
}

std::string SignalText(int level) {
    if (level < 0 || level > 5)
        return "unknown";
    return std::string(static_cast<std::size_t>(level), '#') +
           std::string(static_cast<std::size_t>(5 - level), '.') + " (" + std::to_string(level) + "/5)";
}
