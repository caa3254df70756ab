#include "NetworkController.h"

#include <QSet>

#include "BLRecords.h"
#include "RecordList.h"
#include "WorkMessageNames.h"

NetworkController::NetworkController(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {
    connect(&_link, &ModemLink::stateChanged, this, [this](ModemLink::State state) {
        if (state == ModemLink::State::Absent)
            _radioSupported = true; // the next stick may have them
    });
}

void NetworkController::send(const QString& name, const QVariant& argument,
                             std::function<void(const Outcome&, const QVariant&)> done) {
    RequestOutcome(_link, this, name, argument, std::move(done));
}

void NetworkController::noteUnsupported(const Outcome& outcome) {
    if (outcome.code != WORKER_ERR_NOT_SUPPORTED || !_radioSupported)
        return;
    _radioSupported = false;
    emit radioUnsupported(outcome);
}

void NetworkController::readInfo() {
    send(MESSAGE_NETWORK_GET_INFO, {}, [this](const Outcome& outcome, const QVariant& value) {
        emit infoRead(outcome, value.value<BLNetworkInfo>());
    });
}

void NetworkController::readSignal() {
    if (_readingSignal)
        return;
    _readingSignal = true;
    send(MESSAGE_NETWORK_GET_SIGNAL, {}, [this](const Outcome& outcome, const QVariant& value) {
        _readingSignal = false;
        emit signalRead(outcome, SignalSample::fromValue(value));
    });
}

void NetworkController::readRegistration() {
    if (_readingRegistration)
        return;
    _readingRegistration = true;
    send(NETWORK_GET_REG_STATE, {}, [this](const Outcome& outcome, const QVariant& value) {
        _readingRegistration = false;
        emit registrationRead(outcome, value.value<BLNetRegState>());
    });
}

void NetworkController::scan() {
    if (_scanning)
        return;
    _scanning = true;
    emit scanningChanged(true);
    send(MESSAGE_NETWORK_GET_LIST, {}, [this](const Outcome& outcome, const QVariant& value) {
        _scanning = false;
        emit scanningChanged(false);
        emit scanFinished(outcome,
                          outcome.ok() ? RecordList<BLNetworkListItem>(value) : QList<BLNetworkListItem>());
    });
}

BLNetworkSet NetworkController::automaticSelection() {
    BLNetworkSet selection;
    selection.nMask = BLNetworkSet::kModeGiven;
    selection.nMode = BLNetworkSet::kModeAutomatic;
    return selection;
}

BLNetworkSet NetworkController::operatorSelection(const QString& plmn, int accessTechnology) {
    BLNetworkSet selection;
    selection.nMask = BLNetworkSet::kModeGiven | BLNetworkSet::kFormatGiven | BLNetworkSet::kOperatorGiven;
    selection.nMode = BLNetworkSet::kModeManual;
    selection.nFormat = BLNetworkSet::kFormatNumeric;
    selection.strOperator = plmn;
    if (accessTechnology >= 0) {
        selection.nMask |= BLNetworkSet::kAcTGiven;
        selection.nAcT = accessTechnology;
    }
    return selection;
}

void NetworkController::selectAutomatic() {
    select(automaticSelection());
}

void NetworkController::selectOperator(const QString& plmn, int accessTechnology) {
    select(operatorSelection(plmn, accessTechnology));
}

void NetworkController::select(const BLNetworkSet& selection) {
    send(MESSAGE_NETWORK_SET, QVariant::fromValue(selection),
         [this, plmn = selection.strOperator](const Outcome& outcome, const QVariant&) {
             // The status bar follows the new registration at once rather than at the next poll.
             if (outcome.ok())
                 _link.refreshNetwork();
             emit selectFinished(outcome, plmn);
         });
}

QList<BLNetworkListItem> NetworkController::distinctOperators(const QList<BLNetworkListItem>& items) {
    QList<BLNetworkListItem> distinct;
    QSet<QString> seen;
    for (const BLNetworkListItem& item : items) {
        const QString key = item.strNumericAlpha + QLatin1Char('/') + QString::number(item.nAcT);
        if (!seen.contains(key)) {
            seen.insert(key);
            distinct.append(item);
        }
    }
    return distinct;
}

void NetworkController::readBand() {
    send(NETWORK_GET_BAND, {}, [this](const Outcome& outcome, const QVariant& value) {
        noteUnsupported(outcome);
        emit bandRead(outcome, static_cast<NetworkBand>(value.toInt()));
    });
}

void NetworkController::readMode() {
    send(NETWORK_GET_MODE, {}, [this](const Outcome& outcome, const QVariant& value) {
        noteUnsupported(outcome);
        emit modeRead(outcome, static_cast<NetworkMode>(value.toInt()));
    });
}

void NetworkController::setBand(NetworkBand band) {
    send(NETWORK_SET_BAND, static_cast<int>(band), [this](const Outcome& outcome, const QVariant&) {
        noteUnsupported(outcome);
        emit bandSet(outcome);
    });
}

void NetworkController::setMode(NetworkMode mode) {
    send(NETWORK_SET_MODE, static_cast<int>(mode), [this](const Outcome& outcome, const QVariant&) {
        noteUnsupported(outcome);
        emit modeSet(outcome);
    });
}

void NetworkController::applyRadio(NetworkBand band, NetworkMode mode) {
    send(NETWORK_SET_BAND, static_cast<int>(band), [this, mode](const Outcome& outcome, const QVariant&) {
        noteUnsupported(outcome);
        if (!outcome.ok()) {
            emit radioApplied(outcome, RadioStep::Band);
            return;
        }
        send(NETWORK_SET_MODE, static_cast<int>(mode), [this](const Outcome& modeOutcome, const QVariant&) {
            noteUnsupported(modeOutcome);
            if (modeOutcome.ok())
                _link.refreshNetwork();
            emit radioApplied(modeOutcome, RadioStep::Mode);
        });
    });
}
