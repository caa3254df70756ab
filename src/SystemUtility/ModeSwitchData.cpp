#include "ModeSwitchData.h"

#include "ChildProcess.h"

#include <QDir>
#include <QTemporaryDir>

QString ModeSwitchData::packPath() {
    const QString path = qEnvironmentVariable("DIALTONE_MODESWITCH_DATA");
    return path.isEmpty() ? QStringLiteral("/usr/share/usb_modeswitch/configPack.tar.gz") : path;
}

QString ModeSwitchData::extractConfig(UsbId storageId, const QTemporaryDir& folder) {
    if (!folder.isValid() || !QFileInfo::exists(packPath())) {
        return {};
    }
    const QString id = storageId.text();
    // tar fails when nothing matches; what it unpacked is what counts.
    ChildProcess::run(QStringLiteral("tar"),
                      {QStringLiteral("-xzf"), packPath(), QStringLiteral("-C"), folder.path(),
                       QStringLiteral("--wildcards"), QStringLiteral("--no-anchored"), id,
                       id + QStringLiteral(":*")},
                      30000);
    const QStringList names = QDir(folder.path()).entryList(QDir::Files, QDir::Name);
    // The plain "vvvv:pppp" file before variants that also match the maker's name.
    if (names.contains(id)) {
        return folder.filePath(id);
    }
    return names.isEmpty() ? QString() : folder.filePath(names.first());
}

bool ModeSwitchData::hasConfig(UsbId storageId) {
    const QTemporaryDir folder;
    return !extractConfig(storageId, folder).isNull();
}
