#include "WorkNotification.h"

#include "BLRecords.h"
#include "CNSLog.h"

std::atomic<qint32> g_QueueItemCount{0};

namespace {

// An object as the log shows it: "<ClassName: 0x...>", or "(null)".
QString describe(const void* object, const QObject* qobject) {
    if (!object) {
        return QStringLiteral("(null)");
    }
    const char* className = qobject ? qobject->metaObject()->className() : "DeviceWorkRequestInterface";
    return QString::asprintf("<%s: %p>", className, object);
}

QString describe(DeviceWorkRequestInterface* target) {
    return describe(target, dynamic_cast<const QObject*>(target));
}

QString describe(const QObject* object) {
    return describe(object, object);
}

} // namespace

WorkNotification::WorkNotification(QObject* sender, DeviceWorkRequestInterface* target) {
    initWithSenderTargetObject(sender, target);
}

void WorkNotification::initWithSenderTargetObject(QObject* sender, DeviceWorkRequestInterface* target) {
    registerRecordMetaTypes();
    _sender = sender;
    _toTarget = target;
}

int WorkNotification::sendASyncWorkMessage(const QString& name, const QVariantMap& userInfo) {
    QObject* const sender = _sender.data();
    if (!_toTarget || !sender) {
        CNSLOG(2, "_toTarget = %s  _sender = %s", qPrintable(describe(_toTarget)),
               qPrintable(describe(sender)));
        return WORKER_ERR_NO_TARGET;
    }
    const qint32 count = ++g_QueueItemCount;
    CNSLOG(0, "Send Message [IN]:%s", qPrintable(name));
    CNSLOG(4, "g_QueueItemCount = %d", count);
    _toTarget->asyncRequest(name, sender, userInfo);
    return WORKER_OK;
}

QVariantMap WorkNotification::sendworkMessage(const QString& name, const QVariantMap& userInfo,
                                              bool isSyncMessage) {
    if (!_toTarget) {
        return {};
    }
    if (isSyncMessage) {
        return _toTarget->sysncRequest(name, userInfo);
    }
    _toTarget->asyncRequest(name, _sender.data(), userInfo);
    return {};
}

void WorkNotification::regeditNotifySelector(const QString& name, NotificationHandler handler) {
    if (QObject* const sender = _sender.data()) {
        NotificationCenter::defaultCenter().addObserver(name, sender, std::move(handler));
    }
}

void WorkNotification::unregeditNotifySelector(const QString& name) {
    if (QObject* const sender = _sender.data()) {
        NotificationCenter::defaultCenter().removeObserver(sender, name);
    }
}

qint32 WorkNotification::GetErrorCode(const QVariantMap& dictionary) {
    return dictionary.value(ERROR_CODE).toInt();
}

void WorkNotification::SetErrorCode(QVariantMap& dictionary, qint32 errorCode) {
    dictionary.insert(ERROR_CODE, errorCode);
}

qint32 WorkNotification::GetSubErrorCode(const QVariantMap& dictionary) {
    return dictionary.value(SUB_ERROR_CODE).toInt();
}

void WorkNotification::SetSubErrorCode(QVariantMap& dictionary, qint32 errorCode) {
    dictionary.insert(SUB_ERROR_CODE, errorCode);
}

QVariant WorkNotification::GetValueObject(const QVariantMap& dictionary) {
    return dictionary.value(VALUE_OBJECT);
}

void WorkNotification::SetValueObject(QVariantMap& dictionary, const QVariant& value) {
    if (value.isValid()) {
        dictionary.insert(VALUE_OBJECT, value);
    } else {
        dictionary.remove(VALUE_OBJECT);
    }
}

QString WorkNotification::GetRequester(const QVariantMap& dictionary) {
    return dictionary.value(REQUESTER).toString();
}

void WorkNotification::SetRequester(QVariantMap& dictionary, const QString& requester) {
    if (requester.isNull()) {
        dictionary.remove(REQUESTER);
    } else {
        dictionary.insert(REQUESTER, requester);
    }
}

void WorkNotification::SetUserInfo(QVariantMap& dictionary, const QVariantMap& userInfo) {
    dictionary.insert(USER_INFO, userInfo);
}

QVariant WorkNotification::GetUserInfo(const QVariantMap& dictionary) {
    return dictionary.value(USER_INFO).toMap().value(VALUE_OBJECT);
}

void WorkNotification::reduceQueueItemCount() {
    const qint32 count = --g_QueueItemCount;
    CNSLOG(4, "g_QueueItemCount = %d", count);
}

qint32 WorkNotification::getQueueItemCount() {
    return g_QueueItemCount;
}

bool WorkNotification::deliverResponse(const QString& name, const QVariantMap& responseData, QObject* poster,
                                       NotificationCenter& center) {
    CNSLOG(4, "[OUT] message = %s", qPrintable(name));
    // These are reports from the worker, not answers to a counted request.
    if (name != MESSAGE_RPT_RECEIVE_SMS && name != MESSAGE_RPT_SMS_RELIST && name != MESSAGE_USB_UNPLUGGED) {
        reduceQueueItemCount();
    }
    if (GetErrorCode(responseData) == WORKER_ERR_NOT_POSTED) {
        return false;
    }
    center.post(name, poster, responseData);
    return true;
}
