#include "ServiceWorld.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusVariant>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

extern char** environ;

namespace servicetest {

namespace fs = std::filesystem;

namespace {

const QString kService = QStringLiteral("org.dialtone.Modem1");
const QString kPath = QStringLiteral("/org/dialtone/Modem1");

std::string ReadFile(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

pid_t Spawn(std::vector<std::string> arguments, posix_spawn_file_actions_t* actions) {
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawn(&pid, argv[0], actions, nullptr, argv.data(), environ) != 0)
        return -1;
    return pid;
}

} // namespace

QVariantMap Plain(const QVariant& value) {
    QVariantMap map = value.canConvert<QDBusArgument>() ? qdbus_cast<QVariantMap>(value) : value.toMap();
    for (auto it = map.begin(); it != map.end(); ++it) {
        if (it->canConvert<QDBusArgument>() &&
            it->value<QDBusArgument>().currentType() == QDBusArgument::MapType)
            *it = Plain(*it);
    }
    return map;
}

bool NotificationLog::seen(const QString& name,
                           const std::function<bool(const QVariantMap&)>& condition) const {
    for (const auto& [received, info] : _seen) {
        if (received == name && condition(info))
            return true;
    }
    return false;
}

void NotificationLog::take(const QString& name, const QDBusMessage& message) {
    _seen.emplace_back(name, Plain(message.arguments().value(1)));
}

const std::pair<const char*, const char*> kPppFolders[] = {{"DIALTONE_PEERS_DIR", "peers"},
                                                          {"DIALTONE_PPP_RUN_DIR", "run"},
                                                          {"DIALTONE_NET_DIR", "net"},
                                                          {"DIALTONE_CHATSCRIPTS_DIR", "chatscripts"}};

bool WaitFor(const std::function<bool()>& cond, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < deadline) {
        if (cond())
            return true;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        std::this_thread::sleep_for(20ms);
    }
    return cond();
}

std::string WriteServicesDir(const std::string& dir, const std::string& arguments) {
    std::ofstream(dir + "/org.dialtone.Modem1.service")
        << "[D-BUS Service]\nName=org.dialtone.Modem1\nExec=" << DIALTONED << " " << arguments << "\n";
    return dir;
}

PrivateBus::PrivateBus(const std::string& servicesDir, const std::string& devDir, const std::string& home) {
    for (const auto& [variable, folder] : kPppFolders)
        fs::create_directories(home + "/ppp/" + folder);
    const std::string config = _files.path + "/bus.conf";
    std::ofstream(config)
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig>\n  <type>session</type>\n  <listen>unix:tmpdir=/tmp</listen>\n"
        << (servicesDir.empty() ? "" : "  <servicedir>" + servicesDir + "</servicedir>\n")
        << "  <policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>\n</busconfig>\n";
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        return;
    _pid = fork();
    if (_pid == 0) {
        // What the activated service sees: the simulator's ports, a scratch HOME, and pppd's folders and
        // the stand-in pppd under it (the service sets up the dial-up service once the modem is ready).
        setenv("DIALTONE_DEV_DIR", devDir.c_str(), 1);
        setenv("HOME", home.c_str(), 1);
        for (const char* xdg : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
            unsetenv(xdg);
        for (const auto& [variable, folder] : kPppFolders)
            setenv(variable, (home + "/ppp/" + folder).c_str(), 1);
        setenv("DIALTONE_PPPD", DIALTONE_FAKE_PPPD, 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        dup2(out[1], STDOUT_FILENO);
        // Its log (activations, the fd limit it may not raise) stays with the bus's files.
        const int log =
            open((_files.path + "/bus.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (log >= 0)
            dup2(log, STDERR_FILENO);
        execlp("dbus-daemon", "dbus-daemon", ("--config-file=" + config).c_str(), "--print-address",
               "--nofork", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(out[1]);
    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (_pid > 0 && line.find('\n') == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        pollfd poller{out[0], POLLIN, 0};
        if (poll(&poller, 1, 100) <= 0)
            continue;
        char buffer[256];
        const ssize_t n = read(out[0], buffer, sizeof buffer);
        if (n <= 0)
            break;
        line.append(buffer, static_cast<std::size_t>(n));
    }
    close(out[0]);
    if (line.find('\n') != std::string::npos)
        address = line.substr(0, line.find('\n'));
    EXPECT_FALSE(address.empty()) << "dbus-daemon printed no address";
}

PrivateBus::~PrivateBus() {
    leave();
    if (_pid > 0) {
        kill(_pid, SIGTERM);
        waitpid(_pid, nullptr, 0);
    }
}

QDBusConnection PrivateBus::connection() {
    static std::atomic<int> serial{0};
    if (_connectionName.isEmpty()) {
        _connectionName = QStringLiteral("servicetest-%1").arg(++serial);
        return QDBusConnection::connectToBus(QString::fromStdString(address), _connectionName);
    }
    return QDBusConnection(_connectionName);
}

void PrivateBus::leave() {
    if (_connectionName.isEmpty())
        return;
    QDBusConnection::disconnectFromBus(_connectionName);
    _connectionName.clear();
}

Child::Child(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    std::vector<std::string> command{"/usr/bin/env", "-u", "DIALTONE_DEV_DIR", "-u",
                                     "DBUS_SESSION_BUS_ADDRESS"};
    command.insert(command.end(), environment.begin(), environment.end());
    command.push_back(DIALTONE_CLI);
    command.insert(command.end(), arguments.begin(), arguments.end());
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (_files.path + "/out").c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (_files.path + "/err").c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    _pid = Spawn(command, &actions);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_GT(_pid, 0);
}

Child::~Child() {
    if (_pid > 0 && !_reaped) {
        kill(_pid, SIGKILL);
        waitpid(_pid, nullptr, 0);
    }
}

bool Child::running() {
    if (_pid <= 0 || _reaped)
        return false;
    if (waitpid(_pid, &_status, WNOHANG) == _pid)
        _reaped = true;
    return !_reaped;
}

std::string Child::output() const {
    return ReadFile(_files.path + "/out");
}

clitest::Outcome Child::finish(std::chrono::milliseconds limit) {
    if (!WaitFor([this] { return !running(); }, limit) && _pid > 0) {
        ADD_FAILURE() << "the tool did not end within " << limit.count() << " ms";
        kill(_pid, SIGKILL);
        waitpid(_pid, &_status, 0);
        _reaped = true;
    }
    clitest::Outcome outcome;
    outcome.status = _reaped && WIFEXITED(_status) ? WEXITSTATUS(_status) : -1;
    outcome.out = ReadFile(_files.path + "/out");
    outcome.err = ReadFile(_files.path + "/err");
    return outcome;
}

namespace {

std::string ServicesFor(const clitest::TempDir& dir, const std::string& serviceArguments) {
    return serviceArguments.empty() ? std::string(DIALTONE_SERVICES_DIR)
                                    : WriteServicesDir(dir.path, serviceArguments);
}

} // namespace

ServiceWorld::ServiceWorld(const std::string& serviceArguments)
    : bus(ServicesFor(services, serviceArguments), modem.devDir.path, modem.home.path) {}

ServiceWorld::~ServiceWorld() {
    bus.leave();
    // The bus started the service; it goes before the bus does.
    const pid_t pid = servicePid();
    if (pid > 0) {
        kill(pid, SIGKILL);
        waitForServiceExit(pid, 10s);
    }
}

std::vector<std::string> ServiceWorld::clientEnvironment() const {
    return {"HOME=" + modem.home.path, "DBUS_SESSION_BUS_ADDRESS=" + bus.address};
}

clitest::Outcome ServiceWorld::dialtone(const std::vector<std::string>& arguments) {
    return Child(arguments, clientEnvironment()).finish();
}

std::unique_ptr<Child> ServiceWorld::start(const std::vector<std::string>& arguments) {
    return std::make_unique<Child>(arguments, clientEnvironment());
}

pid_t ServiceWorld::servicePid() const {
    const fs::path program = fs::weakly_canonical(DIALTONED);
    const std::string marker = "DIALTONE_DEV_DIR=" + modem.devDir.path;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::error_code unreadable;
        if (fs::read_symlink(entry.path() / "exe", unreadable) != program)
            continue;
        std::istringstream environment(ReadFile((entry.path() / "environ").string()));
        for (std::string variable; std::getline(environment, variable, '\0');) {
            if (variable == marker)
                return static_cast<pid_t>(std::stoi(name));
        }
    }
    return -1;
}

bool ServiceWorld::waitForServiceExit(pid_t pid, std::chrono::milliseconds limit) const {
    return WaitFor([&] { return servicePid() != pid; }, limit);
}

QDBusMessage ServiceWorld::call(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kService, method);
    message.setArguments(arguments);
    return bus.connection().call(message, QDBus::Block, 60000);
}

bool ServiceWorld::listen(NotificationLog& log) {
    return bus.connection().connect(QString(), kPath, kService, QStringLiteral("Notification"), &log,
                                    SLOT(take(QString, QDBusMessage)));
}

QVariant ServiceWorld::property(const QString& name) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        kService, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << kService << name;
    const QDBusMessage reply = bus.connection().call(message, QDBus::Block, 60000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

} // namespace servicetest
