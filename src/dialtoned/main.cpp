// dialtoned: the user's modem service on the session bus. Started by the bus on the first call (or by its
// systemd user unit); ends itself after a minute without clients while no link is up.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QSocketNotifier>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "BLRecords.h"
#include "DebugSink.h"
#include "ModemService.h"

namespace {

int g_signalPipe[2] = {-1, -1};

void OnTerminate(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(g_signalPipe[1], &byte, 1);
}

void Usage() {
    std::fprintf(stderr, "usage: dialtoned [--idle-exit SECONDS]   (0: never end on its own)\n");
}

} // namespace

int main(int argc, char* argv[]) {
    int idleMs = ModemService::kIdleExitMs;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--idle-exit" && i + 1 < argc) {
            char* end = nullptr;
            const long seconds = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || seconds < 0 || seconds > 86400) {
                Usage();
                return 2;
            }
            idleMs = static_cast<int>(seconds * 1000);
        } else {
            Usage();
            return argument == "--help" || argument == "-h" ? 0 : 2;
        }
    }
    // It holds PINs and passwords on their way to the modem.
    prctl(PR_SET_DUMPABLE, 0);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);

    // Debug texts go to the log, not to the journal line by line.
    SetDebugSink(nullptr);
    QCoreApplication application(argc, argv);
    registerRecordMetaTypes();
    ModemService service(QDBusConnection::sessionBus(), idleMs);
    QString error;
    if (!service.publish(error)) {
        std::fprintf(stderr, "dialtoned: %s\n", error.toLocal8Bit().constData());
        return 1;
    }

    // SIGTERM and SIGINT end the event loop, so the service lets go of the modem in order.
    if (pipe2(g_signalPipe, O_CLOEXEC | O_NONBLOCK) == 0) {
        auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, &application);
        QObject::connect(notifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
        std::signal(SIGTERM, OnTerminate);
        std::signal(SIGINT, OnTerminate);
    }
    service.start([] { QCoreApplication::quit(); });
    return application.exec();
}
