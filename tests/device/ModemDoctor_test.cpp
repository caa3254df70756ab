#include "DeviceTestSupport.h"
#include "ModemDoctor.h"

#include <functional>
#include <unistd.h>

namespace {

// A machine where everything is in place: a table stick with its ports, usb_modeswitch and its data,
// a setuid-root pppd, a writable peers folder and a resolv.conf. Each fault row breaks one thing.
struct DoctorWorld {
    DoctorWorld() {
        world.env.set("XDG_CONFIG_HOME", world.path("config"));
        world.env.set("DIALTONE_PROC_DIR", world.path("proc"));
        QDir().mkpath(world.path("proc/1"));
        world.env.set("DIALTONE_MODESWITCH", world.standIn("switch"));
        world.env.set("DIALTONE_MODESWITCH_DATA", makeSwitchPack(world, {"12d1:1446", "1e0e:f000"}));
        world.env.set("DIALTONE_PPPD", world.standIn("pppd"));
        chmod(world.path("pppd.sh").toLocal8Bit(), 04755);
        QDir().mkpath(world.path("peers"));
        world.env.set("DIALTONE_PEERS_DIR", world.path("peers"));
        TempWorld::writeFile(world.path("resolv.conf"), "nameserver 192.0.2.53\n");
        world.env.set("DIALTONE_RESOLV_CONF", world.path("resolv.conf"));
    }
    void addStick(const QByteArray& ttyProperties = {}) {
        testbed.addStickRecord("1-3", "12d1", "1001", {0, 1, 2}, 0, ttyProperties);
    }
    void addCdRom(const char* vendor, const char* product) {
        const QString usb = testbed.addUsbDevice("1-5", vendor, product, 6);
        testbed.addBlock(testbed.addScsiDevice(usb, "60", "Vendor", "CD-ROM"), "sr6", "disk", true);
    }
    void runModemManager() { TempWorld::writeFile(world.path("proc/1/comm"), "ModemManager\n"); }

    TempWorld world;
    Testbed testbed;
};

class Doctor : public testing::Test {
protected:
    void SetUp() override {
        if (!underUmockdev() || geteuid() != 0)
            GTEST_SKIP() << "needs umockdev-wrapper and root (for a setuid-root pppd stand-in)";
    }
};

DoctorFinding finding(const QString& check) {
    for (const DoctorFinding& found : ModemDoctor::examine())
        if (found.check == check)
            return found;
    ADD_FAILURE() << "no finding for " << check.toStdString();
    return {};
}

TEST_F(Doctor, EachFault) {
    using Setup = std::function<void(DoctorWorld&)>;
    auto stick = [](DoctorWorld& d) { d.addStick(); };
    auto storage = [](DoctorWorld& d) { d.testbed.addUsbDevice("1-4", "12d1", "1446", 5); };
    // clang-format off
    const struct {
        const char* fault; Setup setup; const char* check; bool ok; const char* text;
    } rows[] = {
        {"all well", stick, "ports", true, "AT port /dev/ttyUSB2, dial port /dev/ttyUSB0"},
        {"all well", stick, "usb", true, "USB modem: 12d1:1001 Huawei E169/E620/E800 HSDPA Modem"},
        {"no stick", [](DoctorWorld&) {}, "usb", false, "no USB modem found"},
        {"no stick", [](DoctorWorld&) {}, "ports", false, "no modem ports in "},
        {"unknown stick", [](DoctorWorld& d) { d.testbed.addStickRecord("1-3", "2c7c", "0125", {0}, 0); }, "usb", true, "2c7c:0125 (not in the device table; it has serial ports, which are probed)"},
        {"CD-ROM, switch pending", storage, "switch", false, "12d1:1446 Huawei E1750 HSPA Modem is still in CD-ROM mode: the switch has not happened (yet)"},
        {"CD-ROM, no usb_modeswitch", [=](DoctorWorld& d) { storage(d); d.world.env.set("DIALTONE_MODESWITCH", d.world.path("none")); }, "switch", false, "CD-ROM mode: usb_modeswitch is not installed"},
        {"CD-ROM, no switch data", [=](DoctorWorld& d) { storage(d); d.world.env.set("DIALTONE_MODESWITCH_DATA", d.world.path("none")); }, "switch", false, "usb_modeswitch has no switch data for 12d1:1446"},
        {"unknown stick as CD-ROM", [](DoctorWorld& d) { d.addCdRom("1e0e", "f000"); }, "switch", false, "1e0e:f000 is a USB CD-ROM that usb_modeswitch knows as a modem in CD-ROM mode"},
        {"a plain USB CD drive", [](DoctorWorld& d) { d.addCdRom("0bda", "0138"); }, "switch", true, "no stick is left in CD-ROM mode"},
        {"ModemManager takes the ports", [=](DoctorWorld& d) { stick(d); d.runModemManager(); }, "modemmanager", false, "ModemManager is running and may hold /dev/ttyUSB0, /dev/ttyUSB1, /dev/ttyUSB2"},
        {"ModemManager told to keep off", [](DoctorWorld& d) { d.addStick("E: ID_MM_DEVICE_IGNORE=1\n"); d.runModemManager(); }, "modemmanager", true, "leaves the stick's ports alone"},
        {"no pppd", [](DoctorWorld& d) { d.world.env.set("DIALTONE_PPPD", d.world.path("none")); }, "pppd", false, "pppd is not installed"},
        {"pppd not setuid", [](DoctorWorld& d) { chmod(d.world.path("pppd.sh").toLocal8Bit(), 0755); }, "pppd", false, "is not setuid root: only root may dial"},
        {"peers folder missing", [](DoctorWorld& d) { d.world.env.set("DIALTONE_PEERS_DIR", d.world.path("none")); }, "peers", false, "none does not exist"},
        {"peer already made", [](DoctorWorld& d) { TempWorld::writeFile(d.world.path("peers/VELMODEM1"), "x"); }, "peers", true, "dial-up service VELMODEM1 in "},
        {"no resolv.conf", [](DoctorWorld& d) { QFile::remove(d.world.path("resolv.conf")); }, "dns", false, "is missing or names no server"},
        {"systemd-resolved", [](DoctorWorld& d) { QFile::remove(d.world.path("resolv.conf")); QFile::link("/run/systemd/resolve/stub-resolv.conf", d.world.path("resolv.conf")); }, "dns", true, "names are resolved by systemd-resolved"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        DoctorWorld world;
        row.setup(world);
        const DoctorFinding found = finding(row.check);
        EXPECT_EQ(found.ok, row.ok);
        EXPECT_TRUE(found.text.contains(row.text)) << found.text.toStdString();
        EXPECT_EQ(found.fix.isEmpty(), row.ok) << "a fix for every fault, none otherwise";
    }
}

} // namespace
