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
    // nState ("+COPS=?" <stat>).
    static constexpr qint32 kStateUnknown = 0;
    static constexpr qint32 kStateAvailable = 1;
    static constexpr qint32 kStateCurrent = 2;
    static constexpr qint32 kStateForbidden = 3;

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
    // nMask: which "+COPS=" parameters are sent.
    static constexpr qint32 kModeGiven = 1;
    static constexpr qint32 kFormatGiven = 2;
    static constexpr qint32 kOperatorGiven = 4;
    static constexpr qint32 kAcTGiven = 8;
    // nMode (also BLNetworkInfo's) and nFormat.
    static constexpr qint32 kModeAutomatic = 0;
    static constexpr qint32 kModeManual = 1;
    static constexpr qint32 kFormatNumeric = 2;

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

// The bands the modem may use: its system selection's band mask ("AT+SYSSEL=<band>"). A modem set by
// another program may hold a mask outside these.
enum class NetworkBand : qint32 {
    Any = 0x3FFFFFFF, // every bit: every band
    Gsm900And1800 = 0x00000380,
    Gsm850And1900 = 0x00280000,
    Umts2100 = 0x00400000,
    Umts850And1900 = 0x04800000,
};

// The radio technologies the modem may use: the rows of its mode table ("+SYSSEL: ,0,0" is Automatic,
// ",2,0" Prefer3G, ",0,1" Only2G, ",1,0" Prefer2G, ",0,2" Only3G). 5 is a pair outside the table.
enum class NetworkMode : qint32 {
    Automatic = 0,
    Prefer3G = 1,
    Only2G = 2,
    Prefer2G = 3,
    Only3G = 4,
};

Q_DECLARE_METATYPE(BLNetworkInfo)
Q_DECLARE_METATYPE(BLNetworkListItem)
Q_DECLARE_METATYPE(BLNetworkSet)
Q_DECLARE_METATYPE(BLNetRegState)
