#pragma once

// A link to the simulated modem, followed as the desktop app follows it, in a home of its own.

#include "E2ESupport.h"
#include "ModemLink.h"
#include "QtEventLoop.h"
#include "TempHome.h"

#include <gtest/gtest.h>

#include <memory>

class SimulatedLink {
public:
    explicit SimulatedLink(const QStringList& simulatorArguments = {}) : _sim(simulatorArguments) {
        ensureApplication();
        EXPECT_TRUE(_sim.started());
        _link = std::make_unique<ModemLink>();
        _link->start();
    }

    ModemLink& link() { return *_link; }
    SimulatedModem& sim() { return _sim; }
    bool reaches(ModemLink::State state) {
        return waitFor([&] { return _link->state() == state; }, std::chrono::seconds(20));
    }

private:
    TempHome _home;
    SimulatedModem _sim;
    std::unique_ptr<ModemLink> _link;
};
