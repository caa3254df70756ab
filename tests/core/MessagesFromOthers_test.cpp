#include "TempHome.h"

#include "BLRecords.h"
#include "SMS/MessagesController.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include "QtEventLoop.h"
#include "RecordingTransport.h"

// Through the modem service every client hears the answers to the others' sends; a following controller
// passes on the messages that went out, so the desktop app keeps them in its Sent box.
TEST(MessagesController, PassesOnWhatAnotherClientSent) {
    ensureApplication();
    TempHome home;
    RecordedLink modem;
    MessagesController messages(modem.link);
    QSignalSpy sent(&messages, &MessagesController::sentElsewhere);
    messages.follow();
    const QVariant item = QVariant::fromValue(BLSmsSendItem{QStringLiteral("+491701234567"), QStringLiteral("Hi")});
    struct Row {
        int code;
        QVariant value;
        int kept;
    };
    // clang-format off
    const Row rows[] = {
        {WORKER_OK, item, 1},
        {WORKER_ERR_GENERAL, item, 0},          // not sent: nothing to keep
        {WORKER_OK, QVariant(QStringLiteral("?")), 0}, // not a message
    };
    // clang-format on
    for (const Row& row : rows) {
        sent.clear();
        QVariantMap answer{{USER_INFO, QVariantMap{{VALUE_OBJECT, row.value}, {QStringLiteral("CLIENT"), ":1.9"}}}};
        WorkNotification::SetErrorCode(answer, row.code);
        emit modem.transport->received(MESSAGE_SMS_SEND, answer);
        ASSERT_EQ(sent.count(), row.kept);
    }
    messages.send(QStringLiteral("+491701234567"), QStringLiteral("mine"), [](const MessagesController::Outcome&) {});
    modem.transport->answer(MESSAGE_SMS_SEND, WORKER_OK);
    EXPECT_EQ(sent.count(), 0) << "its own send is no other client's";
}
