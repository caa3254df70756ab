#pragma once

#include "ModemOperator.h"

#include <QString>

#include <cstdint>
#include <memory>

// One sample of the link's counters. Rates are in bytes per second.
struct ConnectStatisticsInfo {
    uint32_t nDurationSeconds = 0;
    uint32_t nSentBytes = 0;
    uint32_t nReceivedBytes = 0;
    uint32_t nSentBPS = 0;
    uint32_t nReceivedBPS = 0;
    uint32_t nMaxSentBPS = 0;
    uint32_t nMaxReceivedBPS = 0;
};

// The worker's dial-up object: owns a ModemOperator, forwards to it, and keeps the connection time and
// the rates. Counting starts on the first poll that sees the link up (connectStatus 2 or pppStatus 8)
// and ends on the first connectStatus poll that sees 0. Times are seconds since system start, so the
// duration of a link that outlives a restart of the program still counts from when the link came up.
// Runs on the worker thread only.
class NetworkOperator {
public:
    explicit NetworkOperator(const QString& modemDevName);
    virtual ~NetworkOperator();
    NetworkOperator(const NetworkOperator&) = delete;
    NetworkOperator& operator=(const NetworkOperator&) = delete;

    int initModem() { return _modemOperator->initModem(); }
    int dialByDialInfo(const BLConnectDialinfo& dialInfo) { return _modemOperator->dialByDialInfo(dialInfo); }
    int disconnectNetwork() { return _modemOperator->disconnectNetwork(); }
    QString getModemDeviceName() const { return _modemOperator->modemDeviceName(); }
    bool isConnected() const { return _modemOperator->isConnected(); }
    ModemOperator& modemOperator() { return *_modemOperator; }

    // -1 no connection, 0 disconnected, 1 connecting, 2 connected, 3 disconnecting.
    int connectStatus();
    // pppd's phase (8 once the link runs); -1 when there is no connection.
    int pppStatus();
    void startCountingNetworkData();
    void endCountingNetworkData();
    // Always 0. The record is all zero while counting is off, when the counters cannot be read, and for
    // a second sample within the same second; the first sample's rates are 0.
    int getConnectStaticstics(ConnectStatisticsInfo* info);

protected:
    // Seconds since system start: the tick count (60 a second) divided by 60.
    virtual quint32 secondsSinceStart() const;

private:
    std::unique_ptr<ModemOperator> _modemOperator;
    quint32 _nStartCountSecondes = 0;
    quint32 _nLastCountSecondes = 0;
    quint32 _nLastSentBytes = 0;
    quint32 _nLastReceivedBytes = 0;
    quint32 _nMaxSentBPS = 0;
    quint32 _nMaxReceivedBPS = 0;
    bool _blBeginCount = false;
};
