#include "ATSublayer.h"

#include <cstring>
#include <new>

int CAtSublayer::StartCommunication(const void* argument) {
    return m_pfnStartComm != nullptr ? m_pfnStartComm(argument) : 1;
}

int CAtSublayer::EndCommunication() {
    return m_pfnEndComm != nullptr ? m_pfnEndComm() : 1;
}

int CAtSublayer::RestartCommunication() {
    return m_pfnRestartComm != nullptr ? m_pfnRestartComm() : 1;
}

void CAtSublayer::CancelCurATExecution() {
    if (m_pfnCancel != nullptr)
        m_pfnCancel();
}

int CAtSublayer::RegisterReportCallback(UpperReportCallback callback, void* context) {
    m_pfnUpperReport = callback;
    m_pUpperContext = context;
    return 0;
}

int CAtSublayer::RegisterLowerCBs(const TInterfaceAtSublayerLower& lower) {
    m_pfnStartComm = lower.pfnStartComm;
    m_pfnEndComm = lower.pfnEndComm;
    m_pfnRestartComm = lower.pfnRestartComm;
    m_pfnExecAT = lower.pfnExecAT;
    m_pfnCancel = lower.pfnCancel;
    m_pfnRegisterReportHandler = lower.pfnRegisterReportHandler;

    if (m_pfnRegisterReportHandler != nullptr)
        m_pfnRegisterReportHandler(&ATSublayer_HandleReport, static_cast<TInterfaceAtSublayer*>(this));

    // In this order, stopping at the first family that refuses; a refusal is not reported.
    const auto registerInOrder = [this](auto&... families) {
        (void)((families.RegisterExecAT(m_pfnExecAT) == 0) && ...);
    };
    registerInOrder(m_pinUtility, m_pbUtility, m_networkUtility, m_smsUtility, m_systemUtility, m_ussdUtility,
                    m_callUtility, m_gpsUtility, m_stkUtility);
    return 0;
}

int CAtSublayer::GetUpperReport(UpperReportCallback& callback, void*& context) {
    callback = m_pfnUpperReport;
    context = m_pUpperContext;
    return 0;
}

int CAtSublayer::SystemInitComm() {
    return m_systemUtility.InitComm();
}

int CAtSublayer::SystemSyncComm() {
    return m_systemUtility.SyncComm();
}

int CAtSublayer::SystemGetEquipmentInfo(TEquipmentInfo& info) {
    return m_systemUtility.GetEquipmentInfo(info);
}

int CAtSublayer::SystemSetPdpContext(const char* apn, const char* pdpAddress) {
    return m_systemUtility.SetPdpContext(apn, pdpAddress);
}

int CAtSublayer::SystemSetPhoneFunctionality(int level) {
    return m_systemUtility.SetPhoneFunctionality(level);
}

int CAtSublayer::SystemGetDeviceStartState(int& state) {
    return m_systemUtility.GetDeviceStartState(state);
}

int CAtSublayer::SystemSetDeviceStartState(int state) {
    return m_systemUtility.SetDeviceStartState(state);
}

int CAtSublayer::PINCheckState(int& state) {
    return m_pinUtility.CheckState(state);
}

int CAtSublayer::PINEnable(int on, const char* pin) {
    return m_pinUtility.Enable(on, pin);
}

int CAtSublayer::PINGetInfo(int pinState, TPinInfo& info) {
    return m_pinUtility.GetInfo(pinState, info);
}

int CAtSublayer::PINChange(const char* oldPin, const char* newPin) {
    return m_pinUtility.Change(oldPin, newPin);
}

int CAtSublayer::PINVerify(const char* pin) {
    return m_pinUtility.Verify(pin);
}

int CAtSublayer::PINVerifyPuk(const char* puk, const char* newPin) {
    return m_pinUtility.VerifyPuk(puk, newPin);
}

int CAtSublayer::PINGetState(int& enabled) {
    return m_pinUtility.GetState(enabled);
}

int CAtSublayer::NetworkGetInfo(TNetworkInfo& info) {
    return m_networkUtility.GetInfo(info);
}

int CAtSublayer::NetworkGetList(std::list<TNetworkListItem>& items) {
    return m_networkUtility.GetList(items);
}

int CAtSublayer::NetworkSet(int mask, int mode, int format, const char* oper, int accessTechnology) {
    return m_networkUtility.Set(mask, mode, format, oper, accessTechnology);
}

int CAtSublayer::NetworkInit() {
    return m_networkUtility.Init();
}

int CAtSublayer::NetworkGetRegState(int which, int& state) {
    return m_networkUtility.GetRegState(which, state);
}

int CAtSublayer::NetworkGetPSAttachState(int& state) {
    return m_networkUtility.GetPSAttachState(state);
}

int CAtSublayer::NetworkGetRssiLevel(int& level) {
    return m_networkUtility.GetRssiLevel(level);
}

int CAtSublayer::NetworkSetBand(int band) {
    return m_networkUtility.SetBand(band);
}

int CAtSublayer::NetworkGetBand(int& band) {
    return m_networkUtility.GetBand(band);
}

int CAtSublayer::NetworkSetMode(int mode) {
    return m_networkUtility.SetMode(mode);
}

int CAtSublayer::NetworkGetMode(int& mode) {
    return m_networkUtility.GetMode(mode);
}

int CAtSublayer::NetworkGetSignalDBValue(int& value) {
    return m_networkUtility.GetSignalDBValue(value);
}

int CAtSublayer::NetworkGetSignalReading(TSignalReading& reading) {
    return m_networkUtility.GetSignalReading(reading);
}

int CAtSublayer::PBGetConstraint(TPbConstraint& constraint) {
    return m_pbUtility.GetConstraint(constraint);
}

int CAtSublayer::PBInitList(std::list<TPbItem>& items) {
    return m_pbUtility.InitList(items);
}

int CAtSublayer::PBDeleteItem(int storage, int index) {
    return m_pbUtility.DeleteItem(storage, index);
}

int CAtSublayer::PBUpdateItem(const TPbItem& item) {
    return m_pbUtility.UpdateItem(item);
}

int CAtSublayer::PBGetStorageInfo(TPbStorageInfo& info) {
    return m_pbUtility.GetStorageInfo(info);
}

int CAtSublayer::PBAddItem(const TPbNewItem& item, int& index) {
    return m_pbUtility.AddItem(item, index);
}

int CAtSublayer::SMSInit() {
    return m_smsUtility.Init();
}

int CAtSublayer::SMSGetServiceCentre(TSmsAddress& address) {
    return m_smsUtility.GetServiceCentre(address);
}

int CAtSublayer::SMSSetServiceCentre(const TSmsAddress& address) {
    return m_smsUtility.SetServiceCentre(address);
}

int CAtSublayer::SMSGetList(std::list<TSmsListItem>& items) {
    return m_smsUtility.GetList(items);
}

int CAtSublayer::SMSGetIncomingSMSInPC(std::list<TSmsListItem>& items) {
    return m_smsUtility.GetIncomingSMSInPC(items);
}

int CAtSublayer::SMSDelete(int tableId) {
    return m_smsUtility.Delete(tableId);
}

int CAtSublayer::SMSSend(const TSmsSendItem& item) {
    return m_smsUtility.Send(item);
}

int CAtSublayer::SMSOnReceive(const char* line, TSmsListItem& item, int& kind) {
    return m_smsUtility.Receive(line, item, kind);
}

int CAtSublayer::SMSSetPreferredStorage(int storage) {
    return m_smsUtility.SetPreferredStorage(storage);
}

int CAtSublayer::SMSGetPreferredStorage(int& storage) {
    return m_smsUtility.GetPreferredStorage(storage);
}

int CAtSublayer::SMSSetValidPeriod(const TSmsValidPeriod& period) {
    return m_smsUtility.SetValidPeriod(period);
}

int CAtSublayer::SMSEnableStatusReport(int enable) {
    return m_smsUtility.EnableStatusReport(enable);
}

int CAtSublayer::SMSGetStorageState(TSmsStorageState& state) {
    return m_smsUtility.GetStorageState(state);
}

int CAtSublayer::SMSRegisterPCCallback(void* context, SmsPCListCallback list, SmsPCSaveCallback save,
                                       SmsPCDeleteCallback remove, int enable) {
    return m_smsUtility.RegisterPCCallback(context, list, save, remove, enable);
}

int CAtSublayer::SMSSetIMSI(const char* imsi) {
    return m_smsUtility.SetIMSI(imsi);
}

int CAtSublayer::SMSSetLatinSupport(int enable) {
    return m_smsUtility.SetLatinSupport(enable);
}

int CAtSublayer::SMSRegisterSMSFilter(SmsFilterCallback filter, SmsFilterNotifyCallback notify,
                                      void* filterContext, void* notifyContext) {
    return m_smsUtility.RegisterSMSFilter(filter, notify, filterContext, notifyContext);
}

int CAtSublayer::CheckUssdState(int& state) {
    return m_ussdUtility.CheckUssdState(state);
}

int CAtSublayer::SetUssdState(int& state) {
    return m_ussdUtility.SetUssdState(state);
}

int CAtSublayer::SendUssdCmd(const wchar_t* text) {
    return m_ussdUtility.SendUssdCmd(text);
}

int CAtSublayer::SendUssdCancelCmd() {
    return m_ussdUtility.SendUssdCancelCmd();
}

int CAtSublayer::UssdOnReceive(const char* line, TUssdItem& item) {
    return m_ussdUtility.Receive(line, item);
}

int CAtSublayer::CallInit() {
    return m_callUtility.Init();
}

int CAtSublayer::CallDial(const char* number) {
    return m_callUtility.Dial(number);
}

int CAtSublayer::CallAnswer() {
    return m_callUtility.Answer();
}

int CAtSublayer::CallHangUp() {
    return m_callUtility.HangUp();
}

int CAtSublayer::CallSendDTMF(char tone) {
    return m_callUtility.SendDTMF(tone);
}

int CAtSublayer::CallHandleCallEnd(bool& allEnded) {
    return m_callUtility.HandleCallEnd(allEnded);
}

int CAtSublayer::CallHandleRing(std::string& number) {
    return m_callUtility.HandleRing(number);
}

int CAtSublayer::CallCheckState(std::list<TCallItemState>& calls) {
    return m_callUtility.CheckCallState(calls);
}

int CAtSublayer::GPSInit() {
    return m_gpsUtility.InitGPS();
}

int CAtSublayer::GPSUninit() {
    return m_gpsUtility.UninitGPS();
}

int CAtSublayer::STKSendCommand(const char* command, std::string& text) {
    return m_stkUtility.SendCommand(command, text);
}

int CAtSublayer::STKHandleReport(const char* line, std::string& text) {
    return m_stkUtility.HandleReport(line, text);
}

int CAtSublayer::STKInit(std::string& text) {
    return m_stkUtility.Init(text);
}

int CAtSublayer::STKGetCurrentProactiveCommand(int& type, std::string& text) {
    return m_stkUtility.GetCurrentProactiveCommand(type, text);
}

int ATSubLayer_CreateInstance(TInterfaceAtSublayer*& instance) {
    TInterfaceAtSublayer* created = new (std::nothrow) CAtSublayer();
    if (created == nullptr)
        return 1;
    instance = created;
    return 0;
}

int ATSubLayer_DestroyInstance(TInterfaceAtSublayer*& instance) {
    delete instance;
    instance = nullptr;
    return 0;
}

namespace {

enum class PayloadKind { None, NewSms, Cusd, Text };

struct ReportPrefix {
    const char* prefix;
    int code;
    PayloadKind payload;
};

// Searched in this order; the first prefix the line starts with wins. "+CUSD: " needs its blank:
// "+CUSD:1" is not a USSD answer.
constexpr ReportPrefix kReportPrefixes[] = {
    {"+CMTI:", ATS_REPORT_NEW_SMS, PayloadKind::NewSms},
    {"+CDSI:", ATS_REPORT_NEW_SMS, PayloadKind::NewSms},
    {"+CUSD: ", ATS_REPORT_CUSD, PayloadKind::Cusd},
    {"BUSY", ATS_REPORT_BUSY, PayloadKind::None},
    {"NO ANSWER", ATS_REPORT_NO_ANSWER, PayloadKind::None},
    {"NO CARRIER", ATS_REPORT_NO_CARRIER, PayloadKind::None},
    {"NO DIALTONE", ATS_REPORT_NO_DIALTONE, PayloadKind::None},
    {"RING", ATS_REPORT_RING, PayloadKind::None},
    {"+CRING:", ATS_REPORT_RING, PayloadKind::None},
    {"+STIN:", ATS_REPORT_STK, PayloadKind::Text},
};

} // namespace

int ATSublayer_HandleReport(void* context, const char* line) {
    if (context == nullptr)
        return 0;
    UpperReportCallback callback = nullptr;
    void* upperContext = nullptr;
    static_cast<TInterfaceAtSublayer*>(context)->GetUpperReport(callback, upperContext);
    if (callback == nullptr || line == nullptr)
        return 0;

    for (const ReportPrefix& entry : kReportPrefixes) {
        if (std::strncmp(line, entry.prefix, std::strlen(entry.prefix)) != 0)
            continue;
        switch (entry.payload) {
        case PayloadKind::None:
            callback(upperContext, entry.code, nullptr);
            break;
        case PayloadKind::NewSms: {
            const TASRNewSMS report{line};
            callback(upperContext, entry.code, &report);
            break;
        }
        case PayloadKind::Cusd: {
            const TASRCusd report{line};
            callback(upperContext, entry.code, &report);
            break;
        }
        case PayloadKind::Text: {
            const std::string text(line);
            callback(upperContext, entry.code, &text);
            break;
        }
        }
        break;
    }
    return 0;
}
