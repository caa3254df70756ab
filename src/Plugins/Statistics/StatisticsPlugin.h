#pragma once

#include <QDate>
#include <QPointer>
#include <QTimer>

#include "Budget/BudgetController.h"
#include "ModulePlugin.h"
#include "NotificationCenter.h"
#include "Statistics/StatisticsController.h"

class ConnectController;
class QComboBox;
class QDateEdit;
class QLabel;
class QProgressBar;
class QPushButton;
class CNSTrafficChart;
class CNSSignalChart;
class QStackedWidget;

// The statistics tab: the traffic of a period (this month, last month or chosen days) as a bar per day
// with the roaming share, the period's totals, the totals since the last reset, and the reset. Works from
// the history on this computer, so it needs no modem; a connection in progress is added to today until
// its traffic is saved when it ends. Above the totals, the data budget of the SIM as a bar with the days
// left in its period, and the buttons to set and clear it. A switch shows instead the signal of a chosen day
// from the signal history, with the changes of bearer and cell.
class StatisticsPlugin : public ModulePlugin {
    Q_OBJECT
public:
    enum Period { ThisMonth = 0, LastMonth = 1, Custom = 2 };

    explicit StatisticsPlugin(ModuleContext& context, QWidget* parent = nullptr);
    ~StatisticsPlugin() override;

    QString title() const override { return tr("Statistics"); }
    QString moduleName() const override { return QStringLiteral("statistics"); }

    // The first and last day of a period, today given.
    static std::pair<QDate, QDate> periodDays(Period period, const QDate& today);

    // Reads the history again and shows it.
    void refresh();
    // Reads the chosen day of the signal history again and shows it.
    void refreshSignal();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void periodChosen();
    void askReset();
    void reset(bool alsoHistory);
    void followLink(const Notification& notification);
    // The SIM's budget against its current period, the running link included.
    void refreshBudget(const _TrafficStaticsItem& pending);
    void editBudget();
    void clearBudget();
    // The SIM in the modem, else the one seen last; empty when none is known.
    QString budgetSim();

    StatisticsController _statistics;
    BudgetController _budget;
    // The connect controller with a link up; its unsaved counts are shown as part of today.
    QPointer<ConnectController> _live;
    bool _refreshQueued = false;

    QComboBox* _period = nullptr;
    QDateEdit* _from = nullptr;
    QDateEdit* _to = nullptr;
    CNSTrafficChart* _chart = nullptr;
    QComboBox* _chartKind = nullptr;
    QDateEdit* _signalDay = nullptr;
    QStackedWidget* _charts = nullptr;
    CNSSignalChart* _signalChart = nullptr;
    QTimer _signalRefresh;
    QLabel* _message = nullptr;
    QLabel* _periodSent = nullptr;
    QLabel* _periodReceived = nullptr;
    QLabel* _periodTotal = nullptr;
    QLabel* _periodRoaming = nullptr;
    QLabel* _resetSent = nullptr;
    QLabel* _resetReceived = nullptr;
    QLabel* _connectTime = nullptr;
    QLabel* _resetDate = nullptr;
    QPushButton* _reset = nullptr;
    QProgressBar* _budgetBar = nullptr;
    QLabel* _budgetText = nullptr;
    QPushButton* _budgetSet = nullptr;
    QPushButton* _budgetClear = nullptr;
};
