#pragma once

#include <QList>
#include <QString>

#include "Contacts/LocalPhoneBook.h"
#include "PhonebookRecords.h"

// Copies between the computer's address book and the SIM's or the modem's phonebook, which keep one
// number per entry and short names.
//
// To a phonebook, a contact becomes one entry per number. With several numbers, each entry is named
// "Name (label)" ("Name (2)" for a number without a label), so that copying back finds the contact again.
// A name longer than the phonebook keeps is cut at its end (the label stays); a number with more digits
// than it keeps, or one without digits ("Vodafone"), is refused; a number already in the phonebook is left;
// once the free places are used up, the rest is refused as "full". Nothing is dropped without its fate.
namespace PhonebookCopy {

struct Entry {
    enum class Fate { Copy, NameCut, AlreadyThere, NotANumber, NumberTooLong, Full };
    QString contact; // the name in the address book
    QString name;    // as it goes to the phonebook
    QString number;  // without its layout, as the modem takes it
    Fate fate = Fate::Copy;

    bool copied() const { return fate == Fate::Copy || fate == Fate::NameCut; }
};

// `phonebook` holds the entries of the target store read last; `free` its free places; maxName and
// maxNumber its limits (0: unknown, anything goes).
QList<Entry> toPhonebook(const QList<LocalContact>& contacts, const QList<BLPbItem>& phonebook, int maxName,
                         int maxNumber, int free, const QString& region);

// The phonebook's entries as address-book contacts, for LocalPhoneBook::mergeAll: "Anna (mobile)" is
// Anna's mobile number.
QList<LocalContact> toBook(const QList<BLPbItem>& entries);

} // namespace PhonebookCopy
