#include "StoreLock.h"

#include "CNSLog.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

StoreLock::StoreLock(const QString& storePath) {
    const QByteArray lockPath = QFile::encodeName(storePath + QStringLiteral(".lock"));
    _fd = ::open(lockPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (_fd < 0) {
        CNSLOG(2, "cannot open the lock file %s: %s", lockPath.constData(), std::strerror(errno));
        return;
    }
    while (::flock(_fd, LOCK_EX) != 0) {
        if (errno != EINTR) {
            CNSLOG(2, "cannot lock %s: %s", lockPath.constData(), std::strerror(errno));
            ::close(_fd);
            _fd = -1;
            return;
        }
    }
}

StoreLock::~StoreLock() {
    if (_fd >= 0)
        ::close(_fd); // closing the last descriptor releases the lock
}
