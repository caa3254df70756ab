#include "PinSettingsPage.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ModemLink.h"
#include "Pin/PinController.h"
#include "PinRecords.h"
#include "StatusText.h"

namespace {

QLineEdit* PinField(const char* objectName) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QLatin1String(objectName));
    edit->setEchoMode(QLineEdit::Password);
    edit->setMaxLength(8);
    edit->setMaximumWidth(220);
    edit->setInputMethodHints(Qt::ImhDigitsOnly | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
    edit->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,8}")), edit));
    return edit;
}

} // namespace

PinSettingsPage::PinSettingsPage(ModemLink& link, QWidget* parent)
    : QWidget(parent), _controller(new PinController(link, this)) {
    auto* layout = new QVBoxLayout(this);

    auto* stateBox = new QGroupBox(tr("PIN request"));
    auto* stateForm = new QFormLayout(stateBox);
    _checkState = new QLabel(QStringLiteral("-"));
    _checkState->setObjectName(QStringLiteral("pinCheckState"));
    _attempts = new QLabel(QStringLiteral("-"));
    _attempts->setObjectName(QStringLiteral("pinAttempts"));
    stateForm->addRow(tr("At start:"), _checkState);
    stateForm->addRow(tr("Attempts left:"), _attempts);
    _currentPin = PinField("currentPin");
    stateForm->addRow(tr("Current PIN:"), _currentPin);
    _toggle = new QPushButton(tr("Ask for the PIN at start"));
    _toggle->setObjectName(QStringLiteral("togglePin"));
    auto* toggleRow = new QHBoxLayout;
    toggleRow->addWidget(_toggle);
    toggleRow->addStretch(1);
    stateForm->addRow(QString(), toggleRow);
    layout->addWidget(stateBox);

    auto* changeBox = new QGroupBox(tr("Change PIN"));
    auto* changeForm = new QFormLayout(changeBox);
    changeForm->addRow(tr("Current PIN:"), _oldPin = PinField("oldPin"));
    changeForm->addRow(tr("New PIN:"), _newPin = PinField("newPin"));
    changeForm->addRow(tr("New PIN again:"), _confirmPin = PinField("confirmPin"));
    _change = new QPushButton(tr("Change PIN"));
    _change->setObjectName(QStringLiteral("changePin"));
    auto* changeRow = new QHBoxLayout;
    changeRow->addWidget(_change);
    changeRow->addStretch(1);
    changeForm->addRow(QString(), changeRow);
    auto* hint = new QLabel(tr("The PIN can only be changed while the modem asks for it at start."));
    hint->setWordWrap(true);
    changeForm->addRow(hint);
    layout->addWidget(changeBox);

    _status = new QLabel;
    _status->setObjectName(QStringLiteral("pinStatus"));
    _status->setWordWrap(true);
    layout->addWidget(_status);
    layout->addStretch(1);

    connect(_controller, &PinController::pinRequestRead, this, [this](PinController::PinRequest request) {
        showPinRequest(request == PinController::PinRequest::Unknown ? -1
                       : request == PinController::PinRequest::On    ? 1
                                                                     : 0);
    });
    connect(_controller, &PinController::simStateRead, this, [this](const BLPinCheckState& state) {
        if (!_ready)
            return;
        _attempts->setText(tr("PIN %1, PUK %2")
                               .arg(QString::fromStdString(AttemptsText(state.nPinCnt)),
                                    QString::fromStdString(AttemptsText(state.nPukCnt))));
    });
    connect(_toggle, &QPushButton::clicked, this, &PinSettingsPage::toggleCheck);
    connect(_change, &QPushButton::clicked, this, &PinSettingsPage::changePin);
    for (QLineEdit* edit : {_currentPin, _oldPin, _newPin, _confirmPin})
        connect(edit, &QLineEdit::textChanged, this, &PinSettingsPage::updateButtons);
    updateButtons();
}

void PinSettingsPage::modemReady() {
    _ready = true;
    _busy = false;
    setStatus({}, false);
    readState();
    updateButtons();
}

void PinSettingsPage::modemGone() {
    _ready = false;
    _busy = false;
    _enabled = -1;
    for (QLineEdit* edit : {_currentPin, _oldPin, _newPin, _confirmPin})
        edit->clear();
    _checkState->setText(QStringLiteral("-"));
    _attempts->setText(QStringLiteral("-"));
    updateButtons();
}

QString PinSettingsPage::pinProblem(const QString& pin) {
    // Only ASCII digits: a digit of another script would pass a "\d" check and cost a SIM attempt.
    return PinController::isPinWellFormed(pin) ? QString() : tr("A PIN has 4 to 8 digits.");
}

void PinSettingsPage::readState() {
    _controller->readPinRequest();
    _controller->readSimState();
}

void PinSettingsPage::showPinRequest(int enabled) {
    if (!_ready)
        return;
    _enabled = enabled;
    _checkState->setText(enabled < 0   ? tr("unknown")
                         : enabled > 0 ? tr("the modem asks for the PIN")
                                       : tr("the modem does not ask for the PIN"));
    updateButtons();
}

void PinSettingsPage::toggleCheck() {
    if (!_ready || _busy || _enabled < 0)
        return;
    const QString problem = pinProblem(_currentPin->text());
    if (!problem.isEmpty()) {
        setStatus(problem, true);
        return;
    }
    const bool enable = _enabled == 0;
    const QString pin = _currentPin->text();
    _currentPin->clear();
    _busy = true;
    _toggle->setText(tr("Please wait…"));
    updateButtons();
    _controller->setPinRequest(enable, pin, [this, enable](Outcome outcome) {
        finish(enable ? tr("Switching the PIN request on") : tr("Switching the PIN request off"),
               enable ? tr("The modem asks for the PIN from now on.")
                      : tr("The modem no longer asks for the PIN."),
               outcome.code);
    });
}

void PinSettingsPage::changePin() {
    if (!_ready || _busy)
        return;
    for (QLineEdit* edit : {_oldPin, _newPin}) {
        const QString problem = pinProblem(edit->text());
        if (!problem.isEmpty()) {
            setStatus(problem, true);
            edit->setFocus();
            return;
        }
    }
    if (_newPin->text() != _confirmPin->text()) {
        setStatus(tr("The new PIN and its repetition differ; type them again."), true);
        _newPin->clear();
        _confirmPin->clear();
        return;
    }
    const QString oldPin = _oldPin->text();
    const QString newPin = _newPin->text();
    for (QLineEdit* edit : {_oldPin, _newPin, _confirmPin})
        edit->clear();
    _busy = true;
    _change->setText(tr("Please wait…"));
    updateButtons();
    _controller->changePin(oldPin, newPin, [this](Outcome outcome) {
        finish(tr("Changing the PIN"), tr("The PIN was changed."), outcome.code);
    });
}

void PinSettingsPage::finish(const QString& what, const QString& done, int code) {
    _busy = false;
    if (!_ready)
        return;
    if (code == WORKER_OK) {
        setStatus(done, false);
    } else if (code == PinResult::kWrongCode) {
        setStatus(tr("%1 failed: the PIN was wrong. Attempts left are shown above; after the last one the "
                     "SIM needs the PUK from your operator.")
                      .arg(what),
                  true);
    } else if (code == PinResult::kPukRequired) {
        setStatus(tr("%1 failed: the SIM is blocked and needs the PUK from your operator.").arg(what), true);
    } else if (code == WORKER_ERR_NO_DATA_DEVICE) {
        setStatus(tr("%1 failed: the modem was unplugged.").arg(what), true);
    } else {
        setStatus(
            tr("%1 failed: %2 (code %3).").arg(what, QString::fromStdString(ResultCodeText(code))).arg(code),
            true);
    }
    // The SIM's state was read again after the try; whether it asks for the PIN may have changed.
    _controller->readPinRequest();
    updateButtons();
}

void PinSettingsPage::updateButtons() {
    if (!_busy) {
        _toggle->setText(_enabled == 1 ? tr("Stop asking for the PIN at start")
                                       : tr("Ask for the PIN at start"));
        _change->setText(tr("Change PIN"));
    }
    const bool usable = _ready && !_busy;
    _currentPin->setEnabled(usable && _enabled >= 0);
    _toggle->setEnabled(usable && _enabled >= 0 && !_currentPin->text().isEmpty());
    for (QLineEdit* edit : {_oldPin, _newPin, _confirmPin})
        edit->setEnabled(usable);
    _change->setEnabled(usable && !_oldPin->text().isEmpty() && !_newPin->text().isEmpty() &&
                        !_confirmPin->text().isEmpty());
}

void PinSettingsPage::setStatus(const QString& text, bool error) {
    _status->setText(text);
    CNSSetErrorStyle(_status, error);
}
