#include "CliSupport.h"

#include <cstdio>
#include <iostream>

#include <unistd.h>

#include "ModemTextCheck.h"
#include "FailureText.h"

int ReportFailure(const CliContext& context, int resultCode, const std::string& what, int cause) {
    const std::string causeName = ModemCauseName(cause);
    if (causeName.empty())
        std::fprintf(stderr, "dialtone: %s (result %d)\n", what.c_str(), resultCode);
    else
        std::fprintf(stderr, "dialtone: %s (result %d, %s)\n", what.c_str(), resultCode, causeName.c_str());
    if (context.json) {
        nlohmann::json error{{"ERROR_CODE", resultCode}, {"error", what}};
        if (cause != 0)
            error["SUB_ERROR_CODE"] = cause;
        PrintJson(error);
    }
    return EXIT_FAILED;
}

int ReportUsage(const std::string& what) {
    std::fprintf(stderr, "dialtone: %s\nRun with --help for more information.\n", what.c_str());
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

void PrintJson(const nlohmann::json& document) {
    std::cout << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

