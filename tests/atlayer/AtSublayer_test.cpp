#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ATSublayer.h"
#include "AtSublayerInterface.h"
#include "AtTestSupport.h"
#include "ScriptedAtFake.h"

namespace {

// clang-format off
struct Report { int code = -1; bool hasPayload = false; std::string text; };
// clang-format on

// Upper report callback: keeps a copy of each report, since the payload dies with the call.
int RecordReport(void* context, int code, const void* payload) {
    Report report{code, payload != nullptr, {}};
    if (payload != nullptr) {
        if (code == ATS_REPORT_NEW_SMS)
            report.text = static_cast<const TASRNewSMS*>(payload)->strLine;
        else if (code == ATS_REPORT_CUSD)
            report.text = static_cast<const TASRCusd*>(payload)->strLine;
        else if (code == ATS_REPORT_STK)
            report.text = *static_cast<const std::string*>(payload);
    }
    static_cast<std::vector<Report>*>(context)->push_back(report);
    return 5; // not passed on
}

// What the lower callbacks saw.
struct LowerLog {
    const void* startArgument = nullptr;
    int cancels = 0;
    ReportHandler handler = nullptr;
    void* handlerContext = nullptr;
} g_lower;

void RegisterHandler(ReportHandler handler, void* context) {
    g_lower.handler = handler;
    g_lower.handlerContext = context;
}

class AtSublayerTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_lower = LowerLog{};
        ASSERT_EQ(ATSubLayer_CreateInstance(m_sublayer), 0);
        ASSERT_NE(m_sublayer, nullptr);
    }
    void TearDown() override { ATSubLayer_DestroyInstance(m_sublayer); }

    TInterfaceAtSublayer* m_sublayer = nullptr;
    std::vector<Report> m_reports;
};

TEST_F(AtSublayerTest, DecodesUnsolicitedLinesByPrefix) {
    // clang-format off
    // code: -1: ignored
    const struct { const char* line; int code; bool hasPayload; } rows[] = {
        {"+CDSI: \"SR\",1", ATS_REPORT_NEW_SMS, true}, {"+CUSD: 2", ATS_REPORT_CUSD, true}, {"+STIN:20", ATS_REPORT_STK, true},
        {"+CRING: VOICE", ATS_REPORT_RING, false}, {"NO CARRIER\r\n", ATS_REPORT_NO_CARRIER, false}, // a prefix test: what follows does not matter
        {"+CUSD:1", -1, false}, // no blank after the colon
        {"\r\nRING\r\n", -1, false}, // the channel's framing must be gone
        {"+cmti: \"SM\",3", -1, false}, {"BUS", -1, false}, {"OK", -1, false}, {"", -1, false},
    };
    // clang-format on
    // Without the decoder's context or an upper callback nothing happens; nor without a line.
    EXPECT_EQ(ATSublayer_HandleReport(nullptr, "RING"), 0);
    EXPECT_EQ(ATSublayer_HandleReport(m_sublayer, "RING"), 0);
    ASSERT_EQ(m_sublayer->RegisterReportCallback(&RecordReport, &m_reports), 0);
    EXPECT_EQ(ATSublayer_HandleReport(m_sublayer, nullptr), 0);
    EXPECT_TRUE(m_reports.empty());
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.line));
        m_reports.clear();
        EXPECT_EQ(ATSublayer_HandleReport(m_sublayer, row.line), 0);
        if (row.code < 0) {
            EXPECT_TRUE(m_reports.empty());
            continue;
        }
        ASSERT_EQ(m_reports.size(), 1u);
        EXPECT_EQ(at_test::Fields(m_reports[0].code, m_reports[0].hasPayload, m_reports[0].text),
                  at_test::Fields(row.code, row.hasPayload, row.hasPayload ? row.line : ""));
    }
}

TEST_F(AtSublayerTest, MissingLowerCallbacksGiveOne) {
    const auto expectUnset = [this] {
        m_sublayer->CancelCurATExecution(); // nothing to call
        const int start = m_sublayer->StartCommunication("ignored"), end = m_sublayer->EndCommunication();
        EXPECT_EQ(at_test::Fields(start, end, m_sublayer->RestartCommunication()), "1|1|1");
    };
    expectUnset(); // before RegisterLowerCBs

    // What the worker registers: the execute-AT callback alone.
    TInterfaceAtSublayerLower lower;
    lower.pfnExecAT = ScriptedAtFake::Callback();
    EXPECT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);
    expectUnset();
}

TEST_F(AtSublayerTest, LowerCallbacksAreForwarded) {
    // clang-format off
    TInterfaceAtSublayerLower lower{[](const void* argument) { g_lower.startArgument = argument; return 17; }, [] { return 18; },
                                    [] { return 19; }, ScriptedAtFake::Callback(), [] { ++g_lower.cancels; }, &RegisterHandler};
    // clang-format on
    ASSERT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);

    const int argument = 42;
    const int start = m_sublayer->StartCommunication(&argument), end = m_sublayer->EndCommunication();
    m_sublayer->CancelCurATExecution();
    EXPECT_EQ(at_test::Fields(start, end, m_sublayer->RestartCommunication(), g_lower.cancels), "17|18|19|1");
    EXPECT_EQ(g_lower.startArgument, &argument);
}

// Each slot reaches its own family: the commands it sends, and its result or what it reads back. The
// slots the worker uses are run by its tests against the simulated modem; these are the others.
TEST_F(AtSublayerTest, SlotsReachTheirFamily) {
    TInterfaceAtSublayerLower lower;
    lower.pfnExecAT = ScriptedAtFake::Callback();
    ASSERT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);
    TInterfaceAtSublayer& s = *m_sublayer;
    int value = -1;
    std::string text;
    // The value read when the slot succeeds, else its result plus 1000.
    const auto read = [&value](int result) { return result == 0 ? value : 1000 + result; };
    // clang-format off
    struct Exchange { const char* command; std::string answer = ScriptedAtFake::kOk; int failure = 0; };
    const struct { std::vector<Exchange> sent; std::function<int()> slot; int expected; } rows[] = {
        {{{"AT+CFUN=1\r"}}, [&] { return s.SystemSetPhoneFunctionality(1); }, 0},
        {{{"AT+FUNC=5,?\r", "\r\n+FUNC: 1\r\n\r\nOK\r\n"}}, [&] { return read(s.SystemGetDeviceStartState(value)); }, 1},
        {{{"AT+FUNC=5,0\r"}}, [&] { return s.SystemSetDeviceStartState(0); }, 0},
        {{{"\x1B", ""}, {"ATE1\r", "", 30}}, [&] { return s.SystemSyncComm(); }, 30},
        {{{"AT+COPS=3,2\r"}}, [&] { return s.NetworkInit(); }, 0},
        {{{"AT+CSQ\r", "\r\n+CSQ: 12,99\r\n\r\nOK\r\n"}}, [&] { return read(s.NetworkGetRssiLevel(value)); }, 3},
        {{{"AT+CUSD?\r", "\r\n+CUSD: 0\r\n\r\nOK\r\n"}}, [&] { return read(s.CheckUssdState(value)); }, 0},
        {{{"AT+CUSD=1\r"}}, [&] { return s.SetUssdState(value = 1); }, 0},
        {{{"AT+STIN?\r", "\r\n+STIN: 1\r\n\r\nOK\r\n"}}, [&] { return s.STKGetCurrentProactiveCommand(value, text); }, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.sent.front().command));
        ScriptedAtFake fake;
        for (const Exchange& exchange : row.sent)
            fake.Expect(exchange.command, exchange.answer, exchange.failure);
        EXPECT_EQ(row.slot(), row.expected);
    }
}

} // namespace
