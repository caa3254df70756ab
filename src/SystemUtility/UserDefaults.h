#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

// The user defaults: small values kept across runs ("CreatedModemNumber"), in an INI file in the user's
// config folder ($XDG_CONFIG_HOME, else ~/.config: "dialtone/defaults.ini").
class UserDefaults {
public:
    static QString filePath();
    static QVariant value(const QString& key, const QVariant& fallback = {});
    // False when the file cannot be written.
    static bool setValue(const QString& key, const QVariant& value);
};
