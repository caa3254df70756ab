#include "SMS/MessagesController.h"

#include <QPointer>

#include "HomeRegion.h"
#include "ModemLink.h"
#include "PhoneNumbers.h"
#include "RecordList.h"
#include "SMS/SMSStorage.h"
#include "SMS/SmsSegmentCounter.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

namespace {

MessagesController::Outcome OutcomeOf(const QVariantMap& response) {
    return {WorkNotification::GetErrorCode(response), WorkNotification::GetSubErrorCode(response)};
}

qint64 ReadKey(const BLSmsListItem& item) {
    return (static_cast<qint64>(item.nStoreIn) << 32) | static_cast<quint32>(item.nRef);
}

bool SameMessage(const BLSmsListItem& a, const BLSmsListItem& b) {
    return a.nStoreIn == b.nStoreIn && a.nRef == b.nRef;
}

} // namespace

MessagesController::MessagesController(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {
    qRegisterMetaType<MessagesController::Outcome>();
    _link.listenForReport(MESSAGE_RPT_RECEIVE_SMS);
    _link.listenForReport(MESSAGE_RPT_SMS_RELIST);
    // Through the modem service, the answers to other clients' sends (the tool's, a script's).
    _link.listenForReport(MESSAGE_SMS_SEND);
    _link.listenForReport(MESSAGE_SMS_GET_LIST);
    connect(&_link, &ModemLink::reportReceived, this, &MessagesController::onReport);
}

MessagesController::~MessagesController() = default;

void MessagesController::ask(const QString& name, const QVariant& argument, Done done) {
    _link.request(
        name, argument,
        [done = std::move(done)](const QVariantMap& response) {
            if (done)
                done(OutcomeOf(response));
        },
        this);
}

// ---- Steps ----

void MessagesController::initialise(Done done) {
    ask(MESSAGE_SMS_INIT, {}, std::move(done));
}

void MessagesController::identify(Done done) {
    if (const QString known = _link.equipment().strImsi; !known.isEmpty()) {
        _imsi = known;
        done({});
        return;
    }
    _link.request(
        MESSAGE_SYSTEM_GET_EQUIPMENT_INFO, {},
        [this, done = std::move(done)](const QVariantMap& response) {
            const Outcome outcome = OutcomeOf(response);
            if (outcome.ok())
                _imsi = WorkNotification::GetValueObject(response).value<BLEquipmentInfo>().strImsi;
            done(outcome);
        },
        this);
}

void MessagesController::useComputerInbox(Done done) {
    if (_imsi.isEmpty()) {
        done({});
        return;
    }
    ask(MESSAGE_SMS_USE_PC_INBOX, _imsi, std::move(done));
}

void MessagesController::list(Listed done) {
    _link.request(
        MESSAGE_SMS_GET_LIST, {},
        [done = std::move(done)](const QVariantMap& response) {
            const Outcome outcome = OutcomeOf(response);
            done(outcome, outcome.ok() ? RecordList<BLSmsListItem>(WorkNotification::GetValueObject(response))
                                       : QList<BLSmsListItem>());
        },
        this);
}

void MessagesController::send(const QString& number, const QString& text, Done done) {
    ask(MESSAGE_SMS_SEND, QVariant::fromValue(BLSmsSendItem{number, text}), std::move(done));
}

void MessagesController::remove(int id, Done done) {
    const int generation = _generation;
    _link.request(
        MESSAGE_SMS_DELETE, id,
        [this, id, generation, done = std::move(done)](const QVariantMap& response) {
            const Outcome outcome = OutcomeOf(response);
            if (outcome.ok() && generation == _generation &&
                _messages.removeIf([id](const BLSmsListItem& held) { return held.nRef == id; }) > 0)
                emit messagesChanged();
            done(outcome);
        },
        this);
}

void MessagesController::archive(const BLSmsListItem& item, Done done) {
    // The archived copy keeps the message's own time.
    const MessageItem copy = MessageItem::createMessageItem({item.strAddress}, item.strContent, QString(),
                                                            QString(), item.dateTime, 0, SMS_BOX_ACHIVE);
    if (item.nTag == SmsTag::kUnread || item.nTag == SmsTag::kRead)
        copy.getMessageDictionary().insert(kIncomingKey, true);
    if (keep(copy) != SMSStorage::kOK) {
        done({kStoreFailed, 0});
        return;
    }
    remove(item.nRef, std::move(done));
}

int MessagesController::segmentCount(const QString& text) {
    TSmsSegmentInfo info;
    // The send path replaces accented letters the GSM alphabet lacks.
    SmsSegmentCounter::GetMessageInfo(text, info, true);
    return info.nPackets;
}

// ---- Settings ----

void MessagesController::serviceCentre(std::function<void(const Outcome&, const QString&)> done) {
    _link.request(
        MESSAGE_SMS_GET_SC, {},
        [done = std::move(done)](const QVariantMap& response) {
            done(OutcomeOf(response), WorkNotification::GetValueObject(response).toString());
        },
        this);
}

void MessagesController::setServiceCentre(const QString& number, Done done) {
    ask(MESSAGE_SMS_SET_SC, number, std::move(done));
}

void MessagesController::setPreferredStorage(int storage, Done done) {
    ask(MESSAGE_SMS_SET_PREFERRED_STORAGE, storage, std::move(done));
}

void MessagesController::setStatusReport(bool on, Done done) {
    ask(MESSAGE_SMS_SET_STATUS_REPORT, on ? QStringLiteral("TRUE") : QStringLiteral("FALSE"),
        std::move(done));
}

void MessagesController::setValidity(const BLSmsValidPeriod& period, Done done) {
    ask(MESSAGE_SMS_SET_VALID_PERIOD, QVariant::fromValue(period), std::move(done));
}

void MessagesController::storageState(std::function<void(const Outcome&, const BLSmsStorageState&)> done) {
    _link.request(
        MESSAGE_SMS_GET_STORAGE_STATE, {},
        [done = std::move(done)](const QVariantMap& response) {
            done(OutcomeOf(response), WorkNotification::GetValueObject(response).value<BLSmsStorageState>());
        },
        this);
}

// ---- The boxes on the computer ----

QString MessagesController::imsi() const {
    const QString known = _link.equipment().strImsi;
    return known.isEmpty() ? _imsi : known;
}

SMSStorage* MessagesController::store() const {
    const QString current = imsi();
    if (current.isEmpty())
        return _store.get();
    if (!_store || _store->imsi() != current)
        _store = std::make_unique<SMSStorage>(current);
    return _store.get();
}

QList<MessageItem> MessagesController::box(const QString& boxType) const {
    SMSStorage* boxes = store();
    return boxes ? boxes->getMessageListByBoxType(boxType).value_or(QList<MessageItem>())
                 : QList<MessageItem>();
}

int MessagesController::keep(const MessageItem& item, const std::optional<MessageItem>& origin) {
    SMSStorage* boxes = store();
    if (!boxes)
        return SMSStorage::kNoSuchMessage;
    const int result = origin ? boxes->replaceMessageItem(*origin, item) : SMSStorage::kNoSuchMessage;
    // An origin another program removed meanwhile is no reason to lose the text.
    return result == SMSStorage::kNoSuchMessage ? boxes->saveMessageItem(item) : result;
}

int MessagesController::keep(const QStringList& numbers, const QString& text, const QString& boxType,
                             const std::optional<MessageItem>& origin) {
    return keep(MessageItem::createMessageItem(numbers, text, QString(), QString(), QDateTime(), 0, boxType),
                origin);
}

int MessagesController::removeKept(const MessageItem& item) {
    SMSStorage* boxes = store();
    return boxes ? boxes->deletMessageItem(item) : SMSStorage::kNoSuchMessage;
}

int MessagesController::moveKept(const MessageItem& item, const QString& boxType) {
    SMSStorage* boxes = store();
    return boxes ? boxes->moveMessageItem(item, boxType) : SMSStorage::kNoSuchMessage;
}

// ---- Following the modem ----

void MessagesController::follow() {
    ++_generation;
    _watching = true;
    _following = true;
    _loaded = false;
    _store.reset(); // the SIM may be another one
    reload();
    readAddressBook();
    loadContacts();
}

void MessagesController::reload() {
    const int generation = _generation;
    const QPointer<MessagesController> self(this);
    const auto failed = [self, generation](Step step, const Outcome& outcome) {
        if (!self || generation != self->_generation)
            return true;
        if (!outcome.ok())
            emit self->followFailed(step, outcome);
        return !outcome.ok();
    };
    // The modem readies its message settings, then the SIM's computer-side inbox is registered (so that
    // messages moved out of the modem memory are kept), then the message table is built; new-message
    // reports are only read once the table exists.
    initialise([this, failed, generation](const Outcome& outcome) {
        if (failed(Step::Preparing, outcome))
            return;
        _imsi = _link.equipment().strImsi;
        useComputerInbox([this, failed, generation](const Outcome&) {
            if (generation != _generation)
                return;
            list([this, failed](const Outcome& listed, const QList<BLSmsListItem>& items) {
                if (!failed(Step::Listing, listed))
                    keepListing(items);
            });
        });
    });
}

void MessagesController::stop() {
    ++_generation;
    _watching = false;
    _following = false;
    _loaded = false;
    _messages.clear();
    _contacts.clear();
    _readHere.clear();
    emit messagesChanged();
}

void MessagesController::keepListing(const QList<BLSmsListItem>& items) {
    _messages.clear();
    for (const BLSmsListItem& item : items) {
        if (item.nType != SmsType::kStatusReport)
            _messages.append(item);
    }
    _loaded = true;
    emit listed();
    emit messagesChanged();
}

void MessagesController::loadContacts() {
    const int generation = _generation;
    readPhonebooks([this, generation](const Outcome& outcome) {
        if (generation == _generation && outcome.ok())
            emit contactsChanged();
    });
}

void MessagesController::readPhonebooks(Done done) {
    _link.request(
        MESSAGE_PB_INIT_LIST, {},
        [this, done = std::move(done)](const QVariantMap& response) {
            const Outcome outcome = OutcomeOf(response);
            if (outcome.ok())
                _contacts = RecordList<BLPbItem>(WorkNotification::GetValueObject(response));
            done(outcome);
        },
        this);
}

void MessagesController::readAddressBook() {
    LocalPhoneBook book;
    book.load();
    _book = book.contacts();
}

void MessagesController::onReport(const QString& name, const QVariantMap& data) {
    if (!_watching)
        return;
    if (name == MESSAGE_RPT_SMS_RELIST) {
        // Only a table that was built is listed again: reports are read once it exists.
        if (_following && !_loaded)
            return;
        const int generation = _generation;
        list([this, generation](const Outcome& outcome, const QList<BLSmsListItem>& items) {
            if (!outcome.ok() || generation != _generation)
                return;
            if (_following)
                keepListing(items);
            emit relisted(items);
        });
        return;
    }
    if (name == MESSAGE_SMS_SEND) {
        const QVariant sent = WorkNotification::GetValueObject(data.value(USER_INFO).toMap());
        if (WorkNotification::GetErrorCode(data) == WORKER_OK &&
            sent.metaType() == QMetaType::fromType<BLSmsSendItem>())
            emit sentElsewhere(sent.value<BLSmsSendItem>());
        return;
    }
    if (name == MESSAGE_SMS_GET_LIST) {
        // Another client of the modem service listed the table: a message that came in meanwhile is in
        // that list and is never reported on its own. Taken as it is: listing again here would make two
        // followers set each other off.
        if (!OutcomeOf(data).ok() || (_following && !_loaded))
            return;
        const QList<BLSmsListItem> items = RecordList<BLSmsListItem>(WorkNotification::GetValueObject(data));
        if (_following)
            keepListing(items);
        emit relisted(items);
        return;
    }
    if (name != MESSAGE_RPT_RECEIVE_SMS)
        return;
    const QVariant value = WorkNotification::GetValueObject(data);
    if (value.metaType() != QMetaType::fromType<BLSmsListItem>())
        return;
    const auto item = value.value<BLSmsListItem>();
    if (item.nType == SmsType::kStatusReport) {
        if (_following)
            matchDeliveryReport(item);
        emit statusReportReceived(item);
        return;
    }
    if (_following)
        merge(item);
    emit messageReceived(item);
}

// The parts of a long message arrive one by one; each report carries what is in so far.
void MessagesController::merge(const BLSmsListItem& item) {
    bool known = false;
    for (BLSmsListItem& held : _messages) {
        if (SameMessage(held, item)) {
            held = item;
            known = true;
        }
    }
    if (!known)
        _messages.append(item);
    emit messagesChanged();
}

// The report names the recipient; it answers the latest message to that number still waiting for one.
void MessagesController::matchDeliveryReport(const BLSmsListItem& report) {
    SMSStorage* boxes = store();
    if (!boxes)
        return;
    QList<MessageItem> sent = boxes->getSendBoxList();
    for (auto it = sent.rbegin(); it != sent.rend(); ++it) {
        QVariantMap& dictionary = it->getMessageDictionary();
        if (dictionary.contains(kDeliveryStatusKey) || !sameNumber(it->getFristNumber(), report.strAddress))
            continue;
        dictionary.insert(kDeliveryStatusKey, report.nStatusReportStatus);
        dictionary.insert(kDeliveryTimeKey,
                          report.dateTime.isValid() ? report.dateTime : QDateTime::currentDateTime());
        const bool saved = boxes->saveMessageData() == SMSStorage::kOK;
        emit deliveryMatched(report, *it, saved);
        return;
    }
}

bool MessagesController::isUnread(const BLSmsListItem& item) const {
    return item.nTag == SmsTag::kUnread && !_readHere.contains(ReadKey(item));
}

void MessagesController::markRead(const BLSmsListItem& item) {
    _readHere.insert(ReadKey(item));
}

bool MessagesController::sameNumber(const QString& a, const QString& b) const {
    return PhoneNumbers::SameNumber(a.toStdString(), b.toStdString(), _link.homeRegion().toStdString());
}

ContactNames MessagesController::names() const {
    const QString region = _link.homeRegion();
    return ContactNames(_book, _contacts, region.isEmpty() ? HomeRegion::regionForMcc(imsi()) : region);
}

QString MessagesController::who(const QString& number) const {
    return names().label(number);
}

QString MessagesController::who(const QStringList& numbers) const {
    return names().label(numbers);
}

QList<ConversationMessage> MessagesController::everyMessage(const QList<BLSmsListItem>& modem) const {
    QList<BLSmsListItem> listed = modem;
    for (BLSmsListItem& item : listed) {
        if (item.nTag == SmsTag::kUnread && _readHere.contains(ReadKey(item)))
            item.nTag = SmsTag::kRead;
    }
    QList<MessageItem> kept;
    for (const QString& type : {SMS_BOX_OUTBOX, SMS_BOX_SENDBOX, SMS_BOX_DRAFT, SMS_BOX_ACHIVE})
        kept += box(type);
    return Conversation::gather(listed, kept);
}
