#include "ContactsController.h"

#include <type_traits>

#include "BLRecords.h"
#include "RecordList.h"
#include "WorkMessageNames.h"

ContactsController::ContactsController(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {
    connect(&_link, &ModemLink::stateChanged, this, [this](ModemLink::State state) {
        if (state == ModemLink::State::Ready)
            return;
        // What was read belongs to the SIM that was ready.
        _contacts.clear();
        _hasContacts = _hasStorage = _hasLimits = false;
    });
}

int ContactsController::used(const BLPBStorageInfo& info, qint32 store) {
    return store == kSimStore ? info.nSimUsed : info.nMeUsed;
}

int ContactsController::total(const BLPBStorageInfo& info, qint32 store) {
    return store == kSimStore ? info.nSimTotal : info.nMeTotal;
}

int ContactsController::maxName(const BLPbConstraint& limits, qint32 store) {
    return store == kSimStore ? limits.nSimMaxNameLen : limits.nMeMaxNameLen;
}

int ContactsController::maxNumber(const BLPbConstraint& limits, qint32 store) {
    return store == kSimStore ? limits.nSimMaxNumberLen : limits.nMeMaxNumberLen;
}

ContactsController::Refusal ContactsController::fit(const BLPbConstraint& limits, qint32 store,
                                                    const QString& name, const QString& number) {
    const int nameLimit = maxName(limits, store);
    const int numberLimit = maxNumber(limits, store);
    const auto nameLength = static_cast<int>(name.toUcs4().size());
    const auto digits = static_cast<int>(number.size()) - (number.startsWith(QLatin1Char('+')) ? 1 : 0);
    if (nameLimit > 0 && nameLength > nameLimit)
        return {Refusal::Reason::NameTooLong, nameLength, nameLimit};
    if (numberLimit > 0 && digits > numberLimit)
        return {Refusal::Reason::NumberTooLong, digits, numberLimit};
    return {};
}

ContactsController::Result ContactsController::refused(const Refusal& refusal) {
    Result result;
    result.outcome.code =
        refusal.reason == Refusal::Reason::Full ? WORKER_ERR_GENERAL : WORKER_ERR_INVALID_ARGUMENT;
    result.refusal = refusal;
    return result;
}

template <typename Value>
void ContactsController::read(const QString& name, Value& kept, bool& known,
                              void (ContactsController::*readDone)(const Outcome&, const Value&), Done then) {
    RequestOutcome(_link, this, name, {},
                   [=, this, &kept, &known](const Outcome& outcome, const QVariant& value) {
                       if (outcome.ok()) {
                           if constexpr (std::is_same_v<Value, QList<BLPbItem>>)
                               kept = RecordList<BLPbItem>(value);
                           else
                               kept = value.value<Value>();
                           known = true;
                       }
                       emit(this->*readDone)(outcome, kept);
                       if (then)
                           then(outcome);
                   });
}

void ContactsController::readContacts(Done then) {
    read(MESSAGE_PB_INIT_LIST, _contacts, _hasContacts, &ContactsController::contactsRead, std::move(then));
}

void ContactsController::readStorage(Done then) {
    read(MESSAGE_PB_GET_STORAGE_INFO, _storage, _hasStorage, &ContactsController::storageRead,
         std::move(then));
}

void ContactsController::readLimits(Done then) {
    read(MESSAGE_PB_GET_CONSTRAINT, _limits, _hasLimits, &ContactsController::limitsRead, std::move(then));
}

void ContactsController::reload() {
    const auto stop = [this](const Outcome& outcome, Step step) { emit reloaded({outcome, step, {}, 0}); };
    readContacts([this, stop](const Outcome& list) {
        if (!list.ok())
            return stop(list, Step::List);
        readStorage([this, stop](const Outcome& storage) {
            if (!storage.ok() || _hasLimits)
                return stop(storage, Step::Storage);
            readLimits([stop](const Outcome& limits) { stop(limits, Step::Limits); });
        });
    });
}

void ContactsController::withLimits(std::function<void()> then) {
    if (_hasLimits)
        return then();
    readLimits([then](const Outcome&) { then(); });
}

void ContactsController::add(qint32 store, const QString& name, const QString& number) {
    const auto stop = [this](const Outcome& outcome, Step step) { emit added({outcome, step, {}, 0}); };
    readContacts([=, this](const Outcome& list) {
        if (!list.ok())
            return stop(list, Step::List);
        readStorage([=, this](const Outcome& storage) {
            if (!storage.ok())
                return stop(storage, Step::Storage);
            const int inUse = used(_storage, store);
            const int size = total(_storage, store);
            if (size > 0 && inUse >= size) {
                emit added(refused({Refusal::Reason::Full, inUse, size}));
                return;
            }
            withLimits([=, this] {
                const Refusal refusal = _hasLimits ? fit(_limits, store, name, number) : Refusal{};
                if (refusal.reason != Refusal::Reason::None) {
                    emit added(refused(refusal));
                    return;
                }
                write(MESSAGE_PB_ADD_ITEM, QVariant::fromValue(BLPBNewItem{store, name, number}),
                      &ContactsController::added);
            });
        });
    });
}

void ContactsController::update(const BLPbItem& item) {
    withLimits([this, item] {
        const Refusal refusal =
            _hasLimits ? fit(_limits, item.nStore, item.strName, item.strNumber) : Refusal{};
        if (refusal.reason != Refusal::Reason::None) {
            emit updated(refused(refusal));
            return;
        }
        write(MESSAGE_PB_UPDATE_ITEM, QVariant::fromValue(item), &ContactsController::updated);
    });
}

void ContactsController::remove(qint32 store, qint32 index) {
    write(MESSAGE_PB_DELETE_ITEM, QVariant::fromValue(BLPBDeleteItem{store, index}),
          &ContactsController::removed);
}

void ContactsController::write(const QString& name, const QVariant& argument,
                               void (ContactsController::*finished)(const Result&)) {
    RequestOutcome(_link, this, name, argument,
                   [this, finished](const Outcome& outcome, const QVariant& value) {
                       emit(this->*finished)({outcome, Step::Write, {}, outcome.ok() ? value.toInt() : 0});
                   });
}
