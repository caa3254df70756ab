#pragma once

#include <cstdint>

// An attempt counter the modem does not tell (a stick without a counter command, a refused one).
constexpr int32_t kPinCountUnknown = -1;

// Remaining attempts, in the order the modem reports the pair ("+PNNM: 3, 10": PIN, then PUK).
struct TPinInfo {
    int32_t nPinCnt = 0;
    int32_t nPukCnt = 0;
};
