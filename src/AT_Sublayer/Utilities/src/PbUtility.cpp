#include "PbUtility.h"

namespace {
constexpr int kNotBuiltYet = 1;
} // namespace

int CPbUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CPbUtility::GetConstraint(TPbConstraint&) {
    return kNotBuiltYet;
}

int CPbUtility::InitList(std::list<TPbItem>&) {
    return kNotBuiltYet;
}

int CPbUtility::DeleteItem(int, int) {
    return kNotBuiltYet;
}

int CPbUtility::UpdateItem(const TPbItem&) {
    return kNotBuiltYet;
}

int CPbUtility::GetStorageInfo(TPbStorageInfo&) {
    return kNotBuiltYet;
}

int CPbUtility::AddItem(const TPbNewItem&, int&) {
    return kNotBuiltYet;
}
