#include "ModemErrorCause.h"

#include <cctype>
#include <cstring>

namespace {

struct VerboseCause {
    int number;
    const char* text;
};

// The verbose texts of AT+CMEE=2, 3GPP TS 27.007 clause 9.2.1 and 9.2.2.
constexpr VerboseCause kCmeTexts[] = {
    {0, "phone failure"},
    {1, "no connection to phone"},
    {2, "phone-adaptor link reserved"},
    {3, "operation not allowed"},
    {4, "operation not supported"},
    {5, "PH-SIM PIN required"},
    {6, "PH-FSIM PIN required"},
    {7, "PH-FSIM PUK required"},
    {10, "SIM not inserted"},
    {11, "SIM PIN required"},
    {12, "SIM PUK required"},
    {13, "SIM failure"},
    {14, "SIM busy"},
    {15, "SIM wrong"},
    {16, "incorrect password"},
    {17, "SIM PIN2 required"},
    {18, "SIM PUK2 required"},
    {20, "memory full"},
    {21, "invalid index"},
    {22, "not found"},
    {23, "memory failure"},
    {24, "text string too long"},
    {25, "invalid characters in text string"},
    {26, "dial string too long"},
    {27, "invalid characters in dial string"},
    {30, "no network service"},
    {31, "network timeout"},
    {32, "network not allowed - emergency calls only"},
    {40, "network personalization PIN required"},
    {41, "network personalization PUK required"},
    {50, "incorrect parameters"},
    {100, "unknown"},
    {103, "Illegal MS"},
    {106, "Illegal ME"},
    {107, "GPRS services not allowed"},
    {111, "PLMN not allowed"},
    {112, "Location area not allowed"},
    {113, "Roaming not allowed in this location area"},
};

bool SameText(const char* text, std::size_t length, const char* known) {
    if (std::strlen(known) != length)
        return false;
    for (std::size_t i = 0; i < length; ++i) {
        if (std::tolower(static_cast<unsigned char>(text[i])) !=
            std::tolower(static_cast<unsigned char>(known[i])))
            return false;
    }
    return true;
}

// The cause after "+CME ERROR: " or "+CMS ERROR: ", up to the end of its line.
int CauseNumber(const std::string& answer, std::size_t start, bool cme) {
    std::size_t end = answer.find_first_of("\r\n", start);
    if (end == std::string::npos)
        end = answer.size();
    while (start < end && answer[start] == ' ')
        ++start;
    while (end > start && answer[end - 1] == ' ')
        --end;
    if (start == end)
        return -1;
    int number = 0;
    std::size_t i = start;
    for (; i < end && i - start < 5 && std::isdigit(static_cast<unsigned char>(answer[i])); ++i)
        number = number * 10 + (answer[i] - '0');
    if (i == end)
        return number;
    if (!cme) // TS 27.005 names no verbose texts; modems print numbers there
        return -1;
    for (const VerboseCause& entry : kCmeTexts) {
        if (SameText(answer.data() + start, end - start, entry.text))
            return entry.number;
    }
    return -1;
}

} // namespace

int ModemErrorCause(const std::string& answer) {
    static constexpr const char kCme[] = "+CME ERROR:";
    static constexpr const char kCms[] = "+CMS ERROR:";
    const std::size_t cme = answer.rfind(kCme);
    const std::size_t cms = answer.rfind(kCms);
    if (cme == std::string::npos && cms == std::string::npos)
        return 0;
    const bool isCme = cms == std::string::npos || (cme != std::string::npos && cme > cms);
    const std::size_t at = isCme ? cme + sizeof kCme - 1 : cms + sizeof kCms - 1;
    const int number = CauseNumber(answer, at, isCme);
    if (number < 0)
        return 0;
    return (isCme ? kCmeCause : kCmsCause) + number;
}
