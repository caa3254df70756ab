#pragma once

#include <QString>
#include <QWidget>

#include "SMS/Conversation.h"

class MessagesController;
class QLabel;
class QListWidget;
class QPushButton;

// The Messages tab's conversations: on the left everyone messages went to or came from, with the latest
// message, or, while a search is typed, the messages of every box that match it; on the right the chosen
// person's messages in and out, oldest first, each with its time, state and box.
class ConversationView : public QWidget {
    Q_OBJECT
public:
    explicit ConversationView(MessagesController& messages, QWidget* parent = nullptr);

    // Reads the messages and the names again; the chosen conversation stays.
    void refresh();
    // Text, number or name to look for in every box; empty shows the conversations again.
    void setSearch(const QString& text);
    // Opens the conversation with that number (and the person's other numbers).
    void showNumber(const QString& number);
    QString currentNumber() const { return _number; }

signals:
    void replyRequested(const QString& number, const QString& name);
    // Unread messages of the modem were shown in a conversation and now count as read.
    void messagesRead();

private:
    void fillPeople();
    void fillThread();

    MessagesController& _messages;
    QList<ConversationMessage> _all;
    QString _search;
    QString _number;

    QListWidget* _people = nullptr;
    QLabel* _title = nullptr;
    QListWidget* _thread = nullptr;
    QPushButton* _reply = nullptr;
};
