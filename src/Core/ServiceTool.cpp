#include "ServiceTool.h"

#include "ChildProcess.h"
#include "DialupPeer.h"
#include "PPPConnection.h"
#include "ResourceLocator.h"
#include "UserDefaults.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <set>
#include <unistd.h>

namespace ServiceTool {

namespace {

constexpr int kToolTimeoutMs = 30000;
// pkexec waits while the user types the password.
constexpr int kPkexecTimeoutMs = 5 * 60 * 1000;

// The user's service count is kept for the system's peers only: a simulated modem's or a test's folder
// must not move the user's numbers.
bool systemPeers() {
    return PPPConnection::peersDir() == QLatin1String("/etc/ppp/peers");
}

} // namespace

QString pkexecPath() {
    const QString replacement = qEnvironmentVariable("DIALTONE_PKEXEC");
    return replacement.isEmpty() ? QStandardPaths::findExecutable(QStringLiteral("pkexec")) : replacement;
}

bool needsPrivilege() {
    const QFileInfo folder(PPPConnection::peersDir());
    return folder.isDir() && access(QFile::encodeName(folder.filePath()).constData(), W_OK) != 0;
}

Outcome create(const QString& modemDeviceName, const std::function<void(const QString&)>& echo) {
    Outcome outcome;
    const std::string peers = QFile::encodeName(PPPConnection::peersDir()).toStdString();
    const int preferred = UserDefaults::value(QLatin1String(kCreatedModemNumberKey), 0).toInt() + 1;
    const QString tool = ResourceLocator::resourcePath(QLatin1String(kToolName));
    outcome.throughPkexec = needsPrivilege();
    std::set<int> skip;
    for (int attempt = 0; attempt < 5; ++attempt) {
        {
            const DialupPeer::FolderLock lock(peers);
            outcome.service = QString::fromStdString(DialupPeer::choose(peers, getuid(), preferred, skip));
        }
        if (outcome.service.isEmpty()) {
            return outcome;
        }
        echo(QStringLiteral("%1\"%2/\"%3 %4 %5")
                 .arg(outcome.throughPkexec ? pkexecPath() + ' ' : QString(), ResourceLocator::resourceDir(),
                      QLatin1String(kToolName), modemDeviceName, outcome.service));
        // The arguments go to the tool as they are, never through a shell.
        const int status =
            outcome.throughPkexec
                ? ChildProcess::run(pkexecPath(), {tool, modemDeviceName, outcome.service}, kPkexecTimeoutMs)
                : ChildProcess::run(tool, {modemDeviceName, outcome.service}, kToolTimeoutMs);
        outcome.status = status < 0 ? 1 : status;
        if (outcome.status != kNotYours) {
            break;
        }
        skip.insert(DialupPeer::numberOf(outcome.service.toStdString()));
    }
    if (outcome.status == 0 && systemPeers()) {
        UserDefaults::setValue(QLatin1String(kCreatedModemNumberKey),
                               DialupPeer::numberOf(outcome.service.toStdString()));
    }
    return outcome;
}

} // namespace ServiceTool
