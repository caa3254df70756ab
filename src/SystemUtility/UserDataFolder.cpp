#include "UserDataFolder.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

QString UserDataFolder::configPath() {
    return documentsPath(QStringLiteral("HSPA Modem User Data"));
}

QString UserDataFolder::devicePath() {
    return documentsPath(QStringLiteral("USB Modem User Data"));
}

QString UserDataFolder::documentsPath(const QString& name) {
    const QString documents = QDir::homePath() + QStringLiteral("/Documents");
    const QString path = QStringLiteral("%1/%2").arg(documents, name);
    // The folder holds profile passwords and the dial options: the owner alone may enter it, also when an
    // older version left it open to others.
    const QByteArray native = QFile::encodeName(path);
    struct stat info {};
    if (lstat(native.constData(), &info) != 0) {
        QDir().mkpath(documents);
        mkdir(native.constData(), 0700);
    } else if (S_ISDIR(info.st_mode) && info.st_uid == geteuid() && (info.st_mode & 077) != 0) {
        chmod(native.constData(), info.st_mode & 0700);
    }
    return path;
}
