#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "SmsPduTypes.h"
#include "SmsTypes.h"

// The records of the message list table: stored PDUs as read, their flattened segments, and the table
// items that gather the segments of one logical message.

// Status codes of the modem's message listing.
enum : uint32_t {
    SMS_STATUS_UNREAD = 0,
    SMS_STATUS_READ = 1,
    SMS_STATUS_UNSENT = 2,
    SMS_STATUS_SENT = 3,
};
// Status-report status of anything that is not a status report.
constexpr uint32_t kSmsNoReportStatus = 255;

// One stored PDU as read from a storage (SMS_STORAGE_*).
struct TMessageListItem {
    uint32_t nStorage = 0;
    uint32_t nIndex = 0;
    uint32_t nStatus = 0;
    TPduData pduData;
};

// One segment, flattened. szNumber carries "+" for international numbers; dateTime is zero for a submit.
struct TMsgPacket {
    uint32_t nIndex = 0;
    uint8_t nStorage = 0;
    uint8_t nStatus = 0;
    uint8_t nTpduType = 0;
    uint8_t nClass = kSmsNoClass;
    uint8_t bHasHeader = 0;
    uint8_t nPid = 0;
    uint32_t nStatusReportStatus = kSmsNoReportStatus;
    uint8_t nReference = 0;
    uint8_t nTotal = 0;
    uint8_t nSequence = 0;
    char szNumber[kSmsNumberSize] = {};
    TSmsDateTime dateTime;
    std::wstring wstrContent;
};

// One segment inside a table item.
struct CMsgListPacket {
    uint32_t nIndex = 0;
    uint8_t nSequence = 0;
    std::wstring wstrContent;
};

// One logical message: at most ten segments of a concatenated message (one group), or a single message.
// packets is kept in ascending sequence order.
struct CMsgListTableItem {
    uint32_t nId = 0;
    uint32_t nStorage = 0;
    uint32_t nStatus = 0;
    uint32_t nTpduType = 0;
    uint32_t nStatusReportStatus = kSmsNoReportStatus;
    uint8_t nTotal = 1;
    uint8_t nReceived = 1;
    uint8_t nClass = kSmsNoClass;
    uint8_t nReference = 0;
    uint8_t nGroup = 0;
    uint8_t nPid = 0;
    char szNumber[kSmsNumberSize] = {};
    TSmsDateTime dateTime;
    std::list<CMsgListPacket> packets;
};
