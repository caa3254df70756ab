#include "NotificationCenter.h"

#include <QObject>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

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
