#pragma once

#include <QMetaType>
#include <QString>
#include <QVariantMap>

// One connection profile. A new profile has empty texts, authentication type 0 and no SPN or DNS
// servers (null strings); only the predefined operator profiles carry those three.
//
// The user lists store a profile as a dictionary: "ACCOUNT", "MCCMNC", "DIALNUM", "USER_NAME",
// "KEY_PASSWORD", "APN", "AUTHTYPE" (integer), "PROXY". SPN and DNS servers are left out of it.
struct APNInfo {
    QString strAccount = QStringLiteral("");
    QString strMCCMNC = QStringLiteral("");
    QString strDialNum = QStringLiteral("");
    QString strUserName = QStringLiteral("");
    QString strPassword = QStringLiteral("");
    QString strApn = QStringLiteral("");
    QString strSPN;
    qint32 nAuthType = 0;
    QString strDNS1;
    QString strDNS2;
    QString strProxy = QStringLiteral("");

    QVariantMap toDictionary() const;
    // A key that is missing from the dictionary leaves a null string (0 for "AUTHTYPE").
    static APNInfo fromDictionary(const QVariantMap& dictionary);
    // A stored profile names its account and APN, its text fields are strings and its auth type a number.
    static bool isWellFormed(const QVariant& entry);

    bool operator==(const APNInfo& other) const = default;
};

Q_DECLARE_METATYPE(APNInfo)
