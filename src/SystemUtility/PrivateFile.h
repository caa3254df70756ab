#pragma once

#include <QString>

// Our files hold profile passwords, messages and dial options: every file Dialtone writes is the owner's
// alone (0600) and every folder it creates too (0700). Files and folders left wider by an older version or
// by hand are closed when we write them. Entries owned by another user are left as they are.
class PrivateFile {
public:
    // Creates the folder and any missing parent with mode 0700 and closes the folder itself when it is open
    // to others. Returns false when it is not a folder afterwards.
    static bool makeFolder(const QString& path);

    // Sets 0600 on the open file (for a QSaveFile: its temporary file, before the commit) or on the path.
    // False when that failed or the path is not a regular file; true for a file of another user.
    static bool restrictDescriptor(int fd);
    static bool restrict(const QString& path);
};
