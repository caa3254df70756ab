#include "ModemLink.h"
#include "QtEventLoop.h"
#include "RecordingTransport.h"
#include "WorkNotification.h"

#include <QTimer>

#include <gtest/gtest.h>

TEST(ModemLink, EachAnswerReachesOnlyItsRequest) {
    ensureApplication();
    RecordedLink modem;
    RecordingTransport& transport = *modem.transport;
    QStringList got;
    modem.link.request(MESSAGE_SMS_GET_LIST, 1, [&](const QVariantMap&) { got << "first"; });
    modem.link.request(MESSAGE_SMS_GET_LIST, 2, [&](const QVariantMap&) { got << "second"; });
    ASSERT_EQ(transport.count(MESSAGE_SMS_GET_LIST), 2);
    // Another client's answer of the same name (no ticket), then the answers in the other order.
    transport.report(MESSAGE_SMS_GET_LIST);
    transport.answer(MESSAGE_SMS_GET_LIST, WORKER_OK);
    transport.answer(MESSAGE_SMS_GET_LIST, WORKER_OK);
    // The same answer again is not delivered twice.
    std::find_if(transport.requests.begin(), transport.requests.end(), [](const auto& r) {
        return r.name == MESSAGE_SMS_GET_LIST;
    })->answered = false;
    ASSERT_TRUE(transport.answer(MESSAGE_SMS_GET_LIST, WORKER_OK));
    QCoreApplication::processEvents();
    EXPECT_EQ(got, (QStringList{"second", "first"}));
}

TEST(ModemLink, WaitsEndByAnswerUnplugOrTimeOut) {
    ensureApplication();
    RecordedLink modem;
    RecordingTransport& transport = *modem.transport;
    int reports = 0;
    QObject::connect(&modem.link, &ModemLink::reportReceived, [&] { ++reports; });
    transport.report(MESSAGE_RPT_RECEIVE_SMS);
    EXPECT_EQ(reports, 1);

    EXPECT_EQ(WorkNotification::GetErrorCode(modem.link.call(MESSAGE_SMS_GET_LIST, {}, 50)),
              WORKER_ERR_TIME_OUT);

    // A reply whose context is gone does not run.
    bool ran = false;
    modem.link.request(
        MESSAGE_SMS_GET_LIST, {}, [&](const QVariantMap&) { ran = true; }, std::make_unique<QObject>().get());
    ASSERT_TRUE(transport.answer(MESSAGE_SMS_GET_LIST, WORKER_OK));
    EXPECT_FALSE(ran);

    // A pulled stick ends a wait without limit with "no modem", and the link is Absent.
    QTimer::singleShot(20, &transport, [&] { emit transport.unplugged(); });
    EXPECT_EQ(WorkNotification::GetErrorCode(modem.link.call(MESSAGE_SMS_GET_LIST)),
              WORKER_ERR_NO_DATA_DEVICE);
    EXPECT_EQ(modem.link.state(), ModemLink::State::Absent);
}
