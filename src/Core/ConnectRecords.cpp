#include "ConnectRecords.h"

void BLConnectDialinfo::encodeWithCoder(QDataStream& coder) const {
    coder << static_cast<qint32>(authType) << strDialNumber << strAccountName << strPassword << strAPN
          << strDNS1 << strDNS2;
}

void BLConnectDialinfo::initWithCoder(QDataStream& coder) {
    qint32 type = 0;
    coder >> type >> strDialNumber >> strAccountName >> strPassword >> strAPN >> strDNS1 >> strDNS2;
    authType = type;
}
