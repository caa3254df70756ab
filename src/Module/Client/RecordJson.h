#pragma once

#include <QList>
#include <QMetaType>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "RecordList.h"

// JSON for what travels between the tool and the worker: plain values, lists, dictionaries and the
// request and result records. A record becomes an object whose keys are its field names, with "class"
// naming the record; a null text or an invalid date becomes null; dates are ISO 8601 texts.

nlohmann::json VariantToJson(const QVariant& value);
nlohmann::json MapToJson(const QVariantMap& map);

// A request argument from JSON: a number (a 32-bit integer when it fits), a string, true/false, null, a
// list (a list of records of one class becomes that record's QList), or an object. An object with "class" becomes that record; its other keys must be the record's
// field names with values of the field's type, and missing fields keep the record's defaults. An object
// without "class" becomes a dictionary. False, with the reason in error, for anything else.
bool JsonToVariant(const nlohmann::json& document, QVariant& value, std::string& error);

// The names of the records JsonToVariant knows, in no particular order.
std::vector<std::string> RecordClassNames();
