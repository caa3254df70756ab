#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include "SMS/MessageItem.h"
#include "SmsRecords.h"

class ContactNames;

// One message as the conversations and the search show it, whichever box holds it: the modem's storages
// (as the modem lists them, long messages joined) or the boxes kept on the computer.
struct ConversationMessage {
    enum class Box { Sim, Modem, Computer, Outbox, Sent, Drafts, Archive };
    enum class Direction { Incoming, Outgoing };
    enum class State { Unread, Read, Unsent, Sent, Delivered, Pending, DeliveryFailed, Draft, Failed };

    Box box = Box::Sim;
    Direction direction = Direction::Incoming;
    State state = State::Read;
    QStringList numbers; // the sender, or the recipients
    QDateTime time;
    QString text;
    bool complete = true; // false while parts of a long message are missing
    int modemId = -1;     // the modem's table ID, -1 for a message kept on the computer
    int deliveryStatus = -1;

    static ConversationMessage fromModem(const BLSmsListItem& item);
    static ConversationMessage fromKept(const MessageItem& item);
};

namespace Conversation {

// Every message of the modem's list (status reports left out: they show on the sent message they answer)
// and of the computer's boxes.
QList<ConversationMessage> gather(const QList<BLSmsListItem>& modem, const QList<MessageItem>& kept);

// The messages to or from any of the numbers (the same line in the home region), oldest first.
QList<ConversationMessage> thread(const QList<ConversationMessage>& all, const QStringList& numbers,
                                  const QString& region);

// The messages whose text holds `text` (case-blind), whose number holds it (layout ignored, national or
// international form), or whose contact's name holds it; newest first. An empty text finds nothing.
QList<ConversationMessage> search(const QList<ConversationMessage>& all, const QString& text,
                                  const ContactNames& names);

// The numbers messages went to or came from, each with its latest message, the latest first.
struct Correspondent {
    QString number;
    ConversationMessage last;
    int unread = 0;
};
QList<Correspondent> correspondents(const QList<ConversationMessage>& all, const QString& region);

// Stable words for the tool and its JSON: "sim", "modem", "computer", "outbox", "sent", "drafts",
// "archive"; "unread", "read", "unsent", "sent", "delivered", "pending", "delivery-failed", "draft",
// "failed".
const char* boxName(ConversationMessage::Box box);
const char* stateName(ConversationMessage::State state);

} // namespace Conversation
