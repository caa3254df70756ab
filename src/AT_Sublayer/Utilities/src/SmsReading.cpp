// Reading, listing and new-message reports of CSmsUtility, and the moving of new messages out of the
// modem memory.

#include <cstdio>
#include <cstring>
#include <vector>

#include "DebugSink.h"
#include "FamilyCommand.h"
#include "SmsUtility.h"

namespace {

constexpr int kStorageME = 1;
constexpr int kStorageSM = 3;
constexpr int kStorageNone = 6;
constexpr int kCharsetIra = 2;
constexpr int kFormatPdu = 1;
constexpr int kStatusAll = 4;

const std::list<std::string> kFinalsCms = {"OK", "+CMS ERROR", "ERROR"};

// The text from tag up to (not including) the second "\r\n" after it: the header line and the PDU line.
bool CutBlock(const std::string& text, std::size_t tag, std::string& block, std::size_t& end) {
    const auto header = text.find("\r\n", tag);
    if (header == std::string::npos)
        return false;
    end = text.find("\r\n", header + 2);
    if (end == std::string::npos)
        return false;
    block = text.substr(tag, end - tag);
    return true;
}

// The position just after the n-th comma of the first line, or npos.
std::size_t AfterComma(const std::string& text, int n) {
    const auto lineEnd = text.find("\r\n");
    std::size_t at = 0;
    for (int i = 0; i < n; ++i) {
        at = text.find(',', at);
        if (at == std::string::npos || at > lineEnd)
            return std::string::npos;
        ++at;
    }
    return at;
}

// Reads the length after the n-th comma and decodes the PDU line that follows the header.
int DecodeHeaderAndPdu(const std::string& block, int lengthComma, TMessageListBaseItem& item) {
    const auto at = AfterComma(block, lengthComma);
    int length = 0;
    if (at == std::string::npos || std::sscanf(block.c_str() + at, "%d", &length) != 1)
        return 1;
    const auto lineEnd = block.find("\r\n");
    if (lineEnd == std::string::npos)
        return 1;
    std::string pdu = block.substr(lineEnd + 2);
    while (!pdu.empty() && (pdu.back() == ' ' || pdu.back() == '\r' || pdu.back() == '\n'))
        pdu.pop_back();
    if (const int result = CSmsUtility::DecodePduData(pdu.c_str(), length, item.pduData); result != 0)
        return result;
    item.strPdu = std::move(pdu);
    item.nPduLen = length;
    return 0;
}

TMessageListItem ToListItem(const TMessageListBaseItem& base, uint32_t storage) {
    TMessageListItem item;
    item.nStorage = storage;
    item.nIndex = base.nIndex;
    item.nStatus = base.nStatus;
    item.pduData = base.pduData;
    return item;
}

bool IsReplaceDeliver(const TMessageListItem& item) {
    return item.pduData.tpdu.nTpduType == SMS_TPDU_DELIVER &&
           CSmsUtility::IsReplaceShortMessage(item.pduData.tpdu.deliver.nPid);
}

bool SameReplaceSender(const TMessageListItem& a, const TMessageListItem& b) {
    const TTpduDeliver& x = a.pduData.tpdu.deliver;
    const TTpduDeliver& y = b.pduData.tpdu.deliver;
    return x.nPid == y.nPid && x.originating.nType == y.originating.nType &&
           std::strncmp(x.originating.szAddress, y.originating.szAddress, kMsgAddressSize) == 0;
}

// Any one field greater makes the incoming stamp newer, as the table's own replace rule does.
bool IsNewer(const TMessageListItem& incoming, const TMessageListItem& kept) {
    TSmsDateTime a;
    TSmsDateTime b;
    CSmsUtility::TMsgTimeStampToTSmsDateTime(incoming.pduData.tpdu.deliver.timeStamp, a);
    CSmsUtility::TMsgTimeStampToTSmsDateTime(kept.pduData.tpdu.deliver.timeStamp, b);
    return a.nYear > b.nYear || a.nMonth > b.nMonth || a.nDay > b.nDay || a.nHour > b.nHour ||
           a.nMinute > b.nMinute || a.nSecond > b.nSecond;
}

std::wstring Widen(const char* text, std::size_t size) {
    std::wstring wide;
    for (std::size_t i = 0; i < size && text[i] != '\0'; ++i)
        wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(text[i])));
    return wide;
}

} // namespace

// AT+CMGR=3 -> "+CMGR: 0,,24\r\n07914477...\r\n\r\nOK"
int CSmsUtility::ReadMessageItemBase(int index, int format, TMessageListBaseItem& item) {
    if (const int result = SelectTeCharacterSet(kCharsetIra, 0, 0); result != 0)
        return result;
    char command[32];
    std::snprintf(command, sizeof command, "AT+CMGR=%d\r", index);
    std::string response;
    if (const int result = WriteComm(command, "+CMGR: ", kFinalsCms, 3000, response); result != 0)
        return result;
    const auto tag = response.find("+CMGR: ");
    std::string block;
    std::size_t end = 0;
    if (tag == std::string::npos || !CutBlock(response, tag, block, end))
        return 1;
    if (format != kFormatPdu)
        return 1;
    TMessageListBaseItem read;
    if (const int result = DecodePduModeCMGR(block, read); result != 0)
        return result;
    read.nIndex = static_cast<uint32_t>(index);
    item = std::move(read);
    return 0;
}

int CSmsUtility::ReadMessageItem(int code, int index, TMessageListItem& item) {
    TMessageListBaseItem base;
    return ReadMessageItem(code, index, item, base);
}

int CSmsUtility::ReadMessageItem(int code, int index, TMessageListItem& item, TMessageListBaseItem& base) {
    if (const int result = SetMemoryOfReadAndDeleted(code); result != 0)
        return result;
    int format = 0;
    if (const int result = GetMessageFormat(format); result != 0)
        return result;
    if (const int result = ReadMessageItemBase(index, format, base); result != 0)
        return result;
    item = ToListItem(base, code == kStorageSM ? SMS_STORAGE_SIM : SMS_STORAGE_MODEM);
    return 0;
}

int CSmsUtility::DecodePduModeCMGR(const std::string& text, TMessageListBaseItem& item) {
    int status = 0;
    item.nStatus = std::sscanf(text.c_str(), "+CMGR: %d", &status) == 1 ? static_cast<uint32_t>(status) : 4;
    return DecodeHeaderAndPdu(text, 2, item);
}

int CSmsUtility::ExecPduModeCMGL(int status, std::string& response) {
    char command[32];
    std::snprintf(command, sizeof command, "AT+CMGL=%d\r", status);
    std::string answer;
    if (const int result = WriteComm(command, nullptr, {"OK", "ERROR", "+CMS ERROR"}, 30000, answer);
        result != 0)
        return result;
    if (answer.find("OK") == std::string::npos)
        return 1;
    response = std::move(answer);
    return 0;
}

// "+CMGL: 1,0,,24\r\n0791...\r\n+CMGL: 2,1,,26\r\n0791...\r\n\r\nOK\r\n"
int CSmsUtility::DecodePduModeCMGL(const std::string& response, std::list<TMessageListBaseItem>& items) {
    std::list<TMessageListBaseItem> read;
    for (auto tag = response.find("+CMGL: "); tag != std::string::npos; tag = response.find("+CMGL: ", tag)) {
        std::string block;
        std::size_t end = 0;
        if (!CutBlock(response, tag, block, end))
            return 1;
        TMessageListBaseItem item;
        if (const int result = DecodePduCmglItem(block, item); result != 0) {
            if (!ReadsAnswersLeniently())
                return result;
            DebugPrint("AT+CMGL: skipped an entry that cannot be read: %s", block.c_str());
        } else {
            read.push_back(std::move(item));
        }
        tag = end;
    }
    items.splice(items.end(), read);
    return 0;
}

int CSmsUtility::DecodePduCmglItem(const std::string& block, TMessageListBaseItem& item) {
    int index = 0;
    int status = 0;
    if (std::sscanf(block.c_str(), "+CMGL: %d,%d", &index, &status) != 2)
        return 1;
    item.nIndex = static_cast<uint32_t>(index);
    item.nStatus = static_cast<uint32_t>(status);
    return DecodeHeaderAndPdu(block, 3, item);
}

int CSmsUtility::GetMessageListBase(int status, std::list<TMessageListBaseItem>& items) {
    items.clear();
    int format = 0;
    if (const int result = GetMessageFormat(format); result != 0)
        return result;
    if (format != kFormatPdu)
        return 0;
    std::string response;
    if (const int result = ExecPduModeCMGL(status, response); result != 0)
        return result;
    return DecodePduModeCMGL(response, items);
}

int CSmsUtility::GetMessageListMe(int status, std::list<TMessageListBaseItem>& items) {
    if (const int result = SetMemoryOfReadAndDeleted(kStorageME); result != 0)
        return result;
    return GetMessageListBase(status, items);
}

int CSmsUtility::GetMessageListSim(int status, std::list<TMessageListBaseItem>& items) {
    if (const int result = SetMemoryOfReadAndDeleted(kStorageSM); result != 0)
        return result;
    return GetMessageListBase(status, items);
}

int CSmsUtility::GetMessageListPC(std::list<TMessageListBaseItem>& items) {
    items.clear();
    if (m_pfnPCList == nullptr)
        return 1;
    std::list<TSMSRecordInPC> records;
    if (m_pfnPCList(m_pcContext, m_strImsi.c_str(), records) != 0)
        return 1;
    for (const TSMSRecordInPC& record : records) {
        TMessageListBaseItem item;
        if (const int result = DecodePduData(record.strPdu.c_str(), record.nPduLen, item.pduData);
            result != 0) {
            items.clear();
            return result;
        }
        item.nIndex = static_cast<uint32_t>(record.nIndex);
        item.nStatus = SMS_STATUS_READ;
        item.strPdu = record.strPdu;
        item.nPduLen = record.nPduLen;
        items.push_back(std::move(item));
    }
    return 0;
}

// The store is read before the modem memory is emptied into it, so that a message moved now is listed
// once; the result still lists the SIM, then the modem memory, then the store.
int CSmsUtility::GetMessageList(int mask, int status, std::list<TMessageListItem>& items) {
    std::list<TMessageListItem> sim;
    std::list<TMessageListItem> modem;
    std::list<TMessageListItem> pc;
    if (mask & 1) {
        std::list<TMessageListBaseItem> read;
        if (const int result = GetMessageListSim(status, read); result != 0)
            return result;
        for (const TMessageListBaseItem& base : read)
            sim.push_back(ToListItem(base, SMS_STORAGE_SIM));
    }
    const bool readStore = (mask & 4) && m_bPCStoreEnabled && !m_bPCRead;
    if (readStore) {
        std::list<TMessageListBaseItem> read;
        if (const int result = GetMessageListPC(read); result != 0)
            return result;
        for (const TMessageListBaseItem& base : read)
            pc.push_back(ToListItem(base, SMS_STORAGE_PC));
    }
    if (mask & 2) {
        std::list<TMessageListBaseItem> read;
        if (const int result = GetMessageListMe(status, read); result != 0)
            return result;
        for (TMessageListBaseItem& base : read) {
            uint32_t storage = SMS_STORAGE_MODEM;
            if (m_bPCStoreEnabled)
                MoveSMSFromMEToPreferredStorage(base, storage);
            modem.push_back(ToListItem(base, storage));
        }
    }
    if (readStore)
        m_bPCRead = true;
    items.splice(items.end(), sim);
    items.splice(items.end(), modem);
    items.splice(items.end(), pc);
    return 0;
}

int CSmsUtility::InitList() {
    if (m_bPCRead) {
        m_messageTable.remove_if(
            [](const CMsgListTableItem& item) { return item.nStorage != SMS_STORAGE_PC; });
        for (CMsgListTableItem& item : m_messageTable)
            item.nStatus = SMS_STATUS_READ;
    } else {
        m_messageTable.clear();
    }
    m_deletedTable.clear();
    m_bTableInit = false;

    std::list<TMessageListItem> listed;
    if (const int result = GetMessageList(7, kStatusAll, listed); result != 0)
        return result;

    // Replace messages (TP-PID 0x41-0x47): of those from one sender with one PID only the newest stays.
    std::vector<TMessageListItem> kept;
    std::list<TMessageListItem> older;
    for (TMessageListItem& item : listed) {
        if (!IsReplaceDeliver(item)) {
            kept.push_back(std::move(item));
            continue;
        }
        bool matched = false;
        for (TMessageListItem& other : kept) {
            if (!IsReplaceDeliver(other) || !SameReplaceSender(other, item))
                continue;
            matched = true;
            if (IsNewer(item, other)) {
                older.push_back(std::move(other));
                other = std::move(item);
            } else {
                older.push_back(std::move(item));
            }
            break;
        }
        if (!matched)
            kept.push_back(std::move(item));
    }
    // DeleteReplaceMessage: an older message that cannot be deleted stays listed.
    for (TMessageListItem& item : older) {
        if (DeleteStored(item.nStorage, item.nIndex) != 0)
            kept.push_back(std::move(item));
    }

    for (const TMessageListItem& item : kept) {
        bool added = false;
        bool deleted = false;
        bool replaced = false;
        uint32_t tableId = 0;
        if (const int result = AddMsgItemToListTable(item, added, tableId, deleted, replaced, false);
            result != 0)
            return result;
    }
    m_bTableInit = true;
    return 0;
}

int CSmsUtility::ApplyFilter(const TSmsListItem& message, std::wstring& name, bool& deleteMessage) {
    deleteMessage = false;
    if (m_pfnFilter == nullptr || message.nCompleted == 0)
        return 0;
    int result = 0;
    m_pfnFilter(m_filterContext, message.wstrContent, Widen(message.szNumber, kSmsNumberSize), result, name,
                deleteMessage);
    return result;
}

int CSmsUtility::GetList(std::list<TSmsListItem>& items) {
    items.clear();
    const int initResult = InitList();
    if (!m_bTableInit)
        return initResult;
    std::list<int> claimed;
    for (const CMsgListTableItem& stored : m_messageTable) {
        TSmsListItem item;
        MergePackets(stored, item);
        std::wstring name;
        bool deleteMessage = false;
        if (ApplyFilter(item, name, deleteMessage) != 0 && deleteMessage) {
            claimed.push_back(item.nRef);
            continue;
        }
        items.push_back(std::move(item));
    }
    for (const int id : claimed)
        Delete(id);
    return 0;
}

// "+CMTI: \"SM\",3" announces a stored message, "+CDSI: \"SR\",1" a stored status report.
int CSmsUtility::Receive(const char* line, TSmsListItem& item, int& kind) {
    if (!m_bTableInit || line == nullptr)
        return 1;
    const std::string text(line);
    bool report = false;
    auto tag = text.find("+CMTI: ");
    if (tag == std::string::npos) {
        tag = text.find("+CDSI");
        if (tag == std::string::npos)
            return 1;
        report = true;
    }
    const std::size_t open = tag + 7;
    if (open >= text.size() || text[open] != '"')
        return 1;
    const auto close = text.find('"', open + 1);
    if (close == std::string::npos || close - open - 1 != 2)
        return 1;
    const int code = GetMemStorageID(text.substr(open + 1, 2));
    int index = 0;
    if (code == kStorageNone || open + 5 >= text.size() ||
        std::sscanf(text.c_str() + open + 5, "%d", &index) != 1)
        return 1;

    TMessageListItem read;
    TMessageListBaseItem base;
    if (const int result = ReadMessageItem(code, index, read, base); result != 0)
        return result;

    if (report) {
        TMsgPacket packet;
        TMessageListItemToTMsgPacket(read, packet);
        CMsgListTableItem single;
        single.nId = 0;
        single.nStorage = packet.nStorage;
        single.nStatus = packet.nStatus;
        single.nTpduType = packet.nTpduType;
        single.nClass = packet.nClass;
        single.nStatusReportStatus = packet.nStatusReportStatus;
        single.nPid = packet.nPid;
        std::memcpy(single.szNumber, packet.szNumber, kSmsNumberSize);
        single.dateTime = packet.dateTime;
        single.packets.push_back({packet.nIndex, packet.nSequence, packet.wstrContent});
        MergePackets(single, item);
        kind = 0;
        return 0;
    }

    if (m_bPCStoreEnabled && read.nStorage == SMS_STORAGE_MODEM) {
        uint32_t storage = SMS_STORAGE_MODEM;
        MoveSMSFromMEToPreferredStorage(base, storage);
        read.nStorage = storage;
        read.nIndex = base.nIndex;
        read.nStatus = base.nStatus;
    }
    bool added = false;
    bool deleted = false;
    bool replaced = false;
    uint32_t tableId = 0;
    if (const int result = AddMsgItemToListTable(read, added, tableId, deleted, replaced, true); result != 0)
        return result;
    if (!added)
        return 1;

    std::list<CMsgListTableItem>& table = deleted ? m_deletedTable : m_messageTable;
    auto stored = table.begin();
    while (stored != table.end() && stored->nId != tableId)
        ++stored;
    if (stored == table.end())
        return 1;
    if (replaced)
        kind = 3;
    else if (stored->nTotal > 1)
        kind = stored->nReceived == 1 ? 1 : 2;
    else
        kind = 0;
    MergePackets(*stored, item);

    if (deleted) {
        // A flash message is shown once: once whole, nothing of it is kept.
        if (item.nCompleted)
            table.erase(stored);
        return 0;
    }
    std::wstring name;
    bool deleteMessage = false;
    if (const int claimed = ApplyFilter(item, name, deleteMessage); claimed != 0) {
        if (deleteMessage) {
            Delete(item.nRef);
            return 1;
        }
        if (m_pfnFilterNotify != nullptr)
            m_pfnFilterNotify(m_notifyContext, claimed, name);
    }
    return 0;
}

// The copy is made first; the modem memory's index is deleted only when the copy succeeded and "ME" is
// selected again for deleting.
int CSmsUtility::MoveSMSFromMEToPreferredStorage(TMessageListBaseItem& item, uint32_t& storage) {
    storage = SMS_STORAGE_MODEM;
    const uint32_t oldIndex = item.nIndex;
    int result = 1;
    switch (m_nPreferredStorage) {
    case SMS_STORAGE_MODEM:
        return 1;
    case SMS_STORAGE_PC:
        result = CopySMSToPC(item);
        if (result == 0)
            storage = SMS_STORAGE_PC;
        break;
    case SMS_STORAGE_SIM:
        result = CopySMSToSIM(item);
        if (result == 1) {
            // SIM full or refused: the computer-side store takes it.
            result = CopySMSToPC(item);
            if (result == 0)
                storage = SMS_STORAGE_PC;
        } else if (result == 0) {
            storage = SMS_STORAGE_SIM;
        }
        break;
    default:
        return 1;
    }
    const int selected = SetMemoryOfReadAndDeleted(kStorageME);
    if (result == 0 && selected == 0)
        DeletePacket(static_cast<int>(oldIndex));
    return result;
}

// AT+CMGW=24,1 -> "> "; the PDU as read and Ctrl-Z -> "+CMGW: 5".
int CSmsUtility::CopySMSToSIM(TMessageListBaseItem& item) {
    if (const int result = SetMemoryOfWrite(kStorageSM); result != 0)
        return result;
    char command[32];
    std::snprintf(command, sizeof command, "AT+CMGW=%d,1\r", item.nPduLen);
    std::string response;
    if (const int result = WriteComm(command, nullptr, {">", "+CMS ERROR", "ERROR"}, 2000, response);
        result != 0)
        return result;
    if (response.find('>') == std::string::npos)
        return 1;
    if (const int result = WriteComm(item.strPdu + '\x1A', "+CMGW: ", kFinalsCms, 10000, response);
        result != 0)
        return result;
    const auto at = response.find("+CMGW: ");
    int index = 0;
    if (at == std::string::npos || std::sscanf(response.c_str() + at, "+CMGW: %d", &index) != 1)
        return 1;
    item.nIndex = static_cast<uint32_t>(index);
    item.nStatus = SMS_STATUS_UNREAD;
    return 0;
}

int CSmsUtility::CopySMSToPC(TMessageListBaseItem& item) {
    if (m_pfnPCSave == nullptr)
        return 1;
    int index = -1;
    if (m_pfnPCSave(m_pcContext, m_strImsi.c_str(), item.strPdu.c_str(), item.nPduLen, index) != 0)
        return 1;
    item.nIndex = static_cast<uint32_t>(index);
    item.nStatus = SMS_STATUS_UNREAD;
    return 0;
}
