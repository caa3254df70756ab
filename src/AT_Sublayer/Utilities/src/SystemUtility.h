#pragma once

#include <initializer_list>
#include <string>

#include "ExecATCallback.h"
#include "SystemTypes.h"

// System and equipment information: echo and error-report setup, the modem's identity (AT+CGMI, AT+CGMM,
// AT+CGMR, AT+CGSN, AT+CIMI, AT+CNUM, AT+HWV), the PDP context, the phone functionality level and the
// vendor start state. Operations return 0 on success, 1 on a failure found here, else the execute-AT code
// (2 time-out, 30 cancelled). Output texts are always NUL-terminated within their fields. The vendor
// commands (AT+HWV, AT+FUNC) give kNotSupportedByModem, unsent, on a stick of the standard dialect.
class CSystemUtility {
public:
    CSystemUtility() = default;
    virtual ~CSystemUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command and cuts the modem's echo off a successful answer; 1 without a callback.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

    // SyncComm, then InitModem.
    int InitComm();
    // Escape out of any half-typed command, echo on twice, then off.
    int SyncComm();
    // Factory settings, no echo, verbose results and verbose "+CME ERROR: " texts.
    int InitModem();

    // Identity reads; the value is the answer without its framing (TrimContent).
    int GetManufacturer(char (&text)[kEquipmentTextSize]);
    int GetModel(char (&text)[kEquipmentTextSize]);
    int GetRevision(char (&text)[kEquipmentTextSize]);
    int GetSerialNumber(char (&text)[kEquipmentTextSize]);
    // Zeroes the field when the read fails.
    int GetHardwareVersion(char (&text)[kHardwareVersionSize]);
    int GetImsi(char (&imsi)[kImsiSize]);
    // Zeroes the record; 0 with an empty number when the modem knows none.
    int GetMsisdn(TMsisdnInfo& msisdn);
    // Every identity read in turn; the mask says which succeeded, except that the hardware version's bit
    // is always set (the field is then the version or all zero). Always 0.
    int GetEquipmentInfo(TEquipmentInfo& info);

    // pdpAddress may be null; a null apn gives 1 and sends nothing.
    int SetPdpContext(const char* apn, const char* pdpAddress);
    int SetPhoneFunctionality(int level);
    int GetDeviceStartState(int& state);
    int SetDeviceStartState(int state);

    // The value between an answer's leading "\r\n" pairs and the "\r\n" pairs before its "\r\nOK", copied
    // into buffer (at most size - 1 bytes and a NUL). 1 when there is no "\r\nOK"; an empty value leaves
    // the buffer alone. A prefix the modem puts before the value stays.
    static int TrimContent(const std::string& answer, char* buffer, int size);
    // The IMSI of an "AT+CIMI" answer: the first line, after the first "\r\n", of fewer than 16
    // characters that are all digits. 1 without "OK" or without such a line. An empty line counts, so
    // "\r\n\r\n...OK" gives an empty IMSI and 0, which is kept.
    static int ParseImsiAnswer(const std::string& answer, char (&imsi)[kImsiSize]);
    // The own number of an "AT+CNUM" answer: the first "+CNUM: " line whose number is quoted after the
    // first comma and which names no service class or the voice class 4. A line whose first comma is not
    // followed by a quote ends the search. The record is left alone when no number is found.
    static void ParseCnumAnswer(const std::string& answer, TMsisdnInfo& msisdn);

private:
    int ReadIdentity(const char* command, char* buffer, int size);

    ExecATCallback m_pfnExecAT = nullptr;
};
