#include "../core/TempHome.h"

#include "BLRecords.h"
#include "WorkNotification.h"

#include <QObject>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

// Stands in for the worker: records what arrives and answers synchronous requests with a set response.
class FakeWorker : public DeviceWorkRequestInterface {
public:
    struct Call {
        QString name;
        QObject* sender;
        QVariantMap userInfo;
        bool sync;
    };

    QVariantMap sysncRequest(const QString& name, const QVariantMap& userInfo) override {
        calls.push_back({name, nullptr, userInfo, true});
        return syncResponse;
    }
    void asyncRequest(const QString& name, QObject* sender, const QVariantMap& userInfo) override {
        calls.push_back({name, sender, userInfo, false});
    }

    std::vector<Call> calls;
    QVariantMap syncResponse;
};

// The worker's side of an answer, as the worker thread builds it.
QVariantMap answer(const FakeWorker::Call& call, qint32 code, const QVariant& value) {
    QVariantMap response;
    if (code != 0) {
        WorkNotification::SetErrorCode(response, code);
    }
    WorkNotification::SetValueObject(response, value);
    if (call.sender) {
        WorkNotification::SetRequester(response, QString::fromUtf8(call.sender->metaObject()->className()));
    }
    if (!call.userInfo.isEmpty()) {
        WorkNotification::SetUserInfo(response, call.userInfo);
    }
    return response;
}

QVariantMap withValue(const QVariant& value) {
    return {{VALUE_OBJECT, value}};
}

} // namespace

TEST(WorkNotification, AsyncWithoutTargetOrSenderSendsNothingAndGives32) {
    FakeWorker worker;
    QObject sender;
    auto gone = std::make_unique<QObject>();
    WorkNotification senderGone(gone.get(), &worker);
    gone.reset();
    const qint32 before = WorkNotification::getQueueItemCount();

    for (WorkNotification notification : {WorkNotification(), WorkNotification(&sender, nullptr),
                                          WorkNotification(nullptr, &worker), senderGone}) {
        EXPECT_EQ(notification.sendASyncWorkMessage(MESSAGE_PIN_GET_INFO, withValue(1)), 32);
    }
    EXPECT_TRUE(worker.calls.empty());
    EXPECT_EQ(WorkNotification::getQueueItemCount(), before);
}

// Only sendASyncWorkMessage checks and counts up; every delivered answer but the two reports counts down:
// an uncounted request's answer leaves the count one lower, a dropped request one higher.
TEST(WorkNotification, SendWorkMessageNeitherChecksNorCountsSoTheQueueCountIsUnbalanced) {
    FakeWorker worker;
    worker.syncResponse = {{ERROR_CODE, 14}};
    QObject sender;
    WorkNotification notification(&sender, &worker);
    NotificationCenter center;
    const qint32 before = WorkNotification::getQueueItemCount();

    notification.sendASyncWorkMessage(MESSAGE_NETWORK_GET_INFO, {});
    EXPECT_TRUE(
        WorkNotification(nullptr, &worker).sendworkMessage(MESSAGE_CONNECT_STATUS, {}, false).isEmpty());
    EXPECT_EQ(notification.sendworkMessage(MESSAGE_PIN_VERIFY, withValue("0000"), true), worker.syncResponse);
    ASSERT_EQ(worker.calls.size(), 3u);
    EXPECT_FALSE(worker.calls[1].sync);
    EXPECT_EQ(worker.calls[1].sender, nullptr);
    EXPECT_TRUE(worker.calls[2].sync);
    EXPECT_EQ(worker.calls[2].userInfo, withValue("0000"));
    EXPECT_EQ(WorkNotification::getQueueItemCount(), before + 1);
    for (const auto& call : worker.calls) {
        if (!call.sync)
            WorkNotification::deliverResponse(call.name, answer(call, 0, {}), nullptr, center);
    }
    EXPECT_EQ(WorkNotification::getQueueItemCount(), before - 1);

    notification.sendASyncWorkMessage(MESSAGE_SMS_INIT, {}); // dropped by the worker: never answered
    EXPECT_EQ(WorkNotification::getQueueItemCount(), before);
    EXPECT_TRUE(WorkNotification().sendworkMessage(MESSAGE_PIN_VERIFY, {}, true).isEmpty());
}

TEST(WorkNotification, DeliveryCountsAndPostsByName) {
    // clang-format off
    struct Row { QString name; qint32 code; qint32 countChange; bool posted; };
    const Row rows[] = {
        {MESSAGE_PIN_GET_INFO, 0, -1, true},
        {MESSAGE_SMS_SEND, 25, -1, false},
        {MESSAGE_RPT_RECEIVE_SMS, 0, 0, true},
        {MESSAGE_USB_UNPLUGGED, 0, 0, true},
        {MESSAGE_RPT_RECEIVE_SMS, 25, 0, false},
        {MESSAGE_RPT_RECEIVE_FILTER_SMS, 0, -1, true},
    };
    // clang-format on
    NotificationCenter center;
    QObject agent;
    QObject module;
    std::vector<Notification> heard;
    center.addObserver(QString(), &module, [&](const Notification& n) { heard.push_back(n); });

    for (const Row& row : rows) {
        SCOPED_TRACE(row.name.toStdString() + " code " + std::to_string(row.code));
        heard.clear();
        QVariantMap response = withValue(QVariant::fromValue(BLNetRegState{0, 1}));
        if (row.code != 0) {
            WorkNotification::SetErrorCode(response, row.code);
        }
        const qint32 before = WorkNotification::getQueueItemCount();
        EXPECT_EQ(WorkNotification::deliverResponse(row.name, response, &agent, center), row.posted);
        EXPECT_EQ(WorkNotification::getQueueItemCount() - before, row.countChange);
        ASSERT_EQ(heard.size(), row.posted ? 1u : 0u);
        if (row.posted) {
            EXPECT_EQ(heard[0].name, row.name);
            EXPECT_EQ(heard[0].object, &agent);
            EXPECT_EQ(heard[0].userInfo, response);
        }
    }
}

// A module's whole round: subscribe, send, the worker answers, the agent delivers, the handler reads.
TEST(WorkNotification, TheAnswerReachesTheSubscribedSender) {
    FakeWorker worker;
    auto module = std::make_unique<QObject>();
    module->setObjectName("pb");
    WorkNotification notification(module.get(), &worker);
    const qint32 before = WorkNotification::getQueueItemCount();
    std::vector<QVariantMap> added;
    std::vector<QVariantMap> deleted;
    notification.regeditNotifySelector(MESSAGE_PB_ADD_ITEM,
                                       [&](const Notification& n) { added.push_back(n.userInfo); });
    notification.regeditNotifySelector(MESSAGE_PB_DELETE_ITEM,
                                       [&](const Notification& n) { deleted.push_back(n.userInfo); });

    const BLPBNewItem entry{1, "Anna", "0123"};
    ASSERT_EQ(notification.sendASyncWorkMessage(MESSAGE_PB_ADD_ITEM, withValue(QVariant::fromValue(entry))),
              0);
    ASSERT_EQ(worker.calls.size(), 1u);
    EXPECT_EQ(worker.calls[0].name, "MESSAGE_PB_ADD_ITEM");
    EXPECT_EQ(worker.calls[0].sender, module.get());
    EXPECT_FALSE(worker.calls[0].sync);
    EXPECT_EQ(WorkNotification::getQueueItemCount(), before + 1);
    WorkNotification::deliverResponse(MESSAGE_PB_ADD_ITEM, answer(worker.calls[0], 0, 17), nullptr);

    ASSERT_EQ(added.size(), 1u);
    EXPECT_TRUE(deleted.empty());
    EXPECT_EQ(WorkNotification::GetErrorCode(added[0]), 0);
    EXPECT_EQ(WorkNotification::GetValueObject(added[0]).toInt(), 17);
    EXPECT_EQ(WorkNotification::GetRequester(added[0]), "QObject");
    EXPECT_TRUE(qvariant_cast<BLPBNewItem>(WorkNotification::GetUserInfo(added[0])) == entry);
    EXPECT_EQ(WorkNotification::getQueueItemCount(), before);

    notification.unregeditNotifySelector(MESSAGE_PB_ADD_ITEM);
    WorkNotification::deliverResponse(MESSAGE_PB_ADD_ITEM, {}, nullptr);
    WorkNotification::deliverResponse(MESSAGE_PB_DELETE_ITEM, {}, nullptr);
    EXPECT_EQ(added.size(), 1u);
    EXPECT_EQ(deleted.size(), 1u);

    // A module that goes away takes its subscriptions with it.
    QObject* const gone = module.get();
    module.reset();
    EXPECT_EQ(NotificationCenter::defaultCenter().observerCount(gone), 0);
    WorkNotification::deliverResponse(MESSAGE_PB_DELETE_ITEM, {}, nullptr);
    EXPECT_EQ(deleted.size(), 1u);
}
