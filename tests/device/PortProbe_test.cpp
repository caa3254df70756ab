#include "DeviceTestSupport.h"
#include "DeviceUtility.h"
#include "ModemDialect.h"
#include "PortProbe.h"
#include "PropertyList.h"

#include <atomic>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace {

// The modem's side of the ttys: answers "AT" with OK on the ttys that speak, counts every command.
struct AtPeer {
    AtPeer(Testbed& testbed, const QStringList& ttys, const QStringList& speaking) {
        for (const QString& tty : ttys) {
            ports.push_back({testbed.ttyMaster(tty), POLLIN, 0});
            speaks.push_back(speaking.contains(tty));
        }
        thread = std::thread([this] {
            char buffer[64];
            while (!stop) {
                poll(ports.data(), ports.size(), 5);
                for (size_t i = 0; i < ports.size(); ++i) {
                    if ((ports[i].revents & POLLIN) != 0 && read(ports[i].fd, buffer, sizeof buffer) > 0) {
                        ++commands;
                        [[maybe_unused]] const ssize_t written =
                            speaks[i] ? write(ports[i].fd, "AT\r\r\nOK\r\n", 9) : 0;
                    }
                }
            }
        });
    }
    ~AtPeer() {
        stop = true;
        thread.join();
    }

    std::vector<pollfd> ports;
    std::vector<bool> speaks;
    std::atomic<bool> stop{false};
    std::atomic<int> commands{0};
    std::thread thread;
};

class Probe : public UdevTest {
protected:
    void SetUp() override {
        UdevTest::SetUp();
        world.env.set("XDG_CONFIG_HOME", world.path("config"));
        ResetModemDialect();
    }
    void TearDown() override { ResetModemDialect(); }
};

// Sticks of the table with a known layout need no probe: the interface numbers pick the ports, the table the
// dialect. On a stick not in the table the first tty that answers is the AT port, the next one the dial
// port; the layout is remembered, so the next start sends nothing, and the ports reach the code that opens
// them.
TEST_F(Probe, TableLayoutsOrAProbeOnce) {
    const QStringList fromFour = {"/dev/ttyUSB5", "/dev/ttyUSB6", "/dev/ttyUSB7"};
    // clang-format off
    const struct { const char *vendor, *product; QList<int> interfaces; int firstTty; QStringList speaking; QString dialect; const char *at, *dial; ModemDialect found; int commands; } rows[] = {
        {"1bbb", "0017", {0, 1, 2}, 0, {}, "standard", "/dev/ttyUSB2", "/dev/ttyUSB0", ModemDialect::Vel, 0},
        {"12d1", "1001", {0, 1, 2}, 0, {}, "standard", "/dev/ttyUSB2", "/dev/ttyUSB0", ModemDialect::Standard, 0},
        {"12d1", "1003", {0, 1}, 0, {}, "standard", "/dev/ttyUSB1", "/dev/ttyUSB0", ModemDialect::Standard, 0},
        {"2c7c", "0125", {0, 1, 2, 3}, 4, fromFour, "vel", "/dev/ttyUSB5", "/dev/ttyUSB6", ModemDialect::Standard, 3}, // the probe stops once it has both ports
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.product);
        testbed.emplace();
        testbed->addStickRecord("1-3", row.vendor, row.product, row.interfaces, row.firstTty);
        QStringList ttys;
        for (int i = 0; i < row.interfaces.size(); ++i)
            ttys << QStringLiteral("/dev/ttyUSB%1").arg(row.firstTty + i);
        AtPeer peer(*testbed, ttys, row.speaking);
        world.env.set("DIALTONE_DIALECT", row.dialect);
        PortProbe::Ports ports;
        ASSERT_TRUE(PortProbe::findPorts(ports));
        EXPECT_EQ(ports.atPort, row.at);
        EXPECT_EQ(ports.dialPort, row.dial);
        EXPECT_EQ(ports.probed, row.commands > 0);
        EXPECT_EQ(CurrentModemDialect(), row.found);
        EXPECT_EQ(peer.commands, row.commands);
        if (!ports.probed)
            continue;
        EXPECT_EQ(PropertyList::readMap(PortProbe::rememberedPath()),
                  (QVariantMap{{"2c7c:0125", QVariantMap{{"AT", 1}, {"Dial", 2}}}}));
        EXPECT_EQ(QFile::permissions(PortProbe::rememberedPath()) & 0x0077, 0) << "the owner's alone";

        ResetModemDialect();
        QString dial, at;
        ASSERT_TRUE(DeviceUtility::getModemDeviceName(dial, at));
        EXPECT_EQ(at, row.at);
        EXPECT_EQ(dial, row.dial);
        EXPECT_EQ(DeviceUtility::portPath(at), row.at);
        EXPECT_EQ(CurrentModemDialect(), ModemDialect::Standard);
        EXPECT_EQ(peer.commands, row.commands) << "no second probe";
    }
}

} // namespace
