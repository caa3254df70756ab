#include "Contacts/ContactNames.h"

#include <algorithm>

#include "PhoneNumbers.h"

namespace {

std::string Stored(const QString& number, const std::string& region) {
    return ContactNames::canonical(number, QString::fromStdString(region)).toStdString();
}

} // namespace

QString ContactNames::canonical(const QString& number, const QString& region) {
    const PhoneNumbers::DialString parsed = PhoneNumbers::Parse(number.toStdString(), region.toStdString());
    return parsed.ok() ? QString::fromStdString(parsed.number) : number;
}

ContactNames::ContactNames(QList<LocalContact> book, QList<BLPbItem> phonebook, QString region)
    : _book(std::move(book)), _phonebook(std::move(phonebook)), _region(std::move(region)) {}

QString ContactNames::nameFor(const QString& number) const {
    if (number.trimmed().isEmpty())
        return {};
    const auto same = [&](const QString& stored) {
        return !stored.isEmpty() && LocalPhoneBook::sameNumber(stored, number, _region);
    };
    for (const LocalContact& contact : _book) {
        for (const LocalContact::Number& entry : contact.numbers) {
            if (!contact.name.isEmpty() && same(entry.number))
                return contact.name;
        }
    }
    for (const BLPbItem& entry : _phonebook) {
        if (!entry.strName.isEmpty() && same(entry.strNumber))
            return entry.strName;
    }
    return {};
}

QString ContactNames::forReading(const QString& number) const {
    const std::string home = _region.toStdString();
    return QString::fromStdString(PhoneNumbers::ForReading(Stored(number, home), home));
}

QString ContactNames::label(const QString& number) const {
    const QString shown = forReading(number);
    const QString name = nameFor(number);
    return name.isEmpty() ? shown : QStringLiteral("%1 (%2)").arg(name, shown);
}

QString ContactNames::label(const QStringList& numbers) const {
    QStringList labels;
    for (const QString& number : numbers)
        labels << label(number);
    return labels.join(QStringLiteral("; "));
}

QList<ContactNames::Person> ContactNames::byName(const QString& text) const {
    const QString wanted = text.trimmed();
    if (wanted.isEmpty())
        return {};
    QList<Person> exact, partial;
    const auto collect = [&](const QString& name, const QString& number) {
        if (name.isEmpty() || number.isEmpty())
            return;
        const bool same = name.compare(wanted, Qt::CaseInsensitive) == 0;
        if (!same && !name.contains(wanted, Qt::CaseInsensitive))
            return;
        QList<Person>& into = same ? exact : partial;
        auto person = std::find_if(into.begin(), into.end(), [&](const Person& held) {
            return held.name.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (person == into.end())
            person = into.insert(into.end(), Person{name, {}});
        const bool known =
            std::any_of(person->numbers.cbegin(), person->numbers.cend(), [&](const QString& held) {
                return LocalPhoneBook::sameNumber(held, number, _region);
            });
        if (!known)
            person->numbers << QString::fromStdString(Stored(number, _region.toStdString()));
    };
    for (const LocalContact& contact : _book) {
        for (const LocalContact::Number& entry : contact.numbers)
            collect(contact.name, entry.number);
    }
    for (const BLPbItem& entry : _phonebook)
        collect(entry.strName, entry.strNumber);
    return exact.isEmpty() ? partial : exact;
}
