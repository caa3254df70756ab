#include "PbUtility.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

#include "AtParameter.h"
#include "DebugSink.h"
#include "FamilyCommand.h"

namespace {

constexpr int kSelectTimeoutMs = 1000;
constexpr int kReadAllTimeoutMs = 60000;
constexpr int kWriteTimeoutMs = 3000;
constexpr int kCharsetUcs2 = 5;
constexpr int kTypeInternational = 145;
constexpr int kTypeUnknown = 129;

} // namespace

int CPbUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CPbUtility::WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                          std::initializer_list<const char*> finals) {
    return FamilyWriteComm(m_pfnExecAT, response, command, expected, timeoutMs, finals);
}

int CPbUtility::SelectTeCharacterSet(int code, int codePage, int isoPart) {
    // Character set names of AT+CSCS (3GPP TS 27.007); codes 3 and 6 are formats.
    static constexpr const char* kNames[] = {"GSM",     "HEX",    "IRA",    "PCCP%03d", "PCDN",  "UCS2",
                                             "8859-%d", "8859-C", "8859-A", "8859-G",   "8859-H"};
    if (code < 0 || code >= static_cast<int>(std::size(kNames)))
        return 1;
    char name[32];
    if (code == 3)
        std::snprintf(name, sizeof name, "PCCP%03d", codePage);
    else if (code == 6)
        std::snprintf(name, sizeof name, "8859-%d", isoPart);
    else
        std::snprintf(name, sizeof name, "%s", kNames[code]);
    const std::string command = std::string("AT+CSCS=\"") + name + "\"\r";
    std::string response;
    if (WriteComm(response, command.c_str(), nullptr, kSelectTimeoutMs, {"OK", "ERROR", "+CME ERROR"}) != 0)
        return 1;
    return AnswerHasOk(response) ? 0 : 1;
}

int CPbUtility::SetStorage(int storage) {
    const char* command = storage == PB_STORAGE_SIM ? "AT+CPBS=\"SM\"\r" : "AT+CPBS=\"ME\"\r";
    std::string response;
    if (const int result = WriteComm(response, command, nullptr, kSelectTimeoutMs); result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CPbUtility::GetStorageInfo(int storage) {
    if (const int result = SetStorage(storage); result != 0)
        return result;
    // AT+CPBS?  ->  +CPBS: "SM",12,250   used, then total
    std::string response;
    if (const int result = WriteComm(response, "AT+CPBS?\r", "+CPBS: ", kSelectTimeoutMs); result != 0)
        return result;
    const std::size_t prefix = response.find("+CPBS: ");
    if (prefix == std::string::npos)
        return 1;
    const std::size_t quoteComma = response.find("\",", prefix);
    if (quoteComma == std::string::npos)
        return 1;
    int used = 0;
    int total = 0;
    if (std::sscanf(response.c_str() + quoteComma + 2, "%d,%d", &used, &total) != 2)
        return 1;
    m_used[Slot(storage)] = used;
    m_total[Slot(storage)] = total;
    return 0;
}

int CPbUtility::GetStorageInfo(TPbStorageInfo& info) {
    if (const int result = GetStorageInfo(PB_STORAGE_MODEM); result != 0)
        return result;
    if (const int result = GetStorageInfo(PB_STORAGE_SIM); result != 0)
        return result;
    info.nSimTotal = m_total[0];
    info.nSimUsed = m_used[0];
    info.nMeTotal = m_total[1];
    info.nMeUsed = m_used[1];
    return 0;
}

int CPbUtility::GetMaxLengthPair(int& nameLength, int& numberLength) {
    // AT+CPBR=?  ->  +CPBR: (1-250),40,14   index range, longest number, longest name.
    // Some modems leave the number length out: +CPBR: (1-250),,14
    std::string response;
    if (const int result = WriteComm(response, "AT+CPBR=?\r", "+CPBR: ", kSelectTimeoutMs); result != 0)
        return result;
    const std::size_t prefix = response.find("+CPBR: ");
    if (prefix == std::string::npos)
        return 1;
    const std::size_t firstComma = response.find(',', prefix);
    if (firstComma == std::string::npos)
        return 0;
    int number = 0;
    int name = 0;
    const int read = std::sscanf(response.c_str() + firstComma, ",%d,%d", &number, &name);
    if (read == 2) {
        numberLength = number;
        nameLength = name;
        return 0;
    }
    if (read == 1)
        numberLength = number;
    const std::size_t nextComma = response.find(',', firstComma + 1);
    if (nextComma == firstComma + 1) {
        numberLength = 0;
        if (std::sscanf(response.c_str() + nextComma + 1, "%d", &name) == 1)
            nameLength = name;
    } else {
        nameLength = 0;
    }
    return 0;
}

int CPbUtility::GetConstraint(TPbConstraint& constraint) {
    constraint = TPbConstraint{};
    int simName = 0;
    int simNumber = 0;
    // The SIM may be missing or refuse the selection; its lengths are then simply not reported.
    if (SetStorage(PB_STORAGE_SIM) == 0)
        GetMaxLengthPair(simName, simNumber);
    int meName = 0;
    int meNumber = 0;
    if (const int result = SetStorage(PB_STORAGE_MODEM); result != 0)
        return result;
    if (const int result = GetMaxLengthPair(meName, meNumber); result != 0)
        return result;

    const auto set = [&constraint](int value, int32_t& field, uint32_t bit) {
        if (value != 0) {
            field = value;
            constraint.nMask |= bit;
        }
    };
    set(meNumber, constraint.nMeMaxNumberLen, PB_CONSTRAINT_ME_NUMBER);
    set(meName, constraint.nMeMaxNameLen, PB_CONSTRAINT_ME_NAME);
    set(simNumber, constraint.nSimMaxNumberLen, PB_CONSTRAINT_SIM_NUMBER);
    set(simName, constraint.nSimMaxNameLen, PB_CONSTRAINT_SIM_NAME);
    return 0;
}

int CPbUtility::GetList(int storage, std::list<TPbBaseItem>& items) {
    items.clear();
    std::list<int>& indexes = m_indexes[Slot(storage)];
    indexes.clear();
    if (const int result = GetStorageInfo(storage); result != 0)
        return result;
    if (m_used[Slot(storage)] == 0)
        return 0;
    if (const int result = SelectTeCharacterSet(kCharsetUcs2, 0, 0); result != 0)
        return result;

    // AT+CPBR=1,250  ->  +CPBR: 1,"13800138000",129,"5F204E09"\r\n+CPBR: 4,...\r\n\r\nOK
    char command[48];
    std::snprintf(command, sizeof command, "AT+CPBR=%d,%d\r", 1, m_total[Slot(storage)]);
    std::string response;
    if (const int result = WriteComm(response, command, nullptr, kReadAllTimeoutMs); result != 0)
        return result;

    constexpr std::string_view kPrefix = "+CPBR: ";
    std::size_t at = response.find(kPrefix);
    while (at != std::string::npos) {
        const std::size_t start = at + kPrefix.size();
        const std::size_t end = response.find("\r\n", start);
        if (end == std::string::npos)
            break;
        TPbBaseItem item;
        const std::string line = response.substr(start, end - start);
        if (const int result = DecodeItem(line, item); result == 0) {
            items.push_back(std::move(item));
        } else if (ReadsAnswersLeniently()) {
            DebugPrint("AT+CPBR: skipped an entry that cannot be read: %s", line.c_str());
        } else {
            items.clear();
            return result;
        }
        at = response.find(kPrefix, end);
    }
    for (const TPbBaseItem& item : items)
        InsertSorted(indexes, item.nIndex);
    return 0;
}

int CPbUtility::InitList(std::list<TPbItem>& items) {
    std::list<TPbBaseItem> sim;
    if (const int result = GetList(PB_STORAGE_SIM, sim); result != 0)
        return result;
    std::list<TPbBaseItem> modem;
    if (const int result = GetList(PB_STORAGE_MODEM, modem); result != 0)
        return result;
    for (const auto& [storage, list] :
         {std::pair{PB_STORAGE_SIM, &sim}, std::pair{PB_STORAGE_MODEM, &modem}}) {
        for (const TPbBaseItem& entry : *list)
            items.push_back(TPbItem{storage, entry.nIndex, entry.wstrName, entry.strNumber});
    }
    return 0;
}

int CPbUtility::DecodeItem(const std::string& line, TPbBaseItem& item) {
    int index = 0;
    if (std::sscanf(line.c_str(), "%d", &index) != 1)
        return 1;

    const std::size_t numberStart = line.find(",\"");
    if (numberStart == std::string::npos)
        return 1;
    const std::size_t numberEnd = line.find('"', numberStart + 2);
    if (numberEnd == std::string::npos)
        return 1;
    std::string number = line.substr(numberStart + 2, numberEnd - numberStart - 2);

    const std::size_t typeComma = line.find(',', numberEnd + 1);
    if (typeComma == std::string::npos)
        return 1;
    int type = 0;
    if (std::sscanf(line.c_str() + typeComma + 1, "%d", &type) != 1)
        return 1;
    // Type of number, bits 4-6: 001 is an international number, which the modem lists without its "+".
    if ((type & 0x70) == 0x10 && number.find('+') == std::string::npos)
        number.insert(0, 1, '+');

    const std::size_t nameStart = line.find('"', typeComma + 1);
    if (nameStart == std::string::npos)
        return 1;
    const std::size_t nameEnd = line.find('"', nameStart + 1);
    if (nameEnd == std::string::npos)
        return 1;
    const std::size_t hexLength = (nameEnd - nameStart - 1) / 4 * 4;

    std::wstring name;
    if (hexLength >= 4) {
        const std::string hex = line.substr(nameStart + 1, hexLength);
        std::vector<wchar_t> buffer(hexLength / 4 + 1, L'\0');
        // A bad digit keeps what came before it.
        BcdToWString(hex.c_str(), buffer.data(), static_cast<int>(buffer.size()));
        name = buffer.data();
    }

    item.nIndex = index;
    item.strNumber = std::move(number);
    item.wstrName = std::move(name);
    return 0;
}

int CPbUtility::UpdateItem(const TPbItem& item) {
    if (CheckAtParameter(item.strNumber, kPbNumberMaxLength) != AtParameterFault::None)
        return kAtParameterRefused;
    if (const int result = SelectTeCharacterSet(kCharsetUcs2, 0, 0); result != 0)
        return result;
    if (const int result = SetStorage(item.nStore); result != 0)
        return result;
    const int type = item.strNumber.find('+') != std::string::npos ? kTypeInternational : kTypeUnknown;
    std::vector<char> name(item.wstrName.size() * 4 + 4, '\0');
    if (const int result = WStringToBcd(item.wstrName.c_str(), name.data(), static_cast<int>(name.size()));
        result != 0)
        return result;

    // AT+CPBW=3,"+8613800138000",145,"00480069"
    std::string command = "AT+CPBW=" + std::to_string(item.nIndex) + ",";
    if (!AppendQuotedAtParameter(command, item.strNumber, kPbNumberMaxLength))
        return kAtParameterRefused;
    command += "," + std::to_string(type) + ",";
    if (!AppendQuotedAtParameter(command, name.data(), name.size()))
        return kAtParameterRefused;
    command += "\r";
    // Kept: the number is upper-cased along with the rest.
    std::transform(command.begin(), command.end(), command.begin(),
                   [](char ch) { return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch; });
    std::string response;
    if (WriteComm(response, command.c_str(), nullptr, kWriteTimeoutMs) != 0)
        return 2;
    return AnswerHasOk(response) ? 0 : 1;
}

int CPbUtility::AddItem(const TPbNewItem& item, int& index) {
    const int slot = Slot(item.nStore);
    if (m_used[slot] >= m_total[slot])
        return 1;
    std::list<int>& indexes = m_indexes[slot];
    int chosen = 1;
    if (!indexes.empty() && indexes.front() == 1) {
        int previous = indexes.front();
        for (const int used : indexes) {
            if (used > previous + 1)
                break;
            previous = used;
        }
        chosen = previous + 1;
    }
    if (const int result = UpdateItem(TPbItem{item.nStore, chosen, item.wstrName, item.strNumber});
        result != 0)
        return result;
    ++m_used[slot];
    InsertSorted(indexes, chosen);
    index = chosen;
    return 0;
}

int CPbUtility::DeleteItem(int storage, int index) {
    if (const int result = SetStorage(storage); result != 0)
        return result;
    char command[32];
    std::snprintf(command, sizeof command, "AT+CPBW=%d\r", index);
    std::string response;
    if (const int result = WriteComm(response, command, nullptr, kWriteTimeoutMs); result != 0)
        return result;
    if (!AnswerHasOk(response))
        return 1;
    const int slot = Slot(storage);
    --m_used[slot];
    std::list<int>& indexes = m_indexes[slot];
    if (const auto found = std::find(indexes.begin(), indexes.end(), index); found != indexes.end())
        indexes.erase(found);
    return 0;
}

int CPbUtility::BcdToDec(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

int CPbUtility::WStringToBcd(const wchar_t* text, char* out, int outSize) {
    if (text == nullptr || out == nullptr)
        return 1;
    const std::size_t length = std::wcslen(text);
    if (outSize < 0 || static_cast<std::size_t>(outSize) < length * 4 + 1)
        return 1;
    constexpr char kDigits[] = "0123456789ABCDEF";
    char* put = out;
    for (std::size_t i = 0; i < length; ++i) {
        const auto unit = static_cast<uint32_t>(text[i]) & 0xFFFFu;
        for (int shift = 12; shift >= 0; shift -= 4)
            *put++ = kDigits[(unit >> shift) & 0xFu];
    }
    *put = '\0';
    return 0;
}

int CPbUtility::BcdToWString(const char* hex, wchar_t* out, int outSize) {
    if (hex == nullptr || out == nullptr || outSize <= 0)
        return 1;
    const std::size_t groups = std::strlen(hex) / 4;
    const std::size_t room = static_cast<std::size_t>(outSize) - 1;
    std::size_t written = 0;
    int result = 0;
    for (; written < groups && written < room; ++written) {
        uint32_t unit = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const int value = BcdToDec(hex[written * 4 + i]);
            if (value < 0) {
                result = 1;
                break;
            }
            unit = unit << 4 | static_cast<uint32_t>(value);
        }
        if (result != 0)
            break;
        out[written] = static_cast<wchar_t>(unit);
    }
    out[written] = L'\0';
    return result;
}

void CPbUtility::InsertSorted(std::list<int>& indexes, int index) {
    indexes.insert(std::upper_bound(indexes.begin(), indexes.end(), index), index);
}
