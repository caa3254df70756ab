#include "TerminalText.h"

#include "CliSupport.h"

std::string TerminalText(const std::string& utf8, LineBreaks breaks) {
    const std::wstring text = FromUtf8(utf8);
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        if (c == L'\r' || c == L'\n' || c == L'\t') {
            if (breaks == LineBreaks::Space) {
                out += L' ';
            } else if (c == L'\r') {
                if (i + 1 >= text.size() || text[i + 1] != L'\n')
                    out += L'\n';
            } else {
                out += c;
            }
        } else if (c < 0x20) {
            out += static_cast<wchar_t>(0x2400 + c);
        } else if (c == 0x7F) {
            out += wchar_t(0x2421);
        } else if (c >= 0x80 && c <= 0x9F) {
            out += wchar_t(0xFFFD);
        } else {
            out += c;
        }
    }
    return ToUtf8(out);
}

std::string TerminalText(const QString& text, LineBreaks breaks) {
    return TerminalText(text.toStdString(), breaks);
}
