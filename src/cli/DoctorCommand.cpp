#include "DoctorCommand.h"

#include "ModemDoctor.h"
#include "ToolText.h"

#include <QByteArray>

#include <cstdio>

void AddDoctorCommand(CLI::App& app, CliContext& context) {
    CLI::App* doctor = app.add_subcommand(
        "doctor", "Check the stick, its ports, ModemManager, pppd and DNS, and say how to fix what is wrong");
    doctor->callback([&context] {
        if (!context.devDir.empty()) {
            qputenv("DIALTONE_DEV_DIR", QByteArray::fromStdString(context.devDir));
        }
        const QList<DoctorFinding> findings = ModemDoctor::examine();
        context.exitCode = ModemDoctor::allOk(findings) ? EXIT_OK : EXIT_FAILED;
        if (context.json) {
            nlohmann::json list = nlohmann::json::array();
            for (const DoctorFinding& finding : findings) {
                list.push_back({{"check", finding.check.toStdString()},
                                {"ok", finding.ok},
                                {"finding", finding.text.toStdString()},
                                {"fix", finding.fix.isEmpty() ? nlohmann::json()
                                                              : nlohmann::json(finding.fix.toStdString())}});
            }
            PrintJson({{"ok", context.exitCode == EXIT_OK}, {"findings", list}});
            return;
        }
        for (const DoctorFinding& finding : findings) {
            std::printf("%s  %-12s  %s\n", PadRight(finding.ok ? Tool::T("ok") : Tool::T("FAIL"), 4).c_str(),
                        qPrintable(finding.check), finding.text.toUtf8().constData());
            if (!finding.fix.isEmpty()) {
                std::printf("      %-12s  %s\n", "", Tool::F("fix: %s", {finding.fix.toStdString()}).c_str());
            }
        }
    });
}
