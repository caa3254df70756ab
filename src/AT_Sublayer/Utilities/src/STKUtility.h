#pragma once

#include <string>

#include "ExecATCallback.h"

// The SIM toolkit's AT side: fetching the main menu ("AT+STGI=17") and the command a "+STIN:" report
// announces ("AT+STGI=%d"), and sending the "AT+STGR" answers the toolkit module builds.
// Operations return 0 on success, else the execute-AT code or 1.
class CSTKUtility {
public:
    // Time limit of an answer sent through the sublayer, which passes none of its own.
    static constexpr int kSendCommandTimeoutMs = 5000;

    CSTKUtility() = default;
    virtual ~CSTKUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // text receives the whole response when it holds "OK".
    int SendCommand(const char* command, std::string& text, int timeoutMs = kSendCommandTimeoutMs);
    // line: a "+STIN: 11" report; text receives the fetched command.
    int HandleReport(const char* line, std::string& text);
    int Init(std::string& text);
    int GetCurrentProactiveCommand(int& type, std::string& text);

private:
    ExecATCallback m_pfnExecAT = nullptr;
};
