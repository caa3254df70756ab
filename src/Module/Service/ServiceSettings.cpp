#include "ServiceSettings.h"

#include <QFile>

#include <cstdio>

#include "CNSLog.h"
#include "DamagedFile.h"
#include "PrivateFile.h"
#include "UserDataFolder.h"

namespace ServiceSettings {

QString path() {
    const QString folder = UserDataFolder::configPath();
    const QString file = folder + QStringLiteral("/dialtoned.ini");
    const QString old = folder + QStringLiteral("/dialtone-cli.ini");
    // rename() keeps the old file whole until the new name holds it; a second process finds it moved.
    if (!QFile::exists(file) && QFile::exists(old) && ::rename(QFile::encodeName(old), QFile::encodeName(file)) == 0) {
        std::fprintf(stderr, "dialtone: the tool's settings moved from %s to %s\n", qPrintable(old),
                     qPrintable(file));
        CNSLOG(1, "settings moved from %s to %s", qPrintable(old), qPrintable(file));
        PrivateFile::restrict(file);
    }
    return file;
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
