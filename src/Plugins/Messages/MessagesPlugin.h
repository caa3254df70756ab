#pragma once

#include <QList>
#include <QPointer>
#include <QSet>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <variant>

#include "BLRecords.h"
#include "ComposeDialog.h"
#include "ModulePlugin.h"
#include "SMS/MessageItem.h"

class QLabel;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QStandardItemModel;
class QToolButton;
class QTreeView;
class SMSStorage;

// The Messages tab: the messages on the SIM, in the modem and in the computer-side inbox (as the modem
// lists them), and the outbox, sent box, drafts and archive kept on the computer for the SIM. New
// messages appear as they arrive and are announced on the desktop; delivery reports are shown on the
// sent message they answer. The modem's folders empty while the modem is away; the computer's stay.
class MessagesPlugin : public ModulePlugin {
    Q_OBJECT
public:
    // The folders, in the order of the folder list.
    enum Folder { Sim, Modem, Computer, Outbox, Sent, Drafts, Archive, FolderCount };

    // A delivery report's status and time, kept in the sent message's dictionary.
    static inline const QString kDeliveryStatusKey = QStringLiteral("DELIVERY_STATUS");
    static inline const QString kDeliveryTimeKey = QStringLiteral("DELIVERY_TIME");

    explicit MessagesPlugin(ModuleContext& context, QWidget* parent = nullptr);
    ~MessagesPlugin() override;

    QString title() const override { return tr("Messages"); }
    QString moduleName() const override { return QStringLiteral("messages"); }

    void modemReady() override;
    void modemGone() override;

    // Opens the compose window addressed to the number (from the contacts).
    void composeTo(const QString& number, const QString& name = {});

    // The folder shown and the number of messages listed in it.
    Folder currentFolder() const { return _folder; }
    void showFolder(Folder folder);
    int listedCount() const;
    // The compose window opened last, while it is open.
    ComposeDialog* composeWindow() const { return _compose; }

private:
    using Entry = std::variant<BLSmsListItem, MessageItem>;

    void buildUi();
    void loadModemMessages();
    void onMessagesListed(const QVariantMap& response, int generation);
    // The worker fell behind a burst of new messages: the table it lists now holds them all.
    void relistModemMessages();
    void onReport(const QString& name, const QVariantMap& data);
    void applyDeliveryReport(const BLSmsListItem& report);
    void refreshFolders();
    void refreshList();
    void showSelected();
    void updateActions();
    void setBusy(bool busy);
    void showError(const QString& text);

    QList<Entry> entriesOf(Folder folder) const;
    std::optional<Entry> selectedEntry() const;
    bool isUnread(const BLSmsListItem& item) const;
    SMSStorage& store() const;

    ComposeDialog* openCompose(const QStringList& numbers, const QString& text,
                               const std::optional<MessageItem>& origin = std::nullopt);
    // Saves the message in the box; with an origin (the draft or unsent message it continues), the origin
    // is replaced in the same write.
    void keepLocal(const QStringList& numbers, const QString& text, const QString& box,
                   const std::optional<MessageItem>& origin = std::nullopt);
    int saveReplacing(const MessageItem& item, const std::optional<MessageItem>& origin);
    void reply();
    void forward();
    void removeSelected();
    void archiveSelected();
    // Deletes the message on the SIM or modem; failureText gets the reason as %1.
    void deleteFromModem(const BLSmsListItem& item, const QString& failureText);
    void moveSelected(const QString& box);
    void openSelected();
    void loadContacts();
    bool sameNumber(const QString& a, const QString& b) const;
    // The contact's name when a phonebook entry has the number, else the number as people read it.
    QString who(const QString& number) const;
    QString who(const QStringList& numbers) const;

    Folder _folder = Sim;
    QList<BLSmsListItem> _modemItems;
    QList<BLPbItem> _contacts;                  // the SIM's and the modem's phonebooks, for names in the list
    QSet<qint64> _readHere;                     // modem messages opened in this session (storage << 32 | ref)
    mutable std::unique_ptr<SMSStorage> _store; // the SIM's boxes, opened on first use
    mutable QString _storeImsi;
    int _generation = 0;
    bool _modemLoaded = false;
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
};
