#include "PinDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ModemLink.h"
#include "Outcome.h"
#include "Pin/PinController.h"
#include "StatusText.h"

namespace {

QLineEdit* CodeField(QWidget* parent, int maxDigits) {
    auto* field = new QLineEdit(parent);
    field->setEchoMode(QLineEdit::Password);
    field->setMaxLength(maxDigits);
    field->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), field));
    return field;
}

} // namespace

PinDialog::PinDialog(ModemLink& link, bool puk, QWidget* parent) : QDialog(parent), _link(link), _puk(puk) {
    setWindowTitle(puk ? tr("SIM card blocked") : tr("SIM card locked"));
    setObjectName(puk ? QStringLiteral("pukDialog") : QStringLiteral("pinDialog"));
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(puk ? tr("The SIM card is blocked. Enter the PUK from the card's holder and "
                                      "choose a new PIN.")
                                 : tr("The SIM card is locked. Enter its PIN to use the modem."),
                             this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto* form = new QFormLayout;
    _code = CodeField(this, 8);
    _code->setObjectName(QStringLiteral("code"));
    form->addRow(puk ? tr("PUK:") : tr("PIN:"), _code);
    if (puk) {
        _newPin = CodeField(this, 8);
        _newPin->setObjectName(QStringLiteral("newPin"));
        _confirmPin = CodeField(this, 8);
        _confirmPin->setObjectName(QStringLiteral("confirmPin"));
        form->addRow(tr("New PIN:"), _newPin);
        form->addRow(tr("Repeat new PIN:"), _confirmPin);
    }
    layout->addLayout(form);
    _attempts = new QLabel(this);
    _attempts->setObjectName(QStringLiteral("attempts"));
    layout->addWidget(_attempts);
    _error = CNSPlainLabel(QStringLiteral("error"), this);
    CNSSetErrorStyle(_error);
    layout->addWidget(_error);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    _ok = buttons->button(QDialogButtonBox::Ok);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &PinDialog::submit);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (QLineEdit* field : {_code, _newPin, _confirmPin}) {
        if (field)
            connect(field, &QLineEdit::textChanged, this, &PinDialog::refresh);
    }
    connect(&_link, &ModemLink::simChecked, this, &PinDialog::refresh);
    refresh();
}

QString PinDialog::attemptsText() const {
    return _attempts->text();
}

QString PinDialog::errorText() const {
    return _error->text();
}

bool PinDialog::inputValid() const {
    if (_puk)
        return PinController::isPukWellFormed(_code->text()) &&
               PinController::isPinWellFormed(_newPin->text()) && _newPin->text() == _confirmPin->text();
    return PinController::isPinWellFormed(_code->text());
}

void PinDialog::refresh() {
    const int left = _puk ? _link.pukAttempts() : _link.pinAttempts();
    _attempts->setText(left >= 0 ? tr("Attempts left: %1").arg(QLocale().toString(left)) : QString());
    _ok->setEnabled(!_busy && inputValid());
}

void PinDialog::enter(const QString& code, const QString& newPin) {
    _code->setText(code);
    if (_puk) {
        _newPin->setText(newPin);
        _confirmPin->setText(newPin);
    }
    submit();
}

void PinDialog::submit() {
    if (_busy)
        return;
    if (!inputValid()) {
        _error->setText(_puk ? tr("The PUK has 8 digits; the new PIN 4 to 8, typed twice the same.")
                             : tr("The PIN has 4 to 8 digits."));
        return;
    }
    _busy = true;
    _error->clear();
    refresh();
    auto answered = [this](const QVariantMap& response) {
        _busy = false;
        const int code = Outcome::of(response).code;
        if (code == WORKER_OK) {
            accept();
            return;
        }
        _code->clear();
        _error->setText(code == PinResult::kWrongCode ? tr("Wrong code.")
                                                      : QString::fromStdString(ResultCodeText(code)));
        refresh();
    };
    if (_puk)
        _link.verifyPuk(_code->text(), _newPin->text(), answered);
    else
        _link.verifyPin(_code->text(), answered);
}
