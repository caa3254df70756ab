#pragma once

#include <cstdint>
#include <string>

// Longest text SendUssdCmd sends, in default-alphabet codes; the rest of a longer text is dropped.
constexpr int kUssdMaxSendCodes = 999;
// Most octets Receive decodes from one report's hex text (a 182-character answer in UCS2 needs 364);
// the rest of a longer text is dropped, so a decoded text never exceeds this many characters.
constexpr int kUssdMaxReportOctets = 1000;

// Alphabets of a USSD data coding scheme (3GPP TS 23.038 clause 5).
enum TUssdAlphabet : int {
    USSD_ALPHABET_7BIT = 0,
    USSD_ALPHABET_8BIT = 1,
    USSD_ALPHABET_UCS2 = 2,
    USSD_ALPHABET_RESERVED = 3,
};

// Terminal character sets of AT+CSCS, by the identifiers SelectTeCharacterSet and getEcodingFormat use.
enum TUssdTeCharSet : int {
    USSD_TE_GSM = 0,
    USSD_TE_HEX = 1,
    USSD_TE_IRA = 2,
    USSD_TE_PCCP = 3,
    USSD_TE_PCDN = 4,
    USSD_TE_UCS2 = 5,
    USSD_TE_8859_N = 6,
    USSD_TE_8859_C = 7,
    USSD_TE_8859_A = 8,
    USSD_TE_8859_G = 9,
    USSD_TE_8859_H = 10,
};

// A decoded "+CUSD: 1,\"00480069\",72" report: the result code m and the text (at most
// kUssdMaxReportOctets characters).
struct TUssdItem {
    int32_t nType = 0;
    std::wstring wstrContent;
};
