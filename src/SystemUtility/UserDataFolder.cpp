#include "UserDataFolder.h"

#include "PrivateFile.h"

#include <QDir>

QString UserDataFolder::configPath() {
    return documentsPath(QStringLiteral("HSPA Modem User Data"));
}

QString UserDataFolder::devicePath() {
    return documentsPath(QStringLiteral("USB Modem User Data"));
}

QString UserDataFolder::documentsPath(const QString& name) {
    const QString path = QStringLiteral("%1/Documents/%2").arg(QDir::homePath(), name);
    // The folder holds profile passwords and the dial options: the owner alone may enter it, also when an
    // older version left it open to others.
    PrivateFile::makeFolder(path);
    return path;
}
