#include "Gsm7BitAlphabet.h"

// 3GPP TS 23.038 clause 6.2.1, default alphabet, code to character.
// clang-format off
const wchar_t v_wDefault7BitTable[kGsm7TableSize] = {
    0x0040, 0x00A3, 0x0024, 0x00A5, 0x00E8, 0x00E9, 0x00F9, 0x00EC, // @ £ $ ¥ è é ù ì
    0x00F2, 0x00C7, 0x000A, 0x00D8, 0x00F8, 0x000D, 0x00C5, 0x00E5, // ò Ç LF Ø ø CR Å å
    0x0394, 0x005F, 0x03A6, 0x0393, 0x039B, 0x03A9, 0x03A0, 0x03A8, // Δ _ Φ Γ Λ Ω Π Ψ
    0x03A3, 0x0398, 0x039E, 0x00A0, 0x00C6, 0x00E6, 0x00DF, 0x00C9, // Σ Θ Ξ (escape) Æ æ ß É
    0x0020, 0x0021, 0x0022, 0x0023, 0x00A4, 0x0025, 0x0026, 0x0027, //   ! " # ¤ % & '
    0x0028, 0x0029, 0x002A, 0x002B, 0x002C, 0x002D, 0x002E, 0x002F, // ( ) * + , - . /
    0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037, // 0 - 7
    0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F, // 8 9 : ; < = > ?
    0x00A1, 0x0041, 0x0042, 0x0043, 0x0044, 0x0045, 0x0046, 0x0047, // ¡ A - G
    0x0048, 0x0049, 0x004A, 0x004B, 0x004C, 0x004D, 0x004E, 0x004F, // H - O
    0x0050, 0x0051, 0x0052, 0x0053, 0x0054, 0x0055, 0x0056, 0x0057, // P - W
    0x0058, 0x0059, 0x005A, 0x00C4, 0x00D6, 0x00D1, 0x00DC, 0x00A7, // X Y Z Ä Ö Ñ Ü §
    0x00BF, 0x0061, 0x0062, 0x0063, 0x0064, 0x0065, 0x0066, 0x0067, // ¿ a - g
    0x0068, 0x0069, 0x006A, 0x006B, 0x006C, 0x006D, 0x006E, 0x006F, // h - o
    0x0070, 0x0071, 0x0072, 0x0073, 0x0074, 0x0075, 0x0076, 0x0077, // p - w
    0x0078, 0x0079, 0x007A, 0x00E4, 0x00F6, 0x00F1, 0x00FC, 0x00E0, // x y z ä ö ñ ü à
};
// clang-format on

namespace {
constexpr wchar_t N = kGsm7NoChar;
} // namespace

// 3GPP TS 23.038 clause 6.2.1.1, default extension table: the code that follows the escape.
// clang-format off
const wchar_t v_wDefault7BitExtensionTable[kGsm7TableSize] = {
    N, N, N, N, N, N, N, N, N, N, 0x000A, N, N, N, N, N, // 0x0A page break (U+000A)
    N, N, N, N, 0x005E, N, N, N, N, N, N, N, N, N, N, N, // 0x14 ^
    N, N, N, N, N, N, N, N, 0x007B, 0x007D, N, N, N, N, N, 0x005C, // 0x28 { 0x29 } 0x2F backslash
    N, N, N, N, N, N, N, N, N, N, N, N, 0x005B, 0x007E, 0x005D, N, // 0x3C [ 0x3D ~ 0x3E ]
    0x007C, N, N, N, N, N, N, N, N, N, N, N, N, N, N, N, // 0x40 |
    N, N, N, N, N, N, N, N, N, N, N, N, N, N, N, N,
    N, N, N, N, N, 0x20AC, N, N, N, N, N, N, N, N, N, N, // 0x65 euro sign
    N, N, N, N, N, N, N, N, N, N, N, N, N, N, N, N,
};
// clang-format on

wchar_t Gsm7DefaultToUnicode(unsigned int code) {
    return code < kGsm7TableSize ? v_wDefault7BitTable[code] : kGsm7NoChar;
}

wchar_t Gsm7ExtensionToUnicode(unsigned int code) {
    return code < kGsm7TableSize ? v_wDefault7BitExtensionTable[code] : kGsm7NoChar;
}

int Gsm7DefaultCode(wchar_t c) {
    for (int code = 0; code < kGsm7TableSize; ++code) {
        if (v_wDefault7BitTable[code] == c)
            return code;
    }
    return -1;
}

int Gsm7ExtensionCode(wchar_t c) {
    if (c == kGsm7NoChar)
        return -1;
    for (int code = 0; code < kGsm7TableSize; ++code) {
        if (v_wDefault7BitExtensionTable[code] == c)
            return code;
    }
    return -1;
}

int UnicodeToGsm7(wchar_t c, unsigned char& code) {
    if (const int found = Gsm7DefaultCode(c); found >= 0) {
        code = static_cast<unsigned char>(found);
        return 1;
    }
    if (const int found = Gsm7ExtensionCode(c); found >= 0) {
        code = static_cast<unsigned char>(found);
        return 2;
    }
    return 0;
}

bool IsGsm7Char(wchar_t c) {
    return Gsm7DefaultCode(c) >= 0 || Gsm7ExtensionCode(c) >= 0;
}
