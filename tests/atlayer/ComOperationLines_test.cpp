// The channel's line rules over plain strings: the suffix test behind "is the answer complete" and the
// cutting of report lines out of an answer.
#include "ComOperation.h"
#include "DebugSink.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace {

struct SuffixCase {
    const char* text;
    const char* suffix;
    int expected;
};

TEST(StringHasSuffix, EndsWithAStrictlyShorterSuffix) {
    // clang-format off
    const SuffixCase cases[] = {
        {"\r\nOK\r\n", "\r\n", 1}, {"x\r\n", "\r\n", 1},
        {"\r\n", "\r\n", 0}, // equal to the suffix: not "ending with" it
        {"\r\n> ", "\r\n", 0}, {"\r\n+CSQ: 23,99\r", "\r\n", 0}, {"\n\r", "\r\n", 0}, {"", "\r\n", 0}, {"OK", "", 0}, {nullptr, "\r\n", 0},
        {"OK\r\n", nullptr, 0},
    };
    // clang-format on
    for (const SuffixCase& c : cases)
        EXPECT_EQ(stringHasSuffix(c.text, c.suffix), c.expected)
            << "text \"" << (c.text ? c.text : "(null)") << "\" suffix \"" << (c.suffix ? c.suffix : "(null)")
            << "\"";
}

struct MatchCase {
    const char* name;
    std::string data;
    const char* expected; // the command's own answer prefix, or nullptr
    const char* prefix;
    int count;
    std::list<std::string> lines;
    std::string dataAfter;
};

TEST(StringMatchStringLine, MovesReportLinesOutOfTheAnswer) {
    // clang-format off
    const MatchCase cases[] = {
        {"one report between answer lines", "\r\n+CSQ: 20,99\r\n\r\n+CMTI: \"SM\",3\r\n\r\nOK\r\n", nullptr, "+CMTI:", 1, {"\r\n+CMTI: \"SM\",3\r\n"}, "\r\n+CSQ: 20,99\r\n\n\r\nOK\r\n"},
        {"the command's own answer stays, the second is a report", "\r\n+CUSD: 0,\"Balance 5.00\",15\r\n\r\n+CUSD: 2,\"Bye\",15\r\n\r\nOK\r\n", "+CUSD: ", "+CUSD:", 1, {"\r\n+CUSD: 2,\"Bye\",15\r\n"}, "\r\n+CUSD: 0,\"Balance 5.00\",15\r\n\n\r\nOK\r\n"},
        {"without an own answer the adjacent second line is moved in front of the search", "\r\n+CUSD: 0,\"Balance 5.00\",15\r\n\r\n+CUSD: 2,\"Bye\",15\r\n\r\nOK\r\n", nullptr, "+CUSD:", 1, {"\r\n+CUSD: 0,\"Balance 5.00\",15\r\n"}, "\n\r\n+CUSD: 2,\"Bye\",15\r\n\r\nOK\r\n"},
        {"an expected prefix of another command does not protect the line", "\r\n+CMTI: \"ME\",12\r\n\r\n+CSQ: 14,99\r\n\r\nOK\r\n", "+CSQ: ", "+CMTI:", 1, {"\r\n+CMTI: \"ME\",12\r\n"}, "\n\r\n+CSQ: 14,99\r\n\r\nOK\r\n"},
        {"two reports apart are both moved", "\r\nRING\r\n\r\n+CSQ: 1,99\r\n\r\nRING\r\n", nullptr, "RING", 2, {"\r\nRING\r\n", "\r\nRING\r\n"}, "\n\r\n+CSQ: 1,99\r\n\n"},
        {"report at the very start has no line start", "+CMTI: \"SM\",5\r\n\r\nOK\r\n", nullptr, "+CMTI:", 0, {}, "+CMTI: \"SM\",5\r\n\r\nOK\r\n"},
        {"report without a line end", "\r\nOK\r\n\r\n+CMTI: \"SM\",5", nullptr, "+CMTI:", 0, {}, "\r\nOK\r\n\r\n+CMTI: \"SM\",5"},
        {"a framing error loses the lines already moved", "\r\n+CMTI: \"SM\",1\r\n+CSQ: 20,99 +CMTI: \"SM\",2\r\n\r\nOK\r\n", nullptr, "+CMTI:", 0, {}, "\n+CSQ: 20,99 +CMTI: \"SM\",2\r\n\r\nOK\r\n"},
        {"no such report", "\r\n+CGMI: VEL\r\n\r\nOK\r\n", nullptr, "+STIN:", 0, {}, "\r\n+CGMI: VEL\r\n\r\nOK\r\n"},
    };
    // clang-format on
    std::FILE* const sink = GetDebugSink();
    SetDebugSink(nullptr);
    for (const MatchCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::string data = c.data;
        std::list<std::string> lines = {"left over from an earlier call"};
        const int count = stringMatchStringLine(data, c.expected, c.prefix, lines);
        EXPECT_EQ(count, c.count);
        if (count != 0) {
            EXPECT_EQ(lines, c.lines);
        }
        EXPECT_EQ(data, c.dataAfter);
    }
    SetDebugSink(sink);
}

} // namespace
