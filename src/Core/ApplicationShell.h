#pragma once

#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>

#include "DeviceWorkInterfaces.h"

class AppConfig;

// The application's shared objects: the main window, the configuration, the worker's request end for
// the whole application, and whether the modem is there. The device flag may be set from any thread;
// the rest belongs to the GUI thread.
class ApplicationShell {
public:
    static ApplicationShell& sharedShell();

    void setDeviceFoundOK(bool found) { _deviceFoundOK.store(found); }
    bool deviceFoundOK() const { return _deviceFoundOK.load(); }

    void setMainWindow(QObject* mainWindow) { _mainWindow = mainWindow; }
    QObject* mainWindow() const { return _mainWindow.data(); }

    // Takes the configuration object; a later one replaces it.
    void setAppConfig(std::unique_ptr<AppConfig> config);
    AppConfig* appConfig() const { return _appConfig.get(); }

    void setRequestTarget(DeviceWorkRequestInterface* target) { _requestTarget = target; }
    DeviceWorkRequestInterface* requestTarget() const { return _requestTarget; }

    // Whether a running dial-up link outlives the program. The desktop app ends its link when it quits;
    // the command-line tool leaves it up for "dialtone disconnect" to end.
    void setKeepsLinkOnQuit(bool keep) { _keepsLinkOnQuit.store(keep); }
    bool keepsLinkOnQuit() const { return _keepsLinkOnQuit.load(); }

private:
    std::atomic<bool> _deviceFoundOK{false};
    std::atomic<bool> _keepsLinkOnQuit{false};
    QPointer<QObject> _mainWindow;
    std::shared_ptr<AppConfig> _appConfig;
    DeviceWorkRequestInterface* _requestTarget = nullptr;
};
