// Every control has a name a screen reader can say, and the painted widgets (CNS...) say what they show.

#include <QAccessible>

#include <gtest/gtest.h>

#include "GuiTestSupport.h"
#include "PinDialog.h"

TEST(AccessibilityGui, EveryControlHasAName) {
    GuiWorld world;
    ASSERT_TRUE(world.started() && world.waitForState(ModemLink::State::Ready));
    (new PinDialog(world.link(), true, &world.window()))->show();
    for (QWidget* widget : world.window().findChildren<QWidget*>()) {
        const bool painted = QByteArray(widget->metaObject()->className()).startsWith("CNS");
        // Qt's inner parts of a control and its pop-up list are named by the control.
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
