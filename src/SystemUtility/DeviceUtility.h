#pragma once

#include <QString>

#include <cstddef>

struct udev_device;

// The USB modem on the host: its two serial ports, the switch out of its mass-storage personality (a
// virtual CD-ROM, plus an optional memory-card volume) into the modem personality, the memory-card
// volume itself, and the per-user data folder. Class operations only; they hold no state.
//
// The device folder is /dev, or DIALTONE_DEV_DIR. Devices come from udev; a "registry entry" is a udev
// block device. The sticks are those of the device table (ModemTable). The outside programs can be replaced,
// for tests and unusual systems: DIALTONE_MODESWITCH (usb_modeswitch), DIALTONE_EJECT (eject), DIALTONE_OPEN
// (xdg-open); DIALTONE_MOUNTS names the mount table (/proc/self/mounts).
class DeviceUtility {
public:
    // The stick this program was first written for (the device table's first row), in modem mode.
    static constexpr int kVendorID = 0x1bbb;
    static constexpr int kProductID = 0x0017;

    // The dial port "cu.VELMobileConnector<suffix>" (the first in name order) and the AT port
    // "cu.VELDeviceInterface<suffix less its last character>3", the links the udev rule makes. True with
    // both bare entry names when both exist; the stick behind them then sets the modem dialect. Without
    // any dial link, the ports of a stick that has no links (see findProbedPorts). False, leaving the
    // outputs untouched, otherwise.
    static bool getModemDeviceName(QString& modemDeviceName, QString& dataDeviceName);
    // The ports of a stick without links: from the device table's layout, the remembered probe, or a
    // probe (PortProbe). Bare names for ports in the device folder, else device paths.
    static bool findProbedPorts(QString& modemDeviceName, QString& dataDeviceName);
    // The path of a port getModemDeviceName named.
    static QString portPath(const QString& name);

    // Switches every mass-storage personality of a stick of the device table (a CD-ROM whose USB device
    // has one of the table's storage ids) into the modem personality with usb_modeswitch and the switch
    // data it ships, ejecting the memory-card volume first. Returns the number of devices switched, 0 when
    // there is none, -1 when udev cannot be asked. The modem's ports appear some time after a switch.
    static int switchDiskToUSBModem();
    static QString modeSwitchProgram();

    // Ejects the volume mounted at the path; true when the eject program exits with 0.
    static bool ejectDisk(const QString& volumePath);
    // Opens the memory-card volume in the file browser; true when a volume was found.
    static bool OpenMMCDisk();
    // The location ("file:///media/me/MY%20CARD/") of the mounted memory-card volume, or null.
    static QString getMMCVolumePath();

    // The volume location of one block device if its registry path (its SCSI device's path, the media
    // name "<vendor> <model> Media", its own name) contains the text and it is a mounted leaf that is no
    // CD-ROM; null otherwise.
    static QString getVolumePathByMatchPIDIndication(const QString& indication, udev_device* ioNode);
    // A partition, or a whole disk without partitions; false when the device type is unknown.
    static bool isLeafNode(udev_device* entry);
    static bool isCdRom(udev_device* entry);
    // Writes "/dev/<kernel name>" into the buffer; false when the name is missing or does not fit.
    static bool getBSDNameFromDeviceRef(udev_device* entry, char* bsdName, size_t size);
    // The mount point of the block device in the mount table, as a location; null when not mounted.
    static QString volumePathWithBSDPath(const char* bsdPath);

    // The data folder (UserDataFolder), created when missing.
    static QString getUserDataPath();

    static QString deviceDir();
    static QString registryPath(udev_device* entry);
};
