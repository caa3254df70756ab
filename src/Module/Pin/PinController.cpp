#include "PinController.h"

#include "ModemLink.h"
#include "ModemTextCheck.h"
#include "WorkMessageNames.h"

PinController::PinController(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {}

bool PinController::isPinWellFormed(const QString& code) {
    return IsPinCodeWellFormed(code.toStdString(), PinCodeKind::Pin);
}

bool PinController::isPukWellFormed(const QString& code) {
    return IsPinCodeWellFormed(code.toStdString(), PinCodeKind::Puk);
}

void PinController::readSimState(StateRead done) {
    _link.request(
        MESSAGE_PIN_CHECK_STATE, {},
        [this, done](const QVariantMap& response) {
            const Outcome outcome = Outcome::of(response);
            const auto state = WorkNotification::GetValueObject(response).value<BLPinCheckState>();
            if (outcome.ok())
                emit simStateRead(state);
            if (done)
                done(outcome, state);
        },
        this);
}

void PinController::readPinRequest(RequestRead done) {
    // "TRUE" when the modem asks for the PIN at start.
    _link.request(
        MESSAGE_PIN_GET_STATE, {},
        [this, done](const QVariantMap& response) {
            const Outcome outcome = Outcome::of(response);
            PinRequest request = PinRequest::Unknown;
            if (outcome.ok())
                request = WorkNotification::GetValueObject(response).toString() == QLatin1String("TRUE")
                              ? PinRequest::On
                              : PinRequest::Off;
            emit pinRequestRead(request);
            if (done)
                done(outcome, request);
        },
        this);
}

void PinController::verifyPin(const QString& pin, Done done) {
    attempt(MESSAGE_PIN_VERIFY, pin, isPinWellFormed(pin), std::move(done));
}

void PinController::verifyPuk(const QString& puk, const QString& newPin, Done done) {
    attempt(MESSAGE_PIN_VERIFY_PUK, QVariant::fromValue(BLPINVerifyPukInfo{puk, newPin}),
            isPukWellFormed(puk) && isPinWellFormed(newPin), std::move(done));
}

void PinController::setPinRequest(bool on, const QString& pin, Done done) {
    attempt(MESSAGE_PIN_ENABLE, QVariant::fromValue(BLPINEnableInfo{on, pin}), isPinWellFormed(pin),
            std::move(done));
}

void PinController::changePin(const QString& oldPin, const QString& newPin, Done done) {
    attempt(MESSAGE_PIN_CHANGE, QVariant::fromValue(BLPINChangeInfo{oldPin, newPin}),
            isPinWellFormed(oldPin) && isPinWellFormed(newPin), std::move(done));
}

void PinController::attempt(const QString& name, const QVariant& argument, bool wellFormed, Done done) {
    if (!wellFormed) {
        const Outcome refused{WORKER_ERR_INVALID_ARGUMENT, 0};
        emit tried(refused);
        if (done)
            done(refused);
        return;
    }
    _link.request(
        name, argument,
        [this, done](const QVariantMap& response) {
            const Outcome outcome = Outcome::of(response);
            // A wrong code spends an attempt and a right one may unlock the SIM: both show in its state.
            readSimState([this, done, outcome](Outcome, const BLPinCheckState&) {
                // The tool's link stays Starting: only the app's link follows the SIM.
                const ModemLink::State state = _link.state();
                if (state != ModemLink::State::Starting && state != ModemLink::State::Absent)
                    _link.checkSim();
                emit tried(outcome);
                if (done)
                    done(outcome);
            });
        },
        this);
}
