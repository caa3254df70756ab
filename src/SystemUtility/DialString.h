#pragma once

#include <QChar>
#include <QString>

// What may follow "ATD" and "AT+VTS=": the worker refuses anything else before it reaches the modem, and
// the front ends check typed numbers and keys with the same rules.
namespace DialString {

inline constexpr int kNumberCap = 40;
inline constexpr int kDtmfKeysCap = 64;

// The keys AT+VTS takes: 0-9, *, #, A-D.
bool isDtmfKey(QChar key);
// An optional leading "+" then digits, "*" and "#", at most kNumberCap characters.
bool isDialNumber(const QString& number);

} // namespace DialString
