#pragma once

// Text codecs of the simulated modem: UTF-8/UTF-32, the GSM 7-bit default alphabet with its extension
// table (3GPP TS 23.038), septet packing, UTF-16BE ("UCS2") hex and the USSD text forms. Pure functions
// over strings; no I/O, nothing throws, every input is untrusted and every read is bounded.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

using Bytes = std::vector<uint8_t>;

// UTF-8 to UTF-32; each malformed sequence (bad lead byte, truncated, overlong, surrogate, above
// U+10FFFF) becomes one U+FFFD.
std::u32string Utf8ToUtf32(std::string_view utf8);
// UTF-32 to UTF-8; surrogates and values above U+10FFFF are written as U+FFFD.
std::string Utf32ToUtf8(std::u32string_view text);

// The character of a default-alphabet code (0-127); 0x1B, the escape, reads as U+00A0 and codes above
// 127 as U+FFFD.
char32_t Gsm7ToUnicode(uint8_t code);
// The character of the extension-table code that follows an escape, or 0 when the table has none there.
char32_t Gsm7ExtensionToUnicode(uint8_t code);
// Appends the one septet (default table) or two septets (escape, extension code) of c; false and nothing
// appended when neither table holds c.
bool AppendGsm7(char32_t c, Bytes* septets);

bool FitsGsm7(const std::u32string& text);
// Septets the text costs: extension characters count 2, all others 1 (a character outside both tables
// counts 1, as the "?" it is sent as).
int Gsm7SeptetCount(const std::u32string& text);
// One septet per output byte; characters outside both tables become "?".
Bytes TextToGsm7(const std::u32string& text);
// The reverse: escape plus extension code gives the extension character; an escape before a code the
// extension table does not hold gives that code's default character (TS 23.038's rule for receivers); a
// trailing escape is dropped; bytes above 127 give U+FFFD.
std::u32string Gsm7ToText(std::span<const uint8_t> septets);

// Packs septets low bits first after fillBits (0-6) zero bits; the result has (fill + 7n + 7) / 8 octets.
Bytes PackSeptets(std::span<const uint8_t> septets, int fillBits);
// Unpacks up to count septets that start after fillBits bits; stops early at the end of the octets.
Bytes UnpackSeptets(std::span<const uint8_t> octets, size_t count, int fillBits);

// UTF-16 big-endian octets, surrogate pairs for characters above U+FFFF.
Bytes TextToUtf16Be(const std::u32string& text);
// The reverse; an unpaired surrogate gives U+FFFD, a trailing odd octet is ignored.
std::u32string Utf16BeToText(std::span<const uint8_t> octets);
// Number of UTF-16 units of the text (2 for characters above U+FFFF).
int Utf16UnitCount(const std::u32string& text);

// Hex digit value, -1 for anything but 0-9, A-F, a-f.
int HexDigitValue(char c);
// Upper-case hex, two digits per octet.
std::string ToHex(std::span<const uint8_t> octets);
// Accepts upper and lower case; false (out emptied) on an odd length or a non-hex character.
bool FromHex(std::string_view hex, Bytes* out);

// "UCS2" hex as modems print it after AT+CSCS="UCS2" (phonebook names, USSD): UTF-16BE, upper case.
std::string TextToUcs2Hex(std::string_view utf8);
// False on a length that is not a multiple of four or a non-hex character.
bool Ucs2HexToText(std::string_view hex, std::string* utf8);

// USSD request argument of AT+CUSD=1,"<text>",15. With the character set "UCS2" the text is groups of
// four hex digits; a group below 0x80 is a default-alphabet code (the host sends "*100#" as
// 002A0031003000300023, "$" as 0002), a larger one a UTF-16 unit. With any other set the text is taken
// as it stands. False when the UCS2 form is malformed.
bool DecodeUssdRequest(std::string_view arg, std::string_view cscs, std::string* utf8);

// USSD answer text for "+CUSD: <m>,"<hex>",<dcs>": with AT+CSCS="UCS2", or when the text does not fit the
// default alphabet, UCS2 hex with dcs 72; otherwise packed 7-bit hex with dcs 15.
std::string EncodeUssdAnswer(std::string_view utf8, std::string_view cscs, int* dcs);
// Packed 7-bit USSD string (TS 23.038 6.1.2.3.1): seven spare bits at the end, or a final <CR> on an
// octet boundary, get a <CR> pad so that the receiver cannot read them as "@".
std::string EncodeUssdGsm7Hex(const std::u32string& text);
// The reverse, dropping the <CR> pad; false on malformed hex.
bool DecodeUssdGsm7Hex(std::string_view hex, std::string* utf8);

// SIM alpha identifier (TS 11.11 annex B, as AT+SPNM and EF_SPN carry it): default-alphabet codes with
// bit 8 clear when the text fits, else 0x80 followed by UCS2 big-endian.
Bytes EncodeSimAlphaId(std::string_view utf8);

} // namespace modemsim
