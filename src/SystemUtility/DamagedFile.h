#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

#include <cstdio>

// Files of ours that cannot be read are never thrown away: the damaged file is renamed to
// "<name>.damaged-<yyyyMMdd-hhmmss>" (with "-2", "-3", ... when that name is taken), a level-2 log line and
// a notice line say so (the notice names the file and its kept copy), and the caller goes on with its
// defaults. A missing file is not damaged; anything but a regular file (a folder, a device, a pipe, a
// dangling link) in its place is damaged.
class DamagedFile {
public:
    enum class State { Absent, Good, Damaged };

    // Moves the file aside as above. `what` names it in the log line ("DateTraffics.plist"). Returns the
    // kept copy's path, or "" when it could not be moved (that is logged too).
    static QString keepAside(const QString& path, const QString& what);

    // A readable file with entries of the wrong shape: the good ones are used, the others are skipped and
    // their count goes to the log (level 2) and the notice. The file is copied as a kept copy (once: not
    // again while one with the same bytes is there), since the next save drops the skipped entries.
    // Nothing happens for a count of 0.
    static void reportWrongEntries(const QString& path, const QString& what, qsizetype count);

    // Reads a property list whose root must be of rootType (QMetaType::QVariantMap or QVariantList).
    // Good: content holds the root. Absent: no file, content is invalid. Damaged: the file could not be
    // read, was empty, malformed, truncated or of another root type; it is kept aside and content is
    // invalid.
    static State readPropertyList(const QString& path, int rootType, QVariant& content);

    // The same for the callers that want "empty" for both absent and damaged files.
    static QVariantMap readMap(const QString& path);
    static QVariantList readList(const QString& path);

    // An INI file (QSettings) is damaged when it holds NUL bytes or invalid UTF-8, is larger than 1 MiB,
    // or has a line that is neither blank, a comment, a [section] nor key=value (a cut-off write). An
    // empty file is a valid empty one. Call before opening the file with QSettings; keeps it aside.
    static State checkSettingsFile(const QString& path);

    // Where the one-line notices go besides the log: standard error by default, nullptr for none.
    static void setNoticeStream(std::FILE* stream);
};
