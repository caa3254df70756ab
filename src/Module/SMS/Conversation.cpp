#include "SMS/Conversation.h"

#include <algorithm>

#include "Contacts/ContactNames.h"
#include "PhoneNumbers.h"
#include "SMS/MessagesController.h"

namespace {

using Message = ConversationMessage;

// TP-Status: 0-31 delivered, 32-63 the network still tries, from 64 given up.
Message::State DeliveryState(int status) {
    if (status < 32)
        return Message::State::Delivered;
    return status < 64 ? Message::State::Pending : Message::State::DeliveryFailed;
}

QString Digits(const QString& text) {
    QString digits;
    for (const QChar c : text) {
        if (c.isDigit())
            digits += c;
    }
    return digits;
}

bool NumberHolds(const QString& number, const QString& wantedDigits, const QString& region) {
    const QString national = QString::fromStdString(PhoneNumbers::ForReading(
        ContactNames::canonical(number, region).toStdString(), region.toStdString()));
    return Digits(number).contains(wantedDigits) || Digits(national).contains(wantedDigits);
}

void SortByTime(QList<Message>& messages, bool newestFirst) {
    std::stable_sort(messages.begin(), messages.end(), [newestFirst](const Message& a, const Message& b) {
        return newestFirst ? a.time > b.time : a.time < b.time;
    });
}

} // namespace

ConversationMessage ConversationMessage::fromModem(const BLSmsListItem& item) {
    Message message;
    message.box = item.nStoreIn == SmsStorage::kSim     ? Box::Sim
                  : item.nStoreIn == SmsStorage::kModem ? Box::Modem
                                                        : Box::Computer;
    const bool outgoing = item.nTag == SmsTag::kUnsent || item.nTag == SmsTag::kSent;
    message.direction = outgoing ? Direction::Outgoing : Direction::Incoming;
    static const State states[] = {State::Unread, State::Read, State::Unsent, State::Sent};
    message.state = item.nTag >= 0 && item.nTag < 4 ? states[item.nTag] : State::Read;
    message.numbers = {item.strAddress};
    message.time = item.dateTime;
    message.text = item.strContent;
    message.complete = item.nCompleted != 0;
    message.modemId = item.nRef;
    return message;
}

ConversationMessage ConversationMessage::fromKept(const MessageItem& item) {
    Message message;
    const QVariantMap& dictionary = item.getMessageDictionary();
    const QString box = item.getBoxType();
    message.direction = Direction::Outgoing;
    message.state = State::Sent;
    if (box == SMS_BOX_OUTBOX) {
        message.box = Box::Outbox;
        message.state = State::Failed; // the outbox holds what could not be sent
    } else if (box == SMS_BOX_DRAFT) {
        message.box = Box::Drafts;
        message.state = State::Draft;
    } else {
        message.box = box == SMS_BOX_ACHIVE ? Box::Archive : Box::Sent;
        if (dictionary.value(MessagesController::kIncomingKey).toBool()) {
            message.direction = Direction::Incoming;
            message.state = State::Read;
        }
    }
    if (dictionary.contains(MessagesController::kDeliveryStatusKey)) {
        message.deliveryStatus = dictionary.value(MessagesController::kDeliveryStatusKey).toInt();
        message.state = DeliveryState(message.deliveryStatus);
    }
    message.numbers = item.getNumbers();
    message.time = item.getCreateTime();
    message.text = item.getContent();
    return message;
}

namespace Conversation {

QList<Message> gather(const QList<BLSmsListItem>& modem, const QList<MessageItem>& kept) {
    QList<Message> all;
    for (const BLSmsListItem& item : modem) {
        if (item.nType != SmsType::kStatusReport)
            all.append(Message::fromModem(item));
    }
    for (const MessageItem& item : kept)
        all.append(Message::fromKept(item));
    return all;
}

QList<Message> thread(const QList<Message>& all, const QStringList& numbers, const QString& region) {
    QList<Message> found;
    for (const Message& message : all) {
        const bool ours = std::any_of(numbers.cbegin(), numbers.cend(), [&](const QString& wanted) {
            return std::any_of(message.numbers.cbegin(), message.numbers.cend(), [&](const QString& number) {
                return LocalPhoneBook::sameNumber(number, wanted, region);
            });
        });
        if (ours)
            found.append(message);
    }
    SortByTime(found, false);
    return found;
}

QList<Message> search(const QList<Message>& all, const QString& text, const ContactNames& names) {
    const QString wanted = text.trimmed();
    if (wanted.isEmpty())
        return {};
    // Digits alone ("0170 123") are looked for in the numbers; with letters, the digits mean nothing.
    const QString wantedDigits =
        std::any_of(wanted.begin(), wanted.end(), [](QChar c) { return c.isLetter(); }) ? QString()
                                                                                        : Digits(wanted);
    QList<Message> found;
    for (const Message& message : all) {
        bool match = message.text.contains(wanted, Qt::CaseInsensitive);
        for (const QString& number : message.numbers) {
            match = match || number.contains(wanted, Qt::CaseInsensitive) ||
                    (!wantedDigits.isEmpty() && NumberHolds(number, wantedDigits, names.region())) ||
                    names.nameFor(number).contains(wanted, Qt::CaseInsensitive);
        }
        if (match)
            found.append(message);
    }
    SortByTime(found, true);
    return found;
}

QList<Correspondent> correspondents(const QList<Message>& all, const QString& region) {
    QList<Message> newest = all;
    SortByTime(newest, true);
    QList<Correspondent> people;
    for (const Message& message : newest) {
        for (const QString& number : message.numbers) {
            if (number.trimmed().isEmpty())
                continue;
            auto person = std::find_if(people.begin(), people.end(), [&](const Correspondent& held) {
                return LocalPhoneBook::sameNumber(held.number, number, region);
            });
            if (person == people.end())
                person = people.insert(people.end(), Correspondent{number, message, 0});
            if (message.state == Message::State::Unread)
                ++person->unread;
        }
    }
    return people;
}

const char* boxName(Message::Box box) {
    static const char* const names[] = {"sim", "modem", "computer", "outbox", "sent", "drafts", "archive"};
    return names[static_cast<int>(box)];
}

const char* stateName(Message::State state) {
    static const char* const names[] = {"unread",          "read",  "unsent", "sent", "delivered", "pending",
                                        "delivery-failed", "draft", "failed"};
    return names[static_cast<int>(state)];
}

} // namespace Conversation
