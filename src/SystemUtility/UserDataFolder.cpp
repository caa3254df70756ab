#include "UserDataFolder.h"

#include <QDir>

QString UserDataFolder::configPath() {
    return documentsPath(QStringLiteral("HSPA Modem User Data"));
}

QString UserDataFolder::devicePath() {
    return documentsPath(QStringLiteral("USB Modem User Data"));
}

QString UserDataFolder::documentsPath(const QString& name) {
    const QString path = QStringLiteral("%1/Documents/%2").arg(QDir::homePath(), name);
    QDir().mkpath(path);
    return path;
}
