// dialtone-modemsim: a simulated USB 3G/HSPA modem on two pseudo-terminals.
//
//   dialtone-modemsim --dev-dir DIR [--scenario FILE | --replay RECORDING] [--control PATH] [--suffix N]
//                     [--trace]
//
// Creates the AT port and the dial port, links them into DIR under the names the device discovery looks
// for, prints one JSON line with the paths once it is ready, and runs until "quit" on the control socket,
// SIGTERM or SIGINT. The links and the socket are removed on exit. With --replay the AT port answers as a
// recorded session did (dialtone --record).

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "SimModem.h"
#include "SimReplay.h"
#include "SimScenario.h"
#include "SimServer.h"

#ifndef MODEMSIM_SCENARIO_DIR
#define MODEMSIM_SCENARIO_DIR ""
#endif

namespace {

int g_stopPipe[2] = {-1, -1};

void OnSignal(int) {
    char c = 1;
    ssize_t n = write(g_stopPipe[1], &c, 1);
    (void)n;
}

int Usage(int code) {
    std::fprintf(
        code ? stderr : stdout,
        "usage: dialtone-modemsim --dev-dir DIR [--scenario FILE|NAME | --replay RECORDING] [--control PATH] "
        "[--suffix N] [--trace]\n"
        "       dialtone-modemsim --check-scenario FILE|NAME\n"
        "Scenario names are looked up in %s.\n",
        MODEMSIM_SCENARIO_DIR);
    return code;
}

bool IsFile(const std::string& path) {
    struct stat st {};
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// A scenario is a file, or the name of one shipped with the simulator ("pin-locked").
std::string FindScenario(const std::string& name) {
    if (name.empty() || IsFile(name)) {
        return name;
    }
    std::string dir = MODEMSIM_SCENARIO_DIR;
    for (const std::string& candidate : {dir + "/" + name, dir + "/" + name + ".json"}) {
        if (!dir.empty() && IsFile(candidate)) {
            return candidate;
        }
    }
    return name;
}

} // namespace

int main(int argc, char** argv) {
    modemsim::ServerOptions options;
    std::string scenario;
    std::string replayPath;
    bool checkOnly = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= argc) {
                return false;
            }
            out = argv[++i];
            return true;
        };
        bool ok = true;
        if (arg == "--dev-dir") {
            ok = value(options.devDir);
        } else if (arg == "--scenario") {
            ok = value(scenario);
        } else if (arg == "--replay") {
            ok = value(replayPath);
        } else if (arg == "--check-scenario") {
            ok = value(scenario);
            checkOnly = true;
        } else if (arg == "--control") {
            ok = value(options.controlPath);
        } else if (arg == "--suffix") {
            ok = value(options.suffix) && !options.suffix.empty();
        } else if (arg == "--trace") {
            options.trace = true;
        } else if (arg == "--help" || arg == "-h") {
            return Usage(0);
        } else {
            ok = false;
        }
        if (!ok) {
            return Usage(2);
        }
    }

    modemsim::SimState state;
    std::string error;
    if (!modemsim::LoadScenario(FindScenario(scenario), state, error)) {
        std::fprintf(stderr, "dialtone-modemsim: %s\n", error.c_str());
        return 1;
    }
    std::optional<modemsim::SimReplay> replay;
    if (!replayPath.empty()) {
        Recording recording;
        if (!LoadRecording(replayPath, recording, error)) {
            std::fprintf(stderr, "dialtone-modemsim: cannot replay %s\n", error.c_str());
            return 1;
        }
        replay.emplace(std::move(recording));
        state.dialect = replay->Standard() ? modemsim::Dialect::Standard : modemsim::Dialect::Vel;
        options.replay = &*replay;
    }
    if (checkOnly) {
        std::printf("{\"ok\":true}\n");
        return 0;
    }
    struct stat st {};
    if (options.devDir.empty()) {
        return Usage(2);
    }
    if (stat(options.devDir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        std::fprintf(stderr, "dialtone-modemsim: %s is not a folder\n", options.devDir.c_str());
        return 1;
    }

    if (pipe2(g_stopPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        std::perror("dialtone-modemsim: pipe");
        return 1;
    }
    struct sigaction sa {};
    sa.sa_handler = OnSignal;
    sigemptyset(&sa.sa_mask);
    sigaction(SIGTERM, &sa, nullptr);
    sigaction(SIGINT, &sa, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    modemsim::SimModem modem(std::move(state));
    modemsim::SimServer server(modem, options);
    if (!server.Start(error)) {
        std::fprintf(stderr, "dialtone-modemsim: %s\n", error.c_str());
        return 1;
    }
    std::printf("%s\n", server.Paths().dump().c_str());
    std::fflush(stdout);
    int code = server.Run(g_stopPipe[0]);
    server.Stop();
    return code;
}
