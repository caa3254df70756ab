#include "ModemDialect.h"
#include "Network/NetworkController.h"
#include "SimulatedLink.h"

namespace {

// The controller on the simulated modem, which scans at once.
struct NetworkWorld : SimulatorWorld {
    using SimulatorWorld::SimulatorWorld;
    bool open() { return sim.control("set scan_delay_ms 0").value("ok").toBool() && SimulatorWorld::open(); }
    Outcome outcome(QSignalSpy& spy) { return latest(spy, Outcome{-1, 0}); }

    NetworkController network{link};
};

// The link speaks the stick's dialect while it lives.
struct DialectGuard {
    explicit DialectGuard(bool standard) {
        if (standard)
            SetModemDialect(ModemDialect::Standard);
    }
    ~DialectGuard() { ResetModemDialect(); }
};

} // namespace

// A scan brackets itself and lists every operator; a choice reaches the modem's registration, a refused
// one comes back with the modem's cause, and automatic selection follows.
TEST(NetworkController, ScanThenSelectReachTheModem) {
    NetworkWorld w;
    ASSERT_TRUE(w.open());
    QSignalSpy scanning(&w.network, &NetworkController::scanningChanged);
    QSignalSpy scanned(&w.network, &NetworkController::scanFinished);
    w.network.scan();
    w.network.scan(); // ignored while the first runs
    ASSERT_TRUE(w.outcome(scanned).ok());
    EXPECT_EQ(scanned.count(), 1);
    ASSERT_EQ(scanning.count(), 2);
    EXPECT_TRUE(scanning.first().first().toBool() && !scanning.last().first().toBool());
    const auto operators = scanned.last().at(1).value<QList<BLNetworkListItem>>();
    ASSERT_EQ(operators.size(), 4);
    EXPECT_EQ(operators.first().strNumericAlpha, "26202");
    EXPECT_EQ(operators.first().nState, BLNetworkListItem::kStateCurrent);

    // clang-format off
    // plmn: empty: automatic; selection: in the simulator afterwards
    const struct { const char* plmn; int code; int cause; int selection; } rows[] = {
        {"26201", WORKER_OK, 0, 1}, {"26203", WORKER_ERR_GENERAL, 100032, 1} /* +CME ERROR: 32, emergency calls only */, {"", WORKER_OK, 0, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.plmn);
        QSignalSpy selected(&w.network, &NetworkController::selectFinished);
        if (*row.plmn == '\0')
            w.network.selectAutomatic();
        else
            w.network.selectOperator(QString::fromLatin1(row.plmn));
        const Outcome outcome = w.outcome(selected);
        EXPECT_EQ(std::pair(outcome.code, outcome.cause), std::pair(row.code, row.cause));
        EXPECT_EQ(selected.last().at(1).toString(), QString::fromLatin1(row.plmn));
        EXPECT_EQ(w.sim.control("dump").value("network").toObject().value("selection").toInt(),
                  row.selection);
    }
    QSignalSpy registration(&w.network, &NetworkController::registrationRead);
    w.network.readRegistration();
    ASSERT_TRUE(w.outcome(registration).ok());
    EXPECT_EQ(registration.last().at(1).value<BLNetRegState>().nState, 3); // home network
}

// Band and mode as named values: read, applied in one go, and a mode the modem refuses named as such; a
// standard stick refuses both as not supported, which the controller says once.
TEST(NetworkController, BandAndModeAndTheirAbsenceOnStandardSticks) {
    // clang-format off
    const struct { bool standard; int readCode; int applyCode; NetworkController::RadioStep stoppedAt; } rows[] = {
        {false, WORKER_OK, WORKER_OK, NetworkController::RadioStep::Mode},
        {true, WORKER_ERR_NOT_SUPPORTED, WORKER_ERR_NOT_SUPPORTED, NetworkController::RadioStep::Band},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.standard ? "standard" : "vendor");
        const DialectGuard dialect(row.standard);
        NetworkWorld w(row.standard ? QStringList{"--scenario", "standard"} : QStringList{});
        ASSERT_TRUE(w.open());
        QSignalSpy unsupported(&w.network, &NetworkController::radioUnsupported);
        QSignalSpy band(&w.network, &NetworkController::bandRead);
        QSignalSpy mode(&w.network, &NetworkController::modeRead);
        w.network.readBand();
        w.network.readMode();
        EXPECT_EQ(std::pair(w.outcome(band).code, w.outcome(mode).code),
                  std::pair(row.readCode, row.readCode));
        if (row.readCode == WORKER_OK) {
            EXPECT_EQ(
                std::pair(band.last().at(1).value<NetworkBand>(), mode.last().at(1).value<NetworkMode>()),
                std::pair(NetworkBand::Any, NetworkMode::Automatic));
        }
        EXPECT_EQ(unsupported.count(), row.standard ? 1 : 0);
        EXPECT_EQ(w.network.radioSupported(), !row.standard);

        QSignalSpy applied(&w.network, &NetworkController::radioApplied);
        w.network.applyRadio(NetworkBand::Umts2100, NetworkMode::Only3G);
        EXPECT_EQ(w.outcome(applied).code, row.applyCode);
        EXPECT_EQ(applied.last().at(1).value<NetworkController::RadioStep>(), row.stoppedAt);
        if (row.standard)
            continue;
        mode.clear();
        w.network.readMode();
        ASSERT_TRUE(w.outcome(mode).ok());
        EXPECT_EQ(mode.last().at(1).value<NetworkMode>(), NetworkMode::Only3G);
        QSignalSpy set(&w.network, &NetworkController::modeSet);
        w.network.setMode(static_cast<NetworkMode>(9));
        EXPECT_EQ(w.outcome(set).code, WORKER_ERR_SET_NETWORK_MODE);
    }
}
