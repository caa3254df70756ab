#include "PinUtility.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "AtParameter.h"
#include "FamilyCommand.h"
#include "ModemDialect.h"
#include "PinCodeFormat.h"

namespace {

// Appends the code as a quoted parameter when it has the form the SIM takes; a malformed code would
// only cost an attempt.
bool AppendCode(std::string& command, const char* code, PinCodeKind kind) {
    return code != nullptr && IsPinCodeWellFormed(code, kind) && AppendQuotedAtParameter(command, code, 8);
}

struct StateText {
    const char* text;
    int state;
};

// Searched by substring in this order, so "PH-SIM PIN" is found as "SIM PIN" (2) before its own row (4):
// kept, callers rely on the order.
constexpr StateText kPinStates[] = {
    {"READY", 1},          {"PH-FSIM PIN", 5},    {"PH-FSIM PUK", 6}, {"SIM PIN2", 7},   {"SIM PUK2", 8},
    {"SIM PIN", 2},        {"SIM PUK", 3},        {"PH-SIM PIN", 4},  {"PH-NET PIN", 9}, {"PH-NET PUK", 10},
    {"PH-NETSUB PIN", 11}, {"PH-NETSUB PUK", 12}, {"PH-SP PIN", 13},  {"PH-SP PUK", 14}, {"PH-CORP PIN", 15},
    {"PH-CORP PUK", 16},   {"RCK FORBIDDEN", 17},
};

struct ErrorText {
    const char* text;
    int code;
};

// Verbose texts of AT+CMEE=2 (3GPP TS 27.007 clause 9.2), compared as prefixes in this order.
constexpr ErrorText kCmeErrors[] = {
    {"PH-SIM PIN required", 5},
    {"PH-FSIM PIN required", 6},
    {"PH-FSIM PUK required", 7},
    {"SIM not inserted", 8},
    {"SIM PIN required", 9},
    {"SIM PUK required", 10},
    {"SIM failure", 11},
    {"SIM busy", 12},
    {"SIM wrong", 13},
    {"incorrect password", 14},
    {"SIM PIN2 required", 15},
    {"SIM PUK2 required", 16},
    {"network personalization PIN required", 17},
    {"network personalization PUK required", 18},
    {"network subset personalization PIN required", 19},
    {"network subset personalization PUK required", 20},
    {"service provider personalization PIN required", 21},
    {"service provider personalization PUK required", 22},
    {"corporate personalization PIN required", 23},
    {"corporate personalization PUK required", 24},
};

constexpr int kSimNotInserted = 8;
constexpr int kPinTimeoutMs = 1000;

bool IsPersonalisationState(int pinState) {
    return pinState == 4 || pinState == 5 || pinState == 6 || (pinState >= 9 && pinState <= 16);
}

} // namespace

int CPinUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CPinUtility::WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                           std::initializer_list<const char*> finals) {
    return FamilyWriteComm(m_pfnExecAT, response, command, expected, timeoutMs, finals);
}

int CPinUtility::GetErrorCode(const std::string& answer) {
    constexpr const char* kPrefix = "+CME ERROR: ";
    const std::size_t at = answer.find(kPrefix);
    if (at == std::string::npos)
        return answer.empty() ? 2 : 1;
    const char* text = answer.c_str() + at + std::strlen(kPrefix);
    for (const ErrorText& entry : kCmeErrors) {
        if (std::strncmp(text, entry.text, std::strlen(entry.text)) == 0)
            return entry.code;
    }
    return 1;
}

int CPinUtility::ParseCpinAnswer(const std::string& answer, int& state) {
    const std::size_t at = answer.find("+CPIN");
    if (at == std::string::npos)
        return 1;
    for (const StateText& entry : kPinStates) {
        if (answer.find(entry.text, at) != std::string::npos) {
            state = entry.state;
            return 0;
        }
    }
    return 1;
}

int CPinUtility::CheckState(int& state) {
    // "+CPIN: SIM PIN", or "+CME ERROR: SIM not inserted" without a SIM.
    std::string response;
    const int result =
        WriteComm(response, "AT+CPIN?\r", "+CPIN", kPinTimeoutMs, {"OK", "+CME ERROR:", "ERROR"});
    if (result != 0)
        return result;
    if (response.find("+CPIN") != std::string::npos)
        return ParseCpinAnswer(response, state);
    const int code = GetErrorCode(response);
    if (code == kSimNotInserted) {
        state = 0;
        return 0;
    }
    return code;
}

int CPinUtility::GetState(int& enabled) {
    // AT+CLCK="SC",2 answers "+CLCK: 1".
    std::string response;
    const int result = WriteComm(response, "AT+CLCK=\"SC\",2\r", "+CLCK", 5000);
    if (result != 0)
        return result;
    const std::size_t at = response.find("+CLCK");
    int value = -1;
    if (at == std::string::npos || std::sscanf(response.c_str() + at, "+CLCK: %d", &value) != 1)
        return 1;
    if (value != 0 && value != 1)
        return 1;
    enabled = value;
    return 0;
}

int CPinUtility::RunCommand(const std::string& command) {
    std::string response;
    const int result = WriteComm(response, command.c_str(), nullptr, kPinTimeoutMs);
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : GetErrorCode(response);
}

int CPinUtility::Enable(int on, const char* pin) {
    std::string command = std::string("AT+CLCK=\"SC\",") + (on != 0 ? "1," : "0,");
    if (!AppendCode(command, pin, PinCodeKind::Pin))
        return kAtParameterRefused;
    return RunCommand(command + "\r");
}

int CPinUtility::Change(const char* oldPin, const char* newPin) {
    if (oldPin == nullptr || newPin == nullptr)
        return 1;
    std::string command = "AT+CPWD=\"SC\",";
    if (!AppendCode(command, oldPin, PinCodeKind::Pin) ||
        !AppendCode((command += ","), newPin, PinCodeKind::Pin))
        return kAtParameterRefused;
    return RunCommand(command + "\r");
}

int CPinUtility::Verify(const char* pin) {
    if (pin == nullptr)
        return 1;
    std::string command = "AT+CPIN=";
    if (!AppendCode(command, pin, PinCodeKind::Pin))
        return kAtParameterRefused;
    return RunCommand(command + "\r");
}

int CPinUtility::VerifyPuk(const char* puk, const char* newPin) {
    if (puk == nullptr || newPin == nullptr)
        return 1;
    std::string command = "AT+CPIN=";
    if (!AppendCode(command, puk, PinCodeKind::Puk) ||
        !AppendCode((command += ","), newPin, PinCodeKind::Pin))
        return kAtParameterRefused;
    return RunCommand(command + "\r");
}

int CPinUtility::ParseCpinrAnswer(const std::string& answer, const char* code) {
    // +CPINR: SIM PIN,3,3   code, attempts left, attempts in all; some modems quote the code.
    constexpr std::string_view kPrefix = "+CPINR:";
    const std::size_t codeLength = std::strlen(code);
    for (std::size_t at = answer.find(kPrefix); at != std::string::npos; at = answer.find(kPrefix, at + 1)) {
        std::size_t name = answer.find_first_not_of(' ', at + kPrefix.size());
        if (name != std::string::npos && answer[name] == '"')
            ++name;
        if (name == std::string::npos || answer.compare(name, codeLength, code) != 0)
            continue;
        std::size_t behind = name + codeLength;
        if (behind < answer.size() && answer[behind] == '"')
            ++behind;
        int left = 0;
        if (behind < answer.size() && answer[behind] == ',' &&
            ReadAnswerInt(answer.c_str() + behind + 1, left) && left >= 0)
            return left;
    }
    return kPinCountUnknown;
}

int CPinUtility::GetInfoByCpinr(int pinState, TPinInfo& info) {
    info.nPinCnt = kPinCountUnknown;
    info.nPukCnt = kPinCountUnknown;
    // The personalisation locks have no standard counter.
    if (IsPersonalisationState(pinState))
        return 0;
    std::string response;
    const int result = WriteComm(response, "AT+CPINR\r", "+CPINR", kPinTimeoutMs);
    // A modem without the command answers ERROR: the counters stay unknown, the PIN state is still good.
    if (result == 30)
        return result;
    if (result != 0)
        return 0;
    const bool second = pinState == 7 || pinState == 8;
    info.nPinCnt = ParseCpinrAnswer(response, second ? "SIM PIN2" : "SIM PIN");
    info.nPukCnt = ParseCpinrAnswer(response, second ? "SIM PUK2" : "SIM PUK");
    return 0;
}

int CPinUtility::GetInfo(int pinState, TPinInfo& info) {
    if (StandardDialect())
        return GetInfoByCpinr(pinState, info);
    const bool personalisation = IsPersonalisationState(pinState);
    std::string response;
    const int result = WriteComm(response, personalisation ? "AT+SMPN?\r" : "AT+PNNM?\r", nullptr, 10000);
    if (result != 0)
        return result;

    if (!personalisation) {
        // +PNNM: 3, 10   PIN attempts, PUK attempts
        const std::size_t at = response.find("+PNNM: ");
        int first = 0;
        int second = 0;
        if (at == std::string::npos ||
            std::sscanf(response.c_str() + at, "+PNNM: %d, %d", &first, &second) != 2)
            return 1;
        info.nPinCnt = first;
        info.nPukCnt = second;
        return 0;
    }

    // +SMPN: PN(10,10),PU(10,10),PP(10,10),PC(10,10),PF(10,10)   one pair per personalisation lock
    const std::size_t at = response.find("+SMPN: ");
    int n[10] = {};
    if (at == std::string::npos ||
        std::sscanf(response.c_str() + at, "+SMPN: PN(%d,%d),PU(%d,%d),PP(%d,%d),PC(%d,%d),PF(%d,%d)", &n[0],
                    &n[1], &n[2], &n[3], &n[4], &n[5], &n[6], &n[7], &n[8], &n[9]) != 10)
        return 1;
    int pair = 8; // PF: states 4, 5 and 6
    if (pinState == 9 || pinState == 10)
        pair = 0; // PN
    else if (pinState == 11 || pinState == 12)
        pair = 2; // PU
    else if (pinState == 13 || pinState == 14)
        pair = 4; // PP
    else if (pinState == 15 || pinState == 16)
        pair = 6; // PC
    info.nPinCnt = n[pair];
    info.nPukCnt = n[pair + 1];
    return 0;
}
