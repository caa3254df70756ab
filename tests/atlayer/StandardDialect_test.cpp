#include <string>

#include <gtest/gtest.h>

#include "NetworkAnswerParsers.h"
#include "PinUtility.h"

// Answers of sticks that speak only 27.007: attempt counters, access technology, the SIM's EF-SPN.
namespace {

TEST(StandardDialectParse, CountersTechnologyAndProviderName) {
    struct Row {
        const char* modem;
        std::string answer;
        int value; // attempts of "SIM PUK", access technology, or the display byte; -1 none
        std::u16string name;
    };
    // clang-format off
    const Row counters[] = {
        {"3GPP reference", "\r\n+CPINR: SIM PIN,3,3\r\n+CPINR: SIM PUK,10,10\r\n\r\nOK\r\n", 10, u""},
        {"code quoted", "\r\n+CPINR: \"SIM PIN2\",2,3\r\n+CPINR: \"SIM PUK\",7,10\r\n\r\nOK\r\n", 7, u""},
        {"only PUK2 listed", "\r\n+CPINR: SIM PUK2,9,10\r\n\r\nOK\r\n", -1, u""},
    };
    const Row registrations[] = {
        {"HSPA cell", "\r\n+CREG: 2,1,\"1A2B\",\"00C3D4\",6\r\n\r\nOK\r\n", 6, u""},
        {"report just before the answer", "\r\n+CREG: 1,\"1A2B\",\"00C3D4\",0\r\n+CREG: 2,5,\"1A2B\",\"00C3D4\",2\r\n\r\nOK\r\n", 2, u""},
        {"AT+CREG=2 refused", "\r\n+CREG: 0,1\r\n\r\nOK\r\n", -1, u""},
    };
    const Row names[] = {
        {"UCS2, lower-case hex", "\r\n+CRSM: 144,0,\"00800041006300 6d0065ffff\"\r\n\r\nOK\r\n", 0, u"Acme"},
        {"SIM without EF-SPN", "\r\n+CRSM: 148,4\r\n\r\nOK\r\n", -1, u""},
    };
    // clang-format on
    for (const Row& row : counters)
        EXPECT_EQ(CPinUtility::ParseCpinrAnswer(row.answer, "SIM PUK"), row.value) << row.modem;
    for (const Row& row : registrations) {
        int stat = -1;
        EXPECT_EQ(ParseCregAccessTechnology(row.answer, stat), row.value) << row.modem;
        EXPECT_NE(stat, -1) << row.modem;
    }
    for (const Row& row : names) {
        TServiceProviderInfo info;
        EXPECT_EQ(ParseCrsmSpnAnswer(row.answer, info), row.value < 0 ? 1 : 0) << row.modem;
        EXPECT_EQ(info.nPresent != 0 ? info.nDisplay : -1, row.value) << row.modem;
        EXPECT_EQ(std::u16string(info.wszSpName), row.name) << row.modem;
    }
}

} // namespace
