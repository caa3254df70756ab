#pragma once

#include <QString>
#include <QVariant>

#include <functional>

// Writes of the computer-side stores (message boxes, the computer inbox, traffic history, profiles,
// configuration) and the pick-up of the temporary files a killed write leaves beside them.
class StoreFile {
public:
    // Writes root to path through a temporary file renamed into place, then syncs the folder so that the
    // rename itself is on disk before the caller acts on it (deletes the modem's copy, reports success).
    // false when a step failed; the old file is then intact. Leftovers of earlier writes are removed after
    // it. Call under the store's lock.
    static bool write(const QString& path, const QVariant& root);

    // Syncs the folder itself, so that renames and removals in it are on disk; false when that failed.
    static bool syncFolder(const QString& folder);

    // The leftovers of an interrupted write, "<name>.XXXXXX" beside path. A readable one at least as new
    // as the store is handed to merge (when given); when any was merged, writeBack stores the result. The
    // leftovers are removed once that succeeded (at once when nothing was merged); false when the write
    // back failed and they were kept. Call under the store's lock, so no other write is in flight.
    using Merge = std::function<void(const QVariant& leftover)>;
    static bool recoverLeftovers(const QString& path, const Merge& merge,
                                 const std::function<bool()>& writeBack);

    // Test hook, called before each write with "write <file name>" and after the rename with "written <file
    // name>"; returning false makes that step fail as a full disk would. Empty by default.
    using FaultHook = std::function<bool(const QString& step)>;
    static void setFaultHook(FaultHook hook);
    static bool passes(const QString& step);
};
