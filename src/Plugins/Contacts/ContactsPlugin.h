#pragma once

#include <QList>

#include "Contacts/ContactsController.h"
#include "ModulePlugin.h"

class ContactDialog;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QStandardItemModel;
class QTreeView;

// The SIM's and the modem's phonebooks: one list at a time with its use and limits, a search field,
// and add, edit, delete and "send message" on the chosen contact. Everything goes through the modem link
// asynchronously; the tab shows a busy bar while a request is out and the modem's errors in words.
class ContactsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit ContactsPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Contacts"); }
    QString moduleName() const override { return QStringLiteral("contacts"); }

    void modemReady() override;
    void modemGone() override;

    // The storage shown (kSimStore or kModemStore).
    int currentStore() const;
    // The contacts last read, both storages.
    const QList<BLPbItem>& contacts() const { return _phonebooks->contacts(); }

    // "12 of 250 used" for one storage; empty when not known.
    static QString usageText(int used, int total);

private:
    void reload();
    // Shows what failed, the modem's reason and what to do next (hint, or a general advice).
    void fail(const QString& what, const Outcome& outcome, const QString& hint = {});
    // A write ended: the failure in words, else the phonebooks read again.
    void written(const ContactsController::Result& result, const QString& what, const QString& hint);
    ContactDialog* openDialog(int store);
    void setBusy(bool busy);
    void fillList();
    void updateLimits();
    void updateButtons();
    const BLPbItem* selectedContact() const;
    void addContact();
    void editContact();
    void deleteContact();
    void sendMessage();

    QComboBox* _store = nullptr;
    QLabel* _usage = nullptr;
    QLineEdit* _search = nullptr;
    QTreeView* _view = nullptr;
    QStandardItemModel* _model = nullptr;
    QLabel* _empty = nullptr;
    QLabel* _error = nullptr;
    QProgressBar* _busy = nullptr;
    QPushButton* _add = nullptr;
    QPushButton* _edit = nullptr;
    QPushButton* _delete = nullptr;
    QPushButton* _message = nullptr;
    QPushButton* _reload = nullptr;

    ContactsController* _phonebooks = nullptr;
    bool _ready = false;
    int _pending = 0;
};
