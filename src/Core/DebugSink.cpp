#include "DebugSink.h"

#include <atomic>
#include <cstdarg>
#include <mutex>
#include <string>

namespace {
std::atomic<std::FILE*> g_sink{stdout};
std::mutex g_sinkMutex;
} // namespace

void SetDebugSink(std::FILE* stream) { g_sink.store(stream); }

std::FILE* GetDebugSink() { return g_sink.load(); }

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
    if (text.empty() || text.back() != '\n')
        text.push_back('\n');

    std::lock_guard<std::mutex> lock(g_sinkMutex);
    std::fwrite(text.data(), 1, text.size(), sink);
    std::fflush(sink);
}
