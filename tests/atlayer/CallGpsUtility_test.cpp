#include <list>
#include <string>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "CallUtility.h"

namespace {

using namespace at_test;

using CallUtilityTest = FamilyTest<CCallUtility>;

TEST_F(CallUtilityTest, InitStopsAtTheFirstFailure) {
    fake.Expect("AT+COLP=0\r");
    fake.Expect("AT+CLIP=0\r");
    fake.Expect("AT+CRC=0\r");
    EXPECT_EQ(family.Init(), 0);

    fake.Expect("AT+COLP=0\r");
    fake.ExpectFailure("AT+CLIP=0\r", 2);
    EXPECT_EQ(family.Init(), 2);

    fake.Expect("AT+COLP=0\r", "\r\nERROR\r\n");
    EXPECT_EQ(family.Init(), 1);
}

TEST_F(CallUtilityTest, CallResultsOfDialAnswerAndHangUp) {
    // clang-format off
    const struct { const char* answer; int result; int dial; int answerCall; int hangUp; } rows[] = {
        {"\r\nOK\r\n", 0, 0, 0, 0}, {"\r\nNO CARRIER\r\n", 0, 25, 25, 25}, {"\r\nBUSY\r\n", 0, 27, 1, 1}, {"\r\nNO ANSWER\r\n", 0, 26, 1, 1},
        {"\r\nNO DIALTONE\r\n", 0, 28, 1, 1}, {"\r\n+CME ERROR: no network service\r\n", 0, 1, 1, 1}, {"", 2, 2, 2, 2}, {"", 30, 30, 30, 30},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer) + " code " + std::to_string(row.result));
        Expect(fake, At("ATD10086;\r").WithTimeout(60000).WithoutPrefix().WithFinals(kFinals), row.answer,
               row.result);
        EXPECT_EQ(family.Dial("10086"), row.dial);
        fake.Expect("ATA\r", row.answer, row.result).WithTimeout(3000).WithoutPrefix();
        EXPECT_EQ(family.Answer(), row.answerCall);
        fake.Expect("AT+CHUP\r", row.answer, row.result).WithTimeout(3000).WithoutPrefix();
        EXPECT_EQ(family.HangUp(), row.hangUp);
    }
    EXPECT_EQ(family.Dial(nullptr), 1);
}

TEST_F(CallUtilityTest, DtmfTakesOnlyKeypadTones) {
    for (const char tone : std::string("0123456789*#ABCD")) {
        SCOPED_TRACE(tone);
        fake.Expect(std::string("AT+VTS=") + tone + "\r");
        EXPECT_EQ(family.SendDTMF(tone), 0);
    }
    for (const char tone : std::string("EaF+ ,;\r\0", 9)) {
        SCOPED_TRACE(static_cast<int>(tone));
        EXPECT_EQ(family.SendDTMF(tone), 1);
    }
    EXPECT_EQ(fake.Calls().size(), 16u);
}

TEST(CallListParse, ClccLines) {
    // clang-format off
    const struct { const char* line; bool listed; TCallItemState call; } rows[] = {
        {"+CLCC: 1,1,4,0,0,\"123\",145", true, {1, 1, 4, 0, 0, "+123", 145}}, {"+CLCC: 1,1,4,0,0,\"123\",129", true, {1, 1, 4, 0, 0, "123", 129}},
        {"+CLCC: 3,1,4,0,0", true, {3, 1, 4, 0, 0, "", 0}}, // number withheld
        {"+CLCC: 3,1,4,0,0,\"\",128", true, {3, 1, 4, 0, 0, "", 128}}, // empty number
        {"+CLCC: 3,1,4,0,0,\"12345", true, {3, 1, 4, 0, 0, "", 0}}, // unterminated
        {"+CLCC: 1,1,4,0,0,\"123\"", true, {1, 1, 4, 0, 0, "123", 0}}, // no type
        {"+CLCC: 1,1,4,0,0,\"123\",x", true, {1, 1, 4, 0, 0, "123", 0}}, {"+CLCC: 1,1,4,0", false, {}}, {"+CLCC: ", false, {}},
        {"+CLCC: a,1,4,0,0,\"123\",129", false, {}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        std::list<TCallItemState> calls;
        CCallUtility::ParseCallList(std::string("\r\n") + row.line + "\r\n\r\nOK\r\n", calls);
        ASSERT_EQ(calls.size(), row.listed ? 1u : 0u);
        if (!row.listed)
            continue;
        const TCallItemState &c = calls.front(), &e = row.call;
        EXPECT_EQ(Fields(c.nIndex, c.nDir, c.nState, c.nMode, c.nMpty, c.strNumber, c.nType),
                  Fields(e.nIndex, e.nDir, e.nState, e.nMode, e.nMpty, e.strNumber, e.nType));
    }
}

TEST_F(CallUtilityTest, RingAndCallEndReadTheCallList) {
    // "ring result|number" (from "x"), then the call end's "result|all ended" from a flag starting false,
    // then true.
    const auto ringAndEnd = [this] {
        std::string number = "x";
        const int ring = family.HandleRing(number);
        bool fromFalse = false, fromTrue = true;
        const int end = family.HandleCallEnd(fromFalse), again = family.HandleCallEnd(fromTrue);
        return Fields(ring, number, end, fromFalse, again, fromTrue);
    };
    // clang-format off
    CheckReads(fake, At("AT+CLCC\r"), ringAndEnd, {
        {"\r\n\r\nOK\r\n", "1|x|0|1|0|1"}, {"\r\n+CLCC: 1,1,4,0,0,\"123\",145\r\n\r\nOK\r\n", "0|+123|0|0|0|0"},
        {"\r\n+CLCC: 1,1,4,1,0,\"123\",129\r\n\r\nOK\r\n", "1|x|0|1|0|1"}, // data call
        {"\r\n+CLCC: 1,0,0,0,0,\"555\",129\r\n+CLCC: 2,1,5,0,0,\"666\",129\r\n+CLCC: 3,1,4,0,0,\"777\",129\r\n\r\nOK\r\n", "0|777|0|0|0|0"},
        {"\r\n+CLCC: 1,1,4,0,0\r\n\r\nOK\r\n", "0||0|0|0|0"}, // incoming, number withheld
        {"", "1|x|1|0|1|1", 2}, {"", "1|x|1|0|1|1", 30},
    }, 3);
    // clang-format on
}

} // namespace
