#pragma once

#include <initializer_list>
#include <string>

#include "ExecATCallback.h"
#include "PinTypes.h"

// The SIM's PIN: lock state (AT+CPIN?), the PIN request switch (AT+CLCK), PIN change (AT+CPWD), PIN and PUK
// entry, and the remaining attempts through the vendor commands AT+SMPN? and AT+PNNM?, or AT+CPINR on a
// stick of the standard dialect.
// Operations return 0 on success, 1 on failure, 2 time-out, 30 cancelled, 5 to 24 for a "+CME ERROR: " text
// (GetErrorCode). PIN and PUK texts go into the commands as they are.
class CPinUtility {
public:
    CPinUtility() = default;
    virtual ~CPinUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command and cuts the modem's echo off a successful answer; 1 without a callback.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

    // The SIM lock state: 1 ready, 2 SIM PIN, 3 SIM PUK, 4 to 17 the other locks, 0 no SIM.
    int CheckState(int& state);
    // on: non-zero asks for the PIN at power-on. A null pin is sent as an empty one.
    int Enable(int on, const char* pin);
    // Remaining attempts for the lock of pinState (a CheckState value). In the standard dialect a counter
    // the modem does not give is kPinCountUnknown and only a cancelled command fails.
    int GetInfo(int pinState, TPinInfo& info);
    int Change(const char* oldPin, const char* newPin);
    int Verify(const char* pin);
    int VerifyPuk(const char* puk, const char* newPin);
    // Whether the PIN is asked for at power-on: 1 or 0.
    int GetState(int& enabled);

    // The code of the first "+CME ERROR: " text in an answer (5 to 24); 1 for an unknown text or a
    // non-empty answer without one, 2 for an empty answer.
    static int GetErrorCode(const std::string& answer);
    // The state of a "+CPIN: " answer, searched from its "+CPIN" on; 1 when no state text is found.
    static int ParseCpinAnswer(const std::string& answer, int& state);
    // The attempts left for one code of an "AT+CPINR" answer ("+CPINR: SIM PIN,3,3", the code quoted or
    // not); kPinCountUnknown when the answer has no such line.
    static int ParseCpinrAnswer(const std::string& answer, const char* code);

private:
    // Runs a command that answers only "OK" or an error text.
    int RunCommand(const std::string& command);
    int GetInfoByCpinr(int pinState, TPinInfo& info);

    ExecATCallback m_pfnExecAT = nullptr;
};
