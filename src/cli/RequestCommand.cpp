#include "RequestCommand.h"

#include <memory>

#include "ModemSession.h"
#include "RecordJson.h"
#include "RequestArgument.h"
#include "WorkNotification.h"

namespace {

struct RequestArguments {
    std::string name;
    std::string argument;
};

} // namespace

void AddRequestCommand(CLI::App& app, CliContext& context) {
    auto arguments = std::make_shared<RequestArguments>();
    CLI::App* request = app.add_subcommand("request", "Send one named request and print its response");
    request->add_option("NAME", arguments->name, "The request's name, e.g. MESSAGE_PIN_CHECK_STATE")
        ->required();
    request->add_option("ARGUMENT-JSON", arguments->argument,
                        "Its argument: a number, a string, or an object with \"class\" naming the record");
    request->callback([&context, arguments] {
        QVariant argument;
        nlohmann::json document;
        if (!arguments->argument.empty()) {
            document = nlohmann::json::parse(arguments->argument, nullptr, false);
            if (document.is_discarded()) {
                context.exitCode = ReportUsage("ARGUMENT-JSON is not valid JSON: " + arguments->argument);
                return;
            }
        }
        // Checked against what the request takes before anything is sent: a wrong record would reach the
        // modem as empty or default fields.
        if (const std::string problem = RequestArgumentProblem(arguments->name, document); !problem.empty()) {
            context.exitCode = ReportUsage("ARGUMENT-JSON: " + problem);
            return;
        }
        std::string error;
        if (!document.is_null() && !JsonToVariant(document, argument, error)) {
            context.exitCode = ReportUsage("ARGUMENT-JSON: " + error);
            return;
        }
        const QString name = QString::fromStdString(arguments->name);
        context.exitCode = RunInSession(context, [&](ModemSession& session) -> int {
            const QVariantMap response = session.request(name, argument);
            if (const int failed = session.check(response, arguments->name))
                return failed;
            PrintJson(MapToJson(response));
            return EXIT_OK;
        });
    });
}
