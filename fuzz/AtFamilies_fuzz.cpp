// Drives the AT command families with answers a modem could give: every command an operation sends gets
// the next fuzzed answer through a stand-in execute-AT callback, so the families' answer readers see
// what the channel would hand them (identity, IMSI, "+CNUM", "+CPIN", counters, "+COPS" and its list,
// "+SPNM", "+SPDI", "+CPBR", "+CUSD", "+STGI", "+CLCC", "+CMGL"/"+CMGR", "+CSCA", "+CPMS").
//
// Input: one octet that picks the operation, one octet that picks what happens once the answers are used
// up, then the answers separated by NUL octets (the channel never hands back a NUL).

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "CallUtility.h"
#include "DebugSink.h"
#include "ModemDialect.h"
#include "GPSUtility.h"
#include "NetworkUtility.h"
#include "PbUtility.h"
#include "PinUtility.h"
#include "STKUtility.h"
#include "SmsUtility.h"
#include "SystemUtility.h"
#include "UssdUtility.h"

namespace {

// The answers of one input, handed out in order.
struct Script {
    std::vector<std::string> answers;
    size_t next = 0;
    int calls = 0;
    int exhausted = 2; // the result once the answers are used up
};

Script g_script;

// Operations that loop over commands stop after this many calls, as a modem that stops answering does.
constexpr int kMaxCalls = 64;

int FuzzExecAT(const char* /*command*/, const char* /*expected*/, int /*timeoutMs*/,
               const std::list<std::string>& /*finalResults*/, std::string& response) {
    if (++g_script.calls > kMaxCalls)
        return 2;
    if (g_script.next >= g_script.answers.size()) {
        if (g_script.exhausted == 0 && !g_script.answers.empty()) {
            response = g_script.answers.back();
            return 0;
        }
        return g_script.exhausted;
    }
    response = g_script.answers[g_script.next++];
    return 0;
}

// The first answer, for the operations that read a report line rather than a command's answer.
std::string TakeLine() {
    if (g_script.next < g_script.answers.size())
        return g_script.answers[g_script.next++];
    return {};
}

template <typename Family> Family& Registered() {
    static Family family;
    family.RegisterExecAT(&FuzzExecAT);
    return family;
}

void RunSystem(int op) {
    CSystemUtility& sys = Registered<CSystemUtility>();
    switch (op % 8) {
    case 0: {
        TEquipmentInfo info;
        sys.GetEquipmentInfo(info);
        break;
    }
    case 1: {
        char text[kEquipmentTextSize];
        sys.GetManufacturer(text);
        break;
    }
    case 2: {
        char text[kHardwareVersionSize];
        sys.GetHardwareVersion(text);
        break;
    }
    case 3: {
        char imsi[kImsiSize];
        sys.GetImsi(imsi);
        break;
    }
    case 4: {
        TMsisdnInfo msisdn;
        sys.GetMsisdn(msisdn);
        break;
    }
    case 5: {
        int state = 0;
        sys.GetDeviceStartState(state);
        break;
    }
    case 6:
        sys.InitModem();
        break;
    default:
        sys.SetPdpContext("internet", "");
        break;
    }
}

void RunPin(int op) {
    CPinUtility& pin = Registered<CPinUtility>();
    int state = 0;
    switch (op % 5) {
    case 0:
        pin.CheckState(state);
        break;
    case 1: {
        // The counters: "+PNNM:" for PIN/PUK, "+SMPN:" for the personalisation locks (state 9).
        TPinInfo info;
        pin.GetInfo((op & 8) ? 9 : 2, info);
        break;
    }
    case 2:
        pin.GetState(state);
        break;
    case 3:
        pin.Verify("1234");
        break;
    default:
        pin.VerifyPuk("12345678", "1234");
        break;
    }
}

void RunNetwork(int op) {
    CNetworkUtility& net = Registered<CNetworkUtility>();
    int value = 0;
    switch (op % 12) {
    case 0: {
        TNetworkInfo info;
        net.GetInfo(info);
        break;
    }
    case 1: {
        std::list<TNetworkListItem> items;
        net.GetList(items);
        break;
    }
    case 2: {
        TNetworkBaseInfo info;
        net.GetBaseInfo(info);
        break;
    }
    case 3: {
        TServiceProviderInfo info;
        net.GetSpInfo(info);
        break;
    }
    case 4: {
        std::vector<TSpdiEntry> entries;
        net.GetSPDI(value, entries);
        break;
    }
    case 5:
        net.GetRegState(op & 1, value);
        break;
    case 6:
        net.GetPSAttachState(value);
        break;
    case 7:
        net.GetRssiLevel(value);
        net.GetSignalDBValue(value);
        break;
    case 8:
        net.GetBand(value);
        net.GetMode(value);
        break;
    case 9:
        net.GetDomain(value);
        net.GetBearer(value);
        break;
    case 10: {
        char imsi[kImsiSize];
        net.GetImsi(imsi);
        break;
    }
    default:
        net.Init();
        break;
    }
}

void RunPhonebook(int op) {
    CPbUtility& pb = Registered<CPbUtility>();
    const int storage = (op & 1) ? PB_STORAGE_MODEM : PB_STORAGE_SIM;
    switch ((op >> 1) % 5) {
    case 0: {
        std::list<TPbBaseItem> items;
        pb.GetList(storage, items);
        break;
    }
    case 1: {
        std::list<TPbItem> items;
        pb.InitList(items);
        break;
    }
    case 2: {
        TPbStorageInfo info;
        pb.GetStorageInfo(info);
        pb.GetStorageInfo(storage);
        break;
    }
    case 3: {
        TPbConstraint constraint;
        pb.GetConstraint(constraint);
        int name = 0, number = 0;
        pb.GetMaxLengthPair(name, number);
        break;
    }
    default: {
        TPbNewItem item;
        item.nStore = storage;
        item.wstrName = L"Alice";
        item.strNumber = "+15551234567";
        int index = 0;
        pb.AddItem(item, index);
        break;
    }
    }
}

void RunUssd(int op) {
    CUssdUility& ussd = Registered<CUssdUility>();
    switch (op % 4) {
    case 0: {
        TUssdItem item;
        const std::string line = TakeLine();
        ussd.Receive(line.c_str(), item);
        break;
    }
    case 1: {
        int state = 0;
        ussd.CheckUssdState(state);
        ussd.getEcodingFormat(state);
        break;
    }
    case 2:
        ussd.SendUssdCmd(L"*100#");
        break;
    default: {
        // Reports read in each terminal character set.
        TUssdItem item;
        const std::string line = TakeLine();
        CUssdUility::ParseCusdReport(line.c_str(), (op >> 2) % 8, item);
        break;
    }
    }
}

void RunToolkit(int op) {
    CSTKUtility& stk = Registered<CSTKUtility>();
    std::string text;
    switch (op % 3) {
    case 0:
        stk.Init(text);
        break;
    case 1: {
        int type = 0;
        stk.GetCurrentProactiveCommand(type, text);
        break;
    }
    default: {
        const std::string line = TakeLine();
        stk.HandleReport(line.c_str(), text);
        break;
    }
    }
}

void RunCall(int op) {
    CCallUtility& call = Registered<CCallUtility>();
    switch (op % 4) {
    case 0: {
        std::list<TCallItemState> calls;
        call.CheckCallState(calls);
        break;
    }
    case 1: {
        std::string number;
        call.HandleRing(number);
        break;
    }
    case 2: {
        bool allEnded = false;
        call.HandleCallEnd(allEnded);
        break;
    }
    default:
        call.Init();
        call.Dial("+15551234567");
        break;
    }
    CGPSUtility& gps = Registered<CGPSUtility>();
    if (op & 4)
        gps.InitGPS();
}

void RunSms(int op) {
    // A fresh family per input: the message table would otherwise grow without end.
    CSmsUtility sms;
    sms.RegisterExecAT(&FuzzExecAT);
    switch (op % 12) {
    case 0: {
        std::list<TSmsListItem> items;
        sms.GetList(items);
        break;
    }
    case 1: {
        std::list<TMessageListItem> items;
        sms.GetMessageList(3, 4, items);
        break;
    }
    case 2: {
        TMessageListItem item;
        sms.ReadMessageItem((op >> 4) & 1 ? 3 : 1, 1, item);
        break;
    }
    case 3: {
        TSmsListItem item;
        int kind = 0;
        const std::string line = TakeLine();
        sms.Receive(line.c_str(), item, kind);
        break;
    }
    case 4: {
        TSmsAddress address;
        sms.GetServiceCentre(address);
        break;
    }
    case 5: {
        TSmsStorageState state;
        sms.GetStorageState(state);
        break;
    }
    case 6: {
        int mem1 = 0, mem2 = 0, mem3 = 0;
        sms.GetPreferredMessageStorage(mem1, mem2, mem3);
        int used = 0, total = 0;
        sms.GetStorageInfo(1, used, total);
        break;
    }
    case 7: {
        int storage = 0, format = 0;
        sms.GetPreferredStorage(storage);
        sms.GetMessageFormat(format);
        break;
    }
    case 8: {
        TSmsSendItem item;
        std::snprintf(item.szNumber, sizeof(item.szNumber), "+15551234567");
        item.wstrContent = (op >> 4) & 1 ? std::wstring(200, L'x') : L"Hello \x4f60\x597d";
        sms.Send(item);
        break;
    }
    case 9:
        sms.Init();
        break;
    case 10: {
        // Listings and single reads, decoded without the commands.
        const std::string text = TakeLine();
        std::list<TMessageListBaseItem> items;
        CSmsUtility::DecodePduModeCMGL(text, items);
        TMessageListBaseItem item;
        CSmsUtility::DecodePduModeCMGR(text, item);
        break;
    }
    default: {
        std::list<TSmsListItem> items;
        sms.GetList(items);
        if (!items.empty())
            sms.Delete(items.front().nRef);
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    SetDebugSink(nullptr);
    const uint8_t op = data[0];
    static const int kExhausted[] = {2, 1, 30, 0};
    g_script = Script();
    g_script.exhausted = kExhausted[data[1] & 3];
    // Both ways of reading answers: exact for the stick this was written for, lenient for the others.
    SetModemDialect((data[1] & 4) != 0 ? ModemDialect::Standard : ModemDialect::Vel);
    std::string_view rest(reinterpret_cast<const char*>(data + 2), size - 2);
    for (;;) {
        const size_t nul = rest.find('\0');
        g_script.answers.emplace_back(rest.substr(0, nul));
        if (nul == std::string_view::npos)
            break;
        rest.remove_prefix(nul + 1);
    }

    const int family = op & 0x07;
    const int operation = op >> 3;
    switch (family) {
    case 0:
        RunSystem(operation);
        break;
    case 1:
        RunPin(operation);
        break;
    case 2:
        RunNetwork(operation);
        break;
    case 3:
        RunPhonebook(operation);
        break;
    case 4:
        RunUssd(operation);
        break;
    case 5:
        RunToolkit(operation);
        break;
    case 6:
        RunCall(operation);
        break;
    default:
        RunSms(operation);
        break;
    }
    return 0;
}
