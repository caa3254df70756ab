#pragma once

#include <QString>

#include <cstdint>
#include <list>
#include <string>

// Operator account menus: the USSD services of one SIM's operator, read from an XML data file.
//
//   <ROOT>
//     <LANGUAGE LANGUAGE_ID="0">
//       <TIP>hex</TIP>
//       <GROUP>
//         <GROUP_STRING>hex</GROUP_STRING> <GROUP_TYPE_FOR>1</GROUP_TYPE_FOR>
//         <ITEM>
//           <ITEM_STRING>hex</ITEM_STRING> <ITEM_TYPE_FOR>0</ITEM_TYPE_FOR>
//           <TITLE_STRING>hex</TITLE_STRING> <PROMPT_STRING>hex</PROMPT_STRING>
//           <INPUT_SETTING><INPUT>
//             <INPUT_TITLE_STRING>hex</INPUT_TITLE_STRING> <INPUT_STRING>hex</INPUT_STRING>
//             <INPUT_LIMITATION>0123456789</INPUT_LIMITATION>
//             <INPUT_MAXLEN>16</INPUT_MAXLEN> <INPUT_MINLEN>12</INPUT_MINLEN>
//           </INPUT></INPUT_SETTING>
//           <BUTTON_SETTING><BUTTON>
//             <BUTTON_NAME>hex</BUTTON_NAME> <BUTTON_CODE>*100#</BUTTON_CODE>
//           </BUTTON></BUTTON_SETTING>
//         </ITEM>
//       </GROUP>
//     </LANGUAGE>
//   </ROOT>
//
// "hex" texts are UCS-2 written as four hex digits per character ("0042" is "B"); limitation and code
// are plain ASCII. GROUP_TYPE_FOR, ITEM_TYPE_FOR, INPUT_SETTING and BUTTON_SETTING may be left out; every
// other element named above is required.

struct _TAccountInputItem {
    std::wstring strTitle;
    std::wstring strText;
    std::wstring strLimitation; // the characters the field accepts
    int32_t nMaxLen = 0;
    int32_t nMinLen = 0;
};

struct _TAccountButtonItem {
    std::wstring strName;
    std::wstring strCode; // the USSD string the button sends
};

struct _TAccountUSSDItem {
    std::wstring strText;
    int32_t nType = 0;
    std::wstring strTitle;
    std::wstring strPrompt;
    std::list<_TAccountInputItem> inputs;
    std::list<_TAccountButtonItem> buttons;
};

struct _TAccountGroupItem {
    std::wstring strName;
    int32_t nType = 0;
    std::list<_TAccountUSSDItem> items;
};

struct _TAccountData {
    int32_t nLanguageID = -1;
    std::wstring strTip;
    std::list<_TAccountGroupItem> groups;
};

// Groups of four hex digits, one UTF-16 code unit each; "" for a length that is not a multiple of 4, a
// null text, or a digit that is not hex.
std::wstring UnicodeHex2WString(const char* text);
// One wide character per byte; "" for a null text.
std::wstring ASCII2WString(const char* text);

// Reads the menus of one language into data (languageIndex -1: the first language with an identifier).
// Returns 0 after a full read and also when there is nothing to read (no file, no "ROOT", no such
// language: data.groups stays empty), -1 for a broken file (a required element missing; data.groups is
// left empty). The faults are printed on the debug sink.
int GetUSSDDataFromFile(const QString& path, _TAccountData& data, int languageIndex);

// The wide texts of the records, for the views.
QString WStringToQString(const std::wstring& text);
