#include "KeyValueOutput.h"

using nlohmann::json;

namespace {

std::string ValueText(const json& value) {
    if (value.is_null())
        return {};
    if (!value.is_string())
        return value.dump(-1, ' ', false, json::error_handler_t::replace);
    std::string text;
    for (const char c : value.get_ref<const std::string&>()) {
        if (c == '\n')
            text += "\\n";
        else if (c == '\r')
            text += "\\r";
        else if (c == '\\')
            text += "\\\\";
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
