#pragma once

#include "RecordCoding.h"

#include <QMetaType>
#include <QString>

// USSD requests and results.

// Argument of "MESSAGE_USSD_SENDCMD": nOpCode kSend sends strCmdString, kCancel ends the running dialogue.
struct BLUssdSendCmdInfo {
    static constexpr qint32 kSend = 0;
    static constexpr qint32 kCancel = 1;

    qint32 nOpCode = 0;
    QString strCmdString;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLUssdSendCmdInfo& other) const = default;
};

// Payload of "MESSAGE_RPT_RECEIVE_USSD": the result code m of "+CUSD: m[,str,dcs]" and the decoded text.
struct BLUssdReceive {
    // m: 0 no reply wanted, 1 the network waits for a reply, 2 it ended the dialogue, 4 not offered.
    static constexpr qint32 kDone = 0;
    static constexpr qint32 kReplyWanted = 1;
    static constexpr qint32 kEnded = 2;
    static constexpr qint32 kNotSupported = 4;

    qint32 nReportType = 0;
    QString strContent;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLUssdReceive& other) const = default;
};

Q_DECLARE_METATYPE(BLUssdSendCmdInfo)
Q_DECLARE_METATYPE(BLUssdReceive)
