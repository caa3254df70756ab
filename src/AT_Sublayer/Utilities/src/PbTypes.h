#pragma once

#include <cstdint>
#include <string>

// Phonebook storages.
enum : int32_t {
    PB_STORAGE_SIM = 0,   // "SM"
    PB_STORAGE_MODEM = 1, // "ME"
};

// One entry of one phonebook, as "+CPBR: 5,\"12345\",129,\"00480069\"" lists it.
struct TPbBaseItem {
    int32_t nIndex = 0;
    std::wstring wstrName;
    std::string strNumber;
};

// One entry and the phonebook it lives in.
struct TPbItem {
    int32_t nStore = 0;
    int32_t nIndex = 0;
    std::wstring wstrName;
    std::string strNumber;
};

// An entry to add; AddItem chooses its index.
struct TPbNewItem {
    int32_t nStore = 0;
    std::wstring wstrName;
    std::string strNumber;
};

struct TPbStorageInfo {
    int32_t nSimTotal = 0;
    int32_t nSimUsed = 0;
    int32_t nMeTotal = 0;
    int32_t nMeUsed = 0;
};

// Bits of TPbConstraint::nMask: a length is set only when the modem reported a non-zero value.
enum : uint32_t {
    PB_CONSTRAINT_ME_NUMBER = 0x1,
    PB_CONSTRAINT_ME_NAME = 0x2,
    PB_CONSTRAINT_SIM_NUMBER = 0x4,
    PB_CONSTRAINT_SIM_NAME = 0x8,
};

struct TPbConstraint {
    uint32_t nMask = 0;
    int32_t nMeMaxNumberLen = 0;
    int32_t nMeMaxNameLen = 0;
    int32_t nSimMaxNumberLen = 0;
    int32_t nSimMaxNameLen = 0;
};
