#include "SMSStorage.h"

#include "AppConfig.h"
#include "CNSLog.h"
#include "DamagedFile.h"
#include "StoreFile.h"
#include "StoreLock.h"

#include <QFileInfo>
#include <QMetaType>
#include <QSet>

namespace {

// Who, what and when: a message keeps these through moves and delivery reports.
QString identity(const QVariantMap& message) {
    return message.value(SMS_KEY_NUMBERS).toStringList().join(QLatin1Char('\n')) + QLatin1Char('\x1f') +
           QString::number(message.value(SMS_KEY_CREATE_TIME).toDateTime().toSecsSinceEpoch()) +
           QLatin1Char('\x1f') + message.value(SMS_KEY_CONTENT).toString();
}

} // namespace

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
    StoreLock fileLock(_strFilePath);
    readFile();
}

void SMSStorage::readFile() {
    _dictFile = DamagedFile::readMap(_strFilePath);
    // A leftover of a killed write holds the last change: its messages are taken in where they are new.
    bool merged = false;
    const auto merge = [this, &merged](const QVariant& leftover) {
        QSet<QString> known;
        for (const Box& box : _boxes)
            for (const QVariant& entry : _dictFile.value(box.fileKey).toList())
                known.insert(identity(entry.toMap()));
        const QVariantMap saved = leftover.toMap();
        for (const Box& box : _boxes) {
            QVariantList list = _dictFile.value(box.fileKey).toList();
            for (const QVariant& entry : saved.value(box.fileKey).toList()) {
                if (entry.typeId() == QMetaType::QVariantMap && !known.contains(identity(entry.toMap()))) {
                    list.append(entry);
                    merged = true;
                }
            }
            _dictFile.insert(box.fileKey, list);
        }
    };
    StoreFile::recoverLeftovers(_strFilePath, merge, [this, &merged] {
        return !merged || StoreFile::write(_strFilePath, _dictFile);
    });
    qsizetype wrong = 0;
    for (Box& box : _boxes) {
        box.dictionaries.clear();
        const QVariant stored = _dictFile.value(box.fileKey);
        if (stored.typeId() == QMetaType::QVariantList) {
            for (const QVariant& entry : stored.toList()) {
                // Anything but a message dictionary in a box is dropped.
                if (entry.typeId() == QMetaType::QVariantMap) {
                    box.dictionaries.append(MessageItem::initWithDictionary(entry.toMap()));
                } else {
                    ++wrong;
                }
            }
        } else if (stored.isValid()) {
            ++wrong; // a box that is no list
        }
        _dictFile.insert(box.fileKey, QVariantList());
    }
    DamagedFile::reportWrongEntries(_strFilePath, QFileInfo(_strFilePath).fileName(), wrong);
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
    if (!findBox(item.getBoxType())) {
        return kUnknownBox;
    }
    StoreLock fileLock(_strFilePath);
    readFile();
    Box* box = findBox(item.getBoxType());
    box->dictionaries.append(item);
    box->items.append(item);
    return writeFile();
}

bool SMSStorage::removeFrom(Box& box, const MessageItem& item) {
    // By identity: the file keeps whole seconds, the caller's item may hold the milliseconds it was made
    // with. A copy, since the item's dictionary may itself be one of those removed.
    const QString wanted = identity(item.getMessageDictionary());
    const auto same = [&wanted](const MessageItem& entry) {
        return identity(entry.getMessageDictionary()) == wanted;
    };
    const auto removed = box.dictionaries.removeIf(same);
    box.items.removeIf(same);
    return removed > 0;
}

int SMSStorage::deletMessageItem(const MessageItem& item) {
    if (!findBox(item.getBoxType())) {
        return kUnknownBox;
    }
    StoreLock fileLock(_strFilePath);
    readFile();
    removeFrom(*findBox(item.getBoxType()), item);
    return writeFile();
}

int SMSStorage::moveMessageItem(const MessageItem& item, const QString& targetBox) {
    MessageItem moved = MessageItem::initWithDictionary(item.getMessageDictionary());
    moved.setBoxType(targetBox);
    return replaceMessageItem(item, moved);
}

int SMSStorage::replaceMessageItem(const MessageItem& item, const MessageItem& replacement) {
    if (!findBox(item.getBoxType()) || !findBox(replacement.getBoxType())) {
        return kUnknownBox;
    }
    StoreLock fileLock(_strFilePath);
    readFile();
    if (!removeFrom(*findBox(item.getBoxType()), item)) {
        return kNoSuchMessage;
    }
    Box* target = findBox(replacement.getBoxType());
    target->dictionaries.append(replacement);
    target->items.append(replacement);
    // All boxes are in the one file: this is a single rename, never a message in no box or in two.
    return writeFile();
}

int SMSStorage::saveMessageData() {
    StoreLock fileLock(_strFilePath);
    // Messages another process added since this store was read are kept.
    const QVariantMap onDisk = DamagedFile::readMap(_strFilePath);
    QSet<QString> held;
    for (const Box& box : _boxes)
        for (const MessageItem& entry : box.dictionaries)
            held.insert(identity(entry.getMessageDictionary()));
    for (Box& box : _boxes) {
        for (const QVariant& entry : onDisk.value(box.fileKey).toList()) {
            if (entry.typeId() == QMetaType::QVariantMap && !held.contains(identity(entry.toMap()))) {
                box.dictionaries.append(MessageItem::initWithDictionary(entry.toMap()));
                box.items.append(box.dictionaries.last());
            }
        }
    }
    return writeFile();
}

int SMSStorage::writeFile() {
    for (const Box& box : _boxes) {
        QVariantList list;
        list.reserve(box.dictionaries.size());
        for (const MessageItem& entry : box.dictionaries) {
            list.append(entry.getMessageDictionary());
        }
        _dictFile.insert(box.fileKey, list);
    }
    if (!StoreFile::write(_strFilePath, _dictFile)) {
        CNSLOG(2, "message save Error!!");
        return kSaveFailed;
    }
    return kOK;
}
