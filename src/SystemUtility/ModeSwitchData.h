#pragma once

#include "UsbId.h"

#include <QString>

class QTemporaryDir;

// usb_modeswitch's own data (Debian's usb-modeswitch-data): one configuration file per storage id, named
// "vvvv:pppp" or "vvvv:pppp:<attribute>=<value>", packed in configPack.tar.gz. The connection manager
// keeps no switch messages of its own; it hands usb_modeswitch the file its data has for the stick.
//
// DIALTONE_MODESWITCH_DATA names another pack (tests, unusual systems).
class ModeSwitchData {
public:
    static QString packPath();
    // Unpacks the stick's configuration into the folder; its path, or null when the data has none.
    static QString extractConfig(UsbId storageId, const QTemporaryDir& folder);
    static bool hasConfig(UsbId storageId);
};
