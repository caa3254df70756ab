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
    enum class Merge { Added, Merged, Unchanged };
    struct MergeCount {
        int added = 0;
        int merged = 0;
        int unchanged = 0;
    };

    // What the book keeps. A contact over these is refused when it is added, updated or imported, and
    // skipped as a wrong entry when the file is read. Lengths count characters.
    static constexpr qsizetype kMaxContacts = 10000;
    static constexpr qsizetype kMaxNumbers = 32; // per contact
    static constexpr qsizetype kMaxEmails = 16;  // per contact
    static constexpr qsizetype kMaxNameLength = 256;
    static constexpr qsizetype kMaxLabelLength = 64;
    static constexpr qsizetype kMaxNumberLength = 64;
    static constexpr qsizetype kMaxEmailLength = 254;
    static constexpr qsizetype kMaxNoteLength = 16384;
    static constexpr qsizetype kMaxUidLength = 256;

    // Why the contact is over the bounds above, in words ("the note is 20000 characters; the address
    // book keeps at most 16384"); empty when it fits.
    static QString overBounds(const LocalContact& contact);

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
    // Replaces the contact at `at`, keeping its uid; false when there is none there.
    bool update(qsizetype at, LocalContact contact);
    bool remove(qsizetype at);

    // The contact with the same uid, or else the first one sharing a number with it (sameNumber in
    // `region`), or else the first one of the same name (case-blind), takes the numbers and e-mail
    // addresses it lacks and the note when it has none; without any, the contact is added. A re-imported
    // file or a second copy from the SIM adds nothing.
    Merge merge(const LocalContact& contact, const QString& region);
    // All of them or none: false, and the book unchanged, when it would then hold more than kMaxContacts.
    bool mergeAll(const QList<LocalContact>& contacts, const QString& region, MergeCount& count);

    // The positions of the contacts with `text` in any part of a name (case-blind) or of a number
    // (layout characters ignored), in book order.
    QList<qsizetype> search(const QString& text) const;
    // The name of the contact one of whose numbers is the same line as `number` (PhoneNumbers::SameNumber
    // in `region`), or empty.
    QString nameForNumber(const QString& number, const QString& region) const;

    // Spaces, brackets, dashes, dots and slashes are how people lay numbers out, not part of them:
    // the digits, "+", "*" and "#" alone.
    static QString withoutLayout(const QString& number);
    // PhoneNumbers::SameNumber of the numbers without their layout ("+49 170 123-4" is "+491701234").
    static bool sameNumber(const QString& a, const QString& b, const QString& region);

    const QString& path() const { return _path; }

private:
    QString _path;
    QList<LocalContact> _contacts;
};
