#include "DamagedFile.h"

#include "CNSLog.h"
#include "PropertyList.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringDecoder>

#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstring>

namespace {

std::atomic<std::FILE*> g_notices{stderr};

constexpr qint64 kMaxSettingsSize = 1 << 20;
constexpr qint64 kMaxCompareSize = 16 << 20;

bool present(const QFileInfo& info) {
    return info.exists() || info.isSymLink();
}

void notice(const QString& text) {
    std::FILE* stream = g_notices.load();
    if (stream != nullptr) {
        std::fprintf(stream, "%s: %s\n", program_invocation_short_name, qPrintable(text));
        std::fflush(stream);
    }
}

// QSettings writes keys and section names with anything but letters, digits and "-_." escaped as "%XX"
// and "/" as "\\"; spaces are allowed for files edited by hand.
bool settingsName(const QByteArray& name) {
    if (name.isEmpty()) {
        return false;
    }
    for (const char c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && std::strchr("-_.%\\ ", c) == nullptr) {
            return false;
        }
    }
    return true;
}

// A settings line: blank, ";" or "#" comment, "[section]" or "key=value".
bool settingsLine(const QByteArray& raw) {
    const QByteArray line = raw.trimmed();
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) {
        return true;
    }
    if (line.startsWith('[')) {
        return line.endsWith(']') && settingsName(line.mid(1, line.size() - 2).trimmed());
    }
    const qsizetype equals = line.indexOf('=');
    return equals > 0 && settingsName(line.left(equals).trimmed());
}

bool settingsTextIsSound(const QByteArray& bytes) {
    if (bytes.contains('\0')) {
        return false;
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        return false;
    }
    for (const QByteArray& line : bytes.split('\n')) {
        if (!settingsLine(line)) {
            return false;
        }
    }
    return true;
}

// "<path>.damaged-<yyyyMMdd-hhmmss>", with "-2", "-3", ... when that name is taken.
QString keptName(const QString& path) {
    const QString base = path + QStringLiteral(".damaged-") +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QString kept = base;
    for (int n = 2; present(QFileInfo(kept)); ++n) {
        kept = base + QStringLiteral("-%1").arg(n);
    }
    return kept;
}

// A kept copy with the same bytes as the file, or "".
QString keptCopyOf(const QString& path) {
    const QFileInfo info(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxCompareSize) {
        return {};
    }
    const QByteArray bytes = file.read(file.size());
    const QStringList names =
        info.dir().entryList({info.fileName() + QStringLiteral(".damaged-*")}, QDir::Files);
    for (const QString& name : names) {
        QFile copy(info.dir().filePath(name));
        if (copy.size() == bytes.size() && copy.open(QIODevice::ReadOnly) && copy.readAll() == bytes) {
            return copy.fileName();
        }
    }
    return {};
}

} // namespace

void DamagedFile::setNoticeStream(std::FILE* stream) {
    g_notices.store(stream);
}

void DamagedFile::reportWrongEntries(const QString& path, const QString& what, qsizetype count) {
    if (count <= 0) {
        return;
    }
    // The next save writes the good entries only: a copy of the file as it is keeps the others, once.
    QString kept = keptCopyOf(path);
    if (kept.isEmpty()) {
        kept = keptName(path);
        if (!QFile::copy(path, kept)) {
            kept.clear();
        }
    }
    CNSLOG(2, "%s: %lld wrong entries skipped, the file is kept as %s", qPrintable(what),
           static_cast<long long>(count), qPrintable(kept));
    notice(QStringLiteral("%1 holds %2 wrong %3; %4 skipped and the file is kept as %5")
               .arg(path)
               .arg(count)
               .arg(count == 1 ? QStringLiteral("entry") : QStringLiteral("entries"),
                    count == 1 ? QStringLiteral("it is") : QStringLiteral("they are"), kept));
}

QString DamagedFile::keepAside(const QString& path, const QString& what) {
    // A folder, a device or a link to nowhere in the place of our file: written over it would fail later.
    const bool notAFile = !QFileInfo(path).isFile();
    const QString kept = keptName(path);
    const QString problem =
        notAFile ? QStringLiteral("is not a regular file") : QStringLiteral("could not be read");
    if (QFile::rename(path, kept)) {
        CNSLOG(2, "%s %s %s, kept as %s, a new one is started", qPrintable(what), qPrintable(path),
               qPrintable(problem), qPrintable(kept));
        notice(QStringLiteral("%1 %2; it is kept as %3 and defaults are used").arg(path, problem, kept));
        return kept;
    }
    CNSLOG(2, "%s %s %s and could not be kept aside", qPrintable(what), qPrintable(path),
           qPrintable(problem));
    notice(QStringLiteral("%1 %2 and could not be moved aside; defaults are used").arg(path, problem));
    return {};
}

DamagedFile::State DamagedFile::readPropertyList(const QString& path, int rootType, QVariant& content) {
    content = QVariant();
    const QFileInfo info(path);
    if (!present(info)) {
        return State::Absent;
    }
    // Only a regular file is opened: a named pipe in its place would block the read.
    QVariant root = info.isFile() ? PropertyList::read(path) : QVariant();
    if (root.typeId() == rootType) {
        content = std::move(root);
        return State::Good;
    }
    keepAside(path, info.fileName());
    return State::Damaged;
}

QVariantMap DamagedFile::readMap(const QString& path) {
    QVariant content;
    return readPropertyList(path, QMetaType::QVariantMap, content) == State::Good ? content.toMap()
                                                                                  : QVariantMap();
}

QVariantList DamagedFile::readList(const QString& path) {
    QVariant content;
    return readPropertyList(path, QMetaType::QVariantList, content) == State::Good ? content.toList()
                                                                                   : QVariantList();
}

DamagedFile::State DamagedFile::checkSettingsFile(const QString& path) {
    const QFileInfo info(path);
    if (!present(info)) {
        return State::Absent;
    }
    bool sound = false;
    QFile file(path);
    if (info.isFile() && file.open(QIODevice::ReadOnly) && file.size() <= kMaxSettingsSize) {
        sound = settingsTextIsSound(file.read(file.size()));
    }
    file.close();
    if (sound) {
        sound = QSettings(path, QSettings::IniFormat).status() == QSettings::NoError;
    }
    if (sound) {
        return State::Good;
    }
    keepAside(path, info.fileName());
    return State::Damaged;
}
