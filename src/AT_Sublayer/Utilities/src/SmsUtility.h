#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "ExecATCallback.h"
#include "SmsPduTypes.h"
#include "SmsTableTypes.h"
#include "SmsTypes.h"

// One stored PDU as read by AT+CMGR or AT+CMGL. nStatus is 4 when the header gave none; strPdu is the PDU
// line as the modem printed it (service centre included), nPduLen the TPDU octets the header announced.
struct TMessageListBaseItem {
    uint32_t nIndex = 0;
    uint32_t nStatus = 4;
    TPduData pduData;
    std::string strPdu;
    int32_t nPduLen = 0;
};

// SMS in PDU mode: the start-up settings (AT+CNMI, AT+CSCB, AT+CMMS, AT+CMGF), the service centre
// (AT+CSCA), storages (AT+CPMS), the message table built from the SIM, the modem memory and the
// computer-side store (AT+CMGL, AT+CMGR), new-message reports ("+CMTI:", "+CDSI:"), deleting (AT+CMGD)
// and sending (AT+CMGS). Operations return 0 on success, else the execute-AT code or 1.
//
// The class is defined in four files: SmsPduCodec.cpp (the PDU codec, static and stateless but for the
// TP-MR counter), SmsMessageTable.cpp (the message table and the splitting of texts), SmsUtility.cpp
// (settings, storages, sending) and SmsReading.cpp (reading, listing, reports, moving messages). Codec
// functions never read past the octet or text lengths they are given, whatever the PDU holds.
class CSmsUtility {
public:
    CSmsUtility() = default;
    virtual ~CSmsUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // The start-up settings. A refused AT+CNMI, AT+CSCB or AT+CMMS is passed over (AT+CNMI tries simpler
    // settings first); only PDU mode, a time-out or a cancel fail it.
    int Init();
    int GetServiceCentre(TSmsAddress& address);
    int SetServiceCentre(const TSmsAddress& address);
    int GetList(std::list<TSmsListItem>& items);
    // The computer-side store's messages as the table holds them (after GetList); 1 when the store is off.
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

    // ---- Settings, storages and sending (AT+CNMI, AT+CSCB, AT+CMMS, AT+CMGF, AT+CSCS, AT+CSCA,
    // AT+CPMS, AT+CMGD, AT+CMGS) ----

    int SetNewMessageIndications(int mode, int mt, int bm, int ds, int bfr);
    int DisableCellBroadcast();
    int SetMoreMessageToSend();
    // format: 1 PDU mode, 0 text mode (the inverse of the AT value); anything else fails unsent.
    int SetMessageFormat(int format);
    int GetMessageFormat(int& format);
    // charset: 0 "GSM", 1 "HEX", 2 "IRA", 3 "PCCP<codePage>", 4 "PCDN", 5 "UCS2", 6 "8859-<part>", 7-10
    // "8859-C", "8859-A", "8859-G", "8859-H".
    int SelectTeCharacterSet(int charset, int codePage, int part);
    int SetServiceCenterAddress(const TMsgAddress& address);
    int GetServiceCenterAddress(TMsgAddress& address);
    // Storage-map codes (0 "BM", 1 "ME", 2 "MT", 3 "SM", 4 "TA", 5 "SR"). A failed exchange gives 2.
    int SetPreferredMessageStorage(int mem1, int mem2, int mem3);
    int GetPreferredMessageStorage(int& mem1, int& mem2, int& mem3);
    // storage 1 (SIM) reads "SM", any other "ME"; that storage is left selected for reading.
    int GetStorageInfo(int storage, int& used, int& total);
    int SetMemoryOfWrite(int code);
    // AT+CPMS="name": 0, 1 without "OK", 2 when the exchange failed.
    int SetMemoryOfReadAndDeleted(int code);
    int DeletePacket(int index);
    // Sends one TPDU after the "> " prompt; retry is set when the network answered "+CMS ERROR: 500".
    int SendMessageInPduMode(const uint8_t* tpdu, int length, bool& retry);
    int SendInPduMode(const std::list<TTpduSubmit>& segments);

    // ---- Reading, listing, new-message reports (AT+CMGR, AT+CMGL, AT+CMGW) ----

    // format: the code of GetMessageFormat; only PDU mode (1) is read.
    int ReadMessageItemBase(int index, int format, TMessageListBaseItem& item);
    // code: storage-map code; item.nStorage becomes SMS_STORAGE_SIM for "SM", else SMS_STORAGE_MODEM.
    int ReadMessageItem(int code, int index, TMessageListItem& item);
    // text: "+CMGR: 0,,24\r\n<pdu>".
    static int DecodePduModeCMGR(const std::string& text, TMessageListBaseItem& item);
    int ExecPduModeCMGL(int status, std::string& response);
    // A response without any "+CMGL: " block is an empty list.
    static int DecodePduModeCMGL(const std::string& response, std::list<TMessageListBaseItem>& items);
    // block: "+CMGL: 1,0,,24\r\n<pdu>".
    static int DecodePduCmglItem(const std::string& block, TMessageListBaseItem& item);
    int GetMessageListBase(int status, std::list<TMessageListBaseItem>& items);
    int GetMessageListMe(int status, std::list<TMessageListBaseItem>& items);
    int GetMessageListSim(int status, std::list<TMessageListBaseItem>& items);
    int GetMessageListPC(std::list<TMessageListBaseItem>& items);
    // mask: bit 0 SIM, bit 1 modem memory, bit 2 computer-side store (read once per table).
    int GetMessageList(int mask, int status, std::list<TMessageListItem>& items);
    int InitList();
    // Moves a message of the modem memory to the preferred storage; storage receives where it is now.
    // item's index and status follow the copy.
    int MoveSMSFromMEToPreferredStorage(TMessageListBaseItem& item, uint32_t& storage);
    int CopySMSToSIM(TMessageListBaseItem& item);
    int CopySMSToPC(TMessageListBaseItem& item);
    bool IsListInitialised() const { return m_bTableInit; }

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

    // Result of sending to, or setting, an address that is not a phone number: nothing reaches the modem.
    // The worker's code for an argument refused before the modem is asked.
    static constexpr int kErrNotAPhoneNumber = 45;
    // A destination or service centre the modem can take: 1 to 20 digits (the "+" is in the type octet).
    // Service codes ("*100#") and anything else are refused, so that no character is ever packed as a
    // digit it is not.
    static bool IsDialableAddress(const TMsgAddress& address);

    // Builds an SMS-SUBMIT; the message reference comes from a process-wide counter (first value 1).
    // kErrNotAPhoneNumber when the destination is not dialable.
    static int EncodeTpduSubmit(const TTpduSubmit& submit, TProtocalTpduData& out);
    // Returns the octets written, 0 when the address holds anything but digits or size is too small.
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
    // A command whose only answer that counts is "OK".
    int WriteForOk(const std::string& command, const char* expected, const std::list<std::string>& finals,
                   int timeoutMs);
    int ReadMessageItem(int code, int index, TMessageListItem& item, TMessageListBaseItem& base);
    // Runs the filter over a complete message: 0 not claimed, else the filter's result.
    int ApplyFilter(const TSmsListItem& message, std::wstring& name, bool& deleteMessage);
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
    SmsPCListCallback m_pfnPCList = nullptr;
    SmsPCSaveCallback m_pfnPCSave = nullptr;
    SmsPCDeleteCallback m_pfnPCDelete = nullptr;
    bool m_bPCStoreEnabled = false;
    bool m_bPCRead = false; // the store's records are in the table

    SmsFilterCallback m_pfnFilter = nullptr;
    SmsFilterNotifyCallback m_pfnFilterNotify = nullptr;
    void* m_filterContext = nullptr;
    void* m_notifyContext = nullptr;

    TMsgAddress m_serviceCentre;
    int m_nPreferredStorage = SMS_STORAGE_MODEM;
    bool m_bTableInit = false;

    uint32_t m_nNextTableId = 1;
    std::list<CMsgListTableItem> m_messageTable;
    std::list<CMsgListTableItem> m_deletedTable;
};
