#include "DebugSink.h"

#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdarg>
#include <ctime>
#include <mutex>
#include <string>

#include "SessionRecording.h"

namespace {
std::atomic<std::FILE*> g_sink{stdout};
std::atomic<std::FILE*> g_trafficSink{nullptr};
std::mutex g_sinkMutex;

struct SecretCommand {
    const char* name;         // as it follows "AT"
    unsigned secretArguments; // bit n: argument n is a secret
};
constexpr SecretCommand kSecretCommands[] = {
    {"+CPIN=", ~0u},               // <pin>[,<new pin>]
    {"+CLCK=", 1u << 2},           // <fac>,<mode>,<passwd>[,<class>]
    {"+CPWD=", 1u << 1 | 1u << 2}, // <fac>,<old password>,<new password>
};

const SecretCommand* secretCommandAt(std::string_view text, size_t at) {
    for (const SecretCommand& command : kSecretCommands) {
        if (SameLettersAt(text, at, command.name))
            return &command;
    }
    return nullptr;
}

bool cleanlyQuoted(std::string_view argument) {
    return argument.size() >= 2 && argument.front() == '"' && argument.back() == '"' &&
           argument.find('"', 1) == argument.size() - 1;
}

bool smallNumber(std::string_view argument) {
    return !argument.empty() && argument.size() <= 3 &&
           argument.find_first_not_of("0123456789") == std::string_view::npos;
}

// Copies the arguments that start at `at` into out, masking the secret ones; returns where they end (a
// line end, a ";" outside quotes, or the end of the text). A code holding a quote or a comma splits into
// odd arguments, so after a secret one only a last small number that follows cleanly quoted codes (the
// class of AT+CLCK) stays readable.
size_t maskArguments(std::string_view text, size_t at, unsigned secrets, std::string& out) {
    unsigned index = 0;
    bool afterSecret = false;
    bool secretClean = true;
    while (at <= text.size()) {
        // One argument: up to a comma outside quotes.
        size_t end = at;
        bool quoted = false;
        while (end < text.size()) {
            const char c = text[end];
            if (c == '"')
                quoted = !quoted;
            else if (!quoted && (c == ',' || c == ';' || c == '\r' || c == '\n'))
                break;
            else if (quoted && (c == '\r' || c == '\n'))
                break;
            ++end;
        }
        const std::string_view argument = text.substr(at, end - at);
        const bool declared = index < 32 && (secrets >> index & 1u) != 0;
        const bool last = end >= text.size() || text[end] != ',';
        const bool secret = declared || (afterSecret && !(secretClean && last && smallNumber(argument)));
        if (declared && !argument.empty() && argument != "?") {
            afterSecret = true;
            secretClean = secretClean && cleanlyQuoted(argument);
        }
        if (!secret || argument.empty() || argument == "?") {
            out.append(argument);
        } else {
            const bool opens = argument.front() == '"';
            const bool closes = opens && argument.size() > 1 && argument.back() == '"';
            out.append(opens ? "\"****" : "****");
            if (closes)
                out.push_back('"');
        }
        if (end >= text.size() || text[end] != ',')
            return end;
        out.push_back(',');
        at = end + 1;
        ++index;
    }
    return text.size();
}

} // namespace

bool SameLettersAt(std::string_view text, size_t at, std::string_view word) {
    if (at > text.size() || text.size() - at < word.size())
        return false;
    for (size_t i = 0; i < word.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(text[at + i])) != static_cast<unsigned char>(word[i]))
            return false;
    }
    return true;
}

std::string MaskSecrets(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    size_t at = 0;
    while (at < text.size()) {
        const SecretCommand* command = text[at] == '+' ? secretCommandAt(text, at) : nullptr;
        if (command == nullptr) {
            out.push_back(text[at++]);
            continue;
        }
        const size_t name = std::char_traits<char>::length(command->name);
        out.append(text.substr(at, name));
        at = maskArguments(text, at + name, command->secretArguments, out);
    }
    return out;
}

void SetDebugSink(std::FILE* stream) {
    g_sink.store(stream);
}

std::FILE* GetDebugSink() {
    return g_sink.load();
}

void DebugPrint(const char* format, ...) {
    std::FILE* sink = g_sink.load();
    if (sink == nullptr || format == nullptr)
        return;

    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (length < 0) {
        va_end(args);
        return;
    }
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    text.resize(static_cast<size_t>(length));
    text = MaskSecrets(text);
    if (text.empty() || text.back() != '\n')
        text.push_back('\n');

    std::lock_guard<std::mutex> lock(g_sinkMutex);
    std::fwrite(text.data(), 1, text.size(), sink);
    std::fflush(sink);
}

void SetTrafficSink(std::FILE* stream) {
    g_trafficSink.store(stream);
}

bool TrafficTapOn() {
    return g_trafficSink.load(std::memory_order_relaxed) != nullptr || RecordingOn();
}

std::string TrafficLines(std::string_view timeOfDay, char direction, std::string_view text) {
    std::string out;
    size_t at = 0;
    while (at < text.size()) {
        size_t end = text.find_first_of("\r\n", at);
        if (end == std::string_view::npos)
            end = text.size();
        if (end > at) {
            // Control characters (the Ctrl-Z ending a message, a confused modem's escapes) in caret
            // notation, so that they cannot garble the terminal.
            std::string line;
            for (const char c : MaskSecrets(text.substr(at, end - at))) {
                const auto byte = static_cast<unsigned char>(c);
                if (byte < 0x20 || byte == 0x7f)
                    line.append(1, '^').append(1, static_cast<char>(byte ^ 0x40));
                else
                    line.push_back(c);
            }
            out.append(timeOfDay)
                .append(1, ' ')
                .append(1, direction)
                .append(1, ' ')
                .append(line)
                .append(1, '\n');
        }
        at = end + 1;
    }
    return out;
}

void TrafficTap(char direction, std::string_view text) {
    RecordTraffic(direction, text);
    std::FILE* sink = g_trafficSink.load();
    if (sink == nullptr || text.empty())
        return;
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char timeOfDay[16];
    std::snprintf(timeOfDay, sizeof(timeOfDay), "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min,
                  local.tm_sec, static_cast<int>(millis));
    const std::string lines = TrafficLines(timeOfDay, direction, text);
    std::lock_guard<std::mutex> lock(g_sinkMutex);
    std::fwrite(lines.data(), 1, lines.size(), sink);
    std::fflush(sink);
}
