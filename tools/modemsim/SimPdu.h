#pragma once

// SMS PDUs of the simulated modem and network (3GPP TS 23.040): SMS-DELIVER and SMS-STATUS-REPORT as the
// modem stores and prints them for AT+CMGR/AT+CMGL (service-centre address first), SMS-SUBMIT as the host
// sends it after AT+CMGS=<length>. Hex text in and out; nothing throws; every field of a received PDU is
// length-checked before it is read.

#include <string>
#include <vector>

#include "SimText.h"

namespace modemsim {

inline constexpr const char* kDefaultSmsc = "+491710760000";

struct DeliverParams {
    std::string originator; // "+4917..." (international), "0171..." (unknown), or alphanumeric "Vodafone"
    std::string textUtf8;
    std::vector<uint8_t> data; // for 8-bit data messages
    enum class Coding { Auto, Gsm7, Ucs2, Data8 } coding = Coding::Auto;
    int protocolId = 0;    // 0x41..0x47 replace types
    int messageClass = -1; // 0 = flash
    std::string timestamp; // "YY/MM/DD,hh:mm:ss+zz", zone in quarter hours, may be negative; empty = now
    int concatRef = -1;
    int concatTotal = 0;
    int concatSeq = 0;
    bool concat16bit = false;
    std::string smsc = kDefaultSmsc; // empty: the PDU starts with "00"
};

// The hex PDU with the service-centre prefix, and in *tpduLength the TPDU octets (the length field of
// "+CMGR: <stat>,,<length>"). Empty, with length 0, when the user data does not fit one PDU (see
// SplitLongText), the time stamp is malformed or a number is too long. An alphanumeric originator is cut
// to 11 characters; Gsm7 coding sends characters outside the alphabet as "?".
std::string EncodeDeliverPdu(const DeliverParams& params, int* tpduLength);

// Splits a message too long for one PDU into concatenated parts: 153 septets, 67 UTF-16 units or 134
// octets per part (152, 66, 133 with 16-bit references), never splitting an escape pair or a surrogate
// pair. Auto coding is resolved on the whole text, so all parts share it. A message that fits is returned
// alone and unchanged; more than 255 parts give an empty list.
std::vector<DeliverParams> SplitLongText(const DeliverParams& base, int ref, bool use16bitRef);

struct SubmitInfo {
    bool ok = false;
    std::string error; // why the PDU was refused, when !ok
    int mr = 0;
    std::string destination; // "+" prefixed when international
    bool statusReportRequest = false;
    int validityFormat = 0; // TP-VPF: 0 none, 1 enhanced, 2 relative, 3 absolute
    int validity = -1;      // the TP-VP octet of the relative format, else -1
    int pid = 0;
    int dcs = 0;
    std::string textUtf8;      // 7-bit and UCS2 messages
    std::vector<uint8_t> data; // 8-bit messages
    int concatRef = -1, concatTotal = 0, concatSeq = 0;
    bool concat16bit = false;
    bool rejectDuplicates = false;
    bool replyPath = false;
    std::string smsc; // empty when the PDU gave none ("00")
};

// Decodes "<sca><tpdu>" as sent after AT+CMGS=<tpduLength>: the octet count must match exactly.
SubmitInfo DecodeSubmitPdu(const std::string& hex, int tpduLength);

struct DeliverInfo {
    bool ok = false;
    std::string error;
    std::string smsc;
    std::string originator;
    int pid = 0;
    int dcs = 0;
    int messageClass = -1;
    std::string timestamp; // "YY/MM/DD,hh:mm:ss+zz"
    std::string textUtf8;
    std::vector<uint8_t> data;
    int concatRef = -1, concatTotal = 0, concatSeq = 0;
    bool concat16bit = false;
};

// Decodes a stored SMS-DELIVER with its service-centre prefix (what AT+CMGR prints).
DeliverInfo DecodeDeliverPdu(const std::string& hex, int tpduLength);

// The TPDU length of a PDU with service-centre prefix (total octets less the prefix), -1 when the hex is
// malformed or the prefix overruns it. For PDUs injected as text, where no length comes with them.
int TpduLengthOfPdu(const std::string& hex);

// SMS-STATUS-REPORT for message reference mr, with the service-centre prefix. Times as in DeliverParams
// (empty = now); status is TP-ST (0 = received by the recipient). Empty on a malformed time or number.
std::string EncodeStatusReportPdu(int mr, const std::string& recipient, const std::string& scts,
                                  const std::string& dischargeTime, int status, int* tpduLength,
                                  const std::string& smsc = kDefaultSmsc);

struct StoredSubmitParams {
    std::string destination;
    std::string textUtf8;
    std::vector<uint8_t> data;
    DeliverParams::Coding coding = DeliverParams::Coding::Auto;
    int mr = 0;
    bool statusReportRequest = false;
    int validity = -1; // TP-VP relative octet; -1 = no validity period
    int concatRef = -1, concatTotal = 0, concatSeq = 0;
    bool concat16bit = false;
    std::string smsc; // empty: "00", as the host writes them
};

// SMS-SUBMIT for the stored-unsent/stored-sent entries of AT+CMGW and AT+CMGL stat 2/3. Empty, with
// length 0, when it does not fit one PDU or a number is too long.
std::string EncodeSubmitPduForStorage(const StoredSubmitParams& params, int* tpduLength);

// The current local time as "YY/MM/DD,hh:mm:ss+zz" (zone in quarter hours), as AT+CCLK and the network's
// time stamps print it.
std::string CurrentTimestamp();

} // namespace modemsim
