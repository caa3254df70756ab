#include "NotificationCenter.h"

#include <algorithm>

NotificationCenter::~NotificationCenter() {
    std::vector<std::shared_ptr<Observer>> observers;
    {
        std::lock_guard guard(_lock);
        observers.swap(_observers);
    }
    for (const auto& observer : observers) {
        QObject::disconnect(observer->watch);
    }
}

NotificationCenter& NotificationCenter::defaultCenter() {
    // Never destroyed: receivers may outlive static destruction and still unsubscribe.
    static NotificationCenter* const center = new NotificationCenter;
    return *center;
}

void NotificationCenter::addObserver(const QString& name, QObject* receiver, NotificationHandler handler) {
    add(name, receiver, std::move(handler), receiver);
}

void NotificationCenter::addObserver(const QString& name, const void* receiver, NotificationHandler handler) {
    add(name, receiver, std::move(handler), nullptr);
}

void NotificationCenter::add(const QString& name, const void* receiver, NotificationHandler handler,
                             QObject* watched) {
    if (!receiver || !handler) {
        return;
    }
    auto observer = std::make_shared<Observer>();
    observer->name = name;
    observer->receiver = receiver;
    observer->handler = std::move(handler);
    if (watched) {
        // Direct connection: runs on the thread that destroys the receiver, before its memory goes.
        observer->watch =
            QObject::connect(watched, &QObject::destroyed, [this, receiver] { remove(receiver, {}); });
    }
    std::lock_guard guard(_lock);
    _observers.push_back(std::move(observer));
}

void NotificationCenter::removeObserver(QObject* receiver, const QString& name) {
    remove(receiver, name);
}

void NotificationCenter::removeObserver(const void* receiver, const QString& name) {
    remove(receiver, name);
}

void NotificationCenter::remove(const void* receiver, const QString& name) {
    if (!receiver) {
        return;
    }
    std::vector<std::shared_ptr<Observer>> removed;
    {
        std::lock_guard guard(_lock);
        const auto matches = [&](const std::shared_ptr<Observer>& observer) {
            return observer->receiver == receiver && (name.isNull() || observer->name == name);
        };
        for (const auto& observer : _observers) {
            if (matches(observer)) {
                observer->removed = true;
                removed.push_back(observer);
            }
        }
        std::erase_if(_observers, matches);
    }
    // Outside the lock: Qt takes its own locks to disconnect.
    for (const auto& observer : removed) {
        QObject::disconnect(observer->watch);
    }
}

void NotificationCenter::post(const QString& name, QObject* object, const QVariantMap& userInfo) {
    std::vector<std::shared_ptr<Observer>> targets;
    {
        std::lock_guard guard(_lock);
        for (const auto& observer : _observers) {
            if (observer->name.isNull() || observer->name == name) {
                targets.push_back(observer);
            }
        }
    }
    const Notification notification{name, object, userInfo};
    for (const auto& observer : targets) {
        {
            std::lock_guard guard(_lock);
            if (observer->removed) {
                continue;
            }
        }
        observer->handler(notification);
    }
}

int NotificationCenter::countFor(const void* receiver) const {
    std::lock_guard guard(_lock);
    return static_cast<int>(
        std::count_if(_observers.begin(), _observers.end(), [receiver](const auto& observer) {
            return !receiver || observer->receiver == receiver;
        }));
}
