#include <functional>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ATSublayer.h"
#include "AtSublayerInterface.h"
#include "AtTestSupport.h"
#include "ScriptedAtFake.h"

// Reads the families' registered callbacks, in the order the sublayer registers them.
struct AtSublayerTestAccess {
    static std::vector<ExecATCallback> FamilyCallbacks(const CAtSublayer& sublayer) {
        return {sublayer.m_pinUtility.ExecAT(),     sublayer.m_pbUtility.ExecAT(),
                sublayer.m_networkUtility.ExecAT(), sublayer.m_smsUtility.ExecAT(),
                sublayer.m_systemUtility.ExecAT(),  sublayer.m_ussdUtility.ExecAT(),
                sublayer.m_callUtility.ExecAT(),    sublayer.m_gpsUtility.ExecAT(),
                sublayer.m_stkUtility.ExecAT()};
    }
};

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
        {"+CMTI: \"SM\",3", ATS_REPORT_NEW_SMS, true}, {"+CDSI: \"SR\",1", ATS_REPORT_NEW_SMS, true},
        {"+CUSD: 0,\"00480069\",72", ATS_REPORT_CUSD, true}, {"+CUSD: 2", ATS_REPORT_CUSD, true},
        {"+CUSD:1", -1, false}, // no blank after the colon
        {"+CUSD:", -1, false}, {"BUSY", ATS_REPORT_BUSY, false}, {"NO ANSWER", ATS_REPORT_NO_ANSWER, false},
        {"NO CARRIER", ATS_REPORT_NO_CARRIER, false}, {"NO DIALTONE", ATS_REPORT_NO_DIALTONE, false}, {"RING", ATS_REPORT_RING, false},
        {"+CRING: VOICE", ATS_REPORT_RING, false}, {"+STIN: 11", ATS_REPORT_STK, true}, {"+STIN:20", ATS_REPORT_STK, true},
        {"NO CARRIER\r\n", ATS_REPORT_NO_CARRIER, false}, // a prefix test: what follows does not matter
        {"\r\n+CMTI: \"SM\",3\r\n", -1, false}, // the channel's framing must be gone
        {"\r\nRING\r\n", -1, false}, {" RING", -1, false}, {"+cmti: \"SM\",3", -1, false}, {"BUS", -1, false}, {"+CMT: ,24", -1, false},
        {"OK", -1, false}, {"", -1, false},
    };
    // clang-format on
    ASSERT_EQ(m_sublayer->RegisterReportCallback(&RecordReport, &m_reports), 0);
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

TEST_F(AtSublayerTest, DecoderWithoutContextCallbackOrLineDoesNothing) {
    EXPECT_EQ(ATSublayer_HandleReport(nullptr, "RING"), 0);
    EXPECT_EQ(ATSublayer_HandleReport(m_sublayer, "RING"), 0); // no upper callback registered yet

    m_sublayer->RegisterReportCallback(&RecordReport, &m_reports);
    EXPECT_EQ(ATSublayer_HandleReport(m_sublayer, nullptr), 0);
    EXPECT_TRUE(m_reports.empty());
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
    TInterfaceAtSublayerLower lower{[](const void* argument) {
                                        g_lower.startArgument = argument;
                                        return 17;
                                    },
                                    [] { return 18; },
                                    [] { return 19; },
                                    ScriptedAtFake::Callback(),
                                    [] { ++g_lower.cancels; },
                                    &RegisterHandler};
    ASSERT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);

    const int argument = 42;
    const int start = m_sublayer->StartCommunication(&argument), end = m_sublayer->EndCommunication();
    m_sublayer->CancelCurATExecution();
    EXPECT_EQ(at_test::Fields(start, end, m_sublayer->RestartCommunication(), g_lower.cancels), "17|18|19|1");
    EXPECT_EQ(g_lower.startArgument, &argument);
}

TEST_F(AtSublayerTest, RegisterLowerCBsHandsTheDecoderToTheHost) {
    TInterfaceAtSublayerLower lower;
    lower.pfnRegisterReportHandler = &RegisterHandler;
    ASSERT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);
    EXPECT_EQ(g_lower.handler, &ATSublayer_HandleReport);
    EXPECT_EQ(g_lower.handlerContext, static_cast<void*>(m_sublayer));

    // The host feeds a line through what it was given.
    m_sublayer->RegisterReportCallback(&RecordReport, &m_reports);
    g_lower.handler(g_lower.handlerContext, "+STIN: 11");
    ASSERT_EQ(m_reports.size(), 1u);
    EXPECT_EQ(m_reports[0].code, ATS_REPORT_STK);
    EXPECT_EQ(m_reports[0].text, "+STIN: 11");
}

TEST_F(AtSublayerTest, RegisterLowerCBsHandsExecATToEveryFamily) {
    auto& sublayer = static_cast<CAtSublayer&>(*m_sublayer);
    for (ExecATCallback callback : AtSublayerTestAccess::FamilyCallbacks(sublayer))
        EXPECT_EQ(callback, nullptr);

    TInterfaceAtSublayerLower lower;
    lower.pfnExecAT = ScriptedAtFake::Callback();
    ASSERT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);
    const std::vector<ExecATCallback> callbacks = AtSublayerTestAccess::FamilyCallbacks(sublayer);
    ASSERT_EQ(callbacks.size(), 9u);
    for (std::size_t family = 0; family < callbacks.size(); ++family)
        EXPECT_EQ(callbacks[family], ScriptedAtFake::Callback()) << "family #" << family;
}

// Each slot reaches its own family: the commands it sends, and its result or what it reads back.
TEST_F(AtSublayerTest, SlotsReachTheirFamily) {
    TInterfaceAtSublayerLower lower;
    lower.pfnExecAT = ScriptedAtFake::Callback();
    ASSERT_EQ(m_sublayer->RegisterLowerCBs(lower), 0);
    TInterfaceAtSublayer& s = *m_sublayer;
    int value = -1;
    TPinInfo pin;
    TEquipmentInfo equipment;
    TNetworkInfo network;
    std::list<TNetworkListItem> operators;
    TUssdItem ussd;
    std::string text;
    const std::string menu = "\r\n+STGI: 17,\"SIM Services\",1\r\n+STGI: 17,1,\"News\"\r\n\r\nOK\r\n";
    const std::string proactive = "\r\n+STGI: 1,\"Hi\",0,1\r\n\r\nOK\r\n";
    // The value read when the slot succeeds, else its result plus 1000.
    const auto read = [&value](int result) { return result == 0 ? value : 1000 + result; };
    const auto gives = [&text](int result, const std::string& expected) {
        return result == 0 && text == expected;
    };
    // clang-format off
    struct Exchange { const char* command; std::string answer = ScriptedAtFake::kOk; int failure = 0; };
    const std::string sysselAnswer = "\r\n+SYSSEL: 2,0,1,2\r\n\r\nOK\r\n";
    const struct { std::vector<Exchange> sent; std::function<int()> slot; int expected; } rows[] = {
        {{{"AT+CPIN?\r", "\r\n+CPIN: SIM PUK\r\n\r\nOK\r\n"}}, [&] { return read(s.PINCheckState(value)); }, 3},
        {{{"AT+CLCK=\"SC\",1,\"1234\"\r"}}, [&] { return s.PINEnable(1, "1234"); }, 0},
        {{{"AT+PNNM?\r", "\r\n+PNNM: 0, 9\r\n\r\nOK\r\n"}}, [&] { return s.PINGetInfo(3, pin) == 0 ? pin.nPukCnt : -1; }, 9},
        {{{"AT+CPWD=\"SC\",\"1234\",\"4321\"\r"}}, [&] { return s.PINChange("1234", "4321"); }, 0},
        {{{"AT+CPIN=\"4321\"\r"}}, [&] { return s.PINVerify("4321"); }, 0},
        {{{"AT+CPIN=\"12345678\",\"1111\"\r"}}, [&] { return s.PINVerifyPuk("12345678", "1111"); }, 0},
        {{{"AT+CLCK=\"SC\",2\r", "\r\n+CLCK: 1\r\n\r\nOK\r\n"}}, [&] { return read(s.PINGetState(value)); }, 1},
        {{{"AT+CGDCONT=1,\"IP\",\"internet\"\r"}}, [&] { return s.SystemSetPdpContext("internet", nullptr); }, 0},
        {{{"AT+CFUN=1\r"}}, [&] { return s.SystemSetPhoneFunctionality(1); }, 0},
        {{{"AT+FUNC=5,?\r", "\r\n+FUNC: 1\r\n\r\nOK\r\n"}}, [&] { return read(s.SystemGetDeviceStartState(value)); }, 1},
        {{{"AT+FUNC=5,0\r"}}, [&] { return s.SystemSetDeviceStartState(0); }, 0},
        {{{"\x1B", ""}, {"ATE1\r", "", 2}}, [&] { return s.SystemInitComm(); }, 2},
        {{{"\x1B", ""}, {"ATE1\r", "", 30}}, [&] { return s.SystemSyncComm(); }, 30},
        {{{"AT+CGMI\r", "", 2}, {"AT+CGMM\r", "", 2}, {"AT+CGMR\r", "", 2}, {"AT+CGSN\r", "", 2}, {"AT+CIMI\r", "", 2}, {"AT+CNUM\r", "", 2}, {"AT+HWV\r", "\r\nHW 2\r\n\r\nOK\r\n"}}, [&] { return s.SystemGetEquipmentInfo(equipment) == 0 && equipment.szHardwareVersion == std::string("HW 2") ? static_cast<int>(equipment.nMask) : -1; }, 64},
        {{{"AT+COPS=?\r", "\r\n+COPS: (2,\"Acme\",\"ACME\",\"00101\",2),,(0,1)\r\n\r\nOK\r\n"}}, [&] { return s.NetworkGetList(operators) == 0 ? static_cast<int>(operators.size()) : -1; }, 1},
        {{{"AT+COPS=1,2,\"00101\"\r"}}, [&] { return s.NetworkSet(1 | 2 | 4, 1, 2, "00101", 0); }, 0},
        {{{"AT+COPS=3,2\r"}}, [&] { return s.NetworkInit(); }, 0},
        {{{"AT+CGREG?\r", "\r\n+CGREG: 0,1\r\n\r\nOK\r\n"}}, [&] { return read(s.NetworkGetRegState(1, value)); }, 3},
        {{{"AT+CGATT?\r", "\r\n+CGATT: 1\r\n\r\nOK\r\n"}}, [&] { return read(s.NetworkGetPSAttachState(value)); }, 1},
        {{{"AT+CSQ\r", "\r\n+CSQ: 12,99\r\n\r\nOK\r\n"}}, [&] { return read(s.NetworkGetRssiLevel(value)); }, 3},
        {{{"AT+CSQ\r", "\r\n+CSQ: 12,99\r\n\r\nOK\r\n"}}, [&] { return read(s.NetworkGetSignalDBValue(value)); }, 90},
        {{{"AT+SYSSEL=2\r"}}, [&] { return s.NetworkSetBand(2); }, 0},
        {{{"AT+SYSSEL?\r", sysselAnswer}}, [&] { return read(s.NetworkGetBand(value)); }, 2},
        {{{"AT+SYSSEL=,1,0\r"}}, [&] { return s.NetworkSetMode(3); }, 0},
        {{{"AT+SYSSEL?\r", sysselAnswer}}, [&] { return read(s.NetworkGetMode(value)); }, 2},
        {{{"AT+COPS=3,2\r"}, {"AT+COPS?\r", "", 2}}, [&] { return s.NetworkGetInfo(network); }, 2},
        {{{"AT+CSCS=\"UCS2\"\r"}, {"AT+CUSD=1,\"002A0031003000300023\",15\r"}}, [&] { return s.SendUssdCmd(L"*100#"); }, 0},
        {{{"AT+CSCS?\r", "\r\n+CSCS: \"UCS2\"\r\n\r\nOK\r\n"}}, [&] { return s.UssdOnReceive("+CUSD: 1,\"00480069\",72", ussd) == 0 && ussd.wstrContent == L"Hi" ? ussd.nType : -1; }, 1},
        {{{"AT+CUSD?\r", "\r\n+CUSD: 1\r\n\r\nOK\r\n"}, {"AT+CUSD=2\r"}}, [&] { return s.SendUssdCancelCmd(); }, 0},
        {{{"AT+CUSD?\r", "\r\n+CUSD: 1\r\n\r\nOK\r\n"}}, [&] { return s.SendUssdCancelCmd(); }, 0}, // the dialogue is over: nothing sent
        {{{"AT+CUSD?\r", "\r\n+CUSD: 0\r\n\r\nOK\r\n"}}, [&] { return read(s.CheckUssdState(value)); }, 0},
        {{{"AT+CUSD=1\r"}}, [&] { return s.SetUssdState(value = 1); }, 0},
        {{{"AT+STGI=17\r", menu}}, [&] { return gives(s.STKInit(text), menu); }, 1},
        {{{"AT+STGR=0,0,1\r"}}, [&] { return gives(s.STKSendCommand("AT+STGR=0,0,1\r", text), ScriptedAtFake::kOk); }, 1},
        {{{"AT+STGI=1\r", proactive}}, [&] { return gives(s.STKHandleReport("+STIN: 1", text), proactive); }, 1},
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

TEST(AtSublayerInstance, DestroyClearsThePointerAndAcceptsNull) {
    TInterfaceAtSublayer* sublayer = nullptr;
    EXPECT_EQ(ATSubLayer_DestroyInstance(sublayer), 0);
    EXPECT_EQ(sublayer, nullptr);

    ASSERT_EQ(ATSubLayer_CreateInstance(sublayer), 0);
    ASSERT_NE(dynamic_cast<CAtSublayer*>(sublayer), nullptr);
    EXPECT_EQ(ATSubLayer_DestroyInstance(sublayer), 0);
    EXPECT_EQ(sublayer, nullptr);
}

} // namespace
