#pragma once

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

#include "Contacts/ContactNames.h"
#include "Contacts/LocalPhoneBook.h"
#include "Outcome.h"
#include "PhonebookRecords.h"
#include "SMS/Conversation.h"
#include "SMS/MessageItem.h"
#include "SmsRecords.h"

class ModemLink;
class SMSStorage;

// The messages of one SIM, for the desktop app and the tool alike: the modem's storages (SIM, modem memory
// and the computer-side inbox the modem moves messages into), the boxes kept on the computer (outbox, sent,
// drafts, archive), sending, deleting, archiving and moving, the modem's new-message and status reports,
// and the message settings (service centre, storage for new messages, delivery reports, validity).
//
// The tool runs the steps one by one (initialise, identify, useComputerInbox, list, ...), each answering a
// callback with an Outcome, and watch()es for the reports. The desktop app calls follow() when the modem is
// ready: the controller then keeps the modem's list (messages()) up to date through the reports, matches
// delivery reports to the sent messages they answer, and reads the phonebooks for the senders' names.
class MessagesController : public QObject {
    Q_OBJECT
public:
    using Outcome = ::Outcome;
    using Done = std::function<void(const Outcome&)>;
    using Listed = std::function<void(const Outcome&, const QList<BLSmsListItem>&)>;

    // A delivery report's status and time, kept in the sent message's dictionary.
    static inline const QString kDeliveryStatusKey = QStringLiteral("DELIVERY_STATUS");
    static inline const QString kDeliveryTimeKey = QStringLiteral("DELIVERY_TIME");
    // Set on a received message put in the archive; the other archived messages are ones sent from here.
    static inline const QString kIncomingKey = QStringLiteral("INCOMING");

    // Where follow() stopped.
    enum class Step { Preparing, Listing };
    Q_ENUM(Step)

    explicit MessagesController(ModemLink& link, QObject* parent = nullptr);
    ~MessagesController() override;

    // ---- Steps ----
    // The modem's message settings ("MESSAGE_SMS_INIT").
    void initialise(Done done);
    // The SIM's IMSI (imsi()): the link's when it read one, else asked of the modem.
    void identify(Done done);
    // Messages moved out of the modem memory are kept in the computer-side inbox of the SIM (imsi()).
    // Nothing is asked without an IMSI.
    void useComputerInbox(Done done);
    // The modem's message table: every storage, status reports included. The IDs of remove() come from it.
    void list(Listed done);
    // The text to one number; the modem splits a long text itself.
    void send(const QString& number, const QString& text, Done done);
    // The message of that table ID, wherever it is stored.
    void remove(int id, Done done);
    // A copy in the archive first; the modem's message goes only once the copy is safe. A copy that could
    // not be written fails with kStoreFailed and leaves the message on the modem.
    void archive(const BLSmsListItem& item, Done done);

    // The SIM and modem phonebooks, for the names of senders and recipients (names()).
    void readPhonebooks(Done done);
    // Reads the computer's address book again (names()).
    void readAddressBook();

    // The modem's reports reach messageReceived(), statusReportReceived() and relisted() from now on (the
    // tool's watch; follow() does it too).
    void watch() { _watching = true; }

    static constexpr int kStoreFailed = -1;
    // The parts the text goes out in, counted as the send path splits it.
    static int segmentCount(const QString& text);

    // ---- Settings ----
    void serviceCentre(std::function<void(const Outcome&, const QString&)> done);
    void setServiceCentre(const QString& number, Done done);
    void setPreferredStorage(int storage, Done done); // SmsStorage::k...
    void setStatusReport(bool on, Done done);
    void setValidity(const BLSmsValidPeriod& period, Done done);
    void storageState(std::function<void(const Outcome&, const BLSmsStorageState&)> done);

    // ---- The boxes on the computer (SMS_BOX_...), per SIM; empty while no IMSI is known ----
    QString imsi() const;
    QList<MessageItem> box(const QString& boxType) const;
    // Saves a new message in its box; with an origin (the draft or unsent message it continues), the
    // origin is replaced in the same write. SMSStorage's result codes.
    int keep(const MessageItem& item, const std::optional<MessageItem>& origin = std::nullopt);
    int keep(const QStringList& numbers, const QString& text, const QString& boxType,
             const std::optional<MessageItem>& origin = std::nullopt);
    int removeKept(const MessageItem& item);
    int moveKept(const MessageItem& item, const QString& boxType);

    // ---- Following the modem (the desktop app) ----
    // Initialises, registers the inbox, lists, and reads the phonebooks; from then on the list follows the
    // reports.
    void follow();
    // Initialises and lists again (the user asked for it).
    void reload();
    // The modem went away: its messages and contacts are forgotten, answers still under way are dropped.
    void stop();
    bool loaded() const { return _loaded; }
    // The modem's messages, without status reports.
    const QList<BLSmsListItem>& messages() const { return _messages; }
    // Unread on the modem and not opened here since the modem was ready.
    bool isUnread(const BLSmsListItem& item) const;
    void markRead(const BLSmsListItem& item);
    // Who is behind a number: the computer's address book, then the phonebooks read.
    ContactNames names() const;
    // "Name (number)" when a contact has the number, else the number as people read it.
    QString who(const QString& number) const;
    QString who(const QStringList& numbers) const;
    // The modem's messages as listed (list() or follow()) and the computer's four boxes, for the
    // conversations and the search.
    QList<ConversationMessage> everyMessage(const QList<BLSmsListItem>& modem) const;
    QList<ConversationMessage> everyMessage() const { return everyMessage(_messages); }

signals:
    // follow()'s list changed: loaded, a message arrived, one was deleted or archived.
    void messagesChanged();
    // follow()'s list was read from the modem (first, on reload, or after a burst); messagesChanged follows.
    void listed();
    void followFailed(MessagesController::Step step, const MessagesController::Outcome& outcome);
    void contactsChanged();
    // Every new-message report, parts of longer messages included (each with what is in so far).
    void messageReceived(const BLSmsListItem& item);
    void statusReportReceived(const BLSmsListItem& report);
    // While following: a status report was matched to the sent message it answers (saved: whether the
    // sent box could be written).
    void deliveryMatched(const BLSmsListItem& report, const MessageItem& sent, bool saved);
    // The modem fell behind a burst of new messages and listed its table again, or another client of the
    // modem service listed it: it holds them all.
    void relisted(const QList<BLSmsListItem>& items);
    // Another client of the modem service sent this message.
    void sentElsewhere(const BLSmsSendItem& item);

private:
    void ask(const QString& name, const QVariant& argument, Done done);
    void onReport(const QString& name, const QVariantMap& data);
    void merge(const BLSmsListItem& item);
    void matchDeliveryReport(const BLSmsListItem& report);
    void keepListing(const QList<BLSmsListItem>& items);
    void loadContacts();
    bool sameNumber(const QString& a, const QString& b) const;
    SMSStorage* store() const;

    ModemLink& _link;
    QString _imsi;
    int _generation = 0;
    bool _watching = false;
    bool _following = false;
    bool _loaded = false;
    QList<BLSmsListItem> _messages;
    QList<BLPbItem> _contacts;
    QList<LocalContact> _book;
    QSet<qint64> _readHere; // modem messages opened since the modem was ready (storage << 32 | ID)
    mutable std::unique_ptr<SMSStorage> _store;
};
