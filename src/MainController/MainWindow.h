#pragma once

#include <QList>
#include <QMainWindow>
#include <QPointer>

#include <memory>

#include "ModemLink.h"
#include "TrayStatus.h"

class DesktopNotifier;
class ModulePlugin;
class PinDialog;
class ProfileSettingsController;
class QLabel;
class QDBusServiceWatcher;
class QPushButton;
class QStackedWidget;
class QSystemTrayIcon;
class QTabWidget;
class SignalRecorder;
class StatusBarView;
class TrafficStatics;
struct ModuleContext;

// The desktop app's window: one tab per module, the status bar, the tray icon, the PIN prompt and the
// "no modem" page shown while the modem is away. Made, it starts the worker and brings the modem up; the
// window follows the modem's state from then on.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // useService: talk to the modem service (dialtoned) when the session bus has it.
    explicit MainWindow(bool useService = false, QWidget* parent = nullptr);
    ~MainWindow() override;

    ModemLink& link() { return *_link; }
    DesktopNotifier& notifier() { return *_notifier; }
    StatusBarView* statusView() const { return _statusView; }
    QSystemTrayIcon* trayIcon() const { return _tray; }
    TrayState trayState() const { return _trayState; }
    // The PIN prompt while it is open, else null.
    PinDialog* pinDialog() const;
    // Whether the "no modem" (or locked SIM) page covers the modules.
    bool showsModemPage() const;
    QString modemPageText() const;
    // What the checks found while no modem is there (the same findings as "dialtone doctor").
    QString findingsText() const;

    const QList<ModulePlugin*>& modules() const { return _modules; }
    // False for the tab of a feature the modem lacks (a toolkit on a stick without one).
    bool isModuleShown(ModulePlugin* module) const;
    ModulePlugin* module(const QString& moduleName) const;
    // Brings the module's tab to the front; returns the module, or null for an unknown name.
    ModulePlugin* showModule(const QString& moduleName);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildModules();
    void buildTray();
    void makeTrayIcon();
    void bringToFront();
    void onStateChanged(ModemLink::State state);
    void askForPin(bool puk);
    void updateTray();
    void showFindings();

    std::unique_ptr<ModemLink> _link;
    std::unique_ptr<DesktopNotifier> _notifier;
    std::unique_ptr<TrafficStatics> _traffic;
    std::unique_ptr<SignalRecorder> _signalRecorder;
    std::unique_ptr<ProfileSettingsController> _profiles;
    std::unique_ptr<ModuleContext> _context;
    QStackedWidget* _pages = nullptr;
    QTabWidget* _tabs = nullptr;
    QWidget* _modemPage = nullptr;
    QLabel* _modemText = nullptr;
    QLabel* _findingsText = nullptr;
    bool _examining = false;
    QPushButton* _unlockButton = nullptr;
    StatusBarView* _statusView = nullptr;
    QSystemTrayIcon* _tray = nullptr;
    TrayState _trayState = TrayState::NoModem;
    QDBusServiceWatcher* _trayWatcher = nullptr;
    QPointer<PinDialog> _pinDialog;
    QList<ModulePlugin*> _modules;
    bool _modulesReady = false;
};
