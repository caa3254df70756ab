#include "BLRecords.h"
#include "WorkNotification.h"

#include <QObject>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

// Stands in for the worker: records what arrives and answers synchronous requests with nothing.
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
        return {};
    }
    void asyncRequest(const QString& name, QObject* sender, const QVariantMap& userInfo) override {
        calls.push_back({name, sender, userInfo, false});
    }

    std::vector<Call> calls;
};

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
    // The answer as the worker thread builds it.
    QVariantMap response = withValue(17);
    WorkNotification::SetRequester(response, QString::fromUtf8(module->metaObject()->className()));
    WorkNotification::SetUserInfo(response, worker.calls[0].userInfo);
    WorkNotification::deliverResponse(MESSAGE_PB_ADD_ITEM, response, nullptr);

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
