#include "SMS/SMSExt.h"

#include <QVariantMap>

#include <algorithm>
#include <vector>

#include "AtSublayerInterface.h"
#include "CNSLog.h"
#include "DamagedFile.h"
#include "PropertyList.h"
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
    return UserDataFolder::configPath() + "/" + kFileName;
}

int SMSExt::list(const QString& imsi, std::list<TSMSRecordInPC>& records) {
    records.clear();
    if (refuseEmpty(imsi))
        return 1;
    QMutexLocker lock(&_mutex);
    const QVariantList entries = DamagedFile::readMap(filePath()).value(imsi).toList();
    for (const QVariant& entry : entries) {
        TSMSRecordInPC record;
        if (readRecord(entry, record))
            records.push_back(std::move(record));
    }
    return 0;
}

int SMSExt::save(const QString& imsi, const QString& pdu, int pduLength, int& index) {
    if (refuseEmpty(imsi))
        return 1;
    QMutexLocker lock(&_mutex);
    QVariantMap root = DamagedFile::readMap(filePath());
    QVariantList entries = root.value(imsi).toList();
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
    QVariantMap root = DamagedFile::readMap(filePath());
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

bool SMSExt::writeFile(const QVariantMap& root) const {
    for (int attempt = 0; attempt < kWriteAttempts; ++attempt) {
        if (PropertyList::write(filePath(), root))
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
