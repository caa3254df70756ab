#include "DoctorCommand.h"

#include "ModemDoctor.h"

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
            std::printf("%-4s  %-12s  %s\n", finding.ok ? "ok" : "FAIL", qPrintable(finding.check),
                        finding.text.toUtf8().constData());
            if (!finding.fix.isEmpty()) {
                std::printf("      %-12s  fix: %s\n", "", finding.fix.toUtf8().constData());
            }
        }
    });
}
