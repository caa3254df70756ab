#include "SmsUtility.h"

namespace {
constexpr int kNotBuiltYet = 1;
} // namespace

int CSmsUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CSmsUtility::Init() {
    return kNotBuiltYet;
}

int CSmsUtility::GetServiceCentre(TSmsAddress&) {
    return kNotBuiltYet;
}

int CSmsUtility::SetServiceCentre(const TSmsAddress&) {
    return kNotBuiltYet;
}

int CSmsUtility::GetList(std::list<TSmsListItem>&) {
    return kNotBuiltYet;
}

int CSmsUtility::GetIncomingSMSInPC(std::list<TSmsListItem>&) {
    return kNotBuiltYet;
}

int CSmsUtility::Delete(int) {
    return kNotBuiltYet;
}

int CSmsUtility::Send(const TSmsSendItem&) {
    return kNotBuiltYet;
}

int CSmsUtility::Receive(const char*, TSmsListItem&, int&) {
    return kNotBuiltYet;
}

int CSmsUtility::SetPreferredStorage(int) {
    return kNotBuiltYet;
}

int CSmsUtility::GetPreferredStorage(int&) {
    return kNotBuiltYet;
}

int CSmsUtility::SetValidPeriod(const TSmsValidPeriod&) {
    return kNotBuiltYet;
}

int CSmsUtility::EnableStatusReport(int) {
    return kNotBuiltYet;
}

int CSmsUtility::GetStorageState(TSmsStorageState&) {
    return kNotBuiltYet;
}

int CSmsUtility::RegisterPCCallback(void*, SmsPCListCallback, SmsPCSaveCallback, SmsPCDeleteCallback, int) {
    return kNotBuiltYet;
}

int CSmsUtility::SetIMSI(const char*) {
    return kNotBuiltYet;
}

int CSmsUtility::SetLatinSupport(int) {
    return kNotBuiltYet;
}

int CSmsUtility::RegisterSMSFilter(SmsFilterCallback, SmsFilterNotifyCallback, void*, void*) {
    return kNotBuiltYet;
}
