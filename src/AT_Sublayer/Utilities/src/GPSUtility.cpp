#include "GPSUtility.h"

#include <string>

#include "FamilyCommand.h"
#include "ModemDialect.h"

namespace {

constexpr int kGpsTimeoutMs = 3000;

} // namespace

int CGPSUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CGPSUtility::WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                           std::initializer_list<const char*> finals) {
    return FamilyWriteComm(m_pfnExecAT, response, command, expected, timeoutMs, finals);
}

int CGPSUtility::Switch(const char* command) {
    if (StandardDialect())
        return kNotSupportedByModem;
    std::string response;
    if (const int result = WriteComm(response, command, nullptr, kGpsTimeoutMs); result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CGPSUtility::InitGPS() {
    // Vendor command: AT$GPSC=<receiver>,<on>
    return Switch("AT$GPSC=1,1\r");
}

int CGPSUtility::UninitGPS() {
    return Switch("AT$GPSC=1,0\r");
}
