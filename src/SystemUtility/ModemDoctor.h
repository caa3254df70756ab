#pragma once

#include <QList>
#include <QString>

// One step between a plugged-in stick and a working connection, checked.
struct DoctorFinding {
    QString check; // "usb", "switch", "modemmanager", "ports", "port-rights", "pppd", "dip", "peers", "dns"
    bool ok = true;
    QString text; // what was found
    QString fix;  // what to do about it; empty when ok
};

// Looks at the machine the way the connection manager needs it: a USB modem (in the device table or one
// with serial ports), no stick left in CD-ROM mode, ModemManager leaving the stick alone, the port links,
// the rights on the ports and on pppd, the peers folder and the name service. Shared by "dialtone
// doctor" and the desktop app's "No modem" page.
//
// Every place it reads can be moved: udev (umockdev), DIALTONE_DEV_DIR, DIALTONE_MODESWITCH and
// DIALTONE_MODESWITCH_DATA, DIALTONE_PROC_DIR (/proc, for ModemManager), DIALTONE_PPPD,
// DIALTONE_PEERS_DIR, DIALTONE_RESOLV_CONF (/etc/resolv.conf).
class ModemDoctor {
public:
    static QList<DoctorFinding> examine();
    static bool allOk(const QList<DoctorFinding>& findings);
};
