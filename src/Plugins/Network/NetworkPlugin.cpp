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
#include <QSet>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "BLRecords.h"
#include "CNSLabels.h"
#include "FailureText.h"
#include "StatusText.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

namespace {

// Fields of the operator-selection request (the modem's "+COPS" parameters).
constexpr qint32 kMaskMode = 1;
constexpr qint32 kMaskFormat = 2;
constexpr qint32 kModeAutomatic = 0;
constexpr qint32 kModeManual = 1;
constexpr qint32 kFormatNumeric = 2;
constexpr int kColumnName = 0;
constexpr int kColumnCode = 2;
constexpr int kColumnState = 4;
// Operator states of the search result.
constexpr int kStateAvailable = 1;
constexpr int kStateCurrent = 2;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

QString OperatorStateText(int state) {
    switch (state) {
    case 1:
        return NetworkPlugin::tr("available");
    case 2:
        return NetworkPlugin::tr("current");
    case 3:
        return NetworkPlugin::tr("forbidden");
    default:
        return NetworkPlugin::tr("unknown");
    }
}

QString FailedText(const QString& what, const QVariantMap& response) {
    const int code = WorkNotification::GetErrorCode(response);
    if (code == WORKER_ERR_NO_DATA_DEVICE)
        return NetworkPlugin::tr("%1 failed: the modem was unplugged.").arg(what);
    return NetworkPlugin::tr("%1 failed: %2 (code %3).").arg(what, ResponseFailureText(response)).arg(code);
}

} // namespace

// Band masks of the modem's system selection ("AT+SYSSEL=<band>"); all bits set lets it use every band.
const NetworkPlugin::Choice NetworkPlugin::kBands[] = {
    {QT_TRANSLATE_NOOP("NetworkPlugin", "All bands"), 0x3FFFFFFF},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "GSM 900/1800"), 0x00000380},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "GSM 850/1900"), 0x00280000},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "UMTS 2100"), 0x00400000},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "UMTS 850/1900"), 0x04800000},
};

// Rows of the modem's mode table: 0 "+SYSSEL: ,0,0", 1 ",2,0", 2 ",0,1", 3 ",1,0", 4 ",0,2".
const NetworkPlugin::Choice NetworkPlugin::kModes[] = {
    {QT_TRANSLATE_NOOP("NetworkPlugin", "Automatic"), 0},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "3G preferred"), 1},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "2G (GSM) only"), 2},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "2G preferred"), 3},
    {QT_TRANSLATE_NOOP("NetworkPlugin", "3G (UMTS) only"), 4},
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
    form->addRow(tr("Signal:"),
                 _signal = CNSValueLabel(QStringLiteral("signal"), nullptr, QStringLiteral("-")));
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
    for (const Choice& band : kBands)
        _band->addItem(tr(band.text), band.value);
    _mode = new QComboBox;
    _mode->setObjectName(QStringLiteral("mode"));
    for (const Choice& mode : kModes)
        _mode->addItem(tr(mode.text), mode.value);
    _applyRadio = new QPushButton(tr("Apply"));
    _applyRadio->setObjectName(QStringLiteral("applyRadio"));
    _radioStatus = new QLabel;
    _radioStatus->setObjectName(QStringLiteral("radioStatus"));
    _radioStatus->setWordWrap(true);
    radioLayout->addWidget(new QLabel(tr("Band:")));
    radioLayout->addWidget(_band);
    radioLayout->addWidget(new QLabel(tr("Mode:")));
    radioLayout->addWidget(_mode);
    radioLayout->addWidget(_applyRadio);
    radioLayout->addWidget(_radioStatus, 1);
    layout->addWidget(radio);

    connect(_search, &QPushButton::clicked, this, &NetworkPlugin::search);
    connect(_register, &QPushButton::clicked, this, &NetworkPlugin::registerSelected);
    connect(_applyRadio, &QPushButton::clicked, this, &NetworkPlugin::applyRadio);
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
        readRegistration();
    });
    updateButtons();
}

void NetworkPlugin::modemReady() {
    _ready = true;
    if (link().hasNetwork())
        showNetwork(link().network());
    readRegistration();
    readRadio();
    updateButtons();
}

void NetworkPlugin::modemGone() {
    _ready = false;
    _searching = _registering = _radioBusy = _regInFlight = _radioUnsupported = false;
    for (QLabel* label : {_operator, _registration, _technology, _bearer, _signal, _roaming, _selection})
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
    _signal->setText(Q(SignalText(info.nRssi)));
    _roaming->setText(Q(ServiceStateText(info.nRoamState)));
    _selection->setText(info.nMode == kModeAutomatic ? tr("automatic")
                        : info.nMode == kModeManual  ? tr("manual")
                                                     : tr("mode %1").arg(info.nMode));
}

void NetworkPlugin::readRegistration() {
    if (_regInFlight)
        return;
    _regInFlight = true;
    link().request(
        NETWORK_GET_REG_STATE, {},
        [this](const QVariantMap& response) {
            _regInFlight = false;
            if (!_ready || WorkNotification::GetErrorCode(response) != WORKER_OK)
                return;
            const auto state = WorkNotification::GetValueObject(response).value<BLNetRegState>();
            _registration->setText(Q(RegistrationText(state.nState)));
        },
        this);
}

void NetworkPlugin::search() {
    if (!_ready || _searching)
        return;
    _searching = true;
    _networks->clear();
    _searchProgress->show();
    setStatus(_searchStatus, tr("Searching for networks… this can take a minute or two."), false);
    updateButtons();
    link().request(
        MESSAGE_NETWORK_GET_LIST, {},
        [this](const QVariantMap& response) {
            _searching = false;
            _searchProgress->hide();
            if (!_ready)
                return;
            const int code = WorkNotification::GetErrorCode(response);
            if (code != WORKER_OK) {
                setStatus(_searchStatus, FailedText(tr("The search"), response) + tr(" Try again."), true);
                updateButtons();
                return;
            }
            // Modems may list an operator twice; the first entry of each code and technology is kept.
            QSet<QString> seen;
            for (const QVariant& value : WorkNotification::GetValueObject(response).toList()) {
                const auto item = value.value<BLNetworkListItem>();
                const QString key = item.strNumericAlpha + QLatin1Char('/') + QString::number(item.nAcT);
                if (seen.contains(key))
                    continue;
                seen.insert(key);
                auto* row = new QTreeWidgetItem(_networks);
                row->setText(kColumnName,
                             item.strLongAlpha.isEmpty() ? item.strNumericAlpha : item.strLongAlpha);
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
        },
        this);
}

void NetworkPlugin::registerSelected() {
    if (!_ready || _registering)
        return;
    BLNetworkSet set;
    set.nMask = kMaskMode;
    set.nMode = kModeAutomatic;
    QString name = tr("automatic selection");
    if (_manual->isChecked()) {
        const QList<QTreeWidgetItem*> selected = _networks->selectedItems();
        if (selected.isEmpty())
            return;
        set.nMask = kMaskMode | kMaskFormat | BLNetworkSet::kOperatorGiven;
        set.nMode = kModeManual;
        set.nFormat = kFormatNumeric;
        set.strOperator = selected.first()->text(kColumnCode);
        name = selected.first()->text(kColumnName);
    }
    _registering = true;
    _register->setText(tr("Registering…"));
    _searchProgress->show();
    setStatus(_searchStatus, tr("Registering with %1…").arg(name), false);
    updateButtons();
    link().request(
        MESSAGE_NETWORK_SET, QVariant::fromValue(set),
        [this, name, plmn = set.strOperator](const QVariantMap& response) {
            _registering = false;
            _register->setText(tr("Register"));
            _searchProgress->setVisible(_searching);
            if (!_ready)
                return;
            const int code = WorkNotification::GetErrorCode(response);
            if (code != WORKER_OK) {
                setStatus(_searchStatus,
                          FailedText(tr("Registering with %1").arg(name), response) +
                              tr(" Choose another network or automatic selection."),
                          true);
            } else {
                setStatus(_searchStatus, tr("Registered: %1.").arg(name), false);
                if (!plmn.isEmpty())
                    markCurrent(plmn);
                link().refreshNetwork();
                readRegistration();
            }
            updateButtons();
        },
        this);
}

// The list stays from the search; the operator just registered with becomes its current one.
void NetworkPlugin::markCurrent(const QString& code) {
    for (int i = 0; i < _networks->topLevelItemCount(); ++i) {
        QTreeWidgetItem* row = _networks->topLevelItem(i);
        const int state = row->data(kColumnState, Qt::UserRole).toInt();
        const int now = row->text(kColumnCode) == code ? kStateCurrent
                        : state == kStateCurrent       ? kStateAvailable
                                                       : state;
        row->setData(kColumnState, Qt::UserRole, now);
        row->setText(kColumnState, OperatorStateText(now));
    }
}

void NetworkPlugin::readRadio() {
    link().request(
        NETWORK_GET_BAND, {},
        [this](const QVariantMap& response) {
            if (_ready && WorkNotification::GetErrorCode(response) == WORKER_ERR_NOT_SUPPORTED) {
                _radioUnsupported = true;
                setStatus(_radioStatus, tr("Band and mode: %1.").arg(ResponseFailureText(response)), false);
                updateButtons();
                return;
            }
            if (_ready && WorkNotification::GetErrorCode(response) == WORKER_OK) {
                const int band = WorkNotification::GetValueObject(response).toInt();
                selectValue(_band, band, tr("Band mask %1").arg(band));
            }
        },
        this);
    link().request(
        NETWORK_GET_MODE, {},
        [this](const QVariantMap& response) {
            if (_ready && WorkNotification::GetErrorCode(response) == WORKER_OK) {
                const int mode = WorkNotification::GetValueObject(response).toInt();
                selectValue(_mode, mode, tr("Other (set by another program)"));
            }
        },
        this);
}

void NetworkPlugin::applyRadio() {
    if (!_ready || _radioBusy)
        return;
    _radioBusy = true;
    _applyRadio->setText(tr("Applying…"));
    setStatus(_radioStatus, {}, false);
    updateButtons();
    const int band = _band->currentData().toInt();
    const int mode = _mode->currentData().toInt();
    const auto finish = [this](const QString& failure) {
        _radioBusy = false;
        _applyRadio->setText(tr("Apply"));
        if (!_ready)
            return;
        if (failure.isEmpty()) {
            setStatus(_radioStatus, tr("Band and mode set."), false);
            link().refreshNetwork();
        } else {
            setStatus(_radioStatus, failure, true);
            readRadio(); // show what the modem kept
        }
        updateButtons();
    };
    link().request(
        NETWORK_SET_BAND, band,
        [this, mode, finish](const QVariantMap& response) {
            const int code = WorkNotification::GetErrorCode(response);
            if (code != WORKER_OK) {
                finish(FailedText(tr("Setting the band"), response) +
                       tr(" Choose \"All bands\" and try again."));
                return;
            }
            link().request(
                NETWORK_SET_MODE, mode,
                [finish](const QVariantMap& modeResponse) {
                    const int modeCode = WorkNotification::GetErrorCode(modeResponse);
                    if (modeCode == WORKER_ERR_SET_NETWORK_MODE)
                        finish(tr("The modem refused this mode (code %1). Choose \"Automatic\" or another "
                                  "mode it supports.")
                                   .arg(modeCode));
                    else if (modeCode != WORKER_OK)
                        finish(FailedText(tr("Setting the mode"), modeResponse));
                    else
                        finish({});
                },
                this);
        },
        this);
}

void NetworkPlugin::updateButtons() {
    _search->setEnabled(_ready && !_searching && !_registering);
    _search->setText(_searching ? tr("Searching…") : tr("Search networks"));
    const bool chosen = !_networks->selectedItems().isEmpty();
    _register->setEnabled(_ready && !_searching && !_registering && (_automatic->isChecked() || chosen));
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
