#include "ContactsPlugin.h"

#include <QComboBox>
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
#include "FailureText.h"
#include "Messages/MessagesPlugin.h"
#include "PhoneNumbers.h"

namespace {

constexpr int kIndexRole = Qt::UserRole + 1;

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

    _model = new QStandardItemModel(0, 2, this);
    _model->setHorizontalHeaderLabels({tr("Name"), tr("Number")});
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
    _view->setMinimumHeight(160);

    _empty = new QLabel(this);
    _empty->setObjectName(QStringLiteral("empty"));
    _empty->setAlignment(Qt::AlignCenter);
    _empty->setTextFormat(Qt::PlainText);
    _error = CNSErrorLabel(QStringLiteral("error"), this);

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
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {_add, _edit, _delete, _message})
        buttons->addWidget(button);
    buttons->addStretch(1);
    buttons->addWidget(_reload);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(_view, 1);
    layout->addWidget(_empty);
    layout->addWidget(_error);
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

void ContactsPlugin::modemGone() {
    _ready = false;
    _pending = 0;
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
    const BLPbItem* selected = selectedContact();
    const int selectedIndex = selected ? selected->nIndex : -1;
    _model->removeRows(0, _model->rowCount());
    int shown = 0;
    const std::string region = link().homeRegion().toStdString();
    for (const BLPbItem& item : _phonebooks->contacts()) {
        if (!_ready || item.nStore != store)
            continue;
        // The number is found as stored and as shown ("+49170..." and "0170 ...").
        const QString shownNumber =
            QString::fromStdString(PhoneNumbers::ForReading(item.strNumber.toStdString(), region));
        if (!filter.isEmpty() && !item.strName.contains(filter, Qt::CaseInsensitive) &&
            !item.strNumber.contains(filter) && !shownNumber.contains(filter))
            continue;
        auto* name = new QStandardItem(item.strName);
        name->setData(item.nIndex, kIndexRole);
        auto* number = new QStandardItem(shownNumber);
        number->setData(item.nIndex, kIndexRole);
        _model->appendRow({name, number});
        ++shown;
    }
    _view->sortByColumn(_view->header()->sortIndicatorSection(), _view->header()->sortIndicatorOrder());
    for (int row = 0; row < _model->rowCount(); ++row) {
        if (_model->item(row)->data(kIndexRole).toInt() == selectedIndex)
            _view->setCurrentIndex(_model->index(row, 0));
    }
    if (shown == 0) {
        _empty->setText(!_ready             ? tr("No modem: the contacts are read when the modem is ready.")
                        : !filter.isEmpty() ? tr("No contact matches \"%1\".").arg(filter)
                                            : tr("No contacts in this phonebook."));
    }
    _empty->setVisible(shown == 0);
    updateButtons();
}

void ContactsPlugin::updateLimits() {
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
    const bool chosen = selectedContact() != nullptr;
    _add->setEnabled(idle);
    _edit->setEnabled(idle && chosen);
    _delete->setEnabled(idle && chosen);
    _message->setEnabled(chosen);
    _reload->setEnabled(idle);
    _store->setEnabled(_ready);
}

const BLPbItem* ContactsPlugin::selectedContact() const {
    const QModelIndex current = _view->currentIndex();
    if (!current.isValid() || !_view->selectionModel()->isSelected(current))
        return nullptr;
    const int index = current.data(kIndexRole).toInt();
    const int store = currentStore();
    for (const BLPbItem& item : _phonebooks->contacts()) {
        if (item.nStore == store && item.nIndex == index)
            return &item;
    }
    return nullptr;
}

ContactDialog* ContactsPlugin::openDialog(int store) {
    const BLPbConstraint& limits = _phonebooks->limits();
    auto* dialog = new ContactDialog(_store->currentText(), ContactsController::maxName(limits, store),
                                     ContactsController::maxNumber(limits, store), link().homeRegion(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    return dialog;
}

void ContactsPlugin::addContact() {
    const int store = currentStore();
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
    const BLPbItem* chosen = selectedContact();
    if (!chosen || !context().showModule)
        return;
    const BLPbItem item = *chosen;
    if (auto* messages = qobject_cast<MessagesPlugin*>(context().showModule(QStringLiteral("messages"))))
        messages->composeTo(item.strNumber, item.strName);
}
