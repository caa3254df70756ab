#pragma once

#include <cstdint>
#include <string>

// A decoded "+CUSD: 1,\"00480069\",72" report: the result code m and the text.
struct TUssdItem {
    int32_t nType = 0;
    std::wstring wstrContent;
};
