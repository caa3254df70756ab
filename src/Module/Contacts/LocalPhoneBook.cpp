#include "Contacts/LocalPhoneBook.h"

#include <QUuid>
#include <QVariantList>

#include <algorithm>

#include "DamagedFile.h"
#include "PhoneNumbers.h"
#include "PropertyList.h"
#include "UserDataFolder.h"

namespace {

// Spaces, brackets, dashes, dots and slashes are how people lay numbers out, not part of them.
QString NumberDigits(const QString& number) {
    QString digits;
    for (const QChar c : number) {
        if (c.isDigit() || c == u'+' || c == u'*' || c == u'#')
            digits += c;
    }
    return digits;
}

} // namespace

QVariantMap LocalContact::toMap() const {
    QVariantList numberList;
    for (const Number& entry : numbers)
        numberList.append(
            QVariantMap{{QStringLiteral("Label"), entry.label}, {QStringLiteral("Number"), entry.number}});
    QVariantMap map{{QStringLiteral("UID"), uid},
                    {QStringLiteral("Name"), name},
                    {QStringLiteral("Numbers"), numberList}};
    if (!emails.isEmpty())
        map.insert(QStringLiteral("Emails"), emails);
    if (!note.isEmpty())
        map.insert(QStringLiteral("Note"), note);
    return map;
}

LocalContact LocalContact::fromMap(const QVariantMap& map) {
    LocalContact contact;
    contact.uid = map.value(QStringLiteral("UID")).toString();
    contact.name = map.value(QStringLiteral("Name")).toString();
    for (const QVariant& entry : map.value(QStringLiteral("Numbers")).toList()) {
        const QVariantMap fields = entry.toMap();
        const QString number = fields.value(QStringLiteral("Number")).toString();
        if (!number.isEmpty())
            contact.numbers.append({fields.value(QStringLiteral("Label")).toString(), number});
    }
    for (const QVariant& email : map.value(QStringLiteral("Emails")).toList()) {
        if (!email.toString().isEmpty())
            contact.emails.append(email.toString());
    }
    contact.note = map.value(QStringLiteral("Note")).toString();
    if (contact.name.isEmpty() && !contact.numbers.isEmpty())
        contact.name = contact.numbers.first().number;
    return contact;
}

QString LocalPhoneBook::defaultPath() {
    return UserDataFolder::dataPath() + QStringLiteral("/LocalPhoneBook.plist");
}

LocalPhoneBook::LocalPhoneBook(QString path) : _path(std::move(path)) {}

LocalPhoneBook::LoadResult LocalPhoneBook::load() {
    _contacts.clear();
    QVariant content;
    switch (DamagedFile::readPropertyList(_path, QMetaType::QVariantList, content)) {
    case DamagedFile::State::Absent:
        return LoadResult::Absent;
    case DamagedFile::State::Damaged:
        return LoadResult::Damaged;
    case DamagedFile::State::Good:
        break;
    }
    qsizetype wrong = 0;
    for (const QVariant& entry : content.toList()) {
        LocalContact contact = LocalContact::fromMap(entry.toMap());
        if (contact.name.isEmpty()) {
            ++wrong;
            continue;
        }
        if (contact.uid.isEmpty())
            contact.uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
        _contacts.append(std::move(contact));
    }
    DamagedFile::reportWrongEntries(_path, QStringLiteral("LocalPhoneBook.plist"), wrong);
    return LoadResult::Ok;
}

bool LocalPhoneBook::save() const {
    QVariantList root;
    for (const LocalContact& contact : _contacts)
        root.append(contact.toMap());
    return PropertyList::write(_path, root);
}

qsizetype LocalPhoneBook::add(LocalContact contact) {
    if (contact.uid.isEmpty())
        contact.uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    _contacts.append(std::move(contact));
    return _contacts.size() - 1;
}

QList<qsizetype> LocalPhoneBook::search(const QString& text) const {
    const QString wanted = text.trimmed();
    const QString wantedDigits = NumberDigits(wanted);
    // A text without letters ("0170 123") is looked for in the numbers alone.
    const bool numberOnly = !wantedDigits.isEmpty() &&
                            std::none_of(wanted.begin(), wanted.end(), [](QChar c) { return c.isLetter(); });
    QList<qsizetype> found;
    for (qsizetype at = 0; at < _contacts.size(); ++at) {
        const LocalContact& contact = _contacts.at(at);
        bool match = wanted.isEmpty() || (!numberOnly && contact.name.contains(wanted, Qt::CaseInsensitive));
        for (const LocalContact::Number& entry : contact.numbers)
            match = match || (!wantedDigits.isEmpty() && NumberDigits(entry.number).contains(wantedDigits));
        if (match)
            found.append(at);
    }
    return found;
}

QString LocalPhoneBook::nameForNumber(const QString& number, const QString& region) const {
    if (number.isEmpty())
        return {};
    const std::string wanted = number.toStdString();
    const std::string home = region.toStdString();
    for (const LocalContact& contact : _contacts) {
        for (const LocalContact::Number& entry : contact.numbers) {
            if (PhoneNumbers::SameNumber(entry.number.toStdString(), wanted, home))
                return contact.name;
        }
    }
    return {};
}
