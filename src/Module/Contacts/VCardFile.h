#pragma once

#include <QList>
#include <QString>

#include "Contacts/LocalPhoneBook.h"
#include "Contacts/VCard.h"

// vCard files in and out of the computer's address book, for the tool and the desktop app.
namespace VCardFile {

struct Import {
    QString error; // empty when the file was read and the book saved
    LocalPhoneBook::MergeCount count;
    int refused = 0; // cards with neither a name, a number nor an e-mail address

    bool ok() const { return error.isEmpty(); }
};

// Reads the whole file (one over VCard::kMaxFileBytes is refused unread), merges its contacts into the
// loaded book and saves it. On any fault, the book and its file stay as they were.
Import importInto(LocalPhoneBook& book, const QString& path, const QString& region);

// Writes the contacts to the file, through a temporary file renamed into place. An existing file is
// refused unless overwrite is set. The error in words, or empty.
QString exportTo(const QList<LocalContact>& contacts, const QString& path, VCard::Version version,
                 bool overwrite);

} // namespace VCardFile
