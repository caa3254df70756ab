#include "AtParameter.h"

AtParameterFault CheckAtParameter(std::string_view value, std::size_t maxLength) {
    for (std::size_t i = 0; i < value.size(); ++i) {
        const auto c = static_cast<unsigned char>(value[i]);
        if (c == '"')
            return AtParameterFault::Quote;
        if (c == ';')
            return AtParameterFault::Semicolon;
        if (c == '\\')
            return AtParameterFault::Backslash;
        if (c < 0x20 || c == 0x7F)
            return AtParameterFault::Control;
        // U+0080..U+009F in UTF-8: C2 80..C2 9F.
        if (c == 0xC2 && i + 1 < value.size()) {
            const auto next = static_cast<unsigned char>(value[i + 1]);
            if (next >= 0x80 && next <= 0x9F)
                return AtParameterFault::Control;
        }
    }
    return value.size() > maxLength ? AtParameterFault::TooLong : AtParameterFault::None;
}

AtParameterFault CheckAtParameter(std::wstring_view value, std::size_t maxLength) {
    for (const wchar_t c : value) {
        if (c == L'"')
            return AtParameterFault::Quote;
        if (c == L';')
            return AtParameterFault::Semicolon;
        if (c == L'\\')
            return AtParameterFault::Backslash;
        if (c < 0x20 || (c >= 0x7F && c <= 0x9F))
            return AtParameterFault::Control;
    }
    return value.size() > maxLength ? AtParameterFault::TooLong : AtParameterFault::None;
}

bool AppendQuotedAtParameter(std::string& command, std::string_view value, std::size_t maxLength) {
    if (CheckAtParameter(value, maxLength) != AtParameterFault::None)
        return false;
    command += '"';
    command += value;
    command += '"';
    return true;
}

std::string AtParameterProblem(std::string_view what, std::string_view value, std::size_t maxLength) {
    const char* held = nullptr;
    switch (CheckAtParameter(value, maxLength)) {
    case AtParameterFault::None:
        return {};
    case AtParameterFault::TooLong:
        return std::string(what) + " is longer than " + std::to_string(maxLength) + " characters";
    case AtParameterFault::Quote:
        held = "a double quote (\")";
        break;
    case AtParameterFault::Semicolon:
        held = "a semicolon (;)";
        break;
    case AtParameterFault::Backslash:
        held = "a backslash (\\)";
        break;
    case AtParameterFault::Control:
        held = "a control character (a line break, tab or escape)";
        break;
    }
    return std::string(what) + " holds " + held + ", which cannot be sent to the modem";
}
