// Toolkit menus and voice calls through the business layer: the real AT sublayer talking to a
// scripted modem. Unsolicited lines in the scripted answers go to the channel's report queue, as the
// channel does with a real modem's answers.

#include "ATSublayer.h"
#include "BLRecords.h"
#include "BusinessOperator.h"
#include "ComOperation.h"
#include "ScriptedAtFake.h"
#include "WorkNotification.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

std::string answer(const std::string& lines) {
    return "\r\n" + lines + "\r\n\r\nOK\r\n";
}

const std::string kCharSetIra = answer("+CSCS: \"IRA\"");
const std::string kCharSetUcs2 = answer("+CSCS: \"UCS2\"");
const std::string kCmeError = "\r\n+CME ERROR: 50\r\n";

void clearReports() {
    UnsolicitedReportList* reports = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(reports);
    for (UnsolicitedReportDataType* report : *reports) {
        delete report;
    }
    reports->clear();
}

std::vector<std::string> queuedReports() {
    UnsolicitedReportList* reports = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(reports);
    std::vector<std::string> lines;
    for (const UnsolicitedReportDataType* report : *reports) {
        lines.push_back(report->strText);
    }
    return lines;
}

// The scripted modem behind the channel's report filter.
int execThroughChannel(const char* command, const char* expected, int timeoutMs,
                       const std::list<std::string>& finals, std::string& response) {
    const int result = ScriptedAtFake::ExecAT(command, expected, timeoutMs, finals, response);
    if (result == 0) {
        ComOperation::GetInstance()->checkUnsolicitedReport(response, expected);
    }
    return result;
}

QVariantMap request(const QVariant& value) {
    QVariantMap map;
    WorkNotification::SetValueObject(map, value);
    return map;
}

std::vector<std::pair<int, std::string>> itemsOf(const BLSatCommand& command) {
    std::vector<std::pair<int, std::string>> items;
    for (const BLSatMenuItem& item : command.lstItems) {
        items.emplace_back(item.nItemId, item.strText.toStdString());
    }
    return items;
}

class BusinessStkCallGpsTest : public ::testing::Test {
protected:
    void SetUp() override {
        registerRecordMetaTypes();
        clearReports();
        ASSERT_EQ(ATSubLayer_CreateInstance(m_sublayer), 0);
        TInterfaceAtSublayerLower lower;
        lower.pfnExecAT = &execThroughChannel;
        m_sublayer->RegisterLowerCBs(lower);
        m_business = std::make_unique<BusinessOperator>(ComOperation::GetInstance(), m_sublayer, nullptr);
    }
    void TearDown() override {
        m_business.reset();
        ATSubLayer_DestroyInstance(m_sublayer);
        clearReports();
    }

    ScriptedAtFake m_fake;
    TInterfaceAtSublayer* m_sublayer = nullptr;
    std::unique_ptr<BusinessOperator> m_business;
};

TEST_F(BusinessStkCallGpsTest, MainMenuIsReadInTheModemsCharacterSet) {
    // clang-format off
    const struct {
        const char* name;
        std::string listing;
        std::string charSet;
        std::string title;
        std::vector<std::pair<int, std::string>> items;
    } rows[] = {
        {"IRA", answer("+STGI: 17,\"SIM Services\",3\r\n+STGI: 17,1,\"News\"\r\n+STGI: 17,2,\"Games\"\r\n+STGI: 17,5,\"Offers\""), kCharSetIra, "SIM Services", {{1, "News"}, {2, "Games"}, {5, "Offers"}}},
        {"UCS2", answer("+STGI: 17,\"004D0065006E00FC\",1\r\n+STGI: 17,9,\"0053007000690065006C0065\""), kCharSetUcs2, "Menü", {{9, "Spiele"}}},
        {"no items", answer("+STGI: 17,\"Empty\""), kCharSetIra, "Empty", {}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_fake.Expect("AT+STGI=17\r", row.listing);
        m_fake.Expect("AT+CSCS?\r", row.charSet);
        QVariantMap response;
        ASSERT_EQ(m_business->SatGetMenu(response), 0);
        const auto menu = WorkNotification::GetValueObject(response).value<BLSatCommand>();
        EXPECT_EQ(menu.nCommand, 17);
        EXPECT_EQ(menu.nType, 37);
        EXPECT_EQ(menu.strText.toStdString(), row.title);
        EXPECT_EQ(itemsOf(menu), row.items);
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessStkCallGpsTest, MainMenuFailuresStoreNothing) {
    const struct {
        const char* name;
        std::string listing;
        int result;
    } rows[] = {
        {"refused", kCmeError, 1},
        {"not a menu", answer("+STGI: 1,\"Hello\",0,1"), 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_fake.Expect("AT+STGI=17\r", row.listing);
        if (row.listing != kCmeError) {
            m_fake.Expect("AT+CSCS?\r", kCharSetIra);
        }
        QVariantMap response;
        EXPECT_EQ(m_business->SatGetMenu(response), row.result);
        EXPECT_FALSE(response.contains(VALUE_OBJECT));
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessStkCallGpsTest, AnswerIsSentAndTheAnnouncedCommandFetched) {
    const std::string gamesListing =
        answer("+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"\r\n+STGI: 11,2,\"About\"");
    // clang-format off
    const struct {
        const char* name;
        BLSatResponse answer;
        std::string sent;
        std::string sentReply;          // may carry the announcement itself
        std::vector<std::string> polls; // answers to the bare "AT" polls
        std::string fetch;              // "" when nothing is fetched
        std::string listing;
        int command;
        int type;
        std::string text;
        std::vector<std::pair<int, std::string>> items;
    } rows[] = {
        {"main menu choice", {17, 0, 2, {}}, "AT+STGR=0,0,2\r", "\r\nOK\r\n", {"\r\nOK\r\n", answer("+STIN: 11")}, "AT+STGI=11\r", gamesListing, 11, 36, "Games", {{1, "Quiz"}, {2, "About"}}},
        {"announcement inside the answer", {11, 0, 2, {}}, "AT+STGR=11,0,,2\r", "\r\n+STIN: 1\r\n\r\nOK\r\n", {}, "AT+STGI=1\r", answer("+STGI: 1,\"Games by your operator\",0,1"), 1, 33, "Games by your operator", {}},
        {"text confirmed, dialogue ends", {1, 0, 0, {}}, "AT+STGR=1,0,\r", "\r\nOK\r\n", {answer("+STIN: 20")}, "", "", 20, 129, "", {}},
        {"input answered", {3, 0, 0, "Paris"}, "AT+STGR=3,0,,\"Paris\"\r", "\r\nOK\r\n", {answer("+STIN: 1")}, "AT+STGI=1\r", answer("+STGI: 1,\"Thank you!\",0,1"), 1, 33, "Thank you!", {}},
        {"yes to a question", {2, 0, 1, {}}, "AT+STGR=2,0,,2,1,\r", "\r\nOK\r\n", {answer("+STIN: 20")}, "", "", 20, 129, "", {}},
        {"user ends the menu", {11, 16, -1, {}}, "AT+STGR=11,16,,\r", "\r\nOK\r\n", {answer("+STIN: 20")}, "", "", 20, 129, "", {}},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_fake.Expect("AT+CSCS?\r", kCharSetIra);
        m_fake.Expect(row.sent, row.sentReply);
        for (const std::string& poll : row.polls) {
            m_fake.Expect("AT\r", poll);
        }
        if (!row.fetch.empty()) {
            m_fake.Expect(row.fetch, row.listing);
        }
        QVariantMap response;
        ASSERT_EQ(m_business->SatSelectItem(request(QVariant::fromValue(row.answer)), response), 0);
        const auto next = WorkNotification::GetValueObject(response).value<BLSatCommand>();
        EXPECT_EQ(next.nCommand, row.command);
        EXPECT_EQ(next.nType, row.type);
        EXPECT_EQ(next.strText.toStdString(), row.text);
        EXPECT_EQ(itemsOf(next), row.items);
        EXPECT_TRUE(queuedReports().empty());
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessStkCallGpsTest, StaleAnnouncementsAreDroppedAndOtherReportsKept) {
    std::string stale = "\r\n+STIN: 6\r\n\r\n+CMTI: \"SM\",3\r\n";
    ComOperation::GetInstance()->checkUnsolicitedReport(stale, nullptr);
    ASSERT_EQ(queuedReports().size(), 2u);

    m_fake.Expect("AT+CSCS?\r", kCharSetIra);
    m_fake.Expect("AT+STGR=0,0,1\r");
    m_fake.Expect("AT\r", answer("+STIN: 1"));
    m_fake.Expect("AT+STGI=1\r", answer("+STGI: 1,\"Today: sunny, 24 C\",0,1"));
    QVariantMap response;
    ASSERT_EQ(m_business->SatSelectItem(request(QVariant::fromValue(BLSatResponse{17, 0, 1, {}})), response),
              0);
    EXPECT_EQ(WorkNotification::GetValueObject(response).value<BLSatCommand>().strText, "Today: sunny, 24 C");
    EXPECT_EQ(queuedReports(), std::vector<std::string>{"\r\n+CMTI: \"SM\",3\r\n"});
}

TEST_F(BusinessStkCallGpsTest, AnswersThatCannotBeSentOrAreRefused) {
    const struct {
        const char* name;
        QVariantMap request;
        bool charSet;
        std::string refused; // the answer's command when the modem refuses it
        int result;
    } rows[] = {
        {"no argument", {}, false, "", 3},
        {"command without an answer", request(QVariant::fromValue(BLSatResponse{99, 0, 1, {}})), false, "",
         1},
        {"item beyond one octet", request(QVariant::fromValue(BLSatResponse{17, 0, 256, {}})), false, "", 1},
        {"card refuses the item", request(QVariant::fromValue(BLSatResponse{17, 0, 9, {}})), true,
         "AT+STGR=0,0,9\r", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.charSet) {
            m_fake.Expect("AT+CSCS?\r", kCharSetIra);
        }
        if (!row.refused.empty()) {
            m_fake.Expect(row.refused, kCmeError);
        }
        QVariantMap response;
        EXPECT_EQ(m_business->SatSelectItem(row.request, response), row.result);
        EXPECT_FALSE(response.contains(VALUE_OBJECT));
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessStkCallGpsTest, DialSendsOnlyDialStringsAndPassesTheCallResultsOn) {
    const struct {
        const char* name;
        QVariantMap request;
        std::string sent; // "" when nothing may be sent
        std::string reply;
        int result;
    } rows[] = {
        {"answered", request(QStringLiteral("+491701234567")), "ATD+491701234567;\r", "\r\nOK\r\n", 0},
        {"service code", request(QStringLiteral("*100#")), "ATD*100#;\r", "\r\nOK\r\n", 0},
        {"busy", request(QStringLiteral("0301234")), "ATD0301234;\r", "\r\nBUSY\r\n", 27},
        {"no answer", request(QStringLiteral("0301234")), "ATD0301234;\r", "\r\nNO ANSWER\r\n", 26},
        {"refused", request(QStringLiteral("0301234")), "ATD0301234;\r", kCmeError, 1},
        {"second command smuggled in", request(QStringLiteral("12;AT+CFUN=0")), "", "", 1},
        {"plus inside", request(QStringLiteral("49+1")), "", "", 1},
        {"only a plus", request(QStringLiteral("+")), "", "", 1},
        {"empty", request(QString("")), "", "", 1},
        {"too long", request(QString(41, QChar('1'))), "", "", 1},
        {"no argument", {}, "", "", 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        if (!row.sent.empty()) {
            m_fake.Expect(row.sent, row.reply);
        }
        EXPECT_EQ(m_business->CallDial(row.request), row.result);
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessStkCallGpsTest, DtmfKeysAreCheckedBeforeAnyIsSent) {
    // clang-format off
    const struct {
        const char* name;
        QVariantMap request;
        std::vector<std::string> sent;
        std::string lastReply;
        int result;
    } rows[] = {
        {"every key kind", request(QStringLiteral("1*#D")), {"AT+VTS=1\r", "AT+VTS=*\r", "AT+VTS=#\r", "AT+VTS=D\r"}, "\r\nOK\r\n", 0},
        {"a bad key at the end", request(QStringLiteral("12E")), {}, "", 1},
        {"lower case", request(QStringLiteral("a")), {}, "", 1},
        {"stops at the first refusal", request(QStringLiteral("12")), {"AT+VTS=1\r"}, kCmeError, 1},
        {"too many keys", request(QString(65, QChar('1'))), {}, "", 1},
        {"empty", request(QString("")), {}, "", 3},
        {"no argument", {}, {}, "", 3},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (std::size_t i = 0; i < row.sent.size(); ++i) {
            m_fake.Expect(row.sent[i], i + 1 == row.sent.size() ? row.lastReply : std::string("\r\nOK\r\n"));
        }
        EXPECT_EQ(m_business->CallSendDTMF(row.request), row.result);
        m_fake.VerifyDone();
    }
}

TEST_F(BusinessStkCallGpsTest, CallListBecomesRecordsWithCappedNumbers) {
    m_fake.Expect("AT+CLCC\r", answer("+CLCC: 1,0,0,0,0,\"491701234567\",145\r\n"
                                      "+CLCC: 2,1,5,0,0,\"0301234\",129\r\n"
                                      "+CLCC: 3,1,4,0,0,\"1234567890123456789012345\",129"));
    QVariantMap response;
    ASSERT_EQ(m_business->CallGetList(response), 0);
    const auto calls = WorkNotification::GetValueObject(response).value<QList<BLCallItem>>();
    ASSERT_EQ(calls.size(), 3);
    EXPECT_EQ(calls[0], (BLCallItem{1, 0, 0, 0, 0, 145, "+491701234567"}));
    EXPECT_EQ(calls[1], (BLCallItem{2, 1, 5, 0, 0, 129, "0301234"}));
    EXPECT_EQ(calls[2].strNumber, "123456789012345678901");

    // No call is an empty list, not a missing one; a failure stores nothing.
    m_fake.Expect("AT+CLCC\r", "\r\nOK\r\n");
    response.clear();
    ASSERT_EQ(m_business->CallGetList(response), 0);
    ASSERT_TRUE(response.contains(VALUE_OBJECT));
    EXPECT_TRUE(WorkNotification::GetValueObject(response).value<QList<BLCallItem>>().isEmpty());
    m_fake.Expect("AT+CLCC\r", kCmeError);
    response.clear();
    EXPECT_EQ(m_business->CallGetList(response), 1);
    EXPECT_FALSE(response.contains(VALUE_OBJECT));
}

} // namespace
