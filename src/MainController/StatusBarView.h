#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QWidget>

#include "ModemLink.h"

class CNSSignalBars;
class ConnectController;
struct Notification;

// The status bar's contents: signal bars, operator, bearer, roaming, and while connected the link's
// duration and rates, and the share of the SIM's data budget used. Follows the modem link and the connect
// controller's notifications.
class StatusBarView : public QWidget {
    Q_OBJECT
public:
    explicit StatusBarView(ModemLink& link, QWidget* parent = nullptr);
    ~StatusBarView() override;

    // What is shown, for tests and the tray's tool tip.
    int signalLevel() const;
    // The signal in words, with its dBm figure when the modem gave one.
    QString signalText() const;
    QString operatorText() const { return _operator->text(); }
    QString bearerText() const { return _bearer->text(); }
    QString roamingText() const { return _roaming->text(); }
    QString connectionText() const { return _connection->text(); }
    QString budgetText() const { return _budget->text(); }
    bool connected() const { return _connected; }
    bool connecting() const { return _connecting; }
    // Registered with a network abroad (or a partner's).
    bool roaming() const { return _abroad; }

private:
    void showModemState(ModemLink::State state);
    void showNetwork(const BLNetworkInfo& network);
    void onConnectState(const Notification& notification);
    void onStatistics(const Notification& notification);
    // Reads the budget again, at most every few seconds unless forced.
    void showBudget(bool force);

    ModemLink& _link;
    CNSSignalBars* _bars = nullptr;
    QLabel* _operator = nullptr;
    QLabel* _bearer = nullptr;
    QLabel* _roaming = nullptr;
    QLabel* _connection = nullptr;
    QLabel* _budget = nullptr;
    QPointer<ConnectController> _live; // its unsaved counts belong to the budget's use
    QElapsedTimer _budgetRead;
    bool _connected = false;
    bool _connecting = false;
    bool _abroad = false;
};
