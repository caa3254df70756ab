#include "BLRecords.h"
#include "NotificationCenter.h"
#include "WorkNotification.h"

#include <QObject>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
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

// Records which observer heard which notification, as "observer:name".
struct Journal {
    std::vector<std::string> entries;

    NotificationHandler note(const std::string& observer) {
        return [this, observer](const Notification& n) {
            entries.push_back(observer + ":" + n.name.toStdString());
        };
    }
    std::vector<std::string> take() { return std::exchange(entries, {}); }
};

using Entries = std::vector<std::string>;

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

// Observers added or removed by a handler, and QObject receivers that are destroyed, never leave the centre
// calling what is gone.
TEST(NotificationCenter, ChangesDuringDeliveryAndDestroyedReceiversAreSafe) {
    NotificationCenter center;
    Journal journal;
    int a = 0, b = 0, c = 0, late = 0;
    center.addObserver("X", &a, [&](const Notification& n) {
        journal.note("a")(n);
        center.removeObserver(&a); // itself
        center.removeObserver(&b); // one still to come in this delivery
        center.addObserver("X", &late, journal.note("late"));
        center.post("Y"); // nested
    });
    center.addObserver("X", &b, journal.note("b"));
    center.addObserver(QString(), &c, journal.note("c"));
    center.post("X");
    EXPECT_EQ(journal.take(), (Entries{"a:X", "c:Y", "c:X"}));
    center.post("X");
    EXPECT_EQ(journal.take(), (Entries{"c:X", "late:X"}));

    auto receiver = std::make_unique<QObject>();
    QObject* const raw = receiver.get();
    int heard = 0;
    center.addObserver("X", raw,
                       [&heard, raw](const Notification&) { heard += raw->objectName().isEmpty(); });
    center.addObserver("Y", raw, [&heard](const Notification&) { ++heard; });
    center.post("X");
    EXPECT_EQ(heard, 1);
    receiver.reset();
    EXPECT_EQ(center.observerCount(raw), 0);
    center.post("X");
    center.post("Y");
    EXPECT_EQ(heard, 1);

    // A centre that goes first leaves its receivers nothing to call back.
    auto shortLived = std::make_unique<NotificationCenter>();
    QObject survivor;
    shortLived->addObserver("X", &survivor, [](const Notification&) {});
    shortLived.reset();
}

TEST(NotificationCenter, ConcurrentSubscribersAndPosters) {
    NotificationCenter center;
    std::atomic<int> heard{0};
    std::atomic<bool> stop{false};
    int permanent = 0;
    center.addObserver("X", &permanent, [&](const Notification&) { ++heard; });

    std::thread poster([&] {
        while (!stop)
            center.post("X");
    });
    std::vector<std::thread> subscribers;
    for (int t = 0; t < 3; ++t) {
        subscribers.emplace_back([&center] {
            for (int i = 0; i < 500; ++i) {
                QObject receiver;
                center.addObserver("X", &receiver, [](const Notification&) {});
                if (i % 2)
                    center.removeObserver(&receiver, "X");
            }
        });
    }
    for (auto& thread : subscribers)
        thread.join();
    stop = true;
    poster.join();
    EXPECT_EQ(center.observerCount(), 1);
    const int before = heard;
    center.post("X");
    EXPECT_EQ(heard - before, 1);
}
