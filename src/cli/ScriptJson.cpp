#include "ScriptJson.h"

#include <array>
#include <cctype>
#include <string_view>

using nlohmann::json;

namespace {

// Type prefixes of the records' field names, longest first.
constexpr std::array<std::string_view, 8> kPrefixes{"wstr", "str", "lst", "sz", "bl", "dt", "n", "b"};

bool IsFlagPrefix(std::string_view prefix) {
    return prefix == "b" || prefix == "bl";
}

// The prefix of a field name like "strImsi": lower-case letters followed by an upper-case one.
std::string_view TypePrefix(const std::string& key) {
    for (std::string_view prefix : kPrefixes) {
        if (key.size() > prefix.size() && key.compare(0, prefix.size(), prefix) == 0 &&
            std::isupper(static_cast<unsigned char>(key[prefix.size()])))
            return prefix;
    }
    return {};
}

json Converted(const json& value, bool flag) {
    if (value.is_object())
        return ScriptKeys(value);
    if (value.is_array()) {
        json list = json::array();
        for (const json& item : value)
            list.push_back(Converted(item, false));
        return list;
    }
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        if (text.empty())
            return nullptr;
        if (text == "TRUE" || text == "FALSE")
            return text == "TRUE";
    }
    if (flag && value.is_number_integer())
        return value.get<long long>() != 0;
    return value;
}

std::string ScriptKey(const std::string& key) {
    const std::size_t start = TypePrefix(key).size();
    std::string out;
    for (std::size_t i = start; i < key.size(); ++i) {
        const auto c = static_cast<unsigned char>(key[i]);
        if (c == ' ' || c == '-' || c == '_') {
            if (!out.empty() && out.back() != '_')
                out += '_';
            continue;
        }
        if (std::isupper(c) && i > start) {
            const auto before = static_cast<unsigned char>(key[i - 1]);
            const bool nextLower = i + 1 < key.size() && std::islower(static_cast<unsigned char>(key[i + 1]));
            if ((std::islower(before) || std::isdigit(before) || (std::isupper(before) && nextLower)) &&
                out.back() != '_')
                out += '_';
        }
        out += static_cast<char>(std::tolower(c));
    }
    return out;
}

} // namespace

json ScriptKeys(const json& document) {
    if (!document.is_object())
        return Converted(document, false);
    json out = json::object();
    for (const auto& [key, value] : document.items()) {
        if (key == "class")
            continue;
        // A message's class would read as the record's own name.
        const std::string name = ScriptKey(key);
        out[name == "class" ? "message_class" : name] = Converted(value, IsFlagPrefix(TypePrefix(key)));
    }
    return out;
}

json IsoTime(const QDateTime& time) {
    if (!time.isValid())
        return nullptr;
    // Qt writes UTC as "Z"; scripts get the offset in one form.
    std::string text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate).toStdString();
    if (!text.empty() && text.back() == 'Z')
        text.replace(text.size() - 1, 1, "+00:00");
    return text;
}

json TextOrNull(const QString& text) {
    return text.isEmpty() ? json(nullptr) : json(text.toStdString());
}

json ErrorDocument(int code, const std::string& message, int cause) {
    json error{{"code", code}, {"message", message}};
    if (cause != 0)
        error["cause_code"] = cause;
    return {{"error", error}};
}
