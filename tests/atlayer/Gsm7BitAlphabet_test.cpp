#include <string>

#include <gtest/gtest.h>

#include "Gsm7BitAlphabet.h"

namespace {

// The default alphabet as 3GPP TS 23.038 draws it, code 0x00 first, with this system's choices at 0x09
// (capital C cedilla) and 0x1B (no-break space in place of the escape).
const std::wstring kTs23038Default = L"@£$¥èéùìòÇ\nØø\rÅå"
                                     L"Δ_ΦΓΛΩΠΨΣΘΞ\u00A0ÆæßÉ"
                                     L" !\"#¤%&'()*+,-./"
                                     L"0123456789:;<=>?"
                                     L"¡ABCDEFGHIJKLMNO"
                                     L"PQRSTUVWXYZÄÖÑÜ§"
                                     L"¿abcdefghijklmno"
                                     L"pqrstuvwxyzäöñüà";

TEST(Gsm7BitAlphabet, DefaultTableMatchesTheStandard) {
    ASSERT_EQ(kTs23038Default.size(), 128u);
    for (unsigned code = 0; code < 128; ++code) {
        EXPECT_EQ(v_wDefault7BitTable[code], kTs23038Default[code]) << "code 0x" << std::hex << code;
        EXPECT_EQ(Gsm7DefaultToUnicode(code), kTs23038Default[code]);
        // Every character is there once, so it finds its own code again.
        EXPECT_EQ(Gsm7DefaultCode(kTs23038Default[code]), static_cast<int>(code))
            << "code 0x" << std::hex << code;
    }
    // Codes outside the tables have no character.
    for (unsigned code : {0x80u, 0xFFu, 0x1000u})
        EXPECT_EQ(std::wstring({Gsm7DefaultToUnicode(code), Gsm7ExtensionToUnicode(code)}),
                  std::wstring(2, kGsm7NoChar));
}

TEST(Gsm7BitAlphabet, EncodesCharacters) {
    // clang-format off
    // septets: 0: not in the alphabet
    const struct { wchar_t character; int septets; unsigned char code; } rows[] = {
        {L'@', 1, 0x00},   {L'$', 1, 0x02},     {L'\n', 1, 0x0A}, // line feed from the default table
        {L'\r', 1, 0x0D},  {L'Ç', 1, 0x09},     {L'ç', 0, 0},       {L'¤', 1, 0x24},      {L'Ω', 1, 0x15},
        {L'\u2126', 0, 0}, {L'¿', 1, 0x60},     {L'à', 1, 0x7F},    {L'\u00A0', 1, 0x1B}, {L'€', 2, 0x65},
        {L'{', 2, 0x28},   {L'}', 2, 0x29},     {L'\\', 2, 0x2F},   {L'[', 2, 0x3C},      {L'~', 2, 0x3D},
        {L']', 2, 0x3E},   {L'|', 2, 0x40},     {L'^', 2, 0x14},    {L'`', 0, 0},         {L'\0', 0, 0},
        {L'\u0100', 0, 0}, {kGsm7NoChar, 0, 0}, {L'\x1F600', 0, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "U+" << std::hex << static_cast<long>(row.character));
        unsigned char code = 0xEE;
        EXPECT_EQ(UnicodeToGsm7(row.character, code), row.septets);
        EXPECT_EQ(code, row.septets == 0 ? 0xEE : row.code);
        EXPECT_EQ(IsGsm7Char(row.character), row.septets != 0);
        if (row.septets == 2) {
            EXPECT_EQ(Gsm7ExtensionCode(row.character), row.code);
        }
    }
    // Line feed sits in both tables; searched alone, the extension table finds it at the page break.
    EXPECT_EQ(Gsm7ExtensionCode(L'\n'), 0x0A);
    EXPECT_EQ(Gsm7ExtensionCode(L'@'), -1);
}

} // namespace
