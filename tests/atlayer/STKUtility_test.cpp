#include <string>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "STKUtility.h"

namespace {

using namespace at_test;

const char* const kUntouched = "untouched";

using STKUtilityTest = FamilyTest<CSTKUtility>;

TEST_F(STKUtilityTest, HandleReportFetchesTheAnnouncedCommand) {
    // clang-format off
    // command: null: nothing may be sent
    struct Row { const char* line; const char* command; const char* answer; int failure; int result; const char* text; };
    const char* const selectItem = "\r\n+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"\r\n+STGI: 11,2,\"About\"\r\n\r\nOK\r\n";
    const Row rows[] = {
        {"+STIN: 11", "AT+STGI=11\r", selectItem, 0, 0, selectItem},
        {"+STIN:1", "AT+STGI=1\r", "\r\n+STGI: 1,\"Hi\",0,1\r\n\r\nOK\r\n", 0, 0, "\r\n+STGI: 1,\"Hi\",0,1\r\n\r\nOK\r\n"},
        {"\r\n+STIN: 3\r\n", "AT+STGI=3\r", "\r\nOK\r\n", 0, 0, "\r\nOK\r\n"},
        // The card ended the dialogue: answered without asking the modem.
        {"+STIN: 20", nullptr, nullptr, 0, 0, "+STGI:20\r\nOK"}, {"+STIN:20\r\n", nullptr, nullptr, 0, 0, "+STGI:20\r\nOK"},
        // The fetch's error answer is handed up as it is.
        {"+STIN: 6", "AT+STGI=6\r", "\r\n+CME ERROR: 3\r\n", 0, 0, "\r\n+CME ERROR: 3\r\n"}, {"+STIN: 2", "AT+STGI=2\r", nullptr, 2, 2, kUntouched},
        {"+STIN: 2", "AT+STGI=2\r", nullptr, 30, 30, kUntouched}, {"+STIN: ", nullptr, nullptr, 0, 1, kUntouched},
        {"+STIN: x", nullptr, nullptr, 0, 1, kUntouched}, {"+STGI: 11", nullptr, nullptr, 0, 1, kUntouched},
        {"+STIN: 99999999999", nullptr, nullptr, 0, 1, kUntouched}, {"", nullptr, nullptr, 0, 1, kUntouched},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.line));
        if (row.command != nullptr)
            Expect(fake, At(row.command).WithTimeout(5000).WithPrefix("+STGI:").WithFinals(kFinals),
                   row.answer != nullptr ? row.answer : "", row.failure);
        std::string text = kUntouched;
        EXPECT_EQ(family.HandleReport(row.line, text), row.result);
        EXPECT_EQ(text, row.text);
        fake.VerifyDone();
    }
    std::string text = kUntouched;
    EXPECT_EQ(family.HandleReport(nullptr, text), 1);
}

} // namespace
