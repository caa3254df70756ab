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

// Sticks of the table with a known layout need no probe: the interface numbers pick the ports.
TEST_F(Probe, TableLayouts) {
    // clang-format off
    const struct { const char *vendor, *product; QList<int> interfaces; const char *at, *dial; ModemDialect dialect; } rows[] = {
        {"1bbb", "0017", {0, 1, 2}, "/dev/ttyUSB2", "/dev/ttyUSB0", ModemDialect::Vel},
        {"12d1", "1001", {0, 1, 2}, "/dev/ttyUSB2", "/dev/ttyUSB0", ModemDialect::Standard},
        {"12d1", "1003", {0, 1}, "/dev/ttyUSB1", "/dev/ttyUSB0", ModemDialect::Standard},
    };
    // clang-format on
    world.env.set("DIALTONE_DIALECT", "standard");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.product);
        Testbed bed;
        bed.addStickRecord("1-3", row.vendor, row.product, row.interfaces, 0);
        AtPeer peer(bed, {"/dev/ttyUSB0", "/dev/ttyUSB1", "/dev/ttyUSB2"}, {});
        PortProbe::Ports ports;
        ASSERT_TRUE(PortProbe::findPorts(ports));
        EXPECT_EQ(ports.atPort, row.at);
        EXPECT_EQ(ports.dialPort, row.dial);
        EXPECT_FALSE(ports.probed);
        EXPECT_EQ(CurrentModemDialect(), row.dialect);
        EXPECT_EQ(peer.commands, 0);
    }
}

// A stick not in the table: the first tty that answers is the AT port, the next one the dial port. The
// layout is remembered, so the next start sends nothing; the ports reach the code that opens them.
TEST_F(Probe, UnknownStickIsProbedOnce) {
    testbed->addStickRecord("1-3", "2c7c", "0125", {0, 1, 2, 3}, 4);
    AtPeer peer(*testbed, {"/dev/ttyUSB4", "/dev/ttyUSB5", "/dev/ttyUSB6", "/dev/ttyUSB7"},
                {"/dev/ttyUSB5", "/dev/ttyUSB6", "/dev/ttyUSB7"});
    world.env.set("DIALTONE_DIALECT", "vel");

    PortProbe::Ports ports;
    ASSERT_TRUE(PortProbe::findPorts(ports));
    EXPECT_TRUE(ports.probed);
    EXPECT_EQ(ports.atPort, "/dev/ttyUSB5");
    EXPECT_EQ(ports.dialPort, "/dev/ttyUSB6");
    EXPECT_EQ(CurrentModemDialect(), ModemDialect::Standard);
    EXPECT_EQ(peer.commands, 3) << "the probe stops once it has both ports";
    EXPECT_EQ(PropertyList::readMap(PortProbe::rememberedPath()),
              (QVariantMap{{"2c7c:0125", QVariantMap{{"AT", 1}, {"Dial", 2}}}}));
    EXPECT_EQ(QFile::permissions(PortProbe::rememberedPath()) & 0x0077, 0) << "the owner's alone";

    ResetModemDialect();
    QString dial, at;
    ASSERT_TRUE(DeviceUtility::getModemDeviceName(dial, at));
    EXPECT_EQ(at, "/dev/ttyUSB5");
    EXPECT_EQ(dial, "/dev/ttyUSB6");
    EXPECT_EQ(DeviceUtility::portPath(at), "/dev/ttyUSB5");
    EXPECT_EQ(CurrentModemDialect(), ModemDialect::Standard);
    EXPECT_EQ(peer.commands, 3) << "no second probe";
}

} // namespace
