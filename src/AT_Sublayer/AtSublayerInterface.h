#pragma once

#include <list>
#include <string>

#include "CallTypes.h"
#include "ExecATCallback.h"
#include "NetworkTypes.h"
#include "PbTypes.h"
#include "PinTypes.h"
#include "SignalQuality.h"
#include "SmsTypes.h"
#include "SystemTypes.h"
#include "UssdTypes.h"

// The AT sublayer: the modem's command library as the business layer sees it. The host hands it a record
// of lower callbacks (TInterfaceAtSublayerLower) through which every command runs; every operation
// returns a signed result code, 0 for success, and nothing is thrown.

// Lower callbacks, in the order of TInterfaceAtSublayerLower.
using StartCommCallback = int (*)(const void* argument);
using EndCommCallback = int (*)();
using RestartCommCallback = int (*)();
using CancelATCallback = void (*)();
// The decoder the sublayer hands back for unsolicited lines: ATSublayer_HandleReport.
using ReportHandler = int (*)(void* context, const char* line);
using RegisterReportHandlerCallback = void (*)(ReportHandler handler, void* context);

// The upper report callback. The payload lives only for the duration of the call.
using UpperReportCallback = int (*)(void* context, int reportCode, const void* payload);

// The record of lower callbacks; any of them may be null.
struct TInterfaceAtSublayerLower {
    StartCommCallback pfnStartComm = nullptr;
    EndCommCallback pfnEndComm = nullptr;
    RestartCommCallback pfnRestartComm = nullptr;
    ExecATCallback pfnExecAT = nullptr;
    CancelATCallback pfnCancel = nullptr;
    RegisterReportHandlerCallback pfnRegisterReportHandler = nullptr;
};

// Report codes of the upper report callback, with their payloads.
enum : int {
    ATS_REPORT_NEW_SMS = 0,     // "+CMTI:", "+CDSI:"; const TASRNewSMS*
    ATS_REPORT_CUSD = 1,        // "+CUSD: "; const TASRCusd*
    ATS_REPORT_BUSY = 2,        // null payload
    ATS_REPORT_NO_ANSWER = 3,   // null payload
    ATS_REPORT_NO_CARRIER = 4,  // null payload
    ATS_REPORT_NO_DIALTONE = 5, // null payload
    ATS_REPORT_RING = 6,        // "RING", "+CRING:"; null payload
    ATS_REPORT_STK = 7,         // "+STIN:"; const std::string*
};

// A new message or status report stored: "+CMTI: \"SM\",3".
struct TASRNewSMS {
    std::string strLine;
};

// A USSD answer: "+CUSD: 0,\"...\",15".
struct TASRCusd {
    std::string strLine;
};

// The operations, in the order of the interface's virtual slots.
class TInterfaceAtSublayer {
public:
    virtual int StartCommunication(const void* argument) = 0;
    virtual int EndCommunication() = 0;
    virtual int RestartCommunication() = 0;
    virtual void CancelCurATExecution() = 0;
    virtual int RegisterReportCallback(UpperReportCallback callback, void* context) = 0;
    virtual int RegisterLowerCBs(const TInterfaceAtSublayerLower& lower) = 0;
    virtual int GetUpperReport(UpperReportCallback& callback, void*& context) = 0;

    virtual int SystemInitComm() = 0;
    virtual int SystemSyncComm() = 0;
    virtual int SystemGetEquipmentInfo(TEquipmentInfo& info) = 0;
    virtual int SystemSetPdpContext(const char* apn, const char* pdpAddress) = 0;
    virtual int SystemSetPhoneFunctionality(int level) = 0;
    virtual int SystemGetDeviceStartState(int& state) = 0;
    virtual int SystemSetDeviceStartState(int state) = 0;

    virtual int PINCheckState(int& state) = 0;
    virtual int PINEnable(int on, const char* pin) = 0;
    virtual int PINGetInfo(int pinState, TPinInfo& info) = 0;
    virtual int PINChange(const char* oldPin, const char* newPin) = 0;
    virtual int PINVerify(const char* pin) = 0;
    virtual int PINVerifyPuk(const char* puk, const char* newPin) = 0;
    virtual int PINGetState(int& enabled) = 0;

    virtual int NetworkGetInfo(TNetworkInfo& info) = 0;
    virtual int NetworkGetList(std::list<TNetworkListItem>& items) = 0;
    virtual int NetworkSet(int mask, int mode, int format, const char* oper, int accessTechnology) = 0;
    virtual int NetworkInit() = 0;
    virtual int NetworkGetRegState(int which, int& state) = 0;
    virtual int NetworkGetPSAttachState(int& state) = 0;
    virtual int NetworkGetRssiLevel(int& level) = 0;
    virtual int NetworkSetBand(int band) = 0;
    virtual int NetworkGetBand(int& band) = 0;
    virtual int NetworkSetMode(int mode) = 0;
    virtual int NetworkGetMode(int& mode) = 0;
    virtual int NetworkGetSignalDBValue(int& value) = 0;
    virtual int NetworkGetSignalReading(TSignalReading& reading) = 0;

    virtual int PBGetConstraint(TPbConstraint& constraint) = 0;
    virtual int PBInitList(std::list<TPbItem>& items) = 0;
    virtual int PBDeleteItem(int storage, int index) = 0;
    virtual int PBUpdateItem(const TPbItem& item) = 0;
    virtual int PBGetStorageInfo(TPbStorageInfo& info) = 0;
    virtual int PBAddItem(const TPbNewItem& item, int& index) = 0;

    virtual int SMSInit() = 0;
    virtual int SMSGetServiceCentre(TSmsAddress& address) = 0;
    virtual int SMSSetServiceCentre(const TSmsAddress& address) = 0;
    virtual int SMSGetList(std::list<TSmsListItem>& items) = 0;
    virtual int SMSGetIncomingSMSInPC(std::list<TSmsListItem>& items) = 0;
    virtual int SMSDelete(int tableId) = 0;
    virtual int SMSSend(const TSmsSendItem& item) = 0;
    virtual int SMSOnReceive(const char* line, TSmsListItem& item, int& kind) = 0;
    virtual int SMSSetPreferredStorage(int storage) = 0;
    virtual int SMSGetPreferredStorage(int& storage) = 0;
    virtual int SMSSetValidPeriod(const TSmsValidPeriod& period) = 0;
    virtual int SMSEnableStatusReport(int enable) = 0;
    virtual int SMSGetStorageState(TSmsStorageState& state) = 0;
    virtual int SMSRegisterPCCallback(void* context, SmsPCListCallback list, SmsPCSaveCallback save,
                                      SmsPCDeleteCallback remove, int enable) = 0;
    virtual int SMSSetIMSI(const char* imsi) = 0;
    virtual int SMSSetLatinSupport(int enable) = 0;
    virtual int SMSRegisterSMSFilter(SmsFilterCallback filter, SmsFilterNotifyCallback notify,
                                     void* filterContext, void* notifyContext) = 0;

    virtual int CheckUssdState(int& state) = 0;
    virtual int SetUssdState(int& state) = 0;
    virtual int SendUssdCmd(const wchar_t* text) = 0;
    virtual int SendUssdCancelCmd() = 0;
    virtual int UssdOnReceive(const char* line, TUssdItem& item) = 0;

    virtual int CallInit() = 0;
    virtual int CallDial(const char* number) = 0;
    virtual int CallAnswer() = 0;
    virtual int CallHangUp() = 0;
    virtual int CallSendDTMF(char tone) = 0;
    virtual int CallHandleCallEnd(bool& allEnded) = 0;
    virtual int CallHandleRing(std::string& number) = 0;
    virtual int CallCheckState(std::list<TCallItemState>& calls) = 0;

    virtual int GPSInit() = 0;
    virtual int GPSUninit() = 0;

    virtual int STKSendCommand(const char* command, std::string& text) = 0;
    virtual int STKHandleReport(const char* line, std::string& text) = 0;
    virtual int STKInit(std::string& text) = 0;
    virtual int STKGetCurrentProactiveCommand(int& type, std::string& text) = 0;

    virtual ~TInterfaceAtSublayer() = default;
};

// Creates the sublayer into instance; 0, or 1 (instance untouched) when no object could be made.
int ATSubLayer_CreateInstance(TInterfaceAtSublayer*& instance);

// Destroys the sublayer if instance is not null and sets it to null; returns 0.
int ATSubLayer_DestroyInstance(TInterfaceAtSublayer*& instance);

// Decodes one unsolicited line (without the channel's leading "\r\n") into a report code and hands it to
// the upper report callback of the sublayer given as context. Lines it does not know are ignored.
// Returns 0.
int ATSublayer_HandleReport(void* context, const char* line);
