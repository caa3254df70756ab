#include "LocalizedStrings.h"

#include <QHash>

namespace {

// English for now; other languages replace this table.
const QHash<QString, QString>& table() {
    static const QHash<QString, QString> texts{
        {QStringLiteral("IDS_AVAILABLE"), QStringLiteral("Available")},
        {QStringLiteral("IDS_CURRENT"), QStringLiteral("Current")},
        {QStringLiteral("IDS_FORBIDDEN"), QStringLiteral("Forbidden")},
    };
    return texts;
}

} // namespace

QString LocalizedStrings::text(const QString& key) {
    return table().value(key, key);
}
