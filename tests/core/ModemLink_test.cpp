#include "ModemLink.h"
#include "ModemTransport.h"
#include "QtEventLoop.h"
#include "WorkNotification.h"

#include <QTimer>

#include <gtest/gtest.h>

namespace {

// A transport that answers the way the test says: by default every request is answered at once with its
// own dictionary.
class ScriptedTransport : public ModemTransport {
public:
    void start() override {
        _ready = true;
        QTimer::singleShot(0, this, [this] { emit ready(); });
    }
    bool isReady() const override { return _ready; }
    int send(const QString& name, const QVariantMap& request) override {
        sent.append(name);
        if (!holdAnswers)
            answer(name, request, 0);
        else
            held.append({name, request});
        return WORKER_OK;
    }
    void listen(const QString&) override {}

    void answer(const QString& name, const QVariantMap& request, int code) {
        QVariantMap response{{USER_INFO, request}, {VALUE_OBJECT, name}};
        if (code != 0)
            response.insert(ERROR_CODE, code);
        QTimer::singleShot(0, this, [this, name, response] { emit received(name, response); });
    }
    void report(const QString& name) { emit received(name, {{VALUE_OBJECT, name}}); }
    void pull() { emit unplugged(); }

    bool holdAnswers = false;
    QStringList sent;
    QList<QPair<QString, QVariantMap>> held;

private:
    bool _ready = false;
};

struct Fixture {
    Fixture() {
        ensureApplication();
        auto owned = std::make_unique<ScriptedTransport>();
        transport = owned.get();
        link = std::make_unique<ModemLink>(nullptr, std::move(owned));
    }
    ScriptedTransport* transport;
    std::unique_ptr<ModemLink> link;
};

} // namespace

TEST(ModemLink, EachAnswerReachesOnlyItsRequest) {
    Fixture f;
    ASSERT_EQ(f.link->open(1000), WORKER_OK);
    f.transport->holdAnswers = true;
    QStringList got;
    f.link->request(MESSAGE_SMS_GET_LIST, 1, [&](const QVariantMap&) { got << "first"; });
    f.link->request(MESSAGE_SMS_GET_LIST, 2, [&](const QVariantMap&) { got << "second"; });
    ASSERT_EQ(f.transport->held.size(), 2);
    // Another client's answer of the same name (no ticket), then the answers in the other order.
    f.transport->report(MESSAGE_SMS_GET_LIST);
    f.transport->answer(f.transport->held[1].first, f.transport->held[1].second, 0);
    f.transport->answer(f.transport->held[0].first, f.transport->held[0].second, 0);
    // The same answer again is not delivered twice.
    f.transport->answer(f.transport->held[0].first, f.transport->held[0].second, 0);
    EXPECT_TRUE(waitFor([&] { return got.size() >= 2; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(got, (QStringList{"second", "first"}));
}

TEST(ModemLink, WaitsEndByAnswerUnplugOrTimeOut) {
    Fixture f;
    ASSERT_EQ(f.link->open(1000), WORKER_OK);
    int reports = 0;
    QObject::connect(f.link.get(), &ModemLink::reportReceived, [&] { ++reports; });
    f.transport->report(MESSAGE_RPT_RECEIVE_SMS);
    EXPECT_EQ(reports, 1);

    f.transport->holdAnswers = true;
    EXPECT_EQ(WorkNotification::GetErrorCode(f.link->call(MESSAGE_SMS_GET_LIST, {}, 50)),
              WORKER_ERR_TIME_OUT);

    // A pulled stick ends a wait without limit with "no modem", and the link is Absent.
    QTimer::singleShot(20, f.transport, [&] { f.transport->pull(); });
    EXPECT_EQ(WorkNotification::GetErrorCode(f.link->call(MESSAGE_SMS_GET_LIST)), WORKER_ERR_NO_DATA_DEVICE);
    EXPECT_EQ(f.link->state(), ModemLink::State::Absent);

    // A reply whose context is gone does not run.
    bool ran = false;
    f.transport->holdAnswers = false;
    f.link->request(
        MESSAGE_INIT_WORK_THREAD, {}, [&](const QVariantMap&) { ran = true; },
        std::make_unique<QObject>().get());
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}
