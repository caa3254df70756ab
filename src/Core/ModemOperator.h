#pragma once

#include "ConnectRecords.h"
#include "PPPConnection.h"

#include <QString>

#include <memory>

// Makes and breaks the packet-data connection through pppd. It speaks neither PPP nor AT itself.
//
// The modem's "network interface" is its dial port's device node ("<device folder>/cu.<device name>");
// its "PPP service" is the first pppd peer file, in name order, that names that node and was not made for
// another user (the service tool "VELModemService" writes one); the connection object runs pppd for it.
// Result codes: 0 success, 1 no device node for the name, 2 no peer file for it, 3 no connection
// (initModem has not succeeded), 4 the connection could not be started, 5 it could not be stopped, 8 no
// device name. Runs on the worker thread only.
class ModemOperator {
public:
    // The modem script, in the application's resources; chat runs it with the dial number.
    static constexpr char kModemScript[] = "VEL_HSPA_Modem";

    ModemOperator();
    // The device name is the dial port's entry name without its "cu." ("VELMobileConnector1"), or the
    // path of a dial port found by probing ("/dev/ttyUSB0").
    explicit ModemOperator(const QString& modemDeviceName);
    ~ModemOperator();
    ModemOperator(const ModemOperator&) = delete;
    ModemOperator& operator=(const ModemOperator&) = delete;

    int initModem();
    // Starts dialling; whether the link comes up shows later in the connection's status.
    int dialByDialInfo(const BLConnectDialinfo& dialInfo);
    int disconnectNetwork();
    // Ends a connected link and forgets interface, service and connection.
    int onApplicationClosed();
    // Leaves a running link up when this object goes (see PPPConnection::release).
    void releaseConnection();

    PPPConnection* connection() const { return _connectionModem.get(); }
    bool isConnected() const { return _connectionModem != nullptr; }
    QString modemDeviceName() const { return _strDeviceName; }

    // The options dictionary for a dial (entries "PPP", "Modem" and, with name servers, "DNS").
    static QVariantMap dialOptions(const BLConnectDialinfo& dialInfo);

private:
    QString _pref; // the peers folder as last read
    QString _interfaceModem;
    QString _serviceModem;
    std::unique_ptr<PPPConnection> _connectionModem;
    QString _strDeviceName;
};
