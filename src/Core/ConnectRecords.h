#pragma once

#include "RecordCoding.h"

#include <QDataStream>
#include <QMetaType>
#include <QString>

// Records that cross between the GUI thread and the worker: plain values with public fields, copied, never
// shared. encodeWithCoder/initWithCoder write and read the integer fields first, then the strings, each in
// declaration order; a null string stays null through a round trip.

// The dial information of one connection profile, the argument of a dial-up request. The APN is set on
// the modem through the AT port before dialling; the dialler itself reads the other fields.
struct BLConnectDialinfo {
    QString strDialNumber;
    QString strAccountName;
    QString strPassword;
    QString strAPN;
    QString strDNS1;
    QString strDNS2;
    int authType = 0; // 1 PAP, 2 CHAP, anything else either

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);

    bool operator==(const BLConnectDialinfo&) const = default;
};

Q_DECLARE_METATYPE(BLConnectDialinfo)
