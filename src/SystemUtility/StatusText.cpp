#include "StatusText.h"

#include <array>

#include "AppConfig.h"
#include "ApplicationShell.h"

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

std::string AttemptsText(int count) {
    return count < 0 ? "unknown" : std::to_string(count);
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

std::string ResultCodeText(int code) {
    switch (code) {
    case 0:
        return "success";
    case 1:
        return "the modem reported a failure";
    case 2:
        return "the modem did not answer in time";
    case 3:
        return "the request needs an argument";
    case 5:
        return "PH-SIM PIN required";
    case 6:
        return "PH-FSIM PIN required";
    case 7:
        return "PH-FSIM PUK required";
    case 8:
        return "SIM not inserted";
    case 9:
        return "SIM PIN required";
    case 10:
        return "SIM PUK required";
    case 11:
        return "SIM failure";
    case 12:
        return "SIM busy";
    case 13:
        return "SIM wrong";
    case 14:
        return "incorrect password";
    case 15:
        return "SIM PIN2 required";
    case 16:
        return "SIM PUK2 required";
    case 17:
        return "network personalization PIN required";
    case 18:
        return "network personalization PUK required";
    case 19:
        return "network subset personalization PIN required";
    case 20:
        return "network subset personalization PUK required";
    case 21:
        return "service provider personalization PIN required";
    case 22:
        return "service provider personalization PUK required";
    case 23:
        return "corporate personalization PIN required";
    case 24:
        return "corporate personalization PUK required";
    case 25:
        return "the answer was withheld";
    case 27:
        return "no modem found";
    case 28:
        return "the modem's port could not be opened";
    case 30:
        return "the command was cancelled, or the modem could not be switched to modem mode";
    case 31:
        return "the modem did not answer its start-up commands";
    case 32:
        return "no worker to send the request to";
    case 33:
        return "the modem refused the network mode";
    case 35:
        return "unknown request name";
    case 36:
        return "unknown report";
    case 37:
        return "the modem service was not found";
    case 38:
        return "no modem device name";
    case 39:
        return "no modem device";
    case 44:
        return "the message was taken by a filter";
    case 45:
        return "the request's argument was refused before reaching the modem";
    case 46:
        return "not supported by this modem";
    default:
        return "the modem reported error " + std::to_string(code);
    }
}

std::string OperatorText(const QString& operatorCode, const QString& providerName) {
    if (operatorCode.isEmpty())
        return "-";
    QString name = providerName;
    if (name.isEmpty()) {
        if (const AppConfig* config = ApplicationShell::sharedShell().appConfig())
            name = config->getOperatorNameByNumeric(operatorCode);
    }
    if (name.isEmpty() || name == operatorCode)
        return operatorCode.toStdString();
    return (name + QStringLiteral(" (") + operatorCode + QStringLiteral(")")).toStdString();
}
