#include "PhonebookRecords.h"

void BLPbItem::encodeWithCoder(QDataStream& coder) const {
    coder << nStore << nIndex;
    coder << strName << strNumber;
}

void BLPbItem::initWithCoder(QDataStream& coder) {
    coder >> nStore >> nIndex;
    coder >> strName >> strNumber;
}

void BLPBNewItem::encodeWithCoder(QDataStream& coder) const {
    coder << nStoreIn;
    coder << strName << strNumber;
}

void BLPBNewItem::initWithCoder(QDataStream& coder) {
    coder >> nStoreIn;
    coder >> strName >> strNumber;
}

void BLPBDeleteItem::encodeWithCoder(QDataStream& coder) const {
    coder << nStoreIn << nIndex;
}

void BLPBDeleteItem::initWithCoder(QDataStream& coder) {
    coder >> nStoreIn >> nIndex;
}

void BLPBStorageInfo::encodeWithCoder(QDataStream& coder) const {
    coder << nSimTotal << nSimUsed << nMeTotal << nMeUsed;
}

void BLPBStorageInfo::initWithCoder(QDataStream& coder) {
    coder >> nSimTotal >> nSimUsed >> nMeTotal >> nMeUsed;
}

void BLPbConstraint::encodeWithCoder(QDataStream& coder) const {
    coder << nMeMaxNumberLen << nMeMaxNameLen << nSimMaxNumberLen << nSimMaxNameLen;
}

void BLPbConstraint::initWithCoder(QDataStream& coder) {
    coder >> nMeMaxNumberLen >> nMeMaxNameLen >> nSimMaxNumberLen >> nSimMaxNameLen;
}
