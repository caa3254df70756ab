#pragma once

#include <QMetaType>
#include <QVariantMap>

#include <functional>

#include "ModemLink.h"
#include "WorkNotification.h"

// How a request ended, for the views: the worker's result code (0 on success) and the modem's own cause
// ("+CME ERROR"/"+CMS ERROR", see ModemErrorCause.h; 0 when it gave none). FailureText turns both into
// words.
struct Outcome {
    int code = WORKER_OK;
    int cause = 0;

    bool ok() const { return code == WORKER_OK; }
    static Outcome of(const QVariantMap& response) {
        return {WorkNotification::GetErrorCode(response), WorkNotification::GetSubErrorCode(response)};
    }
};

Q_DECLARE_METATYPE(Outcome)

// The controllers' way of sending: done gets the outcome and the answer's value, unless context is gone.
inline void RequestOutcome(ModemLink& link, QObject* context, const QString& name, const QVariant& argument,
                           std::function<void(const Outcome&, const QVariant&)> done) {
    link.request(
        name, argument,
        [done = std::move(done)](const QVariantMap& response) {
            done(Outcome::of(response), WorkNotification::GetValueObject(response));
        },
        context);
}
