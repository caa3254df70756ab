#include "GPSUtility.h"

namespace {
constexpr int kNotBuiltYet = 1;
} // namespace

int CGPSUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CGPSUtility::InitGPS() {
    return kNotBuiltYet;
}

int CGPSUtility::UninitGPS() {
    return kNotBuiltYet;
}
