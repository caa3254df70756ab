#include "FamilyCommand.h"

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
