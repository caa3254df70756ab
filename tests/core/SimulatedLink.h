#pragma once

// The simulated modem and a link to it, opened as the tool opens it or followed as the desktop app does.

#include "BLRecords.h"
#include "E2ESupport.h"
#include "ModemLink.h"
#include "QtEventLoop.h"
#include "TempHome.h"
#include "WorkNotification.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

// The simulated modem in a home of its own, with a link not yet opened or started.
struct SimulatorWorld {
    explicit SimulatorWorld(const QStringList& simulatorArguments = {}) : sim(simulatorArguments) {
        ensureApplication();
        registerRecordMetaTypes();
    }
    // Opens the link the way the tool opens it.
    bool open() { return sim.started() && link.open(30000) == WORKER_OK; }
    // The first value of the spy's latest signal once it came; `none` when it did not.
    template <typename T> static T latest(QSignalSpy& spy, T none) {
        EXPECT_TRUE(waitFor([&] { return !spy.isEmpty(); }, std::chrono::seconds(20)))
            << spy.signal().toStdString();
        return spy.isEmpty() ? none : spy.last().first().value<T>();
    }

    TempHome home;
    SimulatedModem sim;
    ModemLink link;
};

// A link to the simulated modem, followed as the desktop app follows it.
struct SimulatedLink : SimulatorWorld {
    explicit SimulatedLink(const QStringList& simulatorArguments = {}) : SimulatorWorld(simulatorArguments) {
        EXPECT_TRUE(sim.started());
        link.start();
    }
    bool reaches(ModemLink::State state) {
        return waitFor([&] { return link.state() == state; }, std::chrono::seconds(20));
    }
};
