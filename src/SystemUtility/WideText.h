#pragma once

#include <string>

// Wide text (UTF-32, or UTF-16 units as UCS2 messages carry them: surrogate pairs are joined) to UTF-8;
// anything that is not a character becomes U+FFFD.
std::string ToUtf8(const std::wstring& text);
// UTF-8 to wide text, one character per wchar_t; malformed sequences become U+FFFD.
std::wstring FromUtf8(const std::string& text);
