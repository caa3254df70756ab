#include "ApplicationShell.h"

#include "AppConfig.h"

ApplicationShell& ApplicationShell::sharedShell() {
    static ApplicationShell shell;
    return shell;
}

void ApplicationShell::setAppConfig(std::unique_ptr<AppConfig> config) {
    _appConfig = std::move(config);
}
