#pragma once

#include <QString>

// The per-user folders (XdgPlaces): the stores and the dial options in the data folder, the settings and
// the log marker in the configuration folder, the logs in the state folder. The first call in a process,
// and again after $HOME or an XDG variable changed, moves the files earlier versions left in their old
// places over (OldPlaces) and says so on standard error. Each call creates the folder when it is missing
// and returns its path (without a trailing slash), also when it could not be created. The folders are the
// owner's alone (mode 0700); one found open to others is closed.
class UserDataFolder {
public:
    static QString dataPath();
    static QString configPath();
    static QString statePath();
};
