#include "LocalizedStrings.h"

#include <QCoreApplication>

namespace {

struct Entry {
    const char* key;
    const char* source; // English, and the source text the translations are looked up by
};

// clang-format off
constexpr Entry kTexts[] = {
    {"IDS_AVAILABLE", QT_TRANSLATE_NOOP("LocalizedStrings", "Available")},
    {"IDS_CURRENT", QT_TRANSLATE_NOOP("LocalizedStrings", "Current")},
    {"IDS_FORBIDDEN", QT_TRANSLATE_NOOP("LocalizedStrings", "Forbidden")},
    {"IDS_CONNECT", QT_TRANSLATE_NOOP("LocalizedStrings", "Connect")},
    {"IDS_DISCONNECT", QT_TRANSLATE_NOOP("LocalizedStrings", "Disconnect")},
    {"IDS_COMMON_WARNING", QT_TRANSLATE_NOOP("LocalizedStrings", "Warning")},
    {"IDS_COMMON_OK", QT_TRANSLATE_NOOP("LocalizedStrings", "OK")},
    {"IDS_USSD_TIMEOUT", QT_TRANSLATE_NOOP("LocalizedStrings", "The network did not answer in time. Please try again later.")},
    {"IDS_DIALUP_CANTFIND", QT_TRANSLATE_NOOP("LocalizedStrings", "There is no connection profile to dial. Add one in Settings, Profiles.")},
};
// clang-format on

} // namespace

QString LocalizedStrings::text(const QString& key) {
    for (const Entry& entry : kTexts) {
        if (key == QLatin1String(entry.key))
            return QCoreApplication::translate("LocalizedStrings", entry.source);
    }
    return key;
}
