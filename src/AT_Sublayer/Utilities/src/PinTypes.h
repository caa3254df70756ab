#pragma once

#include <cstdint>

// Remaining attempts, in the order the modem reports the pair ("+PNNM: 3, 10": PIN, then PUK).
struct TPinInfo {
    int32_t nPinCnt = 0;
    int32_t nPukCnt = 0;
};
