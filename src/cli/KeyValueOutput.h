#pragma once

#include <string>

#include <nlohmann/json.hpp>

// --output key=value: a JSON document as "key: value" lines for shell scripts. Nested keys are joined
// with dots, list elements get their position in brackets ("messages[0].number: +4917..."); a text is
// printed as it is but for "\n", "\t", "\\", other control characters as "\xHH" and C1 controls as
// "\u00HH"; null is an empty
// value, booleans are true/false. An empty object or list prints its key with an empty value, so that
// every key of the JSON shows.
std::string KeyValueLines(const nlohmann::json& document);
