#include "PortProbe.h"

#include "CNSLog.h"
#include "ModemTable.h"
#include "PrivateFile.h"
#include "PropertyList.h"
#include "StoreFile.h"
#include "UserDataFolder.h"

#include <QDir>
#include <QMap>
#include <QSet>

#include <libudev.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <mutex>
#include <poll.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr size_t kMaxAnswer = 256;

QString sysattr(udev_device* device, const char* name) {
    const char* text = udev_device_get_sysattr_value(device, name);
    return text != nullptr ? QString::fromLatin1(text, static_cast<qsizetype>(strnlen(text, 16))).trimmed()
                           : QString();
}

bool isModemTty(const char* name) {
    return name != nullptr && (std::strncmp(name, "ttyUSB", 6) == 0 || std::strncmp(name, "ttyACM", 6) == 0);
}

// Plain USB-serial adapters (a console cable, a microcontroller board) are no modems: nothing is sent to
// them.
bool isSerialAdapter(udev_device* interface) {
    static const char* const kAdapterDrivers[] = {"ftdi_sio", "pl2303",           "ch341",
                                                  "cp210x",   "ark3116",          "mos7840",
                                                  "io_ti",    "ti_usb_3410_5052", "keyspan"};
    const char* driver = udev_device_get_driver(interface);
    if (driver == nullptr) {
        driver = udev_device_get_property_value(interface, "DRIVER");
    }
    return driver != nullptr &&
           std::any_of(std::begin(kAdapterDrivers), std::end(kAdapterDrivers),
                       [driver](const char* name) { return std::strcmp(driver, name) == 0; });
}

// Sticks whose probe found no ports: probed once while they stay plugged in.
std::mutex gFailedLock;
QSet<QString> gFailedProbes;

QVariantMap remembered() {
    return PropertyList::readMap(PortProbe::rememberedPath());
}

void remember(const PortProbe::Stick& stick, const PortProbe::Ports& ports) {
    int at = -1;
    int dial = -1;
    for (const PortProbe::Tty& tty : stick.ttys) {
        at = tty.devnode == ports.atPort ? tty.interface : at;
        dial = tty.devnode == ports.dialPort ? tty.interface : dial;
    }
    QVariantMap all = remembered();
    all.insert(stick.id.text(), QVariantMap{{QStringLiteral("AT"), at}, {QStringLiteral("Dial"), dial}});
    const QString path = PortProbe::rememberedPath();
    if (!PrivateFile::makeFolder(QFileInfo(path).absolutePath()) || !StoreFile::write(path, all)) {
        CNSLOG(2, "could not remember the ports of %s in %s", qPrintable(stick.id.text()), qPrintable(path));
    }
}

} // namespace

QString PortProbe::rememberedPath() {
    return UserDataFolder::configPath() + QStringLiteral("/ProbedPorts");
}

QList<PortProbe::Stick> PortProbe::sticksWithTtys(udev* context) {
    QMap<QString, Stick> sticks;
    udev_enumerate* enumerate = context != nullptr ? udev_enumerate_new(context) : nullptr;
    if (enumerate == nullptr) {
        return {};
    }
    udev_enumerate_add_match_subsystem(enumerate, "tty");
    udev_enumerate_scan_devices(enumerate);
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate)) {
        udev_device* tty = udev_device_new_from_syspath(context, udev_list_entry_get_name(entry));
        if (tty == nullptr) {
            continue;
        }
        udev_device* usb = udev_device_get_parent_with_subsystem_devtype(tty, "usb", "usb_device");
        udev_device* interface = udev_device_get_parent_with_subsystem_devtype(tty, "usb", "usb_interface");
        const char* devnode = udev_device_get_devnode(tty);
        UsbId id;
        if (usb != nullptr && interface != nullptr && devnode != nullptr &&
            isModemTty(udev_device_get_sysname(tty)) && !isSerialAdapter(interface) &&
            UsbId::ofDevice(usb, id)) {
            Stick& stick = sticks[QString::fromLocal8Bit(udev_device_get_syspath(usb))];
            stick.id = id;
            stick.syspath = QString::fromLocal8Bit(udev_device_get_syspath(usb));
            stick.plug = QStringLiteral("%1 %2 #%3").arg(stick.syspath, id.text(), sysattr(usb, "devnum"));
            bool ok = false;
            const int number = sysattr(interface, "bInterfaceNumber").toInt(&ok, 16);
            Tty found{QString::fromLocal8Bit(devnode), ok ? number : -1};
            auto at = std::find_if(stick.ttys.begin(), stick.ttys.end(),
                                   [&](const Tty& other) { return other.interface > found.interface; });
            stick.ttys.insert(at, found);
        }
        udev_device_unref(tty);
    }
    udev_enumerate_unref(enumerate);
    return sticks.values();
}

bool PortProbe::answersAt(const QString& devnode, int timeoutMs) {
    const int fd = open(devnode.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    // A port another program holds (the modem link locks its port the same way) is left alone.
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        close(fd);
        return false;
    }
    termios settings{};
    if (tcgetattr(fd, &settings) == 0) {
        cfmakeraw(&settings);
        tcsetattr(fd, TCSANOW, &settings);
        tcflush(fd, TCIOFLUSH);
    }
    bool ok = write(fd, "AT\r", 3) == 3;
    std::string answer;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    bool answered = false;
    while (ok && !answered && answer.size() < kMaxAnswer) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd poller{fd, POLLIN, 0};
        if (left.count() <= 0 || poll(&poller, 1, static_cast<int>(left.count())) <= 0) {
            break;
        }
        char buffer[64];
        const ssize_t got = read(fd, buffer, sizeof buffer);
        ok = got > 0;
        if (ok) {
            answer.append(buffer, static_cast<size_t>(got));
            // "AT\r\r\nOK\r\n" with echo, "\r\nOK\r\n" without.
            answered = answer.find("\nOK\r") != std::string::npos || answer.rfind("OK\r", 0) == 0;
        }
    }
    close(fd);
    return answered;
}

bool PortProbe::portsOf(const Stick& stick, int atInterface, int dialInterface, Ports& ports) {
    ports = Ports{stick.id, {}, {}, false};
    for (const Tty& tty : stick.ttys) {
        ports.atPort = tty.interface == atInterface ? tty.devnode : ports.atPort;
        ports.dialPort = tty.interface == dialInterface ? tty.devnode : ports.dialPort;
    }
    return !ports.atPort.isEmpty() && !ports.dialPort.isEmpty();
}

bool PortProbe::findPorts(Ports& ports) {
    udev* context = udev_new();
    const QList<Stick> sticks = sticksWithTtys(context);
    udev_unref(context);
    if (sticks.isEmpty()) {
        return false;
    }
    const ModemTable table = ModemTable::installed();
    const QVariantMap known = remembered();
    for (const Stick& stick : sticks) {
        const ModemModel* model = table.findModem(stick.id);
        const QVariantMap layout = known.value(stick.id.text()).toMap();
        bool found = false;
        if (model != nullptr && model->layoutKnown()) {
            found = portsOf(stick, model->atInterface, model->dialInterface, ports);
        } else if (!layout.isEmpty()) {
            found = portsOf(stick, layout.value(QStringLiteral("AT"), -1).toInt(),
                            layout.value(QStringLiteral("Dial"), -1).toInt(), ports);
        }
        if (!found) {
            std::lock_guard lock(gFailedLock);
            if (gFailedProbes.contains(stick.plug)) {
                continue;
            }
            ports = Ports{stick.id, {}, {}, true};
            for (const Tty& tty : stick.ttys) {
                QString& slot = ports.atPort.isEmpty() ? ports.atPort : ports.dialPort;
                if (answersAt(tty.devnode)) {
                    slot = tty.devnode;
                }
                if (!ports.dialPort.isEmpty()) {
                    break;
                }
            }
            found = !ports.atPort.isEmpty() && !ports.dialPort.isEmpty();
            CNSLOG(0, "probed %s: AT port %s, dial port %s", qPrintable(stick.id.text()),
                   qPrintable(ports.atPort), qPrintable(ports.dialPort));
            if (found) {
                remember(stick, ports);
            } else {
                gFailedProbes.insert(stick.plug);
            }
        }
        if (found) {
            SetModemDialect(model != nullptr ? model->dialect : ModemDialect::Standard);
            return true;
        }
    }
    return false;
}
