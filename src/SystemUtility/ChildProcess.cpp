#include "ChildProcess.h"

#include <QElapsedTimer>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

int decodeStatus(int status) {
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}

struct ArgumentVector {
    ArgumentVector(const QString& program, const QStringList& arguments) {
        storage.reserve(arguments.size() + 1);
        storage.push_back(program.toLocal8Bit());
        for (const QString& argument : arguments) {
            storage.push_back(argument.toLocal8Bit());
        }
        for (QByteArray& item : storage) {
            argv.push_back(item.data());
        }
        argv.push_back(nullptr);
    }
    std::vector<QByteArray> storage;
    std::vector<char*> argv;
};

} // namespace

pid_t ChildProcess::spawn(const QString& program, const QStringList& arguments) {
    return spawnWith(program, arguments, false);
}

pid_t ChildProcess::spawnInOwnSession(const QString& program, const QStringList& arguments) {
    return spawnWith(program, arguments, true);
}

pid_t ChildProcess::spawnWith(const QString& program, const QStringList& arguments, bool ownSession) {
    if (program.isEmpty()) {
        return -1;
    }
    ArgumentVector command(program, arguments);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    if (ownSession) {
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // The child starts with default signal handling whatever this process has installed.
    sigset_t all;
    sigfillset(&all);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                                              (ownSession ? POSIX_SPAWN_SETSID : 0));

    pid_t pid = -1;
    const int error =
        posix_spawnp(&pid, command.argv[0], &actions, &attributes, command.argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? pid : -1;
}

int ChildProcess::run(const QString& program, const QStringList& arguments, int timeoutMs) {
    const pid_t pid = spawn(program, arguments);
    if (pid < 0) {
        return -1;
    }
    QElapsedTimer clock;
    clock.start();
    int exitStatus = -1;
    while (!reap(pid, exitStatus)) {
        if (clock.elapsed() > timeoutMs) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return exitStatus >= 128 ? -1 : exitStatus;
}

bool ChildProcess::reap(pid_t pid, int& exitStatus) {
    int status = 0;
    pid_t done;
    do {
        done = waitpid(pid, &status, WNOHANG);
    } while (done < 0 && errno == EINTR);
    if (done == pid) {
        exitStatus = decodeStatus(status);
        return true;
    }
    if (done < 0) { // not our child (any more)
        exitStatus = -1;
        return true;
    }
    return false;
}

bool ChildProcess::startDetached(const QString& program, const QStringList& arguments) {
    if (program.isEmpty()) {
        return false;
    }
    // An intermediate child forks the program and exits at once, so nothing is left to reap. Everything
    // is prepared before the fork: the children only make system calls.
    ArgumentVector command(program, arguments);
    const pid_t middle = fork();
    if (middle < 0) {
        return false;
    }
    if (middle == 0) {
        if (fork() == 0) {
            const int devNull = open("/dev/null", O_RDWR);
            dup2(devNull, STDIN_FILENO);
            dup2(devNull, STDOUT_FILENO);
            closefrom(STDERR_FILENO + 1);
            sigset_t none;
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            for (int sig = 1; sig < NSIG; ++sig) {
                signal(sig, SIG_DFL);
            }
            execvp(command.argv[0], command.argv.data());
            _exit(127);
        }
        _exit(0);
    }
    int status = 0;
    while (waitpid(middle, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
