#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "Contacts/LocalPhoneBook.h"

// vCard files (RFC 6350 for 4.0, RFC 2426 for 3.0, and what old phones write as 2.1) read into contacts
// of the computer's address book and written from them. Plain functions over bytes, no file I/O.
//
// Reading keeps FN (or a name made from N when FN is missing or empty), every TEL with its type as the
// label, EMAIL, NOTE and UID; other properties (PHOTO, ADR, ...) are skipped. Folded lines, backslash
// escapes, QUOTED-PRINTABLE with soft line breaks, CHARSET (UTF-8, ISO-8859-1, and whatever else Qt's
// converters know), 4.0 "tel:" URIs and group prefixes ("item1.TEL", with "item1.X-ABLabel" as the
// number's label) are understood. A file is read whole or not at all: the first fault ends the reading
// with the line it is on.
namespace VCard {

inline constexpr qsizetype kMaxFileBytes = 16 * 1024 * 1024;
// A logical line (after unfolding); large enough for an embedded photo.
inline constexpr qsizetype kMaxLineBytes = 1024 * 1024;

struct ReadResult {
    QList<LocalContact> contacts; // in file order, uid empty when the card had none
    int cards = 0;                // cards in the file, with the ones that held nothing to keep
    QString error;                // empty when the whole file was read
    int errorLine = 0;            // 1-based, 0 for faults of the whole file

    bool ok() const { return error.isEmpty(); }
    // "line 12: ..." or the error alone.
    QString message() const;
};

ReadResult read(const QByteArray& bytes);

enum class Version { V3, V4 };

// CRLF line ends, lines folded at 75 octets without splitting a UTF-8 character.
QByteArray write(const QList<LocalContact>& contacts, Version version = Version::V3);

} // namespace VCard
