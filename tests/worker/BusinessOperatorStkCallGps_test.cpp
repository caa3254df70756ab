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

QVariantMap valueOf(const QVariantMap& response) {
    return WorkNotification::GetValueObject(response).toMap();
}

QVariantMap answerIn(const QString& command, int teSet = USSD_TE_IRA) {
    return request(QVariantMap{{SatKey::kCommand, command}, {SatKey::kCharSet, teSet}});
}

TEST_F(BusinessStkCallGpsTest, MainMenuListingComesWithItsCharacterSet) {
    const std::string listing = answer("+STGI: 17,\"004D0065006E00FC\",1\r\n+STGI: 17,9,\"0053\"");
    const struct {
        std::string charSet;
        int teSet;
    } rows[] = {
        {kCharSetIra, USSD_TE_IRA}, {kCharSetUcs2, USSD_TE_UCS2}, {answer("+CSCS: \"8859-1\""), USSD_TE_IRA}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.charSet);
        m_fake.Expect("AT+STGI=17\r", listing);
        m_fake.Expect("AT+CSCS?\r", row.charSet);
        QVariantMap response;
        ASSERT_EQ(m_business->SatGetMenu(response), 0);
        EXPECT_EQ(valueOf(response).value(SatKey::kListing).toString().toStdString(), listing);
        EXPECT_EQ(valueOf(response).value(SatKey::kCharSet).toInt(), row.teSet);
    }
    m_fake.Expect("AT+STGI=17\r", kCmeError);
    QVariantMap refused;
    EXPECT_EQ(m_business->SatGetMenu(refused), 1);
    EXPECT_FALSE(refused.contains(VALUE_OBJECT));
    m_fake.VerifyDone();
}

// An answer goes out only in the set it was built for; the command the card announced by then (in the
// answer itself, or by a later poll) is fetched, and stale announcements are dropped while other reports
// stay queued.
TEST_F(BusinessStkCallGpsTest, AnswersAndPollsFetchTheAnnouncedCommand) {
    const std::string gamesListing = answer("+STGI: 11,\"Games\",1,2\r\n+STGI: 11,1,\"Quiz\"");
    std::string stale = "\r\n+STIN: 6\r\n\r\n+CMTI: \"SM\",3\r\n";
    ComOperation::GetInstance()->checkUnsolicitedReport(stale, nullptr);

    m_fake.Expect("AT+CSCS?\r", kCharSetUcs2);
    QVariantMap otherSet;
    ASSERT_EQ(m_business->SatSelectItem(answerIn("AT+STGR=0,0,2"), otherSet), 0);
    EXPECT_FALSE(valueOf(otherSet).value(SatKey::kSent).toBool());
    EXPECT_EQ(valueOf(otherSet).value(SatKey::kCharSet).toInt(), USSD_TE_UCS2);

    m_fake.Expect("AT+CSCS?\r", kCharSetIra);
    m_fake.Expect("AT+STGR=0,0,2\r", "\r\nOK\r\n");
    QVariantMap sent;
    ASSERT_EQ(m_business->SatSelectItem(answerIn("AT+STGR=0,0,2"), sent), 0);
    EXPECT_TRUE(valueOf(sent).value(SatKey::kSent).toBool());
    EXPECT_EQ(valueOf(sent).value(SatKey::kListing).toString(), "");
    EXPECT_EQ(queuedReports(), std::vector<std::string>{"\r\n+CMTI: \"SM\",3\r\n"});

    m_fake.Expect("AT\r", "\r\nOK\r\n");
    m_fake.Expect("AT\r", answer("+STIN: 11"));
    m_fake.Expect("AT+STGI=11\r", gamesListing);
    m_fake.Expect("AT+CSCS?\r", kCharSetIra);
    QVariantMap polled;
    ASSERT_EQ(m_business->SatPoll(polled), 0);
    EXPECT_EQ(valueOf(polled).value(SatKey::kListing).toString(), "");
    ASSERT_EQ(m_business->SatPoll(polled), 0);
    EXPECT_EQ(valueOf(polled).value(SatKey::kListing).toString().toStdString(), gamesListing);

    m_fake.Expect("AT+CSCS?\r", kCharSetIra);
    m_fake.Expect("AT+STGR=11,0,,2\r", "\r\n+STIN: 1\r\n\r\nOK\r\n");
    m_fake.Expect("AT+STGI=1\r", answer("+STGI: 1,\"Bye\",0,1"));
    QVariantMap inside;
    ASSERT_EQ(m_business->SatSelectItem(answerIn("AT+STGR=11,0,,2"), inside), 0);
    EXPECT_TRUE(valueOf(inside).value(SatKey::kListing).toString().contains("Bye"));
    m_fake.VerifyDone();
}

TEST_F(BusinessStkCallGpsTest, OnlyToolkitAnswersAreSent) {
    const struct {
        const char* name;
        QVariantMap request;
        std::string sent; // "" when nothing may be sent
        int result;
    } rows[] = {
        {"no argument", {}, "", 3},
        {"another command", answerIn("AT+CFUN=0"), "", 45},
        {"second command after it", answerIn("AT+STGR=0,0,1;+CFUN=0"), "", 45},
        {"line break inside", answerIn("AT+STGR=0,0,1\rAT+CFUN=0"), "", 45},
        {"open quote", answerIn("AT+STGR=3,0,,\"Paris"), "", 45},
        {"semicolon quoted", answerIn("AT+STGR=3,0,,\"a;b\""), "AT+STGR=3,0,,\"a;b\"\r", 0},
        {"card refuses", answerIn("AT+STGR=0,0,9"), "AT+STGR=0,0,9\r", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        if (!row.sent.empty()) {
            m_fake.Expect("AT+CSCS?\r", kCharSetIra);
            m_fake.Expect(row.sent, row.result == 0 ? "\r\nOK\r\n" : kCmeError);
        }
        QVariantMap response;
        EXPECT_EQ(m_business->SatSelectItem(row.request, response), row.result);
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
    const struct { const char* name; QVariantMap request; std::vector<std::string> sent; std::string lastReply; int result; } rows[] = {
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
