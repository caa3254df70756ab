#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include "AppConfig.h"
#include "Connector/ProfileSettingsController.h"
#include "GuiTestSupport.h"
#include "MainWindow.h"
#include "ModemDialect.h"
#include "Network/NetworkPlugin.h"
#include "Settings/PinSettingsPage.h"
#include "Settings/ProfileDialog.h"
#include "Settings/SettingsPlugin.h"
#include "Settings/SmsSettingsPage.h"

namespace {

template <class Widget> Widget* Child(QObject* parent, const char* name) {
    auto* widget = parent->findChild<Widget*>(QLatin1String(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

QJsonObject Dump(GuiWorld& world, const char* part) {
    return world.sim().control(QStringLiteral("dump")).value(QLatin1String(part)).toObject();
}

QTreeWidgetItem* Row(QTreeWidget* list, int column, const QString& text) {
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        if (list->topLevelItem(i)->text(column) == text)
            return list->topLevelItem(i);
    }
    return nullptr;
}

// The modem's dialect is Standard while it lives.
struct StandardStick {
    StandardStick() { SetModemDialect(ModemDialect::Standard); }
    ~StandardStick() { ResetModemDialect(); }
};

} // namespace

// The scan lists the simulator's operators once each, with their state, while the tab stays usable; a
// manual choice then registers with that operator and the tab shows it.
TEST(NetworkSettingsGui, SearchListsOperatorsAndManualSelectionRegisters) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* network = world.show<NetworkPlugin>(QStringLiteral("network"));
    ASSERT_NE(network, nullptr);
    auto* search = Child<QPushButton>(network, "search");
    auto* progress = Child<QProgressBar>(network, "searchProgress");
    auto* list = Child<QTreeWidget>(network, "networks");
    ASSERT_TRUE(waitForGui([&] { return search->isEnabled(); }));

    search->click();
    EXPECT_TRUE(progress->isVisible());
    EXPECT_FALSE(search->isEnabled());
    ASSERT_TRUE(waitForGui([&] { return list->topLevelItemCount() > 0; }, std::chrono::seconds(30)));
    EXPECT_FALSE(progress->isVisible());
    EXPECT_TRUE(search->isEnabled());

    const struct {
        const char* code;
        const char* name;
        const char* state;
    } expected[] = {{"26202", "Vodafone.de", "current"},
                    {"26201", "Telekom.de", "available"},
                    {"26207", "o2 - de", "available"},
                    {"26203", "E-Plus", "forbidden"}};
    EXPECT_EQ(list->topLevelItemCount(), 4);
    for (const auto& row : expected) {
        QTreeWidgetItem* item = Row(list, 2, QLatin1String(row.code));
        ASSERT_NE(item, nullptr) << row.code;
        EXPECT_EQ(item->text(0), QLatin1String(row.name));
        EXPECT_EQ(item->text(4), QLatin1String(row.state)) << row.code;
    }

    Row(list, 2, QStringLiteral("26201"))->setSelected(true);
    EXPECT_TRUE(Child<QRadioButton>(network, "manual")->isChecked());
    auto* registerButton = Child<QPushButton>(network, "register");
    ASSERT_TRUE(registerButton->isEnabled());
    registerButton->click();
    ASSERT_TRUE(waitForGui([&] {
        const QJsonObject reg = Dump(world, "network");
        return reg.value("selection").toInt() == 1 && reg.value("operator").toString() == "26201";
    }));
    auto* operatorLabel = Child<QLabel>(network, "operator");
    EXPECT_TRUE(waitForGui([&] { return operatorLabel->text().contains("26201"); }, std::chrono::seconds(15)))
        << operatorLabel->text().toStdString();
    EXPECT_TRUE(waitForGui([&] { return Child<QLabel>(network, "selection")->text() == "manual"; }));
    EXPECT_EQ(Row(list, 2, "26201")->text(4), "current");
    EXPECT_EQ(Row(list, 2, "26202")->text(4), "available");
}

// A stick of the standard dialect has no toolkit and no band or mode selection: the toolkit tab goes, and
// the band and mode controls are disabled with the reason; a stick with them gets the tab back.
TEST(NetworkSettingsGui, StandardStickHasNoToolkitTabAndNoBandOrMode) {
    StandardStick stick;
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* tabs = Child<QTabWidget>(&world.window(), "modules");
    const int toolkit = tabs->indexOf(world.window().module(QStringLiteral("toolkit")));
    EXPECT_TRUE(waitForGui([&] { return !tabs->isTabVisible(toolkit); }));
    auto* network = world.show<NetworkPlugin>(QStringLiteral("network"));
    auto* status = Child<QLabel>(network, "radioStatus");
    EXPECT_TRUE(waitForGui([&] { return status->text().contains("not supported by this modem"); }))
        << status->text().toStdString();
    for (const char* control : {"band", "mode", "applyRadio"})
        EXPECT_FALSE(Child<QWidget>(network, control)->isEnabled()) << control;

    ASSERT_TRUE(world.sim().control(QStringLiteral("unplug")).value("ok").toBool());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Absent));
    EXPECT_TRUE(tabs->isTabVisible(toolkit));
}

// A profile added through the dialog reaches the controller's offered list and the saved user list, so it
// is still there for a new configuration read from the files.
TEST(NetworkSettingsGui, AddedProfileIsOfferedAndSaved) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* settings = world.show<SettingsPlugin>(QStringLiteral("settings"));
    ASSERT_NE(settings, nullptr);
    settings->showSection(QStringLiteral("profiles"));
    auto* list = Child<QTreeWidget>(settings, "profileList");
    const int before = list->topLevelItemCount();

    Child<QPushButton>(settings, "addProfile")->click();
    auto* dialog = settings->findChild<ProfileDialog*>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(waitForGui([&] { return dialog->isVisible(); }));
    auto* save = Child<QDialogButtonBox>(dialog, "profileButtons")->button(QDialogButtonBox::Save);

    // A profile without a name is refused in the dialog, which stays open.
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

    bool offered = false;
    for (const APNInfo& p : settings->profileSettings().offeredProfiles())
        offered = offered || (p.strAccount == "Work <b>APN</b>" && p.strApn == "web.example");
    EXPECT_TRUE(offered);
    AppConfig reread; // reads the files again
    ASSERT_FALSE(reread.getUserApnList().isEmpty());
    const APNInfo& saved = reread.getUserApnList().last();
    EXPECT_EQ(saved.strAccount, "Work <b>APN</b>");
    EXPECT_EQ(saved.strApn, "web.example");
    EXPECT_EQ(saved.strDialNum, "*99#");
    EXPECT_EQ(saved.strUserName, "anna");
    EXPECT_EQ(saved.strPassword, "secret");
    EXPECT_EQ(saved.nAuthType, 2);
    EXPECT_NE(Row(list, 0, "Work <b>APN</b>"), nullptr);
}

// Switching the PIN request on with the SIM's PIN reaches the SIM; a wrong PIN is reported in words with
// the attempts left, and the code never stays in a field.
TEST(NetworkSettingsGui, PinCheckIsSwitchedOnTheSim) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    ASSERT_FALSE(Dump(world, "pin").value("enabled").toBool());
    auto* settings = world.show<SettingsPlugin>(QStringLiteral("settings"));
    ASSERT_NE(settings, nullptr);
    settings->showSection(QStringLiteral("pin"));
    auto* pin = Child<QLineEdit>(settings, "currentPin");
    auto* toggle = Child<QPushButton>(settings, "togglePin");
    auto* status = Child<QLabel>(settings, "pinStatus");
    auto* attempts = Child<QLabel>(settings, "pinAttempts");
    ASSERT_TRUE(waitForGui([&] { return pin->isEnabled() && attempts->text().startsWith("PIN 3"); }));

    QTest::keyClicks(pin, "4321");
    toggle->click();
    EXPECT_TRUE(pin->text().isEmpty());
    ASSERT_TRUE(waitForGui([&] { return status->text().contains("wrong"); })) << status->text().toStdString();
    EXPECT_TRUE(waitForGui([&] { return attempts->text().startsWith("PIN 2"); }))
        << attempts->text().toStdString();
    EXPECT_FALSE(Dump(world, "pin").value("enabled").toBool());

    QTest::keyClicks(pin, "1234");
    toggle->click();
    ASSERT_TRUE(waitForGui([&] { return Dump(world, "pin").value("enabled").toBool(); }));
    EXPECT_TRUE(waitForGui([&] { return toggle->isEnabled() || toggle->text().contains("Stop"); }));
    EXPECT_TRUE(waitForGui([&] { return toggle->text().contains("Stop"); }));
    EXPECT_FALSE(status->text().contains("1234"));
}

// The validity choices reach the modem as weeks, days and hours; codes and PINs typed in are checked
// before anything is sent.
TEST(NetworkSettingsGui, ValidityChoicesAndInputChecks) {
    const struct {
        const char* code;
        int weeks, days, hours;
    } validities[] = {{"1h", 0, 0, 1}, {"12h", 0, 0, 12}, {"1d", 0, 1, 0},
                      {"2d", 0, 2, 0}, {"1w", 1, 0, 0},   {"max", 255, 0, 0}};
    for (const auto& row : validities) {
        const auto period = SmsSettingsPage::validityPeriod(QLatin1String(row.code));
        ASSERT_TRUE(period.has_value()) << row.code;
        EXPECT_EQ(period->bWeek, row.weeks) << row.code;
        EXPECT_EQ(period->bDay, row.days) << row.code;
        EXPECT_EQ(period->bHour, row.hours) << row.code;
    }
    for (const char* code : {"", "3h", "MAX", "1w3d"})
        EXPECT_FALSE(SmsSettingsPage::validityPeriod(QLatin1String(code)).has_value()) << code;

    const struct {
        const char* pin;
        bool good;
    } pins[] = {{"1234", true},  {"12345678", true}, {"123", false},   {"123456789", false},
                {"12a4", false}, {"", false},        {" 1234", false}, {"\u0661\u0662\u0663\u0664", false}};
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
