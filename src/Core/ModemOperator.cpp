#include "ModemOperator.h"

#include "CNSLog.h"
#include "DeviceUtility.h"
#include "DialupPeer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

ModemOperator::ModemOperator() : _pref(PPPConnection::peersDir()) {}

ModemOperator::ModemOperator(const QString& modemDeviceName) : ModemOperator() {
    _strDeviceName = modemDeviceName;
}

ModemOperator::~ModemOperator() = default;

int ModemOperator::initModem() {
    CNSLOG(4, "in initModem");
    if (_strDeviceName.isEmpty()) {
        return 8;
    }
    _pref = PPPConnection::peersDir();

    // A link name ("VELMobileConnector1" for <device folder>/cu.VELMobileConnector1), or the path of a
    // port found by probing ("/dev/ttyUSB2").
    const bool probedPath = _strDeviceName.startsWith('/');
    const QString node =
        probedPath ? _strDeviceName : DeviceUtility::deviceDir() + QStringLiteral("/cu.") + _strDeviceName;
    if ((!probedPath && _strDeviceName.contains('/')) || !QFileInfo::exists(node)) {
        return 1;
    }
    _interfaceModem = node;

    // pppd takes a bare name as one under /dev.
    QStringList names{node};
    if (!probedPath && DeviceUtility::deviceDir() == QLatin1String("/dev")) {
        names << QStringLiteral("cu.") + _strDeviceName;
    }
    const QStringList peers = QDir(_pref).entryList(QDir::Files | QDir::Readable, QDir::Name);
    for (const QString& peer : peers) {
        QFile file(_pref + '/' + peer);
        if (peer.endsWith('~') || !file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QByteArray text = file.read(64 * 1024);
        // A peer made for another user of this machine is theirs, even on this modem.
        const long owner = DialupPeer::ownerOf(text.left(4096).toStdString());
        if (owner >= 0 && owner != static_cast<long>(getuid())) {
            continue;
        }
        const QStringList words = PPPConnection::tokenizeOptions(text);
        bool onModem = false;
        for (const QString& name : names) {
            onModem = onModem || words.contains(name);
        }
        if (!onModem) {
            continue;
        }
        if (_connectionModem && _connectionModem->serviceID() == peer) {
            // Asked again while a link may run: keep the connection that started it.
            return 0;
        }
        std::unique_ptr<PPPConnection> connection = PPPConnection::create(peer);
        if (connection) {
            _serviceModem = peer;
            _connectionModem = std::move(connection);
            return 0;
        }
    }
    return 2;
}

QVariantMap ModemOperator::dialOptions(const BLConnectDialinfo& dialInfo) {
    using namespace PPPOption;
    QStringList dnsList;
    if (!dialInfo.strDNS1.isEmpty() || !dialInfo.strDNS2.isEmpty()) {
        for (const QString& dns : {dialInfo.strDNS1, dialInfo.strDNS2}) {
            if (!dns.isEmpty()) {
                dnsList << dns;
            }
        }
    }
    // The idle timer is set although idle disconnection is off; both are kept so.
    QVariantMap ppp{
        {kAuthName, dialInfo.strAccountName},
        {kAuthPassword, dialInfo.strPassword},
        {kCommRemoteAddress, dialInfo.strDialNumber},
        {kDisconnectOnIdle, 0},
        {kDisconnectOnIdleTimer, 5400},
        {kLCPEchoInterval, 20},
        {kLCPEchoFailure, 15},
    };
    if (dialInfo.authType == 1) {
        ppp.insert(kAuthProtocol, QStringList{kAuthProtocolPAP});
    } else if (dialInfo.authType == 2) {
        ppp.insert(kAuthProtocol, QStringList{kAuthProtocolCHAP});
    }
    QVariantMap options{
        {kPPP, ppp},
        {kModem, QVariantMap{{kConnectionScript, QString::fromLatin1(kModemScript)}}},
    };
    if (!dnsList.isEmpty()) {
        options.insert(kDNS, QVariantMap{{kServerAddresses, dnsList}});
    }
    return options;
}

int ModemOperator::dialByDialInfo(const BLConnectDialinfo& dialInfo) {
    CNSLOG(4, "in dialByNumber");
    if (!_connectionModem) {
        return 3;
    }
    const QVariantMap options = dialOptions(dialInfo);
    if (options.contains(PPPOption::kDNS)) {
        CNSLOG(0, "DSN \n%s",
               qPrintable(options.value(PPPOption::kDNS)
                              .toMap()
                              .value(PPPOption::kServerAddresses)
                              .toStringList()
                              .join(QStringLiteral(", "))));
    }
    CNSLOG(0, "START DIAL!! \n%s", qPrintable(PPPConnection::describe(options)));
    if (!_connectionModem->start(options)) {
        CNSLOG(0, "Failed connect");
        return 4;
    }
    return 0;
}

int ModemOperator::disconnectNetwork() {
    CNSLOG(4, "%s", __func__);
    if (!_connectionModem) {
        return 3;
    }
    CNSLOG(4, "network connect begin Stop");
    if (_connectionModem->stop()) {
        return 0;
    }
    CNSLOG(2, "ERR_MODEM_FAIL_DISCONNECT");
    return 5;
}

void ModemOperator::releaseConnection() {
    if (_connectionModem) {
        _connectionModem->release();
    }
}

int ModemOperator::onApplicationClosed() {
    CNSLOG(4, "in dialByNumber");
    if (!_connectionModem) {
        return 3;
    }
    if (_connectionModem->status() == PPPConnection::kConnected && !_connectionModem->stop()) {
        CNSLOG(2, "connection stop faild!!");
    }
    _connectionModem.reset();
    _serviceModem.clear();
    _interfaceModem.clear();
    return 0;
}
