#include "UserDefaults.h"

#include "DamagedFile.h"
#include "PrivateFile.h"
#include "UserDataFolder.h"

namespace {

QSettings settings() {
    const QString path = UserDefaults::filePath();
    DamagedFile::checkSettingsFile(path);
    return QSettings(path, QSettings::IniFormat);
}

} // namespace

QString UserDefaults::filePath() {
    return UserDataFolder::configPath() + QStringLiteral("/defaults.ini");
}

QVariant UserDefaults::value(const QString& key, const QVariant& fallback) {
    return settings().value(key, fallback);
}

bool UserDefaults::setValue(const QString& key, const QVariant& value) {
    QSettings store = settings();
    store.setValue(key, value);
    store.sync();
    PrivateFile::restrict(store.fileName());
    return store.status() == QSettings::NoError;
}
