#include "GpsCommand.h"

#include <cstdio>

#include "ModemSession.h"
#include "ToolText.h"
#include "WorkNotification.h"

namespace {

int Switch(CliContext& context, ModemSession& session, bool on) {
    const QVariantMap response = session.request(on ? MESSAGE_GPS_INIT : MESSAGE_GPS_UNINIT);
    if (const int failed =
            session.check(response, on ? QT_TRANSLATE_NOOP("dialtone", "switching the GPS on")
                                       : QT_TRANSLATE_NOOP("dialtone", "switching the GPS off")))
        return failed;
    if (context.json)
        PrintJson({{"gps", on}});
    else
        std::printf("%s\n", on ? Tool::T("GPS on").c_str() : Tool::T("GPS off").c_str());
    return EXIT_OK;
}

} // namespace

void AddGpsCommand(CLI::App& app, CliContext& context) {
    CLI::App* gps = app.add_subcommand("gps", "The modem's GPS receiver");
    gps->require_subcommand(1);
    gps->add_subcommand("on", "Switch the GPS receiver on")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) { return Switch(context, s, true); });
    });
    gps->add_subcommand("off", "Switch the GPS receiver off")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) { return Switch(context, s, false); });
    });
}
