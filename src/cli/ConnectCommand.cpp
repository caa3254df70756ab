#include "ConnectCommand.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>

#include "AppConfig.h"
#include "BLRecords.h"
#include "Budget/BudgetGuard.h"
#include "Connector/ConnectController.h"
#include "Connector/ProfileSettingsController.h"
#include "ConvertUtilty.h"
#include "DialupReadiness.h"
#include "ModemSession.h"
#include "PPPConnection.h"
#include "ScriptDocuments.h"
#include "ScriptVocabulary.h"
#include "ServiceTool.h"
#include "SimProfiles.h"
#include "Statistics/TrafficStatics.h"
#include "StatusText.h"
#include "ToolText.h"
#include "Units.h"
#include "WorkNotification.h"

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnInterrupt(int) {
    g_interrupted = 1;
}

// The connect controller of the desktop app, run by the tool: the SIM's profiles, the modem's dial-up
// service, and the traffic history. run() turns the event loop until finish() is called, the deadline
// passes (0: none) or the user interrupts; onTick runs every 100 ms for both.
class ConnectorRun {
public:
    // With guarded (a connect), the budget and roaming guard watches the dial and the link.
    ConnectorRun(CliContext& context, ModemSession& session, AppConfig& config, bool guarded)
        : _context(context), _session(session), _config(config), _traffic(config), _settings(config),
          _controller(session.link(), &config, &_traffic) {
        if (guarded) {
            _guard = std::make_unique<BudgetGuard>(session.link(), _controller, config);
            _guard->setPollsNetwork(true);
        }
        // The service tool's command line is progress, never part of the output.
        _controller.setEchoSink([](const QString& line) { ReportProgress(line.toStdString()); });
        QObject::connect(&_controller, &ConnectController::serviceCreationFailed, [this] {
            finish(ReportFailure(_context, WORKER_ERR_SERVICE_NOT_FOUND, serviceFailure()));
        });
    }

    // Reads the SIM's identity and the network, chooses the SIM's profiles and tells the controller the
    // roaming state. False once a failure is reported.
    bool learnSim() {
        BLNetworkInfo network;
        if (!LearnSim(_context, _session, _config, _settings, &network))
            return false;
        NotificationCenter::defaultCenter().post(NETWORK_UPDATE, nullptr,
                                                 {{KEY_ROAMSTATE, network.nRoamState},
                                                  {KEY_GPRSSTATE, network.nGprsState},
                                                  {KEY_OPERATOR, network.strOperator}});
        return true;
    }

    int run(double deadlineSeconds, const std::function<void()>& onTick) {
        QEventLoop loop;
        _loop = &loop;
        QTimer tick;
        tick.setInterval(100);
        QObject::connect(&tick, &QTimer::timeout, [&] {
            if (_finished)
                return;
            const bool late = deadlineSeconds > 0 && std::chrono::steady_clock::now() >= _deadline;
            if (late && !_lateNoticed) {
                _lateNoticed = true;
                if (_onLate)
                    _onLate();
            }
            if (onTick && !_finished)
                onTick();
        });
        _deadline = std::chrono::steady_clock::now() +
                    std::chrono::milliseconds(static_cast<long long>(deadlineSeconds * 1000));
        tick.start();
        if (!_finished)
            loop.exec();
        _loop = nullptr;
        return _exitCode;
    }

    void finish(int exitCode) {
        if (_finished)
            return;
        _finished = true;
        _exitCode = exitCode;
        if (_loop)
            _loop->quit();
    }
    bool finished() const { return _finished; }
    void onLate(std::function<void()> action) { _onLate = std::move(action); }

    // Waits for the connector to be ready ("MESSAGE_MODEM_INIT" and the service it may create), then
    // calls ready; the profile list is published by then.
    void whenReady(std::function<void()> ready) {
        NotificationCenter::defaultCenter().addObserver(CONNECTOR_READY, &_controller,
                                                        [ready](const Notification&) { ready(); });
        // Said also without a terminal: a password dialog may appear on the desktop.
        if (ServiceTool::needsPrivilege())
            std::fprintf(
                stderr, "%s\n",
                Tool::F("The first connection sets up the modem's dial-up service in %s, which only an "
                        "administrator may change: the system asks for a password once.",
                        {PPPConnection::peersDir().toStdString()})
                    .c_str());
        _controller.modemInit();
    }

    ConnectController& controller() { return _controller; }
    ProfileSettingsController& settings() { return _settings; }
    BudgetGuard* guard() { return _guard.get(); }

private:
    std::string serviceFailure() const {
        std::string reason = _controller.serviceToolStatus() == 126
                                 ? "the modem's dial-up service was not created: the password was not given"
                                 : "the modem's dial-up service could not be created";
        for (const DialupReadiness::Finding& finding :
             DialupReadiness::check(DialupReadiness::Facts::fromSystem()))
            if (!finding.ok && finding.check == "peers")
                reason += "; " + finding.text + " (fix: " + finding.fix + ")";
        return reason;
    }

    CliContext& _context;
    ModemSession& _session;
    AppConfig& _config;
    TrafficStatics _traffic;
    ProfileSettingsController _settings;
    ConnectController _controller;
    std::unique_ptr<BudgetGuard> _guard;
    QEventLoop* _loop = nullptr;
    std::chrono::steady_clock::time_point _deadline;
    std::function<void()> _onLate;
    bool _lateNoticed = false;
    bool _finished = false;
    int _exitCode = EXIT_OK;
};

// Calls the handler for every state the controller announces: 0 connecting, 1 disconnecting,
// 2 connected, 3 disconnected.
void OnAnnouncedState(QObject* receiver, std::function<void(int)> handler) {
    NotificationCenter::defaultCenter().addObserver(
        CONNECT_STATE, receiver,
        [handler](const Notification& n) { handler(n.userInfo.value(KEY_VALUE_OBJECT).toInt()); });
}

void OnStatistics(QObject* receiver, std::function<void(const Notification&)> handler) {
    NotificationCenter::defaultCenter().addObserver(NOTIFY_TRAFFIC_STATISTICS, receiver, std::move(handler));
}

BLConnectStatistics SampleOf(const Notification& notification) {
    return notification.userInfo.value(KEY_FOR_NOTIFY_TRAFFIC_STATISTICS).value<BLConnectStatistics>();
}

std::string Bytes(quint64 bytes) {
    return ByteText(bytes);
}

void PrintSample(const CliContext& context, int state, const Notification& notification) {
    const BLConnectStatistics sample = SampleOf(notification);
    const QString up = notification.userInfo.value(KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_UPDATA_RATE).toString();
    const QString down =
        notification.userInfo.value(KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_DOWNDATA_RATE).toString();
    if (context.json) {
        nlohmann::json line = TrafficDocument(sample);
        line["connection"] = ConnectionName(state);
        PrintJsonLine(line);
    } else {
        std::printf(
            "%s %s\n", PadRight(ConnectStatusText(state), 13).c_str(),
            Tool::F("%s  sent %s  received %s  up %s  down %s",
                    {DurationText(sample.nDurationSeconds), Bytes(sample.nSentBytes),
                     Bytes(sample.nReceivedBytes), RateText(sample.nSentBPS), RateText(sample.nReceivedBPS)})
                .c_str());
    }
    std::fflush(stdout);
}

void CatchInterrupts() {
    g_interrupted = 0;
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
}

// The offered entry named by the user: its name (any case), or its 1-based number in the offered list.
int FindProfile(const QList<APNInfo>& offered, const std::string& wanted) {
    const QString name = QString::fromStdString(wanted);
    for (qsizetype i = 0; i < offered.size(); ++i) {
        if (offered[i].strAccount.compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    }
    bool number = false;
    const int position = name.toInt(&number);
    return number && position >= 1 && position <= offered.size() ? position - 1 : -1;
}

// Runs the command with the connector of this session; with learnSim, the SIM's profiles and the roaming
// state are known first.
int WithConnector(CliContext& context, ModemSession& session, bool learnSim,
                  const std::function<int(ConnectorRun&)>& command, bool guarded = false) {
    AppConfig* config = SessionConfig(context);
    if (!config)
        return context.exitCode;
    ConnectorRun run(context, session, *config, guarded);
    if (learnSim && !run.learnSim())
        return context.exitCode;
    return command(run);
}

struct ConnectOptions {
    std::string profile;
    bool hold = false;
    bool overBudget = false;
    bool allowRoaming = false;
};

// The guard's refusals end the command with their way out; its warnings go to standard error; a link it
// ended ends the command with its reason.
void WatchGuard(CliContext& context, ConnectorRun& run, const ConnectOptions& options, std::string& hungUp) {
    BudgetGuard& guard = *run.guard();
    if (options.overBudget && !guard.allowOverBudget())
        std::fprintf(stderr, "dialtone: %s\n", Tool::T("the override could not be stored").c_str());
    if (options.allowRoaming)
        guard.allowRoamingThisSession();
    QObject::connect(
        &guard, &BudgetGuard::dialRefused, [&context, &run](BudgetStep step, const QString& why) {
            const std::string way = step == BudgetStep::HangUpRoaming
                                        ? Tool::T("\"dialtone connect --allow-roaming\" dials anyway")
                                        : Tool::T("\"dialtone connect --over-budget\" dials anyway");
            run.finish(ReportFailure(context, WORKER_ERR_GENERAL, why.toStdString() + " " + way));
        });
    QObject::connect(&guard, &BudgetGuard::notice, [&hungUp](BudgetStep step, const QString& text) {
        if (step == BudgetStep::HangUpBudget || step == BudgetStep::HangUpRoaming)
            hungUp = text.toStdString();
        else
            std::fprintf(stderr, "dialtone: %s\n", text.toLocal8Bit().constData());
    });
}

int Connect(CliContext& context, ConnectorRun& run, const ConnectOptions& options) {
    const std::string& wanted = options.profile;
    const bool hold = options.hold;
    // Before anything is set up: pppd would only fail later, with nothing a user can act on.
    const auto findings = DialupReadiness::check(DialupReadiness::Facts::fromSystem());
    if (const DialupReadiness::Finding* blocker = DialupReadiness::dialBlocker(findings))
        return ReportFailure(context, WORKER_ERR_GENERAL,
                             "cannot dial: " + blocker->text + " (fix: " + blocker->fix + ")");
    ConnectController& controller = run.controller();
    bool dialled = false;
    std::string hungUpByGuard;
    WatchGuard(context, run, options, hungUpByGuard);

    QObject::connect(&controller, &ConnectController::warningRequested, [&] {
        run.finish(
            ReportFailure(context, WORKER_ERR_GENERAL,
                          "no connection profile for this SIM: add one with \"dialtone profiles add\""));
    });
    run.whenReady([&] {
        if (!wanted.empty()) {
            const int index = FindProfile(controller.offeredProfiles(), wanted);
            if (index < 0) {
                run.finish(ReportFailure(context, WORKER_ERR_GENERAL,
                                         "no profile \"" + wanted +
                                             "\" for this SIM (see \"dialtone profiles list\")"));
                return;
            }
            controller.selectProfileIndex(index);
        }
        const int index = controller.selectedIndex();
        if (index >= 0 && index < controller.offeredProfiles().size()) {
            const APNInfo& profile = controller.offeredProfiles()[index];
            ReportProgress(Tool::F("Connecting with \"%s\" (APN %s)...",
                                   {profile.strAccount.toStdString(), profile.strApn.toStdString()}));
        }
        dialled = true;
        controller.actionForButtonConnect();
        if (controller.connectState() != ConnectController::kConnecting)
            dialled = false; // the guard refused it
    });
    OnAnnouncedState(&controller, [&](int state) {
        if (state == ConnectController::kAnnounceConnected) {
            const QString name =
                controller.lastDialedProfile() ? controller.lastDialedProfile()->strAccount : "";
            if (context.json)
                PrintJson({{"profile", name.toStdString()},
                           {"connection", ConnectionName(ConnectController::kConnected)}});
            else if (hold)
                std::printf(
                    "%s\n",
                    Tool::F("Connected with \"%s\"; press Ctrl-C to hang up", {name.toStdString()}).c_str());
            else
                std::printf("%s\n", Tool::F("Connected with \"%s\"; \"dialtone disconnect\" hangs up",
                                            {name.toStdString()})
                                        .c_str());
            std::fflush(stdout);
            if (!hold)
                run.finish(EXIT_OK);
        } else if (state == ConnectController::kAnnounceDisconnected && dialled) {
            const bool wasUp = controller.latestStatistics().nDurationSeconds > 0 || g_interrupted;
            if (!hungUpByGuard.empty())
                run.finish(ReportFailure(context, WORKER_ERR_GENERAL, hungUpByGuard));
            else if (g_interrupted)
                run.finish(EXIT_OK);
            else
                run.finish(
                    ReportFailure(context, WORKER_ERR_GENERAL,
                                  wasUp ? "the connection ended"
                                        : "the connection did not come up (see --debug for pppd's exit)"));
        }
    });
    OnStatistics(&controller, [&](const Notification& n) {
        if (controller.connectState() == ConnectController::kConnecting)
            ReportProgress(Tool::T("connecting...") + " " + DurationText(SampleOf(n).nDurationSeconds));
    });
    CatchInterrupts();
    bool hangingUp = false;
    const auto hangUp = [&] {
        if (hangingUp)
            return;
        hangingUp = true;
        if (controller.connectState() == ConnectController::kConnecting ||
            controller.connectState() == ConnectController::kConnected)
            controller.actionForButtonConnect();
        else
            run.finish(context.exitCode);
    };
    run.onLate([&] {
        if (controller.connectState() != ConnectController::kConnected || !hold) {
            if (!dialled) {
                run.finish(ReportFailure(context, WORKER_ERR_SERVICE_NOT_FOUND,
                                         "the modem's dial-up service was not found"));
                return;
            }
            context.exitCode =
                ReportFailure(context, WORKER_ERR_GENERAL, "the connection did not come up in time");
            hangUp();
        }
    });
    const int exitCode = run.run(hold ? 0 : context.waitSeconds, [&] {
        if (g_interrupted)
            hangUp();
    });
    // A held link's traffic goes into the history when the program ends.
    if (hold)
        controller.applicationWillTerminate();
    return exitCode;
}

// Ends the link, wherever it was started, and records its traffic.
int Disconnect(CliContext& context, ConnectorRun& run) {
    ConnectController& controller = run.controller();
    BLConnectStatistics last;
    bool hangingUp = false;
    run.whenReady([&] { controller.actionTimerStatusChecker(); });
    OnStatistics(&controller, [&](const Notification& n) {
        if (hangingUp)
            return;
        const int state = controller.connectState();
        if (state != ConnectController::kConnecting && state != ConnectController::kConnected) {
            if (context.json)
                PrintJson({{"connection", ConnectionName(state)}});
            else
                std::printf("%s\n", Tool::T("Not connected").c_str());
            run.finish(EXIT_OK);
            return;
        }
        last = SampleOf(n);
        hangingUp = true;
        ReportProgress(Tool::T("Hanging up..."));
        controller.actionForButtonConnect();
    });
    OnAnnouncedState(&controller, [&](int state) {
        if (state != ConnectController::kAnnounceDisconnected || !hangingUp)
            return;
        if (context.json) {
            nlohmann::json done = TrafficDocument(last);
            done["connection"] = ConnectionName(ConnectController::kDisconnected);
            PrintJson(done);
        } else {
            std::printf("%s\n", Tool::F("Disconnected after %s: sent %s, received %s",
                                        {DurationText(last.nDurationSeconds), Bytes(last.nSentBytes),
                                         Bytes(last.nReceivedBytes)})
                                    .c_str());
        }
        run.finish(EXIT_OK);
    });
    run.onLate([&] {
        run.finish(ReportFailure(context, WORKER_ERR_GENERAL,
                                 hangingUp ? "the link did not end in time"
                                           : "the modem's dial-up service was not found"));
    });
    return run.run(context.waitSeconds, {});
}

// Shows the link once a second until it ends, the time given with --wait passes, or Ctrl-C.
int Monitor(CliContext& context, ConnectorRun& run) {
    ConnectController& controller = run.controller();
    bool seenLink = false;
    run.whenReady([&] { controller.actionTimerStatusChecker(); });
    OnStatistics(&controller, [&](const Notification& n) {
        const int state = controller.connectState();
        const bool up = state == ConnectController::kConnecting || state == ConnectController::kConnected;
        if (!up && !seenLink) {
            run.finish(
                ReportFailure(context, WORKER_ERR_GENERAL, "not connected (\"dialtone connect\" dials)"));
            return;
        }
        seenLink = true;
        PrintSample(context, state, n);
    });
    OnAnnouncedState(&controller, [&](int state) {
        if (state == ConnectController::kAnnounceDisconnected && seenLink) {
            if (!context.json)
                std::printf("%s\n", Tool::T("The connection ended").c_str());
            run.finish(EXIT_OK);
        }
    });
    CatchInterrupts();
    run.onLate([&] {
        run.finish(seenLink ? EXIT_OK
                            : ReportFailure(context, WORKER_ERR_SERVICE_NOT_FOUND,
                                            "the modem's dial-up service was not found"));
    });
    return run.run(context.waitGiven ? context.waitSeconds : 0, [&] {
        if (g_interrupted)
            run.finish(EXIT_OK);
    });
}

} // namespace

void AddConnectCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<ConnectOptions>();
    CLI::App* connect = app.add_subcommand("connect", "Connect with the SIM's profile");
    connect->add_option("PROFILE", options->profile,
                        "The profile's name, or its number in \"dialtone profiles list\"");
    connect->add_flag("--hold", options->hold,
                      "Stay in the foreground, record the traffic, guard the budget and roaming, hang up on "
                      "Ctrl-C");
    connect->add_flag("--over-budget", options->overBudget,
                      "Dial although the SIM's data budget is used up (until the period ends)");
    connect->add_flag("--allow-roaming", options->allowRoaming, "Dial although the modem is roaming");
    connect->callback([&context, options] {
        context.exitCode = RunWithSim(context, [&](ModemSession& s) {
            return WithConnector(
                context, s, true, [&](ConnectorRun& run) { return Connect(context, run, *options); }, true);
        });
    });
    app.add_subcommand("disconnect", "Hang up, and record the connection's traffic")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) {
            return WithConnector(context, s, false,
                                 [&](ConnectorRun& run) { return Disconnect(context, run); });
        });
    });
    app.add_subcommand("monitor", "Show the connection's time, bytes and rates once a second")
        ->callback([&context] {
            context.exitCode = RunInSession(context, [&](ModemSession& s) {
                return WithConnector(context, s, true,
                                     [&](ConnectorRun& run) { return Monitor(context, run); });
            });
        });
}
