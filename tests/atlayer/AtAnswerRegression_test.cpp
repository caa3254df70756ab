// Modem answers that once broke an answer reader, each with what the reader must make of it.

#include <climits>
#include <string>

#include <gtest/gtest.h>

#include "NetworkUtility.h"
#include "ScriptedAtFake.h"

namespace {

TEST(AtAnswerRegression, OutOfRangeRssiSaturatesTheSignalFigure) {
    // clang-format off
    struct Row { std::string answer; int dbm; };
    const Row rows[] = {
        {"\r\n+CSQ: 1807229228,99\r\n\r\nOK\r\n", INT_MIN}, {"\r\n+CSQ: -2147483648,99\r\n\r\nOK\r\n", INT_MAX},
        {"\r\n+CSQ: 1073741881,99\r\n\r\nOK\r\n", INT_MIN}, // 2 * rssi overflows, the result does not
        {"\r\n+CSQ: 31,99\r\n\r\nOK\r\n", 52},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        ScriptedAtFake fake;
        fake.Expect("AT+CSQ\r", row.answer);
        CNetworkUtility network;
        network.RegisterExecAT(ScriptedAtFake::Callback());
        int dbm = 0;
        EXPECT_EQ(network.GetSignalDBValue(dbm), 0);
        EXPECT_EQ(dbm, row.dbm);
    }
}

} // namespace
