#include "NetworkPlugin.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "CNSSignalBars.h"
#include "FailureText.h"
#include "Network/NetworkController.h"
#include "SignalFinderDialog.h"
#include "StatusText.h"

namespace {

constexpr int kColumnName = 0;
constexpr int kColumnCode = 2;
constexpr int kColumnState = 4;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

QString OperatorStateText(int state) {
    switch (state) {
    case BLNetworkListItem::kStateAvailable:
        return NetworkPlugin::tr("available");
    case BLNetworkListItem::kStateCurrent:
        return NetworkPlugin::tr("current");
    case BLNetworkListItem::kStateForbidden:
        return NetworkPlugin::tr("forbidden");
    default:
        return NetworkPlugin::tr("unknown");
    }
}

QString FailedText(const QString& what, const Outcome& outcome) {
    if (outcome.code == WORKER_ERR_NO_DATA_DEVICE)
        return NetworkPlugin::tr("%1 failed: the modem was unplugged.").arg(what);
    return NetworkPlugin::tr("%1 failed: %2 (code %3).")
        .arg(what, Q(FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp)))
        .arg(outcome.code);
}

} // namespace

const NetworkPlugin::Choice<NetworkBand> NetworkPlugin::kBands[] = {
    {QT_TRANSLATE_NOOP("NetworkPlugin", "All bands"), NetworkBand::Any},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "GSM 900/1800"), NetworkBand::Gsm900And1800},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "GSM 850/1900"), NetworkBand::Gsm850And1900},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "UMTS 2100"), NetworkBand::Umts2100},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "UMTS 850/1900"), NetworkBand::Umts850And1900},
};

const NetworkPlugin::Choice<NetworkMode> NetworkPlugin::kModes[] = {
    {QT_TRANSLATE_NOOP("NetworkPlugin", "Automatic"), NetworkMode::Automatic},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "3G preferred"), NetworkMode::Prefer3G},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "2G (GSM) only"), NetworkMode::Only2G},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "2G preferred"), NetworkMode::Prefer2G},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "3G (UMTS) only"), NetworkMode::Only3G},
};

NetworkPlugin::NetworkPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {
    auto* layout = new QVBoxLayout(this);

    auto* current = new QGroupBox(tr("Current network"));
    auto* form = new QFormLayout(current);
    form->addRow(tr("Operator:"),
                 _operator = CNSValueLabel(QStringLiteral("operator"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Registration:"),
                 _registration = CNSValueLabel(QStringLiteral("registration"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Technology:"),
                 _technology = CNSValueLabel(QStringLiteral("technology"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Bearer:"),
                 _bearer = CNSValueLabel(QStringLiteral("bearer"), nullptr, QStringLiteral("-")));
    _signal = new CNSSignalBars;
    _signal->setObjectName(QStringLiteral("signal"));
    _signal->setFixedSize(50, 20);
    _signal->follow(link());
    _findSignal = new QPushButton(tr("Signal finder…"));
    _findSignal->setObjectName(QStringLiteral("findSignal"));
    _findSignal->setToolTip(tr("Find the best place for the modem with a large gauge read once a second"));
    auto* signalRow = new QHBoxLayout;
    signalRow->addWidget(_signal);
    signalRow->addWidget(_findSignal);
    signalRow->addStretch(1);
    form->addRow(tr("Signal:"), signalRow);
    form->addRow(tr("Roaming:"),
                 _roaming = CNSValueLabel(QStringLiteral("roaming"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Selection:"),
                 _selection = CNSValueLabel(QStringLiteral("selection"), nullptr, QStringLiteral("-")));
    layout->addWidget(current);

    auto* available = new QGroupBox(tr("Available networks"));
    auto* searchLayout = new QVBoxLayout(available);
    auto* searchRow = new QHBoxLayout;
    _search = new QPushButton(tr("Search networks"));
    _search->setObjectName(QStringLiteral("search"));
    _searchProgress = new QProgressBar;
    _searchProgress->setObjectName(QStringLiteral("searchProgress"));
    _searchProgress->setRange(0, 0); // busy: the modem does not tell how far it got
    _searchProgress->setMaximumWidth(160);
    _searchProgress->setTextVisible(false);
    _searchProgress->hide();
    _searchStatus = new QLabel(tr("Search to see the networks in reach; this can take a minute."));
    _searchStatus->setObjectName(QStringLiteral("searchStatus"));
    _searchStatus->setWordWrap(true);
    searchRow->addWidget(_search);
    searchRow->addWidget(_searchProgress);
    searchRow->addWidget(_searchStatus, 1);
    searchLayout->addLayout(searchRow);

    _networks = new QTreeWidget;
    _networks->setObjectName(QStringLiteral("networks"));
    _networks->setAccessibleName(tr("Available networks"));
    _networks->setHeaderLabels({tr("Name"), tr("Short name"), tr("Code"), tr("Technology"), tr("Status")});
    _networks->setRootIsDecorated(false);
    _networks->setMinimumHeight(120);
    _networks->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    _networks->header()->setMinimumSectionSize(90);
    searchLayout->addWidget(_networks, 1);

    auto* selectRow = new QHBoxLayout;
    _automatic = new QRadioButton(tr("Automatic selection"));
    _automatic->setObjectName(QStringLiteral("automatic"));
    _manual = new QRadioButton(tr("Manual: the network chosen above"));
    _manual->setObjectName(QStringLiteral("manual"));
    auto* group = new QButtonGroup(this);
    group->addButton(_automatic);
    group->addButton(_manual);
    _automatic->setChecked(true);
    _register = new QPushButton(tr("Register"));
    _register->setObjectName(QStringLiteral("register"));
    selectRow->addWidget(_automatic);
    selectRow->addWidget(_manual);
    selectRow->addStretch(1);
    selectRow->addWidget(_register);
    searchLayout->addLayout(selectRow);
    layout->addWidget(available, 1);

    auto* radio = new QGroupBox(tr("Band and mode"));
    auto* radioLayout = new QHBoxLayout(radio);
    _band = new QComboBox;
    _band->setObjectName(QStringLiteral("band"));
    for (const auto& band : kBands)
        _band->addItem(tr(band.text), static_cast<int>(band.value));
    _mode = new QComboBox;
    _mode->setObjectName(QStringLiteral("mode"));
    for (const auto& mode : kModes)
        _mode->addItem(tr(mode.text), static_cast<int>(mode.value));
    _applyRadio = new QPushButton(tr("Apply"));
    _applyRadio->setObjectName(QStringLiteral("applyRadio"));
    _radioStatus = new QLabel;
    _radioStatus->setObjectName(QStringLiteral("radioStatus"));
    _radioStatus->setWordWrap(true);
    radioLayout->addWidget(CNSBuddyLabel(tr("Band:"), _band));
    radioLayout->addWidget(_band);
    radioLayout->addWidget(CNSBuddyLabel(tr("Mode:"), _mode));
    radioLayout->addWidget(_mode);
    radioLayout->addWidget(_applyRadio);
    radioLayout->addWidget(_radioStatus, 1);
    layout->addWidget(radio);

    _network = new NetworkController(link(), this);
    connect(_network, &NetworkController::registrationRead, this,
            [this](const Outcome& outcome, const BLNetRegState& registration) {
                if (_ready && outcome.ok())
                    _registration->setText(Q(RegistrationText(registration.nState)));
            });
    connect(_network, &NetworkController::scanningChanged, this, [this](bool scanning) {
        _searchProgress->setVisible(scanning || _registering);
        updateButtons();
    });
    connect(_network, &NetworkController::scanFinished, this, &NetworkPlugin::showOperators);
    connect(_network, &NetworkController::selectFinished, this, &NetworkPlugin::registered);
    connect(_network, &NetworkController::radioUnsupported, this, [this](const Outcome& outcome) {
        if (!_ready)
            return;
        _radioUnsupported = true;
        setStatus(
            _radioStatus,
            tr("Band and mode: %1.").arg(Q(FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp))),
            false);
        updateButtons();
    });
    connect(_network, &NetworkController::bandRead, this, [this](const Outcome& outcome, NetworkBand band) {
        const int mask = static_cast<int>(band);
        if (_ready && outcome.ok())
            selectValue(_band, mask, tr("Band mask %1").arg(mask));
    });
    connect(_network, &NetworkController::modeRead, this, [this](const Outcome& outcome, NetworkMode mode) {
        if (_ready && outcome.ok())
            selectValue(_mode, static_cast<int>(mode), tr("Other (set by another program)"));
    });
    connect(_network, &NetworkController::radioApplied, this, &NetworkPlugin::radioApplied);

    connect(_search, &QPushButton::clicked, this, &NetworkPlugin::search);
    connect(_register, &QPushButton::clicked, this, &NetworkPlugin::registerSelected);
    connect(_applyRadio, &QPushButton::clicked, this, &NetworkPlugin::applyRadio);
    connect(_findSignal, &QPushButton::clicked, this, [this] {
        if (!_finder)
            _finder = new SignalFinderDialog(link(), this);
        _finder->show();
        _finder->raise();
        _finder->activateWindow();
    });
    connect(_automatic, &QRadioButton::toggled, this, &NetworkPlugin::updateButtons);
    connect(_networks, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!_networks->selectedItems().isEmpty())
            _manual->setChecked(true);
        updateButtons();
    });
    connect(&link(), &ModemLink::networkChanged, this, [this](const BLNetworkInfo& info) {
        if (!_ready)
            return;
        showNetwork(info);
        _network->readRegistration();
    });
    updateButtons();
}

void NetworkPlugin::modemReady() {
    _ready = true;
    if (link().hasNetwork())
        showNetwork(link().network());
    _network->readRegistration();
    readRadio();
    updateButtons();
}

void NetworkPlugin::modemGone() {
    _ready = false;
    _registering = _radioBusy = _radioUnsupported = false;
    if (_finder)
        _finder->hide();
    for (QLabel* label : {_operator, _registration, _technology, _bearer, _roaming, _selection})
        label->setText(QStringLiteral("-"));
    _networks->clear();
    _searchProgress->hide();
    setStatus(_searchStatus, tr("Search to see the networks in reach; this can take a minute."), false);
    setStatus(_radioStatus, {}, false);
    updateButtons();
}

void NetworkPlugin::showNetwork(const BLNetworkInfo& info) {
    _operator->setText(Q(OperatorText(info.strOperator, info.strSpName)));
    _technology->setText(Q(AccessTechnologyText(info.nAcT)));
    _bearer->setText(Q(BearerText(info.nBearer)));
    _signal->setLevel(info.nRssi);
    _roaming->setText(Q(ServiceStateText(info.nRoamState)));
    _selection->setText(info.nMode == BLNetworkSet::kModeAutomatic ? tr("automatic")
                        : info.nMode == BLNetworkSet::kModeManual  ? tr("manual")
                                                                   : tr("mode %1").arg(info.nMode));
}

void NetworkPlugin::search() {
    if (!_ready || _network->isScanning())
        return;
    _networks->clear();
    setStatus(_searchStatus, tr("Searching for networks… this can take a minute or two."), false);
    _network->scan();
}

void NetworkPlugin::showOperators(const Outcome& outcome, const QList<BLNetworkListItem>& operators) {
    if (!_ready)
        return;
    if (!outcome.ok()) {
        setStatus(_searchStatus, FailedText(tr("The search"), outcome) + tr(" Try again."), true);
        updateButtons();
        return;
    }
    for (const BLNetworkListItem& item : NetworkController::distinctOperators(operators)) {
        auto* row = new QTreeWidgetItem(_networks);
        row->setText(kColumnName, item.strLongAlpha.isEmpty() ? item.strNumericAlpha : item.strLongAlpha);
        row->setText(1, item.strShortAlpha);
        row->setText(kColumnCode, item.strNumericAlpha);
        row->setText(3, Q(AccessTechnologyText(item.nAcT)));
        row->setText(kColumnState, OperatorStateText(item.nState));
        row->setData(kColumnName, Qt::UserRole, item.nAcT);
        row->setData(kColumnState, Qt::UserRole, item.nState);
    }
    const int found = _networks->topLevelItemCount();
    setStatus(_searchStatus,
              found == 0 ? tr("No networks found. Check the antenna and search again.")
                         : tr("%n network(s) found.", nullptr, found),
              found == 0);
    updateButtons();
}

void NetworkPlugin::registerSelected() {
    if (!_ready || _registering)
        return;
    QString plmn;
    QString name = tr("automatic selection");
    if (_manual->isChecked()) {
        const QList<QTreeWidgetItem*> selected = _networks->selectedItems();
        if (selected.isEmpty())
            return;
        plmn = selected.first()->text(kColumnCode);
        name = selected.first()->text(kColumnName);
    }
    _registering = true;
    _registeringWith = name;
    _register->setText(tr("Registering…"));
    _searchProgress->show();
    setStatus(_searchStatus, tr("Registering with %1…").arg(name), false);
    updateButtons();
    if (plmn.isEmpty())
        _network->selectAutomatic();
    else
        _network->selectOperator(plmn);
}

void NetworkPlugin::registered(const Outcome& outcome, const QString& plmn) {
    _registering = false;
    _register->setText(tr("Register"));
    _searchProgress->setVisible(_network->isScanning());
    if (!_ready)
        return;
    if (!outcome.ok()) {
        setStatus(_searchStatus,
                  FailedText(tr("Registering with %1").arg(_registeringWith), outcome) +
                      tr(" Choose another network or automatic selection."),
                  true);
    } else {
        setStatus(_searchStatus, tr("Registered: %1.").arg(_registeringWith), false);
        if (!plmn.isEmpty())
            markCurrent(plmn);
        _network->readRegistration();
    }
    updateButtons();
}

// The list stays from the search; the operator just registered with becomes its current one.
void NetworkPlugin::markCurrent(const QString& code) {
    for (int i = 0; i < _networks->topLevelItemCount(); ++i) {
        QTreeWidgetItem* row = _networks->topLevelItem(i);
        const int state = row->data(kColumnState, Qt::UserRole).toInt();
        const int now = row->text(kColumnCode) == code              ? BLNetworkListItem::kStateCurrent
                        : state == BLNetworkListItem::kStateCurrent ? BLNetworkListItem::kStateAvailable
                                                                    : state;
        row->setData(kColumnState, Qt::UserRole, now);
        row->setText(kColumnState, OperatorStateText(now));
    }
}

void NetworkPlugin::readRadio() {
    _network->readBand();
    _network->readMode();
}

void NetworkPlugin::applyRadio() {
    if (!_ready || _radioBusy)
        return;
    _radioBusy = true;
    _applyRadio->setText(tr("Applying…"));
    setStatus(_radioStatus, {}, false);
    updateButtons();
    _network->applyRadio(static_cast<NetworkBand>(_band->currentData().toInt()),
                         static_cast<NetworkMode>(_mode->currentData().toInt()));
}

void NetworkPlugin::radioApplied(const Outcome& outcome, NetworkController::RadioStep step) {
    _radioBusy = false;
    _applyRadio->setText(tr("Apply"));
    if (!_ready)
        return;
    if (outcome.ok()) {
        setStatus(_radioStatus, tr("Band and mode set."), false);
    } else {
        if (step == NetworkController::RadioStep::Band)
            setStatus(_radioStatus,
                      FailedText(tr("Setting the band"), outcome) +
                          tr(" Choose \"All bands\" and try again."),
                      true);
        else if (outcome.code == WORKER_ERR_SET_NETWORK_MODE)
            setStatus(_radioStatus,
                      tr("The modem refused this mode (code %1). Choose \"Automatic\" or another mode it "
                         "supports.")
                          .arg(outcome.code),
                      true);
        else
            setStatus(_radioStatus, FailedText(tr("Setting the mode"), outcome), true);
        readRadio(); // show what the modem kept
    }
    updateButtons();
}

void NetworkPlugin::updateButtons() {
    const bool searching = _network && _network->isScanning();
    _search->setEnabled(_ready && !searching && !_registering);
    _findSignal->setEnabled(_ready);
    _search->setText(searching ? tr("Searching…") : tr("Search networks"));
    const bool chosen = !_networks->selectedItems().isEmpty();
    _register->setEnabled(_ready && !searching && !_registering && (_automatic->isChecked() || chosen));
    const bool radio = _ready && !_radioBusy && !_radioUnsupported;
    for (QWidget* control : std::initializer_list<QWidget*>{_applyRadio, _band, _mode})
        control->setEnabled(radio);
}

void NetworkPlugin::setStatus(QLabel* label, const QString& text, bool error) {
    label->setText(text);
    CNSSetErrorStyle(label, error);
}

void NetworkPlugin::selectValue(QComboBox* box, int value, const QString& unknownText) {
    int index = box->findData(value);
    if (index < 0) {
        box->addItem(unknownText, value);
        index = box->count() - 1;
    }
    box->setCurrentIndex(index);
}
