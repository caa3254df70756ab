#include "DeviceUtility.h"

#include "CNSLog.h"
#include "ChildProcess.h"
#include "DebugSink.h"
#include "ModeSwitchData.h"
#include "ModemTable.h"
#include "PortProbe.h"
#include "UserDataFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QUrl>

#include <libudev.h>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

QString tool(const char* variable, const char* fallback) {
    const QString value = qEnvironmentVariable(variable);
    return value.isEmpty() ? QString::fromLatin1(fallback) : value;
}

struct UdevDeleter {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_enumerate* enumerate) const { udev_enumerate_unref(enumerate); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};
using UdevPtr = std::unique_ptr<udev, UdevDeleter>;
using EnumeratePtr = std::unique_ptr<udev_enumerate, UdevDeleter>;
using DevicePtr = std::unique_ptr<udev_device, UdevDeleter>;

const char* const kModemPortName = "VELMobileConnector";
const char* const kDataPortName = "VELDeviceInterface";
const char* const kMMCMediaNames[] = {"USBModem MMC Storage Media", "ZENTRAK Mass Storage Media"};

// A udev text attribute, at most `limit` characters, trimmed; sysfs is outside input.
QString boundedText(const char* text, int limit = 64) {
    if (text == nullptr) {
        return {};
    }
    return QString::fromLocal8Bit(text, static_cast<qsizetype>(strnlen(text, limit))).trimmed();
}

// usb_modeswitch with the configuration its own data has for the storage id.
bool switchToModem(udev_device* usbDevice, UsbId storageId, int& status) {
    const QTemporaryDir folder;
    const QString config = ModeSwitchData::extractConfig(storageId, folder);
    if (config.isNull()) {
        CNSLOG(2, "no switch data for %s in %s", qPrintable(storageId.text()),
               qPrintable(ModeSwitchData::packPath()));
        status = -1;
        return false;
    }
    QStringList arguments{"-v", QString::asprintf("0x%04x", storageId.vendor), "-p",
                          QString::asprintf("0x%04x", storageId.product)};
    // Bus and device number pick this very stick when several are plugged in.
    const QString bus = boundedText(udev_device_get_sysattr_value(usbDevice, "busnum"), 8);
    const QString device = boundedText(udev_device_get_sysattr_value(usbDevice, "devnum"), 8);
    if (!bus.isEmpty() && !device.isEmpty()) {
        arguments << "-b" << bus << "-g" << device;
    }
    arguments << "-c" << config;
    status = ChildProcess::run(DeviceUtility::modeSwitchProgram(), arguments, 60000);
    return status == 0;
}

// A link the udev rule made points at a tty of a USB stick; the table names the stick's dialect. The
// simulator's links point at pseudo-terminals, with no USB device behind them: nothing is set.
void chooseDialectForPort(const QString& port) {
    const QString target = QFileInfo(port).canonicalFilePath();
    if (target.isEmpty() || target == QFileInfo(port).absoluteFilePath()) {
        return;
    }
    UdevPtr context(udev_new());
    DevicePtr tty(context ? udev_device_new_from_subsystem_sysname(context.get(), "tty",
                                                                   QFileInfo(target).fileName().toLocal8Bit())
                          : nullptr);
    udev_device* usb =
        tty ? udev_device_get_parent_with_subsystem_devtype(tty.get(), "usb", "usb_device") : nullptr;
    UsbId id;
    if (usb == nullptr || !UsbId::ofDevice(usb, id)) {
        return;
    }
    const ModemTable table = ModemTable::installed();
    const ModemModel* model = table.findModem(id);
    SetModemDialect(model != nullptr ? model->dialect : ModemDialect::Standard);
    DebugPrint("modem %s: %s, dialect %s\n", qPrintable(id.text()),
               model != nullptr ? qPrintable(model->name) : "not in the device table",
               ModemDialectName(CurrentModemDialect()));
}

// One field of /proc/self/mounts, whose blanks and backslashes are written as octal escapes ("\040").
QByteArray unescapeMountField(const QByteArray& field) {
    QByteArray out;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' && field[i + 1] <= '3' &&
            field[i + 2] >= '0' && field[i + 2] <= '7' && field[i + 3] >= '0' && field[i + 3] <= '7') {
            out.append(
                static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + field[i + 3] - '0'));
            i += 3;
        } else {
            out.append(field[i]);
        }
    }
    return out;
}

} // namespace

QString DeviceUtility::deviceDir() {
    const QString dir = qEnvironmentVariable("DIALTONE_DEV_DIR");
    return dir.isEmpty() ? QStringLiteral("/dev") : QDir::cleanPath(dir);
}

bool DeviceUtility::getModemDeviceName(QString& modemDeviceName, QString& dataDeviceName) {
    const QDir dir(deviceDir());
    if (!dir.exists() || !QFileInfo(dir.path()).isReadable()) {
        return false;
    }
    const QStringList entries =
        dir.entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    const QString modemPrefix = QStringLiteral("cu.%1").arg(kModemPortName);
    const QString dataStem = QStringLiteral("cu.%1").arg(kDataPortName);
    QString modemEntry;
    QString dataEntry;
    for (const QString& entry : entries) {
        if (entry.startsWith(modemPrefix)) {
            modemEntry = entry;
            break;
        }
    }
    const QString suffix = modemEntry.mid(modemPrefix.size());
    if (!suffix.isEmpty()) {
        // The AT port's number is the dial port's with its last character replaced by 3:
        // cu.VELMobileConnector12 goes with cu.VELDeviceInterface13.
        dataEntry = dataStem + suffix.chopped(1) + QString::number(3);
    }
    CNSLOG(0, "modem driver find: %s", qPrintable(modemEntry));
    CNSLOG(0, "data driver find: %s", qPrintable(dataEntry));
    if (modemEntry.isEmpty() || dataEntry.isEmpty() || !QFileInfo::exists(dir.filePath(dataEntry))) {
        return modemEntry.isEmpty() && findProbedPorts(modemDeviceName, dataDeviceName);
    }
    chooseDialectForPort(dir.filePath(dataEntry));
    modemDeviceName = modemEntry;
    dataDeviceName = dataEntry;
    return true;
}

bool DeviceUtility::findProbedPorts(QString& modemDeviceName, QString& dataDeviceName) {
    PortProbe::Ports ports;
    if (!PortProbe::findPorts(ports)) {
        return false;
    }
    // Bare names for ports in the device folder, as for the links.
    const QString prefix = deviceDir() + '/';
    modemDeviceName = ports.dialPort.startsWith(prefix) ? ports.dialPort.mid(prefix.size()) : ports.dialPort;
    dataDeviceName = ports.atPort.startsWith(prefix) ? ports.atPort.mid(prefix.size()) : ports.atPort;
    CNSLOG(0, "ports of %s: dial %s, AT %s", qPrintable(ports.id.text()), qPrintable(modemDeviceName),
           qPrintable(dataDeviceName));
    return true;
}

QString DeviceUtility::portPath(const QString& name) {
    return name.startsWith('/') ? name : deviceDir() + '/' + name;
}

QString DeviceUtility::modeSwitchProgram() {
    return tool("DIALTONE_MODESWITCH", "/usr/sbin/usb_modeswitch");
}

int DeviceUtility::switchDiskToUSBModem() {
    UdevPtr context(udev_new());
    EnumeratePtr enumerate(context ? udev_enumerate_new(context.get()) : nullptr);
    if (!enumerate) {
        std::fprintf(stderr, "udev_enumerate_new returned NULL.\n");
        return -1;
    }
    udev_enumerate_add_match_subsystem(enumerate.get(), "block");
    udev_enumerate_add_match_property(enumerate.get(), "ID_CDROM", "1");
    const int scanned = udev_enumerate_scan_devices(enumerate.get());
    if (scanned < 0) {
        std::fprintf(stderr, "udev_enumerate_scan_devices returned 0x%08x.\n", scanned);
        return -1;
    }

    const ModemTable table = ModemTable::installed();
    int switched = 0;
    QSet<QString> done; // a stick with two CD-ROM drives is switched once
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate.get())) {
        DevicePtr cdrom(udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (!cdrom) {
            continue;
        }
        udev_device* parent = udev_device_get_parent_with_subsystem_devtype(cdrom.get(), "usb", "usb_device");
        if (parent == nullptr) {
            std::fprintf(stderr, "udev_device_get_parent_with_subsystem_devtype returned 0x%08x.\n", 0);
            continue;
        }
        const QString parentPath = QString::fromLocal8Bit(udev_device_get_syspath(parent));
        UsbId storageId;
        if (!UsbId::ofDevice(parent, storageId) || table.findStorage(storageId) == nullptr ||
            done.contains(parentPath)) {
            continue;
        }
        const QString volume = getMMCVolumePath();
        if (!volume.isNull()) {
            // The card goes first, so that nothing is lost when the storage personality disappears.
            QString location = volume;
            while (location.endsWith('/')) {
                location.chop(1);
            }
            const int slash = location.lastIndexOf('/');
            const QString name = QUrl::fromPercentEncoding(location.mid(slash + 1).toUtf8());
            const QString folder = QUrl(location.left(slash + 1)).toLocalFile();
            if (!name.isEmpty()) {
                ejectDisk(QDir::cleanPath(folder + '/' + name));
            }
        }
        int status = 0;
        if (switchToModem(parent, storageId, status)) {
            ++switched;
            done.insert(parentPath);
        } else {
            std::fprintf(stderr, "usb_modeswitch returned 0x%08x.\n", static_cast<unsigned>(status));
        }
    }
    return switched;
}

bool DeviceUtility::ejectDisk(const QString& volumePath) {
    return ChildProcess::run(tool("DIALTONE_EJECT", "/usr/bin/eject"), {volumePath}, 60000) == 0;
}

bool DeviceUtility::OpenMMCDisk() {
    CNSLOG(0, "=====================OpenMMCDisk Log Begin=====================");
    const QString volume = getMMCVolumePath();
    bool found = false;
    if (!volume.isNull()) {
        const QString program = tool("DIALTONE_OPEN", "xdg-open");
        DebugPrint("open shell:  %s\n", qPrintable(QStringLiteral("%1 \"%2\"").arg(program, volume)));
        ChildProcess::startDetached(program, {volume});
        found = true;
    }
    CNSLOG(0, "=====================OpenMMCDisk Log End=====================");
    return found;
}

QString DeviceUtility::getMMCVolumePath() {
    UdevPtr context(udev_new());
    EnumeratePtr enumerate(context ? udev_enumerate_new(context.get()) : nullptr);
    if (!enumerate) {
        std::fprintf(stderr, "udev_enumerate_new returned NULL.\n");
        return {};
    }
    udev_enumerate_add_match_subsystem(enumerate.get(), "block");
    const int scanned = udev_enumerate_scan_devices(enumerate.get());
    if (scanned < 0) {
        std::fprintf(stderr, "udev_enumerate_scan_devices returned 0x%08x.\n", scanned);
        return {};
    }
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate.get())) {
        DevicePtr media(udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (!media) {
            continue;
        }
        for (const char* name : kMMCMediaNames) {
            const QString volume = getVolumePathByMatchPIDIndication(QString::fromLatin1(name), media.get());
            if (!volume.isNull()) {
                return volume;
            }
        }
    }
    return {};
}

QString DeviceUtility::registryPath(udev_device* entry) {
    if (entry == nullptr) {
        return {};
    }
    const QString name = boundedText(udev_device_get_sysname(entry), 255);
    udev_device* scsi = udev_device_get_parent_with_subsystem_devtype(entry, "scsi", "scsi_device");
    if (scsi == nullptr) {
        return QString::fromLocal8Bit(udev_device_get_syspath(entry));
    }
    // The SCSI inquiry's vendor (8 characters) and model (16) name the medium, as "<vendor> <model> Media".
    const QString vendor = boundedText(udev_device_get_sysattr_value(scsi, "vendor"), 8);
    const QString model = boundedText(udev_device_get_sysattr_value(scsi, "model"), 16);
    return QStringLiteral("%1/%2 %3 Media/%4")
        .arg(QString::fromLocal8Bit(udev_device_get_syspath(scsi)), vendor, model, name);
}

QString DeviceUtility::getVolumePathByMatchPIDIndication(const QString& indication, udev_device* ioNode) {
    const QString path = registryPath(ioNode);
    DebugPrint("szRegistryPath = %s\n", qPrintable(path));
    if (!path.contains(indication) || !isLeafNode(ioNode)) {
        return {};
    }
    char bsdPath[128];
    if (!getBSDNameFromDeviceRef(ioNode, bsdPath, sizeof bsdPath)) {
        return {};
    }
    if (isCdRom(ioNode)) {
        CNSLOG(0, "CDRom we skip it");
        return {};
    }
    const QString volume = volumePathWithBSDPath(bsdPath);
    CNSLOG(0, "strVolumePath = %s", qPrintable(volume));
    return volume;
}

bool DeviceUtility::isLeafNode(udev_device* entry) {
    if (entry == nullptr) {
        return false;
    }
    const char* type = udev_device_get_devtype(entry);
    if (type == nullptr) {
        return false;
    }
    if (std::strcmp(type, "partition") == 0) {
        return true;
    }
    if (std::strcmp(type, "disk") != 0) {
        return false;
    }
    UdevPtr context(udev_ref(udev_device_get_udev(entry)));
    EnumeratePtr children(udev_enumerate_new(context.get()));
    if (!children) {
        return false;
    }
    udev_enumerate_add_match_subsystem(children.get(), "block");
    udev_enumerate_add_match_property(children.get(), "DEVTYPE", "partition");
    udev_enumerate_add_match_parent(children.get(), entry);
    if (udev_enumerate_scan_devices(children.get()) < 0) {
        return false;
    }
    return udev_enumerate_get_list_entry(children.get()) == nullptr;
}

bool DeviceUtility::isCdRom(udev_device* entry) {
    if (entry == nullptr) {
        return false;
    }
    const char* cdrom = udev_device_get_property_value(entry, "ID_CDROM");
    const char* type = udev_device_get_property_value(entry, "ID_TYPE");
    return (cdrom != nullptr && std::strcmp(cdrom, "1") == 0) ||
           (type != nullptr && std::strcmp(type, "cd") == 0);
}

bool DeviceUtility::getBSDNameFromDeviceRef(udev_device* entry, char* bsdName, size_t size) {
    const char* name = entry != nullptr ? udev_device_get_sysname(entry) : nullptr;
    if (name == nullptr || *name == '\0' || bsdName == nullptr || size == 0) {
        return false;
    }
    const int written = std::snprintf(bsdName, size, "/dev/%s", name);
    return written > 0 && static_cast<size_t>(written) < size;
}

QString DeviceUtility::volumePathWithBSDPath(const char* bsdPath) {
    QFile table(tool("DIALTONE_MOUNTS", "/proc/self/mounts"));
    if (!table.open(QIODevice::ReadOnly)) {
        CNSLOG(0, "session Create faild!!");
        return {};
    }
    if (bsdPath == nullptr || *bsdPath == '\0') {
        CNSLOG(0, "disk is nil");
        return {};
    }
    const QByteArray device(bsdPath);
    // /proc/self/mounts: "/dev/sdb1 /media/me/MY\040CARD vfat rw,nosuid 0 0"
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 2 || unescapeMountField(fields[0]) != device) {
            continue;
        }
        CNSLOG(0, "disk info %s", line.constData());
        QString mountPoint = QString::fromLocal8Bit(unescapeMountField(fields[1]));
        if (!mountPoint.endsWith('/')) {
            mountPoint += '/';
        }
        return QUrl::fromLocalFile(mountPoint).toString(QUrl::FullyEncoded);
    }
    return {};
}

QString DeviceUtility::getUserDataPath() {
    return UserDataFolder::dataPath();
}
