#pragma once

#include "DeviceWorkInterfaces.h"
#include "NotificationCenter.h"
#include "WorkMessageNames.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <atomic>

// Keys of the request and response dictionaries.
inline const QString VALUE_OBJECT = QStringLiteral("VALUE_OBJECT");     // argument or result
inline const QString ERROR_CODE = QStringLiteral("ERROR_CODE");         // result code; absent means 0
inline const QString SUB_ERROR_CODE = QStringLiteral("SUB_ERROR_CODE"); // finer code; absent means 0
inline const QString REQUESTER = QStringLiteral("REQUESTER");           // class name of the sender
inline const QString USER_INFO = QStringLiteral("USER_INFO");           // the request's own user info

// Application result codes, the integer under "ERROR_CODE". Any other non-zero value is an AT sublayer
// code passed through unchanged.
inline constexpr qint32 WORKER_OK = 0;
inline constexpr qint32 WORKER_ERR_GENERAL = 1;  // AT sublayer call, sublayer creation or dial-up failed
inline constexpr qint32 WORKER_ERR_TIME_OUT = 2; // the serial channel timed out
inline constexpr qint32 WORKER_ERR_PARAMETER_NULL = 3; // the request came without its argument
inline constexpr qint32 WORKER_ERR_NOT_POSTED = 25;    // a response that is never posted to the modules
inline constexpr qint32 WORKER_ERR_NO_DATA_DEVICE = 27;
inline constexpr qint32 WORKER_ERR_COM_OPEN_FAILED = 28;
inline constexpr qint32 WORKER_ERR_SWITCH_DISK_ERROR = 30; // also a cancelled AT command
inline constexpr qint32 WORKER_ERR_NO_AT_LAYER_INIT_COMM_FAILED = 31;
inline constexpr qint32 WORKER_ERR_NO_TARGET = 32;         // sendASyncWorkMessage without target or sender
inline constexpr qint32 WORKER_ERR_SET_NETWORK_MODE = 33;  // the modem refused the network mode
inline constexpr qint32 WORKER_ERR_INVALID_MESSAGE = 35;   // unknown request name
inline constexpr qint32 WORKER_ERR_INVALID_REPORT = 36;    // unsolicited report of an unknown kind
inline constexpr qint32 WORKER_ERR_SERVICE_NOT_FOUND = 37; // modem initialisation found no modem service
inline constexpr qint32 WORKER_ERR_NO_DEV_NAME = 38;
inline constexpr qint32 WORKER_ERR_NO_MODE_DEV = 39;
inline constexpr qint32 WORKER_ERR_SMS_FILTERED = 44; // an incoming SMS taken by a filtering client
// The request's argument was refused before anything reached the modem (a malformed PIN, a number with
// letters, a text that an AT parameter cannot carry): nothing was sent and no SIM attempt was used.
inline constexpr qint32 WORKER_ERR_INVALID_ARGUMENT = 45;
// The stick has no command for this (a toolkit, GPS or band selection that only some makers' sticks have):
// nothing was sent.
inline constexpr qint32 WORKER_ERR_NOT_SUPPORTED = 46;

// Asynchronous requests sent and not yet answered. Sending through sendASyncWorkMessage counts up, every
// delivered answer counts down, but sendworkMessage's asynchronous path does not count up and a dropped
// request never counts down: the count can go below 0 or stay high for good. That is kept as it is.
extern std::atomic<qint32> g_QueueItemCount;

// What a module holds to talk to the worker: it sends requests on behalf of its sender object and
// subscribes that object to the answers, which arrive as notifications named after the request in the
// default notification centre. Neither the sender nor the target is owned; a sender that is destroyed
// counts as missing.
class WorkNotification {
public:
    WorkNotification() = default;
    // Stores the sender and the worker's request end (the target).
    WorkNotification(QObject* sender, DeviceWorkRequestInterface* target);
    void initWithSenderTargetObject(QObject* sender, DeviceWorkRequestInterface* target);

    // Sends an asynchronous request and counts it. Returns 32, sending nothing, without a target or a
    // sender; 0 otherwise.
    int sendASyncWorkMessage(const QString& name, const QVariantMap& userInfo);

    // isSyncMessage set: waits for the worker and returns its response dictionary (with "ERROR_CODE" set
    // on failure); nothing is posted or counted. Clear: sends the request asynchronously without checks or
    // counting and returns an empty map. Without a target nothing is sent either way.
    QVariantMap sendworkMessage(const QString& name, const QVariantMap& userInfo, bool isSyncMessage);

    // Subscribes the sender to the answers posted under name (from any object); the handler stands in
    // for the sender's selector. unregeditNotifySelector removes that subscription.
    void regeditNotifySelector(const QString& name, NotificationHandler handler);
    void unregeditNotifySelector(const QString& name);

    QObject* sender() const { return _sender.data(); }
    DeviceWorkRequestInterface* target() const { return _toTarget; }

    // Plain dictionary access. Storing an invalid value or a null requester removes the key.
    static qint32 GetErrorCode(const QVariantMap& dictionary);
    static void SetErrorCode(QVariantMap& dictionary, qint32 errorCode);
    static qint32 GetSubErrorCode(const QVariantMap& dictionary);
    static void SetSubErrorCode(QVariantMap& dictionary, qint32 errorCode);
    static QVariant GetValueObject(const QVariantMap& dictionary);
    static void SetValueObject(QVariantMap& dictionary, const QVariant& value);
    static QString GetRequester(const QVariantMap& dictionary);
    static void SetRequester(QVariantMap& dictionary, const QString& requester);
    static void SetUserInfo(QVariantMap& dictionary, const QVariantMap& userInfo);
    // Not the counterpart of SetUserInfo: the "VALUE_OBJECT" of the stored user info, i.e. the argument of
    // the request this response answers; invalid when either is missing.
    static QVariant GetUserInfo(const QVariantMap& dictionary);

    static void reduceQueueItemCount();
    static qint32 getQueueItemCount();

    // The GUI thread's handling of one answer or report from the worker (asyncResponse): counts the
    // answer down, except for the reports "MESSAGE_RPT_RECEIVE_SMS", "MESSAGE_RPT_SMS_RELIST" and
    // "MESSAGE_USB_UNPLUGGED"; then posts it under name with poster as the object, unless its code is 25.
    // Returns whether it was posted.
    static bool deliverResponse(const QString& name, const QVariantMap& responseData, QObject* poster,
                                NotificationCenter& center = NotificationCenter::defaultCenter());

private:
    DeviceWorkRequestInterface* _toTarget = nullptr;
    QPointer<QObject> _sender;
};
