// A stick flooding the AT port with unsolicited lines: repeated lines are merged, a USSD answer goes ahead
// of the flood, and the queue's bounds never cost a kept line.
#include "ComOperation.h"
#include "DebugSink.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

namespace {

UnsolicitedReportList& Reports(ComOperation* com) {
    UnsolicitedReportList* list = nullptr;
    com->getUnsoliciteReportList(list);
    return *list;
}

void DropReports(ComOperation* com) {
    for (UnsolicitedReportDataType* report : Reports(com))
        delete report;
    Reports(com).clear();
    com->takeMissedNewMessages();
}

bool Holds(ComOperation* com, const std::string& text) {
    for (const UnsolicitedReportDataType* report : Reports(com))
        if (report->strText == text)
            return true;
    return false;
}

TEST(ComOperationFloodTest, QueueMergesAndBoundsByKind) {
    struct Step {
        unsolicited_report_e_type type;
        const char* line;
        int count;
        bool numbered; // the line with its copy number appended, so every copy differs
    };
    // clang-format off
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
    std::FILE* debug = std::tmpfile(); // one debug line per dropped line
    std::FILE* previous = GetDebugSink();
    SetDebugSink(debug);
    ComOperation* com = ComOperation::GetInstance();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        DropReports(com);
        const uint64_t countedBefore = com->newMessageReportsQueued();
        uint64_t newMessageLines = 0;
        for (const Step& step : row.steps) {
            for (int i = 0; i < step.count; ++i)
                com->queueReport(step.type, step.numbered ? step.line + std::to_string(i) : step.line);
        }
        for (const UnsolicitedReportDataType* report : Reports(com))
            newMessageLines += report->nType == CMTI ? 1 : 0;
        ASSERT_EQ(Reports(com).size(), row.queued);
        EXPECT_EQ(Reports(com).front()->strText, row.front);
        if (row.absent) {
            EXPECT_FALSE(Holds(com, row.absent));
        }
        EXPECT_EQ(com->takeMissedNewMessages(), row.missed);
        EXPECT_EQ(com->newMessageReportsQueued() - countedBefore, newMessageLines);
    }
    DropReports(com);
    SetDebugSink(previous);
    std::fclose(debug);
}

} // namespace
