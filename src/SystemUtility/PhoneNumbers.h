#pragma once

#include <string>

// Phone numbers as people type them and as the modem takes them, read in a home region (an ISO 3166 code
// such as "DE", the SIM's country; empty when it is not known). One place for the tool, the desktop app
// and the worker, so that a number is checked, sent, shown and compared the same way everywhere.
namespace PhoneNumbers {

enum class Refusal {
    None,
    Empty,
    Letters,
    ServiceCode, // "*100#": a USSD or supplementary-service code
    BadCharacter,
    WrongLength,
    BadCountryCode,
};

struct DialString {
    std::string number; // what to send: "+491701234567", or the digits of a short number ("22255")
    Refusal refusal = Refusal::None;
    std::string reason; // why the number was refused, in words; empty when it was taken

    bool ok() const { return refusal == Refusal::None; }
};

// Reads a typed number: spaces, brackets, dashes, dots and slashes are layout; a leading + or 00 starts
// an international number; anything else is national in the home region. The result is the E.164 form,
// or the digits as typed for a short number (service numbers, shortcodes) and, without a home region,
// for a national one. Letters, service codes, other characters, an empty number and more digits than an
// address can hold are refused with the reason.
DialString Parse(const std::string& typed, const std::string& region);

// A stored number for reading: national layout for the home country, international for others; what is
// not a number (an alphanumeric sender such as "Vodafone") and short numbers are shown as they are.
std::string ForReading(const std::string& number, const std::string& region);

// Whether two stored numbers are the same line ("+4917012345" and "017012345" in DE): an exact, national
// or short national number match. What is not a number matches only itself.
bool SameNumber(const std::string& a, const std::string& b, const std::string& region);

// The most digits an SMS address or a dial string may carry.
inline constexpr int kMaxDigits = 20;

} // namespace PhoneNumbers
