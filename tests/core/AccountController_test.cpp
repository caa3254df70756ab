#include "TempHome.h"

#include "Account/AccountController.h"
#include "BLRecords.h"
#include "UssdRecords.h"

#include "QtEventLoop.h"
#include "RecordingTransport.h"

#include <QDir>
#include <QElapsedTimer>

#include <optional>

namespace {

BLUssdSendCmdInfo sentInfo(const RecordingTransport& transport) {
    return transport.argument(MESSAGE_USSD_SENDCMD).value<BLUssdSendCmdInfo>();
}

// The controller on a recorded link, in a home of its own, and what the views were told, in order.
struct Ussd {
    Ussd() {
        QObject::connect(&controller, &AccountController::uiBlockChanged,
                         [this](bool blocked) { events.append(blocked ? "block" : "unblock"); });
        QObject::connect(&controller, &AccountController::messageShown,
                         [this](const QString& text) { events.append("message:" + text); });
        QObject::connect(&controller, &AccountController::replyRequested,
                         [this](const QString& text) { events.append("reply:" + text); });
        QObject::connect(&controller, &AccountController::sendFailed, [this](const QString& text, Outcome o) {
            events.append(QStringLiteral("failed:%1:%2/%3").arg(text).arg(o.code).arg(o.cause));
        });
    }
    bool application = (ensureApplication(), true);
    TempHome home;
    RecordedLink modem;
    AccountController controller{modem.link};
    QStringList events;
};

} // namespace

TEST(AccountController, DataFileChoiceByIMSIPrefix) {
    // clang-format off
    const struct { QStringList files; QString imsi; QString chosen; /* "" for none */ } rows[] = {
        {{"26201.dat", "Default.dat"}, "262011234567890", "26201.dat"}, {{"Default.dat"}, "262011234567890", "Default.dat"},
        {{"26201.dat", "Default.dat"}, "262021234567890", "Default.dat"}, {{"26201.dat", "Default.dat"}, QString(), "Default.dat"},
        {{"262.dat", "26201.dat"}, "262011234567890", "262.dat"}, // listed by name, first match wins
        {{"26201.v2.dat"}, "262011234567890", "26201.v2.dat"},    // the name up to its first "."
        {{"26201.txt", ".dat", "Default.dat"}, "262011234567890", "Default.dat"}, {{"26201.dat"}, "262021234567890", ""},
        {{}, "262011234567890", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.files.join(",").toStdString() + " / " + row.imsi.toStdString());
        TempHome home;
        const QString dir = home.path() + "/AccountData";
        QDir().mkpath(dir);
        for (const QString& file : row.files)
            TempHome::writeFile(dir + "/" + file, "<ROOT/>");
        const QString chosen = AccountController::getUSSDDataFileNameByIMSI(row.imsi, dir);
        EXPECT_EQ(chosen, row.chosen.isEmpty() ? QString() : dir + "/" + row.chosen);
        EXPECT_EQ(chosen.isNull(), row.chosen.isEmpty());
    }
}

TEST(AccountController, LoadsTheSimsMenusFromTheResourceFolder) {
    Ussd u;
    auto& [application, home, modem, controller, events] = u;
    ASSERT_EQ(controller.loadAccountData("262021234567890"), 0); // the build tree's shipped menus
    ASSERT_FALSE(controller.accountData().groups.empty());
    // DIALTONE_RESOURCE_DIR moves the account data with it; an empty folder means no menus.
    QDir().mkpath(home.path() + "/Resources");
    QDir().mkpath(home.path() + "/AccountData");
    setenv("DIALTONE_RESOURCE_DIR", (home.path() + "/Resources").toLocal8Bit().constData(), 1);
    EXPECT_TRUE(AccountController::getUSSDDataFileNameByIMSI("262021234567890").isNull());
    EXPECT_EQ(controller.loadAccountData("262021234567890"), 0);
    EXPECT_TRUE(controller.accountData().groups.empty());
}

TEST(AccountController, SendBlocksAndAnswersUnblock) {
    Ussd u;
    auto& [application, home, modem, controller, events] = u;
    RecordingTransport& worker = *modem.transport;
    const auto report = [&worker](const QVariant& value) { worker.report(MESSAGE_RPT_RECEIVE_USSD, value); };

    controller.sendUSSDCmd(AccountController::composeUSSDCommand("*100#", {}));
    ASSERT_EQ(worker.count(MESSAGE_USSD_SENDCMD), 1);
    EXPECT_TRUE(sentInfo(worker) == (BLUssdSendCmdInfo{0, "*100#"}));
    EXPECT_TRUE(controller.isUIBlocked());
    // The modem taking the string changes nothing: the answer comes as a report.
    worker.answer(MESSAGE_USSD_SENDCMD, WORKER_OK);
    EXPECT_TRUE(controller.isUIBlocked());

    // The network asks for more: the reply window; then the final answer: a message box.
    report(QVariant::fromValue(BLUssdReceive{1, "1 Balance\n2 Data options"}));
    EXPECT_FALSE(controller.isUIBlocked());
    controller.sendUSSDCmd("2");
    report(QVariant::fromValue(BLUssdReceive{0, "Day pass booked."}));
    controller.sendUSSDCmd("*101#");
    report(QVariant::fromValue(BLUssdReceive{2, "Session ended"}));
    EXPECT_EQ(events, (QStringList{"block", "unblock", "reply:1 Balance\n2 Data options", "block", "unblock",
                                   "message:Day pass booked.", "block", "unblock", "message:Session ended"}));

    // A report without a record or without text only unblocks; the refused string unblocks with its
    // code and the modem's cause.
    events.clear();
    controller.sendUSSDCmd("*100#");
    report(QVariant());
    controller.sendUSSDCmd("*100#");
    report(QVariant::fromValue(BLUssdReceive{0, QString()}));
    report(QVariant::fromValue(BLPINInfo{}));
    controller.sendUSSDCmd("*7#");
    worker.answer(MESSAGE_USSD_SENDCMD, WORKER_ERR_GENERAL);
    std::optional<Outcome> taken;
    controller.sendUSSDCmd("*8#", [&taken](Outcome outcome) { taken = outcome; });
    worker.answer(MESSAGE_USSD_SENDCMD, WORKER_ERR_TIME_OUT);
    ASSERT_TRUE(taken.has_value());
    EXPECT_EQ(taken->code, WORKER_ERR_TIME_OUT);
    EXPECT_EQ(events, (QStringList{"block", "unblock", "block", "unblock", "block", "unblock",
                                   "failed:*7#:1/0", "block", "unblock", "failed:*8#:2/0"}));

    // The override string replaces whatever is sent.
    controller.setUSSDDebugString("*999#");
    controller.sendUSSDCmd(AccountController::composeUSSDCommand("*102*", {"1234", "56"}));
    EXPECT_EQ(sentInfo(worker).strCmdString, "*999#");
    controller.setUSSDDebugString(QString());
    controller.sendUSSDCmd(AccountController::composeUSSDCommand("*102*", {"1234", "56"}));
    EXPECT_EQ(sentInfo(worker).strCmdString, "*102*1234*56#");
}

TEST(AccountController, TimeOutUnblocksWithAMessage) {
    Ussd u;
    auto& [application, home, modem, controller, events] = u;
    controller.setTimeoutInterval(50);
    controller.sendUSSDCmd("*100#");
    ASSERT_TRUE(waitFor([&] { return !controller.isUIBlocked(); }));
    EXPECT_EQ(events, (QStringList{"block", "unblock", "message:" + AccountController::timeoutMessage()}));
    EXPECT_FALSE(AccountController::timeoutMessage().isEmpty());

    // An answer stops the timer: no time-out later.
    events.clear();
    controller.sendUSSDCmd("*100#");
    modem.transport->report(MESSAGE_RPT_RECEIVE_USSD, QVariant::fromValue(BLUssdReceive{0, "ok"}));
    QElapsedTimer clock;
    clock.start();
    waitFor([&] { return clock.elapsed() > 150; });
    EXPECT_EQ(events, (QStringList{"block", "unblock", "message:ok"}));
}

TEST(AccountController, PaidTypeFromInternalType) {
    for (const auto& [internal, paid] : {std::pair{0, 2}, {1, 1}, {-1, 0}, {99, 0}})
        EXPECT_EQ(AccountController::paidTypeFromInternalType(internal), paid) << internal;
}
