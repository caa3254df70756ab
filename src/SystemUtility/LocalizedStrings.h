#pragma once

#include <QString>

// The application's translation table: user-visible texts by key ("IDS_AVAILABLE" -> "Available").
// A key without an entry reads as the key itself, so a missing text shows up instead of vanishing.
class LocalizedStrings {
public:
    static QString text(const QString& key);
};
