// Settings, storages, deleting and sending of CSmsUtility.

#include "SmsUtility.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "AtParameter.h"
#include "FamilyCommand.h"

namespace {

// Storage map: code and AT storage name, searched in order.
constexpr const char* kStorageNames[] = {"BM", "ME", "MT", "SM", "TA", "SR", ""};
constexpr int kStorageME = 1;
constexpr int kStorageSM = 3;
constexpr int kStorageNone = 6;

constexpr int kCharsetIra = 2;
constexpr int kFormatPdu = 1;
constexpr int kAddressTypeNational = 129;
constexpr int kAddressTypeInternational = 145;
// "+CSCA: " numbers of this length or more are refused.
constexpr std::size_t kServiceCentreTooLong = 22;

// AT+CNMI settings, tried in this order: new messages and status reports kept on the SIM and announced
// ("+CMTI", "+CDSI"); then without status reports; then indications dropped while the link is busy, the
// only combination some modems take.
constexpr int kIndicationSettings[][5] = {{2, 1, 0, 2, 0}, {2, 1, 0, 0, 0}, {1, 1, 0, 0, 0}};

// A modem that did not answer, or a cancelled command: unlike a refusal, no point in going on.
bool ChannelFailed(int result) {
    return result == 2 || result == 30;
}

const std::list<std::string> kFinalsCme = {"OK", "ERROR", "+CME ERROR"};
const std::list<std::string> kFinalsCms = {"OK", "+CMS ERROR", "ERROR"};

int StorageMapCode(uint32_t storage) {
    switch (storage) {
    case SMS_STORAGE_SIM:
        return kStorageSM;
    case SMS_STORAGE_MODEM:
        return kStorageME;
    default:
        return kStorageNone;
    }
}

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

} // namespace

int CSmsUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

// AT+CNMI=2,1,0,2,0: new messages and status reports are stored and announced ("+CMTI: \"SM\",3",
// "+CDSI: \"SR\",1").
int CSmsUtility::Init() {
    // Only PDU mode is needed; a modem that refuses the other settings still sends and receives messages.
    for (const auto& setting : kIndicationSettings) {
        const int result =
            SetNewMessageIndications(setting[0], setting[1], setting[2], setting[3], setting[4]);
        if (ChannelFailed(result))
            return result;
        if (result == 0)
            break;
    }
    if (const int result = DisableCellBroadcast(); ChannelFailed(result))
        return result;
    if (const int result = SetMoreMessageToSend(); ChannelFailed(result))
        return result;
    return SetMessageFormat(kFormatPdu);
}

int CSmsUtility::GetServiceCentre(TSmsAddress& address) {
    TMsgAddress centre;
    if (const int result = GetServiceCenterAddress(centre); result != 0)
        return result;
    TMsgAddressToTSmsAddress(centre, address);
    return 0;
}

int CSmsUtility::SetServiceCentre(const TSmsAddress& address) {
    const char* number = address.szNumber;
    std::size_t length = strnlen(number, kSmsNumberSize);
    TMsgAddress centre;
    centre.nType = kAddressTypeNational;
    if (length > 0 && number[0] == '+') {
        if (length > 21)
            return kErrNotAPhoneNumber;
        centre.nType = kAddressTypeInternational;
        ++number;
        --length;
    } else if (length > 20) {
        return kErrNotAPhoneNumber;
    }
    std::memcpy(centre.szAddress, number, length);
    return SetServiceCenterAddress(centre);
}

// Lists the computer-side store's messages as the table holds them after GetList.
int CSmsUtility::GetIncomingSMSInPC(std::list<TSmsListItem>& items) {
    items.clear();
    if (!m_bPCStoreEnabled)
        return 1;
    for (const CMsgListTableItem& stored : m_messageTable) {
        if (stored.nStorage != SMS_STORAGE_PC)
            continue;
        TSmsListItem item;
        MergePackets(stored, item);
        items.push_back(std::move(item));
    }
    return 0;
}

int CSmsUtility::Delete(int tableId) {
    for (auto it = m_messageTable.begin(); it != m_messageTable.end(); ++it) {
        if (static_cast<int>(it->nId) != tableId)
            continue;
        if (const int result = DeleteMsg(*it); result != 0)
            return result;
        m_messageTable.erase(it);
        return 0;
    }
    return 1;
}

// Text mode is never used for sending: a modem left in it sends nothing and the call still succeeds.
int CSmsUtility::Send(const TSmsSendItem& item) {
    std::list<TTpduSubmit> segments;
    int encodeType = 0;
    if (const int result = PacketMsg(item, segments, encodeType); result != 0)
        return result;
    if (!segments.empty() && !IsDialableAddress(segments.front().destination))
        return kErrNotAPhoneNumber;
    int format = 0;
    if (const int result = GetMessageFormat(format); result != 0)
        return result;
    if (format != kFormatPdu)
        return 0;
    return SendInPduMode(segments);
}

int CSmsUtility::SetPreferredStorage(int storage) {
    m_nPreferredStorage = storage;
    int mem1 = 0;
    int mem2 = 0;
    int mem3 = 0;
    if (const int result = GetPreferredMessageStorage(mem1, mem2, mem3); result != 0)
        return result;
    const int wanted = storage == SMS_STORAGE_SIM ? kStorageSM : kStorageME;
    if (mem3 == wanted)
        return 0;
    return SetPreferredMessageStorage(mem1, mem2, wanted);
}

int CSmsUtility::GetPreferredStorage(int& storage) {
    int mem1 = 0;
    int mem2 = 0;
    int mem3 = 0;
    if (const int result = GetPreferredMessageStorage(mem1, mem2, mem3); result != 0)
        return result;
    storage = mem3 == kStorageME ? SMS_STORAGE_MODEM : SMS_STORAGE_SIM;
    return 0;
}

int CSmsUtility::GetStorageState(TSmsStorageState& state) {
    TSmsStorageState read;
    if (const int result = GetStorageInfo(SMS_STORAGE_MODEM, read.nMeUsed, read.nMeTotal); result != 0)
        return result;
    if (const int result = GetStorageInfo(SMS_STORAGE_SIM, read.nSimUsed, read.nSimTotal); result != 0)
        return result;
    state = read;
    return 0;
}

int CSmsUtility::SetValidPeriod(const TSmsValidPeriod& period) {
    m_validPeriod = period;
    return 0;
}

int CSmsUtility::EnableStatusReport(int enable) {
    m_bStatusReport = enable != 0;
    return 0;
}

int CSmsUtility::SetLatinSupport(int enable) {
    m_bLatinSupport = enable != 0;
    return 0;
}

int CSmsUtility::SetIMSI(const char* imsi) {
    m_strImsi = imsi != nullptr ? imsi : "";
    return 0;
}

int CSmsUtility::RegisterPCCallback(void* context, SmsPCListCallback list, SmsPCSaveCallback save,
                                    SmsPCDeleteCallback remove, int enable) {
    m_pcContext = context;
    m_pfnPCList = list;
    m_pfnPCSave = save;
    m_pfnPCDelete = remove;
    m_bPCStoreEnabled = enable != 0;
    return 0;
}

int CSmsUtility::RegisterSMSFilter(SmsFilterCallback filter, SmsFilterNotifyCallback notify,
                                   void* filterContext, void* notifyContext) {
    m_pfnFilter = filter;
    m_pfnFilterNotify = notify;
    m_filterContext = filterContext;
    m_notifyContext = notifyContext;
    return 0;
}

int CSmsUtility::WriteComm(const std::string& command, const char* expected,
                           const std::list<std::string>& finals, int timeoutMs, std::string& response) {
    if (m_pfnExecAT == nullptr)
        return 1;
    std::string answer;
    const int result = m_pfnExecAT(command.c_str(), expected, timeoutMs, finals, answer);
    if (result != 0)
        return result;
    // A modem with echo on repeats the command first: "AT+CMGD=3\r\r\nOK\r\n".
    if (const auto echo = answer.find(command); echo != std::string::npos) {
        if (const auto lineEnd = answer.find("\r\n", echo + command.size()); lineEnd != std::string::npos)
            answer.erase(0, lineEnd);
    }
    SpaceAfterAnswerPrefixes(answer);
    response = std::move(answer);
    return 0;
}

int CSmsUtility::WriteForOk(const std::string& command, const char* expected,
                            const std::list<std::string>& finals, int timeoutMs) {
    std::string response;
    if (const int result = WriteComm(command, expected, finals, timeoutMs, response); result != 0)
        return result;
    return Contains(response, "OK") ? 0 : 1;
}

const char* CSmsUtility::GetMemStorageString(int code) {
    return code >= 0 && code < kStorageNone ? kStorageNames[code] : kStorageNames[kStorageNone];
}

int CSmsUtility::GetMemStorageID(const std::string& name) {
    for (int code = 0; code < kStorageNone; ++code) {
        if (name == kStorageNames[code])
            return code;
    }
    return kStorageNone;
}

int CSmsUtility::SetNewMessageIndications(int mode, int mt, int bm, int ds, int bfr) {
    char command[64];
    std::snprintf(command, sizeof command, "AT+CNMI=%d,%d,%d,%d,%d\r", mode, mt, bm, ds, bfr);
    return WriteForOk(command, nullptr, kFinalsCms, 1000);
}

int CSmsUtility::DisableCellBroadcast() {
    return WriteForOk("AT+CSCB=1\r", nullptr, {"OK", "ERROR", "+CMS ERROR"}, 10000);
}

int CSmsUtility::SetMoreMessageToSend() {
    return WriteForOk("AT+CMMS=2\r", nullptr, kFinalsCme, 1000);
}

int CSmsUtility::SetMessageFormat(int format) {
    if (format != 0 && format != 1)
        return 1;
    return WriteForOk(format == kFormatPdu ? "AT+CMGF=0\r" : "AT+CMGF=1\r", nullptr, kFinalsCme, 1000);
}

// "+CMGF: 0" is PDU mode, reported as format 1.
int CSmsUtility::GetMessageFormat(int& format) {
    std::string response;
    if (const int result = WriteComm("AT+CMGF?\r", nullptr, kFinalsCme, 1000, response); result != 0)
        return result;
    const auto at = response.find("+CMGF: ");
    int value = -1;
    if (at == std::string::npos || std::sscanf(response.c_str() + at, "+CMGF: %d", &value) != 1)
        return 1;
    if (value != 0 && value != 1)
        return 1;
    format = value == 0 ? 1 : 0;
    return 0;
}

int CSmsUtility::SelectTeCharacterSet(int charset, int codePage, int part) {
    static constexpr const char* kFixed[] = {"GSM",   "HEX",    "IRA",    nullptr,  "PCDN",  "UCS2",
                                             nullptr, "8859-C", "8859-A", "8859-G", "8859-H"};
    char name[32];
    if (charset == 3)
        std::snprintf(name, sizeof name, "PCCP%03d", codePage);
    else if (charset == 6)
        std::snprintf(name, sizeof name, "8859-%d", part);
    else if (charset >= 0 && charset <= 10)
        std::snprintf(name, sizeof name, "%s", kFixed[charset]);
    else
        return 1;
    return WriteForOk(std::string("AT+CSCS=\"") + name + "\"\r", nullptr, kFinalsCme, 1000);
}

int CSmsUtility::SetServiceCenterAddress(const TMsgAddress& address) {
    if (!IsDialableAddress(address))
        return kErrNotAPhoneNumber;
    const std::string_view number(address.szAddress, strnlen(address.szAddress, kMsgAddressSize));
    std::string command = "AT+CSCA=";
    if (!AppendQuotedAtParameter(command, number, kMsgAddressSize))
        return kAtParameterRefused;
    command += "," + std::to_string(address.nType) + "\r";
    if (const int result = SelectTeCharacterSet(kCharsetIra, 0, 0); result != 0)
        return result;
    return WriteForOk(command, nullptr, kFinalsCme, 1000);
}

// AT+CSCA? -> "+CSCA: \"+447802000332\",145"; some modems leave out the type, some the number.
int CSmsUtility::GetServiceCenterAddress(TMsgAddress& address) {
    if (const int result = SelectTeCharacterSet(kCharsetIra, 0, 0); result != 0)
        return result;
    std::string response;
    if (const int result = WriteComm("AT+CSCA?\r", nullptr, kFinalsCme, 1000, response); result != 0)
        return result;
    const auto tag = response.find("+CSCA: ");
    if (tag == std::string::npos)
        return 1;
    const auto open = response.find('"', tag);
    if (open == std::string::npos)
        return 1;
    const auto close = response.find('"', open + 1);
    if (close == std::string::npos)
        return 1;
    const std::string number = response.substr(open + 1, close - open - 1);
    if (number.size() >= kServiceCentreTooLong)
        return 1;
    TMsgAddress read;
    std::memcpy(read.szAddress, number.data(), number.size());
    if (number.empty()) {
        read.nType = kAddressTypeNational;
    } else if (close + 1 < response.size() && response[close + 1] == ',') {
        int type = 0;
        if (std::sscanf(response.c_str() + close + 2, "%d", &type) != 1)
            return 1;
        read.nType = static_cast<uint32_t>(type);
    } else {
        read.nType = number[0] == '+' ? kAddressTypeInternational : kAddressTypeNational;
    }
    m_serviceCentre = read;
    address = read;
    return 0;
}

// A refused exchange gives 2, not the lower layer's code; callers have always seen it so.
int CSmsUtility::SetPreferredMessageStorage(int mem1, int mem2, int mem3) {
    const std::string command = std::string("AT+CPMS=\"") + GetMemStorageString(mem1) + "\",\"" +
                                GetMemStorageString(mem2) + "\",\"" + GetMemStorageString(mem3) + "\"\r";
    std::string response;
    if (WriteComm(command, "+CPMS", kFinalsCms, 3000, response) != 0)
        return 2;
    return Contains(response, "OK") ? 0 : 1;
}

// AT+CPMS? -> "+CPMS: \"ME\",0,100,\"SM\",3,20,\"SM\",3,20"
int CSmsUtility::GetPreferredMessageStorage(int& mem1, int& mem2, int& mem3) {
    std::string response;
    if (const int result = WriteComm("AT+CPMS?\r", "+CPMS", kFinalsCms, 3000, response); result != 0)
        return result;
    if (!Contains(response, "OK"))
        return 1;
    auto at = response.find("+CPMS: ");
    if (at == std::string::npos)
        return 1;
    int codes[3] = {};
    for (int& code : codes) {
        const auto open = response.find('"', at);
        if (open == std::string::npos)
            return 1;
        const auto close = response.find('"', open + 1);
        if (close == std::string::npos)
            return 1;
        int used = 0;
        int total = 0;
        if (std::sscanf(response.c_str() + close + 1, ",%d,%d", &used, &total) != 2)
            return 1;
        code = GetMemStorageID(response.substr(open + 1, close - open - 1));
        at = close + 1;
    }
    mem1 = codes[0];
    mem2 = codes[1];
    mem3 = codes[2];
    return 0;
}

// AT+CPMS="SM" -> "+CPMS: 3,20,3,20,3,20": used and total of the storage now read from.
int CSmsUtility::GetStorageInfo(int storage, int& used, int& total) {
    const std::string command = storage == SMS_STORAGE_SIM ? "AT+CPMS=\"SM\"\r" : "AT+CPMS=\"ME\"\r";
    std::string response;
    if (const int result = WriteComm(command, nullptr, kFinalsCms, 1000, response); result != 0)
        return result;
    const auto at = response.find("+CPMS: ");
    int readUsed = 0;
    int readTotal = 0;
    if (at == std::string::npos ||
        std::sscanf(response.c_str() + at, "+CPMS: %d,%d", &readUsed, &readTotal) != 2)
        return 1;
    used = readUsed;
    total = readTotal;
    return 0;
}

int CSmsUtility::SetMemoryOfWrite(int code) {
    int mem1 = 0;
    int mem2 = 0;
    int mem3 = 0;
    if (const int result = GetPreferredMessageStorage(mem1, mem2, mem3); result != 0)
        return result;
    return SetPreferredMessageStorage(mem1, code, mem3);
}

// AT+CPMS="SM" selects the storage that AT+CMGR and AT+CMGD work on: "+CPMS: 3,20,3,20,3,20".
int CSmsUtility::SetMemoryOfReadAndDeleted(int code) {
    const std::string command = std::string("AT+CPMS=\"") + GetMemStorageString(code) + "\"\r";
    std::string response;
    if (WriteComm(command, "+CPMS: ", kFinalsCme, 3000, response) != 0)
        return 2;
    return Contains(response, "OK") ? 0 : 1;
}

int CSmsUtility::DeletePacket(int index) {
    char command[32];
    std::snprintf(command, sizeof command, "AT+CMGD=%d\r", index);
    return WriteForOk(command, nullptr, kFinalsCms, 5000);
}

int CSmsUtility::DeleteStored(uint32_t storage, uint32_t index) {
    if (storage == SMS_STORAGE_PC) {
        if (m_pfnPCDelete == nullptr)
            return 1;
        return m_pfnPCDelete(m_pcContext, m_strImsi.c_str(), static_cast<int>(index)) == 0 ? 0 : 1;
    }
    if (const int result = SetMemoryOfReadAndDeleted(StorageMapCode(storage)); result != 0)
        return result;
    return DeletePacket(static_cast<int>(index));
}

int CSmsUtility::DeleteMsg(const CMsgListTableItem& item) {
    if (item.nStorage == SMS_STORAGE_PC) {
        for (const CMsgListPacket& packet : item.packets) {
            if (const int result = DeleteStored(item.nStorage, packet.nIndex); result != 0)
                return result;
        }
        return 0;
    }
    if (const int result = SetMemoryOfReadAndDeleted(StorageMapCode(item.nStorage)); result != 0)
        return result;
    for (const CMsgListPacket& packet : item.packets) {
        if (const int result = DeletePacket(static_cast<int>(packet.nIndex)); result != 0)
            return result;
    }
    return 0;
}

// AT+CMGS=<TPDU octets> -> "> "; then the PDU without a service centre ("00": the modem's own) and
// Ctrl-Z -> "+CMGS: 12". ESC leaves the prompt when the PDU got no answer.
int CSmsUtility::SendMessageInPduMode(const uint8_t* tpdu, int length, bool& retry) {
    retry = false;
    if (tpdu == nullptr || length < 0 || length > kTpduMaxSize)
        return 1;
    char command[32];
    std::snprintf(command, sizeof command, "AT+CMGS=%d\r", length);
    std::string response;
    if (const int result = WriteComm(command, nullptr, {">", "+CMS ERROR", "ERROR"}, 2000, response);
        result != 0)
        return result;
    if (!Contains(response, ">"))
        return 1;

    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string pdu = "00";
    pdu.reserve(2 + 2 * static_cast<std::size_t>(length) + 1);
    for (int i = 0; i < length; ++i) {
        pdu.push_back(kHex[tpdu[i] >> 4]);
        pdu.push_back(kHex[tpdu[i] & 0x0F]);
    }
    pdu.push_back('\x1A');
    if (const int result = WriteComm(pdu, "+CMGS: ", kFinalsCms, 60000, response); result != 0) {
        std::string ignored;
        WriteComm("\x1B", nullptr, {"OK"}, 1000, ignored);
        return result;
    }
    if (!Contains(response, "+CMGS:")) {
        if (Contains(response, "+CMS ERROR: 500"))
            retry = true;
        return 1;
    }
    return 0;
}

int CSmsUtility::SendInPduMode(const std::list<TTpduSubmit>& segments) {
    for (const TTpduSubmit& segment : segments) {
        TProtocalTpduData encoded;
        if (const int result = EncodeTpduSubmit(segment, encoded); result != 0)
            return result;
        const int length = static_cast<int>(encoded.nLength);
        bool retry = false;
        int result = SendMessageInPduMode(encoded.data, length, retry);
        if (result != 0 && retry)
            result = SendMessageInPduMode(encoded.data, length, retry);
        if (result != 0)
            return result;
    }
    return 0;
}
