#pragma once

#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

// The modem's limits on what people type (APN, numbers, names, USSD texts) and the forms of PIN and PUK
// codes, for the front ends: they check input here before anything is sent.
#include "AtParameter.h"
#include "PinCodeFormat.h"

// Why a text typed into the app cannot go to the modem as it stands (a double quote, a semicolon, a
// backslash, a control character, or more than maxLength bytes), as a sentence for an inline error
// ("The APN holds a semicolon (;), which cannot be sent to the modem."), or an empty text.
QString ModemTextProblem(const QString& what, const QString& value, std::size_t maxLength);
// The same as a clause for the tool's messages ("the APN holds a semicolon (;), ..."), or empty.
std::string ModemTextProblem(std::string_view what, std::string_view value, std::size_t maxLength);
