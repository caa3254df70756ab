#include "SMSExt.h"

#include <QSet>
#include <QVariantMap>

#include <algorithm>
#include <vector>

#include "AtSublayerInterface.h"
#include "CNSLog.h"
#include "DamagedFile.h"
#include "StoreFile.h"
#include "StoreLock.h"
#include "UserDataFolder.h"

namespace {

const QString kFileName = QStringLiteral("SmsInBoxPC.plist");
const QString kRef = QStringLiteral("SMS_REF");
const QString kPduLen = QStringLiteral("SMS_PDU_LEN");
const QString kPdu = QStringLiteral("SMS_PDU");
constexpr int kIndexLimit = 30000;
constexpr int kWriteAttempts = 3;

bool isInteger(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

// A record the store can use: a dictionary with an integer index and length and a string PDU.
bool readRecord(const QVariant& entry, TSMSRecordInPC& record) {
    if (entry.typeId() != QMetaType::QVariantMap)
        return false;
    const QVariantMap map = entry.toMap();
    const QVariant ref = map.value(kRef);
    const QVariant length = map.value(kPduLen);
    const QVariant pdu = map.value(kPdu);
    if (!isInteger(ref) || !isInteger(length) || pdu.typeId() != QMetaType::QString)
        return false;
    record.nIndex = ref.toInt();
    record.nPduLen = length.toInt();
    record.strPdu = pdu.toString().toStdString();
    return true;
}

// A message's identity in the store is its PDU as read from the modem: service centre, sender, time
// stamp and text. The modem's copy is deleted only after the store was written, so after a crash in
// between the same PDU comes again; it is then recognised and not stored twice.
int indexOfPdu(const QVariantList& entries, const QString& pdu) {
    for (const QVariant& entry : entries) {
        const QVariantMap map = entry.toMap();
        if (isInteger(map.value(kRef)) && map.value(kPdu).toString().compare(pdu, Qt::CaseInsensitive) == 0)
            return map.value(kRef).toInt();
    }
    return -1;
}

bool refuseEmpty(const QString& imsi) {
    if (!imsi.isEmpty())
        return false;
    CNSLOG(2, "IMSI is empty!!!");
    return true;
}

} // namespace

SMSExt& SMSExt::shared() {
    static SMSExt store;
    return store;
}

int SMSExt::registerWith(TInterfaceAtSublayer& sublayer) {
    return sublayer.SMSRegisterPCCallback(&shared(), &ListCallback, &SaveCallback, &DeleteCallback, 1);
}

QString SMSExt::filePath() const {
    return UserDataFolder::dataPath() + "/" + kFileName;
}

int SMSExt::list(const QString& imsi, std::list<TSMSRecordInPC>& records) {
    records.clear();
    if (refuseEmpty(imsi))
        return 1;
    QMutexLocker lock(&_mutex);
    StoreLock fileLock(filePath()); // only to pick up a leftover of a killed write
    const QVariantList entries = readUnderLock().value(imsi).toList();
    QSet<QString> seen;
    qsizetype wrong = 0;
    for (const QVariant& entry : entries) {
        TSMSRecordInPC record;
        if (!readRecord(entry, record)) {
            ++wrong;
            continue;
        }
        if (seen.contains(QString::fromStdString(record.strPdu).toUpper()))
            continue;
        seen.insert(QString::fromStdString(record.strPdu).toUpper());
        records.push_back(std::move(record));
    }
    DamagedFile::reportWrongEntries(filePath(), kFileName, wrong);
    return 0;
}

int SMSExt::save(const QString& imsi, const QString& pdu, int pduLength, int& index) {
    if (refuseEmpty(imsi))
        return 1;
    QMutexLocker lock(&_mutex);
    StoreLock fileLock(filePath());
    QVariantMap root = readUnderLock();
    QVariantList entries = root.value(imsi).toList();
    if (const int stored = indexOfPdu(entries, pdu); stored >= 0) {
        index = stored;
        return 0;
    }
    const int next = newIndex(entries);
    if (next < 0) {
        CNSLOG(2, "no free index in the inbox of %s", imsi.toUtf8().constData());
        return 1;
    }
    entries.append(QVariantMap{{kRef, next}, {kPduLen, pduLength}, {kPdu, pdu}});
    root.insert(imsi, entries);
    if (!writeFile(root))
        return 1;
    index = next;
    return 0;
}

int SMSExt::remove(const QString& imsi, int index) {
    if (refuseEmpty(imsi))
        return 1;
    QMutexLocker lock(&_mutex);
    StoreLock fileLock(filePath());
    QVariantMap root = readUnderLock();
    QVariantList entries = root.value(imsi).toList();
    const auto before = entries.size();
    entries.removeIf([index](const QVariant& entry) {
        const QVariant ref = entry.toMap().value(kRef);
        return isInteger(ref) && ref.toInt() == index;
    });
    if (entries.size() == before)
        return 1;
    root.insert(imsi, entries);
    return writeFile(root) ? 0 : 1;
}

int SMSExt::newIndex(const QVariantList& records) {
    std::vector<qint64> refs;
    for (const QVariant& entry : records) {
        const QVariant ref = entry.toMap().value(kRef);
        if (isInteger(ref))
            refs.push_back(ref.toLongLong());
    }
    if (refs.empty())
        return 1;
    std::sort(refs.begin(), refs.end());
    if (refs.back() < kIndexLimit)
        return static_cast<int>(std::max<qint64>(refs.back(), 0) + 1);
    for (std::size_t i = 0; i + 1 < refs.size(); ++i) {
        if (refs[i + 1] - refs[i] > 1 && refs[i] + 1 >= 0 && refs[i] + 1 <= kIndexLimit)
            return static_cast<int>(refs[i] + 1);
    }
    return -1;
}

QVariantMap SMSExt::readUnderLock() const {
    QVariantMap root = DamagedFile::readMap(filePath());
    // A leftover of a killed write may hold messages already deleted on the modem: merge them back.
    const auto merge = [&root](const QVariant& leftover) {
        const QVariantMap saved = leftover.toMap();
        for (auto it = saved.begin(); it != saved.end(); ++it) {
            QVariantList entries = root.value(it.key()).toList();
            for (const QVariant& entry : it.value().toList()) {
                TSMSRecordInPC record;
                const QString pdu = entry.toMap().value(kPdu).toString();
                const int next = newIndex(entries);
                if (!readRecord(entry, record) || indexOfPdu(entries, pdu) >= 0 || next < 0)
                    continue;
                entries.append(QVariantMap{{kRef, next}, {kPduLen, record.nPduLen}, {kPdu, pdu}});
            }
            root.insert(it.key(), entries);
        }
    };
    StoreFile::recoverLeftovers(filePath(), merge, [this, &root] { return writeFile(root); });
    return root;
}

bool SMSExt::writeFile(const QVariantMap& root) const {
    for (int attempt = 0; attempt < kWriteAttempts; ++attempt) {
        if (StoreFile::write(filePath(), root))
            return true;
    }
    CNSLOG(2, "file write error!!!");
    return false;
}

int SMSExt::ListCallback(void* context, const char* imsi, std::list<TSMSRecordInPC>& records) {
    if (context == nullptr)
        return 1;
    return static_cast<SMSExt*>(context)->list(QString::fromUtf8(imsi != nullptr ? imsi : ""), records);
}

int SMSExt::SaveCallback(void* context, const char* imsi, const char* pdu, int tpduLength, int& index) {
    if (context == nullptr || pdu == nullptr)
        return 1;
    return static_cast<SMSExt*>(context)->save(QString::fromUtf8(imsi != nullptr ? imsi : ""),
                                               QString::fromLatin1(pdu), tpduLength, index);
}

int SMSExt::DeleteCallback(void* context, const char* imsi, int index) {
    if (context == nullptr)
        return 1;
    return static_cast<SMSExt*>(context)->remove(QString::fromUtf8(imsi != nullptr ? imsi : ""), index);
}
