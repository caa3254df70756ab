#include "EquipmentRecords.h"

void BLEquipmentInfo::encodeWithCoder(QDataStream& coder) const {
    coder << strManufacturer << strModel << strRevision << strSerialNumber << strImsi << strMsisdn
          << strHardwareVersion;
}

void BLEquipmentInfo::initWithCoder(QDataStream& coder) {
    coder >> strManufacturer >> strModel >> strRevision >> strSerialNumber >> strImsi >> strMsisdn >>
        strHardwareVersion;
}

void BLDiagInfo::encodeWithCoder(QDataStream& coder) const {
    coder << nMode << nFormat << nAcT << nRssi << nRoamState << nBearer << nPinState << nGprsRegState
          << nNormalRegState << nPsAttachState;
    coder << strManufacturer << strModel << strRevision << strSerialNumber << strImsi << strMsisdn
          << strHardwareVersion << strOperator << strSpName;
}

void BLDiagInfo::initWithCoder(QDataStream& coder) {
    coder >> nMode >> nFormat >> nAcT >> nRssi >> nRoamState >> nBearer >> nPinState >> nGprsRegState >>
        nNormalRegState >> nPsAttachState;
    coder >> strManufacturer >> strModel >> strRevision >> strSerialNumber >> strImsi >> strMsisdn >>
        strHardwareVersion >> strOperator >> strSpName;
}
