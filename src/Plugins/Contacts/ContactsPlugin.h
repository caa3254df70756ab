#pragma once

#include <QList>

#include "Contacts/ContactsController.h"
#include "Contacts/LocalPhoneBook.h"
#include "Contacts/PhonebookCopy.h"
#include "ModulePlugin.h"

class ContactDialog;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QStandardItemModel;
class QTreeView;

// The SIM's and the modem's phonebooks and the computer's address book: one list at a time with its use and
// limits, a search field over all three, and add, edit, delete and "send message" on the chosen contact;
// vCard import and export, and copies from the computer to the SIM and back. The modem's phonebooks go
// through the modem link asynchronously; the tab shows a busy bar while a request is out and the modem's
// errors in words. The computer's book needs no modem and is read again whenever the tab is shown.
class ContactsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit ContactsPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Contacts"); }
    QString moduleName() const override { return QStringLiteral("contacts"); }

    void modemReady() override;
    void modemGone() override;

    // The computer's address book in the store list, beside kSimStore and kModemStore.
    static constexpr int kComputerStore = 2;

    // The storage shown (kSimStore, kModemStore or kComputerStore).
    int currentStore() const;
    // The contacts last read, both storages.
    const QList<BLPbItem>& contacts() const { return _phonebooks->contacts(); }

    // "12 of 250 used" for one storage; empty when not known.
    static QString usageText(int used, int total);

protected:
    void showEvent(QShowEvent* event) override;

private:
    // One row of the list: its store and index (the position in the computer's book).
    struct Chosen {
        int store = -1;
        int index = -1;
    };
    Chosen chosen() const;
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
    void importFile();
    void exportFile();
    void copyToSim();
    void copyNext();
    void copyToComputer();
    void notice(const QString& text);
    bool saveBook();

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
    QPushButton* _import = nullptr;
    QPushButton* _export = nullptr;
    QPushButton* _copyToSim = nullptr;
    QPushButton* _copyToComputer = nullptr;
    QLabel* _notice = nullptr;

    ContactsController* _phonebooks = nullptr;
    bool _ready = false;
    int _pending = 0;
    LocalPhoneBook _book;
    // A copy to the SIM under way: its entries, and the next one to write.
    QList<PhonebookCopy::Entry> _copying;
    qsizetype _copyNext = 0;
};
