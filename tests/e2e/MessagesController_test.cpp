#include "../core/TempHome.h"
#include "E2ESupport.h"
#include "QtEventLoop.h"

#include "ModemLink.h"
#include "SMS/MessagesController.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

using namespace std::chrono_literals;
using Outcome = MessagesController::Outcome;

namespace {

// The controller on a link to the simulated modem, opened as the tool opens it.
class MessagesControllerTest : public ::testing::Test {
protected:
    void open() {
        ASSERT_TRUE(_sim.started());
        _link = std::make_unique<ModemLink>();
        ASSERT_EQ(_link->open(30000), 0);
        _messages = std::make_unique<MessagesController>(*_link);
    }

    // One step, waited for.
    Outcome run(const std::function<void(MessagesController::Done)>& step) {
        std::optional<Outcome> outcome;
        step([&outcome](const Outcome& answer) { outcome = answer; });
        EXPECT_TRUE(waitFor([&outcome] { return outcome.has_value(); }, 60s));
        return outcome.value_or(Outcome{-1, 0});
    }
    // One step that answers with a value, waited for; the value.
    template <class T, class Step> T read(Step step) {
        T value{};
        EXPECT_TRUE(run([&](auto done) {
                        step([&value, done](const Outcome& outcome, const T& read) {
                            value = read;
                            done(outcome);
                        });
                    }).ok());
        return value;
    }
    QList<BLSmsListItem> listed() {
        return read<QList<BLSmsListItem>>([this](auto done) { _messages->list(done); });
    }
    static bool holds(const QList<BLSmsListItem>& items, const QString& text) {
        return std::any_of(items.begin(), items.end(),
                           [&text](const BLSmsListItem& item) { return item.strContent == text; });
    }
    QJsonArray sentParts() const {
        return _sim.control("dump").value("sms").toObject().value("sent").toArray();
    }

    TempHome _home;
    SimulatedModem _sim;
    std::unique_ptr<ModemLink> _link;
    std::unique_ptr<MessagesController> _messages;
};

} // namespace

TEST_F(MessagesControllerTest, ToolStepsListSendDeleteAndArchive) {
    open();
    ASSERT_TRUE(run([&](auto done) { _messages->initialise(done); }).ok());
    ASSERT_TRUE(run([&](auto done) { _messages->identify(done); }).ok());
    EXPECT_FALSE(_messages->imsi().isEmpty());
    ASSERT_TRUE(run([&](auto done) { _messages->useComputerInbox(done); }).ok());
    const QList<BLSmsListItem> before = listed();
    ASSERT_GE(before.size(), 2);

    ASSERT_TRUE(run([&](auto done) { _messages->send("+491701234567", "Hello there", done); }).ok());
    ASSERT_EQ(sentParts().size(), 1);
    EXPECT_EQ(sentParts()[0].toObject().value("text").toString(), "Hello there");

    const BLSmsListItem removed = before[0];
    const BLSmsListItem archived = before[1];
    ASSERT_TRUE(run([&](auto done) { _messages->remove(removed.nRef, done); }).ok());
    ASSERT_TRUE(run([&](auto done) { _messages->archive(archived, done); }).ok());
    const QList<BLSmsListItem> after = listed();
    EXPECT_EQ(after.size(), before.size() - 2);
    EXPECT_FALSE(holds(after, archived.strContent));
    const QList<MessageItem> archive = _messages->box(SMS_BOX_ACHIVE);
    ASSERT_EQ(archive.size(), 1);
    EXPECT_EQ(archive[0].getContent(), archived.strContent);
    EXPECT_EQ(archive[0].getCreateTime(), archived.dateTime);

    // The settings page's and "dialtone sms sc" steps; the service centre reads back as written.
    ASSERT_TRUE(run([&](auto done) { _messages->setServiceCentre("+491722270333", done); }).ok());
    EXPECT_EQ(read<QString>([this](auto done) { _messages->serviceCentre(done); }), "+491722270333");
    EXPECT_TRUE(run([&](auto done) { _messages->setValidity({0, 2, 0}, done); }).ok());
    EXPECT_TRUE(run([&](auto done) { _messages->setPreferredStorage(SmsStorage::kSim, done); }).ok());
    const auto state = read<BLSmsStorageState>([this](auto done) { _messages->storageState(done); });
    EXPECT_EQ(state.nSimUsed, std::count_if(after.begin(), after.end(), [](const BLSmsListItem& item) {
                  return item.nStoreIn == SmsStorage::kSim;
              }));

    // Failures reach the caller as result codes; nothing is lost on the way.
    // clang-format off
    const struct { const char* what; std::function<void(MessagesController::Done)> step; } failures[] = {
        {"an ID the table does not hold", [&](auto done) { _messages->remove(9999, done); }},
        {"a send the network refuses twice", [&](auto done) { _sim.control("set fail_sends 2"); _messages->send("+491701234567", "No", done); }},
    };
    // clang-format on
    for (const auto& row : failures) {
        SCOPED_TRACE(row.what);
        EXPECT_NE(run(row.step).code, 0);
    }
    EXPECT_EQ(WorkNotification::GetErrorCode(_link->call(MESSAGE_SMS_USE_PC_INBOX, "12ab")),
              WORKER_ERR_PARAMETER_NULL);
}
