#pragma once

#include "RecordCoding.h"

#include <QMetaType>
#include <QString>

// Voice call results.

// One current call, as "+CLCC: 1,0,0,0,0,\"+491701234567\",145" lists it: index, direction (0 outgoing,
// 1 incoming), state (0 active, 1 held, 2 dialling, 3 alerting, 4 incoming, 5 waiting), mode (0 voice),
// multiparty, number type; the number at most 21 characters, international ones with their "+".
// Elements of the "MESSAGE_CALL_GET_LIST" result.
struct BLCallItem {
    static constexpr qint32 kDirOutgoing = 0;
    static constexpr qint32 kDirIncoming = 1;
    static constexpr qint32 kStateActive = 0;
    static constexpr qint32 kStateHeld = 1;
    static constexpr qint32 kStateDialling = 2;
    static constexpr qint32 kStateAlerting = 3;
    static constexpr qint32 kStateIncoming = 4;
    static constexpr qint32 kStateWaiting = 5;

    qint32 nIndex = 0;
    qint32 nDir = 0;
    qint32 nState = 0;
    qint32 nMode = 0;
    qint32 nMpty = 0;
    qint32 nType = 0;
    QString strNumber;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLCallItem& other) const = default;
};

Q_DECLARE_METATYPE(BLCallItem)
