#include "ConversationView.h"

#include <QHBoxLayout>

#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPalette>
#include <QPushButton>
#include <QSet>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

#include "MessageText.h"
#include "SMS/MessagesController.h"

namespace {

using Message = ConversationMessage;

QString timeText(const QDateTime& time) {
    return time.isValid() ? QLocale().toString(time, QLocale::ShortFormat) : QString();
}

QString stateText(const Message& message) {
    switch (message.state) {
    case Message::State::Unread:
        return ConversationView::tr("Unread");
    case Message::State::Read:
        return ConversationView::tr("Read");
    case Message::State::Unsent:
        return ConversationView::tr("Not sent");
    case Message::State::Sent:
        return ConversationView::tr("Sent");
    case Message::State::Delivered:
    case Message::State::Pending:
    case Message::State::DeliveryFailed:
        return MessageText::deliveryText(message.deliveryStatus);
    case Message::State::Draft:
        return ConversationView::tr("Draft");
    case Message::State::Failed:
        return ConversationView::tr("Could not be sent");
    }
    return {};
}

QString boxText(Message::Box box) {
    const QString names[] = {ConversationView::tr("SIM card"),
                             ConversationView::tr("Modem"),
                             ConversationView::tr("On this computer"),
                             ConversationView::tr("Outbox"),
                             ConversationView::tr("Sent"),
                             ConversationView::tr("Drafts"),
                             ConversationView::tr("Archive")};
    return names[static_cast<int>(box)];
}

} // namespace

ConversationView::ConversationView(MessagesController& messages, QWidget* parent)
    : QWidget(parent), _messages(messages) {
    setObjectName(QStringLiteral("conversationView"));
    _people = new QListWidget(this);
    _people->setObjectName(QStringLiteral("conversations"));
    _people->setAccessibleName(tr("Conversations"));
    _people->setMinimumWidth(220);
    _people->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _people->setSpacing(2);
    _title = new QLabel(this);
    _title->setObjectName(QStringLiteral("conversationTitle"));
    _title->setTextFormat(Qt::PlainText);
    _title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont bold = _title->font();
    bold.setBold(true);
    _title->setFont(bold);
    _reply = new QPushButton(tr("Reply"), this);
    _reply->setObjectName(QStringLiteral("conversationReply"));
    _reply->setEnabled(false);
    _thread = new QListWidget(this);
    _thread->setObjectName(QStringLiteral("thread"));
    _thread->setAccessibleName(tr("Messages of the conversation"));
    _thread->setWordWrap(true);
    _thread->setSelectionMode(QAbstractItemView::NoSelection);
    _thread->setSpacing(3);

    auto* header = new QHBoxLayout;
    header->addWidget(_title, 1);
    header->addWidget(_reply);
    auto* threadPane = new QWidget(this);
    auto* threadLayout = new QVBoxLayout(threadPane);
    threadLayout->setContentsMargins(0, 0, 0, 0);
    threadLayout->addLayout(header);
    threadLayout->addWidget(_thread, 1);
    auto* split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(_people);
    split->addWidget(threadPane);
    split->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(split);

    connect(_people, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item)
            showNumber(item->data(Qt::UserRole).toString());
    });
    connect(_reply, &QPushButton::clicked, this,
            [this] { emit replyRequested(_number, _messages.names().nameFor(_number)); });
}

void ConversationView::refresh() {
    _all = _messages.everyMessage();
    fillPeople();
    fillThread();
}

void ConversationView::setSearch(const QString& text) {
    if (text.trimmed() == _search)
        return;
    _search = text.trimmed();
    fillPeople();
}

void ConversationView::showNumber(const QString& number) {
    _number = number;
    fillThread();
}

void ConversationView::fillPeople() {
    const ContactNames names = _messages.names();
    QSignalBlocker quiet(_people);
    _people->clear();
    const auto add = [this](const QString& text, const QString& number, bool bold) {
        auto* item = new QListWidgetItem(text, _people);
        item->setData(Qt::UserRole, number);
        QFont font = item->font();
        font.setBold(bold);
        item->setFont(font);
        if (number == _number)
            _people->setCurrentItem(item);
    };
    if (_search.isEmpty()) {
        for (const Conversation::Correspondent& person : Conversation::correspondents(_all, names.region())) {
            const QString last = MessageText::firstLine(person.last.text, 40);
            add(names.label(person.number) + QStringLiteral("\n") + timeText(person.last.time) +
                    QStringLiteral(" · ") + last,
                person.number, person.unread > 0);
        }
        return;
    }
    const QList<Message> found = Conversation::search(_all, _search, names);
    for (const Message& message : found) {
        add(names.label(message.numbers) + QStringLiteral("\n") + boxText(message.box) +
                QStringLiteral(" · ") + timeText(message.time) + QStringLiteral(" · ") +
                MessageText::firstLine(message.text, 40),
            message.numbers.value(0), message.state == Message::State::Unread);
    }
    if (found.isEmpty()) {
        auto* none = new QListWidgetItem(tr("No message holds \"%1\"").arg(_search), _people);
        none->setFlags(Qt::NoItemFlags);
    }
}

void ConversationView::fillThread() {
    _thread->clear();
    // An alphanumeric sender ("Vodafone") cannot be answered.
    _reply->setEnabled(!_number.isEmpty() &&
                       std::none_of(_number.cbegin(), _number.cend(), [](QChar c) { return c.isLetter(); }));
    if (_number.isEmpty()) {
        _title->setText(tr("Choose a conversation on the left."));
        return;
    }
    const ContactNames names = _messages.names();
    // The person's other numbers belong to the conversation too.
    QStringList numbers{_number};
    if (const QString name = names.nameFor(_number); !name.isEmpty()) {
        for (const ContactNames::Person& person : names.byName(name)) {
            if (person.name == name)
                numbers += person.numbers;
        }
    }
    // What the conversation shows counts as read, as in the folders.
    QList<Message> thread = Conversation::thread(_all, numbers, names.region());
    QSet<int> unread;
    for (const Message& message : thread) {
        if (message.state == Message::State::Unread)
            unread.insert(message.modemId);
    }
    for (const BLSmsListItem& item : _messages.messages()) {
        if (unread.contains(item.nRef))
            _messages.markRead(item);
    }
    if (!unread.isEmpty()) {
        _all = _messages.everyMessage();
        thread = Conversation::thread(_all, numbers, names.region());
        fillPeople();
        emit messagesRead();
    }
    _title->setText(names.label(_number));
    const QColor outgoing = palette().color(QPalette::AlternateBase);
    for (const Message& message : thread) {
        const bool in = message.direction == Message::Direction::Incoming;
        QString text = message.text;
        if (!message.complete)
            text += QStringLiteral("\n") + tr("(Some parts of this message have not arrived.)");
        QStringList about{in ? tr("Received") : tr("Outgoing")};
        if (message.time.isValid())
            about << timeText(message.time);
        about << stateText(message) << boxText(message.box);
        auto* item =
            new QListWidgetItem(about.join(QStringLiteral(" · ")) + QStringLiteral("\n") + text, _thread);
        item->setTextAlignment(in ? Qt::AlignLeft : Qt::AlignRight);
        if (!in)
            item->setBackground(outgoing);
    }
    _thread->scrollToBottom();
}
