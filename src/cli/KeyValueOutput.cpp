#include "KeyValueOutput.h"

using nlohmann::json;

namespace {

std::string ValueText(const json& value) {
    if (value.is_null())
        return {};
    if (!value.is_string())
        return value.dump(-1, ' ', false, json::error_handler_t::replace);
    // One value per line, and no control character from a message or the modem reaches a terminal.
    static constexpr char kHex[] = "0123456789abcdef";
    const auto& raw = value.get_ref<const std::string&>();
    std::string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const char c = raw[i];
        const auto byte = static_cast<unsigned char>(c);
        const auto next = static_cast<unsigned char>(i + 1 < raw.size() ? raw[i + 1] : 0);
        if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) { // C1 controls, U+0080 to U+009F
            text += std::string("\\u00") + kHex[next >> 4] + kHex[next & 0xF];
            ++i;
        } else if (c == '\n')
            text += "\\n";
        else if (c == '\t')
            text += "\\t";
        else if (c == '\\')
            text += "\\\\";
        else if (byte < 0x20 || byte == 0x7F)
            text += std::string("\\x") + kHex[byte >> 4] + kHex[byte & 0xF];
        else
            text += c;
    }
    return text;
}

void Flatten(const json& value, const std::string& key, std::string& out) {
    if (value.is_object() && !value.empty()) {
        for (const auto& [name, inner] : value.items())
            Flatten(inner, key.empty() ? name : key + "." + name, out);
        return;
    }
    if (value.is_array() && !value.empty()) {
        std::size_t position = 0;
        for (const json& inner : value)
            Flatten(inner, key + "[" + std::to_string(position++) + "]", out);
        return;
    }
    const bool empty = value.is_object() || value.is_array();
    out +=
        (key.empty() ? std::string("value") : key) + ": " + (empty ? std::string() : ValueText(value)) + '\n';
}

} // namespace

std::string KeyValueLines(const json& document) {
    std::string out;
    Flatten(document, {}, out);
    return out;
}
