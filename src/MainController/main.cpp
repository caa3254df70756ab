// dialtone-gui: the desktop app.

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTimer>

#include <cstdio>
#include <memory>

#include "CoreDumps.h"
#include "DebugSink.h"
#include "MainWindow.h"
#include "QuitOnSignals.h"
#include "ScreenshotRun.h"
#include "SessionRecorder.h"
#include "Simulator.h"
#include "Translations.h"

int main(int argc, char** argv) {
    DisableCoreDumps();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("dialtone-gui"));
    QApplication::setApplicationDisplayName(QStringLiteral("Dialtone"));
    QApplication::setApplicationVersion(QStringLiteral(DIALTONE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("dialtone"));
    Translations::install(); // the system locale's: LC_ALL, LC_MESSAGES, LANG, LANGUAGE

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Connection manager for USB 3G/HSPA modems."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption simulate(QStringLiteral("simulate"),
                                      QStringLiteral("Run against a simulated modem instead of a real one."));
    const QCommandLineOption scenario(QStringLiteral("scenario"),
                                      QStringLiteral("The simulated modem's scenario (default, pin-locked, "
                                                     "full-sim, or a file)."),
                                      QStringLiteral("name"));
    const QCommandLineOption devDir(
        QStringLiteral("dev-dir"),
        QStringLiteral("Look for the modem's ports in this folder instead of /dev."),
        QStringLiteral("folder"));
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Render every tab to a PNG file in the folder, then quit."), QStringLiteral("folder"));
    const QCommandLineOption debug(QStringLiteral("debug"),
                                   QStringLiteral("Show the modem link's debug output on standard error."));
    const QCommandLineOption noService(
        QStringLiteral("no-service"),
        QStringLiteral("Open the modem in this program even when the modem service (dialtoned) is there."));
    const QCommandLineOption record(QStringLiteral("record"),
                                    QStringLiteral("Save the AT exchange with the modem to a new file."),
                                    QStringLiteral("file"));
    const QCommandLineOption recordPrivate(
        QStringLiteral("record-private"),
        QStringLiteral("Keep numbers, message texts, PINs and passwords in the recording."));
    parser.addOptions({simulate, scenario, devDir, screenshots, debug, noService, record, recordPrivate});
    parser.process(application);
    SetDebugSink(parser.isSet(debug) ? stderr : nullptr);
    if (parser.isSet(record) && !StartRecordingOrSay("dialtone-gui", parser.value(record).toStdString(),
                                                     parser.isSet(recordPrivate), DIALTONE_VERSION))
        return 1;

    Simulator simulator;
    if (parser.isSet(simulate) || parser.isSet(scenario)) {
        std::string error;
        if (!simulator.start(parser.value(scenario).toStdString(), false, error)) {
            std::fprintf(stderr, "dialtone-gui: %s\n", error.c_str());
            return 1;
        }
        simulator.useOwnFolders();
    } else if (parser.isSet(devDir)) {
        qputenv("DIALTONE_DEV_DIR", QDir(parser.value(devDir)).absolutePath().toLocal8Bit());
    }

    // After the simulator's own handlers: the quit below ends the simulator too.
    QuitOnSignals quitOnSignals;
    auto window = std::make_unique<MainWindow>(!parser.isSet(noService));
    window->resize(960, 640);
    window->show();

    std::unique_ptr<ScreenshotRun> shots;
    if (parser.isSet(screenshots)) {
        shots = std::make_unique<ScreenshotRun>(*window, parser.value(screenshots));
        shots->start();
    }
    const int status = application.exec();
    window.reset(); // hangs up, removes the dial options and lets go of the modem before the simulator ends
    if (shots && !shots->succeeded())
        return 1;
    return status;
}
