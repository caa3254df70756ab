#include "ModemDoctor.h"

#include "DeviceUtility.h"
#include "DialupReadiness.h"
#include "ModeSwitchData.h"
#include "ModemTable.h"
#include "PPPConnection.h"
#include "PortProbe.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <libudev.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString environmentOr(const char* name, const char* fallback) {
    const QString value = qEnvironmentVariable(name);
    return value.isEmpty() ? QString::fromLatin1(fallback) : value;
}

const QString kReloadRules = QStringLiteral("sudo udevadm control --reload && sudo udevadm trigger");

struct UsbView {
    QList<UsbId> modems;      // in the device table, modem mode
    QList<UsbId> storage;     // in the device table, CD-ROM mode
    QList<UsbId> otherCdRoms; // USB CD-ROMs not in the table: a stick the table does not know, maybe
    QList<PortProbe::Stick> withTtys;
    QStringList ignoredTtys; // ttys that ModemManager is told to leave alone
};

// Visits every udev device of the subsystem whose property has the value.
void forEachDevice(udev* context, const char* subsystem, const char* property, const char* value,
                   const std::function<void(udev_device*)>& visit) {
    udev_enumerate* enumerate = context != nullptr ? udev_enumerate_new(context) : nullptr;
    if (enumerate == nullptr) {
        return;
    }
    udev_enumerate_add_match_subsystem(enumerate, subsystem);
    udev_enumerate_add_match_property(enumerate, property, value);
    udev_enumerate_scan_devices(enumerate);
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate)) {
        udev_device* device = udev_device_new_from_syspath(context, udev_list_entry_get_name(entry));
        if (device != nullptr) {
            visit(device);
            udev_device_unref(device);
        }
    }
    udev_enumerate_unref(enumerate);
}

UsbView lookAtUsb(const ModemTable& table) {
    UsbView view;
    udev* context = udev_new();
    forEachDevice(context, "usb", "DEVTYPE", "usb_device", [&](udev_device* device) {
        UsbId id;
        if (!UsbId::ofDevice(device, id)) {
            return;
        }
        if (table.findModem(id) != nullptr) {
            view.modems << id;
        } else if (table.findStorage(id) != nullptr) {
            view.storage << id;
        }
    });
    forEachDevice(context, "block", "ID_CDROM", "1", [&](udev_device* cdrom) {
        UsbId id;
        if (UsbId::ofDevice(udev_device_get_parent_with_subsystem_devtype(cdrom, "usb", "usb_device"), id) &&
            !view.storage.contains(id) && !view.otherCdRoms.contains(id)) {
            view.otherCdRoms << id;
        }
    });
    view.withTtys = PortProbe::sticksWithTtys(context);
    forEachDevice(context, "tty", "ID_MM_DEVICE_IGNORE", "1", [&](udev_device* tty) {
        if (const char* devnode = udev_device_get_devnode(tty)) {
            view.ignoredTtys << QString::fromLocal8Bit(devnode);
        }
    });
    udev_unref(context);
    return view;
}

QString describe(const ModemTable& table, UsbId id) {
    const ModemModel* model = table.findModem(id);
    if (model == nullptr) {
        model = table.findStorage(id);
    }
    return model != nullptr ? id.text() + QLatin1Char(' ') + model->name : id.text();
}

DoctorFinding checkUsb(const ModemTable& table, const UsbView& view) {
    QStringList found;
    for (const UsbId& id : view.modems) {
        found << describe(table, id);
    }
    for (const PortProbe::Stick& stick : view.withTtys) {
        if (table.findModem(stick.id) == nullptr) {
            found << QStringLiteral("%1 (not in the device table; it has serial ports, which are probed)")
                         .arg(stick.id.text());
        }
    }
    if (!found.isEmpty()) {
        return {QStringLiteral("usb"),
                true,
                QStringLiteral("USB modem: ") + found.join(QStringLiteral("; ")),
                {}};
    }
    if (!view.storage.isEmpty()) {
        return {QStringLiteral("usb"), true, QStringLiteral("a USB modem waits in CD-ROM mode"), {}};
    }
    return {
        QStringLiteral("usb"), false, QStringLiteral("no USB modem found"),
        QStringLiteral("Plug the stick in. If it is in, \"lsusb\" shows its vendor:product; a stick that is "
                       "not in the device table is found when it has ttyUSB or ttyACM ports.")};
}

DoctorFinding checkSwitch(const ModemTable& table, const UsbView& view) {
    if (view.storage.isEmpty()) {
        for (const UsbId& id : view.otherCdRoms) {
            if (ModeSwitchData::hasConfig(id)) {
                return {
                    QStringLiteral("switch"), false,
                    QStringLiteral("%1 is a USB CD-ROM that usb_modeswitch knows as a modem in CD-ROM mode; "
                                   "it is not in the device table")
                        .arg(id.text()),
                    QStringLiteral(
                        "Unplug it and plug it in again: the system's usb_modeswitch rule switches "
                        "it. If it stays a CD-ROM, add its row to the device table (modems.table).")};
            }
        }
        return {QStringLiteral("switch"), true, QStringLiteral("no stick is left in CD-ROM mode"), {}};
    }
    const UsbId id = view.storage.first();
    const QString stick = describe(table, id);
    const QString text = QStringLiteral("%1 is still in CD-ROM mode: ").arg(stick);
    if (!QFileInfo(DeviceUtility::modeSwitchProgram()).isExecutable()) {
        return {
            QStringLiteral("switch"), false, text + QStringLiteral("usb_modeswitch is not installed"),
            QStringLiteral("sudo apt install usb-modeswitch usb-modeswitch-data, then unplug the stick and "
                           "plug it in again.")};
    }
    if (!ModeSwitchData::hasConfig(id)) {
        return {
            QStringLiteral("switch"), false,
            text + QStringLiteral("usb_modeswitch has no switch data for %1").arg(id.text()),
            QStringLiteral("Install usb-modeswitch-data (sudo apt install usb-modeswitch-data), or put a "
                           "configuration for %1 in /etc/usb_modeswitch.d/, then plug the stick in again.")
                .arg(id.text())};
    }
    return {
        QStringLiteral("switch"), false, text + QStringLiteral("the switch has not happened (yet)"),
        QStringLiteral("Wait a few seconds; the connection manager switches it when it starts. If it stays, "
                       "unplug the stick and plug it in again.")};
}

bool modemManagerRuns() {
    const QString proc = environmentOr("DIALTONE_PROC_DIR", "/proc");
    const QStringList entries = QDir(proc).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& pid : entries) {
        bool number = false;
        pid.toUInt(&number);
        QFile comm(proc + '/' + pid + QStringLiteral("/comm"));
        if (number && comm.open(QIODevice::ReadOnly) && comm.read(32).trimmed() == "ModemManager") {
            return true;
        }
    }
    return false;
}

DoctorFinding checkModemManager(const UsbView& view) {
    if (!modemManagerRuns()) {
        return {QStringLiteral("modemmanager"), true, QStringLiteral("ModemManager is not running"), {}};
    }
    QStringList held;
    for (const PortProbe::Stick& stick : view.withTtys) {
        for (const PortProbe::Tty& tty : stick.ttys) {
            if (!view.ignoredTtys.contains(tty.devnode)) {
                held << tty.devnode;
            }
        }
    }
    if (held.isEmpty()) {
        return {QStringLiteral("modemmanager"),
                true,
                QStringLiteral("ModemManager is running and leaves the stick's ports alone"),
                {}};
    }
    return {QStringLiteral("modemmanager"), false,
            QStringLiteral("ModemManager is running and may hold %1").arg(held.join(QStringLiteral(", "))),
            QStringLiteral(
                "Both can share the machine: the udev rule 70-dialtone-modem.rules tells ModemManager to "
                "leave the sticks of the device table alone (ID_MM_DEVICE_IGNORE); install it and run "
                "\"%1\", then plug the stick in again. Or stop ModemManager while you use this stick: "
                "sudo systemctl stop ModemManager")
                .arg(kReloadRules)};
}

QList<DoctorFinding> checkPorts() {
    QString dial;
    QString at;
    if (!DeviceUtility::getModemDeviceName(dial, at)) {
        return {
            {QStringLiteral("ports"), false,
             QStringLiteral("no modem ports in %1 (no cu.VELMobileConnector/cu.VELDeviceInterface links, and "
                            "no stick whose ports answer AT)")
                 .arg(DeviceUtility::deviceDir()),
             QStringLiteral(
                 "Install the udev rule 70-dialtone-modem.rules in /etc/udev/rules.d (make install does), "
                 "run \"%1\" and plug the stick in again.")
                 .arg(kReloadRules)}};
    }
    const QString atPath = DeviceUtility::portPath(at);
    const QString dialPath = DeviceUtility::portPath(dial);
    QList<DoctorFinding> findings{{QStringLiteral("ports"),
                                   true,
                                   QStringLiteral("AT port %1, dial port %2").arg(atPath, dialPath),
                                   {}}};
    QStringList closed;
    for (const QString& path : {atPath, dialPath}) {
        if (access(path.toLocal8Bit().constData(), R_OK | W_OK) != 0) {
            closed << path;
        }
    }
    if (closed.isEmpty()) {
        findings.append(
            {QStringLiteral("port-rights"), true, QStringLiteral("you may read and write both ports"), {}});
    } else {
        findings.append(
            {QStringLiteral("port-rights"), false,
             QStringLiteral("you may not read and write %1").arg(closed.join(QStringLiteral(", "))),
             QStringLiteral("Join the group dialout (sudo usermod -aG dialout $USER, then log in again), "
                            "or install the udev rule, which gives the user at the seat the ports "
                            "(uaccess).")});
    }
    return findings;
}

DoctorFinding checkPppd() {
    const QString pppd = PPPConnection::pppdPath();
    struct stat info {};
    if (stat(pppd.toLocal8Bit().constData(), &info) != 0) {
        return {QStringLiteral("pppd"), false, QStringLiteral("pppd is not installed (%1)").arg(pppd),
                QStringLiteral("sudo apt install ppp")};
    }
    if (access(pppd.toLocal8Bit().constData(), X_OK) != 0) {
        const group* dip = getgrgid(info.st_gid);
        const QString name =
            dip != nullptr ? QString::fromLocal8Bit(dip->gr_name) : QString::number(info.st_gid);
        return {QStringLiteral("pppd"), false,
                QStringLiteral("%1 may only be run by the group %2").arg(pppd, name),
                QStringLiteral("sudo usermod -aG %1 $USER, then log in again").arg(name)};
    }
    if ((info.st_mode & S_ISUID) == 0 || info.st_uid != 0) {
        return {QStringLiteral("pppd"), false,
                QStringLiteral("%1 is not setuid root: only root may dial").arg(pppd),
                QStringLiteral(
                    "sudo chmod 4754 %1 && sudo chgrp dip %1 (as Debian's ppp package sets it), and join "
                    "the group dip")
                    .arg(pppd)};
    }
    return {QStringLiteral("pppd"), true, QStringLiteral("%1 is setuid root and yours to run").arg(pppd), {}};
}

DoctorFinding fromReadiness(const DialupReadiness::Finding& finding) {
    return {QString::fromStdString(finding.check), finding.ok, QString::fromStdString(finding.text),
            QString::fromStdString(finding.fix)};
}

// Group dip, and whether the dial-up service exists or can be made (by this user, or once through pkexec):
// the same findings that the connect command and the Connect tab show.
QList<DoctorFinding> checkDialupRights() {
    QList<DoctorFinding> findings;
    const QString folder = PPPConnection::peersDir();
    const QStringList services =
        QDir(folder).entryList({QStringLiteral("VELMODEM*")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const DialupReadiness::Finding& finding : DialupReadiness::check(DialupReadiness::Facts::fromSystem())) {
        if (finding.check == "dip") {
            findings << fromReadiness(finding);
        } else if (finding.check == "peers") {
            findings << (services.isEmpty() ? fromReadiness(finding)
                                            : DoctorFinding{QStringLiteral("peers"), true,
                                                            QStringLiteral("dial-up service %1 in %2")
                                                                .arg(services.first(), folder),
                                                            {}});
        }
    }
    return findings;
}

DoctorFinding checkDns() {
    const QString resolv = environmentOr("DIALTONE_RESOLV_CONF", "/etc/resolv.conf");
    const QFileInfo info(resolv);
    if (info.isSymLink() && info.symLinkTarget().contains(QStringLiteral("systemd/resolve"))) {
        return {QStringLiteral("dns"),
                true,
                QStringLiteral("names are resolved by systemd-resolved (%1 points to it)").arg(resolv),
                {}};
    }
    QFile file(resolv);
    const bool hasServer = file.open(QIODevice::ReadOnly) && file.read(64 * 1024).contains("nameserver");
    if (hasServer) {
        return {
            QStringLiteral("dns"),
            true,
            QStringLiteral("%1 names its servers; pppd's usepeerdns puts the operator's there").arg(resolv),
            {}};
    }
    return {QStringLiteral("dns"), false, QStringLiteral("%1 is missing or names no server").arg(resolv),
            QStringLiteral("Install systemd-resolved (sudo apt install systemd-resolved), or give %1 a "
                           "\"nameserver\" line.")
                .arg(resolv)};
}

} // namespace

QList<DoctorFinding> ModemDoctor::examine() {
    const ModemTable table = ModemTable::installed();
    const UsbView view = lookAtUsb(table);
    QList<DoctorFinding> findings{checkUsb(table, view), checkSwitch(table, view), checkModemManager(view)};
    findings += checkPorts();
    findings << checkPppd();
    findings += checkDialupRights();
    findings << checkDns();
    return findings;
}

bool ModemDoctor::allOk(const QList<DoctorFinding>& findings) {
    return std::all_of(findings.begin(), findings.end(), [](const DoctorFinding& f) { return f.ok; });
}
