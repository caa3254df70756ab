// Answers of several kinds of modem through the channel and the families; one table per family.
#include <algorithm>
#include <chrono>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AtTestSupport.h"
#include "CallUtility.h"
#include "ComOperation.h"
#include "ModemDialect.h"
#include "NetworkAnswerParsers.h"
#include "NetworkUtility.h"
#include "PinUtility.h"
#include "PtyPeer.h"
#include "UssdUtility.h"

namespace {

using namespace std::chrono_literals;
using at_test::Reports;
using at_test::TakeReports;
constexpr auto kVel = ModemDialect::Vel;
constexpr auto kStandard = ModemDialect::Standard;

int ChannelExecAT(const char* command, const char* expected, int timeoutMs, const std::list<std::string>&,
                  std::string& response) {
    const int code =
        ComOperation::GetInstance()->writeCom(command, expected, std::max(1, timeoutMs / 1000), response);
    return code == 0 ? 0 : code == 8 ? 2 : 1;
}

struct AnswerVariants : ::testing::Test {
    void SetUp() override { SetModemDialect(ModemDialect::Standard); }
    void TearDown() override { ResetModemDialect(); }
};

TEST_F(AnswerVariants, ChannelEndsCommandsAtOnce) {
    CCallUtility call;
    CNetworkUtility network;
    CUssdUility ussd;
    [](auto&... families) { (families.RegisterExecAT(&ChannelExecAT), ...); }(call, network, ussd);
    int value = 0;
    std::list<TCallItemState> calls;
    const auto dial = [&] { return call.Dial("10086"); };
    const auto signal = [&] { return network.GetSignalDBValue(value); };
    const auto reg = [&] { return network.GetRegState(0, value) == 0 ? value : -1; };
    const std::string cusd0 = "\r\n+CUSD: 0,\"Balance 5.00\",15\r\n";
    // clang-format off
    const struct { const char* kind; ModemDialect dialect; const char* command; std::string answer; std::function<int()> run; int result; Reports reports; } rows[] = {
        {"HSPA stick dialling a busy line", kVel, "ATD10086;\r", "\r\nBUSY\r\n", dial, 27, {}},
        {"stick without a voice line, echo on", kStandard, "ATD10086;\r", "ATD10086;\r\r\nNO DIALTONE\r\n", dial, 28, {}},
        {"call ended during another command", kVel, "AT+CLCC\r", "\r\nNO CARRIER\r\n\r\nOK\r\n", [&] { return call.CheckCallState(calls); }, 0, {{UNSOLICITED_REPORT_NO_CARRIER, "\r\nNO CARRIER\r\n"}}},
        {"3G module refusing unknown commands", kStandard, "AT+CSQ\r", "\r\nCOMMAND NOT SUPPORT\r\n", signal, 1, {}},
        {"module refusing extra parameters", kVel, "AT+CSQ\r", "\r\nTOO MANY PARAMETERS\r\n", signal, 1, {}},
        {"USSD answer and release notices in one read", kStandard, "AT+CUSD=1\r", "\r\nOK\r\n" + cusd0 + "\r\n+CUSD: 2\r\n\r\n+CUSD: 4\r\n", [&] { return ussd.SetUssdState(value = 1); }, 0, {{UNSOLICITED_REPORT_CUSD, cusd0}, {UNSOLICITED_REPORT_CUSD, "\r\n+CUSD: 2\r\n"}, {UNSOLICITED_REPORT_CUSD, "\r\n+CUSD: 4\r\n"}}},
        {"USSD report just before the answer", kStandard, "AT+CUSD?\r", "\r\n+CUSD: 2,\"Bye\",15\r\n\r\n+CUSD: 1\r\n\r\nOK\r\n", [&] { return ussd.CheckUssdState(value) == 0 ? value : -1; }, 1, {{UNSOLICITED_REPORT_CUSD, "\r\n+CUSD: 2,\"Bye\",15\r\n"}}},
        {"LTE module without a blank after the colon", kStandard, "AT+CREG?\r", "\r\n+CREG: 2\r\n\r\n+CREG:0,1\r\n\r\nOK\r\n", reg, 3, {}},
    };
    // clang-format on
    PtyPeer peer;
    ASSERT_EQ(ComOperation::GetInstance()->openCom(peer.slavePath().c_str()), 0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.kind);
        SetModemDialect(row.dialect);
        peer.expect(row.command, row.answer);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(row.run(), row.result);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
        EXPECT_EQ(TakeReports(), row.reports);
        EXPECT_TRUE(peer.waitUntilIdle(2s));
    }
    ComOperation::GetInstance()->reset();
    TakeReports();
}

TEST_F(AnswerVariants, UssdTextForms) {
    // clang-format off
    const struct { const char* kind; int teSet; const char* line; const wchar_t* text; } rows[] = {
        {"HSPA stick that answers IRA text", USSD_TE_IRA, "+CUSD: 0,\"Balance: 5.00 EUR\",15", L"Balance: 5.00 EUR"},
        {"stick that leaves out the dcs", USSD_TE_IRA, "+CUSD: 1,\"Reply 1 or 2\"", L"Reply 1 or 2"},
        {"stick that leaves out the dcs and the blank, hex text", USSD_TE_GSM, "+CUSD:0,\"4869\"\r\n", L"Hi"},
        {"LTE module with dcs 0x11", USSD_TE_UCS2, "+CUSD: 0,\"653700480069\",17", L"Hi"},
        {"UMTS stick giving packed septets", USSD_TE_GSM, "+CUSD: 0,\"D3309BFCD6816AA062550A\",15", L"Saldo: 5 EUR"},
        {"packed septets padded with CR", USSD_TE_IRA, "+CUSD: 0,\"31D98C56B3DD1A\",15", L"1234567"},
        {"UCS2 answer padded with U+0000", USSD_TE_UCS2, "+CUSD: 0,\"0048006900000041\",72", L"Hi"},
        {"UCS2 answer outside the BMP", USSD_TE_UCS2, "+CUSD: 0,\"D83DDE00\",72", L"\U0001F600"},
    };
    // clang-format on
    for (const auto& row : rows) {
        TUssdItem item;
        EXPECT_EQ(CUssdUility::ParseCusdReport(row.line, row.teSet, item), 0) << row.kind;
        EXPECT_EQ(item.wstrContent, row.text) << row.kind;
    }
}

TEST_F(AnswerVariants, OperatorListFieldByField) {
    // clang-format off
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"(2,\"Acme - Mobile\",,\"00103\"),,(0,1,2,3,4),(0,1,2)", {"Acme - Mobile||00103|3"}},
        {"(1,\"00540065006C00650063006F006D0020004F00700065007200610074006F00720020004E0061006D0065\",\"0041\",\"00300030003100300031\",2)", {"Telecom Operator|A|00101|2"}},
        {"(1,\"Acme Telecommunications Group\",\"ACME\",\"00101\",2),( 3, \"Op (W)\" ,\"W,1\",00102 )", {"Acme Telecommuni|ACME|00101|2", "Op (W)|W,1|00102|3"}},
        {"(1,\"A\",\"A\",\"00101\",2),(1,\"B\"", {"A|A|00101|2"}},
    };
    // clang-format on
    for (const auto& [list, expected] : rows) {
        std::list<TNetworkListItem> items;
        EXPECT_EQ(ParseCopsListAnswer("\r\n+COPS: " + list + "\r\n\r\nOK\r\n", items), 0);
        std::vector<std::string> read;
        for (const TNetworkListItem& item : items)
            read.push_back(std::string(item.szLongName) + "|" + item.szShortName + "|" + item.szNumericName +
                           "|" + std::to_string(item.nAcT));
        EXPECT_EQ(read, expected) << list;
    }
}

TEST_F(AnswerVariants, CountersTechnologyAndProviderName) {
    const auto puk = [](const std::string& answer) {
        return std::to_string(CPinUtility::ParseCpinrAnswer(answer, "SIM PUK"));
    };
    const auto technology = [](const std::string& answer) {
        int stat = -1;
        const int act = ParseCregAccessTechnology(answer, stat);
        return std::to_string(act) + (stat == -1 ? " without state" : "");
    };
    const auto provider = [](const std::string& answer) {
        TServiceProviderInfo info;
        const std::string result = std::to_string(ParseCrsmSpnAnswer(answer, info));
        const std::u16string name(info.wszSpName);
        return info.nPresent == 0 ? result
                                  : result + " " + std::to_string(info.nDisplay) + " " +
                                        std::string(name.begin(), name.end());
    };
    // clang-format off
    const struct { const char* kind; std::function<std::string(const std::string&)> parse; std::string answer; const char* read; } rows[] = {
        {"3GPP reference", puk, "\r\n+CPINR: SIM PIN,3,3\r\n+CPINR: SIM PUK,10,10\r\n\r\nOK\r\n", "10"},
        {"code quoted", puk, "\r\n+CPINR: \"SIM PIN2\",2,3\r\n+CPINR: \"SIM PUK\",7,10\r\n\r\nOK\r\n", "7"},
        {"only PUK2 listed", puk, "\r\n+CPINR: SIM PUK2,9,10\r\n\r\nOK\r\n", "-1"},
        {"HSPA cell", technology, "\r\n+CREG: 2,1,\"1A2B\",\"00C3D4\",6\r\n\r\nOK\r\n", "6"},
        {"report just before the answer", technology, "\r\n+CREG: 1,\"1A2B\",\"00C3D4\",0\r\n+CREG: 2,5,\"1A2B\",\"00C3D4\",2\r\n\r\nOK\r\n", "2"},
        {"AT+CREG=2 refused", technology, "\r\n+CREG: 0,1\r\n\r\nOK\r\n", "-1"},
        {"UCS2, lower-case hex", provider, "\r\n+CRSM: 144,0,\"00800041006300 6d0065ffff\"\r\n\r\nOK\r\n", "0 0 Acme"},
        {"SIM without EF-SPN", provider, "\r\n+CRSM: 148,4\r\n\r\nOK\r\n", "1"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(row.parse(row.answer), row.read) << row.kind;
}

} // namespace
