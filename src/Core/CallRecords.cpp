#include "CallRecords.h"

void BLCallItem::encodeWithCoder(QDataStream& coder) const {
    coder << nIndex << nDir << nState << nMode << nMpty << nType;
    coder << strNumber;
}

void BLCallItem::initWithCoder(QDataStream& coder) {
    coder >> nIndex >> nDir >> nState >> nMode >> nMpty >> nType;
    coder >> strNumber;
}
