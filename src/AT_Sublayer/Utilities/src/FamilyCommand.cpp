#include "FamilyCommand.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <list>

#include "ModemDialect.h"

int FamilyWriteComm(ExecATCallback execAT, std::string& response, const char* command, const char* expected,
                    int timeoutMs, std::initializer_list<const char*> finals) {
    if (execAT == nullptr || command == nullptr)
        return 1;
    const std::list<std::string> finalResults(finals.begin(), finals.end());
    const int result = execAT(command, expected, timeoutMs, finalResults, response);
    if (result != 0)
        return result;
    SpaceAfterAnswerPrefixes(response);

    const std::string echo(command);
    if (echo.empty())
        return result;
    const std::size_t echoAt = response.find(echo);
    if (echoAt == std::string::npos)
        return result;
    const std::size_t lineEnd = response.find("\r\n", echoAt + echo.size());
    if (lineEnd != std::string::npos)
        response.erase(0, lineEnd);
    return result;
}

bool ReadsAnswersLeniently() {
    return CurrentModemDialect() == ModemDialect::Standard;
}

void SpaceAfterAnswerPrefixes(std::string& answer) {
    if (!ReadsAnswersLeniently())
        return;
    constexpr std::size_t kMaxPrefixName = 15;
    for (std::size_t at = answer.find('+'); at != std::string::npos; at = answer.find('+', at + 1)) {
        if (at != 0 && answer[at - 1] != '\n')
            continue;
        std::size_t end = at + 1;
        while (end < answer.size() && end - at <= kMaxPrefixName &&
               (std::isupper(static_cast<unsigned char>(answer[end])) ||
                std::isdigit(static_cast<unsigned char>(answer[end])) || answer[end] == '$' ||
                answer[end] == '^'))
            ++end;
        if (end == at + 1 || end + 1 >= answer.size() || answer[end] != ':' || answer[end + 1] == ' ')
            continue;
        if (answer[end + 1] != '\r')
            answer.insert(end + 1, 1, ' ');
    }
}

bool ReadAnswerInt(const char* text, int& value) {
    while (std::isspace(static_cast<unsigned char>(*text)))
        ++text;
    const char* digits = (*text == '+' || *text == '-') ? text + 1 : text;
    if (!std::isdigit(static_cast<unsigned char>(*digits)))
        return false;
    errno = 0;
    const long parsed = std::strtol(text, nullptr, 10);
    if (errno == ERANGE || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    value = static_cast<int>(parsed);
    return true;
}
