#pragma once

#include <cstdint>
#include <list>
#include <string>

// The records the SMS operations of the sublayer exchange with the business layer. The PDU codec's own
// records live with the codec.

// A number field: at most 23 characters, "+" included, and the terminator.
constexpr int kSmsNumberSize = 24;

// Where a message is stored.
enum : int32_t {
    SMS_STORAGE_SIM = 1,
    SMS_STORAGE_MODEM = 2,
    SMS_STORAGE_PC = 4,
};

// A service centre or destination number; a leading "+" marks an international number.
struct TSmsAddress {
    char szNumber[kSmsNumberSize] = {};
};

// A time stamp in plain numbers (full year); bValid is set by every conversion.
struct TSmsDateTime {
    uint16_t nYear = 0;
    uint8_t nMonth = 0;
    uint8_t nDay = 0;
    uint8_t nHour = 0;
    uint8_t nMinute = 0;
    uint8_t nSecond = 0;
    uint8_t bValid = 0;
};

// The validity period of outgoing messages; bWeek 255 asks for the longest period.
struct TSmsValidPeriod {
    uint8_t bEnable = 0;
    uint8_t bWeek = 0;
    uint8_t bDay = 0;
    uint8_t bHour = 0;
};

struct TSmsStorageState {
    int32_t nMeUsed = 0;
    int32_t nMeTotal = 0;
    int32_t nSimUsed = 0;
    int32_t nSimTotal = 0;
};

// One message as the business layer sees it: all stored segments of one logical message, merged.
struct TSmsListItem {
    int32_t nRef = 0;     // table id
    int32_t nStoreIn = 0; // SMS_STORAGE_*
    int32_t nTag = 0;     // 0 received unread, 1 received read, 2 stored unsent, 3 stored sent
    int32_t nType = 0;    // TPDU type: 0 deliver, 2 status report, 4 submit
    int32_t nClass = 0;   // message class, 4 for none
    int32_t nStatusReportStatus = 0;
    char szNumber[kSmsNumberSize] = {};
    TSmsDateTime dateTime;
    int32_t nTotal = 0;
    int32_t nReference = 0;
    std::wstring wstrContent;
    int32_t nCompleted = 0;
    int32_t nExpected = 0;
    int32_t nReceived = 0;
};

// What the business layer asks to send.
struct TSmsSendItem {
    char szNumber[kSmsNumberSize] = {};
    std::wstring wstrContent;
};

// One record of the computer-side message store.
struct TSMSRecordInPC {
    int32_t nIndex = 0;
    int32_t nPduLen = 0; // TPDU octets, service centre excluded
    std::string strPdu;  // hex text, service centre included
};

// The computer-side store, registered with RegisterPCCallback. Each returns 0 on success and runs on the
// caller's thread; imsi is the text given with SetIMSI.
using SmsPCListCallback = int (*)(void* context, const char* imsi, std::list<TSMSRecordInPC>& records);
using SmsPCSaveCallback = int (*)(void* context, const char* imsi, const char* pdu, int tpduLength,
                                  int& newIndex);
using SmsPCDeleteCallback = int (*)(void* context, const char* imsi, int index);

// The message filter, registered with RegisterSMSFilter. The filter claims a complete message by a
// non-zero result (and the client's name); with deleteMessage set the message is deleted, not listed.
using SmsFilterCallback = void (*)(void* context, const std::wstring& text, const std::wstring& number,
                                   int& result, std::wstring& name, bool& deleteMessage);
using SmsFilterNotifyCallback = void (*)(void* context, int result, const std::wstring& name);
