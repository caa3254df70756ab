#pragma once

#include "RecordCoding.h"

#include <QDateTime>
#include <QMetaType>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

// SMS requests and results. The integer fields carry the AT sublayer's message codes one to one.

// Where a listed message is kept (nStoreIn), and the storage codes of "MESSAGE_SMS_SET_PREFERRED_STORAGE".
namespace SmsStorage {
inline constexpr qint32 kSim = 1;
inline constexpr qint32 kModem = 2;
inline constexpr qint32 kPc = 4; // the computer-side inbox
} // namespace SmsStorage

// Read tags of a listed message (nTag).
namespace SmsTag {
inline constexpr qint32 kUnread = 0;
inline constexpr qint32 kRead = 1;
inline constexpr qint32 kUnsent = 2;
inline constexpr qint32 kSent = 3;
} // namespace SmsTag

// What a listed message is (nType): a received message, a status report, a sent one.
namespace SmsType {
inline constexpr qint32 kDeliver = 0;
inline constexpr qint32 kStatusReport = 2;
inline constexpr qint32 kSubmit = 4;
} // namespace SmsType

// One message of the "MESSAGE_SMS_GET_LIST" result, and the payload of "MESSAGE_RPT_RECEIVE_SMS".
// strAddress is at most 21 characters (the business layer caps it).
struct BLSmsListItem {
    qint32 nPacketType = 0;
    qint32 nRef = 0;
    qint32 nStoreIn = 0;
    qint32 nTag = 0;
    qint32 nType = 0;
    qint32 nClass = 0;
    qint32 nCompleted = 0;
    qint32 nStatusReportStatus = 0;
    QString strAddress;
    QDateTime dateTime;
    QString strContent;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSmsListItem& other) const = default;
};

// A received message with its packet type. SmsItem is always a message of its own, empty when new.
struct BLSmsReceive {
    qint32 nPacketType = 0;
    BLSmsListItem SmsItem;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSmsReceive& other) const = default;
};

// Argument of "MESSAGE_SMS_SEND".
struct BLSmsSendItem {
    QString strNumber;
    QString strContent;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSmsSendItem& other) const = default;
};

// Argument of "MESSAGE_SMS_SET_VALID_PERIOD": weeks, days and hours of the validity period.
struct BLSmsValidPeriod {
    quint8 bWeek = 0;
    quint8 bDay = 0;
    quint8 bHour = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSmsValidPeriod& other) const = default;
};

// Result of "MESSAGE_SMS_GET_STORAGE_STATE".
struct BLSmsStorageState {
    qint32 nMeUsed = 0;
    qint32 nMeTotal = 0;
    qint32 nSimUsed = 0;
    qint32 nSimTotal = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSmsStorageState& other) const = default;
};

// Argument of "MESSAGE_CONFIG_FILTER_SMS": onORoff set claims the messages from the numbers of filterList
// for target (by its class name), clear gives them back. filterList starts empty, never absent.
// target is not owned. Coded, it is a token that only this process can turn back into the object, and
// only while the object lives; otherwise it decodes as null.
struct BLSmsFilterConfig {
    bool onORoff = false;
    QPointer<QObject> target;
    QStringList filterList;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSmsFilterConfig& other) const = default;
};

Q_DECLARE_METATYPE(BLSmsListItem)
Q_DECLARE_METATYPE(BLSmsReceive)
Q_DECLARE_METATYPE(BLSmsSendItem)
Q_DECLARE_METATYPE(BLSmsValidPeriod)
Q_DECLARE_METATYPE(BLSmsStorageState)
Q_DECLARE_METATYPE(BLSmsFilterConfig)
