#include "SMSStorage.h"

#include "AppConfig.h"
#include "CNSLog.h"
#include "DamagedFile.h"
#include "PropertyList.h"

#include <QMetaType>

SMSStorage::SMSStorage() {
    init();
}

SMSStorage::SMSStorage(const QString& imsi) {
    if (!imsi.isEmpty()) {
        _strIMSI = imsi;
    }
    init();
}

void SMSStorage::init() {
    _boxes[0].typeName = SMS_BOX_OUTBOX;
    _boxes[0].fileKey = QStringLiteral("OUTBOX");
    _boxes[1].typeName = SMS_BOX_SENDBOX;
    _boxes[1].fileKey = QStringLiteral("SENDBOX");
    _boxes[2].typeName = SMS_BOX_DRAFT;
    _boxes[2].fileKey = QStringLiteral("DRAFT");
    _boxes[3].typeName = SMS_BOX_ACHIVE;
    _boxes[3].fileKey = QStringLiteral("ACHIEVEBOX");
    _strFilePath =
        QStringLiteral("%1/%2").arg(AppConfig::getUserDataPath(), QStringLiteral("LocalSMS.plist"));
    loadSMS();
}

void SMSStorage::loadSMS() {
    if (!_strIMSI.isEmpty()) {
        _strFilePath = QStringLiteral("%1/%2").arg(AppConfig::getUserDataPath(),
                                                   QStringLiteral("SMSInBox_%1").arg(_strIMSI));
    }
    _dictFile = DamagedFile::readMap(_strFilePath);
    for (Box& box : _boxes) {
        box.dictionaries.clear();
        const QVariant stored = _dictFile.value(box.fileKey);
        if (stored.typeId() == QMetaType::QVariantList) {
            for (const QVariant& entry : stored.toList()) {
                // Anything but a message dictionary in a box is dropped.
                if (entry.typeId() == QMetaType::QVariantMap) {
                    box.dictionaries.append(MessageItem::initWithDictionary(entry.toMap()));
                }
            }
        }
        _dictFile.insert(box.fileKey, QVariantList());
    }
    for (Box& box : _boxes) {
        initMessageItemListByBox(box);
    }
}

void SMSStorage::initMessageItemListByBox(Box& box) {
    box.items = box.dictionaries;
}

const SMSStorage::Box* SMSStorage::findBox(const QString& boxType) const {
    for (const Box& box : _boxes) {
        if (box.typeName == boxType) {
            return &box;
        }
    }
    return nullptr;
}

SMSStorage::Box* SMSStorage::findBox(const QString& boxType) {
    return const_cast<Box*>(std::as_const(*this).findBox(boxType));
}

std::optional<QList<MessageItem>> SMSStorage::getMessageListByBoxType(const QString& boxType) const {
    const Box* box = findBox(boxType);
    if (!box) {
        return std::nullopt;
    }
    return box->items;
}

std::optional<QVariantList> SMSStorage::getMessageDictListByBoxType(const QString& boxType) const {
    const Box* box = findBox(boxType);
    if (!box) {
        return std::nullopt;
    }
    QVariantList list;
    for (const MessageItem& entry : box->dictionaries) {
        list.append(entry.getMessageDictionary());
    }
    return list;
}

QList<MessageItem> SMSStorage::getOutBoxList() const {
    return _boxes[0].items;
}

QList<MessageItem> SMSStorage::getSendBoxList() const {
    return _boxes[1].items;
}

QList<MessageItem> SMSStorage::getDarftList() const {
    return _boxes[2].items;
}

QList<MessageItem> SMSStorage::getAchieveBoxList() const {
    return _boxes[3].items;
}

int SMSStorage::saveMessageItem(const MessageItem& item) {
    Box* box = findBox(item.getBoxType());
    if (!box) {
        return kUnknownBox;
    }
    box->dictionaries.append(item);
    box->items.append(item);
    return saveMessageData();
}

int SMSStorage::deletMessageItem(const MessageItem& item) {
    Box* box = findBox(item.getBoxType());
    if (!box) {
        return kUnknownBox;
    }
    // A copy: the item's dictionary may itself be one of those removed.
    const QVariantMap content = item.getMessageDictionary();
    box->dictionaries.removeIf(
        [&content](const MessageItem& entry) { return entry.getMessageDictionary() == content; });
    box->items.removeIf([&item](const MessageItem& entry) { return entry.isSameItem(item); });
    return saveMessageData();
}

int SMSStorage::saveMessageData() {
    for (const Box& box : _boxes) {
        QVariantList list;
        list.reserve(box.dictionaries.size());
        for (const MessageItem& entry : box.dictionaries) {
            list.append(entry.getMessageDictionary());
        }
        _dictFile.insert(box.fileKey, list);
    }
    if (!PropertyList::write(_strFilePath, _dictFile)) {
        CNSLOG(2, "message save Error!!");
        return kSaveFailed;
    }
    return kOK;
}
