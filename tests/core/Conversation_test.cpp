#include "Contacts/ContactNames.h"
#include "SMS/Conversation.h"
#include "SMS/MessagesController.h"

#include <gtest/gtest.h>

namespace {

// Anna is in the computer's book with two numbers (as typed) and on the SIM under another spelling and a
// third number; Jürgen and the mailbox only on the SIM.
ContactNames Names() {
    const QList<LocalContact> book{
        {"a", "Anna Schmidt", {{"mobile", "0170 123 45 67"}, {"work", "+49 (30) 1234567"}}, {}, {}},
        {"b", "Anna Berg", {{"mobile", "0151 9999999"}}, {}, {}}};
    const QList<BLPbItem> phonebook{{1, "A. Schmidt", "+491701234567", 1},
                                    {1, "Anna Schmidt", "+491719999999", 2},
                                    {1, "Mailbox", "5500", 3},
                                    {2, "Jürgen", "+4930123456", 1}};
    return ContactNames(book, phonebook, "DE");
}

TEST(ContactNames, NameForANumberBookFirstThenPhonebooks) {
    const ContactNames names = Names();
    // clang-format off
    struct Row { const char* number; const char* name; const char* label; };
    const Row rows[] = {
        {"+491701234567", "Anna Schmidt", "Anna Schmidt (0170 1234567)"}, // book before the SIM's "A. Schmidt"
        {"01701234567",   "Anna Schmidt", "Anna Schmidt (0170 1234567)"},
        {"+49301234567",  "Anna Schmidt", "Anna Schmidt (030 1234567)"},
        {"+4930123456",   "Jürgen",       "Jürgen (030 123456)"},
        {"5500",          "Mailbox",      "Mailbox (5500)"},
        {"Vodafone",      "",             "Vodafone"},
        {"+441701234567", "",             "+44 1701 234567"},
        {"",              "",             ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.number);
        EXPECT_EQ(names.nameFor(row.number), QString::fromUtf8(row.name));
        EXPECT_EQ(names.label(row.number), QString::fromUtf8(row.label));
    }
    // clang-format off
    struct Person { const char* text; QStringList found; };
    const Person people[] = {
        {"anna schmidt", {"Anna Schmidt: +491701234567 +49301234567 +491719999999"}},
        {"anna",         {"Anna Schmidt: +491701234567 +49301234567 +491719999999", "Anna Berg: +491519999999"}},
        {"JÜRGEN",       {"Jürgen: +4930123456"}},
        {"Bob",          {}},
        {" ",            {}},
    };
    // clang-format on
    for (const Person& row : people) {
        SCOPED_TRACE(row.text);
        QStringList found;
        for (const ContactNames::Person& person : names.byName(QString::fromUtf8(row.text)))
            found << person.name + ": " + person.numbers.join(' ');
        EXPECT_EQ(found, row.found);
    }
}

BLSmsListItem Modem(int store, int tag, int type, bool complete, const char* number, int hour,
                    const char* text) {
    return {0,   hour, store, tag, type, 4, complete, 0, number, QDateTime(QDate(2026, 5, 1), QTime(hour, 0)),
            text};
}

MessageItem Kept(const QString& box, const char* number, int hour, const char* text,
                 const QVariantMap& extra = {}) {
    MessageItem item = MessageItem::createMessageItem({number}, text, {}, {},
                                                      QDateTime(QDate(2026, 5, 1), QTime(hour, 0)), 0, box);
    item.getMessageDictionary().insert(extra);
    return item;
}

// Every box, every state; each message reads "box:direction:state:text".
TEST(Conversation, ThreadsAndSearchOverEveryBox) {
    const QList<ConversationMessage> all = Conversation::gather(
        {Modem(SmsStorage::kSim, SmsTag::kRead, SmsType::kDeliver, true, "+491701234567", 10,
               "Meeting at 8?"),
         Modem(SmsStorage::kSim, SmsTag::kUnread, SmsType::kDeliver, true, "Vodafone", 9, "Your balance"),
         Modem(SmsStorage::kModem, SmsTag::kUnread, SmsType::kDeliver, false, "01701234567", 12, "Part one"),
         Modem(SmsStorage::kPc, SmsTag::kSent, SmsType::kSubmit, true, "+491701234567", 14, "Stored reply"),
         Modem(SmsStorage::kSim, SmsTag::kRead, SmsType::kStatusReport, true, "+491701234567", 11, "")},
        {Kept(SMS_BOX_SENDBOX, "+491701234567", 10, "Yes", {{MessagesController::kDeliveryStatusKey, 0}}),
         Kept(SMS_BOX_SENDBOX, "+491701234567", 11, "Really?",
              {{MessagesController::kDeliveryStatusKey, 70}}),
         Kept(SMS_BOX_SENDBOX, "+491701234567", 11, "Late", {{MessagesController::kDeliveryStatusKey, 33}}),
         Kept(SMS_BOX_DRAFT, "0170 1234567", 13, "Draft"), Kept(SMS_BOX_OUTBOX, "+4930123456", 8, "Not gone"),
         Kept(SMS_BOX_ACHIVE, "+491701234567", 7, "Old hello", {{MessagesController::kIncomingKey, true}}),
         Kept(SMS_BOX_ACHIVE, "+491701234567", 6, "Old answer")});
    const ContactNames names = Names();
    // clang-format off
    struct Row { bool thread; const char* what; const char* expected; };
    const Row rows[] = {
        {true,  "+491701234567", "archive:out:sent:Old answer|archive:in:read:Old hello|sim:in:read:Meeting at 8?|sent:out:delivered:Yes|sent:out:delivery-failed:Really?|sent:out:pending:Late|modem:in:unread:Part one|drafts:out:draft:Draft|computer:out:sent:Stored reply"},
        {true,  "Vodafone",      "sim:in:unread:Your balance"},
        {true,  "+4930999",      ""},
        {false, "MEETING",       "sim:in:read:Meeting at 8?"},
        {false, "0170 1234",     "computer:out:sent:Stored reply|drafts:out:draft:Draft|modem:in:unread:Part one|sent:out:delivery-failed:Really?|sent:out:pending:Late|sim:in:read:Meeting at 8?|sent:out:delivered:Yes|archive:in:read:Old hello|archive:out:sent:Old answer"},
        {false, "jürgen",        "outbox:out:failed:Not gone"},
        {false, "vodaf",         "sim:in:unread:Your balance"},
        {false, "",              ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const QString what = QString::fromUtf8(row.what);
        const QList<ConversationMessage> found =
            row.thread ? Conversation::thread(all, {what}, "DE") : Conversation::search(all, what, names);
        QStringList shown;
        for (const ConversationMessage& message : found)
            shown << QStringLiteral("%1:%2:%3:%4")
                         .arg(Conversation::boxName(message.box),
                              message.direction == ConversationMessage::Direction::Incoming ? "in" : "out",
                              Conversation::stateName(message.state), message.text);
        EXPECT_EQ(shown.join(QChar(0x7C)).toStdString(), row.expected);
    }
    EXPECT_FALSE(Conversation::thread(all, {"+491701234567"}, "DE")[6].complete);
}

} // namespace
