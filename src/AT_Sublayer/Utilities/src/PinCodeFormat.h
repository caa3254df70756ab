#pragma once

#include <string>
#include <string_view>

// The SIM's codes: a PIN or PIN2 has 4 to 8 digits, a PUK or PUK2 exactly 8. A code of another form is
// refused before it reaches the SIM, where it would only cost an attempt.
enum class PinCodeKind { Pin, Pin2, Puk, Puk2 };

// What is wrong with code, in words for the user ("a PIN has 4 to 8 digits"), or an empty text.
std::string PinCodeProblem(std::string_view code, PinCodeKind kind);

inline bool IsPinCodeWellFormed(std::string_view code, PinCodeKind kind) {
    return PinCodeProblem(code, kind).empty();
}
