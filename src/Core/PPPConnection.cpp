#include "PPPConnection.h"

#include "CNSLog.h"
#include "ChildProcess.h"
#include "ResourceLocator.h"
#include "UserDataFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace {

QString fromEnvironment(const char* variable, const char* fallback) {
    const QString value = qEnvironmentVariable(variable);
    return value.isEmpty() ? QString::fromLatin1(fallback) : QDir::cleanPath(value);
}

// A file of pppd's or the kernel's, read with a bound: these are outside input.
QByteArray readSmallFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.read(256);
}

bool validName(const QString& name) {
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z0-9_][A-Za-z0-9_.-]{0,63}$"));
    return pattern.match(name).hasMatch();
}

bool hasControlCharacters(const QString& text) {
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7f) {
            return true;
        }
    }
    return false;
}

// A pppd quoted word: backslash and double quote escaped.
QByteArray quoted(const QString& text) {
    QByteArray out = "\"";
    for (const char c : text.toUtf8()) {
        if (c == '\\' || c == '"') {
            out += '\\';
        }
        out += c;
    }
    return out + '"';
}

// A word for the shell that pppd runs the connect script with.
QString shellQuoted(const QString& text) {
    QString inner = text;
    return '\'' + inner.replace('\'', QStringLiteral("'\\''")) + '\'';
}

pid_t pidAlive(pid_t pid) {
    return pid > 0 && (kill(pid, 0) == 0 || errno == EPERM) ? pid : 0;
}

} // namespace

std::unique_ptr<PPPConnection> PPPConnection::create(const QString& serviceID) {
    if (!validName(serviceID)) {
        return nullptr;
    }
    QFile peer(peersDir() + '/' + serviceID);
    if (!peer.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    const QStringList words = tokenizeOptions(peer.read(64 * 1024));
    QString linkName;
    const qsizetype at = words.indexOf(QStringLiteral("linkname"));
    if (at >= 0 && at + 1 < words.size() && validName(words[at + 1])) {
        linkName = words[at + 1];
    }
    return std::unique_ptr<PPPConnection>(new PPPConnection(serviceID, linkName));
}

PPPConnection::PPPConnection(const QString& serviceID, const QString& linkName)
    : _serviceID(serviceID), _linkName(linkName) {}

PPPConnection::~PPPConnection() {
    reapChild();
    if (_pid > 0) {
        kill(_pid, SIGTERM);
        int exitStatus = 0;
        for (int i = 0; i < 300 && !ChildProcess::reap(_pid, exitStatus); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        removeOptionsFile();
    }
}

QString PPPConnection::pppdPath() {
    return fromEnvironment("DIALTONE_PPPD", "/usr/sbin/pppd");
}

QString PPPConnection::peersDir() {
    return fromEnvironment("DIALTONE_PEERS_DIR", "/etc/ppp/peers");
}

QString PPPConnection::runDir() {
    return fromEnvironment("DIALTONE_PPP_RUN_DIR", "/run");
}

QString PPPConnection::netDir() {
    return fromEnvironment("DIALTONE_NET_DIR", "/sys/class/net");
}

quint32 PPPConnection::secondsSinceSystemStart() {
    using Ticks = std::chrono::duration<qint64, std::ratio<1, 60>>;
    const qint64 ticks =
        std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch()).count();
    return static_cast<quint32>(ticks / 60);
}

QString PPPConnection::optionsFilePath() const {
    return UserDataFolder::dataPath() + '/' + _serviceID + QStringLiteral(".options");
}

void PPPConnection::removeOptionsFile() const {
    QFile::remove(optionsFilePath());
}

bool PPPConnection::optionsText(const QVariantMap& options, QByteArray& text) {
    using namespace PPPOption;
    const QVariantMap ppp = options.value(kPPP).toMap();
    const QVariantMap modem = options.value(kModem).toMap();
    const QString number = ppp.value(kCommRemoteAddress).toString();
    const QString account = ppp.value(kAuthName).toString();
    const QString password = ppp.value(kAuthPassword).toString();
    // A dial string: digits, "*", "#", "+" and the dialling modifiers; nothing the chat script or the
    // shell could read as more.
    static const QRegularExpression dialString(QStringLiteral("^[0-9*#+,;pPwWtT!@]{1,40}$"));
    if (!dialString.match(number).hasMatch() || hasControlCharacters(account) ||
        hasControlCharacters(password)) {
        return false;
    }
    const QString script = modem.value(kConnectionScript).toString();
    if (!validName(script)) {
        return false;
    }

    // The service tool's copy beside the system's chat scripts, when there is one: only root can change it.
    // Moved peers come with their own chat scripts folder, or none.
    const QString scripts = qEnvironmentVariableIsEmpty("DIALTONE_PEERS_DIR")
                                ? fromEnvironment("DIALTONE_CHATSCRIPTS_DIR", "/etc/chatscripts")
                                : qEnvironmentVariable("DIALTONE_CHATSCRIPTS_DIR");
    QString scriptPath = scripts + '/' + script;
    if (scripts.isEmpty() || !QFileInfo(scriptPath).isFile()) {
        scriptPath = ResourceLocator::resourcePath(script);
    }
    QByteArray out = "# Options of one dial, read by pppd with \"file\". Mode 0600: it holds the password.\n";
    out +=
        "connect " +
        quoted(
            QStringLiteral("/usr/sbin/chat -f %1 -T %2").arg(shellQuoted(scriptPath), shellQuoted(number))) +
        '\n';
    if (!account.isEmpty()) {
        out += "user " + quoted(account) + '\n';
    }
    if (!password.isEmpty()) {
        out += "password " + quoted(password) + '\n';
    }
    if (ppp.value(kDisconnectOnIdle).toInt() != 0) {
        out += "idle " + QByteArray::number(ppp.value(kDisconnectOnIdleTimer).toInt()) + '\n';
    } else {
        out += "# no idle disconnect; its timer (" +
               QByteArray::number(ppp.value(kDisconnectOnIdleTimer).toInt()) + " s) stays unused\n";
    }
    out += "lcp-echo-interval " + QByteArray::number(ppp.value(kLCPEchoInterval).toInt()) + '\n';
    out += "lcp-echo-failure " + QByteArray::number(ppp.value(kLCPEchoFailure).toInt()) + '\n';
    const QStringList protocols = ppp.value(kAuthProtocol).toStringList();
    if (protocols == QStringList{kAuthProtocolPAP}) {
        out += "refuse-chap\nrefuse-mschap\nrefuse-mschap-v2\nrefuse-eap\n";
    } else if (protocols == QStringList{kAuthProtocolCHAP}) {
        out += "refuse-pap\nrefuse-eap\n";
    }
    if (options.contains(kDNS)) {
        static const QRegularExpression address(QStringLiteral("^[0-9A-Fa-f.:]{2,45}$"));
        const QStringList servers = options.value(kDNS).toMap().value(kServerAddresses).toStringList();
        for (const QString& server : servers) {
            if (!address.match(server).hasMatch()) {
                return false;
            }
        }
        // pppd has no option for the client's own name servers: the ip-up scripts get them as ipparam.
        out += "ipparam " + quoted(QStringLiteral("DNS=") + servers.join(',')) + '\n';
    } else {
        out += "usepeerdns\n";
    }
    text = out;
    return true;
}

QString PPPConnection::describe(const QVariantMap& options) {
    QStringList lines;
    for (auto group = options.cbegin(); group != options.cend(); ++group) {
        lines << group.key() + QStringLiteral(" = {");
        const QVariantMap entries = group.value().toMap();
        for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
            QString value = entry.value().typeId() == QMetaType::QStringList
                                ? '(' + entry.value().toStringList().join(QStringLiteral(", ")) + ')'
                                : entry.value().toString();
            if (entry.key() == QLatin1String(PPPOption::kAuthPassword)) {
                value = QStringLiteral("********");
            }
            lines << QStringLiteral("    %1 = %2;").arg(entry.key(), value);
        }
        lines << QStringLiteral("};");
    }
    return lines.join('\n');
}

bool PPPConnection::start(const QVariantMap& options) {
    if (runningPid() > 0) {
        return false;
    }
    if (qEnvironmentVariableIsEmpty("DIALTONE_PPPD") && peersDir() != QLatin1String("/etc/ppp/peers")) {
        // "call" reads /etc/ppp/peers only: the system's peer of that name could be another modem's.
        CNSLOG(2, "pppd cannot dial a peer in %s; DIALTONE_PPPD names one that can", qPrintable(peersDir()));
        return false;
    }
    QByteArray text;
    if (!optionsText(options, text)) {
        CNSLOG(2, "dial options cannot be passed to pppd");
        return false;
    }
    const QString path = optionsFilePath();
    const QByteArray nativePath = QFile::encodeName(path);
    unlink(nativePath.constData());
    const int fd = open(nativePath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) {
        CNSLOG(2, "cannot write %s", qPrintable(path));
        return false;
    }
    const bool written = write(fd, text.constData(), text.size()) == text.size();
    close(fd);
    if (!written) {
        removeOptionsFile();
        return false;
    }
    _pid = ChildProcess::spawnInOwnSession(
        pppdPath(),
        {QStringLiteral("call"), _serviceID, QStringLiteral("file"), path, QStringLiteral("nodetach")});
    _stopping = false;
    if (_pid < 0) {
        removeOptionsFile();
        return false;
    }
    return true;
}

bool PPPConnection::stop() {
    const pid_t pid = runningPid();
    if (pid <= 0) {
        return true;
    }
    if (kill(pid, SIGTERM) != 0) {
        return false;
    }
    _stopping = true;
    return true;
}

void PPPConnection::release() {
    reapChild();
    if (_pid > 0) {
        removeOptionsFile();
        _pid = -1;
    }
}

void PPPConnection::reapChild() {
    int exitStatus = 0;
    if (_pid > 0 && ChildProcess::reap(_pid, exitStatus)) {
        // pppd's exit codes: 5 stopped by a signal, 8 connect script failed, 15 peer dead, 16 hang-up.
        CNSLOG(0, "pppd for %s exited with status %d", qPrintable(_serviceID), exitStatus);
        _pid = -1;
        removeOptionsFile();
    }
}

pid_t PPPConnection::runningPid(QString* interfaceName) {
    reapChild();
    QList<QByteArray> lines;
    if (!_linkName.isEmpty()) {
        lines = readSmallFile(runDir() + QStringLiteral("/ppp-") + _linkName + QStringLiteral(".pid"))
                    .split('\n');
    }
    pid_t pid = _pid > 0 ? _pid : 0;
    if (pid == 0 && !lines.isEmpty()) {
        bool ok = false;
        const int recorded = lines[0].trimmed().toInt(&ok);
        pid = ok ? pidAlive(recorded) : 0;
    }
    if (pid > 0 && interfaceName != nullptr && lines.size() > 1 && lines[0].trimmed().toInt() == pid) {
        const QString name = QString::fromLatin1(lines[1].trimmed());
        if (validName(name) && name.size() <= 15) {
            *interfaceName = name;
        }
    }
    return pid;
}

bool PPPConnection::interfaceUp(const QString& interfaceName) const {
    if (interfaceName.isEmpty()) {
        return false;
    }
    bool ok = false;
    const uint flags =
        readSmallFile(netDir() + '/' + interfaceName + QStringLiteral("/flags")).trimmed().toUInt(&ok, 16);
    return ok && (flags & 0x1) != 0; // IFF_UP
}

int PPPConnection::status() {
    QString interfaceName;
    if (runningPid(&interfaceName) <= 0) {
        _stopping = false;
        return kDisconnected;
    }
    if (_stopping) {
        return kDisconnecting;
    }
    return interfaceUp(interfaceName) ? kConnected : kConnecting;
}

QVariantMap PPPConnection::extendedStatus() {
    QString interfaceName;
    QVariantMap ppp;
    if (runningPid(&interfaceName) <= 0) {
        _stopping = false;
        ppp.insert(QStringLiteral("Status"), static_cast<int>(kPhaseDead));
    } else if (_stopping) {
        ppp.insert(QStringLiteral("Status"), static_cast<int>(kPhaseTerminate));
    } else if (interfaceUp(interfaceName)) {
        ppp.insert(QStringLiteral("Status"), static_cast<int>(kPhaseRunning));
        // The pid file is written last when the link is established: its age tells since when it is up.
        const QFileInfo pidFile(runDir() + QStringLiteral("/ppp-") + _linkName + QStringLiteral(".pid"));
        const qint64 age = pidFile.lastModified().secsTo(QDateTime::currentDateTime());
        const qint64 since = static_cast<qint64>(secondsSinceSystemStart()) - qMax<qint64>(age, 0);
        if (since > 0) {
            ppp.insert(QStringLiteral("ConnectTime"), static_cast<quint32>(since));
        }
    } else {
        ppp.insert(QStringLiteral("Status"),
                   static_cast<int>(interfaceName.isEmpty() ? kPhaseSerialConn : kPhaseEstablish));
    }
    return {{QStringLiteral("PPP"), ppp}};
}

QVariantMap PPPConnection::statistics() {
    QString interfaceName;
    if (runningPid(&interfaceName) <= 0 || interfaceName.isEmpty()) {
        return {};
    }
    const QString folder = netDir() + '/' + interfaceName + QStringLiteral("/statistics/");
    bool inOk = false;
    bool outOk = false;
    const quint64 bytesIn = readSmallFile(folder + QStringLiteral("rx_bytes")).trimmed().toULongLong(&inOk);
    const quint64 bytesOut = readSmallFile(folder + QStringLiteral("tx_bytes")).trimmed().toULongLong(&outOk);
    if (!inOk || !outOk) {
        return {};
    }
    QVariantMap ppp{{QStringLiteral("BytesIn"), bytesIn}, {QStringLiteral("BytesOut"), bytesOut}};
    return {{QStringLiteral("PPP"), ppp}};
}

QStringList PPPConnection::tokenizeOptions(const QByteArray& text) {
    QStringList words;
    qsizetype i = 0;
    const qsizetype n = text.size();
    auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    while (i < n) {
        while (i < n && isBlank(text[i])) {
            ++i;
        }
        if (i >= n) {
            break;
        }
        if (text[i] == '#') {
            while (i < n && text[i] != '\n') {
                ++i;
            }
            continue;
        }
        QByteArray word;
        char quote = 0;
        while (i < n && (quote != 0 || !isBlank(text[i]))) {
            const char c = text[i++];
            if (quote == 0 && (c == '"' || c == '\'')) {
                quote = c;
            } else if (c == quote) {
                quote = 0;
            } else if (c == '\\' && i < n) {
                const char escaped = text[i++];
                switch (escaped) {
                case 'n':
                    word += '\n';
                    break;
                case 't':
                    word += '\t';
                    break;
                case 'r':
                    word += '\r';
                    break;
                case 's':
                    word += ' ';
                    break;
                case '\n':
                    break; // a line continues
                default:
                    word += escaped;
                    break;
                }
            } else {
                word += c;
            }
        }
        words << QString::fromUtf8(word);
    }
    return words;
}
