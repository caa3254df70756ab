#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "ExecATCallback.h"
#include "SmsPduTypes.h"
#include "SmsTableTypes.h"
#include "SmsTypes.h"

// SMS in PDU mode: the start-up settings (AT+CNMI, AT+CSCB, AT+CMMS, AT+CMGF), the service centre
// (AT+CSCA), storages (AT+CPMS), the message table built from the SIM, the modem memory and the
// computer-side store (AT+CMGL, AT+CMGR), new-message reports ("+CMTI:", "+CDSI:"), deleting (AT+CMGD)
// and sending (AT+CMGS). Operations return 0 on success, else the execute-AT code or 1.
//
// The class is defined in three files: SmsPduCodec.cpp (the PDU codec, static and stateless but for the
// TP-MR counter), SmsMessageTable.cpp (the message table and the splitting of texts) and SmsUtility.cpp
// (the commands). Codec functions never read past the octet or text lengths they are given, whatever
// the PDU holds.
class CSmsUtility {
public:
    CSmsUtility() = default;
    virtual ~CSmsUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    int Init();
    int GetServiceCentre(TSmsAddress& address);
    int SetServiceCentre(const TSmsAddress& address);
    int GetList(std::list<TSmsListItem>& items);
    int GetIncomingSMSInPC(std::list<TSmsListItem>& items);
    int Delete(int tableId);
    int Send(const TSmsSendItem& item);
    // line: a "+CMTI: \"SM\",3" or "+CDSI: \"SR\",1" report. kind: 0 single message, 1 first segment,
    // 2 later segment, 3 replaced an older message.
    int Receive(const char* line, TSmsListItem& item, int& kind);
    int SetPreferredStorage(int storage);
    int GetPreferredStorage(int& storage);
    int GetStorageState(TSmsStorageState& state);

    // Settings used when a text is split (PacketMsg) and by the computer-side store; each returns 0.
    int SetValidPeriod(const TSmsValidPeriod& period);
    int EnableStatusReport(int enable);
    int SetLatinSupport(int enable);
    int SetIMSI(const char* imsi);
    // The computer-side store; enable switches the store on. Returns 0.
    int RegisterPCCallback(void* context, SmsPCListCallback list, SmsPCSaveCallback save,
                           SmsPCDeleteCallback remove, int enable);
    int RegisterSMSFilter(SmsFilterCallback filter, SmsFilterNotifyCallback notify, void* filterContext,
                          void* notifyContext);

    // ---- PDU decoding. Results: 0 success, 1 failure, unless stated. ----

    // hex: a whole PDU with its service-centre part, as "+CMGR:"/"+CMGL:" print it; tpduLength: the
    // modem's length field (TPDU octets). The service-centre length and type are read from their second
    // hex digit only ("91" is type 1); "F" may only pad the last digit pair.
    static int DecodePduData(const char* hex, int tpduLength, TPduData& out);
    // hex: the TPDU alone; exactly tpduLength octets are read.
    static int DecodeTpduData(const char* hex, int tpduLength, TTpduData& out);
    // tpdu: length octets of an SMS-DELIVER, SMS-SUBMIT or SMS-STATUS-REPORT. User data that the TPDU
    // announces but does not hold is cut to what is there.
    static int DecodeTpduDeliver(const uint8_t* tpdu, int length, TTpduData& out);
    static int DecodeTpduSubmit(const uint8_t* tpdu, int length, TTpduData& out);
    static int DecodeTpduStatusReport(const uint8_t* tpdu, int length, TTpduData& out);
    // Returns the octets the address takes, 0 when it is longer than 21 digits or than length.
    static int DecodeTpduAddress(const uint8_t* octets, int length, TMsgAddress& out);
    // Returns 7, or 0 when fewer than 7 octets are given. Out-of-range fields are repaired.
    static int DecodeTimeStamp(const uint8_t* octets, int length, TMsgTimeStamp& out);
    // text: "\"yy/MM/dd,hh:mm:ss+zz\"" as text mode prints it (22 characters).
    static int DecodeTimeString(const char* text, int length, TMsgTimeStamp& out);
    // Returns the octets used for TP-VPF format (0-3), or -1 when length is too short.
    static int DecodeValidPeriod(const uint8_t* octets, int length, int format, TMsgTimeStamp& out);
    static void DecodeRelativeValidPeriod(uint8_t vp, TMsgTimeStamp& out);
    // The enhanced format is not interpreted: the result is zero; returns 7.
    static int DecodeEnhancedValidPeriod(const uint8_t* octets, TMsgTimeStamp& out);
    // octets: length octets starting at the user data (after TP-UDL).
    static int DecodeTpduUserData(uint8_t dcs, uint8_t udl, const uint8_t* octets, int length, bool udhi,
                                  TUserData& out);
    // octets: the header from its UDHL octet, length octets available. Never fails.
    static void DecodeUserDataHeader(const uint8_t* octets, int length, TUserDataHeader& out);
    static int DecodeDcsAlphabet(uint8_t dcs);
    static int DecodeDcsClass(uint8_t dcs);
    static int GetTpduType(uint8_t firstOctet, uint32_t& type);
    static bool IsReplaceShortMessage(uint8_t pid);
    // The text for display and storage. UCS2 units are kept as they are (a surrogate pair stays two).
    static void GetUserDataContent(int alphabet, const TUserData& data, std::wstring& text);

    // ---- PDU encoding ----

    // Builds an SMS-SUBMIT; the message reference comes from a process-wide counter (first value 1).
    static int EncodeTpduSubmit(const TTpduSubmit& submit, TProtocalTpduData& out);
    // Returns the octets written, 0 when the address holds "*" or "#" or size is too small.
    static int EncodeTpduAddress(const TMsgAddress& address, uint8_t* out, int size);
    // Writes TP-UDL and the user data; returns the octets written (0 when size is too small).
    static int EncodeTpduUserData(uint8_t dcs, TUserData data, uint8_t* out, int size);
    // The TP-VP octet of a relative period given in BCD years, months, days, hours and minutes.
    static uint8_t EncodeRelativeTime(const TMsgTimeStamp& period);
    static int ComputeUserDataLength(uint8_t dcs, const TUserData& data);

    // ---- Characters of the GSM 7-bit default alphabet ----

    static bool IsDefault7BitChar(wchar_t c);
    // Returns 1 and the septet for characters of the default table, else 0.
    static int WCharToDefault7Bit(wchar_t c, uint8_t& septet);
    // Writes septets (an extension character as escape and code, anything unknown as a space); always
    // leaves the last octet of out zero. Returns the septets written.
    static int WStringToDefault7Bit(const wchar_t* text, int count, uint8_t* out, int outSize);
    static void Default7BitToWstring(const uint8_t* septets, int count, std::wstring& text);
    // 0 when every character can be sent in 7-bit, else 1 (UCS2).
    static int GetEncodeType(const std::wstring& text);
    // Each character's low 16 bits, big-endian in memory; returns the units written.
    static int WStringToBigEndianUcs2(const wchar_t* text, int count, uint16_t* out, int outSize);
    // Packs count septets after fillBits zero bits into out (the first octet is ORed); returns octets
    // written, at most maxOutputs.
    static int PackDefault7BitChars(const uint8_t* septets, int count, int fillBits, int maxOutputs,
                                    uint8_t* out);
    // Unpacks up to count septets (at most maxOutputs) from length octets. shift 1-7 starts 8 - shift
    // bits into the first octet (the fill bits after a header); 0 starts at bit 0. Returns the octets
    // used.
    static int UnpackDefault7BitChars(const uint8_t* octets, int length, int count, int maxOutputs, int shift,
                                      uint8_t* out);

    // ---- Numbers and records ----

    static int HexCharToInt(char c);
    static int BcdToInt(uint8_t bcd);
    static uint8_t IntToBcd(int value);
    static uint8_t BigToLittleEndian(uint8_t octet);
    static void TSmsAddressToTMsgAddress(const TSmsAddress& in, TMsgAddress& out);
    static void TMsgAddressToTSmsAddress(const TMsgAddress& in, TSmsAddress& out);
    static void TSmsValidPeriodToTMsgTimeStamp(const TSmsValidPeriod& in, TMsgTimeStamp& out);
    static void TMsgTimeStampToTSmsDateTime(const TMsgTimeStamp& in, TSmsDateTime& out);

    // ---- The message table ----

    // Adds one stored PDU. Returns 0 when it was added (to a new or an existing table item; tableId tells
    // which) or left out as a data message (added false), 1 for a duplicate. deleteOnRead: a new message
    // just announced; flash messages are then deleted from their storage and older replace messages
    // replaced.
    int AddMsgItemToListTable(const TMessageListItem& item, bool& added, uint32_t& tableId, bool& deleted,
                              bool& replaced, bool deleteOnRead);
    // Creates a table item holding the packet; returns its id.
    uint32_t NewListTableItem(const TMsgPacket& packet, bool deleted);
    static void MergePackets(const CMsgListTableItem& item, TSmsListItem& out);
    static void TMessageListItemToTMsgPacket(const TMessageListItem& item, TMsgPacket& packet);
    // Splits the text into segments with the current settings; encodeType: 0 7-bit, 1 UCS2. Returns 0.
    int PacketMsg(const TSmsSendItem& item, std::list<TTpduSubmit>& segments, int& encodeType);
    // Segment lengths in characters of a 7-bit text; returns their number.
    static int GetDefault7BitPacketNum(const wchar_t* text, int length, std::list<int>& lengths);
    // Takes the next table id.
    uint32_t GetMessageRef();

    // The table items, and those of messages deleted from their storage on reading (flash messages).
    const std::list<CMsgListTableItem>& MessageTable() const { return m_messageTable; }
    const std::list<CMsgListTableItem>& DeletedTable() const { return m_deletedTable; }

private:
    // Runs one command through the execute-AT callback; cuts the echo off the response.
    int WriteComm(const std::string& command, const char* expected, const std::list<std::string>& finals,
                  int timeoutMs, std::string& response);
    static const char* GetMemStorageString(int code);
    static int GetMemStorageID(const std::string& name);
    // AT+CPMS="name": 0, 1 without "OK", 2 when the exchange failed.
    int SetMemoryOfReadAndDeleted(int code);
    int DeletePacket(int index);
    // Deletes one stored message of a storage (SMS_STORAGE_*), through the store's callback for the PC.
    int DeleteStored(uint32_t storage, uint32_t index);
    // Deletes every segment of a table item from its storage.
    int DeleteMsg(const CMsgListTableItem& item);

    ExecATCallback m_pfnExecAT = nullptr;

    TSmsValidPeriod m_validPeriod;
    bool m_bStatusReport = false;
    bool m_bLatinSupport = false;
    std::string m_strImsi;

    // The computer-side store; listing and saving belong to the reading of the storages.
    void* m_pcContext = nullptr;
    [[maybe_unused]] SmsPCListCallback m_pfnPCList = nullptr;
    [[maybe_unused]] SmsPCSaveCallback m_pfnPCSave = nullptr;
    SmsPCDeleteCallback m_pfnPCDelete = nullptr;
    [[maybe_unused]] bool m_bPCStoreEnabled = false;

    uint32_t m_nNextTableId = 1;
    std::list<CMsgListTableItem> m_messageTable;
    std::list<CMsgListTableItem> m_deletedTable;
};
