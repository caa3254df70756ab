#pragma once

#include <memory>

#include "ModulePlugin.h"

class BudgetGuard;
class ConnectController;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
struct Notification;

// The connect tab: the offered profiles, one Connect/Disconnect button and the live counters of the link,
// over a ConnectController made the first time the modem is ready. The controller keeps polling the link
// once a second after the first dial and feeds the traffic history; this view only follows its state.
class ConnectPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit ConnectPlugin(ModuleContext& context, QWidget* parent = nullptr);
    ~ConnectPlugin() override;

    QString title() const override { return tr("Connect"); }
    QString moduleName() const override { return QStringLiteral("connect"); }

    void modemReady() override;
    void modemGone() override;

    // Null until the modem was ready once.
    ConnectController* controller() const { return _controller.get(); }

    // The button's text for a title key of the controller ("IDS_CONNECT", "IDS_DISCONNECT").
    static QString buttonTitle(const QString& key);

private:
    void createController();
    void refreshView();
    void showStatistics(const Notification& notification);
    void showWarning(const QString& titleKey, const QString& messageKey, const QString& buttonKey);
    void showServiceFailure();
    // Says, the first time, why the system asks for a password, then runs the privileged step.
    void explainPrivilegedStep();
    void showPrivilegedStepFailure(int status);
    void clearCounters();
    void saveTraffic();
    // A dial the budget or roaming guard refused: says why and offers to dial anyway.
    void askOverride(int step, const QString& text);

    std::unique_ptr<ConnectController> _controller;
    std::unique_ptr<BudgetGuard> _guard;
    bool _modemPresent = false;
    bool _privilegeExplained = false;

    QComboBox* _profiles = nullptr;
    QPushButton* _button = nullptr;
    QProgressBar* _busy = nullptr;
    QLabel* _state = nullptr;
    QLabel* _message = nullptr;
    QLabel* _duration = nullptr;
    QLabel* _sent = nullptr;
    QLabel* _received = nullptr;
    QLabel* _upRate = nullptr;
    QLabel* _downRate = nullptr;
};
