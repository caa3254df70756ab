#include "APNInfo.h"

namespace {

const QString kAccount = QStringLiteral("ACCOUNT");
const QString kMCCMNC = QStringLiteral("MCCMNC");
const QString kDialNum = QStringLiteral("DIALNUM");
const QString kUserName = QStringLiteral("USER_NAME");
const QString kPassword = QStringLiteral("KEY_PASSWORD");
const QString kApn = QStringLiteral("APN");
const QString kAuthType = QStringLiteral("AUTHTYPE");
const QString kProxy = QStringLiteral("PROXY");

QString stringValue(const QVariantMap& dictionary, const QString& key) {
    const auto it = dictionary.constFind(key);
    return it == dictionary.cend() ? QString() : it.value().toString();
}

} // namespace

QVariantMap APNInfo::toDictionary() const {
    QVariantMap dictionary;
    dictionary.insert(kAccount, strAccount);
    dictionary.insert(kMCCMNC, strMCCMNC);
    dictionary.insert(kDialNum, strDialNum);
    dictionary.insert(kUserName, strUserName);
    dictionary.insert(kPassword, strPassword);
    dictionary.insert(kApn, strApn);
    dictionary.insert(kAuthType, nAuthType);
    dictionary.insert(kProxy, strProxy);
    return dictionary;
}

bool APNInfo::isWellFormed(const QVariant& entry) {
    if (entry.typeId() != QMetaType::QVariantMap) {
        return false;
    }
    const QVariantMap dictionary = entry.toMap();
    if (!dictionary.contains(kAccount) || !dictionary.contains(kApn)) {
        return false;
    }
    for (const QString& key : {kAccount, kMCCMNC, kDialNum, kUserName, kPassword, kApn, kProxy}) {
        const auto it = dictionary.constFind(key);
        if (it != dictionary.cend() && it.value().typeId() != QMetaType::QString) {
            return false;
        }
    }
    const auto authType = dictionary.constFind(kAuthType);
    bool number = true;
    if (authType != dictionary.cend()) {
        authType.value().toString().toInt(&number);
    }
    return number;
}

APNInfo APNInfo::fromDictionary(const QVariantMap& dictionary) {
    APNInfo info;
    info.strAccount = stringValue(dictionary, kAccount);
    info.strMCCMNC = stringValue(dictionary, kMCCMNC);
    info.strDialNum = stringValue(dictionary, kDialNum);
    info.strUserName = stringValue(dictionary, kUserName);
    info.strPassword = stringValue(dictionary, kPassword);
    info.strApn = stringValue(dictionary, kApn);
    info.nAuthType = dictionary.value(kAuthType).toInt();
    info.strProxy = stringValue(dictionary, kProxy);
    return info;
}
