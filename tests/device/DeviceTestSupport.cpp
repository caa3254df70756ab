// glib's headers first: Qt's "signals" keyword would clash with a field name in them.
#include <umockdev.h>

#include "DeviceTestSupport.h"

#include "ChildProcess.h"

#include <cstring>

namespace {

// The syspath umockdev hands over, its string freed.
QString Take(gchar* path) {
    const QString syspath = QString::fromLocal8Bit(path);
    g_free(path);
    return syspath;
}

} // namespace

bool underUmockdev() {
    const char* preload = std::getenv("LD_PRELOAD");
    return preload != nullptr && std::strstr(preload, "umockdev-preload") != nullptr;
}

QString makeSwitchPack(const TempWorld& world, const QStringList& names) {
    QDir().mkpath(world.path("switch-data"));
    for (const QString& name : names)
        TempWorld::writeFile(world.path("switch-data/" + name), "MessageContent=\"55534243\"");
    const QString pack = world.path("configPack.tar.gz");
    EXPECT_EQ(
        ChildProcess::run("tar", QStringList{"-czf", pack, "-C", world.path("switch-data")} + names, 10000),
        0);
    return pack;
}

Testbed::Testbed() : _testbed(umockdev_testbed_new()) {}

Testbed::~Testbed() {
    g_object_unref(_testbed);
}

QString Testbed::addUsbDevice(const QString& name, const char* vendor, const char* product, int devnum) {
    const QByteArray number = QByteArray::number(devnum);
    const QByteArray port = name.section('-', 1).toLatin1();
    return Take(umockdev_testbed_add_device(_testbed, "usb", name.toLatin1().constData(), nullptr, "idVendor",
                                            vendor, "idProduct", product, "busnum", "1", "devnum",
                                            number.constData(), "devpath", port.constData(), "product",
                                            "HSPA Data Card", nullptr, "DEVTYPE", "usb_device", nullptr));
}

QString Testbed::addScsiDevice(const QString& usbDevice, const QString& lun, const char* vendor,
                               const char* model) {
    const QString usbName = usbDevice.section('/', -1);
    const QByteArray interfaceName = (usbName + ":1.0").toLatin1();
    QString interface = usbDevice + "/" + usbName + ":1.0";
    if (!QFile::exists(interface))
        interface = Take(umockdev_testbed_add_device(_testbed, "usb", interfaceName.constData(),
                                                     usbDevice.toLocal8Bit().constData(), "bInterfaceClass",
                                                     "08", nullptr, "DEVTYPE", "usb_interface", nullptr));
    const QString host = Take(umockdev_testbed_add_device(
        _testbed, "scsi", ("host" + lun).toLatin1().constData(), interface.toLocal8Bit().constData(), nullptr,
        "DEVTYPE", "scsi_host", nullptr));
    return Take(umockdev_testbed_add_device(_testbed, "scsi", (lun + ":0:0:0").toLatin1().constData(),
                                            host.toLocal8Bit().constData(), "vendor", vendor, "model", model,
                                            nullptr, "DEVTYPE", "scsi_device", nullptr));
}

QString Testbed::addBlock(const QString& parent, const QString& name, const char* devtype, bool cdrom) {
    return Take(umockdev_testbed_add_device(_testbed, "block", name.toLatin1().constData(),
                                            parent.toLocal8Bit().constData(), "size", "1024", nullptr,
                                            "DEVTYPE", devtype, "ID_TYPE", cdrom ? "cd" : "disk",
                                            cdrom ? "ID_CDROM" : nullptr, "1", nullptr));
}

QString Testbed::addStickRecord(const QString& name, const char* vendor, const char* product,
                                const QList<int>& interfaces, int firstTty, const QByteArray& ttyProperties,
                                const QByteArray& devpath) {
    static int devnum = 10; // a new one for every plug-in, as the kernel counts
    const QByteArray base = "/devices/pci0000:00/usb1/" + name.toLatin1();
    QByteArray record = "P: " + base + "\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nA: idVendor=" + vendor +
                        "\nA: idProduct=" + product +
                        "\nA: busnum=1\nA: devnum=" + QByteArray::number(++devnum) +
                        "\nA: devpath=" + devpath + "\n\n";
    for (int i = 0; i < interfaces.size(); ++i) {
        const QByteArray number = QByteArray::number(interfaces[i], 16).rightJustified(2, '0');
        const QByteArray interface = base + "/" + name.toLatin1() + ":1." + QByteArray::number(interfaces[i]);
        const QByteArray tty = "ttyUSB" + QByteArray::number(firstTty + i);
        record += "P: " + interface + "\nE: DEVTYPE=usb_interface\nE: SUBSYSTEM=usb\nE: DRIVER=option\n" +
                  "A: bInterfaceNumber=" + number + "\n\nP: " + interface + "/" + tty + "/tty/" + tty +
                  "\nN: " + tty + "\nE: DEVNAME=/dev/" + tty + "\nE: SUBSYSTEM=tty\n" + ttyProperties + "\n";
    }
    GError* error = nullptr;
    EXPECT_TRUE(umockdev_testbed_add_from_string(_testbed, record.constData(), &error))
        << (error ? error->message : "");
    if (error)
        g_error_free(error);
    return "/sys" + QString::fromLatin1(base);
}

int Testbed::ttyMaster(const QString& devnode) {
    return umockdev_testbed_get_dev_fd(_testbed, devnode.toLocal8Bit().constData());
}

void Testbed::uevent(const QString& syspath, const char* action) {
    umockdev_testbed_uevent(_testbed, syspath.toLocal8Bit().constData(), action);
}
