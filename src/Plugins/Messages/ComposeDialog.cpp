#include "ComposeDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "FailureText.h"
#include "MessageText.h"
#include "ModemLink.h"
#include "PhoneNumbers.h"
#include "SMS/MessagesController.h"
#include "SMS/SmsSegmentCounter.h"

ComposeDialog::ComposeDialog(ModemLink& link, MessagesController& messages, QWidget* parent)
    : QDialog(parent), _link(link), _messages(messages) {
    setObjectName(QStringLiteral("compose"));
    setWindowTitle(tr("New message"));
    setMinimumSize(420, 320);

    _recipients = new QLineEdit(this);
    _recipients->setObjectName(QStringLiteral("recipients"));
    _recipients->setPlaceholderText(tr("Numbers, separated by ;"));
    _numberError = CNSErrorLabel(QStringLiteral("numberError"), this);
    connect(_recipients, &QLineEdit::textEdited, _numberError, &QLabel::hide);
    _text = new QPlainTextEdit(this);
    _text->setObjectName(QStringLiteral("text"));
    _text->setAccessibleName(tr("Message text"));
    _text->setTabChangesFocus(true);
    _counter = new QLabel(this);
    _counter->setObjectName(QStringLiteral("counter"));
    _counter->setAlignment(Qt::AlignRight);
    _status = CNSPlainLabel(QStringLiteral("status"), this);
    _status->hide();
    _progress = new QProgressBar(this);
    _progress->setObjectName(QStringLiteral("progress"));
    _progress->setRange(0, 0);
    _progress->hide();

    auto* buttons = new QDialogButtonBox(this);
    _send = buttons->addButton(tr("Send"), QDialogButtonBox::AcceptRole);
    _send->setObjectName(QStringLiteral("send"));
    _send->setDefault(true);
    _draft = buttons->addButton(tr("Save as draft"), QDialogButtonBox::ActionRole);
    _draft->setObjectName(QStringLiteral("saveDraft"));
    _cancel = buttons->addButton(QDialogButtonBox::Cancel);
    _cancel->setObjectName(QStringLiteral("cancel"));

    auto* form = new QFormLayout;
    form->addRow(tr("To:"), _recipients);
    form->addRow(QString(), _numberError);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(_text, 1);
    layout->addWidget(_counter);
    layout->addWidget(_status);
    layout->addWidget(_progress);
    layout->addWidget(buttons);

    connect(_text, &QPlainTextEdit::textChanged, this, &ComposeDialog::updateCounter);
    connect(_send, &QPushButton::clicked, this, &ComposeDialog::send);
    connect(_draft, &QPushButton::clicked, this, [this] {
        emit draftRequested(recipients(), text());
        accept();
    });
    connect(_cancel, &QPushButton::clicked, this, &QDialog::reject);
    updateCounter();
}

void ComposeDialog::setRecipients(const QStringList& numbers) {
    _recipients->setText(numbers.join(QStringLiteral("; ")));
}

void ComposeDialog::setText(const QString& text) {
    _text->setPlainText(text);
}

QStringList ComposeDialog::recipients() const {
    return MessageText::splitRecipients(_recipients->text());
}

QString ComposeDialog::text() const {
    return _text->toPlainText();
}

void ComposeDialog::updateCounter() {
    TSmsSegmentInfo info;
    // The send path replaces accented letters the GSM alphabet lacks, so the counter does too.
    SmsSegmentCounter::GetMessageInfo(text(), info, true);
    _counter->setText(MessageText::counterText(info.nRemain, info.nPackets));
}

void ComposeDialog::showError(const QString& text) {
    _status->setText(text);
    _status->setVisible(!text.isEmpty());
}

void ComposeDialog::setBusy(bool busy) {
    _sending = busy;
    _progress->setVisible(busy);
    _send->setEnabled(!busy);
    _send->setText(busy ? tr("Sending…") : tr("Send"));
    _draft->setEnabled(!busy);
    _cancel->setEnabled(!busy);
    _recipients->setReadOnly(busy);
    _text->setReadOnly(busy);
}

std::optional<QStringList> ComposeDialog::dialNumbers() {
    const std::string region = _link.homeRegion().toStdString();
    QStringList numbers;
    for (const QString& typed : recipients()) {
        const PhoneNumbers::DialString parsed = PhoneNumbers::Parse(typed.toStdString(), region);
        if (!parsed.ok()) {
            _numberError->setText(QString::fromStdString(parsed.reason));
            _numberError->show();
            return std::nullopt;
        }
        numbers << QString::fromStdString(parsed.number);
    }
    _numberError->hide();
    return numbers;
}

void ComposeDialog::send() {
    if (recipients().isEmpty()) {
        showError(tr("Enter at least one recipient."));
        return;
    }
    const std::optional<QStringList> numbers = dialNumbers();
    if (!numbers) {
        showError({});
        return;
    }
    if (_link.state() != ModemLink::State::Ready) {
        showError(tr("The modem is not ready. Save the message as a draft and send it later."));
        return;
    }
    showError({});
    setBusy(true);
    sendNext(*numbers);
}

void ComposeDialog::sendNext(QStringList remaining) {
    if (remaining.isEmpty()) {
        setBusy(false);
        accept();
        return;
    }
    const QString number = remaining.first();
    const QString body = text();
    const QPointer<ComposeDialog> self(this);
    _messages.send(number, body,
                   [self, remaining, number, body](const MessagesController::Outcome& outcome) mutable {
                       if (self)
                           self->sent(outcome, remaining, number, body);
                   });
}

void ComposeDialog::sent(const MessagesController::Outcome& outcome, QStringList remaining,
                         const QString& number, const QString& body) {
    if (!outcome.ok()) {
        setBusy(false);
        setRecipients(remaining);
        showError(tr("The message to %1 could not be sent: %2. A copy is in the outbox; the text is still "
                     "here, press Send to try again.")
                      .arg(number, QString::fromStdString(
                                       FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp))));
        emit messageFailed(number, body, outcome.code);
        return;
    }
    emit messageSent(number, body);
    remaining.removeFirst();
    sendNext(remaining);
}
