#pragma once

#include <initializer_list>
#include <string>

#include "ExecATCallback.h"

// The modem's GPS receiver, switched on ("AT$GPSC=1,1") and off ("AT$GPSC=1,0"); kNotSupportedByModem,
// unsent, on a stick of the standard dialect.
// Operations return 0 on success, else the execute-AT code or 1.
class CGPSUtility {
public:
    CGPSUtility() = default;
    virtual ~CGPSUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command and cuts the modem's echo off a successful answer; 1 without a callback.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

    // 1 when the modem answers without "OK".
    int InitGPS();
    int UninitGPS();

private:
    int Switch(const char* command);

    ExecATCallback m_pfnExecAT = nullptr;
};
