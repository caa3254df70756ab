#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "Account/AccountPlugin.h"
#include "GuiTestSupport.h"
#include "Toolkit/ToolkitPlugin.h"

namespace {

QStringList Texts(const QListWidget* list) {
    QStringList texts;
    for (int row = 0; row < list->count(); ++row)
        texts << list->item(row)->text();
    return texts;
}

} // namespace

// A free code gets the network's answer; a menu code keeps the reply field open until the dialogue ends.
TEST(AccountGui, FreeCodeShowsTheAnswerAndMenusWaitForAReply) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* tab = world.show<AccountPlugin>("account");
    ASSERT_NE(tab, nullptr);
    auto* code = tab->findChild<QLineEdit*>("code");
    auto* send = tab->findChild<QPushButton*>("sendCode");
    auto* answer = tab->findChild<QPlainTextEdit*>("answer");
    auto* reply = tab->findChild<QLineEdit*>("reply");
    EXPECT_GT(tab->findChild<QTreeWidget*>("menu")->topLevelItemCount(), 0); // the SIM's operator has menus

    QTest::keyClicks(code, "*100#");
    send->click();
    ASSERT_TRUE(waitForGui([&] { return answer->toPlainText().contains("Your balance is 12.34 EUR."); }))
        << answer->toPlainText().toStdString();
    EXPECT_FALSE(tab->sessionOpen());

    code->clear();
    QTest::keyClicks(code, "*135#");
    send->click();
    ASSERT_TRUE(waitForGui([&] { return tab->sessionOpen(); }));
    EXPECT_TRUE(answer->toPlainText().contains("2 Data options"));
    EXPECT_FALSE(send->isEnabled()); // one dialogue at a time
    QTest::keyClicks(reply, "2");
    tab->findChild<QPushButton*>("sendReply")->click();
    ASSERT_TRUE(waitForGui([&] { return answer->toPlainText().contains("Week pass 5 GB"); }));
    EXPECT_TRUE(tab->sessionOpen());
    tab->findChild<QPushButton*>("cancelSession")->click();
    EXPECT_FALSE(tab->sessionOpen());
    EXPECT_TRUE(waitForGui([&] { return send->isEnabled(); }));
}

// A SIM of another operator gets the general menus. An entry's input is checked against its limits
// before anything is sent, then goes out after the entry's code; a code the network does not offer says so.
TEST(AccountGui, EntryInputsAreCheckedBeforeTheCodeGoesOut) {
    QTemporaryDir dir;
    const QString scenario = dir.filePath("other-operator.json");
    QFile file(scenario);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"sim": {"imsi": "001019876543210"}})");
    file.close();
    GuiWorld world({"--scenario", scenario});
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* tab = world.show<AccountPlugin>("account");
    auto* menu = tab->findChild<QTreeWidget*>("menu");
    const auto found = menu->findItems("Top up with a voucher", Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_EQ(found.size(), 1);
    menu->setCurrentItem(found.front());
    auto* voucher = tab->findChild<QLineEdit*>("input0");
    auto* topUp = tab->findChild<QPushButton*>("button0");
    ASSERT_TRUE(voucher && topUp);
    auto* inputError = tab->findChild<QLabel*>("inputError");

    QTest::keyClicks(voucher, "12345x67");
    EXPECT_EQ(voucher->text(), "1234567"); // digits only
    topUp->click();
    EXPECT_TRUE(inputError->isVisibleTo(tab));
    EXPECT_TRUE(inputError->text().contains("12 to 16")) << inputError->text().toStdString();

    QTest::keyClicks(voucher, "8901234567"); // 17 digits typed, 16 kept
    EXPECT_EQ(voucher->text(), "1234567890123456");
    topUp->click();
    EXPECT_FALSE(inputError->isVisibleTo(tab));
    auto* answer = tab->findChild<QPlainTextEdit*>("answer");
    ASSERT_TRUE(waitForGui([&] { return answer->toPlainText().contains("does not offer"); }));
    const QJsonArray requests =
        world.sim().control("dump").value("ussd").toObject().value("requests").toArray();
    ASSERT_FALSE(requests.isEmpty());
    EXPECT_TRUE(requests.last().toString().contains("*102*1234567890123456#"))
        << QJsonDocument(requests).toJson().toStdString();
}

// The card's main menu is listed; each path through the card's dialogues ends back at the main menu.
// Steps: "#N" chooses row N of the list on screen, "text:T" waits for the card to show T, "type:X" types
// into the answer field, a button's objectName presses it.
TEST(ToolkitGui, MenuChoicesShowTheCardsDialogues) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* tab = world.show<ToolkitPlugin>("toolkit");
    ASSERT_NE(tab, nullptr);
    auto* items = tab->findChild<QListWidget*>("items");
    auto* text = tab->findChild<QLabel*>("text");
    const QStringList mainMenu{"News", "Games", "Offers"};
    auto atMainMenu = [&] {
        return Texts(items) == mainMenu && tab->current().nCommand == ToolkitPlugin::kMainMenu;
    };
    ASSERT_TRUE(waitForGui(atMainMenu)) << Texts(items).join(',').toStdString();

    const std::vector<std::vector<QString>> paths = {
        {"#0", "text:Today: sunny, 24 C", "ok"},
        {"#1", "list:Quiz,About", "back"},
        {"#1", "list:Quiz,About", "#0", "text:Capital of France?", "type:Paris", "ok", "text:Thank you!",
         "ok"},
        {"#2", "text:Receive offers? (Y/N)", "yes"},
        {"#1", "list:Quiz,About", "#1", "text:Games by your operator", "endSession"},
    };
    for (const auto& path : paths) {
        SCOPED_TRACE(path.front().toStdString() + " ... " + path.back().toStdString());
        for (const QString& step : path) {
            SCOPED_TRACE(step.toStdString());
            if (step.startsWith('#')) {
                items->setCurrentRow(step.mid(1).toInt());
                tab->findChild<QPushButton*>("select")->click();
            } else if (step.startsWith("text:")) {
                ASSERT_TRUE(waitForGui([&] { return text->text() == step.mid(5); }))
                    << text->text().toStdString();
            } else if (step.startsWith("list:")) {
                ASSERT_TRUE(waitForGui([&] { return Texts(items).join(',') == step.mid(5); }));
            } else if (step.startsWith("type:")) {
                QTest::keyClicks(tab->findChild<QLineEdit*>("input"), step.mid(5));
            } else {
                auto* button = tab->findChild<QPushButton*>(step);
                ASSERT_TRUE(button->isVisibleTo(tab));
                ASSERT_TRUE(waitForGui([&] { return button->isEnabled(); }));
                button->click();
            }
        }
        ASSERT_TRUE(waitForGui(atMainMenu)) << Texts(items).join(',').toStdString();
    }
    // What the card heard: the back step, the typed answer, the yes and the user's end of the session.
    QStringList heard;
    for (const QJsonValue& response :
         world.sim().control("dump").value("stk").toObject().value("responses").toArray())
        heard << response.toString();
    for (const char* expected : {"11,17,,0", "3,0,,\"Paris\"", "2,0,,2,1,", "1,16,"})
        EXPECT_TRUE(heard.contains(expected)) << expected << " not in " << heard.join(' ').toStdString();
}

TEST(AccountInput, FieldLimits) {
    const _TAccountInputItem voucher{L"Voucher code", L"", L"0123456789", 16, 12};
    const _TAccountInputItem pin{L"PIN", L"", L"", 4, 4};
    const _TAccountInputItem note{L"Note", L"", L"", 0, 2};
    struct Row {
        const _TAccountInputItem& field;
        QString text;
        QString problem; // empty: accepted
    } rows[] = {
        {voucher, "123456789012", ""},
        {voucher, "1234567890123456", ""},
        {voucher, "12345678901", "Voucher code needs 12 to 16 characters."},
        {voucher, "12345678901234567", "Voucher code needs 12 to 16 characters."},
        {voucher, "12345678901a", "Voucher code takes only the characters 0123456789."},
        {pin, "123", "PIN needs 4 characters."},
        {pin, "12ab", ""},
        {note, "x", "Note needs at least 2 characters."},
        {note, QString(500, 'x'), ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(AccountPlugin::checkInput(row.field, row.text), row.problem) << row.text.toStdString();
}
