#pragma once

// A transport for controller tests: it keeps every request, answers the link's init at once, and lets the
// test answer a request or send a report as the worker would.

#include "ModemLink.h"
#include "ModemTransport.h"
#include "WorkNotification.h"

#include <QList>
#include <QPair>

#include <memory>

class RecordingTransport : public ModemTransport {
public:
    void start() override {
        _ready = true;
        emit ready();
    }
    bool isReady() const override { return _ready; }
    int send(const QString& name, const QVariantMap& request) override {
        requests.append({name, request});
        if (name == MESSAGE_INIT_WORK_THREAD)
            answer(name, WORKER_OK);
        return WORKER_OK;
    }
    void listen(const QString&) override {}

    // Answers the latest unanswered request of this name (with the code and value); false when none waits.
    bool answer(const QString& name, int code, const QVariant& value = {}) {
        for (qsizetype i = requests.size() - 1; i >= 0; --i) {
            if (requests[i].first != name || requests[i].second.contains(kAnsweredKey))
                continue;
            requests[i].second.insert(kAnsweredKey, true);
            QVariantMap response = reply(code, value);
            response.insert(USER_INFO, requests[i].second);
            emit received(name, response);
            return true;
        }
        return false;
    }
    // A report: the worker's own message, answering no request.
    void report(const QString& name, const QVariant& value = {}) {
        emit received(name, reply(WORKER_OK, value));
    }

    int count(const QString& name) const {
        int n = 0;
        for (const auto& request : requests)
            n += request.first == name ? 1 : 0;
        return n;
    }
    // The argument of the latest request of this name.
    QVariant argument(const QString& name) const {
        for (qsizetype i = requests.size() - 1; i >= 0; --i) {
            if (requests[i].first == name)
                return WorkNotification::GetValueObject(requests[i].second);
        }
        return {};
    }

    QList<QPair<QString, QVariantMap>> requests;

private:
    static QVariantMap reply(int code, const QVariant& value) {
        QVariantMap response;
        WorkNotification::SetErrorCode(response, code);
        WorkNotification::SetValueObject(response, value);
        return response;
    }
    inline static const QString kAnsweredKey = QStringLiteral("TEST_ANSWERED");
    bool _ready = false;
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
