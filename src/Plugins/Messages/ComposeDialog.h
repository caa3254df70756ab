#pragma once

#include <QDialog>
#include <QStringList>

#include <optional>

#include "SMS/MessageItem.h"
#include "SMS/MessagesController.h"

class ModemLink;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

// The window for writing a message: recipients (separated by ";" or ","), the text, and a counter of the
// characters left and the parts the text will be sent in (the send path's own counting). Send goes to one
// recipient after the other; the modem splits a long text itself. A failure stops the round, is shown in
// words, and leaves the text and the recipients not yet served in the window, so nothing is lost. The
// dialog keeps nothing itself: the owner stores sent, failed and draft copies from the signals.
class ComposeDialog : public QDialog {
    Q_OBJECT
public:
    ComposeDialog(ModemLink& link, MessagesController& messages, QWidget* parent = nullptr);

    void setRecipients(const QStringList& numbers);
    void setText(const QString& text);
    QStringList recipients() const;
    QString text() const;

    // The stored message (draft or outbox) this window continues; the owner removes it once the text has
    // gone out or was saved again.
    const std::optional<MessageItem>& origin() const { return _origin; }
    void setOrigin(const std::optional<MessageItem>& item) { _origin = item; }

    bool isSending() const { return _sending; }
    // Sends to the recipients, as the Send button does.
    void send();

signals:
    void messageSent(const QString& number, const QString& text);
    void messageFailed(const QString& number, const QString& text, int code);
    void draftRequested(const QStringList& numbers, const QString& text);

private:
    void updateCounter();
    void sendNext(QStringList remaining);
    void sent(const MessagesController::Outcome& outcome, QStringList remaining, const QString& number,
              const QString& body);
    void setBusy(bool busy);
    void showError(const QString& text);
    // The recipients as they are sent, or none when one of them is not a phone number (said under the
    // field).
    std::optional<QStringList> dialNumbers();

    ModemLink& _link;
    MessagesController& _messages;
    QLineEdit* _recipients;
    QPlainTextEdit* _text;
    QLabel* _numberError;
    QLabel* _counter;
    QLabel* _status;
    QProgressBar* _progress;
    QPushButton* _send;
    QPushButton* _draft;
    QPushButton* _cancel;
    std::optional<MessageItem> _origin;
    bool _sending = false;
};
