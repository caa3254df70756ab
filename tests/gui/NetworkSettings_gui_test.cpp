// The Network, Settings, Account and Toolkit tabs against the simulated modem, the checks their fields make
// before anything is sent, the signal finder and the signal history in the Statistics tab.

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QJsonDocument>
#include <QListWidget>
#include <QProgressBar>
#include <QRadioButton>
#include <QTabWidget>
#include <QTreeWidget>

#include "Account/AccountPlugin.h"
#include "AppConfig.h"
#include "CNSSignalGauge.h"
#include "Connector/ProfileSettingsController.h"
#include "GuiTestSupport.h"
#include "ModemDialect.h"
#include "Network/NetworkPlugin.h"
#include "Settings/PinSettingsPage.h"
#include "Settings/ProfileDialog.h"
#include "Settings/SettingsPlugin.h"
#include "Settings/SmsSettingsPage.h"
#include "Statistics/CNSSignalChart.h"
#include "Statistics/SignalHistory.h"
#include "Statistics/StatisticsPlugin.h"
#include "Toolkit/ToolkitPlugin.h"

using namespace std::chrono_literals;

namespace {

QTreeWidgetItem* Row(QTreeWidget* list, int column, const QString& text) {
    const auto found = list->findItems(text, Qt::MatchExactly, column);
    return found.isEmpty() ? nullptr : found.front();
}

} // namespace

// The scan lists the simulator's operators once each, with their state, while the tab stays usable; a
// manual choice then registers with that operator and the tab shows it.
TEST(NetworkSettingsGui, SearchListsOperatorsAndManualSelectionRegisters) {
    GuiWorld world;
    auto* network = world.showReady<NetworkPlugin>("network");
    ASSERT_NE(network, nullptr);
    auto* search = Child<QPushButton>(network, "search");
    auto* progress = Child<QProgressBar>(network, "searchProgress");
    auto* list = Child<QTreeWidget>(network, "networks");
    ASSERT_TRUE(ClickWhenEnabled(search));
    EXPECT_TRUE(progress->isVisible());
    EXPECT_FALSE(search->isEnabled());
    ASSERT_TRUE(waitForGui([&] { return list->topLevelItemCount() > 0; }, 30s));
    EXPECT_FALSE(progress->isVisible());
    EXPECT_TRUE(search->isEnabled());
    QStringList listed; // code, name, state
    for (const QTreeWidgetItem* item : list->findItems("*", Qt::MatchWildcard))
        listed << item->text(2) + '|' + item->text(0) + '|' + item->text(4);
    listed.sort();
    EXPECT_EQ(listed, QStringList({"26201|Telekom.de|available", "26202|Vodafone.de|current",
                                   "26203|E-Plus|forbidden", "26207|o2 - de|available"}));

    Row(list, 2, QStringLiteral("26201"))->setSelected(true);
    EXPECT_TRUE(Child<QRadioButton>(network, "manual")->isChecked());
    auto* registerButton = Child<QPushButton>(network, "register");
    ASSERT_TRUE(registerButton->isEnabled());
    registerButton->click();
    ASSERT_TRUE(waitForGui([&] {
        const QJsonObject reg = world.dump("network").toObject();
        return reg.value("selection").toInt() == 1 && reg.value("operator").toString() == "26201";
    }));
    EXPECT_TRUE(Shows(Child<QLabel>(network, "operator"), "26201", 15s));
    EXPECT_TRUE(Shows(Child<QLabel>(network, "selection"), Exactly("manual")));
    EXPECT_EQ(Row(list, 2, "26201")->text(4), "current");
    EXPECT_EQ(Row(list, 2, "26202")->text(4), "available");
}

// A stick of the standard dialect has no toolkit and no band or mode selection: the toolkit tab goes, and
// the band and mode controls are disabled with the reason; a stick with them gets the tab back.
TEST(NetworkSettingsGui, StandardStickHasNoToolkitTabAndNoBandOrMode) {
    struct StandardStick {
        StandardStick() { SetModemDialect(ModemDialect::Standard); }
        ~StandardStick() { ResetModemDialect(); }
    } stick;
    GuiWorld world;
    ASSERT_TRUE(world.ready());
    auto* tabs = Child<QTabWidget>(&world.window(), "modules");
    const int toolkit = tabs->indexOf(world.window().module(QStringLiteral("toolkit")));
    EXPECT_TRUE(waitForGui([&] { return !tabs->isTabVisible(toolkit); }));
    auto* network = world.show<NetworkPlugin>("network");
    EXPECT_TRUE(Shows(Child<QLabel>(network, "radioStatus"), "not supported by this modem"));
    for (const char* control : {"band", "mode", "applyRadio"})
        EXPECT_FALSE(Child<QWidget>(network, control)->isEnabled()) << control;

    ASSERT_TRUE(world.sim().control(QStringLiteral("unplug")).value("ok").toBool());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Absent));
    EXPECT_TRUE(tabs->isTabVisible(toolkit));
}

// Switching the PIN request on with the SIM's PIN reaches the SIM; a wrong PIN is reported in words with
// the attempts left, and the code never stays in a field. A profile added through the dialog reaches the
// controller's offered list and the saved user list, so it is still there for a new configuration read
// from the files; one without a name is refused in the dialog.
TEST(NetworkSettingsGui, PinCheckAndAddedProfile) {
    GuiWorld world;
    auto* settings = world.showReady<SettingsPlugin>("settings");
    ASSERT_NE(settings, nullptr);
    ASSERT_FALSE(world.dump("pin/enabled").toBool());
    settings->showSection(QStringLiteral("pin"));
    auto* pin = Child<QLineEdit>(settings, "currentPin");
    auto* toggle = Child<QPushButton>(settings, "togglePin");
    auto* status = Child<QLabel>(settings, "pinStatus");
    auto* attempts = Child<QLabel>(settings, "pinAttempts");
    ASSERT_TRUE(waitForGui([&] { return pin->isEnabled(); }) &&
                Shows(attempts, QRegularExpression("^PIN 3")));

    QTest::keyClicks(pin, "4321");
    toggle->click();
    EXPECT_TRUE(pin->text().isEmpty());
    ASSERT_TRUE(Shows(status, "wrong"));
    EXPECT_TRUE(Shows(attempts, QRegularExpression("^PIN 2")));
    EXPECT_FALSE(world.dump("pin/enabled").toBool());

    QTest::keyClicks(pin, "1234");
    toggle->click();
    ASSERT_TRUE(waitForGui([&] { return world.dump("pin/enabled").toBool(); }));
    EXPECT_TRUE(waitForGui([&] { return toggle->text().contains("Stop"); }));
    EXPECT_FALSE(status->text().contains("1234"));

    settings->showSection(QStringLiteral("profiles"));
    auto* list = Child<QTreeWidget>(settings, "profileList");
    const int before = list->topLevelItemCount();
    Child<QPushButton>(settings, "addProfile")->click();
    auto* dialog = VisibleChild<ProfileDialog>(settings);
    ASSERT_NE(dialog, nullptr);
    auto* save = Child<QDialogButtonBox>(dialog, "profileButtons")->button(QDialogButtonBox::Save);
    QTest::keyClicks(Child<QLineEdit>(dialog, "profileApn"), "web.example");
    save->click();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(Child<QLabel>(dialog, "profileError")->isHidden());

    QTest::keyClicks(Child<QLineEdit>(dialog, "profileName"), "Work <b>APN</b>");
    QTest::keyClicks(Child<QLineEdit>(dialog, "profileUser"), "anna");
    QTest::keyClicks(Child<QLineEdit>(dialog, "profilePassword"), "secret");
    auto* auth = Child<QComboBox>(dialog, "profileAuth");
    auth->setCurrentIndex(auth->findData(2));
    save->click();
    ASSERT_TRUE(waitForGui([&] { return list->topLevelItemCount() == before + 1; }));
    EXPECT_NE(Row(list, 0, "Work <b>APN</b>"), nullptr);
    bool offered = false;
    for (const APNInfo& p : settings->profileSettings().offeredProfiles())
        offered = offered || (p.strAccount == "Work <b>APN</b>" && p.strApn == "web.example");
    EXPECT_TRUE(offered);
    AppConfig reread; // reads the files again
    ASSERT_FALSE(reread.getUserApnList().isEmpty());
    const APNInfo& saved = reread.getUserApnList().last();
    EXPECT_EQ(
        QStringList({saved.strAccount, saved.strApn, saved.strDialNum, saved.strUserName, saved.strPassword}),
        QStringList({"Work <b>APN</b>", "web.example", "*99#", "anna", "secret"}));
    EXPECT_EQ(saved.nAuthType, 2);
}

// The validity choices reach the modem as weeks, days and hours; codes and PINs typed in are checked
// before anything is sent.
TEST(NetworkSettingsGui, ValidityChoicesAndInputChecks) {
    // weeks < 0: no such choice
    // clang-format off
    const struct { const char* code; int weeks, days, hours; } validities[] = {
        {"1h", 0, 0, 1}, {"12h", 0, 0, 12}, {"1d", 0, 1, 0}, {"2d", 0, 2, 0}, {"1w", 1, 0, 0}, {"max", 255, 0, 0},
        {"", -1, 0, 0}, {"3h", -1, 0, 0}, {"MAX", -1, 0, 0}, {"1w3d", -1, 0, 0}};
    const struct { const char* pin; bool good; } pins[] = {
        {"1234", true}, {"12345678", true}, {"123", false}, {"123456789", false}, {"12a4", false}, {"", false}, {" 1234", false},
        {"\u0661\u0662\u0663\u0664", false}};
    // clang-format on
    for (const auto& row : validities) {
        SCOPED_TRACE(row.code);
        const auto p = SmsSettingsPage::validityPeriod(QLatin1String(row.code));
        EXPECT_EQ(p ? std::tuple(int(p->bWeek), int(p->bDay), int(p->bHour)) : std::tuple(-1, 0, 0),
                  std::tuple(row.weeks, row.days, row.hours));
    }
    for (const auto& row : pins)
        EXPECT_EQ(PinSettingsPage::pinProblem(QString::fromUtf8(row.pin)).isEmpty(), row.good) << row.pin;

    APNInfo good;
    good.strAccount = QStringLiteral("Work");
    good.strApn = QStringLiteral("web.example");
    good.strDialNum = QStringLiteral("*99#");
    EXPECT_TRUE(ProfileDialog::problem(good).isEmpty());
    const std::function<void(APNInfo&)> broken[] = {
        [](APNInfo& p) { p.strAccount.clear(); },
        [](APNInfo& p) { p.strDialNum.clear(); },
        [](APNInfo& p) { p.strApn += QStringLiteral("\nplugin evil.so"); },
        [](APNInfo& p) { p.strPassword = QStringLiteral("a\rb"); },
        [](APNInfo& p) { p.strUserName = QString(QChar(0)); },
        [](APNInfo& p) { p.strDialNum += QStringLiteral(";+CFUN=0"); },
    };
    for (const auto& breakIt : broken) {
        APNInfo profile = good;
        breakIt(profile);
        EXPECT_FALSE(ProfileDialog::problem(profile).isEmpty());
    }
    good.strApn += QStringLiteral("\";+CMGD=1,4;\"");
    EXPECT_EQ(ProfileDialog::problem(good),
              "The APN holds a double quote (\"), which cannot be sent to the modem.");
}

// A SIM of another operator gets the general menus. A free code gets the network's answer; a menu code
// keeps the reply field open until the dialogue ends. An entry's input is checked against its limits
// before anything is sent, then goes out after the entry's code; a code the network does not offer says so.
TEST(AccountGui, CodesMenusAndEntryInputs) {
    QTemporaryDir dir;
    QFile scenario(dir.filePath("other-operator.json"));
    ASSERT_TRUE(scenario.open(QIODevice::WriteOnly));
    scenario.write(R"({"sim": {"imsi": "001019876543210"}})");
    scenario.close();
    GuiWorld world({"--scenario", scenario.fileName()});
    auto* tab = world.showReady<AccountPlugin>("account");
    ASSERT_NE(tab, nullptr);
    auto* code = Child<QLineEdit>(tab, "code");
    auto* send = Child<QPushButton>(tab, "sendCode");
    auto* answer = Child<QPlainTextEdit>(tab, "answer");
    QTest::keyClicks(code, "*100#");
    send->click();
    ASSERT_TRUE(Shows(answer, "Your balance is 12.34 EUR."));
    EXPECT_FALSE(tab->sessionOpen());

    code->clear();
    QTest::keyClicks(code, "*135#");
    send->click();
    ASSERT_TRUE(waitForGui([&] { return tab->sessionOpen(); }));
    EXPECT_TRUE(answer->toPlainText().contains("2 Data options"));
    EXPECT_FALSE(send->isEnabled()); // one dialogue at a time
    QTest::keyClicks(Child<QLineEdit>(tab, "reply"), "2");
    Child<QPushButton>(tab, "sendReply")->click();
    ASSERT_TRUE(Shows(answer, "Week pass 5 GB"));
    EXPECT_TRUE(tab->sessionOpen());
    Child<QPushButton>(tab, "cancelSession")->click();
    EXPECT_FALSE(tab->sessionOpen());
    EXPECT_TRUE(waitForGui([&] { return send->isEnabled(); }));

    auto* menu = Child<QTreeWidget>(tab, "menu");
    const auto found = menu->findItems("Top up with a voucher", Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_EQ(found.size(), 1);
    menu->setCurrentItem(found.front());
    auto* voucher = Child<QLineEdit>(tab, "input0");
    auto* topUp = Child<QPushButton>(tab, "button0");
    ASSERT_TRUE(voucher && topUp);
    auto* inputError = Child<QLabel>(tab, "inputError");
    QTest::keyClicks(voucher, "12345x67");
    EXPECT_EQ(voucher->text(), "1234567"); // digits only
    topUp->click();
    EXPECT_TRUE(inputError->isVisibleTo(tab));
    EXPECT_TRUE(inputError->text().contains("12 to 16")) << inputError->text().toStdString();

    QTest::keyClicks(voucher, "8901234567"); // 17 digits typed, 16 kept
    EXPECT_EQ(voucher->text(), "1234567890123456");
    topUp->click();
    EXPECT_FALSE(inputError->isVisibleTo(tab));
    ASSERT_TRUE(Shows(answer, "does not offer"));
    const QJsonArray requests = world.dump("ussd/requests").toArray();
    ASSERT_FALSE(requests.isEmpty());
    EXPECT_TRUE(requests.last().toString().contains("*102*1234567890123456#"))
        << QJsonDocument(requests).toJson().toStdString();
}

TEST(AccountInput, FieldLimits) {
    const _TAccountInputItem voucher{L"Voucher code", L"", L"0123456789", 16, 12};
    const _TAccountInputItem pin{L"PIN", L"", L"", 4, 4};
    const _TAccountInputItem note{L"Note", L"", L"", 0, 2};
    // problem: empty when accepted
    // clang-format off
    const struct { const _TAccountInputItem& field; QString text; QString problem; } rows[] = {
        {voucher, "1234567890123456", ""},
        {voucher, "12345678901234567", "Voucher code needs 12 to 16 characters."},
        {voucher, "12345678901a", "Voucher code takes only the characters 0123456789."},
        {pin, "123", "PIN needs 4 characters."},
        {note, "x", "Note needs at least 2 characters."},
        {note, QString(500, 'x'), ""},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(AccountPlugin::checkInput(row.field, row.text), row.problem) << row.text.toStdString();
}

// The card's main menu is listed; each path through the card's dialogues ends back at the main menu.
// Steps: "#N" chooses row N of the list on screen, "text:T" waits for the card to show T, "list:A,B" for
// the list to read so, "type:X" types into the answer field, a button's objectName presses it.
TEST(ToolkitGui, MenuChoicesShowTheCardsDialogues) {
    GuiWorld world;
    auto* tab = world.showReady<ToolkitPlugin>("toolkit");
    ASSERT_NE(tab, nullptr);
    auto* items = Child<QListWidget>(tab, "items");
    auto* text = Child<QLabel>(tab, "text");
    auto atMainMenu = [&] {
        return Texts(items) == QStringList{"News", "Games", "Offers"} &&
               tab->current().nCommand == ToolkitPlugin::kMainMenu;
    };
    ASSERT_TRUE(waitForGui(atMainMenu)) << Texts(items).join(',').toStdString();
    // clang-format off
    const std::vector<std::vector<QString>> paths = {
        {"#0", "text:Today: sunny, 24 C", "ok"},
        {"#1", "list:Quiz,About", "back"},
        {"#1", "list:Quiz,About", "#0", "text:Capital of France?", "type:Paris", "ok", "text:Thank you!", "ok"},
        {"#2", "text:Receive offers? (Y/N)", "yes"},
        {"#1", "list:Quiz,About", "#1", "text:Games by your operator", "endSession"},
    };
    // clang-format on
    for (const auto& path : paths) {
        SCOPED_TRACE(path.front().toStdString() + " ... " + path.back().toStdString());
        for (const QString& step : path) {
            SCOPED_TRACE(step.toStdString());
            if (step.startsWith('#')) {
                items->setCurrentRow(step.mid(1).toInt());
                Child<QPushButton>(tab, "select")->click();
            } else if (step.startsWith("text:")) {
                ASSERT_TRUE(Shows(text, Exactly(step.mid(5))));
            } else if (step.startsWith("list:")) {
                ASSERT_TRUE(waitForGui([&] { return Texts(items).join(',') == step.mid(5); }));
            } else if (step.startsWith("type:")) {
                QTest::keyClicks(Child<QLineEdit>(tab, "input"), step.mid(5));
            } else {
                auto* button = Child<QPushButton>(tab, step.toLatin1().constData());
                ASSERT_TRUE(button->isVisibleTo(tab) && ClickWhenEnabled(button));
            }
        }
        ASSERT_TRUE(waitForGui(atMainMenu)) << Texts(items).join(',').toStdString();
    }
    // What the card heard: the back step, the typed answer, the yes and the user's end of the session.
    QStringList heard;
    for (const QJsonValue& response : world.dump("stk/responses").toArray())
        heard << response.toString();
    for (const char* expected : {"11,17,,0", "3,0,,\"Paris\"", "2,0,,2,1,", "1,16,"})
        EXPECT_TRUE(heard.contains(expected)) << expected << " not in " << heard.join(' ').toStdString();
}

TEST(SignalFinderGui, FinderShowsTheSignalAndTheChartTheHistory) {
    GuiWorld world;
    // The simulator's +CSQ: 18 is -77 dBm; the best of the minute is the same while it stays.
    auto* network = world.showReady<NetworkPlugin>("network");
    ASSERT_NE(network, nullptr);
    Child<QPushButton>(network, "findSignal")->click();
    auto* gauge = Child<CNSSignalGauge>(network, "gauge");
    ASSERT_NE(gauge, nullptr);
    EXPECT_TRUE(waitForGui([&] { return gauge->dbm() == -77 && gauge->bestDbm() == -77; }, 20s));
    EXPECT_FALSE(gauge->grab().isNull()); // drawn as the dialog shows it
    // The tone starts and stops quietly, also without a sound device.
    auto* tone = Child<QCheckBox>(network, "tone");
    tone->setChecked(true);
    tone->setChecked(false);

    // Minutes of today in the history as the recorder writes them: the bearer changes, then after a gap
    // the cell.
    SignalHistory history;
    const QDate today = QDate::currentDate();
    history.add(SignalSample{-77, 0, 1, 4, 1, 2}, QDateTime(today, QTime(0, 0)));
    history.add(SignalSample{-71, 0, 1, 6, 1, 2}, QDateTime(today, QTime(0, 1)));
    history.add(SignalSample{-93, 0, 1, 6, 1, 3}, QDateTime(today, QTime(0, 5)));
    ASSERT_TRUE(history.flush());
    auto* statistics = world.show<StatisticsPlugin>("statistics");
    ASSERT_NE(statistics, nullptr);
    Child<QComboBox>(statistics, "chartKind")->setCurrentIndex(1);
    auto* chart = Child<CNSSignalChart>(statistics, "signalChart");
    EXPECT_EQ(chart->pointCount(), 3);
    EXPECT_TRUE(
        chart->accessibleDescription().contains("between -93 and -71 dBm; the bearer changed 1 times, "
                                                "the cell 1 times"))
        << chart->accessibleDescription().toStdString();
    EXPECT_FALSE(chart->grab().isNull());
}
