#include "ScriptedAtFake.h"

#include <atomic>
#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

namespace {

std::atomic<ScriptedAtFake*> g_current{nullptr};

std::string PrintablePrefix(const std::optional<std::string>& prefix) {
    return prefix ? "\"" + ScriptedAtFake::Printable(*prefix) + "\"" : "null";
}

std::string PrintableList(const std::list<std::string>& items) {
    std::string out = "{";
    for (const std::string& item : items)
        out += (out.size() > 1 ? ", \"" : "\"") + ScriptedAtFake::Printable(item) + "\"";
    return out + "}";
}

} // namespace

ScriptedAtFake::Step& ScriptedAtFake::Step::WithTimeout(int ms) {
    timeoutMs = ms;
    return *this;
}

ScriptedAtFake::Step& ScriptedAtFake::Step::WithPrefix(const char* expected) {
    checkPrefix = true;
    prefix = expected != nullptr ? std::optional<std::string>(expected) : std::nullopt;
    return *this;
}

ScriptedAtFake::Step& ScriptedAtFake::Step::WithFinals(std::list<std::string> finals) {
    finalResults = std::move(finals);
    return *this;
}

ScriptedAtFake::ScriptedAtFake() : m_previous(g_current.exchange(this)) {}

ScriptedAtFake::~ScriptedAtFake() {
    VerifyDone();
    g_current.store(m_previous);
}

ScriptedAtFake::Step& ScriptedAtFake::Expect(std::string command, std::string answer, int result) {
    std::lock_guard lock(m_mutex);
    Step& step = m_steps.emplace_back();
    step.command = std::move(command);
    step.answer = std::move(answer);
    step.result = result;
    return step;
}

ScriptedAtFake::Step& ScriptedAtFake::ExpectFailure(std::string command, int result) {
    return Expect(std::move(command), std::string(), result);
}

int ScriptedAtFake::ExecAT(const char* command, const char* expected, int timeoutMs,
                           const std::list<std::string>& finalResults, std::string& response) {
    ScriptedAtFake* fake = g_current.load();
    if (fake == nullptr) {
        ADD_FAILURE() << "execute-AT called with no ScriptedAtFake alive: \""
                      << Printable(command != nullptr ? command : "") << "\"";
        return 1;
    }
    return fake->Execute(command, expected, timeoutMs, finalResults, response);
}

int ScriptedAtFake::Execute(const char* command, const char* expected, int timeoutMs,
                            const std::list<std::string>& finals, std::string& response) {
    std::lock_guard lock(m_mutex);
    Call& call = m_calls.emplace_back();
    call.command = command != nullptr ? command : "";
    if (expected != nullptr)
        call.prefix = expected;
    call.timeoutMs = timeoutMs;
    call.finalResults = finals;
    const std::size_t number = m_calls.size();

    if (m_steps.empty()) {
        ADD_FAILURE() << "AT command #" << number << " \"" << Printable(call.command)
                      << "\" sent after the script was used up";
        return 1;
    }
    const Step step = std::move(m_steps.front());
    m_steps.pop_front();

    if (call.command != step.command) {
        ADD_FAILURE() << "AT command #" << number << ": sent \"" << Printable(call.command)
                      << "\", the script expects \"" << Printable(step.command) << "\"";
        return 1;
    }
    if (step.timeoutMs && *step.timeoutMs != timeoutMs) {
        ADD_FAILURE() << "AT command #" << number << " \"" << Printable(call.command) << "\": time limit "
                      << timeoutMs << " ms, the script expects " << *step.timeoutMs << " ms";
    }
    if (step.checkPrefix && step.prefix != call.prefix) {
        ADD_FAILURE() << "AT command #" << number << " \"" << Printable(call.command) << "\": prefix "
                      << PrintablePrefix(call.prefix) << ", the script expects "
                      << PrintablePrefix(step.prefix);
    }
    if (step.finalResults && *step.finalResults != finals) {
        ADD_FAILURE() << "AT command #" << number << " \"" << Printable(call.command) << "\": final results "
                      << PrintableList(finals) << ", the script expects "
                      << PrintableList(*step.finalResults);
    }
    if (step.result == 0)
        response = step.answer;
    return step.result;
}

bool ScriptedAtFake::Done() const {
    std::lock_guard lock(m_mutex);
    return m_steps.empty();
}

void ScriptedAtFake::VerifyDone() {
    std::lock_guard lock(m_mutex);
    if (m_steps.empty())
        return;
    std::ostringstream message;
    message << m_steps.size() << " scripted AT command(s) never sent:";
    for (const Step& step : m_steps)
        message << " \"" << Printable(step.command) << "\"";
    ADD_FAILURE() << message.str();
    m_steps.clear();
}

std::vector<std::string> ScriptedAtFake::Commands() const {
    std::lock_guard lock(m_mutex);
    std::vector<std::string> commands;
    commands.reserve(m_calls.size());
    for (const Call& call : m_calls)
        commands.push_back(call.command);
    return commands;
}

std::string ScriptedAtFake::Printable(const std::string& text) {
    std::string out;
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        if (ch == '\r')
            out += "\\r";
        else if (ch == '\n')
            out += "\\n";
        else if (ch == '"' || ch == '\\')
            out += std::string("\\") + ch;
        else if (byte < 0x20 || byte == 0x7F) {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02X", byte);
            out += escape;
        } else
            out += ch;
    }
    return out;
}
