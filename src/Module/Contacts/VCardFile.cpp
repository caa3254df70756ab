#include "Contacts/VCardFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace VCardFile {

Import importInto(LocalPhoneBook& book, const QString& path, const QString& region) {
    Import result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return result;
    }
    if (file.size() > VCard::kMaxFileBytes) {
        result.error = QStringLiteral("%1: the file is larger than %2 MiB")
                           .arg(path)
                           .arg(VCard::kMaxFileBytes / (1024 * 1024));
        return result;
    }
    const VCard::ReadResult read = VCard::read(file.read(VCard::kMaxFileBytes + 1));
    if (!read.ok()) {
        result.error = QStringLiteral("%1: %2; nothing was imported").arg(path, read.message());
        return result;
    }
    result.refused = read.cards - static_cast<int>(read.contacts.size());
    const QList<LocalContact> before = book.contacts();
    if (!book.mergeAll(read.contacts, region, result.count)) {
        result.error = QStringLiteral("%1: the address book would hold more than %2 contacts; nothing was "
                                      "imported")
                           .arg(path)
                           .arg(LocalPhoneBook::kMaxContacts);
        return result;
    }
    if (!book.save()) {
        book.contacts() = before;
        result.error = QStringLiteral("%1 could not be written; nothing was imported").arg(book.path());
    }
    return result;
}

QString exportTo(const QList<LocalContact>& contacts, const QString& path, VCard::Version version,
                 bool overwrite) {
    if (!overwrite && QFileInfo::exists(path))
        return QStringLiteral("%1 exists; give another name, or overwrite it with --force").arg(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(VCard::write(contacts, version)) < 0 || !file.commit())
        return QStringLiteral("%1: %2").arg(path, file.errorString());
    return {};
}

} // namespace VCardFile
