#include "NetworkOperator.h"

#include "CNSLog.h"

NetworkOperator::NetworkOperator(const QString& modemDevName)
    : _modemOperator(std::make_unique<ModemOperator>(modemDevName)) {}

NetworkOperator::~NetworkOperator() = default;

quint32 NetworkOperator::secondsSinceStart() const {
    return PPPConnection::secondsSinceSystemStart();
}

int NetworkOperator::connectStatus() {
    PPPConnection* connection = _modemOperator->connection();
    if (connection == nullptr) {
        return -1;
    }
    const int status = connection->status();
    if (status == PPPConnection::kConnected && !_blBeginCount) {
        startCountingNetworkData();
    } else if (status == PPPConnection::kDisconnected) {
        endCountingNetworkData();
    }
    return status;
}

int NetworkOperator::pppStatus() {
    PPPConnection* connection = _modemOperator->connection();
    if (connection == nullptr) {
        CNSLOG(0, "ERR_MODEM_NO_CONNECTION");
        return -1;
    }
    const QVariantMap ppp = connection->extendedStatus().value(QStringLiteral("PPP")).toMap();
    if (ppp.isEmpty()) {
        return -1;
    }
    const int status = ppp.value(QStringLiteral("Status")).toInt();
    if (status == PPPConnection::kPhaseRunning && !_blBeginCount) {
        startCountingNetworkData();
    }
    return status;
}

void NetworkOperator::startCountingNetworkData() {
    if (_blBeginCount) {
        return;
    }
    _blBeginCount = true;
    _nStartCountSecondes = _nLastCountSecondes = _nLastSentBytes = _nLastReceivedBytes = 0;
    _nMaxSentBPS = _nMaxReceivedBPS = 0;
    if (PPPConnection* connection = _modemOperator->connection()) {
        _nStartCountSecondes = connection->extendedStatus()
                                   .value(QStringLiteral("PPP"))
                                   .toMap()
                                   .value(QStringLiteral("ConnectTime"))
                                   .toUInt();
    }
    if (_nStartCountSecondes == 0) {
        _nStartCountSecondes = secondsSinceStart();
    }
    _nLastCountSecondes = _nStartCountSecondes;
}

void NetworkOperator::endCountingNetworkData() {
    _blBeginCount = false;
    _nStartCountSecondes = _nLastCountSecondes = _nLastSentBytes = _nLastReceivedBytes = 0;
    _nMaxSentBPS = _nMaxReceivedBPS = 0;
}

int NetworkOperator::getConnectStaticstics(ConnectStatisticsInfo* info) {
    if (info == nullptr) {
        return 0;
    }
    *info = ConnectStatisticsInfo();
    if (!_blBeginCount) {
        return 0;
    }
    const quint32 now = secondsSinceStart();
    const quint32 duration = now - _nStartCountSecondes;

    PPPConnection* connection = _modemOperator->connection();
    const QVariantMap statistics = connection != nullptr ? connection->statistics() : QVariantMap();
    if (statistics.isEmpty()) {
        CNSLOG(0, "SCNetworkConnectionCopyStatistics error");
        return 0;
    }
    const QVariantMap ppp = statistics.value(QStringLiteral("PPP")).toMap();
    const quint32 bytesIn = static_cast<quint32>(ppp.value(QStringLiteral("BytesIn")).toULongLong());
    const quint32 bytesOut = static_cast<quint32>(ppp.value(QStringLiteral("BytesOut")).toULongLong());

    // A second sample within the same second reports zeros; callers take it so.
    if (now == _nLastCountSecondes) {
        return 0;
    }
    const quint32 span = now - _nLastCountSecondes;
    const quint32 sentBPS = _nLastSentBytes == 0 ? 0 : (bytesOut - _nLastSentBytes) / span;
    const quint32 receivedBPS = _nLastReceivedBytes == 0 ? 0 : (bytesIn - _nLastReceivedBytes) / span;
    if (sentBPS > _nMaxSentBPS) {
        _nMaxSentBPS = sentBPS;
    }
    if (receivedBPS > _nMaxReceivedBPS) {
        _nMaxReceivedBPS = receivedBPS;
    }
    _nLastCountSecondes = now;
    _nLastSentBytes = bytesOut;
    _nLastReceivedBytes = bytesIn;

    info->nDurationSeconds = duration;
    info->nSentBytes = bytesOut;
    info->nReceivedBytes = bytesIn;
    info->nSentBPS = sentBPS;
    info->nReceivedBPS = receivedBPS;
    info->nMaxSentBPS = _nMaxSentBPS;
    info->nMaxReceivedBPS = _nMaxReceivedBPS;
    return 0;
}
