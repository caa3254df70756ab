#include "StatisticsPlugin.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "AppConfig.h"
#include "BudgetDialog.h"
#include "CNSLabels.h"
#include "CNSSignalChart.h"
#include "CNSTrafficChart.h"
#include "Connector/ConnectController.h"
#include "LocaleFormat.h"
#include "NotificationCenter.h"

namespace {

quint64 Sum(quint64 a, quint64 b) {
    return a > UINT64_MAX - b ? UINT64_MAX : a + b;
}

bool LinkUp(const ConnectController* controller) {
    return controller && (controller->connectState() == ConnectController::kConnecting ||
                          controller->connectState() == ConnectController::kConnected);
}

} // namespace

StatisticsPlugin::StatisticsPlugin(ModuleContext& context, QWidget* parent)
    : ModulePlugin(context, parent), _statistics(context.config), _budget(context.config) {
    auto* layout = new QVBoxLayout(this);

    auto* chooser = new QHBoxLayout;
    _period = new QComboBox(this);
    _period->setObjectName(QStringLiteral("period"));
    _period->addItems({tr("This month"), tr("Last month"), tr("Custom")});
    const QDate today = QDate::currentDate();
    _from = new QDateEdit(today.addDays(1 - today.day()), this);
    _from->setObjectName(QStringLiteral("from"));
    _to = new QDateEdit(today, this);
    _to->setObjectName(QStringLiteral("to"));
    for (QDateEdit* edit : {_from, _to}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    }
    chooser->addWidget(CNSBuddyLabel(tr("Period:"), _period, this));
    chooser->addWidget(_period);
    chooser->addWidget(CNSBuddyLabel(tr("from"), _from, this));
    chooser->addWidget(_from);
    chooser->addWidget(CNSBuddyLabel(tr("to"), _to, this));
    chooser->addWidget(_to);
    chooser->addStretch(1);
    _chartKind = new QComboBox(this);
    _chartKind->setObjectName(QStringLiteral("chartKind"));
    _chartKind->addItems({tr("Traffic"), tr("Signal")});
    _signalDay = new QDateEdit(today, this);
    _signalDay->setObjectName(QStringLiteral("signalDay"));
    _signalDay->setCalendarPopup(true);
    _signalDay->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    _signalDay->setAccessibleName(tr("Day of the signal chart"));
    _signalDay->setVisible(false);
    chooser->addWidget(CNSBuddyLabel(tr("Show:"), _chartKind, this));
    chooser->addWidget(_chartKind);
    chooser->addWidget(_signalDay);
    layout->addLayout(chooser);

    _charts = new QStackedWidget(this);
    _chart = new CNSTrafficChart(_charts);
    _chart->setObjectName(QStringLiteral("chart"));
    _signalChart = new CNSSignalChart(_charts);
    _signalChart->setObjectName(QStringLiteral("signalChart"));
    _charts->addWidget(_chart);
    _charts->addWidget(_signalChart);
    layout->addWidget(_charts, 1);
    connect(_chartKind, &QComboBox::currentIndexChanged, this, [this](int index) {
        _charts->setCurrentIndex(index);
        _signalDay->setVisible(index == 1);
        refreshSignal();
    });
    connect(_signalDay, &QDateEdit::dateChanged, this, &StatisticsPlugin::refreshSignal);
    // The history gains a minute a minute.
    _signalRefresh.setInterval(60000);
    connect(&_signalRefresh, &QTimer::timeout, this, [this] {
        if (isVisible() && _charts->currentIndex() == 1)
            refreshSignal();
    });
    _signalRefresh.start();

    _message = new QLabel(this);
    _message->setObjectName(QStringLiteral("statisticsMessage"));
    _message->setTextFormat(Qt::PlainText);
    _message->setWordWrap(true);
    layout->addWidget(_message);

    auto* budgetBox = new QGroupBox(tr("Data budget"), this);
    auto* budgetRow = new QHBoxLayout(budgetBox);
    _budgetBar = new QProgressBar(budgetBox);
    _budgetBar->setObjectName(QStringLiteral("budgetBar"));
    _budgetBar->setRange(0, 100);
    _budgetText = CNSValueLabel(QStringLiteral("budgetText"), budgetBox);
    _budgetSet = new QPushButton(tr("Set…"), budgetBox);
    _budgetSet->setObjectName(QStringLiteral("budgetSet"));
    _budgetClear = new QPushButton(tr("Clear"), budgetBox);
    _budgetClear->setObjectName(QStringLiteral("budgetClear"));
    budgetRow->addWidget(_budgetBar, 1);
    budgetRow->addWidget(_budgetText, 1);
    budgetRow->addWidget(_budgetSet);
    budgetRow->addWidget(_budgetClear);
    layout->addWidget(budgetBox);
    connect(_budgetSet, &QPushButton::clicked, this, &StatisticsPlugin::editBudget);
    connect(_budgetClear, &QPushButton::clicked, this, &StatisticsPlugin::clearBudget);

    auto* totals = new QHBoxLayout;
    auto* periodBox = new QGroupBox(tr("In this period"), this);
    auto* periodForm = new QFormLayout(periodBox);
    _periodSent = CNSValueLabel(QStringLiteral("periodSent"), periodBox);
    _periodReceived = CNSValueLabel(QStringLiteral("periodReceived"), periodBox);
    _periodTotal = CNSValueLabel(QStringLiteral("periodTotal"), periodBox);
    _periodRoaming = CNSValueLabel(QStringLiteral("periodRoaming"), periodBox);
    periodForm->addRow(tr("Sent:"), _periodSent);
    periodForm->addRow(tr("Received:"), _periodReceived);
    periodForm->addRow(tr("Total:"), _periodTotal);
    periodForm->addRow(tr("Of which roaming:"), _periodRoaming);
    totals->addWidget(periodBox, 1);

    auto* resetBox = new QGroupBox(tr("Since the last reset"), this);
    auto* resetForm = new QFormLayout(resetBox);
    _resetSent = CNSValueLabel(QStringLiteral("resetSent"), resetBox);
    _resetReceived = CNSValueLabel(QStringLiteral("resetReceived"), resetBox);
    _connectTime = CNSValueLabel(QStringLiteral("connectTime"), resetBox);
    _resetDate = CNSValueLabel(QStringLiteral("resetDate"), resetBox);
    resetForm->addRow(tr("Sent:"), _resetSent);
    resetForm->addRow(tr("Received:"), _resetReceived);
    resetForm->addRow(tr("Connection time:"), _connectTime);
    resetForm->addRow(tr("Last reset:"), _resetDate);
    _reset = new QPushButton(tr("Reset…"), resetBox);
    _reset->setObjectName(QStringLiteral("reset"));
    _reset->setToolTip(tr("Set the totals since the last reset to zero; optionally delete the day history"));
    auto* resetRow = new QHBoxLayout;
    resetRow->addStretch(1);
    resetRow->addWidget(_reset);
    resetForm->addRow(resetRow);
    totals->addWidget(resetBox, 1);
    layout->addLayout(totals);

    connect(_period, &QComboBox::currentIndexChanged, this, &StatisticsPlugin::periodChosen);
    connect(_from, &QDateEdit::dateChanged, this, &StatisticsPlugin::refresh);
    connect(_to, &QDateEdit::dateChanged, this, &StatisticsPlugin::refresh);
    connect(_reset, &QPushButton::clicked, this, &StatisticsPlugin::askReset);

    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.addObserver(NOTIFY_TRAFFIC_STATISTICS, this, [this](const Notification& n) { followLink(n); });
    // A link that ends has just written its traffic into the history.
    center.addObserver(CONNECT_STATE, this, [this](const Notification& n) { followLink(n); });
    periodChosen();
}

StatisticsPlugin::~StatisticsPlugin() {
    NotificationCenter::defaultCenter().removeObserver(this);
}

std::pair<QDate, QDate> StatisticsPlugin::periodDays(Period period, const QDate& today) {
    const QDate firstOfMonth(today.year(), today.month(), 1);
    if (period == LastMonth) {
        const QDate first = firstOfMonth.addMonths(-1);
        return {first, firstOfMonth.addDays(-1)};
    }
    return {firstOfMonth, today};
}

void StatisticsPlugin::periodChosen() {
    const auto period = static_cast<Period>(_period->currentIndex());
    const bool custom = period == Custom;
    _from->setEnabled(custom);
    _to->setEnabled(custom);
    if (!custom) {
        const auto [first, last] = periodDays(period, QDate::currentDate());
        const QSignalBlocker quietFrom(_from);
        const QSignalBlocker quietTo(_to);
        _from->setDate(first);
        _to->setDate(last);
    }
    refresh();
}

void StatisticsPlugin::followLink(const Notification& notification) {
    if (auto* controller = qobject_cast<ConnectController*>(notification.object))
        _live = controller;
    // The controller updates its counts after it announces them: read them once it is done.
    if (!isVisible() || _refreshQueued)
        return;
    _refreshQueued = true;
    QTimer::singleShot(0, this, [this] {
        _refreshQueued = false;
        refresh();
    });
}

void StatisticsPlugin::showEvent(QShowEvent* event) {
    ModulePlugin::showEvent(event);
    refresh();
    refreshSignal();
}

void StatisticsPlugin::refreshSignal() {
    _signalChart->setDay(_signalDay->date(), SignalHistory().day(_signalDay->date()));
}

void StatisticsPlugin::refresh() {
    const QDate from = _from->date();
    const QDate to = _to->date();
    if (from > to) {
        _message->setText(tr("The first day comes after the last day: choose the days again."));
        _chart->setDays({}, {}, {});
        for (QLabel* label : {_periodSent, _periodReceived, _periodTotal, _periodRoaming})
            label->setText(QStringLiteral("–"));
        return;
    }
    StatisticsRange range = _statistics.rangeStatistics(from, to);
    StatisticsSinceReset since = _statistics.sinceReset();

    const QDate today = QDate::currentDate();
    const bool live = LinkUp(_live);
    refreshBudget(live ? _live->pendingDayItem() : _TrafficStaticsItem());
    if (live) {
        if (today >= from && today <= to)
            range.rows.append(
                {TrafficStatics::getKeyOfDate(QDateTime::currentDateTime()), _live->pendingDayItem()});
        const BLConnectStatistics& sample = _live->latestStatistics();
        since.sentBytes = Sum(since.sentBytes, sample.nSentBytes);
        since.receivedBytes = Sum(since.receivedBytes, sample.nReceivedBytes);
        since.connectTimeSeconds += sample.nDurationSeconds;
    }
    range.total = StatisticsController::totalOfRows(range.rows);
    _chart->setDays(from, to, range.rows);
    if (from.daysTo(to) >= CNSTrafficChart::kMaxDays)
        _message->setText(tr("The chart shows the last %1 days of the period; the totals cover all of it.")
                              .arg(CNSTrafficChart::kMaxDays));
    else if (live)
        _message->setText(tr("Includes the connection in progress."));
    else
        _message->clear();

    const _TrafficStaticsItem& t = range.total;
    const quint64 sent = Sum(t.noRoamingSendBytes, t.roamingSendBytes);
    const quint64 received = Sum(t.noRoamingReceiveBytes, t.roamingReceiveBytes);
    _periodSent->setText(LocaleFormat::dataSize(sent));
    _periodReceived->setText(LocaleFormat::dataSize(received));
    _periodTotal->setText(LocaleFormat::dataSize(Sum(sent, received)));
    _periodRoaming->setText(LocaleFormat::dataSize(Sum(t.roamingSendBytes, t.roamingReceiveBytes)));

    _resetSent->setText(LocaleFormat::dataSize(since.sentBytes));
    _resetReceived->setText(LocaleFormat::dataSize(since.receivedBytes));
    _connectTime->setText(LocaleFormat::duration(since.connectTimeSeconds));
    _resetDate->setText(since.resetDate.isValid()
                            ? QLocale().toString(since.resetDate.toLocalTime(), QLocale::ShortFormat)
                            : tr("Never"));
}

void StatisticsPlugin::askReset() {
    auto* box = new QMessageBox(QMessageBox::Question, tr("Reset the statistics"),
                                tr("Set the totals since the last reset to zero? The traffic per day stays "
                                   "unless you delete it too."),
                                QMessageBox::Cancel, this);
    box->setObjectName(QStringLiteral("resetConfirm"));
    QPushButton* confirm = box->addButton(tr("Reset"), QMessageBox::DestructiveRole);
    confirm->setObjectName(QStringLiteral("confirmReset"));
    auto* history = new QCheckBox(tr("Also delete the traffic per day"), box);
    history->setObjectName(QStringLiteral("deleteHistory"));
    box->setCheckBox(history);
    box->setDefaultButton(QMessageBox::Cancel);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::buttonClicked, this, [this, confirm, history](QAbstractButton* clicked) {
        if (clicked == confirm)
            reset(history->isChecked());
    });
    box->open();
}

void StatisticsPlugin::reset(bool alsoHistory) {
    QString failure;
    if (!_statistics.resetTotals())
        failure = tr("The totals could not be reset: the settings could not be written. Check that your "
                     "configuration folder is writable, then try again.");
    else if (alsoHistory && !_statistics.deleteHistory())
        failure = tr("The totals were reset, but the traffic per day could not be deleted. Check that your "
                     "data folder is writable, then try again.");
    refresh();
    if (!failure.isEmpty())
        _message->setText(failure);
}

QString StatisticsPlugin::budgetSim() {
    const QString inModem = context().config.deviceInfo().strImsi;
    return BudgetStore::validImsi(inModem) ? inModem : _budget.store().lastImsi();
}

void StatisticsPlugin::refreshBudget(const _TrafficStaticsItem& pending) {
    const QString sim = budgetSim();
    _budgetSet->setEnabled(!sim.isEmpty());
    if (sim.isEmpty()) {
        _budgetBar->hide();
        _budgetClear->setEnabled(false);
        _budgetText->setText(tr("No SIM seen yet: the budget belongs to a SIM."));
        return;
    }
    const BudgetStatus status = _budget.status(sim, QDate::currentDate(), DataBudget::useOfDay(pending));
    _budgetClear->setEnabled(status.settings.hasBudget());
    _budgetBar->setVisible(status.settings.hasBudget());
    if (!status.settings.hasBudget()) {
        _budgetText->setText(tr("No budget for this SIM."));
        return;
    }
    _budgetBar->setValue(std::min(status.percent, 100));
    _budgetBar->setFormat(tr("%1 %").arg(status.percent));
    _budgetText->setText(
        tr("%1; %n day(s) left until %2", nullptr, status.daysLeft)
            .arg(status.usageText(), QLocale().toString(status.renewal(), QLocale::ShortFormat)));
}

void StatisticsPlugin::editBudget() {
    const QString sim = budgetSim();
    auto* dialog = new BudgetDialog(_budget.store().load(sim), this);
    dialog->setObjectName(QStringLiteral("budgetDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, sim] {
        if (!_budget.set(sim, dialog->settings()))
            _message->setText(tr("The budget could not be stored: check that your data folder is writable, "
                                 "then try again."));
        refresh();
    });
    dialog->open();
}

void StatisticsPlugin::clearBudget() {
    if (!_budget.clear(budgetSim()))
        _message->setText(tr("The budget could not be cleared: check that your data folder is writable, then "
                             "try again."));
    refresh();
}
