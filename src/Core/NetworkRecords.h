#pragma once

#include "RecordCoding.h"

#include <QMetaType>
#include <QString>

// Network requests and results. Modes, formats, access technologies and states carry the values of the
// AT sublayer's network family ("+COPS", "+CREG"/"+CGREG").

// Result of "MESSAGE_NETWORK_GET_INFO". strSpName stays null unless the modem reports a provider name.
struct BLNetworkInfo {
    qint32 nMode = 0;
    qint32 nFormat = 0;
    QString strOperator;
    qint32 nAcT = 0;
    qint32 nDisplayMask = 0;
    QString strSpName;
    qint32 nRssi = 0;
    qint32 nRoamState = 0;
    qint32 nBearer = 0;
    qint32 nGprsState = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLNetworkInfo& other) const = default;
};

// One operator of the "MESSAGE_NETWORK_GET_LIST" result, as the modem lists it.
struct BLNetworkListItem {
    qint32 mode = 0;
    qint32 nState = 0;
    QString strLongAlpha;
    QString strShortAlpha;
    QString strNumericAlpha;
    qint32 nAcT = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLNetworkListItem& other) const = default;
};

// Argument of "MESSAGE_NETWORK_SET". strOperator is used only when nMask has kOperatorGiven.
struct BLNetworkSet {
    static constexpr qint32 kOperatorGiven = 4;

    qint32 nMask = 0;
    qint32 nMode = 0;
    qint32 nFormat = 0;
    QString strOperator;
    qint32 nAcT = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLNetworkSet& other) const = default;
};

// Result of "NETWORK_GET_REG_STATE": nType 0 circuit-switched, 1 packet; nState the registration state.
struct BLNetRegState {
    qint32 nType = 0;
    qint32 nState = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLNetRegState& other) const = default;
};

Q_DECLARE_METATYPE(BLNetworkInfo)
Q_DECLARE_METATYPE(BLNetworkListItem)
Q_DECLARE_METATYPE(BLNetworkSet)
Q_DECLARE_METATYPE(BLNetRegState)
