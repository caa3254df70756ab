#include "CliSupport.h"
#include "ToolText.h"

#include <cstdio>
#include <iostream>

#include <unistd.h>

#include "FailureText.h"
#include "KeyValueOutput.h"
#include "ModemTextCheck.h"
#include "ScriptJson.h"

namespace {

ScriptFormat g_scriptFormat = ScriptFormat::Json;

} // namespace

int ReportFailure(const CliContext& context, int resultCode, const std::string& what, int cause) {
    const std::string causeName = ModemCauseName(cause);
    if (causeName.empty())
        std::fprintf(stderr, "dialtone: %s (result %d)\n", what.c_str(), resultCode);
    else
        std::fprintf(stderr, "dialtone: %s (result %d, %s)\n", what.c_str(), resultCode, causeName.c_str());
    if (context.json)
        PrintJson(ErrorDocument(resultCode, what, cause));
    return EXIT_FAILED;
}

int ReportUsage(const std::string& what) {
    std::fprintf(stderr, "dialtone: %s\n%s\n", what.c_str(),
                 Tool::T("Run with --help for more information.").c_str());
    return EXIT_USAGE;
}

int CheckModemText(const std::string& what, const std::string& value, std::size_t maxLength) {
    const std::string problem = ModemTextProblem(what, value, maxLength);
    return problem.empty() ? EXIT_OK : ReportUsage(problem);
}

void ReportProgress(const std::string& what) {
    if (isatty(STDERR_FILENO))
        std::fprintf(stderr, "%s\n", what.c_str());
}

void SetScriptFormat(ScriptFormat format) {
    g_scriptFormat = format;
}

void PrintJson(const nlohmann::json& document) {
    if (g_scriptFormat == ScriptFormat::KeyValue)
        std::cout << KeyValueLines(document);
    else
        std::cout << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void PrintJsonLine(const nlohmann::json& event) {
    if (g_scriptFormat == ScriptFormat::KeyValue)
        std::cout << KeyValueLines(event) << '\n';
    else
        std::cout << event.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    std::cout.flush();
}
