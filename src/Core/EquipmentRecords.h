#pragma once

#include "RecordCoding.h"

#include <QMetaType>
#include <QString>

// Equipment and diagnosis results. A text the modem did not report stays a null string.

// Result of "MESSAGE_SYSTEM_GET_EQUIPMENT_INFO". The business layer caps the texts: the first four at
// 2048 characters, the IMSI at 15, the MSISDN and the hardware version at 21.
struct BLEquipmentInfo {
    QString strManufacturer;
    QString strModel;
    QString strRevision;
    QString strSerialNumber;
    QString strImsi;
    QString strMsisdn;
    QString strHardwareVersion;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLEquipmentInfo& other) const = default;
};

// Result of "MESSAGE_SYSTEM_GET_DIAG_INFO": the equipment texts, the network block and four states.
struct BLDiagInfo {
    QString strManufacturer;
    QString strModel;
    QString strRevision;
    QString strSerialNumber;
    QString strImsi;
    QString strMsisdn;
    QString strHardwareVersion;
    qint32 nMode = 0;
    qint32 nFormat = 0;
    QString strOperator;
    qint32 nAcT = 0;
    QString strSpName;
    qint32 nRssi = 0;
    qint32 nRoamState = 0;
    qint32 nBearer = 0;
    qint32 nPinState = 0;
    qint32 nGprsRegState = 0;
    qint32 nNormalRegState = 0;
    qint32 nPsAttachState = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLDiagInfo& other) const = default;
};

Q_DECLARE_METATYPE(BLEquipmentInfo)
Q_DECLARE_METATYPE(BLDiagInfo)
