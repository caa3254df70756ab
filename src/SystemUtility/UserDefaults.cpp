#include "UserDefaults.h"

#include <QDir>
#include <QStandardPaths>

namespace {

QSettings settings() {
    return QSettings(UserDefaults::filePath(), QSettings::IniFormat);
}

} // namespace

QString UserDefaults::filePath() {
    const QString folder =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/dialtone");
    QDir().mkpath(folder);
    return folder + QStringLiteral("/defaults.ini");
}

QVariant UserDefaults::value(const QString& key, const QVariant& fallback) {
    return settings().value(key, fallback);
}

bool UserDefaults::setValue(const QString& key, const QVariant& value) {
    QSettings store = settings();
    store.setValue(key, value);
    store.sync();
    return store.status() == QSettings::NoError;
}
