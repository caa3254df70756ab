#include "Contacts/VCard.h"

#include <QHash>
#include <QStringDecoder>

#include <algorithm>
#include <cctype>
#include <optional>

namespace VCard {

namespace {

// One content line after unfolding: "item1.TEL;TYPE=cell:+49 170 1234567".
struct ContentLine {
    QByteArray group;
    QByteArray name;                                 // upper case
    QHash<QByteArray, QList<QByteArray>> parameters; // upper-case name -> values as written
    QByteArray value;
    int line = 0;
};

struct Fault {
    QString error;
    int line = 0;
};

bool IsQuotedPrintable(const QByteArray& head) {
    return head.toUpper().contains("QUOTED-PRINTABLE");
}

// Physical lines joined into logical ones: a line starting with a space or a tab continues the one before
// (the whitespace is dropped); a quoted-printable line ending in "=" goes on with the next line, as 2.1
// files break them.
std::optional<Fault> Unfold(const QByteArray& bytes, QList<QPair<QByteArray, int>>& lines) {
    int number = 0;
    qsizetype at = 0;
    bool softBreak = false;
    while (at < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', at);
        if (end < 0)
            end = bytes.size();
        QByteArray line = bytes.mid(at, end - at);
        at = end + 1;
        ++number;
        if (line.endsWith('\r'))
            line.chop(1);
        const bool continued =
            !lines.isEmpty() && (softBreak || line.startsWith(' ') || line.startsWith('\t'));
        if (continued) {
            QByteArray& last = lines.last().first;
            last += softBreak ? line : line.mid(1);
            if (last.size() > kMaxLineBytes)
                return Fault{QStringLiteral("the line is longer than %1 bytes").arg(kMaxLineBytes),
                             lines.last().second};
        } else {
            if (line.trimmed().isEmpty()) {
                softBreak = false;
                continue;
            }
            if (line.size() > kMaxLineBytes)
                return Fault{QStringLiteral("the line is longer than %1 bytes").arg(kMaxLineBytes), number};
            lines.append({line, number});
        }
        QByteArray& last = lines.last().first;
        const qsizetype colon = last.indexOf(':');
        softBreak = colon > 0 && last.endsWith('=') && IsQuotedPrintable(last.left(colon));
        if (softBreak)
            last.chop(1);
    }
    return std::nullopt;
}

// Splits at `separator` outside double quotes.
QList<QByteArray> SplitOutsideQuotes(const QByteArray& text, char separator) {
    QList<QByteArray> parts{QByteArray()};
    bool quoted = false;
    for (const char c : text) {
        if (c == '"')
            quoted = !quoted;
        else if (c == separator && !quoted)
            parts.append(QByteArray());
        else
            parts.last() += c;
    }
    return parts;
}

std::optional<ContentLine> ParseLine(const QByteArray& text, int number) {
    bool quoted = false;
    qsizetype colon = -1;
    for (qsizetype i = 0; i < text.size() && colon < 0; ++i) {
        if (text[i] == '"')
            quoted = !quoted;
        else if (text[i] == ':' && !quoted)
            colon = i;
    }
    if (colon <= 0)
        return std::nullopt;
    ContentLine line;
    line.line = number;
    line.value = text.mid(colon + 1);
    const QList<QByteArray> head = SplitOutsideQuotes(text.left(colon), ';');
    QByteArray name = head.first().trimmed();
    if (const qsizetype dot = name.lastIndexOf('.'); dot >= 0) {
        line.group = name.left(dot).toUpper();
        name = name.mid(dot + 1);
    }
    if (name.isEmpty())
        return std::nullopt;
    line.name = name.toUpper();
    for (qsizetype i = 1; i < head.size(); ++i) {
        const qsizetype equals = head[i].indexOf('=');
        // 2.1 writes bare values: "TEL;CELL;VOICE:", "NOTE;QUOTED-PRINTABLE:".
        QByteArray key = equals < 0 ? QByteArray("TYPE") : head[i].left(equals).trimmed().toUpper();
        const QByteArray values = equals < 0 ? head[i] : head[i].mid(equals + 1);
        if (equals < 0 && (values.toUpper() == "QUOTED-PRINTABLE" || values.toUpper() == "BASE64"))
            key = "ENCODING";
        for (QByteArray value : SplitOutsideQuotes(values, ',')) {
            value = value.trimmed();
            if (value.startsWith('"') && value.endsWith('"') && value.size() >= 2)
                value = value.mid(1, value.size() - 2);
            if (!value.isEmpty())
                line.parameters[key].append(value);
        }
    }
    return line;
}

std::optional<QByteArray> DecodeQuotedPrintable(const QByteArray& text) {
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '=') {
            bytes += text[i];
            continue;
        }
        const auto hex = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
        if (i + 2 >= text.size() || !hex(text[i + 1]) || !hex(text[i + 2]))
            return std::nullopt;
        bytes += QByteArray::fromHex(text.mid(i + 1, 2));
        i += 2;
    }
    return bytes;
}

// The value's bytes as text: quoted-printable undone, then read in its CHARSET (UTF-8 when none).
std::optional<QString> DecodeValue(const ContentLine& line, QString& error) {
    QByteArray bytes = line.value;
    const QList<QByteArray> encoding = line.parameters.value("ENCODING");
    if (!encoding.isEmpty() && encoding.first().toUpper() == "QUOTED-PRINTABLE") {
        const std::optional<QByteArray> decoded = DecodeQuotedPrintable(bytes);
        if (!decoded) {
            error = QStringLiteral("broken quoted-printable text in %1").arg(QLatin1String(line.name));
            return std::nullopt;
        }
        bytes = *decoded;
    }
    const QList<QByteArray> charset = line.parameters.value("CHARSET");
    const QByteArray name = charset.isEmpty() ? QByteArray("UTF-8") : charset.first();
    QStringDecoder decoder(name.constData(), QStringConverter::Flag::Stateless);
    if (!decoder.isValid()) {
        error = QStringLiteral("unknown character set %1").arg(QString::fromLatin1(name));
        return std::nullopt;
    }
    QString text = decoder.decode(bytes);
    if (decoder.hasError() || text.contains(QChar(0))) {
        error = charset.isEmpty() ? QStringLiteral("%1 is not valid UTF-8 and names no other CHARSET")
                                        .arg(QLatin1String(line.name))
                                  : QStringLiteral("%1 is not valid %2")
                                        .arg(QLatin1String(line.name), QString::fromLatin1(name));
        return std::nullopt;
    }
    return text;
}

// Text values: "\n" and "\N" are line breaks; "\," "\;" "\\" the character itself. Split at unescaped
// semicolons for the structured ones (N).
QStringList Unescape(const QString& text, bool structured) {
    QStringList parts{QString()};
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'\\' && i + 1 < text.size()) {
            const QChar next = text[++i];
            parts.last() += (next == u'n' || next == u'N') ? QChar(u'\n') : next;
        } else if (c == u';' && structured) {
            parts.append(QString());
        } else {
            parts.last() += c;
        }
    }
    return parts;
}

// "Family;Given;Additional;Prefix;Suffix" read as "Prefix Given Additional Family Suffix".
QString NameFromN(const QStringList& parts) {
    QStringList words;
    for (const int part : {3, 1, 2, 0, 4}) {
        if (part < parts.size() && !parts[part].trimmed().isEmpty())
            words.append(parts[part].trimmed());
    }
    return words.join(u' ');
}

// The number's TYPE values as one of the book's labels.
QString LabelOf(const QList<QByteArray>& types) {
    QStringList kept;
    for (const QByteArray& value : types) {
        const QString type = QString::fromUtf8(value).toLower();
        if (type == u"cell" || type == u"mobile" || type == u"iphone")
            return QStringLiteral("mobile");
        if (type == u"fax" || type == u"pager")
            return type;
        const bool printable = std::all_of(type.begin(), type.end(), [](QChar c) { return c.isPrint(); });
        if (printable && type != u"voice" && type != u"pref" && type != u"internet" && type != u"text")
            kept.append(type);
    }
    return kept.isEmpty() ? QString() : kept.first();
}

// Apple's custom labels come as "_$!<Mobile>!$_".
QString CustomLabel(const QString& label) {
    if (label.startsWith(QStringLiteral("_$!<")) && label.endsWith(QStringLiteral(">!$_")))
        return label.mid(4, label.size() - 8).trimmed().toLower();
    return label;
}

struct Card {
    LocalContact contact;
    QString nameFromN;
    QHash<QByteArray, qsizetype> numberOfGroup;
    QHash<QByteArray, QString> labelOfGroup;
    int line = 0;
};

QString Finish(Card& card) {
    LocalContact& contact = card.contact;
    if (contact.name.trimmed().isEmpty())
        contact.name = card.nameFromN;
    contact.name = contact.name.trimmed();
    for (auto it = card.labelOfGroup.cbegin(); it != card.labelOfGroup.cend(); ++it) {
        if (const qsizetype at = card.numberOfGroup.value(it.key(), -1); at >= 0)
            contact.numbers[at].label = it.value();
    }
    if (contact.name.isEmpty() && !contact.numbers.isEmpty())
        contact.name = contact.numbers.first().number;
    if (contact.name.isEmpty() && !contact.emails.isEmpty())
        contact.name = contact.emails.first();
    return LocalPhoneBook::overBounds(contact);
}

// The number of a TEL value; a "tel:" URI unless it is declared VALUE=text.
QString NumberFromValue(QString value, bool uri) {
    // A number is one line of printable characters.
    value.removeIf([](QChar c) { return !c.isPrint(); });
    value = value.trimmed();
    if (uri && value.startsWith(QStringLiteral("tel:"), Qt::CaseInsensitive)) {
        value = value.mid(4);
        // "tel:+1-555-555-5555;ext=5555": the parameters are not part of what is dialled.
        value = value.left(value.indexOf(u';')).trimmed();
    }
    return value;
}

// One property of a card into its contact; an error text when its value cannot be read.
QString Take(const ContentLine& line, Card& card) {
    static const QList<QByteArray> kept{"FN", "N", "TEL", "EMAIL", "NOTE", "UID", "X-ABLABEL"};
    if (!kept.contains(line.name))
        return {};
    QString error;
    std::optional<QString> text = DecodeValue(line, error);
    if (!text)
        return error;
    // Line breaks are kept as "\n", whatever the file's were ("=0D=0A" in quoted-printable).
    text->replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    LocalContact& contact = card.contact;
    if (line.name == "N") {
        card.nameFromN = NameFromN(Unescape(*text, true));
        return {};
    }
    const QString value = Unescape(*text, false).first();
    if (line.name == "FN") {
        contact.name = value;
    } else if (line.name == "TEL") {
        const QList<QByteArray> valueType = line.parameters.value("VALUE");
        const QString number =
            NumberFromValue(value, valueType.isEmpty() || valueType.first().toUpper() != "TEXT");
        if (number.isEmpty())
            return {};
        if (contact.numbers.size() >= LocalPhoneBook::kMaxNumbers)
            return QStringLiteral("more than %1 numbers; the address book keeps at most %1 per contact")
                .arg(LocalPhoneBook::kMaxNumbers);
        if (!line.group.isEmpty())
            card.numberOfGroup.insert(line.group, contact.numbers.size());
        contact.numbers.append({LabelOf(line.parameters.value("TYPE")), number});
    } else if (line.name == "EMAIL") {
        if (contact.emails.size() >= LocalPhoneBook::kMaxEmails)
            return QStringLiteral(
                       "more than %1 e-mail addresses; the address book keeps at most %1 per contact")
                .arg(LocalPhoneBook::kMaxEmails);
        if (!value.trimmed().isEmpty())
            contact.emails.append(value.trimmed());
    } else if (line.name == "NOTE") {
        contact.note = contact.note.isEmpty() ? value : contact.note + u'\n' + value;
    } else if (line.name == "UID") {
        contact.uid = value.trimmed();
    } else if (!line.group.isEmpty()) { // X-ABLABEL
        card.labelOfGroup.insert(line.group, CustomLabel(value.trimmed()));
    }
    return {};
}

} // namespace

QString ReadResult::message() const {
    return errorLine > 0 ? QStringLiteral("line %1: %2").arg(errorLine).arg(error) : error;
}

ReadResult read(const QByteArray& input) {
    ReadResult result;
    const auto fail = [&result](const QString& error, int line) {
        result.contacts.clear();
        result.error = error;
        result.errorLine = line;
        return result;
    };
    if (input.size() > kMaxFileBytes)
        return fail(QStringLiteral("the file is larger than %1 MiB").arg(kMaxFileBytes / (1024 * 1024)), 0);
    const QByteArray bytes = input.startsWith("\xEF\xBB\xBF") ? input.mid(3) : input;
    QList<QPair<QByteArray, int>> lines;
    if (const std::optional<Fault> fault = Unfold(bytes, lines))
        return fail(fault->error, fault->line);

    std::optional<Card> card;
    for (const auto& [text, number] : lines) {
        const std::optional<ContentLine> line = ParseLine(text, number);
        if (!line)
            return fail(QStringLiteral("not a vCard line (NAME:VALUE expected)"), number);
        const bool vcard = line->value.trimmed().toUpper() == "VCARD";
        if (line->name == "BEGIN" && vcard) {
            if (card)
                return fail(QStringLiteral("a card begins inside the card of line %1 (END:VCARD missing)")
                                .arg(card->line),
                            number);
            if (result.cards >= LocalPhoneBook::kMaxContacts)
                return fail(QStringLiteral("more than %1 cards; the address book keeps at most %1 contacts")
                                .arg(LocalPhoneBook::kMaxContacts),
                            number);
            card.emplace();
            card->line = number;
            ++result.cards;
            continue;
        }
        if (!card)
            return fail(
                QStringLiteral("%1 outside a card (BEGIN:VCARD missing)").arg(QLatin1String(line->name)),
                number);
        if (line->name == "END") {
            if (!vcard)
                return fail(QStringLiteral("END:%1 inside a vCard").arg(QString::fromLatin1(line->value)),
                            number);
            if (const QString error = Finish(*card); !error.isEmpty())
                return fail(error, card->line);
            if (!card->contact.name.isEmpty())
                result.contacts.append(card->contact);
            card.reset();
            continue;
        }
        if (const QString error = Take(*line, *card); !error.isEmpty())
            return fail(error, number);
    }
    if (card)
        return fail(QStringLiteral("the card has no END:VCARD"), card->line);
    if (result.cards == 0)
        return fail(QStringLiteral("no vCard in the file (BEGIN:VCARD missing)"), 0);
    return result;
}

namespace {

QString Escaped(const QString& text) {
    QString escaped;
    for (const QChar c : text) {
        if (c == u'\\' || c == u',' || c == u';')
            escaped += u'\\';
        if (c == u'\n')
            escaped += QStringLiteral("\\n");
        else if (c != u'\r')
            escaped += c;
    }
    return escaped;
}

// Lines of at most 75 octets; a continuation starts with a space and never splits a UTF-8 character.
void AppendFolded(QByteArray& out, const QString& line) {
    const QByteArray bytes = line.toUtf8();
    qsizetype at = 0;
    qsizetype room = 75;
    while (bytes.size() - at > room) {
        qsizetype cut = at + room;
        while (cut > at && (static_cast<unsigned char>(bytes[cut]) & 0xC0) == 0x80)
            --cut;
        out += bytes.mid(at, cut - at) + "\r\n ";
        at = cut;
        room = 74;
    }
    out += bytes.mid(at) + "\r\n";
}

const char* TypeOfLabel(const QString& label) {
    static const QHash<QString, const char*> types{{QStringLiteral("mobile"), "cell"},
                                                   {QStringLiteral("home"), "home"},
                                                   {QStringLiteral("work"), "work"},
                                                   {QStringLiteral("fax"), "fax"},
                                                   {QStringLiteral("pager"), "pager"}};
    return types.value(label, nullptr);
}

} // namespace

QByteArray write(const QList<LocalContact>& contacts, Version version) {
    const bool v4 = version == Version::V4;
    QByteArray out;
    for (const LocalContact& contact : contacts) {
        out += "BEGIN:VCARD\r\n";
        out += v4 ? "VERSION:4.0\r\n" : "VERSION:3.0\r\n";
        if (!contact.uid.isEmpty())
            AppendFolded(out, QStringLiteral("UID:") + Escaped(contact.uid));
        AppendFolded(out, QStringLiteral("FN:") + Escaped(contact.name));
        if (!v4) // 3.0 requires N; the book keeps the name whole
            AppendFolded(out, QStringLiteral("N:;") + Escaped(contact.name) + QStringLiteral(";;;"));
        int item = 0;
        for (const LocalContact::Number& entry : contact.numbers) {
            // A tel: URI has no spaces ("-" is its visual separator) and no ";" but before its parameters;
            // a number that cannot be one goes as text.
            const bool text = entry.number.contains(u';') ||
                              entry.number.startsWith(QStringLiteral("tel:"), Qt::CaseInsensitive);
            const QString number = text ? Escaped(entry.number)
                                   : v4 ? QStringLiteral("tel:") + QString(entry.number).replace(u' ', u'-')
                                        : entry.number;
            const QString valueType = text ? QStringLiteral(";VALUE=text")
                                      : v4 ? QStringLiteral(";VALUE=uri")
                                           : QString();
            const char* type = TypeOfLabel(entry.label);
            if (entry.label.isEmpty()) {
                AppendFolded(out, QStringLiteral("TEL") + valueType + u':' + number);
            } else if (type) {
                const QString types = v4 ? QString::fromLatin1(type) : QString::fromLatin1(type).toUpper();
                AppendFolded(out, QStringLiteral("TEL") + valueType + QStringLiteral(";TYPE=") + types +
                                      u':' + number);
            } else {
                const QString group = QStringLiteral("item%1.").arg(++item);
                AppendFolded(out, group + QStringLiteral("TEL") + valueType + u':' + number);
                AppendFolded(out, group + QStringLiteral("X-ABLabel:") + Escaped(entry.label));
            }
        }
        for (const QString& email : contact.emails)
            AppendFolded(out, (v4 ? QStringLiteral("EMAIL:") : QStringLiteral("EMAIL;TYPE=INTERNET:")) +
                                  Escaped(email));
        if (!contact.note.isEmpty())
            AppendFolded(out, QStringLiteral("NOTE:") + Escaped(contact.note));
        out += "END:VCARD\r\n";
    }
    return out;
}

} // namespace VCard
