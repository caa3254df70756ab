#pragma once

// A transport for controller tests: it keeps every request, answers the link's init at once, and lets the
// test answer a request or send a report as the worker would.

#include "ModemLink.h"
#include "WorkNotification.h"

#include <QList>

#include <algorithm>
#include <memory>

class RecordingTransport : public ModemTransport {
public:
    struct Request {
        QString name;
        QVariantMap dictionary;
        bool answered = false;
    };

    void start() override { emit ready(); }
    bool isReady() const override { return true; }
    void listen(const QString&) override {}
    int send(const QString& name, const QVariantMap& request) override {
        requests.append({name, request});
        if (name == MESSAGE_INIT_WORK_THREAD)
            answer(name, WORKER_OK);
        return WORKER_OK;
    }

    // Answers the latest unanswered request of this name; false when none waits.
    bool answer(const QString& name, int code, const QVariant& value = {}) {
        const auto it = std::find_if(requests.rbegin(), requests.rend(),
                                     [&](const Request& r) { return r.name == name && !r.answered; });
        if (it == requests.rend())
            return false;
        it->answered = true;
        QVariantMap response{{USER_INFO, it->dictionary}};
        WorkNotification::SetErrorCode(response, code);
        WorkNotification::SetValueObject(response, value);
        emit received(name, response);
        return true;
    }
    // The worker's own message, answering no request.
    void report(const QString& name, const QVariant& value = {}) {
        emit received(name, {{VALUE_OBJECT, value}});
    }

    int count(const QString& name) const {
        return std::count_if(requests.begin(), requests.end(),
                             [&](const Request& r) { return r.name == name; });
    }
    // The argument of the latest request of this name.
    QVariant argument(const QString& name) const {
        const auto it = std::find_if(requests.rbegin(), requests.rend(),
                                     [&](const Request& r) { return r.name == name; });
        return it == requests.rend() ? QVariant() : WorkNotification::GetValueObject(it->dictionary);
    }

    QList<Request> requests;
};

// A link over a recording transport, opened as the tool opens it (the modem is Starting).
struct RecordedLink {
    RecordedLink()
        : transport(new RecordingTransport), link(nullptr, std::unique_ptr<ModemTransport>(transport)) {
        link.open(1000);
    }
    RecordingTransport* transport; // owned by the link
    ModemLink link;
};
