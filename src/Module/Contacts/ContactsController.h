#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

#include "ModemLink.h"
#include "Outcome.h"
#include "PhonebookRecords.h"

// The SIM's and the modem's phonebooks for the views: the contacts of both, the use of both storages and
// their limits (the longest name and number each keeps), and adding, overwriting and deleting one entry.
// The last reading of each is kept; the limits are read once per modem.
//
// A write is checked before anything reaches the modem: a full phonebook, or a name or number longer
// than the storage keeps, is refused with the figures, not sent for the modem's bare "text string too
// long". The modem picks the index of a new entry from its last reading of the storage, so adding reads
// the storage first.
class ContactsController : public QObject {
    Q_OBJECT
public:
    // Where a flow stopped: one of its readings, or the write itself.
    enum class Step { List, Storage, Limits, Write };
    Q_ENUM(Step)

    // Why a write was refused before it was sent.
    struct Refusal {
        enum class Reason { None, Full, NameTooLong, NumberTooLong };
        Reason reason = Reason::None;
        int have = 0;  // entries in use, or the name's characters, or the number's digits
        int limit = 0; // the storage's size, or its longest name or number
    };

    struct Result {
        Outcome outcome;
        Step step = Step::Write;
        Refusal refusal;
        int index = 0; // of a new entry
    };

    // Runs after a reading's signal, for a flow that goes on.
    using Done = std::function<void(const Outcome&)>;

    explicit ContactsController(ModemLink& link, QObject* parent = nullptr);

    // Each reading keeps what it read (see contacts(), storage(), limits()) and says so.
    void readContacts(Done then = {});
    void readStorage(Done then = {});
    void readLimits(Done then = {});
    // The contacts, the use of both storages and (once) their limits; reloaded when done or stopped.
    void reload();
    void add(qint32 store, const QString& name, const QString& number);
    void update(const BLPbItem& item);
    void remove(qint32 store, qint32 index);

    const QList<BLPbItem>& contacts() const { return _contacts; }
    const BLPBStorageInfo& storage() const { return _storage; }
    bool hasStorage() const { return _hasStorage; }
    const BLPbConstraint& limits() const { return _limits; }
    bool hasLimits() const { return _hasLimits; }

    // The store's entries in use and its size; its longest name and number (0 when unknown).
    static int used(const BLPBStorageInfo& info, qint32 store);
    static int total(const BLPBStorageInfo& info, qint32 store);
    static int maxName(const BLPbConstraint& limits, qint32 store);
    static int maxNumber(const BLPbConstraint& limits, qint32 store);
    // Whether the entry fits the store's limits; a limit of 0 is unknown and takes anything. Names count
    // in characters; the number's leading "+" is its type, not one of its digits.
    static Refusal fit(const BLPbConstraint& limits, qint32 store, const QString& name,
                       const QString& number);

signals:
    void contactsRead(const Outcome& outcome, const QList<BLPbItem>& contacts);
    void storageRead(const Outcome& outcome, const BLPBStorageInfo& storage);
    void limitsRead(const Outcome& outcome, const BLPbConstraint& limits);
    void reloaded(const ContactsController::Result& result);
    void added(const ContactsController::Result& result);
    void updated(const ContactsController::Result& result);
    void removed(const ContactsController::Result& result);

private:
    template <typename Value>
    void read(const QString& name, Value& kept, bool& known,
              void (ContactsController::*readDone)(const Outcome&, const Value&), Done then);
    // The limits when known, else read now; a failed reading leaves the check to the modem.
    void withLimits(std::function<void()> then);
    void write(const QString& name, const QVariant& argument,
               void (ContactsController::*finished)(const Result&));
    static Result refused(const Refusal& refusal);

    ModemLink& _link;
    QList<BLPbItem> _contacts;
    bool _hasContacts = false;
    BLPBStorageInfo _storage;
    BLPbConstraint _limits;
    bool _hasStorage = false;
    bool _hasLimits = false;
};
