#include "PhoneNumbers.h"

#include <phonenumbers/phonenumberutil.h>
#include <phonenumbers/shortnumberinfo.h>

namespace {

using i18n::phonenumbers::PhoneNumber;
using i18n::phonenumbers::PhoneNumberUtil;
using i18n::phonenumbers::ShortNumberInfo;

PhoneNumberUtil& util() {
    return *PhoneNumberUtil::GetInstance();
}

const ShortNumberInfo& shortNumbers() {
    static const ShortNumberInfo info;
    return info;
}

// libphonenumber's name for "no region": only numbers with a + are read.
std::string RegionOrUnknown(const std::string& region) {
    return region.empty() ? std::string("ZZ") : region;
}

bool IsLayout(char c) {
    return c == ' ' || c == '\t' || c == '(' || c == ')' || c == '-' || c == '.' || c == '/';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// A stored number in the form Parse gives: digits with an optional leading +.
bool IsDialForm(const std::string& number) {
    if (number.empty() || number == "+")
        return false;
    for (std::size_t i = 0; i < number.size(); ++i) {
        if (!IsDigit(number[i]) && !(i == 0 && number[i] == '+'))
            return false;
    }
    return true;
}

PhoneNumbers::DialString Take(std::string number) {
    return {std::move(number), PhoneNumbers::Refusal::None, {}};
}

PhoneNumbers::DialString Refuse(PhoneNumbers::Refusal refusal, std::string reason) {
    return {{}, refusal, std::move(reason)};
}

// A number dialled within the country that short-number rules of the region allow (112, 22255, 116117).
bool IsShortNumber(const PhoneNumber& number, const std::string& region) {
    return number.country_code_source() == PhoneNumber::FROM_DEFAULT_COUNTRY &&
           shortNumbers().IsPossibleShortNumberForRegion(number, region);
}

// Three-digit emergency numbers ("999") are too short to be parsed as a national number at all.
bool IsShortDigits(const std::string& digits, const std::string& region) {
    if (region.empty() || digits.size() > 8)
        return false;
    PhoneNumber number;
    number.set_country_code(util().GetCountryCodeForRegion(region));
    number.set_national_number(std::stoull(digits));
    const std::size_t zeros = digits.find_first_not_of('0');
    if (zeros != 0) {
        number.set_italian_leading_zero(true);
        number.set_number_of_leading_zeros(
            static_cast<int>(zeros == std::string::npos ? digits.size() : zeros));
    }
    return shortNumbers().IsPossibleShortNumberForRegion(number, region);
}

// Keeps the raw input so that a number typed without a country code can be told apart.
PhoneNumberUtil::ErrorType ParseTyped(const std::string& text, const std::string& region,
                                      PhoneNumber& number) {
    return util().ParseAndKeepRawInput(text, RegionOrUnknown(region), &number);
}

bool ParseIn(const std::string& text, const std::string& region, PhoneNumber& number) {
    return ParseTyped(text, region, number) == PhoneNumberUtil::NO_PARSING_ERROR;
}

} // namespace

namespace PhoneNumbers {

DialString Parse(const std::string& typed, const std::string& region) {
    const std::string quoted = "'" + typed + "'";
    std::string digits;
    bool plus = false;
    bool letters = false;
    bool serviceCode = false;
    bool other = false;
    for (const char c : typed) {
        if (IsDigit(c))
            digits.push_back(c);
        else if (c == '+' && digits.empty() && !plus)
            plus = true;
        else if (c == '*' || c == '#')
            serviceCode = true;
        else if (IsLetter(c))
            letters = true;
        else if (!IsLayout(c))
            other = true;
    }
    if (letters)
        return Refuse(Refusal::Letters, "letters are not allowed in a phone number: " + quoted);
    if (other)
        return Refuse(
            Refusal::BadCharacter,
            quoted + " is not a phone number: use digits, spaces, brackets, dashes, dots and a leading +");
    if (serviceCode)
        return Refuse(Refusal::ServiceCode, quoted + " is a service code, not a phone number");
    if (digits.empty())
        return Refuse(Refusal::Empty, "the phone number is empty");
    if (static_cast<int>(digits.size()) > kMaxDigits)
        return Refuse(Refusal::WrongLength, quoted + " has " + std::to_string(digits.size()) +
                                                " digits; a phone number has at most " +
                                                std::to_string(kMaxDigits));

    // Without a home region only an international number can be read; "00" is taken as its prefix.
    if (region.empty() && !plus && digits.rfind("00", 0) == 0) {
        plus = true;
        digits.erase(0, 2);
    }
    if (region.empty() && !plus)
        return Take(digits);

    PhoneNumber number;
    const auto error = ParseTyped((plus ? "+" : "") + digits, region, number);
    if (error != PhoneNumberUtil::NO_PARSING_ERROR && !plus && IsShortDigits(digits, region))
        return Take(digits);
    if (error == PhoneNumberUtil::INVALID_COUNTRY_CODE_ERROR)
        return Refuse(Refusal::BadCountryCode, quoted + " starts with a country code that does not exist");
    if (error == PhoneNumberUtil::TOO_LONG_NSN)
        return Refuse(Refusal::WrongLength, quoted + " is too long for a phone number");
    if (error != PhoneNumberUtil::NO_PARSING_ERROR)
        return Refuse(Refusal::WrongLength, quoted + " is too short for a phone number");
    if (IsShortNumber(number, region))
        return Take(digits);
    switch (util().IsPossibleNumberWithReason(number)) {
    case PhoneNumberUtil::IS_POSSIBLE:
        break;
    case PhoneNumberUtil::IS_POSSIBLE_LOCAL_ONLY:
        // A local number without its area code: only the digits as typed reach the right line.
        if (number.country_code_source() == PhoneNumber::FROM_DEFAULT_COUNTRY)
            return Take(digits);
        break;
    case PhoneNumberUtil::INVALID_COUNTRY_CODE:
        return Refuse(Refusal::BadCountryCode, quoted + " starts with a country code that does not exist");
    case PhoneNumberUtil::TOO_LONG:
        return Refuse(Refusal::WrongLength, quoted + " is too long for a phone number");
    default:
        return Refuse(Refusal::WrongLength, quoted + " is too short for a phone number");
    }
    std::string e164;
    util().Format(number, PhoneNumberUtil::E164, &e164);
    return Take(e164);
}

std::string ForReading(const std::string& number, const std::string& region) {
    if (!IsDialForm(number) || (number[0] != '+' && region.empty()))
        return number;
    PhoneNumber parsed;
    if (!ParseIn(number, region, parsed) || IsShortNumber(parsed, region) || !util().IsPossibleNumber(parsed))
        return number;
    const bool home = !region.empty() && parsed.country_code() == util().GetCountryCodeForRegion(region);
    std::string formatted;
    util().Format(parsed, home ? PhoneNumberUtil::NATIONAL : PhoneNumberUtil::INTERNATIONAL, &formatted);
    return formatted;
}

bool SameNumber(const std::string& a, const std::string& b, const std::string& region) {
    if (a.empty() || b.empty())
        return false;
    if (a == b)
        return true;
    if (!IsDialForm(a) || !IsDialForm(b))
        return false;
    PhoneNumber first;
    PhoneNumber second;
    PhoneNumberUtil::MatchType match;
    if (ParseIn(a, region, first) && ParseIn(b, region, second)) {
        // A shortcode is its own line: "22255" is not the end of "+4917022255".
        if (IsShortNumber(first, region) || IsShortNumber(second, region))
            return false;
        match = util().IsNumberMatch(first, second);
    } else {
        match = util().IsNumberMatchWithTwoStrings(a, b);
    }
    return match == PhoneNumberUtil::EXACT_MATCH || match == PhoneNumberUtil::NSN_MATCH ||
           match == PhoneNumberUtil::SHORT_NSN_MATCH;
}

} // namespace PhoneNumbers
