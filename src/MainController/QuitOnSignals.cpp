#include "QuitOnSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_pipe[2] = {-1, -1};
constexpr int kSignals[] = {SIGTERM, SIGINT};

void WriteSignal(int signalNumber) {
    const int savedErrno = errno;
    const char number = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = write(g_pipe[1], &number, 1);
    errno = savedErrno;
}

} // namespace

QuitOnSignals::QuitOnSignals(QObject* parent) : QObject(parent) {
    if (g_pipe[0] >= 0 || socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, g_pipe) != 0)
        return;
    _notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(_notifier, &QSocketNotifier::activated, this, &QuitOnSignals::readSignal);
    struct sigaction action {};
    action.sa_handler = WriteSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : kSignals)
        sigaction(signalNumber, &action, nullptr);
}

QuitOnSignals::~QuitOnSignals() {
    if (!_notifier)
        return;
    for (const int signalNumber : kSignals)
        std::signal(signalNumber, SIG_DFL);
    close(g_pipe[0]);
    close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

void QuitOnSignals::readSignal() {
    char numbers[16];
    while (read(g_pipe[0], numbers, sizeof numbers) > 0) {
    }
    QCoreApplication::quit();
}
