#pragma once

#include <QString>

#include <string>

// Text from outside (the network, the SIM, the modem, files) made safe for a terminal: every C0 control,
// DEL and C1 control (U+0080-U+009F) is shown as a visible placeholder, so no escape sequence reaches the
// terminal. C0 controls become their control pictures (U+2400 + c), DEL U+2421, C1 controls U+FFFD.
// JSON output does not need this: its escaping keeps every byte exact and harmless.

enum class LineBreaks {
    Space, // CR, LF and TAB as a space: one item per line (message lists)
    Keep,  // LF and TAB stay, CR LF and a lone CR become LF (USSD menus, message bodies shown whole)
};

std::string TerminalText(const std::string& utf8, LineBreaks breaks = LineBreaks::Space);
std::string TerminalText(const QString& text, LineBreaks breaks = LineBreaks::Space);
