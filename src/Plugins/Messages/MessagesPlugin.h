#pragma once

#include <QList>
#include <QPointer>

#include <optional>
#include <variant>

#include "ComposeDialog.h"
#include "ModulePlugin.h"
#include "SMS/MessageItem.h"
#include "SMS/MessagesController.h"

class ConversationView;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QStandardItemModel;
class QToolButton;
class QTreeView;

// The Messages tab: the messages on the SIM, in the modem and in the computer-side inbox (as the modem
// lists them), and the outbox, sent box, drafts and archive kept on the computer for the SIM. New
// messages appear as they arrive and are announced on the desktop; delivery reports are shown on the
// sent message they answer. The modem's folders empty while the modem is away; the computer's stay. The
// conversations gather each person's messages from every folder, and the search field looks through all.
class MessagesPlugin : public ModulePlugin {
    Q_OBJECT
public:
    // The folders, in the order of the folder list.
    enum Folder { Sim, Modem, Computer, Outbox, Sent, Drafts, Archive, FolderCount };

    explicit MessagesPlugin(ModuleContext& context, QWidget* parent = nullptr);
    ~MessagesPlugin() override;

    QString title() const override { return tr("Messages"); }
    QString moduleName() const override { return QStringLiteral("messages"); }

    void modemReady() override;
    void modemGone() override;

    // Opens the compose window addressed to the number (from the contacts).
    void composeTo(const QString& number, const QString& name = {});

    // Shows the received message with the key its notification carried, in its folder.
    void showMessage(const QString& key);

    // The conversations (below the folders in the folder list), opened on the latest one with a contact's
    // name, else the latest.
    Q_INVOKABLE void showConversations();
    ConversationView* conversations() const { return _conversations; }

    // The folder shown and the number of messages listed in it.
    Folder currentFolder() const { return _folder; }
    void showFolder(Folder folder);
    int listedCount() const;
    // The compose window opened last, while it is open.
    ComposeDialog* composeWindow() const { return _compose; }

private:
    using Entry = std::variant<BLSmsListItem, MessageItem>;

    void buildUi();
    void bindController();
    void loadModemMessages();
    void refreshFolders();
    void refreshList();
    void showSelected();
    void updateActions();
    void setBusy(bool busy);
    void showError(const QString& text);

    QList<Entry> entriesOf(Folder folder) const;
    std::optional<Entry> selectedEntry() const;

    ComposeDialog* openCompose(const QStringList& numbers, const QString& text,
                               const std::optional<MessageItem>& origin = std::nullopt);
    // Saves the message in the box; with an origin (the draft or unsent message it continues), the origin
    // is replaced in the same write.
    void keepLocal(const QStringList& numbers, const QString& text, const QString& box,
                   const std::optional<MessageItem>& origin = std::nullopt);
    void reply();
    void forward();
    void removeSelected();
    void archiveSelected();
    // The answer of a delete on the SIM or modem; failureText gets the reason as %1.
    void deletedFromModem(const MessagesController::Outcome& outcome, const QString& failureText);
    void moveSelected(const QString& box);
    void openSelected();

    MessagesController _messages;
    Folder _folder = Sim;
    QList<Entry> _listed;
    QPointer<ComposeDialog> _compose;

    QListWidget* _folders = nullptr;
    QTreeView* _list = nullptr;
    QStandardItemModel* _model = nullptr;
    QLabel* _empty = nullptr;
    QLabel* _readerHeader = nullptr;
    QPlainTextEdit* _reader = nullptr;
    QLabel* _status = nullptr;
    QProgressBar* _busy = nullptr;
    QPushButton* _new = nullptr;
    QPushButton* _reply = nullptr;
    QPushButton* _forward = nullptr;
    QPushButton* _delete = nullptr;
    QToolButton* _move = nullptr;
    QPushButton* _refresh = nullptr;
    QLineEdit* _search = nullptr;
    QStackedWidget* _pages = nullptr;
    ConversationView* _conversations = nullptr;
};
