#include "CallUtility.h"

namespace {
constexpr int kNotBuiltYet = 1;
} // namespace

int CCallUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CCallUtility::Init() {
    return kNotBuiltYet;
}

int CCallUtility::Dial(const char*) {
    return kNotBuiltYet;
}

int CCallUtility::Answer() {
    return kNotBuiltYet;
}

int CCallUtility::HangUp() {
    return kNotBuiltYet;
}

int CCallUtility::SendDTMF(char) {
    return kNotBuiltYet;
}

int CCallUtility::HandleCallEnd(bool&) {
    return kNotBuiltYet;
}

int CCallUtility::HandleRing(std::string&) {
    return kNotBuiltYet;
}

int CCallUtility::CheckCallState(std::list<TCallItemState>&) {
    return kNotBuiltYet;
}
