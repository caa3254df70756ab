#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "ExecATCallback.h"
#include "UssdTypes.h"

// USSD: sending a string (AT+CUSD=1,...,15), cancelling a dialogue (AT+CUSD=2), the presentation state
// (AT+CUSD?), the terminal character set (AT+CSCS) and decoding the network's "+CUSD:" reports. The class
// name is spelled so on purpose. Operations return 0 on success, else the execute-AT code or 1.
//
// The object remembers whether a dialogue is running: set when the modem accepts a string or the network
// asks for a reply (m = 1), cleared when the network ends it (m 0, 2, 4, 5), when AT+CUSD? reads 0 or when
// a cancel is accepted. Only a cancel looks at it: with no dialogue running nothing is sent.
class CUssdUility {
public:
    CUssdUility() = default;
    virtual ~CUssdUility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command; on success, when expected is given and found, the response is cut to the line that
    // starts with it ("+CUSD: 0\r\n"). 1 without a callback, else the callback's code.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR:", "ERROR"});

    // The presentation state of "+CUSD: 0"; 1 when the answer has none.
    int CheckUssdState(int& state);
    int SetUssdState(int& state);
    // Switches the terminal set to UCS2 (its result ignored) and sends the text's default-alphabet codes,
    // each as "00XX"; characters the default table lacks are dropped. Coding scheme 15.
    int SendUssdCmd(const wchar_t* text);
    // Asks AT+CUSD? first; sends AT+CUSD=2 only while a dialogue is running, else returns 0.
    int SendUssdCancelCmd();
    // The terminal set of the AT+CSCS? answer, searched for "UCS2" (5), "IRA" (2), "GSM" (0), "HEX" (1)
    // in this order; 1 (set left alone) for any other set.
    int getEcodingFormat(int& set);
    // set: a TUssdTeCharSet; codePage is used for PCCP ("PCCP437"), part for 8859 ("8859-1").
    // 1 without sending for an unknown set.
    int SelectTeCharacterSet(int set, int codePage, int part);
    // line: a "+CUSD: 1,\"00480069\",72" report. Asks the terminal set (every time; its failure is
    // returned), then decodes the report into item with ParseCusdReport and updates the dialogue state.
    // A report that cannot be read is no error: 0 with the text empty.
    int Receive(const char* line, TUssdItem& item);

    // True while a dialogue is running.
    bool IsDialogueActive() const { return m_nDialogueActive != 0; }

    // Reads a report line with the terminal set teSet. Clears item.wstrContent; returns 1 when there is no
    // "+CUSD: m" (nType left alone), else sets nType to m, decodes what text there is and returns 0. With
    // answers read leniently the blank and the coding scheme (then 0) may be missing.
    static int ParseCusdReport(const char* line, int teSet, TUssdItem& item);
    // Decodes a report's quoted text with its data coding scheme: hex (an even count of hex digits) or, in
    // the default alphabet, the text itself. Read leniently, dcs 0x11 is UCS2 after a language indication
    // (dropped), and a default-alphabet hex text with an octet of 0x80 or above is packed septets.
    static void DecodeReportString(const std::string& text, uint8_t dcs, int teSet, bool lenient,
                                   std::wstring& out);
    // Decodes the octets of a report's text in alphabet (TUssdAlphabet) with the terminal set teSet.
    static void DecodeReportText(const uint8_t* octets, int count, int alphabet, int teSet,
                                 std::wstring& text);

    // The TUssdAlphabet of a data coding scheme by its coding bits: 72 (0x48) is UCS2, 68 (0x44) 8-bit
    // data, 15 (0x0F) reserved, which reports decode as the default alphabet.
    static int DecodeDcsAlphabet(uint8_t dcs);
    // True for characters of the default alphabet or its extension table.
    static bool IsDefault7BitChar(wchar_t c);
    // 0 when every character is a default-alphabet or extension character, else 2.
    static int GetEncodeType(const std::wstring& text);
    // 1 and the code for characters of the default table, else 0 (code left alone).
    static int WCharToDefault7Bit(wchar_t c, uint8_t& code);
    // Writes the codes of the characters the default table holds, dropping the others, at most
    // outSize - 1 of them; the last octet of out stays zero. Returns the codes written.
    static int WStringToDefault7Bit(const wchar_t* text, uint8_t* out, int outSize);
    // Each character's low 16 bits, big-endian in memory; returns the units written.
    static int WStringToBigEndianUcs2(const wchar_t* text, int count, uint16_t* out, int outSize);
    // '0'-'9', 'A'-'F', 'a'-'f' to 0-15, anything else -1.
    static int HexCharToInt(char c);
    // The text between a leading double quote and the next one; 1 (out left alone) when text does not
    // start with a quote or has no closing one.
    static int GetQuotationString(const char* text, std::string& out);

private:
    ExecATCallback m_pfnExecAT = nullptr;
    int m_nDialogueActive = 0;
};
