#include "STKUtility.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "FamilyCommand.h"
#include "ModemDialect.h"

namespace {

constexpr const char* kStinPrefix = "+STIN:";
constexpr const char* kStgiPrefix = "+STGI:";
constexpr int kFetchTimeoutMs = 5000;
constexpr int kQueryTimeoutMs = 1000;
constexpr int kMainMenuNumber = 17;

} // namespace

int CSTKUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

bool CSTKUtility::ParseIndication(const char* line, int& number) {
    if (line == nullptr)
        return false;
    const char* at = std::strstr(line, kStinPrefix);
    return at != nullptr && ReadAnswerInt(at + std::strlen(kStinPrefix), number);
}

int CSTKUtility::SendCommand(const char* command, std::string& text, int timeoutMs) {
    std::string response;
    const int result = FamilyWriteComm(m_pfnExecAT, response, command, nullptr, timeoutMs);
    if (result == 0 && AnswerHasOk(response))
        text = response;
    return result;
}

int CSTKUtility::HandleReport(const char* line, std::string& text) {
    if (StandardDialect())
        return kNotSupportedByModem;
    int number = 0;
    if (!ParseIndication(line, number))
        return 1;
    if (number == kSessionEndNumber) {
        text = kSessionEndText;
        return 0;
    }
    // "+STIN: 11" -> AT+STGI=11 -> +STGI: 11,"Games",1,2 / +STGI: 11,1,"Quiz" / ... / OK
    char command[32];
    std::snprintf(command, sizeof command, "AT+STGI=%d\r", number);
    std::string response;
    const int result = FamilyWriteComm(m_pfnExecAT, response, command, kStgiPrefix, kFetchTimeoutMs);
    if (result != 0)
        return result;
    text = response;
    return 0;
}

int CSTKUtility::Init(std::string& text) {
    if (StandardDialect())
        return kNotSupportedByModem;
    // AT+STGI=17 -> +STGI: 17,"SIM Services",3 / +STGI: 17,1,"News" / ... / OK
    char command[32];
    std::snprintf(command, sizeof command, "AT+STGI=%d\r", kMainMenuNumber);
    std::string response;
    const int result = FamilyWriteComm(m_pfnExecAT, response, command, kStgiPrefix, kFetchTimeoutMs);
    if (result != 0)
        return result;
    if (!AnswerHasOk(response))
        return 1;
    text = response;
    return 0;
}

int CSTKUtility::GetCurrentProactiveCommand(int& /*type*/, std::string& /*text*/) {
    // AT+STIN? -> +STIN: 11. Nobody reads the answer; the outputs stay as they were.
    if (StandardDialect())
        return kNotSupportedByModem;
    std::string response;
    return FamilyWriteComm(m_pfnExecAT, response, "AT+STIN?\r", kStinPrefix, kQueryTimeoutMs);
}
