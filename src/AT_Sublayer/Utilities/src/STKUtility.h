#pragma once

#include <string>

#include "ExecATCallback.h"

// The SIM toolkit's AT side: fetching the main menu ("AT+STGI=17") and the command a "+STIN:" report
// announces ("AT+STGI=%d"), and sending the "AT+STGR" answers the toolkit module builds.
// Operations return 0 on success, else the execute-AT code or 1. On a stick of the standard dialect there
// is no toolkit: Init, HandleReport and GetCurrentProactiveCommand give kNotSupportedByModem unsent.
class CSTKUtility {
public:
    // Time limit of an answer sent through the sublayer, which passes none of its own.
    static constexpr int kSendCommandTimeoutMs = 5000;
    // The report number with which the card ends the proactive dialogue; it is not fetched.
    static constexpr int kSessionEndNumber = 20;
    // What HandleReport gives for that report, so that it reads like a fetched command.
    static constexpr const char* kSessionEndText = "+STGI:20\r\nOK";

    CSTKUtility() = default;
    virtual ~CSTKUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Sends command as it stands. text receives the whole response only when it holds "OK"; otherwise it is
    // left alone and the callback's code (0 for an "ERROR" answer) is returned, so callers check the text.
    int SendCommand(const char* command, std::string& text, int timeoutMs = kSendCommandTimeoutMs);
    // line: a "+STIN: 11" report. Number 20 gives kSessionEndText without sending anything; any other
    // number is fetched with "AT+STGI=<n>" and text receives the response. 1 when the line has no number.
    int HandleReport(const char* line, std::string& text);
    // Fetches the main menu ("AT+STGI=17"); 1 when the response lacks "OK".
    int Init(std::string& text);
    // Asks "AT+STIN?" and discards the answer: type and text are left untouched.
    int GetCurrentProactiveCommand(int& type, std::string& text);

    // The number of a "+STIN: <n>" report found anywhere in line; false when there is none.
    static bool ParseIndication(const char* line, int& number);

private:
    ExecATCallback m_pfnExecAT = nullptr;
};
