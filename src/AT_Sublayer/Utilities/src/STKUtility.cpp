#include "STKUtility.h"

namespace {
constexpr int kNotBuiltYet = 1;
} // namespace

int CSTKUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CSTKUtility::SendCommand(const char*, std::string&, int) {
    return kNotBuiltYet;
}

int CSTKUtility::HandleReport(const char*, std::string&) {
    return kNotBuiltYet;
}

int CSTKUtility::Init(std::string&) {
    return kNotBuiltYet;
}

int CSTKUtility::GetCurrentProactiveCommand(int&, std::string&) {
    return kNotBuiltYet;
}
