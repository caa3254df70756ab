#include "PinCodeFormat.h"

#include <algorithm>

std::string PinCodeProblem(std::string_view code, PinCodeKind kind) {
    const bool puk = kind == PinCodeKind::Puk || kind == PinCodeKind::Puk2;
    const char* name = kind == PinCodeKind::Pin    ? "a PIN"
                       : kind == PinCodeKind::Pin2 ? "a PIN2"
                       : kind == PinCodeKind::Puk  ? "a PUK"
                                                   : "a PUK2";
    const std::size_t shortest = puk ? 8 : 4;
    const bool digits = std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (digits && code.size() >= shortest && code.size() <= 8)
        return {};
    std::string problem = std::string(name) + (puk ? " has 8 digits" : " has 4 to 8 digits");
    if (code.empty())
        problem += ", and none was given";
    else if (!digits)
        problem += ", nothing else";
    else
        problem += ", not " + std::to_string(code.size());
    return problem;
}
