#pragma once

#include <QObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>

#include "CliSupport.h"
#include "Outcome.h"
#include "PinRecords.h"
#include "Simulator.h"
#include "StatusText.h"

class ModemLink;
class QCoreApplication;

// One run of the tool against the modem: the simulator when asked, the modem link, and the modem
// initialised with "MESSAGE_INIT_WORK_THREAD". Requests wait for their answers; a request that outlives its
// deadline ends the process with exit status 1 and a message, so the tool never hangs.
class ModemSession {
public:
    static constexpr int kDefaultDeadlineSeconds = 60;
    static constexpr int kOpenDeadlineSeconds = 30; // the worker's start, then the modem's init

    explicit ModemSession(CliContext& context);
    ~ModemSession(); // ends the worker, then the simulator
    ModemSession(const ModemSession&) = delete;
    ModemSession& operator=(const ModemSession&) = delete;

    // Brings everything up. False once the failure is reported ("no modem found", "the modem is in use by
    // another program", ...); the exit status is then in the context.
    bool open();

    // Sends one request and returns its response dictionary. An invalid argument sends no "VALUE_OBJECT".
    QVariantMap request(const QString& name, const QVariant& argument = {},
                        int deadlineSeconds = kDefaultDeadlineSeconds);

    // Runs events until a controller's callback has set the result, as await() does.
    Outcome awaitOutcome(std::optional<Outcome>& result, const std::string& what,
                         int deadlineSeconds = kDefaultDeadlineSeconds);
    // Starts a controller's read, handing it the callback that takes the outcome and the value read, and
    // waits for them as await() does.
    template <typename Value, typename Start>
    Outcome read(Start start, Value& value, const std::string& what) {
        auto read = std::make_shared<std::pair<std::optional<Outcome>, Value>>();
        start([read](Outcome outcome, const Value& got) {
            read->first = outcome;
            read->second = got;
        });
        const Outcome outcome = awaitOutcome(read->first, what);
        value = read->second;
        return outcome;
    }

    // The link, for the feature controllers; valid after a successful open().
    ModemLink& link() const { return *_link; }

    // The response's "ERROR_CODE" reported as a failure of what was tried, with its cause in words (the
    // modem's own cause when the response carries one, "the modem was unplugged" when it is gone): text
    // and code on standard error, the error object with --json; EXIT_FAILED, or EXIT_OK when the code is 0.
    int check(const QVariantMap& response, const std::string& what);
    // The same for a controller's outcome.
    int check(const Outcome& outcome, const std::string& what);

    // Runs events until done() holds, for a controller's answer; past the deadline the process ends as for
    // request(), saying what was being done.
    void await(const std::function<bool()>& done, const std::string& what,
               int deadlineSeconds = kDefaultDeadlineSeconds);
    // Starts a controller's work and waits for the signal that ends it; the signal's arguments.
    template <typename Controller, typename... Args>
    std::tuple<std::decay_t<Args>...> await(Controller& controller, void (Controller::*finished)(Args...),
                                            const std::function<void()>& start, const std::string& what,
                                            int deadlineSeconds = kDefaultDeadlineSeconds) {
        std::optional<std::tuple<std::decay_t<Args>...>> result;
        const auto connection = QObject::connect(&controller, finished, &controller, [&result](Args... args) {
            if (!result)
                result.emplace(args...);
        });
        start();
        await([&result] { return result.has_value(); }, what, deadlineSeconds);
        QObject::disconnect(connection);
        return *result;
    }

    // EXIT_OK while the modem's ports are there; once the stick is pulled, "<what>: the modem was unplugged"
    // reported as a failure. For answers that succeed with empty fields when the modem is gone.
    int checkPresent(const std::string& what);

    // Reads the SIM's state and attempts left through the PIN controller.
    Outcome readSim(BLPinCheckState& state);

    // For commands that need the SIM: EXIT_OK when it can be used, else the failure reported with what to
    // do ("the SIM is locked: dialtone pin verify PIN") before anything else is asked of it.
    int requireSim();

private:
    int diagnoseOpenFailure(int code);

    CliContext& _context;
    std::unique_ptr<QCoreApplication> _application;
    Simulator _simulator;
    std::unique_ptr<ModemLink> _link;
};

// Opens a session and runs the command in it: the command's exit status, or the session's failure.
int RunInSession(CliContext& context, const std::function<int(ModemSession&)>& command);
// The same for a command that needs the SIM: a locked or missing SIM is reported instead of running it.
int RunWithSim(CliContext& context, const std::function<int(ModemSession&)>& command);
