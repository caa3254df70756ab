#include "ServiceSettings.h"

#include "DamagedFile.h"
#include "PrivateFile.h"
#include "UserDataFolder.h"

namespace ServiceSettings {

QString path() {
    return UserDataFolder::configPath() + QStringLiteral("/dialtoned.ini");
}

std::unique_ptr<QSettings> open() {
    const QString file = path();
    DamagedFile::checkSettingsFile(file);
    return std::make_unique<QSettings>(file, QSettings::IniFormat);
}

void save(const QString& key, const QVariant& value) {
    const std::unique_ptr<QSettings> settings = open();
    settings->setValue(key, value);
    settings->sync();
    PrivateFile::restrict(settings->fileName());
}

} // namespace ServiceSettings
