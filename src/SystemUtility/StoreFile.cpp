#include "StoreFile.h"

#include "CNSLog.h"
#include "PropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <fcntl.h>
#include <unistd.h>

namespace {

StoreFile::FaultHook& faultHook() {
    static StoreFile::FaultHook hook;
    return hook;
}

} // namespace

bool StoreFile::syncFolder(const QString& folder) {
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

bool StoreFile::write(const QString& path, const QVariant& root) {
    const QFileInfo info(path);
    if (!passes(QStringLiteral("write ") + info.fileName()))
        return false;
    // QSaveFile syncs the file's data before the rename; the folder holds the rename.
    if (!PropertyList::write(path, root) || !syncFolder(info.absolutePath())) {
        CNSLOG(2, "writing %s failed", info.fileName().toUtf8().constData());
        return false;
    }
    // What an earlier killed write left is older than this content (the message stores have merged it).
    recoverLeftovers(path, {}, {});
    return passes(QStringLiteral("written ") + info.fileName());
}

bool StoreFile::recoverLeftovers(const QString& path, const Merge& merge,
                                 const std::function<bool()>& writeBack) {
    const QFileInfo store(path);
    const QRegularExpression leftoverName(
        QStringLiteral("^%1\\.[A-Za-z0-9]{6}$").arg(QRegularExpression::escape(store.fileName())));
    QStringList leftovers;
    int merged = 0;
    for (const QFileInfo& leftover : store.absoluteDir().entryInfoList(
             {store.fileName() + QStringLiteral(".*")}, QDir::Files | QDir::Hidden | QDir::System)) {
        if (!leftoverName.match(leftover.fileName()).hasMatch())
            continue;
        leftovers << leftover.filePath();
        const bool newer = !store.exists() || leftover.lastModified() >= store.lastModified();
        const QVariant content = newer && merge ? PropertyList::read(leftover.filePath()) : QVariant();
        if (content.isValid()) {
            merge(content);
            ++merged;
        }
    }
    if (merged > 0 && !writeBack())
        return false;
    for (const QString& leftover : leftovers) {
        if (QFile::remove(leftover))
            CNSLOG(2, "removed %s, left by an interrupted write (%d merged)", leftover.toUtf8().constData(),
                   merged);
    }
    return true;
}

void StoreFile::setFaultHook(FaultHook hook) {
    faultHook() = std::move(hook);
}

bool StoreFile::passes(const QString& step) {
    return !faultHook() || faultHook()(step);
}
