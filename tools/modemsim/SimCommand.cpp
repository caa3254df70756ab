#include "SimCommand.h"

#include <cctype>
#include <climits>

namespace modemsim {

namespace {

bool IsNameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// The extended command's parameter text ends at a ';' outside quotes. False on an open quote.
bool TakeSetValue(std::string_view body, size_t& i, std::string& value) {
    bool inQuote = false;
    size_t start = i;
    while (i < body.size() && (inQuote || body[i] != ';')) {
        if (body[i] == '"') {
            inQuote = !inQuote;
        }
        ++i;
    }
    if (inQuote) {
        return false;
    }
    value.assign(body.substr(start, i - start));
    return true;
}

std::string TakeDigits(std::string_view body, size_t& i) {
    size_t start = i;
    while (i < body.size() && std::isdigit(static_cast<unsigned char>(body[i]))) {
        ++i;
    }
    return std::string(body.substr(start, i - start));
}

} // namespace

const std::string& AtCommand::Str(size_t i) const {
    static const std::string empty;
    return i < args.size() ? args[i].text : empty;
}

bool AtCommand::Int(size_t i, int& out) const {
    return i < args.size() && ParseInt(args[i].text, out);
}

int AtCommand::IntOr(size_t i, int fallback) const {
    int v = 0;
    return Int(i, v) ? v : fallback;
}

bool ParseInt(std::string_view text, int& out) {
    size_t i = 0;
    while (i < text.size() && text[i] == ' ') {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    if (i >= text.size()) {
        return false;
    }
    long long v = 0;
    for (; i < text.size(); ++i) {
        char c = text[i];
        if (c == ' ') {
            break;
        }
        if (!std::isdigit(static_cast<unsigned char>(c))) {
            return false;
        }
        v = v * 10 + (c - '0');
        if (v > INT_MAX) {
            return false;
        }
    }
    for (; i < text.size(); ++i) {
        if (text[i] != ' ') {
            return false;
        }
    }
    out = static_cast<int>(negative ? -v : v);
    return true;
}

std::string ToUpper(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

std::vector<AtArg> SplitArgs(std::string_view text) {
    std::vector<AtArg> args;
    AtArg cur;
    bool inQuote = false;
    for (char c : text) {
        if (inQuote) {
            if (c == '"') {
                inQuote = false;
            } else {
                cur.text.push_back(c);
            }
        } else if (c == '"') {
            inQuote = true;
            cur.quoted = true;
        } else if (c == ',') {
            args.push_back(std::move(cur));
            cur = AtArg{};
        } else if (c != ' ') {
            cur.text.push_back(c);
        }
    }
    args.push_back(std::move(cur));
    return args;
}

bool ParseCommandLine(std::string_view body, std::vector<AtCommand>& out) {
    out.clear();
    size_t i = 0;
    while (i < body.size()) {
        char c = body[i];
        if (c == ' ' || c == ';') {
            ++i;
            continue;
        }
        AtCommand cmd;
        if (c == '+' || c == '$' || c == '^' || c == '%') {
            size_t start = i++;
            while (i < body.size() && IsNameChar(body[i])) {
                ++i;
            }
            if (i - start < 2) {
                return false;
            }
            cmd.name = ToUpper(std::string(body.substr(start, i - start)));
            if (body.substr(i, 2) == "=?") {
                cmd.form = AtCommand::Form::Test;
                i += 2;
            } else if (i < body.size() && body[i] == '?') {
                cmd.form = AtCommand::Form::Query;
                ++i;
            } else if (i < body.size() && body[i] == '=') {
                cmd.form = AtCommand::Form::Set;
                ++i;
                if (!TakeSetValue(body, i, cmd.value)) {
                    return false;
                }
                cmd.args = SplitArgs(cmd.value);
            }
        } else if (c == '&') {
            if (i + 1 >= body.size() || !std::isalpha(static_cast<unsigned char>(body[i + 1]))) {
                return false;
            }
            cmd.name = ToUpper(std::string(body.substr(i, 2)));
            i += 2;
            cmd.value = TakeDigits(body, i);
        } else if (std::isalpha(static_cast<unsigned char>(c))) {
            char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            ++i;
            cmd.name = std::string(1, letter);
            if (letter == 'D') {
                // The dial string takes the rest of the line: "ATD*99#", "ATD+4930123;".
                cmd.value.assign(body.substr(i));
                i = body.size();
            } else if (letter == 'S') {
                std::string reg = TakeDigits(body, i);
                if (reg.empty()) {
                    return false;
                }
                cmd.args.push_back(AtArg{reg, false});
                if (i < body.size() && body[i] == '?') {
                    cmd.form = AtCommand::Form::Query;
                    ++i;
                } else if (i < body.size() && body[i] == '=') {
                    cmd.form = AtCommand::Form::Set;
                    ++i;
                    cmd.value = TakeDigits(body, i);
                }
            } else {
                cmd.value = TakeDigits(body, i);
                if (i < body.size() && body[i] == '?') {
                    cmd.form = AtCommand::Form::Query;
                    ++i;
                }
            }
        } else {
            return false;
        }
        out.push_back(std::move(cmd));
    }
    return true;
}

AtReply AtReply::Line(std::string line) {
    AtReply r;
    r.lines.push_back(std::move(line));
    return r;
}

AtReply AtReply::Error() {
    AtReply r;
    r.final = Final::Error;
    return r;
}

AtReply AtReply::Cme(int code) {
    AtReply r;
    r.final = Final::Cme;
    r.code = code;
    return r;
}

AtReply AtReply::Cms(int code) {
    AtReply r;
    r.final = Final::Cms;
    r.code = code;
    return r;
}

AtReply AtReply::Result(std::string text) {
    AtReply r;
    r.final = Final::Text;
    r.text = std::move(text);
    return r;
}

AtReply AtReply::Prompt() {
    AtReply r;
    r.final = Final::Prompt;
    return r;
}

AtReply AtReply::Silent() {
    AtReply r;
    r.final = Final::None;
    return r;
}

const char* CmeText(int code) {
    switch (code) {
    case 0:
        return "phone failure";
    case 3:
        return "operation not allowed";
    case 4:
        return "operation not supported";
    case 5:
        return "PH-SIM PIN required";
    case 10:
        return "SIM not inserted";
    case 11:
        return "SIM PIN required";
    case 12:
        return "SIM PUK required";
    case 13:
        return "SIM failure";
    case 14:
        return "SIM busy";
    case 15:
        return "SIM wrong";
    case 16:
        return "incorrect password";
    case 17:
        return "SIM PIN2 required";
    case 18:
        return "SIM PUK2 required";
    case 20:
        return "memory full";
    case 21:
        return "invalid index";
    case 22:
        return "not found";
    case 23:
        return "memory failure";
    case 24:
        return "text string too long";
    case 25:
        return "invalid characters in text string";
    case 26:
        return "dial string too long";
    case 27:
        return "invalid characters in dial string";
    case 30:
        return "no network service";
    case 31:
        return "network timeout";
    case 32:
        return "network not allowed - emergency calls only";
    case 50:
        return "incorrect parameters";
    default:
        return "unknown";
    }
}

namespace {

// Numeric result codes of ATV0.
int NumericCode(const AtReply& reply) {
    if (reply.final == AtReply::Final::Ok) {
        return 0;
    }
    if (reply.final == AtReply::Final::Text) {
        if (reply.text == "CONNECT") {
            return 1;
        }
        if (reply.text == "RING") {
            return 2;
        }
        if (reply.text == "NO CARRIER") {
            return 3;
        }
        if (reply.text == "NO DIALTONE") {
            return 6;
        }
        if (reply.text == "BUSY") {
            return 7;
        }
        if (reply.text == "NO ANSWER") {
            return 8;
        }
    }
    return 4;
}

} // namespace

std::string RenderLines(const std::vector<std::string>& lines, const Framing& framing) {
    if (lines.empty()) {
        return {};
    }
    std::string out = framing.verbose ? "\r\n" : "";
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) {
            out += "\r\n";
        }
        out += lines[i];
    }
    out += "\r\n";
    return out;
}

std::string RenderFinal(const AtReply& reply, const Framing& framing) {
    using F = AtReply::Final;
    if (reply.final == F::None) {
        return {};
    }
    if (reply.final == F::Prompt) {
        return "\r\n> ";
    }
    std::string text;
    if ((reply.final == F::Cme || reply.final == F::Cms) && framing.cmee != 0) {
        const char* kind = reply.final == F::Cme ? "+CME ERROR: " : "+CMS ERROR: ";
        if (reply.final == F::Cme && framing.cmee == 2) {
            text = std::string(kind) + CmeText(reply.code);
        } else {
            text = std::string(kind) + std::to_string(reply.code);
        }
        // Error reports are information texts: they are shown even in quiet mode.
        return framing.verbose ? "\r\n" + text + "\r\n" : text + "\r\n";
    }
    if (framing.quiet) {
        return {};
    }
    if (!framing.verbose) {
        return std::to_string(NumericCode(reply)) + "\r";
    }
    switch (reply.final) {
    case F::Ok:
        text = "OK";
        break;
    case F::Text:
        text = reply.text;
        break;
    default:
        text = "ERROR";
        break;
    }
    return "\r\n" + text + "\r\n";
}

} // namespace modemsim
