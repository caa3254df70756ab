#include "HomeRegion.h"
#include "PhoneNumbers.h"

#include <gtest/gtest.h>

using PhoneNumbers::Refusal;

// What people type, read with a German and a British SIM, and with no SIM country at all.
TEST(PhoneNumbers, ParsesWhatPeopleType) {
    // clang-format off
    // dial: nullptr: refused with `refusal`
    struct Row { const char* typed; const char* region; const char* dial; Refusal refusal; };
    const Row rows[] = {
        {"+49 170 123 4567",           "DE", "+491701234567", Refusal::None},
        {"0170 1234567",               "DE", "+491701234567", Refusal::None},
        {"(0170) 123-4567",            "DE", "+491701234567", Refusal::None},
        {"0049.170.123.4567",          "DE", "+491701234567", Refusal::None},
        {"+44 7700 900123",            "DE", "+447700900123", Refusal::None},
        {"22255",                      "DE", "22255",         Refusal::None},
        {"112",                        "DE", "112",           Refusal::None},
        {"07700 900123",               "GB", "+447700900123", Refusal::None},
        {"0170/1234567",               "GB", "+441701234567", Refusal::None},
        {"0170 1234567",               "",   "01701234567",   Refusal::None},
        {"0049 170 1234567",           "",   "+491701234567", Refusal::None},
        {"*100#",                      "DE", nullptr,         Refusal::ServiceCode},
        {"abc",                        "DE", nullptr,         Refusal::Letters},
        {"0170 \xF0\x9F\x98\x80",      "DE", nullptr,         Refusal::BadCharacter},
        {"49+170",                     "DE", nullptr,         Refusal::BadCharacter},
        {"",                           "DE", nullptr,         Refusal::Empty},
        {" ( ) ",                      "GB", nullptr,         Refusal::Empty},
        {"1234567890123456789012345",  "DE", nullptr,         Refusal::WrongLength},
        {"+999 123456",                "DE", nullptr,         Refusal::BadCountryCode},
    };
    // clang-format on
    for (const Row& row : rows) {
        const PhoneNumbers::DialString result = PhoneNumbers::Parse(row.typed, row.region);
        SCOPED_TRACE(std::string(row.typed) + " in " + row.region + ": " + result.reason);
        EXPECT_EQ(result.refusal, row.refusal);
        EXPECT_EQ(result.number, row.dial ? row.dial : "");
        EXPECT_EQ(result.reason.empty(), row.dial != nullptr);
    }
    EXPECT_EQ(PhoneNumbers::Parse("abc", "DE").reason, "letters are not allowed in a phone number: 'abc'");
}

TEST(PhoneNumbers, FormatsAndMatchesStoredNumbers) {
    // clang-format off
    struct Row { const char* number; const char* region; const char* reading; };
    const Row reading[] = {
        {"+491701234567", "DE", "0170 1234567"},
        {"+447700900123", "DE", "+44 7700 900123"},
        {"22255",         "DE", "22255"},
        {"+491701234567", "",   "+49 170 1234567"},
        {"Vodafone",      "DE", "Vodafone"},
        {"",              "DE", ""},
    };
    // clang-format on
    for (const Row& row : reading)
        EXPECT_EQ(PhoneNumbers::ForReading(row.number, row.region), row.reading) << row.number;

    // clang-format off
    struct Match { const char* a; const char* b; const char* region; bool same; };
    const Match matches[] = {
        {"+4917012345",   "017012345",     "DE", true},
        {"+4917012345",   "017012345",     "",   true},
        {"+491701234567", "+491701234568", "DE", false},
        {"+447700900123", "07700900123",   "DE", false},
        {"22255",         "+4917022255",   "DE", false},
        {"Vodafone",      "Vodafone",      "DE", true},
        {"",              "",              "DE", false},
    };
    // clang-format on
    for (const Match& row : matches)
        EXPECT_EQ(PhoneNumbers::SameNumber(row.a, row.b, row.region), row.same) << row.a << " ~ " << row.b;

    EXPECT_EQ(HomeRegion::fromImsiOrNetwork("262011234567890", "23410"), "DE");
    EXPECT_EQ(HomeRegion::fromImsiOrNetwork("", "23410"), "GB");
    EXPECT_EQ(HomeRegion::fromImsiOrNetwork("", ""), "");
}
