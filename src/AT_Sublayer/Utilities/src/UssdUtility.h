#pragma once

#include "ExecATCallback.h"
#include "UssdTypes.h"

// USSD: sending a string (AT+CUSD=1,...,15), cancelling a dialogue (AT+CUSD=2), the presentation state
// (AT+CUSD?) and decoding the network's "+CUSD:" reports. The class name is spelled so on purpose.
// Operations return 0 on success, else the execute-AT code or 1.
class CUssdUility {
public:
    CUssdUility() = default;
    virtual ~CUssdUility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    int CheckUssdState(int& state);
    int SetUssdState(int& state);
    int SendUssdCmd(const wchar_t* text);
    int SendUssdCancelCmd();
    // line: a "+CUSD: 1,\"00480069\",72" report.
    int Receive(const char* line, TUssdItem& item);

private:
    ExecATCallback m_pfnExecAT = nullptr;
};
