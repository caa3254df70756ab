// Every control (not Qt's inner parts) has a name to be read out; painted ones (CNS...) their value.

#include <QAccessible>

#include <gtest/gtest.h>

#include "GuiTestSupport.h"

TEST(AccessibilityGui, EveryControlHasAName) {
    GuiWorld world;
    ASSERT_TRUE(world.started() && world.waitForState(ModemLink::State::Ready));
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
