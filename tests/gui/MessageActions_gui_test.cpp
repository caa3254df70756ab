#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "Contacts/ContactsPlugin.h"
#include "GuiTestSupport.h"
#include "Messages/ComposeDialog.h"
#include "Messages/MessagesPlugin.h"

namespace {

QJsonObject SmsState(GuiWorld& world) {
    return world.sim().control("dump").value("sms").toObject();
}

// The indexes the simulated SIM's message storage holds.
QList<int> SimIndexes(GuiWorld& world) {
    QList<int> indexes;
    const QJsonArray stored =
        SmsState(world).value("storages").toObject().value("SM").toObject().value("messages").toArray();
    for (const QJsonValue& message : stored)
        indexes << message.toObject().value("index").toInt();
    return indexes;
}

QTreeView* List(MessagesPlugin* messages) {
    return messages->findChild<QTreeView*>("messages");
}

// The row of the listed message whose text column reads text, or -1.
int RowOf(MessagesPlugin* messages, const QString& text) {
    const QAbstractItemModel* model = List(messages)->model();
    for (int row = 0; row < model->rowCount(); ++row)
        if (model->index(row, 2).data().toString() == text)
            return row;
    return -1;
}

// Clicks the row as a user would.
bool ClickRow(QTreeView* view, int row) {
    if (row < 0)
        return false;
    const QRect cell = view->visualRect(view->model()->index(row, 0));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cell.center());
    return view->currentIndex().row() == row;
}

bool SelectContact(ContactsPlugin* contacts, const QString& name) {
    auto* view = contacts->findChild<QTreeView*>("list");
    for (int row = 0; row < view->model()->rowCount(); ++row)
        if (view->model()->index(row, 0).data().toString() == name)
            return ClickRow(view, row);
    return false;
}

// Answers the next modal message box with the button, from inside its own event loop.
void AnswerNextQuestion(QMessageBox::StandardButton answer, QString* askedText) {
    auto* poll = new QTimer(qApp);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, answer, askedText] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        poll->deleteLater();
        poll->stop();
        *askedText = box->text();
        if (QAbstractButton* button = box->button(answer))
            button->click();
        else
            box->reject();
    });
    poll->start(20);
}

// The Messages tab on a ready modem, its SIM folder read, with two messages delivered to the SIM.
struct MessagesTab {
    GuiWorld world;
    MessagesPlugin* messages = nullptr;

    bool open() {
        if (!world.started() || !world.waitForState(ModemLink::State::Ready))
            return false;
        messages = world.show<MessagesPlugin>("messages");
        if (!messages)
            return false;
        messages->showFolder(MessagesPlugin::Sim);
        auto* busy = messages->findChild<QWidget*>("busy");
        return waitForGui([&] { return busy->isHidden() && messages->listedCount() > 0; },
                          std::chrono::seconds(20));
    }
    // The network delivers a message to the SIM; returns its index there (-1 when it went elsewhere).
    int deliver(const QString& from, const QString& text) {
        const QJsonObject reply = world.sim().control(QStringLiteral("sms %1 %2").arg(from, text));
        if (!reply["ok"].toBool() || reply["storage"].toString() != "SM")
            return -1;
        if (!waitForGui([&] { return RowOf(messages, text) >= 0; }, std::chrono::seconds(20)))
            return -1;
        return reply["indexes"].toArray().first().toInt();
    }
    bool select(const QString& text) { return ClickRow(List(messages), RowOf(messages, text)); }
    QPushButton* button(const char* name) { return messages->findChild<QPushButton*>(name); }
};

} // namespace

// Delete asks first and removes the message from the SIM; "Move to Archive" keeps a copy on the computer
// and removes it from the SIM; the other SIM messages stay.
TEST(MessageActionsGui, DeleteAndArchiveRemoveFromTheSim) {
    MessagesTab t;
    ASSERT_TRUE(t.open());
    const int doomed = t.deliver("+4917099990001", "Delete me");
    const int kept = t.deliver("+4917099990002", "Archive me");
    ASSERT_GE(doomed, 0);
    ASSERT_GE(kept, 0);
    const QList<int> before = SimIndexes(t.world);
    const int listed = t.messages->listedCount();

    // Answering No leaves everything in place.
    ASSERT_TRUE(t.select("Delete me"));
    QString asked;
    AnswerNextQuestion(QMessageBox::No, &asked);
    t.button("delete")->click();
    EXPECT_FALSE(asked.isEmpty());
    EXPECT_EQ(SimIndexes(t.world), before);
    EXPECT_EQ(t.messages->listedCount(), listed);

    asked.clear();
    AnswerNextQuestion(QMessageBox::Yes, &asked);
    t.button("delete")->click();
    EXPECT_FALSE(asked.isEmpty());
    ASSERT_TRUE(waitForGui([&] { return RowOf(t.messages, "Delete me") < 0; }, std::chrono::seconds(20)));
    QList<int> expected = before;
    expected.removeOne(doomed);
    EXPECT_EQ(SimIndexes(t.world), expected);
    EXPECT_EQ(t.messages->listedCount(), listed - 1);

    ASSERT_TRUE(t.select("Archive me"));
    auto* archive = t.messages->findChild<QAction*>("moveArchive");
    ASSERT_TRUE(archive);
    ASSERT_TRUE(archive->isVisible() && archive->isEnabled());
    // A modem message goes only to the archive.
    for (const char* other : {"moveDrafts", "moveOutbox", "moveSent"})
        EXPECT_FALSE(t.messages->findChild<QAction*>(other)->isVisible()) << other;
    archive->trigger();
    ASSERT_TRUE(waitForGui([&] { return RowOf(t.messages, "Archive me") < 0; }, std::chrono::seconds(20)));
    expected.removeOne(kept);
    EXPECT_EQ(SimIndexes(t.world), expected);
    EXPECT_EQ(t.messages->listedCount(), listed - 2);

    t.messages->showFolder(MessagesPlugin::Archive);
    ASSERT_EQ(t.messages->listedCount(), 1);
    const int row = RowOf(t.messages, "Archive me");
    ASSERT_EQ(row, 0);
    // Shown in the form of the SIM's country.
    EXPECT_EQ(List(t.messages)->model()->index(row, 0).data().toString(), "0170 99990002");

    // Reading the modem again does not bring either back.
    t.messages->showFolder(MessagesPlugin::Sim);
    t.button("reload")->click();
    auto* busy = t.messages->findChild<QWidget*>("busy");
    ASSERT_TRUE(waitForGui([&] { return busy->isHidden(); }, std::chrono::seconds(20)));
    EXPECT_EQ(t.messages->listedCount(), listed - 2);
    EXPECT_LT(RowOf(t.messages, "Delete me"), 0);
    EXPECT_LT(RowOf(t.messages, "Archive me"), 0);
}

// Reply addresses the sender, Forward carries the text to nobody yet; cancelling either sends nothing and
// keeps nothing.
TEST(MessageActionsGui, ReplyAndForwardOpenComposeAndCancelSendsNothing) {
    MessagesTab t;
    ASSERT_TRUE(t.open());
    ASSERT_GE(t.deliver("+4917099990003", "Call me back"), 0);
    const int sentBefore = SmsState(t.world).value("sent").toArray().size();

    struct Row {
        const char* button;
        const char* recipients;
        const char* text;
        bool cancelButton; // else the window is closed
    };
    const Row rows[] = {
        {"reply", "+4917099990003", "", true},
        {"forward", "", "Call me back", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.button);
        ASSERT_TRUE(t.select("Call me back"));
        QPushButton* action = t.button(row.button);
        ASSERT_TRUE(action->isEnabled());
        action->click();
        ComposeDialog* compose = t.messages->composeWindow();
        ASSERT_TRUE(compose);
        ASSERT_TRUE(waitForGui([&] { return compose->isVisible(); }));
        EXPECT_EQ(compose->findChild<QLineEdit*>("recipients")->text(), row.recipients);
        EXPECT_EQ(compose->findChild<QPlainTextEdit*>("text")->toPlainText(), row.text);
        if (row.cancelButton)
            compose->findChild<QPushButton*>("cancel")->click();
        else
            compose->close();
        ASSERT_TRUE(waitForGui([&] { return !t.messages->composeWindow(); }));
    }

    // Nothing went to the modem and nothing was kept on the computer.
    EXPECT_EQ(SmsState(t.world).value("sent").toArray().size(), sentBefore);
    for (MessagesPlugin::Folder folder :
         {MessagesPlugin::Outbox, MessagesPlugin::Sent, MessagesPlugin::Drafts}) {
        t.messages->showFolder(folder);
        EXPECT_EQ(t.messages->listedCount(), 0) << folder;
    }
}

// "Send message" on a contact brings the Messages tab forward with a window addressed to the contact.
TEST(MessageActionsGui, ContactSendMessageOpensComposeToTheNumber) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* contacts = world.show<ContactsPlugin>("contacts");
    ASSERT_TRUE(contacts);
    auto* send = contacts->findChild<QPushButton*>("sendMessage");
    EXPECT_FALSE(send->isEnabled()); // nobody chosen yet
    ASSERT_TRUE(waitForGui([&] { return SelectContact(contacts, "Jürgen"); }));
    ASSERT_TRUE(send->isEnabled());
    send->click();

    auto* messages = qobject_cast<MessagesPlugin*>(world.window().module("messages"));
    ASSERT_TRUE(messages);
    EXPECT_TRUE(messages->isVisible());
    EXPECT_FALSE(contacts->isVisible());
    ComposeDialog* compose = messages->composeWindow();
    ASSERT_TRUE(compose);
    EXPECT_EQ(compose->recipients(), QStringList{"+4930123456"});
    EXPECT_TRUE(compose->windowTitle().contains("Jürgen")) << compose->windowTitle().toStdString();
    EXPECT_TRUE(compose->findChild<QPlainTextEdit*>("text")->toPlainText().isEmpty());
}
