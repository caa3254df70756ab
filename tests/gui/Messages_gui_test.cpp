// The Messages and Contacts tabs against the simulated modem: what the user types, lists and sends.

#include <QAction>

#include "Contacts/ContactDialog.h"
#include "Contacts/ContactsPlugin.h"
#include "Contacts/LocalPhoneBook.h"
#include "GuiTestSupport.h"
#include "Messages/ComposeDialog.h"
#include "Messages/ConversationView.h"
#include "Messages/MessagesPlugin.h"
#include "WorkNotification.h"

using namespace std::chrono_literals;

namespace {

QTreeView* List(MessagesPlugin* messages) {
    return messages->findChild<QTreeView*>("messages");
}

bool Listed(MessagesPlugin* messages, const QString& text) {
    return Column(List(messages), 2).contains(text);
}

// The indexes the simulated SIM's message storage holds.
QList<int> SimIndexes(GuiWorld& world) {
    QList<int> indexes;
    for (const QJsonValue& message : world.dump("sms/storages/SM/messages").toArray())
        indexes << message["index"].toInt();
    return indexes;
}

// The Messages tab on a ready modem; compose() opens a new message to the recipients with the text.
struct MessagesTab {
    GuiWorld world;
    MessagesPlugin* messages = nullptr;
    ComposeDialog* compose = nullptr;

    bool open() { return (messages = world.showReady<MessagesPlugin>("messages")); }
    bool openCompose(const QString& to, const QString& text) {
        return open() && (compose = NewMessage(messages, to, text));
    }
    // The SIM folder, read.
    bool openSim() {
        if (!open())
            return false;
        messages->showFolder(MessagesPlugin::Sim);
        return waitForGui([&] { return busy()->isHidden() && messages->listedCount() > 0; }, 20s);
    }
    // The network delivers a message to the SIM; returns its index there (-1 when it went elsewhere).
    int deliver(const QString& from, const QString& text) {
        const QJsonObject reply = world.sim().control(QStringLiteral("sms %1 %2").arg(from, text));
        if (!reply["ok"].toBool() || reply["storage"].toString() != "SM" ||
            !waitForGui([&] { return Listed(messages, text); }, 20s))
            return -1;
        return reply["indexes"].toArray().first().toInt();
    }
    // Selects the message, and waits for the tab to offer its actions.
    bool select(const QString& text) {
        return ClickRow(List(messages), 2, text) && waitForGui([&] { return button("delete")->isEnabled(); });
    }
    QPushButton* button(const char* name) { return Child<QPushButton>(messages, name); }
    QWidget* busy() { return Child<QWidget>(messages, "busy"); }
    QJsonArray sent() { return world.dump("sms/sent").toArray(); }
};

} // namespace

TEST(MessagesGui, RecipientIsCheckedAndALongMessageGoesOutInTwoSegments) {
    MessagesTab t;
    const QString text = QString(200, QLatin1Char('a'));
    ASSERT_TRUE(t.openCompose("", text));
    auto* recipients = Child<QLineEdit>(t.compose, "recipients");
    auto* send = Child<QPushButton>(t.compose, "send");

    // What is not a number is refused under the field, and nothing goes out.
    recipients->setText("+491701234567; *100#");
    send->click();
    auto* error = Child<QLabel>(t.compose, "numberError");
    EXPECT_FALSE(error->isHidden());
    EXPECT_TRUE(error->text().contains("service code")) << error->text().toStdString();
    EXPECT_EQ(t.messages->composeWindow(), t.compose);
    EXPECT_TRUE(t.sent().isEmpty());

    // Typed nationally with brackets and a dash, sent in E.164 form, listed under the contact's name.
    recipients->setText("(0170) 123-4567");
    // 200 septets: two parts of 153, 106 left in the second.
    EXPECT_EQ(TextOf(t.compose, "counter"), "106 characters left · 2 parts");
    send->click();
    ASSERT_TRUE(waitForGui([&] { return t.sent().size() >= 2 && !t.messages->composeWindow(); }, 20s));
    const QJsonArray parts = t.sent();
    ASSERT_EQ(parts.size(), 2);
    EXPECT_EQ(parts[0]["to"].toString(), "+491701234567");
    EXPECT_EQ(parts[1]["to"].toString(), "+491701234567");
    EXPECT_EQ(parts[0]["text"].toString() + parts[1]["text"].toString(), text);
    t.messages->showFolder(MessagesPlugin::Sent);
    EXPECT_EQ(Column(List(t.messages), 0), QStringList{"Anna Schmidt (0170 1234567)"});
}

// A send that fails keeps the text in the window and a copy in the outbox; sent on the second try, the
// outbox copy moves to the sent box rather than staying twice.
TEST(MessagesGui, FailedSendKeepsTextAndGoesToOutbox) {
    MessagesTab t;
    ASSERT_TRUE(t.openCompose("+491701234567", "Will not go"));
    // The modem tries once more itself; both tries fail.
    ASSERT_TRUE(t.world.sim().control("set fail_sends 2")["ok"].toBool());
    auto* send = Child<QPushButton>(t.compose, "send");
    send->click();
    auto* status = Child<QLabel>(t.compose, "status");
    ASSERT_TRUE(waitForGui(
        [&] { return !t.messages->composeWindow() || (send->isEnabled() && !status->isHidden()); }, 20s));
    ASSERT_TRUE(t.messages->composeWindow()) << "the failed message was reported as sent";
    EXPECT_EQ(t.compose->text(), "Will not go");
    EXPECT_TRUE(status->text().contains("+491701234567")) << status->text().toStdString();
    t.messages->showFolder(MessagesPlugin::Outbox);
    EXPECT_EQ(Column(List(t.messages), 2), QStringList{"Will not go"});

    send->click();
    ASSERT_TRUE(waitForGui([&] { return !t.messages->composeWindow(); }, 20s));
    EXPECT_EQ(t.messages->listedCount(), 0);
    t.messages->showFolder(MessagesPlugin::Sent);
    EXPECT_EQ(t.messages->listedCount(), 1);
}

// The report shows on the sent message, and in Anna's conversation beside the SIM's and the modem's
// messages; a conversation shown counts as read; the search finds her message in the SIM folder, and
// Reply writes to her.
TEST(MessagesGui, DeliveryReportShowsOnTheSentMessageAndInTheConversation) {
    MessagesTab t;
    ASSERT_TRUE(t.world.ready());
    t.world.sim().control("set status_report_delay_ms 300");
    // What the settings tab does when the user asks for delivery reports.
    bool asked = false;
    t.world.link().request(MESSAGE_SMS_SET_STATUS_REPORT, QStringLiteral("TRUE"),
                           [&](const QVariantMap&) { asked = true; });
    ASSERT_TRUE(waitForGui([&] { return asked; }));
    ASSERT_TRUE(t.openCompose("+491701234567", "Did it arrive?"));
    Child<QPushButton>(t.compose, "send")->click();
    t.messages->showFolder(MessagesPlugin::Sent);
    ASSERT_TRUE(waitForGui([&] { return Column(List(t.messages), 3) == QStringList{"Delivered"}; }, 20s));
    List(t.messages)->setCurrentIndex(List(t.messages)->model()->index(0, 0));
    EXPECT_TRUE(TextOf(t.messages, "readerHeader").contains("Delivery report: Delivered"));

    ASSERT_TRUE(waitForGui([&] { return t.messages->conversations() && t.busy()->isHidden(); }, 20s));
    t.messages->showConversations();
    auto* thread = Child<QListWidget>(t.messages, "thread");
    EXPECT_EQ(TextOf(t.messages, "conversationTitle"), "Anna Schmidt (0170 1234567)");
    const QStringList shown = Texts(thread);
    ASSERT_EQ(shown.size(), 3) << shown.join('|').toStdString();
    EXPECT_TRUE(shown[0].startsWith("Outgoing · Sent · Modem\nYes, see you there."))
        << shown[0].toStdString();
    EXPECT_TRUE(shown[1].endsWith("Read · SIM card\nHi! Are we still meeting at 8?"))
        << shown[1].toStdString();
    EXPECT_TRUE(shown[2].endsWith("Delivered · Sent\nDid it arrive?")) << shown[2].toStdString();
    EXPECT_TRUE(thread->item(1)->textAlignment() & Qt::AlignLeft);
    EXPECT_TRUE(thread->item(2)->textAlignment() & Qt::AlignRight);

    // Vodafone's unread message, read in its conversation, is read in the SIM folder too.
    auto* folders = Child<QListWidget>(t.messages, "folders");
    EXPECT_EQ(folders->item(MessagesPlugin::Sim)->text(), "SIM card (1/3)");
    t.messages->conversations()->showNumber("Vodafone");
    EXPECT_EQ(folders->item(MessagesPlugin::Sim)->text(), "SIM card (3)");

    QTest::keyClicks(Child<QLineEdit>(t.messages, "search"), "MEETING");
    auto* results = Child<QListWidget>(t.messages, "conversations");
    const QStringList found = Texts(results);
    ASSERT_EQ(found.size(), 1);
    EXPECT_TRUE(found[0].startsWith("Anna Schmidt (0170 1234567)\nSIM card · ")) << found[0].toStdString();
    results->setCurrentRow(0);
    Child<QPushButton>(t.messages, "conversationReply")->click();
    ASSERT_TRUE(t.messages->composeWindow());
    EXPECT_EQ(TextOf(t.messages->composeWindow(), "recipients"), "+491701234567");
}

// Reply addresses the sender, Forward carries the text to nobody yet; cancelling either sends nothing and
// keeps nothing. Delete asks first and removes the message from the SIM; "Move to Archive" keeps a copy on
// the computer and removes it from the SIM; the other SIM messages stay.
TEST(MessageActionsGui, ReplyForwardDeleteAndArchive) {
    MessagesTab t;
    ASSERT_TRUE(t.openSim());
    const int doomed = t.deliver("+4917099990001", "Delete me");
    const int kept = t.deliver("+4917099990002", "Archive me");
    ASSERT_GE(doomed, 0);
    ASSERT_GE(kept, 0);
    // clang-format off
    const struct { const char* button; const char* recipients; const char* text; bool cancelButton; } rows[] = {
        {"reply", "+4917099990002", "", true},
        {"forward", "", "Archive me", false}, // the window is closed
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.button);
        ASSERT_TRUE(t.select("Archive me"));
        ASSERT_TRUE(t.button(row.button)->isEnabled());
        t.button(row.button)->click();
        ComposeDialog* compose = t.messages->composeWindow();
        ASSERT_TRUE(compose && waitForGui([&] { return compose->isVisible(); }));
        EXPECT_EQ(TextOf(compose, "recipients"), row.recipients);
        EXPECT_EQ(TextOf(compose, "text"), row.text);
        if (row.cancelButton)
            Child<QPushButton>(compose, "cancel")->click();
        else
            compose->close();
        ASSERT_TRUE(waitForGui([&] { return !t.messages->composeWindow(); }));
    }
    EXPECT_TRUE(t.sent().isEmpty());
    for (MessagesPlugin::Folder folder :
         {MessagesPlugin::Outbox, MessagesPlugin::Sent, MessagesPlugin::Drafts}) {
        t.messages->showFolder(folder);
        EXPECT_EQ(t.messages->listedCount(), 0) << folder;
    }
    ASSERT_TRUE(t.openSim());
    QList<int> expected = SimIndexes(t.world);
    const int listed = t.messages->listedCount();

    // Answering No leaves everything in place.
    ASSERT_TRUE(t.select("Delete me"));
    EXPECT_FALSE(ClickAndAnswer(t.button("delete"), QMessageBox::No).isEmpty());
    EXPECT_EQ(SimIndexes(t.world), expected);
    EXPECT_EQ(t.messages->listedCount(), listed);

    EXPECT_FALSE(ClickAndAnswer(t.button("delete"), QMessageBox::Yes).isEmpty());
    ASSERT_TRUE(waitForGui([&] { return !Listed(t.messages, "Delete me"); }, 20s));
    expected.removeOne(doomed);
    EXPECT_EQ(SimIndexes(t.world), expected);
    EXPECT_EQ(t.messages->listedCount(), listed - 1);

    ASSERT_TRUE(t.select("Archive me"));
    auto* archive = Child<QAction>(t.messages, "moveArchive");
    ASSERT_TRUE(archive->isVisible() && archive->isEnabled());
    // A modem message goes only to the archive.
    for (const char* other : {"moveDrafts", "moveOutbox", "moveSent"})
        EXPECT_FALSE(Child<QAction>(t.messages, other)->isVisible()) << other;
    archive->trigger();
    ASSERT_TRUE(waitForGui([&] { return !Listed(t.messages, "Archive me"); }, 20s));
    expected.removeOne(kept);
    EXPECT_EQ(SimIndexes(t.world), expected);
    EXPECT_EQ(t.messages->listedCount(), listed - 2);
    t.messages->showFolder(MessagesPlugin::Archive);
    // Shown in the form of the SIM's country.
    EXPECT_EQ(Column(List(t.messages), 0), QStringList{"0170 99990002"});
    EXPECT_EQ(Column(List(t.messages), 2), QStringList{"Archive me"});
}

// Add, edit and delete from the app reach the SIM, and the list and its count follow; names are cut to the
// SIM's limit, numbers are read as people type them, and what cannot be stored is said under the field
// while Save waits. A search finds the computer's contacts too; they are copied to the SIM one entry per
// number and back. "Send message" on a contact brings the Messages tab forward, addressed to the contact.
TEST(ContactsGui, AddEditDeleteAndSendMessage) {
    GuiWorld world;
    ASSERT_TRUE(world.ready());
    LocalPhoneBook book;
    // clang-format off
    book.add({{}, "Zora Local", {{"mobile", "+49 30 7777777"}, {"", "+49 171 2222222"}}, {"zora@example.org"}, {}});
    // clang-format on
    ASSERT_TRUE(book.save());
    auto* tab = world.show<ContactsPlugin>("contacts");
    auto* view = Child<QTreeView>(tab, "list");
    auto* usage = Child<QLabel>(tab, "usage");
    const auto used = [](int n) { return QRegularExpression(QStringLiteral("^%1 of 250 used").arg(n)); };
    ASSERT_TRUE(Shows(usage, used(3))); // names up to 14
    auto* send = Child<QPushButton>(tab, "sendMessage");
    EXPECT_FALSE(send->isEnabled()); // nobody chosen yet
    auto simEntry = [&](const QString& name) {
        for (const QJsonValue& entry : world.dump("phonebooks/SM/entries").toArray())
            if (entry["name"].toString() == name)
                return entry.toObject();
        return QJsonObject();
    };
    // Presses the button ("add", "edit") and returns the edit dialog it opens.
    auto openDialog = [&](const char* button) {
        return ClickWhenEnabled(Child<QPushButton>(tab, button)) ? VisibleChild<ContactDialog>(tab) : nullptr;
    };

    ContactDialog* dialog = openDialog("add");
    ASSERT_NE(dialog, nullptr);
    QTest::keyClicks(Child<QLineEdit>(dialog, "name"), "Zoe Test");
    QTest::keyClicks(Child<QLineEdit>(dialog, "number"), "+4915112345#");
    auto* save = Child<QPushButton>(dialog, "save");
    ASSERT_TRUE(save->isEnabled());
    save->click();
    QJsonObject entry;
    ASSERT_TRUE(waitForGui([&] { return !(entry = simEntry("Zoe Test")).isEmpty(); }));
    EXPECT_EQ(entry["number"].toString(), "+4915112345#");
    ASSERT_TRUE(Shows(usage, used(4)));
    EXPECT_TRUE(Column(view, 0).contains("Zoe Test"));
    EXPECT_TRUE(Column(view, 0).contains("Anna Schmidt"));

    // Editing overwrites the same index.
    ASSERT_TRUE(ClickRow(view, 0, "Zoe Test"));
    dialog = openDialog("edit");
    ASSERT_NE(dialog, nullptr);
    auto* number = Child<QLineEdit>(dialog, "number");
    EXPECT_EQ(number->text(), "+4915112345#");
    number->clear();
    QTest::keyClicks(number, "+4915199999");
    Child<QPushButton>(dialog, "save")->click();
    ASSERT_TRUE(waitForGui([&] { return simEntry("Zoe Test")["number"].toString() == "+4915199999"; }));
    EXPECT_EQ(simEntry("Zoe Test").value("index"), entry.value("index"));

    // Deleting asks first.
    ASSERT_TRUE(waitForGui([&] { return Child<QPushButton>(tab, "delete")->isEnabled(); }));
    ASSERT_TRUE(ClickRow(view, 0, "Zoe Test"));
    EXPECT_FALSE(ClickAndAnswer(Child<QPushButton>(tab, "delete"), QMessageBox::Yes).isEmpty());
    ASSERT_TRUE(Shows(usage, used(3)));
    EXPECT_TRUE(simEntry("Zoe Test").isEmpty());
    EXPECT_FALSE(Column(view, 0).contains("Zoe Test"));

    dialog = openDialog("add");
    ASSERT_NE(dialog, nullptr);
    auto* name = Child<QLineEdit>(dialog, "name");
    number = Child<QLineEdit>(dialog, "number");
    save = Child<QPushButton>(dialog, "save");
    auto* error = Child<QLabel>(dialog, "numberError");
    // stored: what Save stores, empty when refused; reason: shown under the number
    // clang-format off
    const struct { const char *name, *number, *storedName, *stored, *reason; } rows[] = {
        {"A name far longer than the SIM", "+49 170 1234567", "A name far lon", "+491701234567", ""},
        {"Shop",    "(0170) 123-4567",           "Shop",    "+491701234567", ""},
        {"Shop",    "*100#",                     "Shop",    "*100#",         ""},
        {"Shop",    "0301 55-77 ab",             "Shop",    "",              "letters are not allowed"},
        {"",        "0170 1234567",              "",        "+491701234567", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        name->clear();
        number->clear();
        QTest::keyClicks(name, row.name);
        QTest::keyClicks(number, row.number);
        EXPECT_EQ(name->text(), row.storedName);
        EXPECT_EQ(dialog->number(), row.stored);
        EXPECT_EQ(error->isHidden(), *row.reason == '\0');
        EXPECT_TRUE(error->text().contains(row.reason)) << error->text().toStdString();
        EXPECT_EQ(save->isEnabled(), *row.name != '\0' && *row.stored != '\0');
    }
    dialog->close();

    auto* search = Child<QLineEdit>(tab, "search");
    QTest::keyClicks(search, "zora");
    EXPECT_EQ(Column(view, 3), QStringList{"Computer"});
    EXPECT_EQ(Column(view, 2), QStringList{"zora@example.org"});
    ASSERT_TRUE(ClickRow(view, 0, "Zora Local"));
    Child<QPushButton>(tab, "copyToSim")->click();
    ASSERT_TRUE(waitForGui([&] { return !simEntry("Zora Local (2)").isEmpty(); }));
    EXPECT_EQ(simEntry("Zora (mobile)")["number"].toString(), "+49307777777");
    EXPECT_TRUE(Shows(Child<QLabel>(tab, "notice"), "Zora (mobile) +49307777777: copied, name cut"));
    search->clear();
    QTest::keyClicks(search, "Anna");
    ASSERT_TRUE(ClickRow(view, 0, "Anna Schmidt"));
    Child<QPushButton>(tab, "copyToComputer")->click();
    ASSERT_EQ(book.load(), LocalPhoneBook::LoadResult::Ok);
    EXPECT_EQ(book.nameForNumber("+491701234567", "DE"), "Anna Schmidt");
    search->clear();

    ASSERT_TRUE(ClickRow(view, 0, "Jürgen") && send->isEnabled());
    send->click();
    auto* messages = qobject_cast<MessagesPlugin*>(world.window().module("messages"));
    ASSERT_TRUE(messages);
    EXPECT_TRUE(messages->isVisible());
    EXPECT_FALSE(tab->isVisible());
    ComposeDialog* compose = messages->composeWindow();
    ASSERT_TRUE(compose);
    EXPECT_EQ(compose->recipients(), QStringList{"+4930123456"});
    EXPECT_TRUE(compose->windowTitle().contains("Jürgen")) << compose->windowTitle().toStdString();
    EXPECT_TRUE(TextOf(compose, "text").isEmpty());
}
