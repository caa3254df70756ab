#pragma once

#include <initializer_list>
#include <list>
#include <string>

#include "CallTypes.h"
#include "ExecATCallback.h"

// Voice calls: call indication setup (AT+COLP, AT+CLIP, AT+CRC), dialling (ATD...;), answering (ATA),
// hanging up (AT+CHUP), DTMF (AT+VTS) and the current call list (AT+CLCC).
// Operations return 0 on success, 1 on failure, 2 time-out, 30 cancelled, 25 "NO CARRIER",
// 26 "NO ANSWER", 27 "BUSY", 28 "NO DIALTONE".
class CCallUtility {
public:
    CCallUtility() = default;
    virtual ~CCallUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command and cuts the modem's echo off a successful answer; 1 without a callback.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

    // InitCOLP, InitCLIP, InitCRC in turn; the first failure is returned.
    int Init();
    // Connected line, calling line and extended ring indications, all switched off.
    int InitCOLP();
    int InitCLIP();
    int InitCRC();
    // A voice call to number (ATD<number>;). 1 for a null number.
    int Dial(const char* number);
    int Answer();
    int HangUp();
    // tone: '0' to '9', '*', '#' or 'A' to 'D'; anything else gives 1 and sends nothing.
    int SendDTMF(char tone);
    // The current calls, one item per "+CLCC: " line with five numbers; calls is emptied first.
    int CheckCallState(std::list<TCallItemState>& calls);
    // number: the number of the first incoming voice call; 1 when there is none or the list fails.
    int HandleRing(std::string& number);
    // allEnded: true when no voice call remains; 1 when the list cannot be read.
    int HandleCallEnd(bool& allEnded);

    // Reads the "+CLCC: " lines of an AT+CLCC answer into calls (appended).
    static void ParseCallList(const std::string& answer, std::list<TCallItemState>& calls);

private:
    // Runs a command with no prefix; 0 only when the answer holds "OK", 1 when it does not.
    int RunCommand(const char* command, int timeoutMs, std::string& response);

    ExecATCallback m_pfnExecAT = nullptr;
};
