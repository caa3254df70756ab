#include "SmsRecords.h"

#include <QHash>

#include <mutex>

namespace {

// The objects that coded filter records named, by a serial number of their own. A token that is unknown
// here, or whose object is gone, decodes as null, so a stale or damaged stream never yields a dangling
// pointer or another object.
class TargetTokens {
public:
    quint64 tokenFor(QObject* object) {
        if (!object) {
            return 0;
        }
        std::lock_guard guard(_lock);
        quint64 token = 0;
        for (auto it = _objects.begin(); it != _objects.end();) {
            if (it.value().isNull()) {
                it = _objects.erase(it);
                continue;
            }
            if (it.value().data() == object) {
                token = it.key();
            }
            ++it;
        }
        if (token == 0) {
            token = ++_lastToken;
            _objects.insert(token, QPointer<QObject>(object));
        }
        return token;
    }

    QPointer<QObject> objectFor(quint64 token) {
        std::lock_guard guard(_lock);
        return _objects.value(token);
    }

private:
    std::mutex _lock;
    quint64 _lastToken = 0;
    QHash<quint64, QPointer<QObject>> _objects;
};

TargetTokens& targetTokens() {
    static TargetTokens tokens;
    return tokens;
}

} // namespace

void BLSmsListItem::encodeWithCoder(QDataStream& coder) const {
    coder << nPacketType << nRef << nStoreIn << nTag << nType << nClass << nCompleted << nStatusReportStatus;
    coder << strAddress << dateTime << strContent;
}

void BLSmsListItem::initWithCoder(QDataStream& coder) {
    coder >> nPacketType >> nRef >> nStoreIn >> nTag >> nType >> nClass >> nCompleted >> nStatusReportStatus;
    coder >> strAddress >> dateTime >> strContent;
}

void BLSmsReceive::encodeWithCoder(QDataStream& coder) const {
    coder << nPacketType;
    SmsItem.encodeWithCoder(coder);
}

void BLSmsReceive::initWithCoder(QDataStream& coder) {
    coder >> nPacketType;
    SmsItem.initWithCoder(coder);
}

void BLSmsSendItem::encodeWithCoder(QDataStream& coder) const {
    coder << strNumber << strContent;
}

void BLSmsSendItem::initWithCoder(QDataStream& coder) {
    coder >> strNumber >> strContent;
}

void BLSmsValidPeriod::encodeWithCoder(QDataStream& coder) const {
    coder << bWeek << bDay << bHour;
}

void BLSmsValidPeriod::initWithCoder(QDataStream& coder) {
    coder >> bWeek >> bDay >> bHour;
}

void BLSmsStorageState::encodeWithCoder(QDataStream& coder) const {
    coder << nMeUsed << nMeTotal << nSimUsed << nSimTotal;
}

void BLSmsStorageState::initWithCoder(QDataStream& coder) {
    coder >> nMeUsed >> nMeTotal >> nSimUsed >> nSimTotal;
}

void BLSmsFilterConfig::encodeWithCoder(QDataStream& coder) const {
    coder << onORoff;
    coder << targetTokens().tokenFor(target.data()) << filterList;
}

void BLSmsFilterConfig::initWithCoder(QDataStream& coder) {
    quint64 token = 0;
    quint32 count = 0;
    coder >> onORoff;
    coder >> token >> count;
    target = token != 0 ? targetTokens().objectFor(token) : QPointer<QObject>();
    // Read as QDataStream writes a QStringList, but never reserve the count a damaged stream claims.
    filterList.clear();
    for (quint32 i = 0; i < count && coder.status() == QDataStream::Ok; ++i) {
        QString number;
        coder >> number;
        if (coder.status() == QDataStream::Ok) {
            filterList.append(number);
        }
    }
}
