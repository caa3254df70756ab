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

    // Starts the program and waits for it: its exit status, or -1 when it could not start, was killed by
    // a signal, or ran past timeoutMs (then it is killed).
    static int run(const QString& program, const QStringList& arguments, int timeoutMs);

    // Reaps the child if it has ended: true with its exit status (128 + signal when killed).
    static bool reap(pid_t pid, int& exitStatus);

    // Runs the program in the background and forgets it; true when it started.
    static bool startDetached(const QString& program, const QStringList& arguments);
};
