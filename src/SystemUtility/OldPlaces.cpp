#include "OldPlaces.h"

#include "PrivateFile.h"
#include "StoreFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>

#include <climits>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<bool> g_alwaysCopy{false};

const QString kStaging = QStringLiteral(".migrating");
const QString kDoneMarker = QStringLiteral(".moved-from-old-places");

QByteArray native(const QString& path) {
    return QFile::encodeName(path);
}

bool present(const QString& path) {
    struct stat info {};
    return ::lstat(native(path).constData(), &info) == 0;
}

bool isConfigFile(const QString& name) {
    for (const char* config : {"SystemConfig.plist", "OPENLOG", "dialtoned.ini", "dialtone-cli.ini"}) {
        const QString base = QString::fromLatin1(config);
        if (name == base || name.startsWith(base + '.')) {
            return true;
        }
    }
    return false;
}

// What a symbolic link says, as written (relative links stay relative); empty for anything else.
QByteArray linkText(const QString& path) {
    QByteArray text(PATH_MAX, '\0');
    const ssize_t length =
        ::readlink(native(path).constData(), text.data(), static_cast<size_t>(text.size()));
    text.truncate(length > 0 ? length : 0);
    return text;
}

// 0 or the errno of the failed step. File systems without RENAME_NOREPLACE get a plain rename: the
// target was checked under the lock.
int renameNoReplace(const QString& from, const QString& to) {
    const QByteArray source = native(from);
    const QByteArray target = native(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    return errno == EINVAL && ::rename(source.constData(), target.constData()) == 0 ? 0 : errno;
}

// Copies a file (or a symbolic link as a link) with its modification time, synced; 0 or an errno.
int copyFile(const QString& from, const QString& to) {
    struct stat info {};
    ::unlink(native(to).constData());
    if (::lstat(native(from).constData(), &info) != 0) {
        return errno;
    }
    if (S_ISLNK(info.st_mode)) {
        return ::symlink(linkText(from).constData(), native(to).constData()) == 0 ? 0 : errno;
    }
    if (!S_ISREG(info.st_mode)) {
        return EINVAL; // a pipe or a device: reading it could block or never end
    }
    const int in = ::open(native(from).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (in < 0) {
        return errno;
    }
    const int out = ::open(native(to).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    int error = out < 0 ? errno : 0;
    for (off_t done = 0; error == 0 && done < info.st_size;) {
        const ssize_t sent = ::sendfile(out, in, &done, static_cast<size_t>(info.st_size - done));
        error = sent < 0 ? errno : sent == 0 ? EIO : 0;
    }
    const timespec times[2] = {info.st_atim, info.st_mtim};
    if (error == 0 && (::futimens(out, times) != 0 || ::fsync(out) != 0)) {
        error = errno;
    }
    if (out >= 0) {
        ::close(out);
    }
    ::close(in);
    return error;
}

// Moves one file to a free name; 0 or an errno. Across file systems the copy goes through the staging
// folder, and the old file is removed only once the copy is in place and on disk.
int placeFile(const QString& from, const QString& to) {
    const QString folder = QFileInfo(to).absolutePath();
    if (!g_alwaysCopy) {
        const int error = renameNoReplace(from, to);
        if (error != EXDEV) {
            StoreFile::syncFolder(folder);
            return error;
        }
    }
    const QString staging = folder + '/' + kStaging;
    const QString copy = staging + '/' + QFileInfo(to).fileName();
    int error = PrivateFile::makeFolder(staging) ? copyFile(from, copy) : errno;
    if (error == 0) {
        error = renameNoReplace(copy, to);
    }
    if (error != 0) {
        ::unlink(native(copy).constData());
        return error;
    }
    StoreFile::syncFolder(folder);
    ::unlink(native(from).constData());
    return 0;
}

bool sameContent(const QString& a, const QString& b) {
    const QFileInfo first(a);
    const QFileInfo second(b);
    if (first.isSymLink() || second.isSymLink()) {
        return first.isSymLink() && second.isSymLink() && linkText(a) == linkText(b);
    }
    QFile left(a);
    QFile right(b);
    if (first.size() != second.size() || !left.open(QIODevice::ReadOnly) ||
        !right.open(QIODevice::ReadOnly)) {
        return false;
    }
    while (!left.atEnd()) {
        if (left.read(1 << 16) != right.read(1 << 16)) {
            return false;
        }
    }
    return true;
}

QString freeName(const QString& path) {
    QString name = path + QStringLiteral(".old");
    for (int n = 2; present(name); ++n) {
        name = path + QStringLiteral(".old-%1").arg(n);
    }
    return name;
}

struct Pass {
    QStringList lines;
    bool failed = false;

    // Moves the old folder's files into the folders the route picks by file name.
    void moveFolder(const QString& old, const std::function<QString(const QString&)>& route) {
        const QFileInfo oldInfo(old);
        if (!oldInfo.isDir()) {
            return;
        }
        QFileInfoList entries = QDir(old).entryInfoList(
            QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
        // The tool's older settings file last, so that a "dialtoned.ini" beside it stays the one in use.
        std::stable_partition(entries.begin(), entries.end(), [](const QFileInfo& entry) {
            return entry.fileName() != QLatin1String("dialtone-cli.ini");
        });
        int moved = 0;
        QStringList targets;
        for (const QFileInfo& entry : entries) {
            const QString name = entry.fileName();
            if (entry.isDir() && !entry.isSymLink()) {
                lines
                    << QStringLiteral("%1 is a folder of yours; it stays where it is").arg(entry.filePath());
                continue;
            }
            const QString folder = route(name);
            QString to = folder + '/' +
                         (name == QLatin1String("dialtone-cli.ini") ? QStringLiteral("dialtoned.ini") : name);
            if (!PrivateFile::makeFolder(folder)) {
                lines << QStringLiteral("could not create %1 (%2); %3 stays where it is")
                             .arg(folder, QString::fromLocal8Bit(std::strerror(errno)), entry.filePath());
                failed = true;
                continue;
            }
            if (present(to) && sameContent(entry.filePath(), to)) {
                // The copy of a move cut short is already in place.
                ::unlink(native(entry.filePath()).constData());
            } else {
                if (present(to)) {
                    const QString kept = freeName(to);
                    lines << QStringLiteral("%1 was in both places: %2 stays in use, the old one is now %3")
                                 .arg(name, to, kept);
                    to = kept;
                }
                if (const int error = placeFile(entry.filePath(), to)) {
                    lines << QStringLiteral("could not move %1 to %2 (%3); it stays where it is and is tried "
                                            "again at the next start")
                                 .arg(entry.filePath(), to, QString::fromLocal8Bit(std::strerror(error)));
                    failed = true;
                    continue;
                }
                PrivateFile::restrict(to);
            }
            // A partial copy of an interrupted move has served its purpose.
            ::unlink(native(folder + '/' + kStaging + '/' + QFileInfo(to).fileName()).constData());
            QDir(folder).rmdir(kStaging);
            ++moved;
            if (!targets.contains(folder)) {
                targets << folder;
            }
        }
        if (moved > 0) {
            const QString from = oldInfo.isSymLink()
                                     ? QStringLiteral("%1 (a link to %2)").arg(old, oldInfo.symLinkTarget())
                                     : old;
            const QString files =
                moved == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(moved);
            lines << QStringLiteral("moved %1 from %2 to %3")
                         .arg(files, from, targets.join(QStringLiteral(" and ")));
        }
        QDir().rmdir(old);
    }
};

} // namespace

QStringList OldPlaces::moveAll(const QString& home, const Targets& to) {
    const QString documents = home + QStringLiteral("/Documents/");
    const QString library = home + QStringLiteral("/Library");
    const QString data = documents + QStringLiteral("HSPA Modem User Data");
    const QString device = documents + QStringLiteral("USB Modem User Data");
    const QString logs = library + QStringLiteral("/logs/HSPA_USB_MODEM");
    const QString marker = to.config + '/' + kDoneMarker;
    if (present(marker) || (!present(data) && !present(device) && !present(logs))) {
        return {};
    }
    if (!PrivateFile::makeFolder(to.config)) {
        return {QStringLiteral("could not create %1; the files of %2 were not moved").arg(to.config, data)};
    }
    const int lock = ::open(native(to.config).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock >= 0) {
        ::flock(lock, LOCK_EX);
    }
    Pass pass;
    if (!present(marker)) {
        pass.moveFolder(data, [&](const QString& name) { return isConfigFile(name) ? to.config : to.data; });
        pass.moveFolder(device, [&](const QString&) { return to.data; });
        pass.moveFolder(logs, [&](const QString&) { return to.state; });
        if (!pass.failed) {
            QFile done(marker);
            done.open(QIODevice::WriteOnly);
            PrivateFile::restrict(marker);
            QDir().rmdir(library + QStringLiteral("/logs"));
            QDir().rmdir(library);
        }
    }
    if (lock >= 0) {
        ::close(lock);
    }
    return pass.lines;
}

void OldPlaces::setAlwaysCopy(bool copy) {
    g_alwaysCopy = copy;
}
