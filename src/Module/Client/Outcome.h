#pragma once

#include <QVariantMap>

#include "WorkNotification.h"

// How a controller's request ended, for the views: the worker's result code and the modem's own cause
// ("+CME ERROR"/"+CMS ERROR" number, 0 when none). FailureText turns both into words.
struct Outcome {
    int code = WORKER_OK;
    int cause = 0;

    bool ok() const { return code == WORKER_OK; }
    static Outcome of(const QVariantMap& response) {
        return {WorkNotification::GetErrorCode(response), WorkNotification::GetSubErrorCode(response)};
    }
};
