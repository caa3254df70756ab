// The serial channel over a real pseudo-terminal pair: time-outs, cancellation, reset, the port lock, the
// traffic tap and the queue of unsolicited reports.
#include "AtTestSupport.h"
#include "ComOperation.h"
#include "DebugSink.h"
#include "PtyPeer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <list>
#include <sys/file.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

using at_test::TakeReports;

auto CountOpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

const std::string kUntouched = "untouched";

UnsolicitedReportList& Queue(ComOperation* com) {
    UnsolicitedReportList* list = nullptr;
    com->getUnsoliciteReportList(list);
    return *list;
}

class ComOperationTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetDebugSink(_debug);
        Clean();
        ASSERT_TRUE(peer.isOpen());
        ASSERT_EQ(com->openCom(peer.slavePath().c_str()), 0);
    }

    void TearDown() override {
        Clean();
        SetDebugSink(_previousSink);
        std::fclose(_debug);
    }

    // Leaves the channel closed, its queue empty and the time-out count at zero.
    void Clean() {
        com->reset();
        TakeReports();
        ComOperation::ResetTimeOutCount();
    }

    PtyPeer peer;
    ComOperation* com = ComOperation::GetInstance();

private:
    std::FILE* _debug = std::tmpfile(); // the debug lines are written, but their wording is not tested here
    std::FILE* _previousSink = GetDebugSink();
};

PtyPeer::Answer Pieces(std::initializer_list<std::string> texts, std::chrono::milliseconds gap = 20ms) {
    PtyPeer::Answer answer;
    for (const std::string& text : texts)
        answer.push_back({answer.empty() ? 0ms : gap, text});
    return answer;
}

TEST_F(ComOperationTest, TimesOutAfterTheLimitInTicks) {
    // clang-format off
    const struct { int32_t seconds; std::chrono::milliseconds atLeast, below; } cases[] = {{0, 0ms, 500ms}, {1, 1000ms, 2500ms}};
    // clang-format on
    peer.setHandler([](const std::string&) { return PtyPeer::Answer{}; });
    int32_t count = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.seconds);
        std::string response = kUntouched;
        const auto start = Clock::now();
        EXPECT_EQ(com->writeCom("AT+COPS=?\r", "+COPS: ", c.seconds, response), 8);
        const auto elapsed = Clock::now() - start;
        EXPECT_GE(elapsed, c.atLeast);
        EXPECT_LT(elapsed, c.below);
        EXPECT_EQ(response, kUntouched);
        EXPECT_EQ(ComOperation::GetTimeOutCount(), ++count);
    }
}

TEST_F(ComOperationTest, FortyFirstTimeOutReopensThePortAndCountsAgain) {
    // The channel reopens by its stored path; a link of our own shows whether it really did.
    char dirTemplate[] = "/tmp/dialtone-com-XXXXXX";
    ASSERT_NE(mkdtemp(dirTemplate), nullptr);
    const std::filesystem::path dir = dirTemplate;
    const std::filesystem::path link = dir / "ttyModem";
    std::filesystem::create_symlink(peer.slavePath(), link);
    ASSERT_EQ(com->openCom(link.c_str()), 0);

    peer.setHandler([](const std::string& command) {
        return command == "AT+CNUM\r" ? Pieces({"\r\nRING\r\n\r\nOK\r\n"}) : PtyPeer::Answer{};
    });
    std::string response;
    ASSERT_EQ(com->writeCom("AT+CNUM\r", nullptr, 5, response), 0);
    ASSERT_EQ(Queue(com).size(), 1u);

    for (int i = 1; i <= 40; ++i)
        ASSERT_EQ(com->writeCom("AT\r", nullptr, 0, response), 8);
    EXPECT_EQ(ComOperation::GetTimeOutCount(), 40);
    EXPECT_EQ(Queue(com).size(), 1u);

    EXPECT_EQ(com->writeCom("AT\r", nullptr, 0, response), 8);
    EXPECT_EQ(ComOperation::GetTimeOutCount(), 0);
    EXPECT_EQ(Queue(com).size(), 0u); // the reopen empties the queue
    EXPECT_EQ(com->writeCom("AT+CNUM\r", nullptr, 5, response), 0);
    TakeReports();
    EXPECT_EQ(com->writeCom("AT\r", nullptr, 0, response), 8);
    EXPECT_EQ(ComOperation::GetTimeOutCount(), 1);

    for (int i = 2; i <= 40; ++i)
        ASSERT_EQ(com->writeCom("AT\r", nullptr, 0, response), 8);
    std::filesystem::remove(link);
    EXPECT_EQ(com->writeCom("AT\r", nullptr, 0, response), 8);
    EXPECT_EQ(ComOperation::GetTimeOutCount(), 0);
    EXPECT_EQ(com->writeCom("AT\r", nullptr, 5, response), 1) << "the port was closed, and reopening failed";
    std::filesystem::remove_all(dir);
}

TEST_F(ComOperationTest, CancelFromAnotherThreadStopsTheCommand) {
    peer.expect("AT+COPS=?\r", PtyPeer::Answer{});
    peer.expect("AT\r", "\r\nOK\r\n");
    std::thread canceller([&] {
        if (peer.waitForCommands(1, 5s))
            com->cancel();
    });
    std::string response = kUntouched;
    const auto start = Clock::now();
    EXPECT_EQ(com->writeCom("AT+COPS=?\r", "+COPS: ", 30, response), 9);
    EXPECT_LT(Clock::now() - start, 5s);
    canceller.join();
    EXPECT_EQ(response, kUntouched);

    EXPECT_EQ(com->writeCom("AT\r", nullptr, 5, response), 0)
        << "the flag is cleared by the command that saw it";
    EXPECT_EQ(response, "\r\nOK\r\n");
}

TEST_F(ComOperationTest, PendingCancelStopsTheNextCommandAfterItsText) {
    peer.expect("AT+CSQ\r", PtyPeer::Answer{});
    peer.expect("AT\r", "\r\nOK\r\n");
    peer.expect("AT+CGMM\r", "\r\nVEL HSPA Modem\r\n\r\nOK\r\n");

    com->cancel();
    std::string response = kUntouched;
    EXPECT_EQ(com->writeCom("AT+CSQ\r", "+CSQ: ", 5, response), 9);
    EXPECT_EQ(response, kUntouched);
    EXPECT_TRUE(peer.waitForCommands(1, 2s)) << "the text is written before the flag is looked at";
    EXPECT_EQ(com->writeCom("AT\r", nullptr, 5, response), 0);

    // Opening the port drops a pending cancel.
    com->cancel();
    ASSERT_EQ(com->openCom(peer.slavePath().c_str()), 0);
    EXPECT_EQ(com->writeCom("AT+CGMM\r", nullptr, 5, response), 0);
    EXPECT_EQ(response, "\r\nVEL HSPA Modem\r\n\r\nOK\r\n");
}

TEST_F(ComOperationTest, ClosedPortAndEmptyCommand) {
    std::string response = kUntouched;
    const int empty = com->writeCom("", nullptr, 5, response),
              null = com->writeCom(nullptr, nullptr, 5, response);
    const int closed = com->closeCom(), again = com->closeCom();
    EXPECT_EQ(at_test::Fields(empty, null, closed, again, com->writeCom("AT\r", nullptr, 5, response)),
              "6|6|0|1|1");
    EXPECT_EQ(response, kUntouched);
    EXPECT_TRUE(peer.received().empty());
}

TEST_F(ComOperationTest, PortIsOpenedExclusively) {
    const std::string path = peer.slavePath();
    const int other = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(other, 0);
    EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0) << "the channel holds the lock";

    ASSERT_EQ(com->closeCom(), 0);
    ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
    const int descriptors = CountOpenDescriptors();
    EXPECT_EQ(com->openCom(path.c_str()), 4);
    EXPECT_EQ(CountOpenDescriptors(), descriptors) << "the refused descriptor is closed";
    std::string response;
    EXPECT_EQ(com->writeCom("AT\r", nullptr, 5, response), 1);
    EXPECT_EQ(com->openCom("/nonexistent/ttyModem"), 4);

    close(other);
    EXPECT_EQ(com->openCom(path.c_str()), 0);
}

// With the traffic shown, each line goes out once, whole, in both directions, with the time and without
// the SIM's codes; the internal debug texts stay out of it.
TEST_F(ComOperationTest, TrafficTapShowsLinesBothWaysWithSecretsMasked) {
    std::FILE* traffic = std::tmpfile();
    ASSERT_NE(traffic, nullptr);
    SetTrafficSink(traffic);
    // clang-format off
    const struct { std::string command; PtyPeer::Answer answer; std::string shown; } rows[] = {
        {"AT+CPIN=\"1234\"\r", Pieces({"\r\n+CME ERR", "OR: 16\r\n"}), "> AT+CPIN=\"****\"|< +CME ERROR: 16|"},
        {"AT+CPIN=\"12345678\",\"4321\"\r", Pieces({"\r\nOK\r\n"}), "> AT+CPIN=\"****\",\"****\"|< OK|"},
        {"AT+CLCK=\"SC\",1,\"1234\"\r", Pieces({"\r\nOK\r\n"}), "> AT+CLCK=\"SC\",1,\"****\"|< OK|"},
        {"AT+CPWD=\"SC\",\"1234\",\"4321\"\r", Pieces({"\r\nOK\r\n"}), "> AT+CPWD=\"SC\",\"****\",\"****\"|< OK|"},
        {"AT+CSQ\r", Pieces({"\r\n+CSQ: 2", "3,99\r\n\r\nRING\r\n", "\r\nOK\r\n"}), "> AT+CSQ|< +CSQ: 23,99|< RING|< OK|"},
        {"AT+CMGS=23\r", Pieces({"\r\n> "}), "> AT+CMGS=23|< > |"},
        {"0011000B915121551532F40000AA0AE8329BFD4697D9EC37\x1a", Pieces({"\r\n+CMGS: 7\r\n\r\nOK\r\n"}), "> 0011000B915121551532F40000AA0AE8329BFD4697D9EC37^Z|< +CMGS: 7|< OK|"},
        {"AT+CGMI\r", Pieces({"\r\nV\x1b[2JEL\r\n\r\nOK\r\n"}), "> AT+CGMI|< V^[[2JEL|< OK|"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.shown);
        std::rewind(traffic);
        ASSERT_EQ(ftruncate(fileno(traffic), 0), 0);
        peer.expect(row.command, row.answer);
        std::string response;
        EXPECT_EQ(com->writeCom(row.command.c_str(), nullptr, 5, response), 0);
        EXPECT_TRUE(peer.waitUntilIdle(2s));
        std::fflush(traffic);
        std::rewind(traffic);
        std::string shown;
        char line[512];
        while (std::fgets(line, sizeof(line), traffic) != nullptr) {
            const std::string text(line);
            // "12:03:04.123 > AT+CSQ"
            EXPECT_TRUE(text.size() > 13 && text[2] == ':' && text[5] == ':' && text[8] == '.' &&
                        text[12] == ' ')
                << text;
            shown += text.substr(13, text.size() - 14) + "|";
        }
        EXPECT_EQ(shown, row.shown);
    }
    SetTrafficSink(nullptr);
    std::fclose(traffic);
}

// The cutting of report lines out of an answer, over plain strings.
using StringMatchStringLine = ComOperationTest;
TEST_F(StringMatchStringLine, MovesReportLinesOutOfTheAnswer) {
    // clang-format off
    // expected: the command's own answer prefix, or nullptr
    struct MatchCase { const char* name; std::string data; const char* expected; const char* prefix; int count; std::list<std::string> lines; std::string dataAfter; };
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
}

// A stick flooding the port with unsolicited lines: repeated lines are merged, a USSD answer goes ahead of
// the flood, and the queue's bounds never cost a kept line. One debug line goes out per dropped line.
using ComOperationFloodTest = ComOperationTest;
TEST_F(ComOperationFloodTest, QueueMergesAndBoundsByKind) {
    // clang-format off
    // numbered: the line with its copy number appended, so every copy differs
    struct Step { unsolicited_report_e_type type; const char* line; int count; bool numbered; };
    // absent: a line that must not be queued, or nullptr
    struct Row { const char* name; std::vector<Step> steps; size_t queued; const char* front; const char* absent; bool missed; };
    const auto RING = UNSOLICITED_REPORT_RING;
    const auto CMTI = UNSOLICITED_REPORT_CMTI;
    const auto CUSD = UNSOLICITED_REPORT_CUSD;
    const auto STIN = UNSOLICITED_REPORT_STIN;
    const int full = static_cast<int>(ComOperation::kMaxQueuedReports);
    const Row rows[] = {
        {"a RING train is one RING", {{RING, "RING", 400, false}}, 1, "RING", nullptr, false},
        {"a repeated new-message line names one slot", {{CMTI, "+CMTI: \"SM\",1", 3, false}}, 1, "+CMTI: \"SM\",1", nullptr, true},
        {"USSD answers are never merged and go first", {{RING, "RING", 1, false}, {CMTI, "+CMTI: \"SM\",1", 1, false}, {CUSD, "+CUSD: 1,\"Menu\",15", 2, false}}, 4, "+CUSD: 1,\"Menu\",15", nullptr, false},
        {"a full queue pushes out the oldest mergeable line", {{RING, "RING", 1, false}, {STIN, "+STIN: ", full - 1, true}, {UNSOLICITED_REPORT_NO_CARRIER, "NO CARRIER", 1, false}}, ComOperation::kMaxQueuedReports, "+STIN: 0", "RING", false},
        {"new-message lines push out mergeable ones, then pass the bound", {{STIN, "+STIN: ", full, true}, {CMTI, "+CMTI: \"SM\",", full + 44, true}}, ComOperation::kMaxQueuedReports + 44, "+CMTI: \"SM\",0", "+STIN: 255", false},
        {"with only kept lines queued a mergeable one is dropped", {{CMTI, "+CMTI: \"SM\",", full, true}, {RING, "RING", 1, false}}, ComOperation::kMaxQueuedReports, "+CMTI: \"SM\",0", "RING", false},
        {"kept lines stop at the hard bound, counted as missed", {{CMTI, "+CMTI: \"ME\",", static_cast<int>(ComOperation::kMaxKeptReports) + 4, true}}, ComOperation::kMaxKeptReports, "+CMTI: \"ME\",0", "+CMTI: \"ME\",4096", true},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TakeReports();
        com->takeMissedNewMessages();
        const uint64_t countedBefore = com->newMessageReportsQueued();
        uint64_t newMessageLines = 0;
        for (const Step& step : row.steps) {
            for (int i = 0; i < step.count; ++i)
                com->queueReport(step.type, step.numbered ? step.line + std::to_string(i) : step.line);
        }
        for (const UnsolicitedReportDataType* report : Queue(com))
            newMessageLines += report->nType == CMTI ? 1 : 0;
        ASSERT_EQ(Queue(com).size(), row.queued);
        EXPECT_EQ(Queue(com).front()->strText, row.front);
        if (row.absent) {
            const auto has = [&](const UnsolicitedReportDataType* report) {
                return report->strText == row.absent;
            };
            EXPECT_TRUE(std::none_of(Queue(com).begin(), Queue(com).end(), has));
        }
        EXPECT_EQ(com->takeMissedNewMessages(), row.missed);
        EXPECT_EQ(com->newMessageReportsQueued() - countedBefore, newMessageLines);
    }
    com->takeMissedNewMessages();
}

} // namespace
