// A stick flooding the AT port with unsolicited lines: the command still ends at its final result and
// the report queue stops growing at its bound.
#include "ComOperation.h"
#include "DebugSink.h"
#include "PtyPeer.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

using namespace std::chrono_literals;

void DropReports(ComOperation* com) {
    UnsolicitedReportList* list = nullptr;
    com->getUnsoliciteReportList(list);
    while (!list->empty()) {
        delete list->front();
        list->pop_front();
    }
}

size_t Queued(ComOperation* com) {
    UnsolicitedReportList* list = nullptr;
    com->getUnsoliciteReportList(list);
    return list->size();
}

std::string Lines(const std::string& line, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "\r\n" + line + "\r\n";
    return text;
}

TEST(ComOperationFloodTest, ReportQueueIsBounded) {
    struct Row {
        const char* line;
        int count;
        int commands; // the same flood answers this many commands in a row
        bool capped;
    };
    // Adjacent report lines are not all cut in one pass (some stay in the answer), so below the bound
    // only an upper limit holds.
    const Row rows[] = {
        {"RING", 10, 1, false},
        {"NO CARRIER", 100, 2, false},
        {"+CMTI: \"SM\",1", 1000, 1, true},
        {"+CDSI: \"SM\",2", 200, 3, true},
    };
    std::FILE* debug = std::tmpfile();
    ASSERT_NE(debug, nullptr);
    std::FILE* previous = GetDebugSink();
    SetDebugSink(debug);
    ComOperation* com = ComOperation::GetInstance();
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.count << " x " << row.line);
        PtyPeer peer;
        ASSERT_TRUE(peer.isOpen());
        ASSERT_EQ(com->openCom(peer.slavePath().c_str()), 0);
        for (int i = 0; i < row.commands; ++i)
            peer.expect("AT+CSQ\r", PtyPeer::Answer{{0ms, Lines(row.line, row.count)},
                                                    {5ms, "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"}});
        for (int i = 0; i < row.commands; ++i) {
            std::string response;
            ASSERT_EQ(com->writeCom("AT+CSQ\r", "+CSQ: ", 5, response), 0);
            EXPECT_NE(response.find("+CSQ: 18,99"), std::string::npos);
        }
        if (row.capped) {
            EXPECT_EQ(Queued(com), ComOperation::kMaxQueuedReports);
        } else {
            EXPECT_GT(Queued(com), 0u);
            EXPECT_LE(Queued(com), static_cast<size_t>(row.count * row.commands));
        }
        com->closeCom();
        DropReports(com);
    }
    SetDebugSink(previous);
    std::fclose(debug);
}

} // namespace
