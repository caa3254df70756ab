#include "XdgPlaces.h"

#include <QDir>

QString XdgPlaces::data() {
    return base("XDG_DATA_HOME", QStringLiteral(".local/share")) + QStringLiteral("/dialtone");
}

QString XdgPlaces::config() {
    return base("XDG_CONFIG_HOME", QStringLiteral(".config")) + QStringLiteral("/dialtone");
}

QString XdgPlaces::state() {
    return base("XDG_STATE_HOME", QStringLiteral(".local/state")) + QStringLiteral("/dialtone");
}

QString XdgPlaces::base(const char* variable, const QString& fallbackUnderHome) {
    const QString value = qEnvironmentVariable(variable);
    if (value.startsWith('/')) {
        return QDir::cleanPath(value);
    }
    return QDir::cleanPath(QDir::homePath() + '/' + fallbackUnderHome);
}
