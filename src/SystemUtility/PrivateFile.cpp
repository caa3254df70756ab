#include "PrivateFile.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace {

void closeFolder(const QByteArray& native) {
    struct stat info {};
    if (lstat(native.constData(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid() &&
        (info.st_mode & 077) != 0) {
        chmod(native.constData(), info.st_mode & 0700);
    }
}

} // namespace

bool PrivateFile::makeFolder(const QString& path) {
    const QByteArray native = QFile::encodeName(path);
    // Each missing level from the top down, so that the new ones are 0700 whatever the umask.
    for (qsizetype slash = native.indexOf('/', 1); slash != -1; slash = native.indexOf('/', slash + 1)) {
        const QByteArray level = native.left(slash);
        if (mkdir(level.constData(), 0700) == 0) {
            chmod(level.constData(), 0700);
        }
    }
    if (mkdir(native.constData(), 0700) == 0) {
        chmod(native.constData(), 0700);
    }
    closeFolder(native);
    struct stat info {};
    return stat(native.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool PrivateFile::restrictDescriptor(int fd) {
    struct stat info {};
    if (fd < 0 || fstat(fd, &info) != 0) {
        return false;
    }
    return info.st_uid != geteuid() || (info.st_mode & 07777) == 0600 || fchmod(fd, 0600) == 0;
}

bool PrivateFile::restrict(const QString& path) {
    const QByteArray native = QFile::encodeName(path);
    struct stat info {};
    if (lstat(native.constData(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    return info.st_uid != geteuid() || (info.st_mode & 07777) == 0600 || chmod(native.constData(), 0600) == 0;
}
