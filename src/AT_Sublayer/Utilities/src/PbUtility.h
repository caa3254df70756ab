#pragma once

#include <list>

#include "ExecATCallback.h"
#include "PbTypes.h"

// The SIM ("SM") and modem ("ME") phonebooks: storage use (AT+CPBS), length limits and entries
// (AT+CPBR), writing and deleting (AT+CPBW). Names travel as UCS2 hex text.
// Operations return 0 on success, 1 on a failure found here, else the execute-AT code.
class CPbUtility {
public:
    CPbUtility() = default;
    virtual ~CPbUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    int GetConstraint(TPbConstraint& constraint);
    int InitList(std::list<TPbItem>& items);
    int DeleteItem(int storage, int index);
    int UpdateItem(const TPbItem& item);
    int GetStorageInfo(TPbStorageInfo& info);
    int AddItem(const TPbNewItem& item, int& index);

private:
    ExecATCallback m_pfnExecAT = nullptr;
};
