#include "SignalCommand.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string_view>

#include "ModemSession.h"
#include "Network/NetworkController.h"
#include "Network/SignalPeakWindow.h"
#include "ScriptJson.h"
#include "ScriptVocabulary.h"
#include "StatusText.h"
#include "ToolText.h"

namespace {

using nlohmann::json;

constexpr int kReadingIntervalMs = 1000;
constexpr int kBarWidth = 20;

std::atomic<bool> g_interrupted{false};

void OnInterrupt(int) {
    g_interrupted = true;
}

struct SignalOptions {
    bool watch = false;
    bool tone = false;
    int count = 0; // 0: until interrupted
};

json DbmOrNull(bool known, int dbm) {
    return known ? json(dbm) : json();
}

json ReadingDocument(const SignalSample& sample) {
    const auto hex = [](qint64 value) { return QString::number(value, 16).toUpper().toStdString(); };
    return {{"time", IsoTime(QDateTime::currentDateTime())},
            {"rssi_dbm", DbmOrNull(sample.hasRssi(), sample.rssiDbm)},
            {"bars", sample.bars() >= 0 ? json(sample.bars()) : json()},
            {"quality", sample.qualityWord()},
            {"rscp_dbm", DbmOrNull(sample.hasRscp(), sample.rscpDbm)},
            {"ecio_db", sample.hasEcIo() ? json(sample.ecIoTenths / 10.0) : json()},
            {"bearer", BearerName(sample.bearer)},
            {"lac", sample.hasCell() ? json(hex(sample.lac)) : json()},
            {"ci", sample.hasCell() ? json(hex(sample.ci)) : json()}};
}

std::string DbmText(bool known, int dbm) {
    return known ? std::to_string(dbm) + " dBm" : Tool::T("unknown");
}

std::string EcIoText(const SignalSample& sample) {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f dB", sample.ecIoTenths / 10.0);
    return sample.hasEcIo() ? text : Tool::T("unknown");
}

// "[###########---------]": -113 dBm empty, -51 dBm full.
std::string Bar(int dbm) {
    const int filled = dbm < 0 ? std::clamp((dbm + 113) * kBarWidth / 62, 0, kBarWidth) : 0;
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(kBarWidth - filled), '-') + "]";
}

// The sample's quality word in the user's language.
std::string QualityText(const SignalSample& sample) {
    const std::string_view word = sample.qualityWord();
    for (const char* known :
         {QT_TRANSLATE_NOOP("dialtone", "excellent"), QT_TRANSLATE_NOOP("dialtone", "good"),
          QT_TRANSLATE_NOOP("dialtone", "fair"), QT_TRANSLATE_NOOP("dialtone", "poor"),
          QT_TRANSLATE_NOOP("dialtone", "no signal")}) {
        if (word == known)
            return Tool::T(known);
    }
    return Tool::T("unknown");
}

std::string SignalLine(const SignalSample& sample) {
    if (!sample.hasRssi())
        return Tool::T("unknown");
    return Tool::F("%s (%s/5, %s)",
                   {DbmText(true, sample.rssiDbm), std::to_string(sample.bars()), QualityText(sample)});
}

Outcome Read(ModemSession& session, NetworkController& network, SignalSample& sample) {
    const auto [outcome, read] = session.await(
        network, &NetworkController::signalRead, [&] { network.readSignal(); },
        QT_TRANSLATE_NOOP("dialtone", "reading the signal"));
    sample = read;
    return outcome;
}

int Once(const CliContext& context, ModemSession& session) {
    NetworkController network(session.link());
    SignalSample sample;
    if (const int failed = session.check(Read(session, network, sample),
                                         QT_TRANSLATE_NOOP("dialtone", "reading the signal")))
        return failed;
    if (context.json) {
        PrintJson(ReadingDocument(sample));
        return EXIT_OK;
    }
    FieldList fields;
    fields.add(Tool::T("Signal:"), SignalLine(sample));
    if (sample.hasRscp())
        fields.add(Tool::T("RSCP:"), DbmText(true, sample.rscpDbm));
    if (sample.hasEcIo())
        fields.add(Tool::T("Ec/Io:"), EcIoText(sample));
    fields.add(Tool::T("Bearer:"), BearerText(sample.bearer));
    fields.add(Tool::T("Cell:"), sample.hasCell() ? sample.cellText().toStdString() : "-");
    fields.print();
    return EXIT_OK;
}

// Rings the bell `bars` times spread over the next second; nothing for no signal.
void Ring(int bars, QObject* context) {
    for (int i = 0; i < bars; ++i) {
        QTimer::singleShot(i * kReadingIntervalMs / bars, context, [] {
            std::fputc('\a', stderr);
            std::fflush(stderr);
        });
    }
}

int Watch(const CliContext& context, ModemSession& session, const SignalOptions& options) {
    NetworkController network(session.link());
    SignalPeakWindow peak;
    QElapsedTimer clock;
    clock.start();
    g_interrupted = false;
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
    const bool bell = options.tone && isatty(STDERR_FILENO);
    if (options.tone && !bell)
        std::fprintf(stderr, "%s\n", Tool::T("dialtone: --tone needs a terminal on standard error").c_str());
    if (options.count != 1)
        ReportProgress(Tool::T("Reading the signal once a second; press Ctrl-C to stop"));
    QObject ringing;
    for (int reading = 0; !g_interrupted && (options.count == 0 || reading < options.count); ++reading) {
        const qint64 startedMs = clock.elapsed();
        SignalSample sample;
        if (const int failed = session.check(Read(session, network, sample),
                                             QT_TRANSLATE_NOOP("dialtone", "reading the signal")))
            return failed;
        peak.add(startedMs, sample.rssiDbm);
        const int best = peak.best(startedMs);
        if (context.json) {
            json document = ReadingDocument(sample);
            document["best_dbm"] = DbmOrNull(best < 0, best);
            PrintJsonLine(document);
        } else {
            std::printf("%s  %8s %s %-9s  %s %s",
                        QDateTime::currentDateTime().toString("HH:mm:ss").toUtf8().constData(),
                        DbmText(sample.hasRssi(), sample.rssiDbm).c_str(), Bar(sample.rssiDbm).c_str(),
                        QualityText(sample).c_str(), Tool::T("best").c_str(),
                        DbmText(best < 0, best).c_str());
            if (sample.hasRscp())
                std::printf("  RSCP %s", DbmText(true, sample.rscpDbm).c_str());
            if (sample.hasEcIo())
                std::printf("  Ec/Io %s", EcIoText(sample).c_str());
            std::printf("  %s  %s\n", BearerText(sample.bearer).c_str(),
                        sample.hasCell() ? sample.cellText().toStdString().c_str() : "-");
            std::fflush(stdout);
        }
        if (bell)
            Ring(std::max(sample.bars(), 0), &ringing);
        if (options.count != 0 && reading + 1 >= options.count)
            break;
        // The next reading a second after this one started; Ctrl-C ends the wait at once.
        QEventLoop wait;
        QTimer::singleShot(std::max<qint64>(0, startedMs + kReadingIntervalMs - clock.elapsed()), &wait,
                           &QEventLoop::quit);
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &wait, [&wait] {
            if (g_interrupted)
                wait.quit();
        });
        poll.start(50);
        wait.exec();
    }
    return EXIT_OK;
}

} // namespace

void AddSignalCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<SignalOptions>();
    CLI::App* command = app.add_subcommand(
        "signal", "The signal in dBm with bars, RSCP and Ec/Io when known, bearer and cell; --watch to find "
                  "the best place for the stick");
    command->add_flag("--watch", options->watch,
                      "A reading a second with the best of the last minute, until Ctrl-C");
    command->add_option("--count", options->count, "With --watch: stop after N readings")
        ->check(CLI::Range(1, 1000000))
        ->type_name("N");
    command->add_flag("--tone", options->tone,
                      "With --watch: ring the terminal bell, faster for a stronger signal");
    command->callback([&context, options] {
        if ((options->count != 0 || options->tone) && !options->watch) {
            context.exitCode = ReportUsage(Tool::T("--count and --tone go with --watch"));
            return;
        }
        context.exitCode = RunInSession(context, [&context, options](ModemSession& s) {
            return options->watch ? Watch(context, s, *options) : Once(context, s);
        });
    });
}
