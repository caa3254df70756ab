#include "DeviceTestSupport.h"
#include "DeviceUtility.h"
#include "ModemDoctor.h"

#include <QRegularExpression>

#include <algorithm>
#include <functional>
#include <unistd.h>

namespace {

// The stick and its neighbours as udev shows them, with stand-ins for the eject, switch and open programs
// that log their arguments.
class ModeSwitch : public UdevTest {
public: // for the rows' setups
    void SetUp() override {
        UdevTest::SetUp();
        if (!IsSkipped())
            prepare();
    }
    // A bed without devices, the stand-ins in place and their log empty.
    void prepare() {
        testbed.emplace();
        world.env.set("DIALTONE_MOUNTS", world.path("mounts"));
        world.env.set("DIALTONE_EJECT", world.standIn("eject"));
        world.env.set("DIALTONE_MODESWITCH", world.standIn("switch"));
        world.env.set("DIALTONE_OPEN", world.standIn("open"));
        world.env.set("DIALTONE_MODESWITCH_DATA",
                      makeSwitchPack(world, {"1bbb:f000", "1bbb:f017", "1bbb:f017:uMa=Other"}));
        TempWorld::writeFile(world.path("mounts"), "proc /proc proc rw 0 0\n");
        TempWorld::writeFile(world.log(), {});
    }

    // A USB drive with its CD-ROM (by default the stick's storage personality) and, optionally, a memory
    // card with one partition.
    void addDrive(const QString& name, const char* product, int devnum, bool card = false,
                  const char* vendor = "1bbb", const char* scsiVendor = "USBModem",
                  const char* model = "CD-ROM") {
        const QString usb = testbed->addUsbDevice(name, vendor, product, devnum);
        const QString number = QString::number(devnum);
        testbed->addBlock(testbed->addScsiDevice(usb, number + "0", scsiVendor, model), "sr" + number, "disk",
                          true);
        if (card) {
            const QString mmc = testbed->addScsiDevice(usb, number + "1", "USBModem", "MMC Storage");
            testbed->addBlock(testbed->addBlock(mmc, "sdb", "disk", false), "sdb1", "partition", false);
        }
    }
    // usb_modeswitch's configuration file by its name: it lies in a temporary folder.
    QStringList programLog() const {
        return QString::fromLocal8Bit(TempWorld::readFile(world.log()))
            .replace(QRegularExpression("-c \\S*/"), "-c ")
            .split('\n', Qt::SkipEmptyParts);
    }
};

QString switchLine(const char* product, int devnum) {
    return QStringLiteral("switch -v 0x1bbb -p 0x%1 -b 1 -g %2 -c 1bbb:%1").arg(product).arg(devnum);
}

// Only the modem's own storage personality is switched, after its memory card's volume is ejected by its
// mount folder: not the modem personality, not another vendor's drive, not a table stick whose storage id
// the switch data lacks, nothing without switch data. A failed switch is not counted; two sticks count two.
TEST_F(ModeSwitch, SwitchesOnlyTheStoragePersonality) {
    using Setup = std::function<void(ModeSwitch&)>;
    // clang-format off
    const struct { const char* name; Setup setup; int switched; QStringList log; } rows[] = {
        {"nothing to switch", [](ModeSwitch&) {}, 0, {}},
        {"the storage CD-ROM", [](ModeSwitch& t) { t.addDrive("1-2", "f000", 5); }, 1, {switchLine("f000", 5)}},
        {"the card first", [](ModeSwitch& t) {
            t.addDrive("1-2", "f000", 5, true);
            TempWorld::writeFile(t.world.path("mounts"), "/dev/sdb1 /media/me/MY\\040CARD vfat rw,nosuid 0 0\n");
            EXPECT_EQ(DeviceUtility::getMMCVolumePath(), "file:///media/me/MY%20CARD/"); }, 1, {"eject /media/me/MY CARD", switchLine("f000", 5)}},
        {"other vendor, modem personality", [](ModeSwitch& t) {
            t.addDrive("1-5", "0138", 7, false, "0bda", "Generic", "DVD-RW"); t.addDrive("1-6", "0017", 8); }, 0, {}},
        {"two sticks", [](ModeSwitch& t) {
            t.addDrive("1-2", "f000", 5); t.addDrive("1-3", "f017", 6); }, 2, {switchLine("f000", 5), switchLine("f017", 6)}},
        {"failing switch", [](ModeSwitch& t) {
            t.addDrive("1-2", "f000", 5); t.world.env.set("DIALTONE_MODESWITCH", t.world.standIn("failing-switch", 1)); }, 0, {"failing-switch -v 0x1bbb -p 0xf000 -b 1 -g 5 -c 1bbb:f000"}},
        {"no switch data for the id", [](ModeSwitch& t) { t.addDrive("1-2", "1446", 5, false, "12d1", "HUAWEI", "Mass Storage"); }, 0, {}},
        {"no switch data at all", [](ModeSwitch& t) {
            t.world.env.set("DIALTONE_MODESWITCH_DATA", t.world.path("missing.tar.gz")); t.addDrive("1-3", "f000", 6); }, 0, {}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        prepare();
        row.setup(*this);
        EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), row.switched);
        EXPECT_EQ(programLog(), row.log);
    }
}

// The card volume: found by its media name on a mounted leaf, never on a CD-ROM, whatever its name.
TEST_F(ModeSwitch, CardVolumeLookup) {
    const QString usb = testbed->addUsbDevice("1-2", "1bbb", "f000", 5);
    testbed->addBlock(testbed->addScsiDevice(usb, "50", "USBModem", "MMC Storage"), "sr0", "disk", true);
    const QString card = testbed->addScsiDevice(usb, "51", "ZENTRAK", "Mass Storage");
    testbed->addBlock(testbed->addBlock(card, "sdc", "disk", false), "sdc1", "partition", false);

    TempWorld::writeFile(world.path("mounts"), "/dev/sr0 /media/me/INSTALLER iso9660 ro 0 0\n"
                                               "/dev/sdc /media/me/WHOLE vfat rw 0 0\n");
    EXPECT_TRUE(DeviceUtility::getMMCVolumePath().isNull()) << "a CD-ROM and a partitioned disk are no card";

    TempWorld::writeFile(world.path("mounts"), "/dev/sr0 /media/me/INSTALLER iso9660 ro 0 0\n"
                                               "/dev/sdc1 /media/me/CARD vfat rw 0 0\n");
    EXPECT_EQ(DeviceUtility::getMMCVolumePath(), "file:///media/me/CARD/");

    EXPECT_TRUE(DeviceUtility::OpenMMCDisk());
    EXPECT_TRUE(waitFor([&] { return !programLog().isEmpty(); }));
    EXPECT_EQ(programLog(), QStringList{"open file:///media/me/CARD/"});

    TempWorld::writeFile(world.path("mounts"), "");
    EXPECT_TRUE(DeviceUtility::getMMCVolumePath().isNull());
    EXPECT_FALSE(DeviceUtility::OpenMMCDisk());
}

// Mount points as the kernel escapes them; devices that are not mounted have no volume.
TEST(VolumePath, MountTable) {
    TempWorld world;
    world.env.set("DIALTONE_MOUNTS", world.path("mounts"));
    TempWorld::writeFile(world.path("mounts"), "/dev/sda1 / ext4 rw 0 0\n"
                                               "/dev/sdb1 /media/me/A\\040B\\134C vfat rw 0 0\n"
                                               "/dev/sdb2 /media/me/caf\xc3\xa9 vfat rw 0 0\n");
    EXPECT_EQ(DeviceUtility::volumePathWithBSDPath("/dev/sdb1"), "file:///media/me/A%20B%5CC/");
    EXPECT_EQ(DeviceUtility::volumePathWithBSDPath("/dev/sdb2"), "file:///media/me/caf%C3%A9/");
    EXPECT_TRUE(DeviceUtility::volumePathWithBSDPath("/dev/sdb3").isNull());
    EXPECT_TRUE(DeviceUtility::volumePathWithBSDPath("").isNull());
    world.env.set("DIALTONE_MOUNTS", world.path("missing"));
    EXPECT_TRUE(DeviceUtility::volumePathWithBSDPath("/dev/sdb1").isNull());
}

TEST(EjectDisk, ExitStatusDecides) {
    TempWorld world;
    world.env.set("DIALTONE_EJECT", world.standIn("eject"));
    EXPECT_TRUE(DeviceUtility::ejectDisk("/media/me/A \"B\"; rm -rf x"));
    EXPECT_EQ(TempWorld::readFile(world.log()), "eject /media/me/A \"B\"; rm -rf x\n")
        << "one argument, no shell";
    world.env.set("DIALTONE_EJECT", world.standIn("eject-fails", 1));
    EXPECT_FALSE(DeviceUtility::ejectDisk("/media/me/CARD"));
    world.env.set("DIALTONE_EJECT", world.path("no-such-program"));
    EXPECT_FALSE(DeviceUtility::ejectDisk("/media/me/CARD"));
}

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

TEST(Doctor, EachFault) {
    if (!underUmockdev() || geteuid() != 0)
        GTEST_SKIP() << "needs umockdev-wrapper and root (for a setuid-root pppd stand-in)";
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
        const QList<DoctorFinding> findings = ModemDoctor::examine();
        const auto found = std::find_if(findings.begin(), findings.end(),
                                        [&](const DoctorFinding& f) { return f.check == row.check; });
        ASSERT_NE(found, findings.end());
        EXPECT_EQ(found->ok, row.ok);
        EXPECT_TRUE(found->text.contains(row.text)) << found->text.toStdString();
        EXPECT_EQ(found->fix.isEmpty(), row.ok) << "a fix for every fault, none otherwise";
    }
}

} // namespace
