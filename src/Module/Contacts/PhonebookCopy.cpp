#include "Contacts/PhonebookCopy.h"

#include <QRegularExpression>

#include <algorithm>

namespace PhonebookCopy {

QList<Entry> toPhonebook(const QList<LocalContact>& contacts, const QList<BLPbItem>& phonebook, int maxName,
                         int maxNumber, int free, const QString& region) {
    QList<QString> numbersThere;
    for (const BLPbItem& item : phonebook)
        numbersThere.append(item.strNumber);
    QList<Entry> entries;
    for (const LocalContact& contact : contacts) {
        for (qsizetype at = 0; at < contact.numbers.size(); ++at) {
            const LocalContact::Number& number = contact.numbers.at(at);
            Entry entry{contact.name, contact.name, LocalPhoneBook::withoutLayout(number.number),
                        Entry::Fate::Copy};
            QList<uint> name = contact.name.toUcs4();
            QList<uint> suffix;
            if (contact.numbers.size() > 1)
                suffix = QStringLiteral(" (%1)")
                             .arg(number.label.isEmpty() ? QString::number(at + 1) : number.label)
                             .toUcs4();
            if (maxName > 0 && name.size() + suffix.size() > maxName) {
                entry.fate = Entry::Fate::NameCut;
                if (suffix.size() >= maxName)
                    suffix.clear();
                name.resize(std::min<qsizetype>(name.size(), maxName - suffix.size()));
            }
            const auto text = [](const QList<uint>& code) {
                return QString::fromUcs4(reinterpret_cast<const char32_t*>(code.constData()), code.size());
            };
            entry.name = text(name).trimmed() + text(suffix);
            const qsizetype digits = entry.number.size() - (entry.number.startsWith(u'+') ? 1 : 0);
            const bool there =
                std::any_of(numbersThere.begin(), numbersThere.end(), [&](const QString& kept) {
                    return LocalPhoneBook::sameNumber(kept, number.number, region);
                });
            if (there)
                entry.fate = Entry::Fate::AlreadyThere;
            else if (digits <= 0)
                entry.fate = Entry::Fate::NotANumber;
            else if (maxNumber > 0 && digits > maxNumber)
                entry.fate = Entry::Fate::NumberTooLong;
            else if (free <= 0)
                entry.fate = Entry::Fate::Full;
            if (entry.copied()) {
                --free;
                numbersThere.append(entry.number);
            }
            entries.append(entry);
        }
    }
    return entries;
}

QList<LocalContact> toBook(const QList<BLPbItem>& entries) {
    static const QRegularExpression labelled(QStringLiteral("^(.*\\S) \\(([^()]+)\\)$"));
    QList<LocalContact> contacts;
    for (const BLPbItem& item : entries) {
        if (item.strNumber.isEmpty())
            continue;
        QString name = item.strName.trimmed();
        QString label;
        if (const QRegularExpressionMatch match = labelled.match(name); match.hasMatch()) {
            name = match.captured(1);
            bool position = false;
            match.captured(2).toInt(&position);
            if (!position)
                label = match.captured(2);
        }
        const auto same = std::find_if(contacts.begin(), contacts.end(), [&](const LocalContact& contact) {
            return contact.name.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (same != contacts.end() && same->numbers.size() < LocalPhoneBook::kMaxNumbers) {
            same->numbers.append({label, item.strNumber});
            continue;
        }
        LocalContact contact;
        contact.name = name.isEmpty() ? item.strNumber : name.left(LocalPhoneBook::kMaxNameLength);
        contact.numbers.append({label, item.strNumber.left(LocalPhoneBook::kMaxNumberLength)});
        contacts.append(contact);
    }
    return contacts;
}

} // namespace PhonebookCopy
