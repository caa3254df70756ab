#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "Contacts/LocalPhoneBook.h"
#include "PhonebookRecords.h"

// Who is behind a number, for the message lists, the reading pane and the tool: the computer's address
// book first, then the SIM and modem phonebook entries that were read. Numbers match as the same line in
// the home region (PhoneNumbers::SameNumber), so "+49 170 1234567" finds a contact saved as "0170 1234567".
class ContactNames {
public:
    // A person found by name: every number the book and the phonebooks hold under that name.
    struct Person {
        QString name;
        QStringList numbers;
    };

    ContactNames() = default;
    ContactNames(QList<LocalContact> book, QList<BLPbItem> phonebook, QString region);

    // The contact's name, or empty when no contact has the number.
    QString nameFor(const QString& number) const;
    // "Anna Schmidt (0170 1234567)", or the number as people read it when nobody has it.
    QString label(const QString& number) const;
    QString label(const QStringList& numbers) const;
    // The number as people read it in the home region.
    QString forReading(const QString& number) const;
    // The people whose name is `text` (case-blind); when none is, those whose name holds it. Entries of the
    // same name in the book and the phonebooks are one person.
    QList<Person> byName(const QString& text) const;

    const QString& region() const { return _region; }

    // A number in the form the modem uses ("+491701234567"): book entries and drafts keep the layout they
    // were typed with ("0170 123 45 67"). What is not a number stays as it is.
    static QString canonical(const QString& number, const QString& region);

private:
    QList<LocalContact> _book;
    QList<BLPbItem> _phonebook;
    QString _region;
};
