#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

// How requests reach the modem and its answers and reports come back. The link owns one; today's is the
// worker in this process (WorkerTransport).
//
// A request is a name and a dictionary: the argument under "VALUE_OBJECT" and the link's ticket. The
// answer comes back through received() under the request's name, with that dictionary under "USER_INFO";
// reports come the same way, without it.
class ModemTransport : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Brings the transport up; ready() follows once requests can be sent.
    virtual void start() = 0;
    virtual bool isReady() const = 0;
    // Sends the request; 0 once it is on its way, else a result code (nothing was sent).
    virtual int send(const QString& name, const QVariantMap& request) = 0;
    // Whether the modem belongs to another process (the service), which keeps the traffic history and the
    // link's state; this process then records nothing of it.
    virtual bool ownerElsewhere() const { return false; }
    // Passes on the answers and reports of this name from now on (once per name is enough); an empty name
    // passes on everything.
    virtual void listen(const QString& name) = 0;

signals:
    void ready();
    void received(const QString& name, const QVariantMap& data);
    // The stick was pulled: requests under way get no answer.
    void unplugged();
};
