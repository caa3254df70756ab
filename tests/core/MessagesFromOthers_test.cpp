#include "TempHome.h"

#include "BLRecords.h"
#include "SMS/MessagesController.h"

#include <QSignalSpy>

#include "QtEventLoop.h"
#include "RecordingTransport.h"

// Through the modem service every client hears the answers to the others' requests: a following controller
// passes on the messages they sent (the desktop app keeps them in its Sent box) and takes their lists.
TEST(MessagesController, FollowsWhatOtherClientsSentAndListed) {
    ensureApplication();
    TempHome home;
    RecordedLink modem;
    MessagesController messages(modem.link);
    QSignalSpy sent(&messages, &MessagesController::sentElsewhere);
    messages.follow();
    const QVariant item = QVariant::fromValue(BLSmsSendItem{QStringLiteral("+491701234567"), QStringLiteral("Hi")});
    // clang-format off
    struct Row { int code; QVariant value; int kept; };
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

    // Another client's list holds a message that came in meanwhile (the modem reports it to nobody): the
    // follower takes the list as it is, without listing again.
    ASSERT_TRUE(modem.transport->answer(MESSAGE_SMS_INIT, WORKER_OK)); // no IMSI: no computer inbox
    ASSERT_TRUE(modem.transport->answer(MESSAGE_SMS_GET_LIST, WORKER_OK, QVariant::fromValue(QList<BLSmsListItem>{})));
    BLSmsListItem arrived;
    arrived.nRef = 3;
    arrived.strContent = QStringLiteral("came in meanwhile");
    QVariantMap othersList{{USER_INFO, QVariantMap{{QStringLiteral("CLIENT"), ":1.9"}}}};
    WorkNotification::SetValueObject(othersList, QVariant::fromValue(QList<BLSmsListItem>{arrived}));
    emit modem.transport->received(MESSAGE_SMS_GET_LIST, othersList);
    ASSERT_EQ(messages.messages().size(), 1);
    EXPECT_EQ(messages.messages().front().strContent, arrived.strContent);
    EXPECT_EQ(modem.transport->count(MESSAGE_SMS_GET_LIST), 1);
}
