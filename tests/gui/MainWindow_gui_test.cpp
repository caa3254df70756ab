// The main window's own behaviour against the simulated modem: the PIN prompt on a locked SIM, the status
// bar, and the "no modem" state through unplugging and replugging.

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QTabWidget>

#include <gtest/gtest.h>

#include "GuiTestSupport.h"
#include "ModemDoctor.h"
#include "ModulePlugin.h"
#include "PinDialog.h"
#include "StatusBarView.h"
#include "WorkMessageNames.h"

using State = ModemLink::State;

TEST(MainWindowGui, LockedSimAsksForThePinWithTheAttemptsLeft) {
    GuiWorld world({"--scenario", "pin-locked"});
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(State::NeedPin));
    MainWindow& window = world.window();
    ASSERT_TRUE(waitForGui([&] { return window.pinDialog() && window.pinDialog()->isVisible(); }));
    EXPECT_TRUE(window.showsModemPage());
    PinDialog* prompt = window.pinDialog();
    EXPECT_FALSE(prompt->asksForPuk());
    EXPECT_EQ(prompt->attemptsText(), "Attempts left: 3");

    // A wrong PIN keeps the prompt open with one attempt less; nothing is lost of the app's state.
    prompt->enter("0000");
    ASSERT_TRUE(waitForGui([&] { return prompt->attemptsText() == "Attempts left: 2"; }))
        << prompt->attemptsText().toStdString();
    EXPECT_EQ(prompt->errorText(), "Wrong code.");
    EXPECT_EQ(world.link().state(), State::NeedPin);

    // Too short a PIN is refused before it reaches the SIM.
    prompt->enter("12");
    EXPECT_EQ(world.link().pinAttempts(), 2);
    EXPECT_FALSE(prompt->errorText().isEmpty());

    // Cancelled, the prompt opens again from the locked page.
    prompt->reject();
    ASSERT_TRUE(waitForGui([&] { return window.pinDialog() == nullptr; }));
    auto* unlock = window.findChild<QPushButton*>("unlock");
    ASSERT_TRUE(unlock && unlock->isVisible());
    unlock->click();
    ASSERT_TRUE(waitForGui([&] { return window.pinDialog() && window.pinDialog()->isVisible(); }));
    prompt = window.pinDialog();
    EXPECT_EQ(prompt->attemptsText(), "Attempts left: 2");

    prompt->enter("1234");
    ASSERT_TRUE(world.waitForState(State::Ready));
    EXPECT_TRUE(
        waitForGui([&] { return window.pinDialog() == nullptr || !window.pinDialog()->isVisible(); }));
    EXPECT_FALSE(window.showsModemPage());
}

TEST(MainWindowGui, ThreeWrongPinsAskForThePukAndTheNewPinUnlocks) {
    GuiWorld world({"--scenario", "pin-locked"});
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(State::NeedPin));
    for (int attempt = 0; attempt < 3; ++attempt) {
        ASSERT_TRUE(waitForGui([&] { return world.window().pinDialog() != nullptr; }));
        const int before = world.link().pinAttempts();
        world.window().pinDialog()->enter("0000");
        ASSERT_TRUE(waitForGui([&] { return world.link().pinAttempts() != before; }));
    }
    ASSERT_TRUE(world.waitForState(State::NeedPuk));
    ASSERT_TRUE(
        waitForGui([&] { return world.window().pinDialog() && world.window().pinDialog()->asksForPuk(); }));
    EXPECT_EQ(world.window().pinDialog()->attemptsText(), "Attempts left: 10");
    world.window().pinDialog()->enter("12345678", "4321");
    ASSERT_TRUE(world.waitForState(State::Ready));
}

TEST(MainWindowGui, UnpluggingShowsNoModemAndReplugRecoversWithoutRestart) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(State::Ready));
    MainWindow& window = world.window();
    StatusBarView* status = window.statusView();
    ASSERT_TRUE(waitForGui([&] { return status->signalLevel() >= 0; }));
    EXPECT_NE(status->operatorText().indexOf("26202"), -1) << status->operatorText().toStdString();
    EXPECT_FALSE(status->bearerText().isEmpty());
    EXPECT_FALSE(status->roamingText().isEmpty());
    const int modules = window.modules().size();
    EXPECT_EQ(modules, 8);

    ASSERT_TRUE(world.sim().control("unplug").value("ok").toBool());
    ASSERT_TRUE(world.waitForState(State::Absent));
    EXPECT_TRUE(window.showsModemPage());
    EXPECT_NE(window.modemPageText().indexOf("No modem"), -1);
    // The page says what the checks found, as "dialtone doctor" does.
    const QString firstFinding = ModemDoctor::examine().value(0).text.toHtmlEscaped();
    EXPECT_TRUE(waitForGui([&] { return window.findingsText().contains(firstFinding); }))
        << window.findingsText().toStdString();
    EXPECT_EQ(status->operatorText(), "No modem");
    EXPECT_EQ(status->signalLevel(), -1);
    EXPECT_NE(window.trayIcon()->toolTip().indexOf("No modem"), -1);

    ASSERT_TRUE(world.sim().control("plug").value("ok").toBool());
    ASSERT_TRUE(world.waitForState(State::Ready, std::chrono::seconds(30)));
    EXPECT_FALSE(window.showsModemPage());
    EXPECT_TRUE(waitForGui([&] { return status->signalLevel() >= 0; }));
    EXPECT_EQ(window.modules().size(), modules);
}

TEST(ModemLinkGui, EachAnswerReachesOnlyItsOwnRequest) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(State::Ready));
    // Two requests of the same name in flight, and one whose context is gone before its answer.
    int first = 0;
    int second = 0;
    int orphan = 0;
    world.link().request(MESSAGE_NETWORK_GET_INFO, {}, [&](const QVariantMap&) { ++first; });
    world.link().request(MESSAGE_NETWORK_GET_INFO, {}, [&](const QVariantMap&) { ++second; });
    auto context = std::make_unique<QObject>();
    world.link().request(
        MESSAGE_NETWORK_GET_INFO, {}, [&](const QVariantMap&) { ++orphan; }, context.get());
    context.reset();
    ASSERT_TRUE(waitForGui([&] { return first == 1 && second == 1; }));
    // A later answer of the same name must not reach them again.
    int third = 0;
    world.link().request(MESSAGE_NETWORK_GET_INFO, {}, [&](const QVariantMap&) { ++third; });
    ASSERT_TRUE(waitForGui([&] { return third == 1; }));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(orphan, 0);
}
