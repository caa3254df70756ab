#include "StatisticsRecords.h"

void BLConnectStatistics::encodeWithCoder(QDataStream& coder) const {
    coder << nDurationSeconds << nSentBytes << nReceivedBytes << nSentBPS << nReceivedBPS << nMaxSentBPS
          << nMaxReceivedPBS;
}

void BLConnectStatistics::initWithCoder(QDataStream& coder) {
    coder >> nDurationSeconds >> nSentBytes >> nReceivedBytes >> nSentBPS >> nReceivedBPS >> nMaxSentBPS >>
        nMaxReceivedPBS;
}
