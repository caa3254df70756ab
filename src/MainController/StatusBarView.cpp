#include "StatusBarView.h"

#include <QHBoxLayout>
#include <QTimer>

#include "AppConfig.h"
#include "Budget/BudgetController.h"
#include "CNSSignalBars.h"
#include "Connector/ConnectController.h"
#include "LocaleFormat.h"
#include "NotificationCenter.h"
#include "StatisticsRecords.h"
#include "StatusText.h"

namespace {

QLabel* Field(QWidget* parent, const QString& toolTip) {
    auto* label = new QLabel(parent);
    label->setToolTip(toolTip);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

StatusBarView::StatusBarView(ModemLink& link, QWidget* parent) : QWidget(parent), _link(link) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(12);
    _bars = new CNSSignalBars(this);
    _bars->follow(_link);
    _operator = Field(this, tr("Operator"));
    _bearer = Field(this, tr("Bearer"));
    _roaming = Field(this, tr("Registration"));
    _connection = Field(this, tr("Connection time and rates"));
    _budget = Field(this, tr("Share of this SIM's data budget used in its period"));
    _budget->setObjectName(QStringLiteral("budgetIndicator"));
    layout->addWidget(_bars);
    layout->addWidget(_operator);
    layout->addWidget(_bearer);
    layout->addWidget(_roaming);
    layout->addStretch(1);
    layout->addWidget(_connection);
    layout->addWidget(_budget);

    connect(&_link, &ModemLink::stateChanged, this, &StatusBarView::showModemState);
    connect(&_link, &ModemLink::networkChanged, this, &StatusBarView::showNetwork);
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.addObserver(CONNECT_STATE, this, [this](const Notification& n) { onConnectState(n); });
    center.addObserver(NOTIFY_TRAFFIC_STATISTICS, this, [this](const Notification& n) { onStatistics(n); });
    showModemState(_link.state());
}

StatusBarView::~StatusBarView() {
    NotificationCenter::defaultCenter().removeObserver(this);
}

int StatusBarView::signalLevel() const {
    return _bars->level();
}

QString StatusBarView::signalText() const {
    return _bars->toolTip();
}

void StatusBarView::showModemState(ModemLink::State state) {
    if (state == ModemLink::State::Ready && _link.hasNetwork()) {
        showNetwork(_link.network());
        return;
    }
    _operator->setText(ModemLink::stateText(state));
    _bearer->clear();
    _roaming->clear();
    _abroad = false;
    if (state != ModemLink::State::Ready) {
        _connected = _connecting = false;
        _connection->clear();
    }
}

void StatusBarView::showNetwork(const BLNetworkInfo& network) {
    showBudget(false);
    _bars->setLevel(network.nRssi);
    _abroad = network.nRoamState == 1;
    const QString name = QString::fromStdString(OperatorText(network.strOperator, network.strSpName));
    _operator->setText(network.strOperator.isEmpty() && network.strSpName.isEmpty() ? tr("No operator")
                                                                                    : name);
    _bearer->setText(QString::fromStdString(BearerText(network.nBearer)));
    _roaming->setText(network.nRoamState == 1 ? tr("Roaming")
                                              : QString::fromStdString(ServiceStateText(network.nRoamState)));
    // The connect controller learns the roaming state from here.
    NotificationCenter::defaultCenter().post(NETWORK_UPDATE, nullptr,
                                             {{KEY_ROAMSTATE, network.nRoamState},
                                              {KEY_GPRSSTATE, network.nGprsState},
                                              {KEY_OPERATOR, network.strOperator}});
}

void StatusBarView::onConnectState(const Notification& notification) {
    const int announced = notification.userInfo.value(KEY_VALUE_OBJECT).toInt();
    _connected = announced == ConnectController::kAnnounceConnected;
    _connecting = announced == ConnectController::kAnnounceConnecting;
    // A link that ended has just written its traffic into the history.
    if (announced == ConnectController::kAnnounceDisconnected)
        QTimer::singleShot(0, this, [this] { showBudget(true); });
    switch (announced) {
    case ConnectController::kAnnounceConnecting:
        _connection->setText(tr("Connecting…"));
        break;
    case ConnectController::kAnnounceDisconnecting:
        _connection->setText(tr("Disconnecting…"));
        break;
    case ConnectController::kAnnounceConnected:
        _connection->setText(tr("Connected"));
        break;
    default:
        _connection->setText(tr("Disconnected"));
        break;
    }
}

void StatusBarView::onStatistics(const Notification& notification) {
    if (!_connected)
        return;
    if (auto* controller = qobject_cast<ConnectController*>(notification.object))
        _live = controller;
    showBudget(false);
    const auto sample =
        notification.userInfo.value(KEY_FOR_NOTIFY_TRAFFIC_STATISTICS).value<BLConnectStatistics>();
    _connection->setText(tr("%1   ↑ %2   ↓ %3")
                             .arg(LocaleFormat::duration(sample.nDurationSeconds),
                                  LocaleFormat::rate(sample.nSentBPS),
                                  LocaleFormat::rate(sample.nReceivedBPS)));
}

void StatusBarView::showBudget(bool force) {
    constexpr qint64 kBudgetReadMs = 10000;
    AppConfig* config = _link.config();
    if (config == nullptr || (!force && _budgetRead.isValid() && _budgetRead.elapsed() < kBudgetReadMs))
        return;
    _budgetRead.start();
    const QString imsi = config->deviceInfo().strImsi;
    const BudgetUse pending = _live ? DataBudget::useOfDay(_live->pendingDayItem()) : BudgetUse();
    const BudgetStatus status = BudgetController(*config).status(imsi, QDate::currentDate(), pending);
    _budget->setText(status.settings.hasBudget()
                         ? tr("Budget %1 %, %n day(s) left", nullptr, status.daysLeft).arg(status.percent)
                         : QString());
    _budget->setToolTip(status.usageText());
}
