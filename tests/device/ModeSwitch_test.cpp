#include "DeviceTestSupport.h"
#include "DeviceUtility.h"

#include <gtest/gtest.h>

#include <libudev.h>

#include <QRegularExpression>

namespace {

// The stick and its neighbours as udev shows them, with stand-ins for the eject, switch and open programs
// that log their arguments.
class ModeSwitch : public testing::Test {
protected:
    void SetUp() override {
        if (!underUmockdev()) {
            GTEST_SKIP() << "needs umockdev-wrapper (Debian package umockdev)";
        }
        testbed.emplace();
        world.env.set("DIALTONE_MOUNTS", world.path("mounts"));
        world.env.set("DIALTONE_EJECT", world.standIn("eject"));
        world.env.set("DIALTONE_MODESWITCH", world.standIn("switch"));
        world.env.set("DIALTONE_OPEN", world.standIn("open"));
        world.env.set("DIALTONE_MODESWITCH_DATA",
                      makeSwitchPack(world, {"1bbb:f000", "1bbb:f017", "1bbb:f017:uMa=Other"}));
        TempWorld::writeFile(world.path("mounts"), "proc /proc proc rw 0 0\n");
    }

    // The storage personality: a CD-ROM and, optionally, a memory card with one partition.
    QString addStorageStick(const QString& name, const char* product, int devnum, bool card) {
        const QString usb = testbed->addUsbDevice(name, "1bbb", product, devnum);
        const QString cd = testbed->addScsiDevice(usb, QString::number(devnum) + "0", "USBModem", "CD-ROM");
        testbed->addBlock(cd, "sr" + QString::number(devnum), "disk", true);
        if (card) {
            const QString mmc =
                testbed->addScsiDevice(usb, QString::number(devnum) + "1", "USBModem", "MMC Storage");
            const QString disk = testbed->addBlock(mmc, "sdb", "disk", false);
            testbed->addBlock(disk, "sdb1", "partition", false);
        }
        return usb;
    }
    // usb_modeswitch's configuration file by its name: it lies in a temporary folder.
    QStringList programLog() const {
        return QString::fromLocal8Bit(TempWorld::readFile(world.log()))
            .replace(QRegularExpression("-c \\S*/"), "-c ")
            .split('\n', Qt::SkipEmptyParts);
    }

    TempWorld world;
    std::optional<Testbed> testbed;
};

QString switchLine(const char* product, int devnum) {
    return QStringLiteral("switch -v 0x1bbb -p 0x%1 -b 1 -g %2 -c 1bbb:%1").arg(product).arg(devnum);
}

TEST_F(ModeSwitch, NothingToSwitch) {
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 0);
    EXPECT_TRUE(programLog().isEmpty());
}

TEST_F(ModeSwitch, SwitchesTheStorageCdRom) {
    addStorageStick("1-2", "f000", 5, false);
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 1);
    EXPECT_EQ(programLog(), QStringList{switchLine("f000", 5)});
}

// The memory card's volume is ejected, by its mount folder, before the stick switches.
TEST_F(ModeSwitch, EjectsTheCardFirst) {
    addStorageStick("1-2", "f000", 5, true);
    TempWorld::writeFile(world.path("mounts"), "/dev/sdb1 /media/me/MY\\040CARD vfat rw,nosuid 0 0\n");
    EXPECT_EQ(DeviceUtility::getMMCVolumePath(), "file:///media/me/MY%20CARD/");
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 1);
    EXPECT_EQ(programLog(), (QStringList{"eject /media/me/MY CARD", switchLine("f000", 5)}));
}

// Only the modem's own storage personality is switched: not the modem personality, not another
// vendor's drive. A failed switch is not counted. Two sticks count two.
TEST_F(ModeSwitch, PicksOnlyTheStoragePersonality) {
    const QString other = testbed->addUsbDevice("1-5", "0bda", "0138", 7);
    testbed->addBlock(testbed->addScsiDevice(other, "70", "Generic", "DVD-RW"), "sr7", "disk", true);
    const QString modem = testbed->addUsbDevice("1-6", "1bbb", "0017", 8);
    testbed->addBlock(testbed->addScsiDevice(modem, "80", "USBModem", "CD-ROM"), "sr8", "disk", true);
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 0);
    EXPECT_TRUE(programLog().isEmpty());

    addStorageStick("1-2", "f000", 5, false);
    addStorageStick("1-3", "f017", 6, false);
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 2);
    EXPECT_EQ(programLog(), (QStringList{switchLine("f000", 5), switchLine("f017", 6)}));

    world.env.set("DIALTONE_MODESWITCH", world.standIn("failing-switch", 1));
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 0);
}

// A table stick whose storage id the switch data lacks is not switched; usb_modeswitch is not run.
TEST_F(ModeSwitch, NoSwitchDataNoSwitch) {
    const QString usb = testbed->addUsbDevice("1-2", "12d1", "1446", 5);
    testbed->addBlock(testbed->addScsiDevice(usb, "50", "HUAWEI", "Mass Storage"), "sr5", "disk", true);
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 0);
    world.env.set("DIALTONE_MODESWITCH_DATA", world.path("missing.tar.gz"));
    addStorageStick("1-3", "f000", 6, false);
    EXPECT_EQ(DeviceUtility::switchDiskToUSBModem(), 0);
    EXPECT_TRUE(programLog().isEmpty());
}

// The card volume: found by its media name on a mounted leaf, never on a CD-ROM, whatever its name.
TEST_F(ModeSwitch, CardVolumeLookup) {
    const QString usb = testbed->addUsbDevice("1-2", "1bbb", "f000", 5);
    const QString cd = testbed->addScsiDevice(usb, "50", "USBModem", "MMC Storage");
    testbed->addBlock(cd, "sr0", "disk", true);
    const QString card = testbed->addScsiDevice(usb, "51", "ZENTRAK", "Mass Storage");
    const QString disk = testbed->addBlock(card, "sdc", "disk", false);
    testbed->addBlock(disk, "sdc1", "partition", false);

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

TEST_F(ModeSwitch, RegistryEntryQueries) {
    const QString usb = testbed->addUsbDevice("1-2", "1bbb", "f000", 5);
    const QString scsi = testbed->addScsiDevice(usb, "50", "USBModem", "MMC Storage");
    const QString disk = testbed->addBlock(scsi, "sdb", "disk", false);
    const QString partition = testbed->addBlock(disk, "sdb1", "partition", false);
    const QString cd =
        testbed->addBlock(testbed->addScsiDevice(usb, "51", "USBModem", "CD-ROM"), "sr0", "disk", true);

    udev* context = udev_new();
    auto device = [&](const QString& path) {
        return udev_device_new_from_syspath(context, path.toLocal8Bit());
    };
    udev_device* diskDevice = device(disk);
    udev_device* partitionDevice = device(partition);
    udev_device* cdDevice = device(cd);
    ASSERT_TRUE(diskDevice && partitionDevice && cdDevice);

    EXPECT_FALSE(DeviceUtility::isLeafNode(diskDevice));
    EXPECT_TRUE(DeviceUtility::isLeafNode(partitionDevice));
    EXPECT_TRUE(DeviceUtility::isLeafNode(cdDevice));
    EXPECT_TRUE(DeviceUtility::isCdRom(cdDevice));
    EXPECT_FALSE(DeviceUtility::isCdRom(partitionDevice));
    EXPECT_TRUE(DeviceUtility::registryPath(partitionDevice).endsWith("/USBModem MMC Storage Media/sdb1"));

    char name[16];
    EXPECT_TRUE(DeviceUtility::getBSDNameFromDeviceRef(partitionDevice, name, sizeof name));
    EXPECT_STREQ(name, "/dev/sdb1");
    char tiny[8];
    EXPECT_FALSE(DeviceUtility::getBSDNameFromDeviceRef(partitionDevice, tiny, sizeof tiny))
        << "does not fit";

    udev_device_unref(diskDevice);
    udev_device_unref(partitionDevice);
    udev_device_unref(cdDevice);
    udev_unref(context);
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

} // namespace
