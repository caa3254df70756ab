#pragma once

#include <cstdint>

// The records of the SMS PDU codec (3GPP TS 23.040 TPDUs, TS 23.038 coding). Plain fixed-size values with
// no heap memory; a record built with {} is all zero. Semi-octet time fields hold BCD (tens in the high
// nibble).

// Alphabet codes of DecodeDcsAlphabet, used by the codec, the table and the sending path.
enum : int {
    SMS_ALPHABET_7BIT = 0,
    SMS_ALPHABET_UCS2 = 1,
    SMS_ALPHABET_8BIT = 2,
    SMS_ALPHABET_RESERVED = 3,
};
// Message class code of DecodeDcsClass for a message without a class.
constexpr int kSmsNoClass = 4;
// TPDU type codes (TTpduData::nTpduType, TSmsListItem::nType).
enum : uint32_t {
    SMS_TPDU_DELIVER = 0,
    SMS_TPDU_STATUS_REPORT = 2,
    SMS_TPDU_SUBMIT = 4,
};

constexpr int kMsgAddressSize = 24;
constexpr int kUserDataSize = 164;
constexpr int kTpduMaxSize = 256;

// An address as it stands in a TPDU. nType: the type-of-address octet without bit 7 for decoded TPDU
// addresses (0x11 international, 0x01 national, 0x50 alphanumeric), 129 or 145 for addresses to send.
// szAddress: ASCII digits, or the raw septet codes of an alphanumeric address.
struct TMsgAddress {
    uint32_t nType = 0;
    char szAddress[kMsgAddressSize] = {};
};

// A time stamp (BCD year, month, day, hour, minute, second; zone in signed quarter hours) or a relative
// validity period (BCD years, months, days, hours, minutes in the first five fields).
struct TMsgTimeStamp {
    uint8_t nYear = 0;
    uint8_t nMonth = 0;
    uint8_t nDay = 0;
    uint8_t nHour = 0;
    uint8_t nMinute = 0;
    uint8_t nSecond = 0;
    int8_t nTimeZone = 0;
};

// The concatenation element of a user data header; bPresent is 1 when one was found (or is to be sent).
struct TUserDataHeader {
    uint32_t bPresent = 0;
    uint8_t nReference = 0;
    uint8_t nTotal = 0;
    uint8_t nSequence = 0;
};

// User data without its header. nLength counts septets for 7-bit text (one septet per octet of data),
// octets otherwise (UCS2 big-endian).
struct TUserData {
    TUserDataHeader header;
    uint32_t nLength = 0;
    uint8_t data[kUserDataSize] = {};
};

// An SMS-SUBMIT: one outgoing segment, or a decoded one.
struct TTpduSubmit {
    uint8_t nMti = 0;
    uint8_t bRejectDuplicates = 0;
    uint8_t nVpf = 0; // TP-VPF: 0 none, 1 enhanced, 2 relative, 3 absolute
    uint8_t bReplyPath = 0;
    uint8_t bUdhi = 0;
    uint8_t bStatusReportRequest = 0;
    uint8_t nMessageRef = 0;
    uint8_t nPid = 0;
    uint8_t nDcs = 0;
    uint8_t nUdl = 0;
    TMsgAddress destination;
    TMsgTimeStamp validPeriod;
    TUserData userData;
};

// A decoded SMS-DELIVER.
struct TTpduDeliver {
    uint8_t nMti = 0;
    uint8_t bMoreMessagesToSend = 0;
    uint8_t bReplyPath = 0;
    uint8_t bUdhi = 0;
    uint8_t bStatusReportIndication = 0;
    uint8_t nPid = 0;
    uint8_t nDcs = 0;
    uint8_t nUdl = 0;
    TMsgAddress originating;
    TMsgTimeStamp timeStamp;
    TUserData userData;
};

// A decoded SMS-STATUS-REPORT; the optional fields a report leaves out are zero.
struct TTpduStatusReport {
    uint8_t nMti = 0;
    uint8_t bUdhi = 0;
    uint8_t bMoreMessagesToSend = 0;
    uint8_t bStatusReportQualifier = 0;
    uint8_t nMessageRef = 0;
    uint8_t nStatus = 0;
    uint8_t nParameterIndicator = 0;
    uint8_t nPid = 0;
    uint8_t nDcs = 0;
    uint8_t nUdl = 0;
    TMsgAddress recipient;
    TMsgTimeStamp timeStamp;
    TMsgTimeStamp dischargeTime;
    TUserData userData;
};

// A decoded TPDU: nTpduType (SMS_TPDU_*) tells which member is filled.
struct TTpduData {
    TTpduData() : deliver() {}

    uint32_t nTpduType = 0;
    union {
        TTpduDeliver deliver;
        TTpduSubmit submit;
        TTpduStatusReport statusReport;
    };
};

// A decoded PDU as the modem lists it: the service centre, then the TPDU.
struct TPduData {
    TMsgAddress serviceCentre;
    TTpduData tpdu;
};

// The encoder's output: the TPDU octets alone, without the service centre.
struct TProtocalTpduData {
    uint32_t nLength = 0;
    uint8_t data[kTpduMaxSize] = {};
};
