#include "CallUtility.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "AtParameter.h"
#include "FamilyCommand.h"

namespace {

constexpr int kCommandTimeoutMs = 3000;
constexpr int kDialTimeoutMs = 60000;

constexpr int kNoCarrier = 25;
constexpr int kNoAnswer = 26;
constexpr int kBusy = 27;
constexpr int kNoDialtone = 28;

constexpr int kStateIncoming = 4;
constexpr int kModeVoice = 0;
constexpr int kTypeInternational = 145;

bool Holds(const std::string& answer, const char* text) {
    return answer.find(text) != std::string::npos;
}

} // namespace

int CCallUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CCallUtility::WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                            std::initializer_list<const char*> finals) {
    return FamilyWriteComm(m_pfnExecAT, response, command, expected, timeoutMs, finals);
}

int CCallUtility::RunCommand(const char* command, int timeoutMs, std::string& response) {
    if (const int result = WriteComm(response, command, nullptr, timeoutMs); result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CCallUtility::Init() {
    if (const int result = InitCOLP(); result != 0)
        return result;
    if (const int result = InitCLIP(); result != 0)
        return result;
    return InitCRC();
}

int CCallUtility::InitCOLP() {
    std::string response;
    return RunCommand("AT+COLP=0\r", kCommandTimeoutMs, response);
}

int CCallUtility::InitCLIP() {
    std::string response;
    return RunCommand("AT+CLIP=0\r", kCommandTimeoutMs, response);
}

int CCallUtility::InitCRC() {
    std::string response;
    return RunCommand("AT+CRC=0\r", kCommandTimeoutMs, response);
}

int CCallUtility::Dial(const char* number) {
    if (number == nullptr)
        return 1;
    // The dial string is not quoted, but a quote, a semicolon or a line end in it would still end it early.
    if (CheckAtParameter(number, kDialStringMaxLength) != AtParameterFault::None)
        return kAtParameterRefused;
    // The ";" makes it a voice call. The call setup ends in "OK" or one of the call results.
    const std::string command = std::string("ATD") + number + ";\r";
    std::string response;
    const int result = RunCommand(command.c_str(), kDialTimeoutMs, response);
    if (result != 1)
        return result;
    if (Holds(response, "NO CARRIER"))
        return kNoCarrier;
    if (Holds(response, "BUSY"))
        return kBusy;
    if (Holds(response, "NO ANSWER"))
        return kNoAnswer;
    if (Holds(response, "NO DIALTONE"))
        return kNoDialtone;
    return 1;
}

int CCallUtility::Answer() {
    std::string response;
    const int result = RunCommand("ATA\r", kCommandTimeoutMs, response);
    if (result == 1 && Holds(response, "NO CARRIER"))
        return kNoCarrier;
    return result;
}

int CCallUtility::HangUp() {
    std::string response;
    const int result = RunCommand("AT+CHUP\r", kCommandTimeoutMs, response);
    if (result == 1 && Holds(response, "NO CARRIER"))
        return kNoCarrier;
    return result;
}

int CCallUtility::SendDTMF(char tone) {
    const bool valid =
        tone == '#' || tone == '*' || (tone >= '0' && tone <= '9') || (tone >= 'A' && tone <= 'D');
    if (!valid)
        return 1;
    char command[16];
    std::snprintf(command, sizeof command, "AT+VTS=%c\r", tone);
    std::string response;
    return RunCommand(command, kCommandTimeoutMs, response);
}

int CCallUtility::CheckCallState(std::list<TCallItemState>& calls) {
    calls.clear();
    std::string response;
    if (const int result = RunCommand("AT+CLCC\r", kCommandTimeoutMs, response); result != 0)
        return result;
    ParseCallList(response, calls);
    return 0;
}

void CCallUtility::ParseCallList(const std::string& answer, std::list<TCallItemState>& calls) {
    // +CLCC: 1,1,4,0,0,"13800138000",129   index, direction, state, mode, multiparty, number, type
    constexpr std::string_view kPrefix = "+CLCC: ";
    for (std::size_t at = answer.find(kPrefix); at != std::string::npos; at = answer.find(kPrefix, at + 1)) {
        std::size_t end = answer.find("\r\n", at);
        if (end == std::string::npos)
            end = answer.size();
        const std::string line = answer.substr(at, end - at);

        TCallItemState call;
        if (std::sscanf(line.c_str(), "+CLCC: %d,%d,%d,%d,%d", &call.nIndex, &call.nDir, &call.nState,
                        &call.nMode, &call.nMpty) != 5)
            continue;

        // The fifth comma, behind the multiparty field, introduces the number.
        std::size_t comma = std::string::npos;
        for (std::size_t i = 0, from = 0; i < 5; ++i, from = comma + 1) {
            comma = line.find(',', from);
            if (comma == std::string::npos)
                break;
        }
        const std::size_t open = comma == std::string::npos ? comma : line.find('"', comma + 1);
        const std::size_t close = open == std::string::npos ? open : line.find('"', open + 1);
        if (close != std::string::npos) {
            const std::string number = line.substr(open + 1, close - open - 1);
            if (!number.empty())
                call.strNumber = number;
            if (call.strNumber.empty() || call.strNumber.front() != '+') {
                const std::size_t typeComma = line.find(',', close + 1);
                if (typeComma != std::string::npos &&
                    std::sscanf(line.c_str() + typeComma + 1, "%d", &call.nType) == 1 &&
                    call.nType == kTypeInternational)
                    call.strNumber.insert(0, 1, '+');
            }
        }
        calls.push_back(std::move(call));
    }
}

int CCallUtility::HandleRing(std::string& number) {
    std::list<TCallItemState> calls;
    if (CheckCallState(calls) != 0)
        return 1;
    for (const TCallItemState& call : calls) {
        if (call.nState == kStateIncoming && call.nMode == kModeVoice) {
            number = call.strNumber;
            return 0;
        }
    }
    return 1;
}

int CCallUtility::HandleCallEnd(bool& allEnded) {
    std::list<TCallItemState> calls;
    if (CheckCallState(calls) != 0)
        return 1;
    allEnded = true;
    for (const TCallItemState& call : calls) {
        if (call.nMode == kModeVoice)
            allEnded = false;
    }
    return 0;
}
