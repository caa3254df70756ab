#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <sys/types.h>

// One dial-up service and its connection: a pppd peer file (in /etc/ppp/peers, or DIALTONE_PEERS_DIR)
// that names the modem's dial port and a "linkname", and the pppd process that runs it.
//
// start() writes the dial options to a file of mode 0600 in the user's device data folder and runs
// "pppd call <service> file <options> nodetach", so the password is never on a command line. The state
// comes from that process (or, for a link started by an earlier run, the pid in the pid file) and from
// pppd's linkname pid file "<run dir>/ppp-<linkname>.pid", which holds the pid, then the interface name
// once the link is established. The byte counters are the interface's "statistics" folder.
//
// Folders and programs: DIALTONE_PPPD (/usr/sbin/pppd), DIALTONE_PEERS_DIR (/etc/ppp/peers),
// DIALTONE_PPP_RUN_DIR (/run), DIALTONE_NET_DIR (/sys/class/net), DIALTONE_CHATSCRIPTS_DIR (/etc/chatscripts).
// pppd runs in a session of its own: the link does not end with the terminal or the tool's process group.
class PPPConnection {
public:
    // Connection status values.
    enum { kInvalid = -1, kDisconnected = 0, kConnecting = 1, kConnected = 2, kDisconnecting = 3 };
    // pppd's phases, as far as they show from outside.
    enum {
        kPhaseDead = 0,
        kPhaseSerialConn = 2,
        kPhaseEstablish = 4,
        kPhaseRunning = 8,
        kPhaseTerminate = 9
    };

    // The connection for one peer, or nullptr when the peer file cannot be read or its name cannot be
    // used with "call".
    static std::unique_ptr<PPPConnection> create(const QString& serviceID);
    // Stops a pppd that this object started and is still running: the link does not outlive the program.
    ~PPPConnection();
    PPPConnection(const PPPConnection&) = delete;
    PPPConnection& operator=(const PPPConnection&) = delete;

    // Runs pppd with the options dictionary (keys below). False when a link is running already, the
    // options are unusable or pppd cannot start; the link itself comes up later, or not.
    bool start(const QVariantMap& options);
    // Ends the link with SIGTERM; true also when no link is running.
    bool stop();
    // Leaves a running link to itself: it is no longer ended when this object goes, and shows to later
    // runs through its pid file. The options file goes, since pppd read it when it started.
    void release();
    int status();
    // {"PPP": {"Status": phase, "ConnectTime": seconds since system start at which the link came up}}.
    QVariantMap extendedStatus();
    // {"PPP": {"BytesIn": n, "BytesOut": n}}; empty when the interface's counters cannot be read.
    QVariantMap statistics();

    QString serviceID() const { return _serviceID; }
    QString linkName() const { return _linkName; }
    QString optionsFilePath() const;
    pid_t pid() const { return _pid; }

    // The pppd options for a dictionary; false with nothing written when a value cannot be passed on.
    static bool optionsText(const QVariantMap& options, QByteArray& text);
    // Splits pppd option text into words: blanks separate, "#" starts a comment, quotes and backslash
    // escapes as pppd reads them.
    static QStringList tokenizeOptions(const QByteArray& text);
    // Shows the dictionary for the log, with the password hidden.
    static QString describe(const QVariantMap& options);

    static QString pppdPath();
    static QString peersDir();
    static QString runDir();
    static QString netDir();
    static quint32 secondsSinceSystemStart();

private:
    PPPConnection(const QString& serviceID, const QString& linkName);

    void reapChild();
    // The running pppd: our child, or the pid in the pid file. 0 when none runs.
    pid_t runningPid(QString* interfaceName = nullptr);
    bool interfaceUp(const QString& interfaceName) const;
    void removeOptionsFile() const;

    QString _serviceID;
    QString _linkName;
    pid_t _pid = -1; // the pppd we started
    bool _stopping = false;
};

// Keys of the options dictionary handed to PPPConnection::start.
namespace PPPOption {
inline constexpr char kPPP[] = "PPP";
inline constexpr char kModem[] = "Modem";
inline constexpr char kDNS[] = "DNS";
inline constexpr char kAuthName[] = "AuthName";
inline constexpr char kAuthPassword[] = "AuthPassword";
inline constexpr char kCommRemoteAddress[] = "CommRemoteAddress";
inline constexpr char kDisconnectOnIdle[] = "DisconnectOnIdle";
inline constexpr char kDisconnectOnIdleTimer[] = "DisconnectOnIdleTimer";
inline constexpr char kLCPEchoInterval[] = "LCPEchoInterval";
inline constexpr char kLCPEchoFailure[] = "LCPEchoFailure";
inline constexpr char kAuthProtocol[] = "AuthProtocol";
inline constexpr char kAuthProtocolPAP[] = "PAP";
inline constexpr char kAuthProtocolCHAP[] = "CHAP";
inline constexpr char kConnectionScript[] = "ConnectionScript";
inline constexpr char kServerAddresses[] = "ServerAddresses";
} // namespace PPPOption
