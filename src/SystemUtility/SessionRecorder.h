#pragma once

#include <string>

// Starts recording this process's modem traffic for --record (SessionRecording.h), with the dialect the
// modem speaks in the file's header. On failure says why on standard error ("dialtone: cannot record:
// FILE exists already; ...") and returns false.
bool StartRecordingOrSay(const char* program, const std::string& path, bool keepPrivate, const char* version);
