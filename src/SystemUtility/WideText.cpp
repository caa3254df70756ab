#include "WideText.h"

#include <cstdint>

namespace {

void AppendUtf8(std::string& out, uint32_t c) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        c = 0xFFFD;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | c >> 6);
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | c >> 12);
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | c >> 18);
        out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

} // namespace

std::string ToUtf8(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        uint32_t c = static_cast<uint32_t>(text[i]);
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size()) {
            const auto low = static_cast<uint32_t>(text[i + 1]);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::wstring FromUtf8(const std::string& text) {
    std::wstring out;
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n;) {
        const unsigned char lead = s[i];
        int extra = 0;
        uint32_t c = 0;
        uint32_t minimum = 0;
        if (lead < 0x80) {
            c = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            extra = 1, c = lead & 0x1F, minimum = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            extra = 2, c = lead & 0x0F, minimum = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            extra = 3, c = lead & 0x07, minimum = 0x10000;
        } else {
            out += wchar_t(0xFFFD);
            ++i;
            continue;
        }
        std::size_t k = 1;
        for (; k <= static_cast<std::size_t>(extra); ++k) {
            if (i + k >= n || (s[i + k] & 0xC0) != 0x80)
                break;
            c = c << 6 | (s[i + k] & 0x3F);
        }
        if (k <= static_cast<std::size_t>(extra) || c < minimum || c > 0x10FFFF ||
            (c >= 0xD800 && c <= 0xDFFF)) {
            out += wchar_t(0xFFFD);
            i += k;
            continue;
        }
        out += static_cast<wchar_t>(c);
        i += k;
    }
    return out;
}
