#pragma once

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

    int Init();
    int Dial(const char* number);
    int Answer();
    int HangUp();
    int SendDTMF(char tone);
    // allEnded: true when no voice call remains.
    int HandleCallEnd(bool& allEnded);
    // number: the incoming caller's number.
    int HandleRing(std::string& number);
    int CheckCallState(std::list<TCallItemState>& calls);

private:
    ExecATCallback m_pfnExecAT = nullptr;
};
