#pragma once

#include <array>
#include <cstdint>

// Field sizes, terminator included.
constexpr int kOperatorTextSize = 20; // "+COPS: 0,2,\"46000\",2": at most 16 characters
constexpr int kLongNameSize = 17;     // at most 16 characters
constexpr int kShortNameSize = 9;     // at most 8 characters
constexpr int kNumericNameSize = 7;   // MCC and MNC, at most 6 digits
constexpr int kSpNameSize = 17;       // at most 16 UCS2 characters
constexpr int kSpdiEntrySize = 8;     // MCC and MNC, at most 6 digits

// The current operator as "AT+COPS?" reports it. GetBaseInfo fills the defaults (mode 5, format 3,
// access technology 3) before it reads the answer.
struct TNetworkBaseInfo {
    int32_t nMode = 0;
    int32_t nFormat = 0;
    char szOperator[kOperatorTextSize] = {};
    int32_t nAcT = 0;
};

// One operator of the "AT+COPS=?" list: (2,"Operator","Op","46000",2).
struct TNetworkListItem {
    int32_t nValid = 0; // 1 for every parsed item
    int32_t nState = 0;
    char szLongName[kLongNameSize] = {};
    char szShortName[kShortNameSize] = {};
    char szNumericName[kNumericNameSize] = {};
    int32_t nAcT = 0;
};

// The service provider name stored on the SIM ("AT+SPNM") and its display rule. nDisplay is first the
// SIM's display byte, then what GetInfo decides: 1 or 2 (show the name, or the operator), 3 (abroad).
struct TServiceProviderInfo {
    int32_t nPresent = 0;
    int32_t nDisplay = 0;
    char16_t wszSpName[kSpNameSize] = {}; // NUL-terminated
};

// One network of the SIM's service provider display list ("AT+SPDI"): "46000", NUL-terminated; all zero
// for an empty entry.
using TSpdiEntry = std::array<char, kSpdiEntrySize>;

// Everything GetInfo gathers about the network: the TNetworkBaseInfo fields, then the provider name
// and the states.
struct TNetworkInfo {
    int32_t nMode = 0;
    int32_t nFormat = 0;
    char szOperator[kOperatorTextSize] = {};
    int32_t nAcT = 0;
    TServiceProviderInfo spInfo;
    int32_t nRssiLevel = 0; // 0 to 6
    int32_t nServiceState = 0;
    int32_t nBearer = 0;
    int32_t nPsRegState = 0;
};
