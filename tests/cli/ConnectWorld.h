#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "CliTestSupport.h"

// The simulated stick with pppd's folders of its own: peers, pid files and interface counters.
class ConnectWorld {
public:
    explicit ConnectWorld(const std::string& scenario = {}) : modem(scenario) {
        for (const char* folder : {"/peers", "/run", "/net"})
            std::filesystem::create_directories(ppp.path + folder);
    }

    // The tool against this modem and these folders; extraEnv and commandPrefix as RunDialtone takes them.
    clitest::Outcome run(const std::vector<std::string>& arguments,
                         std::vector<std::pair<std::string, std::string>> extraEnv = {},
                         const std::vector<std::string>& commandPrefix = {}) const {
        std::vector<std::string> all{"--dev-dir", modem.devDir.path};
        all.insert(all.end(), arguments.begin(), arguments.end());
        extraEnv.insert(extraEnv.end(), {{"DIALTONE_PPPD", DIALTONE_FAKE_PPPD},
                                         {"DIALTONE_PEERS_DIR", ppp.path + "/peers"},
                                         {"DIALTONE_PPP_RUN_DIR", ppp.path + "/run"},
                                         {"DIALTONE_NET_DIR", ppp.path + "/net"},
                                         {"XDG_CONFIG_HOME", ""}});
        return clitest::RunDialtone(all, modem.home.path, extraEnv, "/dev/null", commandPrefix);
    }

    // Runs the steps in order against this modem and these folders.
    void expect(const std::vector<clitest::Step>& steps) const {
        for (const clitest::Step& step : steps)
            clitest::ExpectStep(step, run(step.args));
    }

    // What the stand-in's interface has moved, as the kernel would count it.
    void setCounters(unsigned long long sent, unsigned long long received) const {
        std::ofstream(ppp.path + "/net/ppp0/statistics/tx_bytes") << sent << "\n";
        std::ofstream(ppp.path + "/net/ppp0/statistics/rx_bytes") << received << "\n";
    }

    bool linkRunning() const { return std::filesystem::exists(ppp.path + "/run/ppp-VELMODEM1.pid"); }

    clitest::SimulatedModem modem;
    clitest::TempDir ppp;
};
