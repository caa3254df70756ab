#include "BudgetGuard.h"

#include "AppConfig.h"
#include "CNSLog.h"
#include "Connector/ConnectController.h"
#include "ModemLink.h"
#include "NetworkRecords.h"
#include "NotificationCenter.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

namespace {

constexpr int kRoamingState = 1; // "ROAMSTATE" of the network information

} // namespace

BudgetGuard::BudgetGuard(ModemLink& link, ConnectController& controller, AppConfig& config, QObject* parent)
    : QObject(parent), _link(link), _controller(controller), _config(config), _budget(config) {
    _controller.setDialGate([this] { return mayDial(); });
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.addObserver(NOTIFY_TRAFFIC_STATISTICS, this, [this](const Notification& n) {
        if (n.object == &_controller)
            onSample();
    });
    center.addObserver(NETWORK_UPDATE, this, [this](const Notification& n) {
        if (n.userInfo.contains(KEY_ROAMSTATE))
            onRoaming(n.userInfo.value(KEY_ROAMSTATE).toInt() == kRoamingState);
    });
    connect(&_link, &ModemLink::networkChanged, this,
            [this](const BLNetworkInfo& network) { onRoaming(network.nRoamState == kRoamingState); });
    _networkPoll.setInterval(kNetworkPollMs);
    connect(&_networkPoll, &QTimer::timeout, this, [this] {
        if (!linkUp())
            return;
        _link.request(
            MESSAGE_NETWORK_GET_INFO, {},
            [this](const QVariantMap& response) {
                if (WorkNotification::GetErrorCode(response) == WORKER_OK)
                    onRoaming(WorkNotification::GetValueObject(response).value<BLNetworkInfo>().nRoamState ==
                              kRoamingState);
            },
            this);
    });
}

BudgetGuard::~BudgetGuard() {
    _controller.setDialGate({});
    NotificationCenter::defaultCenter().removeObserver(this);
}

QString BudgetGuard::imsi() const {
    return _config.deviceInfo().strImsi;
}

bool BudgetGuard::linkUp() const {
    const int state = _controller.connectState();
    return state == ConnectController::kConnecting || state == ConnectController::kConnected;
}

BudgetStatus BudgetGuard::status() {
    const QString sim = imsi();
    if (sim != _notedImsi && BudgetStore::validImsi(sim)) {
        _notedImsi = sim;
        _budget.store().noteSim(sim);
        _history.reset();
    }
    const QDate today = QDate::currentDate();
    const BudgetUse pending = DataBudget::useOfDay(_controller.pendingDayItem());
    const BudgetPeriod period = DataBudget::periodOf(today, _budget.store().load(sim).billingDay);
    // The link's day went into the history: its pending share starts again from zero.
    const quint64 pendingSum = pending.bytes + pending.seconds;
    if (!_history || period != _historyPeriod || pendingSum < _lastPending ||
        ++_samplesSinceRead >= kHistoryRereadSamples) {
        _history = _budget.historyUse(period, today);
        _historyPeriod = period;
        _samplesSinceRead = 0;
    }
    _lastPending = pendingSum;
    return _budget.status(sim, today, *_history, pending);
}

bool BudgetGuard::allowOverBudget() {
    return _budget.allowOverBudget(imsi(), QDate::currentDate());
}

bool BudgetGuard::mayDial() {
    _history.reset();
    const BudgetStatus now = status();
    if (now.refusesDial) {
        emit dialRefused(BudgetStep::HangUpBudget, refusalText(BudgetStep::HangUpBudget, now));
        return false;
    }
    if (DataBudget::roamingRefusesDial(now.settings.roaming, _roaming.value_or(false), _roamingAllowed)) {
        emit dialRefused(BudgetStep::HangUpRoaming, refusalText(BudgetStep::HangUpRoaming, now));
        return false;
    }
    if (_pollsNetwork)
        _networkPoll.start();
    return true;
}

void BudgetGuard::onSample() {
    if (!linkUp())
        return;
    const BudgetStatus now = status();
    BudgetSettings settings = now.settings;
    const BudgetStep step = DataBudget::budgetStep(settings, now.use, QDate::currentDate(), true);
    if (!(settings == now.settings))
        _budget.store().save(now.imsi, settings);
    act(step, now);
}

void BudgetGuard::onRoaming(bool roaming) {
    const bool was = _roaming.value_or(roaming);
    _roaming = roaming;
    const BudgetSettings settings = _budget.store().load(imsi());
    act(DataBudget::roamingStep(settings.roaming, was, roaming, linkUp()), {});
}

void BudgetGuard::act(BudgetStep step, const BudgetStatus& status) {
    if (step == BudgetStep::None)
        return;
    const QString text = noticeText(step, status);
    CNSLOG(1, "budget guard: %s", qPrintable(text));
    if ((step == BudgetStep::HangUpBudget || step == BudgetStep::HangUpRoaming) && linkUp())
        _controller.processDisconnect();
    emit notice(step, text);
}

QString BudgetGuard::renewalText(const BudgetStatus& status) {
    return QLocale().toString(status.renewal(), QStringLiteral("d MMM yyyy"));
}

QString BudgetGuard::refusalText(BudgetStep step, const BudgetStatus& status) {
    if (step == BudgetStep::HangUpRoaming)
        return tr("The modem is roaming and the roaming guard does not dial while roaming.");
    return tr("The data budget of this SIM is used up (%1) until %2.")
        .arg(status.usageText(), renewalText(status));
}

QString BudgetGuard::noticeText(BudgetStep step, const BudgetStatus& status) {
    const QString renewal = renewalText(status);
    switch (step) {
    case BudgetStep::WarnShare:
        return tr("%1 % of the data budget of this SIM is used (%2); %n day(s) left in the period.", nullptr,
                  status.daysLeft)
            .arg(status.percent)
            .arg(status.usageText());
    case BudgetStep::WarnFull:
        return tr("The data budget of this SIM is used up (%1) until %2.").arg(status.usageText(), renewal);
    case BudgetStep::HangUpBudget:
        return tr("The data budget of this SIM is used up (%1) until %2: the link was ended.")
            .arg(status.usageText(), renewal);
    case BudgetStep::WarnRoaming:
        return tr("The modem is roaming now: data may cost more on this network.");
    case BudgetStep::HangUpRoaming:
        return tr("The modem is roaming: the roaming guard ended the link.");
    default:
        return {};
    }
}
