#pragma once

#include "ExecATCallback.h"

// The modem's GPS receiver, switched on ("AT$GPSC=1,1") and off ("AT$GPSC=1,0").
// Operations return 0 on success, else the execute-AT code or 1.
class CGPSUtility {
public:
    CGPSUtility() = default;
    virtual ~CGPSUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    int InitGPS();
    int UninitGPS();

private:
    ExecATCallback m_pfnExecAT = nullptr;
};
