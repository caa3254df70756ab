#pragma once

#include "ModemDialect.h"
#include "UsbId.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// One stick the connection manager knows.
struct ModemModel {
    UsbId modemId;           // in modem mode
    QList<UsbId> storageIds; // its CD-ROM personalities before the switch
    int atInterface = -1;    // USB interface numbers, -1 when not known (then the ports are probed)
    int dialInterface = -1;
    ModemDialect dialect = ModemDialect::Standard;
    QString name;       // maker and model
    QString linkSuffix; // the udev rule's dial link is cu.VELMobileConnector<linkSuffix>

    bool layoutKnown() const { return atInterface >= 0 && dialInterface >= 0; }
};

// The device table (the "modems.table" resource): one stick per line,
//   modem-id  storage-ids|-  at-if|-  dial-if|-  vel|standard  maker and model
// with "#" comments and blank lines. The udev rule is made from the same file at build time.
class ModemTable {
public:
    static constexpr int kMaxRows = 512;
    static constexpr int kMaxLineLength = 256;
    static constexpr int kMaxStorageIds = 8;

    // Reads the table text. Bad lines are skipped; each adds "line N: why" to the problems.
    static ModemTable parse(const QByteArray& text, QStringList* problems = nullptr);
    // The installed table; empty (with a log line) when it cannot be read.
    static ModemTable installed();

    const QList<ModemModel>& models() const { return _models; }
    const ModemModel* findModem(UsbId id) const;
    // The first stick that shows this id as its CD-ROM.
    const ModemModel* findStorage(UsbId id) const;
    const ModemModel* findLinkSuffix(const QString& suffix) const;

private:
    QList<ModemModel> _models;
};
