#include "../device/TestWorld.h"

#include "ATSublayer.h"
#include "BLRecords.h"
#include "BusinessOperator.h"
#include "ComOperation.h"
#include "NetworkOperator.h"
#include "ScriptedAtFake.h"
#include "WorkNotification.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace {

// The real sublayer, talking to the scripted modem, with hooks in front of some operations. An operation
// without a hook reaches the modem script, so an unexpected call fails the test; the operations that change
// the modem's settings are only recorded.
// clang-format off
class HookedSublayer : public TInterfaceAtSublayer {
public:
    explicit HookedSublayer(TInterfaceAtSublayer* inner) : inner(inner) {}

    int StartCommunication(const void* argument) override { return inner->StartCommunication(argument); }
    int EndCommunication() override { return inner->EndCommunication(); }
    int RestartCommunication() override { return inner->RestartCommunication(); }
    void CancelCurATExecution() override { return inner->CancelCurATExecution(); }
    int RegisterReportCallback(UpperReportCallback callback, void* context) override { return inner->RegisterReportCallback(callback, context); }
    int RegisterLowerCBs(const TInterfaceAtSublayerLower& lower) override { return inner->RegisterLowerCBs(lower); }
    int GetUpperReport(UpperReportCallback& callback, void*& context) override { return inner->GetUpperReport(callback, context); }
    int SystemInitComm() override { return inner->SystemInitComm(); }
    int SystemSyncComm() override { return inner->SystemSyncComm(); }
    int SystemSetPdpContext(const char* apn, const char* pdpAddress) override { return inner->SystemSetPdpContext(apn, pdpAddress); }
    int SystemSetPhoneFunctionality(int level) override { return inner->SystemSetPhoneFunctionality(level); }
    int SystemGetDeviceStartState(int& state) override { return inner->SystemGetDeviceStartState(state); }
    int SystemSetDeviceStartState(int state) override { return inner->SystemSetDeviceStartState(state); }
    int PINEnable(int on, const char* pin) override { return inner->PINEnable(on, pin); }
    int PINGetInfo(int pinState, TPinInfo& info) override { return inner->PINGetInfo(pinState, info); }
    int PINChange(const char* oldPin, const char* newPin) override { return inner->PINChange(oldPin, newPin); }
    int PINVerify(const char* pin) override { return inner->PINVerify(pin); }
    int PINVerifyPuk(const char* puk, const char* newPin) override { return inner->PINVerifyPuk(puk, newPin); }
    int PINGetState(int& enabled) override { return inner->PINGetState(enabled); }
    int NetworkSet(int mask, int mode, int format, const char* oper, int accessTechnology) override { return inner->NetworkSet(mask, mode, format, oper, accessTechnology); }
    int NetworkInit() override { return inner->NetworkInit(); }
    int NetworkGetRssiLevel(int& level) override { return inner->NetworkGetRssiLevel(level); }
    int NetworkSetBand(int band) override { return inner->NetworkSetBand(band); }
    int NetworkGetBand(int& band) override { return inner->NetworkGetBand(band); }
    int NetworkSetMode(int mode) override { return inner->NetworkSetMode(mode); }
    int NetworkGetMode(int& mode) override { return inner->NetworkGetMode(mode); }
    int NetworkGetSignalDBValue(int& value) override { return inner->NetworkGetSignalDBValue(value); }
    int NetworkGetSignalReading(TSignalReading& r) override { return inner->NetworkGetSignalReading(r); }
    int PBGetConstraint(TPbConstraint& constraint) override { return inner->PBGetConstraint(constraint); }
    int PBDeleteItem(int storage, int index) override { return inner->PBDeleteItem(storage, index); }
    int PBUpdateItem(const TPbItem& item) override { return inner->PBUpdateItem(item); }
    int PBGetStorageInfo(TPbStorageInfo& info) override { return inner->PBGetStorageInfo(info); }
    int PBAddItem(const TPbNewItem& item, int& index) override { return inner->PBAddItem(item, index); }
    int SMSInit() override { return inner->SMSInit(); }
    int SMSGetServiceCentre(TSmsAddress& address) override { return inner->SMSGetServiceCentre(address); }
    int SMSGetIncomingSMSInPC(std::list<TSmsListItem>& items) override { return inner->SMSGetIncomingSMSInPC(items); }
    int SMSGetPreferredStorage(int& storage) override { return inner->SMSGetPreferredStorage(storage); }
    int SMSGetStorageState(TSmsStorageState& state) override { return inner->SMSGetStorageState(state); }
    int SMSRegisterPCCallback(void* context, SmsPCListCallback list, SmsPCSaveCallback save, SmsPCDeleteCallback remove, int enable) override { return inner->SMSRegisterPCCallback(context, list, save, remove, enable); }
    int SMSSetIMSI(const char* imsi) override { return inner->SMSSetIMSI(imsi); }
    int SMSSetLatinSupport(int enable) override { return inner->SMSSetLatinSupport(enable); }
    int SMSRegisterSMSFilter(SmsFilterCallback filter, SmsFilterNotifyCallback notify, void* filterContext, void* notifyContext) override { return inner->SMSRegisterSMSFilter(filter, notify, filterContext, notifyContext); }
    int CheckUssdState(int& state) override { return inner->CheckUssdState(state); }
    int CallInit() override { return inner->CallInit(); }
    int CallDial(const char* number) override { return inner->CallDial(number); }
    int CallAnswer() override { return inner->CallAnswer(); }
    int CallHangUp() override { return inner->CallHangUp(); }
    int CallSendDTMF(char tone) override { return inner->CallSendDTMF(tone); }
    int CallHandleCallEnd(bool& allEnded) override { return inner->CallHandleCallEnd(allEnded); }
    int CallHandleRing(std::string& number) override { return inner->CallHandleRing(number); }
    int CallCheckState(std::list<TCallItemState>& calls) override { return inner->CallCheckState(calls); }
    int GPSInit() override { return inner->GPSInit(); }
    int GPSUninit() override { return inner->GPSUninit(); }
    int STKSendCommand(const char* command, std::string& text) override { return inner->STKSendCommand(command, text); }
    int STKHandleReport(const char* line, std::string& text) override { return inner->STKHandleReport(line, text); }
    int STKInit(std::string& text) override { return inner->STKInit(text); }
    int STKGetCurrentProactiveCommand(int& type, std::string& text) override { return inner->STKGetCurrentProactiveCommand(type, text); }

    std::function<int(TEquipmentInfo&)> getEquipmentInfo;
    std::function<int(TNetworkInfo&)> getNetworkInfo;
    std::function<int(std::list<TNetworkListItem>&)> getNetworkList;
    std::vector<std::string> calls; // the recorded operations, with their arguments
    int nextResult = 0;             // what the recorded operations return

    int SystemGetEquipmentInfo(TEquipmentInfo& info) override { return getEquipmentInfo ? getEquipmentInfo(info) : inner->SystemGetEquipmentInfo(info); }
    int NetworkGetInfo(TNetworkInfo& info) override { return getNetworkInfo ? getNetworkInfo(info) : inner->NetworkGetInfo(info); }
    int PINCheckState(int& state) override { return inner->PINCheckState(state); }
    int NetworkGetRegState(int which, int& state) override { return inner->NetworkGetRegState(which, state); }
    int NetworkGetPSAttachState(int& state) override { return inner->NetworkGetPSAttachState(state); }
    int NetworkGetList(std::list<TNetworkListItem>& items) override { return getNetworkList ? getNetworkList(items) : inner->NetworkGetList(items); }
    int SMSOnReceive(const char* line, TSmsListItem& item, int& kind) override { return inner->SMSOnReceive(line, item, kind); }
    int SMSGetList(std::list<TSmsListItem>& items) override { return inner->SMSGetList(items); }
    int PBInitList(std::list<TPbItem>& items) override { return inner->PBInitList(items); }
    int UssdOnReceive(const char* line, TUssdItem& item) override { return inner->UssdOnReceive(line, item); }

    int SMSDelete(int tableId) override { return record("SMSDelete " + std::to_string(tableId)); }
    int SMSSetServiceCentre(const TSmsAddress& address) override { return record("SMSSetServiceCentre " + std::string(address.szNumber, strnlen(address.szNumber, 24))); }
    int SMSSend(const TSmsSendItem& item) override { return record("SMSSend " + std::string(item.szNumber, strnlen(item.szNumber, 24)) + " " + std::to_string(item.wstrContent.size())); }
    int SMSEnableStatusReport(int enable) override { return record("SMSEnableStatusReport " + std::to_string(enable)); }
    int SMSSetPreferredStorage(int storage) override { return record("SMSSetPreferredStorage " + std::to_string(storage)); }
    int SMSSetValidPeriod(const TSmsValidPeriod& p) override { return record("SMSSetValidPeriod " + std::to_string(p.bEnable) + "," + std::to_string(p.bWeek) + "," + std::to_string(p.bDay) + "," + std::to_string(p.bHour)); }
    int SetUssdState(int& state) override { return record("SetUssdState " + std::to_string(state)); }
    int SendUssdCmd(const wchar_t* text) override { return record("SendUssdCmd " + std::to_string(std::wcslen(text))); }
    int SendUssdCancelCmd() override { return record("SendUssdCancelCmd"); }

private:
    TInterfaceAtSublayer* inner;
    int record(std::string call) {
        calls.push_back(std::move(call));
        return nextResult;
    }
};
// clang-format on

QVariantMap request(const QVariant& value) {
    QVariantMap map;
    WorkNotification::SetValueObject(map, value);
    return map;
}

std::string answer(const std::string& line) {
    return "\r\n" + line + "\r\n\r\nOK\r\n";
}

const std::string kCharSetIra = answer("+CSCS: \"IRA\"");
const std::string kCharSetUcs2 = answer("+CSCS: \"UCS2\"");
const std::string kCmeError = "\r\n+CME ERROR: 50\r\n";

// The channel's report queue: the scripted modem's unsolicited lines go there, as a real modem's do.
std::vector<std::string> takeReports(bool keep = false) {
    UnsolicitedReportList* reports = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(reports);
    std::vector<std::string> lines;
    for (const UnsolicitedReportDataType* report : *reports)
        lines.push_back(report->strText);
    if (!keep) {
        for (UnsolicitedReportDataType* report : *reports)
            delete report;
        reports->clear();
    }
    return lines;
}

int execThroughChannel(const char* command, const char* expected, int timeoutMs,
                       const std::list<std::string>& finals, std::string& response) {
    const int result = ScriptedAtFake::ExecAT(command, expected, timeoutMs, finals, response);
    if (result == 0)
        ComOperation::GetInstance()->checkUnsolicitedReport(response, expected);
    return result;
}

// A toolkit answer as the client sends it, built for the character set teSet.
QVariantMap answerIn(const QString& command, int teSet = USSD_TE_IRA) {
    return request(QVariantMap{{SatKey::kCommand, command}, {SatKey::kCharSet, teSet}});
}

// A business operation as the rows call it: with the request, the response or both.
using B = BusinessOperator;
using Map = QVariantMap;
struct Op {
    const char* name;
    std::function<int(B&, const Map&, Map&)> call;
};
// clang-format off
#define TAKES(f) Op{#f, [](B& b, const Map& r, Map&) { return b.f(r); }}
#define GIVES(f) Op{#f, [](B& b, const Map&, Map& out) { return b.f(out); }}
#define TAKES_GIVES(f) Op{#f, [](B& b, const Map& r, Map& out) { return b.f(r, out); }}
// clang-format on

class BusinessOperatorTest : public ::testing::Test {
protected:
    void SetUp() override {
        registerRecordMetaTypes();
        takeReports();
        ASSERT_EQ(ATSubLayer_CreateInstance(m_real), 0);
        TInterfaceAtSublayerLower lower;
        lower.pfnExecAT = &execThroughChannel;
        m_real->RegisterLowerCBs(lower);
        m_sublayer = std::make_unique<HookedSublayer>(m_real);
        m_business =
            std::make_unique<BusinessOperator>(ComOperation::GetInstance(), m_sublayer.get(), nullptr);
    }
    void TearDown() override {
        m_business.reset();
        m_sublayer.reset();
        ATSubLayer_DestroyInstance(m_real);
        takeReports();
    }

    ScriptedAtFake m_fake;
    TInterfaceAtSublayer* m_real = nullptr;
    std::unique_ptr<HookedSublayer> m_sublayer;
    std::unique_ptr<BusinessOperator> m_business;
};

// Texts that fill their fields to the last byte (no terminator) stay inside them.
TEST_F(BusinessOperatorTest, UnterminatedFieldsStayInsideAndFailuresPassOn) {
    // clang-format off
    struct Row { uint32_t mask; int result; bool stored; };
    const Row rows[] = {{127, 0, true}, {0, 0, true}, {EQUIPMENT_IMSI, 0, true}, {127, 2, false}};
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "mask " << row.mask << " result " << row.result);
        m_sublayer->getEquipmentInfo = [&](TEquipmentInfo& info) {
            std::memset(static_cast<void*>(&info), 'x', sizeof info);
            info.nMask = row.mask;
            return row.result;
        };
        QVariantMap response;
        EXPECT_EQ(m_business->GetEquipmentInfo(response), row.result);
        EXPECT_EQ(response.contains(VALUE_OBJECT), row.stored);
        if (!row.stored)
            continue;
        const auto info = WorkNotification::GetValueObject(response).value<BLEquipmentInfo>();
        const std::tuple<uint32_t, QString, int> fields[] = {
            {EQUIPMENT_MANUFACTURER, info.strManufacturer, 2048},
            {EQUIPMENT_MODEL, info.strModel, 2048},
            {EQUIPMENT_REVISION, info.strRevision, 2048},
            {EQUIPMENT_SERIAL_NUMBER, info.strSerialNumber, 2048},
            {EQUIPMENT_IMSI, info.strImsi, 15},
            {EQUIPMENT_MSISDN, info.strMsisdn, kMsisdnNumberSize},
            {EQUIPMENT_HARDWARE_VERSION, info.strHardwareVersion, 21}};
        for (const auto& [bit, text, length] : fields) {
            EXPECT_EQ(text.isNull(), !(row.mask & bit)) << "bit " << bit;
            EXPECT_EQ(text, row.mask & bit ? QString(length, 'x') : QString()) << "bit " << bit;
        }
    }

    // The network names likewise; the provider name comes only when present.
    m_sublayer->getNetworkList = [](std::list<TNetworkListItem>& items) {
        TNetworkListItem item;
        std::memset(static_cast<void*>(&item), 'n', sizeof item);
        item.nState = 1;
        item.nAcT = 2;
        items.push_back(item);
        return 0;
    };
    QVariantMap list;
    EXPECT_EQ(m_business->NetworkGetList(list), 0);
    EXPECT_EQ(WorkNotification::GetValueObject(list).toList().value(0).value<BLNetworkListItem>(),
              (BLNetworkListItem{0, 1, QString(16, 'n'), QString(8, 'n'), QString(6, 'n'), 2}));

    for (const int present : {1, 0}) {
        m_sublayer->getNetworkInfo = [&](TNetworkInfo& info) {
            info.spInfo.nPresent = present;
            info.spInfo.nDisplay = 2;
            for (char16_t& unit : info.spInfo.wszSpName)
                unit = u'\u00e9';
            std::memset(info.szOperator, 'o', sizeof info.szOperator);
            info.nPsRegState = 5;
            return 0;
        };
        QVariantMap response;
        ASSERT_EQ(m_business->NetworkGetInfo(response), 0);
        const auto info = WorkNotification::GetValueObject(response).value<BLNetworkInfo>();
        EXPECT_EQ(info.strSpName.isNull(), present == 0);
        if (present) {
            EXPECT_EQ(info.strSpName, QString(kSpNameSize, QChar(0xe9)));
        }
        EXPECT_EQ(info.strOperator, QString(kOperatorTextSize, 'o'));
        EXPECT_EQ(info.nDisplayMask, 2);
        EXPECT_EQ(info.nGprsState, 5);
    }
}

// A family's exchange as the business layer turns it into a result and a stored value.
TEST_F(BusinessOperatorTest, ExchangesBecomeResultsAndStoredValues) {
    const Op pinState = GIVES(PINCheckState), pinChange = TAKES_GIVES(PINChange),
             pinEnable = TAKES(PINEnable), verify = TAKES(PINVerify), verifyPuk = TAKES(PINVerifyPuk),
             setMode = TAKES(NetworkSetMode), operators = GIVES(NetworkGetList), menu = GIVES(SatGetMenu),
             select = TAKES_GIVES(SatSelectItem), poll = GIVES(SatPoll), dial = TAKES(CallDial),
             dtmf = TAKES(CallSendDTMF), callList = GIVES(CallGetList);
    const auto pin = [](qint32 state, qint32 pins, qint32 puks) {
        return QVariant::fromValue(BLPinCheckState{state, pins, puks});
    };
    const auto op = [](qint32 state, QString name, QString shortName, QString numeric, qint32 act) {
        return QVariant::fromValue(BLNetworkListItem{0, state, name, shortName, numeric, act});
    };
    const std::string listing = answer("+STGI: 17,\"004D0065006E00FC\",1\r\n+STGI: 17,9,\"0053\"");
    const auto menuIn = [&](int teSet) {
        return QVariantMap{{SatKey::kListing, QString::fromStdString(listing)}, {SatKey::kCharSet, teSet}};
    };
    const auto calls = [](QList<BLCallItem> items) { return QVariant::fromValue(items); };
    const std::string games = answer("+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\""),
                      bye = answer("+STGI: 1,\"Bye\",0,1");
    const auto satValue = [](bool sent, const std::string& listing, int teSet = USSD_TE_IRA) {
        QVariantMap value{{SatKey::kSent, sent}, {SatKey::kCharSet, teSet}};
        if (sent)
            value[SatKey::kListing] = QString::fromStdString(listing);
        return QVariant(value);
    };
    const QVariantMap change = request(QVariant::fromValue(BLPINChangeInfo{"1234", "4321"}));
    const std::string cpin = "AT+CPIN?\r", pnnm = "AT+PNNM?\r", cpwd = "AT+CPWD=\"SC\",\"1234\",\"4321\"\r";
    const std::string syssel = "AT+SYSSEL=,0,0\r", cops = "AT+COPS=?\r", stgi = "AT+STGI=17\r";
    const std::string cscs = "AT+CSCS?\r", clcc = "AT+CLCC\r", ok = "\r\nOK\r\n";
    const QVariant none; // nothing stored
    // clang-format off
    struct Step { std::string command; std::string answer; int failure = 0; };
    // stored: nullopt when the test does not look at it
    struct Row { const char* name; Op op; QVariantMap request; std::vector<Step> steps; int result; std::optional<QVariant> stored; };
    const Row rows[] = {
        // The PIN state fetches the counters that state needs.
        {"ready", pinState, {}, {{cpin, answer("+CPIN: READY")}, {pnnm, answer("+PNNM: 3, 10")}}, 0, pin(1, 3, 10)},
        {"ready, no PUK attempt left", pinState, {}, {{cpin, answer("+CPIN: READY")}, {pnnm, answer("+PNNM: 3, 0")}}, 0, pin(17, 3, 0)},
        {"PIN", pinState, {}, {{cpin, answer("+CPIN: SIM PIN")}, {pnnm, answer("+PNNM: 2, 10")}}, 0, pin(2, 2, 10)},
        {"no SIM", pinState, {}, {{cpin, "\r\n+CME ERROR: SIM not inserted\r\n"}}, 0, pin(0, 0, 0)},
        {"counters missing", pinState, {}, {{cpin, answer("+CPIN: READY")}, {pnnm, ok}}, 1, none},
        {"counters refused", pinState, {}, {{cpin, answer("+CPIN: SIM PIN")}, {pnnm, "\r\nERROR\r\n"}}, 1, none},
        {"SIM busy", pinState, {}, {{cpin, "\r\n+CME ERROR: SIM busy\r\n"}}, 12, none},
        // A PIN change stores the state even when the change fails.
        {"change", pinChange, change, {{cpwd, ok}, {cpin, answer("+CPIN: READY")}}, 0, 1},
        {"change refused", pinChange, change, {{cpwd, "\r\n+CME ERROR: incorrect password\r\n"}, {cpin, answer("+CPIN: SIM PIN")}}, 14, 2},
        {"change and state time out", pinChange, change, {{cpwd, "", 2}, {cpin, "", 2}}, 2, 1}, // the preset 1 is stored
        // However the request came (a wrong record reads as empty codes), a malformed code costs no SIM attempt.
        {"enable with a list", pinEnable, request(QVariantList{1, 2}), {}, WORKER_ERR_INVALID_ARGUMENT, {}},
        {"enable with letters", pinEnable, request(QVariant::fromValue(BLPINEnableInfo{true, "12ab"})), {}, WORKER_ERR_INVALID_ARGUMENT, {}},
        {"verify with a second command", verify, request("1234\";+CFUN=0"), {}, WORKER_ERR_INVALID_ARGUMENT, {}},
        {"PUK too short", verifyPuk, request(QVariant::fromValue(BLPINVerifyPukInfo{"1234567", "1234"})), {}, WORKER_ERR_INVALID_ARGUMENT, {}},
        {"change with another record", pinChange, request(QVariant::fromValue(BLSmsSendItem{})), {}, WORKER_ERR_INVALID_ARGUMENT, {}},
        // Setting the mode turns a refusal into 33.
        {"mode", setMode, request(0), {{syssel, ok}}, 0, none},
        {"mode refused", setMode, request(0), {{syssel, "\r\nERROR\r\n"}}, 33, none},
        // The operator list keeps the modem's order and repeats; no operator is an empty list.
        {"operators", operators, {}, {{cops, answer("+COPS: (2,\"Acme\",\"ACME\",\"00101\",2),(1,\"Beta\",\"BETA\",\"00102\",0),(3,\"Acme\",\"ACME\",\"00101\",0),,(0,1,2,3,4),(0,1,2)")}}, 0,
         QVariantList{op(2, "Acme", "ACME", "00101", 2), op(1, "Beta", "BETA", "00102", 0), op(3, "Acme", "ACME", "00101", 0)}},
        {"no operator", operators, {}, {{cops, answer("+COPS: ,,(0,1,2,3,4),(0,1,2)")}}, 0, QVariantList{}},
        {"operators refused", operators, {}, {{cops, "\r\n+CME ERROR: no network service\r\n"}}, 1, none},
        // The toolkit's main menu comes with the modem's character set (any other than UCS2 reads as IRA).
        {"menu in UCS2", menu, {}, {{stgi, listing}, {cscs, kCharSetUcs2}}, 0, menuIn(USSD_TE_UCS2)},
        {"menu in Latin-1", menu, {}, {{stgi, listing}, {cscs, answer("+CSCS: \"8859-1\"")}}, 0, menuIn(USSD_TE_IRA)},
        {"menu refused", menu, {}, {{stgi, kCmeError}}, 1, none},
        // Only toolkit answers are sent.
        {"answer without argument", select, {}, {}, 3, {}},
        {"another command", select, answerIn("AT+CFUN=0"), {}, 45, {}},
        {"second command after it", select, answerIn("AT+STGR=0,0,1;+CFUN=0"), {}, 45, {}},
        {"line break inside", select, answerIn("AT+STGR=0,0,1\rAT+CFUN=0"), {}, 45, {}},
        {"open quote", select, answerIn("AT+STGR=3,0,,\"Paris"), {}, 45, {}},
        {"semicolon quoted", select, answerIn("AT+STGR=3,0,,\"a;b\""), {{cscs, kCharSetIra}, {"AT+STGR=3,0,,\"a;b\"\r", ok}}, 0, {}},
        {"card refuses", select, answerIn("AT+STGR=0,0,9"), {{cscs, kCharSetIra}, {"AT+STGR=0,0,9\r", kCmeError}}, 1, {}},
        // An answer goes out only in the set it was built for; the command the card announced by then (in
        // the answer itself, or on a later poll) is fetched.
        {"answer built for another set", select, answerIn("AT+STGR=0,0,2"), {{cscs, kCharSetUcs2}}, 0, satValue(false, "", USSD_TE_UCS2)},
        {"answer, nothing announced", select, answerIn("AT+STGR=0,0,2"), {{cscs, kCharSetIra}, {"AT+STGR=0,0,2\r", ok}}, 0, satValue(true, "")},
        {"answer announces", select, answerIn("AT+STGR=11,0,,2"), {{cscs, kCharSetIra}, {"AT+STGR=11,0,,2\r", "\r\n+STIN: 1\r\n\r\nOK\r\n"}, {"AT+STGI=1\r", bye}}, 0, satValue(true, bye)},
        {"poll, nothing announced", poll, {}, {{"AT\r", ok}}, 0, satValue(true, "")},
        {"poll, announced", poll, {}, {{"AT\r", answer("+STIN: 11")}, {"AT+STGI=11\r", games}, {cscs, kCharSetIra}}, 0, satValue(true, games)},
        // Dialling sends only dial strings and passes the call's results on.
        {"answered", dial, request(QStringLiteral("+491701234567")), {{"ATD+491701234567;\r", ok}}, 0, none},
        {"busy", dial, request(QStringLiteral("0301234")), {{"ATD0301234;\r", "\r\nBUSY\r\n"}}, 27, none},
        {"second command smuggled in", dial, request(QStringLiteral("12;AT+CFUN=0")), {}, 1, none},
        {"number too long", dial, request(QString(41, QChar('1'))), {}, 1, none},
        {"dial without argument", dial, {}, {}, 3, none},
        // Tones: every key is checked before any is sent.
        {"every key kind", dtmf, request(QStringLiteral("1*#D")), {{"AT+VTS=1\r", ok}, {"AT+VTS=*\r", ok}, {"AT+VTS=#\r", ok}, {"AT+VTS=D\r", ok}}, 0, none},
        {"a bad key at the end", dtmf, request(QStringLiteral("12E")), {}, 1, none},
        {"stops at the first refusal", dtmf, request(QStringLiteral("12")), {{"AT+VTS=1\r", kCmeError}}, 1, none},
        {"too many keys", dtmf, request(QString(65, QChar('1'))), {}, 1, none},
        {"no keys", dtmf, request(QString("")), {}, 3, none},
        {"tones without argument", dtmf, {}, {}, 3, none},
        // The call list becomes records with capped numbers; no call is an empty list.
        {"calls", callList, {}, {{clcc, answer("+CLCC: 1,0,0,0,0,\"491701234567\",145\r\n+CLCC: 2,1,5,0,0,\"0301234\",129\r\n+CLCC: 3,1,4,0,0,\"1234567890123456789012345\",129")}}, 0,
         calls({{1, 0, 0, 0, 0, 145, "+491701234567"}, {2, 1, 5, 0, 0, 129, "0301234"}, {3, 1, 4, 0, 0, 129, "123456789012345678901"}})},
        {"no call", callList, {}, {{clcc, ok}}, 0, calls({})},
        {"call list refused", callList, {}, {{clcc, kCmeError}}, 1, none},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        for (const Step& step : row.steps)
            m_fake.Expect(step.command, step.answer, step.failure);
        QVariantMap response;
        EXPECT_EQ(row.op.call(*m_business, row.request, response), row.result);
        if (row.stored) {
            EXPECT_EQ(WorkNotification::GetValueObject(response), *row.stored);
        }
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessOperatorTest, MissingArgumentIsCode3WithoutTouchingTheModem) {
    // clang-format off
    const Op ops[] = {
        TAKES(PINEnable), TAKES_GIVES(PINGetInfo), TAKES_GIVES(PINChange), TAKES(PINVerify), TAKES(PINVerifyPuk),
        TAKES(NetworkSet), TAKES(NetworkSetBand), TAKES(NetworkSetMode), TAKES(PBDeleteItem), TAKES(PBUpdateItem),
        TAKES_GIVES(PBAddItem), TAKES(SMSSetServiceCentre), TAKES(SMSDelete), TAKES(SMSSend), TAKES(SMSSetPreferredStorage),
        TAKES(SMSSetValidPeriod), TAKES(USSDSendCmd), TAKES_GIVES(OnReceiveSMS), TAKES_GIVES(OnReceiveUSSD),
        TAKES_GIVES(OnReceiveSATCMD), TAKES(Dialup),
    };
    // clang-format on
    for (const Op& op : ops) {
        SCOPED_TRACE(op.name);
        QVariantMap out;
        EXPECT_EQ(op.call(*m_business, QVariantMap{}, out), 3);
        EXPECT_EQ(op.call(*m_business, request(QVariant()), out), 3);
        EXPECT_TRUE(out.isEmpty());
    }
    EXPECT_TRUE(m_fake.Calls().empty());
    EXPECT_TRUE(m_sublayer->calls.empty());

    // Three requests take a missing argument as a plain value.
    EXPECT_EQ(m_business->USSDSetState({}), 0);
    EXPECT_TRUE(m_sublayer->calls.empty());
    EXPECT_EQ(m_business->SMSSetStatusReportFlag({}), 0);
    EXPECT_EQ(m_sublayer->calls, (std::vector<std::string>{"SMSEnableStatusReport 0"}));
}

TEST_F(BusinessOperatorTest, ArgumentsAreConvertedAndCapped) {
    const QString longNumber = "+8613800100500123456789"; // 23 characters
    const auto ussd = [](qint32 op) { return request(QVariant::fromValue(BLUssdSendCmdInfo{op, "*100#"})); };
    // clang-format off
    // stored: invalid when nothing is stored
    struct Row { const char* name; Op op; QVariantMap request; int sublayerResult; int result; std::vector<std::string> calls; QVariant stored; };
    const Row rows[] = {
        {"service centre", TAKES(SMSSetServiceCentre), request(longNumber), 0, 0, {"SMSSetServiceCentre +86138001005001234567"}, {}},
        {"service centre refused", TAKES(SMSSetServiceCentre), request("+8613800100500"), 4, 4, {"SMSSetServiceCentre +8613800100500"}, {}},
        {"send", TAKES(SMSSend), request(QVariant::fromValue(BLSmsSendItem{longNumber, "hello"})), 0, 0, {"SMSSend +86138001005001234567 5"}, {}},
        {"status report on", TAKES(SMSSetStatusReportFlag), request("TRUE"), 0, 0, {"SMSEnableStatusReport 1"}, {}},
        {"status report other text", TAKES(SMSSetStatusReportFlag), request("true"), 0, 0, {"SMSEnableStatusReport 0"}, {}},
        {"valid period", TAKES(SMSSetValidPeriod), request(QVariant::fromValue(BLSmsValidPeriod{1, 2, 3})), 0, 0, {"SMSSetValidPeriod 1,1,2,3"}, {}},
        {"preferred storage read resets it", GIVES(SMSGetPreferredStorage), {}, 0, 0, {"SMSSetPreferredStorage 0"}, 0},
        {"preferred storage read refused", GIVES(SMSGetPreferredStorage), {}, 2, 2, {"SMSSetPreferredStorage 0"}, {}},
        {"ussd state", TAKES(USSDSetState), request(2), 0, 0, {"SetUssdState 2"}, {}},
        {"ussd send", TAKES(USSDSendCmd), ussd(0), 0, 0, {"SendUssdCmd 5"}, {}},
        {"ussd cancel", TAKES(USSDSendCmd), ussd(1), 1, 1, {"SendUssdCancelCmd"}, {}},
        {"ussd other operation", TAKES(USSDSendCmd), ussd(5), 1, 0, {}, {}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        m_sublayer->calls.clear();
        m_sublayer->nextResult = row.sublayerResult;
        QVariantMap response;
        EXPECT_EQ(row.op.call(*m_business, row.request, response), row.result);
        EXPECT_EQ(m_sublayer->calls, row.calls);
        EXPECT_EQ(WorkNotification::GetValueObject(response), row.stored);
    }
}

TEST_F(BusinessOperatorTest, ConnectionRequestsWithoutADialUpService) {
    TempWorld world;
    world.env.set("DIALTONE_PEERS_DIR", world.home());
    TempWorld::writeFile(world.dev() + "/cu.VELMobileConnector0", {});
    // clang-format off
    const struct { QString deviceName; int result; } rows[] = {
        {"", 38},                    // no device name
        {"VELMobileConnector9", 39}, // no such device
        {"VELMobileConnector0", 37}, // device, but no dial-up service on it
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.deviceName.toStdString());
        NetworkOperator network(row.deviceName);
        BusinessOperator business(nullptr, m_sublayer.get(), &network);
        QVariantMap response;
        EXPECT_EQ(business.ModemInit(response), row.result);
        EXPECT_EQ(WorkNotification::GetValueObject(response).toString(), row.deviceName);
    }

    NetworkOperator network("VELMobileConnector0");
    BusinessOperator business(nullptr, m_sublayer.get(), &network);
    BLConnectDialinfo dialInfo;
    dialInfo.strAPN = "internet";

    // The APN goes to the modem first; dialling without a service then fails, whatever the modem said.
    for (const char* pdpAnswer : {"\r\nOK\r\n", "\r\nERROR\r\n"}) {
        SCOPED_TRACE(ScriptedAtFake::Printable(pdpAnswer));
        m_fake.Expect("AT+CGDCONT=1,\"IP\",\"internet\"\r", pdpAnswer);
        EXPECT_EQ(business.Dialup(request(QVariant::fromValue(dialInfo))), 1);
        m_fake.VerifyDone();
    }
    // A profile stored with an APN the modem cannot take is neither sent nor dialled.
    dialInfo.strAPN = "inet\";+CMGD=1,4;+CFUN=0;\"";
    const std::size_t sent = m_fake.Calls().size();
    EXPECT_EQ(business.Dialup(request(QVariant::fromValue(dialInfo))), WORKER_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(m_fake.Calls().size(), sent);

    QVariantMap response;
    EXPECT_EQ(business.GetPPPStatus(response), 1);
    EXPECT_TRUE(response.isEmpty());
    EXPECT_EQ(business.GetConnectStatus(response), 0);
    EXPECT_EQ(WorkNotification::GetValueObject(response), QVariant(-1));
    EXPECT_EQ(business.GetStatistics(response), 0);
    EXPECT_EQ(WorkNotification::GetValueObject(response).value<BLConnectStatistics>(), BLConnectStatistics{});
    EXPECT_EQ(business.Disconnect(), 0);
}

// An answer drops the announcements still queued (of the dialogue it replaces); other reports stay.
TEST_F(BusinessOperatorTest, AnAnswerDropsStaleAnnouncementsOnly) {
    std::string stale = "\r\n+STIN: 6\r\n\r\n+CMTI: \"SM\",3\r\n";
    ComOperation::GetInstance()->checkUnsolicitedReport(stale, nullptr);
    m_fake.Expect("AT+CSCS?\r", kCharSetIra);
    m_fake.Expect("AT+STGR=0,0,2\r", "\r\nOK\r\n");
    QVariantMap sent;
    ASSERT_EQ(m_business->SatSelectItem(answerIn("AT+STGR=0,0,2"), sent), 0);
    EXPECT_EQ(WorkNotification::GetValueObject(sent).toMap().value(SatKey::kListing).toString(), "");
    EXPECT_EQ(takeReports(true), std::vector<std::string>{"\r\n+CMTI: \"SM\",3\r\n"});
    m_fake.VerifyDone();
}

TEST(BusinessOperatorDate, TimeStampIsReadAsLocalTimeWithTodaysOffset) {
    const int offset = QDateTime::currentDateTime().offsetFromUtc();
    const QDateTime date = BusinessOperator::convertDateTimeType2NSDate({2024, 1, 15, 8, 5, 9, 1});
    ASSERT_TRUE(date.isValid());
    EXPECT_EQ(date.offsetFromUtc(), offset);
    EXPECT_EQ(date.toString("yyyy-MM-dd HH:mm:ss"), "2024-01-15 08:05:09");
    EXPECT_EQ(date.toSecsSinceEpoch(),
              QDateTime(QDate(2024, 1, 15), QTime(8, 5, 9), QTimeZone::utc()).toSecsSinceEpoch() - offset);

    EXPECT_FALSE(BusinessOperator::convertDateTimeType2NSDate({2024, 13, 1, 0, 0, 0, 1}).isValid());
    EXPECT_FALSE(BusinessOperator::convertDateTimeType2NSDate({2024, 2, 30, 0, 0, 0, 1}).isValid());
}

} // namespace
