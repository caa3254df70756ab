#include "DamagedFile.h"

#include "CNSLog.h"
#include "PropertyList.h"

#include <QDateTime>
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

} // namespace

void DamagedFile::setNoticeStream(std::FILE* stream) {
    g_notices.store(stream);
}

QString DamagedFile::keepAside(const QString& path, const QString& what) {
    if (QFileInfo(path).isDir() && !QFileInfo(path).isSymLink()) {
        // Not a file of ours that went bad: left where it is, and writes to it fail.
        CNSLOG(2, "%s %s is a folder, defaults are used", qPrintable(what), qPrintable(path));
        return {};
    }
    const QString base = path + QStringLiteral(".damaged-") +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QString kept = base;
    for (int n = 2; present(QFileInfo(kept)); ++n) {
        kept = base + QStringLiteral("-%1").arg(n);
    }
    if (QFile::rename(path, kept)) {
        CNSLOG(2, "unreadable %s kept as %s, a new one is started", qPrintable(what), qPrintable(kept));
        notice(
            QStringLiteral("%1 could not be read; it is kept as %2 and defaults are used").arg(path, kept));
        return kept;
    }
    CNSLOG(2, "unreadable %s %s could not be kept aside, it is replaced", qPrintable(what), qPrintable(path));
    notice(QStringLiteral("%1 could not be read nor moved aside; defaults are used").arg(path));
    return {};
}

DamagedFile::State DamagedFile::readPropertyList(const QString& path, int rootType, QVariant& content) {
    content = QVariant();
    const QFileInfo info(path);
    if (!present(info)) {
        return State::Absent;
    }
    QVariant root = PropertyList::read(path);
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
    if (file.open(QIODevice::ReadOnly) && file.size() <= kMaxSettingsSize) {
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
