#include "SatRecords.h"

namespace {

// Item identifiers are one octet on the card, so no menu holds more items. A damaged count is refused
// before anything is allocated for it.
constexpr qint32 kMaxMenuItems = 255;

void encodeItems(QDataStream& coder, const QList<BLSatMenuItem>& items) {
    coder << static_cast<qint32>(items.size());
    for (const BLSatMenuItem& item : items) {
        item.encodeWithCoder(coder);
    }
}

void decodeItems(QDataStream& coder, QList<BLSatMenuItem>& items) {
    items.clear();
    qint32 count = 0;
    coder >> count;
    if (coder.status() != QDataStream::Ok) {
        return;
    }
    if (count < 0 || count > kMaxMenuItems) {
        coder.setStatus(QDataStream::ReadCorruptData);
        return;
    }
    for (qint32 i = 0; i < count && coder.status() == QDataStream::Ok; ++i) {
        BLSatMenuItem item;
        item.initWithCoder(coder);
        items.append(item);
    }
}

} // namespace

void BLSatMenuItem::encodeWithCoder(QDataStream& coder) const {
    coder << nItemId << strText;
}

void BLSatMenuItem::initWithCoder(QDataStream& coder) {
    coder >> nItemId >> strText;
}

void BLSatCommand::encodeWithCoder(QDataStream& coder) const {
    coder << nCommand << nType << nDefaultItem << nFormat << nMinLength << nMaxLength;
    coder << strText << strDefaultText;
    encodeItems(coder, lstItems);
}

void BLSatCommand::initWithCoder(QDataStream& coder) {
    coder >> nCommand >> nType >> nDefaultItem >> nFormat >> nMinLength >> nMaxLength;
    coder >> strText >> strDefaultText;
    decodeItems(coder, lstItems);
}

void BLSatResponse::encodeWithCoder(QDataStream& coder) const {
    coder << nCommand << nResult << nItemId << strText;
}

void BLSatResponse::initWithCoder(QDataStream& coder) {
    coder >> nCommand >> nResult >> nItemId >> strText;
}
