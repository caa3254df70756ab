#include "UssdUtility.h"

namespace {
constexpr int kNotBuiltYet = 1;
} // namespace

int CUssdUility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CUssdUility::CheckUssdState(int&) {
    return kNotBuiltYet;
}

int CUssdUility::SetUssdState(int&) {
    return kNotBuiltYet;
}

int CUssdUility::SendUssdCmd(const wchar_t*) {
    return kNotBuiltYet;
}

int CUssdUility::SendUssdCancelCmd() {
    return kNotBuiltYet;
}

int CUssdUility::Receive(const char*, TUssdItem&) {
    return kNotBuiltYet;
}
