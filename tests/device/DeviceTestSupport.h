#pragma once

#include "TestWorld.h"

typedef struct _UMockdevTestbed UMockdevTestbed;

// True when the program runs under umockdev-wrapper (main re-runs it so when it can).
bool underUmockdev();

// usb_modeswitch's switch data as Debian packs it (configPack.tar.gz), with a file per name; its path.
QString makeSwitchPack(const TempWorld& world, const QStringList& names);

// A umockdev test bed: a fake /sys (and udev database) for this process while it lives.
class Testbed {
public:
    Testbed();
    ~Testbed();
    Testbed(const Testbed&) = delete;
    Testbed& operator=(const Testbed&) = delete;

    // A USB device with the ids (hex, as sysfs shows them); emits "add". Returns its syspath.
    QString addUsbDevice(const QString& name, const char* vendor, const char* product, int devnum);
    // One interface, a SCSI host and target, and a SCSI device with the inquiry's vendor and model.
    QString addScsiDevice(const QString& usbDevice, const QString& lun, const char* vendor,
                          const char* model);
    // A block device under a parent (a SCSI device, or a disk for a partition).
    QString addBlock(const QString& parent, const QString& name, const char* devtype, bool cdrom);
    // A stick from the record format: one interface per number, each with a tty ttyUSB<first + i>
    // (a pty: ttyMaster gives its other end) at the USB port path devpath; no "add".
    QString addStickRecord(const QString& name, const char* vendor, const char* product,
                           const QList<int>& interfaces, int firstTty, const QByteArray& ttyProperties = {},
                           const QByteArray& devpath = "3");
    int ttyMaster(const QString& devnode);
    void uevent(const QString& syspath, const char* action);

private:
    UMockdevTestbed* _testbed;
};

// A test on a umockdev test bed in its own temporary world; skipped where umockdev is not at hand.
class UdevTest : public testing::Test {
public:
    void SetUp() override {
        if (!underUmockdev())
            GTEST_SKIP() << "needs umockdev-wrapper (Debian package umockdev)";
        testbed.emplace();
    }

    TempWorld world;
    std::optional<Testbed> testbed;
};
