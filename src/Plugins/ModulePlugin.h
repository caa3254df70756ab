#pragma once

#include <QIcon>

#include <QString>
#include <QWidget>
#include <functional>

#include "ModemLink.h"

class AppConfig;
class DesktopNotifier;
class ProfileSettingsController;
class TrafficStatics;
class ModulePlugin;

// What every module of the main window shares: the modem, the configuration, the traffic history, the
// profile settings and the desktop notifications. Owned by the main window; it outlives the modules.
struct ModuleContext {
    ModemLink& link;
    AppConfig& config;
    TrafficStatics& traffic;
    ProfileSettingsController& profiles;
    DesktopNotifier& notifier;
    // Opens another module's tab ("messages", ...) so that one module can hand work to another (send a
    // message to a contact); set by the main window.
    std::function<ModulePlugin*(const QString& moduleName)> showModule;
};

// One module of the main window (one tab). The main window tells it when the modem is ready for use and
// when it is gone; a module shows nothing stale while the modem is away and loads its data again when the
// modem comes back.
class ModulePlugin : public QWidget {
    Q_OBJECT
public:
    ModulePlugin(ModuleContext& context, QWidget* parent = nullptr) : QWidget(parent), _context(context) {}

    // The tab's title and a stable name for scripts and tests ("connect", "messages", ...).
    virtual QString title() const = 0;
    virtual QString moduleName() const = 0;
    virtual QIcon icon() const { return {}; }

    // The modem is ready (SIM unlocked, identity and profiles known).
    virtual void modemReady() {}
    // The modem is gone or locked again.
    virtual void modemGone() {}

signals:
    // The module found that the modem has no such feature (false), or may have it again (true); the main
    // window hides or shows its tab.
    void supportChanged(bool supported);

protected:
    ModemLink& link() const { return _context.link; }
    ModuleContext& context() const { return _context; }

private:
    ModuleContext& _context;
};
