#pragma once

// The GSM 7-bit default alphabet of 3GPP TS 23.038 and its extension table, shared by the SMS codec,
// USSD and the operator-name decoding. Codes index the tables; positions without a character in the
// extension table hold kGsm7NoChar. Two positions differ from the standard's wording and are kept:
// the escape position 0x1B holds U+00A0 and the page-break position 10 of the extension table holds
// U+000A.

constexpr int kGsm7TableSize = 128;
constexpr unsigned char kGsm7Escape = 0x1B;
constexpr wchar_t kGsm7NoChar = 0xFFFF;

extern const wchar_t v_wDefault7BitTable[kGsm7TableSize];
extern const wchar_t v_wDefault7BitExtensionTable[kGsm7TableSize];

// The character of a default-alphabet code; kGsm7NoChar for codes of 0x80 and above.
wchar_t Gsm7DefaultToUnicode(unsigned int code);

// The character a code stands for after the escape; kGsm7NoChar where the table has none.
wchar_t Gsm7ExtensionToUnicode(unsigned int code);

// The position of c in the default table, or -1.
int Gsm7DefaultCode(wchar_t c);

// The position of c in the extension table, or -1.
int Gsm7ExtensionCode(wchar_t c);

// How c is written: 1 with its default code, 2 with its extension code (sent after the escape),
// 0 when the alphabet lacks it (code is then left alone). The default table is tried first.
int UnicodeToGsm7(wchar_t c, unsigned char& code);

// True when c is in the default table or the extension table.
bool IsGsm7Char(wchar_t c);
