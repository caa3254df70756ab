#pragma once

#include <QObject>
#include <QString>

#include <functional>

#include "Outcome.h"
#include "PinRecords.h"

class ModemLink;

// The SIM's PIN: its state and attempts left ("MESSAGE_PIN_CHECK_STATE"), whether the modem asks for the
// PIN at start ("MESSAGE_PIN_GET_STATE"), and the tries that spend an attempt: verify the PIN, verify the
// PUK with a new PIN, switch the PIN request, change the PIN.
//
// A code of the wrong form never reaches the SIM, where it would cost an attempt: the try ends at once
// with result 45 (invalid argument). After every try that reached the modem the SIM's state is read
// again (simStateRead), and a link that follows the modem checks it too, so the app's state follows.
class PinController : public QObject {
    Q_OBJECT
public:
    enum class PinRequest { Unknown, Off, On };
    Q_ENUM(PinRequest)

    using Done = std::function<void(Outcome outcome)>;
    using StateRead = std::function<void(Outcome outcome, const BLPinCheckState& state)>;
    using RequestRead = std::function<void(Outcome outcome, PinRequest request)>;

    explicit PinController(ModemLink& link, QObject* parent = nullptr);

    void readSimState(StateRead done = {});
    void readPinRequest(RequestRead done = {});

    void verifyPin(const QString& pin, Done done = {});
    void verifyPuk(const QString& puk, const QString& newPin, Done done = {});
    void setPinRequest(bool on, const QString& pin, Done done = {});
    void changePin(const QString& oldPin, const QString& newPin, Done done = {});

    // Whether a code has the form its kind needs (PIN 4 to 8 digits, PUK 8 digits).
    static bool isPinWellFormed(const QString& code);
    static bool isPukWellFormed(const QString& code);

signals:
    // The SIM's state as just read (only reads that succeeded).
    void simStateRead(const BLPinCheckState& state);
    void pinRequestRead(PinController::PinRequest request);
    // A try ended; the SIM's state has been read again by then.
    void tried(Outcome outcome);

private:
    void attempt(const QString& name, const QVariant& argument, bool wellFormed, Done done);

    ModemLink& _link;
};
