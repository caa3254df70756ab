#pragma once

#include <QString>
#include <QStringList>

#include <sys/types.h>

// Outside programs (usb_modeswitch, eject, xdg-open, pppd, the service tool) are started from an argument
// vector, never through a shell, so names and profile fields cannot run commands. The child gets
// /dev/null as standard input and output, keeps standard error, and inherits no other descriptor of this
// process (an open AT port stays ours alone).
class ChildProcess {
public:
    // Starts the program; a bare name is looked up in PATH. Returns the pid, or -1 when it cannot start.
    static pid_t spawn(const QString& program, const QStringList& arguments);
    // The same for a program that must outlive this process's terminal and process group (pppd): it
    // runs in a session of its own, and its standard error goes to /dev/null too, so a pipe reading this
    // process's output ends when this process does.
    static pid_t spawnInOwnSession(const QString& program, const QStringList& arguments);

    // Starts the program and waits for it: its exit status, or -1 when it could not start, was killed by
    // a signal, or ran past timeoutMs (then it is killed).
    static int run(const QString& program, const QStringList& arguments, int timeoutMs);

    // Reaps the child if it has ended: true with its exit status (128 + signal when killed).
    static bool reap(pid_t pid, int& exitStatus);

    // Runs the program in the background and forgets it; true when it started.
    static bool startDetached(const QString& program, const QStringList& arguments);

private:
    static pid_t spawnWith(const QString& program, const QStringList& arguments, bool ownSession);
};
