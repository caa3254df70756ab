#pragma once

#include <list>
#include <string>

// Records of the SIM toolkit codec (CSTKCodec). Texts are wide strings, already converted from the
// modem's character set; each is cut at kSTKMaxTextChars characters. Numbers the modem leaves out keep
// the defaults below.

// Longest text kept from one field; the rest is dropped.
constexpr int kSTKMaxTextChars = 512;
// Most menu or select-item entries kept (item identifiers are one octet on the card).
constexpr int kSTKMaxMenuItems = 255;
// Most events kept from a set-up-event-list command.
constexpr int kSTKMaxEvents = 32;

// The codec's command types (GetProactiveCommandType). Most are the type-of-command codes of the
// toolkit standard; play tone is 22 and the dialogue's end 129, as the modem's table has them.
enum ESTKProactiveCommandType : int {
    STK_TYPE_UNKNOWN = -1,
    STK_TYPE_REFRESH = 1,
    STK_TYPE_MORE_TIME = 2,
    STK_TYPE_POLL_INTERVAL = 3,
    STK_TYPE_POLLING_OFF = 4,
    STK_TYPE_SETUP_EVENT_LIST = 5,
    STK_TYPE_SETUP_CALL = 16,
    STK_TYPE_SEND_SS = 17,
    STK_TYPE_SEND_USSD = 18,
    STK_TYPE_SEND_SMS = 19,
    STK_TYPE_SEND_DTMF = 20,
    STK_TYPE_LAUNCH_BROWSER = 21,
    STK_TYPE_PLAY_TONE = 22,
    STK_TYPE_DISPLAY_TEXT = 33,
    STK_TYPE_GET_INKEY = 34,
    STK_TYPE_GET_INPUT = 35,
    STK_TYPE_SELECT_ITEM = 36,
    STK_TYPE_SETUP_MENU = 37,
    STK_TYPE_PROVIDE_LOCAL_INFO = 38,
    STK_TYPE_TIMER_MANAGEMENT = 39,
    STK_TYPE_SETUP_IDLE_MODE_TEXT = 40,
    STK_TYPE_RUN_AT_COMMAND = 52,
    STK_TYPE_LANGUAGE_NOTIFICATION = 53,
    STK_TYPE_OPEN_CHANNEL = 64,
    STK_TYPE_CLOSE_CHANNEL = 65,
    STK_TYPE_RECEIVE_DATA = 66,
    STK_TYPE_SEND_DATA = 67,
    STK_TYPE_GET_CHANNEL_STATUS = 68,
    STK_TYPE_END_OF_SESSION = 129,
    STK_TYPE_IDLE_SCREEN_AVAILABLE = 256,
    STK_TYPE_USER_ACTIVITY = 257,
};

// The modem's command numbers, as "+STIN:", "+STGI:" and "AT+STGR=" carry them.
enum ESTKModemCommand : int {
    STK_MODEM_MENU_SELECTION = 0, // answers only: the envelope of a main-menu choice
    STK_MODEM_DISPLAY_TEXT = 1,
    STK_MODEM_GET_INKEY = 2,
    STK_MODEM_GET_INPUT = 3,
    STK_MODEM_PLAY_TONE = 6,
    STK_MODEM_REFRESH = 9,
    STK_MODEM_SELECT_ITEM = 11,
    STK_MODEM_SEND_SMS = 12,
    STK_MODEM_SEND_SS = 13,
    STK_MODEM_SEND_USSD = 14,
    STK_MODEM_SETUP_CALL = 15,
    STK_MODEM_SETUP_EVENT_LIST = 16,
    STK_MODEM_SETUP_MENU = 17,
    STK_MODEM_SETUP_IDLE_MODE_TEXT = 18,
    STK_MODEM_END_OF_SESSION = 20,
    STK_MODEM_SEND_DTMF = 23,
    STK_MODEM_LANGUAGE_NOTIFICATION = 24,
    STK_MODEM_IDLE_SCREEN_AVAILABLE = 256,
    STK_MODEM_USER_ACTIVITY = 257,
};

// General results of a terminal response (the toolkit standard's result codes), for the answers.
enum ESTKResult : int {
    STK_RESULT_OK = 0,
    STK_RESULT_SESSION_TERMINATED_BY_USER = 16,   // 0x10
    STK_RESULT_BACKWARD_MOVE = 17,                // 0x11
    STK_RESULT_NO_RESPONSE_FROM_USER = 18,        // 0x12
    STK_RESULT_HELP_REQUESTED = 19,               // 0x13
    STK_RESULT_TERMINAL_UNABLE = 32,              // 0x20
    STK_RESULT_BEYOND_TERMINAL_CAPABILITIES = 48, // 0x30
};

// Response formats of get inkey and get input.
enum ESTKInputFormat : int {
    STK_FORMAT_DIGITS = 0,       // 0-9, *, #, +
    STK_FORMAT_SMS_ALPHABET = 1, // the default alphabet
    STK_FORMAT_UCS2 = 2,
    STK_FORMAT_YES_NO = 3, // get inkey only
};

// One entry of the main menu or of a select-item list: "+STGI: 17,1,\"News\"".
struct TSTKMenuItem {
    int nItemId = 0;
    std::wstring wstrText;
};

// 17: the main menu. "+STGI: 17,\"SIM Services\",3" then one line per item.
struct TSTKSetupMenuReq {
    std::wstring wstrTitle;
    int nItemCount = 0; // as the header announces it; the list holds the item lines actually read
    std::list<TSTKMenuItem> lstItems;
};

// 11: a list to choose from. "+STGI: 11,\"Games\",1,2" (title, default item, item count), then the items.
struct TSTKSelectItemReq {
    std::wstring wstrTitle;
    int nDefaultItem = 0; // 0: none
    int nItemCount = 0;
    std::list<TSTKMenuItem> lstItems;
};

// 1: "+STGI: 1,\"Today: sunny\",0,1" (text, priority 0 normal 1 high, clear 0 after a delay 1 by the user,
// immediate response 0/1).
struct TSTKDisplayTextReq {
    std::wstring wstrText;
    int nPriority = 0;
    int nClearMode = 0;
    int nImmediateResponse = 0;
};

// 2: "+STGI: 2,\"Receive offers? (Y/N)\",3,0" (text, ESTKInputFormat, help 0/1).
struct TSTKGetInkeyReq {
    std::wstring wstrText;
    int nFormat = STK_FORMAT_SMS_ALPHABET;
    int nHelp = 0;
};

// 3: "+STGI: 3,\"Capital of France?\",1,1,12,\"\",1" (text, ESTKInputFormat, shortest and longest answer,
// default answer, echo 1 shown 0 hidden, help 0/1).
struct TSTKGetInputReq {
    std::wstring wstrText;
    int nFormat = STK_FORMAT_SMS_ALPHABET;
    int nMinLength = 0;
    int nMaxLength = 255;
    std::wstring wstrDefaultText;
    int nEcho = 1;
    int nHelp = 0;
};

// 6: "+STGI: 6,\"Ring\",1,1,5" (text, tone, duration unit 0 minutes 1 seconds 2 tenths, duration; 0 none).
struct TSTKPlayToneReq {
    std::wstring wstrText;
    int nTone = 0;
    int nDurationUnit = 1;
    int nDuration = 0;
};

// 9: "+STGI: 9,0" (refresh type: 0 full initialisation and file change, 1 file change, 2 initialisation
// and file change, 3 initialisation, 4 reset; the file list as the modem gives it).
struct TSTKRefreshReq {
    int nRefreshType = 0;
    std::wstring wstrFileList;
};

// 12, 13, 14: "+STGI: 12,\"Sending...\"" (the text to show while sending; then the SS or USSD string where
// the modem gives it).
struct TSTKSendSMSReq {
    std::wstring wstrText;
};
struct TSTKSendSSReq {
    std::wstring wstrText;
    std::wstring wstrSSString;
};
struct TSTKSendUSSDReq {
    std::wstring wstrText;
    std::wstring wstrUSSDString;
};

// 15: "+STGI: 15,\"Call us?\",\"+4912345\",0,\"Calling...\"" (confirmation text, number, qualifier 0-5: set
// up only if no other call / put others on hold / disconnect others, with or without redial, text while the
// call is set up).
struct TSTKSetupCallReq {
    std::wstring wstrConfirmText;
    std::string strNumber;
    int nQualifier = 0;
    std::wstring wstrCallText;
};

// 16: "+STGI: 16,4,5" (the events to report: 4 user activity, 5 idle screen available, ...).
struct TSTKSetupEventListReq {
    std::list<int> lstEvents;
};

// 18: "+STGI: 18,\"Welcome\"".
struct TSTKSetupIdleModeTextReq {
    std::wstring wstrText;
};

// 23: "+STGI: 23,\"Sending tones\",\"1234\"" (text, DTMF string).
struct TSTKSendDTMFReq {
    std::wstring wstrText;
    std::string strDTMF;
};

// 24: "+STGI: 24,\"en\"" (the language, two letters; empty: no specific language).
struct TSTKLanguageNotificationReq {
    std::string strLanguage;
};

// Events 256 and 257 carry nothing but their number: "+STGI: 256".
struct TSTKIdleScreenNotification {
    int nEvent = STK_MODEM_IDLE_SCREEN_AVAILABLE;
};
struct TSTKUserActivityNotification {
    int nEvent = STK_MODEM_USER_ACTIVITY;
};
