#include "ServiceWorld.h"

#include <signal.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusVariant>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

namespace servicetest {

namespace fs = std::filesystem;

namespace {

const QString kService = QStringLiteral("org.dialtone.Modem1");
const QString kPath = QStringLiteral("/org/dialtone/Modem1");

// The environment of this process with the variables ("NAME=value") set and the names removed.
QProcessEnvironment Environment(const std::vector<std::string>& variables,
                                std::initializer_list<const char*> removed) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : removed)
        environment.remove(name);
    for (const std::string& variable : variables) {
        const std::size_t equals = variable.find('=');
        environment.insert(QString::fromStdString(variable.substr(0, equals)),
                           QString::fromStdString(variable.substr(equals + 1)));
    }
    return environment;
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

PrivateBus::PrivateBus(const std::string& servicesDir, const std::string& devDir, const std::string& home) {
    const std::string config = _files.path + "/bus.conf";
    std::ofstream(config)
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig>\n  <type>session</type>\n  <listen>unix:tmpdir=/tmp</listen>\n"
        << (servicesDir.empty() ? "" : "  <servicedir>" + servicesDir + "</servicedir>\n")
        << "  <policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>\n</busconfig>\n";
    // The service sets up the dial-up service once the modem is ready, with the stand-in pppd.
    std::vector<std::string> variables{"DIALTONE_DEV_DIR=" + devDir, "HOME=" + home,
                                       std::string("DIALTONE_PPPD=") + DIALTONE_FAKE_PPPD};
    const std::pair<const char*, const char*> pppFolders[] = {
        {"PEERS", "peers"}, {"PPP_RUN", "run"}, {"NET", "net"}, {"CHATSCRIPTS", "chatscripts"}};
    for (const auto& [variable, folder] : pppFolders) {
        fs::create_directories(home + "/ppp/" + folder);
        variables.push_back("DIALTONE_" + std::string(variable) + "_DIR=" + home + "/ppp/" + folder);
    }
    _daemon.setProcessEnvironment(Environment(
        variables, {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "DBUS_SESSION_BUS_ADDRESS"}));
    // Its log (activations, the fd limit it may not raise) stays with the bus's files.
    _daemon.setStandardErrorFile(QString::fromStdString(_files.path + "/bus.log"));
    _daemon.start(QStringLiteral("dbus-daemon"),
                  {QString::fromStdString("--config-file=" + config), QStringLiteral("--print-address"),
                   QStringLiteral("--nofork")});
    while (_daemon.waitForStarted() && !_daemon.canReadLine() && _daemon.waitForReadyRead(10000)) {
    }
    address = _daemon.readLine().trimmed().toStdString();
    EXPECT_FALSE(address.empty()) << "dbus-daemon printed no address";
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
    _process.setProcessEnvironment(
        Environment(environment, {"DIALTONE_DEV_DIR", "DBUS_SESSION_BUS_ADDRESS"}));
    _process.setStandardInputFile(QProcess::nullDevice());
    QStringList list;
    for (const std::string& argument : arguments)
        list << QString::fromStdString(argument);
    _process.start(QStringLiteral(DIALTONE_CLI), list);
    EXPECT_TRUE(_process.waitForStarted());
    _pid = static_cast<pid_t>(_process.processId());
}

std::string Child::output() {
    _out += _process.readAllStandardOutput().toStdString();
    return _out;
}

clitest::Outcome Child::finish(std::chrono::milliseconds limit) {
    if (!WaitFor([this] { return _process.state() == QProcess::NotRunning; }, limit)) {
        ADD_FAILURE() << "the tool did not end within " << limit.count() << " ms";
        _process.kill();
        _process.waitForFinished();
    }
    const bool exited =
        _process.exitStatus() == QProcess::NormalExit && _process.error() != QProcess::FailedToStart;
    return {exited ? _process.exitCode() : -1, output(), _process.readAllStandardError().toStdString()};
}

// The build's own activation file, or one in dir that starts the service with the arguments.
static std::string ServicesDir(const std::string& dir, const std::string& arguments) {
    if (arguments.empty())
        return DIALTONE_SERVICES_DIR;
    std::ofstream(dir + "/org.dialtone.Modem1.service")
        << "[D-BUS Service]\nName=org.dialtone.Modem1\nExec=" << DIALTONED << " " << arguments << "\n";
    return dir;
}

ServiceWorld::ServiceWorld(const std::string& serviceArguments)
    : bus(ServicesDir(services.path, serviceArguments), modem.devDir.path, modem.home.path) {}

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
        std::istringstream environment(clitest::ReadFile((entry.path() / "environ").string()));
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

bool ServiceWorld::becomes(const QString& name, const QVariant& value, std::chrono::milliseconds limit) {
    return WaitFor([&] { return property(name) == value; }, limit);
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
