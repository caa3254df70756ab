#include "TempHome.h"

#include "Account/AccountController.h"
#include "BLRecords.h"
#include "UssdRecords.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include "QtEventLoop.h"

#include <functional>
#include <vector>

namespace {

class FakeWorker : public DeviceWorkRequestInterface {
public:
    QVariantMap sysncRequest(const QString&, const QVariantMap&) override { return {}; }
    void asyncRequest(const QString& name, QObject* sender, const QVariantMap& userInfo) override {
        sent.push_back({name, sender, qvariant_cast<BLUssdSendCmdInfo>(userInfo.value(VALUE_OBJECT))});
    }
    struct Sent {
        QString name;
        QObject* sender;
        BLUssdSendCmdInfo info;
    };
    std::vector<Sent> sent;
};

// What the views were told, in order.
struct ViewLog {
    explicit ViewLog(AccountController& controller) {
        QObject::connect(&controller, &AccountController::uiBlockChanged,
                         [this](bool blocked) { events.append(blocked ? "block" : "unblock"); });
        QObject::connect(&controller, &AccountController::messageShown,
                         [this](const QString& text) { events.append("message:" + text); });
        QObject::connect(&controller, &AccountController::replyRequested,
                         [this](const QString& text) { events.append("reply:" + text); });
    }
    QStringList events;
};

void postReport(const QVariant& value) {
    QVariantMap report;
    WorkNotification::SetValueObject(report, value);
    NotificationCenter::defaultCenter().post(MESSAGE_RPT_RECEIVE_USSD, nullptr, report);
}

} // namespace

TEST(AccountController, DataFileChoiceByIMSIPrefix) {
    struct Row {
        QStringList files;
        QString imsi;
        QString chosen; // "" for none
    };
    const Row rows[] = {
        {{"26201.dat", "Default.dat"}, "262011234567890", "26201.dat"},
        {{"Default.dat"}, "262011234567890", "Default.dat"},
        {{"26201.dat", "Default.dat"}, "262021234567890", "Default.dat"},
        {{"26201.dat", "Default.dat"}, "", "Default.dat"},
        {{"26201.dat", "Default.dat"}, QString(), "Default.dat"},
        {{"262.dat", "26201.dat"}, "262011234567890", "262.dat"}, // listed by name, first match wins
        {{"26201.v2.dat"}, "262011234567890", "26201.v2.dat"},    // the name up to its first "."
        {{"26201.txt", ".dat", "Default.dat"}, "262011234567890", "Default.dat"},
        {{"26201.dat"}, "262021234567890", ""},
        {{}, "262011234567890", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.files.join(",").toStdString() + " / " + row.imsi.toStdString());
        TempHome home;
        const QString dir = home.path() + "/AccountData";
        QDir().mkpath(dir);
        for (const QString& file : row.files) {
            TempHome::writeFile(dir + "/" + file, "<ROOT/>");
        }
        const QString chosen = AccountController::getUSSDDataFileNameByIMSI(row.imsi, dir);
        if (row.chosen.isEmpty()) {
            EXPECT_TRUE(chosen.isNull());
        } else {
            EXPECT_EQ(chosen, dir + "/" + row.chosen);
        }
    }
}

TEST(AccountController, LoadsTheSimsMenusFromTheResourceFolder) {
    ensureApplication();
    TempHome home;
    FakeWorker worker;
    AccountController controller(&worker);
    // The build tree's shipped files: the simulator's network has its own.
    EXPECT_TRUE(
        AccountController::getUSSDDataFileNameByIMSI("262021234567890").endsWith("/AccountData/26202.dat"));
    EXPECT_TRUE(
        AccountController::getUSSDDataFileNameByIMSI("310150123456789").endsWith("/AccountData/Default.dat"));
    controller.setLanguageIndex(1);
    ASSERT_EQ(controller.loadAccountData("262021234567890"), 0);
    EXPECT_EQ(controller.accountData().nLanguageID, 1);
    EXPECT_EQ(controller.accountData().groups.size(), 3u);

    // DIALTONE_RESOURCE_DIR moves the account data with it; an empty folder means no menus.
    QDir().mkpath(home.path() + "/Resources");
    QDir().mkpath(home.path() + "/AccountData");
    setenv("DIALTONE_RESOURCE_DIR", (home.path() + "/Resources").toLocal8Bit().constData(), 1);
    EXPECT_TRUE(AccountController::getUSSDDataFileNameByIMSI("262021234567890").isNull());
    EXPECT_EQ(controller.loadAccountData("262021234567890"), 0);
    EXPECT_TRUE(controller.accountData().groups.empty());
}

TEST(AccountController, SendBlocksAndAnswersUnblock) {
    ensureApplication();
    TempHome home;
    FakeWorker worker;
    AccountController controller(&worker);
    ViewLog view(controller);

    controller.sendUSSDCmd(AccountController::composeUSSDCommand("*100#", {}));
    ASSERT_EQ(worker.sent.size(), 1u);
    EXPECT_EQ(worker.sent[0].name, MESSAGE_USSD_SENDCMD);
    EXPECT_EQ(worker.sent[0].sender, &controller);
    EXPECT_TRUE(worker.sent[0].info == (BLUssdSendCmdInfo{0, "*100#"}));
    EXPECT_TRUE(controller.isUIBlocked());

    // The network asks for more: the reply window; then the final answer: a message box.
    postReport(QVariant::fromValue(BLUssdReceive{1, "1 Balance\n2 Data options"}));
    EXPECT_FALSE(controller.isUIBlocked());
    controller.sendUSSDCmd("2");
    postReport(QVariant::fromValue(BLUssdReceive{0, "Day pass booked."}));
    controller.sendUSSDCmd("*101#");
    postReport(QVariant::fromValue(BLUssdReceive{2, "Session ended"}));
    EXPECT_EQ(view.events,
              (QStringList{"block", "unblock", "reply:1 Balance\n2 Data options", "block", "unblock",
                           "message:Day pass booked.", "block", "unblock", "message:Session ended"}));

    // A report without a record or without text only unblocks.
    view.events.clear();
    controller.sendUSSDCmd("*100#");
    postReport(QVariant());
    controller.sendUSSDCmd("*100#");
    postReport(QVariant::fromValue(BLUssdReceive{0, QString()}));
    postReport(QVariant::fromValue(BLPINInfo{}));
    EXPECT_EQ(view.events, (QStringList{"block", "unblock", "block", "unblock"}));

    // The override string replaces whatever is sent.
    controller.setUSSDDebugString("*999#");
    controller.sendUSSDCmd(AccountController::composeUSSDCommand("*102*", {"1234", "56"}));
    EXPECT_EQ(worker.sent.back().info.strCmdString, "*999#");
    controller.setUSSDDebugString(QString());
    controller.sendUSSDCmd(AccountController::composeUSSDCommand("*102*", {"1234", "56"}));
    EXPECT_EQ(worker.sent.back().info.strCmdString, "*102*1234*56#");
}

TEST(AccountController, CancelOnlyWithADevice) {
    ensureApplication();
    TempHome home;
    FakeWorker worker;
    AccountController controller(&worker);
    controller.sendUSSDCancelCmd(); // no probe: no device
    bool present = false;
    controller.setDeviceFoundProbe([&present] { return present; });
    controller.sendUSSDCancelCmd();
    EXPECT_TRUE(worker.sent.empty());
    present = true;
    controller.sendUSSDCancelCmd();
    ASSERT_EQ(worker.sent.size(), 1u);
    EXPECT_EQ(worker.sent[0].name, MESSAGE_USSD_SENDCMD);
    EXPECT_TRUE(worker.sent[0].info == (BLUssdSendCmdInfo{1, ""}));
    EXPECT_FALSE(controller.isUIBlocked());
}

TEST(AccountController, TimeOutUnblocksWithAMessage) {
    ensureApplication();
    TempHome home;
    FakeWorker worker;
    AccountController controller(&worker);
    ViewLog view(controller);
    controller.setTimeoutInterval(50);
    controller.sendUSSDCmd("*100#");
    ASSERT_TRUE(waitFor([&] { return !controller.isUIBlocked(); }));
    EXPECT_EQ(view.events,
              (QStringList{"block", "unblock", "message:" + AccountController::timeoutMessage()}));
    EXPECT_FALSE(AccountController::timeoutMessage().isEmpty());

    // An answer stops the timer: no time-out later.
    view.events.clear();
    controller.sendUSSDCmd("*100#");
    postReport(QVariant::fromValue(BLUssdReceive{0, "ok"}));
    QElapsedTimer clock;
    clock.start();
    waitFor([&] { return clock.elapsed() > 150; });
    EXPECT_EQ(view.events, (QStringList{"block", "unblock", "message:ok"}));
}

TEST(AccountController, PaidTypeFromInternalType) {
    const int rows[][2] = {{0, 2}, {1, 1}, {2, 0}, {-1, 0}, {99, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(AccountController::paidTypeFromInternalType(row[0]), row[1]) << row[0];
    }
}
