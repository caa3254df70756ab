#include <string>

#include <gtest/gtest.h>

#include "FailureText.h"
#include "ModemErrorCause.h"

TEST(ModemErrorCause, ReadsTheLastCauseNumericOrVerbose) {
    // clang-format off
    struct Row { const char* answer; int cause; };
    const Row rows[] = {
        {"\r\n+CME ERROR: 20\r\n", kCmeCause + 20},
        {"\r\n+CME ERROR: memory full\r\n", kCmeCause + 20},
        {"\r\n+CME ERROR: network not allowed - emergency calls only\r\n", kCmeCause + 32},
        {"\r\n+CME ERROR: Text String Too Long \r\n", kCmeCause + 24},
        {"\r\n+CMS ERROR: 322\r\n", kCmsCause + 322},
        {"+CMS ERROR:331", kCmsCause + 331},
        {"\r\n+CPBR: 1,\"5500\",129,\"Mailbox\"\r\n\r\n+CME ERROR: 21\r\n", kCmeCause + 21},
        {"\r\n+CME ERROR: 10\r\n\r\n+CMS ERROR: 314\r\n", kCmsCause + 314},
        {"\r\nOK\r\n", 0},
        {"\r\n+CME ERROR: \r\n", 0},
        {"\r\n+CME ERROR: something the modem made up\r\n", 0},
        {"\r\n+CMS ERROR: memory full\r\n", 0},
        {"+CME ERROR: 99999999999999", 0},
    };
    // clang-format on
    for (const Row& row : rows)
        EXPECT_EQ(ModemErrorCause(row.answer), row.cause) << row.answer;
}

TEST(FailureText, SaysTheCauseAndWhatToDoInEachFrontEnd) {
    // clang-format off
    struct Row { int code; int cause; FrontEnd frontEnd; const char* text; };
    const Row rows[] = {
        {1, kCmeCause + 11, FrontEnd::Tool, "the SIM is locked: dialtone pin verify PIN"},
        {1, kCmeCause + 11, FrontEnd::DesktopApp, "the SIM is locked: enter its PIN with \"Unlock the SIM\""},
        {1, kCmsCause + 316, FrontEnd::Tool, "the SIM is locked until its PUK is entered: dialtone pin puk PUK NEWPIN"},
        {1, kCmeCause + 20, FrontEnd::Tool, "the store is full: delete an entry first"},
        {1, kCmsCause + 322, FrontEnd::Tool, "the message store is full: delete messages first (dialtone sms list, then dialtone sms delete ID)"},
        {1, kCmeCause + 32, FrontEnd::DesktopApp, "the network refuses the SIM, emergency calls only: choose another operator, or automatic selection"},
        {1, kCmeCause + 10, FrontEnd::DesktopApp, "there is no SIM in the modem: insert one and plug the modem in again"},
        {1, kCmeCause + 777, FrontEnd::Tool, "the modem reported a failure"},
        {2, 0, FrontEnd::Tool, "the modem did not answer in time"},
    };
    // clang-format on
    for (const Row& row : rows)
        EXPECT_EQ(FailureText(row.code, row.cause, row.frontEnd), row.text) << row.cause;
    EXPECT_EQ(ModemCauseName(kCmsCause + 322), "+CMS ERROR: 322");
    EXPECT_EQ(ModemCauseName(0), "");
}

TEST(FailureText, SimStatesThatKeepCommandsFromRunning) {
    // clang-format off
    struct Row { int pinState; bool unusable; int code; const char* text; };
    const Row rows[] = {
        {1, false, 0, ""},
        {0, true, 8, "there is no SIM in the modem: insert one and plug the modem in again"},
        {2, true, 9, "the SIM is locked: dialtone pin verify PIN"},
        {3, true, 10, "the SIM is locked until its PUK is entered: dialtone pin puk PUK NEWPIN"},
        {17, true, 10, "the SIM is blocked: its PUK attempts are used up, only the operator can replace it"},
        {4, true, 5, "the modem is locked (PH-SIM PIN required): it needs its unlock code from the seller"},
    };
    // clang-format on
    for (const Row& row : rows) {
        std::string text;
        int code = 0;
        EXPECT_EQ(SimUnusable(row.pinState, text, code), row.unusable) << row.pinState;
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(code, row.code);
    }
}
