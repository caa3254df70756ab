#include "FamilyCommand.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <list>

int FamilyWriteComm(ExecATCallback execAT, std::string& response, const char* command, const char* expected,
                    int timeoutMs, std::initializer_list<const char*> finals) {
    if (execAT == nullptr || command == nullptr)
        return 1;
    const std::list<std::string> finalResults(finals.begin(), finals.end());
    const int result = execAT(command, expected, timeoutMs, finalResults, response);
    if (result != 0)
        return result;

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
