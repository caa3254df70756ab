#pragma once

#include "UsbId.h"

#include <QList>
#include <QString>

struct udev;

// The ports of a stick whose layout the device table does not know, or of a USB device that is not in
// the table but has ttys (ttyUSB*, ttyACM*): the first tty that answers "AT" with OK is the AT port, the
// first other one that answers is the dial port. The result is remembered per vendor:product in the user's
// config folder ("dialtone/ProbedPorts"), so the next start needs no probing; a stick whose ttys do not
// answer is not probed again while it stays plugged in. Plain USB-serial adapters are left alone.
class PortProbe {
public:
    struct Tty {
        QString devnode;    // "/dev/ttyUSB2"
        int interface = -1; // its USB interface number
    };
    struct Stick {
        UsbId id;
        QString syspath;
        QString plug;    // this plug-in of the stick: syspath, ids and device number
        QList<Tty> ttys; // in interface order
    };
    struct Ports {
        UsbId id;
        QString atPort; // device nodes
        QString dialPort;
        bool probed = false; // false: from the table or the remembered layout
    };

    // The USB devices that have serial ports (udev's view), in syspath order.
    static QList<Stick> sticksWithTtys(udev* context);
    // Sends AT to the tty and waits up to the time for OK.
    static bool answersAt(const QString& devnode, int timeoutMs = 300);
    // The ports of the first stick that has links-free ports: its table layout, its remembered layout, or
    // a probe. False when there is none. Sets the stick's dialect (the table's; Standard when not in it).
    static bool findPorts(Ports& ports);

    static QString rememberedPath();

private:
    static bool portsOf(const Stick& stick, int atInterface, int dialInterface, Ports& ports);
};
