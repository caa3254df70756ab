#pragma once

#include <QString>

// One writer per store file across processes: an exclusive flock on "<file>.lock" (mode 0600) beside the
// store, held from construction to destruction. Take it around a whole read-modify-write cycle and read
// the file again under it, so that a change made meanwhile by another process (the desktop app and a
// tool command, two sticks) is never overwritten by a stale copy. Readers need no lock: the file is
// replaced by a rename, so they see the old or the new content.
//
// flock belongs to the open file description, so two threads of one process exclude each other too; a
// thread must not take the lock of a file it already holds. When the lock file cannot be made (a
// read-only folder) the cycle goes on unlocked, since its write fails there anyway.
class StoreLock {
public:
    explicit StoreLock(const QString& storePath);
    ~StoreLock();
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

    bool locked() const { return _fd >= 0; }

private:
    int _fd = -1;
};
