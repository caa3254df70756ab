#pragma once

#include "../device/TestWorld.h"
#include "ChildProcess.h"
#include "NetworkOperator.h"
#include "PtyPeer.h"
#include "ResourceLocator.h"

#include <QDirIterator>
#include <QFileInfo>

#include <string>

// Empty when TUN byte counters can be tested, else why not (set by main).
extern std::string g_tunUnavailable;

// A dial-up world: temporary HOME, device, peers, pid-file and interface folders; the stand-in pppd; the
// modem's dial port as a pty peer linked as cu.VELMobileConnector1; its peer file made by the service
// tool.
class DialWorld : public TempWorld {
public:
    static constexpr char kDevice[] = "VELMobileConnector1";
    static constexpr char kService[] = "VELMODEM1";

    explicit DialWorld(bool realInterfaces = false) {
        QDir().mkpath(peers());
        QDir().mkpath(path("run"));
        env.set("DIALTONE_PEERS_DIR", peers());
        env.set("DIALTONE_PPP_RUN_DIR", path("run"));
        env.set("DIALTONE_PPPD", DIALTONE_FAKE_PPPD);
        QDir().mkpath(net());
        env.set("DIALTONE_FAKE_PPPD_TUN", realInterfaces ? "1" : "0");
        env.set("DIALTONE_NET_DIR", realInterfaces ? QString("/sys/class/net") : net());
        QFile::link(QString::fromStdString(modem.slavePath()), dev() + "/cu." + kDevice);
    }

    QString peers() const { return path("peers"); }
    QString net() const { return path("net"); }
    QString pidFile() const { return path("run") + "/ppp-" + kService + ".pid"; }

    // Runs the service tool from the resources: its exit status.
    static int createService(const QString& device = kDevice, const QString& service = kService) {
        return ChildProcess::run(ResourceLocator::resourcePath("VELModemService"), {device, service}, 10000);
    }

    // The modem's side of the chat script; the dial is answered by connect().
    void scriptModem() {
        modem.expect("AT\r", "\r\nOK\r\n");
        modem.expect("ATE0\r", "\r\nOK\r\n");
        modem.setHandler([](const std::string&) { return PtyPeer::Answer{}; });
    }
    bool waitForDial() { return modem.waitForCommands(3, std::chrono::seconds(10)); }
    void connect() { modem.writeUnsolicited("\r\nCONNECT 7200000\r\n"); }

    void setCounters(quint64 rx, quint64 tx) {
        writeFile(net() + "/ppp0/statistics/rx_bytes", QByteArray::number(rx) + "\n");
        writeFile(net() + "/ppp0/statistics/tx_bytes", QByteArray::number(tx) + "\n");
    }

    PtyPeer modem;
};

// The dial-up object with a clock the test sets.
class ClockedNetworkOperator : public NetworkOperator {
public:
    using NetworkOperator::NetworkOperator;
    quint32 now = PPPConnection::secondsSinceSystemStart() + 100;

protected:
    quint32 secondsSinceStart() const override { return now; }
};

// Every process's command line, to look for a secret in.
inline QByteArray allCommandLines() {
    QByteArray all;
    for (QDirIterator it("/proc", {"[0-9]*"}, QDir::Dirs); it.hasNext();)
        all += TempWorld::readFile(it.next() + "/cmdline") + '\n';
    return all;
}

inline BLConnectDialinfo dialInfo(int authType = 0, const QString& dns1 = {}, const QString& dns2 = {}) {
    return {"*99#", "web", "s3cret-Pa55", "internet", dns1, dns2, authType};
}
