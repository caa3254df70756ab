#pragma once

#include <cstdio>

// The process-wide sink for the modem link's debug texts ("---Time out---!!", "line prase error!!", ...).
// Standard output by default; the command-line tool points it at standard error and only with --debug.
// Safe to call from any thread: each text is written whole.

// Redirects the debug texts; nullptr silences them.
void SetDebugSink(std::FILE* stream);
std::FILE* GetDebugSink();

// printf-style; a line feed is added when the text does not end with one.
void DebugPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));
