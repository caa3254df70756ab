// The main window's own behaviour against the simulated modem, as the window and its tabs show it.

#include <QAccessible>
#include <QComboBox>
#include <QSystemTrayIcon>

#include "Connect/ConnectPlugin.h"
#include "GuiTestSupport.h"
#include "Messages/ComposeDialog.h"
#include "Messages/MessagesPlugin.h"
#include "ModemDoctor.h"
#include "ModulePlugin.h"
#include "PinDialog.h"
#include "StatusBarView.h"

using State = ModemLink::State;
using namespace std::chrono_literals;

// Every control (not Qt's inner parts) has a name to be read out; painted ones (CNS...) their value.
TEST(AccessibilityGui, EveryControlHasAName) {
    GuiWorld world;
    ASSERT_TRUE(world.ready());
    for (QWidget* widget : world.window().findChildren<QWidget*>()) {
        const bool painted = QByteArray(widget->metaObject()->className()).startsWith("CNS");
        const bool control = (widget->focusPolicy() & Qt::TabFocus) &&
                             !widget->objectName().startsWith("qt_") &&
                             widget->window()->windowType() != Qt::Popup;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        EXPECT_FALSE((painted || control) &&
                     (accessible->text(QAccessible::Name).isEmpty() ||
                      (painted && accessible->text(QAccessible::Description).isEmpty())))
            << widget->metaObject()->className() << " '" << widget->objectName().toStdString() << "'";
    }
}

// A wrong PIN keeps the prompt open with one attempt less, too short a one never reaches the SIM, a
// cancelled prompt opens again from the locked page; three wrong ones ask for the PUK and a new PIN.
TEST(MainWindowGui, LockedSimAsksForThePinThenThePuk) {
    GuiWorld world({"--scenario", "pin-locked"});
    ASSERT_TRUE(world.started() && world.waitForState(State::NeedPin));
    MainWindow& window = world.window();
    auto prompt = [&] {
        return window.pinDialog() && window.pinDialog()->isVisible() ? window.pinDialog() : nullptr;
    };
    ASSERT_TRUE(waitForGui(prompt));
    EXPECT_TRUE(window.showsModemPage());
    EXPECT_FALSE(prompt()->asksForPuk());
    EXPECT_EQ(prompt()->attemptsText(), "Attempts left: 3");

    prompt()->enter("0000");
    ASSERT_TRUE(waitForGui([&] { return prompt()->attemptsText() == "Attempts left: 2"; }))
        << prompt()->attemptsText().toStdString();
    EXPECT_EQ(prompt()->errorText(), "Wrong code.");
    EXPECT_EQ(world.link().state(), State::NeedPin);
    prompt()->enter("12");
    EXPECT_EQ(world.link().pinAttempts(), 2);
    EXPECT_FALSE(prompt()->errorText().isEmpty());

    prompt()->reject();
    ASSERT_TRUE(waitForGui([&] { return window.pinDialog() == nullptr; }));
    auto* unlock = window.findChild<QPushButton*>("unlock");
    ASSERT_TRUE(unlock && unlock->isVisible());
    unlock->click();
    ASSERT_TRUE(waitForGui(prompt));
    EXPECT_EQ(prompt()->attemptsText(), "Attempts left: 2");

    prompt()->enter("0000");
    ASSERT_TRUE(waitForGui([&] { return world.link().pinAttempts() == 1; }));
    prompt()->enter("0000");
    ASSERT_TRUE(world.waitForState(State::NeedPuk));
    ASSERT_TRUE(waitForGui([&] { return window.pinDialog() && window.pinDialog()->asksForPuk(); }));
    EXPECT_EQ(window.pinDialog()->attemptsText(), "Attempts left: 10");
    window.pinDialog()->enter("12345678", "4321");
    ASSERT_TRUE(world.waitForState(State::Ready));
    EXPECT_TRUE(waitForGui([&] { return prompt() == nullptr; }));
    EXPECT_FALSE(window.showsModemPage());
}

// Unplugged, the window says "No modem" with what the checks found (as "dialtone doctor" does), the
// Connect button waits and the modem's folders empty while the drafts stay; replugged, all come back
// without a restart.
TEST(MainWindowGui, UnpluggingShowsNoModemAndReplugRecoversWithoutRestart) {
    GuiWorld world;
    ASSERT_TRUE(world.ready());
    MainWindow& window = world.window();
    StatusBarView* status = window.statusView();
    ASSERT_TRUE(waitForGui([&] { return status->signalLevel() >= 0; }));
    EXPECT_NE(status->operatorText().indexOf("26202"), -1) << status->operatorText().toStdString();
    auto* connect = world.show<ConnectPlugin>("connect");
    auto* button = Child<QPushButton>(connect, "connectButton");
    auto* profiles = Child<QComboBox>(connect, "profiles");
    ASSERT_TRUE(waitForGui([&] { return button->isEnabled(); }, 20s));
    auto* messages = world.show<MessagesPlugin>("messages");
    ComposeDialog* compose = NewMessage(messages, "+491701234567", "For later");
    ASSERT_TRUE(compose);
    Child<QPushButton>(compose, "saveDraft")->click();
    messages->showFolder(MessagesPlugin::Sim);
    ASSERT_TRUE(waitForGui([&] { return messages->listedCount() > 0; }, 20s));
    const int onSim = messages->listedCount();

    ASSERT_TRUE(world.sim().control("unplug").value("ok").toBool());
    ASSERT_TRUE(world.waitForState(State::Absent));
    EXPECT_TRUE(window.showsModemPage());
    EXPECT_NE(window.modemPageText().indexOf("No modem"), -1);
    const QString firstFinding = ModemDoctor::examine().value(0).text.toHtmlEscaped();
    EXPECT_TRUE(waitForGui([&] { return window.findingsText().contains(firstFinding); }))
        << window.findingsText().toStdString();
    EXPECT_EQ(status->operatorText(), "No modem");
    EXPECT_EQ(status->signalLevel(), -1);
    EXPECT_NE(window.trayIcon()->toolTip().indexOf("No modem"), -1);
    EXPECT_FALSE(button->isEnabled());
    EXPECT_FALSE(profiles->isEnabled());
    EXPECT_EQ(messages->listedCount(), 0);
    messages->showFolder(MessagesPlugin::Drafts);
    EXPECT_EQ(Column(Child<QTreeView>(messages, "messages"), 2), QStringList{"For later"});

    ASSERT_TRUE(world.sim().control("plug").value("ok").toBool());
    ASSERT_TRUE(world.waitForState(State::Ready, 30s));
    EXPECT_FALSE(window.showsModemPage());
    EXPECT_TRUE(waitForGui([&] { return status->signalLevel() >= 0; }));
    EXPECT_EQ(window.modules().size(), 8);
    EXPECT_TRUE(waitForGui([&] { return button->isEnabled() && profiles->count() > 0; }, 20s));
    messages->showFolder(MessagesPlugin::Sim);
    EXPECT_TRUE(waitForGui([&] { return messages->listedCount() == onSim; }, 20s));
}
