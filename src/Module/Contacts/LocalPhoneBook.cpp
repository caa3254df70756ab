#include "Contacts/LocalPhoneBook.h"

#include <QUuid>
#include <QVariantList>

#include <algorithm>

#include "DamagedFile.h"
#include "PhoneNumbers.h"
#include "PropertyList.h"
#include "UserDataFolder.h"

namespace {

QString Longer(const char* what, qsizetype length, qsizetype limit) {
    return QStringLiteral("%1 is %2 characters; the address book keeps at most %3")
        .arg(QLatin1String(what))
        .arg(length)
        .arg(limit);
}

QString NewUid() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
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

QString LocalPhoneBook::overBounds(const LocalContact& contact) {
    if (contact.name.size() > kMaxNameLength)
        return Longer("the name", contact.name.size(), kMaxNameLength);
    if (contact.uid.size() > kMaxUidLength)
        return Longer("the UID", contact.uid.size(), kMaxUidLength);
    if (contact.note.size() > kMaxNoteLength)
        return Longer("the note", contact.note.size(), kMaxNoteLength);
    if (contact.numbers.size() > kMaxNumbers)
        return QStringLiteral("%1 numbers; the address book keeps at most %2 per contact")
            .arg(contact.numbers.size())
            .arg(kMaxNumbers);
    if (contact.emails.size() > kMaxEmails)
        return QStringLiteral("%1 e-mail addresses; the address book keeps at most %2 per contact")
            .arg(contact.emails.size())
            .arg(kMaxEmails);
    for (const LocalContact::Number& entry : contact.numbers) {
        if (entry.number.size() > kMaxNumberLength)
            return Longer("a number", entry.number.size(), kMaxNumberLength);
        if (entry.label.size() > kMaxLabelLength)
            return Longer("a number's label", entry.label.size(), kMaxLabelLength);
    }
    for (const QString& email : contact.emails) {
        if (email.size() > kMaxEmailLength)
            return Longer("an e-mail address", email.size(), kMaxEmailLength);
    }
    return {};
}

QString LocalPhoneBook::withoutLayout(const QString& number) {
    QString digits;
    for (const QChar c : number) {
        if ((c >= u'0' && c <= u'9') || c == u'+' || c == u'*' || c == u'#')
            digits += c;
    }
    return digits;
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
        if (contact.name.isEmpty() || !overBounds(contact).isEmpty() || _contacts.size() >= kMaxContacts) {
            ++wrong;
            continue;
        }
        if (contact.uid.isEmpty())
            contact.uid = NewUid();
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
        contact.uid = NewUid();
    _contacts.append(std::move(contact));
    return _contacts.size() - 1;
}

bool LocalPhoneBook::update(qsizetype at, LocalContact contact) {
    if (at < 0 || at >= _contacts.size())
        return false;
    contact.uid = _contacts.at(at).uid;
    _contacts[at] = std::move(contact);
    return true;
}

bool LocalPhoneBook::remove(qsizetype at) {
    if (at < 0 || at >= _contacts.size())
        return false;
    _contacts.removeAt(at);
    return true;
}

LocalPhoneBook::Merge LocalPhoneBook::merge(const LocalContact& contact, const QString& region) {
    const auto hasNumber = [&region](const LocalContact& in, const QString& number) {
        return std::any_of(in.numbers.begin(), in.numbers.end(), [&](const LocalContact::Number& entry) {
            return sameNumber(entry.number, number, region);
        });
    };
    auto same = std::find_if(_contacts.begin(), _contacts.end(), [&](const LocalContact& kept) {
        return !contact.uid.isEmpty() && kept.uid == contact.uid;
    });
    if (same == _contacts.end()) {
        same = std::find_if(_contacts.begin(), _contacts.end(), [&](const LocalContact& kept) {
            return std::any_of(
                contact.numbers.begin(), contact.numbers.end(),
                [&](const LocalContact::Number& entry) { return hasNumber(kept, entry.number); });
        });
    }
    if (same == _contacts.end()) {
        same = std::find_if(_contacts.begin(), _contacts.end(), [&](const LocalContact& kept) {
            return kept.name.compare(contact.name, Qt::CaseInsensitive) == 0;
        });
    }
    if (same == _contacts.end()) {
        add(contact);
        return Merge::Added;
    }
    LocalContact merged = *same;
    for (const LocalContact::Number& entry : contact.numbers) {
        if (!hasNumber(merged, entry.number) && merged.numbers.size() < kMaxNumbers)
            merged.numbers.append(entry);
    }
    for (const QString& email : contact.emails) {
        if (!merged.emails.contains(email, Qt::CaseInsensitive) && merged.emails.size() < kMaxEmails)
            merged.emails.append(email);
    }
    if (merged.note.isEmpty())
        merged.note = contact.note;
    if (merged.numbers.size() == same->numbers.size() && merged.emails == same->emails &&
        merged.note == same->note)
        return Merge::Unchanged;
    *same = std::move(merged);
    return Merge::Merged;
}

bool LocalPhoneBook::mergeAll(const QList<LocalContact>& contacts, const QString& region, MergeCount& count) {
    const QList<LocalContact> before = _contacts;
    MergeCount counted;
    for (const LocalContact& contact : contacts) {
        switch (merge(contact, region)) {
        case Merge::Added:
            ++counted.added;
            break;
        case Merge::Merged:
            ++counted.merged;
            break;
        case Merge::Unchanged:
            ++counted.unchanged;
            break;
        }
    }
    if (_contacts.size() > kMaxContacts) {
        _contacts = before;
        return false;
    }
    count = counted;
    return true;
}

QList<qsizetype> LocalPhoneBook::search(const QString& text) const {
    const QString wanted = text.trimmed();
    const QString wantedDigits = withoutLayout(wanted);
    // A text without letters ("0170 123") is looked for in the numbers alone.
    const bool numberOnly = !wantedDigits.isEmpty() &&
                            std::none_of(wanted.begin(), wanted.end(), [](QChar c) { return c.isLetter(); });
    QList<qsizetype> found;
    for (qsizetype at = 0; at < _contacts.size(); ++at) {
        const LocalContact& contact = _contacts.at(at);
        bool match = wanted.isEmpty() || (!numberOnly && contact.name.contains(wanted, Qt::CaseInsensitive));
        for (const LocalContact::Number& entry : contact.numbers)
            match = match || (!wantedDigits.isEmpty() && withoutLayout(entry.number).contains(wantedDigits));
        if (match)
            found.append(at);
    }
    return found;
}

bool LocalPhoneBook::sameNumber(const QString& a, const QString& b, const QString& region) {
    const QString digitsA = withoutLayout(a);
    const QString digitsB = withoutLayout(b);
    // What is not a number ("Vodafone") matches only itself.
    if (digitsA.isEmpty() || digitsB.isEmpty())
        return a == b;
    return PhoneNumbers::SameNumber(digitsA.toStdString(), digitsB.toStdString(), region.toStdString());
}

QString LocalPhoneBook::nameForNumber(const QString& number, const QString& region) const {
    if (number.isEmpty())
        return {};
    for (const LocalContact& contact : _contacts) {
        for (const LocalContact::Number& entry : contact.numbers) {
            if (sameNumber(entry.number, number, region))
                return contact.name;
        }
    }
    return {};
}
