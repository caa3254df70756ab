#pragma once

#include "RecordCoding.h"

#include <QMetaType>

// Result of "MESSAGE_CONNECT_GET_STATISTICS": connection time, byte counters and rates of the data link.
// The byte counters come from 32-bit counters widened with sign extension, so a count at or above 2^31
// shows as a huge value, as the dial-up layer reports it. nMaxReceivedPBS is the field's own spelling.
struct BLConnectStatistics {
    quint32 nDurationSeconds = 0;
    quint64 nSentBytes = 0;
    quint64 nReceivedBytes = 0;
    quint32 nSentBPS = 0;
    quint32 nReceivedBPS = 0;
    quint32 nMaxSentBPS = 0;
    quint32 nMaxReceivedPBS = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLConnectStatistics& other) const = default;
};

Q_DECLARE_METATYPE(BLConnectStatistics)
