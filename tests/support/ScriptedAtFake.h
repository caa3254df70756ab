#pragma once

#include <cstddef>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ExecATCallback.h"

// A scripted stand-in for the execute-AT lower callback, for driving a command family without a modem.
// The test lists the commands it expects, in order, each with the answer to hand back:
//
//     ScriptedAtFake fake;
//     fake.Expect("AT+CSQ\r", "\r\n+CSQ: 20,99\r\n\r\nOK\r\n").WithTimeout(1000).WithPrefix("+CSQ: ");
//     utility.RegisterExecAT(ScriptedAtFake::Callback());
//
// Each call takes the next step. A command that differs from the step's, a call with the script used up,
// or a time limit, prefix or final-result list that differs from what the step asks for, fails the test
// (ADD_FAILURE) and the call returns 1. Like the real callback, the answer is handed back only with
// result 0; any other result leaves the response alone. Every call is recorded. The fake is "current"
// from construction to destruction (the callback is a plain function, so it finds the fake through
// a static pointer); its destructor fails the test if steps are left over.
class ScriptedAtFake {
public:
    struct Step {
        std::string command;
        std::string answer;
        int result = 0;
        std::optional<int> timeoutMs;
        bool checkPrefix = false;
        std::optional<std::string> prefix; // nullopt with checkPrefix: no prefix (null) expected
        std::optional<std::list<std::string>> finalResults;

        Step& WithTimeout(int ms);
        Step& WithPrefix(const char* expected); // nullptr: the command must pass no prefix
        Step& WithoutPrefix() { return WithPrefix(nullptr); }
        Step& WithFinals(std::list<std::string> finals);
    };

    struct Call {
        std::string command;
        std::optional<std::string> prefix; // nullopt when the family passed null
        int timeoutMs = 0;
        std::list<std::string> finalResults;
    };

    static constexpr const char* kOk = "\r\nOK\r\n";

    ScriptedAtFake();
    ~ScriptedAtFake();
    ScriptedAtFake(const ScriptedAtFake&) = delete;
    ScriptedAtFake& operator=(const ScriptedAtFake&) = delete;

    // Appends a step; the reference stays valid until the step is used.
    Step& Expect(std::string command, std::string answer = kOk, int result = 0);
    // A step that fails with result (2 time-out, 30 cancelled, 1 failure) and hands back nothing.
    Step& ExpectFailure(std::string command, int result);

    // The function to register as the execute-AT callback.
    static ExecATCallback Callback() { return &ExecAT; }
    static int ExecAT(const char* command, const char* expected, int timeoutMs,
                      const std::list<std::string>& finalResults, std::string& response);

    // True when every step was used.
    bool Done() const;
    // Fails the test, listing the steps left over, unless the script was used up; then forgets them.
    void VerifyDone();

    const std::vector<Call>& Calls() const { return m_calls; }
    // The command texts sent so far, in order.
    std::vector<std::string> Commands() const;

    // Shows "\r", "\n" and other control bytes as escapes, for failure messages.
    static std::string Printable(const std::string& text);

private:
    int Execute(const char* command, const char* expected, int timeoutMs,
                const std::list<std::string>& finals, std::string& response);

    mutable std::mutex m_mutex;
    std::deque<Step> m_steps;
    std::vector<Call> m_calls;
    ScriptedAtFake* m_previous = nullptr;
};
