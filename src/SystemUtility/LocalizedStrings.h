#pragma once

#include <QString>

// The texts the modules look up by key ("IDS_AVAILABLE" -> "Available"), in the running application's
// language: the English text is the source string of the translations (context "LocalizedStrings").
// A key without an entry reads as the key itself, so a missing text shows up instead of vanishing.
class LocalizedStrings {
public:
    static QString text(const QString& key);
};
