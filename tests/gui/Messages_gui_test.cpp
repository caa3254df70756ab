#include <gtest/gtest.h>

#include <utility>

#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "GuiTestSupport.h"
#include "Messages/ComposeDialog.h"
#include "Messages/MessageText.h"
#include "Messages/MessagesPlugin.h"
#include "WorkNotification.h"

namespace {

QJsonArray SentParts(GuiWorld& world) {
    return world.sim().control("dump").value("sms").toObject().value("sent").toArray();
}

// The texts of one column of the listed messages.
QStringList Column(MessagesPlugin* messages, int column) {
    auto* view = messages->findChild<QTreeView*>("messages");
    QStringList texts;
    for (int row = 0; row < view->model()->rowCount(); ++row)
        texts << view->model()->index(row, column).data().toString();
    return texts;
}

struct Opened {
    MessagesPlugin* messages = nullptr;
    ComposeDialog* compose = nullptr;
};

// The Messages tab once the simulated modem is ready; nullptr when it does not come up.
MessagesPlugin* ReadyMessages(GuiWorld& world) {
    if (!world.started() || !world.waitForState(ModemLink::State::Ready))
        return nullptr;
    return world.show<MessagesPlugin>("messages");
}

Opened OpenCompose(GuiWorld& world, const QString& to, const QString& text) {
    Opened opened;
    opened.messages = ReadyMessages(world);
    if (!opened.messages)
        return opened;
    opened.messages->findChild<QPushButton*>("new")->click();
    opened.compose = opened.messages->composeWindow();
    if (!opened.compose)
        return opened;
    QTest::keyClicks(opened.compose->findChild<QLineEdit*>("recipients"), to);
    // Typing 200 characters one by one is slow and adds nothing: the counter follows textChanged.
    opened.compose->findChild<QPlainTextEdit*>("text")->setPlainText(text);
    return opened;
}

} // namespace

TEST(MessagesGui, RecipientIsCheckedAndALongMessageGoesOutInTwoSegments) {
    GuiWorld world;
    const QString text = QString(200, QLatin1Char('a'));
    const Opened opened = OpenCompose(world, "", text);
    ASSERT_TRUE(opened.compose);
    auto* recipients = opened.compose->findChild<QLineEdit*>("recipients");
    auto* send = opened.compose->findChild<QPushButton*>("send");

    // What is not a number is refused under the field, and nothing goes out.
    auto* error = opened.compose->findChild<QLabel*>("numberError");
    ASSERT_TRUE(error);
    const std::pair<QString, QString> refused[] = {{"abc", "letters are not allowed"},
                                                   {"+491701234567; *100#", "service code"},
                                                   {"0170 \U0001F600", "is not a phone number"}};
    for (const auto& [typed, reason] : refused) {
        recipients->setText(typed);
        send->click();
        EXPECT_FALSE(error->isHidden()) << typed.toStdString();
        EXPECT_TRUE(error->text().contains(reason)) << error->text().toStdString();
    }
    EXPECT_EQ(opened.messages->composeWindow(), opened.compose);
    EXPECT_TRUE(SentParts(world).isEmpty());

    // Typed nationally with brackets and a dash, sent in E.164 form, listed under the contact's name.
    recipients->setText("(0170) 123-4567");

    // 200 septets: two parts of 153, 106 left in the second.
    EXPECT_EQ(opened.compose->findChild<QLabel*>("counter")->text(), "106 characters left · 2 parts");

    send->click();
    ASSERT_TRUE(waitForGui([&] { return SentParts(world).size() >= 2 && !opened.messages->composeWindow(); },
                           std::chrono::seconds(20)));
    const QJsonArray parts = SentParts(world);
    ASSERT_EQ(parts.size(), 2);
    QString joined;
    for (const QJsonValue& part : parts) {
        EXPECT_EQ(part["to"].toString(), "+491701234567");
        joined += part["text"].toString();
    }
    EXPECT_EQ(joined, text);

    opened.messages->showFolder(MessagesPlugin::Sent);
    ASSERT_EQ(opened.messages->listedCount(), 1);
    EXPECT_EQ(Column(opened.messages, 0), QStringList{"Anna Schmidt"});
}

TEST(MessagesGui, FailedSendKeepsTextAndGoesToOutbox) {
    GuiWorld world;
    const Opened opened = OpenCompose(world, "+491701234567", "Will not go");
    ASSERT_TRUE(opened.compose);
    // The modem tries once more itself; both tries fail.
    ASSERT_TRUE(world.sim().control("set fail_sends 2")["ok"].toBool());

    auto* send = opened.compose->findChild<QPushButton*>("send");
    send->click();
    auto* status = opened.compose->findChild<QLabel*>("status");
    ASSERT_TRUE(waitForGui(
        [&] { return !opened.messages->composeWindow() || (send->isEnabled() && !status->isHidden()); },
        std::chrono::seconds(20)));
    ASSERT_TRUE(opened.messages->composeWindow()) << "the failed message was reported as sent";
    EXPECT_EQ(opened.compose->text(), "Will not go");
    EXPECT_TRUE(status->text().contains("+491701234567")) << status->text().toStdString();
    opened.messages->showFolder(MessagesPlugin::Outbox);
    EXPECT_EQ(Column(opened.messages, 2), QStringList{"Will not go"});

    // Sent on the second try, the outbox copy moves to the sent box rather than staying twice.
    send->click();
    ASSERT_TRUE(waitForGui([&] { return !opened.messages->composeWindow(); }, std::chrono::seconds(20)));
    EXPECT_EQ(opened.messages->listedCount(), 0);
    opened.messages->showFolder(MessagesPlugin::Sent);
    EXPECT_EQ(opened.messages->listedCount(), 1);
}

TEST(MessagesGui, DeliveryReportIsShownOnTheSentMessage) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    world.sim().control("set status_report_delay_ms 300");
    // What the settings tab does when the user asks for delivery reports.
    bool asked = false;
    world.link().request(MESSAGE_SMS_SET_STATUS_REPORT, QStringLiteral("TRUE"),
                         [&](const QVariantMap&) { asked = true; });
    ASSERT_TRUE(waitForGui([&] { return asked; }));
    const Opened opened = OpenCompose(world, "+491701234567", "Did it arrive?");
    ASSERT_TRUE(opened.compose);
    opened.compose->findChild<QPushButton*>("send")->click();

    opened.messages->showFolder(MessagesPlugin::Sent);
    ASSERT_TRUE(waitForGui([&] { return Column(opened.messages, 3) == QStringList{"Delivered"}; },
                           std::chrono::seconds(20)));
    opened.messages->findChild<QTreeView*>("messages")
        ->setCurrentIndex(opened.messages->findChild<QTreeView*>("messages")->model()->index(0, 0));
    EXPECT_TRUE(
        opened.messages->findChild<QLabel*>("readerHeader")->text().contains("Delivery report: Delivered"));
}

TEST(MessagesGui, UnpluggingEmptiesTheModemFoldersAndReplugReadsThemAgain) {
    GuiWorld world;
    const Opened opened = OpenCompose(world, "+491701234567", "For later");
    ASSERT_TRUE(opened.compose);
    opened.compose->findChild<QPushButton*>("saveDraft")->click();
    MessagesPlugin* messages = opened.messages;
    messages->showFolder(MessagesPlugin::Sim);
    ASSERT_TRUE(waitForGui([&] { return messages->listedCount() > 0; }, std::chrono::seconds(20)));
    const int onSim = messages->listedCount();

    ASSERT_TRUE(world.sim().control("unplug")["ok"].toBool());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Absent));
    EXPECT_EQ(messages->listedCount(), 0);
    messages->showFolder(MessagesPlugin::Drafts);
    EXPECT_EQ(Column(messages, 2), QStringList{"For later"});

    ASSERT_TRUE(world.sim().control("plug")["ok"].toBool());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready, std::chrono::seconds(30)));
    messages->showFolder(MessagesPlugin::Sim);
    EXPECT_TRUE(waitForGui([&] { return messages->listedCount() == onSim; }, std::chrono::seconds(20)));
}

// The counter follows the send path's rules: accented letters are replaced where that keeps 7-bit.
TEST(MessagesGui, ComposeCounterUsesTheSendPathsCoding) {
    ensureGuiApplication();
    ModemLink link;
    MessagesController messages(link);
    ComposeDialog compose(link, messages);
    struct Row {
        QString text;
        const char* counter;
    };
    const Row rows[] = {
        {QString(160, 'a'), "0 characters left · 1 part"},
        {QString::fromUtf8("À bientôt"), "151 characters left · 1 part"},
        {QString::fromUtf8("€").repeated(80), "0 characters left · 1 part"},
        {QString::fromUtf8("ж").repeated(71), "63 characters left · 2 parts"},
    };
    for (const Row& row : rows) {
        compose.setText(row.text);
        EXPECT_EQ(compose.findChild<QLabel*>("counter")->text(), QString::fromUtf8(row.counter))
            << row.text.toStdString();
    }
}

TEST(MessageText, Recipients) {
    EXPECT_EQ(MessageText::splitRecipients(" +4917 ; 0170,,+4917; "), (QStringList{"+4917", "0170"}));
    EXPECT_EQ(MessageText::firstLine("  Hi there\nsecond line"), "Hi there");
    EXPECT_EQ(MessageText::firstLine(QString(100, 'x'), 10).size(), 10);
}
