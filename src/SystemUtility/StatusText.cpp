#include "StatusText.h"

#include <QCoreApplication>

#include <array>

#include "AppConfig.h"
#include "ApplicationShell.h"

namespace {

// The words are the source texts of the translations: in the user's language once the program has installed
// a translator, which it never does for machine-readable output.
std::string Translated(const char* text, int number = 0) {
    QString translated = QCoreApplication::translate("StatusText", text);
    if (translated.contains(QLatin1String("%1")))
        translated = translated.arg(number);
    return translated.toStdString();
}

template <std::size_t N> std::string Lookup(const std::array<const char*, N>& texts, int code) {
    if (code >= 0 && static_cast<std::size_t>(code) < N && texts[static_cast<std::size_t>(code)][0])
        return Translated(texts[static_cast<std::size_t>(code)]);
    return Translated(QT_TRANSLATE_NOOP("StatusText", "unknown (%1)"), code);
}

} // namespace

std::string PinStateText(int state) {
    static constexpr std::array<const char*, 18> texts{
        QT_TRANSLATE_NOOP("StatusText", "no SIM"),
        QT_TRANSLATE_NOOP("StatusText", "ready"),
        QT_TRANSLATE_NOOP("StatusText", "PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "PUK required"),
        QT_TRANSLATE_NOOP("StatusText", "PH-SIM PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "PH-FSIM PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "PH-FSIM PUK required"),
        QT_TRANSLATE_NOOP("StatusText", "PIN2 required"),
        QT_TRANSLATE_NOOP("StatusText", "PUK2 required"),
        QT_TRANSLATE_NOOP("StatusText", "network PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "network PUK required"),
        QT_TRANSLATE_NOOP("StatusText", "network subset PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "network subset PUK required"),
        QT_TRANSLATE_NOOP("StatusText", "provider PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "provider PUK required"),
        QT_TRANSLATE_NOOP("StatusText", "corporate PIN required"),
        QT_TRANSLATE_NOOP("StatusText", "corporate PUK required"),
        QT_TRANSLATE_NOOP("StatusText", "blocked")};
    return Lookup(texts, state);
}

std::string ServiceStateText(int state) {
    static constexpr std::array<const char*, 5> texts{
        QT_TRANSLATE_NOOP("StatusText", "home network"), QT_TRANSLATE_NOOP("StatusText", "roaming"),
        QT_TRANSLATE_NOOP("StatusText", "searching"), QT_TRANSLATE_NOOP("StatusText", "not registered"),
        QT_TRANSLATE_NOOP("StatusText", "unknown")};
    return Lookup(texts, state);
}

std::string RegistrationText(int state) {
    static constexpr std::array<const char*, 6> texts{
        QT_TRANSLATE_NOOP("StatusText", "not registered"), QT_TRANSLATE_NOOP("StatusText", "searching"),
        QT_TRANSLATE_NOOP("StatusText", "denied"),         QT_TRANSLATE_NOOP("StatusText", "home network"),
        QT_TRANSLATE_NOOP("StatusText", "roaming"),        QT_TRANSLATE_NOOP("StatusText", "unknown")};
    return Lookup(texts, state);
}

std::string BearerText(int bearer) {
    static constexpr std::array<const char*, 9> texts{QT_TRANSLATE_NOOP("StatusText", "no service"),
                                                      "GPRS",
                                                      "EDGE",
                                                      "UMTS",
                                                      "HSDPA",
                                                      "HSPA",
                                                      "HSUPA",
                                                      "GSM",
                                                      QT_TRANSLATE_NOOP("StatusText", "unknown")};
    return Lookup(texts, bearer);
}

std::string AttemptsText(int count) {
    return count < 0 ? Translated(QT_TRANSLATE_NOOP("StatusText", "unknown")) : std::to_string(count);
}

std::string AccessTechnologyText(int act) {
    static constexpr std::array<const char*, 8> texts{"GSM",         "GSM compact", "UTRAN",      "GSM/EGPRS",
                                                      "UTRAN/HSDPA", "UTRAN/HSUPA", "UTRAN/HSPA", "E-UTRAN"};
    return Lookup(texts, act);
}

std::string ConnectStatusText(int status) {
    static constexpr std::array<const char*, 4> texts{
        QT_TRANSLATE_NOOP("StatusText", "disconnected"), QT_TRANSLATE_NOOP("StatusText", "connecting"),
        QT_TRANSLATE_NOOP("StatusText", "connected"), QT_TRANSLATE_NOOP("StatusText", "disconnecting")};
    return status == -1 ? Translated(QT_TRANSLATE_NOOP("StatusText", "not connected"))
                        : Lookup(texts, status);
}

std::string SignalText(int level) {
    if (level < 0 || level > 5)
        return Translated(QT_TRANSLATE_NOOP("StatusText", "unknown"));
    return std::string(static_cast<std::size_t>(level), '#') +
           std::string(static_cast<std::size_t>(5 - level), '.') + " (" + std::to_string(level) + "/5)";
}

std::string ResultCodeText(int code) {
    switch (code) {
    case 0:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "success"));
    case 1:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem reported a failure"));
    case 2:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem did not answer in time"));
    case 3:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the request needs an argument"));
    case 5:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "PH-SIM PIN required"));
    case 6:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "PH-FSIM PIN required"));
    case 7:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "PH-FSIM PUK required"));
    case 8:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM not inserted"));
    case 9:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM PIN required"));
    case 10:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM PUK required"));
    case 11:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM failure"));
    case 12:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM busy"));
    case 13:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM wrong"));
    case 14:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "incorrect password"));
    case 15:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM PIN2 required"));
    case 16:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "SIM PUK2 required"));
    case 17:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "network personalization PIN required"));
    case 18:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "network personalization PUK required"));
    case 19:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "network subset personalization PIN required"));
    case 20:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "network subset personalization PUK required"));
    case 21:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "service provider personalization PIN required"));
    case 22:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "service provider personalization PUK required"));
    case 23:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "corporate personalization PIN required"));
    case 24:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "corporate personalization PUK required"));
    case 25:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the answer was withheld"));
    case 27:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "no modem found"));
    case 28:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem's port could not be opened"));
    case 30:
        return Translated(QT_TRANSLATE_NOOP(
            "StatusText", "the command was cancelled, or the modem could not be switched to modem mode"));
    case 31:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem did not answer its start-up commands"));
    case 32:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "no worker to send the request to"));
    case 33:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem refused the network mode"));
    case 35:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "unknown request name"));
    case 36:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "unknown report"));
    case 37:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem service was not found"));
    case 38:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "no modem device name"));
    case 39:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "no modem device"));
    case 44:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the message was taken by a filter"));
    case 45:
        return Translated(
            QT_TRANSLATE_NOOP("StatusText", "the request's argument was refused before reaching the modem"));
    case 46:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "not supported by this modem"));
    default:
        return Translated(QT_TRANSLATE_NOOP("StatusText", "the modem reported error %1"), code);
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
