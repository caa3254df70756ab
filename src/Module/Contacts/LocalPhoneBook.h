#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// The address book kept on the computer: "LocalPhoneBook.plist" in the user data folder. Unlike the SIM
// and the modem, it keeps several numbers per person, e-mail addresses and a note; doc/local-phonebook.md
// gives the file's format.
struct LocalContact {
    struct Number {
        QString label;  // "mobile", "home", "work", or what a vCard called it; may be empty
        QString number; // as stored: "+491701234567", or a short number as typed
    };

    QString uid; // stable across saves; made when a contact without one is added
    QString name;
    QList<Number> numbers;
    QStringList emails;
    QString note;

    QVariantMap toMap() const;
    // Empty name (no contact) when the entry is not a dict or has neither a name nor a number.
    static LocalContact fromMap(const QVariantMap& map);
};

class LocalPhoneBook {
public:
    enum class LoadResult { Ok, Absent, Damaged };

    // "<data folder>/LocalPhoneBook.plist".
    static QString defaultPath();

    explicit LocalPhoneBook(QString path = defaultPath());

    // Reads the file; a damaged one is kept aside (and left out) and the book is empty.
    LoadResult load();
    // Writes the whole book in place; false when it could not be written.
    bool save() const;

    const QList<LocalContact>& contacts() const { return _contacts; }
    QList<LocalContact>& contacts() { return _contacts; }
    // Adds the contact (giving it a uid when it has none) and returns its position.
    qsizetype add(LocalContact contact);

    // The positions of the contacts with `text` in any part of a name (case-blind) or of a number
    // (layout characters ignored), in book order.
    QList<qsizetype> search(const QString& text) const;
    // The name of the contact one of whose numbers is the same line as `number` (PhoneNumbers::SameNumber
    // in `region`), or empty.
    QString nameForNumber(const QString& number, const QString& region) const;

    const QString& path() const { return _path; }

private:
    QString _path;
    QList<LocalContact> _contacts;
};
