#include "SessionRecorder.h"

#include <cstdio>

#include "ModemDialect.h"
#include "SessionRecording.h"

bool StartRecordingOrSay(const char* program, const std::string& path, bool keepPrivate,
                         const char* version) {
    std::string error;
    if (StartRecording(
            path, keepPrivate, version, [] { return ModemDialectName(CurrentModemDialect()); }, error))
        return true;
    std::fprintf(stderr, "%s: cannot record: %s\n", program, error.c_str());
    return false;
}
