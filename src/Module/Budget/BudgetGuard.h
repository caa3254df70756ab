#pragma once

#include "BudgetController.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

class AppConfig;
class ConnectController;
class ModemLink;

// The data budget and roaming guard of the process that owns the link (the modem service, the tool's
// held connect, the desktop app). It sits between the connect controller and the modem: every dial asks
// it first (a used-up budget with "hang up" chosen, or roaming with the guard on, refuses the dial until
// the user overrides), and every traffic sample and registration change while the link is up is weighed
// against the SIM's budget: warnings once per period at the share and at 100 %, the link ended when the
// user chose so. The SIM is the IMSI in the configuration's device information.
class BudgetGuard : public QObject {
    Q_OBJECT
public:
    static constexpr int kNetworkPollMs = 5000;
    static constexpr int kHistoryRereadSamples = 60;

    BudgetGuard(ModemLink& link, ConnectController& controller, AppConfig& config, QObject* parent = nullptr);
    ~BudgetGuard() override;

    // A link that is not followed (the tool's) reads the registration itself every few seconds while a
    // link is up.
    void setPollsNetwork(bool polls) { _pollsNetwork = polls; }
    // Dial while roaming for the rest of this run.
    void allowRoamingThisSession() { _roamingAllowed = true; }
    // Dial over the budget until the period's end (stored, so that every process lets the link be).
    bool allowOverBudget();

    QString imsi() const;
    // The SIM's budget now, the running link's use included.
    BudgetStatus status();
    std::optional<bool> roaming() const { return _roaming; }

    // What the user is told for a warning or a hang-up, and for a refused dial (without the way out,
    // which each front end words for itself).
    static QString noticeText(BudgetStep step, const BudgetStatus& status);
    static QString refusalText(BudgetStep step, const BudgetStatus& status);
    // The first day of the next period, "1 Dec 2026".
    static QString renewalText(const BudgetStatus& status);

signals:
    // A warning or a hang-up, with its text.
    void notice(BudgetStep step, const QString& text);
    // A dial was refused (step HangUpBudget or HangUpRoaming), with the reason.
    void dialRefused(BudgetStep step, const QString& text);

private:
    bool mayDial();
    void onSample();
    void onRoaming(bool roaming);
    void act(BudgetStep step, const BudgetStatus& status);
    bool linkUp() const;

    ModemLink& _link;
    ConnectController& _controller;
    AppConfig& _config;
    BudgetController _budget;
    QTimer _networkPoll;
    bool _pollsNetwork = false;
    bool _roamingAllowed = false;
    std::optional<bool> _roaming;
    // The history's share of the period, read again now and then and after each save of the link's day.
    std::optional<BudgetUse> _history;
    BudgetPeriod _historyPeriod;
    int _samplesSinceRead = 0;
    quint64 _lastPending = 0;
    QString _notedImsi;
};
