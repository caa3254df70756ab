#pragma once

#include <QString>

// The per-user data folders under $HOME/Documents. The configuration, the log marker and the message
// stores live in "HSPA Modem User Data"; the device code keeps its files in "USB Modem User Data". The two
// are separate folders on purpose. Each call creates the folder when it is missing and returns its path
// (without a trailing slash), also when it could not be created. The folders are the owner's alone (mode
// 0700); one found open to others is closed.
class UserDataFolder {
public:
    static QString configPath();
    static QString devicePath();

    // "%@/Documents/<name>" under the home folder ($HOME), created when missing.
    static QString documentsPath(const QString& name);
};
