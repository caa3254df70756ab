// Every control of the window and of the dialogs its buttons open has a name a screen reader can say, and
// the painted widgets also say what they show. Parts Qt builds inside a control, and its pop-up list, are
// named by the control.

#include <QAbstractButton>
#include <QAccessible>

#include <gtest/gtest.h>

#include "CNSSignalBars.h"
#include "GuiTestSupport.h"
#include "ModulePlugin.h"
#include "PinDialog.h"
#include "Statistics/CNSTrafficChart.h"

TEST(AccessibilityGui, EveryControlHasAName) {
    GuiWorld world;
    ASSERT_TRUE(world.started() && world.waitForState(ModemLink::State::Ready));
    MainWindow& window = world.window();
    (new PinDialog(world.link(), true, &window))->show();
    for (const auto& [tab, button] :
         {std::pair{"messages", "new"}, {"contacts", "add"}, {"settings", "addProfile"}}) {
        auto* trigger = window.module(tab)->findChild<QAbstractButton*>(button);
        ASSERT_TRUE(trigger && waitForGui([&] { return trigger->isEnabled(); })) << button;
        trigger->click();
    }
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool painted = qobject_cast<CNSSignalBars*>(widget) || qobject_cast<CNSTrafficChart*>(widget);
        if (!painted && (!(widget->focusPolicy() & Qt::TabFocus) || widget->objectName().startsWith("qt_") ||
                         widget->window()->windowType() == Qt::Popup))
            continue;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty() ||
                     (painted && accessible->text(QAccessible::Description).isEmpty()))
            << widget->metaObject()->className() << " '" << widget->objectName().toStdString() << "' in "
            << widget->window()->metaObject()->className();
    }
}
