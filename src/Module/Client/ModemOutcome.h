#pragma once

#include <QVariantMap>

#include "WorkNotification.h"

// How a request to the modem ended, as the controllers hand it to the views: the worker's result code
// (0 success) and, where the modem gave one, its own cause code ("+CME ERROR: 16" gives 16).
struct ModemOutcome {
    int code = WORKER_OK;
    int cause = 0;

    bool ok() const { return code == WORKER_OK; }
    static ModemOutcome of(const QVariantMap& response) {
        return {WorkNotification::GetErrorCode(response), WorkNotification::GetSubErrorCode(response)};
    }
};
