#pragma once

#include <QMetaObject>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

// What an observer receives: the notification's name, the object that posted it, and its user info.
struct Notification {
    QString name;
    QObject* object = nullptr;
    QVariantMap userInfo;
};

using NotificationHandler = std::function<void(const Notification&)>;

// The process's notification centre: observers subscribe a handler to a notification name, and post()
// calls the matching handlers at once, in the order they subscribed, on the posting thread.
//
// Registration and removal are safe from any thread. A handler may post, subscribe or unsubscribe; an
// observer removed while a notification is being delivered is not called from then on, and one added
// during a delivery first hears the next notification. Subscribing twice delivers twice. A QObject
// receiver is unsubscribed by itself when it is destroyed; any other receiver must unsubscribe before
// it goes away.
class NotificationCenter {
public:
    NotificationCenter() = default;
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    static NotificationCenter& defaultCenter();

    // A null name subscribes to every notification. A null receiver or an empty handler is ignored.
    void addObserver(const QString& name, QObject* receiver, NotificationHandler handler);
    void addObserver(const QString& name, const void* receiver, NotificationHandler handler);

    // Removes the receiver's subscriptions to name, or all of them when name is null. A receiver is
    // matched by the same pointer it subscribed with (a QObject as a QObject).
    void removeObserver(QObject* receiver, const QString& name = QString());
    void removeObserver(const void* receiver, const QString& name = QString());

    void post(const QString& name, QObject* object = nullptr, const QVariantMap& userInfo = {});

    // Number of subscriptions of the receiver, or of everybody when receiver is null.
    int observerCount(QObject* receiver) const { return countFor(receiver); }
    int observerCount(const void* receiver = nullptr) const { return countFor(receiver); }

private:
    struct Observer {
        QString name;
        const void* receiver = nullptr;
        NotificationHandler handler;
        QMetaObject::Connection watch; // the QObject receiver's destroyed()
        bool removed = false;          // guarded by _lock
    };

    void add(const QString& name, const void* receiver, NotificationHandler handler, QObject* watched);
    void remove(const void* receiver, const QString& name);
    int countFor(const void* receiver) const;

    mutable std::mutex _lock;
    std::vector<std::shared_ptr<Observer>> _observers;
};
