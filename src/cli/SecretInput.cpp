#include "SecretInput.h"

#include <csignal>
#include <cstdio>
#include <iostream>
#include <optional>

#include <termios.h>
#include <unistd.h>

namespace {

struct termios g_saved {};
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

void RestoreAndRaise(int signal) {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &g_saved);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Echo off for the lifetime of the object; the signals that end the tool put it back first.
class EchoOff {
public:
    EchoOff() {
        if (tcgetattr(STDIN_FILENO, &g_saved) != 0)
            return;
        struct sigaction action {};
        action.sa_handler = RestoreAndRaise;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &action, &_previous[i]);
        struct termios quiet = g_saved;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        quiet.c_lflag |= ECHONL;
        _active = tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
        if (!_active)
            restoreHandlers();
    }
    ~EchoOff() {
        if (!_active)
            return;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &g_saved);
        restoreHandlers();
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

private:
    void restoreHandlers() {
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &_previous[i], nullptr);
    }

    bool _active = false;
    struct sigaction _previous[std::size(kSignals)]{};
};

} // namespace

bool ReadSecretLine(const std::string& prompt, std::string& secret) {
    secret.clear();
    std::optional<EchoOff> quiet;
    if (isatty(STDIN_FILENO)) {
        // Echo goes off before the prompt shows, so that nothing typed after the prompt is echoed.
        quiet.emplace();
        std::fprintf(stderr, "%s: ", prompt.c_str());
        std::fflush(stderr);
    }
    const bool read = static_cast<bool>(std::getline(std::cin, secret));
    if (!secret.empty() && secret.back() == '\r')
        secret.pop_back();
    return read;
}
