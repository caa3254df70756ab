#pragma once

#include <QString>

#include <cstddef>

// Why a text typed into the app cannot go to the modem as it stands (a double quote, a semicolon, a
// backslash, a control character, or more than maxLength bytes), as a sentence for an inline error
// ("The APN holds a semicolon (;), which cannot be sent to the modem."), or an empty text.
QString ModemTextProblem(const QString& what, const QString& value, std::size_t maxLength);
