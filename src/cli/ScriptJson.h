#pragma once

#include <string>

#include <QDateTime>
#include <QString>

#include <nlohmann/json.hpp>

// The rules of the tool's JSON for scripts (doc/json.md): lower-case snake_case keys, booleans as
// booleans, times as ISO 8601 with their offset, null for what is absent, errors as one object.

// A record's JSON as the worker names it ("strImsi", "nPinCnt", "bUdhi": 1) in the scripts' words: the
// type prefix goes, the rest becomes snake_case ("imsi", "pin_cnt"), "b"/"bl" flags and "TRUE"/"FALSE"
// become booleans, an empty text becomes null, and the record's "class" is dropped. Nested objects
// and lists are converted alike.
nlohmann::json ScriptKeys(const nlohmann::json& document);

// ISO 8601 with the offset from UTC ("2024-05-17T09:30:00+02:00"); null for an invalid time.
nlohmann::json IsoTime(const QDateTime& time);
// The text, or null when it is null or empty.
nlohmann::json TextOrNull(const QString& text);

// {"error": {"code": N, "message": "..."}}, with "cause_code" when the modem gave its own cause.
nlohmann::json ErrorDocument(int code, const std::string& message, int cause = 0);
