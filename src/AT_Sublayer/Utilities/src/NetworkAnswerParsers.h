#pragma once

#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "NetworkTypes.h"

// Readers of the network family's longer answers, plain functions over the answer text.

// AT+COPS? answer: +COPS: 0,2,"46000",2   mode, format, operator, access technology.
// Reads what is there over the defaults already in info; the operator only when 1 to 16 characters
// long. 1 without "+COPS: ".
int ParseCopsAnswer(const std::string& answer, TNetworkBaseInfo& info);

// AT+COPS=? answer: +COPS: (2,"CHINA MOBILE","CMCC","46000",2),(1,...),,(0,1,2,3,4),(0,1,2)
// Appends the operators up to the ",," that starts the supported-mode lists; an item longer than 45
// characters or without its ')' ends the list. Read leniently, each item is read field by field (quoted,
// bare or empty; names in UCS2 hex when the numeric name is; a name too long for its field is cut) and
// only an item without its ')' ends the list. 1 without "+COPS: ".
int ParseCopsListAnswer(const std::string& answer, std::list<TNetworkListItem>& items);

// AT+SPNM answer: +SPNM: 01 80 00 41 00 42 FF FF   the SIM's EF-SPN in hexadecimal, display byte first.
// Zeroes info, reads at most 17 bytes, decodes the name and marks info present. 1 without "+SPNM: " or
// the line end behind it.
int ParseSpnmAnswer(const std::string& answer, TServiceProviderInfo& info);

// AT+CRSM=176,28486,0,0,17 answer: +CRSM: 144,0,"0141424344FFFF..."   status words, then EF-SPN in
// hexadecimal as for ParseSpnmAnswer. 1 without "+CRSM:", for a status other than 144 (normal ending)
// or without the quoted data.
int ParseCrsmSpnAnswer(const std::string& answer, TServiceProviderInfo& info);

// AT+CREG? answer after AT+CREG=2: +CREG: 2,1,"1A2B","00C3D4",2   mode, stat, area, cell, access
// technology. The first line with mode and stat counts (an unsolicited "+CREG: 1,..." has no mode); its
// access technology, or -1 when it has none. stat is -1 without such a line.
int ParseCregAccessTechnology(const std::string& answer, int& stat);

// Decodes a SIM alpha identifier (3GPP TS 11.11 Annex B: 0x80 UCS2, 0x81 and 0x82 UCS2 with a base,
// else GSM default alphabet up to 0xFF) into at most size characters; returns how many were written.
int DecodeSimAlphaIdentifier(const unsigned char* bytes, int length, char16_t* name, int size);

// AT+SPDI answer: +SPDI: A3 0E 80 0C 64 F0 00 64 F0 10 FF FF FF 13 00 62
// The EF-SPDI list: one slot per 3 octets of the PLMN list's length, each "46000" or "310260", all zero
// for an FFFFFF entry; count is the slots less the empty ones. Without "+SPDI: ", its line end, the A3
// tag or a length, count is 0 and entries empty.
void ParseSpdiAnswer(const std::string& answer, int& count, std::vector<TSpdiEntry>& entries);

// One operator of the AT+COPS=? list, the text between its brackets: 2,"Long name","Short","46000",2.
// A name that does not fit its field stays empty; the access technology is 3 when the item has none.
void ParseCopsListItem(std::string_view text, TNetworkListItem& item);

// Copies text without blanks into the zeroed buffer, at most size - 1 characters; 1 when they did not all
// fit.
int CopyWithoutBlanks(std::string_view text, char* buffer, int size);

// Decodes GSM default-alphabet bytes (3GPP TS 23.038, with the extension table after 0x1B), one byte per
// character, into at most size characters (no terminator added); a byte of 0x80 or more, or an escape
// without an extension character behind it, gives a blank. Returns the input bytes used.
int DecodeDefault7Bit(const unsigned char* bytes, int length, wchar_t* text, int size);
