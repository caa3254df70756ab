#pragma once

#include <string>

#include <nlohmann/json.hpp>

// What each request of the worker takes as its argument, checked before the request is sent: nothing, a
// number in a range, a text, "TRUE"/"FALSE", or one record class with ranges for some of its fields and
// SIM codes of the right form. An object without "class" is taken as the expected record; the class
// name is then added to document. Returns what is wrong, naming the field, or an empty text. A request
// that is not in the table passes: the worker answers an unknown name itself.
std::string RequestArgumentProblem(const std::string& name, nlohmann::json& document);
