#include "LocalizedStrings.h"

#include <QHash>

namespace {

// English for now; other languages replace this table.
const QHash<QString, QString>& table() {
    static const QHash<QString, QString> texts{
        {QStringLiteral("IDS_AVAILABLE"), QStringLiteral("Available")},
        {QStringLiteral("IDS_CURRENT"), QStringLiteral("Current")},
        {QStringLiteral("IDS_FORBIDDEN"), QStringLiteral("Forbidden")},
        {QStringLiteral("IDS_CONNECT"), QStringLiteral("Connect")},
        {QStringLiteral("IDS_DISCONNECT"), QStringLiteral("Disconnect")},
        {QStringLiteral("IDS_COMMON_WARNING"), QStringLiteral("Warning")},
        {QStringLiteral("IDS_COMMON_OK"), QStringLiteral("OK")},
        {QStringLiteral("IDS_DIALUP_CANTFIND"),
         QStringLiteral("There is no connection profile to dial. Add one in Settings, Profiles.")},
    };
    return texts;
}

} // namespace

QString LocalizedStrings::text(const QString& key) {
    return table().value(key, key);
}
