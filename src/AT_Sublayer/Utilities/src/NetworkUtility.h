#pragma once

#include <initializer_list>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "ExecATCallback.h"
#include "NetworkTypes.h"
#include "SignalQuality.h"
#include "SystemTypes.h"

// The radio network: registration (AT+CREG?, AT+CGREG?), signal (AT+CSQ), the current operator and the
// operator list (AT+COPS), the vendor system selection for band, mode and domain (AT+SYSSEL), the bearer
// (AT+SSND?), packet attach (AT+CGATT?) and the SIM's service provider name and display list (AT+SPNM,
// AT+SPDI). Operations return 0 on success, 1 on a failure found here, else the execute-AT code.
// On a stick of the standard dialect the vendor commands are never sent: the bearer comes from the access
// technology of AT+CREG? (after AT+CREG=2) or AT+COPS?, the provider name from the SIM's EF-SPN read with
// AT+CRSM, and band, mode and domain give kNotSupportedByModem.
// Values that cannot be read keep their defaults: mode 5, format 3, access technology 3, level 6,
// registration 5, service state 4, bearer 8.
class CNetworkUtility {
public:
    CNetworkUtility() = default;
    virtual ~CNetworkUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command and cuts the modem's echo off a successful answer; 1 without a callback.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

    // Operator, signal, service state, bearer, packet registration and the provider name with its display
    // rule. Only the operator read can fail it.
    int GetInfo(TNetworkInfo& info);
    // Appends the operators of "AT+COPS=?" (up to the supported-mode lists).
    int GetList(std::list<TNetworkListItem>& items);
    // mask: 1 mode, 2 format, 4 operator (may be null), 8 access technology. A mask of 0 or a mode of 5
    // or more sends nothing and gives 0.
    int Set(int mask, int mode, int format, const char* oper, int accessTechnology);
    // = SetNumericFormat.
    int Init();
    // Operators by their numeric name ("46000") from now on.
    int SetNumericFormat();
    // which: 1 packet, anything else circuit. state: 0 not registered, 1 searching, 2 denied, 3 home,
    // 4 roaming, 5 unknown.
    int GetRegState(int which, int& state);
    // 1 attached, 2 detached, 0 other.
    int GetPSAttachState(int& state);
    // 0 to 5, 6 for a value outside the table.
    int GetRssiLevel(int& level);
    // The signal as a positive figure in dBm (114 - 2 x CSQ), 0 when unknown.
    int GetSignalDBValue(int& value);
    // One reading for the signal finder and the history: AT+CSQ (whose failure fails it), then AT+CESQ
    // for RSCP and Ec/Io and AT+CREG? (after AT+CREG=2) for the cell. A modem that refuses AT+CESQ is not
    // asked again; the other values stay unknown when their command fails. The bearer comes from the
    // cell's access technology on a standard stick, else as GetBearer reads it.
    int GetSignalReading(TSignalReading& reading);
    int SetBand(int band);
    int GetBand(int& band);
    // mode: 0 to 4, the rows of the mode table; 5 when the modem's pair is not in it.
    int SetMode(int mode);
    int GetMode(int& mode);
    int SetDomain(int domain);
    int GetDomain(int& domain);
    // 0 no service, 1 GPRS, 2 EDGE, 3 UMTS, 4 HSDPA, 5 HSPA, 6 HSUPA, 7 GSM.
    int GetBearer(int& bearer);
    // The current operator; a failed command gives 2.
    int GetBaseInfo(TNetworkBaseInfo& info);
    int GetSpInfo(TServiceProviderInfo& info);
    int GetImsi(char (&imsi)[kImsiSize]);
    // The SIM's service provider display list. count is the number of slots less the empty ones; the
    // slots do not move, so a network behind an empty slot may lie beyond count. Gives 1 whenever the
    // command itself succeeded.
    int GetSPDI(int& count, std::vector<TSpdiEntry>& entries);

    // The list item, blank-free copy and default-alphabet readers of NetworkAnswerParsers, under the names
    // the family has always used.
    static void ParseItemString(std::string_view text, TNetworkListItem& item);
    // 1 when name fits format (0 long: 16 characters, 1 short: 8, 2 numeric: 6), else 0.
    static int CheckName(int format, const char* name);
    static int TrimString(std::string_view text, char* buffer, int size);
    static int Default7BitToWstring(const unsigned char* bytes, int length, wchar_t* text, int size);

private:
    // Runs a set command: 1 when the answer has no "OK".
    int RunSetCommand(const std::string& command, int timeoutMs);
    // The bearer of the standard dialect: the access technology of the registration, else of the operator.
    int GetBearerFromAccessTechnology(int& bearer);
    // The four values of "+SYSSEL: 0,2,0,2": band, the mode pair, domain.
    int ReadSystemSelection(int (&values)[4]);
    // The "+CSQ: " value.
    int ReadCsq(int& value);

    ExecATCallback m_pfnExecAT = nullptr;
    // AT+CREG=2 was sent, so that "+CREG?" answers carry the access technology.
    bool m_bRegistrationDetails = false;
    // AT+CESQ answered with an error once: the modem does not know it.
    bool m_bNoCesq = false;
};
