#include "ContactsPlugin.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ContactDialog.h"
#include "Contacts/VCardFile.h"
#include "FailureText.h"
#include "Messages/MessagesPlugin.h"
#include "PhoneNumbers.h"

namespace {

constexpr int kIndexRole = Qt::UserRole + 1;
constexpr int kStoreRole = Qt::UserRole + 2;

// What was under way where a phonebook flow stopped; what for the write itself.
QString StepText(ContactsController::Step step, const QString& what) {
    switch (step) {
    case ContactsController::Step::List:
        return ContactsPlugin::tr("Reading the phonebooks");
    case ContactsController::Step::Storage:
        return ContactsPlugin::tr("Reading the phonebooks' use");
    case ContactsController::Step::Limits:
        return ContactsPlugin::tr("Reading the phonebooks' limits");
    case ContactsController::Step::Write:
        break;
    }
    return what;
}

} // namespace

ContactsPlugin::ContactsPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {
    _store = new QComboBox(this);
    _store->setObjectName(QStringLiteral("store"));
    _store->addItem(tr("SIM card"), kSimStore);
    _store->addItem(tr("Modem"), kModemStore);
    _store->addItem(tr("Computer"), kComputerStore);
    _usage = new QLabel(this);
    _usage->setObjectName(QStringLiteral("usage"));
    _usage->setTextFormat(Qt::PlainText);
    _search = new QLineEdit(this);
    _search->setObjectName(QStringLiteral("search"));
    _search->setPlaceholderText(tr("Search names and numbers"));
    _search->setClearButtonEnabled(true);
    _search->setAccessibleName(tr("Search contacts"));
    _busy = new QProgressBar(this);
    _busy->setObjectName(QStringLiteral("busy"));
    _busy->setRange(0, 0);
    _busy->setMaximumWidth(120);
    _busy->setTextVisible(false);
    _busy->hide();

    auto* top = new QHBoxLayout;
    top->addWidget(CNSBuddyLabel(tr("Phonebook:"), _store, this));
    top->addWidget(_store);
    top->addWidget(_usage, 1);
    top->addWidget(_busy);
    top->addWidget(_search, 1);

    _model = new QStandardItemModel(0, 4, this);
    _model->setHorizontalHeaderLabels({tr("Name"), tr("Number"), tr("E-mail"), tr("Phonebook")});
    _view = new QTreeView(this);
    _view->setObjectName(QStringLiteral("list"));
    _view->setAccessibleName(tr("Contacts"));
    _view->setModel(_model);
    _view->setRootIsDecorated(false);
    _view->setUniformRowHeights(true);
    _view->setSelectionMode(QAbstractItemView::SingleSelection);
    _view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    _view->setSortingEnabled(true);
    _view->sortByColumn(0, Qt::AscendingOrder);
    _view->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    _view->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    _view->setMinimumHeight(160);

    _empty = new QLabel(this);
    _empty->setObjectName(QStringLiteral("empty"));
    _empty->setAlignment(Qt::AlignCenter);
    _empty->setTextFormat(Qt::PlainText);
    _error = CNSErrorLabel(QStringLiteral("error"), this);
    _notice = new QLabel(this);
    _notice->setObjectName(QStringLiteral("notice"));
    _notice->setTextFormat(Qt::PlainText);
    _notice->setWordWrap(true);
    _notice->hide();

    _add = new QPushButton(tr("&Add…"), this);
    _add->setObjectName(QStringLiteral("add"));
    _edit = new QPushButton(tr("&Edit…"), this);
    _edit->setObjectName(QStringLiteral("edit"));
    _delete = new QPushButton(tr("&Delete"), this);
    _delete->setObjectName(QStringLiteral("delete"));
    _message = new QPushButton(tr("Send &message"), this);
    _message->setObjectName(QStringLiteral("sendMessage"));
    _reload = new QPushButton(tr("&Reload"), this);
    _reload->setObjectName(QStringLiteral("reload"));
    _import = new QPushButton(tr("&Import…"), this);
    _import->setObjectName(QStringLiteral("import"));
    _import->setToolTip(tr("Read a vCard file into the computer's address book"));
    _export = new QPushButton(tr("E&xport…"), this);
    _export->setObjectName(QStringLiteral("export"));
    _export->setToolTip(tr("Write the phonebook shown to a vCard file"));
    _copyToSim = new QPushButton(tr("Copy to &SIM"), this);
    _copyToSim->setObjectName(QStringLiteral("copyToSim"));
    _copyToComputer = new QPushButton(tr("Copy to &computer"), this);
    _copyToComputer->setObjectName(QStringLiteral("copyToComputer"));
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {_add, _edit, _delete, _message, _copyToSim, _copyToComputer})
        buttons->addWidget(button);
    buttons->addStretch(1);
    for (QPushButton* button : {_import, _export, _reload})
        buttons->addWidget(button);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(_view, 1);
    layout->addWidget(_empty);
    layout->addWidget(_error);
    layout->addWidget(_notice);
    layout->addLayout(buttons);

    _phonebooks = new ContactsController(link(), this);
    connect(_phonebooks, &ContactsController::contactsRead, this, [this](const Outcome& outcome) {
        if (_ready && outcome.ok())
            fillList();
    });
    connect(_phonebooks, &ContactsController::storageRead, this, [this](const Outcome& outcome) {
        if (_ready && outcome.ok())
            updateLimits();
    });
    connect(_phonebooks, &ContactsController::limitsRead, this, [this](const Outcome& outcome) {
        if (_ready && outcome.ok())
            updateLimits();
    });
    connect(_phonebooks, &ContactsController::reloaded, this,
            [this](const ContactsController::Result& result) {
                if (!_ready)
                    return;
                setBusy(false);
                if (result.outcome.ok())
                    return;
                fail(StepText(result.step, {}), result.outcome);
            });
    connect(_phonebooks, &ContactsController::added, this, [this](const ContactsController::Result& result) {
        if (!_copying.isEmpty()) {
            setBusy(false);
            PhonebookCopy::Entry& entry = _copying[_copyNext++];
            if (result.refusal.reason == ContactsController::Refusal::Reason::Full) {
                // Nothing after it fits either.
                for (qsizetype at = _copyNext - 1; at < _copying.size(); ++at) {
                    if (_copying.at(at).copied())
                        _copying[at].fate = PhonebookCopy::Entry::Fate::Full;
                }
            } else if (result.refusal.reason == ContactsController::Refusal::Reason::NumberTooLong)
                entry.fate = PhonebookCopy::Entry::Fate::NumberTooLong;
            if (result.outcome.ok() || result.refusal.reason != ContactsController::Refusal::Reason::None)
                return copyNext();
            _copying.clear();
            written(result, tr("Copying to the SIM"), {});
            return;
        }
        written(result, tr("Adding the contact"),
                tr("Check the name and number and try again; Reload shows what the phonebook holds now."));
    });
    connect(
        _phonebooks, &ContactsController::updated, this, [this](const ContactsController::Result& result) {
            written(
                result, tr("Saving the contact"),
                tr("Check the name and number and try again; Reload shows what the phonebook holds now."));
        });
    connect(_phonebooks, &ContactsController::removed, this,
            [this](const ContactsController::Result& result) {
                written(result, tr("Deleting the contact"),
                        tr("Press Reload to see what the phonebook holds now, then try again."));
            });

    connect(_store, &QComboBox::currentIndexChanged, this, [this] {
        fillList();
        updateLimits();
    });
    connect(_search, &QLineEdit::textChanged, this, &ContactsPlugin::fillList);
    connect(_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ContactsPlugin::updateButtons);
    connect(_view, &QTreeView::doubleClicked, this, &ContactsPlugin::editContact);
    connect(_add, &QPushButton::clicked, this, &ContactsPlugin::addContact);
    connect(_edit, &QPushButton::clicked, this, &ContactsPlugin::editContact);
    connect(_delete, &QPushButton::clicked, this, &ContactsPlugin::deleteContact);
    connect(_message, &QPushButton::clicked, this, &ContactsPlugin::sendMessage);
    connect(_reload, &QPushButton::clicked, this, [this] { reload(); });
    connect(_import, &QPushButton::clicked, this, &ContactsPlugin::importFile);
    connect(_export, &QPushButton::clicked, this, &ContactsPlugin::exportFile);
    connect(_copyToSim, &QPushButton::clicked, this, &ContactsPlugin::copyToSim);
    connect(_copyToComputer, &QPushButton::clicked, this, &ContactsPlugin::copyToComputer);

    fillList();
    updateLimits();
}

int ContactsPlugin::currentStore() const {
    return _store->currentData().toInt();
}

QString ContactsPlugin::usageText(int used, int total) {
    if (total <= 0)
        return {};
    return tr("%1 of %2 used").arg(QLocale().toString(used), QLocale().toString(total));
}

void ContactsPlugin::modemReady() {
    _ready = true;
    _error->hide();
    reload();
}

void ContactsPlugin::showEvent(QShowEvent* event) {
    ModulePlugin::showEvent(event);
    // The tool may have changed the book since.
    _book.load();
    fillList();
    updateLimits();
}

void ContactsPlugin::modemGone() {
    _ready = false;
    _pending = 0;
    _copying.clear();
    _error->hide();
    for (QObject* child : children()) {
        if (auto* dialog = qobject_cast<ContactDialog*>(child))
            dialog->reject();
    }
    setBusy(false);
    fillList();
    updateLimits();
}

void ContactsPlugin::setBusy(bool busy) {
    _pending += busy ? 1 : -1;
    if (_pending < 0)
        _pending = 0;
    _busy->setVisible(_pending > 0);
    updateButtons();
}

void ContactsPlugin::fail(const QString& what, const Outcome& outcome, const QString& hint) {
    QString text =
        tr("%1 failed: %2.")
            .arg(what,
                 QString::fromStdString(FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp)));
    text += QLatin1Char(' ') + (outcome.code == WORKER_ERR_NO_TARGET || !_ready
                                    ? tr("Plug the modem in again; the contacts are read when it is back.")
                                : !hint.isEmpty()
                                    ? hint
                                    : tr("Check that the SIM is in place and press Reload to try again."));
    _error->setText(text);
    _error->show();
}

void ContactsPlugin::reload() {
    if (!_ready)
        return;
    setBusy(true);
    _phonebooks->reload();
}

void ContactsPlugin::written(const ContactsController::Result& result, const QString& what,
                             const QString& hint) {
    if (!_ready)
        return;
    setBusy(false);
    if (result.refusal.reason == ContactsController::Refusal::Reason::Full) {
        _error->setText(tr("This phonebook is full. Delete a contact or choose the other phonebook."));
        _error->show();
    } else if (!result.outcome.ok()) {
        fail(StepText(result.step, what), result.outcome, hint);
    } else {
        reload();
    }
}

void ContactsPlugin::fillList() {
    const int store = currentStore();
    const QString filter = _search->text().trimmed();
    // A search looks in every store; the list then says where each contact is.
    const bool everywhere = !filter.isEmpty();
    const Chosen selected = chosen();
    _model->removeRows(0, _model->rowCount());
    const auto addRow = [this](int rowStore, int index, const QStringList& texts) {
        QList<QStandardItem*> row;
        for (const QString& text : texts) {
            auto* item = new QStandardItem(text);
            item->setData(index, kIndexRole);
            item->setData(rowStore, kStoreRole);
            row.append(item);
        }
        _model->appendRow(row);
    };
    const std::string region = link().homeRegion().toStdString();
    for (const BLPbItem& item : _phonebooks->contacts()) {
        if (!_ready || (item.nStore != store && !everywhere))
            continue;
        // The number is found as stored and as shown ("+49170..." and "0170 ...").
        const QString shownNumber =
            QString::fromStdString(PhoneNumbers::ForReading(item.strNumber.toStdString(), region));
        if (!filter.isEmpty() && !item.strName.contains(filter, Qt::CaseInsensitive) &&
            !item.strNumber.contains(filter) && !shownNumber.contains(filter))
            continue;
        addRow(item.nStore, item.nIndex,
               {item.strName, shownNumber, {}, _store->itemText(_store->findData(item.nStore))});
    }
    if (store == kComputerStore || everywhere) {
        for (const qsizetype at : _book.search(filter)) {
            const LocalContact& contact = _book.contacts().at(at);
            QStringList numbers;
            for (const LocalContact::Number& entry : contact.numbers)
                numbers.append(entry.label.isEmpty() ? entry.number
                                                     : tr("%1 (%2)").arg(entry.number, entry.label));
            addRow(kComputerStore, static_cast<int>(at),
                   {contact.name, numbers.join(QStringLiteral(", ")),
                    contact.emails.join(QStringLiteral(", ")),
                    _store->itemText(_store->findData(kComputerStore))});
        }
    }
    _view->setColumnHidden(2, store != kComputerStore && !everywhere);
    _view->setColumnHidden(3, !everywhere);
    _view->sortByColumn(_view->header()->sortIndicatorSection(), _view->header()->sortIndicatorOrder());
    for (int row = 0; row < _model->rowCount(); ++row) {
        const QStandardItem* item = _model->item(row);
        if (item->data(kIndexRole).toInt() == selected.index &&
            item->data(kStoreRole).toInt() == selected.store)
            _view->setCurrentIndex(_model->index(row, 0));
    }
    const int shown = _model->rowCount();
    if (shown == 0) {
        _empty->setText(!filter.isEmpty() ? tr("No contact matches \"%1\".").arg(filter)
                        : store == kComputerStore
                            ? tr("No contacts on the computer: add one, or import a vCard file.")
                        : !_ready ? tr("No modem: the contacts are read when the modem is ready.")
                                  : tr("No contacts in this phonebook."));
    }
    _empty->setVisible(shown == 0);
    updateButtons();
}

void ContactsPlugin::updateLimits() {
    if (currentStore() == kComputerStore) {
        _usage->setText(tr("Contacts on this computer: %1").arg(QLocale().toString(_book.contacts().size())));
        return;
    }
    if (!_ready || !_phonebooks->hasStorage()) {
        _usage->clear();
        return;
    }
    const int store = currentStore();
    QString text = usageText(ContactsController::used(_phonebooks->storage(), store),
                             ContactsController::total(_phonebooks->storage(), store));
    if (_phonebooks->hasLimits()) {
        const int name = ContactsController::maxName(_phonebooks->limits(), store);
        const int number = ContactsController::maxNumber(_phonebooks->limits(), store);
        if (name > 0 && number > 0)
            text += tr(" (names up to %1, numbers up to %2 characters)")
                        .arg(QLocale().toString(name), QLocale().toString(number));
    }
    _usage->setText(text);
}

void ContactsPlugin::updateButtons() {
    const bool idle = _ready && _pending == 0;
    const Chosen row = chosen();
    const bool onComputer = row.store == kComputerStore;
    const bool chosenRow = selectedContact() != nullptr || onComputer;
    const bool computerShown = currentStore() == kComputerStore;
    _add->setEnabled(computerShown || idle);
    _edit->setEnabled(onComputer || (idle && chosenRow));
    _delete->setEnabled(onComputer || (idle && chosenRow));
    _message->setEnabled(chosenRow && (!onComputer || !_book.contacts().at(row.index).numbers.isEmpty()));
    _reload->setEnabled(idle);
    _export->setEnabled(computerShown || _ready);
    _copyToSim->setEnabled(idle && onComputer);
    _copyToComputer->setEnabled(chosenRow && !onComputer);
}

ContactsPlugin::Chosen ContactsPlugin::chosen() const {
    const QModelIndex current = _view->currentIndex();
    if (!current.isValid() || !_view->selectionModel()->isSelected(current))
        return {};
    const Chosen row{current.data(kStoreRole).toInt(), current.data(kIndexRole).toInt()};
    if (row.store == kComputerStore && (row.index < 0 || row.index >= _book.contacts().size()))
        return {};
    return row;
}

const BLPbItem* ContactsPlugin::selectedContact() const {
    const Chosen row = chosen();
    for (const BLPbItem& item : _phonebooks->contacts()) {
        if (item.nStore == row.store && item.nIndex == row.index)
            return &item;
    }
    return nullptr;
}

ContactDialog* ContactsPlugin::openDialog(int store) {
    const BLPbConstraint& limits = _phonebooks->limits();
    const bool computer = store == kComputerStore;
    auto* dialog = new ContactDialog(_store->itemText(_store->findData(store)),
                                     computer ? static_cast<int>(LocalPhoneBook::kMaxNameLength)
                                              : ContactsController::maxName(limits, store),
                                     computer ? 0 : ContactsController::maxNumber(limits, store),
                                     link().homeRegion(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    return dialog;
}

void ContactsPlugin::addContact() {
    const int store = currentStore();
    if (store == kComputerStore) {
        ContactDialog* dialog = openDialog(store);
        connect(dialog, &QDialog::accepted, this, [this, dialog] {
            _book.add({{}, dialog->name(), {{{}, dialog->number()}}, {}, {}});
            saveBook();
        });
        dialog->open();
        return;
    }
    const BLPBStorageInfo& storage = _phonebooks->storage();
    if (_phonebooks->hasStorage() &&
        ContactsController::used(storage, store) >= ContactsController::total(storage, store)) {
        _error->setText(tr("This phonebook is full. Delete a contact or choose the other phonebook."));
        _error->show();
        return;
    }
    ContactDialog* dialog = openDialog(store);
    connect(dialog, &QDialog::accepted, this, [this, dialog, store] {
        if (!_ready)
            return;
        _error->hide();
        setBusy(true);
        _phonebooks->add(store, dialog->name(), dialog->number());
    });
    dialog->open();
}

void ContactsPlugin::editContact() {
    if (const Chosen row = chosen(); row.store == kComputerStore) {
        // The dialog edits the name and the first number; the other numbers, e-mail and note stay.
        const LocalContact contact = _book.contacts().at(row.index);
        ContactDialog* dialog = openDialog(kComputerStore);
        dialog->setContact(contact.name,
                           contact.numbers.isEmpty() ? QString() : contact.numbers.first().number);
        connect(dialog, &QDialog::accepted, this, [this, dialog, row, contact] {
            LocalContact changed = contact;
            changed.name = dialog->name();
            if (changed.numbers.isEmpty())
                changed.numbers.append(LocalContact::Number{});
            changed.numbers.first().number = dialog->number();
            // The book may have been read again meanwhile: change the contact only if it is still there.
            if (row.index < _book.contacts().size() && _book.contacts().at(row.index).uid == contact.uid) {
                _book.update(row.index, changed);
                saveBook();
            }
        });
        dialog->open();
        return;
    }
    const BLPbItem* chosen = selectedContact();
    if (!chosen || !_ready || _pending > 0)
        return;
    const BLPbItem item = *chosen;
    ContactDialog* dialog = openDialog(item.nStore);
    dialog->setContact(item.strName, item.strNumber);
    connect(dialog, &QDialog::accepted, this, [this, dialog, item] {
        if (!_ready)
            return;
        _error->hide();
        setBusy(true);
        _phonebooks->update(BLPbItem{item.nStore, dialog->name(), dialog->number(), item.nIndex});
    });
    dialog->open();
}

void ContactsPlugin::deleteContact() {
    if (const Chosen row = chosen(); row.store == kComputerStore) {
        const LocalContact contact = _book.contacts().at(row.index);
        auto* question = new QMessageBox(QMessageBox::Question, tr("Delete contact"),
                                         tr("Delete %1 from the computer's address book?").arg(contact.name),
                                         QMessageBox::Yes | QMessageBox::No, this);
        question->setObjectName(QStringLiteral("confirmDelete"));
        question->setTextFormat(Qt::PlainText);
        question->setDefaultButton(QMessageBox::No);
        question->setAttribute(Qt::WA_DeleteOnClose);
        connect(question, &QMessageBox::finished, this, [this, row, contact](int answer) {
            if (answer == QMessageBox::Yes && row.index < _book.contacts().size() &&
                _book.contacts().at(row.index).uid == contact.uid) {
                _book.remove(row.index);
                saveBook();
            }
        });
        question->open();
        return;
    }
    const BLPbItem* chosen = selectedContact();
    if (!chosen || !_ready || _pending > 0)
        return;
    const BLPbItem item = *chosen;
    auto* question = new QMessageBox(
        QMessageBox::Question, tr("Delete contact"),
        tr("Delete %1 (%2) from the %3 phonebook?").arg(item.strName, item.strNumber, _store->currentText()),
        QMessageBox::Yes | QMessageBox::No, this);
    question->setObjectName(QStringLiteral("confirmDelete"));
    question->setTextFormat(Qt::PlainText);
    question->setDefaultButton(QMessageBox::No);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::finished, this, [this, item](int answer) {
        if (answer != QMessageBox::Yes || !_ready)
            return;
        _error->hide();
        setBusy(true);
        _phonebooks->remove(item.nStore, item.nIndex);
    });
    question->open();
}

void ContactsPlugin::sendMessage() {
    const Chosen row = chosen();
    const BLPbItem* chosenItem = selectedContact();
    QString number;
    QString name;
    if (row.store == kComputerStore && !_book.contacts().at(row.index).numbers.isEmpty()) {
        name = _book.contacts().at(row.index).name;
        number = _book.contacts().at(row.index).numbers.first().number;
    } else if (chosenItem) {
        name = chosenItem->strName;
        number = chosenItem->strNumber;
    }
    if (number.isEmpty() || !context().showModule)
        return;
    if (auto* messages = qobject_cast<MessagesPlugin*>(context().showModule(QStringLiteral("messages"))))
        messages->composeTo(number, name);
}

void ContactsPlugin::notice(const QString& text) {
    _error->hide();
    _notice->setText(text);
    _notice->setVisible(!text.isEmpty());
}

bool ContactsPlugin::saveBook() {
    const bool saved = _book.save();
    if (!saved) {
        _error->setText(tr("The address book could not be written to %1; it was read again as it is on disk. "
                           "Check that the folder is writable and the disk not full.")
                            .arg(_book.path()));
        _error->show();
        _book.load();
    }
    fillList();
    updateLimits();
    return saved;
}

void ContactsPlugin::importFile() {
    const QString path = QFileDialog::getOpenFileName(this, tr("Import contacts"), QString(),
                                                      tr("vCard files (*.vcf *.vcard);;All files (*)"));
    if (path.isEmpty())
        return;
    const VCardFile::Import result = VCardFile::importInto(_book, path, link().homeRegion());
    if (!result.ok()) {
        notice({});
        _error->setText(tr("Nothing was imported: %1").arg(result.error));
        _error->show();
        return;
    }
    notice(tr("%1: %2 added, %3 merged, %4 already there, %5 without name or number.")
               .arg(QFileInfo(path).fileName())
               .arg(result.count.added)
               .arg(result.count.merged)
               .arg(result.count.unchanged)
               .arg(result.refused));
    _store->setCurrentIndex(_store->findData(kComputerStore));
    fillList();
    updateLimits();
}

void ContactsPlugin::exportFile() {
    const int store = currentStore();
    const QString path = QFileDialog::getSaveFileName(this, tr("Export contacts"), tr("contacts.vcf"),
                                                      tr("vCard files (*.vcf *.vcard)"));
    if (path.isEmpty())
        return;
    QList<BLPbItem> items;
    for (const BLPbItem& item : _phonebooks->contacts()) {
        if (item.nStore == store)
            items.append(item);
    }
    const QList<LocalContact> contacts =
        store == kComputerStore ? _book.contacts() : PhonebookCopy::toBook(items);
    // The file dialog has asked before replacing a file.
    const QString error = VCardFile::exportTo(contacts, path, VCard::Version::V3, true);
    if (!error.isEmpty()) {
        _error->setText(tr("The file was not written: %1").arg(error));
        _error->show();
        return;
    }
    notice(tr("Contacts written to %1: %2.").arg(path, QLocale().toString(contacts.size())));
}

void ContactsPlugin::copyToSim() {
    const Chosen row = chosen();
    if (row.store != kComputerStore || !_ready || _pending > 0)
        return;
    QList<BLPbItem> onSim;
    for (const BLPbItem& item : _phonebooks->contacts()) {
        if (item.nStore == kSimStore)
            onSim.append(item);
    }
    const BLPBStorageInfo& storage = _phonebooks->storage();
    const int free = _phonebooks->hasStorage() ? ContactsController::total(storage, kSimStore) -
                                                     ContactsController::used(storage, kSimStore)
                                               : 1;
    _copying = PhonebookCopy::toPhonebook({_book.contacts().at(row.index)}, onSim,
                                          ContactsController::maxName(_phonebooks->limits(), kSimStore),
                                          ContactsController::maxNumber(_phonebooks->limits(), kSimStore),
                                          free, link().homeRegion());
    _copyNext = 0;
    notice({});
    copyNext();
}

void ContactsPlugin::copyNext() {
    while (_copyNext < _copying.size() && !_copying.at(_copyNext).copied())
        ++_copyNext;
    if (_copyNext < _copying.size()) {
        setBusy(true);
        _phonebooks->add(kSimStore, _copying.at(_copyNext).name, _copying.at(_copyNext).number);
        return;
    }
    // In the order of PhonebookCopy::Entry::Fate.
    const QString fates[] = {tr("%1: copied"),
                             tr("%1: copied, name cut to fit the SIM"),
                             tr("%1: already on the SIM"),
                             tr("%1: not copied, not a phone number"),
                             tr("%1: not copied, the number is longer than the SIM keeps"),
                             tr("%1: not copied, the SIM is full")};
    QStringList lines;
    for (const PhonebookCopy::Entry& entry : std::as_const(_copying))
        lines << fates[static_cast<int>(entry.fate)].arg(entry.name + u' ' + entry.number);
    _copying.clear();
    notice(lines.join(u'\n'));
    reload();
}

void ContactsPlugin::copyToComputer() {
    const BLPbItem* item = selectedContact();
    if (!item)
        return;
    LocalPhoneBook::MergeCount count;
    if (!_book.mergeAll(PhonebookCopy::toBook({*item}), link().homeRegion(), count)) {
        _error->setText(
            tr("The computer's address book is full (%1 contacts).").arg(LocalPhoneBook::kMaxContacts));
        _error->show();
        return;
    }
    if (!saveBook())
        return;
    notice(count.unchanged > 0 ? tr("%1 is already in the computer's address book.").arg(item->strName)
           : count.merged > 0 ? tr("%1's number was added to the computer's address book.").arg(item->strName)
                              : tr("%1 was added to the computer's address book.").arg(item->strName));
}
