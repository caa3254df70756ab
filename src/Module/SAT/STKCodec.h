#pragma once

#include <string>
#include <vector>

#include "STKTypes.h"
#include "UssdTypes.h"

// Reads the modem's "+STGI:" listings of proactive commands into records and builds the "AT+STGR"
// answers and envelopes. No state; every operation is a pure function of its arguments.
//
// A listing is a header line and, for the two menus, one line per item:
//     +STGI: 11,"Games",1,2
//     +STGI: 11,1,"Quiz"
//     +STGI: 11,2,"About"
//     OK
// The header holds the modem's command number and the command's fields (layouts at the records in
// STKTypes.h, after the command contents of the toolkit standard: text or alpha identifier first, then
// the qualifier's parts, then the rest). Quoted texts are in the terminal character set teSet (a
// TUssdTeCharSet): four hex digits per character in UCS2, default-alphabet octets in GSM, plain octets
// otherwise. Fields the modem leaves out keep the record's defaults; fields behind the ones read are
// ignored. Decoders return 0, or 1 when the text has no header for their command (record reset anyway).
//
// Encoders write a whole command with its "\r" into command and return 0; 1 for an argument they
// cannot write (command left alone).
class CSTKCodec {
public:
    // The type of the first "+STGI:" number in text by the modem's table; -1 for a number not in it and for
    // a text without one. Always returns 0.
    static int GetProactiveCommandType(const std::string& text, int& type);

    static int DecodeRefreshReq(const std::string& text, TSTKRefreshReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeIdleScreenNotification(const std::string& text, TSTKIdleScreenNotification& req,
                                            int teSet = USSD_TE_UCS2);
    static int DecodeUserActivityNotification(const std::string& text, TSTKUserActivityNotification& req,
                                              int teSet = USSD_TE_UCS2);
    static int DecodeSetupCallReq(const std::string& text, TSTKSetupCallReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeSetupEventListReq(const std::string& text, TSTKSetupEventListReq& req,
                                       int teSet = USSD_TE_UCS2);
    static int DecodeSendDTMFReq(const std::string& text, TSTKSendDTMFReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeSetupIdleModeTextReq(const std::string& text, TSTKSetupIdleModeTextReq& req,
                                          int teSet = USSD_TE_UCS2);
    static int DecodeSendUSSDReq(const std::string& text, TSTKSendUSSDReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeSendSSReq(const std::string& text, TSTKSendSSReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeSendSMSReq(const std::string& text, TSTKSendSMSReq& req, int teSet = USSD_TE_UCS2);
    static int DecodePlayToneReq(const std::string& text, TSTKPlayToneReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeGetInputReq(const std::string& text, TSTKGetInputReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeGetInkeyReq(const std::string& text, TSTKGetInkeyReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeDisplayTextReq(const std::string& text, TSTKDisplayTextReq& req,
                                    int teSet = USSD_TE_UCS2);
    static int DecodeSelectItemReq(const std::string& text, TSTKSelectItemReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeSetupMenuReq(const std::string& text, TSTKSetupMenuReq& req, int teSet = USSD_TE_UCS2);
    static int DecodeLanguageNotificationReq(const std::string& text, TSTKLanguageNotificationReq& req,
                                             int teSet = USSD_TE_UCS2);

    // A main-menu choice; item < 0 leaves the item out ("AT+STGR=0,<result>,\r").
    static int EncodeMenuSelectionEnvelope(int result, int item, std::string& command);
    // additionalInfo: printable ASCII written after the result, or null/empty for none. So for the
    // other answers that take one.
    static int EncodeDisplayTextResponse(int result, const char* additionalInfo, std::string& command);
    // yesNo 0 or 1 answers a yes/no question ("AT+STGR=2,<result>,,2,<yesNo>,\r"); with yesNo < 0 the key
    // follows the head "AT+STGR=2,<result>,,2,," quoted in teSet, or nothing when it is empty.
    static int EncodeGetInkeyResponse(int result, int yesNo, const std::wstring& key, std::string& command,
                                      int teSet = USSD_TE_UCS2);
    // "AT+STGR=3,<result>,,", then the input quoted in teSet (nothing when it is empty), then "\r".
    static int EncodeGetInputResponse(int result, const std::wstring& input, std::string& command,
                                      int teSet = USSD_TE_UCS2);
    static int EncodePlayToneResponse(int result, std::string& command);
    // item < 0 leaves the item out ("AT+STGR=11,<result>,,\r").
    static int EncodeSelectItemResponse(int result, int item, std::string& command);
    static int EncodeSetupCallResponse(int result, const char* additionalInfo, std::string& command);
    static int EncodeSetupIdleModeTextResponse(int result, std::string& command);
    static int EncodeSendDTMFResponse(int result, const char* additionalInfo, std::string& command);
    static int EncodeLanguageNotificationResponse(int result, const char* additionalInfo,
                                                  std::string& command);
    static int EncodeIdleScreenAvailableEnvelope(std::string& command);
    static int EncodeUserActivityEnvelope(std::string& command);
    // The modem answers provide-local-information itself: nothing is built, command stays as it is; 0.
    static int EncodeProvideLocalInfoResponse(int result, std::string& command);

    // Helpers, exposed for the tests and the toolkit screens.

    // One line's fields: the number behind "+STGI:" and the fields after it, quotes kept off. found is
    // false for a line without "+STGI:" and a number.
    struct TListingLine {
        bool found = false;
        int nCommand = -1;
        std::vector<std::string> fields; // raw, not yet converted; at most kMaxFields
        std::vector<bool> quoted;
    };
    static constexpr int kMaxFields = 16;
    static TListingLine SplitListingLine(const std::string& line);
    // A quoted field in teSet as wide text, at most kSTKMaxTextChars characters.
    static std::wstring DecodeTeText(const std::string& field, int teSet);
    // Wide text for a quoted field in teSet: UCS2 as hex (characters above U+FFFF as surrogate pairs),
    // otherwise one octet per character, '?' for what the set cannot carry on a command line.
    static std::string EncodeTeText(const std::wstring& text, int teSet);
};
