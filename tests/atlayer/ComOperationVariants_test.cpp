// Answers of several kinds of modem read through the serial channel and the command families: which lines
// end a command, which ones are reports, and how fast a command comes back.
#include <algorithm>
#include <chrono>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CallUtility.h"
#include "ComOperation.h"
#include "DebugSink.h"
#include "ModemDialect.h"
#include "NetworkUtility.h"
#include "PtyPeer.h"
#include "UssdUtility.h"

namespace {

using namespace std::chrono_literals;

// The host's execute-AT callback in small: the channel's codes in the families' terms.
int ChannelExecAT(const char* command, const char* expected, int timeoutMs, const std::list<std::string>&,
                  std::string& response) {
    const int code =
        ComOperation::GetInstance()->writeCom(command, expected, std::max(1, timeoutMs / 1000), response);
    return code == 0 ? 0 : code == 8 ? 2 : code == 9 ? 30 : 1;
}

std::vector<std::pair<int, std::string>> TakeReports() {
    UnsolicitedReportList* list = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(list);
    std::vector<std::pair<int, std::string>> reports;
    for (; !list->empty(); list->pop_front()) {
        reports.emplace_back(list->front()->nType, list->front()->strText);
        delete list->front();
    }
    return reports;
}

TEST(ComOperationVariants, CommandsEndAtOnceWithTheRightResult) {
    CCallUtility call;
    CNetworkUtility network;
    CUssdUility ussd;
    call.RegisterExecAT(&ChannelExecAT);
    network.RegisterExecAT(&ChannelExecAT);
    ussd.RegisterExecAT(&ChannelExecAT);
    const auto dial = [&] { return call.Dial("10086"); };
    const auto signal = [&] {
        int dbm = 0;
        return network.GetSignalDBValue(dbm);
    };
    const auto registration = [&] {
        int state = -1;
        return network.GetRegState(0, state) == 0 ? state : -1;
    };
    const auto callList = [&] {
        std::list<TCallItemState> calls;
        return call.CheckCallState(calls);
    };
    const auto ussdOn = [&] {
        int state = 1;
        return ussd.SetUssdState(state);
    };

    struct Row {
        const char* kind;
        ModemDialect dialect;
        const char* command;
        std::string answer;
        std::function<int()> run;
        int result;
        std::vector<std::pair<int, std::string>> reports;
    };
    constexpr auto vel = ModemDialect::Vel;
    constexpr auto standard = ModemDialect::Standard;
    // clang-format off
    const Row rows[] = {
        {"HSPA stick dialling a busy line", vel, "ATD10086;\r", "\r\nBUSY\r\n", dial, 27, {}},
        {"UMTS stick whose callee does not answer", standard, "ATD10086;\r", "\r\nNO ANSWER\r\n", dial, 26, {}},
        {"stick without a voice line", standard, "ATD10086;\r", "ATD10086;\r\r\nNO DIALTONE\r\n", dial, 28, {}},
        {"stick whose call fails to connect", vel, "ATD10086;\r", "\r\nNO CARRIER\r\n", dial, 25, {}},
        {"a call ended during another command is a report", vel, "AT+CLCC\r", "\r\nNO CARRIER\r\n\r\nOK\r\n", callList, 0, {{UNSOLICITED_REPORT_NO_CARRIER, "\r\nNO CARRIER\r\n"}}},
        {"3G module that answers unknown commands so", standard, "AT+CSQ\r", "\r\nCOMMAND NOT SUPPORT\r\n", signal, 1, {}},
        {"module that refuses extra parameters", standard, "AT+CSQ\r", "\r\nTOO MANY PARAMETERS\r\n", signal, 1, {}},
        {"answer and release notice in one read", standard, "AT+CUSD=1\r", "\r\nOK\r\n\r\n+CUSD: 0,\"Balance 5.00\",15\r\n\r\n+CUSD: 2\r\n\r\n+CUSD: 4\r\n", ussdOn, 0,
         {{UNSOLICITED_REPORT_CUSD, "\r\n+CUSD: 0,\"Balance 5.00\",15\r\n"}, {UNSOLICITED_REPORT_CUSD, "\r\n+CUSD: 2\r\n"}, {UNSOLICITED_REPORT_CUSD, "\r\n+CUSD: 4\r\n"}}},
        {"registration report just before the answer", vel, "AT+CREG?\r", "\r\n+CREG: 1\r\n\r\n+CREG: 0,5\r\n\r\nOK\r\n", registration, 4, {}},
        {"LTE module writing no blank after the colon", standard, "AT+CREG?\r", "\r\n+CREG: 2\r\n\r\n+CREG:0,1\r\n\r\nOK\r\n", registration, 3, {}},
    };
    // clang-format on
    std::FILE* const sink = GetDebugSink();
    SetDebugSink(nullptr);
    PtyPeer peer;
    ComOperation* const com = ComOperation::GetInstance();
    ASSERT_EQ(com->openCom(peer.slavePath().c_str()), 0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        SetModemDialect(row.dialect);
        peer.expect(row.command, row.answer);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(row.run(), row.result);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
        EXPECT_EQ(TakeReports(), row.reports);
        EXPECT_TRUE(peer.waitUntilIdle(2s));
    }
    com->reset();
    TakeReports();
    ResetModemDialect();
    SetDebugSink(sink);
}

} // namespace
