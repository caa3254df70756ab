#include "SystemUtility.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "AtParameter.h"
#include "FamilyCommand.h"
#include "ModemDialect.h"

namespace {

constexpr int kIdentityTimeoutMs = 3000;
constexpr int kSetupTimeoutMs = 1000;

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char ch) { return ch >= '0' && ch <= '9'; });
}

// Copies at most size - 1 bytes of text and a NUL.
void CopyBounded(std::string_view text, char* buffer, std::size_t size) {
    if (size == 0)
        return;
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

} // namespace

int CSystemUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CSystemUtility::WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                              std::initializer_list<const char*> finals) {
    return FamilyWriteComm(m_pfnExecAT, response, command, expected, timeoutMs, finals);
}

int CSystemUtility::InitComm() {
    const int result = SyncComm();
    return result != 0 ? result : InitModem();
}

int CSystemUtility::SyncComm() {
    std::string response;
    // A lone escape ends any command the modem may still be collecting (a PDU after "AT+CMGS=").
    WriteComm(response, "\x1B", nullptr, 100, {"OK"});

    // Echo goes on twice, the second time waiting for the echo itself, then off.
    response.clear();
    if (const int result = WriteComm(response, "ATE1\r", nullptr, kSetupTimeoutMs); result != 0)
        return result;
    response.clear();
    if (const int result = WriteComm(response, "ATE1\r", "ATE1", kSetupTimeoutMs); result != 0)
        return result;
    response.clear();
    if (const int result = WriteComm(response, "ATE0\r", nullptr, kSetupTimeoutMs); result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CSystemUtility::InitModem() {
    for (const char* command : {"AT&F\r", "ATE0Q0V1\r", "AT+CMEE=2\r"}) {
        std::string response;
        if (const int result = WriteComm(response, command, nullptr, kSetupTimeoutMs); result != 0)
            return result;
    }
    return 0;
}

int CSystemUtility::ReadIdentity(const char* command, char* buffer, int size) {
    std::string response;
    const int result = WriteComm(response, command, nullptr, kIdentityTimeoutMs);
    if (result != 0)
        return result;
    return TrimContent(response, buffer, size);
}

int CSystemUtility::GetManufacturer(char (&text)[kEquipmentTextSize]) {
    return ReadIdentity("AT+CGMI\r", text, kEquipmentTextSize);
}

int CSystemUtility::GetModel(char (&text)[kEquipmentTextSize]) {
    return ReadIdentity("AT+CGMM\r", text, kEquipmentTextSize);
}

int CSystemUtility::GetRevision(char (&text)[kEquipmentTextSize]) {
    return ReadIdentity("AT+CGMR\r", text, kEquipmentTextSize);
}

int CSystemUtility::GetSerialNumber(char (&text)[kEquipmentTextSize]) {
    return ReadIdentity("AT+CGSN\r", text, kEquipmentTextSize);
}

int CSystemUtility::GetHardwareVersion(char (&text)[kHardwareVersionSize]) {
    const int result =
        StandardDialect() ? kNotSupportedByModem : ReadIdentity("AT+HWV\r", text, kHardwareVersionSize);
    if (result != 0)
        std::memset(text, 0, sizeof text);
    return result;
}

int CSystemUtility::GetImsi(char (&imsi)[kImsiSize]) {
    std::string response;
    const int result = WriteComm(response, "AT+CIMI\r", nullptr, 5000);
    if (result != 0)
        return result;
    return ParseImsiAnswer(response, imsi);
}

int CSystemUtility::GetMsisdn(TMsisdnInfo& msisdn) {
    msisdn = TMsisdnInfo{};
    std::string response;
    const int result = WriteComm(response, "AT+CNUM\r", nullptr, kIdentityTimeoutMs);
    if (result == 0)
        ParseCnumAnswer(response, msisdn);
    return result;
}

int CSystemUtility::GetEquipmentInfo(TEquipmentInfo& info) {
    info = TEquipmentInfo{};
    if (GetManufacturer(info.szManufacturer) == 0)
        info.nMask |= EQUIPMENT_MANUFACTURER;
    if (GetModel(info.szModel) == 0)
        info.nMask |= EQUIPMENT_MODEL;
    if (GetRevision(info.szRevision) == 0)
        info.nMask |= EQUIPMENT_REVISION;
    if (GetSerialNumber(info.szSerialNumber) == 0)
        info.nMask |= EQUIPMENT_SERIAL_NUMBER;
    if (GetImsi(info.szImsi) == 0)
        info.nMask |= EQUIPMENT_IMSI;
    if (GetMsisdn(info.msisdn) == 0)
        info.nMask |= EQUIPMENT_MSISDN;
    // Many modems reject AT+HWV; the bit stands for "asked", and the field is then all zero.
    GetHardwareVersion(info.szHardwareVersion);
    info.nMask |= EQUIPMENT_HARDWARE_VERSION;
    return 0;
}

int CSystemUtility::SetPdpContext(const char* apn, const char* pdpAddress) {
    if (apn == nullptr)
        return 1;
    // Context 1, type "IP": AT+CGDCONT=1,"IP","internet"
    std::string command = "AT+CGDCONT=1,\"IP\",";
    if (!AppendQuotedAtParameter(command, apn, kApnMaxLength))
        return kAtParameterRefused;
    if (pdpAddress != nullptr && !AppendQuotedAtParameter((command += ","), pdpAddress, kPdpAddressMaxLength))
        return kAtParameterRefused;
    command += "\r";
    std::string response;
    const int result = WriteComm(response, command.c_str(), nullptr, kIdentityTimeoutMs);
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CSystemUtility::SetPhoneFunctionality(int level) {
    const std::string command = "AT+CFUN=" + std::to_string(level) + "\r";
    std::string response;
    const int result = WriteComm(response, command.c_str(), nullptr, 20000);
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CSystemUtility::GetDeviceStartState(int& state) {
    if (StandardDialect())
        return kNotSupportedByModem;
    // AT+FUNC=5,? answers "+FUNC: 1".
    std::string response;
    const int result = WriteComm(response, "AT+FUNC=5,?\r", "+FUNC:", kIdentityTimeoutMs);
    if (result != 0)
        return result;
    const std::size_t at = response.find("+FUNC:");
    if (at == std::string::npos)
        return 1;
    int value = 0;
    if (std::sscanf(response.c_str() + at, "+FUNC: %d", &value) != 1)
        return 1;
    state = value;
    return 0;
}

int CSystemUtility::SetDeviceStartState(int state) {
    if (StandardDialect())
        return kNotSupportedByModem;
    const std::string command = "AT+FUNC=5," + std::to_string(state) + "\r";
    std::string response;
    const int result = WriteComm(response, command.c_str(), nullptr, kIdentityTimeoutMs);
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CSystemUtility::TrimContent(const std::string& answer, char* buffer, int size) {
    const std::size_t okAt = answer.find("\r\nOK");
    if (okAt == std::string::npos)
        return 1;
    std::size_t start = 0;
    while (start < okAt && answer.compare(start, 2, "\r\n") == 0)
        start += 2;
    std::size_t end = okAt;
    while (end > start + 2 && answer.compare(end - 2, 2, "\r\n") == 0)
        end -= 2;
    if (end <= start || buffer == nullptr || size <= 0)
        return 0;
    CopyBounded(std::string_view(answer).substr(start, end - start), buffer, static_cast<std::size_t>(size));
    return 0;
}

int CSystemUtility::ParseImsiAnswer(const std::string& answer, char (&imsi)[kImsiSize]) {
    // "\r\n460001234567890\r\n\r\nOK\r\n"
    if (!AnswerHasOk(answer))
        return 1;
    std::size_t start = answer.find("\r\n");
    if (start == std::string::npos)
        return 1;
    start += 2;
    for (std::size_t end; (end = answer.find("\r\n", start)) != std::string::npos; start = end + 2) {
        const std::string_view line = std::string_view(answer).substr(start, end - start);
        if (line.size() < kImsiSize && AllDigits(line)) {
            CopyBounded(line, imsi, sizeof imsi);
            return 0;
        }
    }
    return 1;
}

void CSystemUtility::ParseCnumAnswer(const std::string& answer, TMsisdnInfo& msisdn) {
    // +CNUM: "Voice","+8613912345678",145,0,4   alpha, number, type[, speed, service class]
    constexpr std::string_view kPrefix = "+CNUM: ";
    const std::string_view text(answer);
    for (std::size_t at = text.find(kPrefix); at != std::string_view::npos; at = text.find(kPrefix, at)) {
        std::size_t lineEnd = text.find("\r\n", at);
        if (lineEnd == std::string_view::npos)
            lineEnd = text.size();
        const std::string_view line = text.substr(at, lineEnd - at);
        at = lineEnd;

        const std::size_t comma = line.find(',');
        if (comma == std::string_view::npos || comma + 1 >= line.size() || line[comma + 1] != '"')
            return;
        const std::size_t open = comma + 1;
        const std::size_t close = line.find('"', open + 1);
        if (close == std::string_view::npos || close == open + 1)
            continue;

        std::size_t third = close;
        int commas = 0;
        while (commas < 3) {
            const std::size_t next = line.find(',', third + 1);
            if (next == std::string_view::npos)
                break;
            third = next;
            ++commas;
        }
        if (commas == 3) {
            const std::string rest(line.substr(third + 1));
            int serviceClass = 0;
            if (std::sscanf(rest.c_str(), "%d", &serviceClass) != 1 || serviceClass != 4)
                continue;
        }
        CopyBounded(line.substr(open + 1, close - open - 1), msisdn.szNumber, sizeof msisdn.szNumber);
        return;
    }
}
