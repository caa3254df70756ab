#include "SignalQuality.h"

#include <cctype>
#include <cstring>

#include "FamilyCommand.h"

namespace {

// The text of the line that starts at at, without its "\r\n".
std::string LineFrom(const std::string& text, std::size_t at) {
    const std::size_t end = text.find("\r\n", at);
    return text.substr(at, end == std::string::npos ? std::string::npos : end - at);
}

// Up to count comma-separated numbers of a line; how many were read before the first that is not one.
int ReadNumbers(const std::string& line, int* values, int count) {
    std::size_t at = 0;
    for (int i = 0; i < count; ++i) {
        if (!ReadAnswerInt(line.c_str() + at, values[i]))
            return i;
        at = line.find(',', at);
        if (at == std::string::npos)
            return i + 1;
        ++at;
    }
    return count;
}

// A quoted hexadecimal field ("1A2B") of at most maxDigits digits; -1 when it is anything else.
long long HexField(const std::string& field, std::size_t maxDigits) {
    std::size_t start = field.find_first_not_of(' ');
    if (start == std::string::npos)
        return -1;
    std::string digits = field.substr(start);
    while (!digits.empty() && digits.back() == ' ')
        digits.pop_back();
    if (digits.size() >= 2 && digits.front() == '"' && digits.back() == '"')
        digits = digits.substr(1, digits.size() - 2);
    if (digits.empty() || digits.size() > maxDigits)
        return -1;
    long long value = 0;
    for (const char ch : digits) {
        if (!std::isxdigit(static_cast<unsigned char>(ch)))
            return -1;
        value =
            value * 16 + (std::isdigit(static_cast<unsigned char>(ch)) ? ch - '0' : (ch | 0x20) - 'a' + 10);
    }
    return value;
}

} // namespace

int CsqToDbm(int csq) {
    return csq >= 0 && csq <= 31 ? -113 + 2 * csq : kUnknownSignalDbm;
}

int RscpToDbm(int rscp) {
    return rscp >= 0 && rscp <= 96 ? rscp - 121 : kUnknownSignalDbm;
}

int EcnoToEcIoTenths(int ecno) {
    return ecno >= 0 && ecno <= 49 ? -245 + 5 * ecno : kUnknownEcIoTenths;
}

bool ParseCsqRssi(const std::string& answer, int& csq) {
    for (std::size_t at = answer.find("+CSQ:"); at != std::string::npos; at = answer.find("+CSQ:", at + 1)) {
        if (ReadAnswerInt(LineFrom(answer, at + std::strlen("+CSQ:")).c_str(), csq))
            return true;
    }
    return false;
}

bool ParseCesqAnswer(const std::string& answer, int& rscp, int& ecno) {
    for (std::size_t at = answer.find("+CESQ:"); at != std::string::npos;
         at = answer.find("+CESQ:", at + 1)) {
        int values[4] = {};
        if (ReadNumbers(LineFrom(answer, at + std::strlen("+CESQ:")), values, 4) == 4) {
            rscp = values[2];
            ecno = values[3];
            return true;
        }
    }
    return false;
}

bool ParseCregCell(const std::string& answer, TSignalReading& reading) {
    for (std::size_t at = answer.find("+CREG:"); at != std::string::npos;
         at = answer.find("+CREG:", at + 1)) {
        const std::string line = LineFrom(answer, at + std::strlen("+CREG:"));
        // An unsolicited "+CREG: 1,..." has no mode: only "mode,stat" lines answer the query.
        int head[2] = {};
        if (ReadNumbers(line, head, 2) != 2)
            continue;
        reading.registration = head[1];
        std::string fields[3];
        std::size_t start = line.find(',', line.find(',') + 1);
        for (int i = 0; i < 3 && start != std::string::npos; ++i) {
            const std::size_t end = line.find(',', start + 1);
            fields[i] =
                line.substr(start + 1, end == std::string::npos ? std::string::npos : end - start - 1);
            start = end;
        }
        reading.lac = HexField(fields[0], 4);
        reading.ci = HexField(fields[1], 8);
        int technology = -1;
        reading.accessTechnology =
            ReadAnswerInt(fields[2].c_str(), technology) && technology >= 0 && technology <= 15 ? technology
                                                                                                : -1;
        return true;
    }
    return false;
}
