#include "NetworkRecords.h"

void BLNetworkInfo::encodeWithCoder(QDataStream& coder) const {
    coder << nMode << nFormat << nAcT << nDisplayMask << nRssi << nRoamState << nBearer << nGprsState;
    coder << strOperator << strSpName;
}

void BLNetworkInfo::initWithCoder(QDataStream& coder) {
    coder >> nMode >> nFormat >> nAcT >> nDisplayMask >> nRssi >> nRoamState >> nBearer >> nGprsState;
    coder >> strOperator >> strSpName;
}

void BLNetworkListItem::encodeWithCoder(QDataStream& coder) const {
    coder << mode << nState << nAcT;
    coder << strLongAlpha << strShortAlpha << strNumericAlpha;
}

void BLNetworkListItem::initWithCoder(QDataStream& coder) {
    coder >> mode >> nState >> nAcT;
    coder >> strLongAlpha >> strShortAlpha >> strNumericAlpha;
}

void BLNetworkSet::encodeWithCoder(QDataStream& coder) const {
    coder << nMask << nMode << nFormat << nAcT;
    coder << strOperator;
}

void BLNetworkSet::initWithCoder(QDataStream& coder) {
    coder >> nMask >> nMode >> nFormat >> nAcT;
    coder >> strOperator;
}

void BLNetRegState::encodeWithCoder(QDataStream& coder) const {
    coder << nType << nState;
}

void BLNetRegState::initWithCoder(QDataStream& coder) {
    coder >> nType >> nState;
}
