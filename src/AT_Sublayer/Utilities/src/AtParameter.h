#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text from outside (a PIN, an APN, a number, a name) that goes into a quoted AT string parameter. A modem
// ends the parameter at a double quote and the command at a semicolon or a line end, and some read a
// backslash as an escape, so a value holding any of these could append commands of its own
// (AT+CGDCONT=1,"IP","inet";+CMGD=1,4). Such values are refused whole, never cut or escaped.

// Returned by a family operation whose text argument was refused; nothing was sent. The same number as
// the worker's "argument refused" result, so that it passes through unchanged.
inline constexpr int kAtParameterRefused = 45;

// An access point name is at most 100 octets (3GPP TS 23.003 clause 9.1); an IPv4 or IPv6 address in
// text fits 63.
inline constexpr std::size_t kApnMaxLength = 100;
inline constexpr std::size_t kPdpAddressMaxLength = 63;
// Longer than any number a SIM's phonebook holds or a network dials (E.164 has 15 digits, with room for
// prefixes, pauses and service codes).
inline constexpr std::size_t kPbNumberMaxLength = 40;
inline constexpr std::size_t kDialStringMaxLength = 80;
// Longer than any name a phonebook holds; the SIM's own limit is smaller and reported by the phonebook.
inline constexpr std::size_t kContactNameMaxLength = 255;
// A USSD string holds at most 182 characters of the default alphabet (3GPP TS 23.038 clause 6.1.2.3).
inline constexpr std::size_t kUssdTextMaxLength = 182;

enum class AtParameterFault {
    None,
    Quote,     // "
    Semicolon, // ;
    Backslash, // \ (escape character)
    Control,   // C0, DEL, or C1 written in UTF-8
    TooLong,
};

// What keeps value out of a quoted parameter that holds at most maxLength bytes, or None.
AtParameterFault CheckAtParameter(std::string_view value, std::size_t maxLength);

// The same for wide text (toolkit input, names), before it is encoded for the modem; maxLength counts
// characters.
AtParameterFault CheckAtParameter(std::wstring_view value, std::size_t maxLength);

// Appends "value" (with its quotes) to command. False, leaving command as it was, when the value is refused.
bool AppendQuotedAtParameter(std::string& command, std::string_view value, std::size_t maxLength);

// Why the front ends refuse a value, in words for the user, or an empty text when it may be sent:
// "the APN holds a semicolon (;), which cannot be sent to the modem", "the APN is longer than 100
// characters".
std::string AtParameterProblem(std::string_view what, std::string_view value, std::size_t maxLength);
