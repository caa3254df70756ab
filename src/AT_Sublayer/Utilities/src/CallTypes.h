#pragma once

#include <cstdint>
#include <string>

// One current call, as "+CLCC: 1,1,4,0,0,\"123\",129" lists it.
struct TCallItemState {
    int32_t nIndex = 0;
    int32_t nDir = 0;
    int32_t nState = 0;
    int32_t nMode = 0;
    int32_t nMpty = 0;
    std::string strNumber;
    int32_t nType = 0;
};
