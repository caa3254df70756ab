#include "SmsUtility.h"

#include <cstdio>

namespace {

constexpr int kNotBuiltYet = 1;

// Storage map: code and AT storage name, searched in order.
constexpr const char* kStorageNames[] = {"BM", "ME", "MT", "SM", "TA", "SR", ""};
constexpr int kStorageME = 1;
constexpr int kStorageSM = 3;
constexpr int kStorageNone = 6;

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

} // namespace

int CSmsUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CSmsUtility::Init() {
    return kNotBuiltYet;
}

int CSmsUtility::GetServiceCentre(TSmsAddress&) {
    return kNotBuiltYet;
}

int CSmsUtility::SetServiceCentre(const TSmsAddress&) {
    return kNotBuiltYet;
}

int CSmsUtility::GetList(std::list<TSmsListItem>&) {
    return kNotBuiltYet;
}

int CSmsUtility::GetIncomingSMSInPC(std::list<TSmsListItem>&) {
    return kNotBuiltYet;
}

int CSmsUtility::Delete(int) {
    return kNotBuiltYet;
}

int CSmsUtility::Send(const TSmsSendItem&) {
    return kNotBuiltYet;
}

int CSmsUtility::Receive(const char*, TSmsListItem&, int&) {
    return kNotBuiltYet;
}

int CSmsUtility::SetPreferredStorage(int) {
    return kNotBuiltYet;
}

int CSmsUtility::GetPreferredStorage(int&) {
    return kNotBuiltYet;
}

int CSmsUtility::GetStorageState(TSmsStorageState&) {
    return kNotBuiltYet;
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

int CSmsUtility::RegisterSMSFilter(SmsFilterCallback, SmsFilterNotifyCallback, void*, void*) {
    return kNotBuiltYet;
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
    response = std::move(answer);
    return 0;
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

// AT+CPMS="SM" selects the storage that AT+CMGR and AT+CMGD work on: "+CPMS: 3,20,3,20,3,20".
int CSmsUtility::SetMemoryOfReadAndDeleted(int code) {
    const std::string command = std::string("AT+CPMS=\"") + GetMemStorageString(code) + "\"\r";
    std::string response;
    if (WriteComm(command, "+CPMS: ", {"OK", "ERROR", "+CME ERROR"}, 3000, response) != 0)
        return 2;
    return response.find("OK") != std::string::npos ? 0 : 1;
}

int CSmsUtility::DeletePacket(int index) {
    char command[32];
    std::snprintf(command, sizeof command, "AT+CMGD=%d\r", index);
    std::string response;
    const int result = WriteComm(command, nullptr, {"OK", "+CMS ERROR", "ERROR"}, 5000, response);
    if (result != 0)
        return result;
    return response.find("OK") != std::string::npos ? 0 : 1;
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
