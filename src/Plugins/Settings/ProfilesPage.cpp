#include "ProfilesPage.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "AppConfig.h"
#include "CNSLabels.h"
#include "Connector/ProfileSettingsController.h"
#include "ModulePlugin.h"
#include "ProfileDialog.h"

namespace {

enum Column { kName, kApn, kNumber, kSource, kDefault };

} // namespace

ProfilesPage::ProfilesPage(ModuleContext& context, QWidget* parent) : QWidget(parent), _context(context) {
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(tr("The profile tells the modem how to connect (APN, number, account). Profiles "
                                "marked \"SIM\" come with your operator and cannot be changed."));
    intro->setWordWrap(true);
    layout->addWidget(intro);

    _list = new QTreeWidget;
    _list->setObjectName(QStringLiteral("profileList"));
    _list->setAccessibleName(tr("Connection profiles"));
    _list->setHeaderLabels({tr("Name"), tr("APN"), tr("Number"), tr("From"), tr("Default")});
    _list->setRootIsDecorated(false);
    _list->setMinimumHeight(140);
    _list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    layout->addWidget(_list, 1);
    _empty = new QLabel(tr("No profiles yet. Add the one your operator gives you."));
    _empty->setObjectName(QStringLiteral("noProfiles"));
    layout->addWidget(_empty);

    auto* buttons = new QHBoxLayout;
    _add = new QPushButton(tr("Add…"));
    _add->setObjectName(QStringLiteral("addProfile"));
    _edit = new QPushButton(tr("Edit…"));
    _edit->setObjectName(QStringLiteral("editProfile"));
    _delete = new QPushButton(tr("Delete"));
    _delete->setObjectName(QStringLiteral("deleteProfile"));
    _default = new QPushButton(tr("Make default"));
    _default->setObjectName(QStringLiteral("makeDefault"));
    for (QPushButton* button : {_add, _edit, _delete, _default})
        buttons->addWidget(button);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    _status = new QLabel;
    _status->setObjectName(QStringLiteral("profileStatus"));
    _status->setWordWrap(true);
    layout->addWidget(_status);

    connect(_add, &QPushButton::clicked, this, &ProfilesPage::addProfile);
    connect(_edit, &QPushButton::clicked, this, &ProfilesPage::editProfile);
    connect(_delete, &QPushButton::clicked, this, &ProfilesPage::deleteProfile);
    connect(_default, &QPushButton::clicked, this, &ProfilesPage::makeDefault);
    connect(_list, &QTreeWidget::itemSelectionChanged, this, &ProfilesPage::updateButtons);
    connect(_list, &QTreeWidget::itemDoubleClicked, this, [this] {
        if (!selectedFromSim())
            editProfile();
    });
    connect(&_context.profiles, &ProfileSettingsController::profilesChanged, this, &ProfilesPage::refresh);
    refresh();
}

void ProfilesPage::refresh() {
    const int previous = selectedIndex();
    const QList<APNInfo> offered = _context.profiles.offeredProfiles();
    const auto& perSim = _context.profiles.perSimProfiles();
    _simCount = perSim ? perSim->size() : 0;
    // The default is always the first profile of its list; without one of the user's, the SIM's first
    // profile is the one dialled.
    const AppConfig& config = _context.config;
    const bool userDefault = config.isSetDefaultUserApn() && !config.isFromIMSI();
    const qsizetype defaultRow = userDefault ? _simCount : (_simCount > 0 ? 0 : -1);

    _list->clear();
    for (qsizetype row = 0; row < offered.size(); ++row) {
        const APNInfo& profile = offered[row];
        auto* item = new QTreeWidgetItem(_list);
        item->setText(kName, profile.strAccount);
        item->setText(kApn, profile.strApn);
        item->setText(kNumber, profile.strDialNum);
        item->setText(kSource, row < _simCount ? tr("SIM") : tr("You"));
        item->setText(kDefault, row == defaultRow ? tr("yes") : QString());
        if (row == defaultRow) {
            QFont bold = item->font(kName);
            bold.setBold(true);
            item->setFont(kName, bold);
        }
        const int index = row < _simCount ? AppConfig::kIMSIListIndexBase + static_cast<int>(row)
                                          : static_cast<int>(row - _simCount);
        item->setData(kName, Qt::UserRole, index);
        if (index == previous)
            item->setSelected(true);
    }
    _empty->setVisible(offered.isEmpty());
    updateButtons();
}

int ProfilesPage::selectedIndex() const {
    const QList<QTreeWidgetItem*> selected = _list ? _list->selectedItems() : QList<QTreeWidgetItem*>();
    return selected.isEmpty() ? -1 : selected.first()->data(kName, Qt::UserRole).toInt();
}

bool ProfilesPage::selectedFromSim() const {
    return selectedIndex() >= AppConfig::kIMSIListIndexBase;
}

void ProfilesPage::addProfile() {
    auto* dialog = new ProfileDialog(APNInfo{}, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        const APNInfo profile = dialog->profile();
        _context.profiles.addProfile(profile);
        const QList<APNInfo>& users = _context.config.getUserApnList();
        if (users.isEmpty() || users.last() != profile)
            showError(
                tr("The profile could not be saved. Check that your configuration folder is writable."));
        else
            _status->setText(tr("Profile \"%1\" added.").arg(profile.strAccount));
    });
    dialog->open();
}

void ProfilesPage::editProfile() {
    const int index = selectedIndex();
    if (index < 0 || selectedFromSim())
        return;
    const QList<APNInfo>& users = _context.config.getUserApnList();
    if (index >= users.size())
        return;
    auto* dialog = new ProfileDialog(users.at(index), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, index] {
        const APNInfo profile = dialog->profile();
        if (_context.profiles.saveProfile(index, profile))
            _status->setText(tr("Profile \"%1\" saved.").arg(profile.strAccount));
        else
            showError(tr("The profile is gone meanwhile; add it again."));
    });
    dialog->open();
}

void ProfilesPage::deleteProfile() {
    const int index = selectedIndex();
    if (index < 0 || selectedFromSim())
        return;
    const QString name = _list->selectedItems().first()->text(kName);
    auto* confirm = new QMessageBox(QMessageBox::Question, tr("Delete profile"),
                                    tr("Delete the profile \"%1\"?").arg(name),
                                    QMessageBox::Yes | QMessageBox::Cancel, this);
    confirm->setObjectName(QStringLiteral("confirmDelete"));
    confirm->setTextFormat(Qt::PlainText);
    confirm->setAttribute(Qt::WA_DeleteOnClose);
    connect(confirm, &QMessageBox::finished, this, [this, index, name](int result) {
        if (result != QMessageBox::Yes)
            return;
        if (_context.profiles.deleteProfile(index))
            _status->setText(tr("Profile \"%1\" deleted.").arg(name));
        else
            showError(tr("The profile could not be deleted."));
    });
    confirm->open();
}

void ProfilesPage::makeDefault() {
    const int index = selectedIndex();
    if (index < 0)
        return;
    const QString name = _list->selectedItems().first()->text(kName);
    if (_context.profiles.setDefaultProfile(index))
        _status->setText(tr("\"%1\" is the default profile now.").arg(name));
    else
        showError(tr("The profile could not be made the default."));
}

void ProfilesPage::updateButtons() {
    const int index = selectedIndex();
    const bool own = index >= 0 && !selectedFromSim();
    _edit->setEnabled(own);
    _delete->setEnabled(own);
    _default->setEnabled(index >= 0);
    CNSSetErrorStyle(_status, false);
}

void ProfilesPage::showError(const QString& text) {
    _status->setText(text);
    CNSSetErrorStyle(_status);
}
