#pragma once

#include <QString>

// Where the application's read-only data lives ("PredefinedProfile", "PLMN", the dial-up service tool and
// modem script in "Resources"; the account menus in the sibling "AccountData", the compiled translations in
// the sibling "translations"):
//   1. the folder named by DIALTONE_RESOURCE_DIR, when set;
//   2. the build tree's share/dialtone/Resources, for a program run from the build tree;
//   3. <prefix>/share/dialtone/Resources next to the program's own bin folder;
//   4. the folder it was installed to.
// The path is returned even when the folder does not exist; readers treat a missing file as empty.
class ResourceLocator {
public:
    static QString resourceDir();
    static QString resourcePath(const QString& name);
    static QString accountDataDir();
    static QString translationsDir();
};
