#pragma once

#include "AtSublayerInterface.h"
#include "CallUtility.h"
#include "GPSUtility.h"
#include "NetworkUtility.h"
#include "PbUtility.h"
#include "PinUtility.h"
#include "STKUtility.h"
#include "SmsUtility.h"
#include "SystemUtility.h"
#include "UssdUtility.h"

// The sublayer object: owns one object of each command family and forwards every operation to one of
// them, unchanged. It knows no port and no thread: commands run through the lower callbacks the host
// registers with RegisterLowerCBs. No lock; every call but CancelCurATExecution comes from one thread.
class CAtSublayer final : public TInterfaceAtSublayer {
public:
    CAtSublayer() = default;
    ~CAtSublayer() override = default;
    CAtSublayer(const CAtSublayer&) = delete;
    CAtSublayer& operator=(const CAtSublayer&) = delete;

    int StartCommunication(const void* argument) override;
    int EndCommunication() override;
    int RestartCommunication() override;
    void CancelCurATExecution() override;
    int RegisterReportCallback(UpperReportCallback callback, void* context) override;
    int RegisterLowerCBs(const TInterfaceAtSublayerLower& lower) override;
    int GetUpperReport(UpperReportCallback& callback, void*& context) override;

    int SystemInitComm() override;
    int SystemSyncComm() override;
    int SystemGetEquipmentInfo(TEquipmentInfo& info) override;
    int SystemSetPdpContext(const char* apn, const char* pdpAddress) override;
    int SystemSetPhoneFunctionality(int level) override;
    int SystemGetDeviceStartState(int& state) override;
    int SystemSetDeviceStartState(int state) override;

    int PINCheckState(int& state) override;
    int PINEnable(int on, const char* pin) override;
    int PINGetInfo(int pinState, TPinInfo& info) override;
    int PINChange(const char* oldPin, const char* newPin) override;
    int PINVerify(const char* pin) override;
    int PINVerifyPuk(const char* puk, const char* newPin) override;
    int PINGetState(int& enabled) override;

    int NetworkGetInfo(TNetworkInfo& info) override;
    int NetworkGetList(std::list<TNetworkListItem>& items) override;
    int NetworkSet(int mask, int mode, int format, const char* oper, int accessTechnology) override;
    int NetworkInit() override;
    int NetworkGetRegState(int which, int& state) override;
    int NetworkGetPSAttachState(int& state) override;
    int NetworkGetRssiLevel(int& level) override;
    int NetworkSetBand(int band) override;
    int NetworkGetBand(int& band) override;
    int NetworkSetMode(int mode) override;
    int NetworkGetMode(int& mode) override;
    int NetworkGetSignalDBValue(int& value) override;
    int NetworkGetSignalReading(TSignalReading& reading) override;

    int PBGetConstraint(TPbConstraint& constraint) override;
    int PBInitList(std::list<TPbItem>& items) override;
    int PBDeleteItem(int storage, int index) override;
    int PBUpdateItem(const TPbItem& item) override;
    int PBGetStorageInfo(TPbStorageInfo& info) override;
    int PBAddItem(const TPbNewItem& item, int& index) override;

    int SMSInit() override;
    int SMSGetServiceCentre(TSmsAddress& address) override;
    int SMSSetServiceCentre(const TSmsAddress& address) override;
    int SMSGetList(std::list<TSmsListItem>& items) override;
    int SMSGetIncomingSMSInPC(std::list<TSmsListItem>& items) override;
    int SMSDelete(int tableId) override;
    int SMSSend(const TSmsSendItem& item) override;
    int SMSOnReceive(const char* line, TSmsListItem& item, int& kind) override;
    int SMSSetPreferredStorage(int storage) override;
    int SMSGetPreferredStorage(int& storage) override;
    int SMSSetValidPeriod(const TSmsValidPeriod& period) override;
    int SMSEnableStatusReport(int enable) override;
    int SMSGetStorageState(TSmsStorageState& state) override;
    int SMSRegisterPCCallback(void* context, SmsPCListCallback list, SmsPCSaveCallback save,
                              SmsPCDeleteCallback remove, int enable) override;
    int SMSSetIMSI(const char* imsi) override;
    int SMSSetLatinSupport(int enable) override;
    int SMSRegisterSMSFilter(SmsFilterCallback filter, SmsFilterNotifyCallback notify, void* filterContext,
                             void* notifyContext) override;

    int CheckUssdState(int& state) override;
    int SetUssdState(int& state) override;
    int SendUssdCmd(const wchar_t* text) override;
    int SendUssdCancelCmd() override;
    int UssdOnReceive(const char* line, TUssdItem& item) override;

    int CallInit() override;
    int CallDial(const char* number) override;
    int CallAnswer() override;
    int CallHangUp() override;
    int CallSendDTMF(char tone) override;
    int CallHandleCallEnd(bool& allEnded) override;
    int CallHandleRing(std::string& number) override;
    int CallCheckState(std::list<TCallItemState>& calls) override;

    int GPSInit() override;
    int GPSUninit() override;

    int STKSendCommand(const char* command, std::string& text) override;
    int STKHandleReport(const char* line, std::string& text) override;
    int STKInit(std::string& text) override;
    int STKGetCurrentProactiveCommand(int& type, std::string& text) override;

private:
    friend struct AtSublayerTestAccess;

    CSystemUtility m_systemUtility;
    CSmsUtility m_smsUtility;
    CPinUtility m_pinUtility;
    CPbUtility m_pbUtility;
    CNetworkUtility m_networkUtility;
    CUssdUility m_ussdUtility;
    CCallUtility m_callUtility;
    CGPSUtility m_gpsUtility;
    CSTKUtility m_stkUtility;

    StartCommCallback m_pfnStartComm = nullptr;
    EndCommCallback m_pfnEndComm = nullptr;
    RestartCommCallback m_pfnRestartComm = nullptr;
    ExecATCallback m_pfnExecAT = nullptr;
    CancelATCallback m_pfnCancel = nullptr;
    RegisterReportHandlerCallback m_pfnRegisterReportHandler = nullptr;

    UpperReportCallback m_pfnUpperReport = nullptr;
    void* m_pUpperContext = nullptr;
};
