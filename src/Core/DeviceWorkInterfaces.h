#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

// The two ends of the wire between the GUI thread and the worker thread. The worker implements the
// request side, the GUI thread's agent the response side; the implementations carry each call over to
// the other thread (requests and user info travel as copies). An empty user-info map means "none".

class DeviceWorkRequestInterface {
public:
    virtual ~DeviceWorkRequestInterface() = default;

    // Carries the request out and returns the response dictionary; the caller waits.
    virtual QVariantMap sysncRequest(const QString& name, const QVariantMap& userInfo) = 0;

    // Returns at once; the answer comes back through DeviceWorkResponseInterface::asyncResponse with the
    // same name, and sender as the receiver. "REQUESTER" in the answer is the sender's class name.
    virtual void asyncRequest(const QString& name, QObject* sender, const QVariantMap& userInfo) = 0;
};

class DeviceWorkResponseInterface {
public:
    virtual ~DeviceWorkResponseInterface() = default;

    // An answer to an asynchronous request, or a report the worker sends on its own (no receiver).
    virtual void asyncResponse(const QString& name, QObject* receiver, const QVariantMap& responseData) = 0;
};

// The responder's side of the hand-over: the worker calls it once, on the responder's thread, with itself.
class WorkServerReceiver {
public:
    virtual ~WorkServerReceiver() = default;
    virtual void setServer(QObject* server) = 0;
};
