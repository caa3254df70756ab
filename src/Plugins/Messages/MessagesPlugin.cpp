#include "MessagesPlugin.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ComposeDialog.h"
#include "ConversationView.h"
#include "DesktopNotifier.h"
#include "FailureText.h"
#include "MessageText.h"
#include "SMS/SMSStorage.h"

namespace {

QString localBox(MessagesPlugin::Folder folder) {
    switch (folder) {
    case MessagesPlugin::Outbox:
        return SMS_BOX_OUTBOX;
    case MessagesPlugin::Sent:
        return SMS_BOX_SENDBOX;
    case MessagesPlugin::Drafts:
        return SMS_BOX_DRAFT;
    case MessagesPlugin::Archive:
        return SMS_BOX_ACHIVE;
    default:
        return {};
    }
}

int storageOf(MessagesPlugin::Folder folder) {
    switch (folder) {
    case MessagesPlugin::Sim:
        return SmsStorage::kSim;
    case MessagesPlugin::Modem:
        return SmsStorage::kModem;
    case MessagesPlugin::Computer:
        return SmsStorage::kPc;
    default:
        return 0;
    }
}

qint64 readKey(const BLSmsListItem& item) {
    return (static_cast<qint64>(item.nStoreIn) << 32) | static_cast<quint32>(item.nRef);
}

bool isOutgoing(const BLSmsListItem& item) {
    return item.nTag == SmsTag::kUnsent || item.nTag == SmsTag::kSent;
}

bool sameEntry(const std::variant<BLSmsListItem, MessageItem>& a,
               const std::variant<BLSmsListItem, MessageItem>& b) {
    const auto* left = std::get_if<BLSmsListItem>(&a);
    const auto* right = std::get_if<BLSmsListItem>(&b);
    if (left && right)
        return readKey(*left) == readKey(*right);
    if (!left && !right)
        return std::get<MessageItem>(a).isSameItem(std::get<MessageItem>(b));
    return false;
}

QString timeText(const QDateTime& time) {
    return time.isValid() ? QLocale().toString(time, QLocale::ShortFormat) : QString();
}

// A notification is short: the contact's name alone when there is one.
QString notifiedName(const MessagesController& messages, const QString& number) {
    const ContactNames names = messages.names();
    const QString name = names.nameFor(number);
    return name.isEmpty() ? names.forReading(number) : name;
}

QString failureText(const MessagesController::Outcome& outcome) {
    return QString::fromStdString(FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp));
}

} // namespace

MessagesPlugin::MessagesPlugin(ModuleContext& context, QWidget* parent)
    : ModulePlugin(context, parent), _messages(link()) {
    buildUi();
    bindController();
    refreshFolders();
    refreshList();
}

MessagesPlugin::~MessagesPlugin() = default;

void MessagesPlugin::buildUi() {
    _new = new QPushButton(tr("New"), this);
    _new->setObjectName(QStringLiteral("new"));
    _reply = new QPushButton(tr("Reply"), this);
    _reply->setObjectName(QStringLiteral("reply"));
    _forward = new QPushButton(tr("Forward"), this);
    _forward->setObjectName(QStringLiteral("forward"));
    _delete = new QPushButton(tr("Delete"), this);
    _delete->setObjectName(QStringLiteral("delete"));
    _move = new QToolButton(this);
    _move->setObjectName(QStringLiteral("move"));
    _move->setText(tr("Move to"));
    _move->setPopupMode(QToolButton::InstantPopup);
    _move->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto* moveMenu = new QMenu(_move);
    struct Target {
        QString name;
        QString label;
        QString box;
    };
    const Target targets[] = {{QStringLiteral("moveArchive"), tr("Archive"), SMS_BOX_ACHIVE},
                              {QStringLiteral("moveDrafts"), tr("Drafts"), SMS_BOX_DRAFT},
                              {QStringLiteral("moveOutbox"), tr("Outbox"), SMS_BOX_OUTBOX},
                              {QStringLiteral("moveSent"), tr("Sent"), SMS_BOX_SENDBOX}};
    for (const Target& target : targets) {
        QAction* action = moveMenu->addAction(target.label);
        action->setObjectName(target.name);
        action->setData(target.box);
        connect(action, &QAction::triggered, this, [this, box = target.box] { moveSelected(box); });
    }
    _move->setMenu(moveMenu);
    _refresh = new QPushButton(tr("Reload"), this);
    _refresh->setObjectName(QStringLiteral("reload"));
    _busy = new QProgressBar(this);
    _busy->setObjectName(QStringLiteral("busy"));
    _busy->setRange(0, 0);
    _busy->setMaximumWidth(120);
    _busy->setToolTip(tr("Reading the messages from the modem…"));
    _busy->hide();

    _search = new QLineEdit(this);
    _search->setObjectName(QStringLiteral("search"));
    _search->setPlaceholderText(tr("Search all messages"));
    _search->setAccessibleName(tr("Search all messages"));
    _search->setToolTip(tr("Any part of a message's text, a number or a contact's name"));
    _search->setClearButtonEnabled(true);
    _search->setMinimumWidth(200);

    auto* actions = new QHBoxLayout;
    for (QWidget* widget : std::initializer_list<QWidget*>{_new, _reply, _forward, _delete, _move, _refresh})
        actions->addWidget(widget);
    actions->addStretch(1);
    actions->addWidget(_busy);
    actions->addWidget(_search);

    _status = CNSPlainLabel(QStringLiteral("status"), this);
    _status->hide();

    _folders = new QListWidget(this);
    _folders->setObjectName(QStringLiteral("folders"));
    _folders->setAccessibleName(tr("Message folders"));
    _folders->setMinimumWidth(140);
    for (int folder = 0; folder < FolderCount; ++folder) {
        auto* item = new QListWidgetItem(_folders);
        item->setData(Qt::UserRole, folder);
    }
    new QListWidgetItem(tr("Conversations"), _folders);

    _model = new QStandardItemModel(this);
    _list = new QTreeView(this);
    _list->setObjectName(QStringLiteral("messages"));
    _list->setAccessibleName(tr("Messages"));
    _list->setModel(_model);
    _list->setRootIsDecorated(false);
    _list->setUniformRowHeights(true);
    _list->setSelectionBehavior(QAbstractItemView::SelectRows);
    _list->setSelectionMode(QAbstractItemView::SingleSelection);
    _list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    _list->setMinimumHeight(120);
    _empty = new QLabel(tr("No messages"), this);
    _empty->setObjectName(QStringLiteral("empty"));
    _empty->setAlignment(Qt::AlignCenter);
    _empty->setEnabled(false);

    _readerHeader = new QLabel(this);
    _readerHeader->setObjectName(QStringLiteral("readerHeader"));
    _readerHeader->setTextFormat(Qt::PlainText);
    _readerHeader->setWordWrap(true);
    _readerHeader->setTextInteractionFlags(Qt::TextSelectableByMouse);
    _reader = new QPlainTextEdit(this);
    _reader->setObjectName(QStringLiteral("reader"));
    _reader->setAccessibleName(tr("Message text"));
    _reader->setReadOnly(true);
    _reader->setPlaceholderText(tr("Select a message to read it."));

    auto* listPane = new QWidget(this);
    auto* listLayout = new QVBoxLayout(listPane);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->addWidget(_list, 1);
    listLayout->addWidget(_empty);
    auto* readerPane = new QWidget(this);
    auto* readerLayout = new QVBoxLayout(readerPane);
    readerLayout->setContentsMargins(0, 0, 0, 0);
    readerLayout->addWidget(_readerHeader);
    readerLayout->addWidget(_reader, 1);
    auto* right = new QSplitter(Qt::Vertical, this);
    right->addWidget(listPane);
    right->addWidget(readerPane);
    right->setStretchFactor(0, 3);
    right->setStretchFactor(1, 2);
    _conversations = new ConversationView(_messages, this);
    _pages = new QStackedWidget(this);
    _pages->addWidget(right);
    _pages->addWidget(_conversations);
    auto* split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(_folders);
    split->addWidget(_pages);
    split->setStretchFactor(1, 1);
    split->setSizes({180, 720});

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(actions);
    layout->addWidget(_status);
    layout->addWidget(split, 1);

    _folders->setCurrentRow(0);
    connect(_folders, &QListWidget::currentRowChanged, this, [this](int row) {
        const bool conversations = row == FolderCount;
        _pages->setCurrentWidget(conversations ? static_cast<QWidget*>(_conversations) : _pages->widget(0));
        for (QWidget* action : std::initializer_list<QWidget*>{_reply, _forward, _delete, _move})
            action->setVisible(!conversations);
        if (conversations) {
            _messages.readAddressBook();
            _conversations->refresh();
        } else if (row >= 0 && row < FolderCount && row != _folder) {
            _folder = static_cast<Folder>(row);
            refreshList();
        }
    });
    // A search looks through every folder, in the conversations.
    connect(_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        _conversations->setSearch(text);
        if (!text.trimmed().isEmpty())
            _folders->setCurrentRow(FolderCount);
    });
    connect(_conversations, &ConversationView::replyRequested, this, &MessagesPlugin::composeTo);
    connect(_conversations, &ConversationView::messagesRead, this, &MessagesPlugin::refreshFolders);
    connect(_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &MessagesPlugin::showSelected);
    connect(_list, &QTreeView::doubleClicked, this, &MessagesPlugin::openSelected);
    connect(_new, &QPushButton::clicked, this, [this] { openCompose({}, {}); });
    connect(_reply, &QPushButton::clicked, this, &MessagesPlugin::reply);
    connect(_forward, &QPushButton::clicked, this, &MessagesPlugin::forward);
    connect(_delete, &QPushButton::clicked, this, &MessagesPlugin::removeSelected);
    connect(_refresh, &QPushButton::clicked, this, [this] {
        _messages.readAddressBook(); // the book may have changed meanwhile
        if (link().state() == ModemLink::State::Ready)
            loadModemMessages();
        refreshFolders();
        refreshList();
    });
}

// ---- Loading ----

void MessagesPlugin::bindController() {
    connect(&_messages, &MessagesController::listed, this, [this] { setBusy(false); });
    connect(&_messages, &MessagesController::messagesChanged, this, [this] {
        refreshFolders();
        refreshList();
    });
    connect(&_messages, &MessagesController::contactsChanged, this, &MessagesPlugin::refreshList);
    // What the tool or a script sent through the modem service is kept as if sent from here.
    connect(&_messages, &MessagesController::sentElsewhere, this, [this](const BLSmsSendItem& item) {
        keepLocal({item.strNumber}, item.strContent, SMS_BOX_SENDBOX, std::nullopt);
    });
    connect(&_messages, &MessagesController::followFailed, this,
            [this](MessagesController::Step step, const MessagesController::Outcome& outcome) {
                setBusy(false);
                const QString text =
                    step == MessagesController::Step::Preparing
                        ? tr("The modem's messages could not be prepared: %1. Press Reload to try again.")
                        : tr("The messages could not be read from the modem: %1. Press Reload to try again.");
                showError(text.arg(failureText(outcome)));
            });
    connect(&_messages, &MessagesController::messageReceived, this, [this](const BLSmsListItem& item) {
        if (!item.nCompleted)
            return;
        const QString words = MessageText::firstLine(item.strContent, 40);
        context().notifier.notifyMessage(
            tr("New message"), notifiedName(_messages, item.strAddress) + QStringLiteral(": ") + words,
            {item.strAddress, QString::number(readKey(item))});
    });
    DesktopNotifier& notifier = context().notifier;
    connect(&notifier, &DesktopNotifier::readRequested, this, &MessagesPlugin::showMessage);
    connect(&notifier, &DesktopNotifier::replyRequested, this,
            [this](const QString& sender) { composeTo(sender); });
    // A reply typed into the notification goes out at once; the window shows how it went, and keeps the
    // text when sending fails.
    connect(&notifier, &DesktopNotifier::replyTyped, this,
            [this](const QString& sender, const QString& text) { openCompose({sender}, text)->send(); });
    connect(&_messages, &MessagesController::deliveryMatched, this,
            [this](const BLSmsListItem& report, const MessageItem&, bool saved) {
                if (!saved)
                    showError(tr("The delivery report could not be saved with the sent message."));
                context().notifier.notify(tr("Delivery report"),
                                          notifiedName(_messages, report.strAddress) + QStringLiteral(": ") +
                                              MessageText::deliveryText(report.nStatusReportStatus));
                refreshList();
            });
}

void MessagesPlugin::modemReady() {
    setBusy(true);
    showError({});
    _messages.follow();
    refreshFolders();
    refreshList();
}

void MessagesPlugin::modemGone() {
    _messages.stop();
    setBusy(false);
}

void MessagesPlugin::setBusy(bool busy) {
    _busy->setVisible(busy);
    _refresh->setEnabled(!busy);
}

void MessagesPlugin::showError(const QString& text) {
    _status->setText(text);
    _status->setVisible(!text.isEmpty());
}

void MessagesPlugin::loadModemMessages() {
    setBusy(true);
    showError({});
    _messages.reload();
}

// ---- Showing ----

QList<MessagesPlugin::Entry> MessagesPlugin::entriesOf(Folder folder) const {
    QList<Entry> entries;
    if (const int storage = storageOf(folder)) {
        for (const BLSmsListItem& item : _messages.messages()) {
            if (item.nStoreIn == storage)
                entries.append(item);
        }
        return entries;
    }
    for (const MessageItem& item : _messages.box(localBox(folder)))
        entries.append(item);
    return entries;
}

void MessagesPlugin::refreshFolders() {
    const QString names[FolderCount] = {tr("SIM card"), tr("Modem"),  tr("On this computer"), tr("Outbox"),
                                        tr("Sent"),     tr("Drafts"), tr("Archive")};
    for (int folder = 0; folder < FolderCount; ++folder) {
        const QList<Entry> entries = entriesOf(static_cast<Folder>(folder));
        int unread = 0;
        for (const Entry& entry : entries) {
            if (const auto* item = std::get_if<BLSmsListItem>(&entry); item && _messages.isUnread(*item))
                ++unread;
        }
        QListWidgetItem* row = _folders->item(folder);
        const bool modemFolder = storageOf(static_cast<Folder>(folder)) != 0;
        QString text = names[folder];
        if (!modemFolder || _messages.loaded())
            text += unread > 0 ? QStringLiteral(" (%1/%2)")
                                     .arg(QLocale().toString(unread), QLocale().toString(entries.size()))
                               : QStringLiteral(" (%1)").arg(QLocale().toString(entries.size()));
        row->setText(text);
        QFont font = row->font();
        font.setBold(unread > 0);
        row->setFont(font);
        row->setToolTip(unread > 0 ? tr("%1 unread").arg(QLocale().toString(unread)) : QString());
    }
}

int MessagesPlugin::listedCount() const {
    return _model->rowCount();
}

void MessagesPlugin::showFolder(Folder folder) {
    _folders->setCurrentRow(folder);
}

void MessagesPlugin::refreshList() {
    const bool incoming = _folder == Sim || _folder == Modem || _folder == Computer;
    // The message being read stays selected when the list changes under it (a new message came in).
    const std::optional<Entry> selected = selectedEntry();
    _listed = entriesOf(_folder);
    QSignalBlocker quiet(_list->selectionModel());
    _model->clear();
    _model->setHorizontalHeaderLabels(
        {incoming ? tr("From / To") : tr("To"), tr("Date"), tr("Message"), tr("Status")});
    // Newest first.
    std::stable_sort(_listed.begin(), _listed.end(), [](const Entry& a, const Entry& b) {
        const auto time = [](const Entry& e) {
            if (const auto* item = std::get_if<BLSmsListItem>(&e))
                return item->dateTime;
            return std::get<MessageItem>(e).getCreateTime();
        };
        return time(a) > time(b);
    });
    for (int row = 0; row < _listed.size(); ++row) {
        QString who, status;
        QDateTime time;
        QString text;
        bool bold = false;
        if (const auto* item = std::get_if<BLSmsListItem>(&_listed[row])) {
            who = _messages.who(item->strAddress);
            time = item->dateTime;
            text = item->strContent;
            bold = _messages.isUnread(*item);
            if (item->nTag == SmsTag::kUnsent)
                status = tr("Not sent");
            else if (item->nTag == SmsTag::kSent)
                status = tr("Sent");
            if (!item->nCompleted)
                status = tr("Incomplete (parts missing)");
        } else {
            const MessageItem& local = std::get<MessageItem>(_listed[row]);
            who = _messages.who(local.getNumbers());
            time = local.getCreateTime();
            text = local.getContent();
            const QVariantMap& dictionary = local.getMessageDictionary();
            if (dictionary.contains(MessagesController::kDeliveryStatusKey))
                status = MessageText::deliveryText(
                    dictionary.value(MessagesController::kDeliveryStatusKey).toInt());
        }
        QList<QStandardItem*> cells{new QStandardItem(who), new QStandardItem(timeText(time)),
                                    new QStandardItem(MessageText::firstLine(text)),
                                    new QStandardItem(status)};
        for (QStandardItem* cell : cells) {
            cell->setData(row, Qt::UserRole);
            if (bold) {
                QFont font = cell->font();
                font.setBold(true);
                cell->setFont(font);
            }
        }
        _model->appendRow(cells);
    }
    QHeaderView* header = _list->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(2, QHeaderView::Stretch);
    header->setSectionResizeMode(3, QHeaderView::ResizeToContents);
    const bool modemAway = incoming && !_messages.loaded();
    if (!modemAway)
        _empty->setText(tr("No messages"));
    else if (link().state() == ModemLink::State::Ready)
        _empty->setText(tr("Reading the messages from the modem…"));
    else
        _empty->setText(tr("The modem's messages show here once the modem is ready."));
    _empty->setVisible(_listed.isEmpty());
    if (selected) {
        for (int row = 0; row < _listed.size(); ++row) {
            if (sameEntry(_listed[row], *selected)) {
                _list->setCurrentIndex(_model->index(row, 0));
                break;
            }
        }
    }
    quiet.unblock();
    showSelected();
    if (_pages->currentWidget() == _conversations)
        _conversations->refresh();
}

void MessagesPlugin::showConversations() {
    _folders->setCurrentRow(FolderCount);
    const ContactNames names = _messages.names();
    const QList<Conversation::Correspondent> people =
        Conversation::correspondents(_messages.everyMessage(), names.region());
    const auto named = std::find_if(people.cbegin(), people.cend(), [&names](const auto& person) {
        return !names.nameFor(person.number).isEmpty();
    });
    if (named != people.cend())
        _conversations->showNumber(named->number);
    else if (!people.isEmpty())
        _conversations->showNumber(people.first().number);
    _conversations->refresh();
}

std::optional<MessagesPlugin::Entry> MessagesPlugin::selectedEntry() const {
    const QModelIndex current = _list->currentIndex();
    if (!current.isValid())
        return std::nullopt;
    const int row = current.data(Qt::UserRole).toInt();
    if (row < 0 || row >= _listed.size())
        return std::nullopt;
    return _listed.at(row);
}

void MessagesPlugin::showSelected() {
    const std::optional<Entry> entry = selectedEntry();
    if (!entry) {
        _readerHeader->clear();
        _reader->clear();
        updateActions();
        return;
    }
    if (const auto* item = std::get_if<BLSmsListItem>(&*entry)) {
        const QString who = isOutgoing(*item) ? tr("To: %1") : tr("From: %1");
        _readerHeader->setText(who.arg(_messages.who(item->strAddress)) + QStringLiteral("\n") +
                               timeText(item->dateTime));
        _reader->setPlainText(item->nCompleted ? item->strContent
                                               : item->strContent + QStringLiteral("\n\n") +
                                                     tr("(Some parts of this message have not arrived.)"));
        if (_messages.isUnread(*item)) {
            _messages.markRead(*item);
            const QModelIndex current = _list->currentIndex();
            for (int column = 0; column < _model->columnCount(); ++column) {
                if (QStandardItem* cell = _model->item(current.row(), column)) {
                    QFont font = cell->font();
                    font.setBold(false);
                    cell->setFont(font);
                }
            }
            refreshFolders();
        }
    } else {
        const MessageItem& local = std::get<MessageItem>(*entry);
        const bool incoming = local.getMessageDictionary().value(MessagesController::kIncomingKey).toBool();
        QString header = (incoming ? tr("From: %1") : tr("To: %1")).arg(_messages.who(local.getNumbers())) +
                         QStringLiteral("\n") + timeText(local.getCreateTime());
        const QVariantMap& dictionary = local.getMessageDictionary();
        if (dictionary.contains(MessagesController::kDeliveryStatusKey)) {
            header += QStringLiteral("\n") +
                      tr("Delivery report: %1 (%2)")
                          .arg(MessageText::deliveryText(
                                   dictionary.value(MessagesController::kDeliveryStatusKey).toInt()),
                               timeText(dictionary.value(MessagesController::kDeliveryTimeKey).toDateTime()));
        }
        _readerHeader->setText(header);
        _reader->setPlainText(local.getContent());
    }
    updateActions();
}

void MessagesPlugin::updateActions() {
    const std::optional<Entry> entry = selectedEntry();
    const bool modemEntry = entry && std::holds_alternative<BLSmsListItem>(*entry);
    const bool ready = link().state() == ModemLink::State::Ready;
    _reply->setEnabled(modemEntry && !isOutgoing(std::get<BLSmsListItem>(*entry)));
    _forward->setEnabled(entry.has_value());
    _delete->setEnabled(entry.has_value() && (!modemEntry || ready));
    _move->setEnabled(entry.has_value() && (!modemEntry || ready));
    const QString current = localBox(_folder);
    for (QAction* action : _move->menu()->actions()) {
        const QString box = action->data().toString();
        // From the modem only to the archive; between the computer's boxes, anywhere else.
        action->setVisible(modemEntry ? box == SMS_BOX_ACHIVE : box != current);
    }
}

// ---- Actions ----

ComposeDialog* MessagesPlugin::openCompose(const QStringList& numbers, const QString& text,
                                           const std::optional<MessageItem>& origin) {
    auto* dialog = new ComposeDialog(link(), _messages, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setRecipients(numbers);
    dialog->setText(text);
    dialog->setOrigin(origin);
    connect(dialog, &ComposeDialog::messageSent, this,
            [this, dialog](const QString& number, const QString& body) {
                const std::optional<MessageItem> origin = dialog->origin();
                dialog->setOrigin(std::nullopt);
                keepLocal({number}, body, SMS_BOX_SENDBOX, origin);
            });
    connect(dialog, &ComposeDialog::messageFailed, this,
            [this, dialog](const QString& number, const QString& body, int) {
                const std::optional<MessageItem> origin = dialog->origin();
                if (origin && origin->getBoxType() == SMS_BOX_OUTBOX)
                    return;
                MessageItem item = MessageItem::createMessageItem({number}, body, QString(), QString(),
                                                                  QDateTime(), 0, SMS_BOX_OUTBOX);
                if (_messages.keep(item, origin) != SMSStorage::kOK)
                    showError(tr("The unsent message could not be kept in the outbox; copy its text."));
                dialog->setOrigin(item);
                refreshFolders();
                refreshList();
            });
    connect(dialog, &ComposeDialog::draftRequested, this,
            [this, dialog](const QStringList& recipients, const QString& body) {
                keepLocal(recipients, body, SMS_BOX_DRAFT, dialog->origin());
            });
    _compose = dialog;
    dialog->show();
    return dialog;
}

void MessagesPlugin::keepLocal(const QStringList& numbers, const QString& text, const QString& box,
                               const std::optional<MessageItem>& origin) {
    if (_messages.keep(numbers, text, box, origin) != SMSStorage::kOK)
        showError(tr("The message could not be written to the message store in your home folder. Check "
                     "that the disk is not full."));
    refreshFolders();
    refreshList();
}

void MessagesPlugin::composeTo(const QString& number, const QString& name) {
    ComposeDialog* dialog = openCompose({number}, {});
    if (!name.isEmpty())
        dialog->setWindowTitle(tr("New message to %1").arg(name));
}

void MessagesPlugin::showMessage(const QString& key) {
    bool ok = false;
    const qint64 wanted = key.toLongLong(&ok);
    if (!ok)
        return;
    for (int folder = 0; folder < FolderCount; ++folder) {
        if (storageOf(static_cast<Folder>(folder)) == static_cast<int>(wanted >> 32))
            showFolder(static_cast<Folder>(folder));
    }
    for (int row = 0; row < _listed.size(); ++row) {
        const auto* item = std::get_if<BLSmsListItem>(&_listed[row]);
        if (item && readKey(*item) == wanted) {
            _list->setCurrentIndex(_model->index(row, 0));
            return;
        }
    }
}

void MessagesPlugin::reply() {
    const std::optional<Entry> entry = selectedEntry();
    if (const auto* item = entry ? std::get_if<BLSmsListItem>(&*entry) : nullptr)
        openCompose({item->strAddress}, {});
}

void MessagesPlugin::forward() {
    const std::optional<Entry> entry = selectedEntry();
    if (!entry)
        return;
    if (const auto* item = std::get_if<BLSmsListItem>(&*entry))
        openCompose({}, item->strContent);
    else
        openCompose({}, std::get<MessageItem>(*entry).getContent());
}

void MessagesPlugin::openSelected() {
    const std::optional<Entry> entry = selectedEntry();
    if (!entry)
        return;
    if (const auto* item = std::get_if<MessageItem>(&*entry)) {
        // A draft or an unsent message is continued where it was left.
        if (_folder == Drafts || _folder == Outbox)
            openCompose(item->getNumbers(), item->getContent(), *item);
        return;
    }
    reply();
}

void MessagesPlugin::removeSelected() {
    const std::optional<Entry> entry = selectedEntry();
    if (!entry)
        return;
    if (QMessageBox::question(this, tr("Delete message"),
                              tr("Delete the selected message? This cannot be undone."),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    if (const auto* item = std::get_if<MessageItem>(&*entry)) {
        if (_messages.removeKept(*item) != SMSStorage::kOK)
            showError(tr("The message store could not be written; the message is still there."));
        refreshFolders();
        refreshList();
        return;
    }
    setBusy(true);
    _messages.remove(std::get<BLSmsListItem>(*entry).nRef,
                     [this](const MessagesController::Outcome& outcome) {
                         deletedFromModem(outcome, tr("The message could not be deleted: %1."));
                     });
}

void MessagesPlugin::deletedFromModem(const MessagesController::Outcome& outcome,
                                      const QString& failureText) {
    setBusy(false);
    if (!outcome.ok())
        showError(failureText.arg(::failureText(outcome)));
    refreshFolders();
    refreshList();
}

void MessagesPlugin::archiveSelected() {
    const std::optional<Entry> entry = selectedEntry();
    const auto* found = entry ? std::get_if<BLSmsListItem>(&*entry) : nullptr;
    if (!found)
        return;
    setBusy(true);
    _messages.archive(*found, [this](const MessagesController::Outcome& outcome) {
        if (outcome.code == MessagesController::kStoreFailed) {
            setBusy(false);
            showError(tr("The archive could not be written; the message stays on the modem."));
            return;
        }
        deletedFromModem(outcome,
                         tr("The message was archived but could not be removed from the modem: %1."));
    });
}

void MessagesPlugin::moveSelected(const QString& box) {
    const std::optional<Entry> entry = selectedEntry();
    if (!entry)
        return;
    if (std::holds_alternative<BLSmsListItem>(*entry)) {
        if (box == SMS_BOX_ACHIVE)
            archiveSelected();
        return;
    }
    const MessageItem& item = std::get<MessageItem>(*entry);
    if (const int result = _messages.moveKept(item, box); result == SMSStorage::kNoSuchMessage)
        showError(tr("The message was changed by another program meanwhile; see the list again."));
    else if (result != SMSStorage::kOK)
        showError(tr("The message store could not be written; check the disk and try again."));
    refreshFolders();
    refreshList();
}
