#include "E2ESupport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Reads one line from fd within the limit.
std::string readLine(int fd, std::chrono::milliseconds limit) {
    std::string line;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < limit.count()) {
        pollfd pfd{fd, POLLIN, 0};
        if (poll(&pfd, 1, 50) <= 0)
            continue;
        char c = 0;
        const ssize_t n = read(fd, &c, 1);
        if (n <= 0)
            break;
        if (c == '\n')
            return line;
        line.push_back(c);
    }
    return line;
}

} // namespace

SimulatedModem::SimulatedModem(const QStringList& args) {
    if (!_dir.isValid())
        return;
    int out[2];
    if (pipe(out) != 0)
        return;
    std::vector<std::string> argv{DIALTONE_MODEMSIM, "--dev-dir", _dir.path().toStdString()};
    if (std::getenv("DIALTONE_SIM_TRACE") != nullptr) {
        argv.push_back("--trace"); // the modem's traffic on standard error
    }
    for (const QString& arg : args)
        argv.push_back(arg.toStdString());
    std::vector<char*> cargv;
    for (std::string& arg : argv)
        cargv.push_back(arg.data());
    cargv.push_back(nullptr);
    _pid = fork();
    if (_pid == 0) {
        dup2(out[1], STDOUT_FILENO);
        close(out[0]);
        close(out[1]);
        execv(cargv[0], cargv.data());
        _exit(127);
    }
    close(out[1]);
    const std::string line = readLine(out[0], std::chrono::seconds(10));
    close(out[0]);
    _ready = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    setenv("DIALTONE_DEV_DIR", _dir.path().toLocal8Bit().constData(), 1);
}

SimulatedModem::~SimulatedModem() {
    unsetenv("DIALTONE_DEV_DIR");
    if (_pid <= 0)
        return;
    kill(_pid, SIGTERM);
    for (int i = 0; i < 500; ++i) {
        if (waitpid(_pid, nullptr, WNOHANG) == _pid)
            return;
        usleep(10000);
    }
    kill(_pid, SIGKILL);
    waitpid(_pid, nullptr, 0);
}

QJsonObject SimulatedModem::control(const QString& line) const {
    const std::string path = _ready.value("control").toString().toStdString();
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    if (fd < 0) {
        return {};
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) {
        close(fd);
        return {};
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        close(fd);
        return {};
    }
    const std::string command = line.toStdString() + "\n";
    if (write(fd, command.data(), command.size()) != static_cast<ssize_t>(command.size())) {
        close(fd);
        return {};
    }
    const std::string answer = readLine(fd, std::chrono::seconds(10));
    close(fd);
    return QJsonDocument::fromJson(QByteArray::fromStdString(answer)).object();
}

QStringList SimulatedModem::commands() const {
    QStringList result;
    for (const QJsonValue& value : control("dump").value("commands").toArray()) {
        const QString command = value.toString();
        if (command.compare("at", Qt::CaseSensitive) != 0)
            result << command;
    }
    return result;
}

bool waitUntil(const std::function<bool()>& cond, std::chrono::milliseconds limit) {
    QElapsedTimer clock;
    clock.start();
    while (!cond()) {
        if (clock.elapsed() > limit.count())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}
